// A solid filled polygon for symbols, bars and legend patches: the driver
// fills it where it can, else horizontal lines one plot unit apart.
#include <algorithm>
#include <cmath>

#include "devices/device.h"
#include "plots/curves.h"

void qqsolidfill(glbblk *b, const double *x, const double *y, int n) noexcept {
    if (n < 3) return;
    qqflsh(b);
    const DriverOps *drv = b->dev.drv;
    if (drv && drv->fill_polygon && b->dev.hwshd && n <= 256) {
        double fx[256], fy[256];
        for (int i = 0; i < n; ++i) {
            fx[i] = x[i] + b->dev.nxsh;
            fy[i] = y[i] + b->dev.nysh;
        }
        if (drv->fill_polygon(b, fx, fy, n)) return;
    }
    double y0 = y[0], y1 = y[0];
    for (int i = 1; i < n; ++i) {
        y0 = std::min(y0, y[i]);
        y1 = std::max(y1, y[i]);
    }
    if (!(y1 - y0 < 1e5)) return;
    double cut[64];
    for (double yy = std::ceil(y0); yy <= y1; yy += 1.0) {
        int m = 0;
        for (int i = 0; i < n && m < 64; ++i) {
            int j = i + 1 == n ? 0 : i + 1;
            double ya = y[i], yb = y[j];
            if ((ya <= yy && yb > yy) || (yb <= yy && ya > yy))
                cut[m++] = x[i] + (yy - ya) / (yb - ya) * (x[j] - x[i]);
        }
        std::sort(cut, cut + m);
        for (int i = 0; i + 1 < m; i += 2) {
            qqmove(b, cut[i], yy);
            qqdraw(b, cut[i + 1], yy);
        }
    }
}
