// The block as the colour model sees it: the core's records and its own.
//
// Each layer's record derives from the one below, so a layer reaches the
// state of every layer beneath it and none above; the whole glbblk is
// composed at the library's top.  A routine of this layer turns the block
// that the guard gives it into this record by qqclrblk, the layer's one
// accessor.  Plain data only: the block is allocated zero-filled.
#pragma once

#include "colour/colour_state.h"
#include "core/core_block.h"

struct ColourBlock : CoreBlock {
    ColourState clr;  // colour table, named colours, current colour
};

inline ColourBlock *qqclrblk(CoreBlock *b) noexcept {
    return static_cast<ColourBlock *>(b);
}
inline const ColourBlock *qqclrblk(const CoreBlock *b) noexcept {
    return static_cast<const ColourBlock *>(b);
}
