// State of the geometric figures: the one setting that outlives a call.
#pragma once

struct PlotBlock;

struct FigureState {
    double crcstp;      // circle step of the arc engine, plot coordinates
    double penx, peny;  // where rlstrt or rlconn left the pen, plot coordinates
    // One arrow of a vector code in plot coordinates (after the page flip),
    // set by the layer of the vector fields when it is there; the pie's
    // leaders fall back on a plain line without it.
    void (*arrow)(PlotBlock *b, double x1, double y1, double x2, double y2, int ivec);
};
