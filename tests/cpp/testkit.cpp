#include "testkit.h"

#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <unistd.h>

#include "core/glbblk.h"
#include "core/guard.h"
#include "devices/device.h"
#include "kolvex.h"

namespace testkit {

std::vector<Test> &registry() {
    static std::vector<Test> tests;
    return tests;
}

static int failures = 0;
static const char *current = "";

void fail(const char *file, int line, const std::string &what) {
    ++failures;
    std::fprintf(stderr, "FAIL %s (%s:%d): %s\n", current, file, line, what.c_str());
}

// The recorder of each block: a driver's operations are plain functions,
// so they find their recorder through the block.
static std::map<const glbblk *, RecordingDriver *> recorders;
static std::mutex recorders_lock;

static RecordingDriver *of(glbblk *b) {
    std::lock_guard<std::mutex> g(recorders_lock);
    return recorders[b];
}

static void rec_line(glbblk *b, double x, double y, int op) {
    of(b)->ops.push_back({op == QQ_MOVE ? 'm' : op == QQ_DRAW ? 'd' : 'e', x, y, op});
}
static void rec_colour(glbblk *b, int value, int r, int g, int bl, int index) {
    of(b)->ops.push_back({'c', 0, 0, value, r, g, bl, index});
}
static int rec_width(glbblk *b, double n, int fractional) {
    of(b)->ops.push_back({'w', n, 0, fractional});
    return of(b)->hwwidth;
}
static void rec_clip(glbblk *b, int x1, int y1, int x2, int y2, int reset) {
    of(b)->ops.push_back({'x', (double)x1, (double)y1, reset});
}

static const DriverOps recording_ops = {
    .line = rec_line,
    .colour = rec_colour,
    .width = rec_width,
    .clip = rec_clip,
};

void RecordingDriver::install(glbblk *b) {
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
    glbblk *b = qqcur();
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

int main(int argc, char **argv) {
    int run = 0;
    for (const testkit::Test &t : testkit::registry()) {
        if (argc > 1 && std::strstr(t.name, argv[1]) == nullptr) continue;
        testkit::current = t.name;
        int before = testkit::failures;
        t.fn();
        ++run;
        std::fprintf(stderr, "%s %s\n", testkit::failures == before ? "ok  " : "FAIL", t.name);
    }
    std::fprintf(stderr, "%d tests, %d failures\n", run, testkit::failures);
    return testkit::failures ? 1 : 0;
}
