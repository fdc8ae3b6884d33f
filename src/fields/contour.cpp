// contur, contur2, conmat, concrv and conpts: one level of a gridded
// function traced and drawn through the contour pen, or returned as lines.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "axes/axes.h"
#include "core/guard.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "fields/contours.h"
#include "fields/field_block.h"
#include "fields/trace.h"
#include "kolvex.h"
#include "plots/axis_map.h"
#include "plots/curve_draw.h"
#include "plots/curves.h"

namespace {

inline bool finite(double v) { return std::fabs(v) <= 1.7976931348623157e308; }

// Tracer output to the pen, converted to plot coordinates.
struct DrawSink {
    FieldBlock *b;
    const AxisMap &m;
    void open() { b->con.lstate = 3; }
    void point(double x, double y) {
        if (!finite(x) || !finite(y)) {
            if (b->con.lstate == 2) b->con.lstate = 3;
            return;
        }
        double px, py;
        qqaxpt(b, m, x, y, &px, &py);
        qqconpen(b, px, py);
    }
};

// Tracer output into the arrays of conpts.
struct PointSink {
    FieldBlock *b;
    double *xp, *yp;
    int maxpts, *nptray, maxlin;
    int nlins = 0, npts = 0;
    bool full = false;
    void open() {
        if (nlins < maxlin) {
            nptray[nlins++] = 0;
        } else {
            qqwar1(b, 117, "Overflow - Too many contour lines");
        }
    }
    void point(double x, double y) {
        if (npts >= maxpts) {
            if (!full) qqwar1(b, 116, "Overflow - Too many contour points");
            full = true;
            return;
        }
        xp[npts] = x;
        yp[npts] = y;
        ++npts;
        ++nptray[nlins - 1];
    }
};

bool log_ok(FieldBlock *b, const AxisMap &m, const double *x, size_t nx, const double *y,
            size_t ny) {
    if (m.neglog) return true;
    if (m.logx)
        for (size_t k = 0; k < nx; ++k)
            if (x[k] <= 0) {
                qqwar0(b, 27);
                return false;
            }
    if (m.logy)
        for (size_t k = 0; k < ny; ++k)
            if (y[k] <= 0) {
                qqwar0(b, 27);
                return false;
            }
    return true;
}

// The frame of a drawing call: a grid g traced at zlev, or (g null) the
// points of concrv sent as one line.
void draw_level(FieldBlock *b, const ConGrid *g, const double *cx, const double *cy, int ncrv,
                double zlev) {
    AxisMap m;
    if (!qqaxmap(b, &m)) return;
    if (g) {
        size_t nx = g->matrix ? (size_t)g->n * g->m : (size_t)g->n;
        size_t ny = g->matrix ? (size_t)g->n * g->m : (size_t)g->m;
        if (!log_ok(b, m, g->x, nx, g->y, ny)) return;
    } else if (!log_ok(b, m, cx, (size_t)ncrv, cy, (size_t)ncrv)) {
        return;
    }
    ContourState &c = b->con;
    const int lmode = b->ax.xlab[2];
    double *mem = nullptr;
    if (lmode != 0) {
        mem = (double *)std::malloc(sizeof(double) * 2 * QQ_CON_MAXBUF);
        if (!mem) {
            qqwar0(b, 53);
            return;
        }
    }
    c.bufx = mem;
    c.bufy = mem ? mem + QQ_CON_MAXBUF : nullptr;
    c.nbuf = 0;
    c.collect = 0;
    c.polyon = 0;

    CurveState &cs = b->crv;
    int incmrk = cs.incmrk;
    cs.incmrk = 0;
    if (cs.legpend) {
        qqlegrecord(b, cs.ncrv, -1, true, false);
        cs.legpend = 0;
    }
    qqcurvedone(b);
    CurveSave save;
    qqcrvsave(b, &save);
    b->core.ynoflp = 1;
    int oldang = b->txt.angle;
    qqclip(b, 0);

    c.lmode = lmode;
    qqconlevel(b, zlev);
    double uf = b->core.unitf > 0 ? b->core.unitf : 1.0;
    int passes = (int)(cs.thkcrv * uf + 0.5);
    if (passes < 1) passes = 1;
    bool nomem = false;
    for (int p = 1; p <= passes && !nomem; ++p) {
        int k = p / 2;
        qqflsh(b);
        b->dev.lnoff = (p == 1 ? 0 : (p % 2 == 0 ? k : -k)) / uf;
        qqdshres(b);
        if (p > 1 && lmode != 0) c.lmode = 3;
        c.lstate = 3;
        if (g) {
            DrawSink sink{b, m};
            qqcon::Tracer<DrawSink> t{*g, zlev, false, sink, {}};
            nomem = !t.run();
        } else {
            DrawSink sink{b, m};
            for (int i = 0; i < ncrv; ++i) sink.point(cx[i], cy[i]);
        }
        c.lstate = 4;
        qqconpen(b, 0, 0);
    }
    if (nomem) qqwar0(b, 53);
    qqflsh(b);
    b->dev.lnoff = 0;
    qqclip(b, 1);
    c.lmode = lmode;
    qqconangle(b, g ? oldang : 0);
    cs.incmrk = incmrk;
    qqcrvrestore(b, &save);
    std::free(mem);
    c.bufx = c.bufy = nullptr;
    c.nbuf = 0;
}

bool grid_size(FieldBlock *b, int n, int m) {
    if (n < 2 || m < 2) {
        qqwarn(b, 2, n < m ? n : m);
        return false;
    }
    return true;
}

}  // namespace

void contur(const double *xray, int n, const double *yray, int m, const double *zmat,
            double zlev) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("contur"));
    if (!b || !grid_size(b, n, m)) return;
    ConGrid g{xray, yray, zmat, n, m, false};
    draw_level(b, &g, nullptr, nullptr, 0, zlev);
}

void contur2(const double *xmat, const double *ymat, const double *zmat, int n, int m,
             double zlev) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("contur2"));
    if (!b || !grid_size(b, n, m)) return;
    ConGrid g{xmat, ymat, zmat, n, m, true};
    draw_level(b, &g, nullptr, nullptr, 0, zlev);
}

void conmat(const double *zmat, int n, int m, double zlev) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("conmat"));
    if (!b || !grid_size(b, n, m)) return;
    // The matrix runs from the start of each axis to its end, so that on a
    // falling axis its first row still lies at the axis's start.
    const ScaleRecord &r = b->ax.rec;
    double lim[2][2];
    for (int k = 0; k < 2; ++k) {
        lim[k][0] = r.log[k] ? std::pow(10.0, r.a[k]) : r.a[k];
        lim[k][1] = r.log[k] ? std::pow(10.0, r.e[k]) : r.e[k];
    }
    double *x = (double *)std::malloc(sizeof(double) * ((size_t)n + (size_t)m));
    if (!x) {
        qqwar0(b, 53);
        return;
    }
    double *y = x + n;
    // The extent of sursze, else the axes from start to end.
    if (b->cpl.sszset) {
        const double *ext = b->cpl.ssz;
        lim[0][0] = ext[0], lim[0][1] = ext[1], lim[1][0] = ext[2], lim[1][1] = ext[3];
    }
    for (int i = 0; i < n; ++i) x[i] = lim[0][0] + i * (lim[0][1] - lim[0][0]) / (n - 1);
    for (int j = 0; j < m; ++j) y[j] = lim[1][0] + j * (lim[1][1] - lim[1][0]) / (m - 1);
    ConGrid g{x, y, zmat, n, m, false};
    draw_level(b, &g, nullptr, nullptr, 0, zlev);
    std::free(x);
}

void concrv(const double *xray, const double *yray, int n, double zlev) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("concrv"));
    if (!b) return;
    if (n < 1) {
        qqwarn(b, 2, n);
        return;
    }
    draw_level(b, nullptr, xray, yray, n, zlev);
}

void conpts(const double *xray, int n, const double *yray, int m, const double *zmat, double zlev,
            double *xpts, double *ypts, int maxpts, int *nptray, int maxlin, int *nlins) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("conpts"));
    if (nlins) *nlins = 0;
    if (!b || !grid_size(b, n, m)) return;
    if (maxpts < 1 || maxlin < 1) {
        qqwarn(b, 2, maxpts < 1 ? maxpts : maxlin);
        return;
    }
    ConGrid g{xray, yray, zmat, n, m, false};
    PointSink sink{b, xpts, ypts, maxpts, nptray, maxlin};
    qqcon::Tracer<PointSink> t{g, zlev, true, sink, {}};
    if (!t.run()) qqwar0(b, 53);
    if (nlins) *nlins = sink.nlins;
}
