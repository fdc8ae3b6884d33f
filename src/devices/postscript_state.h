// State of the PostScript driver (devices 501 to 504).
//
// The path buffer belongs to one session: it is allocated when the file
// is opened and freed when it is closed.  The psmode settings are level-0
// options and outlive the session.
#pragma once

enum { QQ_PSPATH = 100 };  // points of one written path at most

struct PsState {
    int *pathx, *pathy;      // collected device points: one block of 200 ints
    int npath;               // points collected, 0 to 100
    int penx, peny;          // last point of the path last ended
    unsigned char pssing;    // psmode: 0 MULT, 1 SING
    int psmd;                // psmode: 0 NONE, 1 GREE, 2 ITAL, 3 BOTH (fonts)
    unsigned char land;      // landscape plot on portrait paper
    unsigned char r, g, bl;  // colour last written
    int cap, join;           // setlinecap and setlinejoin last written
    double miter;            // lnmlt value last written
    unsigned char clipped;   // a clip window other than the page is in force
    char *psinfo;            // psmeta INFO text for the header, owned here
};
