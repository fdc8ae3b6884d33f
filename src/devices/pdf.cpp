// The PDF driver (device 511): a PDF 1.3 document written object by object.
//
// Positions are points, y upward: (sX, s(nyp − Y)), or (sY, sX) on a
// landscape page, which is then shown turned by "/Rotate 90".  Lines are
// paths of "m" and "l" that stay open until something else is written
// ("S" then strokes them); colours set fill and stroke together; the clip
// rectangle lives in one "q" ... "Q"; hardware characters name the
// standard fonts, never embedded; images become RGB image objects.  At the
// close come the page tree, the bookmarks, the catalog, the info object,
// the cross-reference table and the trailer.
//
// The document goes to a file, written under a temporary name and renamed
// when complete, or to memory for pdfbuf.  The writer (devices/pdf_doc.h)
// makes both the same bytes.
#include <atomic>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "colour/colour.h"
#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/subsystems.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "devices/device_block.h"
#include "devices/pdf.h"
#include "devices/pdf_doc.h"
#include "devices/registry.h"
#include "devices/vector.h"
#include "kolvex.h"

namespace {

// The standard fonts by index, as the hardware font routines number them.
const char *const kFontNames[35] = {
    "Times-Roman",
    "Times-Bold",
    "Times-Italic",
    "Times-BoldItalic",
    "Helvetica",
    "Helvetica-Bold",
    "Helvetica-Oblique",
    "Helvetica-BoldOblique",
    "Helvetica-Narrow",
    "Helvetica-Narrow-Bold",
    "Helvetica-Narrow-Oblique",
    "Helvetica-Narrow-BoldOblique",
    "NewCenturySchlbk-Roman",
    "NewCenturySchlbk-Italic",
    "NewCenturySchlbk-Bold",
    "NewCenturySchlbk-BoldItalic",
    "ZapfChancery-MediumItalic",
    "ZapfDingbats",
    "Courier",
    "Courier-Bold",
    "Courier-Oblique",
    "Courier-BoldOblique",
    "AvantGarde-Book",
    "AvantGarde-Demi",
    "AvantGarde-BookOblique",
    "AvantGarde-DemiOblique",
    "Bookman-Light",
    "Bookman-LightItalic",
    "Bookman-Demi",
    "Bookman-DemiItalic",
    "Palatino-Roman",
    "Palatino-Italic",
    "Palatino-Bold",
    "Palatino-BoldItalic",
    "Symbol",
};
const int kZapfDingbats = 17, kSymbol = 34;

// Operation codes of the driver; the ones that end an open text object or
// an open path before they act.
enum {
    OP_CLOSE = 1,
    OP_DRAW = 2,
    OP_MOVE = 3,
    OP_PAGE = 4,
    OP_FILL = 5,
    OP_WIDTH = 6,
    OP_JOIN = 7,
    OP_CAP = 8,
    OP_MITER = 9,
    OP_IMAGE = 10,
    OP_IMAGE_END = 11,
    OP_CLIP = 18,
};

const float kDot = 0.354f;  // half of the dash that shows a point

PdfRecord *rec(DeviceBlock *b) {
    return b->pdf.rec;
}

void put(PdfRecord *p, const char *from, const char *to) {
    pdfw_put(p, from, (size_t)(to - from));
}

// What every operation does first: an open text object ends, and an open
// path is stroked unless the operation goes on with it.
void before(PdfRecord *p, int code) {
    if (p->intext) {
        pdfw_str(p, "ET\n");
        p->intext = 0;
    }
    if (p->pathopen && code != OP_DRAW && code != OP_FILL) {
        pdfw_str(p, "S\n");
        p->pathopen = 0;
        p->penmode = 3;
    }
}

// Plot position to points.
void to_points(DeviceBlock *b, double x, double y, double *px, double *py) {
    double s = b->sess.devscl;
    if (rec(b)->landscape) {
        *px = s * y;
        *py = s * x;
    } else {
        *px = s * x;
        *py = s * (b->core.nyp - y);
    }
}

// One part of a colour: "0 ", "1 " or v / 255 with three decimals in five
// columns.
char *colour_part(char *at, int v) {
    if (v <= 0) return pdfw_txt(at, "0 ");
    if (v >= 255) return pdfw_txt(at, "1 ");
    char num[16];
    char *e = pdfw_fix(num, v / 255.0, 3);
    for (int pad = 5 - (int)(e - num); pad > 0; --pad) *at++ = ' ';
    for (char *q = num; q < e; ++q) *at++ = *q;
    *at++ = ' ';
    return at;
}

char *colour_text(char *at, const int rgb[3], const char *op) {
    for (int i = 0; i < 3; ++i) at = colour_part(at, rgb[i]);
    return pdfw_txt(at, op);
}

void write_fill(PdfRecord *p, const int rgb[3]) {
    char line[64];
    put(p, line, colour_text(line, rgb, "rg\n"));
    for (int i = 0; i < 3; ++i) p->fillrgb[i] = rgb[i];
}

void write_stroke(PdfRecord *p, const int rgb[3]) {
    char line[64];
    put(p, line, colour_text(line, rgb, "RG\n"));
    for (int i = 0; i < 3; ++i) p->strkrgb[i] = rgb[i];
}

bool same(const int a[3], const int b[3]) {
    return a[0] == b[0] && a[1] == b[1] && a[2] == b[2];
}

// Fills and text take the current colour; a filled rectangle of another
// colour may have changed the fill colour since.
void fill_as_stroke(PdfRecord *p) {
    if (p->strkrgb[0] >= 0 && !same(p->fillrgb, p->strkrgb)) write_fill(p, p->strkrgb);
}

void write_width(PdfRecord *p, double w) {
    char line[48];
    put(p, line, pdfw_txt(pdfw_fix(line, w, 3), " w\n"));
    p->linew = w;
}

void write_int_op(PdfRecord *p, int v, const char *op) {
    char line[32];
    put(p, line, pdfw_txt(pdfw_int(line, v), op));
}

void write_miter(PdfRecord *p, double m) {
    char line[48];
    put(p, line, pdfw_txt(pdfw_fix(line, m, 3), " M\n"));
    p->miter = m;
}

// The path operations, positions in points as single precision values.
void path_move(PdfRecord *p, float x, float y) {
    before(p, OP_MOVE);
    p->penx = x;
    p->peny = y;
    p->penmode = 3;
}

void path_draw(PdfRecord *p, float x, float y) {
    before(p, OP_DRAW);
    float d = 0;
    if (x == p->penx && y == p->peny) {
        if (p->penmode == 2) return;
        d = kDot;  // a point after a move shows as a short dash
    }
    char line[96];
    char *e = line;
    if (p->penmode == 3) {
        e = pdfw_fix(e, (double)(p->penx - d), 2);
        *e++ = ' ';
        e = pdfw_txt(pdfw_fix(e, (double)p->peny, 2), " m\n");
    }
    e = pdfw_fix(e, (double)(x + d), 2);
    *e++ = ' ';
    e = pdfw_txt(pdfw_fix(e, (double)y, 2), " l\n");
    put(p, line, e);
    p->pathopen = 1;
    p->penmode = 2;
    p->penx = x;
    p->peny = y;
}

// A filled rectangle in points: a size below 0.01 still shows as a
// stripe of 0.708 points.
void rect_fill(PdfRecord *p, double x, double y, double w, double h) {
    if (w < 0.01) {
        w = 0.708;
        x -= 0.354;
    }
    if (h < 0.01) {
        h = 0.708;
        y -= 0.354;
    }
    char line[128];
    char *e = pdfw_fix(line, x, 2);
    *e++ = ' ';
    e = pdfw_fix(e, y, 2);
    *e++ = ' ';
    e = pdfw_fix(e, w, 2);
    *e++ = ' ';
    e = pdfw_txt(pdfw_fix(e, h, 2), " re\nf\n");
    put(p, line, e);
}

// The black sheet of a dark background, over the whole page.
void page_background(DeviceBlock *b, PdfRecord *p) {
    if (b->sess.bgmode == 2) return;
    const int black[3] = {0, 0, 0};
    write_fill(p, black);
    double s = b->sess.devscl;
    double w = p->landscape ? b->core.nyp : b->core.nxp;
    double h = p->landscape ? b->core.nxp : b->core.nyp;
    rect_fill(p, 0, 0, w * s, h * s);
}

// ---- clipping --------------------------------------------------------------------------

void clip_open(PdfRecord *p) {
    pdfw_str(p, "q\n");
    for (int i = 0; i < 3; ++i) {
        p->qfill[i] = p->fillrgb[i];
        p->qstrk[i] = p->strkrgb[i];
    }
    p->qlinew = p->linew;
    p->qcap = p->cap;
    p->qjoin = p->join;
    p->qmiter = p->miter;
    char line[160];
    const float *c = p->clp;
    const float xs[4] = {c[0], c[2], c[2], c[0]}, ys[4] = {c[1], c[1], c[3], c[3]};
    char *e = line;
    for (int i = 0; i < 4; ++i) {
        e = pdfw_fix(e, xs[i], 2);
        *e++ = ' ';
        e = pdfw_fix(e, ys[i], 2);
        e = pdfw_txt(e, i == 0 ? " m " : " l ");
    }
    put(p, line, pdfw_txt(e, "h W n\n"));
    p->clipon = 1;
}

// "Q" takes back the state of the "q": what has changed since is written
// again, the stroke colour always when restroke is set.
void clip_close(PdfRecord *p, bool restroke) {
    if (!p->clipon) return;
    pdfw_str(p, "Q\n");
    p->clipon = 0;
    int fill[3], strk[3];
    for (int i = 0; i < 3; ++i) {
        fill[i] = p->fillrgb[i];
        strk[i] = p->strkrgb[i];
        p->fillrgb[i] = p->qfill[i];
        p->strkrgb[i] = p->qstrk[i];
    }
    if (strk[0] >= 0 && (restroke || !same(strk, p->qstrk))) write_stroke(p, strk);
    if (fill[0] >= 0 && !same(fill, p->qfill)) write_fill(p, fill);
    if (p->linew != p->qlinew) write_width(p, p->linew);
    if (p->cap != p->qcap) write_int_op(p, p->cap, " J\n");
    if (p->join != p->qjoin) write_int_op(p, p->join, " j\n");
    if (p->miter != p->qmiter && p->miter > 0) write_miter(p, p->miter);
}

// ---- pages -----------------------------------------------------------------------------

// The font objects that this page used first, then the page object.
void end_page(PdfRecord *p) {
    pdfw_content_end(p);
    char line[128];
    for (int f = 0; f < 35; ++f) {
        if (p->fontuse[f] != 1) continue;
        pdfw_object(p, PDF_FONT + f);
        char *e = pdfw_txt(line, "<< /Type /Font\n/Subtype /Type1\n/BaseFont /");
        e = pdfw_txt(pdfw_txt(e, kFontNames[f]), "\n");
        if (f != kSymbol && f != kZapfDingbats) e = pdfw_txt(e, "/Encoding /WinAnsiEncoding\n");
        put(p, line, pdfw_txt(e, ">>\nendobj\n"));
        p->fontuse[f] = 2;
    }
    int last = p->objnext;  // the objects so far, this page's own included
    bool image = false;
    for (int i = p->pagefirst; i < last && i < p->objcap; ++i) image |= p->objtype[i] == PDF_IMAGE;

    pdfw_object(p, PDF_PAGE);
    char *e = pdfw_txt(line, "<<\n/Type /Page\n/MediaBox [0 0 ");
    e = pdfw_int(e, p->mediaw);
    *e++ = ' ';
    e = pdfw_txt(pdfw_int(e, p->mediah), "]\n/Parent 2 0 R\n");
    if (p->rotate) e = pdfw_txt(e, "/Rotate 90\n");
    put(p, line, e);
    if (p->anyfont) {
        pdfw_str(p, image ? "/Resources << /ProcSet [/PDF /Text /ImageC]\n"
                          : "/Resources << /ProcSet [/PDF /Text]\n");
        pdfw_str(p, "/Font <<\n");
        for (int i = 1; i < last && i < p->objcap; ++i) {
            if (p->objtype[i] < PDF_FONT) continue;
            e = pdfw_txt(pdfw_int(pdfw_txt(line, "/F"), p->objtype[i] - PDF_FONT + 1), " ");
            put(p, line, pdfw_txt(pdfw_int(e, i), " 0 R\n"));
        }
        pdfw_str(p, ">>\n");
    } else {
        pdfw_str(p, image ? "/Resources << /ProcSet [/PDF /ImageC]\n"
                          : "/Resources << /ProcSet [/PDF]\n");
    }
    if (image) {
        pdfw_str(p, "/XObject <<\n");
        int number = 0;
        for (int i = 1; i < last && i < p->objcap; ++i) {
            if (p->objtype[i] != PDF_IMAGE) continue;
            ++number;
            if (i < p->pagefirst) continue;
            e = pdfw_txt(pdfw_int(pdfw_txt(line, "/Image"), number), " ");
            put(p, line, pdfw_txt(pdfw_int(e, i), " 0 R\n"));
        }
        pdfw_str(p, ">>\n");
    }
    pdfw_str(p, ">>\n");
    if (p->pagecont == 1) {
        put(p, line, pdfw_txt(pdfw_int(pdfw_txt(line, "/Contents "), p->contlast), " 0 R\n"));
    } else {
        pdfw_str(p, "/Contents [\n");
        for (int i = p->pagefirst; i < last && i < p->objcap; ++i)
            if (p->objtype[i] == PDF_CONTENT) put(p, line, pdfw_txt(pdfw_int(line, i), " 0 R\n"));
        pdfw_str(p, "]\n");
    }
    pdfw_str(p, ">>\nendobj\n");
}

// ---- the file ---------------------------------------------------------------------------

std::atomic<unsigned> g_tmpcount{0};

// The session's file, by the name rule, under a temporary name beside it.
// With filmod DELE the old file stays until the new one is complete.
int open_file(DeviceBlock *b, PdfRecord *p) {
    SessionState &s = b->sess;
    qqlock(0);
    int w = s.fmode == 1 ? 0 : qqvers(b, s.fname);
    FILE *fp = nullptr;
    if (w == 0) {
        for (int tries = 0; tries < 100 && !fp; ++tries) {
            std::snprintf(p->tmpname, sizeof p->tmpname, "%s.%ld-%u.tmp", s.fname, (long)getpid(),
                          g_tmpcount.fetch_add(1));
            fp = std::fopen(p->tmpname, "wbx");
            if (!fp && access(p->tmpname, F_OK) != 0)
                break;  // not a clash: the place is not writable
        }
    }
    // A new name is taken at once by an empty file, so that a session of
    // another thread cannot choose the same version; empty, it does not
    // look like a document.
    if (fp && s.fmode != 1) {
        FILE *mark = std::fopen(s.fname, "wbx");
        if (mark) {
            std::fclose(mark);
            p->placeholder = 1;
        }
    }
    qqlock(1);
    if (w != 0) {
        qqwar0(b, w);
        return w;
    }
    std::snprintf(p->finalname, sizeof p->finalname, "%s", s.fname);
    if (!fp) {
        p->tmpname[0] = '\0';
        qqwar0(b, 36);
        return 36;
    }
    p->sink.fp = fp;
    return 0;
}

// Ends the file: renamed to its name when every byte was written, removed
// otherwise.  Returns 1 when the file stands.
int finish_file(DeviceBlock *b, PdfRecord *p) {
    FILE *fp = p->sink.fp;
    p->sink.fp = nullptr;
    bool ok = fp && std::fflush(fp) == 0 && !std::ferror(fp) && !p->sink.ioerr;
    if (fp && std::fclose(fp) != 0) ok = false;
    if (ok && !p->nomem && std::rename(p->tmpname, p->finalname) == 0) {
        p->tmpname[0] = '\0';
        p->placeholder = 0;
        return 1;
    }
    std::remove(p->tmpname);
    p->tmpname[0] = '\0';
    if (p->placeholder) std::remove(p->finalname);
    p->placeholder = 0;
    qqwar0(b, p->nomem ? 53 : 36);
    return 0;
}

void drop_record(DeviceBlock *b) {
    PdfRecord *p = b->pdf.rec;
    if (!p) return;
    if (p->sink.fp) {
        std::fclose(p->sink.fp);
        p->sink.fp = nullptr;
    }
    if (p->tmpname[0]) std::remove(p->tmpname);
    if (p->placeholder) std::remove(p->finalname);
    pdfw_free(p);
    std::free(p);
    b->pdf.rec = nullptr;
}

void drop_output(DeviceBlock *b) {
    std::free(b->pdf.out);
    b->pdf.out = nullptr;
    b->pdf.outlen = 0;
    b->pdf.outfail = 0;
}

// A block that goes away, in the middle of a session or not, keeps nothing
// and leaves no file under its final name.
void pdf_release(CoreBlock *blk) {
    DeviceBlock *b = qqdevblk(blk);
    drop_record(b);
    drop_output(b);
}

// ---- driver operations ------------------------------------------------------------------

int pdf_open(DeviceBlock *b) {
    drop_record(b);
    drop_output(b);
    SessionState &s = b->sess;
    CoreState &c = b->core;
    PdfRecord *p = static_cast<PdfRecord *>(std::calloc(1, sizeof(PdfRecord)));
    if (!p) {
        qqwar0(b, 53);
        return 53;
    }
    b->pdf.rec = p;
    int err = b->pdf.buff ? pdfw_sink_memory(p) : open_file(b, p);
    if (err == 0) {
        p->objpos = static_cast<long long *>(qqpdfrealloc(nullptr, 100 * sizeof(long long)));
        p->objtype = static_cast<unsigned char *>(qqpdfrealloc(nullptr, 100));
        if (p->objpos && p->objtype)
            p->objcap = 100;
        else
            err = 53;
        if (err) qqwar0(b, 53);
    } else if (err == 53) {
        qqwar0(b, 53);
    }
    if (err) {
        drop_record(b);
        return err;
    }
    std::memset(p->objtype, 0, 100);
    p->objpos[0] = 0;
    p->objnext = 3;
    p->pagefirst = 1;
    p->pageno = 1;
    p->penmode = 3;
    p->compress = b->pdf.comp;
    for (int i = 0; i < 3; ++i) p->fillrgb[i] = p->strkrgb[i] = -1;

    // The page and the scale: points, the paper of the PostScript devices.
    double p1 = 3900, p2 = 5600;
    if (s.hwsflg) {
        p1 = 2.0 * s.hwsiz[0];
        p2 = 2.0 * s.hwsiz[1];
    }
    p1 = p1 * 72.0 / 508.0;
    p2 = p2 * 72.0 / 508.0;
    int nxp = c.nxp > 0 ? c.nxp : 1, nyp = c.nyp > 0 ? c.nyp : 1;
    p->landscape = c.nxp > c.nyp && s.pagrot != 2;
    double sc = p->landscape ? std::fmin(p2 / nxp, p1 / nyp) : std::fmin(p1 / nxp, p2 / nyp);
    if (s.sclm == 0) sc = std::fmin(sc, c.unitf * s.sclf * 72.0 / 254.0);
    s.devscl = sc;
    s.colbits = 24;
    double W = p->landscape ? c.nyp : c.nxp, H = p->landscape ? c.nxp : c.nyp;
    p->rotate = p->landscape;
    p->mediaw = (int)(W * sc + 1.0);
    p->mediah = (int)(H * sc + 1.0);

    pdfw_str(p, "%PDF-1.3\n");
    pdfw_content_start(p);
    pdfw_str(p, "0.709 w\n2 J\n2 j\n");
    p->linew = 0.709;
    p->cap = p->join = 2;
    p->miter = 0;  // the format's default stands until lnmlt
    page_background(b, p);
    return 0;
}

void pdf_line(DeviceBlock *b, double x, double y, int op) {
    PdfRecord *p = rec(b);
    if (!p || op == QQ_ENDPATH) return;  // the path stays open for what follows
    double px, py;
    to_points(b, x, y, &px, &py);
    if (op == QQ_DRAW)
        path_draw(p, (float)px, (float)py);
    else
        path_move(p, (float)px, (float)py);
}

// n plot positions as one path: a move, then draws.
void path_points(DeviceBlock *b, PdfRecord *p, const double *x, const double *y, int n) {
    for (int i = 0; i < n; ++i) {
        double px, py;
        to_points(b, x[i], y[i], &px, &py);
        if (i == 0)
            path_move(p, (float)px, (float)py);
        else
            path_draw(p, (float)px, (float)py);
    }
}

void pdf_polyline(DeviceBlock *b, const double *x, const double *y, int n) {
    if (PdfRecord *p = rec(b)) path_points(b, p, x, y, n);
}

void pdf_colour(DeviceBlock *b, int, int r, int g, int bl, int) {
    PdfRecord *p = rec(b);
    if (!p) return;
    before(p, 0);
    const int rgb[3] = {r, g, bl};
    write_fill(p, rgb);
    write_stroke(p, rgb);
}

// Width in points: five device units of the PostScript scale for the
// thinnest line, else two per plot coordinate.
int pdf_width(DeviceBlock *b, double n, int fractional) {
    PdfRecord *p = rec(b);
    if (!p) return 0;
    double sclf = b->sess.sclf, w;
    if (n <= 0)
        w = 5.0 * sclf;
    else if (fractional && n < 0.99)
        w = 5.0 * n * sclf;
    else
        w = std::fmax(5.0, 2.0 * n) * sclf;
    before(p, OP_WIDTH);
    write_width(p, w * 0.5 * 72.0 / 254.0);
    return n > 0 ? 1 : 0;
}

void pdf_linestyle(DeviceBlock *b) {
    PdfRecord *p = rec(b);
    if (!p) return;
    const DeviceState &d = b->dev;
    if (d.lnjn != p->join) {
        before(p, OP_JOIN);
        write_int_op(p, d.lnjn, " j\n");
        p->join = d.lnjn;
    }
    if (d.lncp != p->cap) {
        before(p, OP_CAP);
        write_int_op(p, d.lncp, " J\n");
        p->cap = d.lncp;
    }
    // The miter limit matters only to sharp joins: it is written when
    // they are in use.
    if (d.lnjn == 0 && d.lnml != p->miter) {
        before(p, OP_MITER);
        write_miter(p, d.lnml);
    }
}

void pdf_clip(DeviceBlock *b, int x1, int y1, int x2, int y2, int reset) {
    PdfRecord *p = rec(b);
    if (!p) return;
    before(p, OP_CLIP);
    if (reset) {
        clip_close(p, false);
        return;
    }
    double ax, ay, bx, by;
    to_points(b, x1, y2, &ax, &ay);
    to_points(b, x2, y1, &bx, &by);
    p->clp[0] = (float)std::fmin(ax, bx);
    p->clp[1] = (float)std::fmin(ay, by);
    p->clp[2] = (float)std::fmax(ax, bx);
    p->clp[3] = (float)std::fmax(ay, by);
    clip_close(p, true);
    clip_open(p);
}

int pdf_fill(DeviceBlock *b, const double *x, const double *y, int n) {
    PdfRecord *p = rec(b);
    if (!p || n < 1) return 0;
    // A round clip region is the layer's: it hatches what crosses it.
    if (b->dev.clpcir && !qqvinside(b, x, y, n)) return 0;
    before(p, OP_FILL);
    fill_as_stroke(p);
    path_points(b, p, x, y, n);
    before(p, OP_FILL);
    pdfw_str(p, "h\nf*\n");
    return 1;
}

void pdf_rect(DeviceBlock *b, int x1, int y1, int x2, int y2, int colour) {
    PdfRecord *p = rec(b);
    if (!p) return;
    before(p, 0);
    int rgb[3];
    qqclrrgb(b, colour, &rgb[0], &rgb[1], &rgb[2]);
    write_fill(p, rgb);
    double ax, ay, bx, by;
    to_points(b, x1, y1, &ax, &ay);
    to_points(b, x2, y2, &bx, &by);
    rect_fill(p, std::fmin(ax, bx), std::fmin(ay, by), std::fabs(bx - ax), std::fabs(by - ay));
}

void pdf_new_page(DeviceBlock *b) {
    PdfRecord *p = rec(b);
    if (!p) return;
    before(p, OP_PAGE);
    bool clip = p->clipon;
    if (clip) {
        pdfw_str(p, "Q\n");
        p->clipon = 0;
    }
    end_page(p);
    p->pagefirst = p->objnext;
    p->pagecont = 0;
    p->pageno++;
    pdfw_content_start(p);
    page_background(b, p);
    write_int_op(p, p->join, " j\n");
    write_int_op(p, p->cap, " J\n");
    write_width(p, p->linew);
    if (p->miter > 0) write_miter(p, p->miter);
    if (p->strkrgb[0] >= 0) {
        int rgb[3] = {p->strkrgb[0], p->strkrgb[1], p->strkrgb[2]};
        write_fill(p, rgb);
        write_stroke(p, rgb);
    }
    // The clip window of the layer holds on the new sheet too.
    if (clip) clip_open(p);
}

// An image object of the canvas: RGB rows from the top.
void image_object(PdfRecord *p, const qqcanvas &cv, int x0, int y0, int w, int h) {
    p->imgw = w;
    p->imgh = h;
    p->imgcount++;
    pdfw_object(p, PDF_IMAGE);
    pdfw_str(p, "<< /Type /XObject /Subtype /Image\n   /ColorSpace /DeviceRGB\n");
    if (p->imgmask) pdfw_str(p, "   /Mask [255 255 255 255 255 255]\n");
    char line[160];
    char *e = pdfw_int(pdfw_txt(line, "   /Width "), p->imgw);
    e = pdfw_int(pdfw_txt(e, " /Height "), p->imgh);
    put(p, line, pdfw_txt(e, " /BitsPerComponent 8\n"));
    pdfw_image_data(p);
    // Three bytes a pixel, through one row buffer.
    unsigned char *row = static_cast<unsigned char *>(qqpdfrealloc(nullptr, (size_t)3 * w));
    for (int yy = 0; yy < h; ++yy) {
        const unsigned char *src = cv.pix + (size_t)(y0 + yy) * cv.rowb;
        if (!row) {
            // Without a row buffer the size of the stream still holds.
            static const unsigned char white[3] = {255, 255, 255};
            for (int xx = 0; xx < w; ++xx) pdfw_put(p, reinterpret_cast<const char *>(white), 3);
            continue;
        }
        for (int xx = 0; xx < w; ++xx) {
            unsigned char *d = row + 3 * xx;
            int sx = x0 + xx;
            if (cv.rgbcnv) {
                d[0] = src[4 * sx];
                d[1] = src[4 * sx + 1];
                d[2] = src[4 * sx + 2];
            } else {
                int v = src[sx];
                d[0] = cv.tabr[v];
                d[1] = cv.tabg[v];
                d[2] = cv.tabb[v];
            }
        }
        pdfw_put(p, reinterpret_cast<const char *>(row), (size_t)3 * w);
    }
    std::free(row);
    pdfw_image_end(p);
}

// The picture of image mode, from the canvas, as an RGB image object
// placed on the page.
void pdf_image(DeviceBlock *b) {
    PdfRecord *p = rec(b);
    const qqcanvas &cv = b->cnv.cv;
    if (!p || !cv.pix || cv.cw < 1 || cv.ch < 1) return;
    before(p, OP_IMAGE);
    p->imgmask = b->cnv.imgtran != -1;
    pdfw_content_end(p);
    image_object(p, cv, 0, 0, cv.cw, cv.ch);
    char line[160];
    char *e;
    pdfw_content_start(p);
    pdfw_str(p, "q\n");

    // The place: the box of imgbox, or the whole page.
    const CanvasState &cs = b->cnv;
    double x0 = 0, y0 = b->core.nyp, w = b->core.nxp + 1.0, h = b->core.nyp + 1.0;
    if (cs.imgbflg) {
        // Plot coordinates, shifted by the origin as every position is.  The
        // lower corner is the box's last row, as (0, nyp) is the page's, so
        // that PostScript and PDF put the picture on the same spot.
        x0 = cs.imgbx[0] + b->dev.nxsh;
        y0 = (double)cs.imgbx[1] + cs.imgbx[3] - 1.0 + b->dev.nysh;
        w = cs.imgbx[2];
        h = cs.imgbx[3];
    }
    double px, py, s = b->sess.devscl;
    to_points(b, x0, y0, &px, &py);
    e = pdfw_fix(pdfw_txt(line, "1 0 0 1 "), px, 2);
    *e++ = ' ';
    put(p, line, pdfw_txt(pdfw_fix(e, py, 2), " cm\n"));
    if (p->landscape) pdfw_str(p, "0 1 -1 0 0 0 cm\n");
    e = pdfw_txt(pdfw_fix(line, w * s, 2), " 0 0 ");
    e = pdfw_txt(pdfw_fix(e, h * s, 2), " 0 0 cm\n/Image");
    put(p, line, pdfw_txt(pdfw_int(e, p->imgcount), " Do\nQ\n"));
    p->imgmask = 0;
}

// One character of a standard font: the text object holds font and size,
// each character gets its matrix and its string.
int pdf_char(DeviceBlock *b, const QQHwChar *c) {
    PdfRecord *p = rec(b);
    if (!p) return 0;
    int f = c->font >= 0 && c->font < 35 ? c->font : 0;
    double cap = c->capheight > 0 ? c->capheight : 718;
    double s = b->sess.devscl;
    double zv = c->height * s * 10.0 * (1000.0 / cap) + 0.5;
    int z = zv > 0 && zv < 1e9 ? (int)zv : 0;
    double x, y, px, py;
    qqvplace(b, c, &x, &y);
    int angle = c->angle;
    if (p->landscape) {
        px = s * y;
        py = s * x;
        angle += 90;
    } else {
        px = s * x;
        py = s * (b->core.nyp - y);
    }
    if (p->pathopen) {
        pdfw_str(p, "S\n");
        p->pathopen = 0;
        p->penmode = 3;
    }
    // The width factor becomes the horizontal scaling of the text object,
    // in whole percent; a new factor needs a new object, as a new font does.
    double wf = c->wfac > 0 ? c->wfac : 1.0;
    double wzv = wf * 100.0;
    int wz = wzv > 0 && wzv < 1e6 ? (int)wzv : 100;
    if (p->intext && (f != p->fontidx || z != p->fontsz || wz != p->fontwz)) {
        pdfw_str(p, "ET\n");
        p->intext = 0;
    }
    if (p->fontuse[f] == 0) p->fontuse[f] = 1;
    p->anyfont = 1;
    char line[160];
    char *e;
    if (!p->intext) {
        fill_as_stroke(p);
        e = pdfw_int(pdfw_txt(line, "BT\n/F"), f + 1);
        *e++ = ' ';
        e = pdfw_fix(e, (double)((float)z / 10.0f), 1);
        e = pdfw_int(pdfw_txt(e, " Tf\n"), wz);
        put(p, line, pdfw_txt(e, " Tz\n"));
        p->intext = 1;
        p->fontidx = f;
        p->fontsz = z;
        p->fontwz = wz;
    }
    int a = ((angle % 360) + 360) % 360;
    if (a == 0) {
        e = pdfw_txt(line, "1 0 0 1 ");
    } else if (a == 90) {
        e = pdfw_txt(line, "0 1 -1 0 ");
    } else {
        double t = angle * b->core.xdegr, cs = std::cos(t), sn = std::sin(t);
        e = pdfw_fix(line, cs, 2);
        *e++ = ' ';
        e = pdfw_fix(e, sn, 2);
        *e++ = ' ';
        e = pdfw_fix(e, -sn, 2);
        *e++ = ' ';
        e = pdfw_fix(e, cs, 2);
        *e++ = ' ';
    }
    e = pdfw_fix(e, px, 2);
    *e++ = ' ';
    e = pdfw_txt(pdfw_fix(e, py, 2), " Tm\n(");
    int code = c->code;
    if (code >= 127 && code <= 186)
        code = qqvlatin(code);
    else if (code == 187)
        code = 0xA9;  // the copyright sign
    else if (code > 187 || code < 0)
        code = ' ';
    if (code == '(' || code == ')' || code == '\\' || code >= 127) {
        *e++ = '\\';
        e += std::snprintf(e, 8, "%o", code);
    } else {
        *e++ = (char)code;
    }
    put(p, line, pdfw_txt(e, ") Tj\n"));
    return 1;
}

int pdf_close(DeviceBlock *b) {
    PdfRecord *p = rec(b);
    if (!p) return 0;
    before(p, OP_CLOSE);
    if (p->clipon) {
        pdfw_str(p, "Q\n");
        p->clipon = 0;
    }
    end_page(p);
    pdfw_end(p);
    int written = 0;
    if (p->sink.memmode) {
        // The document waits in memory for pdfbuf.
        PdfState &st = b->pdf;
        st.out = p->sink.mem;
        st.outlen = (size_t)p->pdfpos;
        st.outfail = p->sink.memfail || p->nomem;
        p->sink.mem = nullptr;
    } else {
        written = finish_file(b, p);
    }
    drop_record(b);
    return written;
}

}  // namespace

int qqpdfexport(DeviceBlock *b, FILE *fp, const qqcanvas *cv) noexcept {
    if (!fp || !cv || !cv->pix || cv->cw < 1 || cv->ch < 1) return -1;
    PdfRecord *p = static_cast<PdfRecord *>(std::calloc(1, sizeof(PdfRecord)));
    if (!p) return -2;
    p->objpos = static_cast<long long *>(qqpdfrealloc(nullptr, 100 * sizeof(long long)));
    p->objtype = static_cast<unsigned char *>(qqpdfrealloc(nullptr, 100));
    if (!p->objpos || !p->objtype) {
        pdfw_free(p);
        std::free(p);
        return -2;
    }
    std::memset(p->objtype, 0, 100);
    p->objcap = 100;
    p->objnext = 3;
    p->pagefirst = 1;
    p->pageno = 1;
    p->compress = b->pdf.comp;
    p->sink.fp = fp;
    // The rectangle of imgclp, as every picture file keeps it.
    const CanvasState &cs = b->cnv;
    int x0 = 0, y0 = 0, iw = cv->cw, ih = cv->ch;
    if (cs.imgcflg && cs.imgcx[0] >= 0 && cs.imgcx[1] >= 0 && cs.imgcx[2] >= 1 &&
        cs.imgcx[3] >= 1 && (long long)cs.imgcx[0] + cs.imgcx[2] <= cv->cw &&
        (long long)cs.imgcx[1] + cs.imgcx[3] <= cv->ch) {
        x0 = cs.imgcx[0];
        y0 = cs.imgcx[1];
        iw = cs.imgcx[2];
        ih = cs.imgcx[3];
    }
    bool wide = iw > ih;
    p->rotate = wide;
    const SessionState &s = b->sess;
    double p1 = s.hwsflg ? 2.0 * s.hwsiz[0] : 3900, p2 = s.hwsflg ? 2.0 * s.hwsiz[1] : 5600;
    const double c = 0.1417322835;
    p->mediaw = (int)(p1 * c + 0.5);
    p->mediah = (int)(p2 * c + 0.5);

    pdfw_str(p, "%PDF-1.3\n");
    pdfw_content_start(p);
    pdfw_str(p, "0.709 w\n2 J\n2 j\n");
    pdfw_content_end(p);
    image_object(p, *cv, x0, y0, iw, ih);
    pdfw_content_start(p);
    char line[160];
    char *e = pdfw_fix(pdfw_txt(line, "q\n1 0 0 1 "), wide ? p1 * c : 0.0, 2);
    put(p, line, pdfw_txt(e, " 0.00 cm\n"));
    if (wide) pdfw_str(p, "0 1 -1 0 0 0 cm\n");
    double w = iw, h = ih;
    double f = wide ? std::fmin(p2 / w, p1 / h) : std::fmin(p1 / w, p2 / h);
    e = pdfw_txt(pdfw_fix(line, w * f * c, 2), " 0 0 ");
    put(p, line, pdfw_txt(pdfw_fix(e, h * f * c, 2), " 0 0 cm\n/Image1 Do\nQ\n"));
    end_page(p);
    pdfw_end(p);
    int result = p->nomem ? -2 : (p->sink.ioerr ? -1 : 0);
    p->sink.fp = nullptr;  // the caller's stream
    pdfw_free(p);
    std::free(p);
    return result;
}

namespace {

void pdf_first(CoreBlock *b) {
    qqdevblk(b)->pdf.comp = 1;
}

}  // namespace

extern const Subsystem kxsub_pdf = {"pdf", pdf_first, nullptr, pdf_release, nullptr, nullptr};

namespace {

// Colours arrive as red, green, blue; markers are drawn with lines by the
// layer; a page once written stays, so there is no clear; a change of font
// or size ends the text object by itself.
const DriverOps kOps = {
    .open = pdf_open,
    .line = pdf_line,
    .polyline = pdf_polyline,
    .colour = pdf_colour,
    .width = pdf_width,
    .linestyle = pdf_linestyle,
    .clip = pdf_clip,
    .fill_polygon = pdf_fill,
    .fill_rect = pdf_rect,
    .new_page = pdf_new_page,
    .close = pdf_close,
    .image = pdf_image,
    .character = pdf_char,
};

// Printed on white paper by default.
const DeviceKey kKeys[] = {{"PDF ", 511, "pdf", QQ_CLR_TURN_ON_WHITE | QQ_CLR_WHITE_BACK}, {}};

}  // namespace

extern const DeviceFamily kxfam_pdf = {
    .name = "PDF",
    .keys = kKeys,
    .lo = 511,
    .hi = 511,
    .kind = QQ_KIND_PAGE,
    .file = QQ_FILE_OWN,  // under a temporary name, or no file in memory mode
    .lnlen = 0,
    .viewer = "koldrv",
    .ops = &kOps,
    .picscale = 1.0,  // the document's own unit: a picture keeps the page grid
};

// ---- public routines --------------------------------------------------------------------

void pdfmod(const char *cval, const char *copt) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("pdfmod"));
    if (!b) return;
    int what = qqkey(b, "COMP+BUFF", 2, copt);
    if (what == 0) return;
    int k = qqkey(b, "OFF +ON  ", 2, cval);
    if (k == 0) return;
    (what == 1 ? b->pdf.comp : b->pdf.buff) = (unsigned char)(k - 1);
}

int pdfbuf(unsigned char *cbuf, int nmax) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("pdfbuf"));
    if (!b) return 0;
    if (qqfamily(b->core.devcod) != &kxfam_pdf) {
        qqwar1(b, 127, "Output format is not PDF");
        return 0;
    }
    if (!b->pdf.buff) {
        qqwar1(b, 128, "Buffer output is not enabled for PDF");
        return 0;
    }
    PdfState &st = b->pdf;
    int len = st.outlen > (size_t)INT_MAX ? INT_MAX : (int)st.outlen;
    if (nmax == 0) return len;
    if (st.outfail) {
        qqwar0(b, 53);
        return 0;
    }
    if (!st.out || st.outlen == 0) {
        qqwar1(b, 129, "Internal PDF buffer is empty");
        return 0;
    }
    if (nmax < 0 || st.outlen > (size_t)nmax || !cbuf) {
        qqwar1(b, 130, "Buffer too small for PDF file");
        return 0;
    }
    std::memcpy(cbuf, st.out, st.outlen);
    drop_output(b);
    return len;
}
