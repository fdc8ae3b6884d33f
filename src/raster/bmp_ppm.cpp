// BMP (8 bits with a palette, or 24 bits) and PPM (always true colour).
#include <cstdlib>
#include <cstring>

#include "core/numfmt.h"
#include "raster/image_out.h"

namespace raster {

int write_bmp(Sink &s, const Picture &p, const WriteOptions &o) {
    const bool palette = p.indexed;
    const uint64_t data = palette ? (uint64_t)p.w : 3ull * p.w;
    const uint64_t rowlen = (data + 3) / 4 * 4;
    const uint32_t entries = palette ? 256 : 0;
    const uint64_t image = rowlen * (uint64_t)p.h;
    if (image + 4ull * entries + 54 > 0xffffffffull) return -1;  // beyond the 32-bit file size
    unsigned char *row =
        static_cast<unsigned char *>(std::calloc((size_t)(rowlen + 3ull * p.w), 1));
    if (!row) return -2;
    unsigned char *rgb = row + rowlen;
    s.put("BM", 2);
    s.le32((uint32_t)(4ull * entries + image + 54));
    s.le32(0);
    s.le32(4 * entries + 54);
    s.le32(40);
    s.le32((uint32_t)p.w);
    s.le32((uint32_t)p.h);
    s.le16(1);
    s.le16(palette ? 8 : 24);
    s.le32(0);
    s.le32((uint32_t)image);
    s.le32((uint32_t)o.bmpres);
    s.le32((uint32_t)o.bmpres);
    s.le32(entries);
    s.le32(entries);
    for (uint32_t i = 0; i < entries; ++i) {
        const unsigned char q[4] = {p.pal[3 * i + 2], p.pal[3 * i + 1], p.pal[3 * i], 0};
        s.put(q, 4);
    }
    // Rows from the bottom up; the padding bytes stay zero.
    for (int y = p.h - 1; y >= 0; --y) {
        if (palette) {
            p.index_row(y, row);
        } else {
            p.rgb_row(y, rgb);
            for (int i = 0; i < p.w; ++i) {
                row[3 * i] = rgb[3 * i + 2];
                row[3 * i + 1] = rgb[3 * i + 1];
                row[3 * i + 2] = rgb[3 * i];
            }
        }
        s.put(row, (size_t)rowlen);
    }
    std::free(row);
    return 0;
}

int write_ppm(Sink &s, const Picture &p) {
    unsigned char *row = static_cast<unsigned char *>(std::malloc((size_t)p.w * 3));
    if (!row) return -2;
    char head[64];
    int n = 0;
    std::memcpy(head, "P6\n", 3);
    n = 3;
    n += qqfmti(head + n, (int)sizeof head - n, p.w, 0);
    head[n++] = ' ';
    n += qqfmti(head + n, (int)sizeof head - n, p.h, 0);
    std::memcpy(head + n, "\n255\n", 5);
    n += 5;
    s.put(head, (size_t)n);
    for (int y = 0; y < p.h; ++y) {
        p.rgb_row(y, row);
        s.put(row, (size_t)p.w * 3);
    }
    std::free(row);
    return 0;
}

}  // namespace raster
