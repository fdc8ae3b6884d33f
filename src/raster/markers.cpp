// Markers drawn straight onto the canvas: each kind combines a few simple
// shapes (plus, cross, square, octagon, triangles, diamond, circles, discs).
#include "raster/canvas_state.h"
#include "raster/paint.h"
#include "raster/primitives.h"

namespace {

enum Shape {
    PLUS = 1,
    CROSS = 2,
    SQUARE = 4,
    OCTAGON = 8,
    TRI_UP = 16,
    TRI_DOWN = 32,
    DIAMOND = 64,
    CIRCLE = 128,
    HALF_CIRCLE = 256,
    DISC = 512,
    HALF_DISC = 1024,
    FILLED = 2048,
};

// The shapes of marker kinds 0 to 23.
const int kMarkers[24] = {
    SQUARE,             // 0
    OCTAGON,            // 1
    TRI_UP,             // 2
    PLUS,               // 3
    CROSS,              // 4
    DIAMOND,            // 5
    TRI_DOWN,           // 6
    SQUARE | CROSS,     // 7
    PLUS | CROSS,       // 8
    PLUS | DIAMOND,     // 9
    PLUS | OCTAGON,     // 10
    TRI_UP | TRI_DOWN,  // 11
    PLUS | SQUARE,      // 12
    CROSS | OCTAGON,    // 13
    SQUARE | TRI_UP,    // 14
    CIRCLE,             // 15
    SQUARE | FILLED,    // 16
    OCTAGON | FILLED,   // 17
    TRI_UP | FILLED,    // 18
    DIAMOND | FILLED,   // 19
    TRI_DOWN | FILLED,  // 20
    DISC,               // 21
    HALF_CIRCLE,        // 22
    HALF_DISC,          // 23
};

void line(qqcanvas *cv, int xa, int ya, int xb, int yb) {
    const int x[2] = {xa, xb}, y[2] = {ya, yb};
    qqcpolyline(cv, x, y, 2);
}

// A closed outline through n corners, filled first when asked.
void outline(qqcanvas *cv, const int *x, const int *y, int n, bool filled) {
    if (filled) {
        double fx[8], fy[8];
        for (int i = 0; i < n; ++i) {
            fx[i] = x[i];
            fy[i] = y[i];
        }
        qqcfill(cv, fx, fy, n);
    }
    int cx[9], cy[9];
    for (int i = 0; i < n; ++i) {
        cx[i] = x[i];
        cy[i] = y[i];
    }
    cx[n] = x[0];
    cy[n] = y[0];
    qqcpolyline(cv, cx, cy, n + 1);
}

// The midpoint circle; with a width above 1 each point gets neighbours
// across the curve: along the column near top and bottom, along the row
// near the sides.
template <class Pen>
void circle(const raster::Painter<Pen> &p, int x, int y, int r, bool half) {
    const int lw = p.c.lw;
    auto dot = [&](int px, int py, bool vertical) {
        if (!p.inside(px, py)) return;
        p.pen.put(p.at(px, py));
        for (int k = 1; k < lw; ++k) {
            int o = raster::side_offset(k);
            if (vertical)
                p.plot(px, py + o);
            else
                p.plot(px + o, py);
        }
    };
    auto eight = [&](int a, int b) {
        dot(x + a, y - b, true);
        dot(x - a, y - b, true);
        dot(x + b, y - a, false);
        dot(x - b, y - a, false);
        if (half) return;
        dot(x + a, y + b, true);
        dot(x - a, y + b, true);
        dot(x + b, y + a, false);
        dot(x - b, y + a, false);
    };
    int a = 0, b = r, d = 1 - r;
    eight(a, b);
    while (a < b) {
        ++a;
        if (d >= 0) {
            --b;
            d += 2 * (a - b) + 1;
        } else {
            d += 2 * a + 1;
        }
        eight(a, b);
    }
}

void paint_circle(qqcanvas *cv, int x, int y, int r, bool half) {
    if (cv->rgbcnv)
        circle(raster::Painter<raster::RgbPen>(*cv, raster::RgbPen(*cv)), x, y, r, half);
    else
        circle(raster::Painter<raster::IndexPen>(*cv, raster::IndexPen(*cv)), x, y, r, half);
}

}  // namespace

void qqcmark(qqcanvas *cv, int kind, int x, int y, int size) noexcept {
    if (!cv->pix || kind < 0 || kind > 23) return;
    qqcflush(cv);
    unsigned char clipon = cv->clipon;
    cv->clipon = 1;
    int shape = kMarkers[kind], r = size / 2;
    bool filled = (shape & FILLED) != 0;
    if (shape & SQUARE) {
        const int sx[4] = {x - r, x + r, x + r, x - r}, sy[4] = {y - r, y - r, y + r, y + r};
        outline(cv, sx, sy, 4, filled);
    }
    if (shape & OCTAGON) {
        int q = r / 2;
        const int ox[8] = {x - q, x + q, x + r, x + r, x + q, x - q, x - r, x - r};
        const int oy[8] = {y - r, y - r, y - q, y + q, y + r, y + r, y + q, y - q};
        outline(cv, ox, oy, 8, filled);
    }
    if (shape & TRI_UP) {
        const int tx[3] = {x, x + r, x - r}, ty[3] = {y - r, y + r, y + r};
        outline(cv, tx, ty, 3, filled);
    }
    if (shape & TRI_DOWN) {
        const int tx[3] = {x, x - r, x + r}, ty[3] = {y + r, y - r, y - r};
        outline(cv, tx, ty, 3, filled);
    }
    if (shape & DIAMOND) {
        const int dx[4] = {x, x + r, x, x - r}, dy[4] = {y - r, y, y + r, y};
        outline(cv, dx, dy, 4, filled);
    }
    if (shape & PLUS) {
        line(cv, x - r, y, x + r, y);
        line(cv, x, y - r, x, y + r);
    }
    if (shape & CROSS) {
        line(cv, x - r, y - r, x + r, y + r);
        line(cv, x - r, y + r, x + r, y - r);
    }
    if (shape & CIRCLE) paint_circle(cv, x, y, r, false);
    if (shape & HALF_CIRCLE) {
        paint_circle(cv, x, y, r, true);
        line(cv, x - r, y, x + r, y);
    }
    if (shape & DISC) qqcdisc(cv, x, y, r, 0);
    if (shape & HALF_DISC) qqcdisc(cv, x, y, r, 1);
    cv->clipon = clipon;
}
