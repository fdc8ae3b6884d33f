// What the legend takes from the text and axis layers: the character
// height and line spacing, the width and drawing of a text line, the axis
// frame, and the place of the axis system.
#pragma once

#include "plots/plot_block.h"

struct LegendAxis {
    int px, py;      // lower left corner of the axis system
    int xlen, ylen;  // axis lengths
    int rx, ty;      // right and top edges
};

int qqleghgt(PlotBlock *b) noexcept;
double qqleglsp(PlotBlock *b) noexcept;
// Width in plot coordinates of n characters at the current height.
int qqlegwidth(PlotBlock *b, const char *text, int n) noexcept;
// Writes n characters with their upper left corner at (x, y), angle 0.
void qqlegtext(PlotBlock *b, const char *text, int n, int x, int y) noexcept;
// The frame thickness of the axis settings.
int qqlegframe(PlotBlock *b) noexcept;
// The frame of thickness f round the box (x, y, w, h).
void qqlegbox(PlotBlock *b, int x, int y, int w, int h, int f) noexcept;
void qqlegaxis(PlotBlock *b, LegendAxis *a) noexcept;
// The legend control character of the text settings (setmix), '/' by default.
char qqlegmix(PlotBlock *b) noexcept;
