// The public routines around the raster files: the PNG in memory, and
// reading a TIFF of this library back into the image (wtiff with the
// window of tifwin placed at tiforg).
#include <cstdint>
#include <cstdio>
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
#include "raster/writers.h"

int rbfpng(unsigned char *cbuf, int nmax) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("rbfpng"));
    if (!b) return 0;
    int kind = qqdevkind(b);
    if (kind == QQ_KIND_FILE || kind == QQ_KIND_PAGE) {
        qqwar0(b, 40);
        return 0;
    }
    if (nmax < 0 || (nmax > 0 && !cbuf)) {
        qqwarn(b, 2, nmax);
        return 0;
    }
    bool started = !b->cnv.imgact;
    if (started) {
        imgini();
        qqscpy(b->core.rtnam, "rbfpng", 8);
        if (!b->cnv.imgact) return 0;
    }
    long r = qqpngmem(b, cbuf, (size_t)nmax);
    if (started) qqimgend(b);
    if (r == 0) {
        qqwar1(b, 125, "Buffer too small for PNG file");
        return 0;
    }
    if (r == -2) {
        qqwar0(b, 53);
        return 0;
    }
    if (r < 0) {
        qqwar1(b, 126, "ZLIB error");
        return 0;
    }
    return r > 0x7fffffffL ? 0 : (int)r;
}

void tifwin(int nx, int ny, int nw, int nh) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("tifwin"));
    if (!b) return;
    if (qqchkrect(b, nx, ny, nw, nh)) return;
    CanvasState &s = b->cnv;
    s.tifwflg = 1;
    s.tifwin[0] = nx;
    s.tifwin[1] = ny;
    s.tifwin[2] = nw;
    s.tifwin[3] = nh;
}

void tiforg(int nx, int ny) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("tiforg"));
    if (!b) return;
    if (nx < 0 || ny < 0) {
        qqwarn(b, 2, nx < ny ? nx : ny);
        return;
    }
    b->cnv.tiforgx = nx;
    b->cnv.tiforgy = ny;
}

namespace {

unsigned get16(const unsigned char *p) {
    return p[0] | (p[1] << 8);
}
uint32_t get32(const unsigned char *p) {
    return p[0] | (p[1] << 8) | (p[2] << 16) | ((uint32_t)p[3] << 24);
}

struct TiffInfo {
    int w = 0, h = 0;
    bool rgb = false, bilevel = false;
    int entries = 0;
};

// Reads the directory; 0, or a warning number.
int read_directory(FILE *fp, TiffInfo &t) {
    unsigned char head[10];
    if (std::fread(head, 1, 10, fp) != 10 || head[0] != 'I') return 56;
    t.entries = (int)get16(head + 8);
    if (t.entries != 10 && t.entries != 11 && t.entries != 13 && t.entries != 14) return 56;
    for (int i = 0; i < t.entries; ++i) {
        unsigned char e[12];
        if (std::fread(e, 1, 12, fp) != 12) return 56;
        unsigned tag = get16(e), type = get16(e + 2);
        uint32_t value = type == 3 ? get16(e + 8) : get32(e + 8);
        if (tag == 256) t.w = (int)value;
        if (tag == 257) t.h = (int)value;
        if (tag == 262 && value == 2) t.rgb = true;
        if (tag == 258 && get32(e + 4) == 1 && value == 1) t.bilevel = true;
    }
    unsigned char next[4];
    if (std::fread(next, 1, 4, fp) != 4 || get32(next) != 0) return 56;
    if (t.rgb && (t.entries == 11 || t.entries == 14)) return 56;
    if (t.w < 1 || t.h < 1 || t.w > 1000000 || t.h > 1000000) return 56;
    return 0;
}

bool skip(FILE *fp, long n) {
    return std::fseek(fp, n, SEEK_CUR) == 0;
}

// Loads the ColorMap into the colour table; 0 or a warning number.
int read_colormap(RasterBlock *b, FILE *fp) {
    unsigned char raw[1536];
    if (std::fread(raw, 1, sizeof raw, fp) != sizeof raw) return 56;
    double *rgb = static_cast<double *>(std::malloc(768 * sizeof(double)));
    if (!rgb) return 53;
    for (int i = 0; i < 768; ++i) rgb[i] = get16(raw + 2 * i) / 65535.0;
    myvlt(rgb, rgb + 256, rgb + 512, 256);
    qqscpy(b->core.rtnam, "wtiff", 8);
    std::free(rgb);
    return 0;
}

// Reads the rows into the canvas, the window of tifwin at tiforg.
int read_rows(RasterBlock *b, FILE *fp, const TiffInfo &t) {
    const CanvasState &s = b->cnv;
    qqcanvas *cv = qqcanvasof(b);
    size_t rowlen = t.bilevel ? (size_t)(t.w + 7) / 8 : (size_t)t.w * (t.rgb ? 3 : 1);
    int bpp = t.rgb || t.bilevel ? 3 : 1;
    int x0 = 0, y0 = 0, x1 = t.w - 1, y1 = t.h - 1;
    if (s.tifwflg) {
        x0 = s.tifwin[0];
        y0 = s.tifwin[1];
        long long xe = (long long)x0 + s.tifwin[2] - 1, ye = (long long)y0 + s.tifwin[3] - 1;
        x1 = xe < x1 ? (int)xe : x1;
        y1 = ye < y1 ? (int)ye : y1;
    }
    unsigned char *row = static_cast<unsigned char *>(std::malloc(rowlen + 3ull * t.w));
    if (!row) return 53;
    unsigned char *data = row + rowlen;
    for (int y = 0; y <= y1; ++y) {
        if (std::fread(row, 1, rowlen, fp) != rowlen) break;
        if (y < y0 || x0 > x1 || !cv) continue;
        const unsigned char *src = row;
        if (t.bilevel) {
            // One bit a pixel: 1 is white, 0 black.
            for (int i = 0; i < t.w; ++i) {
                unsigned char v = (row[i >> 3] & (0x80 >> (i & 7))) ? 255 : 0;
                data[3 * i] = data[3 * i + 1] = data[3 * i + 2] = v;
            }
            src = data;
        }
        int tx = s.tiforgx, ty = s.tiforgy + (y - y0), n = x1 - x0 + 1;
        if (ty >= cv->ch || tx >= cv->cw) continue;
        if (n > cv->cw - tx) n = cv->cw - tx;
        qqcputrow(cv, tx, ty, n, bpp == 3, src + (size_t)x0 * bpp);
    }
    std::free(row);
    return 0;
}

}  // namespace

void wtiff(const char *cfl) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("wtiff"));
    if (!b) return;
    if (qqdevkind(b) == QQ_KIND_FILE) {
        qqwar0(b, 40);
        return;
    }
    FILE *fp = std::fopen(cfl ? cfl : "", "rb");
    if (!fp) {
        qqwar0(b, 36);
        return;
    }
    TiffInfo t;
    int w = read_directory(fp, t);
    if (w == 0) {
        long tables = 4L * t.h + (t.entries <= 11 ? 2L : 4L) * t.h + (t.entries == 11 ? 0 : 16);
        if (!skip(fp, tables)) w = 56;
    }
    if (w == 0) {
        if (t.rgb)
            w = skip(fp, 6) ? 0 : 56;
        else if (!t.bilevel)
            w = read_colormap(b, fp);
    }
    if (w != 0) {
        std::fclose(fp);
        qqwar0(b, w);
        return;
    }
    CanvasState &s = b->cnv;
    int saved = s.imgrgb;
    if (t.rgb) s.imgrgb = 1;
    bool started = !s.imgact;
    if (started) {
        imgini();
        qqscpy(b->core.rtnam, "wtiff", 8);
    }
    if (s.imgact) {
        if (qqcanvas *cv = qqcanvasof(b)) qqcflush(cv);
        w = read_rows(b, fp, t);
        if (started) qqimgend(b);
    }
    s.imgrgb = saved;
    std::fclose(fp);
    if (w != 0) qqwar0(b, w);
}
