// curve and its kin: a set of points drawn in the axis system as a
// polyline, as steps, stems or bars, as a spline, with or without symbols;
// error bars, symbols at user positions, the regression line of linfit.
//
// Points are converted one by one on their way to qqmove and qqdraw;
// nothing is allocated for a polyline, only the spline interpolations take
// memory for their result.
#include <cmath>
#include <cstdlib>

#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "plots/axis_map.h"
#include "plots/curve_draw.h"
#include "plots/curves.h"
#include "plots/plot_block.h"

namespace {

// Whether a point takes part: NaN and infinite coordinates cannot be
// placed, and break the line like a gap.
inline bool good(double x, double y) {
    return std::isfinite(x) && std::isfinite(y);
}

// The line-breaking walker of LINE, STAI and CURV: it knows the last good
// point and the gap limits.
struct Breaker {
    const CurveState &c;
    bool have = false;
    double lx = 0, ly = 0;
    // True when the point starts a new piece.
    bool breaks(double x, double y) {
        bool b = !have || (c.gapon[0] && std::fabs(x - lx) > c.gaplim[0]) ||
                 (c.gapon[1] && std::fabs(y - ly) > c.gaplim[1]);
        have = true;
        lx = x;
        ly = y;
        return b;
    }
};

// Thins a dense solid polyline to what the output can show: consecutive
// points that fall into one column (one pixel of a raster device, one plot
// unit elsewhere) become the column's first point, its lowest and highest
// point in their order, and its last point.  A line one unit wide covers
// the same places, so the picture does not change, and a million points
// cost a few thousand segments on the page.  The loop keeps everything in
// locals: it runs once per point of the largest curves.
void thin_line(PlotBlock *b, const AxisMap &m, const double *x, const double *y, int n,
               double scale) {
    // Columns are the device's own: a raster device rounds devscl times
    // the shifted position to its pixel.
    const double shift = b->dev.nxsh * scale + 0.5 + 4e6;
    const double ax = m.ax, fx = m.fx, ox = m.ox, ay = m.ay, fy = m.fy, oy = m.oy;
    bool pen = false, open = false;
    long long key = 0;
    double fx0 = 0, fy0 = 0, lx = 0, ly = 0, lox = 0, loy = 0, hix = 0, hiy = 0;
    int ifirst = 0, ilast = 0, ilo = 0, ihi = 0;
    auto put = [&](double px, double py) {
        if (pen) {
            qqdraw(b, px, py);
        } else {
            qqmove(b, px, py);
            pen = true;
        }
    };
    auto emit = [&]() {
        put(fx0, fy0);
        if (ilast != ifirst) {
            bool lo = ilo != ifirst && ilo != ilast, hi = ihi != ifirst && ihi != ilast;
            if (lo && hi && ilo > ihi) {
                put(hix, hiy);
                put(lox, loy);
            } else {
                if (lo) put(lox, loy);
                if (hi && ihi != ilo) put(hix, hiy);
            }
            put(lx, ly);
        }
    };
    for (int i = 0; i < n; ++i) {
        double vx = x[i], vy = y[i];
        if (!(std::fabs(vx) <= 1.7976931348623157e308 && std::fabs(vy) <= 1.7976931348623157e308)) {
            if (open) emit();
            open = pen = false;
            continue;
        }
        double rx = (vx - ax) * fx + ox, ry = oy - (vy - ay) * fy;
        rx = rx < -1e6 ? -1e6 : rx > 1e6 ? 1e6 : rx;
        ry = ry < -1e6 ? -1e6 : ry > 1e6 ? 1e6 : ry;
        // rx is held within a million units: the shifted product is
        // positive, and truncation is the floor.
        long long k = (long long)(rx * scale + shift);
        if (k == key && open) {
            lx = rx, ly = ry, ilast = i;
            if (ry < loy) loy = ry, lox = rx, ilo = i;
            if (ry > hiy) hiy = ry, hix = rx, ihi = i;
            continue;
        }
        if (open) emit();
        open = true;
        key = k;
        fx0 = lx = lox = hix = rx;
        fy0 = ly = loy = hiy = ry;
        ifirst = ilast = ilo = ihi = i;
    }
    if (open) emit();
}

// Whether a polyline may be thinned: a solid line without offset that no
// later stage (3-D plane, transformation) maps elsewhere.  The segment
// hook (shields) may stay: it cuts the thinned line, which covers the same
// places, at the same borders.
bool thinnable(PlotBlock *b) {
    const DeviceState &d = b->dev;
    return d.dshn <= 1 && d.lnoff == 0 && !d.pl3on && !d.trfon && b->crv.thkcrv == 1;
}

double column_scale(PlotBlock *b) {
    int kind = qqdevkind(b);
    bool raster = kind == QQ_KIND_SCREEN || kind == QQ_KIND_RASTER;
    double s = b->sess.devscl;
    // A turned page has its pixel columns across plot y: plot units there.
    return raster && s > 0 && s < 1 && b->sess.pagrot != 1 ? s : 1.0;
}

void draw_line(PlotBlock *b, const AxisMap &m, const double *x, const double *y, int n) {
    Breaker br{b->crv};
    double px, py;
    if (m.type == 0 && !m.logx && !m.logy && !b->crv.gapon[0] && !b->crv.gapon[1]) {
        if (thinnable(b) && n > 64) {
            thin_line(b, m, x, y, n, column_scale(b));
            return;
        }
        // The common case in one tight loop.
        bool pen = false;
        for (int i = 0; i < n; ++i) {
            double vx = x[i], vy = y[i];
            if (!good(vx, vy)) {
                pen = false;
                continue;
            }
            double rx = (vx - m.ax) * m.fx + m.ox, ry = m.oy - (vy - m.ay) * m.fy;
            rx = rx < -1e6 ? -1e6 : rx > 1e6 ? 1e6 : rx;
            ry = ry < -1e6 ? -1e6 : ry > 1e6 ? 1e6 : ry;
            if (pen) {
                qqdraw(b, rx, ry);
            } else {
                qqmove(b, rx, ry);
                pen = true;
            }
        }
        return;
    }
    for (int i = 0; i < n; ++i) {
        if (!good(x[i], y[i])) {
            br.have = false;
            continue;
        }
        qqaxpt(b, m, x[i], y[i], &px, &py);
        if (br.breaks(x[i], y[i]))
            qqmove(b, px, py);
        else
            qqdraw(b, px, py);
    }
}

void draw_stairs(PlotBlock *b, const AxisMap &m, const double *x, const double *y, int n) {
    Breaker br{b->crv};
    double px, py, ly = 0;
    for (int i = 0; i < n; ++i) {
        if (!good(x[i], y[i])) {
            br.have = false;
            continue;
        }
        if (br.breaks(x[i], y[i])) {
            qqaxpt(b, m, x[i], y[i], &px, &py);
            qqmove(b, px, py);
        } else {
            qqaxpt(b, m, x[i], ly, &px, &py);
            qqdraw(b, px, py);
            qqaxpt(b, m, x[i], y[i], &px, &py);
            qqdraw(b, px, py);
        }
        ly = y[i];
    }
}

void draw_steps(PlotBlock *b, const AxisMap &m, const double *x, const double *y, int n) {
    Breaker br{b->crv};
    double px, py;
    double half = n >= 2 && good(x[0], y[0]) && good(x[1], y[1]) ? (x[1] - x[0]) / 2 : 0;
    double lx = 0, ly = 0;
    bool open = false;
    for (int i = 0; i < n; ++i) {
        if (!good(x[i], y[i])) {
            if (open) {
                qqaxpt(b, m, lx + half, ly, &px, &py);
                qqdraw(b, px, py);
            }
            open = false;
            br.have = false;
            continue;
        }
        bool brk = br.breaks(x[i], y[i]);
        if (brk) {
            if (open) {
                qqaxpt(b, m, lx + half, ly, &px, &py);
                qqdraw(b, px, py);
            }
            // A piece starts half a step before its first point, the step
            // taken from the next point when there is one.
            if (i + 1 < n && good(x[i + 1], y[i + 1])) half = (x[i + 1] - x[i]) / 2;
            qqaxpt(b, m, x[i] - half, y[i], &px, &py);
            qqmove(b, px, py);
            qqaxpt(b, m, x[i], y[i], &px, &py);
            qqdraw(b, px, py);
            open = true;
        } else {
            half = (x[i] - lx) / 2;
            qqaxpt(b, m, lx + half, ly, &px, &py);
            qqdraw(b, px, py);
            qqaxpt(b, m, lx + half, y[i], &px, &py);
            qqdraw(b, px, py);
            qqaxpt(b, m, x[i], y[i], &px, &py);
            qqdraw(b, px, py);
        }
        lx = x[i];
        ly = y[i];
    }
    if (open) {
        qqaxpt(b, m, lx + half, ly, &px, &py);
        qqdraw(b, px, py);
    }
}

// The foot of stems and bars: the value 0 of a linear Y axis, the lower
// end of a logarithmic one.
double foot_value(const AxisMap &m) {
    return m.logy ? m.ylow : 0.0;
}

void draw_stems(PlotBlock *b, const AxisMap &m, const double *x, const double *y, int n) {
    double px, py, qx, qy;
    for (int i = 0; i < n; ++i) {
        if (!good(x[i], y[i])) continue;
        if (m.type == 1) {
            qqaxpt(b, m, 0.0, 0.0, &px, &py);
        } else {
            qqaxpt(b, m, x[i], foot_value(m), &px, &py);
        }
        qqaxpt(b, m, x[i], y[i], &qx, &qy);
        qqmove(b, px, py);
        qqdraw(b, qx, qy);
    }
}

void draw_bars(PlotBlock *b, const AxisMap &m, const double *x, const double *y, int n,
               bool filled) {
    const double bw = b->crv.barwth;
    double cx[5], cy[5];
    for (int i = 0; i < n; ++i) {
        if (!good(x[i], y[i])) continue;
        if (m.type == 1) {
            // Sectors of a polar system: y is the angle.
            double w = bw > 0 ? (n >= 2 ? bw * (y[1] - y[0]) : 0.0) : -bw;
            qqaxpt(b, m, 0.0, 0.0, &cx[0], &cy[0]);
            qqaxpt(b, m, x[i], y[i] + w / 2, &cx[1], &cy[1]);
            qqaxpt(b, m, x[i], y[i] - w / 2, &cx[2], &cy[2]);
            cx[3] = cx[0];
            cy[3] = cy[0];
            if (filled) qqsolidfill(b, cx, cy, 3);
            qqmove(b, cx[0], cy[0]);
            for (int k = 1; k < 4; ++k) qqdraw(b, cx[k], cy[k]);
            continue;
        }
        double x0, x1, y0, y1, tx, ty;
        if (bw > 0) {
            double w = n >= 2 ? (x[1] - x[0]) * bw : 0.0;
            qqaxpt(b, m, x[i] - w / 2, m.ylow, &x0, &y0);
            qqaxpt(b, m, x[i] + w / 2, y[i], &x1, &y1);
        } else {
            qqaxpt(b, m, x[i], y[i], &tx, &ty);
            x0 = tx + bw / 2;
            x1 = tx - bw / 2;
            y0 = m.oy;
            y1 = ty;
        }
        cx[0] = x0, cy[0] = y0;
        cx[1] = x1, cy[1] = y0;
        cx[2] = x1, cy[2] = y1;
        cx[3] = x0, cy[3] = y1;
        cx[4] = x0, cy[4] = y0;
        if (filled) qqsolidfill(b, cx, cy, 4);
        qqmove(b, cx[0], cy[0]);
        for (int k = 1; k < 5; ++k) qqdraw(b, cx[k], cy[k]);
    }
}

// CURV: in a complex chart every segment is walked in parts short enough
// that the chart's bending of straight lines shows.
void draw_walked(PlotBlock *b, const AxisMap &m, const double *x, const double *y, int n) {
    if (m.type != 4) {
        draw_line(b, m, x, y, n);
        return;
    }
    Breaker br{b->crv};
    double px, py, cxp = 0, cyp = 0, ux = 0, uy = 0;
    for (int i = 0; i < n; ++i) {
        if (!good(x[i], y[i])) {
            br.have = false;
            continue;
        }
        if (br.breaks(x[i], y[i])) {
            qqaxpt(b, m, x[i], y[i], &cxp, &cyp);
            qqmove(b, cxp, cyp);
            ux = x[i];
            uy = y[i];
            continue;
        }
        for (int guard = 0; guard < 100000; ++guard) {
            double tx = x[i], ty = y[i];
            qqaxpt(b, m, tx, ty, &px, &py);
            for (int h = 0; h < 100 && std::hypot(px - cxp, py - cyp) > 10; ++h) {
                tx = (ux + tx) / 2;
                ty = (uy + ty) / 2;
                qqaxpt(b, m, tx, ty, &px, &py);
            }
            qqdraw(b, px, py);
            cxp = px;
            cyp = py;
            ux = tx;
            uy = ty;
            if (tx == x[i] && ty == y[i]) break;
        }
    }
}

// SPLI and PSPL: the interpolated points as one polyline.
int draw_spline(PlotBlock *b, const AxisMap &m, const double *x, const double *y, int n) {
    const CurveState &c = b->crv;
    int k = c.splgrd + 1;
    if (n < k) return 31;
    int np = c.splnpt;
    double *mem = (double *)std::malloc(sizeof(double) * 2 * (size_t)(np + 1));
    if (!mem) return 53;
    double *xs = mem, *ys = mem + np + 1;
    int w = qqspline(x, y, n, k, c.polcrv == CRV_PSPL, np, m.logx, xs, ys);
    if (w == 0) {
        double px, py;
        for (int i = 0; i <= np; ++i) {
            if (m.logy && ys[i] <= 0) ys[i] = 9.999999974752427e-7;
            qqaxpt(b, m, xs[i], ys[i], &px, &py);
            if (i == 0)
                qqmove(b, px, py);
            else
                qqdraw(b, px, py);
        }
    }
    std::free(mem);
    return w;
}

}  // namespace

// Tests a curve's arrays against logarithmic axes: warning 27 when a value
// at or below 0 meets a log axis without neglog.
bool qqcrvlog(PlotBlock *b, const AxisMap &m, const double *x, const double *y, int n) noexcept {
    if (m.neglog) return true;
    for (int i = 0; i < n; ++i)
        if ((m.logx && x[i] <= 0) || (m.logy && y[i] <= 0)) {
            qqwar0(b, 27);
            return false;
        }
    return true;
}

// Symbols at every k-th point, skipping points that cannot be placed.
void qqcrvsymbols(PlotBlock *b, const AxisMap &m, const double *x, const double *y, int n,
                  int step) noexcept {
    const CurveState &c = b->crv;
    if (c.marker < 0) return;
    int curclr = b->clr.curclr;
    int saved_dshn = b->dev.dshn, saved_dshl[10];
    double saved_off = b->dev.lnoff;
    for (int i = 0; i < 10; ++i) saved_dshl[i] = b->dev.dshl[i];
    qqsolid(b);
    if (c.mrkclr != -1) qqsetc(b, c.mrkclr);
    double px, py;
    for (long long i = 0; i < n; i += step) {
        if (!good(x[i], y[i])) continue;
        qqaxpt(b, m, x[i], y[i], &px, &py);
        qqsymb(b, c.marker, px, py);
    }
    qqflsh(b);
    if (b->clr.curclr != curclr) qqsetc(b, curclr);
    b->dev.dshn = saved_dshn;
    for (int i = 0; i < 10; ++i) b->dev.dshl[i] = saved_dshl[i];
    b->dev.lnoff = saved_off;
    qqdshres(b);
}

void qqcrvbegin(PlotBlock *b, CurveSave *save) noexcept {
    CurveState &c = b->crv;
    qqcrvsave(b, save);
    b->core.ynoflp = 1;
    int pos = c.cycpos >= 1 && c.cycpos <= 30 ? c.cycpos : 1;
    if (c.chncrv == 1 || c.chncrv == 3) qqsetc(b, b->clr.clrcycl[pos - 1]);
    if (c.chncrv == 2 || c.chncrv == 3) qqsetstyle(b, b->dev.lincycl[pos - 1]);
    if (c.legpend) {
        qqlegrecord(b, c.ncrv, -1, c.incmrk >= 0, c.incmrk != 0);
        c.legpend = 0;
    }
}

void curve(const double *xray, const double *yray, int n) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("curve"));
    if (!b) return;
    qqcurve(b, xray, yray, n);
}

void qqcurve(PlotBlock *b, const double *xray, const double *yray, int n) noexcept {
    CurveState &c = b->crv;
    c.shdarea = 0;
    if (n < 1 || (n == 1 && c.incmrk >= 0)) {
        qqwarn(b, 2, n);
        return;
    }
    AxisMap m;
    if (!qqaxmap(b, &m)) return;
    int mode = c.polcrv;
    if (m.type == 1 && mode != CRV_LINE && mode != CRV_BARS && mode != CRV_STEM &&
        mode != CRV_FBAR) {
        qqwar1(b, 160, "Bad interpolation method for polar scaling");
        return;
    }
    if (!qqcrvlog(b, m, xray, yray, n)) return;

    CurveSave save;
    qqcrvbegin(b, &save);
    int nan0 = b->diag.nnan;
    qqchkd(b, xray, yray, n);
    if ((mode == CRV_SPLI || mode == CRV_PSPL) && b->diag.nnan > nan0)
        qqwar1(b, 160, "NaN Values are not handled for spline interpolation");

    qqclip(b, 0);
    if (c.incmrk != 0) qqcrvsymbols(b, m, xray, yray, n, std::abs(c.incmrk));
    if (c.incmrk >= 0) {
        double uf = b->core.unitf > 0 ? b->core.unitf : 1.0;
        int passes = (int)(c.thkcrv * uf + 0.5);
        if (passes < 1) passes = 1;
        int warn = 0;
        for (int p = 1; p <= passes && !warn; ++p) {
            int k = p / 2;
            double shift = (p == 1 ? 0 : (p % 2 == 0 ? k : -k)) / uf;
            qqflsh(b);
            b->dev.lnoff = shift;
            qqdshres(b);
            switch (mode) {
                case CRV_STEP:
                    draw_steps(b, m, xray, yray, n);
                    break;
                case CRV_STAI:
                    draw_stairs(b, m, xray, yray, n);
                    break;
                case CRV_STEM:
                    draw_stems(b, m, xray, yray, n);
                    break;
                case CRV_BARS:
                    draw_bars(b, m, xray, yray, n, false);
                    break;
                case CRV_FBAR:
                    draw_bars(b, m, xray, yray, n, p == 1);
                    break;
                case CRV_SPLI:
                case CRV_PSPL:
                    warn = draw_spline(b, m, xray, yray, n);
                    break;
                case CRV_CURV:
                    draw_walked(b, m, xray, yray, n);
                    break;
                default:
                    draw_line(b, m, xray, yray, n);
                    break;
            }
        }
        if (warn == 31)
            qqwarn(b, 31, n);
        else if (warn)
            qqwar0(b, warn);
    }
    qqflsh(b);
    qqclip(b, 1);
    qqcrvrestore(b, &save);
    qqcurvedone(b);
}

void rlsymb(int nsym, double x, double y) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("rlsymb"));
    if (!b) return;
    bool user = b->crv.usrn > 0 && nsym == b->crv.usrsym;
    if (!user && (nsym < -1 || nsym >= QQ_NSYMB)) {
        qqwarn(b, 2, nsym);
        return;
    }
    AxisMap m;
    if (!qqaxmap(b, &m) || !good(x, y)) return;
    double px, py;
    qqaxpt(b, m, x, y, &px, &py);
    unsigned char fl = b->core.ynoflp;
    b->core.ynoflp = 1;
    qqsymb(b, nsym, px, py);
    qqflsh(b);
    b->core.ynoflp = fl;
}

void errbar(const double *x, const double *y, const double *err1, const double *err2,
            int n) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("errbar"));
    if (!b || qqchki(b, n, 1, -1)) return;
    AxisMap m;
    if (!qqaxmap(b, &m) || !qqcrvlog(b, m, x, y, n)) return;
    qqchkd(b, x, y, n);
    const CurveState &c = b->crv;
    CurveSave save;
    qqcrvsave(b, &save);
    b->core.ynoflp = 1;
    qqclip(b, 0);
    int curclr = b->clr.curclr;
    double e = c.hsymbl / 3.0;
    for (int i = 0; i < n; ++i) {
        if (!good(x[i], y[i]) || !std::isfinite(err1[i]) || !std::isfinite(err2[i])) continue;
        double px, py, ax, ay, bx, by;
        qqaxpt(b, m, x[i], y[i], &px, &py);
        px = std::round(px);
        py = std::round(py);
        if (c.marker >= 0) {
            if (c.mrkclr != -1) qqsetc(b, c.mrkclr);
            qqsymb(b, c.marker, px, py);
            if (c.mrkclr != -1) qqsetc(b, curclr);
        }
        if (c.bartyp == 0) {
            qqaxpt(b, m, x[i], y[i] - err1[i], &ax, &ay);
            qqaxpt(b, m, x[i], y[i] + err2[i], &bx, &by);
            ay = std::round(ay);
            by = std::round(by);
            qqmove(b, px, ay);
            qqdraw(b, px, by);
            qqmove(b, px - e, ay);
            qqdraw(b, px + e, ay);
            qqmove(b, px - e, by);
            qqdraw(b, px + e, by);
        } else {
            qqaxpt(b, m, x[i] - err1[i], y[i], &ax, &ay);
            qqaxpt(b, m, x[i] + err2[i], y[i], &bx, &by);
            ax = std::round(ax);
            bx = std::round(bx);
            qqmove(b, ax, py);
            qqdraw(b, bx, py);
            qqmove(b, ax, py - e);
            qqdraw(b, ax, py + e);
            qqmove(b, bx, py - e);
            qqdraw(b, bx, py + e);
        }
    }
    qqflsh(b);
    qqclip(b, 1);
    qqcrvrestore(b, &save);
}

void qqlinfitdraw(PlotBlock *b, const double *x, const double *y, int n, double a, double c,
                  bool symbols) noexcept {
    CurveState &cs = b->crv;
    int inc = cs.incmrk;
    if (symbols) {
        cs.incmrk = -1;
        qqcurve(b, x, y, n);
    }
    double lx[2] = {x[0], x[n - 1]}, ly[2] = {a * x[0] + c, a * x[n - 1] + c};
    cs.incmrk = 0;
    qqcurve(b, lx, ly, 2);
    cs.incmrk = inc;
}

void shdcrv(const double *x1ray, const double *y1ray, int n1, const double *x2ray,
            const double *y2ray, int n2) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("shdcrv"));
    if (!b) return;
    if (n1 < 1 || n2 < 1 || n1 + n2 < 3) {
        qqwarn(b, 2, n1 < 1 ? n1 : n2);
        return;
    }
    AxisMap m;
    if (!qqaxmap(b, &m) || !qqcrvlog(b, m, x1ray, y1ray, n1) || !qqcrvlog(b, m, x2ray, y2ray, n2))
        return;
    CurveState &c = b->crv;
    c.nshd++;
    c.shdarea = 1;
    int pattern = qqgetpattern(b);
    bool outline = qqarealine(b);
    // Areas keep their own count for the legend: the n-th area fills the
    // n-th legend line, whatever curves came before.
    qqlegrecord(b, c.nshd, pattern, outline, false);
    qqchkd(b, x1ray, y1ray, n1);
    qqchkd(b, x2ray, y2ray, n2);
    // The polygon: the first curve forward, the second backward.  Points
    // that cannot be placed are left out.
    size_t n = (size_t)n1 + (size_t)n2;
    double *px = (double *)std::malloc(sizeof(double) * 2 * n);
    if (!px) {
        qqwar0(b, 53);
        return;
    }
    double *py = px + n;
    int k = 0;
    for (int i = 0; i < n1; ++i)
        if (good(x1ray[i], y1ray[i])) {
            qqaxpt(b, m, x1ray[i], y1ray[i], &px[k], &py[k]);
            ++k;
        }
    for (int i = n2 - 1; i >= 0; --i)
        if (good(x2ray[i], y2ray[i])) {
            qqaxpt(b, m, x2ray[i], y2ray[i], &px[k], &py[k]);
            ++k;
        }
    CurveSave save;
    qqcrvsave(b, &save);
    b->core.ynoflp = 1;
    qqclip(b, 0);
    if (k >= 3) {
        if (outline) {
            qqsolid(b);
            qqmove(b, px[0], py[0]);
            for (int i = 1; i < k; ++i) qqdraw(b, px[i], py[i]);
            qqdraw(b, px[0], py[0]);
            qqflsh(b);
        }
        if (pattern != 0) qqpatfill(b, px, py, k, pattern);  // may change px, py
    }
    qqflsh(b);
    qqclip(b, 1);
    qqcrvrestore(b, &save);
    std::free(px);
    qqsetpattern(b, qqpatcycle(b, c.nshd % 30 + 1));
}
