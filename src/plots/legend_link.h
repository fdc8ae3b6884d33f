// What the legend takes from the text and axis layers: the character
// height and line spacing, the width and drawing of a text line, the axis
// frame, and the place of the axis system.
#pragma once

#include "core/glbblk.h"

struct LegendAxis {
    int px, py;      // lower left corner of the axis system
    int xlen, ylen;  // axis lengths
    int rx, ty;      // right and top edges
};

int qqleghgt(glbblk *b) noexcept;
double qqleglsp(glbblk *b) noexcept;
// Width in plot coordinates of n characters at the current height.
int qqlegwidth(glbblk *b, const char *text, int n) noexcept;
// Writes n characters with their upper left corner at (x, y), angle 0.
void qqlegtext(glbblk *b, const char *text, int n, int x, int y) noexcept;
// The frame thickness of the axis settings.
int qqlegframe(glbblk *b) noexcept;
// The frame of thickness f round the box (x, y, w, h).
void qqlegbox(glbblk *b, int x, int y, int w, int h, int f) noexcept;
void qqlegaxis(glbblk *b, LegendAxis *a) noexcept;
// The legend control character of the text settings (setmix), '/' by default.
char qqlegmix(glbblk *b) noexcept;
