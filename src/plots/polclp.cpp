// polclp: one pass of the Sutherland-Hodgman clipper against one border.
#include <cmath>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "plots/plot_block.h"

namespace {

// Whether a point is on the kept side of the border (TOP, LEFT, BOTT, RIGH).
bool inside(int edge, double x, double y, double v) {
    switch (edge) {
        case 1:
            return y <= v;
        case 2:
            return x >= v;
        case 3:
            return y >= v;
        default:
            return x <= v;
    }
}

// The crossing of the edge (x0, y0)-(x1, y1) with the border line; the
// coordinate across the border is the border value itself.
void crossing(int edge, double x0, double y0, double x1, double y1, double v, double *cx,
              double *cy) {
    if (edge == 1 || edge == 3) {
        *cy = v;
        *cx = y1 == y0 ? x0 : x0 + (x1 - x0) * (v - y0) / (y1 - y0);
    } else {
        *cx = v;
        *cy = x1 == x0 ? y0 : y0 + (y1 - y0) * (v - x0) / (x1 - x0);
    }
}

}  // namespace

int polclp(const double *xray, const double *yray, int n, double *xout, double *yout, int nmax,
           double xv, const char *cedge) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("polclp"));
    if (!b) return 0;
    if (n < 1 || nmax < 1) {
        qqwarn(b, 2, n < 1 ? n : nmax);
        return 0;
    }
    int edge = qqkeyq("TOP +LEFT+BOTT+RIGH", 4, cedge);
    if (edge == 0) return 0;
    int m = 0;
    bool overflow = false;
    auto put = [&](double x, double y) {
        if (m >= nmax) {
            overflow = true;
            return;
        }
        xout[m] = x;
        yout[m] = y;
        ++m;
    };
    double px = xray[n - 1], py = yray[n - 1];
    bool pin = inside(edge, px, py, xv);
    for (int i = 0; i < n && !overflow; ++i) {
        double x = xray[i], y = yray[i];
        bool in = inside(edge, x, y, xv);
        double cx, cy;
        if (in && !pin) {
            crossing(edge, px, py, x, y, xv, &cx, &cy);
            put(cx, cy);
            put(x, y);
        } else if (in) {
            put(x, y);
        } else if (pin) {
            crossing(edge, px, py, x, y, xv, &cx, &cy);
            put(cx, cy);
        }
        px = x;
        py = y;
        pin = in;
    }
    if (overflow) {
        qqwar1(b, 112, "Too many points");
        return 0;
    }
    return m;
}
