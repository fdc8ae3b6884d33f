// The layer's entry points for filled rectangles, ring sectors, triangles,
// markers and hardware characters: each offers the shape to the driver and draws it with lines
// when the driver has no such operation, refuses it, or cannot be given it
// because the shape must pass through the 3-D plane, the user
// transformation, a segment test or a circular clip first (only lines do).
#include <cmath>
#include <utility>

#include "devices/device.h"
#include "devices/device_block.h"
#include "raster/marker_figure.h"

namespace {

// Whether a shape may go to the driver whole, in plot coordinates.
bool direct(const DeviceBlock *b) {
    const DeviceState &d = b->dev;
    return d.pl3on == 0 && d.trfon == 0 && !d.segtest && !d.horizon && d.clpcir == 0;
}

// Lines of the fallbacks are solid and, for fills, of the thinnest width,
// whatever dash pattern and width the caller has set; the settings come
// back afterwards.
struct LinePen {
    DeviceBlock *b;
    int lnwid;
    double lnoff;
    LinePen(DeviceBlock *blk, bool thin) : b(blk), lnwid(blk->dev.lnwid), lnoff(blk->dev.lnoff) {
        if (thin && lnwid > 1) b->dev.lnwid = 1;
        b->dev.lnoff = 0.0;
    }
    ~LinePen() {
        qqflsh(b);
        b->dev.lnwid = lnwid;
        b->dev.lnoff = lnoff;
    }
};

// A polygon of absolute plot positions as one closed line, and filled by
// horizontal lines one plot coordinate apart when asked (markers' shapes
// are convex: each row crosses the outline twice at most).
void polygon(DeviceBlock *b, const double *x, const double *y, int n, bool filled) {
    if (filled) {
        LinePen pen(b, true);
        double ylo = y[0], yhi = y[0];
        for (int i = 1; i < n; ++i) {
            ylo = std::fmin(ylo, y[i]);
            yhi = std::fmax(yhi, y[i]);
        }
        for (double row = std::ceil(ylo); row <= yhi; row += 1.0) {
            double xl = 1e300, xr = -1e300;
            for (int i = 0; i < n; ++i) {
                int j = (i + 1) % n;
                double ya = y[i], yb = y[j];
                if ((row < ya && row < yb) || (row > ya && row > yb)) continue;
                double t = ya == yb ? 0.0 : (row - ya) / (yb - ya);
                double xs = x[i] + t * (x[j] - x[i]);
                xl = std::fmin(xl, ya == yb ? std::fmin(x[i], x[j]) : xs);
                xr = std::fmax(xr, ya == yb ? std::fmax(x[i], x[j]) : xs);
            }
            if (xl > xr) continue;
            qqrmov(b, xl, row);
            qqrdrw(b, xr, row);
        }
    }
    LinePen pen(b, false);
    qqrmov(b, x[n - 1], y[n - 1]);
    for (int i = 0; i < n; ++i) qqrdrw(b, x[i], y[i]);
}

// Any polygon filled by horizontal lines one plot coordinate apart, by the
// even-odd rule, in the current colour; rows with more crossings than the
// buffer holds keep the first ones.
void scan_fill(DeviceBlock *b, const double *x, const double *y, int n) {
    enum { MAXCROSS = 16 };
    LinePen pen(b, true);
    double ylo = y[0], yhi = y[0];
    for (int i = 1; i < n; ++i) {
        ylo = std::fmin(ylo, y[i]);
        yhi = std::fmax(yhi, y[i]);
    }
    for (double row = std::ceil(ylo); row <= yhi; row += 1.0) {
        double xs[MAXCROSS];
        int k = 0;
        for (int i = 0; i < n && k < MAXCROSS; ++i) {
            int j = (i + 1) % n;
            // Half-open in y, so that a vertex is crossed once.
            if ((y[i] <= row) == (y[j] <= row)) continue;
            double xc = x[i] + (row - y[i]) / (y[j] - y[i]) * (x[j] - x[i]);
            int m = k++;
            while (m > 0 && xs[m - 1] > xc) {
                xs[m] = xs[m - 1];
                --m;
            }
            xs[m] = xc;
        }
        for (int m = 0; m + 1 < k; m += 2) {
            qqrmov(b, xs[m], row);
            qqrdrw(b, xs[m + 1], row);
        }
    }
}

// A filled polygon of absolute positions when the driver's own shape was
// refused: the driver's polygon with hwmode SHAD on, else lines.
void fill_fallback(DeviceBlock *b, const double *x, const double *y, int n) {
    const DriverOps *drv = b->dev.drv;
    if (drv && drv->fill_polygon && b->dev.hwshd && direct(b) && drv->fill_polygon(b, x, y, n)) return;
    scan_fill(b, x, y, n);
}

// The circle of markers as a polygon of 36 corners; half = 1 keeps the
// upper half (Y grows downward) closed by its diameter.
void circle(DeviceBlock *b, double cx, double cy, double r, bool half, bool filled) {
    enum { N = 36 };
    double x[N + 1], y[N + 1];
    int n = 0;
    const double step = 2.0 * 3.141592653589793 / N;
    for (int k = 0; k <= (half ? N / 2 : N - 1); ++k) {
        x[n] = cx + r * std::cos(k * step);
        y[n] = cy - r * std::sin(k * step);
        ++n;
    }
    polygon(b, x, y, n, filled);
}

void segment(DeviceBlock *b, double xa, double ya, double xc, double yc) {
    LinePen pen(b, false);
    qqrmov(b, xa, ya);
    qqrdrw(b, xc, yc);
}

// A marker as a figure of lines, the same figure the canvas draws.
struct LineFigure {
    DeviceBlock *b;
    void polygon(const double *x, const double *y, int n, bool filled) { ::polygon(b, x, y, n, filled); }
    void segment(double xa, double ya, double xc, double yc) { ::segment(b, xa, ya, xc, yc); }
    void circle(double x, double y, double r, bool half, bool filled) { ::circle(b, x, y, r, half, filled); }
};

void marker_lines(DeviceBlock *b, int kind, double x, double y, double r) {
    LineFigure sink{b};
    qqmarkfigure(kind, x, y, r, sink);
}

}  // namespace

void qqfrect(DeviceBlock *b, int x1, int y1, int x2, int y2, int colour) noexcept {
    DeviceState &d = b->dev;
    qqflsh(b);
    // Wide integers: a shifted corner near the integer limits must not wrap.
    long long ax = (long long)(x1 < x2 ? x1 : x2) + d.nxsh, bx = (long long)(x1 < x2 ? x2 : x1) + d.nxsh;
    long long ay = (long long)(y1 < y2 ? y1 : y2) + d.nysh, by = (long long)(y1 < y2 ? y2 : y1) + d.nysh;
    if (ax < d.clpx1) ax = d.clpx1;
    if (ay < d.clpy1) ay = d.clpy1;
    if (bx > d.clpx2) bx = d.clpx2;
    if (by > d.clpy2) by = d.clpy2;
    if (ax > bx || ay > by) return;
    const DriverOps *drv = d.drv;
    // The user transformation may turn the rectangle: then only lines
    // follow it.
    if (drv && drv->fill_rect && d.trfon != 1) {
        drv->fill_rect(b, (int)ax, (int)ay, (int)bx, (int)by, colour);
        return;
    }
    // A device without filled shapes: lines from the top, 1.4 / unitf
    // apart down to the lower edge, and one more at that edge.
    int old = b->clr.curclr;
    qqsetc(b, colour);
    {
        LinePen pen(b, true);
        double step = 1.4 / b->core.unitf;
        for (double yy = (double)ay; yy <= (double)by; yy += step) {
            qqrmov(b, (double)ax, yy);
            qqrdrw(b, (double)bx, yy);
        }
        qqrmov(b, (double)ax, (double)by);
        qqrdrw(b, (double)bx, (double)by);
    }
    if (b->clr.curclr != old) qqsetc(b, old);
}

bool qqhwmark(DeviceBlock *b, int kind, double x, double y, double size) noexcept {
    if (kind < 0 || kind > 23 || !(size >= 0 && size < 1e6)) return false;
    const DeviceState &d = b->dev;
    const DriverOps *drv = d.drv;
    if (!drv || !drv->marker || d.pl3on || d.trfon || d.segtest || d.horizon) return false;
    qqflsh(b);
    return drv->marker(b, kind, x + d.nxsh, y + d.nysh, size) != 0;
}

bool qqhwsector(DeviceBlock *b, double x, double y, double r1, double r2, double a1, double a2,
                int colour) noexcept {
    if (!(r1 >= 0 && r1 <= r2 && r2 < 1e6 && a1 <= a2 && a2 - a1 < 1e6)) return false;
    const DeviceState &d = b->dev;
    const DriverOps *drv = d.drv;
    if (!drv || !drv->sector || !direct(b)) return false;
    qqflsh(b);
    return drv->sector(b, x + d.nxsh, y + d.nysh, r1, r2, a1, a2, colour) != 0;
}

void qqmark(DeviceBlock *b, int kind, double x, double y, double size) noexcept {
    if (kind < 0 || kind > 23 || !(size >= 0 && size < 1e6)) return;
    // A circular clip is the layer's own: a driver's marker would ignore it.
    if (b->dev.clpcir == 0 && qqhwmark(b, kind, x, y, size)) return;
    qqflsh(b);
    marker_lines(b, kind, x + b->dev.nxsh, y + b->dev.nysh, size / 2);
}

void qqsector(DeviceBlock *b, double x, double y, double r1, double r2, double a1, double a2,
              int colour) noexcept {
    if (!(r1 >= 0 && r1 <= r2 && r2 < 1e6 && a1 <= a2 && a2 - a1 <= 360.0)) return;
    DeviceState &d = b->dev;
    qqflsh(b);
    x += d.nxsh;
    y += d.nysh;
    const DriverOps *drv = d.drv;
    if (drv && drv->sector && d.hwshd && direct(b) && drv->sector(b, x, y, r1, r2, a1, a2, colour))
        return;
    // The outline: the outer arc forth, the inner one back (or the centre),
    // a point every 5 degrees at most.
    enum { ARC = 73 };
    double px[2 * ARC], py[2 * ARC];
    int steps = (int)std::ceil((a2 - a1) / 5.0);
    if (steps < 1) steps = 1;
    int n = 0;
    for (int pass = 0; pass < 2; ++pass) {
        double r = pass == 0 ? r2 : r1;
        if (pass == 1 && r1 == 0) {
            px[n] = x;
            py[n++] = y;
            break;
        }
        for (int k = 0; k <= steps; ++k) {
            double t = (pass == 0 ? a1 + (a2 - a1) * k / steps : a2 - (a2 - a1) * k / steps) *
                       3.141592653589793 / 180.0;
            px[n] = x + r * std::cos(t);
            py[n++] = y - r * std::sin(t);
        }
    }
    int saved = b->clr.curclr;
    if (colour != saved) qqsetc(b, colour);
    fill_fallback(b, px, py, n);
    if (colour != saved) qqsetc(b, saved);
}

void qqtriangle(DeviceBlock *b, const double *x, const double *y) noexcept {
    DeviceState &d = b->dev;
    qqflsh(b);
    double tx[3], ty[3];
    for (int i = 0; i < 3; ++i) {
        tx[i] = x[i] + d.nxsh;
        ty[i] = y[i] + d.nysh;
    }
    const DriverOps *drv = d.drv;
    if (drv && drv->triangle && d.hwshd && direct(b) && drv->triangle(b, tx, ty)) return;
    fill_fallback(b, tx, ty, 3);
}

void qqhwchar(DeviceBlock *b, const QQHwChar *c) noexcept {
    DeviceState &d = b->dev;
    qqflsh(b);
    const DriverOps *drv = d.drv;
    if (drv && drv->character && direct(b) && drv->character(b, c)) return;
    // A refused character is stroked by the text subsystem, which sets the
    // hook; without it (a build without stroke fonts) nothing is drawn.
    if (d.strokechar) d.strokechar(b, c);
}

void qqhwstyle(DeviceBlock *b) noexcept {
    qqflsh(b);
    const DriverOps *drv = b->dev.drv;
    if (drv && drv->textstyle) drv->textstyle(b);
}
