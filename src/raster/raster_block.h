// The block as the raster canvas sees it: the colour model's block and the canvas.
//
// Each layer's record derives from the one below, so a layer reaches the
// state of every layer beneath it and none above; the whole glbblk is
// composed at the library's top.  A routine of this layer turns the block
// that the guard gives it into this record by qqrstblk, the layer's one
// accessor.  Plain data only: the block is allocated zero-filled.
#pragma once

#include "colour/colour_block.h"
#include "raster/canvas_state.h"

struct RasterBlock : ColourBlock {
    CanvasState cnv;  // raster canvas, image mode, transparency
};

inline RasterBlock *qqrstblk(CoreBlock *b) noexcept {
    return static_cast<RasterBlock *>(b);
}
inline const RasterBlock *qqrstblk(const CoreBlock *b) noexcept {
    return static_cast<const RasterBlock *>(b);
}
