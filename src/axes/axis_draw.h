// Drawing of one axis: line, ticks, labels and name, in that order.
#pragma once

#include "axes/axes_block.h"
#include "devices/device.h"

#include <cmath>

struct AxesBlock;

struct AxisCall {
    int axis;          // 0 X, 1 Y (the settings of that axis are used)
    double a, e;       // limits (exponents on a logarithmic axis)
    double orl, step;  // first label and label step
    int len;           // axis length
    int x0, y0;        // start point: left end of X, lower end of Y
    int side;          // 0 labels toward larger page x or y, 1 the other side
    int logax;         // 1 logarithmic
    int level;         // highest element drawn: 1 line, 2 ticks, 3 labels, 4 name
    int crossed;       // 1 in a crossed system: no label at 0
    int measure;       // 1: draw nothing, only give the label extent
    int geo;           // 0 placed as its axis; 1 as an X axis, 2 as a Y axis
    // Where value v stands along the axis, as the distance from the start
    // point, for axes whose values do not run linearly (the frame of a
    // map); NaN leaves the tick and label out.  Null: the linear rule.
    double (*where)(AxesBlock *b, const AxisCall &c, double v);
};

// Whether the axis is placed as an X (0) or a Y axis (1).
inline int qqaxgeo(const AxisCall &c) {
    return c.geo ? c.geo - 1 : c.axis;
}

// Draws the axis; returns the extent of its labels across the axis.
int qqaxis(AxesBlock *b, const AxisCall &c) noexcept;

// The labels that the axis shows, after labpos and axends: the values
// qqlabval(i) for i from first to last by inc.  Returns 0 when none.
int qqlabplan(const AxesBlock *b, const AxisCall &c, int *first, int *last, int *inc) noexcept;
// Label value i: orl + i * step, with a rounding residue near 0 made 0.
double qqlabval(const AxesBlock *b, const AxisCall &c, int i) noexcept;

// Switches on the text modes that the labels of the axis need (raised
// exponents); returns 1 when it did, and qqaxmixend(b, mix) undoes it.
int qqlabmix(AxesBlock *b, const AxisCall &c, struct AxMixSave *mix) noexcept;

// An element colour of an axis (-1: the current colour) for the time of
// drawing: qqaxclron returns the colour to give back to qqaxclroff.
int qqaxclron(AxesBlock *b, int clr) noexcept;
void qqaxclroff(AxesBlock *b, int clr, int saved) noexcept;

// Ticks alone, with lengths given (signed: positive toward the label side),
// n intervals per label; used by the axes and by grid lines.
void qqticks(AxesBlock *b, const AxisCall &c, int n, int lmaj, int lmin, int centred) noexcept;

// Whether a logarithmic axis with n tick intervals per label gets minor
// ticks at 2 to 9 times each decade (logtic).  When it does, *step becomes
// one decade with the sign of the label step and *n becomes 1.
bool qqlogminor(const AxesBlock *b, const AxisCall &c, int *n, double *step) noexcept;

// Calls tick(v) for the exponent v of every value 2 to 9 times a decade
// that lies within the limits, from the decade before the axis start to
// the one behind its end.
template <class F>
void qqlogminorticks(const AxisCall &c, F tick) {
    double lo = c.a < c.e ? c.a : c.e, hi = c.a < c.e ? c.e : c.a;
    double d0 = std::floor(lo) - 1, d1 = std::ceil(hi) + 1;
    if (!(d1 - d0 <= 100000)) return;  // no page can show more
    for (double dec = d0; dec <= d1; dec += 1)
        for (int j = 2; j <= 9; ++j) {
            double lv = dec + std::log10((double)j);
            if (lv >= lo && lv <= hi) tick(lv);
        }
}

