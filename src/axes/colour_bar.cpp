// The colour bar of a colour axis system (graf3): its settings, its place
// beside the system, its colours and its axis.
//
// The bar's z scaling is the third row of the scaling record (a[2], e[2],
// orl[2], stp[2], log[2]), written by graf3 before the system is drawn.
// All positions are plot coordinates, y growing downward; the bar's
// position is its lower left corner.
#include <cmath>

#include "axes/axes.h"
#include "axes/axes_block.h"
#include "axes/axis_draw.h"
#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"

void qqdecades(const AxesBlock *b, double za, double ze, double *e0, double *e1) noexcept {
    // The cut is towards zero with the library's tolerance, so a negative
    // whole exponent at the start still moves a decade out.
    double t = b->core.eps;
    int x = b->ax.expzlb;
    *e0 = za;
    *e1 = ze;
    if (x == 0) return;
    bool rising = ze >= za;
    if (rising)
        *e0 = std::trunc(za >= 0 ? za + t : za - 1 + t);
    else
        *e0 = std::trunc(za >= 0 ? za + 1 - t : za - t);
    if (x == 2) {
        if (rising)
            *e1 = std::trunc(ze >= 0 ? ze + 1 - t : ze - t);
        else
            *e1 = std::trunc(ze >= 0 ? ze + t : ze - 1 + t);
    }
}

namespace {

enum { FIXE, LEFT, RIGH, BOTT, TOP };

bool vertical(const AxesState &ax) {
    return ax.posbar <= RIGH;
}

// The z limits that the bar's axis runs over: whole exponents on a
// logarithmic axis with expzlb, else the scaling itself.
void bar_limits(const AxesBlock *b, double *e0, double *e1) {
    const ScaleRecord &r = b->ax.rec;
    *e0 = r.a[2];
    *e1 = r.e[2];
    if (r.log[2]) qqdecades(b, r.a[2], r.e[2], e0, e1);
}

// The call that draws the bar's axis: the attributes of Z, placed as an
// X axis for a horizontal bar, as a Y axis for a vertical one.
AxisCall bar_axis(const AxesBlock *b, int bx, int by) {
    const AxesState &ax = b->ax;
    const ScaleRecord &r = ax.rec;
    double e0, e1;
    bar_limits(b, &e0, &e1);
    AxisCall c{};
    c.axis = 2;
    c.a = e0;
    c.e = e1;
    // Whole decades give the axis its start and its first label as well.
    c.orl = r.log[2] && ax.expzlb != 0 ? e0 : r.orl[2];
    c.step = r.stp[2];
    c.len = ax.nlen[2];
    c.logax = r.log[2];
    c.level = 4;
    int w = ax.widbar;
    bool far = ax.posbar == LEFT || ax.posbar == TOP;
    c.side = far ? 1 : 0;
    if (vertical(ax)) {
        c.geo = 2;
        c.x0 = far ? bx : bx + w - 1;
        c.y0 = by;
    } else {
        c.geo = 1;
        c.x0 = bx;
        c.y0 = far ? by - w + 1 : by;
    }
    return c;
}

// The room that the bar's axis takes beyond its line: ticks, labels and
// name.
int bar_axis_room(AxesBlock *b) {
    AxesState &ax = b->ax;
    AxisCall c = bar_axis(b, 0, 0);
    c.measure = 1;
    int e = 0, tp = ax.ticpos[2];
    if (ax.ntic[2] > 0) e += tp == 0 ? ax.ticmaj : tp == 2 ? ax.ticmaj / 2 : 0;
    if (ax.lab[2] != 0) {
        int sav = ax.axtyp;
        ax.axtyp = 0;
        e += ax.labdis[2] + qqaxis(b, c);
        ax.axtyp = sav;
    }
    if (ax.name[2][0]) e += ax.namdis[2] + ax.hname;
    return e;
}

}  // namespace

void qqbarsides(AxesBlock *b, int ext[4]) noexcept {
    const AxesState &ax = b->ax;
    if (!ax.bar3 || ax.nobar || ax.nogrf) return;
    static const int side[5] = {3, 1, 3, 0, 2};
    ext[side[ax.posbar]] += ax.spcbar + ax.widbar + bar_axis_room(b);
}

void qqbar3(AxesBlock *b) noexcept {
    AxesState &ax = b->ax;
    const ScaleRecord &r = ax.rec;
    int nxa = r.nxa, nya = r.nya, nxl = r.nxl, nyl = r.nyl;
    int len = ax.nlen[2], w = ax.widbar, s = ax.spcbar, vx = ax.vkxbar, vy = ax.vkybar;
    // L(k) of the sides 0 bottom, 1 right, 2 top, 3 left, from the
    // extents below, left, above, right.
    int ext[4];
    qqaxsides(b, ext);
    const int L[4] = {ext[0], ext[3], ext[2], ext[1]};
    int bx, by;
    if (vertical(ax)) {
        bx = ax.posbar == FIXE   ? nxa + vx + s + nxl
             : ax.posbar == LEFT ? nxa + vx - s - w - L[3]
                                 : nxa + vx + s + nxl + L[1];
        by = ax.jusbar == 0   ? nya - vy
             : ax.jusbar == 1 ? nya - vy - (nyl - len) / 2
                              : nya - vy - nyl + len;
    } else {
        by = ax.posbar == BOTT ? nya - vy + s + w + L[0] : nya - vy - s - nyl - L[2];
        bx = ax.jusbar == 0   ? nxa + vx
             : ax.jusbar == 1 ? nxa + vx + (nxl - len) / 2
                              : nxa + vx - len + nxl;
    }

    // The colours: one band for each colour of the range, from the start
    // of the bar (bottom or left), with double extents so that the
    // rounding spreads evenly.
    double e0, e1;
    bar_limits(b, &e0, &e1);
    double colored = len - 1, start = 0;
    if (e1 != e0 && (e0 != r.a[2] || e1 != r.e[2])) {
        colored = (r.e[2] - r.a[2]) * len / (e1 - e0) - 1;
        start = qqround((r.a[2] - e0) * (len - 1) / (e1 - e0));
    }
    int lo = b->clr.minidx, hi = b->clr.maxidx;
    int n = hi - lo + 1;
    int saved = b->clr.curclr;
    // PostScript and PDF renderers show a seam at the ends of the bar
    // unless the colours reach a unit beyond them.
    bool seamless = qqdevkind(b) == QQ_KIND_PAGE;
    double band = colored / n;
    for (int i = 1; i <= n && band >= 0; ++i) {
        double p0 = start + (i - 1) * band, p1 = start + i * band;
        if (seamless && i == 1) p0 -= 1;
        if (seamless && i == n) p1 += 1;
        int q0 = qqround(p0), q1 = qqround(p1);
        if (vertical(ax))
            qqfrect(b, bx, by - q1, bx + w - 1, by - q0, lo + i - 1);
        else
            qqfrect(b, bx + q0, by - w + 1, bx + q1, by, lo + i - 1);
    }
    if (b->clr.curclr != saved) qqsetc(b, saved);
    if (ax.frmbar != 0) {
        if (vertical(ax))
            qqaxframe(b, bx, by - len + 1, bx + w - 1, by, ax.frmbar, -1);
        else
            qqaxframe(b, bx, by - w + 1, bx + len - 1, by, ax.frmbar, -1);
    }
    // The axis, with the type flag of axstyp off for its duration.
    int savtyp = ax.axtyp;
    ax.axtyp = 0;
    qqaxis(b, bar_axis(b, bx, by));
    ax.axtyp = savtyp;
    ax.bar3top = ax.posbar == TOP ? vy + w + s + bar_axis_room(b) : 0;
    qqflsh(b);
}

void ax3len(int nxl, int nyl, int nzl) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("ax3len"));
    if (!b) return;
    int longer = b->core.nxp > b->core.nyp ? b->core.nxp : b->core.nyp;
    if (qqchki(b, nzl, 2, longer)) return;
    if (qqaxslen(b, nxl, nyl)) b->ax.nlen[2] = nzl;
}
