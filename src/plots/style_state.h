// State of the line styles and the fill patterns of the two-dimensional
// plots.  The dash pattern itself, the width, caps and joins live with the
// device layer, which walks them; this record holds what the plot routines
// choose from: the style number, the shading pattern and its derived
// values, and the switches of the polygon fill.
#pragma once

struct StyleState {
    int ltyp;          // line style number of lintyp, 0 to 7
    int patnum;        // pattern number as shdpat or mypat left it
    int patang;        // hatch angle in degrees, 0 to 179
    int pattyp;        // pattern type 0 to 7 (0 no fill)
    int patden;        // density 0 to 9
    int patcrs;        // 1: a second sweep at right angles
    double patdst;     // line distance in plot coordinates
    int bunrun;        // lines drawn in one bundle (types 2 to 4), 0 none
    int bungap;        // lines left out between bundles
    double shdfct;     // scale of the line distance (shdfac)
    int outline;       // 1: areaf draws the polygon's outline (noarln 0)
    int logofill;      // 0 after nofill
    int patcycl[30];   // pattern cycle of the curve passes (patcyc)
    int hatching;      // 1 while a sweep runs
};
