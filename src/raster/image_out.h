// Private to the raster writers: the byte sink that every format writes
// through, the picture that every format reads, and the octree quantiser.
//
// A sink is either a stream or a memory buffer; a memory sink of size 0
// only counts.  A picture is the file rectangle of a canvas, seen either as
// rows of red, green, blue or as rows of palette indices with a palette of
// 256 entries (the colour table, or an octree palette of its own).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

struct qqcanvas;

namespace raster {

struct Sink {
    FILE *fp = nullptr;
    unsigned char *mem = nullptr;
    size_t cap = 0;  // size of mem; 0 with no memory counts only
    size_t pos = 0;  // bytes written or counted
    bool toosmall = false;

    void put(const void *data, size_t n);
    void u8(unsigned v) {
        unsigned char c = (unsigned char)v;
        put(&c, 1);
    }
    void le16(unsigned v);
    void le32(uint32_t v);
    void be32(uint32_t v);
    void text(const char *s);
};

struct Octree;

Octree *octree_new();
void octree_free(Octree *t);
// Adds n pixels of red, green, blue.
void octree_add(Octree *t, const unsigned char *rgb, int n);
// Numbers the leaves and fills the palette (768 bytes, unused entries
// black); returns the number of colours.
int octree_palette(Octree *t, unsigned char *pal);
// Indices of n pixels; every pixel must have been added.
void octree_map(const Octree *t, const unsigned char *rgb, int n, unsigned char *idx);

struct Picture {
    const qqcanvas *cv = nullptr;      // the canvas, read from its base plane
    int x0 = 0, y0 = 0, w = 0, h = 0;  // the file rectangle
    bool indexed = false;              // rows of indices into pal, else red, green, blue
    unsigned char pal[768] = {};
    Octree *oct = nullptr;             // the quantiser that gives the indices, if any
    unsigned char *scratch = nullptr;  // 3·w bytes for quantised rows

    // Row y of the rectangle (0 on top) as 3·w bytes of colour or w
    // indices, whichever the picture holds.
    void rgb_row(int y, unsigned char *out) const;
    void index_row(int y, unsigned char *out) const;
};

// The settings that shape the files, taken from the block by qqwrite.
struct WriteOptions {
    int pngtran, giftran;
    int bmpres, tifres, tifunit;
    int bil;      // imgfmt BIL: one bit a pixel in TIFF
    int whitebg;  // bgmode 2
    int bckclr;   // background index for GIF
    double psorg[2], pspaper[2];  // PostScript origin and paper in 0.05 mm
};

// Each writer returns 0, -1 for a file error or -2 without memory; PNG
// adds -3 to -5 for zlib.
int write_png(Sink &s, const Picture &p, const WriteOptions &o);
int write_gif(Sink &s, const Picture &p, const WriteOptions &o);
int write_tiff(Sink &s, const Picture &p, const WriteOptions &o);
int write_bmp(Sink &s, const Picture &p, const WriteOptions &o);
int write_ppm(Sink &s, const Picture &p);
int write_imag(Sink &s, const Picture &p);
int write_ps(Sink &s, const Picture &p, const WriteOptions &o);

}  // namespace raster
