// Shields: regions of the page in which lines are not drawn.
//
// The records live packed in a small store of 16-bit words.  Whenever the
// store changes, its visible records are decoded into doubles with a
// bounding box each, and the device layer's segment hook is set while any
// record exists: a page without regions pays nothing on its lines.  The
// hook cuts each segment at the borders of the regions and leaves out the
// pieces inside.
#include <algorithm>
#include <cmath>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/subsystems.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "plots/fill.h"
#include "plots/plot_block.h"
#include "plots/shields.h"

namespace {

const double kTwoPi = 6.2831854820251465;
const double kPi = 3.14159265358979323846;
const int kMaxCross = 300;
const int kWords[7] = {0, 6, 7, 5, 7, 7, 0};

short round16(double v) {
    double r = v < 0 ? v - 0.5 : v + 0.5;
    if (!(r > -32768.0)) r = -32768.0;
    if (r > 32767.0) r = 32767.0;
    return (short)(int)r;
}

// An angle in radians folded into 0 to 2 pi, kept as radians times 1000.
short fold_angle(double a) {
    if (!std::isfinite(a)) a = 0;
    a = std::fmod(a, kTwoPi);
    while (a < -1e-5) a += kTwoPi;
    while (a > 6.283195482024894) a -= kTwoPi;
    return round16(a * 1000.0);
}

int type_of(short code) { return code / 100; }
int kind_of(short code) { return code / 10 % 10; }
bool hidden(short code) { return code % 10 == 1; }
int words_of(const ShieldState &s, int off) {
    int t = type_of(s.store[off]);
    return t == 6 ? 3 + 2 * s.store[off + 2] : kWords[t];
}

int segment_hook(DeviceBlock *b, double x0, double y0, double x1, double y1);

int cell_of(double v, double lo, double scale) {
    double c = (v - lo) * scale;
    return c < 0 ? 0 : c >= QQ_SHLGRID - 1 ? QQ_SHLGRID - 1 : (int)c;
}

void index_grid(ShieldState &s) {
    for (auto &row : s.cell)
        for (auto &c : row)
            for (auto &m : c) m = 0;
    if (s.nvis == 0) return;
    s.gsx = QQ_SHLGRID / (s.ux1 - s.ux0 + 1.0);
    s.gsy = QQ_SHLGRID / (s.uy1 - s.uy0 + 1.0);
    for (int i = 0; i < s.nvis; ++i) {
        const ShieldRegion &r = s.vis[i];
        int i0 = cell_of(r.bx0, s.ux0, s.gsx), i1 = cell_of(r.bx1, s.ux0, s.gsx);
        int j0 = cell_of(r.by0, s.uy0, s.gsy), j1 = cell_of(r.by1, s.uy0, s.gsy);
        for (int gi = i0; gi <= i1; ++gi)
            for (int gj = j0; gj <= j1; ++gj) s.cell[gi][gj][i >> 6] |= 1ull << (i & 63);
    }
}

// Decodes the visible records and sets or clears the device hook.
void rebuild(PlotBlock *b) {
    ShieldState &s = b->shl;
    s.nvis = 0;
    s.ux0 = s.uy0 = 1e300;
    s.ux1 = s.uy1 = -1e300;
    for (int off = 0, k = 0; k < s.nreg; ++k, off += words_of(s, off)) {
        short code = s.store[off];
        if (hidden(code)) continue;
        ShieldRegion &r = s.vis[s.nvis++];
        r.type = type_of(code);
        r.off = off;
        const short *w = s.store + off + 2;
        for (int i = 0; i < 5; ++i) r.v[i] = 0;
        int nv = r.type == 6 ? 0 : kWords[r.type] - 2;
        for (int i = 0; i < nv; ++i) r.v[i] = w[i];
        r.c = 1, r.s = 0;
        switch (r.type) {
        case 1:
            r.bx0 = std::min(r.v[0], r.v[2]), r.bx1 = std::max(r.v[0], r.v[2]);
            r.by0 = std::min(r.v[1], r.v[3]), r.by1 = std::max(r.v[1], r.v[3]);
            break;
        case 2: {
            double a = r.v[4] / 1000.0;
            r.v[4] = a;
            r.c = std::cos(a), r.s = std::sin(a);
            // Corners of the box turned about (x1, y1).
            double w2 = r.v[2] - r.v[0], h2 = r.v[3] - r.v[1];
            const double us[4] = {0, w2, w2, 0}, vs[4] = {0, 0, h2, h2};
            r.bx0 = r.by0 = 1e300, r.bx1 = r.by1 = -1e300;
            for (int i = 0; i < 4; ++i) {
                double x = r.v[0] + us[i] * r.c + vs[i] * r.s, y = r.v[1] - us[i] * r.s + vs[i] * r.c;
                r.bx0 = std::min(r.bx0, x), r.bx1 = std::max(r.bx1, x);
                r.by0 = std::min(r.by0, y), r.by1 = std::max(r.by1, y);
            }
            break;
        }
        case 3:
            r.bx0 = r.v[0] - r.v[2], r.bx1 = r.v[0] + r.v[2];
            r.by0 = r.v[1] - r.v[2], r.by1 = r.v[1] + r.v[2];
            break;
        case 4: {
            double a = r.v[4] / 1000.0, m = std::max(r.v[2], r.v[3]);
            r.v[4] = a;
            r.c = std::cos(a), r.s = std::sin(a);
            r.bx0 = r.v[0] - m, r.bx1 = r.v[0] + m, r.by0 = r.v[1] - m, r.by1 = r.v[1] + m;
            break;
        }
        case 5:
            r.v[3] /= 1000.0, r.v[4] /= 1000.0;
            r.bx0 = r.v[0] - r.v[2], r.bx1 = r.v[0] + r.v[2];
            r.by0 = r.v[1] - r.v[2], r.by1 = r.v[1] + r.v[2];
            break;
        default: {
            int n = w[0];
            r.bx0 = r.by0 = 1e300, r.bx1 = r.by1 = -1e300;
            for (int i = 0; i < n; ++i) {
                r.bx0 = std::min(r.bx0, (double)w[1 + 2 * i]), r.bx1 = std::max(r.bx1, (double)w[1 + 2 * i]);
                r.by0 = std::min(r.by0, (double)w[2 + 2 * i]), r.by1 = std::max(r.by1, (double)w[2 + 2 * i]);
            }
        }
        }
        s.ux0 = std::min(s.ux0, r.bx0), s.uy0 = std::min(s.uy0, r.by0);
        s.ux1 = std::max(s.ux1, r.bx1), s.uy1 = std::max(s.uy1, r.by1);
    }
    index_grid(s);
    b->dev.segtest = s.nreg > 0 ? segment_hook : nullptr;
}

// Removes the records for which a test holds; returns how many.
template <class Test>
int remove_if(PlotBlock *b, Test test) {
    ShieldState &s = b->shl;
    int out = 0, kept = 0, gone = 0;
    for (int off = 0, k = 0; k < s.nreg; ++k) {
        int n = words_of(s, off);
        if (test(s.store + off)) {
            if (kind_of(s.store[off]) == 0) s.nown--;
            ++gone;
        } else {
            if (out != off) std::copy(s.store + off, s.store + off + n, s.store + out);
            out += n;
            ++kept;
        }
        off += n;
    }
    s.nreg = kept;
    s.nused = out;
    if (kept == 0) s.lastid = s.nown = 0;
    rebuild(b);
    return gone;
}

// ---- point in region ----

bool in_angle(double a, double a0, double a1) {
    while (a < a0 - 1e-5) a += 6.2831853;
    while (a > a0 + 6.2831853 + 1e-5) a -= 6.2831853;
    return a <= a1 + 1e-5;
}

bool inside(const ShieldState &s, const ShieldRegion &r, double x, double y) {
    if (x < r.bx0 || x > r.bx1 || y < r.by0 || y > r.by1) return false;
    const double *v = r.v;
    switch (r.type) {
    case 1:
        return true;
    case 2: {
        double dx = x - v[0], dy = y - v[1];
        double u = dx * r.c - dy * r.s, w = dx * r.s + dy * r.c;
        double wu = v[2] - v[0], wv = v[3] - v[1];
        return u >= std::min(0.0, wu) && u <= std::max(0.0, wu) && w >= std::min(0.0, wv) &&
               w <= std::max(0.0, wv);
    }
    case 3: {
        double dx = x - v[0], dy = y - v[1];
        return dx * dx + dy * dy <= v[2] * v[2];
    }
    case 4: {
        double dx = x - v[0], dy = y - v[1];
        double u = (dx * r.c - dy * r.s) / v[2], w = (dx * r.s + dy * r.c) / v[3];
        return u * u + w * w <= 1.0;
    }
    case 5: {
        double dx = x - v[0], dy = y - v[1];
        if (dx * dx + dy * dy > v[2] * v[2]) return false;
        if (dx == 0 && dy == 0) return true;
        double a = std::atan2(-dy, dx);
        return in_angle(a, v[3], v[4]);
    }
    default: {
        const short *w = s.store + r.off + 2;
        int n = w[0];
        double yy = y;
        double fr = yy - std::floor(yy + 0.5);
        if (std::fabs(fr) < 0.01) yy += 0.1;
        bool odd = false;
        for (int i = 0, j = n - 1; i < n; j = i++) {
            double xi = w[1 + 2 * i], yi = w[2 + 2 * i], xj = w[1 + 2 * j], yj = w[2 + 2 * j];
            if (std::fabs(yi - yj) <= 0.001) continue;
            if ((yi > yy) != (yj > yy)) {
                double xc = xi + (yy - yi) * (xj - xi) / (yj - yi);
                if (xc < x) odd = !odd;
            }
        }
        return odd;
    }
    }
}

bool in_any(const ShieldState &s, const unsigned long long *mask, double x, double y) {
    for (int w = 0; w < QQ_SHLMASK; ++w)
        for (unsigned long long m = mask[w]; m; m &= m - 1)
            if (inside(s, s.vis[w * 64 + __builtin_ctzll(m)], x, y)) return true;
    return false;
}

// ---- crossings of a segment with a border, as parameters along it ----

struct Cross {
    double t[kMaxCross];
    int n;
    bool full;
};

void add(Cross &c, double t) {
    if (!(t > 0.0 && t < 1.0)) return;
    if (c.n >= kMaxCross) {
        c.full = true;
        return;
    }
    c.t[c.n++] = t;
}

// Crossing of the segment p + t d with the edge from a to b.
void edge(Cross &c, double px, double py, double dx, double dy, double ax, double ay, double bx,
          double by) {
    double ex = bx - ax, ey = by - ay;
    double den = dx * ey - dy * ex;
    if (den == 0) return;
    double t = ((ax - px) * ey - (ay - py) * ex) / den;
    double u = ((ax - px) * dy - (ay - py) * dx) / den;
    if (u >= 0 && u <= 1) add(c, t);
}

void box_edges(Cross &c, double px, double py, double dx, double dy, double x0, double y0, double x1,
               double y1) {
    edge(c, px, py, dx, dy, x0, y0, x1, y0);
    edge(c, px, py, dx, dy, x1, y0, x1, y1);
    edge(c, px, py, dx, dy, x1, y1, x0, y1);
    edge(c, px, py, dx, dy, x0, y1, x0, y0);
}

// Crossings with the unit circle of p + t d.
void unit_circle(Cross &c, double px, double py, double dx, double dy, double *out, int *nout) {
    double a = dx * dx + dy * dy, bq = 2 * (px * dx + py * dy), cq = px * px + py * py - 1;
    double disc = bq * bq - 4 * a * cq;
    *nout = 0;
    if (a == 0 || disc < 0) return;
    double sq = std::sqrt(disc);
    out[0] = (-bq - sq) / (2 * a);
    out[1] = (-bq + sq) / (2 * a);
    *nout = 2;
    (void)c;
}

void crossings(const ShieldState &s, const ShieldRegion &r, Cross &c, double x0, double y0, double dx,
               double dy) {
    const double *v = r.v;
    switch (r.type) {
    case 1:
        box_edges(c, x0, y0, dx, dy, r.bx0, r.by0, r.bx1, r.by1);
        break;
    case 2: {
        // The segment in the box's own frame.
        double qx = x0 - v[0], qy = y0 - v[1];
        double u = qx * r.c - qy * r.s, w = qx * r.s + qy * r.c;
        double du = dx * r.c - dy * r.s, dw = dx * r.s + dy * r.c;
        box_edges(c, u, w, du, dw, 0, 0, v[2] - v[0], v[3] - v[1]);
        break;
    }
    case 3:
    case 4: {
        double qx = x0 - v[0], qy = y0 - v[1], ddx = dx, ddy = dy;
        double ra = v[2], rb = r.type == 3 ? v[2] : v[3];
        if (r.type == 4) {
            double u = qx * r.c - qy * r.s, w = qx * r.s + qy * r.c;
            double du = dx * r.c - dy * r.s, dw = dx * r.s + dy * r.c;
            qx = u, qy = w, ddx = du, ddy = dw;
        }
        double t[2];
        int n;
        unit_circle(c, qx / ra, qy / rb, ddx / ra, ddy / rb, t, &n);
        for (int i = 0; i < n; ++i) add(c, t[i]);
        break;
    }
    case 5: {
        double t[2];
        int n;
        unit_circle(c, (x0 - v[0]) / v[2], (y0 - v[1]) / v[2], dx / v[2], dy / v[2], t, &n);
        for (int i = 0; i < n; ++i) {
            double x = x0 + t[i] * dx - v[0], y = y0 + t[i] * dy - v[1];
            if (in_angle(std::atan2(-y, x), v[3], v[4])) add(c, t[i]);
        }
        for (int k = 3; k <= 4; ++k)
            edge(c, x0, y0, dx, dy, v[0], v[1], v[0] + v[2] * std::cos(v[k]), v[1] - v[2] * std::sin(v[k]));
        break;
    }
    default: {
        const short *w = s.store + r.off + 2;
        int n = w[0];
        for (int i = 0, j = n - 1; i < n; j = i++)
            edge(c, x0, y0, dx, dy, w[1 + 2 * j], w[2 + 2 * j], w[1 + 2 * i], w[2 + 2 * i]);
    }
    }
}

// The segment hook of the device layer.  Returns 1 when it has sent the
// segment itself (in pieces, or as a move), 0 to let the layer draw it.
int segment_hook(DeviceBlock *db, double x0, double y0, double x1, double y1) {
    PlotBlock *b = qqpltblk(db);
    const ShieldState &s = b->shl;
    if (s.nvis == 0) return 0;
    double sx0 = std::min(x0, x1), sx1 = std::max(x0, x1), sy0 = std::min(y0, y1), sy1 = std::max(y0, y1);
    if (sx1 < s.ux0 || sx0 > s.ux1 || sy1 < s.uy0 || sy0 > s.uy1) return 0;
    // The regions whose cells the segment's box touches, in store order.
    unsigned long long mask[QQ_SHLMASK] = {0, 0, 0, 0};
    int i0 = cell_of(sx0, s.ux0, s.gsx), i1 = cell_of(sx1, s.ux0, s.gsx);
    int j0 = cell_of(sy0, s.uy0, s.gsy), j1 = cell_of(sy1, s.uy0, s.gsy);
    unsigned long long any = 0;
    for (int gi = i0; gi <= i1; ++gi)
        for (int gj = j0; gj <= j1; ++gj)
            for (int w = 0; w < QQ_SHLMASK; ++w) any |= (mask[w] |= s.cell[gi][gj][w]);
    if (!any) return 0;
    double dx = x1 - x0, dy = y1 - y0;
    if (std::fabs(dx) < 0.001 && std::fabs(dy) < 0.001) {
        if (!in_any(s, mask, 0.5 * (x0 + x1), 0.5 * (y0 + y1))) return 0;
        qqplot(b, x1, y1, QQ_MOVE);
        return 1;
    }
    Cross c;
    c.n = 0;
    c.full = false;
    bool warned = false, near = false;
    for (int w = 0; w < QQ_SHLMASK && !c.full; ++w)
        for (unsigned long long m = mask[w]; m; m &= m - 1) {
            const ShieldRegion &r = s.vis[w * 64 + __builtin_ctzll(m)];
            if (sx1 < r.bx0 || sx0 > r.bx1 || sy1 < r.by0 || sy0 > r.by1) continue;
            near = true;
            int before = c.n;
            crossings(s, r, c, x0, y0, dx, dy);
            if (c.full && !warned) {
                qqwar0(b, 26);
                warned = true;
            }
            if (c.n == before && inside(s, r, x0, y0) && inside(s, r, x1, y1)) {
                qqplot(b, x1, y1, QQ_MOVE);
                return 1;
            }
            if (c.full) break;
        }
    if (!near) return 0;
    if (c.n == 0) {
        // No border is crossed: the segment lies wholly in or out.
        if (!in_any(s, mask, 0.5 * (x0 + x1), 0.5 * (y0 + y1))) return 0;
        qqplot(b, x1, y1, QQ_MOVE);
        return 1;
    }
    std::sort(c.t, c.t + c.n);
    double len = std::hypot(dx, dy), tol = 0.001 / len;
    int m = 0;
    for (int i = 0; i < c.n; ++i)
        if (m == 0 || c.t[i] - c.t[m - 1] > tol) c.t[m++] = c.t[i];
    double ta = 0;
    for (int i = 0; i <= m; ++i) {
        double tb = i < m ? c.t[i] : 1.0;
        double ex = i < m ? x0 + tb * dx : x1, ey = i < m ? y0 + tb * dy : y1;
        if ((tb - ta) * len > 0.001 && in_any(s, mask, x0 + 0.5 * (ta + tb) * dx, y0 + 0.5 * (ta + tb) * dy))
            qqplot(b, ex, ey, QQ_MOVE);
        else
            qqplot(b, ex, ey, QQ_DRAW);
        ta = tb;
    }
    return 1;
}

int add_record(PlotBlock *b, int type, const short *vals, int nv) {
    ShieldState &s = b->shl;
    qqflsh(b);
    if (s.nreg == 0) s.nused = s.lastid = s.nown = 0;
    if (s.nused + 2 + nv >= QQ_SHLWORDS + 1 || s.nreg >= QQ_SHLMAX) {
        qqwar0(b, 47);
        return 0;
    }
    short *w = s.store + s.nused;
    w[0] = (short)(type * 100 + s.kind * 10);
    w[1] = (short)(++s.lastid);
    std::copy(vals, vals + nv, w + 2);
    s.nused += 2 + nv;
    s.nreg++;
    if (s.kind == 0) s.nown++;
    rebuild(b);
    return s.lastid;
}

void shields_init(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    ShieldState &s = b->shl;
    s.nused = s.nreg = s.lastid = s.nown = s.kind = s.surf = 0;
    for (int &f : s.autofl) f = 0;
    s.nvis = 0;
    b->dev.segtest = nullptr;
    b->txt.shield = nullptr;
}

void reset_flags(CoreBlock *blk) {
    PlotBlock *b = qqpltblk(blk);
    for (int &f : b->shl.autofl) f = 0;
    b->txt.shield = nullptr;
}
void reset_surface(CoreBlock *b) {
    qqpltblk(b)->shl.surf = 0;
}

const ResetEntry kResets[] = {{"SHIE", reset_flags}, {"SHLS", reset_surface}, {nullptr, nullptr}};

}  // namespace

extern const Subsystem kxsub_shields = {"shields", nullptr, shields_init, nullptr, kResets, nullptr};

int qqshladd(PlotBlock *b, int type, const double *v, int nv) noexcept {
    if (type < 1 || type > 6) return 0;
    short w[QQ_SHLWORDS];
    double ox = b->dev.nxsh, oy = b->dev.nysh;
    int n = 0;
    if (type == 6) {
        int np = nv / 2;
        if (np < 3 || 1 + 2 * np > QQ_SHLWORDS) {
            if (np < 3) qqwarn(b, 30, np);
            else qqwar0(b, 47);
            return 0;
        }
        w[n++] = (short)np;
        for (int i = 0; i < np; ++i) {
            w[n++] = round16(v[2 * i] + ox);
            w[n++] = round16(v[2 * i + 1] + oy);
        }
    } else {
        if (nv != kWords[type] - 2) return 0;
        for (int i = 0; i < nv; ++i) {
            bool pos = (i == 0 || (i == 2 && type <= 2));
            bool posy = (i == 1 || (i == 3 && type <= 2));
            double val = v[i];
            bool angle = (type == 2 && i == 4) || (type == 4 && i == 4) || (type == 5 && i >= 3);
            if (angle) {
                w[n++] = fold_angle(val);
                continue;
            }
            if (pos) val += ox;
            if (posy) val += oy;
            w[n++] = round16(val);
        }
        if (type == 5 && w[4] < w[3]) w[4] = round16(w[4] + kTwoPi * 1000.0);
    }
    return add_record(b, type, w, n);
}

int qqshlauto(PlotBlock *b, int kind) noexcept {
    return kind >= 1 && kind <= 5 ? b->shl.autofl[kind - 1] : 0;
}

int qqshlautoadd(PlotBlock *b, int kind, int type, const double *v, int nv) noexcept {
    int saved = b->shl.kind;
    b->shl.kind = kind;
    int id = qqshladd(b, type, v, nv);
    b->shl.kind = saved;
    return id;
}

namespace {

// The box of a string drawn while texts are shielded: a rectangle when the
// text runs straight across or up the page, else the turned box as a
// polygon.
void text_shield(TextBlock *tb, const double *bx, const double *by) {
    PlotBlock *b = qqpltblk(tb);
    bool across = std::fabs(by[0] - by[1]) < 1e-9 && std::fabs(bx[1] - bx[2]) < 1e-9;
    bool up = std::fabs(bx[0] - bx[1]) < 1e-9 && std::fabs(by[1] - by[2]) < 1e-9;
    if (across || up) {
        double v[4] = {std::min(bx[0], bx[2]), std::min(by[0], by[2]), std::max(bx[0], bx[2]),
                       std::max(by[0], by[2])};
        qqshlautoadd(b, QQ_SHL_MESS, 1, v, 4);
        return;
    }
    double v[8];
    for (int k = 0; k < 4; ++k) v[2 * k] = bx[k], v[2 * k + 1] = by[k];
    qqshlautoadd(b, QQ_SHL_MESS, 6, v, 8);
}

}  // namespace

void qqshldelid(PlotBlock *b, int id, int kind) noexcept {
    if (id <= 0) return;
    qqflsh(b);
    remove_if(b, [id, kind](const short *w) { return w[1] == id && kind_of(w[0]) == kind; });
}

namespace {

// ---- the frame of an own region ----

// The frame is drawn before the region exists, with the segment hook
// out of the way: the frame lies on the region's border and would
// otherwise be cut away by the region itself.
struct FrameScope {
    PlotBlock *b;
    int (*hook)(DeviceBlock *, double, double, double, double);
    int pl3on, trfon;
    explicit FrameScope(PlotBlock *bb)
        : b(bb), hook(bb->dev.segtest), pl3on(bb->dev.pl3on), trfon(bb->dev.trfon) {
        qqflsh(b);
        b->dev.segtest = nullptr;
        b->dev.pl3on = 0;
        b->dev.trfon = 0;
    }
    ~FrameScope() {
        qqflsh(b);
        b->dev.segtest = hook;
        b->dev.pl3on = pl3on;
        b->dev.trfon = trfon;
    }
};

int frame_of(PlotBlock *b) {
    return b->shl.kind == 0 ? b->ax.frmthk : 0;
}

// The distance of (x, y) from the middle of the page and the page's half
// diagonal: a circle about (x, y) can touch the page only while its radius
// lies within the half diagonal of that distance.
void page_reach(PlotBlock *b, double x, double y, double *dist, double *half) {
    double page[4];
    qqpagebox(b, page);
    double mx = 0.5 * (page[0] + page[2]), my = 0.5 * (page[1] + page[3]);
    *dist = std::hypot(x - mx, y - my);
    *half = 0.5 * std::hypot(page[2] - page[0], page[3] - page[1]);
}

// |t| ellipses about (x, y), each semi-axis grown (or, for t below 0,
// shrunk) by i; a circle has a equal to b.
void frame_ellipse(PlotBlock *b, double x, double y, double a, double bb, double angle, int t) {
    FrameScope scope(b);
    double c = std::cos(angle), sn = std::sin(angle);
    double dist, half;
    page_reach(b, x, y, &dist, &half);
    const double lo = dist - half - std::max(a, bb), hi = dist + half - std::min(a, bb);
    qqframesteps(t, &lo, &hi, 1, [&](int i) {
        double e = t > 0 ? i : -i, ra = a + e, rb = bb + e;
        if (ra <= 0 || rb <= 0) return;
        int steps = std::max(16, std::min(720, (int)(std::max(ra, rb) * 0.5)));
        for (int k = 0; k <= steps; ++k) {
            double p = 2 * kPi * k / steps, u = ra * std::cos(p), v = -rb * std::sin(p);
            double px = x + u * c + v * sn, py = y - u * sn + v * c;
            if (k == 0)
                qqmove(b, px, py);
            else
                qqdraw(b, px, py);
        }
    });
}

// |t| frames round a pie sector of radius r from angle a0 to a1 (radians,
// counter-clockwise, y of the page downward): for each step e the arc at
// radius r + e, widened on both sides by the angle that spans e on the
// rim, and the two radial lines moved outward by e, which end where they
// cross, or at the midpoint of their inner ends when they do not.
void frame_pie(PlotBlock *b, double x, double y, double r, double a0, double a1, int t) {
    FrameScope scope(b);
    if (a1 < a0) a1 += 2 * kPi;
    // The arc, and the two radial lines moved along their normals.
    double dist, half, page[4], lo[3], hi[3];
    page_reach(b, x, y, &dist, &half);
    qqpagebox(b, page);
    lo[0] = dist - half - r, hi[0] = dist + half - r;
    qqpagespan(page, x, y, std::sin(a0), std::cos(a0), &lo[1], &hi[1]);
    qqpagespan(page, x, y, -std::sin(a1), -std::cos(a1), &lo[2], &hi[2]);
    qqframesteps(t, lo, hi, 3, [&](int i) {
        double e = t > 0 ? i : -i, R = r + e;
        if (R <= 0) return;
        double da = e / r, s0 = a0 - da, s1 = a1 + da;
        double uax = std::cos(a0), uay = -std::sin(a0), ubx = std::cos(a1), uby = -std::sin(a1);
        // Outward normals of the two edges.
        double nax = std::sin(a0), nay = std::cos(a0), nbx = -std::sin(a1), nby = -std::cos(a1);
        double pax = x + e * nax, pay = y + e * nay, pbx = x + e * nbx, pby = y + e * nby;
        double det = uax * -uby - -ubx * uay;
        double ix = 0.5 * (pax + pbx), iy = 0.5 * (pay + pby);
        if (std::fabs(det) > 1e-9) {
            double rx = pbx - pax, ry = pby - pay;
            double sa = (rx * -uby - -ubx * ry) / det, sb = (uax * ry - uay * rx) / det;
            if (sa > -R && sa < R && sb > -R && sb < R) ix = pax + sa * uax, iy = pay + sa * uay;
        }
        int steps = std::max(8, std::min(720, (int)(R * (s1 - s0) * 0.5)));
        qqmove(b, ix, iy);
        for (int k = 0; k <= steps; ++k) {
            double p = s0 + (s1 - s0) * k / steps;
            qqdraw(b, x + R * std::cos(p), y - R * std::sin(p));
        }
        qqdraw(b, ix, iy);
    });
}

// |t| polygons at the distances 0, 1, ... outside the polygon v of m
// points (inside for t below 0), each vertex where its two moved edges meet.
void frame_polygon(PlotBlock *b, const double *v, int m, int t) {
    FrameScope scope(b);
    double area = 0;
    for (int j = 0; j < m; ++j) {
        int k = (j + 1) % m;
        area += v[2 * j] * v[2 * k + 1] - v[2 * k] * v[2 * j + 1];
    }
    double turn = area > 0 ? 1.0 : -1.0;
    // Each edge, moved along its outward normal, meets the page only while
    // the distance lies within the page's span along that normal.
    double page[4], lo[2000], hi[2000];
    qqpagebox(b, page);
    int ne = 0;
    for (int j = 0; j < m && ne < 2000; ++j) {
        int p = (j + m - 1) % m;
        double ex = v[2 * j] - v[2 * p], ey = v[2 * j + 1] - v[2 * p + 1], l = std::hypot(ex, ey);
        if (l == 0) continue;
        qqpagespan(page, v[2 * j], v[2 * j + 1], turn * ey / l, -turn * ex / l, &lo[ne], &hi[ne]);
        ++ne;
    }
    qqframesteps(t, lo, hi, ne, [&](int i) {
        double d = t > 0 ? i : -i;
        for (int j = 0; j <= m; ++j) {
            int c = j % m, p = (c + m - 1) % m, q = (c + 1) % m;
            double x = v[2 * c], y = v[2 * c + 1];
            double e1x = x - v[2 * p], e1y = y - v[2 * p + 1], e2x = v[2 * q] - x, e2y = v[2 * q + 1] - y;
            double l1 = std::hypot(e1x, e1y), l2 = std::hypot(e2x, e2y);
            if (l1 == 0 || l2 == 0) continue;
            double n1x = turn * e1y / l1, n1y = -turn * e1x / l1;
            double n2x = turn * e2y / l2, n2y = -turn * e2x / l2;
            double k = 1 + n1x * n2x + n1y * n2y;
            double ox = k > 0.1 ? (n1x + n2x) / k : n2x, oy = k > 0.1 ? (n1y + n2y) / k : n2y;
            if (j == 0)
                qqmove(b, x + d * ox, y + d * oy);
            else
                qqdraw(b, x + d * ox, y + d * oy);
        }
    });
}

}  // namespace

// ---- public routines ----

void shield(const char *cblank, const char *cmode) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("shield"));
    if (!b) return;
    int k = qqkey(b, "MESS+SYMB+BARS+PIE +LEGE", 5, cblank);
    if (!k) return;
    int m = qqkey(b, "ON  +OFF +VIS +NOVI+DELE+RESE", 6, cmode);
    if (!m) return;
    ShieldState &s = b->shl;
    qqflsh(b);
    switch (m) {
    case 1:
    case 2:
        s.autofl[k - 1] = m == 1;
        if (k == QQ_SHL_MESS) b->txt.shield = m == 1 ? text_shield : nullptr;
        break;
    case 3:
    case 4:
        for (int off = 0, i = 0; i < s.nreg; ++i, off += words_of(s, off))
            if (kind_of(s.store[off]) == k) s.store[off] = (short)(s.store[off] / 10 * 10 + (m == 4));
        rebuild(b);
        break;
    default:
        if (m == 6) s.autofl[k - 1] = 0;
        if (m == 6 && k == QQ_SHL_MESS) b->txt.shield = nullptr;
        remove_if(b, [k](const short *w) { return kind_of(w[0]) == k; });
    }
}

void shlrec(int nx, int ny, int nw, int nh) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("shlrec"));
    if (!b) return;
    if (nw < 1 || nh < 1) {
        qqwarn(b, 2, nw < nh ? nw : nh);
        return;
    }
    double v[4] = {(double)nx, (double)ny, (double)nx + nw - 1, (double)ny + nh - 1};
    if (int t = frame_of(b)) {
        FrameScope scope(b);
        qqframe(b, nx, ny, nw, nh, t, 0.0, -1);
    }
    qqshladd(b, 1, v, 4);
}

void shlrct(int nx, int ny, int nw, int nh, double angle) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("shlrct"));
    if (!b) return;
    if (nw < 1 || nh < 1 || !std::isfinite(angle)) {
        qqwarn(b, 2, nw < nh ? nw : nh);
        return;
    }
    double y = qqyflp(b, ny);
    double v[5] = {(double)nx, y, (double)nx + nw - 1, y + nh - 1, angle * kPi / 180.0};
    if (int t = frame_of(b)) {
        FrameScope scope(b);
        qqframe(b, nx, (int)y, nw, nh, t, angle, -1);
    }
    qqshladd(b, std::fabs(angle) < 0.001 ? 1 : 2, v, std::fabs(angle) < 0.001 ? 4 : 5);
}

void shlcir(int nx, int ny, int nr) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("shlcir"));
    if (!b) return;
    if (qqchki(b, nr, 1, 10000)) return;
    double v[3] = {(double)nx, qqyflp(b, ny), (double)nr};
    if (int t = frame_of(b)) frame_ellipse(b, v[0], v[1], nr, nr, 0.0, t);
    qqshladd(b, 3, v, 3);
}

void shlell(int nx, int ny, int na, int nb, double angle) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("shlell"));
    if (!b) return;
    if (na < 1 || nb < 1 || !std::isfinite(angle)) {
        qqwarn(b, 2, na < nb ? na : nb);
        return;
    }
    double v[5] = {(double)nx, qqyflp(b, ny), (double)na, (double)nb, angle * kPi / 180.0};
    if (int t = frame_of(b)) frame_ellipse(b, v[0], v[1], na, nb, v[4], t);
    qqshladd(b, 4, v, 5);
}

void shlpie(int nx, int ny, int nr, double alpha, double beta) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("shlpie"));
    if (!b) return;
    if (qqchki(b, nr, 1, 10000)) return;
    if (!std::isfinite(alpha) || !std::isfinite(beta)) {
        qqwarnd(b, 2, std::isfinite(alpha) ? beta : alpha);
        return;
    }
    double y = qqyflp(b, ny);
    if (std::fabs(beta - alpha) >= 360.0 - b->core.eps) {
        double v[3] = {(double)nx, y, (double)nr};
        if (int t = frame_of(b)) frame_ellipse(b, v[0], v[1], nr, nr, 0.0, t);
        qqshladd(b, 3, v, 3);
        return;
    }
    double v[5] = {(double)nx, y, (double)nr, alpha * kPi / 180.0, beta * kPi / 180.0};
    if (int t = frame_of(b)) frame_pie(b, v[0], v[1], nr, v[3], v[4], t);
    qqshladd(b, 5, v, 5);
}

void shlpol(const int *nxray, const int *nyray, int n) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("shlpol"));
    if (!b) return;
    if (qqchki(b, n, 3, 2000)) return;
    if (!nxray || !nyray) return;
    double v[2 * 2000];
    int m = 0;
    for (int i = 0; i < n; ++i) {
        double x = nxray[i], y = qqyflp(b, nyray[i]);
        // On a 3-D plane the region must lie where the plane's lines land.
        if (b->dev.pl3on == 1 && b->dev.planemap) b->dev.planemap(b, &x, &y);
        if (m > 0 && v[2 * m - 2] == x && v[2 * m - 1] == y) continue;
        v[2 * m] = x, v[2 * m + 1] = y;
        ++m;
    }
    if (m > 1 && v[0] == v[2 * m - 2] && v[1] == v[2 * m - 1]) --m;
    if (m < 3) {
        qqwarn(b, 30, m);
        return;
    }
    if (int t = frame_of(b)) frame_polygon(b, v, m, t);
    qqshladd(b, 6, v, 2 * m);
}

void shlres(int n) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("shlres"));
    if (!b) return;
    if (n < 1) {
        qqwarn(b, 2, n);
        return;
    }
    qqflsh(b);
    // The newest own regions are the last ones of kind 0 in the store.
    ShieldState &s = b->shl;
    int skip = s.nown - n, seen = 0;
    remove_if(b, [&](const short *w) { return kind_of(w[0]) == 0 && seen++ >= skip; });
}

void shldel(int id) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("shldel"));
    if (!b) return;
    if (id < 0) {
        qqwarn(b, 2, id);
        return;
    }
    qqflsh(b);
    if (id == 0)
        remove_if(b, [](const short *w) { return kind_of(w[0]) == 0; });
    else
        remove_if(b, [id](const short *w) { return w[1] == id; });
}

void shlvis(int id, const char *cvis) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("shlvis"));
    if (!b) return;
    int m = qqkey(b, "ON  +OFF ", 2, cvis);
    if (!m) return;
    qqflsh(b);
    ShieldState &s = b->shl;
    for (int off = 0, i = 0; i < s.nreg; ++i, off += words_of(s, off))
        if (id == 0 || s.store[off + 1] == id) s.store[off] = (short)(s.store[off] / 10 * 10 + (m == 2));
    rebuild(b);
}

int shlind() noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("shlind"));
    if (!b) return 0;
    return b->shl.nreg;
}

void shlsur() noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("shlsur"));
    if (!b) return;
    b->shl.surf = 1;
}
