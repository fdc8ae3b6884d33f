// The projection formulas: each family turns a longitude and latitude in
// degrees into map units (X, Y), which one scale and two offsets take to
// the page, so that a map keeps its proportions.
#include <cmath>

#include "axes/axes.h"
#include "maps/maps.h"

namespace {

// The library's pi, in which its degrees are converted.
const double kPi = 3.1415927;

double clamp1(double v) {
    return v < -1 ? -1 : v > 1 ? 1 : v;
}

// Longitude relative to the mid longitude, wrapped into -180 .. 180.
double wrapped(double lon, double g) {
    double l = lon - g;
    while (l > 180) l -= 360;
    while (l < -180) l += 360;
    return l;
}

void cylindrical(const MapBlock *b, int code, double lon, double lat, double *X, double *Y) {
    double dr = b->core.xdegr;
    double l = lon - b->map.g;
    if (code == 1) {
        // The poles lie at infinity: they are taken just short of them.
        if (lat == 90) lat = 89.98999786376953;
        if (lat == -90) lat = -89.98999786376953;
        *X = l * dr;
        *Y = std::log(std::tan((lat / 2 + 45) * dr));
    } else if (code == 6) {
        *X = l * dr;
        *Y = std::sin(lat * dr);
    } else {
        // The codes without a formula of their own are drawn as a plain
        // grid of degrees, both directions in the same unit.
        *X = l;
        *Y = lat;
    }
}

void pseudo(const MapBlock *b, int code, double lon, double lat, double *X, double *Y) {
    double dr = b->core.xdegr;
    double l = lon - b->map.g;
    double phi = lat * dr, lam = l * dr;
    if (code == 10 || code == 15) {
        *X = l;
        *Y = lat;
        return;
    }
    if (code == 14) {
        *X = lam * std::cos(phi);
        *Y = phi;
        return;
    }
    double d = std::acos(clamp1(std::cos(lam / 2) * std::cos(phi)));
    double a = d == 0 ? 0 : std::acos(clamp1(std::sin(phi) / std::sin(d)));
    if (l < 0) a = -a;
    if (code == 11) {
        *X = 2 * d * std::sin(a);
        *Y = d * std::cos(a);
    } else if (code == 12) {
        *X = 4 * std::sin(d / 2) * std::sin(a);
        *Y = 2 * std::sin(d / 2) * std::cos(a);
    } else {
        *X = (2 * d * std::sin(a) + 0.7660444 * lam) / 2;
        *Y = (d * std::cos(a) + phi) / 2;
    }
}

// Angle and radius of a conic map.
void conic_polar(MapBlock *b, double lon, double lat, double *theta, double *rho) {
    MapState &m = b->map;
    if (!m.conic) qqmconst(b);
    double dr = b->core.xdegr;
    double lam = wrapped(lon, m.g) * dr;
    double cdeg = m.south ? lat + 90 : 90 - lat;
    bool two = m.conic == 2;
    switch (m.code) {
        case 20: {
            if (cdeg > 179.99) cdeg = 179.99;
            double c = cdeg * dr;
            *theta = (two ? m.nf : m.n) * lam;
            *rho =
                two ? std::pow(std::tan(c / 2), m.nf) * m.kf : std::pow(std::tan(c / 2), m.n) * m.k;
            break;
        }
        case 21: {
            double c = cdeg * dr;
            *theta = m.na * lam;
            *rho = two ? std::sqrt(4 * std::sin(c / 2) / m.na + m.ka) : std::sin(c / 2) * m.ka;
            break;
        }
        case 23: {
            double c = cdeg * dr;
            *theta = (two ? m.nc : m.n) * lam;
            *rho = two ? m.rc + c - m.m : m.r0 + c - m.c0;
            break;
        }
        default:
            *theta = lam;
            *rho = cdeg * dr;
            break;
    }
}

}  // namespace

void qqmconst(MapBlock *b) noexcept {
    MapState &m = b->map;
    double c1 = m.c1, c2 = m.c2;
    if (c1 == c2) {
        double c0 = c1;
        m.c0 = c0;
        m.n = std::cos(c0);
        m.r0 = std::tan(c0);
        m.na = std::cos(c0 / 2) * std::cos(c0 / 2);
        m.ka = 2 / std::cos(c0 / 2);
        m.k = std::tan(c0) / std::pow(std::tan(c0 / 2), m.n);
        m.conic = 1;
        return;
    }
    m.m = (c1 + c2) / 2;
    m.h = (c2 - c1) / 2;
    m.nc = std::cos(m.m) * std::sin(m.h) / m.h;
    m.rc = std::tan(m.m) * m.h / std::tan(m.h);
    m.na = (std::cos(c1) + std::cos(c2)) / 2;
    m.ka = std::sin(c1) * std::sin(c1) * (4 / (m.na * m.na)) * std::sin(c2) * std::sin(c2);
    m.nf = (std::log10(std::sin(c2)) - std::log10(std::sin(c1))) /
           (std::log10(std::tan(c2 / 2)) - std::log10(std::tan(c1 / 2)));
    m.kf = std::sin(c2) / (std::pow(std::tan(c2 / 2), m.nf) * m.nf);
    m.conic = 2;
}

void qqmpolar(const MapBlock *b, double lon, double lat, double *theta, double *r) noexcept {
    const MapState &m = b->map;
    double dr = b->core.xdegr;
    if (m.lat0 == 90) {
        *r = (90 - lat) * dr;
        *theta = (lon - 90 - m.lon0) * dr;
        return;
    }
    if (m.lat0 == -90) {
        *r = (lat + 90) * dr;
        *theta = -(lon - 90 - m.lon0) * dr;
        return;
    }
    double p = lat * dr, p0 = m.lat0 * dr;
    double rr =
        std::acos(clamp1(std::cos(std::fabs(m.lon0 - lon) * dr) * std::cos(p) * std::cos(p0) +
                         std::sin(p) * std::sin(p0)));
    *r = rr;
    if (rr == 0) {
        *theta = (lon - 90) * dr;
        return;
    }
    double a = std::acos(
        clamp1((std::sin(p) - std::cos(rr) * std::sin(p0)) / (std::sin(rr) * std::cos(p0))));
    double dl = lon - m.lon0;
    bool east = (dl > 0 && dl < 180) || dl < -180 || (m.lon0 >= 0 && dl > 0);
    *theta = east ? kPi / 2 - a : kPi / 2 + a;
}

double qqmrho(int code, double r) noexcept {
    switch (code) {
        case 30:
            return std::tan(r);
        case 31:
            return r > kPi / 2 ? 2 - std::sin(r) : std::sin(r);
        case 32:
            return 2 * std::tan(r / 2);
        case 34:
            return 2 * std::sin(r / 2);
        default:
            return r;
    }
}

void qqmproj(MapBlock *b, double lon, double lat, double *X, double *Y) noexcept {
    int code = b->map.code;
    if (qqmcyl(code)) {
        cylindrical(b, code, lon, lat, X, Y);
    } else if (qqmpseudo(code)) {
        pseudo(b, code, lon, lat, X, Y);
    } else if (qqmconic(code)) {
        double t, rho;
        conic_polar(b, lon, lat, &t, &rho);
        *X = rho * std::sin(t);
        *Y = b->map.rm - rho * std::cos(t);
        if (b->map.south) *Y = -*Y;
    } else if (qqmazim(code)) {
        double t, r;
        qqmpolar(b, lon, lat, &t, &r);
        double rho = qqmrho(code, r);
        *X = rho * std::cos(t);
        *Y = rho * std::sin(t);
    } else {
        *X = lon;
        *Y = lat;
    }
}

void qqmpos(MapBlock *b, double lon, double lat, double *xp, double *yp) noexcept {
    const MapState &m = b->map;
    double x, y;
    if (m.code == 0) {
        *xp = qqxpos(b, lon);
        *yp = qqypos(b, lat);
        return;
    }
    if (m.code == 100) {
        x = lon;
        y = lat;
        if (m.user) m.user(&x, &y);
        x = x + m.ox;
        y = m.oy - y;
    } else {
        double X, Y;
        qqmproj(b, lon, lat, &X, &Y);
        x = m.s * X + m.ox;
        y = m.oy - m.s * Y;
    }
    // Far-away points (the poles of a gnomonic map) are held at a million
    // plot units, so that the clipper sees a finite line.
    *xp = x < -1e6 ? -1e6 : x > 1e6 ? 1e6 : x;
    *yp = y < -1e6 ? -1e6 : y > 1e6 ? 1e6 : y;
}
