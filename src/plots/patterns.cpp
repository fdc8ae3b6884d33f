// Shading patterns: shdpat, mypat, patcyc, shdfac, noarln, nofill, and the
// share of the session defaults of the line styles and patterns.
#include "plots/patterns.h"

#include <cmath>

#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/subsystems.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "plots/curves.h"
#include "plots/fill.h"
#include "plots/line_styles.h"
#include "plots/plot_block.h"
#include "plots/sweep.h"

namespace {

// Codes of the patterns 0 to 17.
const int kCodes[18] = {0,     45150, 150450, 135150, 45450, 45151, 135210, 45451, 30140,
                        45211, 151,   45310,  70470,  45311, 451,   45210,  100,    550};

// Derives angle, type, density, cross flag, line distance and the bundle
// of a code; the pattern number is the caller's.
void apply_code(PlotBlock *b, int code) {
    StyleState &s = b->sty;
    s.patcrs = code % 2;
    s.patden = code / 10 % 10;
    s.pattyp = code / 100 % 10;
    s.patang = code / 1000;
    // Digits beyond the known types hatch with plain lines.
    if (s.pattyp > 7) s.pattyp = 1;
    float d;
    switch (s.pattyp) {
        case 2:
            d = 20.0f;
            break;
        case 3:
            d = 15.0f;
            break;
        case 4:
            d = 1.0f;
            break;
        default:
            if (s.patden == 0)
                d = b->core.fam && b->core.fam->densehatch > 0 ? b->core.fam->densehatch : 0.99999f;
            else
                d = (float)s.patden * 5.0f + 1.9999f;
            break;
    }
    if (s.pattyp >= 2 && s.pattyp <= 4) {
        s.bunrun = s.pattyp == 4 ? 8 : s.pattyp;
        s.bungap = s.pattyp == 4 ? (int)(5 * s.patden + 4.9999) : (int)(s.patden + 0.9999);
    }
    s.patdst = s.shdfct * (double)d / b->core.unitf;
}

int hatch_polys(DeviceBlock *b, const double *const *x, const double *const *y, const int *n,
                int npoly, double d, int maxcross, void (*move)(DeviceBlock *, double, double),
                void (*draw)(DeviceBlock *, double, double)) {
    if (!move || !draw) return 0;
    SweepPen pen{move, draw};
    return qqsweepn(qqpltblk(b), x, y, n, npoly, d, maxcross, 0, 0, 0, pen);
}

// The frame of framed strings, in the frame colour of the axis settings.
void text_frame(TextBlock *tb, int x, int y, int w, int h, int t, double angle) {
    PlotBlock *b = qqpltblk(tb);
    qqframe(b, x, y, w, h, t, angle, b->ax.frmcol);
}

// The background of framed strings: a polygon of the solid pattern.
void text_solid(TextBlock *tb, const double *x, const double *y, int n) {
    qqsolidfill(qqpltblk(tb), x, y, n);
}

// The device layer's fill of a polygon, done with the pattern in force.
void pattern_fill(DeviceBlock *b, double *x, double *y, int n) {
    qqpfill(qqpltblk(b), x, y, n);
}

// The frame round the box of an included file: the thickness and colour
// of the axis system's frame.
void box_frame(DeviceBlock *blk, int x, int y, int w, int h) {
    PlotBlock *b = qqpltblk(blk);
    qqframe(b, x, y, w, h, b->ax.frmthk, 0.0, b->ax.frmcol);
}

void styles_first(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->dev.fillfn = pattern_fill;
    b->dev.boxframe = box_frame;
    b->dev.hatchfn = hatch_polys;
    b->txt.frame = text_frame;
    b->txt.solidfill = text_solid;
    b->sty.shdfct = 1.0;
    b->sty.outline = 1;
    b->sty.logofill = 1;
    for (int k = 0; k < 30; ++k) b->sty.patcycl[k] = k % 18;
}

void styles_init(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    StyleState &s = b->sty;
    b->dev.fillfn = pattern_fill;
    b->dev.boxframe = box_frame;
    b->dev.hatchfn = hatch_polys;
    b->txt.frame = text_frame;
    b->txt.solidfill = text_solid;
    qqlintyp(b, 0);
    s.shdfct = 1.0;
    s.outline = 1;
    s.logofill = 1;
    s.bunrun = s.bungap = 0;
    s.hatching = 0;
    for (int k = 0; k < 30; ++k) s.patcycl[k] = k % 18;
    qqshdpat(b, 0);
}

void reset_linclr(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->dev.clrn = 0;
    b->dev.clridx = 1;
}
void reset_noarln(CoreBlock *b) {
    qqpltblk(b)->sty.outline = 1;
}
void reset_nofill(CoreBlock *b) {
    qqpltblk(b)->sty.logofill = 1;
}
void reset_patcyc(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    for (int k = 0; k < 30; ++k) b->sty.patcycl[k] = k % 18;
}
void reset_shdpat(CoreBlock *b) {
    qqshdpat(qqpltblk(b), 0);
}

const ResetEntry kResets[] = {
    {"LINC", reset_linclr}, {"NOAR", reset_noarln}, {"NOFI", reset_nofill},
    {"PATC", reset_patcyc}, {"SHDP", reset_shdpat}, {nullptr, nullptr},
};

}  // namespace

extern const Subsystem kxsub_styles = {"styles", styles_first, styles_init, nullptr, kResets, nullptr};

void qqshdpat(PlotBlock *b, int n) noexcept {
    apply_code(b, n < 18 ? kCodes[n] : n);
    b->sty.patnum = n;
}

int qqgetpat(const PlotBlock *b) noexcept {
    return b->sty.patnum;
}

void shdpat(int ipat) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("shdpat"));
    if (!b) return;
    if (ipat < 0) {
        qqwarn(b, 2, ipat);
        return;
    }
    qqshdpat(b, ipat);
}

void mypat(int iang, int itype, int idens, int icross) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("mypat"));
    if (!b) return;
    int bad = qqchki(b, iang, 0, 179);
    bad |= qqchki(b, itype, 0, 7);
    bad |= qqchki(b, idens, 0, 9);
    bad |= qqchki(b, icross, 0, 1);
    if (bad) return;
    int code = iang * 1000 + itype * 100 + idens * 10 + icross;
    apply_code(b, code);
    b->sty.patnum = code;
}

void patcyc(int index, int ipat) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("patcyc"));
    if (!b || qqchki(b, index, 1, 30) || qqchki(b, ipat, 0, 180000)) return;
    b->sty.patcycl[index - 1] = ipat;
}

void shdfac(double xfac) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("shdfac"));
    if (!b) return;
    if (!(xfac > 0) || !std::isfinite(xfac)) {
        qqwarnd(b, 2, xfac);
        return;
    }
    b->sty.shdfct = xfac;
}

void noarln() noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("noarln"));
    if (b) b->sty.outline = 0;
}

void nofill() noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("nofill"));
    if (b) b->sty.logofill = 0;
}

int getpat() noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("getpat"));
    return b ? b->sty.patnum : 0;
}
