// Lines on the canvas: the collection of points, and the thin, wide and
// anti-aliased line of each segment.
//
// The device layer has clipped every point to the clip window already, so
// a polyline whose points all lie in the canvas's clip takes the fast line,
// which tests nothing per pixel.  Only lines that reach outside (markers,
// callers that switched clipping off) pay for a test per pixel.
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "raster/canvas.h"
#include "raster/paint.h"
#include "raster/primitives.h"

namespace raster {
namespace {

// A horizontal span with the extra rows of a line of width 2 or 3.  The
// first row is cut to the clip only when asked; extra rows always are.
template <class Pen>
void hspan(const Painter<Pen> &p, int y, int xa, int xb, int lw, bool clip) {
    if (clip) {
        p.span(y, xa, xb);
    } else {
        if (xa > xb) std::swap(xa, xb);
        p.pen.run(p.at(xa, y), xb - xa + 1);
    }
    for (int k = 1; k < lw; ++k) p.span(y + side_offset(k), xa, xb);
}

template <class Pen>
void vspan(const Painter<Pen> &p, int x, int ya, int yb, int lw, bool clip) {
    if (clip) {
        p.column(x, ya, yb);
    } else {
        if (ya > yb) std::swap(ya, yb);
        unsigned char *q = p.at(x, ya);
        for (int y = ya; y <= yb; ++y, q += p.rowb) p.pen.put(q);
    }
    for (int k = 1; k < lw; ++k) p.column(x + side_offset(k), ya, yb);
}

// The ends of a sloped segment in the order of the clipped line: rising y
// when y is the major direction, rising x otherwise.  Where the error term
// ties, the pixels depend on the direction of the walk; with the order
// fixed a segment covers the same pixels whichever way it is drawn.
void order_ends(int &xa, int &ya, int &xb, int &yb) {
    int dx = std::abs(xb - xa), dy = std::abs(yb - ya);
    if ((dx <= dy && ya > yb) || (dx > dy && xa > xb)) {
        std::swap(xa, xb);
        std::swap(ya, yb);
    }
}

// The line without any test: every pixel lies in the canvas.  With the
// clip on it is the clipped line without its tests, so it walks in that
// line's order; with the clip off it walks from the first point.
template <class Pen>
void fast_segment(const Painter<Pen> &p, int xa, int ya, int xb, int yb, bool ordered) {
    if (ya == yb) return hspan(p, ya, xa, xb, 1, false);
    if (xa == xb) return vspan(p, xa, ya, yb, 1, false);
    if (ordered) order_ends(xa, ya, xb, yb);
    int dx = std::abs(xb - xa), dy = std::abs(yb - ya);
    const std::ptrdiff_t px = Pen::size;
    std::ptrdiff_t sx = xb > xa ? px : -px;
    std::ptrdiff_t sy = yb > ya ? p.rowb : -(std::ptrdiff_t)p.rowb;
    std::ptrdiff_t at = (std::ptrdiff_t)ya * p.rowb + (std::ptrdiff_t)xa * Pen::size;
    if (dx <= dy) {
        int e = -(dy / 2);
        for (int i = 0; i <= dy; ++i) {
            p.pen.put(p.pix + at);
            at += sy;
            e += dx;
            if (e > 0) {
                e -= dy;
                at += sx;
            }
        }
    } else {
        int e = -(dx / 2);
        for (int i = 0; i <= dx; ++i) {
            p.pen.put(p.pix + at);
            at += sx;
            e += dy;
            if (e > 0) {
                e -= dx;
                at += sy;
            }
        }
    }
}

// The line with a clip test per pixel, for widths 1 to 3.  The ends are
// put in order first, so that a segment covers the same pixels whichever
// way it is drawn.
template <class Pen>
void clipped_segment(const Painter<Pen> &p, int xa, int ya, int xb, int yb, int lw) {
    if (ya == yb) return hspan(p, ya, xa, xb, lw, true);
    if (xa == xb) return vspan(p, xa, ya, yb, lw, true);
    order_ends(xa, ya, xb, yb);
    int dx = std::abs(xb - xa), dy = std::abs(yb - ya);
    int sx = xb > xa ? 1 : -1, sy = yb > ya ? 1 : -1;
    int x = xa, y = ya;
    if (dx <= dy) {
        int e = -(dy / 2);
        for (int i = 0; i <= dy; ++i) {
            if (p.inside(x, y)) {
                p.pen.put(p.at(x, y));
                for (int k = 1; k < lw; ++k)
                    if (p.col_in(x + side_offset(k))) p.pen.put(p.at(x + side_offset(k), y));
            }
            y += sy;
            e += dx;
            if (e > 0) {
                e -= dy;
                x += sx;
            }
        }
    } else {
        int e = -(dx / 2);
        for (int i = 0; i <= dx; ++i) {
            if (p.inside(x, y)) {
                p.pen.put(p.at(x, y));
                for (int k = 1; k < lw; ++k)
                    if (p.row_in(y + side_offset(k))) p.pen.put(p.at(x, y + side_offset(k)));
            }
            x += sx;
            e += dy;
            if (e > 0) {
                e -= dx;
                y += sy;
            }
        }
    }
}

// Mixes the pen's colour into a pixel with weight w (0 to 1).
void blend(const Painter<RgbPen> &p, int x, int y, double w) {
    if (!p.inside(x, y)) return;
    unsigned char *q = p.at(x, y);
    const qqcanvas &c = p.c;
    const unsigned char col[3] = {c.colr, c.colg, c.colb};
    for (int k = 0; k < 3; ++k) q[k] = (unsigned char)std::trunc(q[k] + w * (col[k] - q[k]) + 0.5);
    q[3] = c.alpha;
}

void smooth_segment(const Painter<RgbPen> &p, int xa, int ya, int xb, int yb) {
    if (ya == yb) return hspan(p, ya, xa, xb, 1, true);
    if (xa == xb) return vspan(p, xa, ya, yb, 1, true);
    int dx = std::abs(xb - xa), dy = std::abs(yb - ya);
    if (dx == dy) {
        // An exact diagonal covers whole pixels: nothing to blend.
        if (xa > xb) {
            std::swap(xa, xb);
            std::swap(ya, yb);
        }
        int sy = yb > ya ? 1 : -1;
        for (int i = 0; i <= dx; ++i) p.plot(xa + i, ya + i * sy);
        return;
    }
    p.plot(xa, ya);
    p.plot(xb, yb);
    if (dx > dy) {
        if (xa > xb) {
            std::swap(xa, xb);
            std::swap(ya, yb);
        }
        double slope = (double)(yb - ya) / (xb - xa), c = ya;
        for (int x = xa + 1; x < xb; ++x) {
            c += slope;
            int i = (int)std::trunc(c);
            double f = c - i;
            blend(p, x, i + 1, f);
            blend(p, x, i, 1 - f);
        }
    } else {
        if (ya > yb) {
            std::swap(xa, xb);
            std::swap(ya, yb);
        }
        double slope = (double)(xb - xa) / (yb - ya), c = xa;
        for (int y = ya + 1; y < yb; ++y) {
            c += slope;
            int i = (int)std::trunc(c);
            double f = c - i;
            blend(p, i + 1, y, f);
            blend(p, i, y, 1 - f);
        }
    }
}

// Anti-aliasing exists on the RGB canvas only; an index canvas draws the
// plain line.
bool smooth_polyline(const Painter<IndexPen> &, const int *, const int *, int) {
    return false;
}
bool smooth_polyline(const Painter<RgbPen> &p, const int *x, const int *y, int n) {
    for (int i = 1; i < n; ++i) smooth_segment(p, x[i - 1], y[i - 1], x[i], y[i]);
    return true;
}

// A polyline of one point: a pixel, or the shape of the cap at the width.
template <class Pen>
void paint_point(const Painter<Pen> &p, int x, int y) {
    const qqcanvas &c = p.c;
    if (c.lw != 1 && c.lcap != 0) {
        if (c.lcap == 2) {
            int x0 = x - c.lw / 2, y0 = y - c.lw / 2;
            p.rect(x0, y0, x0 + c.lw - 1, y0 + c.lw - 1);
        } else {
            paint_disc(p, x, y, c.lw / 2, 0);
        }
        return;
    }
    p.plot(x, y);
}

template <class Pen>
void paint_polyline(qqcanvas &c, const int *x, const int *y, int n) {
    Painter<Pen> p(c, Pen(c));
    if (!c.clipon) {
        // No clip asked for: the canvas itself is the only limit.
        p.x0 = p.y0 = 0;
        p.x1 = c.cw - 1;
        p.y1 = c.ch - 1;
    }
    if (c.lw >= 4 && n >= 2) return paint_thick(p, x, y, n);
    if (n == 1) return paint_point(p, x[0], y[0]);
    if (c.smooth && c.lw == 1 && smooth_polyline(p, x, y, n)) return;
    bool inside = true;
    for (int i = 0; i < n && inside; ++i) inside = p.inside(x[i], y[i]);
    if (inside && c.lw < 2) {
        for (int i = 1; i < n; ++i) fast_segment(p, x[i - 1], y[i - 1], x[i], y[i], c.clipon != 0);
        return;
    }
    int lw = c.lw < 1 ? 1 : (c.lw > 3 ? 3 : c.lw);
    for (int i = 1; i < n; ++i) clipped_segment(p, x[i - 1], y[i - 1], x[i], y[i], lw);
}

}  // namespace
}  // namespace raster

void qqcpolyline(qqcanvas *cv, const int *x, const int *y, int n) noexcept {
    if (!cv->pix || n < 1) return;
    if (cv->rgbcnv)
        raster::paint_polyline<raster::RgbPen>(*cv, x, y, n);
    else
        raster::paint_polyline<raster::IndexPen>(*cv, x, y, n);
}

void qqcline(qqcanvas *cv, int x, int y, int code) noexcept {
    if (code == 2) {
        int n = cv->ptn;
        // A point equal to its predecessor adds nothing to the line.
        if (n > 0 && (x != cv->ptx[n - 1] || y != cv->pty[n - 1])) {
            cv->ptx[n] = x;
            cv->pty[n] = y;
            cv->ptn = n + 1;
        }
        cv->ptmove = 0;
        if (cv->ptn < QQ_CPTS) return;
    }
    int n = cv->ptn;
    if (n > 1 || (n == 1 && !cv->ptmove)) qqcpolyline(cv, cv->ptx, cv->pty, n);
    cv->ptx[0] = x;
    cv->pty[0] = y;
    cv->ptn = 1;
    cv->ptmove = 1;
}

void qqcflush(qqcanvas *cv) noexcept {
    int n = cv->ptn;
    if (n == 0 || (n == 1 && cv->ptmove)) return;
    qqcpolyline(cv, cv->ptx, cv->pty, n);
    cv->ptx[0] = cv->ptx[n - 1];
    cv->pty[0] = cv->pty[n - 1];
    cv->ptn = 1;
    cv->ptmove = 1;
}
