// The settings of bar graphs and their share of the session defaults.
#include "axes/axes.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/subsystems.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "plots/plot_block.h"

namespace {

void bars_init(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    BarState &s = b->bar;
    s.form = 1;
    s.mode = 0;
    s.ngrp = 1;
    s.gap = 0.0;
    s.grppos = 0;
    s.tickx = s.axisy = 0;
    s.chn = 0;
    s.clr[0] = s.clr[1] = s.clr[2] = -1;
    s.border = -1;
    s.depth = -1.0;
    s.angle = 45.0;
    s.nsets = 0;
}

// endgrf ends the count of bar sets of the axis system.
void end_sets(AxesBlock *ab) {
    PlotBlock *b = qqpltblk(ab);
    b->bar.nsets = 0;
}

void bars_session(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    bars_init(b);
    qqaxhook(b, end_sets);
}

void reset_depth(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->bar.depth = -1.0;
    b->bar.angle = 45.0;
}
void reset_group(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->bar.ngrp = 1;
    b->bar.gap = 0.0;
    b->bar.grppos = 0;
}
void reset_position(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->bar.tickx = b->bar.axisy = 0;
}

// A colour argument: -1 or a colour value.
bool bad_colour(PlotBlock *b, int c) {
    if (c >= -1) return false;
    qqwarn(b, 2, c);
    return true;
}

const ResetEntry kResets[] = {
    {"BARD", reset_depth}, {"BARG", reset_group}, {"BARP", reset_position}, {nullptr, nullptr}};

}  // namespace

extern const Subsystem kxsub_bars = {"bars", bars_init, bars_session, nullptr, kResets, nullptr};

void barmod(const char *cmode, const char *ckey) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("barmod"));
    if (!b) return;
    int k = qqkey(b, "FIXE+VARI", 2, cmode);
    if (k == 0) return;
    if (qqkey(b, "WIDT", 1, ckey) == 0) return;
    b->bar.mode = k - 1;
}

void bargrp(int ngrp, double gap) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("bargrp"));
    if (!b || qqchki(b, ngrp, 1, 30)) return;
    b->bar.ngrp = ngrp;
    b->bar.gap = gap;
    b->bar.grppos = 0;
}

void barpos(const char *copt) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("barpos"));
    if (!b) return;
    int k = qqkey(b, "NONE+TICK+AXIS+BOTH", 4, copt);
    if (k == 0) return;
    b->bar.tickx = k == 2 || k == 4;
    b->bar.axisy = k == 3 || k == 4;
}

void barclr(int ic1, int ic2, int ic3) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("barclr"));
    if (!b || bad_colour(b, ic1) || bad_colour(b, ic2) || bad_colour(b, ic3)) return;
    b->bar.clr[0] = ic1;
    b->bar.clr[1] = ic2;
    b->bar.clr[2] = ic3;
}

void barbor(int iclr) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("barbor"));
    if (!b || bad_colour(b, iclr)) return;
    b->bar.border = iclr;
}

void baropt(double xf, double angle) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("baropt"));
    if (!b) return;
    b->bar.depth = xf;
    b->bar.angle = angle;
}

void chnbar(const char *copt) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("chnbar"));
    if (!b) return;
    int k = qqkey(b, "NONE+COLO+PATT+BOTH", 4, copt);
    if (k > 0) b->bar.chn = k - 1;
}
