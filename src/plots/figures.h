// The arc engine that every round figure (circles, ellipses, pie slices,
// shield frames, pie charts) goes through.
//
// Centre and semi-axes in plot coordinates (y already through the page
// flip, origin shift not yet added); angles in degrees counter-clockwise
// on the page; theta turns the whole figure counter-clockwise.  With dash
// false the line is solid whatever the line style.  closed joins a partial
// arc through the centre.  Draws the outline when areaf would, then fills
// with the current pattern.  No allocation: at most 1000 steps.
#pragma once

#include "plots/plot_block.h"

void qqarcell(PlotBlock *b, double x, double y, double a, double bb, double alpha, double beta,
              double theta, bool dash, bool closed) noexcept;
// The step count that the arc engine takes for semi-axes a, b over a span
// of angle radians (0 draws nothing).
int qqarcsteps(PlotBlock *b, double a, double bb, double span) noexcept;
