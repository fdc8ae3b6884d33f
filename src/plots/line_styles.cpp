// Line styles: lintyp and its named forms, myline, linclr and line.
//
// The dash walker of the device layer does the work; these routines only
// set its pattern (lengths in plot coordinates) and restart it.
#include "plots/line_styles.h"

#include <cstring>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/subsystems.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "plots/plot_block.h"

namespace {

// Lengths in 1/100 cm: a single length is a solid line.
const int kStyles[8][5] = {
    {1, 1},               // solid
    {2, 1, 10},           // dot
    {2, 10, 10},          // dash
    {4, 30, 15, 10, 15},  // chndsh
    {4, 1, 15, 15, 15},   // chndot
    {2, 20, 15},          // dashm
    {2, 1, 20},           // dotl
    {2, 30, 20},          // dashl
};

}  // namespace

void qqlintyp(PlotBlock *b, int ityp) noexcept {
    DeviceState &d = b->dev;
    const int *s = kStyles[ityp];
    d.dshn = s[0];
    for (int k = 0; k < s[0]; ++k) {
        int v = qqpxu(b, s[k + 1]);
        d.dshl[k] = v < 1 ? 1 : v;
    }
    b->sty.ltyp = ityp;
    qqdshres(b);
}

void qqdshsave(PlotBlock *b, SavedDash *s) noexcept {
    const DeviceState &d = b->dev;
    s->ltyp = b->sty.ltyp;
    s->dshn = d.dshn;
    std::memcpy(s->dshl, d.dshl, sizeof s->dshl);
    s->dsrem = d.dsrem;
    s->dspen = d.dspen;
    s->dsidx = d.dsidx;
    s->clridx = d.clridx;
}

void qqdshback(PlotBlock *b, const SavedDash *s) noexcept {
    DeviceState &d = b->dev;
    b->sty.ltyp = s->ltyp;
    d.dshn = s->dshn;
    std::memcpy(d.dshl, s->dshl, sizeof d.dshl);
    d.dsrem = s->dsrem;
    d.dspen = s->dspen;
    d.dsidx = s->dsidx;
    d.clridx = s->clridx;
}

void lintyp(int ityp) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("lintyp"));
    if (!b || qqchki(b, ityp, 0, 7)) return;
    qqlintyp(b, ityp);
}

#define KX_NAMED_STYLE(name, n)                   \
    void name() noexcept {                        \
        PlotBlock *b = qqpltblk(KX_ENTRY(#name)); \
        if (b) qqlintyp(b, n);                    \
    }
KX_NAMED_STYLE(solid, 0)
KX_NAMED_STYLE(dot, 1)
KX_NAMED_STYLE(dash, 2)
KX_NAMED_STYLE(chndsh, 3)
KX_NAMED_STYLE(chndot, 4)
KX_NAMED_STYLE(dashm, 5)
KX_NAMED_STYLE(dotl, 6)
KX_NAMED_STYLE(dashl, 7)
#undef KX_NAMED_STYLE

void myline(const int *nray, int n) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("myline"));
    if (!b || qqchki(b, n, 1, 10)) return;
    for (int k = 0; k < n; ++k)
        if (nray[k] < 1) {
            qqwarn(b, 2, nray[k]);
            return;
        }
    DeviceState &d = b->dev;
    d.dshn = n;
    for (int k = 0; k < n; ++k) d.dshl[k] = nray[k];
    qqdshres(b);
}

void linclr(const int *nray, int n) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("linclr"));
    if (!b || qqchki(b, n, 0, 10)) return;
    for (int k = 0; k < n; ++k)
        if (nray[k] < 0) {
            qqwarn(b, 2, nray[k]);
            return;
        }
    DeviceState &d = b->dev;
    d.clrn = n;
    for (int k = 0; k < n; ++k) d.clrtab[k] = nray[k];
    d.clridx = 1;
}

void line(int nx1, int ny1, int nx2, int ny2) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("line"));
    if (!b) return;
    qqline(b, nx1, qqyflp(b, ny1), nx2, qqyflp(b, ny2));
}

int getlin() noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("getlin"));
    if (!b) return 0;
    return b->dev.lnwid < 0 ? -b->dev.lnwid : b->dev.lnwid;
}

int gettyp() noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("gettyp"));
    return b ? b->sty.ltyp : 0;
}
