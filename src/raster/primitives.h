// The drawing operations on a canvas record: collected polylines, lines of
// every width, filled polygons and rectangles, single pixels, markers, and
// the device options that shape them.
//
// Coordinates are integer pixels, row 0 on top (polygons take doubles).
// Lines use the pen of the record (lw, lcap, ljoin, colour); rectangles and
// pixels take a colour value of their own.  All operations draw on the plane
// in use (cv->pix), which must exist.  Nothing here warns: the callers turn
// the results into warnings.  Only the polygon fill allocates, an edge list
// for polygons of many points (without the memory it scans every edge).
#pragma once

struct qqcanvas;

// The line operation of the device: code 2 draws to (x, y), any other code
// moves there.  Points are collected and drawn 100 at a time.
void qqcline(qqcanvas *cv, int x, int y, int code) noexcept;
// Draws the collected points and keeps the last one as a move.
void qqcflush(qqcanvas *cv) noexcept;
// Draws a polyline at once with the record's pen.
void qqcpolyline(qqcanvas *cv, const int *x, const int *y, int n) noexcept;
// Filled polygon of n vertices at double pixel positions, in the current
// colour; always clipped.  Returns 1 when some row had more than 99
// crossings (the caller reports warning 26); that row is filled with what
// was kept.
int qqcfill(qqcanvas *cv, const double *x, const double *y, int n) noexcept;
// The same with vertices in another system, mapped to pixels on the way
// by x' = m0·x + m1·y + m2, y' = m3·x + m4·y + m5 (no copy is made).
int qqcfillm(qqcanvas *cv, const double *x, const double *y, int n, const double m[6]) noexcept;
// Filled rectangle, edges included, in the colour value given.
void qqcrect(qqcanvas *cv, int x1, int y1, int x2, int y2, int colour) noexcept;
// One pixel in the colour value given; nothing outside the clip.
void qqcpixel(qqcanvas *cv, int x, int y, int colour) noexcept;
// Marker of kind 0 to 23 centred at (x, y), size in pixels.
void qqcmark(qqcanvas *cv, int kind, int x, int y, int size) noexcept;
// Disc of radius r; mode 0 whole, 1 the upper half.
void qqcdisc(qqcanvas *cv, int x, int y, int r, int mode) noexcept;
// The box of the pixels of the transparency layer whose alpha is above 0;
// returns 0 when there are none (or no layer).
int qqcbbox(const qqcanvas *cv, int *x0, int *y0, int *x1, int *y1) noexcept;
// Device options: 11 to 14 clip rectangle, 19 alpha, 21 opaque
// compositing, 26 line width, 27 cap, 28 join, 32 transparent colour,
// 33 clipping (1 off), 34 smooth lines (2 on).
void qqcoption(qqcanvas *cv, int code, int value) noexcept;
