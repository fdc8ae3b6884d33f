// The PostScript driver: devices 501 "POST" (grey table), 502 "PSCL"
// (colour), 503 "EPS " (one encapsulated page) and 504 "PS  " (white page).
//
// Device units are 0.05 mm: the prolog's /cm turns them into points, so a
// plot coordinate of 0.1 mm is two units at scale 1.  Every coordinate in
// the file is an integer, X = trunc(x + 0.5), Y = trunc(y + 0.5) of the
// mapped position.  A page wider than high, unless the page mode is NONE,
// is drawn landscape on portrait paper: plot X runs up the sheet.
//
// The file head is written straight to the file with its own newlines;
// everything after it goes through the 80-column word writer qqlbuf, one
// word per number or operator.  Paths collect up to 100 integer points
// (a repeated point is dropped at once) and go out as "x y u", "x y d" ...
// "p".  Colours are written as 0 to 255 with "f"; /e fills rectangles
// inside its own gsave, so the current colour survives it.
//
// Hardware characters and fonts belong to the text layer: the character
// and textstyle operations refuse here, and the layer strokes the text.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <stdio_ext.h>
#include <unistd.h>

#include "colour/colour.h"
#include "core/family.h"
#include "core/filetime.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/numfmt.h"
#include "core/subsystems.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "devices/device_block.h"
#include "devices/postscript.h"
#include "kolvex.h"
#include "raster/canvas.h"

namespace {

constexpr double kPoints = 0.1417322835;  // points per device unit (/cm)

// The procedures that the drawing refers to, and the re-encoding of the
// standard fonts for the accented letters.  Written line by line.
const char *const kProlog[] = {
    "/cm {0.1417322835 mul} def /rgb {255 div} def /lc 1 string def",
    "/u  { /y exch cm def /x exch cm def newpath  x y moveto } def",
    "/d  { /y exch cm def /x exch cm def x y lineto } def",
    "/p  { stroke } def",
    "/e { /b exch rgb def /g exch rgb def",
    " /r exch rgb def /v exch cm def /w exch cm def /y exch cm def",
    " /x exch cm def gsave r g b setrgbcolor newpath x y moveto",
    " w y lineto w v lineto x v lineto closepath fill grestore } def",
    "/f { /b exch rgb def /g exch rgb def",
    " /r exch rgb def r g b setrgbcolor } def",
    "/clp {/v exch cm def /w exch cm def /y exch cm def",
    " /x exch cm def newpath x y moveto",
    " w y lineto w v lineto x v lineto closepath clip } def",
    "/text { /c1 exch def /a exch def /y exch cm def /x exch cm def",
    " /Name exch def gsave x y moveto x y translate a rotate c1 0 gt",
    " { Name stringwidth 2 div neg exch 2 div neg exch rmoveto }",
    " {} ifelse Name show grestore } def /font { /h exch def",
    " /s exch def s findfont h scalefont setfont } def",
    "/font2 { /h2 exch def /h1 exch def /s exch def s findfont",
    " [h2 0 0 h1 0 0] makefont setfont } def",
    "/c { /a exch def /y exch cm def /x exch cm def /i exch def",
    " gsave x y moveto x y translate a rotate lc 0 i put lc",
    " stringwidth 2 div neg exch 2 div neg exch rmoveto lc show",
    " grestore } def",
    "/sec { /b exch rgb def /g exch rgb def /r exch rgb def",
    " /a2 exch def /a exch def /r2 exch cm def /r1 exch cm def",
    " /y exch cm def /x exch cm def gsave r g b setrgbcolor newpath",
    " x y r1 a a2 arc x y r2 a2 a arcn closepath fill grestore } def",
    "/tri { /y3 exch cm def /x3 exch cm def /y2 exch cm def",
    " /x2 exch cm def /y1 exch cm def /x1 exch cm def",
    " gsave newpath x1 y1 moveto",
    " x2 y2 lineto x3 y3 lineto closepath fill grestore } def",
    "/Reencsmalldict 12 dict def",
    "/ReEncodeSmall",
    "{ Reencsmalldict begin",
    "  /NewCodesAndNames exch def",
    "  /NewFontName exch def",
    "  /BaseFontName exch def",
    "  /BaseFontDict",
    "  BaseFontName findfont def",
    "  /NewFont BaseFontDict",
    "  maxlength dict def",
    "  BaseFontDict",
    "  { exch dup /FID ne",
    "    { dup /Encoding eq",
    "      { exch dup length array copy",
    "        NewFont 3 1 roll put",
    "      }",
    "      { exch NewFont 3 1 roll put",
    "      } ifelse",
    "      }",
    "      {pop pop} ifelse",
    "    } forall",
    "    NewFont",
    "    /FontName NewFontName put",
    "    NewCodesAndNames aload pop",
    "    NewCodesAndNames",
    "    length 2 idiv",
    "    { NewFont /Encoding get",
    "    3 1 roll put  } repeat",
    "    NewFontName NewFont",
    "    definefont pop end } def",
    " /GermanVec [ 8#177 /Adieresis",
    " 8#200 /Odieresis 8#201 /Udieresis 8#202 /adieresis",
    " 8#203 /odieresis 8#204 /udieresis 8#205 /germandbls",
    " 8#206 /Aring     8#207 /Oslash    8#210 /AE",
    " 8#211 /aring     8#212 /oslash    8#213 /ae",
    " 8#214 /Ntilde    8#215 /ntilde    8#216 /Ccedilla",
    " 8#217 /ccedilla  8#220 /Edieresis 8#221 /Idieresis",
    " 8#222 /edieresis 8#223 /idieresis 8#224 /Aacute",
    " 8#225 /Eacute    8#226 /Iacute    8#227 /Oacute",
    " 8#230 /Uacute    8#231 /aacute    8#232 /eacute",
    " 8#233 /iacute    8#234 /oacute    8#235 /uacute",
    " 8#236 /Agrave    8#237 /Egrave    8#240 /Igrave",
    " 8#241 /Ograve    8#242 /Ugrave    8#243 /agrave",
    " 8#244 /egrave    8#245 /igrave    8#246 /ograve",
    " 8#247 /ugrave      8#250 /Acircumflex 8#251 /Ecircumflex",
    " 8#252 /Icircumflex 8#253 /Ocircumflex 8#254 /Ucircumflex",
    " 8#255 /acircumflex 8#256 /ecircumflex 8#257 /icircumflex",
    " 8#260 /ocircumflex 8#261 /ucircumflex 8#262 /Atilde",
    " 8#263 /atilde 8#264 /Otilde 8#265 /otilde 8#266 /Yacute",
    " 8#267 /yacute 8#270 /ydieresis",
    " 8#271 /exclamdown 8#272 /questiondown ] def",
};

// The codes of the family, named once: the descriptor's keywords below use
// them too.
enum { POST = 501, PSCL, EPS, PS };

bool is_eps(const DeviceBlock *b) {
    return b->core.devcod == EPS;
}

// ---- writers ------------------------------------------------------------

// The file head goes straight to the file.
void head(DeviceBlock *b, const char *text) {
    if (b->sess.fhnd) std::fputs(text, b->sess.fhnd);
}

void word(DeviceBlock *b, const char *text) {
    qqlbuf(b, text, (int)std::strlen(text));
}

void newline(DeviceBlock *b) {
    qqlbuf(b, nullptr, -1);
}

// One word that ends in its blank and holds no other: what qqlbuf does
// with it, without the search for blanks.  The path writer's hot spot.
// The line buffer holds lnlen + 2 bytes.
inline char *room(DeviceBlock *b, int len) {
    SessionState &s = b->sess;
    if (!s.lnbuf) return nullptr;
    if (s.lnpos + len > s.lnlen && s.lnpos > 0) qqlbuf(b, nullptr, -1);
    char *d = s.lnbuf + s.lnpos;
    s.lnpos += len;
    return d;
}

// A word given as a literal, of a length known here.
template <int N>
inline void put(DeviceBlock *b, const char (&w)[N]) {
    if (char *d = room(b, N - 1)) std::memcpy(d, w, N - 1);
}

// The decimal digits of 0 to 99 in pairs.
struct DigitPairs {
    char d[200];
    constexpr DigitPairs() : d() {
        for (int i = 0; i < 100; ++i) {
            d[2 * i] = (char)('0' + i / 10);
            d[2 * i + 1] = (char)('0' + i % 10);
        }
    }
};
constexpr DigitPairs kPairs;

// The decimal digits of 0 to 9999, four to an entry with leading zeros,
// and four bytes of padding behind, so that the last k digits of any entry
// can be read as four bytes.  Device coordinates of a page all lie here.
struct DigitQuads {
    char d[4 * 10000 + 4];
    constexpr DigitQuads() : d() {
        for (int i = 0; i < 10000; ++i) {
            d[4 * i] = (char)('0' + i / 1000);
            d[4 * i + 1] = (char)('0' + i / 100 % 10);
            d[4 * i + 2] = (char)('0' + i / 10 % 10);
            d[4 * i + 3] = (char)('0' + i % 10);
        }
    }
};
constexpr DigitQuads kQuads;

// The digits of v and the blank behind it, written backwards so that they
// end just before e; returns where they begin.  At most 21 bytes.
inline char *int_before(char *e, long long v) {
    char *q = e;
    *--q = ' ';
    unsigned long long u = v < 0 ? 0ULL - (unsigned long long)v : (unsigned long long)v;
    while (u >= 100) {
        unsigned k = (unsigned)(u % 100);
        u /= 100;
        q -= 2;
        std::memcpy(q, kPairs.d + 2 * k, 2);
    }
    if (u >= 10) {
        q -= 2;
        std::memcpy(q, kPairs.d + 2 * u, 2);
    } else {
        *--q = (char)('0' + u);
    }
    if (v < 0) *--q = '-';
    return q;
}

// An integer and the blank behind it, as one word.
inline void inum(DeviceBlock *b, long long v) {
    char t[24];
    char *q = int_before(t + sizeof t, v);
    int len = (int)(t + sizeof t - q);
    if (char *d = room(b, len)) std::memcpy(d, q, (size_t)len);
}

// The length of int_before's text for v: its digits, sign and blank.
inline int int_length(long long v) {
    unsigned long long u = v < 0 ? 0ULL - (unsigned long long)v : (unsigned long long)v;
    int n = 2 + (v < 0);
    while (u >= 10000) {
        u /= 10000;
        n += 4;
    }
    return n + (u >= 10) + (u >= 100) + (u >= 1000);
}

// A point and its operator, "x y u " or "x y d ": three words.  When all
// three fit in the line they are formatted straight into it; otherwise
// word by word, so that the line breaks fall exactly where single words
// put them.
inline void point(DeviceBlock *b, long long x, long long y, char op) {
    SessionState &s = b->sess;
    if (x >= 0 && x < 10000 && y >= 0 && y < 10000) {
        // The usual point of a page: each number is one four-byte copy from
        // the table.  A copy may reach up to three bytes past its digits;
        // what is written next covers them, and the line has room for all.
        int kx = 1 + (x >= 10) + (x >= 100) + (x >= 1000);
        int ky = 1 + (y >= 10) + (y >= 100) + (y >= 1000);
        int len = kx + ky + 4;
        if (s.lnbuf && s.lnpos + len <= s.lnlen) {
            char *q = s.lnbuf + s.lnpos;
            std::memcpy(q, kQuads.d + 4 * x + 4 - kx, 4);
            q += kx;
            *q++ = ' ';
            std::memcpy(q, kQuads.d + 4 * y + 4 - ky, 4);
            q += ky;
            q[0] = ' ';
            q[1] = op;
            q[2] = ' ';
            s.lnpos += len;
            return;
        }
    }
    int len = int_length(x) + int_length(y) + 2;
    if (s.lnbuf && s.lnpos + len <= s.lnlen) {
        char *e = s.lnbuf + s.lnpos + len;
        e[-2] = op;
        e[-1] = ' ';
        int_before(int_before(e - 2, y), x);
        s.lnpos += len;
        return;
    }
    inum(b, x);
    inum(b, y);
    const char word[2] = {op, ' '};
    if (char *d = room(b, 2)) std::memcpy(d, word, 2);
}

// A decimal number with prec decimals and the blank behind it, whatever
// the locale.
void fnum(DeviceBlock *b, double v, int prec) {
    char t[48];
    int n = qqfmtf(t, (int)sizeof t - 1, v, 1, prec);
    t[n++] = ' ';
    qqlbuf(b, t, n);
}

// trunc(v), kept within the integers whatever a scale factor made of v.
int trunc_int(double v) {
    if (!(v > -2e9)) return -2000000000;
    if (v > 2e9) return 2000000000;
    return (int)v;
}

// trunc(v + 0.5): a position in device units.
int dev_int(double v) { return trunc_int(v + 0.5); }

// Plot position to device units: portrait paper (sX, s(nyp - Y)), or on
// a landscape plot (sY, sX).
void map(DeviceBlock *b, double x, double y, double *dx, double *dy) {
    double s = b->sess.devscl;
    if (b->ps.land) {
        *dx = s * y;
        *dy = s * x;
    } else {
        *dx = s * x;
        *dy = s * (b->core.nyp - y);
    }
}

void map_int(DeviceBlock *b, double x, double y, int *ix, int *iy) {
    double dx, dy;
    map(b, x, y, &dx, &dy);
    *ix = dev_int(dx);
    *iy = dev_int(dy);
}

// The creation time: the library's one file date (qqfiletime), which
// honours SOURCE_DATE_EPOCH so that identical programs give identical files.
void creation_time(std::tm *t) {
    int v[6];
    qqfiletime(v);
    std::memset(t, 0, sizeof *t);
    t->tm_year = v[0] - 1900;
    t->tm_mon = v[1] - 1;
    t->tm_mday = v[2];
    t->tm_hour = v[3];
    t->tm_min = v[4];
    t->tm_sec = v[5];
}

// ---- paths --------------------------------------------------------------

void write_path(DeviceBlock *b) {
    PsState &p = b->ps;
    int n = p.npath;
    if (n == 0 || !p.pathx) return;
    bool dot = n == 2 && p.pathx[0] == p.pathx[1] && p.pathy[0] == p.pathy[1];
    point(b, dot ? p.pathx[0] - 2LL : p.pathx[0], p.pathy[0], 'u');
    for (int i = 1; i < n; ++i) point(b, dot ? p.pathx[i] + 2LL : p.pathx[i], p.pathy[i], 'd');
    put(b, "p ");
}

// Codes 2 draw, 3 move, 9 end path, 999 close; positions in device units.
void path_op(DeviceBlock *b, int x, int y, int op) {
    PsState &p = b->ps;
    if (!p.pathx) return;
    if (op == QQ_DRAW) {
        int &n = p.npath;
        if (n == 0) {
            p.pathx[0] = p.penx;
            p.pathy[0] = p.peny;
            n = 1;
        }
        p.pathx[n] = x;
        p.pathy[n] = y;
        if (n > 1 && p.pathx[n - 1] == x && p.pathy[n - 1] == y) return;
        if (++n < QQ_PSPATH) return;
    }
    write_path(b);
    if (op == 999) {
        std::free(p.pathx);
        p.pathx = p.pathy = nullptr;
        p.npath = 0;
    } else if (op == QQ_ENDPATH) {
        if (p.npath != 0) {
            p.penx = p.pathx[p.npath - 1];
            p.peny = p.pathy[p.npath - 1];
            p.npath = 0;
        }
    } else {
        // A move, or a full buffer whose last point starts the next path.
        p.pathx[0] = x;
        p.pathy[0] = y;
        p.npath = 1;
    }
}

void end_path(DeviceBlock *b) {
    path_op(b, 0, 0, QQ_ENDPATH);
}

void free_path(DeviceBlock *b) {
    std::free(b->ps.pathx);
    b->ps.pathx = b->ps.pathy = nullptr;
    b->ps.npath = 0;
}

// ---- state written into the page ------------------------------------------

void write_colour(DeviceBlock *b) {
    inum(b, b->ps.r);
    inum(b, b->ps.g);
    inum(b, b->ps.bl);
    word(b, "f ");
}

// The miter limit goes out in device units like a width.  PostScript
// refuses a limit below 1, which a thin line with a small factor would
// give; 8 units (1.13) is the least that it takes.
void write_miter(DeviceBlock *b) {
    DeviceState &d = b->dev;
    int w = std::abs(d.lnwid);
    long long v = std::llround((2 * w > 5 ? 2.0 * w : 5.0) * d.lnml);
    if (v < 8) v = 8;
    inum(b, v);
    word(b, "cm ");
    word(b, "setmiterlimit ");
    b->ps.miter = d.lnml;
}

// Rectangle with corners in plot coordinates and a colour value; cut to
// the clip window, a zero extent widened to 4 units.
void rect(DeviceBlock *b, int x1, int y1, int x2, int y2, int colour) {
    DeviceState &d = b->dev;
    if (x1 > x2) std::swap(x1, x2);
    if (y1 > y2) std::swap(y1, y2);
    if (x1 < d.clpx1) x1 = d.clpx1;
    if (y1 < d.clpy1) y1 = d.clpy1;
    if (x2 > d.clpx2) x2 = d.clpx2;
    if (y2 > d.clpy2) y2 = d.clpy2;
    if (x1 > x2 || y1 > y2) return;
    int ax, ay, bx, by;
    map_int(b, x1, y1, &ax, &ay);
    map_int(b, x2, y2, &bx, &by);
    if (ax == bx) {
        ax -= 2;
        bx += 2;
    }
    if (ay == by) {
        ay -= 2;
        by += 2;
    }
    int r, g, bl;
    qqclrrgb(b, colour, &r, &g, &bl);
    inum(b, ax);
    inum(b, ay);
    inum(b, bx);
    inum(b, by);
    inum(b, r);
    inum(b, g);
    inum(b, bl);
    word(b, "e ");
}

// ---- operations -------------------------------------------------------------

int ps_open(DeviceBlock *b) {
    SessionState &s = b->sess;
    CoreState &c = b->core;
    PsState &p = b->ps;
    int dev = c.devcod;
    int nxp = c.nxp, nyp = c.nyp;

    p.pathx = static_cast<int *>(std::malloc(2 * QQ_PSPATH * sizeof(int)));
    if (!p.pathx) {
        qqwar0(b, 53);
        return 53;
    }
    p.pathy = p.pathx + QQ_PSPATH;
    p.npath = 0;
    p.penx = p.peny = 0;
    p.r = p.g = p.bl = 0;
    p.cap = p.join = 2;
    p.miter = 2.0;
    p.clipped = 0;

    // The paper and the device scale.
    p.land = nxp > nyp && s.pagrot != 2;
    double p1 = 3900, p2 = 5600;
    if (s.hwsflg) {
        p1 = 2.0 * s.hwsiz[0];
        p2 = 2.0 * s.hwsiz[1];
    }
    double wx = nxp > 0 ? nxp : 1, wy = nyp > 0 ? nyp : 1;
    double sc = p.land ? std::fmin(p2 / wx, p1 / wy) : std::fmin(p1 / wx, p2 / wy);
    if (s.sclm == 0) sc = std::fmin(sc, 2.0 * c.unitf * s.sclf);
    s.devscl = sc;
    s.colbits = 24;

    // Long drawings make files of megabytes: write them in large blocks.
    if (s.fhnd) std::setvbuf(s.fhnd, nullptr, _IOFBF, 1 << 16);

    bool eps = dev == EPS, sing = p.pssing != 0;
    char t[256];
    head(b, eps ? "%!PS-Adobe-3.0 EPSF-3.0\n" : "%!PS-Adobe-2.0\n");

    double ox = 150, oy = 200;
    if (s.hwpflg) {
        ox = 2.0 * s.hworg[0];
        oy = 2.0 * s.hworg[1];
    }
    double h = s.hwscl;
    double ex = p.land ? nyp : nxp, ey = p.land ? nxp : nyp;
    std::snprintf(t, sizeof t, "%s %d %d %d %d\n", "%%BoundingBox: ", trunc_int(ox * kPoints),
                  trunc_int(oy * kPoints), trunc_int((ex * sc * h + ox) * kPoints + 1.0),
                  trunc_int((ey * sc * h + oy) * kPoints + 1.0));
    head(b, t);
    qqfmtf(t, 16, 11.5, 4, 1);
    head(b, "%%Creator: KOLVEX  ");
    head(b, t);
    head(b, p.land ? " L\n" : " P\n");

    std::tm tm;
    creation_time(&tm);
    std::snprintf(t, sizeof t, "%s %02d.%02d.%04d , %02d:%02d:%02d\n", "%%CreationDate:",
                  tm.tm_mday % 100, (tm.tm_mon + 1) % 100, (tm.tm_year + 1900) % 10000,
                  tm.tm_hour % 100, tm.tm_min % 100, tm.tm_sec % 60);
    head(b, t);

    // The caller's header text stands on one line: a line break in it
    // would end the comment and begin PostScript of its own.
    if (const char *info = b->ps.psinfo) {
        if (s.fhnd)
            for (const char *q = info; *q; ++q)
                std::fputc(*q == '\n' || *q == '\r' ? ' ' : *q, s.fhnd);
        head(b, "\n");
    }
    if (!eps && !sing) head(b, "%%Pages: (atend)\n");
    head(b, "%%EndComments\n");
    if (sing)
        head(b, "%%Page: 1 1\n2 setlinecap 2 setlinejoin\n");
    else
        head(b, "%%BeginProlog\n");
    for (const char *line : kProlog) {
        head(b, line);
        head(b, "\n");
    }
    if (!eps && !sing) head(b, "%%EndProlog\n%%Page: 1 1\ninitgraphics\n");

    char f1[16], f2[16];
    double hs = (float)s.hwscl;
    qqfmtf(f1, sizeof f1, hs, 10, 6);
    qqfmtf(f2, sizeof f2, hs, 10, 6);
    if (s.hwpflg)
        std::snprintf(t, sizeof t, "%5d cm %5d %s %s%s scale\n", s.hworg[0], s.hworg[1], "cm translate",
                      f1, f2);
    else
        std::snprintf(t, sizeof t, "%s %s%s scale\n", "  150 cm   200 cm translate", f1, f2);
    head(b, t);
    if (eps && !sing) head(b, "%%EndProlog\n%%Page: 1 1\n");

    if (dev != POST && s.bgmode != 2) {
        int a = dev_int(nyp * sc), bb = dev_int(nxp * sc);
        if (p.land)
            std::snprintf(t, sizeof t, "0 0 %d %d 0 0 0 e \n", a, bb);
        else
            std::snprintf(t, sizeof t, "0 %d %d 0 0 0 0 e \n", a, bb);
        head(b, t);
    } else if (!eps) {
        head(b, "erasepage\n");
    }
    if (!sing) head(b, "2 setlinecap 2 setlinejoin\n");
    return 0;
}

void ps_line(DeviceBlock *b, double x, double y, int op) {
    double dx, dy;
    map(b, x, y, &dx, &dy);
    path_op(b, dev_int(dx), dev_int(dy), op);
}

void ps_polyline(DeviceBlock *b, const double *x, const double *y, int n) {
    for (int i = 0; i < n; ++i) {
        double dx, dy;
        map(b, x[i], y[i], &dx, &dy);
        path_op(b, dev_int(dx), dev_int(dy), i == 0 ? QQ_MOVE : QQ_DRAW);
    }
}

void ps_colour(DeviceBlock *b, int, int r, int g, int bl, int) {
    end_path(b);
    b->ps.r = (unsigned char)r;
    b->ps.g = (unsigned char)g;
    b->ps.bl = (unsigned char)bl;
    write_colour(b);
}

// linwid: max(5, 2n); penwid: 5x below 0.99, else max(5, 2x); both times
// sclf.  n = 0 is the thinnest line, 5 units.
int ps_width(DeviceBlock *b, double n, int fractional) {
    end_path(b);
    double v = 5.0;
    if (n > 0) {
        if (fractional && n < 0.99)
            v = 5.0 * n;
        else
            v = 2.0 * n > 5.0 ? 2.0 * n : 5.0;
        v *= b->sess.sclf;
    }
    fnum(b, v, 2);
    word(b, "cm ");
    word(b, "setlinewidth ");
    // The miter limit is a length in this file: it follows the width.
    if (b->dev.lnjn == 0) write_miter(b);
    return n > 0 ? 1 : 0;
}

// Caps, joins and the miter limit: what changed goes out.
void ps_linestyle(DeviceBlock *b) {
    DeviceState &d = b->dev;
    PsState &p = b->ps;
    end_path(b);
    if (d.lncp != p.cap) {
        inum(b, d.lncp);
        word(b, "setlinecap ");
        p.cap = d.lncp;
    }
    bool joined = d.lnjn != p.join;
    if (joined) {
        inum(b, d.lnjn);
        word(b, "setlinejoin ");
        p.join = d.lnjn;
    }
    if (d.lnml != p.miter || (joined && d.lnjn == 0)) write_miter(b);
}

void ps_clip(DeviceBlock *b, int x1, int y1, int x2, int y2, int reset) {
    // The page is the clip region of a new page: a reset before any
    // clipping has nothing to undo.
    if (reset && !b->ps.clipped) return;
    b->ps.clipped = !reset;
    end_path(b);
    if (reset) {
        x1 = y1 = 0;
        x2 = b->core.nxp;
        y2 = b->core.nyp;
    }
    int ax, ay, bx, by;
    map_int(b, x1, y1, &ax, &ay);
    map_int(b, x2, y2, &bx, &by);
    word(b, "initclip ");
    inum(b, ax);
    inum(b, ay);
    inum(b, bx);
    inum(b, by);
    word(b, "clp ");
}

// Filled in the current colour by the even-odd rule.  The pending path
// stays pending: it has points of its own in the buffer.  A circular clip
// region is the layer's: it hatches with clipped lines.
int ps_fill(DeviceBlock *b, const double *x, const double *y, int n) {
    if (n < 1 || !b->dev.hwshd || b->dev.clpcir) return 0;
    int x0, y0;
    map_int(b, x[0], y[0], &x0, &y0);
    inum(b, x0);
    inum(b, y0);
    word(b, "u ");
    for (int i = 1; i < n; ++i) {
        int ix, iy;
        map_int(b, x[i], y[i], &ix, &iy);
        inum(b, ix);
        inum(b, iy);
        word(b, "d ");
    }
    inum(b, x0);
    inum(b, y0);
    word(b, "d ");
    word(b, "eofill ");
    return 1;
}

void ps_rect(DeviceBlock *b, int x1, int y1, int x2, int y2, int colour) {
    rect(b, x1, y1, x2, y2, colour);
}

void ps_new_page(DeviceBlock *b) {
    if (is_eps(b)) return;
    DeviceState &d = b->dev;
    end_path(b);
    word(b, "copypage ");
    newline(b);
    word(b, "%%Page: 1 ");
    inum(b, b->sess.pageno);
    newline(b);
    int dev = b->core.devcod;
    if ((dev == PSCL || dev == PS) && b->sess.bgmode != 2) {
        rect(b, 0, 0, b->core.nxp, b->core.nyp, 0);
    } else {
        word(b, "erasepage ");
        newline(b);
    }
    double wv = 2.0 * std::abs(d.lnwid) * b->core.unitf;
    long long w = wv < 9e18 ? (long long)wv : 0;
    inum(b, d.lncp);
    word(b, "setlinecap ");
    inum(b, d.lnjn);
    word(b, "setlinejoin ");
    inum(b, w > 5 ? w : 5);
    word(b, "cm ");
    word(b, "setlinewidth");
    newline(b);
    b->ps.cap = d.lncp;
    b->ps.join = d.lnjn;
    write_colour(b);
}

// The canvas of image mode, copied into the page as an RGB image of two
// hex digits a component.
void ps_image(DeviceBlock *b) {
    qqcanvas *cv = qqcanvasof(b);
    if (!cv) return;
    CanvasState &cs = b->cnv;
    int w = cv->cw, h = cv->ch;
    if (w < 1 || h < 1) return;
    unsigned char *row = static_cast<unsigned char *>(std::malloc((size_t)w * 3));
    if (!row) {
        qqwar0(b, 53);
        return;
    }
    // The lower left corner and the size in plot coordinates: the box of
    // imgbox, shifted by the origin as every position is, or the whole
    // page, which stays where the page is whatever the origin.
    double cx = 0, cy = b->core.nyp, pw = b->core.nxp + 1.0, ph = b->core.nyp + 1.0;
    if (cs.imgbflg) {
        cx = cs.imgbx[0] + b->dev.nxsh;
        cy = cs.imgbx[1] + cs.imgbx[3] - 1.0 + b->dev.nysh;
        pw = cs.imgbx[2];
        ph = cs.imgbx[3];
    }
    end_path(b);
    double px, py, s = b->sess.devscl;
    map(b, cx, cy, &px, &py);
    word(b, "/DeviceRGB setcolorspace ");
    word(b, "gsave ");
    fnum(b, px * kPoints, 3);
    fnum(b, py * kPoints, 3);
    word(b, "translate ");
    if (b->ps.land) word(b, "90 rotate ");
    fnum(b, pw * s * kPoints, 3);
    fnum(b, ph * s * kPoints, 3);
    word(b, "scale ");
    newline(b);
    word(b, "<< ");
    newline(b);
    if (cs.imgtran == -1) {
        word(b, "/ImageType 1 ");
    } else {
        word(b, "/ImageType 4 ");
        newline(b);
        word(b, "/MaskColor [255 255 255] ");
    }
    newline(b);
    char t[96];
    std::snprintf(t, sizeof t, "/Width %d ", w);
    word(b, t);
    newline(b);
    std::snprintf(t, sizeof t, "/Height %d ", h);
    word(b, t);
    newline(b);
    word(b, "/BitsPerComponent 8 ");
    newline(b);
    word(b, "/Decode [0 1 0 1 0 1] ");
    newline(b);
    std::snprintf(t, sizeof t, "/ImageMatrix [%d 0 0 %d 0 %d] ", w, -h, h);
    word(b, t);
    newline(b);
    word(b, "/DataSource currentfile /ASCIIHexDecode filter ");
    newline(b);
    word(b, ">> image ");
    newline(b);
    static const char kHex[] = "0123456789ABCDEF";
    for (int y = 0; y < h; ++y) {
        qqcgetrow(cv, 0, y, w, 1, row);
        for (int i = 0; i < 3 * w; ++i) {
            char pair[2] = {kHex[row[i] >> 4], kHex[row[i] & 15]};
            qqlbuf(b, pair, 2);
        }
    }
    std::free(row);
    newline(b);
    word(b, "> grestore ");
}

// The ring sector of /sec: centre and radii in device units, the angles
// with two decimals (turned a quarter on a landscape plot), the colour.
int ps_sector(DeviceBlock *b, double x, double y, double r1, double r2, double a1, double a2,
              int colour) {
    int ix, iy;
    map_int(b, x, y, &ix, &iy);
    double s = b->sess.devscl;
    inum(b, ix);
    inum(b, iy);
    inum(b, dev_int(r1 * s));
    inum(b, dev_int(r2 * s));
    double turn = b->ps.land ? 90.0 : 0.0;
    fnum(b, a1 + turn, 2);
    fnum(b, a2 + turn, 2);
    int r, g, bl;
    qqclrrgb(b, colour, &r, &g, &bl);
    inum(b, r);
    inum(b, g);
    inum(b, bl);
    word(b, "sec ");
    return 1;
}

// The triangle of /tri, filled in the current colour.
int ps_triangle(DeviceBlock *b, const double *x, const double *y) {
    for (int i = 0; i < 3; ++i) {
        int ix, iy;
        map_int(b, x[i], y[i], &ix, &iy);
        inum(b, ix);
        inum(b, iy);
    }
    word(b, "tri ");
    return 1;
}

// Hardware characters come with the fonts of the text layer, which fills
// these two operations; until then the layer strokes every character.
int ps_character(DeviceBlock *, const QQHwChar *) {
    return 0;
}
void ps_textstyle(DeviceBlock *) {}

// A plot file whose writing failed (a full disk) is emptied rather than
// left to look like a picture; the session closes it as any other.
void discard_file(DeviceBlock *b) {
    SessionState &s = b->sess;
    // What the stream still holds must not reach the file at its close.
    __fpurge(s.fhnd);
    std::clearerr(s.fhnd);
    if (ftruncate(fileno(s.fhnd), 0) == 0) std::rewind(s.fhnd);
    qqwar0(b, 36);
}

int ps_close(DeviceBlock *b) {
    path_op(b, 0, 0, 999);
    bool sing = b->ps.pssing != 0;
    word(b, sing ? "showpage " : "gsave showpage grestore ");
    if (!is_eps(b) && !sing) {
        newline(b);
        word(b, "%%Trailer ");
        newline(b);
        word(b, "%%Pages: ");
        inum(b, b->sess.pageno);
        newline(b);
        word(b, "%%EOF ");
    }
    // The rest of the line, then a check that everything reached the disk.
    SessionState &s = b->sess;
    if (s.lnpos > 0) qqsbufend(b);
    if (!s.fhnd) return 0;
    if (std::fflush(s.fhnd) != 0 || std::ferror(s.fhnd)) {
        discard_file(b);
        return 0;
    }
    return 1;
}

// The extra header text serves the session that it was given for: the
// driver has written it when the next session's defaults are set.
void free_psinfo(CoreBlock *blk) {
    DeviceBlock *b = qqdevblk(blk);
    std::free(b->ps.psinfo);
    b->ps.psinfo = nullptr;
}

void ps_release(CoreBlock *blk) {
    DeviceBlock *b = qqdevblk(blk);
    free_path(b);
    free_psinfo(b);
}

const ResetEntry kResets[] = {{"PSME", free_psinfo}, {nullptr, nullptr}};

}  // namespace

extern const Subsystem kxsub_postscript = {"postscript", nullptr, free_psinfo, ps_release, kResets, nullptr};

namespace {

// Hardware line widths, fills, clipping and images; colours as red,
// green, blue.  No markers, no clear, no update.
const DriverOps kOps = {
    .open = ps_open,
    .line = ps_line,
    .polyline = ps_polyline,
    .colour = ps_colour,
    .width = ps_width,
    .linestyle = ps_linestyle,
    .clip = ps_clip,
    .fill_polygon = ps_fill,
    .fill_rect = ps_rect,
    .new_page = ps_new_page,
    .close = ps_close,
    .image = ps_image,
    .character = ps_character,
    .textstyle = ps_textstyle,
    .sector = ps_sector,
    .triangle = ps_triangle,
};

// Printed on white paper, POST in the grey table; PSCL paints the dark
// background of the screen, EPS and PS stay white.
constexpr unsigned kGreyPaper = QQ_CLR_WHITE_SHEET | QQ_CLR_BACK_LAST | QQ_CLR_KEEP_REVERSED | QQ_CLR_GREY_TABLE;
constexpr unsigned kDarkPage = QQ_CLR_TURN_ON_WHITE;
constexpr unsigned kWhitePage = QQ_CLR_TURN_ON_WHITE | QQ_CLR_WHITE_BACK;
const DeviceKey kKeys[] = {
    {"POST", POST, "psc", kGreyPaper},
    {"PSCL", PSCL, "psc", kDarkPage},
    {"EPS ", EPS, "eps", kWhitePage},
    {"PS  ", PS, "ps", kWhitePage},
    {},
};

}  // namespace

extern const DeviceFamily kxfam_postscript = {
    .name = "PostScript",
    .keys = kKeys,
    .lo = POST,
    .hi = PS,
    .kind = QQ_KIND_PAGE,
    .file = 0,
    .lnlen = 80,
    .viewer = "koldrv",
    .ops = &kOps,
    .picscale = 0.14173228346456693,  // points per plot coordinate at scale 1
};

int qqpsesc(const char *text, int n, char *out, int size) noexcept {
    if (!out || size < 1) return -1;
    int k = 0;
    for (int i = 0; i < n; ++i) {
        unsigned char ch = (unsigned char)text[i];
        char piece[5];
        int len;
        if (ch == '(' || ch == ')' || ch == '\\') {
            piece[0] = '\\';
            piece[1] = (char)ch;
            len = 2;
        } else if (ch < 32 || ch > 126) {
            piece[0] = '\\';
            piece[1] = (char)('0' + (ch >> 6));
            piece[2] = (char)('0' + ((ch >> 3) & 7));
            piece[3] = (char)('0' + (ch & 7));
            len = 4;
        } else {
            piece[0] = (char)ch;
            len = 1;
        }
        if (k + len > size - 1) {
            out[0] = '\0';
            return -1;
        }
        std::memcpy(out + k, piece, (size_t)len);
        k += len;
    }
    out[k] = '\0';
    return k;
}

void psmeta(const char *cstr, const char *copt) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("psmeta"));
    if (!b) return;
    if (qqkey(b, "INFO", 1, copt) == 0) return;
    size_t n = cstr ? std::strlen(cstr) : 0;
    char *copy = static_cast<char *>(std::malloc(n + 1));
    if (!copy) {
        qqwar0(b, 53);
        return;
    }
    std::memcpy(copy, cstr ? cstr : "", n + 1);
    std::free(b->ps.psinfo);
    b->ps.psinfo = copy;
}

void psmode(const char *copt) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("psmode"));
    if (!b) return;
    int k = qqkey(b, "NONE+GREE+ITAL+BOTH+MULT+SING", 6, copt);
    if (k == 0) return;
    if (k >= 5) {
        // One page or several is a property of the file: only before it
        // is opened.
        if (b->core.level != 0) {
            qqwarn(b, 3, (int)b->core.level);
            return;
        }
        b->ps.pssing = (unsigned char)(k - 5);
        return;
    }
    b = qqdevblk(qqsoft("psmode"));
    if (b) b->ps.psmd = k - 1;
}
