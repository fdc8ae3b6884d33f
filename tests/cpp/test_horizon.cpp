// The floating horizon as the driver sees it: lines in plot coordinates go
// through the line pen while the horizon is on, and only the pieces
// outside the covered range of each column arrive.
#include <utility>
#include <vector>

#include "glbblk.h"
#include "devices/device.h"
#include "space/space.h"
#include "testkit.h"

namespace {

glbblk *horizon_session(testkit::RecordingDriver &rec) {
    glbblk *b = testkit::recording_session(rec);
    CHECK(qqhorz(b, 0, 0, 0) == 1);
    qqhorzon(b, 1);
    b->sp.hzmode = 1;
    rec.ops.clear();
    return b;
}

void line(glbblk *b, double x0, double y0, double x1, double y1) {
    qqmove(b, x0, y0);
    qqdraw(b, x1, y1);
    qqflsh(b);
}

// The x (or y) extents of the drawn pieces: each draw with the position
// before it.  The walk sends whole pixels, so they compare exactly.
using Runs = std::vector<std::pair<double, double>>;

Runs drawn(const testkit::RecordingDriver &rec, bool along_y) {
    Runs out;
    double px = 0, py = 0;
    for (const testkit::Op &o : rec.ops) {
        if (o.kind == 'd')
            out.push_back(along_y ? std::make_pair(py, o.y) : std::make_pair(px, o.x));
        if (o.kind == 'm' || o.kind == 'd') px = o.x, py = o.y;
    }
    return out;
}

void finish(glbblk *b) {
    qqhorzon(b, 0);
    qqhorz(b, 0, 0, 999);
    testkit::end_session(b);
}

}  // namespace

TEST(horizon_hides_what_lies_between_earlier_lines) {
    testkit::RecordingDriver rec;
    glbblk *b = horizon_session(rec);
    // The last column of a segment is covered only by the segment that
    // follows it, so these reach one column further than the probes.
    line(b, 100, 500, 301, 500);  // the first line is wholly visible
    line(b, 100, 600, 301, 600);  // below it: seen from below
    auto d = drawn(rec, false);
    CHECK_EQ((int)d.size(), 2);
    rec.ops.clear();
    line(b, 100, 550, 300, 550);  // between the two: hidden
    CHECK_EQ(rec.count('d'), 0);
    line(b, 50, 550, 350, 550);  // sticks out on both sides
    CHECK(drawn(rec, false) == (Runs{{50, 99}, {301, 350}}));
    finish(b);
}

TEST(horizon_steep_line_does_not_hide_itself) {
    testkit::RecordingDriver rec;
    glbblk *b = horizon_session(rec);
    line(b, 150, 300, 250, 300);
    rec.ops.clear();
    // Through column 200 from above to below the line: visible above it
    // and below it, hidden only where the line already is.
    line(b, 200, 100, 200, 500);
    CHECK(drawn(rec, true) == (Runs{{100, 299}, {301, 500}}));
    finish(b);
}

TEST(horizon_test_only_mode_and_side_colours) {
    testkit::RecordingDriver rec;
    glbblk *b = horizon_session(rec);
    b->sp.surclrset = 1;
    b->sp.surclr[0] = 0x01000000 | 255;          // top: red
    b->sp.surclr[1] = 0x01000000 | (255 << 16);  // bottom: blue
    line(b, 100, 500, 301, 500);
    rec.ops.clear();
    b->sp.hzmode = 0;
    line(b, 100, 400, 300, 400);  // above: the top colour, and no update
    line(b, 100, 450, 300, 450);  // still above the horizon, so drawn
    line(b, 100, 700, 300, 700);  // below: the bottom colour
    CHECK_EQ(rec.count('d'), 3);
    std::vector<int> reds;
    for (const testkit::Op &o : rec.ops)
        if (o.kind == 'c') reds.push_back(o.r);
    CHECK_EQ((int)reds.size(), 2);
    if (reds.size() == 2) {
        CHECK_EQ(reds[0], 255);
        CHECK_EQ(reds[1], 0);
    }
    finish(b);
}
