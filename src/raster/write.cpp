// qqwrite and the memory PNG: the file rectangle, the data that a format
// needs (true colour, table indices, or an octree palette), and the
// warnings of the writers' results.
#include "raster/writers.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/session.h"
#include "core/text.h"
#include "core/warnings.h"
#include "raster/canvas.h"
#include "raster/image_out.h"
#include "raster/primitives.h"
#include "raster/raster_block.h"

namespace raster {

void Sink::put(const void *data, size_t n) {
    if (fp) {
        if (n) std::fwrite(data, 1, n, fp);
    } else if (mem && cap > 0) {
        if (pos + n > cap)
            toosmall = true;
        else
            std::memcpy(mem + pos, data, n);
    }
    pos += n;
}

void Sink::le16(unsigned v) {
    unsigned char b[2] = {(unsigned char)v, (unsigned char)(v >> 8)};
    put(b, 2);
}

void Sink::le32(uint32_t v) {
    unsigned char b[4] = {(unsigned char)v, (unsigned char)(v >> 8), (unsigned char)(v >> 16),
                          (unsigned char)(v >> 24)};
    put(b, 4);
}

void Sink::be32(uint32_t v) {
    unsigned char b[4] = {(unsigned char)(v >> 24), (unsigned char)(v >> 16),
                          (unsigned char)(v >> 8), (unsigned char)v};
    put(b, 4);
}

void Sink::text(const char *s) {
    put(s, std::strlen(s));
}

void Picture::rgb_row(int y, unsigned char *out) const {
    if (indexed && oct) {
        // The colours were quantised: give back what the palette holds.
        index_row(y, scratch);
        for (int i = 0; i < w; ++i) std::memcpy(out + 3 * i, pal + 3 * scratch[i], 3);
        return;
    }
    qqcanvas view = *cv;
    view.pix = view.pixbase;
    qqcgetrow(&view, x0, y0 + y, w, 1, out);
}

void Picture::index_row(int y, unsigned char *out) const {
    qqcanvas view = *cv;
    view.pix = view.pixbase;
    if (oct) {
        qqcgetrow(&view, x0, y0 + y, w, 1, scratch);
        octree_map(oct, scratch, w, out);
    } else {
        qqcgetrow(&view, x0, y0 + y, w, 0, out);
    }
}

}  // namespace raster

namespace {

using raster::Picture;

enum Data { TRUE_COLOUR, TABLE, OWN_PALETTE };

// What a format receives: PPM always colour, IMAG the canvas as it is, GIF
// always a palette (its own when the pixels are colours), the others
// colour with imgfmt RGB and a palette otherwise.
Data data_for(const RasterBlock *b, int format) {
    bool rgbout = b->cnv.ropt.rasfmt == 1;
    bool deep = b->sess.colbits > 8 || b->cnv.cv.rgbcnv;
    switch (format) {
        case QQ_WPPM:
        case QQ_WPS:
            return TRUE_COLOUR;
        case QQ_WIMAG:
            return b->cnv.cv.rgbcnv ? TRUE_COLOUR : TABLE;
        case QQ_WGIF:
            return rgbout || deep ? OWN_PALETTE : TABLE;
        default:
            return rgbout ? TRUE_COLOUR : (deep ? OWN_PALETTE : TABLE);
    }
}

// Sets up the picture of a rectangle; returns 0 or -2 without memory.
int prepare(RasterBlock *b, Picture &p, int format, int x, int y, int w, int h) {
    const qqcanvas *cv = &b->cnv.cv;
    p.cv = cv;
    p.x0 = x;
    p.y0 = y;
    p.w = w;
    p.h = h;
    Data d = data_for(b, format);
    p.indexed = d != TRUE_COLOUR;
    if (d == TABLE) {
        for (int i = 0; i < 256; ++i) {
            p.pal[3 * i] = cv->tabr[i];
            p.pal[3 * i + 1] = cv->tabg[i];
            p.pal[3 * i + 2] = cv->tabb[i];
        }
    }
    if (d != OWN_PALETTE) return 0;
    p.scratch = static_cast<unsigned char *>(std::malloc((size_t)w * 3));
    p.oct = raster::octree_new();
    if (!p.scratch || !p.oct) return -2;
    qqcanvas view = *cv;
    view.pix = view.pixbase;
    for (int row = 0; row < h; ++row) {
        qqcgetrow(&view, x, y + row, w, 1, p.scratch);
        raster::octree_add(p.oct, p.scratch, w);
    }
    raster::octree_palette(p.oct, p.pal);
    return 0;
}

void free_picture(Picture &p) {
    std::free(p.scratch);
    raster::octree_free(p.oct);
    p.scratch = nullptr;
    p.oct = nullptr;
}

raster::WriteOptions options_of(const RasterBlock *b) {
    raster::WriteOptions o;
    o.pngtran = b->cnv.ropt.pngtran;
    o.giftran = b->cnv.ropt.giftran;
    o.bmpres = b->cnv.ropt.bmpres;
    o.tifres = b->cnv.ropt.tifres;
    o.tifunit = b->cnv.ropt.tifunit;
    o.bil = b->cnv.ropt.rasfmt == 2;
    o.whitebg = b->sess.bgmode == 2;
    o.bckclr = b->clr.bckclr;
    // The paper of the page files: DIN A4 with a margin, or twice hwpage
    // and hworig, which are in 1/100 cm.
    const SessionState &ss = b->sess;
    o.psorg[0] = ss.hwpflg ? 2.0 * ss.hworg[0] : 150.0;
    o.psorg[1] = ss.hwpflg ? 2.0 * ss.hworg[1] : 200.0;
    o.pspaper[0] = ss.hwsflg ? 2.0 * ss.hwsiz[0] : 3900.0;
    o.pspaper[1] = ss.hwsflg ? 2.0 * ss.hwsiz[1] : 5600.0;
    return o;
}

int run_writer(raster::Sink &s, const Picture &p, const raster::WriteOptions &o, int format) {
    switch (format) {
        case QQ_WTIFF:
            return raster::write_tiff(s, p, o);
        case QQ_WIMAG:
            return raster::write_imag(s, p);
        case QQ_WPNG:
            return raster::write_png(s, p, o);
        case QQ_WPPM:
            return raster::write_ppm(s, p);
        case QQ_WBMP:
            return raster::write_bmp(s, p, o);
        case QQ_WGIF:
            return raster::write_gif(s, p, o);
        case QQ_WPS:
            return raster::write_ps(s, p, o);
        default:
            return -1;
    }
}

}  // namespace

int qqwrite(RasterBlock *b, FILE *fp, const char *name, int format) noexcept {
    qqcanvas *cv = qqcanvasof(b);
    int r;
    if (!cv || !fp) {
        r = -1;
    } else {
        qqcflush(cv);
        const CanvasState &s = b->cnv;
        int x = 0, y = 0, w = cv->cw, h = cv->ch;
        if (s.imgcflg && s.imgcx[0] >= 0 && s.imgcx[1] >= 0 && s.imgcx[2] >= 1 && s.imgcx[3] >= 1 &&
            (long long)s.imgcx[0] + s.imgcx[2] <= cv->cw &&
            (long long)s.imgcx[1] + s.imgcx[3] <= cv->ch) {
            x = s.imgcx[0];
            y = s.imgcx[1];
            w = s.imgcx[2];
            h = s.imgcx[3];
        }
        Picture p;
        r = prepare(b, p, format, x, y, w, h);
        if (r == 0) {
            raster::Sink sink;
            sink.fp = fp;
            r = run_writer(sink, p, options_of(b), format);
            // A full disk shows here: the file is then not what it claims.
            if (r == 0 && (std::fflush(fp) != 0 || std::ferror(fp))) r = -1;
        }
        free_picture(p);
    }
    if (r == -1) {
        qqwar0(b, 36);
    } else if (r == -2) {
        qqwar0(b, 53);
    } else if (r != 0) {
        qqwar1(b, 126, "ZLIB error");
    }
    (void)name;
    return r;
}

long qqpngmem(RasterBlock *b, unsigned char *buffer, size_t size) noexcept {
    qqcanvas *cv = qqcanvasof(b);
    if (!cv) return -1;
    qqcflush(cv);
    Picture p;
    int r = prepare(b, p, QQ_WPNG, 0, 0, cv->cw, cv->ch);
    raster::Sink sink;
    sink.mem = buffer;
    sink.cap = size;
    if (r == 0) r = raster::write_png(sink, p, options_of(b));
    free_picture(p);
    if (r != 0) return r;
    if (sink.toosmall) return 0;
    return (long)sink.pos;
}

int qqwritefile(RasterBlock *b, const char *file, int format) noexcept {
    QQOutFile out{};
    qqscpy(out.name, file ? file : "", 256);
    if (qqoutopen(b, &out, "wb") != 0) return -1;
    int r = qqwrite(b, out.fp, out.name, format);
    // A file that the writer could not finish must not pass for a picture.
    if (qqoutclose(b, &out, r == 0) != 0 && r == 0) r = -1;
    return r;
}
