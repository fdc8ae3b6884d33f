// The z colour scale: the range that turns a value into a colour number of
// the colour range (colran).  One record serves the shaded surfaces, the
// colour matrix plots, contour shading and coloured symbols.
#pragma once

struct ZScaleState {
    int uset;           // 1 after zscale: the user's range wins over a routine's own
    double ua, ue;      // that range
    double zmin, zmax;  // the scale in axis values (exponents on a log z axis)
    double lo, hi;      // the same limits as user values, lo not above hi
    double k;           // colours per unit of z; 0 for an empty range
    int logz;           // 1 when the z axis is logarithmic
};
