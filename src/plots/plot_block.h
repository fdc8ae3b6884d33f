// The block as the two-dimensional plots see it.
//
// Each layer's record derives from the one below, so a layer reaches the
// state of every layer beneath it and none above; the whole glbblk is
// composed at the library's top.  A routine of this layer turns the block
// that the guard gives it into this record by qqpltblk, the layer's one
// accessor.  Plain data only: the block is allocated zero-filled.
#pragma once

#include "axes/axes_block.h"
#include "plots/bar_state.h"
#include "plots/curve_state.h"
#include "plots/figure_state.h"
#include "plots/pie_state.h"
#include "plots/shield_state.h"
#include "plots/style_state.h"
#include "plots/zscale_state.h"

struct PlotBlock : AxesBlock {
    StyleState sty;   // line style number, shading pattern, fill switches
    CurveState crv;   // curves, symbols, attribute cycles
    LegendState leg;  // legend lines, layout and curve records
    ShieldState shl;  // shield regions
    BarState bar;     // bar graph settings and counters
    ZScaleState zsc;  // the z colour scale
    FigureState fig;  // the circle step of the arc engine
    PieState pie;     // pie chart settings
};

inline PlotBlock *qqpltblk(CoreBlock *b) noexcept {
    return static_cast<PlotBlock *>(b);
}
inline const PlotBlock *qqpltblk(const CoreBlock *b) noexcept {
    return static_cast<const PlotBlock *>(b);
}
