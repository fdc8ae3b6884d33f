// One axis: its line, ticks, labels and name.
//
// Positions follow the page grid: an X axis runs from x0 to x0 + len - 1
// at height y0, a Y axis from y0 up to y0 - len + 1 at x0.  The side flag
// tells where labels go: 0 below an X axis or right of a Y axis (toward
// larger page coordinates), 1 the other side.
#include "axes/axis_draw.h"

#include <atomic>
#include <cmath>
#include <cstring>

#include "axes/axes.h"
#include "axes/axes_block.h"
#include "axes/label_text.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"

namespace {

// Successive ticks swap their ends so that a pen plotter need not travel
// back; the toggle is shared by all threads, as its only effect is the
// order of two points.
std::atomic<int> tick_toggle{0};

// More ticks or labels than this on one axis cannot be told apart on any
// page; such an axis is drawn without them instead of looping for hours.
constexpr double kMaxMarks = 100000;

bool is_power(const AxesState &ax, const AxisCall &c) { return c.logax && ax.logfrm[c.axis] == 1; }

}  // namespace

int qqaxclron(AxesBlock *b, int clr) noexcept {
    int cur = b->clr.curclr;
    if (clr != -1 && clr != cur) qqsetc(b, clr);
    return cur;
}

void qqaxclroff(AxesBlock *b, int clr, int saved) noexcept {
    if (clr != -1 && clr != saved) qqsetc(b, saved);
}

void qqticks(AxesBlock *b, const AxisCall &c, int n, int lmaj, int lmin, int centred) noexcept {
    if (n < 1) return;
    double s = c.step;
    bool logminor = qqlogminor(b, c, &n, &s);
    double f = (c.len - 1) / (c.e - c.a);
    double ds = s / n;
    double lo = (c.orl - c.a) / ds + 1e-4, hi = (c.e - c.orl) / ds + 1e-4;
    if (!std::isfinite(lo) || !std::isfinite(hi) || std::fabs(lo) + std::fabs(hi) > kMaxMarks)
        return;
    long i0 = -(long)std::trunc(lo), i1 = (long)std::trunc(hi);
    bool isx = qqaxgeo(c) == 0;
    auto tick = [&](double pos, int len) {
        double a0 = centred ? -len / 2 : 0, a1 = centred ? len - len / 2 : len;
        double p0x, p0y, p1x, p1y;
        if (isx) {
            p0x = p1x = pos;
            p0y = c.y0 + a0;
            p1y = c.y0 + a1;
        } else {
            p0y = p1y = pos;
            p0x = c.x0 + a0;
            p1x = c.x0 + a1;
        }
        if (tick_toggle.fetch_xor(1, std::memory_order_relaxed))
            qqline(b, p1x, p1y, p0x, p0y);
        else
            qqline(b, p0x, p0y, p1x, p1y);
    };
    for (long i = i0; i <= i1; ++i) {
        double d = std::trunc(i * f * ds + (c.orl - c.a) * f + 0.5);
        if (c.where) {
            d = c.where(b, c, c.orl + i * ds);
            if (std::isnan(d)) continue;
            d = std::trunc(d + 0.5);
        }
        double pos = isx ? c.x0 + d : c.y0 - d;
        tick(pos, i % n == 0 ? lmaj : lmin);
    }
    if (logminor)
        qqlogminorticks(c, [&](double lv) {
            double d = (double)qqnint((lv - c.a) * f);
            tick(isx ? c.x0 + d : c.y0 - d, lmin);
        });
}

bool qqlogminor(const AxesBlock *b, const AxisCall &c, int *n, double *step) noexcept {
    double s = *step;
    if (!c.logax || *n < 2 || std::fabs(c.orl - std::nearbyint(c.orl)) >= 1e-4) return false;
    bool ok = b->ax.logtic == 0 ? std::fabs(std::fabs(s) - 1.0) < 1e-4
                                : std::fabs(s - std::nearbyint(s)) < 1e-4 && std::nearbyint(s) != 0;
    if (!ok) return false;
    *step = s < 0 ? -1.0 : 1.0;
    *n = 1;
    return true;
}

namespace {

struct LabelPlan {
    int first, last, inc;
    bool power;
    int h;
    double B;
};

// The index range of the labels after labpos and axends.
bool plan_labels(const AxesState &ax, const AxisCall &c, LabelPlan *p) {
    double q = (c.e - c.orl) / c.step + 1e-4;
    if (!std::isfinite(q) || q > kMaxMarks || q < -1) return false;
    int last = (int)std::trunc(q);
    if (ax.labpos[c.axis] == 1) --last;
    if (last < 0) return false;
    int first = 0, inc = 1;
    switch (ax.axends[c.axis]) {
    case 1: first = 1; break;
    case 2: --last; break;
    case 3:
        first = 1;
        --last;
        break;
    case 4: inc = last > 0 ? last : 1; break;
    case 5: last = 0; break;
    case 6: first = last; break;
    default: break;
    }
    p->first = first;
    p->last = last;
    p->inc = inc;
    return first <= last;
}

double label_value(const AxesState &ax, const AxisCall &c, int i) {
    double v = c.orl + i * c.step;
    int lab = ax.lab[c.axis];
    if ((lab == 2 || lab == 13 || lab == 16) && std::fabs(v) < 1e-7 && std::fabs(v) < std::fabs(c.step) / 2)
        v = 0;
    return v;
}

}  // namespace

int qqlabplan(const AxesBlock *b, const AxisCall &c, int *first, int *last, int *inc) noexcept {
    LabelPlan p;
    if (!plan_labels(b->ax, c, &p)) return 0;
    *first = p.first;
    *last = p.last;
    *inc = p.inc;
    return 1;
}

double qqlabval(const AxesBlock *b, const AxisCall &c, int i) noexcept {
    return label_value(b->ax, c, i);
}

int qqlabmix(AxesBlock *b, const AxisCall &c, AxMixSave *mix) noexcept {
    const AxesState &ax = b->ax;
    int lab = ax.lab[c.axis];
    if (is_power(ax, c)) {
        qqaxmix(b, 0, mix);
        return 1;
    }
    if (lab == 2 || lab == 16 || ax.labcls[c.axis] == 2) {
        qqaxmix(b, lab == 16, mix);
        return 1;
    }
    return 0;
}

namespace {

int draw_labels(AxesBlock *b, const AxisCall &c, double base) {
    AxesState &ax = b->ax;
    int axis = c.axis;
    int lab = ax.lab[axis];
    if (lab == 0) return 0;
    LabelPlan p;
    if (!plan_labels(ax, c, &p)) return 0;
    bool power = is_power(ax, c);
    int h = qqaxth(b);
    double B = qqaxbase(b);
    int jus = ax.labjus[axis];
    AxMixSave mix;
    bool mixed = qqlabmix(b, c, &mix) != 0;
    if (power && jus == 0) jus = 1;
    if (lab == 12 && jus == 0) jus = ax.rgtlab ? 2 : 1;
    int savdig = ax.ndig[axis];
    if (ax.autdig[axis] && !ax.autscl[axis]) ax.ndig[axis] = qqaxdig(c.orl, c.step);
    double f = (c.len - 1) / (c.e - c.a);
    bool neg = c.side == 1;
    // 1 vertical, reading upward; 2 (3-D axes only) vertical, reading downward.
    bool vert = ax.labori[axis] >= 1;
    bool down = ax.labori[axis] == 2;
    char t[QQ_LABLEN + 1];
    // Labels whose width sets the extent: measure them all first.
    int E;
    bool xgeo = qqaxgeo(c) == 0;
    bool wide_extent = xgeo == vert;
    // Power-of-ten labels are placed as if each were as wide as its "10";
    // the extent still reaches over the widest exponent, and with the
    // labels justified from their far edge the "10"s form one column.
    double w10 = power ? qqaxtw(b, "10") : 0;
    if (wide_extent) {
        double wmax = 0;
        for (int i = p.first; i <= p.last; i += p.inc) {
            double v = label_value(ax, c, i);
            if (c.crossed && std::fabs(v) < 1e-35) continue;
            qqlabtxt(b, v, i + 1, c.logax, axis, t);
            double w = qqaxtw(b, t);
            if (w > wmax) wmax = w;
        }
        E = (int)wmax;
    } else {
        E = power ? (int)std::trunc(B * h + 0.5) : h;
    }
    if (c.measure) {
        ax.ndig[axis] = savdig;
        if (mixed) qqaxmixend(b, &mix);
        return E;
    }
    double o = lab == 4 ? h - B * h / 2 : h / 2;
    for (int i = p.first; i <= p.last; i += p.inc) {
        double v = label_value(ax, c, i);
        if (c.crossed && std::fabs(v) < 1e-35) continue;
        qqlabtxt(b, v, i + 1, c.logax, axis, t);
        if (!t[0]) continue;
        if (ax.labpos[axis] == 1) v += c.step / 2;
        double wt = qqaxtw(b, t);
        // w places the label across the axis; wt, its true length, keeps a
        // shifted label inside the axis ends.
        double w = power ? w10 : wt;
        double d = (v - c.a) * f;
        if (c.where) {
            d = c.where(b, c, v);
            if (std::isnan(d)) continue;
        }
        double x, y;
        int rot = 0;
        if (xgeo && !vert) {
            double wj = power && lab == 3 ? w10 : wt;
            x = std::trunc(d + c.x0 + 0.5 - wj / 2);
            if (neg)
                y = base - h;
            else
                y = power ? std::trunc((B - 1) * h + base) : base;
            if (ax.labpos[axis] == 2) {
                if (x < c.x0) x = c.x0;
                if (x + wt > c.x0 + c.len) x = c.x0 + c.len - wt;
            }
        } else if (xgeo && down) {
            // Turned the other way: the text's top faces the right.
            rot = 270;
            x = std::trunc(d + c.x0 + 0.5 + o);
            if (neg)
                y = (jus == 2 || jus == 4) ? base - w : base - E;
            else
                y = (jus == 2 || jus == 3) ? base + E - w : base;
            if (ax.labpos[axis] == 2) {
                if (x - h < c.x0) x = c.x0 + h;
                if (x > c.x0 + c.len) x = c.x0 + c.len;
            }
        } else if (xgeo) {
            rot = 90;
            x = std::trunc(d + c.x0 + 0.5 - o);
            if (neg)
                y = (jus == 1 || jus == 4) ? base : base - E + w;
            else
                y = (jus == 1 || jus == 3) ? base + E : base + w;
            if (ax.labpos[axis] == 2) {
                if (x < c.x0) x = c.x0;
                if (x + h > c.x0 + c.len) x = c.x0 + c.len - h;
            }
        } else if (!vert) {
            y = std::trunc(c.y0 - 0.5 - d - o);
            if (neg)
                x = (jus == 1 || jus == 3) ? base - E : base - w;
            else
                x = (jus == 1 || jus == 4) ? base : base - w + E;
            if (ax.labpos[axis] == 2) {
                if (y + h > c.y0) y = c.y0 - h;
                if (y < c.y0 - c.len) y = c.y0 - c.len;
            }
        } else {
            double wj = power && lab == 4 ? w10 : wt;
            rot = 90;
            y = std::trunc(c.y0 - 0.5 - d + wj / 2);
            if (neg) {
                x = base - h;
            } else if (ax.rvynam) {
                x = power ? std::trunc((B - 1) * h + base) : base;
            } else {
                rot = 270;
                x = base + h;
                y = std::trunc(c.y0 - 0.5 - d - wj / 2);
            }
            if (ax.labpos[axis] == 2) {
                double top = rot == 270 ? y : y - wt, bottom = rot == 270 ? y + wt : y;
                if (bottom > c.y0) y -= bottom - c.y0;
                if (top < c.y0 - c.len) y += (c.y0 - c.len) - top;
            }
        }
        qqaxtxt(b, t, x, y, rot);
    }
    ax.ndig[axis] = savdig;
    if (mixed) qqaxmixend(b, &mix);
    return E;
}

void draw_name(AxesBlock *b, const AxisCall &c, int E, bool labels_on) {
    const AxesState &ax = b->ax;
    int axis = c.axis;
    const char *nm = ax.name[axis];
    if (!nm[0]) return;
    int sg = c.side == 1 ? -1 : 1;
    int tp = ax.ticpos[axis];
    int dist = ax.namdis[axis];
    dist += tp == 0 ? ax.ticmaj : tp == 2 ? ax.ticmaj / 2 : 0;
    if (labels_on) dist += ax.labdis[axis];
    dist *= sg;
    if (!labels_on) E = 0;
    int savh = qqaxsth(b, ax.hname);
    int nh = ax.hname, nu = 0;
    qqaxtext(b, nm, &nh, &nu);
    double nw = qqaxtw(b, nm);
    int jus = ax.namjus[axis];
    double joff = jus == 0 ? std::trunc((c.len - nw) / 2) : jus == 2 ? c.len - nw : 0;
    int clr = ax.axclr[axis][3];
    int saved = qqaxclron(b, clr);
    if (qqaxgeo(c) == 0) {
        double y = sg > 0 ? c.y0 + dist + E + nh - ax.hname : c.y0 + dist - ax.hname - nu - E;
        qqaxtxt(b, nm, c.x0 + joff, y, 0);
    } else if (sg < 0) {
        qqaxtxt(b, nm, c.x0 + dist - nh - E, c.y0 - joff, 90);
    } else if (!ax.rvynam) {
        qqaxtxt(b, nm, c.x0 + dist + nh + E, c.y0 - c.len + joff + 1, 270);
    } else {
        qqaxtxt(b, nm, c.x0 + dist + nu + E, c.y0 - joff, 90);
    }
    qqaxclroff(b, clr, saved);
    qqaxsth(b, savh);
}

}  // namespace

int qqaxis(AxesBlock *b, const AxisCall &c) noexcept {
    AxesState &ax = b->ax;
    int axis = c.axis;
    if (c.measure) {
        if (c.level < 3 || ax.lab[axis] == 0) return 0;
        return draw_labels(b, c, 0);
    }
    int sg = c.side == 1 ? -1 : 1;
    int tp = ax.ticpos[axis];
    int dir = tp == 1 ? -sg : sg;
    int ntic = ax.ntic[axis];
    bool ticks_on = c.level >= 2 && ntic >= 1;
    bool labels_on = c.level >= 3 && ax.lab[axis] != 0;
    if (c.level >= 1 && !ax.noline[axis]) {
        int clr = ax.axclr[axis][0];
        int saved = qqaxclron(b, clr);
        if (qqaxgeo(c) == 0)
            qqline(b, c.x0, c.y0, c.x0 + c.len - 1, c.y0);
        else
            qqline(b, c.x0, c.y0, c.x0, c.y0 - c.len + 1);
        qqaxclroff(b, clr, saved);
    }
    if (ticks_on) {
        int clr = ax.axclr[axis][1];
        int saved = qqaxclron(b, clr);
        qqticks(b, c, ntic, dir * ax.ticmaj, dir * ax.ticmin, tp == 2);
        qqaxclroff(b, clr, saved);
    }
    int E = 0;
    if (labels_on) {
        double across = qqaxgeo(c) == 0 ? c.y0 : c.x0;
        double base = across + sg * ax.labdis[axis];
        if (ticks_on) base += tp == 0 ? sg * ax.ticmaj : tp == 2 ? sg * (ax.ticmaj / 2) : 0;
        int clr = ax.axclr[axis][2];
        int saved = qqaxclron(b, clr);
        E = draw_labels(b, c, base);
        qqaxclroff(b, clr, saved);
    }
    if (c.level >= 4) {
        if (c.crossed) {
            // The name stands beside the part of the axis from the origin.
            AxisCall n = c;
            if (qqaxgeo(c) == 0) {
                n.x0 = ax.crsx;
                n.len = c.x0 + c.len - ax.crsx;
            } else {
                n.y0 = ax.crsy;
                n.len = ax.crsy - (c.y0 - c.len);
            }
            draw_name(b, n, E, labels_on);
        } else {
            draw_name(b, c, E, labels_on);
        }
    }
    return E;
}
