// Level-0 options of the raster file formats: imgfmt, bmpmod, tifmod,
// pngmod and gifmod, and the colour mode of clrmod.  The writers read
// them from CanvasState::ropt.
#include <cmath>

#include "core/guard.h"
#include "core/keywords.h"
#include "kolvex.h"
#include "raster/raster_block.h"

void imgfmt(const char *copt) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("imgfmt"));
    if (!b) return;
    int k = qqkey(b, "IND +RGB +BIL ", 3, copt);
    if (k > 0) b->cnv.ropt.rasfmt = k - 1;
}

void bmpmod(int n, const char *cval, const char *copt) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("bmpmod"));
    if (!b) return;
    if (qqkey(b, "RESO", 1, copt) == 0) return;
    int k = qqkey(b, "METE+INCH", 2, cval);
    if (k == 0 || qqchki(b, n, 1, 0)) return;
    b->cnv.ropt.bmpres = k == 1 ? n : (int)std::trunc(n * 100.0 / 2.54 + 0.5);
}

void tifmod(int n, const char *cval, const char *copt) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("tifmod"));
    if (!b) return;
    if (qqkey(b, "RESO", 1, copt) == 0) return;
    int k = qqkey(b, "INCH+CM  ", 2, cval);
    if (k == 0 || qqchki(b, n, 1, 0)) return;
    b->cnv.ropt.tifres = n;
    b->cnv.ropt.tifunit = k == 1 ? 2 : 3;
}

void pngmod(const char *cval, const char *copt) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("pngmod"));
    if (!b) return;
    int k = qqkeyopt(b, "TRAN", copt, "OFF +ON  ", 2, cval);
    if (k > 0) b->cnv.ropt.pngtran = k - 1;
}

void gifmod(const char *cval, const char *copt) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("gifmod"));
    if (!b) return;
    int k = qqkeyopt(b, "TRAN", copt, "OFF +ON  ", 2, cval);
    if (k > 0) b->cnv.ropt.giftran = k - 1;
}

void clrmod(const char *copt) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("clrmod"));
    if (!b) return;
    int k = qqkey(b, "NONE+FULL+CONT", 3, copt);
    if (k > 0) b->cnv.ropt.clrmd = k - 1;
}
