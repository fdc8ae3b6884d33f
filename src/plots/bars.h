// What bars and fbars share: the distance of neighbouring bars on the page
// and the colour of a bar face.
#pragma once

#include "plots/plot_block.h"

struct AxisMap;

// The distance in plot coordinates between the positions of the first two
// bars (pos[0], pos[1]) along the position axis: X, or Y when hori; with a
// single bar the axis's label step.  Zero when it cannot be formed.
double qqbarspan(PlotBlock *b, const AxisMap &m, const double *pos, int n, bool hori) noexcept;
// Plot coordinate of a user value on the position axis (X, or Y when hori).
double qqbaralong(PlotBlock *b, const AxisMap &m, double v, bool hori) noexcept;
// Sets a colour unless it is -1 and returns the colour to put back.
int qqbarcolour(PlotBlock *b, int colour) noexcept;
