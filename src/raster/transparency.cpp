// The transparency layer of the RGB canvas: drawing goes to a second
// plane with the alpha of tprval in every pixel, and closing the layer
// composites it onto the base plane.
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "raster/canvas.h"
#include "raster/image_mode.h"
#include "raster/primitives.h"
#include "raster/raster_block.h"

namespace {

// A right shift by 8 that rounds toward minus infinity for negative values
// too, whatever the compiler does with signed shifts.
int shift8(int v) {
    return v >= 0 ? v >> 8 : -((-v + 255) >> 8);
}

}  // namespace

int qqcbbox(const qqcanvas *cv, int *x0, int *y0, int *x1, int *y1) noexcept {
    if (!cv->pixtpr) return 0;
    int bx0 = cv->cw, by0 = cv->ch, bx1 = -1, by1 = -1;
    for (int y = 0; y < cv->ch; ++y) {
        const unsigned char *p = cv->pixtpr + (size_t)y * cv->rowb + 3;
        for (int x = 0; x < cv->cw; ++x, p += 4) {
            if (*p == 0) continue;
            if (x < bx0) bx0 = x;
            if (x > bx1) bx1 = x;
            if (y < by0) by0 = y;
            by1 = y;
        }
    }
    *x0 = bx0;
    *y0 = by0;
    *x1 = bx1;
    *y1 = by1;
    return bx1 >= 0;
}

namespace {

void composite(qqcanvas *cv) {
    int x0, y0, x1, y1;
    if (!qqcbbox(cv, &x0, &y0, &x1, &y1)) return;
    const int bg = cv->revcnv ? 255 : 0;
    for (int y = y0; y <= y1; ++y) {
        unsigned char *l = cv->pixtpr + (size_t)y * cv->rowb + (size_t)x0 * 4;
        unsigned char *b = cv->pixbase + (size_t)y * cv->rowb + (size_t)x0 * 4;
        for (int x = x0; x <= x1; ++x, l += 4, b += 4) {
            int a = l[3] + 1;
            if (a == 1) continue;
            if (a == 256 || (!cv->tpropaq && b[0] == bg && b[1] == bg && b[2] == bg)) {
                std::memcpy(b, l, 3);
            } else {
                for (int k = 0; k < 3; ++k)
                    b[k] = (unsigned char)(shift8(a * (l[k] - b[k])) + b[k]);
            }
            b[3] = l[3];
            l[3] = 0;
        }
    }
}

// Opens the layer; 0, or 53 when it cannot be made.
int open_layer(RasterBlock *b) {
    b->cnv.flush(b);
    qqcanvas *cv = qqcanvasof(b);
    if (!cv) return 53;
    qqcflush(cv);
    if (!cv->pixtpr) {
        unsigned char *p = static_cast<unsigned char *>(std::malloc((size_t)cv->rowb * cv->ch));
        if (!p) return 53;
        cv->pixtpr = p;
        unsigned char *saved = cv->pix;
        cv->pix = p;
        qqcerase(cv);
        cv->pix = saved;
    }
    cv->tprsave = cv->tprplane;
    cv->pix = cv->pixtpr;
    cv->tprplane = 2;
    return 0;
}

void close_layer(RasterBlock *b) {
    b->cnv.flush(b);
    qqcanvas *cv = qqcanvasof(b);
    if (!cv || cv->tprplane != 2) return;
    qqcflush(cv);
    composite(cv);
    cv->pix = cv->pixbase;
    cv->tprplane = 1;
}

// 0 when the layer may be used, else the warning has been reported.
int usable(RasterBlock *b) {
    int kind = qqdevkind(b);
    if (kind == QQ_KIND_FILE || kind == QQ_KIND_PAGE) {
        qqwar1(b, 169, "Output format must be a raster format");
        return 1;
    }
    // Before the session the canvas is not there yet: its settings tell.
    bool rgb = b->core.level > 0 ? b->sess.colbits >= 24 : ((qqdevclr(b) & QQ_CLR_RGB) || b->cnv.ropt.rasfmt == 1);
    if (!rgb) {
        qqwar1(b, 170, "Output format must be in RGB mode");
        return 1;
    }
    return 0;
}

}  // namespace

void tprini() noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("tprini"));
    if (!b || usable(b)) return;
    CanvasState &s = b->cnv;
    if (s.tprlvl >= 1) {
        qqwar1(b, 171, "Transparency is already in use");
        return;
    }
    if (s.imgact) {
        qqwar1(b, 172, "Routine cannot be used between IMGINI and IMGFIN");
        return;
    }
    if (b->core.level == 0) return;  // nothing to draw on before the session
    if (open_layer(b) != 0) {
        qqwar0(b, 53);
        return;
    }
    s.tprlvl = 1;
}

void tprfin() noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("tprfin"));
    if (!b) return;
    CanvasState &s = b->cnv;
    if (s.tprlvl == 0) {
        qqwar1(b, 174, "Transparency is not in use");
        return;
    }
    if (s.imgact) {
        qqwar1(b, 172, "Routine cannot be used between IMGINI and IMGFIN");
        return;
    }
    if (--s.tprlvl == 0) close_layer(b);
}

void tprval(double xalph) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("tprval"));
    if (!b || usable(b)) return;
    double v = std::trunc(xalph * 255 + 0.5);
    if (!(v >= 0 && v <= 255)) {
        qqwarn(b, 2, std::isfinite(xalph) ? qqround(xalph) : 0);
        return;
    }
    b->cnv.tpralpha = (int)v;
    if (qqcanvas *cv = qqcanvasof(b)) qqcoption(cv, 19, (int)v);
}

void tprmod(const char *cmode, const char *ckey) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("tprmod"));
    if (!b) return;
    int what = qqkey(b, "FIGU+BACK", 2, ckey);
    if (what == 0) return;
    CanvasState &s = b->cnv;
    if (what == 1) {
        int k = qqkey(b, "NOAU+AUTO", 2, cmode);
        if (k > 0) s.tprauto = k - 1;
        return;
    }
    int k = qqkey(b, "OPAQ+NOOP", 2, cmode);
    if (k == 0) return;
    s.tprnoop = k - 1;
    if (qqcanvas *cv = qqcanvasof(b)) qqcoption(cv, 21, s.tprnoop);
}

void qqtprfig(RasterBlock *b, int open) noexcept {
    CanvasState &s = b->cnv;
    if (!s.tprauto || s.tpralpha == 255 || s.imgact || !qqcanvasof(b) || !b->cnv.cv.rgbcnv) return;
    if (open) {
        if (s.tprlvl == 0 && open_layer(b) != 0) {
            qqwar0(b, 53);
            return;
        }
        ++s.tprlvl;
    } else if (s.tprlvl > 0 && --s.tprlvl == 0) {
        close_layer(b);
    }
}

void qqtprend(RasterBlock *b) noexcept {
    if (b->cnv.tprlvl == 0) return;
    b->cnv.tprlvl = 0;
    close_layer(b);
}
