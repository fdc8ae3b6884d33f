// The colour axis system graf3, the value-to-colour routines that stand on
// its scale, getmat, and the settings of the colour plots.
#include <cmath>
#include <cstddef>
#include <cstring>

#include "axes/axes.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/subsystems.h"
#include "core/warnings.h"
#include "fields/colour_paint.h"
#include "fields/field_block.h"
#include "kolvex.h"
#include "plots/zscale.h"

void graf3(double xa, double xe, double xor_, double xstp, double ya, double ye, double yor,
           double ystp, double za, double ze, double zor, double zstp) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("graf3"));
    if (!b) return;
    AxesState &ax = b->ax;
    if (ax.resmod == 1 || ax.resmod > 2) qqautres(b, ax.autrx, ax.autry, ax.nlen[0], ax.nlen[1]);
    qqautscl(b, 2, &za, &ze, &zor, &zstp);
    if (qqtstscl(b, za, ze, zor, zstp, ax.nlen[2], 0, 0)) return;
    qqzscl(b, za, ze);
    ScaleRecord &r = ax.rec;
    r.a[2] = za;
    r.e[2] = ze;
    r.orl[2] = zor;
    r.stp[2] = zstp;
    r.log[2] = ax.scl[2];
    ax.bar3 = 1;
    ax.bar3top = 0;
    if (qqgraf(b, xa, xe, xor_, xstp, ya, ye, yor, ystp)) {
        ax.bar3 = 0;
        return;
    }
    ax.chkz[0] = b->zsc.lo;
    ax.chkz[1] = b->zsc.hi;
    if (!ax.nobar && !ax.nogrf) qqbar3(b);
    b->core.level = 3;
}

int nzposn(double z) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("nzposn"));
    return b ? qqzclr(b, z) : 0;
}

void colray(const double *zray, int *icray, int n) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("colray"));
    if (!b) return;
    if (n < 1) {
        qqwarn(b, 2, n);
        return;
    }
    for (int i = 0; i < n; ++i) icray[i] = qqzclr(b, zray[i]);
}

void getmat(const double *xray, const double *yray, const double *zray, int n, double *zmat, int nx,
            int ny, double zval, int *imat, double *wmat) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("getmat"));
    if (!b) return;
    if (n < 1 || nx < 2 || ny < 2) {
        qqwarn(b, 2, n < 1 ? n : nx < 2 ? nx : ny);
        return;
    }
    // The grid spans the X and Y axes of the system in force: the 3-D one
    // while it is open, else the 2-D one.
    const ScaleRecord &r = b->ax.rec;
    double a[2] = {r.a[0], r.a[1]}, e[2] = {r.e[0], r.e[1]};
    int lg[2] = {r.log[0] != 0, r.log[1] != 0};
    if (b->cpl.xyends3d) b->cpl.xyends3d(b, a, e, lg);
    double lim[2][2];
    for (int k = 0; k < 2; ++k) {
        lim[k][0] = lg[k] ? std::pow(10.0, a[k]) : a[k];
        lim[k][1] = lg[k] ? std::pow(10.0, e[k]) : e[k];
    }
    double xa = lim[0][0], ya = lim[1][0];
    double dx = (lim[0][1] - xa) / (nx - 1), dy = (lim[1][1] - ya) / (ny - 1);
    size_t cells = (size_t)nx * (size_t)ny;
    std::memset(zmat, 0, cells * sizeof *zmat);
    std::memset(imat, 0, cells * sizeof *imat);
    std::memset(wmat, 0, cells * sizeof *wmat);
    const int wx = b->cpl.mdfwin[0], wy = b->cpl.mdfwin[1];
    const double power = b->cpl.mdfpow;
    for (int p = 0; p < n; ++p) {
        double x = xray[p], y = yray[p], z = zray[p];
        if (!std::isfinite(x) || !std::isfinite(y) || std::isnan(z)) continue;
        double cx = (x - xa) / dx + 1, cy = (y - ya) / dy + 1;
        if (!(std::fabs(cx) < 1e9 && std::fabs(cy) < 1e9)) continue;
        int i0 = (int)std::trunc(cx - wx) + 1, i1 = (int)std::trunc(cx + wx);
        int j0 = (int)std::trunc(cy - wy) + 1, j1 = (int)std::trunc(cy + wy);
        if (i0 < 1) i0 = 1;
        if (j0 < 1) j0 = 1;
        if (i1 > nx) i1 = nx;
        if (j1 > ny) j1 = ny;
        for (int i = i0 - 1; i < i1; ++i)
            for (int j = j0 - 1; j < j1; ++j) {
                size_t k = (size_t)i * ny + j;
                double ex = xa + i * dx - x, ey = ya + j * dy - y;
                double d2 = ex * ex + ey * ey;
                if (d2 == 0) {
                    zmat[k] = z;
                    imat[k] = -1;
                } else if (imat[k] != -1) {
                    double w = 1.0 / std::pow(std::sqrt(d2), power);
                    imat[k]++;
                    zmat[k] += w * z;
                    wmat[k] += w;
                }
            }
    }
    for (size_t k = 0; k < cells; ++k) {
        if (imat[k] == 0)
            zmat[k] = zval;
        else if (imat[k] > 0)
            zmat[k] /= wmat[k];
    }
}

void mdfmat(int ix, int iy, double weight) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("mdfmat"));
    if (!b) return;
    if (ix < 1 || iy < 1) {
        qqwarn(b, 2, ix < 1 ? ix : iy);
        return;
    }
    if (!(weight > 0)) {
        qqwarnd(b, 2, weight);
        return;
    }
    b->cpl.mdfwin[0] = ix;
    b->cpl.mdfwin[1] = iy;
    b->cpl.mdfpow = weight;
}

void nobgd() noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("nobgd"));
    if (b) b->cpl.nobgd = 1;
}

void hsym3d(double xh) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("hsym3d"));
    if (!b) return;
    b->cpl.hsym3d = xh;
    b->cpl.cubemode = 0;
}

void thkc3d(double xthk) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("thkc3d"));
    if (b) b->cpl.thkc3d = xthk;
}

void setres3d(double xl, double yl, double zl) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("setres3d"));
    if (!b) return;
    const double v[3] = {xl, yl, zl};
    for (int i = 0; i < 3; ++i) {
        if (!(v[i] >= b->core.eps))
            qqwarnd(b, 2, v[i]);
        else
            b->cpl.cube[i] = v[i];
    }
    b->cpl.cubemode = 1;
}

void autres3d(int ix, int iy, int iz) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("autres3d"));
    if (!b) return;
    if (qqchki(b, ix, 2, 10000) || qqchki(b, iy, 2, 10000) || qqchki(b, iz, 2, 10000)) return;
    b->cpl.grid3[0] = ix;
    b->cpl.grid3[1] = iy;
    b->cpl.grid3[2] = iz;
    b->cpl.cubemode = 2;
}

namespace {

void colour_plots_init(CoreBlock *blk) {
    FieldBlock *b = qqfldblk(blk);
    ColourPlotState &c = b->cpl;
    c = ColourPlotState{};
    // The single-precision values of 0.08 and 0.04.
    c.hsym3d = 0.07999999821186066;
    c.thkc3d = 0.03999999910593033;
    c.mdfwin[0] = c.mdfwin[1] = 2;
    c.mdfpow = 2.0;
    c.mshclr = -1;
}

void r_nobg(CoreBlock *blk) {
    FieldBlock *b = qqfldblk(blk);
    b->cpl.nobgd = 0;
}
void r_mdfm(CoreBlock *blk) {
    FieldBlock *b = qqfldblk(blk);
    b->cpl.mdfwin[0] = b->cpl.mdfwin[1] = 2;
    b->cpl.mdfpow = 2.0;
}
void r_thkc(CoreBlock *blk) {
    FieldBlock *b = qqfldblk(blk);
    b->cpl.thkc3d = 0.03999999910593033;
}

const ResetEntry kResets[] = {
    {"NOBG", r_nobg}, {"MDFM", r_mdfm}, {"THKC", r_thkc}, {nullptr, nullptr}};

}  // namespace

extern const Subsystem kxsub_colourplots = {"colourplots", nullptr, colour_plots_init,
                                            nullptr,       kResets, nullptr};
