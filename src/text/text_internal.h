// Helpers shared by the sources of the text subsystem; not for other layers
// (they use text/text.h).
#pragma once

#include <cstdint>

#include "text/text_block.h"

// fonts.cpp
void qqtxtdefaults(TextBlock *b) noexcept;
// The section of an alphabet with its scales computed for the current
// height, width factor and spacing (cached in the working state).
const TextSection *qqtxtsection(TextBlock *b, int alf) noexcept;

// codes.cpp
// Reads a string into 32-bit codes by the code set: 0, or -1 after the
// UTF-8 syntax warning, -2 when max codes do not hold it.  Trailing blanks
// are cut; n receives the count left.
int qqtxtcodes(TextBlock *b, const char *text, int32_t *codes, int max, int *n, int warn) noexcept;
// Replaces the pairs of shift character and letter in the string's codes.
void qqtxteushft(TextBlock *b) noexcept;
// Converts a code to an internal code; alf may change to the alphabet the
// code belongs to.
int qqtxtconvert(TextBlock *b, int code, int *alf) noexcept;

// shifts.cpp
// The alphabet shifts and the instruction alphabet: 1 when the code was
// consumed (then nothing is drawn).
int qqtxtshift(TextBlock *b, int code) noexcept;

// draw.cpp
// Pen moves along the writing direction and upward across it.
void qqtxtadvance(TextBlock *b, double along) noexcept;
void qqtxtup(TextBlock *b, double up) noexcept;
// Distance of the pen from the string's start along the writing direction.
double qqtxtalong(TextBlock *b) noexcept;
// Draws (or measures) one code at the pen in the string's current
// alphabet, height and vertical offset, and moves the pen behind it.
void qqtxtcode(TextBlock *b, int code) noexcept;
// A line below (below > 0) or above the baseline from distance d0 to d1
// along the writing direction, measured from the string's start.
void qqtxtrule(TextBlock *b, double d0, double d1, double below) noexcept;

// outline_fill.cpp
// Points an outline glyph keeps for its fill.
enum { QQ_OUTLINE_MAX = 200 };
// Fills the contours of an outline glyph, positions without the origin
// shift: contour k holds the points start[k] to start[k + 1] - 1.
void qqtxtfilloutline(TextBlock *b, const double *x, const double *y, const int *start,
                      int ncont) noexcept;

// tex.cpp
// Puts the TeX mode settings back to their defaults.
void qqtexdefaults(TextBlock *b) noexcept;
// The formula parser of TeX mode (the tex hook of the text state).
int qqtexrun(TextBlock *b, int measure) noexcept;
