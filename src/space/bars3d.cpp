// bars3d: bars as boxes in a 3-D axis system.  Each bar sends the three
// faces that the eye can see to the triangle path, through the depth
// buffer (or the z-buffer when one is open), so that bars hide each other
// in painter's order whatever the order of the call.
#include <cmath>

#include "colour/colour.h"
#include "core/guard.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "plots/curves.h"
#include "plots/patterns.h"
#include "space/space.h"
#include "space/space_block.h"

namespace {

// A value of an axis in its scaling domain (the exponent on a log axis)
// to absolute coordinates.
double abs_of(const SpaceState &s, int i, double u) {
    double d = s.e[i] - s.a[i];
    if (d == 0) return 0;
    return (u - s.a[i]) * s.len[i] / d - s.len[i] / 2;
}

double domain(const SpaceState &s, int i, double v) {
    return s.logax[i] ? std::log10(v) : v;
}

double cut(const SpaceState &s, int i, double u) {
    double lo = std::fmin(s.a[i], s.e[i]), hi = std::fmax(s.a[i], s.e[i]);
    return u < lo ? lo : u > hi ? hi : u;
}

void face(SpaceBlock *b, const double (*p)[3], int clr) {
    double x[4], y[4], z[4], r[4], g[4], bl[4];
    int ir, ig, ib;
    qqclrrgb(b, clr, &ir, &ig, &ib);
    for (int k = 0; k < 4; ++k) {
        x[k] = p[k][0], y[k] = p[k][1], z[k] = p[k][2];
        r[k] = ir / 255.0, g[k] = ig / 255.0, bl[k] = ib / 255.0;
    }
    qqtri3(b, x, y, z, 4, r, g, bl, clr);
}

}  // namespace

void bars3d(const double *xray, const double *yray, const double *z1ray, const double *z2ray,
            const double *xwray, const double *ywray, const int *icray, int n) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("bars3d"));
    if (!b) return;
    SpaceState &s = b->sp;
    if (!s.open) {
        qqwar0(b, 35);
        return;
    }
    if (n < 1) {
        qqwarn(b, 2, n);
        return;
    }
    qqchk3(b, xray, yray, z1ray, n);
    qqchk3(b, xray, yray, z2ray, n);
    const int current = b->clr.curclr;
    // One legend record for each colour, at its first occurrence.  The
    // legend holds at most QQ_NLEG entries: the search ends with them.
    CurveState &cs = b->crv;
    int seen[QQ_NLEG], nseen = 0;
    // -1 stands for the current colour, so both count as one colour.
    for (int i = 0; i < n && nseen < QQ_NLEG; ++i) {
        int clr = icray[i] == -1 ? current : icray[i];
        bool known = false;
        for (int j = 0; j < nseen && !known; ++j) known = seen[j] == clr;
        if (known) continue;
        seen[nseen++] = clr;
        if (clr != b->clr.curclr) qqsetc(b, clr);
        qqlegrecord(b, cs.ncrv, QQ_SOLID_PATTERN, false, false);
        cs.ncrv++;
        cs.legpend = 1;
    }
    if (b->clr.curclr != current) qqsetc(b, current);
    // Faces go through the depth buffer unless a buffer already sorts them.
    bool own = !s.dopen && !qqzpix(b);
    if (own && qqdbfopen(b, 3LL * n)) return;
    const int pattern = qqgetpat(b);
    qqshdpat(b, QQ_SOLID_PATTERN);
    int edge = b->bar.border;
    if (edge == -1) {
        qqcolorfore(b);
        edge = b->clr.curclr;
        if (edge != current) qqsetc(b, current);
    }
    const int mesh = s.mesh, curmesh = s.curmesh, code = s.edgecode;
    s.mesh = 1;
    s.curmesh = edge;
    s.edgecode = 0;
    // The faces that the eye sees: toward its side of the box in X and Y,
    // the top or, from below, the base.
    const bool xhigh = s.ex >= 0, yhigh = s.ey >= 0, top = s.ez >= 0;
    for (int i = 0; i < n; ++i) {
        double x = xray[i], y = yray[i];
        if (!(x >= s.umin[0] && x <= s.umax[0] && y >= s.umin[1] && y <= s.umax[1])) break;
        if (!std::isfinite(z1ray[i]) || !std::isfinite(z2ray[i]) || !std::isfinite(xwray[i]) ||
            !std::isfinite(ywray[i]))
            continue;
        double hx = std::fabs(xwray[i] / 2), hy = std::fabs(ywray[i] / 2);
        double ux = domain(s, 0, x), uy = domain(s, 1, y);
        if (!std::isfinite(ux) || !std::isfinite(uy)) continue;
        double xa = abs_of(s, 0, cut(s, 0, ux - hx)), xb = abs_of(s, 0, cut(s, 0, ux + hx));
        double ya = abs_of(s, 1, cut(s, 1, uy - hy)), yb = abs_of(s, 1, cut(s, 1, uy + hy));
        double za = abs_of(s, 2, cut(s, 2, domain(s, 2, z1ray[i])));
        double zb = abs_of(s, 2, cut(s, 2, domain(s, 2, z2ray[i])));
        if (!std::isfinite(za) || !std::isfinite(zb)) continue;
        // Absolute coordinates grow with the axis whichever way it runs.
        double x0 = std::fmin(xa, xb), x1 = std::fmax(xa, xb), y0 = std::fmin(ya, yb),
               y1 = std::fmax(ya, yb);
        double z0 = std::fmin(za, zb), z1 = std::fmax(za, zb);
        int clr = icray[i] == -1 ? current : icray[i];
        double fy = yhigh ? y1 : y0, fx = xhigh ? x1 : x0, fz = top ? z1 : z0;
        const double ry[4][3] = {{x0, fy, z0}, {x1, fy, z0}, {x1, fy, z1}, {x0, fy, z1}};
        const double rx[4][3] = {{fx, y0, z0}, {fx, y1, z0}, {fx, y1, z1}, {fx, y0, z1}};
        const double rz[4][3] = {{x0, y0, fz}, {x1, y0, fz}, {x1, y1, fz}, {x0, y1, fz}};
        face(b, ry, clr);
        face(b, rx, clr);
        face(b, rz, clr);
    }
    if (own) qqdbfclose(b);
    qqflsh(b);
    s.mesh = mesh;
    s.curmesh = curmesh;
    s.edgecode = code;
    qqshdpat(b, pattern);
    if (b->clr.curclr != current) qqsetc(b, current);
}
