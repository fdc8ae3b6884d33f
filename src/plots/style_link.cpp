// Line styles, patterns and fills as the curve routines use them, on top of
// the line-style and fill settings.
#include <cstring>

#include "devices/device.h"
#include "plots/curve_draw.h"
#include "plots/curves.h"
#include "plots/fill.h"
#include "plots/line_styles.h"
#include "plots/patterns.h"
#include "plots/plot_block.h"

void qqsetstyle(PlotBlock *b, int ltyp) noexcept {
    if (ltyp < 0 || ltyp > 7) return;
    qqflsh(b);
    qqlintyp(b, ltyp);
}

int qqgetstyle(PlotBlock *b) noexcept {
    return b->sty.ltyp;
}

void qqstylesave(PlotBlock *b, CurveSave *s) noexcept {
    s->ltyp = b->sty.ltyp;
    s->pattern = qqgetpat(b);
}

void qqstylerestore(PlotBlock *b, const CurveSave *s) noexcept {
    b->sty.ltyp = s->ltyp;
    if (qqgetpat(b) != s->pattern) qqshdpat(b, s->pattern);
}

void qqpatfill(PlotBlock *b, const double *x, const double *y, int n, int pattern) noexcept {
    if (pattern == 0 || n < 3) return;
    int saved = qqgetpat(b);
    if (saved != pattern) qqshdpat(b, pattern);
    // The fill may change its arrays: small polygons go through a copy,
    // large ones (shaded areas between curves) are the caller's own.
    if (n <= 256) {
        double cx[256], cy[256];
        std::memcpy(cx, x, sizeof(double) * n);
        std::memcpy(cy, y, sizeof(double) * n);
        qqpfill(b, cx, cy, n);
    } else {
        qqpfill(b, const_cast<double *>(x), const_cast<double *>(y), n);
    }
    if (saved != pattern) qqshdpat(b, saved);
}

void qqsolidfill(PlotBlock *b, const double *x, const double *y, int n) noexcept {
    qqpatfill(b, x, y, n, QQ_SOLID_PATTERN);
}

int qqgetpattern(PlotBlock *b) noexcept {
    return qqgetpat(b);
}
void qqsetpattern(PlotBlock *b, int pattern) noexcept {
    qqshdpat(b, pattern);
}
int qqpatcycle(PlotBlock *b, int index) noexcept {
    return index >= 1 && index <= 30 ? b->sty.patcycl[index - 1] : 0;
}
bool qqarealine(PlotBlock *b) noexcept {
    return b->sty.outline != 0;
}

void qqcrvsave(PlotBlock *b, CurveSave *s) noexcept {
    const DeviceState &d = b->dev;
    s->colour = b->clr.curclr;
    s->dshn = d.dshn;
    for (int i = 0; i < 10; ++i) s->dshl[i] = d.dshl[i];
    s->lnoff = d.lnoff;
    s->ynoflp = b->core.ynoflp;
    qqstylesave(b, s);
}

void qqcrvrestore(PlotBlock *b, const CurveSave *s) noexcept {
    DeviceState &d = b->dev;
    qqflsh(b);
    d.lnoff = s->lnoff;
    d.dshn = s->dshn;
    for (int i = 0; i < 10; ++i) d.dshl[i] = s->dshl[i];
    qqdshres(b);
    qqstylerestore(b, s);
    if (b->clr.curclr != s->colour) qqsetc(b, s->colour);
    b->core.ynoflp = s->ynoflp;
}

void qqsolid(PlotBlock *b) noexcept {
    qqflsh(b);
    b->dev.dshn = 1;
    b->dev.dshl[0] = 1;
    b->dev.lnoff = 0.0;
    qqdshres(b);
}
