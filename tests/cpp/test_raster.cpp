// The raster primitives on canvases of their own, and through the device
// layer of a PNG session.
#include <cmath>
#include <cstdlib>
#include <set>
#include <string>
#include <unistd.h>
#include <utility>

#include "core/guard.h"
#include "devices/device.h"
#include "glbblk.h"
#include "kolvex.h"
#include "raster/canvas.h"
#include "raster/primitives.h"
#include "testkit.h"

namespace {

// A small canvas with a grey table, drawing in index 200 (or pure red on
// an RGB canvas).
struct Canvas {
    qqcanvas cv{};
    explicit Canvas(int w = 40, int h = 30, bool rgb = false) {
        qqcnvnew(&cv, w, h, rgb, 0);
        int grey[256];
        for (int i = 0; i < 256; ++i) grey[i] = i << 16 | i << 8 | i;
        qqctable(&cv, grey, 3);
        qqcsetc(&cv, rgb ? 0x010000FF : 200);
    }
    ~Canvas() { qqcnvfree(&cv); }
    bool on(int x, int y) const {
        if (x < 0 || y < 0 || x >= cv.cw || y >= cv.ch) return false;
        const unsigned char *p = cv.pixbase + (size_t)y * cv.rowb + (size_t)x * (cv.rgbcnv ? 4 : 1);
        return cv.rgbcnv ? p[0] != 0 || p[1] != 0 || p[2] != 0 : *p != 0;
    }
    int count() const {
        int n = 0;
        for (int y = 0; y < cv.ch; ++y)
            for (int x = 0; x < cv.cw; ++x) n += on(x, y);
        return n;
    }
    std::set<std::pair<int, int>> pixels() const {
        std::set<std::pair<int, int>> s;
        for (int y = 0; y < cv.ch; ++y)
            for (int x = 0; x < cv.cw; ++x)
                if (on(x, y)) s.insert({x, y});
        return s;
    }
    const unsigned char *rgba(int x, int y) const {
        return cv.pixbase + (size_t)y * cv.rowb + 4 * x;
    }
    void line(int x0, int y0, int x1, int y1) {
        qqcline(&cv, x0, y0, 3);
        qqcline(&cv, x1, y1, 2);
        qqcflush(&cv);
    }
};

}  // namespace

TEST(thin_lines_reach_both_ends_and_step_one_pixel_at_a_time) {
    for (int dx = -9; dx <= 9; ++dx)
        for (int dy = -9; dy <= 9; ++dy) {
            Canvas c(30, 30);
            c.line(15, 15, 15 + dx, 15 + dy);
            CHECK(c.on(15, 15));
            CHECK(c.on(15 + dx, 15 + dy));
            // A thin line has exactly one pixel per step of its longer axis.
            CHECK_EQ(c.count(), std::max(std::abs(dx), std::abs(dy)) + 1);
        }
}

TEST(clipped_line_covers_the_same_pixels_both_ways) {
    for (int dx = -7; dx <= 7; dx += 2)
        for (int dy = -11; dy <= 11; dy += 3) {
            Canvas a(30, 30), b(30, 30);
            qqcoption(&a.cv, 11, 11);  // an end beyond the clip forces the tested line
            qqcoption(&b.cv, 11, 11);
            a.line(10, 15, 10 + dx, 15 + dy);
            b.line(10 + dx, 15 + dy, 10, 15);
            CHECK(a.pixels() == b.pixels());
        }
}

TEST(clip_rectangle_holds_for_lines_fills_and_markers) {
    Canvas c(40, 30);
    qqcoption(&c.cv, 11, 5);
    qqcoption(&c.cv, 12, 6);
    qqcoption(&c.cv, 13, 20);
    qqcoption(&c.cv, 14, 18);
    c.line(0, 0, 39, 29);
    c.line(0, 12, 39, 12);
    const double px[3] = {-10, 60, 10}, py[3] = {-5, 10, 50};
    qqcfill(&c.cv, px, py, 3);
    qqcoption(&c.cv, 26, 5);
    qqcmark(&c.cv, 21, 20, 18, 16);
    c.line(3, 3, 30, 25);
    for (auto &p : c.pixels()) {
        CHECK(p.first >= 5 && p.first <= 20);
        CHECK(p.second >= 6 && p.second <= 18);
    }
    CHECK(c.on(5, 12) && c.on(20, 12));
}

TEST(points_are_collected_and_repeats_dropped) {
    Canvas c;
    qqcline(&c.cv, 5, 5, 3);
    qqcline(&c.cv, 5, 5, 2);  // a draw to the pen's own place
    CHECK_EQ(c.count(), 0);   // still collected
    qqcflush(&c.cv);
    CHECK_EQ(c.count(), 1);
    Canvas d;
    qqcline(&d.cv, 2, 2, 3);
    for (int i = 0; i < 5; ++i) qqcline(&d.cv, 12, 2, 2);
    CHECK_EQ(d.cv.ptn, 2);
    qqcflush(&d.cv);
    CHECK_EQ(d.count(), 11);
    // A full buffer is drawn at once and its last point starts the next.
    Canvas e(120, 10);
    qqcline(&e.cv, 0, 0, 3);
    for (int i = 1; i < 100; ++i) qqcline(&e.cv, i, i % 2, 2);
    CHECK_EQ(e.cv.ptn, 1);
    CHECK(e.on(99, 1));
}

TEST(widths_2_and_3_add_rows_and_4_makes_a_band) {
    Canvas two, three, four;
    qqcoption(&two.cv, 26, 2);
    qqcoption(&three.cv, 26, 3);
    qqcoption(&four.cv, 26, 4);
    qqcoption(&four.cv, 27, 0);  // CUT: nothing beyond the ends
    two.line(5, 10, 30, 10);
    three.line(5, 10, 30, 10);
    four.line(5, 10, 30, 10);
    CHECK(two.on(10, 10) && two.on(10, 11) && !two.on(10, 9));
    CHECK(three.on(10, 9) && three.on(10, 11) && !three.on(10, 12) && !three.on(10, 8));
    // Polygon rows are half open at the top: four rows.
    CHECK(four.on(10, 9) && four.on(10, 12) && !four.on(10, 13) && !four.on(10, 8));
    CHECK(!four.on(4, 10) && !four.on(31, 10));
    // The same widths across a steep line go sideways.
    Canvas steep;
    qqcoption(&steep.cv, 26, 3);
    steep.line(10, 2, 12, 25);
    CHECK(steep.on(9, 2) && steep.on(11, 2));
}

TEST(caps_of_a_thick_segment) {
    for (int cap = 0; cap < 3; ++cap) {
        Canvas c;
        qqcoption(&c.cv, 26, 8);
        qqcoption(&c.cv, 27, cap);
        c.line(10, 15, 30, 15);
        bool beyond = c.on(33, 15), corner = c.on(33, 19);
        if (cap == 0) CHECK(!c.on(32, 15) && !beyond);
        if (cap == 1) CHECK(beyond && !corner);  // a disc: no corner
        if (cap == 2) CHECK(beyond && corner);   // a square end
    }
}

TEST(joins_of_a_closed_square) {
    // SHAR fills the outer corner, ROUN rounds it, TRUN cuts it; none
    // draws caps on a closed line.
    bool corner[3];
    for (int join = 0; join < 3; ++join) {
        Canvas c(60, 60);
        qqcoption(&c.cv, 26, 10);
        qqcoption(&c.cv, 28, join);
        const int x[5] = {15, 45, 45, 15, 15}, y[5] = {15, 15, 45, 45, 15};
        qqcpolyline(&c.cv, x, y, 5);
        corner[join] = c.on(11, 11);
        CHECK(c.on(15, 15) && c.on(45, 45) && c.on(30, 11) && !c.on(30, 30));
    }
    CHECK(corner[0]);
    CHECK(!corner[1]);
    CHECK(!corner[2]);
}

TEST(sharp_join_respects_the_miter_limit) {
    // A nearly reversing line: the miter point lies far out.
    Canvas a(80, 40), b(80, 40);
    for (Canvas *c : {&a, &b}) {
        qqcoption(&c->cv, 26, 6);
        qqcoption(&c->cv, 28, 0);
        qqcoption(&c->cv, 27, 0);
    }
    b.cv.miter = 50;
    const int x[3] = {5, 40, 5}, y[3] = {18, 20, 22};
    qqcpolyline(&a.cv, x, y, 3);
    qqcpolyline(&b.cv, x, y, 3);
    CHECK(!a.on(50, 20));
    CHECK(b.on(50, 20));
}

TEST(polygon_rows_and_overflow) {
    Canvas c;
    const double x[4] = {5, 20, 20, 5}, y[4] = {5, 5, 12, 12};
    CHECK_EQ(qqcfill(&c.cv, x, y, 4), 0);
    // Both columns at the ends are filled; the top edge is horizontal and
    // crosses no row, so the rows run from 6 to 12.
    CHECK_EQ(c.count(), 16 * 7);
    CHECK(!c.on(10, 5) && c.on(10, 6) && c.on(5, 12) && c.on(20, 12));
    // A comb with 100 teeth crosses row 5 two hundred times.
    Canvas wide(400, 20);
    double cx[402], cy[402];
    int n = 0;
    for (int k = 0; k < 100; ++k) {
        cx[n] = 2 + 4 * k;
        cy[n++] = 10;
        cx[n] = 4 + 4 * k;
        cy[n++] = 1;
    }
    cx[n] = 400;
    cy[n++] = 15;
    cx[n] = 0;
    cy[n++] = 15;
    CHECK_EQ(qqcfill(&wide.cv, cx, cy, n), 1);
}

TEST(too_many_crossings_warn_once_through_the_driver) {
    setfil("comb.png");
    filmod("DELE");
    metafl("PNG");
    kolini();
    glbblk *b = qqglbblk(qqcur());
    b->diag.outu = 0;
    double x[202], y[202];
    for (int k = 0; k < 101; ++k) {
        x[2 * k] = 10 + 25 * k;
        y[2 * k] = 1000;
        x[2 * k + 1] = 20 + 25 * k;
        y[2 * k + 1] = 100;
    }
    int before = b->diag.nwarn;
    CHECK_EQ(b->dev.drv->fill_polygon(b, x, y, 202), 1);
    CHECK_EQ(b->diag.nwarn - before, 1);
    kolfin();
}

TEST(antialiasing_only_on_rgb_thin_lines) {
    Canvas c(40, 30, true);
    qqcoption(&c.cv, 34, 2);
    c.line(2, 2, 22, 12);
    int partial = 0;
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x) {
            int r = c.rgba(x, y)[0];
            partial += r > 0 && r < 255;
        }
    CHECK(partial > 10);
    Canvas diag(40, 30, true);
    qqcoption(&diag.cv, 34, 2);
    diag.line(2, 2, 20, 20);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x) CHECK(diag.rgba(x, y)[0] == 0 || diag.rgba(x, y)[0] == 255);
    Canvas ind(40, 30);
    qqcoption(&ind.cv, 34, 2);
    ind.line(2, 2, 22, 12);
    CHECK_EQ(ind.count(), 21);
}

TEST(markers_discs_and_circles) {
    Canvas c(60, 60);
    qqcmark(&c.cv, 21, 20, 20, 10);  // disc of radius 5
    CHECK(c.on(20, 15) && c.on(25, 20) && c.on(20, 20) && !c.on(24, 16) && !c.on(26, 20));
    Canvas r(60, 60);
    qqcmark(&r.cv, 15, 30, 30, 20);  // circle of radius 10
    CHECK(r.on(40, 30) && r.on(30, 20) && r.on(20, 30) && !r.on(30, 30));
    Canvas h(60, 60);
    qqcmark(&h.cv, 23, 30, 30, 20);  // half disc: the upper half
    CHECK(h.on(30, 22) && !h.on(30, 38));
    Canvas s(60, 60);
    qqcmark(&s.cv, 16, 30, 30, 10);  // filled square
    CHECK(s.on(30, 30) && s.on(25, 25) && s.on(35, 35) && !s.on(36, 30));
}

TEST(nearest_colour_of_the_canvas) {
    Canvas c;
    CHECK_EQ(qqnearc(&c.cv, 0, 0, 0), 0);
    CHECK_EQ(qqnearc(&c.cv, 255, 255, 255), 255);
    CHECK_EQ(qqnearc(&c.cv, 101, 104, 101), 101);
    // Setting an explicit colour on an index canvas takes that entry.
    qqcsetc(&c.cv, 0x01656865);
    CHECK_EQ(c.cv.colidx, 101);
    CHECK_EQ(c.cv.colg, 101);
}

TEST(transparency_layer_composites_by_alpha) {
    imgfmt("RGB");
    setfil("layer.png");
    filmod("DELE");
    metafl("PNG");
    kolini();
    glbblk *b = qqglbblk(qqcur());
    b->diag.outu = 0;
    qqcanvas *cv = qqcanvasof(b);
    CHECK(cv != nullptr);
    if (cv) {
        tprval(0.5);  // alpha 128
        tprini();
        CHECK_EQ(cv->tprplane, 2);
        qqcrect(cv, 10, 10, 19, 19, 0x01FFFFFF);
        tprfin();
        CHECK_EQ(cv->tprplane, 1);
        // Base 0, layer 255, alpha 128: (129 * 255) >> 8.
        CHECK_EQ(cv->pixbase[(size_t)15 * cv->rowb + 15 * 4], 128);
        tprmod("NOOP", "BACK");
        tprini();
        qqcrect(cv, 30, 10, 39, 19, 0x01FFFFFF);
        tprfin();
        CHECK_EQ(cv->pixbase[(size_t)15 * cv->rowb + 35 * 4], 255);
        // Drawn twice over a half-covered base: no longer background.
        tprini();
        qqcrect(cv, 15, 15, 16, 16, 0x01FFFFFF);
        tprfin();
        CHECK_EQ(cv->pixbase[(size_t)15 * cv->rowb + 15 * 4], (129 * (255 - 128) >> 8) + 128);
    }
    kolfin();
    imgfmt("IND");
}

// The test page: a picture to look at, written through the device layer
// of a PNG session as a program would draw it.  tests/test_raster_page.py
// checks the file and its colours.
PAGE(raster_test_page) {
    // The page goes where the Python test asks for it (earlier tests may
    // have changed the directory).
    const char *dir = std::getenv("KOLVEX_PAGE_DIR");
    std::string name =
        std::string(dir ? dir : testkit::temp_dir().c_str()) + "/raster_test_page.png";
    setfil(name.c_str());
    filmod("DELE");
    scrmod("REVE");  // white sheet
    metafl("PNG");
    winsiz(1200, 850);
    kolini();
    glbblk *b = qqglbblk(qqcur());
    b->diag.outu = 0;
    const DriverOps *drv = b->dev.drv;
    setvlt("SMAL");
    color("FORE");
    pagera();
    // Rows of lines: widths 1 to 60 with each cap; the columns CUT, ROUN,
    // LONG in red, green, blue.
    const char *caps[3] = {"CUT", "ROUN", "LONG"};
    const int widths[6] = {1, 5, 8, 12, 25, 50};
    for (int c = 0; c < 3; ++c) {
        lncap(caps[c]);
        for (int k = 0; k < 6; ++k) {
            linwid(widths[k]);
            setclr(2 + c);
            double y = 150 + 150 * k;
            qqmove(b, 200 + 950 * c, y);
            qqdraw(b, 850 + 950 * c, y);
            qqflsh(b);
        }
    }
    // Zig-zags in orange with each join: SHAR, ROUN, TRUN.
    const char *joins[3] = {"SHAR", "ROUN", "TRUN"};
    lncap("CUT");
    lnmlt(4.0);
    linwid(50);
    for (int j = 0; j < 3; ++j) {
        lnjoin(joins[j]);
        setclr(6);
        double x0 = 200 + 950 * j;
        qqmove(b, x0, 1300);
        qqdraw(b, x0 + 160, 1050);
        qqdraw(b, x0 + 320, 1300);
        qqdraw(b, x0 + 480, 1050);
        qqdraw(b, x0 + 650, 1250);
        qqflsh(b);
    }
    // A closed blue square with round joins.
    lnjoin("ROUN");
    linwid(40);
    setclr(4);
    qqmove(b, 2450, 1450);
    qqdraw(b, 2800, 1450);
    qqdraw(b, 2800, 1800);
    qqdraw(b, 2450, 1800);
    qqdraw(b, 2450, 1450);
    qqflsh(b);
    // Filled polygons: a yellow star and a cyan concave shape.
    linwid(1);
    double sx[10], sy[10];
    for (int i = 0; i < 10; ++i) {
        double r = i % 2 ? 90 : 240, a = 3.14159265 * (0.5 + i / 5.0);
        sx[i] = 450 + r * std::cos(a);
        sy[i] = 1700 - r * std::sin(a);
    }
    setclr(5);
    drv->fill_polygon(b, sx, sy, 10);
    const double cx[6] = {850, 1250, 1250, 1050, 850, 950};
    const double cy[6] = {1450, 1450, 1950, 1650, 1950, 1700};
    setclr(7);
    drv->fill_polygon(b, cx, cy, 6);
    // The markers 0 to 23 in magenta, two rows of twelve.
    setclr(8);
    linwid(5);
    for (int k = 0; k < 24; ++k) qqmark(b, k, 1400 + 80 * (k % 12), 1550 + 200 * (k / 12), 60);
    kolfin();
    scrmod("AUTO");
}

// The canvas's own rectangle and markers against the layer's lines: the
// same shapes by two routes.
TEST(rectangles_and_markers_by_driver_and_by_lines_agree) {
    auto draw = [](bool hardware, std::set<std::pair<int, int>> &out) {
        metafl("VIRT");
        winsiz(600, 425);
        kolini();
        glbblk *b = qqglbblk(qqcur());
        b->diag.outu = 0;
        b->dev.hwshd = hardware;
        qqfrect(b, 100, 100, 700, 400, 0x01FF0000);
        qqsetc(b, 0x0100FF00);
        for (int k = 0; k < 24; ++k) {
            if (!hardware) b->dev.trfon = 1;  // the driver is skipped
            b->dev.trf[0] = b->dev.trf[4] = 1;
            qqmark(b, k, 1000 + 150 * (k % 12), 600 + 300 * (k / 12), 100);
            b->dev.trfon = 0;
        }
        qqflsh(b);
        const qqcanvas &cv = b->cnv.cv;
        for (int y = 0; y < cv.ch; ++y)
            for (int x = 0; x < cv.cw; ++x) {
                const unsigned char *p = cv.pixbase + (size_t)y * cv.rowb + (size_t)x * (cv.rgbcnv ? 4 : 1);
                if (*p != cv.pixbase[0]) out.insert({x, y});
            }
        kolfin();
    };
    std::set<std::pair<int, int>> hw, lines;
    draw(true, hw);
    draw(false, lines);
    size_t common = 0;
    for (const auto &p : lines) common += hw.count(p);
    CHECK(hw.size() > 1000);
    // Nearly every pixel of one route is one of the other.
    CHECK(common > 0.9 * lines.size());
    CHECK(common > 0.9 * hw.size());
}
