// The block as the 3-D space sees it.
//
// Each layer's record derives from the one below, so a layer reaches the
// state of every layer beneath it and none above; the whole glbblk is
// composed at the library's top.  A routine of this layer turns the block
// that the guard gives it into this record by qqspcblk, the layer's one
// accessor.  Plain data only: the block is allocated zero-filled.
#pragma once

#include "fields/field_block.h"
#include "space/space_state.h"

struct SpaceBlock : FieldBlock {
    SpaceState sp;  // 3-D axis system, z-buffer, lights, surfaces
};

inline SpaceBlock *qqspcblk(CoreBlock *b) noexcept {
    return static_cast<SpaceBlock *>(b);
}
inline const SpaceBlock *qqspcblk(const CoreBlock *b) noexcept {
    return static_cast<const SpaceBlock *>(b);
}
