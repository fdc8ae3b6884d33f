// The colour model shared by every device.
//
// A colour value is one 32-bit integer in two forms.  With 0x01 in its top
// byte it is explicit, 0x01BBGGRR: red in the lowest byte.  Any other value
// is an index into the 256-entry table colmap (modulo 256), whose entries
// hold 0x00RRGGBB, blue in the lowest byte.  -1 as an argument of a
// drawing routine means that the current colour stays.
#pragma once

#include "colour/colour_block.h"

struct ColourBlock;

inline bool qqexplicit(int value) { return ((unsigned)value >> 24) == 1; }
inline int qqrgbval(int r, int g, int b) { return 0x01000000 | (b << 16) | (g << 8) | r; }

// Red, green and blue (0 to 255) of a colour value: explicit bytes or the
// table entry of an index.
void qqclrrgb(const ColourBlock *b, int value, int *r, int *g, int *bl) noexcept;
// Loads table kind 0 to 8 (the order of setvlt) with the named colours and
// the fore- and background, sends the table to the device and sets the
// foreground colour.
void qqsetvlt(ColourBlock *b, int kind) noexcept;
// The entry of the colour table nearest to a colour (sum of the absolute
// differences; the first minimum wins).
int qqnearest(const ColourBlock *b, int r, int g, int bl) noexcept;
// The colour of color("FORE").
void qqcolorfore(ColourBlock *b) noexcept;
