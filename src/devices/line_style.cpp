// Line width, caps, joins and the hardware modes.
#include <cmath>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "devices/device_block.h"
#include "kolvex.h"

namespace {

// Gives the device its width, or its thinnest line when the layer must
// emulate.  Returns the lnwid to store.
int apply_width(DeviceBlock *b, int n, double exact, int fractional) {
    const DriverOps *drv = b->dev.drv;
    if (!drv || !drv->width) return n;
    if (b->dev.hwlin) {
        return drv->width(b, fractional ? exact : n, fractional) == 1 ? -n : n;
    }
    drv->width(b, 0, 0);
    return n;
}

}  // namespace

void linwid(int nwidth) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("linwid"));
    if (!b) return;
    if (qqchki(b, nwidth, 1, 32000)) return;
    qqflsh(b);
    b->dev.lnwid = nwidth;
    b->dev.lnwid = apply_width(b, nwidth, nwidth, 0);
}

void penwid(double xwidth) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("penwid"));
    if (!b) return;
    if (!(xwidth > 0 && xwidth <= 32000)) {
        qqwarnd(b, 2, xwidth);
        return;
    }
    qqflsh(b);
    int n = qqnint(xwidth);
    if (n < 1) n = 1;
    b->dev.lnwid = n;
    b->dev.lnwid = apply_width(b, n, xwidth, 1);
}

namespace {
void style_changed(DeviceBlock *b) {
    const DriverOps *drv = b->dev.drv;
    // A device without caps and joins (SVG, IPE, Java) sees nothing.
    if (!drv || !drv->linestyle) return;
    drv->linestyle(b);
    // A pen with the new style comes into use at the current width.
    if (b->dev.lnwid < 0 && drv->width) drv->width(b, -b->dev.lnwid, 0);
}
}  // namespace

void lncap(const char *copt) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("lncap"));
    if (!b) return;
    int k = qqkey(b, "CUT +ROUN+LONG", 3, copt);
    if (k == 0) return;
    qqflsh(b);
    b->dev.lncp = k - 1;
    style_changed(b);
}

void lnjoin(const char *copt) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("lnjoin"));
    if (!b) return;
    int k = qqkey(b, "SHAR+ROUN+TRUN", 3, copt);
    if (k == 0) return;
    qqflsh(b);
    b->dev.lnjn = k - 1;
    style_changed(b);
}

void lnmlt(double xfac) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("lnmlt"));
    if (!b) return;
    if (!(xfac >= 1.0) || !std::isfinite(xfac)) {
        qqwarnd(b, 2, xfac);
        return;
    }
    qqflsh(b);
    b->dev.lnml = xfac;
    const DriverOps *drv = b->dev.drv;
    if (drv && drv->linestyle) drv->linestyle(b);
}

void hwmode(const char *cmode, const char *ckey) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("hwmode"));
    if (!b) return;
    int k = qqkey(b, "OFF +ON  ", 2, cmode);
    if (k == 0) return;
    int what = qqkey(b, "LINE+SHAD", 2, ckey);
    if (what == 0) return;
    if (what == 2) {
        b->dev.hwshd = (unsigned char)(k - 1);
        return;
    }
    b->dev.hwlin = (unsigned char)(k - 1);
    // A width that the device draws is set again at once, to the device or
    // back to the layer's emulation; an emulated width keeps its emulation
    // until the next linwid.
    if (b->core.level > 0 && b->dev.lnwid < 0) {
        int n = -b->dev.lnwid;
        qqflsh(b);
        b->dev.lnwid = apply_width(b, n, n, 0);
    }
}

void linmod(const char *cmode, const char *ckey) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("linmod"));
    if (!b) return;
    int k = qqkey(b, "OFF +ON  ", 2, cmode);
    if (k == 0) return;
    if (qqkey(b, "SMOO", 1, ckey) == 0) return;
    qqflsh(b);
    b->dev.lnsmooth = k - 1;
    const DriverOps *drv = b->dev.drv;
    if (drv && drv->linestyle) drv->linestyle(b);
}

void lincyc(int index, int ityp) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("lincyc"));
    if (!b || qqchki(b, index, 1, 30) || qqchki(b, ityp, 0, 7)) return;
    b->dev.lincycl[index - 1] = ityp;
}
