// The block as text drawing sees it: the devices' block, fonts and numbers.
//
// Each layer's record derives from the one below, so a layer reaches the
// state of every layer beneath it and none above; the whole glbblk is
// composed at the library's top.  A routine of this layer turns the block
// that the guard gives it into this record by qqtxtblk, the layer's one
// accessor.  Plain data only: the block is allocated zero-filled.
#pragma once

#include "devices/device_block.h"
#include "text/number_state.h"
#include "text/text_state.h"

struct TextBlock : DeviceBlock {
    TextState txt;    // fonts, text settings, the string being drawn
    NumberState num;  // numbers as text
};

inline TextBlock *qqtxtblk(CoreBlock *b) noexcept {
    return static_cast<TextBlock *>(b);
}
inline const TextBlock *qqtxtblk(const CoreBlock *b) noexcept {
    return static_cast<const TextBlock *>(b);
}
