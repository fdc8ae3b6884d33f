// The readers of incfil, private to src/devices.
#pragma once

#include <cstdio>

struct DeviceBlock;

// Draws a binary CGM into the box (upper left corner, width, height, plot
// coordinates) through the driver's line operation, with its line colours
// unless filclr is NONE.  Returns 0, or 36 when the file cannot be read.
int qqincgm(DeviceBlock *b, FILE *fp, const int box[4]) noexcept;
