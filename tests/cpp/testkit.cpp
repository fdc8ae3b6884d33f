#include "testkit.h"

#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <unistd.h>

#include "core/guard.h"
#include "devices/device.h"
#include "glbblk.h"
#include "kolvex.h"

namespace testkit {

std::vector<Test> &registry() {
    static std::vector<Test> tests;
    return tests;
}

std::vector<Test> &pages() {
    static std::vector<Test> list;
    return list;
}

static int failures = 0;
static const char *current = "";

void fail(const char *file, int line, const std::string &what) {
    ++failures;
    std::fprintf(stderr, "FAIL %s (%s:%d): %s\n", current, file, line, what.c_str());
}

// The recorder of each block: a driver's operations are plain functions,
// so they find their recorder through the block.
static std::map<const DeviceBlock *, RecordingDriver *> recorders;
static std::mutex recorders_lock;

static RecordingDriver *of(DeviceBlock *b) {
    std::lock_guard<std::mutex> g(recorders_lock);
    return recorders[b];
}

static void rec_line(DeviceBlock *b, double x, double y, int op) {
    of(b)->ops.push_back({op == QQ_MOVE ? 'm' : op == QQ_DRAW ? 'd' : 'e', x, y, op});
}
static void rec_colour(DeviceBlock *b, int value, int r, int g, int bl, int index) {
    of(b)->ops.push_back({'c', 0, 0, value, r, g, bl, index});
}
static int rec_width(DeviceBlock *b, double n, int fractional) {
    of(b)->ops.push_back({'w', n, 0, fractional});
    return of(b)->hwwidth;
}
static void rec_clip(DeviceBlock *b, int x1, int y1, int x2, int y2, int reset) {
    of(b)->ops.push_back({'x', (double)x1, (double)y1, reset});
}

static void rec_rect(DeviceBlock *b, int x1, int y1, int x2, int y2, int colour) {
    of(b)->ops.push_back({'r', (double)x1, (double)y1, colour, x2, y2});
}
static int rec_marker(DeviceBlock *b, int kind, double x, double y, double size) {
    of(b)->ops.push_back({'k', x, y, kind, (int)size});
    return of(b)->answer;
}
static int rec_char(DeviceBlock *b, const QQHwChar *c) {
    of(b)->ops.push_back({'t', c->x, c->y, c->code});
    return of(b)->answer;
}

static const DriverOps recording_ops = {
    .line = rec_line,
    .colour = rec_colour,
    .width = rec_width,
    .clip = rec_clip,
    .fill_rect = rec_rect,
    .marker = rec_marker,
    .character = rec_char,
};

void RecordingDriver::install(DeviceBlock *b) {
    {
        std::lock_guard<std::mutex> g(recorders_lock);
        recorders[b] = this;
    }
    b->dev.drv = &recording_ops;
    ops.clear();
}

int RecordingDriver::count(char kind) const {
    int n = 0;
    for (const Op &o : ops) n += o.kind == kind;
    return n;
}

std::vector<std::vector<Op>> RecordingDriver::pieces() const {
    std::vector<std::vector<Op>> out;
    for (const Op &o : ops) {
        if (o.kind == 'm') out.emplace_back();
        if ((o.kind == 'm' || o.kind == 'd') && !out.empty()) out.back().push_back(o);
    }
    return out;
}

std::string temp_dir() {
    char tmpl[] = "/tmp/kolvex_cpptest_XXXXXX";
    const char *d = mkdtemp(tmpl);
    return d ? d : "/tmp";
}

glbblk *recording_session(RecordingDriver &rec) {
    static std::string dir = temp_dir();
    if (chdir(dir.c_str()) != 0) return nullptr;
    filmod("DELE");
    setfil("recorded.met");
    metafl("PLOG");
    kolini();
    glbblk *b = qqglbblk(qqcur());
    b->diag.outu = 0;
    rec.install(b);
    return b;
}

void end_session(glbblk *b) {
    b->dev.drv = nullptr;
    kolfin();
}

std::string read_file(const std::string &name) {
    std::string out;
    if (FILE *f = std::fopen(name.c_str(), "rb")) {
        char buf[4096];
        size_t n;
        while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) out.append(buf, n);
        std::fclose(f);
    }
    return out;
}

}  // namespace testkit

// With no argument every test runs; "--list" names them; a name runs that
// test or page, or, when none has that name, every test whose name holds
// it.
int main(int argc, char **argv) {
    const char *want = argc > 1 ? argv[1] : nullptr;
    if (want && std::strcmp(want, "--list") == 0) {
        for (const testkit::Test &t : testkit::registry()) std::printf("%s\n", t.name);
        return 0;
    }
    for (const testkit::Test &t : testkit::pages())
        if (want && std::strcmp(t.name, want) == 0) {
            testkit::current = t.name;
            t.fn();
            return testkit::failures ? 1 : 0;
        }
    bool exact = false;
    for (const testkit::Test &t : testkit::registry())
        exact = exact || (want && std::strcmp(t.name, want) == 0);
    int run = 0;
    for (const testkit::Test &t : testkit::registry()) {
        if (want && (exact ? std::strcmp(t.name, want) != 0 : std::strstr(t.name, want) == nullptr))
            continue;
        testkit::current = t.name;
        int before = testkit::failures;
        t.fn();
        ++run;
        std::fprintf(stderr, "%s %s\n", testkit::failures == before ? "ok  " : "FAIL", t.name);
    }
    std::fprintf(stderr, "%d tests, %d failures\n", run, testkit::failures);
    return testkit::failures || run == 0 ? 1 : 0;
}
