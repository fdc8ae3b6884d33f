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
