// Painting of values as colour: runs of cells, point rectangles and the
// colour-number triangle shared by the colour plots.
#include "fields/colour_paint.h"

#include <algorithm>
#include <cmath>

#include "axes/axes.h"
#include "core/family.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "fields/field_block.h"
#include "plots/zscale.h"
#include "raster/canvas.h"
#include "raster/primitives.h"

bool qqcolsys(FieldBlock *b) noexcept {
    if (b->ax.rec.type == 3) {
        qqwar0(b, 35);
        return false;
    }
    return true;
}

void QQCellRuns::add(int ax, int ay, int bx, int by, int colour) noexcept {
    if (ax > bx) std::swap(ax, bx);
    if (ay > by) std::swap(ay, by);
    if (open && colour == clr && ax == x1 && bx == x2 && ay <= y2 + 1 && by >= y1 - 1) {
        y1 = std::min(y1, ay);
        y2 = std::max(y2, by);
        return;
    }
    flush();
    x1 = ax;
    x2 = bx;
    y1 = ay;
    y2 = by;
    clr = colour;
    open = true;
}

void QQCellRuns::flush() noexcept {
    if (!open) return;
    open = false;
    if (cv)
        qqcrect(cv, x1 - ox, y1 - oy, x2 - ox, y2 - oy, clr);
    else
        qqfrect(b, x1, y1, x2, y2, clr);
}

int qqcellclr(FieldBlock *b, double z) noexcept {
    if (std::isnan(z) && b->diag.nanon == 1) {
        b->diag.nnan++;
        return -1;
    }
    int c = qqzclr(b, z);
    if (b->cpl.nobgd && c == b->clr.blkidx) return -1;
    return c;
}

QQPointPaint::QQPointPaint(FieldBlock *blk, qqcanvas *canvas, int dx, int dy)
    : b(blk), runs(blk, canvas, dx, dy) {
    wx = b->ax.nxres > 0 ? b->ax.nxres : 1;
    wy = b->ax.nyres > 0 ? b->ax.nyres : 1;
    int kind = qqdevkind(b);
    pixel = b->cpl.crvmode == 2 && (kind == QQ_KIND_SCREEN || kind == QQ_KIND_RASTER);
}

void QQPointPaint::point(double x, double y, double z) noexcept {
    DiagState &d = b->diag;
    const AxesState &ax = b->ax;
    if (std::isnan(x) || std::isnan(y)) {
        if (d.nanon == 1) d.nnan++;
        return;
    }
    if (ax.chkaxis == 1) {
        auto out = [](double v, const double *lim) {
            double lo = std::min(lim[0], lim[1]), hi = std::max(lim[0], lim[1]);
            return v < lo || v > hi;
        };
        if (out(x, ax.chkx) || out(y, ax.chky)) {
            qqchkd(b, &x, &y, 1);
            return;
        }
    }
    int c = qqcellclr(b, z);
    if (c < 0) return;
    double xp = qqxpos(b, x), yp = qqypos(b, y);
    if (pixel) {
        int px = qqround(xp), py = qqround(yp);
        runs.add(px, py, px, py, c);
        return;
    }
    int x1 = qqround(xp - wx / 2.0), y1 = qqround(yp - wy / 2.0);
    runs.add(x1, y1, x1 + wx - 1, y1 + wy - 1, c);
}

qqcanvas *qqcellpicture(FieldBlock *b) noexcept {
    const DriverOps *drv = b->dev.drv;
    CanvasState &cs = b->cnv;
    if (!drv || !drv->image || cs.imgact || cs.cv.pix || b->dev.pl3on || b->dev.trfon) return nullptr;
    const ScaleRecord &r = b->ax.rec;
    if (qqcnvnew(&cs.cv, r.nxl, r.nyl, 0, b->sess.bgmode == 2) != 0) {
        qqcnvfree(&cs.cv);
        return nullptr;
    }
    qqctable(&cs.cv, b->clr.colmap, b->clr.vltkind);
    qqflsh(b);
    return &cs.cv;
}

void qqcellpictureend(FieldBlock *b) noexcept {
    CanvasState &cs = b->cnv;
    if (!cs.cv.pix) return;
    qqcflush(&cs.cv);
    const ScaleRecord &r = b->ax.rec;
    int flg = cs.imgbflg, box[4] = {cs.imgbx[0], cs.imgbx[1], cs.imgbx[2], cs.imgbx[3]};
    cs.imgbflg = 1;
    cs.imgbx[0] = r.nxa;
    cs.imgbx[1] = r.nya - r.nyl + 1;
    cs.imgbx[2] = r.nxl;
    cs.imgbx[3] = r.nyl;
    cs.embed(b);
    cs.imgbflg = flg;
    for (int k = 0; k < 4; ++k) cs.imgbx[k] = box[k];
    qqcnvfree(&cs.cv);
}

void qqclrtri(FieldBlock *b, const double *x, const double *y, const double *c) noexcept {
    // Corners sorted by y; each scan line of plot units gets its span, and
    // along the span the colour number changes linearly: equal numbers
    // are sent as one run.
    int o[3] = {0, 1, 2};
    std::sort(o, o + 3, [&](int i, int j) { return y[i] < y[j]; });
    double x0 = x[o[0]], y0 = y[o[0]], c0 = c[o[0]];
    double x1 = x[o[1]], y1 = y[o[1]], c1 = c[o[1]];
    double x2 = x[o[2]], y2 = y[o[2]], c2 = c[o[2]];
    if (!(y2 - y0 < 1e7) || !std::isfinite(x0 + x1 + x2 + c0 + c1 + c2)) return;
    const DeviceState &d = b->dev;
    int ys = std::max(qqround(y0), d.clpy1 - d.nysh - 1),
        ye = std::min(qqround(y2), d.clpy2 - d.nysh + 1);
    for (int row = ys; row <= ye; ++row) {
        double yy = row;
        if (yy < y0) yy = y0;
        if (yy > y2) yy = y2;
        // The long edge 0-2 and the short edge 0-1 or 1-2.
        double t = y2 > y0 ? (yy - y0) / (y2 - y0) : 0;
        double xa = x0 + (x2 - x0) * t, ca = c0 + (c2 - c0) * t;
        double xb, cb;
        if (yy < y1 || (yy == y1 && y1 > y0)) {
            double u = y1 > y0 ? (yy - y0) / (y1 - y0) : 0;
            xb = x0 + (x1 - x0) * u;
            cb = c0 + (c1 - c0) * u;
        } else {
            double u = y2 > y1 ? (yy - y1) / (y2 - y1) : 0;
            xb = x1 + (x2 - x1) * u;
            cb = c1 + (c2 - c1) * u;
        }
        if (xa > xb) {
            std::swap(xa, xb);
            std::swap(ca, cb);
        }
        int xs = qqround(xa), xe = qqround(xb);
        xs = std::max(xs, d.clpx1 - d.nxsh - 1);
        xe = std::min(xe, d.clpx2 - d.nxsh + 1);
        if (xs > xe) continue;
        double dc = xb > xa ? (cb - ca) / (xb - xa) : 0;
        int run = xs, cur = qqround(ca + (xs - xa) * dc);
        for (int px = xs + 1; px <= xe + 1; ++px) {
            int cn = px <= xe ? qqround(ca + (px - xa) * dc) : -1;
            if (cn != cur) {
                qqfrect(b, run, row, px - 1, row, cur);
                run = px;
                cur = cn;
            }
        }
    }
}
