// The text settings: height, angle, slant, spacing, width, pitch, lines,
// justification, frames and backgrounds.  Setters only store; a string takes
// them at its start.
#include <cmath>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "text/text_block.h"
#include "text/text_internal.h"

void height(int nhchar) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("height"));
    if (!b) return;
    if (qqchki(b, nhchar, 1, 10000)) return;
    TextState &t = b->txt;
    t.height = nhchar;
    t.cachesec = 0;
    // a hardware font carries its size: its driver re-creates it
    if (t.hwmode) qqhwstyle(b);
}

void angle(int ngrad) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("angle"));
    if (!b) return;
    TextState &t = b->txt;
    t.angle = ngrad;
    double r = (double)(ngrad % 360) * b->core.xdegr;
    t.sina = std::sin(r);
    t.cosa = std::cos(r);
    if (t.hwmode) qqhwstyle(b);
}

void chaang(double xang) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("chaang"));
    if (!b) return;
    if (!(xang >= -60.0 && xang <= 60.0)) {
        qqwarnd(b, 2, xang);
        return;
    }
    double a = (90.0 - xang) * b->core.xdegr;
    b->txt.shear = std::fabs(xang) < 1e-12 ? 0.0 : 1.0 / std::tan(a);
}

void chaspc(double xspc) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("chaspc"));
    if (!b) return;
    if (!std::isfinite(xspc)) {
        qqwarnd(b, 2, xspc);
        return;
    }
    b->txt.spcadd = xspc;
}

void chawth(double xwth) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("chawth"));
    if (!b) return;
    if (!(xwth > 0.0 && xwth < 2.0)) {
        qqwarnd(b, 2, xwth);
        return;
    }
    b->txt.wfac = xwth;
}

void fixspc(double xfac) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("fixspc"));
    if (!b) return;
    if (!(xfac > 0.0) || !std::isfinite(xfac)) {
        qqwarnd(b, 2, xfac);
        return;
    }
    b->txt.fixon = 1;
    b->txt.fixfac = xfac;
}

void linesp(double xfac) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("linesp"));
    if (!b) return;
    if (!std::isfinite(xfac)) {
        qqwarnd(b, 2, xfac);
        return;
    }
    b->txt.linsp = xfac;
}

void setbas(double xfac) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("setbas"));
    if (!b) return;
    if (!std::isfinite(xfac)) {
        qqwarnd(b, 2, xfac);
        return;
    }
    b->txt.basfac = xfac;
}

void setexp(double fexp) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("setexp"));
    if (!b) return;
    if (!std::isfinite(fexp)) {
        qqwarnd(b, 2, fexp);
        return;
    }
    b->txt.expfac = fexp;
}

void txtjus(const char *copt) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("txtjus"));
    if (!b) return;
    int k = qqkey(b, "LEFT+CENT+RIGH+TOP +MIDD+BOTT", 6, copt);
    if (k <= 0) return;
    if (k <= 3)
        b->txt.hjus = k - 1;
    else
        b->txt.vjus = k - 4;
}

void frmess(int nfrm) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("frmess"));
    if (!b) return;
    b->txt.frmthk = nfrm;
}

void txtbgd(int nclr) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("txtbgd"));
    if (!b) return;
    if (nclr < -1) {
        qqwarn(b, 2, nclr);
        return;
    }
    b->txt.bgclr = nclr;
}

void shdcha() noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("shdcha"));
    if (!b) return;
    b->txt.shdon = 1;
}

int gethgt() noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("gethgt"));
    return b ? b->txt.height : 0;
}

int getang() noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("getang"));
    return b ? b->txt.angle : 0;
}
