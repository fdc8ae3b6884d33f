// Image mode and the pixel routines: single pixels as colour values, rows
// and blocks as index bytes or red, green, blue triples (imgmod), and the
// settings that place an image (imgbox, imgsiz, imgclp, imgtpr).
#include <cstdlib>
#include <cstring>

#include "colour/colour.h"
#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "raster/canvas.h"
#include "raster/image_mode.h"
#include "raster/primitives.h"
#include "raster/raster_block.h"

namespace {

// The canvas of image mode, ready for pixel work; null after warning 55.
qqcanvas *image_canvas(RasterBlock *b) {
    qqcanvas *cv = qqcanvasof(b);
    if (!b->cnv.imgact || !cv) {
        qqwar0(b, 55);
        return nullptr;
    }
    b->cnv.flush(b);
    qqcflush(cv);
    return cv;
}

int bytes_per_pixel(const RasterBlock *b) {
    return b->cnv.imgrgb ? 3 : 1;
}

// Writes one row of data at (x, y), cut to the canvas.
void put_row(qqcanvas *cv, const unsigned char *data, int x, int y, int n, int bpp) {
    if (y < 0 || y >= cv->ch || x >= cv->cw || n < 1) return;
    if (x < 0) {
        if ((long long)n + x < 1) return;
        data += (size_t)(-x) * bpp;
        n += x;
        x = 0;
    }
    if (n > cv->cw - x) n = cv->cw - x;
    qqcputrow(cv, x, y, n, bpp == 3, data);
}

bool inside(const qqcanvas *cv, int x, int y) {
    return x >= 0 && y >= 0 && x < cv->cw && y < cv->ch;
}

// The tests of rpxrow and rpixls: the whole row or block lies in the image.
bool row_inside(const qqcanvas *cv, int ix, int iy, int n) {
    return n >= 1 && inside(cv, ix, iy) && (long long)ix + n <= cv->cw;
}

bool block_inside(const RasterBlock *b, const qqcanvas *cv, int ix, int iy, int nw, int nh) {
    int dir = b->cnv.imgbot ? -1 : 1;
    long long last = (long long)iy + dir * (long long)(nh - 1);
    return nw >= 1 && nh >= 1 && inside(cv, ix, iy) && (long long)ix + nw <= cv->cw &&
           last >= 0 && last < cv->ch;
}

}  // namespace

int qqpixbytes() noexcept {
    RasterBlock *b = qqrstblk(qqcur());
    return b && b->cnv.imgrgb ? 3 : 1;
}

long long qqpixlimit() noexcept {
    RasterBlock *b = qqrstblk(qqcur());
    if (!b || b->core.level < 1 || !b->cnv.imgact) return 0;
    const qqcanvas *cv = qqcanvasof(b);
    return cv ? (long long)cv->cw * cv->ch * bytes_per_pixel(b) : 0;
}

long long qqpixrequest(int ix, int iy, int nw, int nh, int row) noexcept {
    RasterBlock *b = qqrstblk(qqcur());
    if (!b || b->core.level < 1 || !b->cnv.imgact) return -1;
    const qqcanvas *cv = qqcanvasof(b);
    if (!cv) return -1;
    if (row ? !row_inside(cv, ix, iy, nw) : !block_inside(b, cv, ix, iy, nw, nh)) return -1;
    return (long long)nw * (row ? 1 : nh) * bytes_per_pixel(b);
}

void imgmod(const char *cmode) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("imgmod"));
    if (!b) return;
    int k = qqkey(b, "IND +RGB +TOP +BOT ", 4, cmode);
    if (k == 0) return;
    if (k <= 2)
        b->cnv.imgrgb = k - 1;
    else
        b->cnv.imgbot = k - 3;
}

void imgsiz(int nw, int nh) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("imgsiz"));
    if (!b) return;
    if (nw < 1 || nh < 1) {
        qqwarn(b, 2, nw < nh ? nw : nh);
        return;
    }
    b->cnv.imgsflg = 1;
    b->cnv.imgsw[0] = nw;
    b->cnv.imgsw[1] = nh;
}

void imgbox(int nx, int ny, int nw, int nh) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("imgbox"));
    if (!b) return;
    if (qqchkrect(b, nx, ny, nw, nh)) return;
    CanvasState &s = b->cnv;
    s.imgbflg = 1;
    s.imgbx[0] = nx;
    s.imgbx[1] = qqyflpi(b, ny);
    s.imgbx[2] = nw;
    s.imgbx[3] = nh;
}

void imgclp(int nx, int ny, int nw, int nh) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("imgclp"));
    if (!b) return;
    if (qqchkrect(b, nx, ny, nw, nh)) return;
    // The image is known only while a canvas exists; a rectangle given
    // before the session is tested again when the file is written.
    if (const qqcanvas *cv = qqcanvasof(b)) {
        long long right = (long long)nx + nw, bottom = (long long)ny + nh;
        if (right > cv->cw || bottom > cv->ch) {
            long long bad = right > cv->cw ? right : bottom;
            qqwarn(b, 2, bad > 0x7fffffff ? 0x7fffffff : (int)bad);
            return;
        }
    }
    CanvasState &s = b->cnv;
    s.imgcflg = 1;
    s.imgcx[0] = nx;
    s.imgcx[1] = ny;
    s.imgcx[2] = nw;
    s.imgcx[3] = nh;
}

void imgtpr(int nclr) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("imgtpr"));
    if (!b) return;
    b->cnv.imgtran = nclr;
    if (qqcanvas *cv = qqcanvasof(b)) qqcoption(cv, 32, nclr);
}

void imgini() noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("imgini"));
    if (!b) return;
    CanvasState &s = b->cnv;
    if (s.imgact) {
        qqwar0(b, 54);
        return;
    }
    int kind = qqdevkind(b);
    if (kind == QQ_KIND_FILE) {
        qqwar0(b, 40);
        return;
    }
    b->cnv.flush(b);
    if (kind == QQ_KIND_PAGE) {
        // A picture that the page format embeds at imgfin: its canvas
        // lives for the time of image mode.
        SessionState &ss = b->sess;
        int w = s.imgsflg ? s.imgsw[0] : ss.wsiz[0], h = s.imgsflg ? s.imgsw[1] : ss.wsiz[1];
        if (qqcnvnew(&s.cv, w, h, ss.colbits > 8, ss.bgmode == 2) != 0) {
            qqwar0(b, 53);
            return;
        }
        s.ownsiz[0] = ss.wsiz[0];
        s.ownsiz[1] = ss.wsiz[1];
        ss.wsiz[0] = w;
        ss.wsiz[1] = h;
        s.owncnv = 1;
        qqcnvsync(b);
    } else if (!qqcanvasof(b)) {
        qqwar0(b, 40);
        return;
    }
    s.imgact = 1;
}

void imgfin() noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("imgfin"));
    if (!b) return;
    if (!b->cnv.imgact) {
        qqwar0(b, 55);
        return;
    }
    qqimgend(b);
}

void qqimgend(RasterBlock *b) noexcept {
    CanvasState &s = b->cnv;
    if (!s.imgact) return;
    if (qqcanvas *cv = qqcanvasof(b)) qqcflush(cv);
    if (s.owncnv) {
        b->cnv.embed(b);
        qqcnvfree(&s.cv);
        b->sess.wsiz[0] = s.ownsiz[0];
        b->sess.wsiz[1] = s.ownsiz[1];
        s.owncnv = 0;
    }
    s.imgact = 0;
}

void wpixel(int ix, int iy, int iclr) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("wpixel"));
    if (!b) return;
    qqcanvas *cv = image_canvas(b);
    if (!cv || !inside(cv, ix, iy)) return;
    unsigned char *p = cv->pix + (size_t)iy * cv->rowb;
    if (!qqexplicit(iclr)) {
        int v = ((iclr % 256) + 256) % 256;
        if (v == cv->tcol) return;
        if (cv->rgbcnv) {
            unsigned char *q = p + (size_t)ix * 4;
            q[0] = cv->tabr[v];
            q[1] = cv->tabg[v];
            q[2] = cv->tabb[v];
            q[3] = cv->alpha;
        } else {
            p[ix] = (unsigned char)v;
        }
        return;
    }
    unsigned char r = iclr & 255, g = (iclr >> 8) & 255, bl = (iclr >> 16) & 255;
    if (cv->tcol >= 0 && r == cv->tr && g == cv->tg && bl == cv->tb) return;
    if (cv->rgbcnv) {
        unsigned char *q = p + (size_t)ix * 4;
        q[0] = r;
        q[1] = g;
        q[2] = bl;
        q[3] = cv->alpha;
    } else {
        p[ix] = (unsigned char)qqnearc(cv, r, g, bl);
    }
}

void rpixel(int ix, int iy, int *iclr) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("rpixel"));
    if (!b) return;
    qqcanvas *cv = image_canvas(b);
    if (!cv) return;
    if (!inside(cv, ix, iy)) {
        qqwar0(b, 58);
        return;
    }
    unsigned char q[3];
    if (b->cnv.imgrgb) {
        qqcgetrow(cv, ix, iy, 1, 1, q);
        *iclr = qqrgbval(q[0], q[1], q[2]);
    } else {
        qqcgetrow(cv, ix, iy, 1, 0, q);
        *iclr = q[0];
    }
}

void wpxrow(const unsigned char *iray, int ix, int iy, int n) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("wpxrow"));
    if (!b) return;
    qqcanvas *cv = image_canvas(b);
    if (!cv) return;
    put_row(cv, iray, ix, iy, n, bytes_per_pixel(b));
}

void rpxrow(unsigned char *iray, int ix, int iy, int n) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("rpxrow"));
    if (!b) return;
    qqcanvas *cv = image_canvas(b);
    if (!cv) return;
    if (!row_inside(cv, ix, iy, n)) {
        qqwar0(b, 58);
        return;
    }
    qqcgetrow(cv, ix, iy, n, b->cnv.imgrgb, iray);
}

void wpixls(const unsigned char *iray, int ix, int iy, int nw, int nh) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("wpixls"));
    if (!b) return;
    qqcanvas *cv = image_canvas(b);
    if (!cv || nw < 1 || nh < 1) return;
    int bpp = bytes_per_pixel(b);
    int dir = b->cnv.imgbot ? -1 : 1;
    long long last = (long long)iy + dir * (long long)(nh - 1);
    long long top = dir > 0 ? iy : last, bottom = dir > 0 ? last : iy;
    if ((long long)ix + nw <= 0 || ix >= cv->cw || bottom < 0 || top >= cv->ch) return;
    for (int k = 0; k < nh; ++k) {
        long long y = (long long)iy + (long long)dir * k;
        if (y < 0 || y >= cv->ch) continue;
        put_row(cv, iray + (size_t)k * nw * bpp, ix, (int)y, nw, bpp);
    }
}

void rpixls(unsigned char *iray, int ix, int iy, int nw, int nh) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("rpixls"));
    if (!b) return;
    qqcanvas *cv = image_canvas(b);
    if (!cv) return;
    if (!block_inside(b, cv, ix, iy, nw, nh)) {
        qqwar0(b, 58);
        return;
    }
    int dir = b->cnv.imgbot ? -1 : 1;
    int bpp = bytes_per_pixel(b);
    for (int k = 0; k < nh; ++k)
        qqcgetrow(cv, ix, iy + dir * k, nw, bpp == 3, iray + (size_t)k * nw * bpp);
}
