// A small test harness for the core's internals.
//
// TEST(name) { ... } registers a test; CHECK(cond) and CHECK_EQ(a, b)
// record failures and go on.  RecordingDriver stands in for a device so
// that a test sees exactly what reaches a driver.
#pragma once

#include "glbblk.h"

#include <cstdio>
#include <string>
#include <vector>

struct glbblk;

namespace testkit {

struct Test {
    const char *name;
    void (*fn)();
};
std::vector<Test> &registry();
// Programs that draw a test page for a Python test to judge: run by name
// only, never counted as tests.
std::vector<Test> &pages();
struct Register {
    Register(const char *name, void (*fn)(), bool page = false) {
        (page ? pages() : registry()).push_back({name, fn});
    }
};
void fail(const char *file, int line, const std::string &what);

// One operation as a driver received it.
struct Op {
    char kind;   // 'm' move, 'd' draw, 'e' end path, 'c' colour, 'w' width, 'x' clip,
                 // 'r' rectangle (r, g the far corner), 'k' marker, 't' character
    double x, y;
    int value;
    int r = 0, g = 0, bl = 0, index = 0;  // what a colour operation was given
};

// Installs itself as the driver of the calling thread's session and
// records every operation.
struct RecordingDriver {
    std::vector<Op> ops;
    int hwwidth = 0;  // answer of the width operation
    int answer = 1;   // answer of the marker and character operations
    void install(DeviceBlock *b);
    int count(char kind) const;
    // The pieces of line: each starts with a move and holds its draws.
    std::vector<std::vector<Op>> pieces() const;
};

// A fresh temporary directory.
std::string temp_dir();

// A session on the native metafile, in a temporary directory and with its
// output silenced, whose driver is then replaced by the recorder.
glbblk *recording_session(RecordingDriver &rec);
// Ends it: the recorder goes, the session closes.
void end_session(glbblk *b);

// The whole contents of a file, empty when it cannot be read.
std::string read_file(const std::string &name);

}  // namespace testkit

#define TEST(name)                                              \
    static void test_##name();                                  \
    static testkit::Register reg_##name(#name, test_##name);    \
    static void test_##name()

#define PAGE(name)                                                 \
    static void page_##name();                                     \
    static testkit::Register reg_##name(#name, page_##name, true); \
    static void page_##name()

#define CHECK(cond) \
    ((cond) ? (void)0 : testkit::fail(__FILE__, __LINE__, "CHECK(" #cond ")"))
#define CHECK_EQ(a, b)                                                                    \
    do {                                                                                  \
        auto va_ = (a);                                                                   \
        auto vb_ = (b);                                                                   \
        if (!(va_ == vb_))                                                                \
            testkit::fail(__FILE__, __LINE__,                                             \
                          std::string("CHECK_EQ(" #a ", " #b "): ") + std::to_string(va_) + \
                              " != " + std::to_string(vb_));                              \
    } while (0)
#define CHECK_NEAR(a, b, tol)                                                            \
    do {                                                                                 \
        double va_ = (a), vb_ = (b);                                                     \
        if (!(va_ - vb_ <= (tol) && vb_ - va_ <= (tol)))                                 \
            testkit::fail(__FILE__, __LINE__,                                            \
                          std::string("CHECK_NEAR(" #a ", " #b "): ") + std::to_string(va_) + \
                              " != " + std::to_string(vb_));                             \
    } while (0)
