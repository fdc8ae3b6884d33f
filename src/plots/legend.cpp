// Legends: a framed box with a title and one entry per curve, the entries'
// attributes taken from what the curves recorded.
#include <cstring>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "plots/curves.h"

void qqleginit(glbblk *b) noexcept {
    LegendState &g = b->leg;
    g.bgd = -1;
    g.clrflag = 0;
    g.mix = 0;
    g.kind = 0;
    g.nsel = -1;
    g.tblcols = 3;
    g.tblorder = 0;
    g.init = 0;
    g.nrec = 0;
}

void qqlegrecord(glbblk *b, int entry, int pattern, bool line, bool symbol) noexcept {
    if (entry < 1 || entry > QQ_NLEG || b->leg.ownpat) return;
    LegendRecord &r = b->leg.rec[entry - 1];
    const DeviceState &d = b->dev;
    const CurveState &c = b->crv;
    r.ltyp = line ? 0 : -1;
    r.ndsh = d.dshn;
    for (int i = 0; i < 10; ++i) r.dsh[i] = i < d.dshn ? d.dshl[i] : 0;
    r.symb = symbol ? c.marker : -1;
    r.thick = c.thkcrv;
    r.penw = d.lnwid < 0 ? -d.lnwid : d.lnwid;
    r.colour = d.curclr;
    r.mcolour = c.mrkclr;
    r.pattern = pattern;
    if (entry > b->leg.nrec) b->leg.nrec = entry;
}
