// The colour plots of a graf3 system: a matrix (crvmat), quadrilaterals
// (crvqdr), triangles (crvtri) and points (curve3, curvx3, curvy3).
//
// Each saves what it changes (colour, clipping, test limits, logarithm
// flags) and gives it back on every way out.  Nothing is allocated: cells
// stream into QQCellRuns, which merges runs of one colour.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "axes/axes.h"
#include "core/family.h"
#include "core/guard.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "fields/colour_paint.h"
#include "fields/field_block.h"
#include "kolvex.h"
#include "plots/curves.h"
#include "plots/zscale.h"

namespace {

// Sub-points per matrix cell beyond which a call is refused: more cannot
// show on any page and would only make the call run for hours.
const double kMaxSubPoints = 1e8;
// Cells beyond which a page format gets the matrix as one picture: a file
// of rectangles would grow with the matrix, a picture only with the area.
const double kPictureCells = 20000;

// The bilinear value inside cell (i, j); terms of weight 0 are left out so
// that a NaN in a neighbour that does not count stays out.
inline double bilinear(const double *z, int m, int i, int j, double u, double v) {
    const double *p = z + (size_t)i * m + j;
    double s = (1 - u) * (1 - v) * p[0];
    if (v > 0) s += (1 - u) * v * p[1];
    if (u > 0) s += u * (1 - v) * p[m];
    if (u > 0 && v > 0) s += u * v * p[m + 1];
    return s;
}

// The user limits of one axis of the system for the colour plots, with
// the logarithm as the call has it; the extent of sursze in its place once
// set (user values as they stand).
void axis_limits(const FieldBlock *b, int axis, double *a, double *e) {
    const ColourPlotState &c = b->cpl;
    if (c.sszset) {
        *a = c.ssz[2 * axis];
        *e = c.ssz[2 * axis + 1];
        return;
    }
    const ScaleRecord &r = b->ax.rec;
    *a = r.a[axis];
    *e = r.e[axis];
    if (r.log[axis]) {
        *a = std::pow(10.0, *a);
        *e = std::pow(10.0, *e);
    }
}

// What crvmat changes for its length: test limits and logarithm flags.
struct MatrixSave {
    FieldBlock *b;
    double chkx[2], chky[2];
    int log[2];
    explicit MatrixSave(FieldBlock *blk) : b(blk) {
        const AxesState &d = b->ax;
        chkx[0] = d.chkx[0], chkx[1] = d.chkx[1], chky[0] = d.chky[0], chky[1] = d.chky[1];
        log[0] = b->ax.rec.log[0];
        log[1] = b->ax.rec.log[1];
    }
    ~MatrixSave() {
        AxesState &d = b->ax;
        d.chkx[0] = chkx[0], d.chkx[1] = chkx[1], d.chky[0] = chky[0], d.chky[1] = chky[1];
        b->ax.rec.log[0] = log[0];
        b->ax.rec.log[1] = log[1];
    }
};

// A spread axis: test limits are the axis values, without logarithm.
void spread(FieldBlock *b, int axis) {
    ScaleRecord &r = b->ax.rec;
    double *lim = axis == 0 ? b->ax.chkx : b->ax.chky;
    lim[0] = r.a[axis] < r.e[axis] ? r.a[axis] : r.e[axis];
    lim[1] = r.a[axis] < r.e[axis] ? r.e[axis] : r.a[axis];
    r.log[axis] = 0;
}

void mesh_colour(FieldBlock *b, int saved) {
    int mc = b->cpl.mshclr;
    qqsetc(b, mc != -1 ? mc : saved);
}

// The grid lines of crvmat: n lines along y, then m along x; with
// centred point rectangles they are the borders of the rectangles.
void matrix_mesh(FieldBlock *b, int n, int m, double xa, double ya, double dx, double dy,
                 bool centred) {
    int hx = centred ? b->ax.nxres / 2 : 0, hy = centred ? b->ax.nyres / 2 : 0;
    int sx = centred ? b->ax.nxres : 0, sy = centred ? b->ax.nyres : 0;
    double xe = xa + (n - 1) * dx, ye = ya + (m - 1) * dy;
    double y0 = qqypos(b, ya) + hy, y1 = qqypos(b, ye) + hy - sy;
    double x0 = qqxpos(b, xa) - hx, x1 = qqxpos(b, xe) - hx + sx;
    for (int i = 0; i < n; ++i) {
        double x = qqxpos(b, i == n - 1 ? xe : xa + i * dx) - hx;
        qqline(b, x, y0, x, y1);
    }
    if (centred) qqline(b, x1, y0, x1, y1);
    for (int j = 0; j < m; ++j) {
        double y = qqypos(b, j == m - 1 ? ye : ya + j * dy) + hy;
        qqline(b, x0, y, x1, y);
    }
    if (centred) qqline(b, x0, y1, x1, y1);
    qqflsh(b);
}

}  // namespace

void crvmat(const double *zmat, int n, int m, int ixpts, int iypts) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("crvmat"));
    if (!b || !qqcolsys(b)) return;
    if (n < 2 || m < 2) {
        qqwarn(b, 2, n < 2 ? n : m);
        return;
    }
    if (ixpts < 1 || iypts < 1) {
        qqwarn(b, 2, ixpts < 1 ? ixpts : iypts);
        return;
    }
    if ((double)(n - 1) * ixpts * (double)(m - 1) * iypts > kMaxSubPoints &&
        (ixpts > 1 || iypts > 1)) {
        qqwarn(b, 2, ixpts > 1 ? ixpts : iypts);
        return;
    }
    AxesState &ax = b->ax;
    const ColourPlotState &cp = b->cpl;
    MatrixSave save(b);
    int mode = ax.resmod;
    bool symb = cp.crvmode == 1;
    if (!symb) {
        if (mode == 3 || mode == 4) spread(b, 0);
        if (mode == 3 || mode == 5) spread(b, 1);
    }
    if (mode == 1 || mode > 2) {
        long long gx = (long long)(ax.autrx - 1) * ixpts + 1, gy = (long long)(ax.autry - 1) * iypts + 1;
        int wx = ax.rec.nxl, wy = ax.rec.nyl;
        if (cp.sszset) {
            // The matrix covers the rectangle of its extent only.
            const double *e = cp.ssz;
            wx = (int)std::min(std::trunc(std::fabs(qqxpos(b, e[1]) - qqxpos(b, e[0])) + 1.5), 1e9);
            wy = (int)std::min(std::trunc(std::fabs(qqypos(b, e[3]) - qqypos(b, e[2])) + 1.5), 1e9);
        }
        qqautres(b, (int)std::min(gx, 1000000000LL), (int)std::min(gy, 1000000000LL), wx, wy);
    }
    double xa, xe, ya, ye;
    axis_limits(b, 0, &xa, &xe);
    axis_limits(b, 1, &ya, &ye);
    double dx = (xe - xa) / (n - 1), dy = (ye - ya) / (m - 1);
    double sx = dx / ixpts, sy = dy / iypts;
    qqclip(b, 0);
    int saved = b->clr.curclr;
    bool only = cp.mesh == 2;
    if (!only && symb) {
        unsigned char fl = b->core.ynoflp;
        b->core.ynoflp = 1;
        for (int i = 0; i < n; ++i) {
            double x = i == n - 1 ? xe : xa + i * dx;
            double xp = qqround(qqxpos(b, x));
            for (int j = 0; j < m; ++j) {
                int c = qqcellclr(b, zmat[(size_t)i * m + j]);
                if (c < 0) continue;
                qqsetc(b, c);
                qqsymb(b, b->crv.marker, xp, qqround(qqypos(b, j == m - 1 ? ye : ya + j * dy)));
            }
        }
        qqflsh(b);
        b->core.ynoflp = fl;
    }
    qqcanvas *pic = nullptr;
    int ox = ax.rec.nxa, oy = ax.rec.nya - ax.rec.nyl + 1;
    if (!only && !symb && !cp.nobgd && (double)(n - 1) * ixpts * (double)(m - 1) * iypts > kPictureCells)
        pic = qqcellpicture(b);
    if (!symb && !only && mode == 2) {
        // Exact cells: each sub-cell is the rectangle from its point to the
        // next, so the last row and column only colour by interpolation.
        QQCellRuns runs(b, pic, ox, oy);
        for (int i = 0; i < n - 1; ++i)
            for (int a = 0; a < ixpts; ++a) {
                double x = xa + i * dx + a * sx, u = (double)a / ixpts;
                int px1 = qqround(qqxpos(b, x)), px2 = qqround(qqxpos(b, x + sx));
                for (int j = 0; j < m - 1; ++j)
                    for (int bb = 0; bb < iypts; ++bb) {
                        double y = ya + j * dy + bb * sy;
                        int c = qqcellclr(b, bilinear(zmat, m, i, j, u, (double)bb / iypts));
                        if (c < 0) continue;
                        runs.add(px1, qqround(qqypos(b, y)), px2, qqround(qqypos(b, y + sy)), c);
                    }
            }
        runs.flush();
    } else if (!symb && !only) {
        QQPointPaint pp(b, pic, ox, oy);
        for (int i = 0; i < n - 1; ++i)
            for (int a = 0; a < ixpts; ++a) {
                double x = xa + i * dx + a * sx, u = (double)a / ixpts;
                for (int j = 0; j < m - 1; ++j)
                    for (int bb = 0; bb < iypts; ++bb)
                        pp.point(x, ya + j * dy + bb * sy,
                                 bilinear(zmat, m, i, j, u, (double)bb / iypts));
                // The far edge y = ye, along the column.
                pp.point(x, ye, bilinear(zmat, m, i, m - 1, u, 0));
            }
        for (int j = 0; j < m - 1; ++j)
            for (int bb = 0; bb < iypts; ++bb)
                pp.point(xe, ya + j * dy + bb * sy,
                         bilinear(zmat, m, n - 1, j, 0, (double)bb / iypts));
        pp.point(xe, ye, zmat[(size_t)(n - 1) * m + (m - 1)]);
        pp.runs.flush();
    }
    if (pic) qqcellpictureend(b);
    if (b->clr.curclr != saved) qqsetc(b, saved);
    if (cp.mesh >= 1 && cp.mesh <= 3) {
        mesh_colour(b, saved);
        matrix_mesh(b, n, m, xa, ya, dx, dy, cp.crvmode == 0 && mode != 2);
        qqsetc(b, saved);
    }
    qqclip(b, 1);
}

namespace {

// Quadrilaterals (k = 4) or triangles (k = 3), given by the corner
// indices of each polygon.
struct Polygons {
    const double *x, *y, *z;
    int k;
    int count;
    const int *i1, *i2, *i3;  // triangles: 1-based vertex numbers, or null
    int npts;
    // Corner c of polygon p, as an index into x, y, z; -1 when out of range.
    int corner(int p, int c) const {
        if (!i1) return p * k + c;
        const int *t = c == 0 ? i1 : c == 1 ? i2 : i3;
        int v = t[p] - 1;
        return v >= 0 && v < npts ? v : -1;
    }
};

void paint_polygons(FieldBlock *b, const Polygons &pg) {
    if (!qqcolsys(b)) return;
    const ColourPlotState &cp = b->cpl;
    bool only = cp.mesh == 2;
    bool smooth = cp.shade == 1 && !only;
    int kind = qqdevkind(b);
    if (smooth && kind != QQ_KIND_SCREEN && kind != QQ_KIND_PAGE && kind != QQ_KIND_RASTER) {
        // The colour-number shading needs the pixels of a z-buffer, which a
        // vector file cannot have: nothing is drawn, as for a surface.
        qqwar0(b, 40);
        return;
    }
    qqclip(b, 0);
    int saved = b->clr.curclr;
    unsigned char fl = b->core.ynoflp;
    b->core.ynoflp = 1;
    double px[4], py[4], cz[4];
    auto place = [&](int p) {
        for (int c = 0; c < pg.k; ++c) {
            int v = pg.corner(p, c);
            if (v < 0 || std::isnan(pg.x[v]) || std::isnan(pg.y[v])) return false;
            px[c] = qqxpos(b, pg.x[v]);
            py[c] = qqypos(b, pg.y[v]);
            cz[c] = pg.z[v];
        }
        return true;
    };
    if (!only) {
        for (int p = 0; p < pg.count; ++p) {
            if (!place(p)) continue;
            double tx[3] = {px[0], px[1], px[2]}, ty[3] = {py[0], py[1], py[2]};
            if (smooth) {
                double cn[4];
                bool skip = false;
                for (int c = 0; c < pg.k; ++c) {
                    int v = qqcellclr(b, cz[c]);
                    if (v < 0) skip = true;
                    cn[c] = v;
                }
                if (skip) continue;
                qqclrtri(b, tx, ty, cn);
                if (pg.k == 4) {
                    double ux[3] = {px[0], px[3], px[2]}, uy[3] = {py[0], py[3], py[2]};
                    double uc[3] = {cn[0], cn[3], cn[2]};
                    qqclrtri(b, ux, uy, uc);
                }
                continue;
            }
            double mean = 0;
            for (int c = 0; c < pg.k; ++c) mean += cz[c];
            int c = qqcellclr(b, mean / pg.k);
            if (c < 0) continue;
            qqsetc(b, c);
            qqtriangle(b, tx, ty);
            if (pg.k == 4) {
                double ux[3] = {px[0], px[3], px[2]}, uy[3] = {py[0], py[3], py[2]};
                qqtriangle(b, ux, uy);
            }
        }
        if (b->clr.curclr != saved) qqsetc(b, saved);
    }
    if (cp.mesh >= 1 && cp.mesh <= 3) {
        mesh_colour(b, saved);
        for (int p = 0; p < pg.count; ++p)
            if (place(p)) qqpolyln(b, px, py, pg.k);
        qqflsh(b);
        qqsetc(b, saved);
    }
    b->core.ynoflp = fl;
    qqclip(b, 1);
    const AxesState &ax = b->ax;
    if (smooth && ax.frmthk != 0 && !ax.nogrf) {
        const ScaleRecord &r = ax.rec;
        qqaxframe(b, r.nxa, r.nya - r.nyl + 1, r.nxa + r.nxl - 1, r.nya, ax.frmthk, ax.frmcol);
    }
}

}  // namespace

void crvqdr(const double *xray, const double *yray, const double *zray, int n) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("crvqdr"));
    if (!b) return;
    if (n < 4) {
        qqwarn(b, 2, n);
        return;
    }
    Polygons pg{xray, yray, zray, 4, n / 4, nullptr, nullptr, nullptr, n};
    paint_polygons(b, pg);
}

void crvtri(const double *xray, const double *yray, const double *zray, int n, const int *i1ray,
            const int *i2ray, const int *i3ray, int ntri) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("crvtri"));
    if (!b) return;
    if (n < 3 || ntri < 1) {
        qqwarn(b, 2, n < 3 ? n : ntri);
        return;
    }
    Polygons pg{xray, yray, zray, 3, ntri, i1ray, i2ray, i3ray, n};
    paint_polygons(b, pg);
}

namespace {

// curve3 and its forms with one y (kind 1) or one x (kind 2).
void colour_points(FieldBlock *b, const double *x, const double *y, const double *z, int n,
                   int kind) {
    if (!qqcolsys(b)) return;
    if (n < 1) {
        qqwarn(b, 2, n);
        return;
    }
    qqclip(b, 0);
    int saved = b->clr.curclr;
    auto X = [&](int i) { return kind == 2 ? x[0] : x[i]; };
    auto Y = [&](int i) { return kind == 1 ? y[0] : y[i]; };
    if (b->cpl.crvmode == 1) {
        unsigned char fl = b->core.ynoflp;
        b->core.ynoflp = 1;
        for (int i = 0; i < n; ++i) {
            double xv = X(i), yv = Y(i);
            if (std::isnan(xv) || std::isnan(yv) || std::isnan(z[i])) {
                if (b->diag.nanon == 1) b->diag.nnan++;
                continue;
            }
            int c = qqcellclr(b, z[i]);
            if (c < 0) continue;
            qqsetc(b, c);
            qqsymb(b, b->crv.marker, qqround(qqxpos(b, xv)), qqround(qqypos(b, yv)));
        }
        qqflsh(b);
        b->core.ynoflp = fl;
    } else {
        QQPointPaint pp(b);
        for (int i = 0; i < n; ++i) pp.point(X(i), Y(i), z[i]);
        pp.runs.flush();
    }
    if (b->clr.curclr != saved) qqsetc(b, saved);
    qqclip(b, 1);
}

}  // namespace

void curve3(const double *xray, const double *yray, const double *zray, int n) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("curve3"));
    if (b) colour_points(b, xray, yray, zray, n, 0);
}

void curvx3(const double *xray, double y, const double *zray, int n) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("curvx3"));
    if (b) colour_points(b, xray, &y, zray, n, 1);
}

void curvy3(double x, const double *yray, const double *zray, int n) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("curvy3"));
    if (b) colour_points(b, &x, yray, zray, n, 2);
}
