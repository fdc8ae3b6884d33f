// The block as contours and colour plots see it.
//
// Each layer's record derives from the one below, so a layer reaches the
// state of every layer beneath it and none above; the whole glbblk is
// composed at the library's top.  A routine of this layer turns the block
// that the guard gives it into this record by qqfldblk, the layer's one
// accessor.  Plain data only: the block is allocated zero-filled.
#pragma once

#include "fields/colour_state.h"
#include "fields/contour_state.h"
#include "plots/plot_block.h"

struct FieldBlock : PlotBlock {
    ContourState con;     // contour labelling and the contour pen
    ColourPlotState cpl;  // colour matrix plots: painting mode, getmat spreading
};

inline FieldBlock *qqfldblk(CoreBlock *b) noexcept {
    return static_cast<FieldBlock *>(b);
}
inline const FieldBlock *qqfldblk(const CoreBlock *b) noexcept {
    return static_cast<const FieldBlock *>(b);
}
