// State of the colour plots: how a value is painted (rectangles, symbols,
// pixels), the background switch, the 3-D symbol and tube sizes and the
// spreading of scattered points by getmat.
#pragma once

struct FieldBlock;

struct ColourPlotState {
    int nobgd;             // 1 after nobgd: cells of the darkest colour stay unpainted
    int crvmode;           // shdmod(.., "CURV"): 0 RECT, 1 SYMB, 2 PIXE
    unsigned char tube3d;  // shdmod("3D", "CURV"): tube lines
    unsigned char sym3d;   // shdmod("3D", "SYMB"): 3-D symbols
    double hsym3d;         // size of 3-D symbols
    double thkc3d;         // radius of 3-D tubes
    int cubemode;          // 0 by symbol size, 1 given edges, 2 by grid
    double cube[3];        // edges of setres3d
    int grid3[3];          // grid of autres3d
    int mdfwin[2];         // window of getmat in grid steps
    double mdfpow;         // distance power of getmat
    // The surface settings that the colour plots share with the shaded
    // surfaces; the 3-D subsystem keeps them up to date.
    int mesh;    // 0 OFF, 1 ON, 2 ONLY, 3 LINE, 4 POIN
    int mshclr;  // mesh colour, -1 the current colour
    int shade;   // 0 FLAT, 1 SMOO
    // Set by the 3-D space with its session defaults: while a 3-D axis
    // system is open, gives the ends of its X and Y axes (exponents on a
    // logarithmic axis) and their log flags and returns 1; else 0.
    int (*xyends3d)(const FieldBlock *b, double a[2], double e[2], int log[2]);
};
