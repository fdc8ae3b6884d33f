// Lines and filled polygons on their way to a driver.
//
// The fill itself (patterns, hatching) lives with the plots above; the
// layer offers the entry that lower layers call, and the step that hands a
// solid polygon to a driver with the shift and transformation that every
// position gets.
#include <cstdlib>

#include "core/warnings.h"
#include "devices/device.h"
#include "devices/device_block.h"

namespace {

// The current colour comes back after a line whose dashes had colours.
void colour_back(DeviceBlock *b, int colour) {
    if (b->clr.curclr != colour) {
        qqflsh(b);
        qqsetc(b, colour);
    }
}

}  // namespace

void qqline(DeviceBlock *b, double x1, double y1, double x2, double y2) noexcept {
    int colour = b->clr.curclr;
    qqmove(b, x1, y1);
    qqdraw(b, x2, y2);
    colour_back(b, colour);
}

void qqpolyln(DeviceBlock *b, const double *x, const double *y, int n) noexcept {
    if (n < 2) return;
    int colour = b->clr.curclr;
    qqmove(b, x[0], y[0]);
    for (int i = 1; i < n; ++i) qqdraw(b, x[i], y[i]);
    qqdraw(b, x[0], y[0]);
    colour_back(b, colour);
}

void qqfillpoly(DeviceBlock *b, double *x, double *y, int n) noexcept {
    if (b->dev.fillfn) b->dev.fillfn(b, x, y, n);
}

int qqhatchpolys(DeviceBlock *b, const double *const *x, const double *const *y, const int *n,
                 int npoly, double d, int maxcross, void (*move)(DeviceBlock *, double, double),
                 void (*draw)(DeviceBlock *, double, double)) noexcept {
    return b->dev.hatchfn ? b->dev.hatchfn(b, x, y, n, npoly, d, maxcross, move, draw) : 0;
}

int qqdevpoly(DeviceBlock *b, const double *x, const double *y, int n) noexcept {
    DeviceState &d = b->dev;
    const DriverOps *drv = d.drv;
    if (n < 2 || !drv || !drv->fill_polygon) return 0;
    qqflsh(b);
    if (d.nxsh == 0 && d.nysh == 0 && d.trfon != 1) return drv->fill_polygon(b, x, y, n);
    // Shifted and transformed positions: small polygons on the stack.
    enum { SMALL = 64 };
    double sx[SMALL], sy[SMALL];
    double *px = sx, *py = sy;
    if (n > SMALL) {
        px = (double *)std::malloc(sizeof(double) * 2 * (size_t)n);
        if (!px) {
            qqwar0(b, 53);
            return 1;
        }
        py = px + n;
    }
    for (int i = 0; i < n; ++i) {
        double u = x[i] + d.nxsh, v = y[i] + d.nysh;
        if (d.trfon == 1) {
            double tu = d.trf[0] * u + d.trf[1] * v + d.trf[2];
            v = d.trf[3] * u + d.trf[4] * v + d.trf[5];
            u = tu;
        }
        px[i] = u;
        py[i] = v;
    }
    int done = drv->fill_polygon(b, px, py, n);
    if (px != sx) std::free(px);
    return done;
}

int qqdevsolid(DeviceBlock *b, const double *x, const double *y, int n) noexcept {
    const DeviceState &d = b->dev;
    // Segment tests (hidden lines, shields), the 3-D plane and the map
    // projections must see every point, which only hatch lines give them.
    if (!d.hwshd || d.segtest != nullptr || d.pl3on != 0 || d.softfill) return 0;
    return qqdevpoly(b, x, y, n);
}
