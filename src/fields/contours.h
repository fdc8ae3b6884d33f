// What the contour lines offer to the shading and the triangle contours:
// the contour pen and the start of a level.
//
// The pen takes points in plot coordinates and acts by the line state of
// the contour record (3 opens a line, 2 continues it, 4 ends the pass):
// it draws, cuts gaps for labels and writes them, or, in polygon mode,
// collects and fills polygons.
#pragma once

#include "fields/field_block.h"

// Starts a level: the label gap and length and the digits of the level's
// number, from the label settings.
void qqconlevel(FieldBlock *b, double level) noexcept;
// One point of the current line in plot coordinates.
void qqconpen(FieldBlock *b, double x, double y) noexcept;
// Sets the text angle in degrees as angle does.
void qqconangle(FieldBlock *b, int deg) noexcept;
// The digits that the automatic label digits (-2) choose for a level.
int qqcondigits(double level) noexcept;
