#include "plots/zscale.h"

#include <cmath>

#include "core/guard.h"
#include "core/subsystems.h"
#include "kolvex.h"
#include "plots/plot_block.h"

void qqzscl(PlotBlock *b, double zmin, double zmax) noexcept {
    ZScaleState &z = b->zsc;
    const AxesState &ax = b->ax;
    z.zmin = zmin;
    z.zmax = zmax;
    z.logz = ax.scl[2];
    double lo = zmin, hi = zmax;
    if (z.logz) {
        if (ax.autscl[2]) {
            lo = ax.autmin[2];
            hi = ax.autmax[2];
        } else {
            lo = std::pow(10.0, zmin);
            hi = std::pow(10.0, zmax);
        }
    }
    if (zmin > zmax) std::swap(lo, hi);
    z.lo = lo;
    z.hi = hi;
    int mn = b->clr.minidx, mx = b->clr.maxidx;
    z.k = std::fabs(zmax - zmin) < b->core.eps ? 0.0 : (mx - mn + 1) / (zmax - zmin);
}

int qqzclr(const PlotBlock *b, double zv) noexcept {
    const ZScaleState &z = b->zsc;
    const ColourState &c = b->clr;
    bool rising = z.zmax > z.zmin;
    if (zv < z.lo) return rising ? c.blkidx : c.whtidx;
    if (zv > z.hi) return rising ? c.whtidx : c.blkidx;
    if (std::isnan(zv)) return c.blkidx;
    double v = z.logz ? std::log10(zv) : zv;
    double t = std::trunc((v - z.zmin) * z.k + c.minidx);
    if (!(t > -1e9 && t < 1e9)) return c.minidx;
    int k = (int)t;
    if (k <= c.minidx - 1) return c.minidx;
    if (k >= c.maxidx + 1) return c.maxidx;
    return k;
}

void qqzrgb(const PlotBlock *b, double zv, double *r, double *g, double *bl) noexcept {
    int e = b->clr.colmap[qqzclr(b, zv) & 255];
    *r = ((e >> 16) & 255) / 255.0;
    *g = ((e >> 8) & 255) / 255.0;
    *bl = (e & 255) / 255.0;
}

int qqzuser(const PlotBlock *b, double *za, double *ze) noexcept {
    *za = b->zsc.ua;
    *ze = b->zsc.ue;
    return b->zsc.uset;
}

void zscale(double zmin, double zmax) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("zscale"));
    if (!b) return;
    b->zsc.uset = 1;
    b->zsc.ua = zmin;
    b->zsc.ue = zmax;
}

namespace {
void zsc_init(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->zsc = ZScaleState{};
    b->zsc.zmax = 1;
    b->zsc.hi = 1;
}

// reset("ZSCA") forgets the range of zscale; the scale of a plot drawn
// since stays with it.
void reset_zscale(CoreBlock *b) { qqpltblk(b)->zsc.uset = 0; }

const ResetEntry kResets[] = {{"ZSCA", reset_zscale}, {nullptr, nullptr}};
}  // namespace

extern const Subsystem kxsub_zscale = {"zscale", zsc_init, zsc_init, nullptr, kResets, nullptr};
