// Hidden-line surfaces: a function of two variables drawn as a mesh of
// lines in a graf3d system, from the front of the surface to the back, so
// that the floating horizon (horizon.cpp) hides what earlier lines cover.
//
// surfce takes a matrix over given x and y values, surmat a matrix spread
// evenly over the extent of sursze or the axes, surfun a function sampled
// at fixed steps.  Nothing is allocated per line or point: points stream
// through the 3-D pen into the device layer's line buffer.
#include <cmath>
#include <cstddef>
#include <initializer_list>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/subsystems.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "space/space.h"
#include "space/space_block.h"

namespace {

// Points of one surface call beyond which it is refused: more cannot show
// on any page and would only keep the call busy for hours.
const double kMaxPoints = 1e8;

// The 3-D pen in user coordinates: a point that has no place in the box
// (a NaN, a value at or below 0 on a logarithmic axis) breaks the line.
struct UserPen {
    SpaceBlock *b;
    bool down;
    void to(double x, double y, double z, bool draw) {
        double ax = qqusr2abs(b, 0, x), ay = qqusr2abs(b, 1, y), az = qqusr2abs(b, 2, z);
        if (!(std::isfinite(ax) && std::isfinite(ay) && std::isfinite(az))) {
            down = false;
            return;
        }
        if (draw && down)
            qqdrw3(b, ax, ay, az);
        else
            qqmov3(b, ax, ay, az);
        down = true;
    }
    void move(double x, double y, double z) { to(x, y, z, false); }
    void draw(double x, double y, double z) { to(x, y, z, true); }
};

// What every hidden-line surface does around its drawing: the horizon on
// (unless nohide), the caller's colour kept as the base colour of the
// sides, and at the end the horizon off unless shlsur keeps it for the
// lines that follow.
struct HiddenFrame {
    SpaceBlock *b;
    explicit HiddenFrame(SpaceBlock *blk) : b(blk) {
        SpaceState &s = b->sp;
        qqflsh(b);
        s.hzbase = b->clr.curclr;
        s.hzside = 0;
        if (!s.nohide && qqhorz(b, 0, 0, 0))
            qqhorzon(b, 1);
        else
            qqhorzon(b, 0);
        s.hzmode = 1;
    }
    ~HiddenFrame() {
        SpaceState &s = b->sp;
        qqflsh(b);
        s.hzmode = 0;
        if (!b->shl.surf) qqhorzon(b, 0);
        if (b->clr.curclr != s.hzbase) qqsetc(b, s.hzbase);
    }
};

// A new pass starts from an empty horizon.
void reset_pass(SpaceBlock *b) {
    if (!b->dev.horizon) return;
    qqflsh(b);
    qqhorz(b, 0, 0, 0);
}

void set_mode(SpaceBlock *b, int mode) {
    qqflsh(b);
    b->sp.hzmode = mode;
}

bool in_graf3d(SpaceBlock *b) {
    if (b->sp.open) return true;
    qqwar0(b, 35);
    return false;
}

// The limits of the x and y axes as user values: xa, xe, ya, ye, powers
// of ten on logarithmic axes.
void axis_limits(const SpaceBlock *b, double r[4]) {
    const SpaceState &s = b->sp;
    for (int k = 0; k < 2; ++k) {
        r[2 * k] = s.logax[k] ? std::pow(10.0, s.a[k]) : s.a[k];
        r[2 * k + 1] = s.logax[k] ? std::pow(10.0, s.e[k]) : s.e[k];
    }
}

// The x and y range of a matrix: the extent of sursze, else the axes.
void extent(const SpaceBlock *b, double r[4]) {
    const ColourPlotState &c = b->cpl;
    if (!c.sszset) {
        axis_limits(b, r);
        return;
    }
    for (int k = 0; k < 4; ++k) r[k] = c.ssz[k];
}

// ---------------------------------------------------------------------------
// surmat and surfun: a grid of values with sub-lines between grid lines.

// The grid of surmat or surfun and how to get a value inside a cell.
struct Mesh {
    int n, m;
    double xa, dx, xe, ya, dy, ye;
    const double *z;               // the matrix of surmat, or null
    double (*fn)(double, double);  // the function of surfun
    double x(int i) const { return i == n - 1 ? xe : xa + i * dx; }
    double y(int j) const { return j == m - 1 ? ye : ya + j * dy; }
    // The value at fraction u from grid column i towards i2, v from row j
    // towards j2: the bilinear mean of the corners, or the function there.
    // Terms of weight 0 are left out, so a NaN that does not count stays out.
    double at(int i, int i2, double u, int j, int j2, double v) const {
        if (!z) return fn(x(i) + u * (x(i2) - x(i)), y(j) + v * (y(j2) - y(j)));
        const size_t mm = (size_t)m;
        double s = (1 - u) * (1 - v) * z[i * mm + j];
        if (v > 0) s += (1 - u) * v * z[i * mm + j2];
        if (u > 0) s += u * (1 - v) * z[i2 * mm + j];
        if (u > 0 && v > 0) s += u * v * z[i2 * mm + j2];
        return s;
    }
};

// One direction of the sweep: grid lines first, first + step, ..., over
// `strips` whole steps, with `count` lines per step.  A negative count is a
// stride: every |count|-th grid line, one line per step, and the far end
// pulled in to a whole number of strides.
struct Sweep {
    int first, step, strips, count;
    int at(int k) const { return first + k * step; }
};

Sweep make_sweep(int n, int pts, bool ascending) {
    Sweep w;
    int stride = pts < 0 ? -pts : 1;
    w.count = pts < 0 ? 1 : pts;
    w.strips = (n - 1) / stride;
    w.first = ascending ? 0 : n - 1;
    w.step = ascending ? stride : -stride;
    return w;
}

// A line along y at fraction u of the x step from i to i2: the points of
// every sub-step in y when `sub`, else the grid rows only.
void line_along_y(UserPen &pen, const Mesh &g, const Sweep &Y, int i, int i2, double u, bool sub) {
    double x = g.x(i) + u * (g.x(i2) - g.x(i));
    int cnt = sub ? Y.count : 1;
    pen.down = false;
    for (int k = 0; k < Y.strips; ++k) {
        int j = Y.at(k), j2 = Y.at(k + 1);
        for (int l = 0; l < cnt; ++l) {
            double v = (double)l / cnt;
            pen.draw(x, g.y(j) + v * (g.y(j2) - g.y(j)), g.at(i, i2, u, j, j2, v));
        }
    }
    int j = Y.at(Y.strips);
    pen.draw(x, g.y(j), g.at(i, i2, u, j, j, 0));
}

// The same along x at fraction v of the y step from j to j2.
void line_along_x(UserPen &pen, const Mesh &g, const Sweep &X, int j, int j2, double v) {
    double y = g.y(j) + v * (g.y(j2) - g.y(j));
    pen.down = false;
    for (int k = 0; k <= X.strips; ++k) {
        int i = X.at(k);
        pen.draw(g.x(i), y, g.at(i, i, 0, j, j2, v));
    }
}

// The short pieces from the line at fraction u to the next position u2
// between grid columns i and i2, at every y position of the line.
void cross_pieces(UserPen &pen, const Mesh &g, const Sweep &Y, int i, int i2, double u, double u2) {
    double xa = g.x(i) + u * (g.x(i2) - g.x(i)), xb = g.x(i) + u2 * (g.x(i2) - g.x(i));
    for (int k = 0; k <= Y.strips; ++k) {
        int j = Y.at(k), j2 = k < Y.strips ? Y.at(k + 1) : j;
        int cnt = k < Y.strips ? Y.count : 1;
        for (int l = 0; l < cnt; ++l) {
            double v = (double)l / cnt, y = g.y(j) + v * (g.y(j2) - g.y(j));
            pen.move(xa, y, g.at(i, i2, u, j, j2, v));
            pen.draw(xb, y, g.at(i, i2, u2, j, j2, v));
        }
    }
}

void draw_mesh(SpaceBlock *b, const Mesh &g, int ixpts, int iypts) {
    const SpaceState &s = b->sp;
    Sweep X = make_sweep(g.n, ixpts, s.ex < 0), Y = make_sweep(g.m, iypts, s.ey < 0);
    HiddenFrame frame(b);
    UserPen pen{b, false};
    if (!s.nohide && ixpts != 0 && iypts != 0) {
        // Interleaved: each line along y, then the pieces across to the
        // next, strip by strip from the front.
        reset_pass(b);
        for (int k = 0; k < X.strips; ++k) {
            int i = X.at(k), i2 = X.at(k + 1);
            for (int a = 0; a < X.count; ++a) {
                double u = (double)a / X.count, u2 = (double)(a + 1) / X.count;
                line_along_y(pen, g, Y, i, i2, u, true);
                cross_pieces(pen, g, Y, i, i2, u, u2);
            }
        }
        int i = X.at(X.strips);
        line_along_y(pen, g, Y, i, i, 0, true);
        return;
    }
    if (ixpts != 0) {
        reset_pass(b);
        for (int k = 0; k < X.strips; ++k)
            for (int a = 0; a < X.count; ++a)
                line_along_y(pen, g, Y, X.at(k), X.at(k + 1), (double)a / X.count, false);
        int i = X.at(X.strips);
        line_along_y(pen, g, Y, i, i, 0, false);
    }
    if (iypts != 0) {
        reset_pass(b);
        for (int k = 0; k < Y.strips; ++k)
            for (int a = 0; a < Y.count; ++a)
                line_along_x(pen, g, X, Y.at(k), Y.at(k + 1), (double)a / Y.count);
        int j = Y.at(Y.strips);
        line_along_x(pen, g, X, j, j, 0);
    }
}

// Refuses a call of more than kMaxPoints points with warning 2 and the
// larger count of lines per step.
bool too_many(SpaceBlock *b, int n, int m, int ixpts, int iypts) {
    double cx = ixpts > 1 ? ixpts : 1, cy = iypts > 1 ? iypts : 1;
    if ((double)n * m * cx * cy <= kMaxPoints) return false;
    qqwarn(b, 2, ixpts > iypts ? ixpts : iypts);
    return true;
}

// ---------------------------------------------------------------------------
// surfce: the mesh through given x and y values, or columns.

struct Columns {
    const double *x, *y, *z;
    int n, m;
};

// A column of eight corners: the top rectangle from corner 1 to 4 and back
// to 1, the bottom one, then the four upright edges.
void column(UserPen &pen, double x, double y, double hx, double hy, double top, double base) {
    const double cx[4] = {x - hx, x + hx, x + hx, x - hx}, cy[4] = {y - hy, y - hy, y + hy, y + hy};
    for (double z : {top, base}) {
        pen.down = false;
        for (int k = 0; k <= 4; ++k) pen.draw(cx[k % 4], cy[k % 4], z);
    }
    for (int k = 0; k < 4; ++k) {
        pen.move(cx[k], cy[k], top);
        pen.draw(cx[k], cy[k], base);
    }
}

void draw_columns(SpaceBlock *b, UserPen &pen, const Columns &c, const Sweep &X, const Sweep &Y) {
    const SpaceState &s = b->sp;
    double f = b->crv.barwth * 0.5;
    double hx = (c.x[1] - c.x[0]) * X.step * f, hy = (c.y[1] - c.y[0]) * Y.step * f;
    double base = s.umin[2];
    for (int k = 0; k <= X.strips; ++k) {
        int i = X.at(k);
        for (int l = 0; l <= Y.strips; ++l) {
            int j = Y.at(l);
            double z = c.z[(size_t)i * c.m + j];
            if (!(z >= base)) continue;
            // Tested against the columns in front first, then added to the
            // horizon, so that a column's own edges do not hide each other.
            set_mode(b, 0);
            column(pen, c.x[i], c.y[j], hx, hy, z, base);
            // Without hidden lines the second pass would only draw the
            // same edges again.
            if (!b->dev.horizon) continue;
            set_mode(b, 2);
            column(pen, c.x[i], c.y[j], hx, hy, z, base);
        }
    }
    set_mode(b, 1);
}

// Whether the array runs towards the viewer's far side when walked from
// its first element: ascending when the eye looks from below the axis.
bool ascending(double first, double last, double a, double e, double eye) {
    double q = (first - last) / (a - e);
    return (eye < 0 && q > 0) || (eye > 0 && q < 0);
}

void draw_surfce(SpaceBlock *b, const Columns &c) {
    const SpaceState &s = b->sp;
    double lim[4];
    axis_limits(b, lim);
    Sweep X = make_sweep(c.n, 1, ascending(c.x[0], c.x[c.n - 1], lim[0], lim[1], s.ex));
    Sweep Y = make_sweep(c.m, 1, ascending(c.y[0], c.y[c.m - 1], lim[2], lim[3], s.ey));
    auto z = [&](int i, int j) { return c.z[(size_t)i * c.m + j]; };
    HiddenFrame frame(b);
    UserPen pen{b, false};
    reset_pass(b);
    if (b->crv.polcrv == CRV_BARS) {
        draw_columns(b, pen, c, X, Y);
        return;
    }
    auto along_j = [&](int i) {
        pen.down = false;
        for (int l = 0; l <= Y.strips; ++l) pen.draw(c.x[i], c.y[Y.at(l)], z(i, Y.at(l)));
    };
    auto along_i = [&](int j) {
        pen.down = false;
        for (int k = 0; k <= X.strips; ++k) pen.draw(c.x[X.at(k)], c.y[j], z(X.at(k), j));
    };
    if (s.suropt == 1) {
        for (int k = 0; k <= X.strips; ++k) along_j(X.at(k));
        return;
    }
    if (s.suropt == 2) {
        for (int l = 0; l <= Y.strips; ++l) along_i(Y.at(l));
        return;
    }
    // The two front edges, then each cell adds its two rear edges after
    // its front neighbours.
    along_j(X.first);
    along_i(Y.first);
    for (int l = 1; l <= Y.strips; ++l) {
        int j = Y.at(l), jp = Y.at(l - 1);
        for (int k = 1; k <= X.strips; ++k) {
            int i = X.at(k), ip = X.at(k - 1);
            pen.move(c.x[i], c.y[jp], z(i, jp));
            pen.draw(c.x[i], c.y[j], z(i, j));
            pen.draw(c.x[ip], c.y[j], z(ip, j));
        }
    }
}

// ---------------------------------------------------------------------------
// The subsystem: the horizon dies with the session; the reset rows.

void release(CoreBlock *blk) {
    SpaceBlock *b = qqspcblk(blk);
    qqhorz(b, 0, 0, 999);
}

void r_nohide(CoreBlock *blk) {
    SpaceBlock *b = qqspcblk(blk);
    b->sp.nohide = 0;
}
void r_surclr(CoreBlock *blk) {
    SpaceBlock *b = qqspcblk(blk);
    b->sp.surclr[0] = b->sp.surclr[1] = -1;
    b->sp.surclrset = 0;
}
void r_sursze(CoreBlock *blk) {
    SpaceBlock *b = qqspcblk(blk);
    b->cpl.sszset = 0;
}
void r_survis(CoreBlock *blk) {
    SpaceBlock *b = qqspcblk(blk);
    b->sp.survis = 0;
}

const ResetEntry kResets[] = {{"NOHI", r_nohide},
                              {"SURC", r_surclr},
                              {"SURS", r_sursze},
                              {"SURV", r_survis},
                              {nullptr, nullptr}};

}  // namespace

extern const Subsystem kxsub_surfaces = {"surfaces", nullptr, nullptr, release, kResets, release};

void surmat(const double *zmat, int n, int m, int ixpts, int iypts) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("surmat"));
    if (!b || !in_graf3d(b)) return;
    if (n < 2 || m < 2) {
        qqwarn(b, 2, n < 2 ? n : m);
        return;
    }
    if (ixpts == 0 && iypts == 0) return;
    if (too_many(b, n, m, ixpts, iypts)) return;
    double r[4];
    extent(b, r);
    Mesh g{n,    m,    r[0],   (r[1] - r[0]) / (n - 1), r[1], r[2], (r[3] - r[2]) / (m - 1),
           r[3], zmat, nullptr};
    draw_mesh(b, g, ixpts, iypts);
}

void surfun(double (*zfun)(double, double), int ixpts, double xdel, int iypts,
            double ydel) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("surfun"));
    if (!b || !in_graf3d(b)) return;
    if (!(xdel > 0) || !(ydel > 0)) {
        qqwarnd(b, 2, !(xdel > 0) ? xdel : ydel);
        return;
    }
    if (ixpts < 0 || iypts < 0) {
        qqwarn(b, 2, ixpts < 0 ? ixpts : iypts);
        return;
    }
    if (ixpts == 0 && iypts == 0) return;
    if (!zfun) return;
    double r[4];
    extent(b, r);
    // Points at the steps from the start; the last one is the end of the
    // range, so the surface covers it whole.
    double cnt[2];
    for (int k = 0; k < 2; ++k) {
        cnt[k] = std::ceil(std::fabs(r[2 * k + 1] - r[2 * k]) / (k ? ydel : xdel) - 1e-6) + 1;
        if (!(cnt[k] <= kMaxPoints)) {
            qqwarnd(b, 2, k ? ydel : xdel);
            return;
        }
        if (cnt[k] < 2) cnt[k] = 2;
    }
    if (too_many(b, (int)cnt[0], (int)cnt[1], ixpts, iypts)) return;
    double sx = r[1] >= r[0] ? xdel : -xdel, sy = r[3] >= r[2] ? ydel : -ydel;
    Mesh g{(int)cnt[0], (int)cnt[1], r[0], sx, r[1], r[2], sy, r[3], nullptr, zfun};
    draw_mesh(b, g, ixpts, iypts);
}

void surfce(const double *xray, int n, const double *yray, int m, const double *zmat) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("surfce"));
    if (!b || !in_graf3d(b)) return;
    if (n < 2 || m < 2) {
        qqwarn(b, 2, n < 2 ? n : m);
        return;
    }
    draw_surfce(b, Columns{xray, yray, zmat, n, m});
}

void sursze(double xa, double xe, double ya, double ye) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("sursze"));
    if (!b) return;
    if (xa == xe || ya == ye) {
        qqwar0(b, 10);
        return;
    }
    ColourPlotState &c = b->cpl;
    c.ssz[0] = xa;
    c.ssz[1] = xe;
    c.ssz[2] = ya;
    c.ssz[3] = ye;
    c.sszset = 1;
}

void suropt(const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("suropt"));
    if (!b) return;
    int k = qqkey(b, "BOTH+XISO+YISO", 3, copt);
    if (k > 0) b->sp.suropt = k - 1;
}

void survis(const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("survis"));
    if (!b) return;
    int k = qqkey(b, "AUTO+TOP +BOTT+BOTH", 4, copt);
    if (k > 0) b->sp.survis = k - 1;
}

void nohide() noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("nohide"));
    if (!b) return;
    b->sp.nohide = 1;
}

void surclr(int ictop, int icbot) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("surclr"));
    if (!b) return;
    if (ictop < -1 || icbot < -1) {
        qqwarn(b, 2, ictop < -1 ? ictop : icbot);
        return;
    }
    b->sp.surclr[0] = ictop;
    b->sp.surclr[1] = icbot;
    b->sp.surclrset = 1;
}
