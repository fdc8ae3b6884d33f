// Filled shapes on the canvas: the polygon scan converter, discs,
// rectangles and single pixels.
#include <cmath>

#include "raster/canvas.h"
#include "raster/paint.h"
#include "raster/primitives.h"

namespace raster {

template <class Pen>
void paint_disc(const Painter<Pen> &p, int x, int y, int r, int mode) {
    if (r < 0) return;
    for (int i = 0; i <= r; ++i) {
        double d = i == 0 ? 0.0 : std::sqrt(2.0 * r * i - (double)i * i);
        int xa = (int)std::trunc(x - d + 0.5), xb = (int)std::trunc(x + d + 0.5);
        p.span(y - r + i, xa, xb);
        if (mode == 0) p.span(y + r - i, xa, xb);
    }
}

namespace {

enum { MAXCROSS = 99 };

void sort_small(int *v, int n) {
    for (int i = 1; i < n; ++i) {
        int t = v[i], j = i;
        while (j > 0 && v[j - 1] > t) {
            v[j] = v[j - 1];
            --j;
        }
        v[j] = t;
    }
}

}  // namespace

// A vertex of the polygon in pixels.
struct Vertices {
    const double *x, *y, *m;
    double px(int i) const { return m ? m[0] * x[i] + m[1] * y[i] + m[2] : x[i]; }
    double py(int i) const { return m ? m[3] * x[i] + m[4] * y[i] + m[5] : y[i]; }
};

template <class Pen>
int paint_polygon(const Painter<Pen> &p, const double *xs, const double *ys, int n,
                  const double *m) {
    if (n < 2) return 0;
    Vertices v{xs, ys, m};
    double ymin = v.py(0), ymax = ymin;
    for (int i = 1; i < n; ++i) {
        double yi = v.py(i);
        if (yi < ymin) ymin = yi;
        if (yi > ymax) ymax = yi;
    }
    if (!(ymin >= -1e9 && ymax <= 1e9)) return 0;  // NaN or far away: nothing sensible to fill
    int ya = (int)std::trunc(ymin + 0.5), yb = (int)std::trunc(ymax + 0.5);
    if (ya < p.y0) ya = p.y0;
    if (yb > p.y1) yb = p.y1;
    int overflow = 0;
    int cross[MAXCROSS];
    for (int row = ya; row <= yb; ++row) {
        double yy = row;
        int nc = 0;
        for (int i = 0; i < n; ++i) {
            int j = i + 1 == n ? 0 : i + 1;
            double yi = v.py(i), yj = v.py(j);
            if (!((yy > yi && yj >= yy) || (yi >= yy && yy > yj))) continue;
            double xi = v.px(i), xj = v.px(j);
            double xc =
                std::fabs(yi - yj) < 0.01 ? xi + 0.5 : xi + (xj - xi) * (yy - yi) / (yj - yi) + 0.5;
            if (nc == MAXCROSS) {
                overflow = 1;
                continue;
            }
            if (!(xc > -1e9)) xc = -1e9;  // NaN too
            if (xc > 1e9) xc = 1e9;
            cross[nc++] = (int)std::trunc(xc);
        }
        sort_small(cross, nc);
        for (int k = 0; k + 1 < nc; k += 2) {
            int xa = cross[k], xb = cross[k + 1];
            if (xb < p.x0 || xa > p.x1) continue;
            p.span(row, xa, xb);
        }
    }
    return overflow;
}

template void paint_disc<IndexPen>(const Painter<IndexPen> &, int, int, int, int);
template void paint_disc<RgbPen>(const Painter<RgbPen> &, int, int, int, int);
template int paint_polygon<IndexPen>(const Painter<IndexPen> &, const double *, const double *, int,
                                     const double *);
template int paint_polygon<RgbPen>(const Painter<RgbPen> &, const double *, const double *, int,
                                   const double *);

}  // namespace raster

using raster::IndexPen;
using raster::Painter;
using raster::RgbPen;

int qqcfillm(qqcanvas *cv, const double *x, const double *y, int n, const double m[6]) noexcept {
    if (!cv->pix) return 0;
    qqcflush(cv);
    if (cv->rgbcnv) return raster::paint_polygon(Painter<RgbPen>(*cv, RgbPen(*cv)), x, y, n, m);
    return raster::paint_polygon(Painter<IndexPen>(*cv, IndexPen(*cv)), x, y, n, m);
}

int qqcfill(qqcanvas *cv, const double *x, const double *y, int n) noexcept {
    return qqcfillm(cv, x, y, n, nullptr);
}

void qqcdisc(qqcanvas *cv, int x, int y, int r, int mode) noexcept {
    if (cv->rgbcnv)
        raster::paint_disc(Painter<RgbPen>(*cv, RgbPen(*cv)), x, y, r, mode);
    else
        raster::paint_disc(Painter<IndexPen>(*cv, IndexPen(*cv)), x, y, r, mode);
}

namespace {

// A rectangle that the clip has not cut yet is cut to the canvas at least:
// a caller that switched clipping off still may not write outside it.
template <class Pen>
void fill_rect(qqcanvas &cv, Pen pen, int x1, int y1, int x2, int y2) {
    Painter<Pen> p(cv, pen);
    if (!cv.clipon) {
        p.x0 = 0;
        p.y0 = 0;
        p.x1 = cv.cw - 1;
        p.y1 = cv.ch - 1;
    }
    p.rect(x1 < x2 ? x1 : x2, y1 < y2 ? y1 : y2, x1 < x2 ? x2 : x1, y1 < y2 ? y2 : y1);
}

}  // namespace

void qqcrect(qqcanvas *cv, int x1, int y1, int x2, int y2, int colour) noexcept {
    qqcflush(cv);
    unsigned char q[4];
    qqcresolve(cv, colour, q);
    if (cv->rgbcnv)
        fill_rect(*cv, RgbPen(q, 0), x1, y1, x2, y2);
    else
        fill_rect(*cv, IndexPen(q[0], 0), x1, y1, x2, y2);
}

void qqcpixel(qqcanvas *cv, int x, int y, int colour) noexcept {
    qqcflush(cv);
    if (x < cv->clipx0 || x > cv->clipx1 || y < cv->clipy0 || y > cv->clipy1) return;
    unsigned char q[4];
    qqcresolve(cv, colour, q);
    unsigned char *p = cv->pix + (size_t)y * (size_t)cv->rowb;
    if (cv->rgbcnv) {
        for (int k = 0; k < 4; ++k) p[(size_t)x * 4 + k] = q[k];
    } else {
        p[x] = q[0];
    }
}
