// PNG: signature, IHDR, PLTE for palette images, tRNS when transparency
// is asked for, one IDAT and IEND.  The rows, each behind the filter byte
// 0, are compressed by zlib in one call at the default level.
#include <cstdlib>
#include <cstring>
#include <zlib.h>

#include "raster/image_out.h"

namespace raster {
namespace {

// A chunk: length, type, data, and the CRC of type and data.
void chunk(Sink &s, const char *type, const unsigned char *data, uint32_t n) {
    s.be32(n);
    s.put(type, 4);
    if (n) s.put(data, n);
    uLong crc = crc32(0L, reinterpret_cast<const Bytef *>(type), 4);
    if (n) crc = crc32(crc, data, n);
    s.be32((uint32_t)crc);
}

}  // namespace

int write_png(Sink &s, const Picture &p, const WriteOptions &o) {
    const int bpp = p.indexed ? 1 : 3;
    const size_t rowlen = (size_t)p.w * bpp + 1;
    const size_t n = rowlen * (size_t)p.h;
    // zlib counts in 32 bits, and a chunk holds less than 2 GiB.
    if (n > 0x7fff0000u) return -2;
    unsigned char *raw = static_cast<unsigned char *>(std::malloc(n));
    size_t outcap = n + n / 100 + 13;
    if (outcap < (size_t)compressBound((uLong)n)) outcap = compressBound((uLong)n);
    unsigned char *out = static_cast<unsigned char *>(std::malloc(outcap));
    if (!raw || !out) {
        std::free(raw);
        std::free(out);
        return -2;
    }
    for (int y = 0; y < p.h; ++y) {
        unsigned char *row = raw + (size_t)y * rowlen;
        row[0] = 0;
        if (p.indexed)
            p.index_row(y, row + 1);
        else
            p.rgb_row(y, row + 1);
    }
    z_stream z;
    std::memset(&z, 0, sizeof z);
    int r = 0;
    // The version the stream record was laid out for; zlib checks that its
    // major version and the record's size agree.
    if (deflateInit_(&z, Z_DEFAULT_COMPRESSION, "1.2.11", (int)sizeof(z_stream)) != Z_OK) {
        r = -3;
    } else {
        z.next_in = raw;
        z.avail_in = (uInt)n;
        z.next_out = out;
        z.avail_out = (uInt)outcap;
        if (deflate(&z, Z_FINISH) != Z_STREAM_END) r = -4;
        if (deflateEnd(&z) != Z_OK && r == 0) r = -5;
    }
    std::free(raw);
    if (r != 0) {
        std::free(out);
        return r;
    }

    static const unsigned char signature[8] = {137, 80, 78, 71, 13, 10, 26, 10};
    s.put(signature, 8);
    unsigned char ihdr[13];
    const uint32_t dims[2] = {(uint32_t)p.w, (uint32_t)p.h};
    for (int k = 0; k < 2; ++k)
        for (int i = 0; i < 4; ++i) ihdr[4 * k + i] = (unsigned char)(dims[k] >> (24 - 8 * i));
    ihdr[8] = 8;
    ihdr[9] = p.indexed ? 3 : 2;
    ihdr[10] = ihdr[11] = ihdr[12] = 0;
    chunk(s, "IHDR", ihdr, 13);
    if (p.indexed) chunk(s, "PLTE", p.pal, 768);
    if (o.pngtran) {
        // White is transparent in true colour, entry 0 in a palette.
        static const unsigned char white[6] = {0, 255, 0, 255, 0, 255};
        static const unsigned char first[1] = {0};
        if (p.indexed)
            chunk(s, "tRNS", first, 1);
        else
            chunk(s, "tRNS", white, 6);
    }
    chunk(s, "IDAT", out, (uint32_t)z.total_out);
    chunk(s, "IEND", nullptr, 0);
    std::free(out);
    return 0;
}

}  // namespace raster
