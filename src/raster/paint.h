// Private to the raster primitives: the pixel store of the two canvas forms
// and the pieces that several primitives share (clipped spans, discs, the
// polygon scan converter).
//
// Every primitive is written once as a template over a pen: IndexPen stores
// the colour index in one byte, RgbPen the four bytes red, green, blue,
// alpha.  The entry points choose the pen by the canvas form, so the pixel
// loops contain no test of the form and no multiplication per pixel.
#pragma once

#include <cstdint>
#include <cstring>

#include "raster/canvas_state.h"

namespace raster {

struct IndexPen {
    enum { size = 1 };
    unsigned char v;
    explicit IndexPen(const qqcanvas &c) : v(c.colidx) {}
    IndexPen(unsigned char idx, int) : v(idx) {}
    void put(unsigned char *p) const { *p = v; }
    // Short runs (the rows of markers and thin shapes) are the common case:
    // they are written by two overlapping stores instead of a call.
    void run(unsigned char *p, int n) const {
        if (n > 16) {
            std::memset(p, v, (size_t)n);
        } else if (n >= 8) {
            uint64_t w = 0x0101010101010101ULL * v;
            std::memcpy(p, &w, 8);
            std::memcpy(p + n - 8, &w, 8);
        } else if (n >= 4) {
            uint32_t w = 0x01010101U * v;
            std::memcpy(p, &w, 4);
            std::memcpy(p + n - 4, &w, 4);
        } else {
            for (int i = 0; i < n; ++i) p[i] = v;
        }
    }
};

struct RgbPen {
    enum { size = 4 };
    uint32_t w;  // the four bytes in memory order
    explicit RgbPen(const qqcanvas &c) { set(c.colr, c.colg, c.colb, c.alpha); }
    RgbPen(const unsigned char q[4], int) { std::memcpy(&w, q, 4); }
    void set(unsigned char r, unsigned char g, unsigned char b, unsigned char a) {
        unsigned char q[4] = {r, g, b, a};
        std::memcpy(&w, q, 4);
    }
    void put(unsigned char *p) const { std::memcpy(p, &w, 4); }
    void run(unsigned char *p, int n) const {
        for (int i = 0; i < n; ++i, p += 4) std::memcpy(p, &w, 4);
    }
};

// A pen on the plane in use, with the clip rectangle at hand.
template <class Pen>
struct Painter {
    qqcanvas &c;
    Pen pen;
    unsigned char *pix;
    int rowb;
    int x0, y0, x1, y1;

    Painter(qqcanvas &cv, Pen p)
        : c(cv),
          pen(p),
          pix(cv.pix),
          rowb(cv.rowb),
          x0(cv.clipx0),
          y0(cv.clipy0),
          x1(cv.clipx1),
          y1(cv.clipy1) {}

    unsigned char *at(int x, int y) const {
        return pix + (size_t)y * (size_t)rowb + (size_t)x * Pen::size;
    }
    bool inside(int x, int y) const { return x >= x0 && x <= x1 && y >= y0 && y <= y1; }
    bool row_in(int y) const { return y >= y0 && y <= y1; }
    bool col_in(int x) const { return x >= x0 && x <= x1; }
    void plot(int x, int y) const {
        if (inside(x, y)) pen.put(at(x, y));
    }
    // Fills columns xa to xb of row y, cut to the clip; nothing when the
    // row lies outside it.
    void span(int y, int xa, int xb) const {
        if (!row_in(y)) return;
        if (xa > xb) {
            int t = xa;
            xa = xb;
            xb = t;
        }
        if (xa < x0) xa = x0;
        if (xb > x1) xb = x1;
        if (xa <= xb) pen.run(at(xa, y), xb - xa + 1);
    }
    // Fills rows ya to yb of column x, cut to the clip.
    void column(int x, int ya, int yb) const {
        if (!col_in(x)) return;
        if (ya > yb) {
            int t = ya;
            ya = yb;
            yb = t;
        }
        if (ya < y0) ya = y0;
        if (yb > y1) yb = y1;
        unsigned char *p = at(x, ya);
        for (int y = ya; y <= yb; ++y, p += rowb) pen.put(p);
    }
    void rect(int xa, int ya, int xb, int yb) const {
        if (ya < y0) ya = y0;
        if (yb > y1) yb = y1;
        for (int y = ya; y <= yb; ++y) span(y, xa, xb);
    }
};

// The offset of the k-th extra row or column of a wide thin line: +1, -1,
// +2, -2, ... as k runs from 1.
inline int side_offset(int k) {
    return (k & 1) ? (k + 1) / 2 : -((k + 1) / 2);
}

// Disc of radius r at (x, y); mode 0 the whole disc, 1 the upper half.
template <class Pen>
void paint_disc(const Painter<Pen> &p, int x, int y, int r, int mode);

// Scan converts a polygon of n vertices given as double pixel positions,
// or mapped to them by m (see qqcfillm) when m is not null.  Always clips.
// Returns 1 when a row had more crossings than it can hold.
template <class Pen>
int paint_polygon(const Painter<Pen> &p, const double *x, const double *y, int n,
                  const double *m = nullptr);

// A polyline of line width 4 or more, built from filled quadrilaterals
// with the record's caps and joins.
template <class Pen>
void paint_thick(const Painter<Pen> &p, const int *x, const int *y, int n);

}  // namespace raster
