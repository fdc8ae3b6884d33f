// Texts of axis labels and the bridge from the axes to the text layer.
#pragma once

#include "axes/axes_block.h"

struct AxesBlock;

enum { QQ_LABLEN = 80 };

// The label text of value v (the index for own labels) on an axis
// (0 X, 1 Y, 2 Z); logax 1 when the axis is logarithmic, so that v is an
// exponent.  out holds at least QQ_LABLEN + 1 bytes.  Returns the length.
int qqlabtxt(AxesBlock *b, double v, int idx, int logax, int axis, char *out) noexcept;

// The width of a text at the current height, in plot coordinates.
double qqaxtw(AxesBlock *b, const char *text) noexcept;
// Draws a text with its upper left corner (before the rotation) at x, y
// in plot coordinates, turned by angle degrees counter-clockwise.
void qqaxtxt(AxesBlock *b, const char *text, double x, double y, int angle) noexcept;
// The extent of a text above its base line (nh) and below it (nu, 0
// unless a formula mode gives a depth) at the current height.
void qqaxtext(AxesBlock *b, const char *text, int *nh, int *nu) noexcept;
// The current character height, in plot coordinates.
int qqaxth(AxesBlock *b) noexcept;
// Sets the character height and returns the previous one.
int qqaxsth(AxesBlock *b, int h) noexcept;
// Text modes of power and exponent labels: mix mode (raised exponents),
// TeX off, and for XEXP the MATHEMATIC shift between "{" and "}".
struct AxMixSave {
    int mixon, texon, smxon, smxalf, hjus, vjus;
    char c1, c2;
};
void qqaxmix(AxesBlock *b, int xexp, AxMixSave *s) noexcept;
void qqaxmixend(AxesBlock *b, const AxMixSave *s) noexcept;
// Line spacing of titles (linesp).
double qqaxlinesp(AxesBlock *b) noexcept;
// Base line factors of raised text: setbas + setexp.
double qqaxbase(AxesBlock *b) noexcept;
