// The fill engine seen from a recording driver: the sweep for many
// polygons, bad coordinates in the polygon fill, and the dash state that
// skips what cannot show.
#include <cmath>
#include <vector>

#include "devices/device.h"
#include "glbblk.h"
#include "kolvex.h"
#include "testkit.h"

namespace {

std::vector<double> hx, hy0, hy1;
void pen_move(DeviceBlock *, double x, double y) {
    hx.push_back(x);
    hy0.push_back(y);
}
void pen_draw(DeviceBlock *, double x, double y) {
    hx.push_back(x);
    hy1.push_back(y);
}

}  // namespace

TEST(sweep_of_many_polygons_cancels_holes) {
    testkit::RecordingDriver rec;
    glbblk *b = testkit::recording_session(rec);
    // A square with a square island inside it, given as two polygons.
    const double ox[] = {0, 100, 100, 0}, oy[] = {0, 0, 100, 100};
    const double ix[] = {30, 70, 70, 30}, iy[] = {30, 30, 70, 70};
    const double *xs[] = {ox, ix}, *ys[] = {oy, iy};
    const int ns[] = {4, 4};
    hx.clear();
    hy0.clear();
    hy1.clear();
    CHECK_EQ(qqhatchpolys(b, xs, ys, ns, 2, 10.0, 20, pen_move, pen_draw), 0);
    // Lines at -5, 5, ..., 105: 10 inside the square, 4 of them through the
    // hole in two pieces.
    CHECK_EQ(hy0.size(), 14u);
    for (size_t k = 0; k + 1 < hx.size(); k += 2) {
        double a = std::fmin(hx[k], hx[k + 1]), z = std::fmax(hx[k], hx[k + 1]);
        double y = hy0[k / 2];
        bool through = y > 30 && y < 70;
        CHECK(a == 0 || (through && a == 70));
        CHECK(z == 100 || (through && z == 30));
    }
    // Too many crossings for the caller's limit.
    CHECK_EQ(qqhatchpolys(b, xs, ys, ns, 2, 10.0, 3, pen_move, pen_draw), 1);
    testkit::end_session(b);
}

TEST(polygon_fill_with_bad_coordinates_draws_no_hatching) {
    testkit::RecordingDriver rec;
    glbblk *b = testkit::recording_session(rec);
    double x[] = {10, 200, NAN, 10}, y[] = {10, 10, 200, 200};
    shdpat(1);
    size_t before = rec.ops.size();
    qqfillpoly(b, x, y, 4);
    double x2[] = {10, 200, INFINITY}, y2[] = {10, 10, 200};
    qqfillpoly(b, x2, y2, 3);
    qqflsh(b);
    CHECK_EQ(rec.ops.size(), before);
    testkit::end_session(b);
}

TEST(dashes_beyond_the_page_keep_their_phase) {
    testkit::RecordingDriver rec;
    glbblk *b = testkit::recording_session(rec);
    int pattern[] = {10, 10};
    myline(pattern, 2);
    // From far outside into the page: the pattern runs on as if walked.
    qqmove(b, -1e9 - 5, 100);
    qqdraw(b, 100, 100);
    qqflsh(b);
    // 1e9 + 105 from the start: the walk is 5 into a dash at x = 100.
    CHECK(rec.count('d') > 0);
    CHECK_EQ(b->dev.dspen, 0);
    CHECK(std::fabs(b->dev.dsrem - 5) < 1e-3);
    testkit::end_session(b);
}
