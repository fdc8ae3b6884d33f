// The drawing steps that curve shares with errbar, shdcrv and the legend:
// saving and restoring what a plot routine changes, line styles by number,
// and the tests of a curve's points.
#pragma once

#include "plots/plot_block.h"

struct AxisMap;

// What a plot routine changes and puts back on every way out.
struct CurveSave {
    int colour;
    int dshn, dshl[10];
    double lnoff;
    unsigned char ynoflp;
    int ltyp;     // line style number
    int pattern;  // shading pattern
};

void qqcrvsave(PlotBlock *b, CurveSave *s) noexcept;
void qqcrvrestore(PlotBlock *b, const CurveSave *s) noexcept;
// The line style number and the pattern, kept by the line-style and fill
// settings.
void qqstylesave(PlotBlock *b, CurveSave *s) noexcept;
void qqstylerestore(PlotBlock *b, const CurveSave *s) noexcept;
// Line style 0 to 7 of the style table, the dash state restarted.
void qqsetstyle(PlotBlock *b, int ltyp) noexcept;
// The current line style number.
int qqgetstyle(PlotBlock *b) noexcept;
// A solid line without offset for symbols and outlines.
void qqsolid(PlotBlock *b) noexcept;
// A polygon filled with a shading pattern (0 none); the outline is not
// drawn.
void qqpatfill(PlotBlock *b, const double *x, const double *y, int n, int pattern) noexcept;
// The current pattern and the pattern cycle, kept by the fill settings.
int qqgetpattern(PlotBlock *b) noexcept;
void qqsetpattern(PlotBlock *b, int pattern) noexcept;
int qqpatcycle(PlotBlock *b, int index) noexcept;
// Whether shaded areas get an outline.
bool qqarealine(PlotBlock *b) noexcept;

// The start of a curve: saves what it changes (qqcrvsave), takes the next
// colour and line style of the cycles and records a pending legend entry.
void qqcrvbegin(PlotBlock *b, CurveSave *save) noexcept;
// curve without its guard, for routines that draw a curve of their own.
void qqcurve(PlotBlock *b, const double *x, const double *y, int n) noexcept;
bool qqcrvlog(PlotBlock *b, const AxisMap &m, const double *x, const double *y, int n) noexcept;
void qqcrvsymbols(PlotBlock *b, const AxisMap &m, const double *x, const double *y, int n,
                  int step) noexcept;
