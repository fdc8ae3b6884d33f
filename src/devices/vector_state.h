// State of the three text drivers SVG, IPE and Java (devices 801, 802, 701).
#pragma once

enum { QQ_VPOINTS = 100 };  // points of one SVG or IPE element at most

struct VectorState {
    double *ptx, *pty;       // polyline being collected, in device units;
                             // one allocation of 2 x 100 doubles at open
    int npts;                // points collected, 0 to 100
    double penx, peny;       // last point of the polyline written last
    unsigned char r, g, bl;  // colour of the next group, path or text
    double strokew;          // SVG stroke-width, IPE pen
    unsigned char group;     // SVG: 0 no group, 1 stroke group, 2 text group
    int groupfont;           // SVG: font index of the open text group
    int groupsize;           // SVG: its font-size
    int jx, jy;              // Java: last pixel position
    int jr, jg, jb;          // Java: colour last written by setColor
};
