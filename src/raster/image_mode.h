// Image mode and the transparency layer, as the session and the binding
// see them.
#pragma once

#include "raster/raster_block.h"

struct RasterBlock;

// Leaves image mode as imgfin does, if it is on (kolfin).
void qqimgend(RasterBlock *b) noexcept;
// Closes the transparency layer whatever its nesting depth (kolfin).
void qqtprend(RasterBlock *b) noexcept;
// Opens and closes one level of the transparency bracket of a figure
// routine: only when tprmod("AUTO", "FIGU") is set and the alpha is not 255.
void qqtprfig(RasterBlock *b, int open) noexcept;
// Bytes a pixel of the data of rpixls, wpixls, rpxrow and wpxrow for the
// calling thread: 3 in RGB mode, else 1.  The binding sizes its buffers by
// this, never by a flag of its own.
int qqpixbytes() noexcept;
// The bytes that rpxrow (row 1: one row of nw pixels) or rpixls (row 0: nh
// rows) writes for the calling thread, or -1 when the routine would refuse
// the request: no image mode, or a rectangle not wholly in the image.  No
// warning; the binding sizes its result by it, so that a refused request
// never allocates what its arguments ask.
long long qqpixrequest(int ix, int iy, int nw, int nh, int row) noexcept;
// The bytes of the whole image of image mode for the calling thread (the
// most that any accepted request reads), 0 without one.
long long qqpixlimit() noexcept;
