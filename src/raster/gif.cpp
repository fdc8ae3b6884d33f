// GIF: header, logical screen with a global table of 256 colours, an
// optional graphic control extension for transparency, one image and the
// LZW data in sub-blocks.
//
// The LZW coder keeps its string table in an open hash of 5021 slots.  It
// starts at 9 bits with Clear (256) and End (257), widens the codes each
// time the next code to be stored reaches the current limit, and starts
// again with Clear after code 4094 has been stored.
#include <cstdlib>
#include <cstring>

#include "raster/image_out.h"

namespace raster {
namespace {

enum { HSIZE = 5021, CLEAR = 256, END = 257, FIRST = 258, LAST = 4095, EMPTY = 65535 };

// Codes go least significant bit first into bytes, the bytes into
// sub-blocks of 255 with a count byte in front.
struct BitWriter {
    Sink &s;
    uint32_t acc = 0;
    int nbits = 0;
    unsigned char block[256];
    int nblock = 0;

    explicit BitWriter(Sink &sink) : s(sink) {}
    void byte(unsigned char c) {
        block[nblock++] = c;
        if (nblock == 255) {
            s.u8(255);
            s.put(block, 255);
            nblock = 0;
        }
    }
    void code(int c, int size) {
        acc |= (uint32_t)c << nbits;
        nbits += size;
        while (nbits >= 8) {
            byte((unsigned char)(acc & 255));
            acc >>= 8;
            nbits -= 8;
        }
    }
    void finish() {
        if (nbits > 0) byte((unsigned char)(acc & 255));
        if (nblock > 0) {
            s.u8((unsigned)nblock);
            s.put(block, (size_t)nblock);
        }
        s.u8(0);  // the block terminator
    }
};

struct Table {
    uint16_t prefix[HSIZE];
    uint8_t suffix[HSIZE];
    uint16_t code[HSIZE];
    void clear() { std::memset(code, 0xff, sizeof code); }
};

class Lzw {
public:
    Lzw(Sink &s, Table &t) : out(s), tab(t) {}
    void start(int pixel) {
        tab.clear();
        restart_sizes();
        out.code(CLEAR, size);
        ent = pixel;
    }
    void add(int c) {
        int i = (c << 4) ^ ent;
        int step = i == 0 ? 1 : HSIZE - i;
        while (tab.code[i] != EMPTY) {
            if (tab.prefix[i] == ent && tab.suffix[i] == c) {
                ent = tab.code[i];
                return;
            }
            i -= step;
            if (i < 0) i += HSIZE;
        }
        tab.prefix[i] = (uint16_t)ent;
        tab.suffix[i] = (uint8_t)c;
        tab.code[i] = (uint16_t)next;
        out.code(ent, size);
        if (next == limit) {
            ++size;
            limit *= 2;
        }
        ++next;
        if (next == LAST) {
            out.code(CLEAR, size);
            tab.clear();
            restart_sizes();
        }
        ent = c;
    }
    void finish() {
        out.code(ent, size);
        // A decoder stores one more string on reading that code and widens
        // its codes when the next one reaches the limit: End must come in
        // the width that it then expects.
        if (next == limit && size < 12) ++size;
        out.code(END, size);
        out.finish();
    }

private:
    void restart_sizes() {
        size = 9;
        limit = 512;
        next = FIRST;
    }
    BitWriter out;
    Table &tab;
    int ent = 0, size = 9, limit = 512, next = FIRST;
};

}  // namespace

int write_gif(Sink &s, const Picture &p, const WriteOptions &o) {
    if (p.w > 65535 || p.h > 65535) return -1;
    Table *tab = static_cast<Table *>(std::malloc(sizeof(Table)));
    unsigned char *row = static_cast<unsigned char *>(std::malloc((size_t)p.w));
    if (!tab || !row) {
        std::free(tab);
        std::free(row);
        return -2;
    }
    s.text(o.giftran ? "GIF89a" : "GIF87a");
    s.le16((unsigned)p.w);
    s.le16((unsigned)p.h);
    s.u8(0xF7);
    s.u8((unsigned)(o.bckclr & 255));
    s.u8(0);
    s.put(p.pal, 768);
    if (o.giftran) {
        const unsigned char gce[8] = {0x21, 0xF9, 4, 1, 0, 0, (unsigned char)(o.bckclr & 255), 0};
        s.put(gce, 8);
    }
    s.u8(',');
    s.le16(0);
    s.le16(0);
    s.le16((unsigned)p.w);
    s.le16((unsigned)p.h);
    s.u8(0);
    s.u8(8);  // minimum code size
    Lzw lzw(s, *tab);
    for (int y = 0; y < p.h; ++y) {
        p.index_row(y, row);
        int x = 0;
        if (y == 0) {
            lzw.start(row[0]);
            x = 1;
        }
        for (; x < p.w; ++x) lzw.add(row[x]);
    }
    lzw.finish();
    s.u8(';');
    std::free(tab);
    std::free(row);
    return 0;
}

}  // namespace raster
