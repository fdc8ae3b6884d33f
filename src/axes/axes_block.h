// The block as the axis systems see it.
//
// Each layer's record derives from the one below, so a layer reaches the
// state of every layer beneath it and none above; the whole glbblk is
// composed at the library's top.  A routine of this layer turns the block
// that the guard gives it into this record by qqaxsblk, the layer's one
// accessor.  Plain data only: the block is allocated zero-filled.
#pragma once

#include "axes/axes_state.h"
#include "text/text_block.h"

struct AxesBlock : TextBlock {
    AxesState ax;  // axis settings and the scaling record
};

inline AxesBlock *qqaxsblk(CoreBlock *b) noexcept {
    return static_cast<AxesBlock *>(b);
}
inline const AxesBlock *qqaxsblk(const CoreBlock *b) noexcept {
    return static_cast<const AxesBlock *>(b);
}
