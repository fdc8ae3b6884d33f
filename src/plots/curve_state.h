// State of the curves: interpolation, symbols, the attribute cycles that
// change colour, line style and symbol from curve to curve, and the record
// of curve attributes that a legend repeats.
#pragma once

enum { QQ_NSYMB = 24 };  // symbols of the table, 0 to 23
enum { QQ_NLEG = 80 };   // legend lines and curve records

// Interpolations of polcrv, in the order of its keywords.
enum { CRV_LINE, CRV_STEP, CRV_BARS, CRV_SPLI, CRV_PSPL, CRV_STEM, CRV_STAI, CRV_FBAR, CRV_CURV };

struct CurveState {
    int polcrv;           // interpolation, CRV_LINE ...
    double barwth;        // bar width factor of BARS and FBAR; negative: plot units
    int bartyp;           // bar type: 0 VERT, 1 HORI, 2 3DVE, 3 3DHO (error bars: VERT or not)
    int splgrd;           // spline degree, 2 to 10
    int splnpt;           // spline points, 5 to 30000
    int marker;           // symbol number, -1 none
    int incmrk;           // symbol interval: 0 none, > 0 with line, < 0 without
    int hsymbl;           // symbol size in plot coordinates
    double symrot;        // symbol rotation in degrees
    int mrkclr;           // symbol colour, -1 the curve's colour
    double *usrx, *usry;  // the user symbol's points (owned), in -1..1
    int usrn;             // their count, 0 without a user symbol
    int usrsym;           // its number
    int usrfill;          // 1 filled
    int thkcrv;           // number of parallel passes
    int chncrv;           // 0 NONE, 1 COLO, 2 LINE, 3 BOTH
    int inccrv;           // curves per change
    int gapon[3];         // gap limits on, for X, Y, Z
    double gaplim[3];     // the limits in user units
    // Attribute state: moved by chnatt, reset by resatt.
    int cycpos;   // cycle position 1 to 30
    int ncrv;     // curve counter: the legend entry of the next record
    int nchg;     // curves since the last change
    int legpend;  // 1 while a legend entry is pending
    int nshd;     // shade counter of shdcrv
    int shdarea;  // 1 after a shdcrv, cleared by curve
};

// One legend entry: what a curve (or shdcrv, or legpat) drew with.
struct LegendRecord {
    int ltyp;  // line style 0 to 7, 8 for an own pattern, -1 no line
    int ndsh;  // elements of the dash pattern, alternating dash, gap
    int dsh[10];
    int symb;   // symbol, -1 none
    int thick;  // thkcrv
    int penw;   // pen width
    int colour;
    int mcolour;  // marker colour, -1 the colour
    int pattern;  // shading pattern, -1 for a curve
};

struct LegendState {
    int init;          // 1 after the first legini
    int nlin, nmaxln;  // lines and their length
    int autopos;       // 1 until legpos
    int posx, posy;    // legpos, plot coordinates
    char title[81];
    int kind;      // 0 VERT, 1 HORI, 2 TABL
    int tblcols;   // columns of TABL
    int tblorder;  // 0 VERT, 1 HORI
    int nsel;      // legsel count, -1 all lines
    int sel[30];
    int ownpat;           // 1 after legpat
    char flags[QQ_NLEG];  // '1' for a line set by legpat
    int maxw, maxh;       // the largest box met by leglin
    int contw;            // content width found by nxlegn
    int titwide;          // the title is wider than the content
    double patt, marg, line, symb, hspa, dist;
    int bgd;      // background colour, -1 none
    int clrflag;  // legclr
    int mix;      // mixleg
    int nrec;     // highest record written
    LegendRecord rec[QQ_NLEG];
    int shield;  // identifier of the registered legend shield, 0 none
};
