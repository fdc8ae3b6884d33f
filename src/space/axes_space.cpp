// The three axes of a 3-D axis system drawn in space, for the label modes
// HORI, PARA and OTHE: each axis is an edge of the box on the side of the
// eye, its ticks are short lines leaving the box, and labels and name are
// placed beside the projected ticks.  (Mode STAN draws 2-D axes on faces of
// the box instead; view.cpp.)
//
// Everything here is in plot coordinates after projection: tick lengths,
// label and name distances keep their page meaning whatever the view.
#include <cmath>

#include "axes/axes.h"
#include "axes/axis_draw.h"
#include "axes/label_text.h"
#include "devices/device.h"
#include "space/space.h"
#include "space/space_block.h"

namespace {

// An axis as an edge of the box: from the point of its first scaling value
// to the point of its last, and the direction in space that leaves the box.
struct SpaceAxis {
    int axis;
    double from[3], to[3], out[3];
};

void lerp3(const double *a, const double *e, double t, double *p) {
    for (int i = 0; i < 3; ++i) p[i] = a[i] + t * (e[i] - a[i]);
}

// The page direction of a short step along d from p: a unit vector of plot
// coordinates, or false when the step projects to (almost) nothing.
bool page_dir(SpaceBlock *b, const double p[3], const double d[3], double u[2]) {
    const SpaceState &s = b->sp;
    double h = 1e-3 * std::fmax(s.len[0], std::fmax(s.len[1], s.len[2]));
    double x0, y0, x1, y1;
    qqabs2plot(b, p[0], p[1], p[2], &x0, &y0, nullptr);
    qqabs2plot(b, p[0] + h * d[0], p[1] + h * d[1], p[2] + h * d[2], &x1, &y1, nullptr);
    double dx = x1 - x0, dy = y1 - y0, l = std::hypot(dx, dy);
    if (!(l > 1e-9) || !std::isfinite(l)) return false;
    u[0] = dx / l;
    u[1] = dy / l;
    return true;
}

// The edges: X and Y along the bottom of the box on the eye's side of it,
// Z up the corner that appears leftmost on the page.
void choose_edges(const SpaceState &s, SpaceAxis ax[3]) {
    double hx = s.len[0] / 2, hy = s.len[1] / 2, hz = s.len[2] / 2;
    double sx = s.ex >= 0 ? 1 : -1, sy = s.ey >= 0 ? 1 : -1;
    SpaceAxis x = {0, {-hx, sy * hy, -hz}, {hx, sy * hy, -hz}, {0, sy, 0}};
    SpaceAxis y = {1, {sx * hx, -hy, -hz}, {sx * hx, hy, -hz}, {sx, 0, 0}};
    // The page's rightward direction is about (-ey, ex) in x, y: the corner
    // with the least of it stands at the left.
    double zx = s.ey >= 0 ? 1 : -1, zy = s.ex >= 0 ? -1 : 1;
    const double r = std::sqrt(0.5);
    SpaceAxis z = {2, {zx * hx, zy * hy, -hz}, {zx * hx, zy * hy, hz}, {zx * r, zy * r, 0}};
    ax[0] = x;
    ax[1] = y;
    ax[2] = z;
}

// Text angle in whole degrees, counter-clockwise, turned into -90 .. 90 so
// that no text reads upside down.
int upright(double deg) {
    while (deg > 90.5) deg -= 180;
    while (deg <= -89.5) deg += 180;
    return (int)std::lround(deg);
}

// Writes text so that its box touches the point (ax, ay) from the side
// that the unit direction d points to; returns the depth of the box along
// d (the extent that the next element must clear).
double place_text(SpaceBlock *b, const char *t, double ax, double ay, const double d[2], int angle,
                  int h) {
    double w = qqaxtw(b, t);
    double th = angle * 3.14159265358979323846 / 180;
    double e1[2] = {std::cos(th), -std::sin(th)};  // along the text, y downward
    double dn[2] = {std::sin(th), std::cos(th)};   // from its top to its bottom
    double half = std::fabs(d[0] * e1[0] + d[1] * e1[1]) * w / 2 +
                  std::fabs(d[0] * dn[0] + d[1] * dn[1]) * h / 2;
    double cx = ax + d[0] * half, cy = ay + d[1] * half;
    double x = cx - e1[0] * w / 2 - dn[0] * h / 2, y = cy - e1[1] * w / 2 - dn[1] * h / 2;
    qqaxtxt(b, t, x, y, angle);
    return 2 * half;
}

struct AxisPlan {
    SpaceAxis e;
    AxisCall c;
    double page_angle;  // of the projected axis, degrees counter-clockwise
    double drop;        // box coordinate along the axis whose label is dropped, or NAN
};

// The point of scaling value v on the axis.
void value_point(const AxisPlan &a, double v, double p[3]) {
    double t = (v - a.c.a) / (a.c.e - a.c.a);
    lerp3(a.e.from, a.e.to, t, p);
}

void draw_ticks(SpaceBlock *b, const AxisPlan &a) {
    const AxesState &ax = b->ax;
    const AxisCall &c = a.c;
    int n = ax.ntic[c.axis];
    if (n < 1) return;
    double step = c.step;
    bool logminor = qqlogminor(b, c, &n, &step);
    double ds = step / n;
    double lo = (c.orl - c.a) / ds + 1e-4, hi = (c.e - c.orl) / ds + 1e-4;
    if (!std::isfinite(lo) || !std::isfinite(hi) || std::fabs(lo) + std::fabs(hi) > 10000) return;
    long i0 = -(long)std::trunc(lo), i1 = (long)std::trunc(hi);
    int tp = ax.ticpos[c.axis];
    int saved = qqaxclron(b, ax.axclr[c.axis][1]);
    auto tick = [&](double v, int len) {
        double p[3], u[2], x, y;
        value_point(a, v, p);
        if (!page_dir(b, p, a.e.out, u)) return;
        qqabs2plot(b, p[0], p[1], p[2], &x, &y, nullptr);
        double t0 = tp == 2 ? -(len / 2) : 0, t1 = tp == 2 ? len - len / 2 : tp == 1 ? -len : len;
        qqline(b, x + u[0] * t0, y + u[1] * t0, x + u[0] * t1, y + u[1] * t1);
    };
    for (long i = i0; i <= i1; ++i) tick(c.orl + i * ds, i % n == 0 ? ax.ticmaj : ax.ticmin);
    if (logminor) qqlogminorticks(c, [&](double v) { tick(v, ax.ticmin); });
    qqaxclroff(b, ax.axclr[c.axis][1], saved);
}

// The labels; returns their greatest depth away from the axis.
double draw_labels(SpaceBlock *b, const AxisPlan &a, double gap) {
    AxesState &ax = b->ax;
    const AxisCall &c = a.c;
    const SpaceState &s = b->sp;
    int first, last, inc;
    if (ax.lab[c.axis] == 0 || !qqlabplan(b, c, &first, &last, &inc)) return 0;
    AxMixSave mix;
    int mixed = qqlabmix(b, c, &mix);
    int savdig = ax.ndig[c.axis];
    if (ax.autdig[c.axis] && !ax.autscl[c.axis]) ax.ndig[c.axis] = qqaxdig(c.orl, c.step);
    int mode = s.labmode;
    int angle = mode == 1 ? 0 : upright(mode == 2 ? a.page_angle : a.page_angle + 90);
    int h = qqaxth(b);
    int saved = qqaxclron(b, ax.axclr[c.axis][2]);
    double depth = 0;
    char t[QQ_LABLEN + 1];
    for (int i = first; i <= last; i += inc) {
        double v = qqlabval(b, c, i);
        qqlabtxt(b, v, i + 1, c.logax, c.axis, t);
        if (!t[0]) continue;
        if (ax.labpos[c.axis] == 1) v += c.step / 2;
        double p[3], u[2], x, y;
        value_point(a, v, p);
        if (std::isfinite(a.drop) && std::fabs(p[c.axis] - a.drop) < 1e-9 * s.len[c.axis]) continue;
        if (!page_dir(b, p, a.e.out, u)) continue;
        qqabs2plot(b, p[0], p[1], p[2], &x, &y, nullptr);
        double d = place_text(b, t, x + u[0] * gap, y + u[1] * gap, u, angle, h);
        if (d > depth) depth = d;
    }
    qqaxclroff(b, ax.axclr[c.axis][2], saved);
    ax.ndig[c.axis] = savdig;
    if (mixed) qqaxmixend(b, &mix);
    return depth;
}

void draw_name(SpaceBlock *b, const AxisPlan &a, double gap) {
    const AxesState &ax = b->ax;
    const char *nm = ax.name[a.c.axis];
    if (!nm[0]) return;
    double p[3], u[2], x, y;
    lerp3(a.e.from, a.e.to, 0.5, p);
    if (!page_dir(b, p, a.e.out, u)) return;
    qqabs2plot(b, p[0], p[1], p[2], &x, &y, nullptr);
    int savh = qqaxsth(b, ax.hname);
    int saved = qqaxclron(b, ax.axclr[a.c.axis][3]);
    place_text(b, nm, x + u[0] * gap, y + u[1] * gap, u, upright(a.page_angle), qqaxth(b));
    qqaxclroff(b, ax.axclr[a.c.axis][3], saved);
    qqaxsth(b, savh);
}

}  // namespace

void qqspaxes(SpaceBlock *b) noexcept {
    SpaceState &s = b->sp;
    const AxesState &ax = b->ax;
    SpaceAxis edges[3];
    choose_edges(s, edges);
    for (int k = 0; k < 3; ++k) {
        AxisPlan a{};
        a.e = edges[k];
        AxisCall &c = a.c;
        c.axis = k;
        c.a = s.a[k];
        c.e = s.e[k];
        c.orl = s.orl[k];
        c.step = s.stp[k];
        c.logax = s.logax[k];
        c.level = 4;
        if (!(c.e != c.a) || !std::isfinite(c.e - c.a)) continue;
        double x0, y0, x1, y1;
        qqabs2plot(b, a.e.from[0], a.e.from[1], a.e.from[2], &x0, &y0, nullptr);
        qqabs2plot(b, a.e.to[0], a.e.to[1], a.e.to[2], &x1, &y1, nullptr);
        a.page_angle = std::atan2(-(y1 - y0), x1 - x0) * 180 / 3.14159265358979323846;
        // With the first-label rule, a label at a corner that two axes
        // share is written once: Z gives up its lowest, Y the one at X.
        a.drop = NAN;
        if (s.flab && k == 2) a.drop = -s.len[2] / 2;
        if (s.flab && k == 1) a.drop = edges[0].from[1];
        if (!ax.noline[k]) {
            int saved = qqaxclron(b, ax.axclr[k][0]);
            qqline(b, x0, y0, x1, y1);
            qqaxclroff(b, ax.axclr[k][0], saved);
        }
        draw_ticks(b, a);
        int tp = ax.ticpos[k];
        double gap = ax.ntic[k] >= 1 ? (tp == 0 ? ax.ticmaj : tp == 2 ? ax.ticmaj / 2 : 0) : 0;
        double depth = 0;
        if (ax.lab[k] != 0) {
            gap += ax.labdis[k];
            depth = draw_labels(b, a, gap);
        }
        draw_name(b, a, gap + depth + ax.namdis[k]);
    }
    qqflsh(b);
}
