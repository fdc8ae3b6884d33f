// The canvas record: planes, colour state, pixel rows and device options,
// and the canvas's share of the block (first values, session defaults, the
// end of image mode and transparency at kolfin).
#include "raster/canvas.h"

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "colour/colour.h"
#include "core/subsystems.h"
#include "raster/image_mode.h"
#include "raster/primitives.h"
#include "raster/raster_block.h"

namespace {

int clampi(int v, int lo, int hi) {
    return v < lo ? lo : (v > hi ? hi : v);
}

// The last index that the nearest-colour search looks at.
int last_index(const qqcanvas *cv) {
    switch (cv->tabkind) {
        case 0:
            return 8;  // the small table
        case 7:
            return 15;  // the VGA table
        default:
            return 255;
    }
}

void clear_plane(unsigned char *p, const qqcanvas *cv) {
    size_t bytes = (size_t)cv->rowb * (size_t)cv->ch;
    if (cv->rgbcnv && cv->revcnv) {
        const unsigned char white[4] = {255, 255, 255, 0};
        for (size_t i = 0; i < bytes; i += 4) std::memcpy(p + i, white, 4);
    } else {
        std::memset(p, 0, bytes);
    }
}

}  // namespace

int qqcnvnew(qqcanvas *cv, int w, int h, int rgb, int rev) noexcept {
    qqcnvfree(cv);
    if (w < 1 || h < 1) return 53;
    int bpp = rgb ? 4 : 1;
    // Rows are addressed with int offsets by the callers of row routines.
    if (w > INT_MAX / bpp) return 53;
    uint64_t bytes = (uint64_t)w * (uint64_t)bpp * (uint64_t)h;
    if (bytes > (uint64_t)SIZE_MAX / 2) return 53;
    unsigned char *p = static_cast<unsigned char *>(rgb && rev ? std::malloc((size_t)bytes)
                                                               : std::calloc((size_t)bytes, 1));
    if (!p) return 53;
    cv->pix = cv->pixbase = p;
    cv->pixtpr = nullptr;
    cv->cw = w;
    cv->ch = h;
    cv->rowb = w * bpp;
    cv->rgbcnv = (unsigned char)(rgb ? 1 : 0);
    cv->revcnv = (unsigned char)(rev ? 1 : 0);
    if (rgb && rev) clear_plane(p, cv);
    cv->clipx0 = cv->clipy0 = 0;
    cv->clipx1 = w - 1;
    cv->clipy1 = h - 1;
    cv->clipon = 1;
    cv->lw = 1;
    cv->lcap = 2;
    cv->ljoin = 2;
    cv->miter = 2.0;
    cv->ptn = 0;
    cv->ptmove = 0;
    cv->smooth = 0;
    cv->tprplane = cv->tprsave = 1;
    cv->tpropaq = 1;
    cv->alpha = 255;
    cv->tcol = -1;
    return 0;
}

void qqcnvfree(qqcanvas *cv) noexcept {
    std::free(cv->pixbase);
    std::free(cv->pixtpr);
    cv->pix = cv->pixbase = cv->pixtpr = nullptr;
    cv->cw = cv->ch = cv->rowb = 0;
    cv->ptn = 0;
}

void qqcerase(qqcanvas *cv) noexcept {
    if (!cv->pix) return;
    qqcflush(cv);
    clear_plane(cv->pix, cv);
}

int qqnearc(const qqcanvas *cv, int r, int g, int b) noexcept {
    int n = last_index(cv);
    auto is = [&](int i, int v) {
        return cv->tabr[i] == v && cv->tabg[i] == v && cv->tabb[i] == v;
    };
    if (r == 0 && g == 0 && b == 0) {
        if (is(0, 0)) return 0;
        if (is(n, 0)) return n;
    }
    if (r == 255 && g == 255 && b == 255) {
        if (is(0, 255)) return 0;
        if (is(n, 255)) return n;
    }
    int best = 0, bestd = 1000;
    // A colour without blue is more likely near the top of the table.
    int start = b < 1 ? n : 0, step = b < 1 ? -1 : 1;
    for (int k = 0, i = start; k <= n; ++k, i += step) {
        int d = std::abs(cv->tabr[i] - r) + std::abs(cv->tabg[i] - g) + std::abs(cv->tabb[i] - b);
        if (d == 0) return i;
        if (d < bestd) {
            bestd = d;
            best = i;
        }
    }
    return best;
}

void qqcsetc(qqcanvas *cv, int value) noexcept {
    if (cv->pix) qqcflush(cv);
    cv->colval = value;
    int idx;
    if (qqexplicit(value)) {
        cv->colr = (unsigned char)(value & 255);
        cv->colg = (unsigned char)((value >> 8) & 255);
        cv->colb = (unsigned char)((value >> 16) & 255);
        if (cv->rgbcnv) return;
        idx = qqnearc(cv, cv->colr, cv->colg, cv->colb);
    } else {
        idx = ((value % 256) + 256) % 256;
    }
    cv->colidx = (unsigned char)idx;
    cv->colr = cv->tabr[idx];
    cv->colg = cv->tabg[idx];
    cv->colb = cv->tabb[idx];
}

void qqctable(qqcanvas *cv, const int *colmap, int kind) noexcept {
    if (cv->pix) qqcflush(cv);
    for (int i = 0; i < 256; ++i) {
        cv->tabr[i] = (unsigned char)((colmap[i] >> 16) & 255);
        cv->tabg[i] = (unsigned char)((colmap[i] >> 8) & 255);
        cv->tabb[i] = (unsigned char)(colmap[i] & 255);
    }
    cv->tabkind = (unsigned char)kind;
    // A colour given by index now means the new entry.
    if (!qqexplicit(cv->colval)) qqcsetc(cv, cv->colval);
}

void qqcresolve(const qqcanvas *cv, int value, unsigned char out[4]) noexcept {
    int idx = -1;
    if (qqexplicit(value)) {
        out[0] = (unsigned char)(value & 255);
        out[1] = (unsigned char)((value >> 8) & 255);
        out[2] = (unsigned char)((value >> 16) & 255);
        if (!cv->rgbcnv) idx = qqnearc(cv, out[0], out[1], out[2]);
    } else {
        idx = ((value % 256) + 256) % 256;
        out[0] = cv->tabr[idx];
        out[1] = cv->tabg[idx];
        out[2] = cv->tabb[idx];
    }
    out[3] = cv->alpha;
    if (!cv->rgbcnv) out[0] = (unsigned char)idx;
}

void qqcgetrow(const qqcanvas *cv, int x, int y, int n, int rgb, unsigned char *out) noexcept {
    const unsigned char *p = cv->pix + (size_t)y * (size_t)cv->rowb;
    if (!cv->rgbcnv) {
        p += x;
        if (!rgb) {
            std::memcpy(out, p, (size_t)n);
            return;
        }
        for (int i = 0; i < n; ++i, out += 3) {
            out[0] = cv->tabr[p[i]];
            out[1] = cv->tabg[p[i]];
            out[2] = cv->tabb[p[i]];
        }
        return;
    }
    p += (size_t)x * 4;
    if (rgb) {
        for (int i = 0; i < n; ++i, p += 4, out += 3) {
            out[0] = p[0];
            out[1] = p[1];
            out[2] = p[2];
        }
        return;
    }
    // Index data from colours: neighbours are often alike, so the last
    // search is kept.
    int lr = -1, lg = -1, lb = -1, li = 0;
    for (int i = 0; i < n; ++i, p += 4) {
        if (p[0] != lr || p[1] != lg || p[2] != lb) {
            lr = p[0];
            lg = p[1];
            lb = p[2];
            li = qqnearc(cv, lr, lg, lb);
        }
        out[i] = (unsigned char)li;
    }
}

void qqcputrow(qqcanvas *cv, int x, int y, int n, int rgb, const unsigned char *data) noexcept {
    unsigned char *p = cv->pix + (size_t)y * (size_t)cv->rowb;
    int tcol = cv->tcol;
    if (!rgb) {
        for (int i = 0; i < n; ++i) {
            int v = data[i];
            if (v == tcol) continue;
            if (cv->rgbcnv) {
                unsigned char *q = p + (size_t)(x + i) * 4;
                q[0] = cv->tabr[v];
                q[1] = cv->tabg[v];
                q[2] = cv->tabb[v];
                q[3] = cv->alpha;
            } else {
                p[x + i] = (unsigned char)v;
            }
        }
        return;
    }
    for (int i = 0; i < n; ++i, data += 3) {
        if (tcol >= 0 && data[0] == cv->tr && data[1] == cv->tg && data[2] == cv->tb) continue;
        if (cv->rgbcnv) {
            unsigned char *q = p + (size_t)(x + i) * 4;
            q[0] = data[0];
            q[1] = data[1];
            q[2] = data[2];
            q[3] = cv->alpha;
        } else {
            p[x + i] = (unsigned char)qqnearc(cv, data[0], data[1], data[2]);
        }
    }
}

void qqcoption(qqcanvas *cv, int code, int value) noexcept {
    // Every option that changes how lines look applies to the lines drawn
    // after it: the points collected so far go out first.
    if (cv->pix && code != 21 && code != 32) qqcflush(cv);
    switch (code) {
        case 11:
            cv->clipx0 = clampi(value, 0, cv->cw - 1);
            break;
        case 12:
            cv->clipy0 = clampi(value, 0, cv->ch - 1);
            break;
        case 13:
            cv->clipx1 = clampi(value, 0, cv->cw - 1);
            break;
        case 14:
            cv->clipy1 = clampi(value, 0, cv->ch - 1);
            break;
        case 19:
            cv->alpha = (unsigned char)clampi(value, 0, 255);
            break;
        case 21:
            cv->tpropaq = (unsigned char)(value == 0 ? 1 : 0);
            break;
        case 26:
            cv->lw = value < 1 ? 1 : value;
            break;
        case 27:
            cv->lcap = clampi(value, 0, 2);
            break;
        case 28:
            cv->ljoin = clampi(value, 0, 2);
            break;
        case 32:
            if (value == -1) {
                cv->tcol = -1;
            } else if (qqexplicit(value)) {
                cv->tr = (unsigned char)(value & 255);
                cv->tg = (unsigned char)((value >> 8) & 255);
                cv->tb = (unsigned char)((value >> 16) & 255);
                cv->tcol = qqnearc(cv, cv->tr, cv->tg, cv->tb);
            } else {
                int idx = ((value % 256) + 256) % 256;
                cv->tcol = idx;
                cv->tr = cv->tabr[idx];
                cv->tg = cv->tabg[idx];
                cv->tb = cv->tabb[idx];
            }
            break;
        case 33:
            cv->clipon = (unsigned char)(value == 1 ? 0 : 1);
            break;
        case 34:
            cv->smooth = (unsigned char)(value == 2 ? 1 : 0);
            break;
        default:
            break;
    }
}

qqcanvas *qqcanvasof(RasterBlock *b) noexcept {
    return b->cnv.cv.pix ? &b->cnv.cv : nullptr;
}

void qqcnvsync(RasterBlock *b) noexcept {
    qqcanvas *cv = qqcanvasof(b);
    if (!cv) return;
    qqctable(cv, b->clr.colmap, b->clr.vltkind);
    qqcsetc(cv, b->clr.curclr);
}

// ---- the canvas's share of the block ---------------------------------------------

namespace {

void canvas_first(CoreBlock *blk) {
    RasterBlock *b = qqrstblk(blk);
    CanvasState &s = b->cnv;
    s.imgtran = -1;
    s.tpralpha = 255;
    s.cv.tcol = -1;
    s.cv.alpha = 255;
    s.cv.lw = 1;
    s.ropt.bmpres = 2500;
    s.ropt.tifres = 100;
    s.ropt.tifunit = 2;
}

// Session defaults: the whole canvas as clip, a thin line, and the pen of
// the device layer; the colour table and the colour follow from the colour
// model's share, which runs after this one.
void canvas_init(CoreBlock *blk) {
    RasterBlock *b = qqrstblk(blk);
    CanvasState &s = b->cnv;
    s.imgcflg = 0;
    qqcanvas *cv = qqcanvasof(b);
    if (!cv) return;
    qqcflush(cv);
    qqcoption(cv, 11, 0);
    qqcoption(cv, 12, 0);
    qqcoption(cv, 13, cv->cw - 1);
    qqcoption(cv, 14, cv->ch - 1);
    qqcoption(cv, 33, 0);
    qqcoption(cv, 26, 1);
    qqcoption(cv, 32, s.imgtran);
    if (s.pen) s.pen(b);
}

void canvas_release(CoreBlock *blk) {
    RasterBlock *b = qqrstblk(blk);
    qqcnvfree(&b->cnv.cv);
    b->cnv.imgact = 0;
    b->cnv.tprlvl = 0;
}

void canvas_end(CoreBlock *blk) {
    RasterBlock *b = qqrstblk(blk);
    qqimgend(b);
    qqtprend(b);
}

void reset_imgclp(CoreBlock *blk) {
    RasterBlock *b = qqrstblk(blk);
    b->cnv.imgcflg = 0;
}

const ResetEntry kResets[] = {{"IMGC", reset_imgclp}, {nullptr, nullptr}};

}  // namespace

extern const Subsystem kxsub_canvas = {"canvas",       canvas_first, canvas_init,
                                       canvas_release, kResets,      canvas_end};
