// The character loop: one string drawn or measured in the selected font.
//
// The pen runs on the baseline in double precision, origin shift included;
// each glyph is a set of polylines scaled by the section's x and y scale,
// sheared, turned by the text angle and handed to qqmove/qqdraw, so that
// line styles, clipping and every device see text as lines.
#include <climits>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/family.h"
#include "core/guard.h"
#include "core/session.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "text/text.h"
#include "text/text_block.h"
#include "text/text_internal.h"

namespace {

// One point of a section, 1-based; false outside the table.
inline bool glyph_point(const TextSection *s, int p, double *x, double *y) {
    if (p < 1 || p > s->npts) return false;
    if (s->packed) {
        unsigned w = (unsigned short)s->x[p - 1];
        *x = (signed char)(w & 0xFF);
        *y = (signed char)((w >> 8) & 0xFF);
    } else {
        *x = s->x[p - 1];
        *y = s->y[p - 1];
    }
    return true;
}

// The offset of glyph index i's record in the index table, or -1 for an
// empty glyph (a record of length 0 on the way, or past the last record).
int find_record(const TextSection *s, int i) {
    int pos = 0;
    for (int k = 2; k < i; ++k) {
        if (pos >= s->nidx) return -1;
        int len = s->index[pos];
        if (len <= 0) return -1;
        pos += len;
    }
    if (pos >= s->nidx || s->index[pos] <= 0) return -1;
    return pos;
}

// Walks the stroke entries of a record: fn(first, x, y) for every point,
// offsets applied (times mult).
template <class Fn>
void walk_record(const TextSection *s, int rec, double mult, Fn fn) {
    int len = s->index[rec];
    int end = std::min(rec + len, s->nidx);
    int j = rec + 1;
    while (j + 1 < end) {
        int w = s->index[j];
        int count, start;
        double ox = 0, oy = 0;
        if (w > 0) {
            count = w;
            start = s->index[j + 1];
            j += 2;
        } else if (w < 0) {
            if (j + 2 >= end) break;
            count = -w;
            start = s->index[j + 1];
            unsigned off = (unsigned short)s->index[j + 2];
            ox = (signed char)(off & 0xFF) * mult;
            oy = (signed char)((off >> 8) & 0xFF) * mult;
            j += 3;
        } else {
            break;
        }
        for (int k = 0; k < count; ++k) {
            double x, y;
            if (!glyph_point(s, start + k, &x, &y)) break;
            fn(k == 0, x + ox, y + oy);
        }
    }
}

bool is_outline(const TextState &t, const TextSection *s) {
    return t.font > 10 && s->own == 0 && s->packed == 0;
}

// Draws the strokes of a glyph at the pen.
void draw_glyph(TextBlock *b, const TextSection *s, int rec, bool italic) {
    TextState &t = b->txt;
    bool outline = is_outline(t, s);
    double mult = outline ? 2.0 : 0.5;
    double sn = t.sina, cs = t.cosa, o = t.vshift + t.voff;
    double bx = t.penx - sn * o - b->dev.nxsh, by = t.peny - cs * o - b->dev.nysh;
    double xs = t.xscl, ys = t.yscl, sh = t.curshear, idiv = italic ? 1.0 / t.italdiv : 0.0;
    // The points of an outline glyph, contour by contour, for its fill.
    double px[QQ_OUTLINE_MAX], py[QQ_OUTLINE_MAX];
    int np = 0, starts[QQ_OUTLINE_MAX + 1], ncont = 0;
    walk_record(s, rec, mult, [&](bool first, double x, double y) {
        double Y = y * ys;
        double X = x * xs + sh * Y + Y * idiv;
        double gx = bx + X * cs - Y * sn, gy = by - Y * cs - X * sn;
        if (first)
            qqmove(b, gx, gy);
        else
            qqdraw(b, gx, gy);
        if (!outline || np >= QQ_OUTLINE_MAX) return;
        if (first) starts[ncont++] = np;
        px[np] = gx;
        py[np] = gy;
        ++np;
    });
    if (!(outline && t.shdon) || ncont == 0) return;
    starts[ncont] = np;
    qqtxtfilloutline(b, px, py, starts, ncont);
}

// Width of a glyph in units (largest x), the default font's cell 6.
double glyph_units(const TextState &t, const TextSection *s, int rec) {
    if (t.font == 1 && s->own == 0 && s->xdiv == 6) return 6.0;
    if (rec < 0) return 0.0;
    double w = 0.0;
    bool any = false;
    walk_record(s, rec, is_outline(t, s) ? 2.0 : 0.5, [&](bool, double x, double) {
        if (!any || x > w) w = x;
        any = true;
    });
    return any ? w : 0.0;
}

// Maps a glyph index of an alphabet other than STANDARD to its section's
// numbering; 0 means fall back to STANDARD with the index unchanged, -1
// fall back to the question mark.
int map_index(const TextState &t, int alf, int i) {
    bool gothic_italic = alf == 4 && t.font == 7;
    if (alf == 4 && t.font == 3) {
        if (i >= 66 && i <= 91) return i - 64;
        if (i >= 99 && i <= 101) return i - 71;
        return 0;
    }
    if (alf == 3 && i >= 96) return i - 42;
    if (alf == 2 || alf == 3 || alf == 5 || gothic_italic) {
        if (i >= 66 && i <= 91) return i - 38;
        if (i >= 34 && i <= 59) return i - 32;
        if ((i >= 60 && i <= 65) || (i >= 92 && i <= 95) || i < 34) return 0;
        if ((alf == 2 || alf == 5) && i >= 96) return i - 42;
        return -1;
    }
    if (alf == 6) {
        if (i >= 66 && i <= 95) return i - 28;
        if (i >= 34 && i <= 63) return i - 26;
        if (i >= 29 && i <= 31) return i - 24;
        if (i >= 5 && i <= 7) return i - 3;
        if (i < 96) return 0;
        return -1;
    }
    return -1;
}

void record_measure(TextState &t) {
    // the pen with the last gap taken back, as a distance from the start
    double ex = t.penx - t.lastgap * t.cosa - t.strx, ey = t.peny + t.lastgap * t.sina - t.stry;
    double d = std::sqrt(ex * ex + ey * ey);
    if (d > t.maxlen) t.maxlen = d;
}

void draw_code(TextBlock *b, int code) {
    TextState &t = b->txt;
    if ((t.smxon || t.shfact) && qqtxtshift(b, code)) return;
    int alf = t.curalf;
    int icode = qqtxtconvert(b, code, &alf);
    int i = icode - 31;
    const TextSection *s = qqtxtsection(b, alf);
    if (i > s->limit) i = 1;
    bool italic = false;
    bool fell_back = false;
    if (alf != 1 && i > 1) {
        if (alf == 4 && t.font != 3 && t.font != 7) {
            italic = true;  // section 1 sheared, no mapping
        } else {
            int m = map_index(t, alf, i);
            if (m > 0) {
                i = m;
            } else {
                fell_back = true;
                if (m < 0) i = 32;
                bool sheared = (alf == 4 && t.font == 3) || (alf == 5 && t.font != 7);
                if (alf == 5 && t.font != 7 && t.fallback == 0 && i > 1) qqtxtadvance(b, t.gapw);
                s = qqtxtsection(b, 1);
                if (i > s->limit) i = 1;
                italic = sheared;
            }
        }
    }
    t.fallback = fell_back ? 1 : 0;
    double width;
    if (i <= 1) {
        double units = s->xdiv == 6 ? 6.0 : (s->xdiv == 200 ? 60.0 : 9.0);
        width = t.curfix ? t.curfixfac * t.fixbase * t.curwfac * (t.curhgt - 1) : units * t.xscl;
    } else {
        int rec = find_record(s, i);
        width = glyph_units(t, s, rec) * t.xscl;
        if (t.curfix) {
            double cell = t.curfixfac * t.fixbase * t.curwfac * (t.curhgt - 1);
            double half = (cell - width) * 0.5;
            qqtxtadvance(b, half);
            width = cell - half;
        }
        if (!t.measure && rec >= 0) draw_glyph(b, s, rec, italic);
    }
    qqtxtadvance(b, width + t.gapw);
    t.lastgap = t.gapw;
    if (t.measure) record_measure(t);
}

// Copies the settings into the working state of a string.
void begin_string(TextBlock *b) {
    TextState &t = b->txt;
    t.fallback = -1;
    t.curhgt = t.starthgt = t.height;
    t.curalf = t.basalf;
    t.curclr = t.startclr = b->clr.curclr;
    t.curwfac = t.wfac;
    t.curspc = t.spcadd;
    t.curshear = t.shear;
    t.curfix = t.fixon;
    t.curfixfac = t.fixfac;
    t.vshift = t.voff = 0.0;
    t.cachesec = 0;
    t.shfact = 0;
    t.ibufn = 0;
    t.iletters = 0;
    t.lastgap = 0.0;
    t.maxlen = 0.0;
    if (t.smxon) std::memset(t.tabs, 0, sizeof t.tabs);
}

// Runs the codes through the loop, mix mode included.
void run_codes(TextBlock *b) {
    TextState &t = b->txt;
    double ret = 0.0;
    for (int k = 0; k < t.ncodes; ++k) {
        int c = t.codes[k];
        if (t.mixon && !t.shfact && c > 0 && c < 256) {
            char ch = (char)c;
            if (ch == t.mixchr[0]) {
                double sh = t.curhgt * t.basfac;
                if (!t.measure) qqtxtup(b, sh);
                ret += sh;
                t.curhgt = qqnint(t.curhgt * t.expfac);
                continue;
            }
            if (ch == t.mixchr[1]) {
                t.curhgt = qqnint(t.curhgt * t.expfac);
                double sh = t.curhgt * t.basfac;
                if (!t.measure) qqtxtup(b, -sh);
                ret -= sh;
                continue;
            }
            if (ch == t.mixchr[2]) {
                t.curhgt = t.starthgt;
                if (!t.measure) qqtxtup(b, -ret);
                ret = 0.0;
                continue;
            }
        }
        draw_code(b, c);
    }
    if (!t.measure && ret != 0.0) qqtxtup(b, -ret);
    // a shift still active ends with the string; its instructions are dropped
    t.shfact = 0;
    t.ibufn = 0;
}

// Runs the string: in TeX mode through the formula parser, measured first
// and drawn from the same pen when the measure found no error (shift mode
// off for both passes); else through the character loop.
void run_string(TextBlock *b) {
    TextState &t = b->txt;
    if (!(t.texon && t.tex)) {
        run_codes(b);
        return;
    }
    int smx = t.smxon, m = t.measure;
    t.smxon = 0;
    double px = t.penx, py = t.peny;
    t.measure = 1;
    t.texpass = 1;
    int err = t.tex(b, 1);
    t.measure = m;
    t.texpass = 2;
    if (!m) {
        t.penx = px;
        t.peny = py;
        t.curhgt = t.starthgt;
        t.cachesec = 0;
        if (!err) t.tex(b, 0);
    } else if (!err) {
        t.penx = px;
        t.peny = py;
        t.curhgt = t.starthgt;
        t.cachesec = 0;
        t.tex(b, 1);
    }
    double dx = t.penx - t.strx, dy = t.peny - t.stry;
    if (m) t.maxlen = std::sqrt(dx * dx + dy * dy);
    t.smxon = smx;
}

// The string's codes: 0, or -1 when nothing is to be drawn.
int load_codes(TextBlock *b, const char *text) {
    TextState &t = b->txt;
    int n = 0;
    if (qqtxtcodes(b, text, t.codes, QQ_NCODES, &n, 1) < 0) return -1;
    t.ncodes = n;
    if (n == 0) return -1;
    qqtxteushft(b);
    return t.ncodes > 0 ? 0 : -1;
}

// Measures the loaded codes from a pen at (0, 0); restores pen and state.
double measure_loaded(TextBlock *b) {
    TextState &t = b->txt;
    double px = t.penx, py = t.peny, sx = t.strx, sy = t.stry;
    int oldclr = b->clr.curclr;
    begin_string(b);
    t.measure = 1;
    t.penx = t.peny = 0.0;
    t.strx = t.stry = 0.0;
    run_string(b);
    t.measure = 0;
    double len = t.maxlen;
    t.penx = px;
    t.peny = py;
    t.strx = sx;
    t.stry = sy;
    t.curhgt = t.height;
    t.cachesec = 0;
    if (b->clr.curclr != oldclr) qqsetc(b, oldclr);
    return len;
}

// Counts the exponent and index characters of the string (each once).
int count_raise(const TextState &t) {
    if (!t.mixon) return 0;
    bool e = false, i = false;
    for (int k = 0; k < t.ncodes; ++k) {
        if (t.codes[k] == (unsigned char)t.mixchr[0]) e = true;
        if (t.codes[k] == (unsigned char)t.mixchr[1]) i = true;
    }
    return (e ? 1 : 0) + (i ? 1 : 0);
}

// The box of frames and backgrounds: four page positions without the
// origin shift, from the upper left corner (ox, oy) of the first character.
// W and H receive the box's width and height.
void text_box(TextBlock *b, double ox, double oy, double len, double bx[4], double by[4], double *W,
              double *H) {
    TextState &t = b->txt;
    double h = t.height;
    double m = (t.linsp - 1.0) * h;
    double E = (t.basfac + t.expfac - 1.0) * h;
    int n = count_raise(t);
    double nh = h, nu = 0.0;
    if (t.texon && t.tex) {
        n = 0;
        nh = qqnint(t.texhgt);
        nu = qqnint(t.texdep);
    }
    double top = m + (nh - h) + n * E;
    *H = 2 * m + nh + nu + n * E;
    // the string's length as nlmess gives it, with the margins, truncated
    *W = (double)(int)(qqnint(len) + 2 * m);
    double ux = t.cosa, uy = -t.sina;  // along the text
    double vx = t.sina, vy = t.cosa;   // downward across it
    double x0 = ox - m * ux - top * vx, y0 = oy - m * uy - top * vy;
    bx[0] = x0;
    by[0] = y0;
    bx[1] = x0 + *W * ux;
    by[1] = y0 + *W * uy;
    bx[2] = bx[1] + *H * vx;
    by[2] = by[1] + *H * vy;
    bx[3] = x0 + *H * vx;
    by[3] = y0 + *H * vy;
}

void fill_box(TextBlock *b, const double bx[4], const double by[4], int colour) {
    int old = b->clr.curclr;
    qqsetc(b, colour);
    if (b->txt.solidfill) {
        b->txt.solidfill(b, bx, by, 4);
    } else if (!qqdevsolid(b, bx, by, 4)) {
        // a device that fills polygons takes the box whole; else it is hatched
        int four = 4;
        qqhatchpolys(b, &bx, &by, &four, 1, 1.0, 8, qqmove, qqdraw);
    }
    qqsetc(b, old);
}

// The frame round the box: the frame primitive of the fill layer when it
// is there, else |thick| outlines one unit apart.
void frame_box(TextBlock *b, const double bx[4], const double by[4], double W, double H, int thick) {
    TextState &t = b->txt;
    if (t.frame) {
        t.frame(b, qqround(bx[0]), qqround(by[0]), (int)W, qqround(H), thick, (double)t.angle);
        return;
    }
    int n = thick < 0 ? (thick == INT_MIN ? INT_MAX : -thick) : thick;
    int dir = thick < 0 ? -1 : 1;
    double ux = t.cosa, uy = -t.sina, vx = t.sina, vy = t.cosa;
    for (int k = 0; k < n && k < 1000; ++k) {
        double e = dir * k;
        double cx[4], cy[4];
        cx[0] = bx[0] - e * ux - e * vx;
        cy[0] = by[0] - e * uy - e * vy;
        cx[1] = bx[1] + e * ux - e * vx;
        cy[1] = by[1] + e * uy - e * vy;
        cx[2] = bx[2] + e * ux + e * vx;
        cy[2] = by[2] + e * uy + e * vy;
        cx[3] = bx[3] - e * ux + e * vx;
        cy[3] = by[3] - e * uy + e * vy;
        qqmove(b, cx[0], cy[0]);
        for (int j = 1; j <= 4; ++j) qqdraw(b, cx[j & 3], cy[j & 3]);
    }
}

void test_point(TextBlock *b, double x, double y, const char *what) {
    int ix = qqround(x), iy = qqround(y);
    if (ix >= 0 && iy >= 0 && ix <= b->core.nxp && iy <= b->core.nyp) return;
    char msg[64];
    std::snprintf(msg, sizeof msg, "%s (%5d/%5d) out of page", what, ix, iy);
    qqwar1(b, 193, msg);
}

// Draws a string; (x, y) the upper left corner in plot coordinates, keep
// continues at the pen.
void draw_string(TextBlock *b, const char *text, int x, int y, bool keep) {
    TextState &t = b->txt;
    if (load_codes(b, text) < 0) return;
    double h1 = t.height - 1.0;
    double ox, oy;  // upper left corner without the origin shift
    if (keep) {
        ox = t.penx - t.sina * h1 - b->dev.nxsh;
        oy = t.peny - t.cosa * h1 - b->dev.nysh;
    } else {
        ox = x;
        oy = y;
    }
    double len = 0.0;
    bool box = t.bgclr != -1 || t.frmthk != 0 || t.shield;
    double bx[4], by[4], bw = 0.0, bh = 0.0;
    if (box) {
        len = measure_loaded(b);
        text_box(b, ox, oy, len, bx, by, &bw, &bh);
        if (t.bgclr != -1) fill_box(b, bx, by, t.bgclr);
    }
    begin_string(b);
    if (!keep) {
        t.penx = (double)x + b->dev.nxsh + t.sina * h1;
        t.peny = (double)y + b->dev.nysh + t.cosa * h1;
        if (!t.cntlab && !b->dev.pl3on) test_point(b, t.penx, t.peny, "Startpoint");
    }
    t.strx = t.penx;
    t.stry = t.peny;
    t.measure = 0;
    run_string(b);
    if (!t.cntlab && !b->dev.pl3on)
        test_point(b, t.penx - t.lastgap * t.cosa, t.peny + t.lastgap * t.sina, "Endpoint");
    t.curhgt = t.height;
    t.cachesec = 0;
    if (b->clr.curclr != t.startclr) qqsetc(b, t.startclr);
    if (t.frmthk != 0) frame_box(b, bx, by, bw, bh, t.frmthk);
    if (t.shield) t.shield(b, bx, by);
}

}  // namespace

void qqtxtcode(TextBlock *b, int code) noexcept {
    draw_code(b, code);
}

void qqtxtadvance(TextBlock *b, double along) noexcept {
    b->txt.penx += along * b->txt.cosa;
    b->txt.peny -= along * b->txt.sina;
}

void qqtxtup(TextBlock *b, double up) noexcept {
    b->txt.penx -= up * b->txt.sina;
    b->txt.peny -= up * b->txt.cosa;
}

double qqtxtalong(TextBlock *b) noexcept {
    const TextState &t = b->txt;
    return (t.penx - t.strx) * t.cosa - (t.peny - t.stry) * t.sina;
}

void qqtxtrule(TextBlock *b, double d0, double d1, double below) noexcept {
    TextState &t = b->txt;
    if (t.measure) return;
    double o = t.vshift + t.voff - below;
    double bx = t.strx - t.sina * o - b->dev.nxsh, by = t.stry - t.cosa * o - b->dev.nysh;
    qqmove(b, bx + d0 * t.cosa, by - d0 * t.sina);
    qqdraw(b, bx + d1 * t.cosa, by - d1 * t.sina);
}

void qqmessag(TextBlock *b, const char *text, int x, int y) noexcept {
    TextState &t = b->txt;
    if (!text) return;
    bool keep = x == 999 && y == 999;
    if (!keep) {
        if (t.hjus != 0 || t.vjus != 0) {
            double dx = 0.0, dy = 0.0;
            if (t.hjus != 0) {
                dx = qqtxtlen(b, text);
                if (t.hjus == 1) dx *= 0.5;
            }
            if (t.vjus != 0) {
                dy = t.height;
                if (t.vjus == 1) dy *= 0.5;
            }
            x = (int)(x - dx * t.cosa - dy * t.sina + 0.5);
            y = (int)(y + dx * t.sina - dy * t.cosa + 0.5);
        }
    }
    draw_string(b, text, x, y, keep);
}

void qqmesshgt(TextBlock *b, const char *text, int x, int y, int height, int ang) noexcept {
    TextState &t = b->txt;
    int oh = t.height, oa = t.angle;
    double os = t.sina, oc = t.cosa;
    if (height >= 1) t.height = height;
    t.angle = ang;
    double r = ang * b->core.xdegr;
    t.sina = std::sin(r);
    t.cosa = std::cos(r);
    t.cachesec = 0;
    qqmessag(b, text, x, y);
    t.height = oh;
    t.angle = oa;
    t.sina = os;
    t.cosa = oc;
    t.cachesec = 0;
}

namespace {

int measure_text(TextBlock *b, const char *text, int warn) {
    if (!text) return 0;
    TextState &t = b->txt;
    int n = 0;
    if (qqtxtcodes(b, text, t.codes, QQ_NCODES, &n, warn) < 0 || n == 0) return 0;
    t.ncodes = n;
    qqtxteushft(b);
    if (t.ncodes == 0) return 0;
    return qqnint(measure_loaded(b));
}

}  // namespace

int qqtxtlen(TextBlock *b, const char *text) noexcept {
    return measure_text(b, text, 0);
}

int qqtxtlenh(TextBlock *b, const char *text, int height) noexcept {
    TextState &t = b->txt;
    int oh = t.height;
    if (height >= 1) t.height = height;
    t.cachesec = 0;
    int n = qqtxtlen(b, text);
    t.height = oh;
    t.cachesec = 0;
    return n;
}

void qqtxtext(TextBlock *b, const char *text, int *nh, int *nu) noexcept {
    TextState &t = b->txt;
    int n = 0;
    *nh = t.height;
    *nu = 0;
    if (!text || qqtxtcodes(b, text, t.codes, QQ_NCODES, &n, 0) < 0) return;
    t.ncodes = n;
    if (t.texon && t.tex) {
        if (n == 0) return;
        measure_loaded(b);
        *nh = qqnint(t.texhgt);
        *nu = qqnint(t.texdep);
        return;
    }
    *nh = t.height + qqnint(count_raise(t) * (t.basfac + t.expfac - 1.0) * t.height);
}

void qqtxtchar(TextBlock *b, int code) noexcept {
    TextState &t = b->txt;
    begin_string(b);
    t.strx = t.penx;
    t.stry = t.peny;
    draw_code(b, code);
    t.curhgt = t.height;
    t.cachesec = 0;
}

void qqtxthwstroke(TextBlock *b, const QQHwChar *c) noexcept {
    if (!c) return;
    TextState &t = b->txt;
    // The character stands in the STANDARD section of the stroke font at the
    // driver's place, size and angle; the string's working state is kept.
    double px = t.penx, py = t.peny, sn = t.sina, cs = t.cosa, vs = t.vshift, vo = t.voff;
    double wf = t.curwfac, sp = t.curspc, sh = t.curshear;
    int hg = t.curhgt, fx = t.curfix, meas = t.measure;
    double r = c->angle * b->core.xdegr;
    t.sina = std::sin(r);
    t.cosa = std::cos(r);
    t.curhgt = c->height >= 1 && c->height < 1e6 ? qqnint(c->height) : 1;
    t.curwfac = 1.0;
    t.curspc = 0.0;
    t.curshear = 0.0;
    t.curfix = 0;
    t.measure = 0;
    t.vshift = c->shift;
    t.voff = 0.0;
    t.cachesec = 0;
    const TextSection *s = qqtxtsection(b, 1);
    int i = (c->code < 32 ? 32 : c->code) - 31;
    if (i > 1 && i <= s->limit) {
        int rec = find_record(s, i);
        t.penx = c->x;
        t.peny = c->y;
        if (c->pitch > 0) qqtxtadvance(b, (c->pitch - glyph_units(t, s, rec) * t.xscl) * 0.5);
        if (rec >= 0) draw_glyph(b, s, rec, false);
    }
    t.penx = px;
    t.peny = py;
    t.sina = sn;
    t.cosa = cs;
    t.vshift = vs;
    t.voff = vo;
    t.curwfac = wf;
    t.curspc = sp;
    t.curshear = sh;
    t.curhgt = hg;
    t.curfix = fx;
    t.measure = meas;
    t.cachesec = 0;
}

void qqtxthooks(TextBlock *b, int (*userpos)(TextBlock *, double, double, double *, double *),
                void (*symbol)(TextBlock *, int, double, double, double, int)) noexcept {
    b->txt.userpos = userpos;
    b->txt.symbol = symbol;
}

void messag(const char *cstr, int nx, int ny) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("messag"));
    if (!b) return;
    if (!(nx == 999 && ny == 999)) ny = qqyflpi(b, ny);
    qqmessag(b, cstr, nx, ny);
}

void rlmess(const char *cstr, double xp, double yp) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("rlmess"));
    if (!b) return;
    if (std::fabs(xp - 999.0) < 0.1 && std::fabs(yp - 999.0) < 0.1) {
        draw_string(b, cstr ? cstr : "", 999, 999, true);
        return;
    }
    double px = xp, py = yp;
    if (b->txt.userpos) {
        if (!b->txt.userpos(b, xp, yp, &px, &py)) return;
    } else {
        py = qqyflp(b, yp);  // no axis system hook: the values are plot coordinates
    }
    // the axis system gives plot coordinates already turned by the origin
    qqmessag(b, cstr, qqround(px), qqround(py));
}

int nlmess(const char *cstr) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("nlmess"));
    if (!b) return 0;
    return measure_text(b, cstr, 1);
}
