// fbars: financial bars of open, high, low and close values, as ticks or
// as candlesticks, in a two-dimensional axis system.
#include <cmath>

#include "core/guard.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "plots/axis_map.h"
#include "plots/bars.h"
#include "plots/curve_draw.h"
#include "plots/fill.h"
#include "plots/patterns.h"
#include "plots/plot_block.h"

namespace {

// The body of a candle: filled in a colour, or outlined only.
void body(PlotBlock *b, double x0, double x1, double ya, double yb, int colour, bool filled) {
    int keep = qqbarcolour(b, colour);
    double x[4] = {x0, x1, x1, x0}, y[4] = {ya, ya, yb, yb};
    if (filled)
        qqarea(b, x, y, 4);
    else
        qqpolyln(b, x, y, 4);
    qqflsh(b);
    qqbarcolour(b, keep);
}

void segment(PlotBlock *b, double x0, double y0, double x1, double y1, int colour) {
    int keep = qqbarcolour(b, colour);
    qqline(b, x0, y0, x1, y1);
    qqflsh(b);
    qqbarcolour(b, keep);
}

}  // namespace

void fbars(const double *xray, const double *y1ray, const double *y2ray, const double *y3ray,
           const double *y4ray, int n) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("fbars"));
    if (!b) return;
    if (n < 1) {
        qqwarn(b, 2, n);
        return;
    }
    AxisMap m;
    qqaxmap(b, &m);
    const double *vals[4] = {y1ray, y2ray, y3ray, y4ray};
    for (const double *v : vals)
        if (!qqcrvlog(b, m, xray, v, n)) return;
    for (const double *v : vals) qqchkd(b, xray, v, n);
    const BarState &bs = b->bar;
    const double factor = b->crv.barwth;
    double half = factor > 0   ? qqbarspan(b, m, xray, n, false) * factor / 2
                  : factor < 0 ? std::fabs(factor) / 2
                               : 0.0;
    CurveSave save;
    qqcrvsave(b, &save);
    b->core.ynoflp = 1;
    qqsolid(b);
    qqclip(b, 0);
    qqshdpat(b, QQ_SOLID_PATTERN);
    for (int i = 0; i < n; ++i) {
        double x = xray[i], open = y1ray[i], high = y2ray[i], low = y3ray[i], close = y4ray[i];
        if (!std::isfinite(x) || !std::isfinite(open) || !std::isfinite(high) ||
            !std::isfinite(low) || !std::isfinite(close))
            continue;
        double px, po, ph, pl, pc;
        qqaxpt(b, m, x, open, &px, &po);
        qqaxpt(b, m, x, high, &px, &ph);
        qqaxpt(b, m, x, low, &px, &pl);
        qqaxpt(b, m, x, close, &px, &pc);
        if (bs.form == 0) {
            segment(b, px, pl, px, ph, bs.clr[0]);
            segment(b, px, po, px - half, po, bs.clr[1]);
            segment(b, px, pc, px + half, pc, bs.clr[2]);
        } else {
            bool rising = !(close < open);
            if (rising) {
                segment(b, px, pl, px, po, bs.clr[0]);
                segment(b, px, pc, px, ph, bs.clr[0]);
                body(b, px - half, px + half, po, pc, bs.clr[1], bs.clr[1] != -1);
            } else {
                segment(b, px, pl, px, pc, bs.clr[0]);
                segment(b, px, po, px, ph, bs.clr[0]);
                body(b, px - half, px + half, po, pc, bs.clr[2], true);
            }
        }
    }
    qqclip(b, 1);
    qqcrvrestore(b, &save);
}
