// The rectangular axis system: graf and endgrf, free axes, titles, grid
// lines and the lines through the origin.
#include <cmath>
#include <algorithm>
#include <cstring>

#include "axes/axes.h"
#include "axes/axes_block.h"
#include "axes/axis_draw.h"
#include "axes/label_text.h"
#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"

namespace {

// Draws the frame of thickness t round the rectangle: t lines outward,
// or inward for a negative t.
void draw_frame(AxesBlock *b, int x1, int y1, int x2, int y2, int t, int clr) {
    if (t == 0) return;
    if (b->ax.framefn) {
        b->ax.framefn(b, x1, y1, x2 - x1 + 1, y2 - y1 + 1, t, 0.0, clr);
        return;
    }
    int saved = b->clr.curclr;
    if (clr != -1 && clr != saved) qqsetc(b, clr);
    // Without the fill layer: |t| in the page's units: one rectangle a plot unit, at least one.
    double uf = b->core.unitf > 0 ? b->core.unitf : 1.0;
    double at = t < 0 ? -(double)t : (double)t;
    int n = at * uf + 0.5 > 10000 ? 10000 : (int)(at * uf + 0.5);
    if (n < 1) n = 1;
    for (int i = 0; i < n; ++i) {
        int k = t > 0 ? i : -i;
        double a = x1 - k, c = x2 + k, top = y1 - k, bot = y2 + k;
        qqmove(b, a, bot);
        qqdraw(b, c, bot);
        qqdraw(b, c, top);
        qqdraw(b, a, top);
        qqdraw(b, a, bot);
    }
    if (clr != -1 && clr != saved) qqsetc(b, saved);
}

// Fills a rectangle of plot coordinates in a colour.
void fill_box(AxesBlock *b, int x1, int y1, int x2, int y2, int clr) {
    int saved = b->clr.curclr;
    qqsetc(b, clr);
    qqflsh(b);
    const double xs[4] = {(double)x1, (double)x2, (double)x2, (double)x1};
    const double ys[4] = {(double)y2, (double)y2, (double)y1, (double)y1};
    if (!(b->dev.hwshd && qqdevpoly(b, xs, ys, 4))) {
        // Rows outside the clip window draw nothing: a huge box costs only
        // the rows that can show.
        long long lo = std::max<long long>(y1, b->dev.clpy1 - 1LL);
        long long hi = std::min<long long>(y2, b->dev.clpy2 + 1LL);
        for (long long y = lo; y <= hi; ++y) qqline(b, x1, (double)y, x2, (double)y);
    }
    qqsetc(b, saved);
}

// The extents of the four sides of the system for center: below, left,
// above, right.  Without titles they are the room of ticks, labels and
// names alone.
void side_extents(AxesBlock *b, const double v[2][4], int ext[4], bool titles = true) {
    const AxesState &ax = b->ax;
    int h = qqaxth(b);
    for (int s = 0; s < 4; ++s) {
        int axis = s == 0 || s == 2 ? 0 : 1;
        int lev = ax.grfsid[s];
        if ((s == 2 || s == 3) && ax.ax2) lev = 0;
        int e = 0;
        int tp = ax.ticpos[axis];
        if (lev >= 2 && ax.ntic[axis] > 0) e += tp == 0 ? ax.ticmaj : tp == 2 ? ax.ticmaj / 2 : 0;
        if (lev >= 3 && ax.lab[axis] != 0) {
            AxisCall c{};
            c.axis = axis;
            c.a = v[axis][0];
            c.e = v[axis][1];
            c.orl = v[axis][2];
            c.step = v[axis][3];
            c.len = ax.nlen[axis];
            c.side = s == 0 || s == 3 ? 0 : 1;
            c.logax = ax.scl[axis];
            c.level = lev;
            c.measure = 1;
            e += ax.labdis[axis] + qqaxis(b, c);
        }
        if (lev >= 4 && ax.name[axis][0]) e += ax.namdis[axis] + ax.hname;
        ext[s] = e;
    }
    if (!titles) return;
    qqbarsides(b, ext);
    double t = ax.htit > 0 ? ax.htit : h;
    double ls = qqaxlinesp(b);
    if (ax.titpos == 0) {
        for (int k = 1; k <= 4; ++k)
            if (ax.title[k - 1][0]) {
                int need = (int)std::trunc((4 - k) * ls * t + ax.vkytit + 3 * t - 1);
                if (need > ext[2]) ext[2] = need;
                break;
            }
    } else {
        for (int k = 4; k >= 1; --k)
            if (ax.title[k - 1][0]) {
                int need = (int)std::trunc((k - 1) * ls * t + ax.vkytit + 5 * t - 1);
                if (need > ext[0]) ext[0] = need;
                break;
            }
    }
}

void do_center(AxesBlock *b, const double v[2][4], int px, int py, int xl, int yl) {
    int ext[4];
    side_extents(b, v, ext);
    int bottom = ext[0], left = ext[1], top = ext[2], right = ext[3];
    qqflsh(b);
    b->dev.nxsh = (b->core.nxp - xl - right - left) / 2 - px + left;
    b->dev.nysh = (yl + b->core.nyp + top + bottom) / 2 - py - bottom;
    b->ax.centdone = 1;
    b->ax.centpage = b->sess.pageno;
}

}  // namespace

void qqcenter(AxesBlock *b, const double v[2][4], int px, int py, int xl, int yl) noexcept {
    const AxesState &ax = b->ax;
    if (ax.center && (!ax.centdone || ax.centpage != b->sess.pageno)) do_center(b, v, px, py, xl, yl);
}

void qqaxrect(AxesBlock *b, int x, int y, int w, int h) noexcept {
    const DeviceState &d = b->dev;
    int g = b->ax.grace;
    int l = d.nxsh + x - g, t = d.nysh + y - h + 1 - g;
    int r = d.nxsh + x + w - 1 + g, bt = d.nysh + y + g;
    int rect[4] = {l < 0 ? 0 : l, t < 0 ? 0 : t, r > b->core.nxp ? b->core.nxp : r,
                   bt > b->core.nyp ? b->core.nyp : bt};
    // The circle is kept in single precision, as the clipper has always
    // compared with it.
    double circ[3] = {(float)(d.nxsh + x + w / 2), (float)(d.nysh + y - h / 2),
                      (float)((w < h ? w : h) / 2 + g)};
    qqaxclip(b, rect, circ, 0, g);
}

void qqaxfill(AxesBlock *b, int x1, int y1, int x2, int y2, int clr) noexcept {
    fill_box(b, x1, y1, x2, y2, clr);
}

void qqaxframe(AxesBlock *b, int x1, int y1, int x2, int y2, int t, int clr) noexcept {
    draw_frame(b, x1, y1, x2, y2, t, clr);
}

void qqaxsides(AxesBlock *b, int ext[4]) noexcept {
    const ScaleRecord &r = b->ax.rec;
    double v[2][4] = {{r.a[0], r.e[0], r.orl[0], r.stp[0]}, {r.a[1], r.e[1], r.orl[1], r.stp[1]}};
    side_extents(b, v, ext, false);
}

void graf(double xa, double xe, double xor_, double xstp, double ya, double ye, double yor, double ystp) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("graf"));
    if (b) qqgraf(b, xa, xe, xor_, xstp, ya, ye, yor, ystp);
}

int qqgraf(AxesBlock *b, double xa, double xe, double xor_, double xstp, double ya, double ye,
           double yor, double ystp) noexcept {
    AxesState &ax = b->ax;
    b->core.level = 2;
    ax.rec.type = 0;
    qqautscl(b, 0, &xa, &xe, &xor_, &xstp);
    qqautscl(b, 1, &ya, &ye, &yor, &ystp);
    int xl = ax.nlen[0], yl = ax.nlen[1];
    int px = ax.nxa, py = ax.nya;
    if (qqtstscl(b, xa, xe, xor_, xstp, xl, px, 4) || qqtstscl(b, ya, ye, yor, ystp, yl, py, 5)) {
        b->core.level = 1;
        return 1;
    }
    bool crossed = ax.axtyp == 1;
    if (crossed && (ax.scl[0] || ax.scl[1])) {
        qqwar1(b, 150, "Crossed axis systems must have linear scaling");
        b->core.level = 1;
        return 1;
    }
    ScaleRecord &r = ax.rec;
    double v[2][4] = {{xa, xe, xor_, xstp}, {ya, ye, yor, ystp}};
    for (int i = 0; i < 2; ++i) {
        r.a[i] = v[i][0];
        r.e[i] = v[i][1];
        r.orl[i] = v[i][2];
        r.stp[i] = v[i][3];
        r.log[i] = ax.scl[i];
    }
    if (crossed) {
        bool inx = (0 >= std::fmin(xa, xe) - 1e-35) && (0 <= std::fmax(xa, xe) + 1e-35);
        bool iny = (0 >= std::fmin(ya, ye) - 1e-35) && (0 <= std::fmax(ya, ye) + 1e-35);
        if (!inx || !iny) {
            qqwar1(b, 151, "No origin found for crossed axis system");
            b->core.level = 1;
            return 1;
        }
        if (ax.orgflg) {
            px = (int)std::trunc(ax.nxorg + (xl - 1) * xa / (xe - xa));
            py = (int)std::trunc(ax.nyorg + yl - (yl - 1) * ye / (ye - ya) - 1);
            ax.crsx = ax.nxorg;
            ax.crsy = ax.nyorg;
        }
    }
    r.nxa = px;
    r.nya = py;
    r.nxl = xl;
    r.nyl = yl;
    r.xfac = (xl - 1) / (xe - xa);
    r.yfac = (yl - 1) / (ye - ya);
    r.xorg = px;
    r.yorg = py;
    auto range = [&](int i, double *lo, double *hi) {
        double a = r.a[i], e = r.e[i];
        if (ax.autscl[i]) {
            a = ax.autmin[i];
            e = ax.autmax[i];
        } else if (r.log[i]) {
            a = std::pow(10.0, a);
            e = std::pow(10.0, e);
        }
        *lo = a < e ? a : e;
        *hi = a < e ? e : a;
    };
    range(0, &r.xmin, &r.xmax);
    range(1, &r.ymin, &r.ymax);
    if (crossed && !ax.orgflg) {
        ax.crsx = qqround(qqxpos(b, 0.0));
        ax.crsy = qqround(qqypos(b, 0.0));
    }
    ax.chkaxis = 1;
    ax.chkx[0] = r.xmin;
    ax.chkx[1] = r.xmax;
    ax.chky[0] = r.ymin;
    ax.chky[1] = r.ymax;
    // A system drawn on a plane in space is part of the 3-D system, which
    // was centred as a whole.
    if (!b->dev.pl3on) qqcenter(b, v, px, py, xl, yl);
    qqaxrect(b, px, py, xl, yl);
    ax.legx = px + xl - 1;
    ax.legy = py - yl + 1;
    ax.ncx = px + xl / 2;
    ax.ncy = py - yl / 2;
    ax.savclr = b->clr.curclr;
    ax.savlev = 1;
    if (ax.nogrf) return 0;
    if (ax.bgclr != -1) fill_box(b, px, py - yl + 1, px + xl - 1, py, ax.bgclr);
    AxisCall c{};
    if (crossed) {
        c = {0, xa, xe, xor_, xstp, xl, px, ax.crsy, 0, r.log[0], ax.grfsid[0], 1};
        qqaxis(b, c);
        c = {1, ya, ye, yor, ystp, yl, ax.crsx, py, 1, r.log[1], ax.grfsid[1], 1};
        qqaxis(b, c);
        return 0;
    }
    c = {0, xa, xe, xor_, xstp, xl, px, py, 0, r.log[0], ax.grfsid[0], 0};
    qqaxis(b, c);
    c = {1, ya, ye, yor, ystp, yl, px, py, 1, r.log[1], ax.grfsid[1], 0};
    qqaxis(b, c);
    if (!ax.ax2) {
        c = {0, xa, xe, xor_, xstp, xl, px, py - yl + 1, 1, r.log[0], ax.grfsid[2], 0};
        qqaxis(b, c);
        c = {1, ya, ye, yor, ystp, yl, px + xl - 1, py, 0, r.log[1], ax.grfsid[3], 0};
        qqaxis(b, c);
    }
    draw_frame(b, px, py - yl + 1, px + xl - 1, py, ax.frmthk, ax.frmcol);
    return 0;
}

void qqaxhook(AxesBlock *b, void (*fn)(AxesBlock *)) noexcept {
    AxesState &ax = b->ax;
    for (auto &h : ax.endhook)
        if (!h || h == fn) {
            h = fn;
            return;
        }
}

void endgrf() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("endgrf"));
    if (!b) return;
    AxesState &ax = b->ax;
    DeviceState &d = b->dev;
    qqflsh(b);
    if (d.clpcir) d.clpcir = 0;
    if (d.clpflg == 2) qqclippage(b);
    for (auto h : ax.endhook)
        if (h) h(b);
    b->core.level = 1;
    ax.chkaxis = 0;
    ax.bar3 = 0;
    if (ax.savlev) {
        if (b->clr.curclr != ax.savclr) qqsetc(b, ax.savclr);
        ax.savlev = 0;
    }
    ax.rec.type = 0;
    qqflsh(b);
    // With buffering on the picture so far is sent out, as sendbf does.
    if (b->sess.bufsend) qqsendbuf(b);
}

// ---------------------------------------------------------------------------
// Free axes.

namespace {

void free_axis(AxesBlock *b, int axis, int logax, double a, double e, double orl, double step,
               int len, const char *cname, int side, int nx, int ny) {
    AxesState &ax = b->ax;
    if (side != 0 && side != 1) {
        qqwarn(b, 2, side);
        return;
    }
    if (qqtstscl(b, a, e, orl, step, len, 0, 0)) return;
    // The axis draws with its own name and scaling type for the call.
    char savname[QQ_NAMELEN + 1];
    std::memcpy(savname, ax.name[axis], sizeof savname);
    qqscpy(ax.name[axis], cname ? cname : "", QQ_NAMELEN);
    int y = qqyflpi(b, ny);
    // Side 0 puts labels below an X axis and right of a Y axis.
    AxisCall c = {axis, a, e, orl, step, len, nx, y, side, logax, 4, 0};
    qqaxis(b, c);
    std::memcpy(ax.name[axis], savname, sizeof savname);
}

}  // namespace

void xaxis(double a, double e, double orl, double step, int nl, const char *cstr, int it, int nx, int ny) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("xaxis"));
    if (b) free_axis(b, 0, 0, a, e, orl, step, nl, cstr, it, nx, ny);
}

void yaxis(double a, double e, double orl, double step, int nl, const char *cstr, int it, int nx, int ny) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("yaxis"));
    if (b) free_axis(b, 1, 0, a, e, orl, step, nl, cstr, it, nx, ny);
}

void xaxlg(double a, double e, double orl, double step, int nl, const char *cstr, int it, int nx, int ny) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("xaxlg"));
    if (b) free_axis(b, 0, 1, a, e, orl, step, nl, cstr, it, nx, ny);
}

void yaxlg(double a, double e, double orl, double step, int nl, const char *cstr, int it, int nx, int ny) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("yaxlg"));
    if (b) free_axis(b, 1, 1, a, e, orl, step, nl, cstr, it, nx, ny);
}

// ---------------------------------------------------------------------------
// Titles, grids, lines through the origin.

void title() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("title"));
    if (!b) return;
    AxesState &ax = b->ax;
    int savh = -1;
    if (ax.htit > 0) savh = qqaxsth(b, ax.htit);
    int h = qqaxth(b);
    double ls = qqaxlinesp(b);
    int px = ax.rec.nxa, py = ax.rec.nya, xl = ax.rec.nxl, yl = ax.rec.nyl;
    // A colour bar above the system pushes the titles up by its room.
    int o = ax.bar3 && ax.posbar == 4 ? ax.bar3top : 0;
    for (int i = 0; i < 4; ++i) {
        const char *t = ax.title[i];
        if (!t[0]) continue;
        double w = qqaxtw(b, t);
        double x = ax.titjus == 1 ? px : ax.titjus == 2 ? px + xl - w : px + std::trunc((xl - w) / 2);
        double y = ax.titpos == 0 ? py - ax.vkytit - yl - o - (3 - i) * ls * h - 3 * h
                                  : py - ax.vkytit - o + i * ls * h + 4 * h;
        y = std::trunc(y);
        qqaxtxt(b, t, x, y, 0);
        if (ax.titul[i]) qqline(b, x - h / 2, y + std::trunc(1.2 * h), x + w + h / 2, y + std::trunc(1.2 * h));
    }
    if (savh >= 0) qqaxsth(b, savh);
}

void grid(int igrid, int jgrid) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("grid"));
    if (!b) return;
    AxesState &ax = b->ax;
    if (ax.rec.type == 4) {
        qqwarm(b, 35, "Routine does not work for GRAFR");
        return;
    }
    if (ax.rec.type != 0) return;
    const ScaleRecord &r = ax.rec;
    qqclip(b, 0);
    if (igrid < 0)
        qqwarn(b, 2, igrid);
    else if (igrid > 0) {
        AxisCall c = {0, r.a[0], r.e[0], r.orl[0], r.stp[0], r.nxl, r.nxa, r.nya, 0, r.log[0], 2, 0};
        qqticks(b, c, igrid, 1 - r.nyl, 1 - r.nyl, 0);
    }
    if (jgrid < 0)
        qqwarn(b, 2, jgrid);
    else if (jgrid > 0) {
        AxisCall c = {1, r.a[1], r.e[1], r.orl[1], r.stp[1], r.nyl, r.nxa, r.nya, 0, r.log[1], 2, 0};
        qqticks(b, c, jgrid, r.nxl - 1, r.nxl - 1, 0);
    }
    qqclip(b, 1);
}

namespace {

void origin_lines(AxesBlock *b, int which) {
    const ScaleRecord &r = b->ax.rec;
    if (r.type != 0) return;
    double eps = 0;
    if (which != 2 && !r.log[1] && r.ymin + eps < 0 && r.ymax - eps > 0) {
        double y = qqypos(b, 0.0);
        qqline(b, r.nxa, y, r.nxa + r.nxl - 1, y);
    }
    if (which != 1 && !r.log[0] && r.xmin + eps < 0 && r.xmax - eps > 0) {
        double x = qqxpos(b, 0.0);
        qqline(b, x, r.nya, x, r.nya - r.nyl + 1);
    }
    qqflsh(b);
}

}  // namespace

void axgit() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("axgit"));
    if (b) origin_lines(b, 0);
}

void xaxgit() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("xaxgit"));
    if (b) origin_lines(b, 1);
}

void yaxgit() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("yaxgit"));
    if (b) origin_lines(b, 2);
}

void axsers() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("axsers"));
    if (!b) return;
    const ScaleRecord &r = b->ax.rec;
    int clr = b->ax.bgclr != -1 ? b->ax.bgclr : b->clr.bckclr;
    // One device dot stays clear of the axes: on a pixel device that dot
    // spans several plot units.
    int m = 1;
    int kind = qqdevkind(b);
    double s = b->sess.devscl;
    if ((kind == QQ_KIND_SCREEN || kind == QQ_KIND_RASTER) && s > 0 && s < 1) m = (int)std::ceil(1.0 / s);
    fill_box(b, r.nxa + m, r.nya - r.nyl + 1 + m, r.nxa + r.nxl - 1 - m, r.nya - m, clr);
}

void addlab(const char *cstr, double v, int itic, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("addlab"));
    if (!b) return;
    AxesState &ax = b->ax;
    if (ax.rec.type == 3) {
        qqwar1(b, 101, "Additional labels for graf3d are not supported");
        return;
    }
    int k = qqkey(b, "X   +Y   +Z   +XTOP+YLEF+YRIG", 6, cax);
    if (k < 1) return;
    // The third axis belongs to the systems of level 3, whose own axes
    // place it; here it only passes the guard.
    if (k == 3) {
        qqentry(3, 3, "addlab");
        return;
    }
    if (itic < 0 || itic > 2) {
        qqwarn(b, 2, itic);
        return;
    }
    const ScaleRecord &r = ax.rec;
    int axis = k == 1 || k == 4 ? 0 : 1;
    int side = k == 1 || k == 6 ? 0 : 1;
    int x0 = r.nxa, y0 = k == 4 ? r.nya - r.nyl + 1 : r.nya;
    if (k == 6) x0 = r.nxa + r.nxl - 1;
    int sg = side == 1 ? -1 : 1;
    int tp = ax.ticpos[axis];
    int dir = tp == 1 ? -sg : sg;
    double pos = axis == 0 ? qqxpos(b, v) : qqypos(b, v);
    if (itic > 0) {
        int len = dir * (itic == 2 ? ax.ticmaj : ax.ticmin);
        double a0 = tp == 2 ? -len / 2 : 0, a1 = tp == 2 ? len - len / 2 : len;
        if (axis == 0)
            qqline(b, pos, y0 + a0, pos, y0 + a1);
        else
            qqline(b, x0 + a0, pos, x0 + a1, pos);
    }
    double across = axis == 0 ? y0 : x0;
    double base = across + sg * ax.labdis[axis];
    if (ax.ntic[axis] > 0) base += tp == 0 ? sg * ax.ticmaj : tp == 2 ? sg * (ax.ticmaj / 2) : 0;
    int h = qqaxth(b);
    double w = qqaxtw(b, cstr ? cstr : "");
    double x, y;
    int rot = 0;
    bool vert = ax.labori[axis] == 1;
    if (axis == 0 && !vert) {
        x = std::trunc(pos + 0.5 - w / 2);
        y = sg < 0 ? base - h : base;
    } else if (axis == 0) {
        rot = 90;
        x = std::trunc(pos + 0.5 - h / 2);
        y = sg < 0 ? base : base + w;
    } else if (!vert) {
        y = std::trunc(pos - 0.5 - h / 2);
        x = sg < 0 ? base - w : base;
    } else {
        rot = 90;
        y = std::trunc(pos - 0.5 + w / 2);
        x = sg < 0 ? base - h : base;
    }
    qqaxtxt(b, cstr ? cstr : "", x, y, rot);
}

// ---------------------------------------------------------------------------
// Colour bars with an axis.

namespace {

void colour_bar(AxesBlock *b, int logax, double a, double e, double orl, double step, int nl,
                const char *cname, int it, int ndir, int nx, int ny) {
    AxesState &ax = b->ax;
    if (it != 0 && it != 1) {
        qqwarn(b, 2, it);
        return;
    }
    if (ndir != 0 && ndir != 1) {
        qqwarn(b, 2, ndir);
        return;
    }
    if (qqtstscl(b, a, e, orl, step, nl, 0, 0)) return;
    int y = qqyflpi(b, ny);
    int w = ax.widbar;
    // One rectangle for each colour of the colour range, lower bound first.
    int lo = b->clr.minidx, hi = b->clr.maxidx;
    if (hi < lo) std::swap(lo, hi);
    int n = hi - lo + 1;
    for (int k = 0; k < n; ++k) {
        // Neighbours share their border row so that no gap shows between them.
        int p0 = (int)((double)k * nl / n), p1 = (int)((double)(k + 1) * nl / n);
        if (p1 > nl - 1) p1 = nl - 1;
        if (p1 < p0) p1 = p0;
        if (ndir == 0)
            fill_box(b, nx, y - p1, nx + w - 1, y - p0, lo + k);
        else
            fill_box(b, nx + p0, y - w + 1, nx + p1, y, lo + k);
    }
    if (ndir == 0)
        draw_frame(b, nx, y - nl + 1, nx + w - 1, y, 1, ax.frmcol);
    else
        draw_frame(b, nx, y - w + 1, nx + nl - 1, y, 1, ax.frmcol);
    char savname[QQ_NAMELEN + 1];
    std::memcpy(savname, ax.name[2], sizeof savname);
    qqscpy(ax.name[2], cname ? cname : "", QQ_NAMELEN);
    AxisCall c{};
    c.axis = 2;
    c.a = a;
    c.e = e;
    c.orl = orl;
    c.step = step;
    c.len = nl;
    c.logax = logax;
    c.level = 4;
    c.side = it;
    if (ndir == 0) {
        c.geo = 2;
        c.x0 = it == 0 ? nx + w - 1 : nx;
        c.y0 = y;
    } else {
        c.geo = 1;
        c.x0 = nx;
        c.y0 = it == 0 ? y : y - w + 1;
    }
    qqaxis(b, c);
    std::memcpy(ax.name[2], savname, sizeof savname);
}

}  // namespace

void zaxis(double a, double e, double orl, double step, int nl, const char *cstr, int it, int ndir, int nx,
           int ny) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("zaxis"));
    if (b) colour_bar(b, 0, a, e, orl, step, nl, cstr, it, ndir, nx, ny);
}

void zaxlg(double a, double e, double orl, double step, int nl, const char *cstr, int it, int ndir, int nx,
           int ny) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("zaxlg"));
    if (!b) return;
    // The bar reaches to whole decades as expzlb asks; a moved start is
    // also the origin of the labels, so that they stand on decades.
    if (std::isfinite(a) && std::isfinite(e)) {
        double e0, e1;
        qqdecades(b, a, e, &e0, &e1);
        if (e0 != a) orl = e0;
        a = e0;
        e = e1;
    }
    colour_bar(b, 1, a, e, orl, step, nl, cstr, it, ndir, nx, ny);
}
