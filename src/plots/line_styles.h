// Line styles: the style table behind lintyp, and the dash pattern saved
// round a drawing of a style of its own.  The line entries themselves
// (qqline, qqpolyln) are the device layer's, in devices/device.h.
#pragma once

#include "plots/plot_block.h"

struct PlotBlock;

// Sets line style 0 to 7 by the style table (no checks): the dash lengths
// in plot coordinates and a fresh dash state.
void qqlintyp(PlotBlock *b, int ityp) noexcept;
// The dash pattern of the device layer, saved round a drawing that needs
// a style of its own (hatching, frames).
struct SavedDash {
    int ltyp, dshn, dshl[10];
    double dsrem;
    int dspen, dsidx, clridx;
};
void qqdshsave(PlotBlock *b, SavedDash *s) noexcept;
void qqdshback(PlotBlock *b, const SavedDash *s) noexcept;
