// State of the shields: regions of the page in which lines are not drawn.
#pragma once

enum { QQ_SHLWORDS = 1000, QQ_SHLMAX = 200, QQ_SHLGRID = 32, QQ_SHLMASK = 4 };

// A visible region decoded for the segment test, with its bounding box.
struct ShieldRegion {
    int type;        // 1 rect, 2 turned rect, 3 circle, 4 ellipse, 5 pie, 6 polygon
    int off;         // first word of the record in the store
    double bx0, by0, bx1, by1;
    double v[5];     // the values of the record as doubles (angles in radians)
    double c, s;     // cosine and sine of the angle of types 2 and 4
};

struct ShieldState {
    short store[QQ_SHLWORDS];  // records packed one after the other
    int nused;                 // words used
    int nreg;                  // records in the store
    int lastid;                // identifier of the newest record
    int nown;                  // records of kind 0
    int kind;                  // kind of a new record, 0 outside automatic registration
    int autofl[5];             // MESS, SYMB, BARS, PIE, LEGE
    int surf;                  // shlsur
    // The visible regions decoded, rebuilt whenever the store changes.
    int nvis;
    ShieldRegion vis[QQ_SHLMAX];
    double ux0, uy0, ux1, uy1;  // bounding box of all visible regions
    // A uniform grid over that box: each cell has a bit for every visible
    // region whose bounding box touches it, so that a segment looks only
    // at the regions near it.
    double gsx, gsy;            // cells per plot unit
    unsigned long long cell[QQ_SHLGRID][QQ_SHLGRID][QQ_SHLMASK];
};
