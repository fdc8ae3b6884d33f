// The library's own image file: an 80-byte header "!Bitmap KOLVEX ", the
// source "VIRT " and nine numbers of five columns, then the rows as raw
// bytes.  The canvas writes it for IMAG and rimage; wimage reads it back,
// also the screen copies of other sources with their pixel classes.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/guard.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "raster/canvas.h"
#include "raster/image_out.h"
#include "raster/primitives.h"
#include "raster/raster_block.h"
#include "raster/writers.h"

namespace raster {

int write_imag(Sink &s, const Picture &p) {
    const int bpp = p.indexed ? 1 : 3;
    if (p.w > 99999 || p.h > 99999 || (long long)p.w * bpp > 99999) return -1;  // five columns
    char head[81];
    std::memcpy(head, "!Bitmap KOLVEX VIRT ", 20);
    const int nums[9] = {p.w, p.h, 8 * bpp, p.w * bpp, 8 * bpp, 32, 0, p.indexed ? 1 : 5, 0};
    int n = 20;
    for (int k = 0; k < 9; ++k) {
        if (k) head[n++] = ' ';
        n += qqicha(nums[k], head + n, 6, 5, 0);
    }
    while (n < 80) head[n++] = ' ';
    s.put(head, 80);
    unsigned char *row = static_cast<unsigned char *>(std::malloc((size_t)p.w * bpp));
    if (!row) return -2;
    for (int y = 0; y < p.h; ++y) {
        if (p.indexed)
            p.index_row(y, row);
        else
            p.rgb_row(y, row);
        s.put(row, (size_t)p.w * bpp);
    }
    std::free(row);
    return 0;
}

}  // namespace raster

namespace {

// The nine numbers of a header; 0 when they are readable.
int read_header(FILE *fp, int num[9]) {
    char head[81];
    if (std::fread(head, 1, 80, fp) != 80) return 3;
    head[80] = '\0';
    if (std::memcmp(head, "!Bitmap KOLVEX", 14) != 0) return 3;
    for (int k = 0; k < 9; ++k) {
        char field[6];
        std::memcpy(field, head + 20 + 6 * k, 5);
        field[5] = '\0';
        num[k] = qqntok(field, 1);
    }
    return 0;
}

// Reads the rows of an image file into the canvas.  Returns 0, 2 without
// memory, 3 for a format that is not understood.
int read_pixels(FILE *fp, qqcanvas *cv, const int num[9]) {
    int w = num[0], h = num[1], rowlen = num[3], bits = num[4], cls = num[7], base = num[8];
    if (bits != 8 && bits != 24 && bits != 32) return 3;
    if (w < 1 || h < 1 || rowlen < w * (bits / 8)) return 3;
    unsigned char *row = static_cast<unsigned char *>(std::malloc((size_t)rowlen + 3ull * w));
    if (!row) return 2;
    unsigned char *rgb = row + rowlen;
    int cols = w < cv->cw ? w : cv->cw;
    for (int y = 0; y < h; ++y) {
        if (std::fread(row, 1, (size_t)rowlen, fp) != (size_t)rowlen)
            break;  // a short file ends here
        if (y >= cv->ch) continue;
        if (bits == 8) {
            if (cls == 0) {
                // Values of a screen palette: d = v - base lands on 2d - 1.
                for (int i = 0; i < cols; ++i) {
                    int d = row[i] - base;
                    row[i] = (unsigned char)(d <= 0 ? 0 : 2 * d - 1);
                }
            }
            if (!cv->rgbcnv)
                std::memcpy(cv->pix + (size_t)y * cv->rowb, row, (size_t)cols);
            else
                qqcputrow(cv, 0, y, cols, 0, row);
            continue;
        }
        int step = bits / 8;
        bool reversed = bits == 32 && (cls == 4 || cls == 7);
        for (int i = 0; i < cols; ++i) {
            const unsigned char *q = row + (size_t)i * step;
            rgb[3 * i] = reversed ? q[2] : q[0];
            rgb[3 * i + 1] = q[1];
            rgb[3 * i + 2] = reversed ? q[0] : q[2];
        }
        if (cv->rgbcnv && bits == 24) {
            unsigned char *p = cv->pix + (size_t)y * cv->rowb;
            for (int i = 0; i < cols; ++i, p += 4) {
                std::memcpy(p, rgb + 3 * i, 3);
                p[3] = cv->alpha;
            }
        } else {
            qqcputrow(cv, 0, y, cols, 1, rgb);
        }
    }
    std::free(row);
    return 0;
}

}  // namespace

void rimage(const char *cfl) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("rimage"));
    if (!b) return;
    if (!qqcanvasof(b)) {
        qqwar0(b, 40);
        return;
    }
    qqwritefile(b, cfl, QQ_WIMAG);
}

void wimage(const char *cfl) noexcept {
    RasterBlock *b = qqrstblk(KX_ENTRY("wimage"));
    if (!b) return;
    qqcanvas *cv = qqcanvasof(b);
    if (!cv) {
        qqwar0(b, 40);
        return;
    }
    FILE *fp = std::fopen(cfl ? cfl : "", "rb");
    if (!fp) {
        qqwar0(b, 36);
        return;
    }
    qqcflush(cv);
    int num[9];
    int r = read_header(fp, num);
    if (r == 0) r = read_pixels(fp, cv, num);
    std::fclose(fp);
    if (r == 2) qqwar0(b, 53);
    if (r == 3) qqwar0(b, 56);
}
