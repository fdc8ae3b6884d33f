// The canvas record: its planes, its colour state and its pixel data.
//
// A canvas is either an index canvas, one byte a pixel holding a colour
// index, or an RGB canvas, four bytes a pixel in the order red, green,
// blue, alpha.  Rows run from the top, with no padding.  The colour table
// is copied into the record (tabr, tabg, tabb) whenever the library's table
// changes, so that the canvas can turn indices into colours on its own.
#pragma once

#include "raster/raster_block.h"

struct RasterBlock;
struct qqcanvas;

// Allocates and clears the base plane for w by h pixels and sets the pen
// to its defaults.  Returns 0, or 53 when there is no memory or the size
// does not fit in memory; the record is then left without planes.
int qqcnvnew(qqcanvas *cv, int w, int h, int rgb, int rev) noexcept;
// Frees both planes; the record stays.
void qqcnvfree(qqcanvas *cv) noexcept;
// Clears the plane in use: white with alpha 0 on an RGB canvas with a
// white background, zero bytes otherwise.
void qqcerase(qqcanvas *cv) noexcept;
// The colour step of the canvas: sets the colour value of the lines.
void qqcsetc(qqcanvas *cv, int value) noexcept;
// Copies a colour table of 256 entries 0x00RRGGBB of the given kind.
void qqctable(qqcanvas *cv, const int *colmap, int kind) noexcept;
// The table entry nearest to a colour, by the canvas's own search.
int qqnearc(const qqcanvas *cv, int r, int g, int b) noexcept;
// A colour value as the canvas stores it, without changing the current
// colour: out[0] the index on an index canvas, else red, green, blue and
// the current alpha.
void qqcresolve(const qqcanvas *cv, int value, unsigned char out[4]) noexcept;

// Reads n pixels from (x, y) into out: one byte a pixel (the index) or
// three (red, green, blue).  The pixels must lie in the canvas.
void qqcgetrow(const qqcanvas *cv, int x, int y, int n, int rgb, unsigned char *out) noexcept;
// Writes n pixels of index or RGB data at (x, y); pixels equal to the
// transparent colour leave the canvas as it is.  Must lie in the canvas.
void qqcputrow(qqcanvas *cv, int x, int y, int n, int rgb, const unsigned char *data) noexcept;

// The canvas of a block while it has planes, else null.
qqcanvas *qqcanvasof(RasterBlock *b) noexcept;
// Gives the block's canvas the current colour table and colour.
void qqcnvsync(RasterBlock *b) noexcept;
