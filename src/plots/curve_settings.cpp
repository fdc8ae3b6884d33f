// The settings of curves and their symbols, and the attribute cycles that
// change colour, line style and symbol from one curve to the next.
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "axes/axes.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/subsystems.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "plots/curves.h"
#include "plots/fill.h"
#include "plots/plot_block.h"

namespace {

// endgrf ends the curve counters and the legend's records.
void end_records(AxesBlock *b) {
    qqresatt(qqpltblk(b));
}

// The frames that the axis systems draw are the plots' frames.
void axis_frame(AxesBlock *b, int x, int y, int w, int h, int t, double angle, int colour) {
    qqframe(qqpltblk(b), x, y, w, h, t, angle, colour);
}

void curves_init(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    CurveState &c = b->crv;
    c.polcrv = CRV_LINE;
    c.barwth = 0.75;
    c.bartyp = 0;
    c.splgrd = 3;
    c.splnpt = 200;
    c.marker = 0;
    c.incmrk = 0;
    c.hsymbl = (int)(36.0 / b->core.unitf);
    if (c.hsymbl < 1) c.hsymbl = 1;
    c.symrot = 0.0;
    c.mrkclr = -1;
    c.thkcrv = 1;
    c.chncrv = 0;
    c.inccrv = 1;
    for (int k = 0; k < 3; ++k) {
        c.gapon[k] = 0;
        c.gaplim[k] = 0.0;
    }
    qqresatt(b);
    qqleginit(b);
    qqaxhook(b, end_records);
    b->ax.framefn = axis_frame;
}

void curves_release(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    std::free(b->crv.usrx);
    b->crv.usrx = b->crv.usry = nullptr;
    b->crv.usrn = 0;
}

void reset_bartyp(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->crv.bartyp = 0;
}
void reset_barwth(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->crv.barwth = 0.75;
}
void reset_chncrv(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->crv.chncrv = 0;
}
void reset_gapcrv(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    for (int k = 0; k < 3; ++k) b->crv.gapon[k] = 0;
}
void reset_legclr(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->leg.clrflag = 0;
}
void reset_mixleg(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->leg.mix = 0;
}
void reset_polcrv(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->crv.polcrv = CRV_LINE;
}
void reset_splmod(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->crv.splgrd = 3;
    b->crv.splnpt = 200;
}
void reset_symrot(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->crv.symrot = 0.0;
}
void reset_thkcrv(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->crv.thkcrv = 1;
}
// The legend's line count goes with the attribute state of the curves.
void reset_legend(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    qqresatt(b);
}

const ResetEntry kResets[] = {
    {"BART", reset_bartyp}, {"BARW", reset_barwth}, {"CHNC", reset_chncrv}, {"GAPC", reset_gapcrv},
    {"LEGC", reset_legclr}, {"LEGE", reset_legend}, {"MIXL", reset_mixleg}, {"POLC", reset_polcrv},
    {"SPLM", reset_splmod}, {"SYMR", reset_symrot}, {"THKC", reset_thkcrv}, {nullptr, nullptr},
};

}  // namespace

extern const Subsystem kxsub_curves = {"curves",       nullptr, curves_init,
                                       curves_release, kResets, nullptr};

void qqresatt(PlotBlock *b) noexcept {
    // A fresh axis system starts the cycles and the legend's records anew.
    CurveState &c = b->crv;
    c.cycpos = 1;
    c.ncrv = 1;
    c.nchg = 1;
    c.legpend = 1;
    c.nshd = 0;
    c.shdarea = 0;
    b->leg.nrec = 0;
}

void resatt() noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("resatt"));
    if (!b) return;
    qqresatt(b);
}

void qqchnatt(PlotBlock *b) noexcept {
    CurveState &c = b->crv;
    if (c.nchg == 1) return;
    c.nchg = 1;
    c.cycpos = c.cycpos >= 30 ? 1 : c.cycpos + 1;
    c.ncrv++;
    c.legpend = 1;
    // Symbols run through 1 to 22: the two half circles close the table.
    if (c.incmrk != 0) c.marker = c.marker % (QQ_NSYMB - 2) + 1;
}

void chnatt() noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("chnatt"));
    if (!b) return;
    qqchnatt(b);
}

void qqcurvedone(PlotBlock *b) noexcept {
    CurveState &c = b->crv;
    if (c.nchg >= c.inccrv) {
        c.nchg = 0;
        qqchnatt(b);
    } else {
        c.nchg++;
    }
}

void polcrv(const char *copt) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("polcrv"));
    if (!b) return;
    int k = qqkey(b, "LINE+STEP+BARS+SPLI+PSPL+STEM+STAI+FBAR+CURV", 9, copt);
    if (k > 0) b->crv.polcrv = k - 1;
}

void barwth(double xf) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("barwth"));
    if (!b) return;
    b->crv.barwth = xf;
}

void bartyp(const char *copt) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("bartyp"));
    if (!b) return;
    // The first four words choose the bar type, the last two the form of
    // financial bars; each leaves the other setting alone.
    int k = qqkey(b, "VERT+HORI+3DVE+3DHO+TICK+CAND", 6, copt);
    if (k >= 1 && k <= 4) b->crv.bartyp = k - 1;
    if (k >= 5) b->bar.form = k - 5;
}

void splmod(int ngrad, int npts) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("splmod"));
    if (!b || qqchki(b, ngrad, 2, 10) || qqchki(b, npts, 5, 30000)) return;
    b->crv.splgrd = ngrad;
    b->crv.splnpt = npts;
}

int qqsplpts() noexcept {
    PlotBlock *b = qqpltblk(qqcur());
    return b ? b->crv.splnpt + 1 : 201;
}

void marker(int nsym) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("marker"));
    if (!b) return;
    bool user = b->crv.usrn > 0 && nsym == b->crv.usrsym;
    if (!user && qqchki(b, nsym, -1, QQ_NSYMB - 1)) return;
    b->crv.marker = nsym;
}

void incmrk(int nmrk) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("incmrk"));
    if (!b) return;
    b->crv.incmrk = nmrk;
}

void hsymbl(int nhsym) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("hsymbl"));
    if (!b || qqchki(b, nhsym, 1, 10000)) return;
    b->crv.hsymbl = nhsym;
}

void getsym(int *nsym, int *nhsym) noexcept {
    *nsym = *nhsym = 0;
    PlotBlock *b = qqpltblk(KX_ENTRY("getsym"));
    if (!b) return;
    *nsym = b->crv.marker;
    *nhsym = b->crv.hsymbl;
}

void symrot(double xrot) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("symrot"));
    if (!b) return;
    b->crv.symrot = xrot;
}

void mrkclr(int nclr) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("mrkclr"));
    if (!b || qqchki(b, nclr, -1, -1)) return;
    b->crv.mrkclr = nclr;
}

void thkcrv(int ithk) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("thkcrv"));
    if (!b || qqchki(b, ithk, 1, 10000)) return;
    b->crv.thkcrv = ithk;
}

void chncrv(const char *copt) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("chncrv"));
    if (!b) return;
    int k = qqkey(b, "NONE+COLO+LINE+BOTH", 4, copt);
    if (k > 0) b->crv.chncrv = k - 1;
}

void inccrv(int ncrv) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("inccrv"));
    if (!b || qqchki(b, ncrv, 1, 32000)) return;
    b->crv.inccrv = ncrv;
}

void gapcrv(double xgap) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("gapcrv"));
    if (!b) return;
    b->crv.gapon[0] = 1;
    b->crv.gaplim[0] = xgap;
}

void gapsiz(double xgap, const char *cax) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("gapsiz"));
    if (!b) return;
    char w[4] = {0, 0, 0, 0};
    for (int k = 0; k < 3 && cax && cax[k]; ++k)
        w[k] = (char)(cax[k] >= 'a' && cax[k] <= 'z' ? cax[k] - 32 : cax[k]);
    if (std::strcmp(w, "RES") == 0) {
        for (int k = 0; k < 3; ++k) b->crv.gapon[k] = 0;
        return;
    }
    for (int k = 0; k < 3; ++k) {
        int axis = w[k] == 'X' ? 0 : w[k] == 'Y' ? 1 : w[k] == 'Z' ? 2 : -1;
        if (axis < 0) continue;
        b->crv.gapon[axis] = 1;
        b->crv.gaplim[axis] = xgap;
    }
}

void mysymb(const double *xray, const double *yray, int n, int isym, int iflag) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("mysymb"));
    if (!b) return;
    if (n < 1) {
        qqwarn(b, 2, n);
        return;
    }
    if (iflag != 0 && iflag != 1) {
        qqwarn(b, 2, iflag);
        return;
    }
    if (isym < 0) {
        qqwarn(b, 2, isym);
        return;
    }
    bool big = false;
    for (int i = 0; i < n; ++i)
        if (!(std::fabs(xray[i]) <= 1.0000009536743164) ||
            !(std::fabs(yray[i]) <= 1.0000009536743164))
            big = true;
    if (big) qqwar1(b, 108, "values out of range");
    CurveState &c = b->crv;
    std::free(c.usrx);
    c.usrx = c.usry = nullptr;
    c.usrn = 0;
    if ((size_t)n > (size_t)1 << 24) {
        qqwar0(b, 53);
        return;
    }
    double *p = (double *)std::malloc(sizeof(double) * 2 * (size_t)n);
    if (!p) {
        qqwar0(b, 53);
        return;
    }
    std::memcpy(p, xray, sizeof(double) * n);
    std::memcpy(p + n, yray, sizeof(double) * n);
    c.usrx = p;
    c.usry = p + n;
    c.usrn = n;
    c.usrsym = isym;
    c.usrfill = iflag;
}
