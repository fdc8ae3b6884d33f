// The polyline buffer, the clipper and the thick-line passes, seen from a
// recording driver.
#include <cmath>
#include <unistd.h>

#include "core/glbblk.h"
#include "core/guard.h"
#include "devices/device.h"
#include "kolvex.h"
#include "testkit.h"

namespace {

// A session on the default metafile whose driver is then replaced by the
// recorder; the test ends the session itself.
glbblk *session(testkit::RecordingDriver &rec) {
    static std::string dir = testkit::temp_dir();
    if (chdir(dir.c_str()) != 0) return nullptr;
    filmod("DELE");
    unit(0);
    metafl("PLOG");
    kolini();
    glbblk *b = qqcur();
    b->diag.outu = 0;
    rec.install(b);
    return b;
}

void end(glbblk *b) {
    b->dev.drv = nullptr;
    kolfin();
}

}  // namespace

TEST(long_line_reaches_driver_in_pieces_of_100) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    int nvec0 = b->sess.nvec;
    qqmove(b, 10, 10);
    for (int i = 1; i < 250; ++i) qqdraw(b, 10 + i * 10, 10 + (i % 2) * 5);
    qqflsh(b);
    auto pieces = rec.pieces();
    CHECK_EQ(pieces.size(), 3u);
    if (pieces.size() == 3) {
        CHECK_EQ(pieces[0].size(), 100u);
        CHECK_EQ(pieces[1].size(), 100u);
        CHECK_EQ(pieces[2].size(), 52u);
        // Each piece starts where the last one ended.
        CHECK_EQ(pieces[1][0].x, pieces[0].back().x);
        CHECK_EQ(pieces[2][0].y, pieces[1].back().y);
    }
    CHECK_EQ(b->sess.nvec - nvec0, 249);
    end(b);
}

TEST(page_diagonal_stays_whole_with_tolerance) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    qqmove(b, 0, 0);
    qqdraw(b, 2969, 2099);
    qqflsh(b);
    CHECK_EQ(rec.count('m'), 1);
    CHECK_EQ(rec.count('d'), 1);
    CHECK_EQ(rec.ops.back().x, 2969.0);
    CHECK_EQ(rec.ops.back().y, 2099.0);
    end(b);
}

TEST(line_wholly_outside_draws_nothing) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    int nvec0 = b->sess.nvec;
    qqmove(b, -50, 100);
    qqdraw(b, -10, 900);
    qqflsh(b);
    CHECK_EQ(rec.count('m') + rec.count('d'), 0);
    CHECK_EQ(b->sess.nvec, nvec0);
    end(b);
}

TEST(reentry_starts_with_a_move) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    clpwin(100, 100, 801, 801);  // window 100..900
    rec.ops.clear();
    qqmove(b, 200, 500);
    qqdraw(b, 1200, 500);  // leaves at x = 900
    qqdraw(b, 1200, 600);  // outside
    qqdraw(b, 500, 600);   // comes back in at x = 900
    qqflsh(b);
    auto pieces = rec.pieces();
    CHECK_EQ(pieces.size(), 2u);
    if (pieces.size() == 2) {
        CHECK_NEAR(pieces[0].back().x, 900, 1e-9);
        CHECK_NEAR(pieces[1].front().x, 900, 1e-9);
        CHECK_NEAR(pieces[1].front().y, 600, 1e-9);
        CHECK_NEAR(pieces[1].back().x, 500, 1e-9);
    }
    end(b);
}

TEST(thick_line_of_width_4_takes_one_pass_at_half_width_2) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    linwid(4);  // the recorder does not draw widths: the layer emulates
    CHECK_EQ(b->dev.lnwid, 4);
    rec.ops.clear();
    qqmove(b, 100, 100);
    qqdraw(b, 300, 100);
    qqflsh(b);
    // The centre line, then one rectangle round it: a move and four draws.
    auto pieces = rec.pieces();
    CHECK_EQ(pieces.size(), 2u);
    if (pieces.size() == 2) {
        CHECK_EQ(pieces[1].size(), 5u);
        double ymin = 1e9, ymax = -1e9, xmin = 1e9, xmax = -1e9;
        for (const auto &o : pieces[1]) {
            ymin = std::fmin(ymin, o.y);
            ymax = std::fmax(ymax, o.y);
            xmin = std::fmin(xmin, o.x);
            xmax = std::fmax(xmax, o.x);
        }
        CHECK_NEAR(ymin, 98, 1e-9);
        CHECK_NEAR(ymax, 102, 1e-9);
        // The default cap is LONG: the rectangle reaches h beyond the ends.
        CHECK_NEAR(xmin, 98, 1e-9);
        CHECK_NEAR(xmax, 302, 1e-9);
    }
    end(b);
}

TEST(hardware_width_is_not_emulated) {
    testkit::RecordingDriver rec;
    rec.hwwidth = 1;
    glbblk *b = session(rec);
    rec.hwwidth = 1;
    linwid(4);
    CHECK_EQ(b->dev.lnwid, -4);
    rec.ops.clear();
    qqmove(b, 100, 100);
    qqdraw(b, 300, 100);
    qqflsh(b);
    CHECK_EQ(rec.pieces().size(), 1u);
    end(b);
}
