// The block as the map projections see it.
//
// Each layer's record derives from the one below, so a layer reaches the
// state of every layer beneath it and none above; the whole glbblk is
// composed at the library's top.  A routine of this layer turns the block
// that the guard gives it into this record by qqmapblk, the layer's one
// accessor.  Plain data only: the block is allocated zero-filled.
#pragma once

#include "maps/map_state.h"
#include "space/space_block.h"

struct MapBlock : SpaceBlock {
    MapState map;  // projection settings and the map in force
};

inline MapBlock *qqmapblk(CoreBlock *b) noexcept {
    return static_cast<MapBlock *>(b);
}
inline const MapBlock *qqmapblk(const CoreBlock *b) noexcept {
    return static_cast<const MapBlock *>(b);
}
