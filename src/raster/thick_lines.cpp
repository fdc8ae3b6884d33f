// Lines of width 4 pixels and more: each segment is a filled
// quadrilateral; joins fill the wedge between two of them, caps extend the
// ends.
//
// A sharp join reaches the meeting point of the two outer edges however far
// out it lies: the miter limit belongs to the page formats, which draw
// their joins themselves, and the canvas draws the same picture at any
// limit.
#include <cmath>

#include "raster/paint.h"

namespace raster {
namespace {

struct Side {
    double s, c;    // sin(a)·h and cos(a)·h: the offset of the right-hand side is (s, c)
    double ux, uy;  // unit direction on the canvas (y down)
};

Side side_of(int xa, int ya, int xb, int yb, double h) {
    double a;
    if (xa == xb)
        a = ya < yb ? -1.570796 : 1.570796;
    else
        a = std::atan2((double)(ya - yb), (double)(xb - xa));
    // The corners keep the offset of the rounded right angle; the direction
    // of a vertical segment is exactly vertical, so that two of them never
    // meet far out at a sharp join.
    return {std::sin(a) * h, std::cos(a) * h, xa == xb ? 0.0 : std::cos(a), -std::sin(a)};
}

template <class Pen>
void fill4(const Painter<Pen> &p, double x0, double y0, double x1, double y1, double x2, double y2,
           double x3, double y3) {
    const double x[4] = {x0, x1, x2, x3}, y[4] = {y0, y1, y2, y3};
    paint_polygon(p, x, y, 4);
}

template <class Pen>
void fill3(const Painter<Pen> &p, double x0, double y0, double x1, double y1, double x2,
           double y2) {
    const double x[3] = {x0, x1, x2}, y[3] = {y0, y1, y2};
    paint_polygon(p, x, y, 3);
}

// Where the line through (xa, ya) along (ua, va) meets the one through
// (xb, yb) along (ub, vb).  Two vertical lines, or slopes that differ by
// less than 0.001, have no point.
bool meet(double xa, double ya, double ua, double va, double xb, double yb, double ub, double vb,
          double *mx, double *my) {
    bool verta = std::fabs(ua) < 1e-9, vertb = std::fabs(ub) < 1e-9;
    if (verta && vertb) return false;
    if (verta || vertb) {
        double x = verta ? xa : xb;
        double m = verta ? vb / ub : va / ua;
        double x0 = verta ? xb : xa, y0 = verta ? yb : ya;
        *mx = x;
        *my = y0 + m * (x - x0);
        return true;
    }
    double ma = va / ua, mb = vb / ub;
    if (std::fabs(ma - mb) < 0.001) return false;
    double x = (yb - ya + ma * xa - mb * xb) / (ma - mb);
    *mx = x;
    *my = ya + ma * (x - xa);
    return true;
}

// The join at vertex (vx, vy) from segment a into segment b.
template <class Pen>
void paint_join(const Painter<Pen> &p, int vx, int vy, const Side &a, const Side &b, double h) {
    const qqcanvas &c = p.c;
    if (c.ljoin == 1) {
        paint_disc(p, vx, vy, (int)std::trunc(h), 0);
        return;
    }
    for (int side = -1; side <= 1; side += 2) {
        double ex = vx + side * a.s, ey = vy + side * a.c;  // end corner of a
        double sx = vx + side * b.s, sy = vy + side * b.c;  // start corner of b
        if (c.ljoin == 0) {
            double mx, my;
            if (meet(ex, ey, a.ux, a.uy, sx, sy, b.ux, b.uy, &mx, &my))
                fill4(p, ex, ey, mx, my, sx, sy, (double)vx, (double)vy);
            continue;
        }
        fill3(p, ex, ey, sx, sy, (double)vx, (double)vy);
    }
}

// The cap at an open end; dir is +1 at the last point, -1 at the first.
template <class Pen>
void paint_cap(const Painter<Pen> &p, int x, int y, const Side &s, double h, int dir) {
    const qqcanvas &c = p.c;
    if (c.lcap == 1) {
        paint_disc(p, x, y, (int)std::trunc(h), 0);
    } else if (c.lcap == 2) {
        double ox = dir * h * s.ux, oy = dir * h * s.uy;
        fill4(p, x - s.s, y - s.c, x + s.s, y + s.c, x + s.s + ox, y + s.c + oy, x - s.s + ox,
              y - s.c + oy);
    }
}

}  // namespace

template <class Pen>
void paint_thick(const Painter<Pen> &p, const int *x, const int *y, int n) {
    const qqcanvas &c = p.c;
    double h = c.lw / 2.0;
    bool closed = n >= 3 && x[0] == x[n - 1] && y[0] == y[n - 1];
    int last = 0;    // the point that ends the segment drawn last
    int first = -1;  // the point that ends the first segment
    Side prev{}, head{};
    for (int i = 1; i < n; ++i) {
        if (x[i] == x[last] && y[i] == y[last]) continue;  // a repeated point has no direction
        Side s = side_of(x[last], y[last], x[i], y[i], h);
        if (first < 0) {
            first = i;
            head = s;
        } else {
            paint_join(p, x[last], y[last], prev, s, h);
        }
        fill4(p, x[last] - s.s, y[last] - s.c, x[i] - s.s, y[i] - s.c, x[i] + s.s, y[i] + s.c,
              x[last] + s.s, y[last] + s.c);
        prev = s;
        last = i;
    }
    if (first < 0) {  // every point the same
        if (c.lcap == 1)
            paint_disc(p, x[0], y[0], (int)std::trunc(h), 0);
        else if (c.lcap == 2)
            p.rect(x[0] - c.lw / 2, y[0] - c.lw / 2, x[0] - c.lw / 2 + c.lw - 1,
                   y[0] - c.lw / 2 + c.lw - 1);
        return;
    }
    if (closed) {
        paint_join(p, x[0], y[0], prev, head, h);
        return;
    }
    paint_cap(p, x[0], y[0], head, h, -1);
    paint_cap(p, x[last], y[last], prev, h, 1);
}

template void paint_thick<IndexPen>(const Painter<IndexPen> &, const int *, const int *, int);
template void paint_thick<RgbPen>(const Painter<RgbPen> &, const int *, const int *, int);

}  // namespace raster
