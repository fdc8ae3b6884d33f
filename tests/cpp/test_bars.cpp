// Bar routines called with counts that the module's wrappers never pass
// on: each warns once and draws nothing.
#include "glbblk.h"
#include "kolvex.h"
#include "testkit.h"

TEST(bars_without_bars_warn_and_draw_nothing) {
    testkit::RecordingDriver rec;
    glbblk *b = testkit::recording_session(rec);
    graf(0.0, 5.0, 0.0, 1.0, 0.0, 5.0, 0.0, 1.0);
    rec.ops.clear();
    int before = b->diag.nwarn;
    double x[1] = {1.0}, y[1] = {0.0}, z[1] = {1.0};
    int c[1] = {-1};
    bars(x, y, z, 0);
    bars(x, y, z, -5);
    fbars(x, y, z, y, z, 0);
    CHECK_EQ(b->diag.nwarn - before, 3);
    CHECK_EQ(rec.count('d'), 0);
    // A bar set refused for its count still closes its group.
    bargrp(2, 0.0);
    bars(x, y, z, 0);
    bars(x, y, z, 0);
    CHECK_EQ(b->bar.grppos, 0);
    endgrf();
    graf3d(0.0, 5.0, 0.0, 1.0, 0.0, 5.0, 0.0, 1.0, 0.0, 5.0, 0.0, 1.0);
    before = b->diag.nwarn;
    bars3d(x, x, y, z, z, z, c, 0);
    CHECK_EQ(b->diag.nwarn - before, 1);
    endgrf();
    testkit::end_session(b);
}
