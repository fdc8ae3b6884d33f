// State of the map projections: the settings of projct and its kin, and
// what grafmp derives from the axis limits for the map in force.
//
// Angles are degrees where the user gives them, radians where a formula
// takes them; plot coordinates as everywhere (y grows downward).
#pragma once

// User projection: replaces a longitude and latitude by plot units
// relative to the lower left corner of the axis system.
typedef void (*MapUserFn)(double *x, double *y);

struct MapState {
    // Settings.
    int proj;           // projection code (0 CYLI ... 100 MYPR)
    int crvmode;        // 0 STRA, 1 INTE, 2 GREA
    int latlab;         // 0 NONE, 1 LEFT, 2 RIGH, 3 BOTH
    int xfit;           // 0 STAN, 1 AUTO
    int world;          // 0 COAS, 1 BORD, 2 BOTH
    double plon, plat;  // centre of azimuthal maps given by mappol, degrees
    int refset;         // 1 after mapref
    double ref[2];      // reference latitudes of mapref, degrees
    double sph;         // sphere limit D, radians
    MapUserFn user;     // the function of setcbk

    // The map in force, from grafmp to endgrf.
    int code;               // projection code the map was opened with
    int own;                // the map has its own outline in place of axes
    int hemi;               // azimuthal map of a hemisphere (the clip circle)
    int south;              // conic map of the southern hemisphere
    int conic;              // 0 constants not made, 1 one reference, 2 two
    double xa, xe, ya, ye;  // axis limits
    double g;               // mid longitude
    double lon0, lat0;      // centre of an azimuthal map, degrees
    double s, ox, oy;       // scale and offsets of the formulas
    double rm;              // mean radius of a conic map
    double c1, c2;          // reference colatitudes, radians
    double n, r0, c0, na, ka, k, m, h, nc, rc, nf, kf;  // conic constants
    double clipx, clipy, clipr;                         // clip circle (with the page shift)
    double penlon, penlat;                              // last pen point
};
