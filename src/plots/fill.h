// Area fill: the polygon fill with the current pattern, the filled
// rectangle and the frame primitives.
//
// Entry points for drawing code above the devices (plot coordinates as
// doubles, y already through the page-origin flip, origin shift not yet
// added):
//
//   qqpfill(b, x, y, n)      fills a polygon with the current pattern
//                            (shdpat, mypat): solid fill as a device polygon
//                            where the device takes one, every other pattern
//                            as hatch lines through qqmove/qqdraw, clipped
//                            like any line.  No outline.  The arrays may be
//                            changed.  Layers below the plots reach it as
//                            qqfillpoly (devices/device.h).
//   qqarea(b, x, y, n)       what areaf does with doubles: the outline (unless
//                            noarln), then the fill; coinciding points draw a
//                            line from the first to the second.
//   qqrectf(...)             a rectangle filled in a colour, no outline.
//   qqframe(...)             the box of a frame of some thickness.
//
// Layers below the plots (text outlines) reach the fill as qqfillpoly and
// the sweep for many polygons as qqhatchpolys, both in devices/device.h;
// the plots set those hooks when a block is made.
//
// Nothing here allocates for polygons of up to 8 points; larger ones take
// one work allocation for the sweep (warning 53 when it fails).
#pragma once

#include <cmath>

#include "plots/plot_block.h"

struct PlotBlock;

void qqpfill(PlotBlock *b, double *x, double *y, int n) noexcept;
void qqarea(PlotBlock *b, double *x, double *y, int n) noexcept;
// Filled rectangle between the corners (x1, y1) and (x2, y2), in a colour
// value; the current colour is not changed.  In the 3-D plane it is a
// polygon of the solid pattern, else the layer's qqfrect.
void qqrectf(PlotBlock *b, int x1, int y1, int x2, int y2, int colour) noexcept;
// Frame round the box with upper left corner (x, y), w by h: |t| rectangles,
// outward for t above 0, inward below, turned by angle degrees about (x, y);
// colour -1 keeps the current colour.
void qqframe(PlotBlock *b, int x, int y, int w, int h, int t, double angle, int colour) noexcept;

// The page in plot coordinates, widened by the origin shift and a unit:
// xmin, ymin, xmax, ymax.
void qqpagebox(const PlotBlock *b, double box[4]) noexcept;
// The least and greatest of n . (corner - c) over the corners of a page box:
// how far along the unit normal n the page reaches from the point c.
void qqpagespan(const double box[4], double cx, double cy, double nx, double ny, double *lo,
                double *hi) noexcept;

// The steps of a frame of thickness t: the line at the offset e = i (e = -i
// for t below 0) is drawn for the i from 0 to |t| - 1 at which one of its
// sides can reach the page, side k while lo[k] <= e <= hi[k] (n sides, at
// most 2048).  step(i) runs in ascending order, once for each such i, so
// that a huge thickness costs no more than the page.
template <class Step>
void qqframesteps(int t, const double *lo, const double *hi, int n, Step step) {
    const long long last = (t < 0 ? -(long long)t : (long long)t) - 1;
    long long from[2048], to[2048];
    int k = 0;
    for (int j = 0; j < n && j < 2048; ++j) {
        double a = t > 0 ? lo[j] : -hi[j], e = t > 0 ? hi[j] : -lo[j];
        if (!(a <= e)) continue;  // an empty side, or one not a number
        a = a < -1.0 ? -1.0 : a;
        e = e > (double)last + 1 ? (double)last + 1 : e;
        if (a > e) continue;
        from[k] = (long long)std::ceil(a) - 1;
        to[k] = (long long)std::floor(e) + 1;
        if (from[k] < 0) from[k] = 0;
        if (to[k] > last) to[k] = last;
        if (from[k] <= to[k]) ++k;
    }
    long long next = 0;  // the first step not yet drawn
    while (k > 0) {
        int best = 0;
        for (int j = 1; j < k; ++j)
            if (from[j] < from[best]) best = j;
        long long a = from[best] > next ? from[best] : next;
        for (long long i = a; i <= to[best]; ++i) step((int)i);
        if (to[best] + 1 > next) next = to[best] + 1;
        from[best] = from[--k];
        to[best] = to[k];
    }
}
