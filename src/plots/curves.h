// What the curve routines share among themselves and offer to the legend
// and to later plot types: the attribute cycles, the spline engine and the
// symbols.
#pragma once

#include "plots/plot_block.h"

// Attribute state back to its start (cycle position 1, entry pending).
void qqresatt(PlotBlock *b) noexcept;
// The next attributes of the cycles, if the curve count asks for it.
void qqchnatt(PlotBlock *b) noexcept;
// Counts a finished curve and moves the cycles after inccrv curves.
void qqcurvedone(PlotBlock *b) noexcept;
// Points that spline writes: the npts of splmod plus one.  The module's
// wrapper sizes the result arrays by it.
int qqsplpts() noexcept;

// The interpolating B-spline of order k (degree + 1) with not-a-knot ends.
// mode 0 interpolates y over increasing x, mode 1 x and y over the chord
// length.  Writes npts + 1 points to xs, ys, equally spaced in x (or in
// log10 x with logx) or in the chord length.  Returns 0, or the number of
// the warning that the caller reports (31, 32, 38, 53).
int qqspline(const double *x, const double *y, int n, int k, int mode, int npts, bool logx,
             double *xs, double *ys) noexcept;

// One symbol centred at a plot position, in the current colour, with the
// size, rotation and user symbol of the curve settings.
void qqsymb(PlotBlock *b, int nsym, double x, double y) noexcept;
// A filled polygon in plot coordinates with the solid pattern, the current
// pattern left as it was.
void qqsolidfill(PlotBlock *b, const double *x, const double *y, int n) noexcept;

// Legend: the defaults of the legend state at qqinit, and the record of the
// attributes that a curve or a shaded area drew with.
void qqleginit(PlotBlock *b) noexcept;
void qqlegrecord(PlotBlock *b, int entry, int pattern, bool line, bool symbol) noexcept;

// The regression line of linfit drawn as a curve from the first to the last
// x, after the points as symbols when asked.
void qqlinfitdraw(PlotBlock *b, const double *x, const double *y, int n, double a, double c,
                  bool symbols) noexcept;

// Bytes of the legend buffer that the calling thread's legend state uses
// (nlin times nmaxln after legini, else 0), for the module's wrappers.
int qqlegbytes() noexcept;
