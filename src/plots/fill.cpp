// Area fill: areaf, rectan, recfll, pagfll, the polygon fill with its
// hatching, the filled rectangle and the frame.
#include "plots/fill.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>

#include "core/family.h"
#include "core/guard.h"
#include "core/session.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "plots/line_styles.h"
#include "plots/patterns.h"
#include "plots/plot_block.h"
#include "plots/sweep.h"
#include "raster/image_mode.h"

namespace {

const double kDegree = 0.01745329277777778;

// The line style of the hatch lines of a pattern type.
int hatch_style(int type) {
    switch (type) {
        case 5:
            return 6;
        case 6:
            return 5;
        case 7:
            return 4;
        default:
            return 0;
    }
}

void rotate(double *x, double *y, int n, double c, double s) {
    for (int i = 0; i < n; ++i) {
        double u = x[i] * c - y[i] * s;
        y[i] = x[i] * s + y[i] * c;
        x[i] = u;
    }
}

// Whether the device has no filled shapes of its own (the native metafile
// and the plotters): fills reach it as lines.
bool line_only_device(const PlotBlock *b) {
    return !(b->dev.drv && b->dev.drv->fill_rect);
}

// A solid fill drawn as lines takes the thin line: the layer's wide-line
// outlines would only spill over the edge.  Returns the width to put back.
int thin_lines(PlotBlock *b) {
    int w = b->dev.lnwid;
    if (w > 1) {
        qqflsh(b);
        b->dev.lnwid = 1;
    }
    return w;
}

void wide_again(PlotBlock *b, int w) {
    if (w > 1) {
        qqflsh(b);
        b->dev.lnwid = w;
    }
}

void hatch(PlotBlock *b, double *x, double *y, int n) {
    StyleState &s = b->sty;
    double d = s.patdst;
    // The native metafile writes no fills: a solid one comes as lines of
    // the metafile's own spacing.
    if (s.patnum == QQ_SOLID_PATTERN && line_only_device(b)) d = 1.4 / b->core.unitf;
    int *work = qqsweepwork(n);
    if (!work) {
        qqwar0(b, 53);
        return;
    }
    int colour = b->clr.curclr;
    int style = hatch_style(s.pattyp);
    SavedDash saved;
    bool restyle = style != s.ltyp || b->dev.dshn != (style == 0 ? 1 : 2) || b->dev.lnoff != 0;
    double lnoff = b->dev.lnoff;
    if (restyle) {
        qqdshsave(b, &saved);
        qqlintyp(b, style);
        b->dev.lnoff = 0;
    }
    SweepLines l;
    l.d = d;
    l.run = s.pattyp == 1 || s.pattyp == 5 ? 0 : s.bunrun;
    l.gap = s.bungap;
    l.limit = b->dev.pl3on == 0 && b->dev.trfon != 1;
    s.hatching = 1;
    int width = s.patnum == QQ_SOLID_PATTERN ? thin_lines(b) : 1;
    int angle = s.patang;
    for (int pass = 0; pass < 1 + (s.patcrs ? 1 : 0); ++pass) {
        if (pass == 1) angle = angle < 90 ? angle + 90 : 180 - angle;
        double a = angle * kDegree;
        l.c = angle == 0 ? 1.0 : std::cos(a);
        l.s = angle == 0 ? 0.0 : std::sin(a);
        if (angle != 0) rotate(x, y, n, l.c, l.s);
        int over = qqsweep(b, x, y, n, l, work);
        if (angle != 0) rotate(x, y, n, l.c, -l.s);
        if (over) break;
    }
    qqflsh(b);
    wide_again(b, width);
    s.hatching = 0;
    std::free(work);
    if (restyle) {
        qqdshback(b, &saved);
        b->dev.lnoff = lnoff;
    }
    if (b->clr.curclr != colour) qqsetc(b, colour);
}

// Whether all n points coincide (a single point does).
bool coincide(const double *x, const double *y, int n) {
    for (int i = 1; i < n; ++i)
        if (!(x[i] == x[0] && y[i] == y[0])) return false;
    return true;
}

}  // namespace

void qqpfill(PlotBlock *b, double *x, double *y, int n) noexcept {
    StyleState &s = b->sty;
    if (n < 2 || s.pattyp == 0) return;
    qqflsh(b);
    if (s.patnum == QQ_SOLID_PATTERN && qqdevsolid(b, x, y, n)) return;
    if (s.patnum == QQ_SOLID_PATTERN) {
        // The outline once more, so that the edge of a hatched solid fill
        // is exact.
        SavedDash saved;
        qqdshsave(b, &saved);
        qqlintyp(b, 0);
        qqpolyln(b, x, y, n);
        qqdshback(b, &saved);
    }
    hatch(b, x, y, n);
}

void qqarea(PlotBlock *b, double *x, double *y, int n) noexcept {
    if (n < 1) return;
    const StyleState &s = b->sty;
    if (coincide(x, y, n)) {
        if (n >= 2 && (s.outline || s.pattyp != 0)) qqline(b, x[0], y[0], x[1], y[1]);
        return;
    }
    if (s.outline == 1) qqpolyln(b, x, y, n);
    if (s.pattyp != 0) qqpfill(b, x, y, n);
}

void qqrectf(PlotBlock *b, int x1, int y1, int x2, int y2, int colour) noexcept {
    DeviceState &d = b->dev;
    if (d.pl3on) {
        // Through the plane as a polygon of the solid pattern.
        qqflsh(b);
        double ax = x1 < x2 ? x1 : x2, bx = x1 < x2 ? x2 : x1;
        double ay = y1 < y2 ? y1 : y2, by = y1 < y2 ? y2 : y1;
        double px[4] = {ax, bx, bx, ax};
        double py[4] = {ay, ay, by, by};
        int pat = b->sty.patnum, old = b->clr.curclr;
        qqshdpat(b, QQ_SOLID_PATTERN);
        qqsetc(b, colour);
        qqpfill(b, px, py, 4);
        qqshdpat(b, pat);
        if (b->clr.curclr != old) qqsetc(b, old);
        return;
    }
    qqfrect(b, x1, y1, x2, y2, colour);
}

void qqframe(PlotBlock *b, int x, int y, int w, int h, int t, double angle, int colour) noexcept {
    if (t == 0) return;
    DeviceState &d = b->dev;
    int old = b->clr.curclr;
    if (colour >= 0) qqsetc(b, colour);
    SavedDash saved;
    qqdshsave(b, &saved);
    qqlintyp(b, 0);
    int at = t < 0 ? (t == INT_MIN ? INT_MAX : -t) : t;
    int kind = qqdevkind(b);
    double s = b->sess.devscl;
    bool device = std::fabs(angle) <= 0.001 && d.pl3on == 0 && d.trfon != 1 && d.segtest == nullptr && d.horizon == nullptr &&
                  (kind == QQ_KIND_SCREEN || kind == QQ_KIND_RASTER) && s > 0;
    double ox = x + d.nxsh, oy = y + d.nysh;
    if (device) {
        double ext = at;  // the frame's outer reach
        double lx = t > 0 ? ox - ext : ox, hx = t > 0 ? ox + w - 1 + ext : ox + w - 1;
        double ly = t > 0 ? oy - ext : oy, hy = t > 0 ? oy + h - 1 + ext : oy + h - 1;
        device = lx >= d.clpx1 && hx <= d.clpx2 && ly >= d.clpy1 && hy <= d.clpy2;
    }
    if (device) {
        // Rectangles one device step apart, in absolute positions.
        int m = (int)std::trunc((ox + at - 1) * s + 0.5) - (int)std::trunc(ox * s + 0.5) + 1;
        if (m < 1) m = 1;
        for (int i = 0; i < m; ++i) {
            double e = (t > 0 ? i : -i) / s;
            qqrmov(b, ox - e, oy - e);
            qqrdrw(b, ox + w - 1 + e, oy - e);
            qqrdrw(b, ox + w - 1 + e, oy + h - 1 + e);
            qqrdrw(b, ox - e, oy + h - 1 + e);
            qqrdrw(b, ox - e, oy - e);
        }
        qqflsh(b);
    } else {
        double mm = std::trunc(at * b->core.unitf + 0.5);
        int m = mm >= INT_MAX ? INT_MAX : mm < 1 ? 1 : (int)mm;
        bool turn = std::fabs(angle) > 0.001;
        double c = std::cos(angle * kDegree), sn = std::sin(angle * kDegree);
        if (!turn) c = 1, sn = 0;
        // The page in the frame's own axes u, v: where each side can touch it.
        double page[4], lu, hu, lv, hv;
        qqpagebox(b, page);
        qqpagespan(page, x, y, c, -sn, &lu, &hu);
        qqpagespan(page, x, y, sn, c, &lv, &hv);
        const double w1 = w - 1.0, h1 = h - 1.0;
        const double lo[4] = {-hu, lu - w1, -hv, lv - h1};
        const double hi[4] = {-lu, hu - w1, -lv, hv - h1};
        qqframesteps(t < 0 ? -m : m, lo, hi, 4, [&](int i) {
            double e = t > 0 ? i : -i;
            const double px[5] = {-e, w1 + e, w1 + e, -e, -e};
            const double py[5] = {-e, -e, h1 + e, h1 + e, -e};
            for (int k = 0; k < 5; ++k) {
                double u = px[k], v = py[k];
                if (turn) {
                    double tu = u * c + v * sn;
                    v = -u * sn + v * c;
                    u = tu;
                }
                if (k == 0)
                    qqmove(b, x + u, y + v);
                else
                    qqdraw(b, x + u, y + v);
            }
        });
        qqflsh(b);
    }
    qqdshback(b, &saved);
    if (b->clr.curclr != old) qqsetc(b, old);
}

void qqpagebox(const PlotBlock *b, double box[4]) noexcept {
    const DeviceState &d = b->dev;
    double mx = std::fabs((double)d.nxsh) + 1, my = std::fabs((double)d.nysh) + 1;
    box[0] = -mx;
    box[1] = -my;
    box[2] = b->core.nxp + mx;
    box[3] = b->core.nyp + my;
}

void qqpagespan(const double box[4], double cx, double cy, double nx, double ny, double *lo,
                double *hi) noexcept {
    *lo = 1e300;
    *hi = -1e300;
    for (int k = 0; k < 4; ++k) {
        double v = nx * (box[k & 1 ? 2 : 0] - cx) + ny * (box[k & 2 ? 3 : 1] - cy);
        *lo = v < *lo ? v : *lo;
        *hi = v > *hi ? v : *hi;
    }
}

void areaf(const int *nxray, const int *nyray, int n) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("areaf"));
    if (!b || n < 1) return;
    enum { SMALL = 8 };
    double sx[SMALL], sy[SMALL];
    double *x = sx, *y = sy;
    if (n > SMALL) {
        x = (double *)std::malloc(sizeof(double) * 2 * (size_t)n);
        if (!x) {
            qqwar0(b, 53);
            return;
        }
        y = x + n;
    }
    for (int i = 0; i < n; ++i) {
        x[i] = nxray[i];
        y[i] = qqyflp(b, nyray[i]);
    }
    qqtprfig(b, 1);
    qqarea(b, x, y, n);
    qqtprfig(b, 0);
    if (x != sx) std::free(x);
}

void rectan(int nx, int ny, int nw, int nh) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rectan"));
    if (!b) return;
    if (nw == 0 || nh == 0) {
        qqwarn(b, 2, 0);
        return;
    }
    double x1 = nx, x2 = (double)nx + nw - 1;
    double y1 = qqyflp(b, ny), y2 = qqyflp(b, (double)ny + nh - 1);
    double x[4] = {x1, x1, x2, x2}, y[4] = {y1, y2, y2, y1};
    // as areaf draws it, in the transparency layer of figures when it is on
    qqtprfig(b, 1);
    qqarea(b, x, y, 4);
    qqtprfig(b, 0);
}

void recfll(int nx, int ny, int nw, int nh, int ncol) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("recfll"));
    if (!b) return;
    if (nw < 1 || nh < 1) {
        qqwarn(b, 2, nw < nh ? nw : nh);
        return;
    }
    // The far corner, kept within the integers.
    long long x2 = (long long)nx + nw - 1, y2 = (long long)ny + nh - 1;
    if (x2 > 0x7fffffff) x2 = 0x7fffffff;
    if (y2 > 0x7fffffff) y2 = 0x7fffffff;
    qqrectf(b, nx, qqyflpi(b, ny), (int)x2, qqyflpi(b, (int)y2), ncol < 0 ? b->clr.curclr : ncol);
}

void pagfll(int ncol) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("pagfll"));
    if (!b) return;
    // The page before the origin shift, kept within the integers whatever
    // shift was asked for.
    const DeviceState &d = b->dev;
    auto fit = [](long long v) { return (int)std::max<long long>(INT_MIN, std::min<long long>(INT_MAX, v)); };
    long long sx = d.nxsh, sy = d.nysh;
    qqrectf(b, fit(-sx), fit(-sy), fit(b->core.nxp - sx), fit(b->core.nyp - sy),
            ncol < 0 ? b->clr.curclr : ncol);
}

// The pen without dash pattern or offset: positions go straight into the
// polyline buffer, with the origin shift and the page origin's y.
namespace {
template <class Step>
void plain_pen(PlotBlock *b, Step step) {
    DeviceState &d = b->dev;
    int n = d.dshn;
    double off = d.lnoff;
    d.dshn = 1;
    d.lnoff = 0;
    step();
    d.dshn = n;
    d.lnoff = off;
}
}  // namespace

void xmove(double x, double y) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("xmove"));
    if (b) plain_pen(b, [&] { qqmove(b, x, qqyflp(b, y)); });
}

void xdraw(double x, double y) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("xdraw"));
    if (b) plain_pen(b, [&] { qqdraw(b, x, qqyflp(b, y)); });
}

#if __has_include("axes/axes.h")
#include "axes/axes.h"
#define KX_HAVE_AXES 1
#endif

void rlarea(const double *xray, const double *yray, int n) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rlarea"));
    if (!b || n < 1) return;
#ifdef KX_HAVE_AXES
    qqchkd(b, xray, yray, n);
    enum { SMALL = 8 };
    double sx[SMALL], sy[SMALL];
    double *x = sx, *y = sy;
    if (n > SMALL) {
        x = (double *)std::malloc(sizeof(double) * 2 * (size_t)n);
        if (!x) {
            qqwar0(b, 53);
            return;
        }
        y = x + n;
    }
    for (int i = 0; i < n; ++i) qqpos2(b, xray[i], yray[i], &x[i], &y[i]);
    qqclip(b, 0);
    qqtprfig(b, 1);
    qqarea(b, x, y, n);
    qqtprfig(b, 0);
    qqclip(b, 1);
    if (x != sx) std::free(x);
#endif
}
