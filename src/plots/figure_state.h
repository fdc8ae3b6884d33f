// State of the geometric figures: the one setting that outlives a call.
#pragma once

struct FigureState {
    double crcstp;  // circle step of the arc engine, plot coordinates
};
