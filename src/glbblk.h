// glbblk: the whole state of the library for one thread, the record of the
// topmost layer.  The core allocates it by the size that src/library.cpp
// hands down and knows only its own part of it (core/core_block.h); the
// layers in between see theirs through the records they derive.
#pragma once

#include "maps/map_block.h"

struct glbblk : MapBlock {};

inline glbblk *qqglbblk(CoreBlock *b) noexcept {
    return static_cast<glbblk *>(b);
}
