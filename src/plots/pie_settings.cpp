// The settings of the pie charts: form, labels' texts, 3-D look, leaders,
// colours, explosion and the segment callback.
#include <cmath>
#include <cstring>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/subsystems.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "plots/plot_block.h"

namespace {

void reset_colours(CoreBlock *blk) {
    PieState &p = qqpltblk(blk)->pie;
    p.nclr = 0;
    for (int i = 0; i < 30; ++i) p.top[i] = p.rim[i] = -1;
}
void reset_explode(CoreBlock *blk) {
    qqpltblk(blk)->pie.expl = 0;
}
void reset_labels(CoreBlock *blk) {
    PieState &p = qqpltblk(blk)->pie;
    p.labl[0] = p.labr[0] = '\0';
}
void reset_leader(CoreBlock *blk) {
    PieState &p = qqpltblk(blk)->pie;
    p.leader = 0;
    p.arrow = 2301;
}
void reset_change(CoreBlock *blk) {
    qqpltblk(blk)->pie.chn = 2;
}

void pies_init(CoreBlock *blk) {
    PieState &p = qqpltblk(blk)->pie;
    p.form = 0;
    p.rot = 0.0;
    p.view = 45.0;
    p.hfac = (double)0.2f;
    p.dist[0] = p.dist[1] = 1.0;
    p.gap = 20.0;
    p.border = -1;
    p.cbk = nullptr;
    reset_colours(blk);
    reset_explode(blk);
    reset_labels(blk);
    reset_leader(blk);
    reset_change(blk);
}

const ResetEntry kResets[] = {{"PIEC", reset_colours}, {"PIEE", reset_explode},
                              {"PIEL", reset_labels},  {"PIEV", reset_leader},
                              {"CHNP", reset_change},  {nullptr, nullptr}};

}  // namespace

extern const Subsystem kxsub_pies = {"pies", pies_init, pies_init, nullptr, kResets, nullptr};

void pietyp(const char *ctyp) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("pietyp"));
    if (!b) return;
    int k = qqkey(b, "2D  +3D  ", 2, ctyp);
    if (k > 0) b->pie.form = k - 1;
}

void pielab(const char *clab, const char *cpos) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("pielab"));
    if (!b) return;
    int k = qqkey(b, "LEFT+RIGH", 2, cpos);
    if (k == 0) return;
    qqscpy(k == 1 ? b->pie.labl : b->pie.labr, clab ? clab : "", 20);
}

void pieopt(double xf, double angle) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("pieopt"));
    if (!b) return;
    if (xf > 0 && std::isfinite(xf))
        b->pie.hfac = xf;
    else
        qqwarnd(b, 2, xf);
    if (angle > 0 && angle <= 90)
        b->pie.view = angle;
    else
        qqwarnd(b, 2, angle);
}

void pierot(double xrot) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("pierot"));
    if (b) b->pie.rot = xrot;
}

void pieval(double x, const char *copt) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("pieval"));
    if (!b) return;
    int k = qqkey(b, "GAP +DIST", 2, copt);
    if (k == 1) {
        b->pie.gap = x;
    } else if (k == 2) {
        if (!(x > 0)) return qqwarnd(b, 2, x);
        b->pie.dist[0] = b->pie.dist[1] = x;
    }
}

void pievec(int ivec, const char *copt) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("pievec"));
    if (!b) return;
    if (ivec < 0 || ivec > 9999) return qqwarn(b, 2, ivec);
    int k = qqkey(b, "BROK+STRA+NONE", 3, copt);
    if (k == 0) return;
    b->pie.arrow = ivec;
    b->pie.leader = k - 1;
}

void piebor(int nclr) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("piebor"));
    if (!b) return;
    if (nclr < -1) return qqwarn(b, 2, nclr);
    b->pie.border = nclr;
}

void pieclr(const int *nc1ray, const int *nc2ray, int n) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("pieclr"));
    if (!b) return;
    if (n < 0 || n > 30) return qqwarn(b, 2, n);
    for (int i = 0; i < n; ++i) {
        if (nc1ray[i] < -1) return qqwarn(b, 2, nc1ray[i]);
        if (nc2ray[i] < -1) return qqwarn(b, 2, nc2ray[i]);
    }
    PieState &p = b->pie;
    p.nclr = n;
    for (int i = 0; i < 30; ++i) {
        p.top[i] = i < n ? nc1ray[i] : -1;
        p.rim[i] = i < n ? nc2ray[i] : -1;
    }
}

void pieexp(void) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("pieexp"));
    if (b) b->pie.expl = 1;
}

void chnpie(const char *copt) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("chnpie"));
    if (!b) return;
    int k = qqkey(b, "NONE+COLO+PATT+BOTH", 4, copt);
    if (k > 0) b->pie.chn = k - 1;
}

void piecbk(QQPieCallback callback) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("piecbk"));
    if (b) b->pie.cbk = callback;
}
