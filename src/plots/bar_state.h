// State of the bar graphs: the settings of bars, fbars and bars3d, and the
// counters that run across the calls of one axis system.
//
// The bar type and the width factor live with the curves (CurveState), which
// share them with error bars and the BARS interpolation.  Label kind,
// position, digits and colour of bars live with the axis label settings.
#pragma once

struct BarState {
    int form;      // financial form: 0 TICK, 1 CAND
    int mode;      // width measured 0 FIXE (first two bars), 1 VARI (each bar)
    int ngrp;      // bars sharing one position, 1 to 30
    double gap;    // space between them: > 0 share of one bar, else plot units
    int grppos;    // calls of bars in the running group
    int tickx;     // 1: positions from the ticks of the position axis
    int axisy;     // 1: bar starts from the lower limit of the value axis
    int chn;       // chnbar: 0 NONE, 1 COLO, 2 PATT, 3 BOTH
    int clr[3];    // colours of the front, side and top faces, -1 current
    int border;    // border colour, -1 none on flat bars
    double depth;  // depth of the 3-D look, below 0 the width of a bar
    double angle;  // its angle in degrees
    int nsets;     // bar sets drawn in this axis system
};
