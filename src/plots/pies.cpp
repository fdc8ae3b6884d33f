// piegrf: a pie chart in one call, in two or three dimensions, with label
// boxes, leader lines, legend records and the pie's shield.
//
// The pie sets up its own axis system (graf without axes) and draws with
// the page flip off, so that all positions below are plot coordinates with
// y downward.  Angles are degrees counter-clockwise from three o'clock.
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "axes/axes.h"
#include "core/guard.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "plots/curve_draw.h"
#include "plots/curves.h"
#include "plots/figures.h"
#include "plots/fill.h"
#include "plots/patterns.h"
#include "plots/plot_block.h"
#include "plots/shields.h"
#include "text/numbers.h"
#include "text/text.h"

namespace {

enum { MAXLINES = 16, LINELEN = 300, RIMSTEPS = 900 };

struct Pie {
    int r, cx, cy;
    double expl;  // explode distance
    int d1, d2;   // leader length and hook
    bool d3;
    int a, bb, rimh;  // 3-D semi-axes and rim height
    int h, f;         // character height, frame thickness
    double s;         // line spacing
    int widest;       // ALIG: widest box
};

struct Label {
    char line[MAXLINES][LINELEN];
    int n;
    int tw, th;
};

double deg(PlotBlock *b) {
    return b->core.xdegr;
}

// One number line of a label box.
void number_line(PlotBlock *b, double v, int ndig, bool percent, bool blanks, char *out) {
    const PieState &p = b->pie;
    char num[64];
    int nd = ndig == -2 ? qqautodig(v) : ndig;
    qqnumtxt(b, v, nd, num, sizeof num);
    out[0] = '\0';
    if (p.labl[0]) std::strcat(out, blanks ? " " : p.labl), std::strcat(out, blanks ? "" : " ");
    std::strcat(out, num);
    std::strcat(out, percent ? " %" : " ");
    if (p.labr[0]) std::strcat(out, blanks ? " " : p.labr);
}

// The lines of the box of segment i (1 based): buffer lines that are not
// empty, then the numbers.
void make_label(PlotBlock *b, const Pie &g, const char *cbuf, int nlin, int i, double v, double pct,
                Label &L) {
    L.n = 0;
    const LegendState &lg = b->leg;
    if (cbuf && nlin > 0 && lg.nmaxln > 0) {
        for (int k = (i - 1) * nlin + 1; k <= i * nlin && L.n < MAXLINES - 2; ++k) {
            if (k > lg.nlin) break;
            const char *t = cbuf + (size_t)(k - 1) * lg.nmaxln;
            int len = lg.nmaxln < LINELEN - 1 ? lg.nmaxln : LINELEN - 1;
            while (len > 0 && (t[len - 1] == ' ' || t[len - 1] == '\0')) --len;
            if (len == 0) continue;
            std::memcpy(L.line[L.n], t, len);
            L.line[L.n++][len] = '\0';
        }
    }
    int kind = b->ax.xlab[1];
    if (kind == 2 || kind == 3) number_line(b, v, b->ax.xdig[3], false, false, L.line[L.n++]);
    if (kind == 1 || kind == 3) number_line(b, pct, b->ax.xdig[2], true, kind == 3, L.line[L.n++]);
    int wide = 0;
    for (int k = 0; k < L.n; ++k) {
        int w = qqtxtlen(b, L.line[k]);
        if (w > wide) wide = w;
    }
    L.th = qqnint((L.n - 0.5) * g.h * g.s + g.h + 2 * g.f);
    L.tw = qqnint(g.h * g.s / 2 + wide + 2 * g.f);
}

// Writes the lines of a box at its upper left corner.
void write_label(PlotBlock *b, const Pie &g, const Label &L, int x, int y, bool left_half) {
    int colour = b->clr.curclr;
    if (b->ax.labclr[1] != -1) qqsetc(b, b->ax.labclr[1]);
    int inset = (int)(g.f + g.h * g.s / 4);
    int just = b->ax.xori[0];  // 0 CENT 1 LEFT 2 RIGH 3 TYPS 4 OUTW 5 INWA
    if (just == 4) just = left_half ? 1 : 2;
    if (just == 5) just = left_half ? 2 : 1;
    int ly = y + inset;
    for (int k = 0; k < L.n; ++k) {
        int w = qqtxtlen(b, L.line[k]);
        int lx = just == 1 ? x + inset : just == 2 ? x + L.tw - inset - w : x + (L.tw - w) / 2;
        qqmessag(b, L.line[k], lx, ly);
        ly += (int)(g.h * g.s);
    }
    if (b->clr.curclr != colour) qqsetc(b, colour);
}

// The front of the rim between the angles lo and hi (degrees, lo < hi),
// as a strip of the arc and the arc moved down by the rim height.
void rim_strip(PlotBlock *b, const Pie &g, double x, double y, double lo, double hi) {
    double span = (hi - lo) * deg(b);
    int n = qqarcsteps(b, g.a, g.bb, span);
    if (n > RIMSTEPS) n = RIMSTEPS;
    if (n < 5) n = 5;
    double px[2 * RIMSTEPS + 4], py[2 * RIMSTEPS + 4];
    int m = 0;
    for (int pass = 0; pass < 2; ++pass)
        for (int k = 0; k <= n; ++k) {
            double t = (pass == 0 ? lo + (hi - lo) * k / n : hi - (hi - lo) * k / n) * deg(b);
            double c = std::cos(t), s = std::sin(t);
            double r = 1.0 / std::sqrt(c * c / ((double)g.a * g.a) + s * s / ((double)g.bb * g.bb));
            px[m] = x + r * c;
            py[m++] = y - r * s + (pass == 1 ? g.rimh : 0);
        }
    px[m] = px[0];
    py[m++] = py[0];
    qqarea(b, px, py, m);
}

// A radial wall of an exploded 3-D segment at angle t (degrees).
void wall(PlotBlock *b, const Pie &g, double x, double y, double t) {
    double c = std::cos(t * deg(b)), s = std::sin(t * deg(b));
    double r = 1.0 / std::sqrt(c * c / ((double)g.a * g.a) + s * s / ((double)g.bb * g.bb));
    double px[5] = {x, x + r * c, x + r * c, x, x};
    double py[5] = {y, y - r * s, y - r * s + g.rimh, y + g.rimh, y};
    qqarea(b, px, py, 5);
}

// Rim and walls of one 3-D segment from s0 to s1 (s1 may pass 360).
void rim_and_walls(PlotBlock *b, const Pie &g, double x, double y, double s0, double s1, bool full,
                   bool exploded) {
    if (full) {
        rim_strip(b, g, x, y, 180, 360);
    } else {
        for (double k = 0; k <= 360; k += 360) {
            double lo = s0 > 180 + k ? s0 : 180 + k, hi = s1 < 360 + k ? s1 : 360 + k;
            if (hi - lo > b->core.eps) rim_strip(b, g, x, y, lo, hi);
        }
    }
    if (!exploded || full) return;
    double a0 = std::fmod(s0, 360.0), a1 = std::fmod(s1, 360.0);
    if ((a0 >= 0 && a0 <= 90) || (a0 >= 270 && a0 <= 360)) wall(b, g, x, y, a0);
    if (a1 >= 90 && a1 <= 270) wall(b, g, x, y, a1);
}

// Angles of the segments of a 3-D pie, true in area: ends, starts.
void area_angles(PlotBlock *b, const Pie &g, const double *xray, int n, double sum, double *st,
                 double *en) {
    double a = g.a, bb = g.bb;
    double A = b->core.xpi * a * bb, T = 0;
    for (int i = 0; i < n; ++i) {
        double part = std::fabs(xray[i]) * A / sum;
        T += i == 0 ? part / 2 : part;
        double t = 2 * T / (a * bb);
        double tp = std::acos(std::cos(t));
        double ang = std::atan2(bb * std::sin(tp), a * std::cos(tp)) / deg(b);
        if (ang < 0) ang += 360;
        if (T > A / 2) ang = 360 - ang;
        en[i] = ang;
        st[i] = i == 0 ? 360 - ang : en[i - 1];
    }
}

void shell_sort(const double *key, int *order, int n) {
    for (int gap = n / 2; gap > 0; gap /= 2)
        for (int i = gap; i < n; ++i)
            for (int j = i - gap; j >= 0 && key[order[j]] > key[order[j + gap]]; j -= gap) {
                int t = order[j];
                order[j] = order[j + gap];
                order[j + gap] = t;
            }
}

void draw_pie(PlotBlock *b, const char *cbuf, int nlin, const double *xray, int n, double sum) {
    PieState &p = b->pie;
    const ScaleRecord &rec = b->ax.rec;
    Pie g{};
    int w = rec.nxl, hgt = rec.nyl;
    g.r = (w < hgt ? w : hgt) / 2;
    g.cx = rec.nxa + w / 2;
    g.cy = rec.nya - hgt / 2;
    g.expl = g.r * 8 / 100.0;
    g.d1 = (int)std::trunc(80 * p.dist[0] + 0.5);
    g.d2 = (int)std::trunc(80 * p.dist[1] + 0.5);
    g.d3 = p.form == 1;
    g.h = b->txt.height;
    g.s = b->txt.linsp;
    g.f = b->ax.frmthk;
    g.a = g.r;
    double v = p.view, wv = v > 45 ? 90 - v : v;
    g.bb = g.d3 ? (int)std::trunc((std::sqrt(v / 90) + wv / 500) * g.r) : g.r;
    g.rimh = g.d3 ? (int)std::trunc(g.r * p.hfac) : 0;

    // Work arrays: starts, ends, middles and the draw order.
    double *st = (double *)std::malloc(sizeof(double) * 3 * (size_t)n);
    int *order = (int *)std::malloc(sizeof(int) * (size_t)n);
    if (!st || !order) {
        std::free(st);
        std::free(order);
        qqwar0(b, 53);
        return;
    }
    double *en = st + n, *mid = en + n;
    for (int i = 0; i < n; ++i) order[i] = i;
    if (g.d3) {
        area_angles(b, g, xray, n, sum, st, en);
        // the first segment straddles 0 degrees: its middle is 0, not 180
        for (int i = 0; i < n; ++i) mid[i] = i == 0 ? 0.0 : (st[i] + en[i]) / 2;
        shell_sort(mid, order, n);
    } else {
        double a0 = 360 - std::fabs(xray[0]) * 360 / (2 * sum) + p.rot;
        for (int i = 0; i < n; ++i) {
            st[i] = a0;
            double e = a0 + std::fabs(xray[i]) * 360 / sum;
            if (e > 360) e -= 360;
            en[i] = e;
            a0 = e;
        }
    }
    int kind = b->ax.xlab[1], place = b->ax.xpos[1];
    Label L;
    g.widest = 0;
    if (place == 2 && (kind != 0 || nlin > 0))
        for (int i = 0; i < n; ++i) {
            make_label(b, g, cbuf, nlin, i + 1, std::fabs(xray[i]), std::fabs(xray[i]) * 100 / sum,
                       L);
            if (L.tw > g.widest) g.widest = L.tw;
        }

    int colour0 = b->clr.curclr, pattern0 = qqgetpattern(b);
    int outline0 = b->sty.outline;
    int shlkind = b->shl.kind;
    for (int k = 0; k < n; ++k) {
        int i = order[k] + 1;
        int c = (i - 1) % 30 + 1;
        double val = std::fabs(xray[i - 1]), pct = val * 100 / sum;
        // colour and pattern of the segment
        int colour = colour0;
        if (p.chn == 1 || p.chn == 3)
            colour = b->clr.clrcycl[c - 1];
        else if (p.nclr > 0 && p.top[c - 1] != -1)
            colour = p.top[c - 1];
        qqsetc(b, colour);
        int pattern = (p.chn == 2 || p.chn == 3) ? qqpatcycle(b, c) : pattern0;
        qqsetpattern(b, pattern);
        double s0 = st[i - 1], span;
        if (g.d3)
            span = i == 1 ? 2 * en[0] : en[i - 1] - s0;
        else
            span = val * 360 / sum;
        bool full = n == 1 || span > 359.999;
        double h = span / 2, m = s0 + h;
        int radius = g.r;
        int offset = (p.expl || xray[i - 1] < 0) ? qqnint(g.expl) : 0;
        int shx = 0, shy = 0, drawfl = 1, labfl = 1;
        if (p.cbk) p.cbk(i, val, pct, &radius, &offset, &m, &shx, &shy, &drawfl, &labfl);
        qqlegrecord(b, c, qqgetpattern(b), qqarealine(b), false);
        m = std::fmod(m, 360.0);
        if (m < 0) m += 360;
        double mr = m * deg(b), cm = std::cos(mr), sm = std::sin(mr);
        double sa = g.d3 ? g.a : radius, sb = g.d3 ? g.bb : radius;
        double polar = g.d3 ? 1.0 / std::sqrt(cm * cm / (sa * sa) + sm * sm / (sb * sb)) : radius;
        double R = polar + p.gap * p.dist[0];
        int ox = (int)std::trunc(cm * offset), oy = (int)std::trunc(-sm * offset);
        double x0 = g.cx + ox, y0 = g.cy + oy;
        // the label box
        int shield_id = 0;
        if (labfl == 1 && (kind != 0 || nlin > 0)) {
            make_label(b, g, cbuf, nlin, i, val, pct, L);
            if (L.n > 0) {
                bool inside = false;
                double ri = 0;
                if (place == 0) {
                    if (std::fabs(h - 180) <= b->core.eps)
                        ri = polar;
                    else if (h >= 90)
                        ri = polar / 2;
                    else {
                        double q = std::fabs(polar / std::cos(h * deg(b)));
                        double base = std::fabs(2 * q * std::sin(h * deg(b)));
                        double u = (2 * q + base) / 2;
                        ri = std::sqrt((u - base) * (u - q) * (u - q) / u);
                    }
                    inside = 2 * ri >= std::sqrt((double)L.tw * L.tw + (double)L.th * L.th);
                }
                bool left = m > 90 && m <= 270;
                int bx, by;
                if (inside) {
                    double d = polar - ri;
                    bx = (int)std::trunc(x0 + d * cm - L.tw / 2.0) + shx;
                    by = (int)std::trunc(y0 - d * sm - L.th / 2.0) + shy;
                    if (g.f >= 1)
                        qqrectf(b, bx + g.f, by + g.f, bx + L.tw - 1 - g.f, by + L.th - 1 - g.f,
                                b->clr.bckclr);
                    write_label(b, g, L, bx, by, left);
                    double sv[4] = {(double)bx, (double)by, (double)bx + L.tw - 1,
                                    (double)by + L.th - 1};
                    shield_id = qqshladd(b, 1, sv, 4);
                } else {
                    if (place == 2) L.tw = g.widest;
                    double Px = x0 + (R + g.d1) * cm, Py = y0 - (R + g.d1) * sm;
                    double Cx = x0 + R * cm, Cy = y0 - R * sm;
                    if (g.d3 && m > 180 + b->core.eps && m < 360 - b->core.eps) {
                        double down = (m < 185 || m > 355) ? g.rimh / 2.0 : g.rimh;
                        Py += down;
                        Cy += down;
                    }
                    double near =
                        std::fmin(std::fmin(std::fabs(m), std::fabs(m - 180)), std::fabs(m - 360));
                    double hk = near <= 10 ? g.d2 / 2.0 : near <= 30 ? 2.0 * g.d2 / 3 : g.d2;
                    double fx;
                    if (place == 2)
                        fx = left ? x0 - g.d2 / 2 - g.r - g.d1 - L.tw : x0 + g.r + g.d1 + g.d2 / 2;
                    else
                        fx = left ? Px - hk - L.tw : Px + hk;
                    bx = (int)std::trunc(fx) + shx;
                    by = (int)std::trunc(Py - L.th / 2.0) + shy;
                    write_label(b, g, L, bx, by, left);
                    if (g.f != 0) qqframe(b, bx, by, L.tw, L.th, g.f, 0, -1);
                    double ex = left ? bx + L.tw - 1 : bx, ey = by + L.th / 2.0;
                    if (p.leader == 0) {
                        if (b->fig.arrow)
                            b->fig.arrow(b, Px, Py, Cx, Cy, p.arrow);
                        else
                            qqline(b, Px, Py, Cx, Cy);
                        qqline(b, ex, ey, Px, Py);
                    } else if (p.leader == 1) {
                        if (b->fig.arrow)
                            b->fig.arrow(b, ex, ey, Cx, Cy, p.arrow);
                        else
                            qqline(b, ex, ey, Cx, Cy);
                    }
                }
            }
        }
        // the sector
        bool border = g.d3 || p.border != -1;
        bool draw = drawfl == 1 && (span > 0.1 || full);
        double s1 = s0 + span;
        if (draw) {
            b->sty.outline = border ? 0 : outline0;
            qqarcell(b, x0, y0, sa, sb, s0, full ? s0 : s1, 0, true, true);
            b->sty.outline = outline0;
        }
        if (shield_id) qqshldelid(b, shield_id, b->shl.kind);
        if (draw && g.d3) {
            int rim = p.nclr > 0 && p.rim[c - 1] != -1 ? p.rim[c - 1] : -1;
            if (rim != -1) qqsetc(b, rim);
            b->sty.outline = 0;
            rim_and_walls(b, g, x0, y0, s0, s1, full, offset != 0);
            b->sty.outline = outline0;
            if (rim != -1) qqsetc(b, colour);
        }
        if (draw && border) {
            qqsetc(b, p.border == -1 ? b->clr.forclr : p.border);
            b->sty.outline = 1;
            qqsetpattern(b, 0);
            qqarcell(b, x0, y0, sa, sb, s0, full ? s0 : s1, 0, true, true);
            if (g.d3) rim_and_walls(b, g, x0, y0, s0, s1, full, offset != 0);
            b->sty.outline = outline0;
            qqsetpattern(b, pattern);
            qqsetc(b, colour);
        }
        if (draw && qqshlauto(b, QQ_SHL_PIE)) {
            if (full) {
                double sv[3] = {x0, y0, (double)sa};
                qqshlautoadd(b, QQ_SHL_PIE, 3, sv, 3);
            } else {
                double sv[5] = {x0, y0, (double)sa, s0 * deg(b), s1 * deg(b)};
                qqshlautoadd(b, QQ_SHL_PIE, 5, sv, 5);
            }
        }
    }
    b->shl.kind = shlkind;
    qqsetpattern(b, pattern0);
    qqsetc(b, colour0);
    std::free(st);
    std::free(order);
}

}  // namespace

void piegrf(const char *cbuf, int nlin, const double *xray, int n) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("piegrf"));
    if (!b) return;
    b->crv.shdarea = 1;  // the legend shows the segments as areas
    if (n < 1) return qqwarn(b, 2, n);
    double sum = 0;
    for (int i = 0; i < n; ++i) sum += std::fabs(xray[i]);
    if (!(sum > b->core.eps)) return qqwar0(b, 29);
    int nogrf = b->ax.nogrf;
    b->ax.nogrf = 1;
    int refused = qqgraf(b, 0, 5, 0, 1, 0, 5, 0, 1);
    b->ax.nogrf = nogrf;
    if (refused) return;
    unsigned char flip = b->core.ynoflp;
    b->core.ynoflp = 1;
    draw_pie(b, cbuf, nlin < 0 ? 0 : nlin, xray, n, sum);
    b->core.ynoflp = flip;
}
