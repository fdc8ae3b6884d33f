// Markers drawn straight onto the canvas: each kind combines a few simple
// shapes (plus, cross, square, octagon, triangles, diamond, circles, discs).
#include "raster/canvas_state.h"
#include "raster/marker_figure.h"
#include "raster/paint.h"
#include "raster/primitives.h"

namespace {

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

namespace {

// The canvas's own strokes of a marker figure.
struct CanvasFigure {
    qqcanvas *cv;
    void polygon(const int *x, const int *y, int n, bool filled) { outline(cv, x, y, n, filled); }
    void segment(int xa, int ya, int xb, int yb) { line(cv, xa, ya, xb, yb); }
    void circle(int x, int y, int r, bool half, bool filled) {
        if (filled) {
            qqcdisc(cv, x, y, r, half ? 1 : 0);
            return;
        }
        paint_circle(cv, x, y, r, half);
        if (half) line(cv, x - r, y, x + r, y);
    }
};

}  // namespace

void qqcmark(qqcanvas *cv, int kind, int x, int y, int size) noexcept {
    if (!cv->pix || kind < 0 || kind > 23) return;
    qqcflush(cv);
    unsigned char clipon = cv->clipon;
    cv->clipon = 1;
    CanvasFigure sink{cv};
    qqmarkfigure(kind, x, y, size / 2, sink);
    cv->clipon = clipon;
}
