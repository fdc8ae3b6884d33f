// Legends: a framed box with a title and one entry per curve, the entries'
// attributes taken from what the curves recorded (or from legpat).
//
// The texts live in the caller's buffer of nlin lines of nmaxln bytes,
// blank-padded and without terminators; the library keeps no copy.  The
// size of the box and the place of every cell come from one layout
// computation that nxlegn, nylegn and legend share.
#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "plots/curve_draw.h"
#include "plots/curves.h"
#include "plots/fill.h"
#include "plots/legend_link.h"
#include "plots/plot_block.h"
#include "plots/shields.h"

namespace {

// One shown entry: its line number and its cell.
struct Cell {
    int line;  // 1 .. nlin
    int col, row;
    int lines;  // text lines it holds
};

// The sizes and the layout of a legend.
struct Layout {
    int h, p, m, d, c, r, l;  // height, pattern width, margin, distance,
                              // column space, row step, line step
    int k;                    // shown entries
    int cols, rows;
    Cell cell[QQ_NLEG];
    int colw[QQ_NLEG];  // width of each column
    int rowh[QQ_NLEG];  // largest text height of each row
    int title;          // title width, -1 without a title
    int width, height;  // the box, frame included
    int content;        // W
    bool titwide;
};

int share(double v, int h, double s) {
    // A value of 0 or more is a share of the height; a negative one an
    // absolute length with its sign turned.
    return v >= 0 ? (int)(h * v * s) : (int)(-v);
}

// The length of line i of the buffer once trailing blanks and anything
// after a terminator are cut off.
int trimmed(const char *buf, int m, int i, const char **text) {
    const char *t = buf + (size_t)(i - 1) * m;
    int n = 0;
    while (n < m && t[n] != '\0') ++n;
    while (n > 0 && t[n - 1] == ' ') --n;
    *text = t;
    return n;
}

// Text lines of an entry: with mixleg the control character splits it.
int entry_lines(PlotBlock *b, const LegendState &g, const char *buf, int i) {
    if (!g.mix) return 1;
    const char mixc = qqlegmix(b);
    const char *t = buf + (size_t)(i - 1) * g.nmaxln;
    int n = 1;
    for (int k = 0; k < g.nmaxln; ++k)
        if (t[k] == mixc) ++n;
    return n;
}

// Calls fn(text, length, index) for each text line of entry i.
template <class Fn>
void each_text_line(PlotBlock *b, const LegendState &g, const char *buf, int i, Fn fn) {
    const char *t;
    int n = trimmed(buf, g.nmaxln, i, &t);
    if (!g.mix) {
        fn(t, n, 0);
        return;
    }
    const char mixc = qqlegmix(b);
    int start = 0, part = 0;
    for (int k = 0; k <= n; ++k)
        if (k == n || t[k] == mixc) {
            int e = k;
            while (e > start && t[e - 1] == ' ') --e;
            fn(t + start, e - start, part++);
            start = k + 1;
        }
}

const LegendRecord &record(const LegendState &g, int line) {
    static const LegendRecord empty = {-1, 1, {1}, -1, 1, 1, -1, -1, -1};
    if (line < 1 || line > QQ_NLEG) return empty;
    // Records past the count of this axis system are left over from an
    // earlier one: the entry reads as a record never written.
    static const LegendRecord unwritten = {};
    if (!g.ownpat && line > g.nrec) return unwritten;
    return g.rec[line - 1];
}

void layout(PlotBlock *b, const char *buf, Layout *L) {
    const LegendState &g = b->leg;
    int h = qqleghgt(b);
    double s = qqleglsp(b);
    L->h = h;
    L->p = share(g.patt, h, 1.0);
    L->m = g.marg >= 0 ? (int)(g.marg * s * h) : (int)(-g.marg);
    L->d = share(g.dist, h, 1.0);
    L->c = share(g.hspa, h, 1.0);
    L->r = (int)(h * s);
    L->l = g.line >= 0 ? (int)(h * g.line * s) : (int)(-g.line);
    // The shown entries.
    int k = 0;
    if (g.nsel < 0) {
        for (int i = 1; i <= g.nlin; ++i) L->cell[k++].line = i;
    } else {
        int n = g.nsel < g.nlin ? g.nsel : g.nlin;
        for (int j = 0; j < n; ++j)
            if (g.sel[j] <= g.nlin) L->cell[k++].line = g.sel[j];
    }
    L->k = k;
    bool anyline = false;
    for (int j = 0; j < k; ++j)
        if (record(g, L->cell[j].line).ltyp != -1) anyline = true;
    if (!anyline) L->p /= 2;
    int C, R;
    if (g.kind == 1) {
        C = k;
        R = 1;
    } else if (g.kind == 2) {
        C = g.tblcols;
        R = (k + C - 1) / C;
    } else {
        C = 1;
        R = k;
    }
    if (C > QQ_NLEG) C = QQ_NLEG;
    L->cols = C;
    L->rows = R;
    for (int j = 0; j < C; ++j) L->colw[j] = 0;
    for (int j = 0; j < R; ++j) L->rowh[j] = 0;
    for (int j = 0; j < k; ++j) {
        Cell &cl = L->cell[j];
        if (g.kind == 2 && g.tblorder == 1) {
            cl.row = j / C;
            cl.col = j % C;
        } else if (g.kind == 2 || g.kind == 0) {
            cl.col = R ? j / R : 0;
            cl.row = R ? j % R : 0;
        } else {
            cl.col = j;
            cl.row = 0;
        }
        cl.lines = entry_lines(b, g, buf, cl.line);
        int w = 0;
        each_text_line(b, g, buf, cl.line, [&](const char *t, int n, int) {
            int tw = n > 0 ? qqlegwidth(b, t, n) : 0;
            if (tw > w) w = tw;
        });
        if (w > L->colw[cl.col]) L->colw[cl.col] = w;
        if (cl.lines > L->rowh[cl.row]) L->rowh[cl.row] = cl.lines;
    }
    int W = 0;
    for (int j = 0; j < C; ++j) W += L->colw[j];
    W += C * (L->d + L->p) + (C > 0 ? (C - 1) * L->c : 0);
    L->content = W;
    int tl = (int)std::strlen(g.title);
    L->title = tl > 0 ? qqlegwidth(b, g.title, tl) : -1;
    int frame = qqlegframe(b);
    if (L->title <= W + 2 * L->m) {
        L->width = W + 2 * L->m;
        L->titwide = false;
    } else {
        L->width = L->title + 2 * L->m;
        L->titwide = true;
    }
    int H = tl > 0 ? (int)(s * 1.5 * h) : 0;
    for (int j = 0; j < R; ++j) {
        int th = L->rowh[j] < 1 ? 1 : L->rowh[j];
        H += (th - 1) * L->l + (j < R - 1 ? L->r : h);
    }
    H += 2 * L->m;
    L->height = H;
    if (frame >= 1) {
        L->width += 2 * frame;
        L->height += 2 * frame;
    }
}

bool need_init(PlotBlock *b) {
    if (b->leg.init) return true;
    qqwar0(b, 15);
    return false;
}

// The pen width of a record, set without the routine name changing.
void set_width(PlotBlock *b, int w) {
    if (w < 1 || w == (b->dev.lnwid < 0 ? -b->dev.lnwid : b->dev.lnwid)) return;
    char name[9];
    std::memcpy(name, b->core.rtnam, sizeof name);
    linwid(w);
    std::memcpy(b->core.rtnam, name, sizeof name);
}

void rect_outline(PlotBlock *b, double x0, double y0, double x1, double y1) {
    qqmove(b, x0, y0);
    qqdraw(b, x1, y0);
    qqdraw(b, x1, y1);
    qqdraw(b, x0, y1);
    qqdraw(b, x0, y0);
}

// The upper left corner of a legend box of w by t: the fixed position,
// or the upper right corner of the axis system inside the margin.
void reserved_corner(PlotBlock *b, int w, int *x, int *y) {
    const LegendState &g = b->leg;
    if (!g.autopos) {
        *x = g.posx;
        *y = g.posy;
        return;
    }
    int h = qqleghgt(b);
    int mm = g.marg >= 0 ? (int)(h * g.marg) : (int)(-g.marg);
    LegendAxis a;
    qqlegaxis(b, &a);
    *x = a.rx - mm - w + 2;
    *y = a.ty + mm;
}

void legend_shield(PlotBlock *b, int x, int y, int w, int t) {
    if (w < 1 || t < 1) return;
    double v[4] = {(double)x, (double)y, (double)x + w - 1, (double)y + t - 1};
    b->leg.shield = qqshlautoadd(b, QQ_SHL_LEGE, 1, v, 4);
}

// With legends shielded, the first curve keeps the place of the legend
// free before it is drawn: a box of the largest size that leglin met.
void reserve_shield(PlotBlock *b) {
    LegendState &g = b->leg;
    if (!g.init || g.shield || !qqshlauto(b, QQ_SHL_LEGE) || g.maxw < 1 || g.maxh < 1) return;
    int x, y;
    reserved_corner(b, g.maxw, &x, &y);
    legend_shield(b, x, y, g.maxw, g.maxh);
}

}  // namespace

void qqleginit(PlotBlock *b) noexcept {
    LegendState &g = b->leg;
    std::memset(&g, 0, sizeof g);
    g.bgd = -1;
    g.nsel = -1;
    g.tblcols = 3;
    std::strcpy(g.title, "Legende");
}

void qqlegrecord(PlotBlock *b, int entry, int pattern, bool line, bool symbol) noexcept {
    if (entry < 1 || entry > QQ_NLEG || b->leg.ownpat) return;
    LegendRecord &r = b->leg.rec[entry - 1];
    const DeviceState &d = b->dev;
    const CurveState &c = b->crv;
    r.ltyp = line ? qqgetstyle(b) : -1;
    r.ndsh = d.dshn < 1 ? 1 : d.dshn > 10 ? 10 : d.dshn;
    for (int i = 0; i < 10; ++i) r.dsh[i] = i < r.ndsh ? d.dshl[i] : 0;
    r.symb = symbol ? c.marker : -1;
    r.thick = c.thkcrv;
    r.penw = d.lnwid < 0 ? -d.lnwid : d.lnwid;
    r.colour = b->clr.curclr;
    r.mcolour = c.mrkclr;
    r.pattern = pattern;
    if (entry > b->leg.nrec) b->leg.nrec = entry;
    if (entry == 1) reserve_shield(b);
}

void legini(char *cbuf, int nlin, int nmaxln) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("legini"));
    if (!b) return;
    if (nlin < 1 || nlin > QQ_NLEG) {
        qqwarn(b, 2, nlin);
        return;
    }
    if (nmaxln < 1 || nmaxln > 256) {
        qqwarn(b, 2, nmaxln);
        return;
    }
    LegendState &g = b->leg;
    std::memset(cbuf, ' ', (size_t)nlin * nmaxln);
    cbuf[0] = '\0';
    g.init = 1;
    g.nlin = nlin;
    g.nmaxln = nmaxln;
    g.autopos = 1;
    g.posx = g.posy = 0;
    std::strcpy(g.title, "Legende");
    g.tblcols = 3;
    g.tblorder = 0;
    g.ownpat = 0;
    std::memset(g.flags, ' ', sizeof g.flags);
    g.maxw = g.maxh = 0;
    g.contw = g.titwide = 0;
    g.patt = 4.0;
    g.marg = 0.5;
    g.line = 1.0;
    g.symb = 0.800000011920929;
    g.hspa = 2.0;
    g.dist = 1.0;
}

void leglin(char *cbuf, const char *cstr, int ilin) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("leglin"));
    if (!b || !need_init(b)) return;
    LegendState &g = b->leg;
    if (ilin < 1 || ilin > g.nlin) {
        qqwarn(b, 2, ilin);
        return;
    }
    size_t n = std::strlen(cstr);
    if (n > (size_t)g.nmaxln) {
        qqwarc(b, 16, cstr);
        return;
    }
    char *t = cbuf + (size_t)(ilin - 1) * g.nmaxln;
    std::memcpy(t, cstr, n);
    std::memset(t + n, ' ', g.nmaxln - n);
    // The largest box so far, for a legend shield reserved before the
    // legend is drawn.
    if (b->core.level >= 1) {
        Layout L;
        layout(b, cbuf, &L);
        if (L.width > g.maxw) g.maxw = L.width;
        if (L.height > g.maxh) g.maxh = L.height;
    }
}

void legtit(const char *ctit) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("legtit"));
    if (!b || !need_init(b)) return;
    size_t n = std::strlen(ctit);
    if (n > 80) n = 80;
    std::memcpy(b->leg.title, ctit, n);
    b->leg.title[n] = '\0';
    while (n > 0 && b->leg.title[n - 1] == ' ') b->leg.title[--n] = '\0';
}

void legpos(int nx, int ny) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("legpos"));
    if (!b || !need_init(b)) return;
    b->leg.autopos = 0;
    b->leg.posx = nx;
    b->leg.posy = qqyflpi(b, ny);
}

void legtyp(const char *copt) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("legtyp"));
    if (!b) return;
    if (b->leg.init) {
        qqwar1(b, 182, "legtyp must be called before legini");
        return;
    }
    int k = qqkey(b, "VERT+HORI+TABL", 3, copt);
    if (k > 0) b->leg.kind = k - 1;
}

void legtbl(int nclm, const char *copt) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("legtbl"));
    if (!b || !need_init(b) || qqchki(b, nclm, 1, QQ_NLEG)) return;
    int k = qqkey(b, "VERT+HORI", 2, copt);
    if (k == 0) return;
    b->leg.tblcols = nclm;
    b->leg.tblorder = k - 1;
}

void legsel(const int *nray, int n) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("legsel"));
    if (!b || qqchki(b, n, -1, 30)) return;
    for (int i = 0; i < n; ++i)
        if (nray[i] < 1) {
            qqwarn(b, 2, nray[i]);
            return;
        }
    b->leg.nsel = n;
    for (int i = 0; i < n; ++i) b->leg.sel[i] = nray[i];
}

void legopt(double xf1, double xf2, double xf3) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("legopt"));
    if (!b || !need_init(b)) return;
    if (!(xf1 >= 0) || !(xf2 > 0) || !(xf3 > 0)) {
        qqwarnd(b, 2, !(xf1 >= 0) ? xf1 : !(xf2 > 0) ? xf2 : xf3);
        return;
    }
    b->leg.patt = xf1;
    b->leg.marg = xf2;
    b->leg.line = xf3;
}

void legval(double x, const char *copt) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("legval"));
    if (!b || !need_init(b)) return;
    int k = qqkey(b, "PATT+MARG+LINE+SYMB+HSPA+DIST", 6, copt);
    LegendState &g = b->leg;
    double *v[6] = {&g.patt, &g.marg, &g.line, &g.symb, &g.hspa, &g.dist};
    if (k > 0) *v[k - 1] = x;
}

void legpat(int ityp, int ithk, int isym, int iclr, int ipat, int ilin) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("legpat"));
    if (!b || !need_init(b)) return;
    if (qqchki(b, ityp, -1, 7) || qqchki(b, ithk, 1, -1) || qqchki(b, isym, -1, QQ_NSYMB - 1) ||
        qqchki(b, iclr, -1, -1) || qqchki(b, ilin, 1, QQ_NLEG))
        return;
    LegendState &g = b->leg;
    if (!g.ownpat) {
        g.ownpat = 1;
        g.nrec = 0;
    }
    LegendRecord &r = g.rec[ilin - 1];
    r.ltyp = ityp;
    r.ndsh = 1;
    r.dsh[0] = 1;
    r.symb = isym;
    r.thick = 1;
    r.penw = ithk;
    r.colour = iclr == -1 ? b->clr.curclr : iclr;
    r.mcolour = -1;
    r.pattern = ipat;
    g.flags[ilin - 1] = '1';
    if (ilin > g.nrec) g.nrec = ilin;
}

void legclr() noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("legclr"));
    if (!b) return;
    b->leg.clrflag = 1;
}

void legbgd(int nclr) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("legbgd"));
    // -1 takes the background away; any colour from 0 up, index or
    // explicit RGB value, is a background.
    if (!b || qqchki(b, nclr, -1, -2)) return;
    b->leg.bgd = nclr;
}

void mixleg() noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("mixleg"));
    if (!b) return;
    b->leg.mix = 1;
}

int nxlegn(const char *cbuf) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("nxlegn"));
    if (!b || !need_init(b)) return 0;
    Layout L;
    layout(b, cbuf, &L);
    b->leg.contw = L.content;
    b->leg.titwide = L.titwide;
    return L.width;
}

int nylegn(const char *cbuf) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("nylegn"));
    if (!b || !need_init(b)) return 0;
    Layout L;
    layout(b, cbuf, &L);
    return L.height;
}

void legend(const char *cbuf, int npos) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("legend"));
    if (!b || !need_init(b)) return;
    LegendState &g = b->leg;
    if (g.autopos && (npos < 1 || npos > 10)) {
        qqwarn(b, 2, npos);
        return;
    }
    unsigned char flip = b->core.ynoflp;
    b->core.ynoflp = 1;
    // Consistency of the entries with what was recorded.
    if (g.ownpat) {
        for (int i = 1; i <= g.nlin; ++i)
            if (g.flags[i - 1] != '1') {
                qqwtxt(b, "Undefined legend line");
                qqwarn(b, 149, i);
            }
    } else if (g.nlin > g.nrec) {
        qqwarn(b, 42, g.nlin - g.nrec);
    }
    if (g.nsel > 0)
        for (int j = 0; j < g.nsel; ++j)
            if (g.sel[j] > g.nlin) {
                qqwtxt(b, "Undefined legend line by legsel");
                qqwarn(b, 149, g.sel[j]);
            }

    static thread_local Layout L;  // large: kept off the stack
    layout(b, cbuf, &L);
    g.contw = L.content;
    g.titwide = L.titwide;
    const int h = L.h, w = L.width, t = L.height;
    const double s = qqleglsp(b);
    int x, y;
    if (!g.autopos) {
        x = g.posx;
        y = g.posy;
    } else {
        int P = b->core.nxp, Q = b->core.nyp, ox = b->dev.nxsh, oy = b->dev.nysh;
        int mm = g.marg >= 0 ? (int)(h * g.marg) : (int)(-g.marg);
        LegendAxis a;
        qqlegaxis(b, &a);
        switch (npos) {
            case 1:
                x = mm - ox, y = Q - oy - mm - t + 2;
                break;
            case 2:
                x = P - ox - mm - w + 2, y = Q - oy - mm - t + 2;
                break;
            case 3:
                x = P - ox - mm - w + 2, y = mm - oy;
                break;
            case 4:
                x = mm - ox, y = mm - oy;
                break;
            case 5:
                x = a.px + mm, y = a.py - mm - t + 2;
                break;
            case 6:
                x = a.rx - mm - w + 2, y = a.py - mm - t + 2;
                break;
            case 7:
                x = a.rx - mm - w + 2, y = a.ty + mm;
                break;
            case 8:
                x = a.px + mm, y = a.ty + mm;
                break;
            case 9:
                x = mm - ox, y = a.py - a.ylen / 2 - oy - t / 2;
                break;
            default:
                x = P - ox - mm - w + 2, y = a.py - a.ylen / 2 - oy - t / 2;
                break;
        }
    }

    // The reserved place gives way to the legend's own box, registered
    // once the legend stands.
    const bool reserved = g.shield != 0;
    if (reserved) {
        qqshldelid(b, g.shield, QQ_SHL_LEGE);
        g.shield = 0;
    }
    CurveSave save;
    qqcrvsave(b, &save);
    int savhsym = b->crv.hsymbl, savwid = b->dev.lnwid < 0 ? -b->dev.lnwid : b->dev.lnwid;
    const int f = qqlegframe(b);
    int ix = x, iy = y, iw = w, ih = t;
    if (f >= 1) {
        ix = x + f - 1;
        iy = y + f - 1;
        iw = w - 2 * f;
        ih = t - 2 * f;
    }
    if (g.bgd != -1) {
        qqrectf(b, ix, iy, ix + iw - 1, iy + ih - 1, g.bgd);
    }
    if (f != 0) qqlegbox(b, ix, iy, iw, ih, f);

    int ty = y + L.m + (f > 0 ? f : 0);
    if (L.title >= 0) {
        qqlegtext(b, g.title, (int)std::strlen(g.title), x + (w - L.title) / 2, ty);
        ty += (int)(s * 1.5 * h);
    }
    int tx =
        L.titwide ? x + (w - (int)(h * (g.patt + 1) + L.content)) / 2 : x + L.m + (f > 0 ? f : 0);
    // Where each column and row starts.
    int colx[QQ_NLEG], rowy[QQ_NLEG];
    for (int j = 0, cx = tx; j < L.cols; ++j) {
        colx[j] = cx;
        cx += L.colw[j] + L.c + L.d + L.p;
    }
    for (int j = 0, cy = ty; j < L.rows; ++j) {
        rowy[j] = cy;
        int th = L.rowh[j] < 1 ? 1 : L.rowh[j];
        cy += (th - 1) * L.l + L.r;
    }

    b->crv.hsymbl = (int)(h * g.symb);
    const int p = L.p;
    if (std::fabs(g.patt) > 0.001) {
        for (int j = 0; j < L.k; ++j) {
            const Cell &cl = L.cell[j];
            if (g.ownpat && g.flags[cl.line - 1] != '1') continue;
            const LegendRecord &r = record(g, cl.line);
            double cx = colx[cl.col], cy = rowy[cl.row];
            if (r.colour >= 0 || r.colour < -1) qqsetc(b, r.colour);
            if (r.pattern == -1) {
                if (r.ltyp != -1) {
                    qqflsh(b);
                    if (g.ownpat) {
                        qqsetstyle(b, r.ltyp);
                    } else {
                        b->dev.dshn = r.ndsh;
                        for (int i = 0; i < r.ndsh; ++i) b->dev.dshl[i] = r.dsh[i];
                    }
                    set_width(b, r.penw);
                    double uf = b->core.unitf > 0 ? b->core.unitf : 1.0;
                    int passes = (int)(r.thick * uf + 0.5);
                    if (passes < 1) passes = 1;
                    for (int q = 1; q <= passes; ++q) {
                        int k2 = q / 2;
                        qqflsh(b);
                        b->dev.lnoff = (q == 1 ? 0 : (q % 2 == 0 ? k2 : -k2)) / uf;
                        qqdshres(b);
                        qqmove(b, cx, cy + h / 2);
                        qqdraw(b, cx + p, cy + h / 2);
                    }
                    qqsolid(b);
                }
                if (r.symb != -1 && b->crv.hsymbl >= 1) {
                    qqsolid(b);
                    int cur = b->clr.curclr;
                    if (r.mcolour != -1) qqsetc(b, r.mcolour);
                    qqsymb(b, r.symb, cx + p / 2, cy + h / 2);
                    qqflsh(b);
                    if (r.mcolour != -1) qqsetc(b, cur);
                }
            } else {
                double px[4] = {cx, cx + p, cx + p, cx};
                double py[4] = {cy, cy, cy + h - 1, cy + h - 1};
                qqpatfill(b, px, py, 4, r.pattern);
                qqsolid(b);
                rect_outline(b, cx, cy, cx + p, cy + h - 1);
            }
            qqflsh(b);
        }
    }
    qqflsh(b);
    b->crv.hsymbl = savhsym;
    set_width(b, savwid);
    qqcrvrestore(b, &save);

    for (int j = 0; j < L.k; ++j) {
        const Cell &cl = L.cell[j];
        if (g.clrflag) {
            const LegendRecord &r = record(g, cl.line);
            if (r.colour != -1) qqsetc(b, r.colour);
        }
        int cx = colx[cl.col] + p + L.d, cy = rowy[cl.row];
        each_text_line(b, g, cbuf, cl.line, [&](const char *txt, int n, int part) {
            if (n > 0) qqlegtext(b, txt, n, cx, cy + part * L.l);
        });
    }
    qqflsh(b);
    if (b->clr.curclr != save.colour) qqsetc(b, save.colour);
    if (reserved || qqshlauto(b, QQ_SHL_LEGE)) legend_shield(b, x, y, w, t);
    b->core.ynoflp = flip;
}

int qqlegbytes() noexcept {
    PlotBlock *b = qqpltblk(qqcur());
    if (!b || !b->leg.init) return 0;
    return b->leg.nlin * b->leg.nmaxln;
}
