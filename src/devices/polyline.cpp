// The polyline buffer and the dash and parallel-offset walker.
//
// Points enter the buffer as absolute plot positions after the origin
// shift, the 3-D plane and the user transformation.  When the buffer holds
// 100 points it is flushed and its last point carried over as the first of
// the next piece, so a long line reaches the driver in pieces that each
// start with a move and join without a gap.
#include <cmath>

#include "core/text.h"
#include "devices/device.h"
#include "devices/device_block.h"
#include "devices/stroke.h"

namespace {

void transform(DeviceBlock *b, double &x, double &y) {
    DeviceState &d = b->dev;
    if (d.pl3on == 1 && d.planemap) d.planemap(b, &x, &y);
    if (d.trfon == 1) {
        double tx = d.trf[0] * x + d.trf[1] * y + d.trf[2];
        double ty = d.trf[3] * x + d.trf[4] * y + d.trf[5];
        x = tx;
        y = ty;
    }
}

// Starts a new piece at an absolute position.
void buf_move(DeviceBlock *b, double x, double y) {
    qqflsh(b);
    transform(b, x, y);
    DeviceState &d = b->dev;
    d.polx[0] = x;
    d.poly[0] = y;
    d.npol = 1;
}

// Appends a transformed position; a full buffer goes out and its last
// point starts the next piece.
void buf_append(DeviceBlock *b, double x, double y) {
    DeviceState &d = b->dev;
    if (d.npol == 0) {  // nothing pending: the line starts here
        d.polx[0] = x;
        d.poly[0] = y;
        d.npol = 1;
        return;
    }
    d.polx[d.npol] = x;
    d.poly[d.npol] = y;
    if (++d.npol == QQ_NPOL) {
        double lx = d.polx[QQ_NPOL - 1], ly = d.poly[QQ_NPOL - 1];
        qqflsh(b);
        d.polx[0] = lx;
        d.poly[0] = ly;
        d.npol = 1;
    }
}

void buf_draw(DeviceBlock *b, double x, double y) {
    transform(b, x, y);
    buf_append(b, x, y);
}

void pattern_colour(DeviceBlock *b) {
    DeviceState &d = b->dev;
    if (d.clrn >= 1) {
        int i = d.clridx >= 1 && d.clridx <= d.clrn ? d.clridx : 1;
        qqsetc(b, d.clrtab[i - 1]);
    }
}

void next_element(DeviceState &d) {
    d.dsidx = d.dsidx >= d.dshn ? 1 : d.dsidx + 1;
    d.dspen = 1 - d.dspen;
    if (d.dspen == 1 && d.clrn > 0) d.clridx = d.clridx >= d.clrn ? 1 : d.clridx + 1;
    d.dsrem = d.dshl[d.dsidx - 1];
}

// Advances the dash state by a length without drawing: whole rounds of
// the pattern at once, so that a line far outside the page costs nothing.
void dash_skip(DeviceState &d, double len) {
    if (!(len > 0)) return;
    if (len < d.dsrem) {
        d.dsrem -= len;
        return;
    }
    len -= d.dsrem;
    next_element(d);
    if (d.dsrem <= 0) d.dsrem = 1;
    // A round that brings the pen back to the same element and phase: the
    // pattern once with an even count of elements, twice with an odd one.
    double round = 0;
    for (int k = 0; k < d.dshn; ++k) round += d.dshl[k] > 0 ? d.dshl[k] : 1;
    int gaps = d.dshn / 2;
    if (d.dshn % 2) {
        round *= 2;
        gaps = d.dshn;
    }
    if (round > 0 && len > round) {
        double k = std::floor(len / round);
        len -= k * round;
        if (d.clrn > 0) d.clridx = (int)((d.clridx - 1 + std::fmod(k * gaps, d.clrn)) + 0.5) % d.clrn + 1;
    }
    int guard = 0;
    while (len >= d.dsrem && guard++ < 100) {
        len -= d.dsrem;
        next_element(d);
        if (d.dsrem <= 0) d.dsrem = 1;
    }
    d.dsrem -= len;
}

// The part [t0, t1] of the segment from (x0, y0) to (x1, y1) that can show
// in the clip region grown by a margin; false when none can.
bool visible_part(const DeviceState &d, double x0, double y0, double x1, double y1, double m,
                  double *t0, double *t1) {
    double lx = d.clpx1 - m, hx = d.clpx2 + m, ly = d.clpy1 - m, hy = d.clpy2 + m;
    if (d.clpcir == 1) {
        lx = d.ccx - d.ccr - m;
        hx = d.ccx + d.ccr + m;
        ly = d.ccy - d.ccr - m;
        hy = d.ccy + d.ccr + m;
    }
    double a = 0, z = 1;
    const double p[4] = {-(x1 - x0), x1 - x0, -(y1 - y0), y1 - y0};
    const double q[4] = {x0 - lx, hx - x0, y0 - ly, hy - y0};
    for (int k = 0; k < 4; ++k) {
        if (p[k] == 0) {
            if (q[k] < 0) return false;
            continue;
        }
        double t = q[k] / p[k];
        if (p[k] < 0) {
            if (t > a) a = t;
        } else if (t < z) {
            z = t;
        }
    }
    *t0 = a;
    *t1 = z;
    return a <= z;
}

// Whether the outlines of a wide piece of n points can reach the clip
// region: a piece far outside draws none of its many passes.
bool reaches_clip(DeviceBlock *b, int n) {
    const DeviceState &d = b->dev;
    double lx = d.polx[0], hx = lx, ly = d.poly[0], hy = ly;
    for (int i = 1; i < n; ++i) {
        lx = std::fmin(lx, d.polx[i]);
        hx = std::fmax(hx, d.polx[i]);
        ly = std::fmin(ly, d.poly[i]);
        hy = std::fmax(hy, d.poly[i]);
    }
    double m = 2.0 + 2.0 * d.lnwid * b->core.unitf;
    if (d.clpcir == 1)
        return !(hx < d.ccx - d.ccr - m || lx > d.ccx + d.ccr + m || hy < d.ccy - d.ccr - m ||
                 ly > d.ccy + d.ccr + m);
    return !(hx < d.clpx1 - m || lx > d.clpx2 + m || hy < d.clpy1 - m || ly > d.clpy2 + m);
}

}  // namespace

void qqdshres(DeviceBlock *b) noexcept {
    DeviceState &d = b->dev;
    d.dsidx = 1;
    d.dspen = 0;
    d.clridx = 1;
    d.dsrem = d.dshn > 1 ? d.dshl[0] : 0;
}

void qqmove(DeviceBlock *b, double x, double y) noexcept {
    DeviceState &d = b->dev;
    x += d.nxsh;
    y += d.nysh;
    d.curx = x;
    d.cury = y;
    if (d.lnoff != 0) {
        d.offfirst = 1;
        return;
    }
    if (d.dshn > 1 && d.clrn >= 1) pattern_colour(b);
    buf_move(b, x, y);
}

void qqdraw(DeviceBlock *b, double x, double y) noexcept {
    DeviceState &d = b->dev;
    x += d.nxsh;
    y += d.nysh;
    if (d.dshn <= 1 && d.lnoff == 0) {
        d.curx = x;
        d.cury = y;
        int n = d.npol;
        if (d.pl3on != 1 && d.trfon != 1 && n > 0 && n < QQ_NPOL - 1) {
            // The common case of a long solid line: nothing to transform,
            // the buffer neither empty nor about to fill.
            d.polx[n] = x;
            d.poly[n] = y;
            d.npol = n + 1;
            return;
        }
        buf_draw(b, x, y);
        return;
    }
    double dx = x - d.curx, dy = d.cury - y;
    // The direction (cos a, sin a) of the angle a of the segment; a nearly
    // vertical one takes a = +-1.570796.  Taken from the lengths, it costs
    // no trigonometry per point.
    double ca, sa, len;
    if (std::fabs(dx) <= 1e-6) {
        const double c = 3.2679489653813835e-07, s = 0.99999999999994660;  // of 1.570796
        ca = c;
        sa = dy >= 0 ? s : -s;
        len = d.cury == y ? std::fabs(dx) : std::fabs(dy / sa);
    } else {
        double h = std::hypot(dx, dy);
        ca = dx / h;
        sa = dy / h;
        len = d.cury == y ? std::fabs(dx) : h;
    }
    double px = d.curx, py = d.cury;  // walker position
    double ex = x, ey = y;            // end of the segment
    if (d.lnoff != 0) {
        double ox = -d.lnoff * sa, oy = -d.lnoff * ca;
        px += ox;
        py += oy;
        ex += ox;
        ey += oy;
        if (d.offfirst) {
            d.offfirst = 0;
            if (d.dshn > 1 && d.clrn >= 1) pattern_colour(b);
            buf_move(b, px, py);
        } else if (d.dshn > 1 && d.dspen == 1) {
            buf_move(b, px, py);
        } else {
            buf_draw(b, px, py);
        }
        if (d.dshn <= 1) {
            buf_draw(b, ex, ey);
            d.curx = x;
            d.cury = y;
            return;
        }
    }
    if (!(len < 1e300)) len = 0;  // a NaN or infinite length walks nowhere
    if (d.dsrem <= 0) d.dsrem = d.dshl[d.dsidx - 1] > 0 ? d.dshl[d.dsidx - 1] : 1;
    // The pattern is walked only where the line can show; beyond the clip
    // region (and its reach with a wide line) the dash state just advances.
    double rest = 0;
    if (d.lnoff == 0 && d.pl3on == 0 && d.trfon != 1 && len > 0) {
        double m = 2.0 + 2.0 * std::fabs((double)d.lnwid) * b->core.unitf;
        double t0, t1;
        if (!visible_part(d, px, py, ex, ey, m, &t0, &t1)) {
            dash_skip(d, len);
            buf_move(b, ex, ey);
            d.curx = x;
            d.cury = y;
            return;
        }
        if (t0 > 0) {
            dash_skip(d, t0 * len);
            px += t0 * len * ca;
            py -= t0 * len * sa;
            if (d.dspen == 0 && d.clrn >= 1) pattern_colour(b);
            buf_move(b, px, py);
        }
        rest = (1 - t1) * len;
        len *= t1 - t0;
    }
    // Step through the pattern; every element boundary is a point.
    int guard = 0;
    while (len >= d.dsrem && guard++ < 10000000) {
        px += d.dsrem * ca;
        py -= d.dsrem * sa;
        if (d.dspen == 0) {
            buf_draw(b, px, py);
        } else {
            if (d.clrn >= 1) pattern_colour(b);
            buf_move(b, px, py);
        }
        len -= d.dsrem;
        next_element(d);
        if (d.dsrem <= 0) d.dsrem = 1;
    }
    d.dsrem -= len;
    if (rest > 0) {
        if (d.dspen == 0) buf_draw(b, px + len * ca, py - len * sa);
        dash_skip(d, rest);
        buf_move(b, ex, ey);
    } else if (d.dspen == 0) {
        buf_draw(b, ex, ey);
    } else {
        buf_move(b, ex, ey);
    }
    d.curx = x;
    d.cury = y;
}

void qqrmov(DeviceBlock *b, double x, double y) noexcept {
    DeviceState &d = b->dev;
    d.curx = x;
    d.cury = y;
    buf_move(b, x, y);
}

void qqrdrw(DeviceBlock *b, double x, double y) noexcept {
    DeviceState &d = b->dev;
    d.curx = x;
    d.cury = y;
    transform(b, x, y);
    // A point that repeats the last one is not stored twice.  With two
    // points stored the pair itself is compared too: a first draw that went
    // nowhere gives way to the next point.
    int n = d.npol;
    if (n == 2 && d.polx[0] == d.polx[1] && d.poly[0] == d.poly[1]) {
        d.polx[1] = x;
        d.poly[1] = y;
        return;
    }
    if (n >= 2 && d.polx[n - 1] == x && d.poly[n - 1] == y) return;
    buf_append(b, x, y);
}

void qqplot(DeviceBlock *b, double x, double y, int op) noexcept {
    if (op == QQ_DRAW) b->sess.nvec++;
    const DriverOps *drv = b->dev.drv;
    if (drv && drv->line) drv->line(b, x, y, op);
}

void qqflsh(DeviceBlock *b) noexcept {
    DeviceState &d = b->dev;
    if (d.npol == 0) return;
    d.inflsh = 1;
    int n = d.npol;
    // The buffer is free again before anything is drawn, so that a driver
    // or a hook that flushes cannot see the same points twice.
    d.npol = 0;
    const DriverOps *drv = d.drv;
    if (n >= 2 && drv && drv->polyline && !d.segtest && qqallin(b, d.polx, d.poly, n)) {
        // Nothing to clip or test: the driver takes the piece at once.
        b->sess.nvec += n - 1;
        drv->polyline(b, d.polx, d.poly, n);
    } else {
        ClipPen pen{b, 0, 0, false};
        pen_move(pen, d.polx[0], d.poly[0]);
        for (int i = 1; i < n; ++i) pen_draw(pen, d.polx[i], d.poly[i]);
    }
    if (d.lnwid > 1 && qqnint(d.lnwid * b->core.unitf) > 1 && reaches_clip(b, n))
        qqthick(b, d.polx, d.poly, n);
    // The piece is complete: a driver that buffers paths writes it now,
    // before whatever state change made the layer flush.
    qqplot(b, d.polx[n - 1], d.poly[n - 1], QQ_ENDPATH);
    d.inflsh = 0;
}
