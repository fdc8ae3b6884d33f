// User coordinates to plot coordinates for the curve routines.
//
// A curve converts every point, so the conversion of a rectangular system
// is held as plain factors, read once per call from the axis system, and
// applied inline; the other systems (polar, complex chart, maps) go
// through the axis layer's general conversion.
#pragma once

#include <cmath>

#include "plots/plot_block.h"

struct AxisMap {
    int type;            // 0 rectangular, 1 polar, 4 complex chart, else other
    bool logx, logy;     // logarithmic axes
    bool neglog;         // a substitute exponent for values at or below 0
    double negexp;       // that exponent
    double ax, fx, ox;   // x = (v - ax) fx + ox
    double ay, fy, oy;   // y = oy - (v - ay) fy
    double xlow, xhigh;  // user range of X and Y (powers of ten on log axes)
    double ylow, yhigh;
};

// Reads the conversion of the current axis system; false outside one.
bool qqaxmap(PlotBlock *b, AxisMap *m) noexcept;
// The general conversion, for systems other than the rectangular one.
void qqaxconv(PlotBlock *b, double x, double y, double *px, double *py) noexcept;

inline double qqaxexp(const AxisMap &m, double v) noexcept {
    if (v > 0) return std::log10(v);
    return m.neglog ? m.negexp : std::log10(v);
}

inline void qqaxpt(PlotBlock *b, const AxisMap &m, double x, double y, double *px,
                   double *py) noexcept {
    if (m.type != 0) {
        qqaxconv(b, x, y, px, py);
        return;
    }
    double vx = m.logx ? qqaxexp(m, x) : x;
    double vy = m.logy ? qqaxexp(m, y) : y;
    double rx = (vx - m.ax) * m.fx + m.ox;
    double ry = m.oy - (vy - m.ay) * m.fy;
    // Far-away points are held at a million plot units, so that the
    // clipper sees a finite line in the right direction.
    *px = rx < -1e6 ? -1e6 : rx > 1e6 ? 1e6 : rx;
    *py = ry < -1e6 ? -1e6 : ry > 1e6 ? 1e6 : ry;
}
