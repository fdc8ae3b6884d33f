// The polyline buffer, the clipper and the thick-line passes, seen from a
// recording driver.
#include <cmath>
#include <vector>
#include <unistd.h>

#include "core/guard.h"
#include "devices/device.h"
#include "glbblk.h"
#include "kolvex.h"
#include "testkit.h"

namespace {

glbblk *session(testkit::RecordingDriver &rec) { return testkit::recording_session(rec); }
void end(glbblk *b) { testkit::end_session(b); }

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
    // Each piece ends its path, after its last draw.
    CHECK_EQ(rec.count('e'), 3);
    CHECK_EQ(rec.ops.back().kind, 'e');
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

namespace {

// The visible strokes: each draw with the point before it.
struct Seg {
    double x0, y0, x1, y1;
};
std::vector<Seg> strokes(const testkit::RecordingDriver &rec) {
    std::vector<Seg> out;
    double px = 0, py = 0;
    for (const auto &o : rec.ops) {
        if (o.kind == 'd') out.push_back({px, py, o.x, o.y});
        if (o.kind == 'm' || o.kind == 'd') {
            px = o.x;
            py = o.y;
        }
    }
    return out;
}

void check_seg(const Seg &s, double x0, double y0, double x1, double y1, double tol = 1e-4) {
    CHECK_NEAR(s.x0, x0, tol);
    CHECK_NEAR(s.y0, y0, tol);
    CHECK_NEAR(s.x1, x1, tol);
    CHECK_NEAR(s.y1, y1, tol);
}

// The strokes that reached the driver are exactly these.
void expect_strokes(const testkit::RecordingDriver &rec, const std::vector<Seg> &want, double tol = 1e-4) {
    auto got = strokes(rec);
    CHECK_EQ(got.size(), want.size());
    for (size_t i = 0; i < got.size() && i < want.size(); ++i)
        check_seg(got[i], want[i].x0, want[i].y0, want[i].x1, want[i].y1, tol);
}

void segment(DeviceBlock *b, double x0, double y0, double x1, double y1) {
    qqmove(b, x0, y0);
    qqdraw(b, x1, y1);
}

// Points of a piece as (x, y) pairs.
std::vector<std::pair<double, double>> points(const std::vector<testkit::Op> &piece) {
    std::vector<std::pair<double, double>> out;
    for (const auto &o : piece) out.push_back({o.x, o.y});
    return out;
}

}  // namespace

TEST(circle_clipping_inside_crossing_and_outside) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    DeviceState &d = b->dev;
    d.clpcir = 1;
    d.ccx = 500;
    d.ccy = 500;
    d.ccr = 100;
    segment(b, 500, 500, 800, 500);  // from the centre outwards: to the circle line, within 0.1
    segment(b, 300, 500, 700, 500);  // through the circle, both ends outside: the chord, with a move
    segment(b, 500, 200, 500, 550);  // from outside inwards: a move onto the circle line first
    // Missing the circle, a piece too short to count, and a segment whose
    // line crosses the circle beyond its ends: nothing.
    segment(b, 300, 300, 300, 700);
    segment(b, 0, 0, 0.05, 0);
    segment(b, 300, 500, 350, 500);
    qqflsh(b);
    auto s = strokes(rec);
    CHECK_EQ(s.size(), 3u);
    if (s.size() == 3) {
        CHECK_NEAR(s[0].x0, 500, 1e-9);
        CHECK(std::fabs(s[0].x1 - 600) < 0.1);
        check_seg(s[1], 400, 500, 600, 500, 1e-9);
        CHECK(std::fabs(s[2].y0 - 400) < 0.1);
        CHECK_NEAR(s[2].y1, 550, 1e-9);
    }
    // The chord and the inward piece start with moves on the circle line.
    int moves_on_circle = 0;
    for (const auto &o : rec.ops)
        if (o.kind == 'm' && std::fabs(std::hypot(o.x - 500, o.y - 500) - 100) < 0.1) ++moves_on_circle;
    CHECK_EQ(moves_on_circle, 2);
    d.clpcir = 0;
    end(b);
}

// The axes and maps hand the layer its clip region; the layer alone decides
// by it.
TEST(axis_region_and_map_rules_handed_to_the_layer) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    const int rect[4] = {100, 100, 900, 900};
    const double circ[3] = {500, 500, 100};
    qqaxclip(b, rect, circ, 0, 0);
    qqclip(b, 0);
    CHECK_EQ(b->dev.clpx1, 100);
    CHECK_EQ(b->dev.clpcir, 0);
    qqmapclip(b, 1, 0, 0);  // a map with a seam: a jump across it is dropped
    segment(b, 50, 500, 950, 500);
    qqflsh(b);
    CHECK_EQ(strokes(rec).size(), 0u);
    qqmapclip(b, 0, 0, 0);
    segment(b, 50, 500, 950, 500);
    qqflsh(b);
    CHECK_EQ(strokes(rec).size(), 1u);
    qqclip(b, 1);
    // A round map frame: the circle under clpmod AUTO, the rectangle under
    // RECT; a polar system: the circle under RECT too.
    qqaxclip(b, rect, circ, 2, 0);
    qqclip(b, 0);
    CHECK_EQ(b->dev.clpcir, 1);
    qqmapclip(b, 0, 1, 0);  // and no chord of a line that passes the frame
    rec.ops.clear();
    segment(b, 300, 500, 700, 500);
    qqflsh(b);
    CHECK_EQ(strokes(rec).size(), 0u);
    qqclip(b, 1);
    clpmod("RECT");
    qqclip(b, 0);
    CHECK_EQ(b->dev.clpcir, 0);
    qqclip(b, 1);
    qqaxclip(b, rect, circ, 1, 0);
    qqclip(b, 0);
    CHECK_EQ(b->dev.clpcir, 1);
    CHECK_EQ(b->dev.ccr, 100.0);
    qqclip(b, 1);
    qqmapclip(b, 0, 0, 0);
    end(b);
}

TEST(dash_pattern_walks_across_segments_and_lines) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    DeviceState &d = b->dev;
    d.dshn = 2;
    d.dshl[0] = 10;  // draw
    d.dshl[1] = 5;   // gap
    qqdshres(b);
    qqmove(b, 0, 0);
    qqdraw(b, 12, 0);   // dash 0-10, gap runs on
    qqdraw(b, 12, 20);  // gap ends at 3, dash 3-13, gap, dash from 18
    qqflsh(b);
    expect_strokes(rec, {{0, 0, 10, 0}, {12, 3, 12, 13}, {12, 18, 12, 20}});
    // A new line goes on with the pattern where the last one stopped:
    // 8 of the dash are left.
    CHECK_NEAR(d.dsrem, 8, 1e-4);
    rec.ops.clear();
    qqmove(b, 0, 50);
    qqdraw(b, 25, 50);
    qqflsh(b);
    expect_strokes(rec, {{0, 50, 8, 50}, {13, 50, 23, 50}});
    // Resetting the pattern starts it anew.
    qqdshres(b);
    CHECK_EQ(d.dsidx, 1);
    CHECK_EQ(d.dspen, 0);
    CHECK_NEAR(d.dsrem, 10, 0);
    d.dshn = 1;
    end(b);
}

TEST(parallel_offset_shifts_each_segment_and_joins_them) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    b->dev.lnoff = 3;
    qqmove(b, 100, 100);
    qqdraw(b, 200, 100);  // shifted up the page by 3
    qqdraw(b, 200, 200);  // shifted right by 3, joined by a draw
    qqflsh(b);
    expect_strokes(rec, {{100, 97, 200, 97}, {200, 97, 203, 100}, {203, 100, 203, 200}});
    CHECK_EQ(rec.count('m'), 1);
    // The pen stays on the line itself.
    CHECK_NEAR(b->dev.curx, 200, 0);
    CHECK_NEAR(b->dev.cury, 200, 0);
    b->dev.lnoff = 0;
    end(b);
}

TEST(absolute_draws_do_not_double_points) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    DeviceState &d = b->dev;
    d.nxsh = 1000;  // no origin shift for the absolute routines
    qqrmov(b, 10, 10);
    qqrdrw(b, 10, 10);  // a draw that goes nowhere...
    CHECK_EQ(d.npol, 2);
    qqrdrw(b, 20, 10);  // ...gives way to the next point
    CHECK_EQ(d.npol, 2);
    CHECK_NEAR(d.polx[1], 20, 0);
    qqrdrw(b, 20, 10);
    qqrdrw(b, 20, 30);
    qqrdrw(b, 20, 30);
    CHECK_EQ(d.npol, 3);
    qqflsh(b);
    expect_strokes(rec, {{10, 10, 20, 10}, {20, 10, 20, 30}}, 0);
    // qqdraw keeps every point, repeated or not.
    d.nxsh = 0;
    qqmove(b, 0, 0);
    qqdraw(b, 0, 0);
    qqdraw(b, 0, 0);
    CHECK_EQ(d.npol, 3);
    qqflsh(b);
    end(b);
}

TEST(thick_two_point_line_passes_grow_to_half_the_width) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    lncap("CUT");
    linwid(10);  // (10 + 1) / 3 = 3 passes: 1.5, 3, and 10 / 2
    rec.ops.clear();
    qqmove(b, 100, 100);
    qqdraw(b, 300, 100);
    qqflsh(b);
    auto pieces = rec.pieces();
    CHECK_EQ(pieces.size(), 4u);
    const double half[3] = {1.5, 3, 5};
    for (size_t k = 1; k < pieces.size() && k <= 3; ++k) {
        auto p = points(pieces[k]);
        CHECK_EQ(p.size(), 5u);  // a rectangle, closed
        double h = half[k - 1];
        for (auto [x, y] : p) {
            CHECK(std::fabs(x - 100) < 1e-9 || std::fabs(x - 300) < 1e-9);  // CUT: no cap
            CHECK_NEAR(std::fabs(y - 100), h, 1e-9);
        }
        CHECK(p.front() == p.back());
    }
    end(b);
}

TEST(thick_open_polyline_with_sharp_and_round_joins) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    const double x[3] = {100, 200, 200}, y[3] = {100, 100, 200};
    auto draw = [&]() {
        rec.ops.clear();
        qqmove(b, x[0], y[0]);
        qqdraw(b, x[1], y[1]);
        qqdraw(b, x[2], y[2]);
        qqflsh(b);
        auto pieces = rec.pieces();
        return pieces.size() == 2 ? points(pieces[1]) : std::vector<std::pair<double, double>>{};
    };
    linwid(4);  // one pass at half-width 2; the default cap LONG reaches 2 beyond the ends
    lnjoin("SHAR");
    auto p = draw();
    // Outer corner (202, 98) and inner corner (198, 102) by intersection.
    const std::vector<std::pair<double, double>> sharp = {{98, 98},   {202, 98},  {202, 202}, {198, 202},
                                                          {198, 102}, {98, 102},  {98, 98}};
    CHECK_EQ(p.size(), sharp.size());
    for (size_t i = 0; i < p.size() && i < sharp.size(); ++i) {
        CHECK_NEAR(p[i].first, sharp[i].first, 1e-9);
        CHECK_NEAR(p[i].second, sharp[i].second, 1e-9);
    }
    // A round or truncated join goes to the end of one offset segment and
    // then to the start of the next.
    lnjoin("TRUN");
    p = draw();
    const std::vector<std::pair<double, double>> cut = {{98, 98},   {200, 98},  {202, 100}, {202, 202}, {198, 202},
                                                        {198, 100}, {200, 102}, {98, 102},  {98, 98}};
    CHECK_EQ(p.size(), cut.size());
    for (size_t i = 0; i < p.size() && i < cut.size(); ++i) {
        CHECK_NEAR(p[i].first, cut[i].first, 1e-9);
        CHECK_NEAR(p[i].second, cut[i].second, 1e-9);
    }
    // A sharp join whose miter passes the limit is cut as well.
    lnjoin("SHAR");
    lnmlt(1.2);  // 1 / sin 45 degrees = 1.41 > 1.2
    CHECK_EQ(draw().size(), cut.size());
    end(b);
}

TEST(thick_closed_square_has_sharp_outlines_on_both_sides) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    lnjoin("SHAR");
    linwid(10);
    rec.ops.clear();
    const double x[5] = {100, 200, 200, 100, 100}, y[5] = {100, 100, 200, 200, 100};
    qqmove(b, x[0], y[0]);
    for (int i = 1; i < 5; ++i) qqdraw(b, x[i], y[i]);
    qqflsh(b);
    auto pieces = rec.pieces();
    // The square itself, then for each of 3 passes an outline outside and
    // one inside, each through four corners and back to its start.
    CHECK_EQ(pieces.size(), 7u);
    const double half[3] = {1.5, 3, 5};
    for (size_t k = 1; k < pieces.size() && k < 7; ++k) {
        double h = half[(k - 1) / 2];
        double out = (k % 2 == 1) ? h : -h;  // first the side to the left of the way round: outside
        auto p = points(pieces[k]);
        CHECK_EQ(p.size(), 5u);
        CHECK(p.front() == p.back());
        for (auto [px, py] : p) {
            CHECK(std::fabs(px - (100 - out)) < 1e-9 || std::fabs(px - (200 + out)) < 1e-9);
            CHECK(std::fabs(py - (100 - out)) < 1e-9 || std::fabs(py - (200 + out)) < 1e-9);
        }
    }
    end(b);
}

TEST(round_caps_are_half_circles_round_the_ends) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    lncap("ROUND");
    linwid(20);  // 7 passes; the last at half-width 10 has trunc(pi * 10 / 2.5) = 12 cap steps
    rec.ops.clear();
    qqmove(b, 100, 100);
    qqdraw(b, 300, 100);
    qqflsh(b);
    auto pieces = rec.pieces();
    CHECK_EQ(pieces.size(), 8u);
    if (pieces.size() == 8) {
        // The first pass (half-width 1.5) is too narrow for a cap.
        CHECK_EQ(points(pieces[1]).size(), 5u);
        auto p = points(pieces.back());
        int far = 0, near = 0;
        for (auto [x, y] : p) {
            if (x > 300 + 1e-9) {
                CHECK_NEAR(std::hypot(x - 300, y - 100), 10, 1e-9);
                ++far;
            }
            if (x < 100 - 1e-9) {
                CHECK_NEAR(std::hypot(x - 100, y - 100), 10, 1e-9);
                ++near;
            }
        }
        CHECK_EQ(far, 12);
        CHECK_EQ(near, 12);
    }
    end(b);
}

TEST(thick_outlines_are_clipped) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    linwid(10);
    clpwin(0, 0, 201, 201);
    rec.ops.clear();
    qqmove(b, 100, 198);
    qqdraw(b, 150, 198);
    qqflsh(b);
    for (const auto &o : rec.ops)
        if (o.kind == 'm' || o.kind == 'd') CHECK(o.y <= 200.001);
    end(b);
}

TEST(colour_of_an_explicit_value_on_an_8_bit_device_is_the_nearest_entry) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    CHECK_EQ(b->sess.colbits, 8);
    auto distance = [&](int i, int r, int g, int bl) {
        int e = b->clr.colmap[i];
        return std::abs(((e >> 16) & 255) - r) + std::abs(((e >> 8) & 255) - g) + std::abs((e & 255) - bl);
    };
    // The chosen entry is as near as any, and nearer than every one before it.
    auto is_nearest = [&](int chosen, int r, int g, int bl, int entries) {
        int dc = distance(chosen, r, g, bl);
        for (int i = 0; i < entries; ++i)
            if (distance(i, r, g, bl) < dc || (i < chosen && distance(i, r, g, bl) == dc)) return false;
        return true;
    };
    const int tests[][3] = {{250, 5, 5}, {0, 0, 0}, {255, 255, 255}, {10, 200, 90}, {128, 128, 128}};
    for (const auto &t : tests) {
        rec.ops.clear();
        qqsetc(b, 0x01000000 | (t[2] << 16) | (t[1] << 8) | t[0]);
        CHECK_EQ(rec.count('c'), 1);
        const auto &o = rec.ops.back();
        CHECK(is_nearest(o.index, t[0], t[1], t[2], 256));
        int e = b->clr.colmap[o.index];
        CHECK_EQ(o.r, (e >> 16) & 255);
        CHECK_EQ(o.bl, e & 255);
    }
    // The small table is searched in its 9 entries only.
    setvlt("SMALL");
    rec.ops.clear();
    qqsetc(b, 0x01000000 | (90 << 16) | (200 << 8) | 10);
    CHECK(rec.ops.back().index < 9);
    CHECK(is_nearest(rec.ops.back().index, 10, 200, 90, 9));
    // An index is taken modulo 256.
    qqsetc(b, 258);
    CHECK_EQ(rec.ops.back().index, 2);
    // A deep device gets the explicit colour as it stands.
    b->sess.colbits = 24;
    qqsetc(b, 0x01000000 | (3 << 16) | (2 << 8) | 1);
    CHECK_EQ(rec.ops.back().r, 1);
    CHECK_EQ(rec.ops.back().g, 2);
    CHECK_EQ(rec.ops.back().bl, 3);
    b->sess.colbits = 8;
    end(b);
}

TEST(rectangles_markers_characters_go_to_the_driver_or_fall_back_to_lines) {
    testkit::RecordingDriver rec;
    glbblk *b = session(rec);
    // Whole: to the driver, cut to the clip window, origin shift added.
    b->dev.nxsh = 10;
    qqfrect(b, 2900, 50, 3100, 40, 7);
    CHECK_EQ(rec.count('r'), 1);
    CHECK_EQ(rec.ops.back().x, 2910.0);
    CHECK_EQ(rec.ops.back().r, b->core.nxp);
    CHECK_EQ(rec.ops.back().y, 40.0);
    CHECK_EQ(rec.ops.back().value, 7);
    b->dev.nxsh = 0;
    qqmark(b, 3, 100, 100, 20);
    QQHwChar c{65, 5, 6};
    qqhwchar(b, &c);
    CHECK_EQ(rec.count('k'), 1);
    CHECK_EQ(rec.count('t'), 1);
    CHECK_EQ(rec.count('d'), 0);
    // A driver without rectangles: lines 1.4 apart from the top (100,
    // 101.4, 102.8) and one at the lower edge, in the rectangle's colour,
    // and the colour comes back.
    rec.ops.clear();
    int before = b->clr.curclr;
    const DriverOps *full = b->dev.drv;
    DriverOps plain = *full;
    plain.fill_rect = nullptr;
    b->dev.drv = &plain;
    qqfrect(b, 100, 100, 150, 104, 5);
    b->dev.drv = full;
    CHECK_EQ(rec.count('m'), 4);
    CHECK_EQ(rec.count('d'), 4);
    CHECK_EQ(rec.ops.front().value, 5);
    std::vector<double> rows;
    for (const auto &o : rec.ops)
        if (o.kind == 'm') rows.push_back(o.y);
    CHECK(rows.size() == 4 && std::fabs(rows[1] - 101.4) < 1e-9 && rows[3] == 104.0);
    CHECK_EQ(b->clr.curclr, before);
    // A refused marker is drawn as lines: kind 3 is a plus of two strokes.
    rec.ops.clear();
    rec.answer = 0;
    qqmark(b, 3, 100, 100, 20);
    CHECK_EQ(rec.count('k'), 1);
    CHECK_EQ(rec.count('m'), 2);
    CHECK_EQ(rec.count('d'), 2);
    // A refused character goes to the stroke hook, none draws nothing.
    static int stroked = 0;
    b->dev.strokechar = [](DeviceBlock *, const QQHwChar *c) { stroked = c->code; };
    c.code = 66;
    qqhwchar(b, &c);
    CHECK_EQ(stroked, 66);
    b->dev.strokechar = nullptr;
    // Without the driver's sector or polygon, a sector and a triangle are
    // lines in their colour, the colour coming back.
    rec.ops.clear();
    qqsector(b, 500, 500, 0, 100, 0, 90, 9);
    const double tx[3] = {100, 200, 150}, ty[3] = {100, 100, 140};
    qqtriangle(b, tx, ty);
    CHECK(rec.count('d') >= 100 + 40);
    CHECK_EQ(rec.ops.front().value, 9);
    CHECK_EQ(b->clr.curclr, before);
    // Through the user transformation every shape is lines.
    rec.ops.clear();
    rec.answer = 1;
    b->dev.trfon = 1;
    const double id[6] = {1, 0, 0, 0, 1, 0};
    for (int i = 0; i < 6; ++i) b->dev.trf[i] = id[i];
    qqmark(b, 0, 100, 100, 20);
    qqfrect(b, 10, 10, 20, 11, 3);
    CHECK_EQ(rec.count('k') + rec.count('r'), 0);
    CHECK(rec.count('d') >= 4 + 2);
    b->dev.trfon = 0;
    end(b);
}
