// The fill of outline glyphs (fonts 11 to 14 with shdcha).
//
// A glyph is a set of closed contours: outer ones and the holes (counters)
// inside them, told apart by their turning sense.  A driver that fills
// polygons takes each outer contour with its holes as one polygon, a hole
// joined by a bridge walked both ways from the nearest outer point, so the
// bridge runs through ink and never shows.  Elsewhere, or where the driver
// declines, the contours are hatched together by the fill engine's sweep,
// whose pairing of crossings leaves the counters open.
#include <cmath>

#include "core/family.h"
#include "devices/device.h"
#include "text/text_block.h"
#include "text/text_internal.h"

namespace {

// An outer contour with its holes and a bridge of two points for each.
enum { kMaxPoly = 3 * QQ_OUTLINE_MAX };

struct Contours {
    const double *x, *y;
    const int *start;  // contour k: points start[k] to start[k + 1] - 1
    int n;
    int first(int k) const { return start[k]; }
    int count(int k) const { return start[k + 1] - start[k]; }
    // Points without the repeated closing point.
    int distinct(int k) const {
        int a = start[k], m = count(k);
        if (m > 1 && x[a] == x[a + m - 1] && y[a] == y[a + m - 1]) --m;
        return m;
    }
};

double signed_area(const Contours &c, int k) {
    int a = c.first(k), m = c.distinct(k);
    double s = 0.0;
    for (int i = 0; i < m; ++i) {
        int j = i + 1 == m ? 0 : i + 1;
        s += c.x[a + i] * c.y[a + j] - c.x[a + j] * c.y[a + i];
    }
    return 0.5 * s;
}

bool inside(const Contours &c, int k, double qx, double qy) {
    int a = c.first(k), m = c.distinct(k);
    bool in = false;
    for (int i = 0, j = m - 1; i < m; j = i++) {
        double yi = c.y[a + i], yj = c.y[a + j];
        if ((yi > qy) != (yj > qy)) {
            double xc = c.x[a + i] + (qy - yi) * (c.x[a + j] - c.x[a + i]) / (yj - yi);
            if (qx < xc) in = !in;
        }
    }
    return in;
}

void hatch(TextBlock *b, const Contours &c, const int *which, int nwhich) {
    const double *xs[QQ_OUTLINE_MAX], *ys[QQ_OUTLINE_MAX];
    int ns[QQ_OUTLINE_MAX];
    for (int k = 0; k < nwhich; ++k) {
        xs[k] = c.x + c.first(which[k]);
        ys[k] = c.y + c.first(which[k]);
        ns[k] = c.count(which[k]);
    }
    // The session's dense hatch step, closer on a device whose pen is coarse.
    const DeviceFamily *fam = b->core.fam;
    double unitf = b->core.unitf > 0 ? b->core.unitf : 1.0;
    double d = (fam && fam->densehatch > 0 ? (double)fam->densehatch : (double)0.99999f) / unitf;
    qqhatchpolys(b, xs, ys, ns, nwhich, d, QQ_OUTLINE_MAX, qqmove, qqdraw);
}

}  // namespace

void qqtxtfilloutline(TextBlock *b, const double *x, const double *y, const int *start,
                      int ncont) noexcept {
    if (ncont <= 0 || ncont > QQ_OUTLINE_MAX) return;
    Contours c{x, y, start, ncont};
    double area[QQ_OUTLINE_MAX];
    int owner[QQ_OUTLINE_MAX];
    int big = 0;
    for (int k = 0; k < ncont; ++k) {
        area[k] = c.distinct(k) >= 3 ? signed_area(c, k) : 0.0;
        if (std::fabs(area[k]) > std::fabs(area[big])) big = k;
    }
    // Outer contours turn as the largest one does; a contour turning the
    // other way belongs to the smallest outer one round its first point.
    for (int k = 0; k < ncont; ++k) {
        owner[k] = -1;
        if (area[k] * area[big] >= 0.0) continue;
        for (int o = 0; o < ncont; ++o) {
            if (area[o] * area[big] <= 0.0 || !inside(c, o, x[start[k]], y[start[k]])) continue;
            if (owner[k] < 0 || std::fabs(area[o]) < std::fabs(area[owner[k]])) owner[k] = o;
        }
    }
    double px[kMaxPoly], py[kMaxPoly];
    int group[QQ_OUTLINE_MAX];
    for (int o = 0; o < ncont; ++o) {
        if (owner[o] >= 0 || c.distinct(o) < 1) continue;
        int ng = 0;
        group[ng++] = o;
        // Each hole joins the outer contour at the nearest pair of points.
        int hole_at[QQ_OUTLINE_MAX], hole_from[QQ_OUTLINE_MAX];
        for (int h = 0; h < ncont; ++h) {
            if (owner[h] != o) continue;
            double best = HUGE_VAL;
            hole_at[h] = c.first(o);
            hole_from[h] = c.first(h);
            for (int i = c.first(h); i < c.first(h) + c.distinct(h); ++i)
                for (int j = c.first(o); j < c.first(o) + c.distinct(o); ++j) {
                    double dx = x[i] - x[j], dy = y[i] - y[j], dd = dx * dx + dy * dy;
                    if (dd < best) {
                        best = dd;
                        hole_at[h] = j;
                        hole_from[h] = i;
                    }
                }
            group[ng++] = h;
        }
        int np = 0;
        for (int j = c.first(o); j < c.first(o) + c.distinct(o); ++j) {
            px[np] = x[j];
            py[np] = y[j];
            ++np;
            for (int g = 1; g < ng; ++g) {
                int h = group[g];
                if (hole_at[h] != j) continue;
                int a = c.first(h), m = c.distinct(h), s = hole_from[h] - a;
                for (int i = 0; i <= m; ++i) {
                    int p = a + (s + i) % m;
                    px[np] = x[p];
                    py[np] = y[p];
                    ++np;
                }
                px[np] = x[j];
                py[np] = y[j];
                ++np;
            }
        }
        if (np < 3 || !qqdevsolid(b, px, py, np)) hatch(b, c, group, ng);
    }
}
