// Clipping: the clip region test, the segment clipper for rectangles and
// circles, and the routines that set the clip window.
#include <algorithm>
#include <cmath>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "devices/device_block.h"
#include "devices/stroke.h"
#include "kolvex.h"

namespace {

const double kTol = 0.001;

// Cohen-Sutherland outcode with the tolerance of the clip window.
int outcode(const DeviceState &d, double x, double y) {
    int c = 0;
    if (x < d.clpx1 - kTol) c |= 1;
    else if (x > d.clpx2 + kTol) c |= 2;
    if (y < d.clpy1 - kTol) c |= 4;
    else if (y > d.clpy2 + kTol) c |= 8;
    return c;
}

void seg_rect(DeviceBlock *b, double x0, double y0, double x1, double y1) {
    const DeviceState &d = b->dev;
    int c0 = outcode(d, x0, y0), c1 = outcode(d, x1, y1);
    // On a map of the cylindrical kind a segment from one side of the map
    // to the other is a jump across the map, not a line.
    if (d.clpjump && (((c0 & 1) && (c1 & 2)) || ((c0 & 2) && (c1 & 1)))) return;
    bool moved = false;
    for (int round = 0; round < 8 && (c0 | c1); ++round) {
        if (c0 & c1) return;
        bool first = c0 != 0;
        int c = first ? c0 : c1;
        double &x = first ? x0 : x1, &y = first ? y0 : y1;
        double ox = first ? x1 : x0, oy = first ? y1 : y0;
        double dx = ox - x, dy = oy - y;
        if (c & 3) {  // X side first
            double xb = (c & 1) ? d.clpx1 : d.clpx2;
            if (std::fabs(dy) >= 1e-35 && dx != 0) y += dy * (xb - x) / dx;
            x = xb;
        } else {
            double yb = (c & 4) ? d.clpy1 : d.clpy2;
            if (std::fabs(dx) >= 1e-35 && dy != 0) x += dx * (yb - y) / dy;
            y = yb;
        }
        if (first) {
            moved = true;
            c0 = outcode(d, x0, y0);
        } else {
            c1 = outcode(d, x1, y1);
        }
    }
    if (c0 | c1) return;
    qqout(b, x0, y0, x1, y1, moved);
}

double dist(const DeviceState &d, double x, double y) { return std::hypot(x - d.ccx, y - d.ccy); }

void seg_circle(DeviceBlock *b, double x0, double y0, double x1, double y1) {
    const DeviceState &d = b->dev;
    double r = d.ccr;
    bool in0 = dist(d, x0, y0) <= r, in1 = dist(d, x1, y1) <= r;
    if (in0 && in1) {
        qqout(b, x0, y0, x1, y1, false);
        return;
    }
    if (in0 || in1) {
        // Bisect towards the circle line from the middle of the segment.
        double ix = in0 ? x0 : x1, iy = in0 ? y0 : y1;
        double ox = in0 ? x1 : x0, oy = in0 ? y1 : y0;
        double mx = 0.5 * (ix + ox), my = 0.5 * (iy + oy);
        for (int k = 0; k < 20; ++k) {
            double dm = dist(d, mx, my);
            if (std::fabs(dm - r) < 0.1) break;
            if (dm <= r) {
                ix = mx;
                iy = my;
            } else {
                ox = mx;
                oy = my;
            }
            mx = 0.5 * (ix + ox);
            my = 0.5 * (iy + oy);
        }
        if (in0)
            qqout(b, x0, y0, mx, my, false);
        else
            qqout(b, mx, my, x1, y1, true);
        return;
    }
    if (d.clpnochord) return;
    double dx = x1 - x0, dy = y1 - y0;
    if (std::fabs(dx) + std::fabs(dy) < 0.1) return;
    // Both ends outside: the chord of the line through the circle, when it
    // lies on the segment.
    double fx = x0 - d.ccx, fy = y0 - d.ccy;
    double qa = dx * dx + dy * dy, qb = 2 * (fx * dx + fy * dy), qc = fx * fx + fy * fy - r * r;
    double disc = qb * qb - 4 * qa * qc;
    if (disc < 0 || qa == 0) return;
    double sq = std::sqrt(disc);
    double t0 = (-qb - sq) / (2 * qa), t1 = (-qb + sq) / (2 * qa);
    double ax = x0 + t0 * dx, ay = y0 + t0 * dy, bx = x0 + t1 * dx, by = y0 + t1 * dy;
    double lx = std::fmin(x0, x1) - kTol, hx = std::fmax(x0, x1) + kTol;
    double ly = std::fmin(y0, y1) - kTol, hy = std::fmax(y0, y1) + kTol;
    auto within = [&](double x, double y) { return x >= lx && x <= hx && y >= ly && y <= hy; };
    if (within(ax, ay) && within(bx, by)) qqout(b, ax, ay, bx, by, true);
}

}  // namespace

int qqin(DeviceBlock *b, double x, double y) noexcept {
    const DeviceState &d = b->dev;
    if (d.clpcir == 1) return dist(d, x, y) > d.ccr ? 1 : 0;
    return outcode(d, x, y) ? 1 : 0;
}

bool qqallin(DeviceBlock *b, const double *x, const double *y, int n) noexcept {
    const DeviceState &d = b->dev;
    if (d.clpcir == 1) return false;
    const double lx = d.clpx1 - kTol, hx = d.clpx2 + kTol, ly = d.clpy1 - kTol, hy = d.clpy2 + kTol;
    bool in = true;
    // No early exit: the usual piece is inside, and a branch-free loop
    // over it is the faster test.  NaN fails every comparison.
    for (int i = 0; i < n; ++i) in &= x[i] >= lx && x[i] <= hx && y[i] >= ly && y[i] <= hy;
    return in;
}

void qqout(DeviceBlock *b, double x0, double y0, double x1, double y1, bool move) noexcept {
    if (move) qqplot(b, x0, y0, QQ_MOVE);
    DeviceState &d = b->dev;
    if (d.segtest && d.segtest(b, x0, y0, x1, y1)) return;
    qqplot(b, x1, y1, QQ_DRAW);
}

void qqseg(DeviceBlock *b, double x0, double y0, double x1, double y1) noexcept {
    if (!(std::isfinite(x0) && std::isfinite(y0) && std::isfinite(x1) && std::isfinite(y1))) return;
    if (b->dev.clpcir == 1)
        seg_circle(b, x0, y0, x1, y1);
    else
        seg_rect(b, x0, y0, x1, y1);
}

void pen_move(ClipPen &p, double x, double y) noexcept {
    p.x = x;
    p.y = y;
    p.in = std::isfinite(x) && std::isfinite(y) && qqin(p.b, x, y) == 0;
    if (p.in) qqplot(p.b, x, y, QQ_MOVE);
}

void pen_draw(ClipPen &p, double x, double y) noexcept {
    bool in = std::isfinite(x) && std::isfinite(y) && qqin(p.b, x, y) == 0;
    if (p.in && in)
        qqout(p.b, p.x, p.y, x, y, false);
    else
        qqseg(p.b, p.x, p.y, x, y);
    p.x = x;
    p.y = y;
    p.in = in;
}

void qqclipdev(DeviceBlock *b, int narrowing) noexcept {
    const DeviceState &d = b->dev;
    const DriverOps *drv = d.drv;
    if (!drv || !drv->clip) return;
    bool whole = d.clpx1 <= 0 && d.clpy1 <= 0 && d.clpx2 >= b->core.nxp && d.clpy2 >= b->core.nyp;
    drv->clip(b, d.clpx1, d.clpy1, d.clpx2, d.clpy2, whole && !narrowing ? 1 : 0);
}

void qqclip(DeviceBlock *b, int back) noexcept {
    DeviceState &d = b->dev;
    qqflsh(b);
    if (back) {
        if (d.clpflg == 2 || d.pl3on) return;
        d.clpx1 = d.savclp[0];
        d.clpy1 = d.savclp[1];
        d.clpx2 = d.savclp[2];
        d.clpy2 = d.savclp[3];
        d.clpcir = 0;
        qqclipdev(b, 0);
        return;
    }
    if (d.clpflg == 2 || d.pl3on) return;
    d.savclp[0] = d.clpx1;
    d.savclp[1] = d.clpy1;
    d.savclp[2] = d.clpx2;
    d.savclp[3] = d.clpy2;
    if (d.clpmd == 1) return;
    if (d.clpmd == 2 || d.axround == 1 || (d.axround == 2 && d.clpmd == 0)) {
        d.clpcir = 1;
        d.ccx = d.axccx;
        d.ccy = d.axccy;
        d.ccr = d.axccr;
        return;
    }
    d.clpcir = 0;
    if (d.axclp[0] > d.clpx1) d.clpx1 = d.axclp[0];
    if (d.axclp[1] > d.clpy1) d.clpy1 = d.axclp[1];
    if (d.axclp[2] < d.clpx2) d.clpx2 = d.axclp[2];
    if (d.axclp[3] < d.clpy2) d.clpy2 = d.axclp[3];
    // A pixel device keeps its clip off the axis lines, which the default
    // margin leaves one plot coordinate outside the window.
    d.clpwiden = d.axgrace;
    qqclipdev(b, 1);
    d.clpwiden = 0;
}

void qqaxclip(DeviceBlock *b, const int rect[4], const double circ[3], int round, int grace) noexcept {
    DeviceState &d = b->dev;
    d.axgrace = grace == -1 ? 1 : 0;
    for (int i = 0; i < 4; ++i) d.axclp[i] = rect[i];
    d.axccx = circ[0];
    d.axccy = circ[1];
    d.axccr = circ[2];
    d.axround = (unsigned char)(round == 1 || round == 2 ? round : 0);
}

void qqmapclip(DeviceBlock *b, int jump, int nochord, int softfill) noexcept {
    DeviceState &d = b->dev;
    qqflsh(b);  // what is pending was clipped under the old rules
    d.clpjump = jump ? 1 : 0;
    d.clpnochord = nochord ? 1 : 0;
    d.softfill = softfill ? 1 : 0;
}

void clpwin(int nx, int ny, int nw, int nh) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("clpwin"));
    if (!b) return;
    // A corner off the page or an empty size is reported, and the window
    // is still tested against the page and set.
    if (nx < 0 || ny < 0) qqwarn(b, 2, nx < ny ? nx : ny);
    if (nw < 1 || nh < 1) qqwarn(b, 2, nw < nh ? nw : nh);
    long long x2 = (long long)nx + nw - 1, y2 = (long long)ny + nh - 1;
    if (x2 > b->core.nxp || y2 > b->core.nyp) {
        long long v = x2 > b->core.nxp ? x2 : y2;
        qqwarn(b, 2, (int)(v > 0x7fffffff ? 0x7fffffff : v));
        return;
    }
    DeviceState &d = b->dev;
    qqflsh(b);
    // The page origin may turn y round: the window keeps its corners in
    // order.
    int ya = qqyflpi(b, ny), yb = qqyflpi(b, (int)(y2 < -0x7fffffff ? -0x7fffffff : y2));
    d.clpx1 = nx;
    d.clpy1 = ya < yb ? ya : yb;
    d.clpx2 = (int)(x2 < -0x7fffffff ? -0x7fffffff : x2);
    d.clpy2 = ya < yb ? yb : ya;
    d.clpflg = 1;
    qqclipdev(b, 0);
}

void qqclippage(DeviceBlock *b) noexcept {
    DeviceState &d = b->dev;
    qqflsh(b);
    d.clpflg = 0;
    d.clpcir = 0;
    d.clpx1 = d.clpy1 = 0;
    d.clpx2 = b->core.nxp;
    d.clpy2 = b->core.nyp;
    qqclipdev(b, 0);
}

void clpbor(const char *copt) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("clpbor"));
    if (!b) return;
    int k = qqkey(b, "PAGE+AXIS", 2, copt);
    DeviceState &d = b->dev;
    if (k == 1) {
        qqclippage(b);
    } else if (k == 2) {
        if (d.clpflg == 2) return;
        d.clpflg = 0;
        qqclip(b, 0);
        d.clpflg = 2;
    }
}

void clpmod(const char *copt) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("clpmod"));
    if (!b) return;
    int k = qqkey(b, "AUTO+NONE+CIRC+RECT", 4, copt);
    if (k > 0) b->dev.clpmd = (unsigned char)(k - 1);
}

void noclip() noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("noclip"));
    if (!b) return;
    DeviceState &d = b->dev;
    d.clpmd = 1;
    if (d.clpflg == 2) {
        // Undo the clip border under the new mode.
        d.clpflg = 0;
        qqclip(b, 1);
        d.clpflg = 2;
    }
}

void getclp(int *nx, int *ny, int *nw, int *nh) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("getclp"));
    if (!b) return;
    const DeviceState &d = b->dev;
    *nx = d.clpx1;
    *ny = qqyflpi(b, d.clpy1);
    // A window widened by a huge margin still reports a size that fits.
    long long w = (long long)d.clpx2 - d.clpx1 + 1, h = (long long)d.clpy2 - d.clpy1 + 1;
    *nw = (int)std::min<long long>(w, 2147483647LL);
    *nh = (int)std::min<long long>(h, 2147483647LL);
}
