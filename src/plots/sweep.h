// The scan-line sweep that hatches a polygon (private to the fill).
#pragma once

#include "plots/plot_block.h"

struct PlotBlock;

struct SweepLines {
    double d;         // line distance in the rotated frame
    int run, gap;     // bundle: lines drawn, lines left out; run 0 draws all
    double c, s;      // cosine and sine of the angle: lines go back by -angle
    bool limit;       // scan only the lines that can meet the clip window
};

// Work of 3 n integers for a polygon of n points; null when the memory
// is not there.  Free with std::free.
int *qqsweepwork(int n) noexcept;

// Draws the hatch lines of the polygon (x, y), given in the rotated frame,
// with qqmove and qqdraw.  work holds 3 n integers.  Returns 0, or the
// number of crossings of a scan line above 100 (the sweep then stopped).
int qqsweep(PlotBlock *b, const double *x, const double *y, int n, const SweepLines &l,
            int *work) noexcept;

// The pen of the sweep for many polygons: positions in the caller's frame.
struct SweepPen {
    void (*move)(DeviceBlock *b, double x, double y);
    void (*draw)(DeviceBlock *b, double x, double y);
};

// The sweep for many polygons at once (contour shading, map shading, the
// shading of text): horizontal lines d apart from ymin - d/2 to ymax + d/2
// over all polygons, whose crossings are collected together, so that holes
// and islands cancel by the pairing.  Inverted, it draws outside the
// polygons, from xleft to the first crossing, the gaps between pairs and
// from the last crossing to xright.  More than maxcross crossings on a line
// give warning 26 with their number and end the sweep (returns 1).
int qqsweepn(PlotBlock *b, const double *const *x, const double *const *y, const int *n, int npoly,
             double d, int maxcross, int inverted, double xleft, double xright,
             const SweepPen &pen) noexcept;
