// The 3-D axis system: its settings, the camera and projection matrix,
// the conversions between user, absolute and plot coordinates, the 3-D pen
// with its clipping, the box, grids on the faces, and the planes in which
// 2-D drawing runs (the three axes are drawn that way).
#include <algorithm>
#include <cmath>
#include <cstring>

#include "axes/axes.h"
#include "axes/axis_draw.h"
#include "axes/label_text.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/subsystems.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "space/space.h"
#include "space/space_block.h"

namespace {

const double kPi = 3.1415927;  // the degree conversions of the settings use this value

bool in_graf3d(const SpaceBlock *b) {
    return b->sp.open != 0;
}

double plain_abs(const SpaceState &s, int i, double v) {
    double d = s.e[i] - s.a[i];
    if (d == 0) return 0;
    return (v - s.a[i]) * s.len[i] / d - s.len[i] / 2;
}

void build_matrix(SpaceBlock *b) {
    SpaceState &s = b->sp;
    double ex = s.ex, ey = s.ey, ez = s.ez;
    double a = ex - s.fx, bb = ey - s.fy, c = ez - s.fz;
    double h = std::sqrt(a * a + bb * bb);
    double cu = std::cos(s.vup), su = std::sin(s.vup);
    double (&m)[4][4] = s.m;
    if (h < 1e-6) {
        double X[4] = {cu, -su, 0, su * ey - cu * ex};
        double Y[4] = {su, cu, 0, -(su * ex) - cu * ey};
        double Z[4] = {0, 0, -1, ez};
        if (c < 0) {
            // Looking up from below: depth grows upward, and the picture is
            // the one seen from below, not a mirror image.
            for (double &v : Y) v = -v;
            Z[2] = 1;
            Z[3] = -ez;
        }
        std::memcpy(m[0], X, sizeof X);
        std::memcpy(m[1], Y, sizeof Y);
        std::memcpy(m[2], Z, sizeof Z);
    } else {
        double L = std::sqrt(h * h + c * c);
        double p = bb / h, q = a / h, t = c / L, w = h / L;
        double g = p * ex - q * ey, k = -(q * ex) - p * ey, mm = -(w * ez) - k * t;
        double X[4] = {t * q * su - p * cu, t * p * su + q * cu, -(w * su), g * cu - mm * su};
        double Y[4] = {-(p * su) - t * q * cu, q * su - t * p * cu, w * cu, mm * cu + g * su};
        double Z[4] = {-(w * q), -(w * p), -t, t * ez - k * w};
        std::memcpy(m[0], X, sizeof X);
        std::memcpy(m[1], Y, sizeof Y);
        std::memcpy(m[2], Z, sizeof Z);
    }
    double zr[4];
    std::memcpy(zr, m[2], sizeof zr);
    double T = std::tan(s.vang), n = s.vnear, f = s.vfar;
    if (s.proj == 0) {
        for (int j = 0; j < 4; ++j) m[3][j] = zr[j] * T;
        double k = f > 0 ? 1.0 / (1 - n / f) : 1.0;
        for (int j = 0; j < 4; ++j) m[2][j] = zr[j] * T * k;
        m[2][3] += -(T * n) * k;
    } else {
        m[3][0] = m[3][1] = m[3][2] = 0;
        m[3][3] = 2 / s.oscl;
        double k = f > 0 ? 1.0 / f : 1.0 / (2 * std::sqrt(ex * ex + ey * ey + ez * ez));
        for (int j = 0; j < 4; ++j) m[2][j] = zr[j] * k;
    }
}

void resolve_view(SpaceBlock *b) {
    SpaceState &s = b->sp;
    if (s.focmode == 0) {
        s.fx = s.fy = s.fz = 0;
    } else if (s.focmode == 2) {
        s.fx = plain_abs(s, 0, s.foc[0]);
        s.fy = plain_abs(s, 1, s.foc[1]);
        s.fz = plain_abs(s, 2, s.foc[2]);
    } else {
        s.fx = s.foc[0];
        s.fy = s.foc[1];
        s.fz = s.foc[2];
    }
    if (!(std::isfinite(s.fx) && std::isfinite(s.fy) && std::isfinite(s.fz))) {
        // A focus that is no point: the eye looks at the centre instead.
        qqwar0(b, 33);
        s.fx = s.fy = s.fz = 0;
    }
    if (s.eyemode == 2) {
        for (int i = 0; i < 3; ++i) s.eye[i] = plain_abs(s, i, s.eye[i]);
        s.eyemode = 1;
    } else if (s.eyemode == 3) {
        double a = s.eye[0] * kPi / 180, bb = s.eye[1] * kPi / 180, r = s.eye[2];
        s.eye[2] = r * std::sin(bb);
        s.eye[0] = r * std::cos(bb) * std::sin(a);
        s.eye[1] = r * std::cos(bb) * std::cos(a);
        s.eyemode = 1;
    }
    bool dflt = s.eyemode == 0;
    if (!dflt && std::fabs(s.eye[0]) <= s.len[0] / 2 && std::fabs(s.eye[1]) <= s.len[1] / 2 &&
        std::fabs(s.eye[2]) <= s.len[2] / 2) {
        qqwar0(b, 33);
        dflt = true;
    }
    if (!dflt && !(std::isfinite(s.eye[0]) && std::isfinite(s.eye[1]) && std::isfinite(s.eye[2]))) {
        qqwar0(b, 33);
        dflt = true;
    }
    if (dflt) {
        s.ex = 2 * s.len[0];
        s.ey = -2.5 * s.len[1];
        s.ez = 2 * s.len[2];
    } else {
        s.ex = s.eye[0];
        s.ey = s.eye[1];
        s.ez = s.eye[2];
    }
    for (int k = 0; k < 8; ++k) qqlitabs(b, k);
    build_matrix(b);
}

// ---------------------------------------------------------------------------
// The plane of 2-D drawing.

void plane_map(DeviceBlock *db, double *x, double *y) {
    SpaceBlock *b = qqspcblk(db);
    const SpaceState &s = b->sp;
    const DeviceState &d = b->dev;
    double u = (*x - d.nxsh - s.pnxa) / (s.pnxl - 1 > 0 ? s.pnxl - 1 : 1);
    double v = (s.pnya - (*y - d.nysh)) / (s.pnyl - 1 > 0 ? s.pnyl - 1 : 1);
    double p[3];
    for (int i = 0; i < 3; ++i) p[i] = s.p1[i] + u * s.v1[i] + v * s.v2[i];
    double xp, yp;
    qqabs2plot(b, p[0], p[1], p[2], &xp, &yp, nullptr);
    *x = xp + d.nxsh;
    *y = yp + d.nysh;
}

void plane_open(SpaceBlock *b, const double c1[3], const double c2[3], const double c3[3]) {
    SpaceState &s = b->sp;
    qqflsh(b);
    for (int i = 0; i < 3; ++i) {
        s.p1[i] = c1[i];
        s.v1[i] = c2[i] - c1[i];
        s.v2[i] = c3[i] - c2[i];
    }
    s.pnxa = b->ax.nxa;
    s.pnya = b->ax.nya;
    s.pnxl = b->ax.nlen[0];
    s.pnyl = b->ax.nlen[1];
    s.plane = 1;
    b->dev.planemap = plane_map;
    b->dev.pl3on = 1;
}

void plane_close(SpaceBlock *b) {
    qqflsh(b);
    b->sp.plane = 0;
    b->dev.pl3on = 0;
}

// The 3-D record of the axes (graf3d's), written back after 2-D drawing in
// a plane replaced it.
void set_record(SpaceBlock *b) {
    SpaceState &s = b->sp;
    ScaleRecord &r = b->ax.rec;
    r.type = 3;
    for (int i = 0; i < 3; ++i) {
        r.a[i] = s.a[i];
        r.e[i] = s.e[i];
        r.orl[i] = s.orl[i];
        r.stp[i] = s.stp[i];
        r.log[i] = s.logax[i];
    }
    r.xmin = s.umin[0];
    r.xmax = s.umax[0];
    r.ymin = s.umin[1];
    r.ymax = s.umax[1];
    r.nxa = b->ax.nxa;
    r.nya = b->ax.nya;
    r.nxl = b->ax.nlen[0];
    r.nyl = b->ax.nlen[1];
    r.xorg = r.nxa;
    r.yorg = r.nya;
    r.xfac = (r.nxl - 1) / (s.e[0] - s.a[0]);
    r.yfac = (r.nyl - 1) / (s.e[1] - s.a[1]);
}

void corner(const SpaceState &s, int k, double p[3]) {
    static const int sg[8][3] = {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1},
                                 {-1, -1, 1},  {1, -1, 1},  {1, 1, 1},  {-1, 1, 1}};
    for (int i = 0; i < 3; ++i) p[i] = sg[k - 1][i] * s.len[i] / 2;
}

// The planes of the axes by the class of the eye: x plane, rev, nofirst,
// y plane, rev, nofirst, z plane, rev, nofirst.
const short kAxisPlanes[27][9] = {
    {432, 0, 1, 321, 1, 0, 437, 0, 1}, {126, 0, 1, 415, 1, 0, 437, 0, 1},
    {123, 0, 1, 412, 1, 0, 437, 0, 1}, {432, 0, 1, 321, 1, 0, 415, 0, 1},
    {123, 0, 1, 415, 1, 0, 415, 0, 1}, {123, 0, 1, 412, 1, 0, 415, 0, 1},
    {214, 1, 0, 321, 1, 1, 326, 0, 1}, {348, 1, 0, 415, 1, 1, 326, 0, 1},
    {341, 1, 0, 412, 1, 1, 326, 0, 1}, {432, 0, 0, 143, 0, 1, 126, 0, 1},
    {126, 0, 0, 234, 0, 1, 126, 0, 1}, {123, 0, 0, 234, 0, 1, 126, 0, 1},
    {432, 0, 0, 143, 0, 1, 126, 0, 1}, {123, 0, 0, 234, 0, 1, 126, 0, 1},
    {123, 0, 0, 234, 0, 1, 126, 0, 1}, {214, 1, 0, 321, 1, 1, 348, 0, 1},
    {348, 1, 0, 412, 1, 1, 348, 0, 1}, {341, 1, 0, 412, 1, 1, 348, 0, 1},
    {432, 0, 0, 143, 0, 1, 148, 0, 1}, {126, 0, 0, 237, 0, 1, 148, 0, 1},
    {123, 0, 0, 234, 0, 1, 148, 0, 1}, {214, 1, 1, 143, 0, 0, 237, 0, 1},
    {341, 1, 1, 237, 0, 0, 237, 0, 1}, {341, 1, 1, 234, 0, 0, 237, 0, 1},
    {214, 1, 1, 143, 0, 0, 215, 0, 1}, {348, 1, 1, 237, 0, 0, 215, 0, 1},
    {341, 1, 1, 234, 0, 0, 215, 0, 1},
};

void draw_axes(SpaceBlock *b) {
    SpaceState &s = b->sp;
    AxesState &ax = b->ax;
    int cx = s.ex < -s.len[0] / 2 ? 1 : s.ex > s.len[0] / 2 ? 3 : 2;
    int cy = s.ey < -s.len[1] / 2 ? 1 : s.ey > s.len[1] / 2 ? 3 : 2;
    int cz = s.ez < -s.len[2] ? 1 : s.ez > s.len[2] ? 3 : 2;
    const short *row = kAxisPlanes[(cx - 1) * 9 + (cy - 1) * 3 + (cz - 1)];
    int savh = qqaxsth(b, (int)(1.5 * qqaxth(b)));
    int savn = ax.hname;
    ax.hname = (int)(1.5 * ax.hname);
    for (int k = 0; k < 3; ++k) {
        int pl = row[3 * k], rev = row[3 * k + 1], nofirst = row[3 * k + 2];
        double c1[3], c2[3], c3[3];
        corner(s, pl / 100, c1);
        corner(s, pl / 10 % 10, c2);
        corner(s, pl % 10, c3);
        int savends = ax.axends[k];
        if (s.flab) ax.axends[k] = nofirst ? 1 : 0;
        int savmy = ax.nmylab[k];
        // Vertical labels of the two horizontal axes: one of them reads from
        // the other side, so that both read from outside the box.
        int savori = ax.labori[k];
        if (savori != 0 && k < 2 && (k == 0) == (s.ex * s.ey >= 0)) ax.labori[k] = 2;
        plane_open(b, c1, c2, c3);
        AxisCall c{};
        c.axis = k;
        c.a = s.a[k];
        c.e = s.e[k];
        c.orl = s.orl[k];
        c.step = s.stp[k];
        if (rev) {
            c.a = s.e[k];
            c.e = s.a[k];
            c.orl = s.orl[k] + std::trunc((s.e[k] - s.orl[k]) / s.stp[k] + 0.0001) * s.stp[k];
            c.step = -s.stp[k];
            ax.nmylab[k] = -ax.nmylab[k];
        }
        c.logax = s.logax[k];
        c.level = 4;
        if (k < 2) {
            c.geo = 1;
            c.len = s.pnxl;
            c.x0 = s.pnxa;
            c.y0 = cz == 1 ? s.pnya - s.pnyl + 1 : s.pnya;
            c.side = cz == 1 ? 1 : 0;
        } else {
            c.geo = 2;
            c.len = s.pnyl;
            c.x0 = s.pnxa;
            c.y0 = s.pnya;
            c.side = 1;
        }
        qqaxis(b, c);
        plane_close(b);
        ax.nmylab[k] = savmy;
        ax.labori[k] = savori;
        ax.axends[k] = savends;
    }
    ax.hname = savn;
    qqaxsth(b, savh);
}

// ---------------------------------------------------------------------------
// Clipping of 3-D lines.

// Cuts the segment p0-p1 to the box; returns 0 when nothing is left.
int clip_box(const SpaceState &s, double p0[3], double p1[3]) {
    double t0 = 0, t1 = 1, d[3];
    for (int i = 0; i < 3; ++i) d[i] = p1[i] - p0[i];
    for (int i = 0; i < 3; ++i) {
        double h = s.len[i] / 2;
        double lo = -h, hi = h;
        if (std::fabs(d[i]) < 1e-35) {
            if (p0[i] < lo || p0[i] > hi) return 0;
            continue;
        }
        double ta = (lo - p0[i]) / d[i], tb = (hi - p0[i]) / d[i];
        if (ta > tb) std::swap(ta, tb);
        if (ta > t0) t0 = ta;
        if (tb < t1) t1 = tb;
        if (t0 > t1) return 0;
    }
    double q0[3], q1[3];
    for (int i = 0; i < 3; ++i) {
        q0[i] = t0 > 0 ? p0[i] + t0 * d[i] : p0[i];
        q1[i] = t1 < 1 ? p0[i] + t1 * d[i] : p1[i];
    }
    std::memcpy(p0, q0, sizeof q0);
    std::memcpy(p1, q1, sizeof q1);
    return 1;
}

bool inside_box(const SpaceState &s, const double p[3]) {
    for (int i = 0; i < 3; ++i)
        if (!(std::fabs(p[i]) <= s.len[i] / 2)) return false;
    return true;
}

int eye_bits(const double c[4]) {
    int k = 0;
    if (c[0] + c[3] < 0) k |= 1;
    if (c[3] - c[0] < 0) k |= 2;
    if (c[1] + c[3] < 0) k |= 4;
    if (c[3] - c[1] < 0) k |= 8;
    if (c[2] < 0) k |= 16;
    if (c[3] - c[2] < 0) k |= 32;
    return k;
}

void bounds(const double c[4], double f[6]) {
    f[0] = c[0] + c[3];
    f[1] = c[3] - c[0];
    f[2] = c[1] + c[3];
    f[3] = c[3] - c[1];
    f[4] = c[2];
    f[5] = c[3] - c[2];
}

void clip_to_plot(const SpaceBlock *b, const double c[4], double *xp, double *yp) {
    const SpaceState &s = b->sp;
    double w = c[3];
    if (std::fabs(w) < 1e-30) w = 1e-30;
    *xp = s.cx + s.s * c[0] / w;
    *yp = s.cy - s.s * c[1] / w;
}

void seg_plot(SpaceBlock *b, const double *p0, const double *p1, bool move) {
    double x0, y0, x1, y1;
    qqabs2plot(b, p0[0], p0[1], p0[2], &x0, &y0, nullptr);
    qqabs2plot(b, p1[0], p1[1], p1[2], &x1, &y1, nullptr);
    if (move) qqmove(b, x0, y0);
    qqdraw(b, x1, y1);
}

}  // namespace

// ---------------------------------------------------------------------------
// Conversions.

int qqclipbox(const SpaceBlock *b, double p0[3], double p1[3]) noexcept {
    return clip_box(b->sp, p0, p1);
}

double qqusr2abs(const SpaceBlock *b, int i, double v) noexcept {
    const SpaceState &s = b->sp;
    double u = s.logax[i] ? std::log10(v) : v;
    double d = s.e[i] - s.a[i];
    if (d == 0) return 0;
    return (u - s.a[i]) * s.len[i] / d - s.len[i] / 2;
}

double qqabs2usr(const SpaceBlock *b, int i, double v) noexcept {
    const SpaceState &s = b->sp;
    double u = (v + s.len[i] / 2) * (s.e[i] - s.a[i]) / s.len[i] + s.a[i];
    return s.logax[i] ? std::pow(10.0, u) : u;
}

double qqplain2abs(const SpaceBlock *b, int i, double v) noexcept {
    return plain_abs(b->sp, i, v);
}

double qqabs2plain(const SpaceBlock *b, int i, double v) noexcept {
    const SpaceState &s = b->sp;
    if (s.len[i] == 0) return s.a[i];
    return (v + s.len[i] / 2) * (s.e[i] - s.a[i]) / s.len[i] + s.a[i];
}

void qqclip4(const SpaceBlock *b, const double p[3], double out[4]) noexcept {
    const double (&m)[4][4] = b->sp.m;
    for (int r = 0; r < 4; ++r) out[r] = m[r][0] * p[0] + m[r][1] * p[1] + m[r][2] * p[2] + m[r][3];
}

void qqabs2plot(const SpaceBlock *b, double x, double y, double z, double *xp, double *yp,
                double *depth) noexcept {
    double p[3] = {x, y, z}, c[4];
    qqclip4(b, p, c);
    clip_to_plot(b, c, xp, yp);
    if (depth) *depth = c[2] / (std::fabs(c[3]) < 1e-30 ? 1e-30 : c[3]);
}

void qqmov3(SpaceBlock *b, double x, double y, double z) noexcept {
    SpaceState &s = b->sp;
    double p[3] = {x, y, z};
    if (qqzpix(b)) {
        // Depth tested lines clip each segment themselves, from absolute ends.
        std::memcpy(s.pen, p, sizeof p);
        return;
    }
    if (s.clip == 1) {
        qqclip4(b, p, s.pen);
        s.penout = eye_bits(s.pen) != 0;
        if (!s.penout && !qqzpix(b)) {
            double xp, yp;
            clip_to_plot(b, s.pen, &xp, &yp);
            qqmove(b, xp, yp);
        }
        return;
    }
    std::memcpy(s.pen, p, sizeof p);
    s.penout = s.clip == 0 && !inside_box(s, p);
    if (!s.penout && !qqzpix(b)) {
        double xp, yp;
        qqabs2plot(b, x, y, z, &xp, &yp, nullptr);
        qqmove(b, xp, yp);
    }
}

void qqdrw3(SpaceBlock *b, double x, double y, double z) noexcept {
    SpaceState &s = b->sp;
    double p[3] = {x, y, z};
    if (qqzpix(b)) {
        // On pixels the line is depth tested; qqzlin3 clips it itself.
        double p0[3] = {s.pen[0], s.pen[1], s.pen[2]};
        qqzlin3(b, p0, p);
        std::memcpy(s.pen, p, sizeof p);
        return;
    }
    if (s.clip == 2) {
        seg_plot(b, s.pen, p, false);
        std::memcpy(s.pen, p, sizeof p);
        return;
    }
    if (s.clip == 0) {
        bool out1 = !inside_box(s, p);
        if (!s.penout && !out1) {
            seg_plot(b, s.pen, p, false);
        } else {
            double a[3] = {s.pen[0], s.pen[1], s.pen[2]}, e[3] = {x, y, z};
            if (clip_box(s, a, e)) seg_plot(b, a, e, true);
        }
        std::memcpy(s.pen, p, sizeof p);
        s.penout = out1;
        return;
    }
    // Eye: parametric clipping in homogeneous coordinates.
    double c1[4];
    qqclip4(b, p, c1);
    int k0 = eye_bits(s.pen), k1 = eye_bits(c1);
    if ((k0 & k1) == 0) {
        double f0[6], f1[6], t0 = 0, t1 = 1;
        bounds(s.pen, f0);
        bounds(c1, f1);
        bool keep = true;
        for (int i = 0; i < 6 && keep; ++i) {
            if (f0[i] < 0) {
                double t = f0[i] / (f0[i] - f1[i]);
                if (t > t0) t0 = t;
            } else if (f1[i] < 0) {
                double t = f0[i] / (f0[i] - f1[i]);
                if (t < t1) t1 = t;
            }
            if (t0 > t1) keep = false;
        }
        if (keep) {
            double a[4], e[4];
            for (int i = 0; i < 4; ++i) {
                a[i] = s.pen[i] + t0 * (c1[i] - s.pen[i]);
                e[i] = s.pen[i] + t1 * (c1[i] - s.pen[i]);
            }
            double xa, ya, xe, ye;
            clip_to_plot(b, a, &xa, &ya);
            clip_to_plot(b, e, &xe, &ye);
            if (k0) qqmove(b, xa, ya);
            qqdraw(b, xe, ye);
            if (k1) qqflsh(b);
        }
    }
    std::memcpy(s.pen, c1, sizeof c1);
    s.penout = k1 != 0;
}

// ---------------------------------------------------------------------------
// Settings.

void axis3d(double x, double y, double z) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("axis3d"));
    if (!b) return;
    double v[3] = {x, y, z};
    for (double t : v)
        if (!(t > 0)) {
            qqwarnd(b, 2, t);
            return;
        }
    for (int i = 0; i < 3; ++i) b->sp.len[i] = v[i];
}

void view3d(double x, double y, double z, const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("view3d"));
    if (!b) return;
    int k = qqkey(b, "ABS +USER+ANGL", 3, copt);
    if (k < 1) return;
    SpaceState &s = b->sp;
    s.eye[0] = x;
    s.eye[1] = y;
    s.eye[2] = z;
    s.eyemode = k;
}

void vfoc3d(double x, double y, double z, const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("vfoc3d"));
    if (!b) return;
    int k = qqkey(b, "ABS +USER", 2, copt);
    if (k < 1) return;
    SpaceState &s = b->sp;
    s.foc[0] = x;
    s.foc[1] = y;
    s.foc[2] = z;
    s.focmode = k;
}

void vup3d(double angle) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("vup3d"));
    if (!b) return;
    if (!std::isfinite(angle)) {
        qqwarnd(b, 2, angle);
        return;
    }
    b->sp.vup = angle * kPi / 180;
}

void vang3d(double angle) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("vang3d"));
    if (!b) return;
    if (!(angle > 0 && angle < 180)) {
        qqwarnd(b, 2, angle);
        return;
    }
    b->sp.vang = angle * kPi / 360;
}

void vclp3d(double xnear, double xfar) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("vclp3d"));
    if (!b) return;
    if (!(xnear > 0) || !std::isfinite(xnear)) {
        qqwarnd(b, 2, xnear);
        return;
    }
    if (!(xfar > 0) || std::isinf(xfar)) xfar = -1;  // no far distance
    if (xfar > 0 && xnear > xfar) {
        qqwarnd(b, 2, xnear);
        return;
    }
    b->sp.vnear = xnear;
    b->sp.vfar = xfar;
}

void proj3d(const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("proj3d"));
    if (!b) return;
    int k = qqkey(b, "PERS+ORTH", 2, copt);
    if (k > 0) b->sp.proj = k - 1;
}

void clip3d(const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("clip3d"));
    if (!b) return;
    int k = qqkey(b, "WORL+EYE +NONE", 3, copt);
    if (k > 0) b->sp.clip = k - 1;
}

void labl3d(const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("labl3d"));
    if (!b) return;
    int k = qqkey(b, "STAN+HORI+PARA+OTHE", 4, copt);
    if (k > 0) b->sp.labmode = k - 1;
}

void flab3d() noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("flab3d"));
    if (b) b->sp.flab = 0;
}

// ---------------------------------------------------------------------------
// The axis system.

void graf3d(double xa, double xe, double xor_, double xstp, double ya, double ye, double yor,
            double ystp, double za, double ze, double zor, double zstp) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("graf3d"));
    if (!b) return;
    AxesState &ax = b->ax;
    SpaceState &s = b->sp;
    double v[3][4] = {{xa, xe, xor_, xstp}, {ya, ye, yor, ystp}, {za, ze, zor, zstp}};
    for (int i = 0; i < 3; ++i) qqautscl(b, i, &v[i][0], &v[i][1], &v[i][2], &v[i][3]);
    for (int i = 0; i < 3; ++i)
        if (qqtstscl(b, v[i][0], v[i][1], v[i][2], v[i][3], i < 2 ? ax.nlen[i] : ax.nlen[1], 0, 0))
            return;
    for (int i = 0; i < 3; ++i) {
        s.a[i] = v[i][0];
        s.e[i] = v[i][1];
        s.orl[i] = v[i][2];
        s.stp[i] = v[i][3];
        s.logax[i] = ax.scl[i];
        double lo = s.a[i], hi = s.e[i];
        if (s.logax[i]) {
            lo = std::pow(10.0, lo);
            hi = std::pow(10.0, hi);
        }
        s.umin[i] = std::min(lo, hi);
        s.umax[i] = std::max(lo, hi);
    }
    s.open = 1;
    s.plane = 0;
    b->core.level = 3;
    set_record(b);
    int nxl = ax.nlen[0], nyl = ax.nlen[1];
    // The centring measures the X and Y axes as a 2-D system would have them.
    double cv[2][4] = {{s.a[0], s.e[0], s.orl[0], s.stp[0]}, {s.a[1], s.e[1], s.orl[1], s.stp[1]}};
    qqcenter(b, cv, ax.nxa, ax.nya, nxl, nyl);
    s.s = std::min(nxl, nyl) / 2.0;
    s.cx = ax.nxa + nxl / 2.0;
    s.cy = ax.nya - nyl / 2.0;
    resolve_view(b);
    qqaxrect(b, ax.nxa, ax.nya, nxl, nyl);
    ax.legx = ax.nxa + nxl - 1;
    ax.legy = ax.nya - nyl + 1;
    ax.ncx = ax.nxa + nxl / 2;
    ax.ncy = ax.nya - nyl / 2;
    ax.savclr = b->clr.curclr;
    ax.savlev = 1;
    if (ax.nogrf) return;
    if (s.labmode == 0)
        draw_axes(b);
    else
        qqspaxes(b);
    set_record(b);
}

void box3d() noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("box3d"));
    if (!b) return;
    if (!in_graf3d(b)) {
        qqwar0(b, 35);
        return;
    }
    SpaceState &s = b->sp;
    static const int path[] = {1, 2, 3, 4, 1, 5, 6, 7, 8, 5};
    double p[3];
    for (int i = 0; i < 10; ++i) {
        corner(s, path[i], p);
        if (i == 0)
            qqmov3(b, p[0], p[1], p[2]);
        else
            qqdrw3(b, p[0], p[1], p[2]);
    }
    static const int ups[3][2] = {{2, 6}, {3, 7}, {4, 8}};
    for (auto &u : ups) {
        corner(s, u[0], p);
        qqmov3(b, p[0], p[1], p[2]);
        corner(s, u[1], p);
        qqdrw3(b, p[0], p[1], p[2]);
    }
    qqflsh(b);
}

void box2d() noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("box2d"));
    if (!b) return;
    const AxesState &ax = b->ax;
    int t = ax.frmthk;
    if (t == 0) return;
    int x1 = ax.nxa, y2 = ax.nya, x2 = ax.nxa + ax.nlen[0] - 1, y1 = ax.nya - ax.nlen[1] + 1;
    int n = std::min(std::abs(t), 10000);
    for (int i = 0; i < n; ++i) {
        int k = t > 0 ? i : -i;
        qqmove(b, x1 - k, y2 + k);
        qqdraw(b, x2 + k, y2 + k);
        qqdraw(b, x2 + k, y1 - k);
        qqdraw(b, x1 - k, y1 - k);
        qqdraw(b, x1 - k, y2 + k);
    }
    qqflsh(b);
}

void grfini(double x1, double y1, double z1, double x2, double y2, double z2, double x3, double y3,
            double z3) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("grfini"));
    if (!b) return;
    if (!in_graf3d(b)) {
        qqwar0(b, 35);
        return;
    }
    double c1[3] = {x1, y1, z1}, c2[3] = {x2, y2, z2}, c3[3] = {x3, y3, z3};
    plane_open(b, c1, c2, c3);
    b->core.level = 1;
}

void grffin() noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("grffin"));
    if (!b) return;
    if (!b->sp.plane) {
        qqwar0(b, 34);
        return;
    }
    plane_close(b);
    b->core.level = 3;
    set_record(b);
    qqaxrect(b, b->ax.nxa, b->ax.nya, b->ax.nlen[0], b->ax.nlen[1]);
}

void grid3d(int nx, int ny, const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("grid3d"));
    if (!b) return;
    if (!in_graf3d(b)) {
        qqwar0(b, 35);
        return;
    }
    if (nx < 0) {
        qqwarn(b, 2, nx);
        nx = 0;
    }
    if (ny < 0) {
        qqwarn(b, 2, ny);
        ny = 0;
    }
    int k = qqkey(b, "ALL +BACK+BOTT", 3, copt);  // a refused word means ALL
    if (k < 1) k = 1;
    SpaceState &s = b->sp;
    AxesState &ax = b->ax;
    int savnog = ax.nogrf;
    ax.nogrf = 1;
    double hx = s.len[0] / 2, hy = s.len[1] / 2, hz = s.len[2] / 2;
    auto face = [&](const double c1[3], const double c2[3], const double c3[3], int i, int j) {
        plane_open(b, c1, c2, c3);
        b->core.level = 1;
        graf(s.a[i], s.e[i], s.orl[i], s.stp[i], s.a[j], s.e[j], s.orl[j], s.stp[j]);
        if (b->core.level == 2) grid(nx, ny);
        plane_close(b);
        b->core.level = 3;
        set_record(b);
    };
    if (k != 2) {
        double c1[3] = {-hx, -hy, -hz}, c2[3] = {hx, -hy, -hz}, c3[3] = {hx, hy, -hz};
        face(c1, c2, c3, 0, 1);
    }
    if (k != 3 && s.ex != 0 && s.ey != 0) {
        double xf = s.ex > 0 ? -hx : hx, yf = s.ey < 0 ? hy : -hy;
        // The face at x = xf spans Y and Z; the face at y = yf spans X and Z.
        double a1[3] = {xf, -hy, -hz}, a2[3] = {xf, hy, -hz}, a3[3] = {xf, hy, hz};
        face(a1, a2, a3, 1, 2);
        double b1[3] = {-hx, yf, -hz}, b2[3] = {hx, yf, -hz}, b3[3] = {hx, yf, hz};
        face(b1, b2, b3, 0, 2);
    }
    ax.nogrf = savnog;
    qqaxrect(b, ax.nxa, ax.nya, ax.nlen[0], ax.nlen[1]);
}

void strt3d(double x, double y, double z) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("strt3d"));
    if (!b) return;
    if (!in_graf3d(b)) {
        qqwar0(b, 35);
        return;
    }
    qqmov3(b, qqusr2abs(b, 0, x), qqusr2abs(b, 1, y), qqusr2abs(b, 2, z));
}

void conn3d(double x, double y, double z) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("conn3d"));
    if (!b) return;
    if (!in_graf3d(b)) {
        qqwar0(b, 35);
        return;
    }
    qqdrw3(b, qqusr2abs(b, 0, x), qqusr2abs(b, 1, y), qqusr2abs(b, 2, z));
}

// ---------------------------------------------------------------------------
// Public conversions.

// The plot coordinates that these routines return follow the page origin
// of pagorg, as every Y of the interface does; drawing inside the library
// uses the unflipped projection.
void abs3pt(double x, double y, double z, double *xp, double *yp) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("abs3pt"));
    *xp = *yp = 0;
    if (!b) return;
    qqabs2plot(b, x, y, z, xp, yp, nullptr);
    *yp = qqyflp(b, *yp);
}

void rel3pt(double x, double y, double z, double *xp, double *yp) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("rel3pt"));
    *xp = *yp = 0;
    if (!b) return;
    qqabs2plot(b, qqusr2abs(b, 0, x), qqusr2abs(b, 1, y), qqusr2abs(b, 2, z), xp, yp, nullptr);
    *yp = qqyflp(b, *yp);
}

void pos3pt(double x, double y, double z, double *xp, double *yp, double *zp) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("pos3pt"));
    *xp = *yp = *zp = 0;
    if (!b) return;
    *xp = qqusr2abs(b, 0, x);
    *yp = qqusr2abs(b, 1, y);
    *zp = qqusr2abs(b, 2, z);
}

double x3dabs(double x, double y, double z) noexcept {
    double xp, yp;
    SpaceBlock *b = qqspcblk(KX_ENTRY("x3dabs"));
    if (!b) return 0;
    qqabs2plot(b, x, y, z, &xp, &yp, nullptr);
    return xp;
}

double y3dabs(double x, double y, double z) noexcept {
    double xp, yp;
    SpaceBlock *b = qqspcblk(KX_ENTRY("y3dabs"));
    if (!b) return 0;
    qqabs2plot(b, x, y, z, &xp, &yp, nullptr);
    return qqyflp(b, yp);
}

double x3drel(double x, double y, double z) noexcept {
    double xp, yp;
    SpaceBlock *b = qqspcblk(KX_ENTRY("x3drel"));
    if (!b) return 0;
    qqabs2plot(b, qqusr2abs(b, 0, x), qqusr2abs(b, 1, y), qqusr2abs(b, 2, z), &xp, &yp, nullptr);
    return xp;
}

double y3drel(double x, double y, double z) noexcept {
    double xp, yp;
    SpaceBlock *b = qqspcblk(KX_ENTRY("y3drel"));
    if (!b) return 0;
    qqabs2plot(b, qqusr2abs(b, 0, x), qqusr2abs(b, 1, y), qqusr2abs(b, 2, z), &xp, &yp, nullptr);
    return qqyflp(b, yp);
}

double x3dpos(double x, double, double) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("x3dpos"));
    return b ? qqusr2abs(b, 0, x) : 0;
}

double y3dpos(double, double y, double) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("y3dpos"));
    return b ? qqusr2abs(b, 1, y) : 0;
}

float z3dpos(double, double, double z) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("z3dpos"));
    return b ? (float)qqusr2abs(b, 2, z) : 0.0f;
}
