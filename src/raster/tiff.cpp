// TIFF, little-endian, uncompressed, one strip a row: palette images with
// a ColorMap, true colour with three samples, or one bit a pixel (imgfmt
// "BIL").
//
// Layout: header, the directory at offset 8, then the strip offsets, the
// strip byte counts, the two resolutions, the extra block (ColorMap or the
// three BitsPerSample values) and the rows.  An image of a single row
// keeps that layout, but stores its one offset and count in the directory
// entries themselves, as readers expect of a value that fits in four bytes.
#include <algorithm>
#include <cstdlib>

#include "raster/image_out.h"

namespace raster {
namespace {

enum { SHORT = 3, LONG = 4, RATIONAL = 5 };

void entry(Sink &s, unsigned tag, unsigned type, uint32_t count, uint32_t value) {
    s.le16(tag);
    s.le16(type);
    s.le32(count);
    if (type == SHORT && count == 1) {
        s.le16(value);
        s.le16(0);
    } else {
        s.le32(value);
    }
}

// Packs a row of colours into bits, most significant first.  The drawing
// colour gives 1 on a dark sheet (all but black) and 0 on a white one (all
// but white), so that the picture keeps its look in black and white.
void pack_bits(const unsigned char *rgb, int w, bool whitebg, unsigned char *out) {
    std::fill_n(out, (w + 7) / 8, 0);
    for (int i = 0; i < w; ++i, rgb += 3) {
        bool bit = whitebg ? (rgb[0] == 255 && rgb[1] == 255 && rgb[2] == 255)
                           : !(rgb[0] == 0 && rgb[1] == 0 && rgb[2] == 0);
        if (bit) out[i >> 3] |= (unsigned char)(0x80 >> (i & 7));
    }
}

}  // namespace

int write_tiff(Sink &s, const Picture &p, const WriteOptions &o) {
    const bool bil = o.bil != 0;
    const bool palette = !bil && p.indexed;
    const uint32_t w = (uint32_t)p.w, h = (uint32_t)p.h;
    const uint64_t rowsize = bil ? (w + 7) / 8 : (palette ? w : 3ull * w);
    const uint32_t nent = palette ? 14 : 13;
    const uint64_t d = 12ull * nent + 14;
    const uint64_t block = palette ? 1536 : (bil ? 0 : 6);
    const uint64_t first = d + 8ull * h + 16 + block;
    if (first + rowsize * h > 0xffffffffull) return -1;  // beyond what 32-bit offsets reach
    unsigned char *row = static_cast<unsigned char *>(std::malloc((size_t)(3ull * w)));
    unsigned char *bits = static_cast<unsigned char *>(std::malloc((size_t)rowsize));
    if (!row || !bits) {
        std::free(row);
        std::free(bits);
        return -2;
    }
    s.put("II", 2);
    s.le16(42);
    s.le32(8);
    s.le16(nent);
    entry(s, 254, LONG, 1, 0);
    entry(s, 256, LONG, 1, w);
    entry(s, 257, LONG, 1, h);
    if (palette || bil)
        entry(s, 258, SHORT, 1, bil ? 1 : 8);
    else
        entry(s, 258, SHORT, 3, (uint32_t)(d + 8ull * h + 16));
    entry(s, 259, SHORT, 1, 1);
    entry(s, 262, SHORT, 1, bil ? 1 : (palette ? 3 : 2));
    entry(s, 273, LONG, h, h == 1 ? (uint32_t)first : (uint32_t)d);
    entry(s, 277, SHORT, 1, palette || bil ? 1 : 3);
    entry(s, 278, SHORT, 1, 1);
    entry(s, 279, LONG, h, h == 1 ? (uint32_t)rowsize : (uint32_t)(d + 4ull * h));
    entry(s, 282, RATIONAL, 1, (uint32_t)(d + 8ull * h));
    entry(s, 283, RATIONAL, 1, (uint32_t)(d + 8ull * h + 8));
    entry(s, 296, SHORT, 1, (uint32_t)o.tifunit);
    if (palette) entry(s, 320, SHORT, 768, (uint32_t)(d + 8ull * h + 16));
    s.le32(0);
    for (uint32_t y = 0; y < h; ++y) s.le32((uint32_t)(first + rowsize * y));
    for (uint32_t y = 0; y < h; ++y) s.le32((uint32_t)rowsize);
    for (int k = 0; k < 2; ++k) {
        s.le32((uint32_t)o.tifres);
        s.le32(1);
    }
    if (palette) {
        for (int c = 0; c < 3; ++c)
            for (int i = 0; i < 256; ++i) s.le16((unsigned)(p.pal[3 * i + c] / 255.0 * 65535.0));
    } else if (!bil) {
        for (int k = 0; k < 3; ++k) s.le16(8);
    }
    for (uint32_t y = 0; y < h; ++y) {
        if (bil) {
            p.rgb_row((int)y, row);
            pack_bits(row, p.w, o.whitebg != 0, bits);
            s.put(bits, (size_t)rowsize);
        } else if (palette) {
            p.index_row((int)y, row);
            s.put(row, (size_t)rowsize);
        } else {
            p.rgb_row((int)y, row);
            s.put(row, (size_t)rowsize);
        }
    }
    std::free(row);
    std::free(bits);
    return 0;
}

}  // namespace raster
