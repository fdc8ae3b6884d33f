// filtyp and filsiz: what kind of file a name holds, and the pixel size of
// the raster kinds, from the file's first bytes.
//
// The tests run in a fixed order: the magic numbers of the binary formats,
// the raw Windows metafile, the library's own raster file, a CGM
// BEGIN METAFILE element, and last the first line of a text file.
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "core/core_block.h"
#include "core/guard.h"
#include "core/session.h"
#include "core/warnings.h"
#include "kolvex.h"

namespace {

enum Kind {
    UNKNOWN = 0,
    BMP = 1,
    GIF = 2,
    TIFF = 3,
    PNG = 4,
    RAWIMAGE = 5,
    METAFILE = 6,
    CGM = 7,
    WMF = 8,
    HPGL = 9,
    POSTSCRIPT = 10,
    PDF = 11,
    PLACEABLE_WMF = 12,
    UNREADABLE = -1,
};

enum { HEAD = 512 };  // bytes read for the tests; a TIFF directory may lie further

uint32_t le16(const unsigned char *p) {
    return p[0] | (p[1] << 8);
}
uint32_t le32(const unsigned char *p) {
    return le16(p) | (le16(p + 2) << 16);
}
uint32_t be16(const unsigned char *p) {
    return (p[0] << 8) | p[1];
}
uint32_t be32(const unsigned char *p) {
    return (be16(p) << 16) | be16(p + 2);
}

// A size of a header, or -1 when no image can have it (a corrupt file).
int clamp_size(int64_t v) {
    if (v < 0) v = -v;  // a BMP stored top to bottom has a negative height
    return v < 1 || v > 0x7fffffff ? -1 : (int)v;
}

// A decimal number in a fixed column of the raw image header.
int column_number(const unsigned char *p, int width) {
    int64_t v = 0;
    for (int i = 0; i < width; ++i)
        if (p[i] >= '0' && p[i] <= '9') v = v * 10 + (p[i] - '0');
    return clamp_size(v);
}

// Width and height from the first directory of a TIFF file.
void tiff_size(FILE *fp, bool big, const unsigned char *head, int *w, int *h) {
    auto u16 = [big](const unsigned char *p) { return big ? be16(p) : le16(p); };
    auto u32 = [big](const unsigned char *p) { return big ? be32(p) : le32(p); };
    uint32_t dir = u32(head + 4);
    unsigned char entry[12];
    if (std::fseek(fp, (long)dir, SEEK_SET) != 0 || std::fread(entry, 1, 2, fp) != 2) return;
    uint32_t count = u16(entry);
    for (uint32_t i = 0; i < count; ++i) {
        if (std::fread(entry, 1, 12, fp) != 12) return;
        uint32_t tag = u16(entry), type = u16(entry + 2);
        // SHORT values stand in the first two bytes of the value field.
        int64_t value = type == 3 ? u16(entry + 8) : type == 4 ? u32(entry + 8) : -1;
        if (value < 0) continue;
        if (tag == 256) *w = clamp_size(value);
        if (tag == 257) *h = clamp_size(value);
    }
}

// The first line of the file holds no control characters but tab and
// carriage return: it is a text file.
bool text_line(const unsigned char *p, size_t n) {
    for (size_t i = 0; i < n && p[i] != '\n'; ++i)
        if ((p[i] < 0x20 && p[i] != '\t' && p[i] != '\r') || p[i] == 0x7f) return false;
    return true;
}

bool starts(const unsigned char *p, size_t n, const char *magic, size_t len) {
    return n >= len && std::memcmp(p, magic, len) == 0;
}

}  // namespace

// For the raster kinds w and h are the file's size, or -1 when the header
// cannot be read (cut short, or sizes no image has).
int qqfiletype(const char *name, int *w, int *h) noexcept {
    *w = *h = -1;
    FILE *fp = std::fopen(name, "rb");
    if (!fp) return UNREADABLE;
    unsigned char p[HEAD];
    size_t n = std::fread(p, 1, sizeof p, fp);
    int kind = UNKNOWN;
    if (std::ferror(fp)) {  // a directory, for one
        kind = UNREADABLE;
    } else if (n == 0) {
        kind = UNKNOWN;
    } else if (starts(p, n, "BM", 2)) {
        kind = BMP;
        if (n >= 26 && le32(p + 14) == 12) {  // the old core header: 16-bit sizes
            *w = clamp_size(le16(p + 18));
            *h = clamp_size(le16(p + 20));
        } else if (n >= 26) {
            *w = clamp_size((int32_t)le32(p + 18));
            *h = clamp_size((int32_t)le32(p + 22));
        }
    } else if (starts(p, n, "GIF8", 4)) {
        kind = GIF;
        if (n >= 10) {
            *w = clamp_size(le16(p + 6));
            *h = clamp_size(le16(p + 8));
        }
    } else if (starts(p, n, "\x89PNG\r\n", 6)) {
        kind = PNG;
        if (n >= 24) {
            *w = clamp_size(be32(p + 16));
            *h = clamp_size(be32(p + 20));
        }
    } else if (starts(p, n, "II\x2a\x00", 4) || starts(p, n, "MM\x00\x2a", 4)) {
        kind = TIFF;
        if (n >= 8) tiff_size(fp, p[0] == 'M', p, w, h);
    } else if (starts(p, n, "\xd7\xcd", 2)) {
        kind = PLACEABLE_WMF;
    } else if (starts(p, n, "\x01\x00\x09\x00\x00\x03", 6)) {
        kind = WMF;
    } else if (starts(p, n, "!Bitmap", 7)) {
        kind = RAWIMAGE;
        if (n >= 31) {
            *w = column_number(p + 20, 5);
            *h = column_number(p + 26, 5);
        }
    } else if (n >= 2 && (be16(p) >> 12) == 0 && ((be16(p) >> 5) & 127) == 1) {
        kind = CGM;
    } else if (starts(p, n, " SP1", 4)) {
        kind = HPGL;
    } else if (starts(p, n, "%!PS-Adobe", 10)) {
        kind = POSTSCRIPT;
    } else if (starts(p, n, "%PDF-", 5)) {
        kind = PDF;
    } else if (text_line(p, n)) {
        kind = METAFILE;
    }
    std::fclose(fp);
    return kind;
}

int filtyp(const char *cfil) noexcept {
    CoreBlock *b = KX_ENTRY("filtyp");
    if (!b) return -1;
    int w, h;
    int kind = qqfiletype(cfil ? cfil : "", &w, &h);
    if (kind == UNREADABLE) qqwarc(b, 36, cfil ? cfil : "");
    return kind;
}

int filsiz(const char *cfil, int *nw, int *nh) noexcept {
    *nw = *nh = 0;
    CoreBlock *b = KX_ENTRY("filsiz");
    if (!b) return -1;
    int w, h;
    int kind = qqfiletype(cfil ? cfil : "", &w, &h);
    if (kind == UNREADABLE) {
        qqwarc(b, 36, cfil ? cfil : "");
        return -1;
    }
    if (kind < BMP || kind > RAWIMAGE) return 0;
    // An image whose size cannot be read is a file that cannot be read.
    if (w < 1 || h < 1) {
        qqwarc(b, 36, cfil ? cfil : "");
        return -1;
    }
    *nw = w;
    *nh = h;
    return kind;
}
