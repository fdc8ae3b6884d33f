// The stroke and outline fonts: registration of the six alphabet sections
// of a font, the font routines, and the text subsystem's defaults.
#include <cmath>
#include <cstring>

#include "core/guard.h"
#include "core/subsystems.h"
#include "core/text.h"
#include "kolvex.h"
#include "text/fontdata.h"
#include "text/text.h"
#include "text/text_block.h"
#include "text/text_internal.h"

namespace {

// Highest glyph index that a first section accepts.  The data of every
// font carry the whole national repertoire, but only complx accepts all of
// it (internal code 264 less 31); the others stop at 132, gothic at 95, and
// a letter past its font's limit is a blank.
const int kFullRepertoire = 233, kFirstLimit = 132, kGothicLimit = 95;

// Registers the next section of the font being built.  A point count of 0
// reuses the coordinates of section 1, an index word count of 0 its index
// table; a negative point count is the separate form.
void register_section(TextState &t, const GlyphTable *pts, const GlyphTable *idx, int limit) {
    if (t.nsect >= QQ_NSECT) return;
    TextSection &s = t.sect[t.nsect];
    const TextSection &first = t.sect[0];
    if (pts) {
        s.x = pts->x;
        s.y = pts->y;
        s.packed = (short)pts->packed;
        s.npts = pts->npts;
    } else {
        s.x = first.x;
        s.y = first.y;
        s.packed = first.packed;
        s.npts = first.npts;
    }
    if (idx) {
        s.index = idx->index;
        s.nidx = idx->nidx;
        if (t.nsect > 0) {
            t.idxsum += idx->nidx;
            s.own = t.idxsum;
        } else {
            s.own = 0;
        }
    } else {
        s.index = first.index;
        s.nidx = first.nidx;
        s.own = 0;
    }
    s.limit = limit;
    // Units: the default font's own grid for STANDARD, GREEK and ITALIC;
    // the outline units of fonts above 10 for STANDARD and ITALIC.
    int alf = t.nsect + 1;
    if (t.font == 1 && (alf == 1 || alf == 2 || alf == 4)) {
        s.xdiv = 6;
        s.ydiv = 7;
        s.gap = 0.0;
    } else if (t.font > 10 && (alf == 1 || alf == 4)) {
        s.xdiv = 200;
        s.ydiv = 200;
        s.gap = 0.2;
    } else {
        s.xdiv = 20;
        s.ydiv = 21;
        s.gap = 0.25;
    }
    t.nsect++;
}

void select_font(TextBlock *b, int font) {
    TextState &t = b->txt;
    t.font = font;
    t.nsect = 0;
    t.idxsum = 0;
    t.cachesec = 0;
    t.fixbase = (double)1.4f;
    const GlyphTable *s1 = nullptr, *greek = &kxg_complx_greek, *ital = nullptr,
                     *script = &kxg_script;
    int lim1 = kFirstLimit, limg = 116, limi = 102;
    switch (font) {
    case 1: s1 = &kxg_kolalf1; greek = &kxg_kolalf_greek; limg = 95; break;
    case 3: s1 = &kxg_complx1; ital = &kxg_complx_italic; lim1 = kFullRepertoire; break;
    case 4: s1 = &kxg_simplx1; greek = &kxg_simplx_greek; limg = 95; break;
    case 5: s1 = &kxg_duplx1; break;
    case 6: s1 = &kxg_triplx1; break;
    case 7:
        s1 = &kxg_gothic1;
        lim1 = kGothicLimit;
        ital = &kxg_gothic_italic;
        limi = 95;
        script = &kxg_gothic_script;
        break;
    case 11: s1 = &kxg_helve1; break;
    case 12: s1 = &kxg_helves1; break;
    case 13: s1 = &kxg_helvet1; break;
    default: s1 = &kxg_serif1; break;
    }
    register_section(t, s1, s1, lim1);
    register_section(t, greek, greek, limg);
    register_section(t, &kxg_maths, &kxg_maths, 131);
    if (ital)
        register_section(t, ital, ital, limi);
    else
        register_section(t, nullptr, nullptr, limi);
    register_section(t, script, script, 102);
    register_section(t, &kxg_russian, &kxg_russian, 95);
    if (t.hwmode) {
        t.hwmode = 0;
        if (t.hwend) t.hwend(b);
    }
}

void font_routine(const char *name, CoreBlock *blk, int font) {
    (void)name;
    TextBlock *b = qqtxtblk(blk);
    if (!b) return;
    select_font(b, font);
}

}  // namespace

// The defaults of a session.
void qqtxtdefaults(TextBlock *b) noexcept {
    TextState &t = b->txt;
    double unitf = b->core.unitf > 0 ? b->core.unitf : 1.0;
    t.height = qqround(36.0 / unitf);
    if (t.height < 1) t.height = 1;
    t.angle = 0;
    t.sina = 0.0;
    t.cosa = 1.0;
    t.shear = 0.0;
    t.spcadd = 0.0;
    t.wfac = 1.0;
    t.fixon = 0;
    t.fixfac = 1.0;
    t.linsp = 1.5;
    t.basfac = 0.6;
    t.expfac = 0.8;
    t.hjus = 0;
    t.vjus = 0;
    t.frmthk = 0;
    t.bgclr = -1;
    t.mixon = 0;
    t.shdon = 0;
    t.italdiv = (double)3.732f;
    t.texon = 0;
    t.tex = qqtexrun;
    qqtexdefaults(b);
    t.cntlab = 0;
    t.penx = t.peny = 0.0;
    t.smxon = 0;
    std::memset(t.smxalf, 0, sizeof t.smxalf);
    t.shfset = 0;
    t.shfon = 0;
    std::memset(t.shfchr, 0, sizeof t.shfchr);
    std::memcpy(t.mixchr, "[]$/\\", 5);
    t.chacod = 0;
    t.basalf = 1;
    t.hwmode = 0;
    select_font(b, 1);
}

namespace {

// A character that a driver refuses to draw in hardware is stroked here.
void stroke_refused(DeviceBlock *b, const QQHwChar *c) {
    qqtxthwstroke(qqtxtblk(b), c);
}

void text_init(CoreBlock *blk) {
    TextBlock *b = qqtxtblk(blk);
    qqtxtdefaults(b);
    b->dev.strokechar = stroke_refused;
}

// A new block has the session defaults too, so that measuring before a
// session never meets an empty section.
void text_first(CoreBlock *b) {
    qqtxtdefaults(qqtxtblk(b));
}

// reset() rows: each puts one setting back to its session default.
void reset_angle(CoreBlock *blk) {
    TextBlock *b = qqtxtblk(blk);
    b->txt.angle = 0;
    b->txt.sina = 0.0;
    b->txt.cosa = 1.0;
}
void reset_basalf(CoreBlock *b) {
    qqtxtblk(b)->txt.basalf = 1;
}
void reset_chaang(CoreBlock *b) {
    qqtxtblk(b)->txt.shear = 0.0;
}
void reset_chaspc(CoreBlock *b) {
    qqtxtblk(b)->txt.spcadd = 0.0;
}
void reset_chawth(CoreBlock *b) {
    qqtxtblk(b)->txt.wfac = 1.0;
}
void reset_eushft(CoreBlock *blk) {
    TextBlock *b = qqtxtblk(blk);
    b->txt.shfon = 0;
    b->txt.shfset = 0;
    std::memset(b->txt.shfchr, 0, sizeof b->txt.shfchr);
}
void reset_fixspc(CoreBlock *blk) {
    TextBlock *b = qqtxtblk(blk);
    b->txt.fixon = 0;
    b->txt.fixfac = 1.0;
}
void reset_frmess(CoreBlock *b) {
    qqtxtblk(b)->txt.frmthk = 0;
}
void reset_height(CoreBlock *blk) {
    TextBlock *b = qqtxtblk(blk);
    double unitf = b->core.unitf > 0 ? b->core.unitf : 1.0;
    int h = qqround(36.0 / unitf);
    b->txt.height = h < 1 ? 1 : h;
}
void reset_linesp(CoreBlock *b) {
    qqtxtblk(b)->txt.linsp = 1.5;
}
void reset_mixalf(CoreBlock *b) {
    qqtxtblk(b)->txt.mixon = 0;
}
void reset_mixchr(CoreBlock *b) {
    std::memcpy(qqtxtblk(b)->txt.mixchr, "[]$/\\", 5);
}
void reset_setbas(CoreBlock *b) {
    qqtxtblk(b)->txt.basfac = 0.6;
}
void reset_setexp(CoreBlock *b) {
    qqtxtblk(b)->txt.expfac = 0.8;
}
void reset_shdcha(CoreBlock *b) {
    qqtxtblk(b)->txt.shdon = 0;
}
void reset_smxalf(CoreBlock *blk) {
    TextBlock *b = qqtxtblk(blk);
    b->txt.smxon = 0;
    std::memset(b->txt.smxalf, 0, sizeof b->txt.smxalf);
}

const ResetEntry kResets[] = {
    {"ANGL", reset_angle},   {"BASA", reset_basalf}, {"CHAA", reset_chaang},
    {"CHAS", reset_chaspc},  {"CHAW", reset_chawth}, {"EUSH", reset_eushft},
    {"FIXS", reset_fixspc},  {"FRME", reset_frmess}, {"HEIG", reset_height},
    {"LINS", reset_linesp},  {"MIXA", reset_mixalf}, {"NEWM", reset_mixchr},
    {"SETB", reset_setbas},  {"SETE", reset_setexp}, {"SETM", reset_mixchr},
    {"SHDC", reset_shdcha},  {"SMXA", reset_smxalf}, {nullptr, nullptr},
};

}  // namespace

extern const Subsystem kxsub_text = {"text", text_first, text_init, nullptr, kResets, nullptr};

const TextSection *qqtxtsection(TextBlock *b, int alf) noexcept {
    TextState &t = b->txt;
    if (alf < 1 || alf > t.nsect) alf = 1;
    const TextSection *s = &t.sect[alf - 1];
    if (t.cachesec != alf || t.cachehgt != t.curhgt || t.cachewf != t.curwfac ||
        t.cachespc != t.curspc || t.cachefix != t.curfix) {
        double h = t.curhgt;
        t.xscl = (h - 1.0) * t.curwfac / s->xdiv;
        t.yscl = (h - 1.0) / s->ydiv;
        t.gapw = t.curfix ? t.curspc * h : (s->gap + t.curspc) * h;
        t.cachesec = alf;
        t.cachehgt = t.curhgt;
        t.cachewf = t.curwfac;
        t.cachespc = t.curspc;
        t.cachefix = t.curfix;
    }
    return s;
}

void kolalf() noexcept { font_routine("kolalf", KX_ENTRY("kolalf"), 1); }
void complx() noexcept { font_routine("complx", KX_ENTRY("complx"), 3); }
void simplx() noexcept { font_routine("simplx", KX_ENTRY("simplx"), 4); }
void duplx() noexcept { font_routine("duplx", KX_ENTRY("duplx"), 5); }
void triplx() noexcept { font_routine("triplx", KX_ENTRY("triplx"), 6); }
void gothic() noexcept { font_routine("gothic", KX_ENTRY("gothic"), 7); }
void helve() noexcept { font_routine("helve", KX_ENTRY("helve"), 11); }
void helves() noexcept { font_routine("helves", KX_ENTRY("helves"), 12); }
void helvet() noexcept { font_routine("helvet", KX_ENTRY("helvet"), 13); }
void serif() noexcept { font_routine("serif", KX_ENTRY("serif"), 14); }
