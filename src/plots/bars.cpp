// bars: bar graphs in a two-dimensional axis system, vertical or horizontal,
// flat or with a third-dimension look, single or in groups side by side,
// with number labels placed by rule and shielded from the fill.
//
// Every bar is a polygon in rounded plot coordinates drawn through the area
// fill, so that patterns, clipping and shields treat it like any area.  The
// horizontal form is the vertical one with the roles of X and Y swapped:
// the code works in a frame of "along" (the position axis) and "value"
// (the axis the bar runs on), and only the faces, the labels and the
// conversions know the orientation.
#include "plots/bars.h"

#include <cmath>

#include "axes/axes.h"
#include "axes/label_text.h"
#include "colour/colour.h"
#include "core/guard.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "plots/axis_map.h"
#include "plots/curve_draw.h"
#include "plots/curves.h"
#include "plots/fill.h"
#include "plots/plot_block.h"
#include "plots/shields.h"
#include "text/numbers.h"

namespace {

const double kEps = 1e-35;
const double kDegree = 0.01745329277777778;

// Label position codes of the keywords of labpos(.., "BARS"), in their order.
const int kLabelCode[8] = {0, 22, 12, 21, 21, 23, 23, 32};

// What stays the same for every bar of one call.
struct BarCall {
    bool hori;       // horizontal bars
    bool look3d;     // 3DVE or 3DHO
    int slot;        // position in the group, from 1
    int g;           // group size
    double gap;      // group gap setting
    double W, w, s;  // slot width, bar width, space between bars
    double ca, sa;   // cosine and sine of the depth angle
    double D;        // depth
    int h;           // character height
};

// One bar in plot coordinates: its edges across (a0 to a1) and its ends
// along the value axis (v1 at the first value, v2 at the second).
struct BarBox {
    int a0, a1, v1, v2;
};

void split_group(BarCall &c) {
    double W = std::isfinite(c.W) ? c.W : 0.0;
    int g = c.g;
    if (c.gap > 0) {
        c.w = W / ((g - 1) * c.gap + g);
        c.s = c.gap * c.w;
    } else {
        c.s = std::fabs(c.gap);
        c.w = (W - (g - 1) * c.s) / g;
    }
}

// The four corners of a face and the side and top faces of the 3-D look.
// n is 4 for each; the faces are in page x, y.
struct Faces {
    double fx[4], fy[4];  // front
    double sx[4], sy[4];  // side
    double tx[4], ty[4];  // top
};

void set4(double *x, double *y, double x0, double y0, double x1, double y1, double x2, double y2,
          double x3, double y3) {
    x[0] = x0, y[0] = y0, x[1] = x1, y[1] = y1, x[2] = x2, y[2] = y2, x[3] = x3, y[3] = y3;
}

void make_faces(const BarCall &c, const BarBox &r, Faces &f) {
    int dx = (int)std::trunc(c.ca * c.D), dy = (int)std::trunc(c.sa * c.D);
    if (!c.hori) {
        int xl = r.a0, xr = r.a1, y1 = r.v1, y2 = r.v2;
        set4(f.fx, f.fy, xl, y1, xr, y1, xr, y2, xl, y2);
        set4(f.sx, f.sy, xr, y1, xr + dx, y1 - dy, xr + dx, y2 - dy, xr, y2);
        set4(f.tx, f.ty, xl, y2, xl + dx, y2 - dy, xr + dx, y2 - dy, xr, y2);
    } else {
        // Depth runs up and to the right as on vertical bars: the side face
        // lies along the upper edge, the top face on the bar's end.
        int yu = r.a0, yd = r.a1, x1 = r.v1, x2 = r.v2;
        set4(f.fx, f.fy, x1, yu, x2, yu, x2, yd, x1, yd);
        set4(f.sx, f.sy, x1, yu, x1 + dx, yu - dy, x2 + dx, yu - dy, x2, yu);
        set4(f.tx, f.ty, x2, yu, x2 + dx, yu - dy, x2 + dx, yd - dy, x2, yd);
    }
}

// areaf on a copy (the fill may change its arrays), with a pattern for the
// call unless it is -1.
void area(PlotBlock *b, const double *x, const double *y, int pattern) {
    double cx[4], cy[4];
    for (int k = 0; k < 4; ++k) cx[k] = x[k], cy[k] = y[k];
    int saved = qqgetpattern(b);
    if (pattern >= 0 && pattern != saved) qqsetpattern(b, pattern);
    qqarea(b, cx, cy, 4);
    if (pattern >= 0 && pattern != saved) qqsetpattern(b, saved);
}

// A label of a bar: its number, where its box starts (before the raise of a
// quarter height) and its position code.
struct BarLabel {
    double value;
    int ndig;
    int code;
    int x, y;
    int tw, TW, TH;
};

double label_value(int kind, double x, double y1, double y2) {
    switch (kind) {
        case 1:
            return y2;
        case 2:
            return y1;
        case 3:
            return y1 > y2 ? y1 : y2;
        case 4:
            return y1 < y2 ? y1 : y2;
        case 5:
            return y2 - y1;
        default:
            return x;
    }
}

// Step 10 of the label placement for a vertical bar, and its mirror.
void place_label(PlotBlock *b, const BarCall &c, const BarBox &r, BarLabel &L) {
    const double h = c.h;
    const int code0 = kLabelCode[b->ax.xpos[0] >= 0 && b->ax.xpos[0] < 8 ? b->ax.xpos[0] : 0];
    L.TW = qqnint(h / 2 + L.tw);
    L.TH = qqnint(1.5 * h);
    const double tw = L.tw;
    int code = code0;
    if (!c.hori) {
        int xl = r.a0, xr = r.a1;
        if (code == 0) code = L.TW < std::abs(xr - xl) && L.TH < std::abs(r.v1 - r.v2) ? 22 : 12;
        int across = code % 10, d = code / 10;
        double x;
        if (across == 2)
            x = (float)((xr - tw - xl) / 2 + xl - h / 4);
        else if (across == 1)
            x = xl - tw - 1.25 * h;
        else
            x = xr + 0.75 * h;
        double top = r.v2, base = r.v1;
        if (r.v2 > r.v1) {  // a downward bar: y grows down the page
            d = 6 - d;
            top = r.v1, base = r.v2;
        }
        double y;
        switch (d) {
            case 1:
                y = top - 2.25 * h;
                break;
            case 2:
                y = top + 1.25 * h;
                break;
            case 3:
                y = (float)(top + (base - top - h) / 2 - h / 4);
                break;
            case 4:
                y = base - 2.75 * h;
                break;
            default:
                y = base + 0.75 * h;
                break;
        }
        L.x = qqnint(x), L.y = qqnint(y);
        if (c.look3d && code == 12) {
            L.x += (int)std::trunc(c.ca * c.D / 2);
            L.y -= (int)std::trunc(c.sa * c.D);
        } else if (c.look3d && code == 23) {
            L.x += (int)std::trunc(c.ca * c.D);
            L.y -= (int)std::trunc(c.sa * c.D);
        }
    } else {
        int upper = r.a0, lower = r.a1;
        if (code == 0)
            code = L.TH < std::abs(lower - upper) && L.TW < std::abs(r.v2 - r.v1) ? 22 : 12;
        int across = code % 10, d = code / 10;
        double y;
        if (across == 2)
            y = (float)((lower - h - upper) / 2 + upper - h / 4);
        else if (across == 1)
            y = upper - h - 1.25 * h;
        else
            y = lower + 0.75 * h;
        double base = r.v1, end = r.v2;
        if (r.v2 < r.v1) {  // a bar toward smaller X
            d = 6 - d;
            base = r.v2, end = r.v1;
        }
        double x;
        switch (d) {
            case 1:
                x = end + 0.75 * h;
                break;
            case 2:
                x = end - tw - 1.75 * h;
                break;
            case 3:
                x = (float)(end - (end - base + tw) / 2 - h / 4);
                break;
            case 4:
                x = base + 1.25 * h;
                break;
            default:
                x = base - tw - 1.25 * h;
                break;
        }
        L.x = qqnint(x), L.y = qqnint(y);
        if (c.look3d && code == 12) {
            L.x += (int)std::trunc(c.ca * c.D);
            L.y += (int)std::trunc(-c.sa * c.D / 2);
        } else if (c.look3d && code == 21) {
            L.x += (int)std::trunc(c.ca * c.D);
            L.y -= (int)std::trunc(c.sa * c.D);
        }
    }
    L.code = code;
}

// Registers a region under the shield kind of bars.
int bar_shield(PlotBlock *b, int type, const double *v, int nv) {
    return qqshlautoadd(b, QQ_SHL_BARS, type, v, nv);
}

void shield_polygon(PlotBlock *b, const double *x, const double *y) {
    double v[8];
    for (int k = 0; k < 4; ++k) v[2 * k] = x[k], v[2 * k + 1] = y[k];
    bar_shield(b, 6, v, 8);
}

// The axis's lower limit as a user value.
double lower_limit(PlotBlock *b, int axis) {
    const ScaleRecord &r = b->ax.rec;
    return r.log[axis] ? std::pow(10.0, r.a[axis]) : r.a[axis];
}

// barpos TICK: the positions of the ticks strictly inside the axis.
// Returns the number of bars that stay.
int tick_positions(PlotBlock *b, int axis, double *pos, int n) {
    const ScaleRecord &r = b->ax.rec;
    double a = r.a[axis], e = r.e[axis], orl = r.orl[axis], step = r.stp[axis];
    if (!(step != 0) || !std::isfinite(step)) return n;
    double q = (e - orl) / step + kEps;
    int count = q > 1e6 ? 1000000 : q < 0 ? 0 : (int)std::trunc(q);
    int first = std::fabs(orl - a) < kEps ? 1 : 0;
    if (std::fabs(count * step + orl - e) < kEps) --count;
    int ticks = count - first + 1;
    if (ticks < 0) ticks = 0;
    if (ticks != n) {
        qqwarn(b, 28, ticks);
        if (ticks < n) n = ticks;
    }
    for (int i = 0; i < n; ++i) {
        double v = (first + i) * step + orl;
        pos[i] = r.log[axis] ? std::pow(10.0, v) : v;
    }
    return n;
}

bool good(double a, double b, double c) {
    return std::isfinite(a) && std::isfinite(b) && std::isfinite(c);
}

}  // namespace

double qqbaralong(PlotBlock *b, const AxisMap &m, double v, bool hori) noexcept {
    double px, py;
    if (hori)
        qqaxpt(b, m, m.logx ? 1.0 : 0.0, v, &px, &py);
    else
        qqaxpt(b, m, v, m.logy ? 1.0 : 0.0, &px, &py);
    return hori ? py : px;
}

double qqbarspan(PlotBlock *b, const AxisMap &m, const double *pos, int n, bool hori) noexcept {
    double d;
    if (n >= 2) {
        d = qqbaralong(b, m, pos[1], hori) - qqbaralong(b, m, pos[0], hori);
    } else {
        // One bar: the distance of the first label and the next one.
        const ScaleRecord &r = b->ax.rec;
        int axis = hori ? 1 : 0;
        d = r.stp[axis] * (hori ? r.yfac : r.xfac);
    }
    d = std::fabs(d);
    return std::isfinite(d) ? d : 0.0;
}

int qqbarcolour(PlotBlock *b, int colour) noexcept {
    int old = b->clr.curclr;
    if (colour != -1 && colour != old) qqsetc(b, colour);
    return old;
}

void bars(double *xray, double *y1ray, const double *y2ray, int n) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("bars"));
    if (!b) return;
    BarState &bs = b->bar;
    CurveState &cs = b->crv;
    // 1. The colour at entry; the counters of bar sets and of the group.
    const int entry_colour = b->clr.curclr;
    bs.nsets++;
    bs.grppos++;
    cs.shdarea = 1;
    if (n < 1) {
        qqwarn(b, 2, n);
        if (bs.grppos >= bs.ngrp) bs.grppos = 0;
        return;
    }
    AxisMap m;
    qqaxmap(b, &m);
    BarCall c;
    c.hori = cs.bartyp == 1 || cs.bartyp == 3;
    c.look3d = cs.bartyp >= 2;
    const int along_axis = c.hori ? 1 : 0, value_axis = c.hori ? 0 : 1;
    unsigned char flip = b->core.ynoflp;
    b->core.ynoflp = 1;
    // 3. and 4. Arrays that barpos fills.
    if (bs.axisy) {
        double lo = lower_limit(b, value_axis);
        for (int i = 0; i < n; ++i) y1ray[i] = lo;
    }
    int nb = n;
    if (bs.tickx) nb = tick_positions(b, along_axis, xray, n);
    // 5. The coordinate checks of a curve, then the legend's record.
    const double *vx1 = c.hori ? y1ray : xray, *vy1 = c.hori ? xray : y1ray;
    const double *vx2 = c.hori ? y2ray : xray, *vy2 = c.hori ? xray : y2ray;
    if (!qqcrvlog(b, m, vx1, vy1, nb) || !qqcrvlog(b, m, vx2, vy2, nb)) {
        if (bs.grppos >= bs.ngrp) bs.grppos = 0;
        b->core.ynoflp = flip;
        return;
    }
    qqchkd(b, vx1, vy1, nb);
    qqchkd(b, vx2, vy2, nb);
    qqlegrecord(b, cs.ncrv, qqgetpattern(b), qqarealine(b), false);
    if (bs.clr[0] != -1 && cs.ncrv >= 1 && cs.ncrv <= QQ_NLEG && !b->leg.ownpat)
        b->leg.rec[cs.ncrv - 1].colour = bs.clr[0];
    cs.ncrv++;
    cs.legpend = 1;

    // 6. to 8. Widths and the depth of the 3-D look.
    const double factor = cs.barwth;
    const bool vari = bs.mode == 1 && factor > 0;
    c.slot = bs.grppos;
    c.g = bs.ngrp;
    c.gap = bs.gap;
    c.W = factor > 0 ? qqbarspan(b, m, xray, nb, c.hori) * factor : std::fabs(factor);
    split_group(c);
    c.h = qqaxth(b);
    const double angle = bs.angle * kDegree;
    c.ca = std::cos(angle);
    c.sa = std::sin(angle);
    c.D = 0;
    qqclip(b, 0);

    const int label_kind = b->ax.xlab[0];
    const int label_colour = b->ax.labclr[0];
    const int ndig = b->ax.xdig[0];
    const bool shielded = qqshlauto(b, QQ_SHL_BARS) != 0;
    for (int i = 0; i < nb; ++i) {
        if (!good(xray[i], y1ray[i], y2ray[i])) continue;
        if (bs.chn == 1 || bs.chn == 3) qqsetc(b, b->clr.clrcycl[i % 30]);
        if (bs.chn == 2 || bs.chn == 3) qqsetpattern(b, qqpatcycle(b, i % 30 + 1));
        if (vari) {
            double d;
            if (nb == 1) {
                d = qqbarspan(b, m, xray, 1, c.hori);
            } else {
                double here = qqbaralong(b, m, xray[i], c.hori);
                double prev = i > 0 ? std::fabs(here - qqbaralong(b, m, xray[i - 1], c.hori)) : -1;
                double next =
                    i < nb - 1 ? std::fabs(qqbaralong(b, m, xray[i + 1], c.hori) - here) : -1;
                d = i == 0 ? next : i == nb - 1 ? prev : std::fmin(prev, next);
            }
            c.W = std::isfinite(d) ? d * factor : 0.0;
            split_group(c);
        }
        if (c.look3d) c.D = bs.depth < kEps ? c.w : bs.depth;
        // The bar's corners on the page.
        double pa, pv1, pv2, px, py;
        if (!c.hori) {
            qqaxpt(b, m, xray[i], y1ray[i], &px, &py);
            pa = px, pv1 = py;
            qqaxpt(b, m, xray[i], y2ray[i], &px, &py);
            pv2 = py;
        } else {
            qqaxpt(b, m, y1ray[i], xray[i], &px, &py);
            pa = py, pv1 = px;
            qqaxpt(b, m, y2ray[i], xray[i], &px, &py);
            pv2 = px;
        }
        BarBox r;
        r.a0 = qqnint(pa - c.W / 2 + (c.w + c.s) * (c.slot - 1));
        r.a1 = r.a0 + qqnint(c.w);
        r.v1 = qqnint(pv1);
        r.v2 = qqnint(pv2);
        Faces f;
        make_faces(c, r, f);
        // 10. The label, and its shield when it lies inside the bar.
        BarLabel L{};
        int label_shield = 0;
        if (label_kind != 0) {
            double v = label_value(label_kind, xray[i], y1ray[i], y2ray[i]);
            int nd = ndig == -2 ? qqautodig(v) : ndig;
            L.value = v;
            L.ndig = nd;
            L.tw = qqnumlen(b, v, nd);
            place_label(b, c, r, L);
            if (L.code == 22 || L.code == 32 || L.code == 42) {
                double sv[4] = {(double)L.x, (double)L.y, (double)L.x + L.TW - 1,
                                (double)L.y + L.TH - 1};
                label_shield = bar_shield(b, 1, sv, 4);
            }
        }
        // The front face; one without height or width is only a line.
        bool flat = r.a0 == r.a1 || r.v1 == r.v2;
        int keep = qqbarcolour(b, bs.clr[0]);
        area(b, f.fx, f.fy, flat ? 0 : -1);
        qqbarcolour(b, keep);
        if (label_shield) qqshldelid(b, label_shield, QQ_SHL_BARS);
        if (c.look3d) {
            keep = qqbarcolour(b, bs.clr[1]);
            area(b, f.sx, f.sy, -1);
            qqbarcolour(b, keep);
            keep = qqbarcolour(b, bs.clr[2]);
            area(b, f.tx, f.ty, -1);
            qqbarcolour(b, keep);
        }
        // The border: none on a flat bar without a border colour.
        if (c.look3d || bs.border != -1) {
            qqflsh(b);
            keep = b->clr.curclr;
            if (bs.border == -1)
                qqcolorfore(b);
            else
                qqsetc(b, bs.border);
            area(b, f.fx, f.fy, 0);
            if (c.look3d) {
                area(b, f.sx, f.sy, 0);
                area(b, f.tx, f.ty, 0);
            }
            qqflsh(b);
            if (b->clr.curclr != keep) qqsetc(b, keep);
        }
        if (label_kind != 0) {
            keep = qqbarcolour(b, label_colour);
            int q = qqnint(c.h / 4.0);
            qqnumat(b, L.value, L.ndig, L.x + q, L.y + q);
            qqflsh(b);
            qqbarcolour(b, keep);
        }
        if (shielded) {
            int x0 = r.a0 < r.a1 ? r.a0 : r.a1, v0 = r.v1 < r.v2 ? r.v1 : r.v2;
            double sv[4] = {(double)x0, (double)v0, (double)x0 + std::abs(r.a1 - r.a0),
                            (double)v0 + std::abs(r.v2 - r.v1)};
            if (c.hori) {
                double t0 = sv[0], t2 = sv[2];
                sv[0] = sv[1], sv[2] = sv[3];
                sv[1] = t0, sv[3] = t2;
            }
            bar_shield(b, 1, sv, 4);
            if (c.look3d) {
                shield_polygon(b, f.sx, f.sy);
                shield_polygon(b, f.tx, f.ty);
            }
        }
    }
    // 11. Clip window, the next pattern of the cycle, colour and group.
    qqclip(b, 1);
    int next = (bs.nsets + 1) % 30;
    qqsetpattern(b, qqpatcycle(b, next == 0 ? 30 : next));
    if ((bs.chn == 1 || bs.chn == 3) && b->clr.curclr != entry_colour) qqsetc(b, entry_colour);
    if (bs.grppos >= bs.ngrp) bs.grppos = 0;
    b->core.ynoflp = flip;
}
