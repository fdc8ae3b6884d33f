// Lines on a map: the pen that steps along the sphere in the curve mode,
// the circular clipping of azimuthal maps, curvmp and gridmp, and the
// conversions between positions and plot coordinates (pos2pt, pt2pos and
// their one-coordinate forms).
#include <cmath>

#include "axes/axes.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "maps/maps.h"
#include "plots/axis_map.h"
#include "plots/curve_draw.h"
#include "plots/curves.h"

namespace {

// An azimuthal point at polar form (theta, r) on the page.
void polar_point(const MapBlock *b, double t, double r, double *xp, double *yp) {
    const MapState &m = b->map;
    double rho = qqmrho(m.code, r) * m.s;
    double x = rho * std::cos(t) + m.ox, y = m.oy - rho * std::sin(t);
    *xp = x < -1e6 ? -1e6 : x > 1e6 ? 1e6 : x;
    *yp = y < -1e6 ? -1e6 : y > 1e6 ? 1e6 : y;
}

bool clipped_code(int code) {
    return code >= 30 && code < 100;
}

}  // namespace

void qqmmov(MapBlock *b, double lon, double lat) noexcept {
    MapState &m = b->map;
    m.penlon = lon;
    m.penlat = lat;
    double xp, yp;
    if (clipped_code(m.code)) {
        double t, r;
        qqmpolar(b, lon, lat, &t, &r);
        // A start beyond the sphere limit is left to the first step, which
        // enters at the limit.
        if (r > m.sph) return;
        polar_point(b, t, r, &xp, &yp);
    } else {
        qqmpos(b, lon, lat, &xp, &yp);
    }
    qqmove(b, xp, yp);
}

void qqmlin(MapBlock *b, double lon, double lat) noexcept {
    MapState &m = b->map;
    double lon1 = m.penlon, lat1 = m.penlat;
    m.penlon = lon;
    m.penlat = lat;
    double xp, yp;
    if (!clipped_code(m.code)) {
        qqmpos(b, lon, lat, &xp, &yp);
        qqdraw(b, xp, yp);
        return;
    }
    double t1, r1, t2, r2;
    qqmpolar(b, lon1, lat1, &t1, &r1);
    qqmpolar(b, lon, lat, &t2, &r2);
    double D = m.sph;
    if (r1 > D && r2 > D) return;
    if (r1 > D) {
        polar_point(b, t1, D, &xp, &yp);
        qqmove(b, xp, yp);
    }
    if (r2 > D) r2 = D;
    polar_point(b, t2, r2, &xp, &yp);
    qqdraw(b, xp, yp);
}

void qqmdrw(MapBlock *b, double lon, double lat) noexcept {
    MapState &m = b->map;
    double lon1 = m.penlon, lat1 = m.penlat;
    int mode = m.crvmode;
    if (mode == 0 || (m.code == 0 && mode != 2)) {
        qqmlin(b, lon, lat);
        return;
    }
    if (mode == 1) {
        double dlon = lon - lon1, dlat = lat - lat1;
        double dn = std::trunc(std::sqrt(dlat * dlat + dlon * dlon));
        int n = dn < 100000 ? (int)dn : 100000;
        for (int i = 1; i < n; ++i) qqmlin(b, lon1 + dlon * i / n, lat1 + dlat * i / n);
        qqmlin(b, lon, lat);
        return;
    }
    // Great circle: the points between are spherical interpolations of
    // the two ends' unit vectors.
    double dr = b->core.xdegr;
    double p1 = lat1 * dr, l1 = lon1 * dr, p2 = lat * dr, l2 = lon * dr;
    double s1 = std::sin((lat1 - lat) * dr / 2), s2 = std::sin((lon1 - lon) * dr / 2);
    double d = 2 * std::asin(std::sqrt(s1 * s1 + std::cos(p2) * std::cos(p1) * s2 * s2));
    double dn = std::trunc(d / 0.01);
    int n = dn < 100000 ? (int)dn : 100000;
    if (n > 2) {
        int mm = n - 1;
        double sd = std::sin(d);
        for (int i = 1; i <= mm - 1; ++i) {
            double f = (double)i / mm;
            double A = std::sin((1 - f) * d) / sd, B = std::sin(f * d) / sd;
            double x = A * std::cos(p1) * std::cos(l1) + B * std::cos(p2) * std::cos(l2);
            double y = A * std::cos(p1) * std::sin(l1) + B * std::cos(p2) * std::sin(l2);
            double z = A * std::sin(p1) + B * std::sin(p2);
            double plat = std::atan2(z, std::sqrt(x * x + y * y)) / dr;
            double plon = std::atan2(y, x) / dr;
            if (plon - lon1 > 180)
                plon -= 360;
            else if (plon - lon1 < -180)
                plon += 360;
            qqmlin(b, plon, plat);
        }
    }
    qqmlin(b, lon, lat);
}

// ---------------------------------------------------------------------------
// curvmp.

void curvmp(const double *xray, const double *yray, int n) noexcept {
    MapBlock *b = qqmapblk(KX_ENTRY("curvmp"));
    if (!b) return;
    CurveState &c = b->crv;
    c.shdarea = 0;
    if (n < 1 || (n == 1 && c.incmrk >= 0)) {
        qqwarn(b, 2, n);
        return;
    }
    AxisMap am;
    if (!qqaxmap(b, &am)) return;
    CurveSave save;
    qqcrvbegin(b, &save);
    qqclip(b, 0);
    if (c.incmrk != 0) qqcrvsymbols(b, am, xray, yray, n, std::abs(c.incmrk));
    if (c.incmrk >= 0) {
        double uf = b->core.unitf > 0 ? b->core.unitf : 1.0;
        int passes = (int)(c.thkcrv * uf + 0.5);
        if (passes < 1) passes = 1;
        for (int p = 1; p <= passes; ++p) {
            int k = p / 2;
            qqflsh(b);
            b->dev.lnoff = (p == 1 ? 0 : (p % 2 == 0 ? k : -k)) / uf;
            qqdshres(b);
            bool started = false;
            for (int i = 0; i < n; ++i) {
                // A missing point breaks the line.
                if (std::isnan(xray[i]) || std::isnan(yray[i])) {
                    started = false;
                    continue;
                }
                if (!started)
                    qqmmov(b, xray[i], yray[i]);
                else
                    qqmdrw(b, xray[i], yray[i]);
                started = true;
            }
        }
    }
    qqflsh(b);
    qqclip(b, 1);
    qqcrvrestore(b, &save);
    qqcurvedone(b);
}

// ---------------------------------------------------------------------------
// gridmp.

void gridmp(int nx, int ny) noexcept {
    MapBlock *b = qqmapblk(KX_ENTRY("gridmp"));
    if (!b) return;
    if (nx < 1 || ny < 1) {
        qqwarn(b, 2, nx < ny ? nx : ny);
        return;
    }
    if (b->ax.rec.type != 2) return;
    const MapState &m = b->map;
    const ScaleRecord &r = b->ax.rec;
    int code = m.code;
    bool sphere = qqmconic(code) || qqmazim(code);
    double lon_lo = sphere ? -180 : m.xa,
           lon_hi = sphere ? (qqmazim(code) ? 179.89999389648438 : 180) : m.xe;
    double lat_lo = sphere ? -90 : m.ya, lat_hi = sphere ? 90 : m.ye;
    double dlon = std::fabs(r.stp[0]) / nx, dlat = std::fabs(r.stp[1]) / ny;
    if (!(dlon > 0) || !(dlat > 0)) return;
    if ((lon_hi - lon_lo) / dlon > 100000 || (lat_hi - lat_lo) / dlat > 100000) return;
    bool stepped = code >= 10;
    bool clip = !qqmpseudo(code);
    if (clip) qqclip(b, 0);
    // Values from the label origin in both directions within the limits.
    auto walk = [](double orl, double st, double lo, double hi, auto fn) {
        double k0 = std::ceil((lo - orl) / st - 1e-9), k1 = std::floor((hi - orl) / st + 1e-9);
        for (double k = k0; k <= k1; k += 1) fn(orl + k * st);
    };
    walk(r.orl[1], dlat, lat_lo, lat_hi, [&](double lat) {
        qqmmov(b, lon_lo, lat);
        if (stepped)
            for (double lon = lon_lo + 1; lon < lon_hi; lon += 1) qqmlin(b, lon, lat);
        qqmlin(b, lon_hi, lat);
    });
    walk(r.orl[0], dlon, lon_lo, lon_hi, [&](double lon) {
        qqmmov(b, lon, lat_lo);
        if (stepped)
            for (double lat = lat_lo + 1; lat < lat_hi; lat += 1) qqmlin(b, lon, lat);
        qqmlin(b, lon, lat_hi);
    });
    qqflsh(b);
    if (clip) qqclip(b, 1);
}

// ---------------------------------------------------------------------------
// Conversions.

void pos2pt(double x, double y, double *xp, double *yp) noexcept {
    *xp = *yp = 0;
    MapBlock *b = qqmapblk(KX_ENTRY("pos2pt"));
    if (!b) return;
    qqpos2(b, x, y, xp, yp);
}

double x2dpos(double x, double y) noexcept {
    MapBlock *b = qqmapblk(KX_ENTRY("x2dpos"));
    if (!b) return 0;
    double xp, yp;
    qqpos2(b, x, y, &xp, &yp);
    return xp;
}

double y2dpos(double x, double y) noexcept {
    MapBlock *b = qqmapblk(KX_ENTRY("y2dpos"));
    if (!b) return 0;
    double xp, yp;
    qqpos2(b, x, y, &xp, &yp);
    return qqyflp(b, yp);
}

void pt2pos(double xp, double yp, double *x, double *y) noexcept {
    *x = *y = 0;
    MapBlock *b = qqmapblk(KX_ENTRY("pt2pos"));
    if (!b) return;
    const ScaleRecord &r = b->ax.rec;
    if (r.type != 2) {
        *x = qqxinv(b, xp);
        *y = qqyinv(b, yp);
        return;
    }
    // No closed inverse is kept: a grid search, refined tenfold around the
    // best point in each of five passes.
    const MapState &m = b->map;
    bool sphere = qqmconic(m.code) || (qqmazim(m.code) && m.ye - m.ya <= 90);
    double x0 = sphere ? -180 : m.xa, x1 = sphere ? 180 : m.xe;
    double y0 = sphere ? -90 : m.ya, y1 = sphere ? 90 : m.ye;
    double sx = std::fabs(x1 - x0 - 360) <= 0.1 ? 10 : (x1 - x0) / 10;
    double sy = std::fabs(y1 - y0 - 180) <= 0.1 ? 10 : (y1 - y0) / 10;
    double bx = x0, by = y0, best = INFINITY;
    for (int pass = 0; pass < 5; ++pass) {
        int nxs = (int)std::floor((x1 - x0) / sx + 1e-9),
            nys = (int)std::floor((y1 - y0) / sy + 1e-9);
        for (int i = 0; i <= nxs; ++i)
            for (int j = 0; j <= nys; ++j) {
                double lon = x0 + i * sx, lat = y0 + j * sy, px, py;
                qqpos2(b, lon, lat, &px, &py);
                double d = (px - xp) * (px - xp) + (py - yp) * (py - yp);
                if (d < 0.001) {
                    *x = lon;
                    *y = lat;
                    return;
                }
                if (d < best) {
                    best = d;
                    bx = lon;
                    by = lat;
                }
            }
        double nx0 = std::fmax(x0, bx - sx), nx1 = std::fmin(x1, bx + sx);
        double ny0 = std::fmax(y0, by - sy), ny1 = std::fmin(y1, by + sy);
        x0 = nx0;
        x1 = nx1;
        y0 = ny0;
        y1 = ny1;
        sx /= 10;
        sy /= 10;
    }
    *x = bx;
    *y = by;
}

// ---------------------------------------------------------------------------
// The user projection.

void setcbk(void (*callbk)(double *x, double *y), const char *copt) noexcept {
    MapBlock *b = qqmapblk(KX_ENTRY("setcbk"));
    if (!b) return;
    if (!qqkey(b, "MYPR", 1, copt)) return;
    b->map.user = callbk;
}
