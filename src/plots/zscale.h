// The z colour scale shared by every plot that colours by value.
//
// qqzscl sets the scale from zmin to zmax (axis values: exponents on a
// logarithmic z axis); qqzclr turns a user value into a colour number of
// the colour range of colran.  Values below the range give the darkest
// end of the table and values above it the brightest (exchanged on a
// falling range).  The range is cut in maxidx - minidx + 1 equal bands; a
// value on the upper limit takes the last colour.
#pragma once

#include "plots/plot_block.h"

struct PlotBlock;

void qqzscl(PlotBlock *b, double zmin, double zmax) noexcept;
int qqzclr(const PlotBlock *b, double z) noexcept;
// The same as red, green, blue in 0 to 1 (the table entry of the colour).
void qqzrgb(const PlotBlock *b, double z, double *r, double *g, double *bl) noexcept;
// Whether zscale gave a range, and the range.
int qqzuser(const PlotBlock *b, double *za, double *ze) noexcept;
