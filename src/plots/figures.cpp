// Geometric figures: arcs, circles, ellipses, pie slices, ring sectors,
// rounded rectangles, filled points, wind barbs, the pen routines of plot
// positions, and their twins in user coordinates.
#include "plots/figures.h"

#include <cmath>

#include "axes/axes.h"
#include "core/family.h"
#include "core/guard.h"
#include "core/session.h"
#include "core/subsystems.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "plots/curves.h"
#include "plots/fill.h"
#include "plots/patterns.h"
#include "raster/image_mode.h"

namespace {

// A full turn as the library has always held it (single precision), which
// decides whether an arc is a whole one.
const double kTurn = 6.283185005187988;
enum { MAXSTEPS = 1000, ARCPTS = MAXSTEPS + 8, SECPTS = 800 };

// Folds an angle in degrees to 0 up to 360 before it turns to radians, so
// that a whole turn given in degrees becomes exactly 0.
double fold(double deg, double rad) {
    deg = std::fmod(deg, 360.0);
    return (deg < 0 ? deg + 360.0 : deg) * rad;
}

// Points of a rounded rectangle, a polygon of a sector.
void draw_open(PlotBlock *b, const double *x, const double *y, int n) {
    qqmove(b, x[0], y[0]);
    for (int i = 1; i < n; ++i) qqdraw(b, x[i], y[i]);
    qqflsh(b);
}

// The rectangle of rectan: upper left (x, y) before the page flip, w by h.
void rect_area(PlotBlock *b, int x, int y, int w, int h) {
    double x1 = x, x2 = (double)x + w - 1;
    double y1 = qqyflp(b, y), y2 = qqyflp(b, (double)y + h - 1);
    double px[4] = {x1, x1, x2, x2}, py[4] = {y1, y2, y2, y1};
    qqarea(b, px, py, 4);
}

}  // namespace

int qqarcsteps(PlotBlock *b, double a, double bb, double span) noexcept {
    double step = b->fig.crcstp > 0 ? b->fig.crcstp : 1.0;
    double v = std::trunc((a > bb ? a : bb) * span / step);
    if (!(v < 1001)) return MAXSTEPS;
    int n = (int)v;
    if (n <= 0) return 0;
    return n < 5 ? 5 : n;
}

void qqarcell(PlotBlock *b, double x, double y, double a, double bb, double alpha, double beta,
              double theta, bool dash, bool closed) noexcept {
    if (!(a >= 1)) {
        qqwarnd(b, 2, a);
        return;
    }
    if (!(bb >= 1)) {
        qqwarnd(b, 2, bb);
        return;
    }
    double t0 = fold(alpha, b->core.xdegr), t1 = fold(beta, b->core.xdegr);
    if (!(t0 < t1)) t1 += kTurn;
    double span = t1 - t0;
    int n = qqarcsteps(b, a, bb, span);
    if (n == 0) return;
    double px[ARCPTS], py[ARCPTS];
    double dt = span / n;
    bool round = a == bb || span > 6.28;
    int m = 0;
    for (int k = 0; k <= n && m < ARCPTS - 3; ++k) {
        double t = t0 + k * dt;
        if (t > t1) break;
        double c = std::cos(t), s = std::sin(t);
        double r = round ? 1.0 : 1.0 / std::sqrt(c * c / (a * a) + s * s / (bb * bb));
        px[m] = round ? a * c : r * c;
        py[m++] = round ? -bb * s : -r * s;
    }
    {
        double c = std::cos(t1), s = std::sin(t1);
        double r = round ? 1.0 : 1.0 / std::sqrt(c * c / (a * a) + s * s / (bb * bb));
        px[m] = round ? a * c : r * c;
        py[m++] = round ? -bb * s : -r * s;
    }
    if (span < 6.28 && (closed || b->sty.pattyp != 0)) {
        px[m] = 0;
        py[m++] = 0;
        px[m] = px[0];
        py[m++] = py[0];
    }
    if (std::fabs(theta) > 0.001) {
        // counter-clockwise on the page, whose y runs downward
        double c = std::cos(theta * b->core.xdegr), s = -std::sin(theta * b->core.xdegr);
        for (int i = 0; i < m; ++i) {
            double u = px[i] * c - py[i] * s;
            py[i] = px[i] * s + py[i] * c;
            px[i] = u;
        }
    }
    for (int i = 0; i < m; ++i) {
        px[i] += x;
        py[i] += y;
    }
    DeviceState &d = b->dev;
    int dshn = d.dshn, colour = b->clr.curclr;
    if (!dash) d.dshn = 1;
    if (b->sty.outline == 1) draw_open(b, px, py, m);
    if (b->sty.pattyp != 0) qqpfill(b, px, py, m);
    d.dshn = dshn;
    if (b->clr.curclr != colour) qqsetc(b, colour);
}

namespace {

void figure(PlotBlock *b, double x, double y, double a, double bb, double alpha, double beta,
            double theta, bool closed) {
    qqtprfig(b, 1);
    qqarcell(b, x, y, a, bb, alpha, beta, theta, true, closed);
    qqtprfig(b, 0);
}

// The ring sector, centre in plot coordinates after the page flip.
void ring_sector(PlotBlock *b, double x, double y, int r1, int r2, double alpha, double beta,
                 int colour) {
    if (r2 < 1) {
        qqwarn(b, 51, r2);
        return;
    }
    if (r1 < 0) {
        qqwarn(b, 1, r1);
        return;
    }
    if (beta - alpha < b->core.eps) {
        qqwar0(b, 8);
        return;
    }
    if (r2 < r1) {
        qqwar0(b, 7);
        return;
    }
    // a page description draws the ring itself, whatever its span
    if (qqhwsector(b, x, y, r1, r2, alpha, beta, colour & 255)) return;
    double end = beta - alpha > 360 ? alpha + 360 : beta;
    double px[SECPTS], py[SECPTS];
    int n = 0;
    double rad = b->core.xdegr;
    auto add = [&](double r, double t) {
        if (n >= SECPTS) return;
        px[n] = x + r * std::cos(t * rad);
        py[n++] = y - r * std::sin(t * rad);
    };
    for (double t = alpha; t < end; t += 1.0) add(r2, t);
    add(r2, end);
    if (r1 == 0) {
        if (n < SECPTS) {
            px[n] = x;
            py[n++] = y;
        }
    } else {
        for (double t = end; t > alpha; t -= 1.0) add(r1, t);
        add(r1, alpha);
    }
    int pat = b->sty.patnum, old = b->clr.curclr;
    qqshdpat(b, QQ_SOLID_PATTERN);
    qqsetc(b, colour);
    qqpfill(b, px, py, n);
    qqshdpat(b, pat);
    if (b->clr.curclr != old) qqsetc(b, old);
}

// Rounded rectangle with upper left corner (x, y) before the page flip.
void rounded(PlotBlock *b, int x, int y, int w, int h, int iopt) {
    if (w < 1 || w > 32000) return qqwarn(b, 2, w);
    if (h < 1 || h > 32000) return qqwarn(b, 2, h);
    if (iopt < 0 || iopt > 9) return qqwarn(b, 2, iopt);
    qqtprfig(b, 1);
    double r = (w < h ? w / 2 : h / 2) * iopt / 9.0;
    double half = b->core.xpi / 2;
    double step = b->fig.crcstp > 0 ? b->fig.crcstp : 1.0;
    double v = std::trunc(r * half / step);
    int n = v >= 401 ? 400 : (int)v;
    if (iopt == 0 || n < 4) {
        rect_area(b, x, y, w, h);
        qqtprfig(b, 0);
        return;
    }
    const double cx[4] = {x + r, x + w - 1 - r, x + w - 1 - r, x + r};
    const double cy[4] = {y + r, y + r, y + h - 1 - r, y + h - 1 - r};
    double px[4 * 401 + 2], py[4 * 401 + 2];
    int m = 0;
    for (int c = 0; c < 4; ++c) {
        // clockwise on the page: pi to pi/2, pi/2 to 0, and so on
        double t0 = b->core.xpi - c * half;
        for (int k = 0; k < n; ++k) {
            double t = t0 - k * half / n;
            px[m] = cx[c] + r * std::cos(t);
            py[m++] = qqyflp(b, cy[c] - r * std::sin(t));
        }
        double t = t0 - half;
        px[m] = cx[c] + r * std::cos(t);
        py[m++] = qqyflp(b, cy[c] - r * std::sin(t));
    }
    px[m] = px[0];
    py[m++] = py[0];
    qqarea(b, px, py, m);
    qqtprfig(b, 0);
}

void filled_point(PlotBlock *b, double x, double y, int w, int h, int colour) {
    if (w < 1) return qqwarn(b, 2, w);
    if (h < 1) return qqwarn(b, 2, h);
    int x1 = (int)std::trunc(x) - w / 2, y1 = (int)std::trunc(y) - h / 2;
    qqrectf(b, x1, y1, x1 + w - 1, y1 + h - 1, colour);
}

// The wind barb from (x, y), plot coordinates after the page flip.
void wind_barb(PlotBlock *b, double v, double x, double y, int l, double ang) {
    int hs = b->crv.hsymbl;
    if (std::trunc(v + 0.5) <= 0) {
        int pat = b->sty.patnum;
        qqshdpat(b, 0);
        qqsymb(b, 15, x, y);
        b->crv.hsymbl = hs - hs / 5;
        qqsymb(b, 15, x, y);
        b->crv.hsymbl = hs;
        qqshdpat(b, pat);
        return;
    }
    int s = l < 0 ? -1 : 1;
    double len = std::fabs((double)l);
    int hs3 = hs / 3;
    double a = ang * b->core.xdegr;
    double sa = std::sin(a), ca = std::cos(a);
    // the far end, and the directions toward the base and across the staff
    double fx = x + len * sa, fy = y - len * ca;
    auto at = [&](double u, double p, double *ox, double *oy) {
        *ox = fx - p * sa + u * ca;
        *oy = fy + p * ca + u * sa;
    };
    int p50 = (int)std::trunc(std::trunc(v + 2.5) / 50);
    double w = v - 50.0 * p50;
    int p10 = (int)std::trunc(std::trunc(w + 2.5) / 10);
    int p5 = (int)std::trunc(std::trunc(w - 10.0 * p10 + 2.5) / 5);
    qqline(b, x, y, fx, fy);
    int pat = b->sty.patnum, colour = b->clr.curclr;
    qqshdpat(b, QQ_SOLID_PATTERN);
    double p = 0;
    for (int i = 0; i < p50; ++i) {
        double tx[3], ty[3];
        at(0, p, &tx[0], &ty[0]);
        at(s * hs, p, &tx[1], &ty[1]);
        at(0, p + hs3, &tx[2], &ty[2]);
        qqarea(b, tx, ty, 3);
        p += hs / 3.0 + hs3 / 2;
    }
    if (p50 > 0) p += hs3 / 2;
    double x1, y1, x2, y2;
    for (int i = 0; i < p10; ++i) {
        at(0, p, &x1, &y1);
        at(s * hs, p - hs / 3.0, &x2, &y2);
        qqline(b, x1, y1, x2, y2);
        p += hs3;
    }
    if (p50 == 0 && p10 == 0 && p5 == 1) {
        at(0, hs / 2.0, &x1, &y1);
        at(s * hs / 2.0, 0, &x2, &y2);
        qqline(b, x1, y1, x2, y2);
    } else {
        for (int i = 0; i < p5; ++i) {
            at(0, p, &x1, &y1);
            at(s * hs / 2.0, p - hs / 6.0, &x2, &y2);
            qqline(b, x1, y1, x2, y2);
            p += hs3;
        }
    }
    qqshdpat(b, pat);
    if (b->clr.curclr != colour) qqsetc(b, colour);
}

// User coordinates of a figure: the tests of a curve, the centre rounded
// and the radii in plot units.
struct UserFig {
    double x, y;  // centre
    int a, bb;    // radii
};

int user_radius(PlotBlock *b, double x, double y, double cx, double cy, double r, bool along_x) {
    const ScaleRecord &rec = b->ax.rec;
    if (rec.type == 1) return (int)std::trunc(std::fabs(r * rec.xfac) + 0.5);
    double px, py;
    if (rec.type == 4) {
        double ox, oy;
        qqpos2(b, 0, 0, &ox, &oy);
        qqpos2(b, r, 0, &px, &py);
        return (int)std::trunc(std::hypot(px - ox, py - oy) + 0.5);
    }
    if (along_x)
        qqpos2(b, x + r, y, &px, &py);
    else
        qqpos2(b, x, y + r, &px, &py);
    return (int)std::trunc(std::hypot(px - cx, py - cy) + 0.5);
}

UserFig user_figure(PlotBlock *b, double x, double y, double a, double bb) {
    double ux[3] = {x, x + a, x}, uy[3] = {y, y, y + bb};
    qqchkd(b, ux, uy, 3);
    double cx, cy;
    qqpos2(b, x, y, &cx, &cy);
    UserFig f;
    f.a = user_radius(b, x, y, cx, cy, a, true);
    f.bb = user_radius(b, x, y, cx, cy, bb, false);
    f.x = std::trunc(cx + 0.5);
    f.y = std::trunc(cy + 0.5);
    return f;
}

void user_arc(PlotBlock *b, double x, double y, double a, double bb, double alpha, double beta,
              double theta, bool closed, bool same) {
    UserFig f = user_figure(b, x, y, a, bb);
    qqclip(b, 0);
    figure(b, f.x, f.y, f.a, same ? f.a : f.bb, alpha, beta, theta, closed);
    qqclip(b, 1);
}

void user_point(PlotBlock *b, double x, double y, double *px, double *py) {
    qqchkd(b, &x, &y, 1);
    qqpos2(b, x, y, px, py);
}

// The corners (x, y) and (x + w, y - h) of a user rectangle, tested as a
// curve's points and in plot coordinates.
void user_box(PlotBlock *b, double x, double y, double w, double h, double *x1, double *y1,
              double *x2, double *y2) {
    double ux[2] = {x, x + w}, uy[2] = {y, y - h};
    qqchkd(b, ux, uy, 2);
    qqpos2(b, x, y, x1, y1);
    qqpos2(b, x + w, y - h, x2, y2);
}

void figures_init(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    b->fig.crcstp = 10.0 / (b->core.unitf > 0 ? b->core.unitf : 1.0);
}

const ResetEntry kResets[] = {{"CIRC", figures_init}, {nullptr, nullptr}};

}  // namespace

extern const Subsystem kxsub_figures = {"figures", figures_init, figures_init,
                                        nullptr,   kResets,      nullptr};

void circsp(int nspc) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("circsp"));
    if (!b) return;
    if (nspc < 1 || nspc > 10000) return qqwarn(b, 2, nspc);
    b->fig.crcstp = nspc / (b->core.unitf > 0 ? b->core.unitf : 1.0);
}

void arcell(int nx, int ny, int na, int nb, double alpha, double beta, double theta) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("arcell"));
    if (b) figure(b, nx, qqyflp(b, ny), na, nb, alpha, beta, theta, false);
}

void circle(int nx, int ny, int nr) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("circle"));
    if (b) figure(b, nx, qqyflp(b, ny), nr, nr, 0, 360, 0, false);
}

void ellips(int nx, int ny, int na, int nb) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("ellips"));
    if (b) figure(b, nx, qqyflp(b, ny), na, nb, 0, 360, 0, false);
}

void pie(int nx, int ny, int nr, double alpha, double beta) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("pie"));
    if (b) figure(b, nx, qqyflp(b, ny), nr, nr, alpha, beta, 0, true);
}

void sector(int nx, int ny, int nr1, int nr2, double alpha, double beta, int ncol) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("sector"));
    if (b) ring_sector(b, nx, qqyflp(b, ny), nr1, nr2, alpha, beta, ncol);
}

void rndrec(int nx, int ny, int nw, int nh, int iopt) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rndrec"));
    if (b) rounded(b, nx, ny, nw, nh, iopt);
}

void point(int nx, int ny, int nb, int nh, int ncol) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("point"));
    if (b) filled_point(b, nx, qqyflp(b, ny), nb, nh, ncol);
}

void windbr(double xvel, int nx, int ny, int nw, double angle) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("windbr"));
    if (b) wind_barb(b, xvel, nx, qqyflp(b, ny), nw, angle);
}

void strtpt(double x, double y) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("strtpt"));
    if (b) qqmove(b, x, qqyflp(b, y));
}

void connpt(double x, double y) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("connpt"));
    if (b) qqdraw(b, x, qqyflp(b, y));
}

void circ3p(double x1, double y1, double x2, double y2, double x3, double y3, double *xm,
            double *ym, double *r) noexcept {
    CoreBlock *b = KX_ENTRY("circ3p");
    if (!b) return;
    double dx1 = x2 - x1, dy1 = y2 - y1, dx2 = x3 - x1, dy2 = y3 - y1;
    double d = dy2 * dx1 - dx2 * dy1;
    if (!(std::fabs(d) >= 1e-35)) return qqwar1(b, 102, "Points are collinear");
    double s1 = dx1 * dx1 + dy1 * dy1, s2 = dx2 * dx2 + dy2 * dy2;
    double cx = (s1 * dy2 - s2 * dy1) / (2 * d), cy = (s2 * dx1 - s1 * dx2) / (2 * d);
    *xm = x1 + cx;
    *ym = y1 + cy;
    *r = std::hypot(cx, cy);
}

void rlarc(double x, double y, double a, double bb, double alpha, double beta,
           double theta) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rlarc"));
    if (b) user_arc(b, x, y, a, bb, alpha, beta, theta, false, false);
}

void rlcirc(double x, double y, double r) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rlcirc"));
    if (b) user_arc(b, x, y, r, r, 0, 360, 0, false, true);
}

void rlell(double x, double y, double a, double bb) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rlell"));
    if (b) user_arc(b, x, y, a, bb, 0, 360, 0, false, false);
}

void rlpie(double x, double y, double r, double alpha, double beta) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rlpie"));
    if (b) user_arc(b, x, y, r, r, alpha, beta, 0, true, true);
}

void rlsec(double x, double y, double r1, double r2, double alpha, double beta, int ncol) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rlsec"));
    if (!b) return;
    UserFig f = user_figure(b, x, y, r2, r2);
    int in = 0;
    if (r1 > 0) {
        double cx, cy;
        qqpos2(b, x, y, &cx, &cy);
        in = user_radius(b, x, y, cx, cy, r1, true);
    } else if (r1 < 0) {
        in = -1;
    }
    qqclip(b, 0);
    ring_sector(b, f.x, f.y, in, f.a, alpha, beta, ncol);
    qqclip(b, 1);
}

void rlrec(double x, double y, double w, double h) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rlrec"));
    if (!b) return;
    double x1, y1, x2, y2;
    user_box(b, x, y, w, h, &x1, &y1, &x2, &y2);
    double px[4] = {x1, x1, x2, x2}, py[4] = {y1, y2, y2, y1};
    qqclip(b, 0);
    qqtprfig(b, 1);
    qqarea(b, px, py, 4);
    qqtprfig(b, 0);
    qqclip(b, 1);
}

void rlrnd(double x, double y, double w, double h, int iopt) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rlrnd"));
    if (!b) return;
    double x1, y1, x2, y2;
    user_box(b, x, y, w, h, &x1, &y1, &x2, &y2);
    // the page form measures from the top edge before the page flip
    int left = (int)std::trunc((x1 < x2 ? x1 : x2) + 0.5);
    int top = (int)std::trunc((y1 < y2 ? y1 : y2) + 0.5);
    int pw = (int)std::trunc(std::fabs(x2 - x1) + 0.5) + 1;
    int ph = (int)std::trunc(std::fabs(y2 - y1) + 0.5) + 1;
    unsigned char flip = b->core.ynoflp;
    b->core.ynoflp = 1;
    qqclip(b, 0);
    rounded(b, left, top, pw, ph, iopt);
    qqclip(b, 1);
    b->core.ynoflp = flip;
}

void rlpoin(double x, double y, int nw, int nh, int ncol) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rlpoin"));
    if (!b) return;
    double px, py;
    user_point(b, x, y, &px, &py);
    qqclip(b, 0);
    filled_point(b, std::trunc(px + 0.5), std::trunc(py + 0.5), nw, nh, ncol);
    qqclip(b, 1);
}

void rline(double x1, double y1, double x2, double y2) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rline"));
    if (!b) return;
    double ux[2] = {x1, x2}, uy[2] = {y1, y2};
    qqchkd(b, ux, uy, 2);
    double ax, ay, bx, by;
    qqpos2(b, x1, y1, &ax, &ay);
    qqpos2(b, x2, y2, &bx, &by);
    qqclip(b, 0);
    qqline(b, ax, ay, bx, by);
    qqclip(b, 1);
}

void rlwind(double xvel, double x, double y, int nw, double angle) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rlwind"));
    if (!b) return;
    double px, py;
    user_point(b, x, y, &px, &py);
    qqclip(b, 0);
    wind_barb(b, xvel, std::trunc(px + 0.5), std::trunc(py + 0.5), nw, angle);
    qqclip(b, 1);
}

void rlstrt(double x, double y) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rlstrt"));
    if (!b) return;
    user_point(b, x, y, &b->fig.penx, &b->fig.peny);
    qqmove(b, b->fig.penx, b->fig.peny);
}

void rlconn(double x, double y) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rlconn"));
    if (!b) return;
    double px, py;
    user_point(b, x, y, &px, &py);
    // Narrowing the clip window flushes the pen's polyline: the piece
    // starts again where the last call left the pen.
    qqclip(b, 0);
    qqmove(b, b->fig.penx, b->fig.peny);
    qqdraw(b, px, py);
    qqclip(b, 1);
    b->fig.penx = px;
    b->fig.peny = py;
}
