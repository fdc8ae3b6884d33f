// The axis systems as the plotting routines see them: the conversions from
// user to plot coordinates and the tests and automatic scaling that every
// axis-system routine shares.
//
// Plot coordinates are doubles on the page grid, y growing downward, before
// the origin shift that the device layer adds.  The conversions read the
// scaling record (AxesState::rec) that graf writes; they are valid from
// graf to endgrf (level 2 or 3).
#pragma once

#include "axes/axes_block.h"

struct AxesBlock;

// User X and Y to plot coordinates by the rule of the axis system in force
// (logarithmic axes, neglog, the limit of +-1e6 in a rectangular system).
double qqxpos(AxesBlock *b, double x) noexcept;
double qqypos(AxesBlock *b, double y) noexcept;
// Both at once; for polar and complex systems only this form is exact.
void qqpos2(AxesBlock *b, double x, double y, double *xp, double *yp) noexcept;
// Plot to user coordinates (no page flip): the inverse of qqxpos, qqypos.
double qqxinv(AxesBlock *b, double xp) noexcept;
double qqyinv(AxesBlock *b, double yp) noexcept;

// Automatic scaling of one axis (0 X, 1 Y, 2 Z) when setscl asked for it:
// replaces a, e, or and step (exponents on a logarithmic axis) and stores
// the digits of the axis.  Does nothing for an axis without the flag.
void qqautscl(AxesBlock *b, int axis, double *a, double *e, double *orl, double *step) noexcept;
// The tests of one axis before an axis system is drawn.  Returns 1 when
// the scaling is refused (warnings 9, 10, 11 given), 0 otherwise.  which
// 4 tests pos as the left end of an X axis, 5 as the lower end of a Y
// axis (warnings 4 and 5 when the axis leaves the page); 0 no position.
int qqtstscl(AxesBlock *b, double a, double e, double orl, double step, int len, int pos,
             int which) noexcept;

// Digits for the labels of an axis with automatic digits: the larger need
// of the first label and the step.
int qqaxdig(double orl, double step) noexcept;

// The centring that center asked for, once per page: moves the page
// origin so that the system at px, py of size xl, yl with the X and Y
// scalings v (a, e, or, step) sits in the middle of the page with its
// labels, names and titles.  Nothing when no center call is pending.
void qqcenter(AxesBlock *b, const double v[2][4], int px, int py, int xl, int yl) noexcept;
// The clip rectangle and circle of an axis system whose lower left corner
// is x, y and size w, h, widened by the grace margin, handed to the layer
// as the region that qqclip narrows to.
void qqaxrect(AxesBlock *b, int x, int y, int w, int h) noexcept;
// Registers a routine that endgrf runs (at most four, each once); call it
// from a subsystem's share of the session defaults.
void qqaxhook(AxesBlock *b, void (*fn)(AxesBlock *)) noexcept;

// The body of graf for the axis systems built on it (graf3): returns 1
// when the scaling was refused and the level stays 1.
int qqgraf(AxesBlock *b, double xa, double xe, double xor_, double xstp, double ya, double ye,
           double yor, double ystp) noexcept;
// A filled rectangle of plot coordinates in a colour, and a frame of
// thickness t round one (outward, inward when negative; clr -1 current).
void qqaxfill(AxesBlock *b, int x1, int y1, int x2, int y2, int clr) noexcept;
void qqaxframe(AxesBlock *b, int x1, int y1, int x2, int y2, int t, int clr) noexcept;
// The room of ticks, labels and names on the four sides of the system in
// force: below, left, above, right.
void qqaxsides(AxesBlock *b, int ext[4]) noexcept;

// The colour bar of graf3 (axes/colour_bar.cpp).  qqbar3 places and draws
// it for the system in force; za, ze, zor, zstp are the z scaling (axis
// values).  qqbarsides adds the room of the bar to the side extents that
// center uses while a graf3 system is being opened.
void qqbar3(AxesBlock *b) noexcept;
void qqbarsides(AxesBlock *b, int ext[4]) noexcept;
// The limits of a logarithmic colour bar (exponents za, ze) widened to whole
// decades as expzlb asks: at the start for FIRS, at both ends for BOTH.
void qqdecades(const AxesBlock *b, double za, double ze, double *e0, double *e1) noexcept;
// The axis lengths of axslen, with its tests; false after a warning.
bool qqaxslen(AxesBlock *b, int nxl, int nyl) noexcept;
// The point size of colour rectangles for a grid of nx by ny points over
// lengths wx, wy (plot units); stores it in nxres, nyres.
void qqautres(AxesBlock *b, int nx, int ny, int wx, int wy) noexcept;

// Helpers of the axis settings: the axes named in an option string (bit 0
// X, 1 Y, 2 Z), and the label type of an axis with what it implies.
int qqaxsmask(const char *s) noexcept;
void qqlabkind(AxesBlock *b, int axis, int k) noexcept;
