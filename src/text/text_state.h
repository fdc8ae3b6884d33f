// State of the text subsystem: the settings of strings, the sections of the
// selected font, and the working state of the string being drawn.
//
// Lengths are plot coordinates; the pen is kept in doubles with the origin
// shift included (qqmove takes positions without it).  Settings live for the
// session and are put back by kolini; the working state lives for one
// string, except the pen, from which a string at (999, 999) continues.
#pragma once

#include <cstdint>

struct TextBlock;
struct GlyphTable;

enum { QQ_NSECT = 6, QQ_NCODES = 256, QQ_NTABS = 20, QQ_TEXMAX = 20 };

// One alphabet section of the selected font.
struct TextSection {
    const short *x;          // glyph points; packed words, or the x array
    const short *y;          // equals x in the packed form, else the y array
    short packed;            // 1 packed, 0 separate
    const short *index;      // glyph records
    int32_t own;             // running sum of index words; 0: first or alias
    int32_t limit;           // highest glyph index accepted
    int32_t xdiv, ydiv;      // units of one character height
    double gap;              // spacing share of the height
    int32_t npts, nidx;      // sizes, so a walk never leaves the tables
};

struct TextState {
    // settings
    int height;              // character height
    int angle;               // text angle in degrees
    double sina, cosa;       // of the angle
    double shear;            // chaang: tangent of the slant
    double spcadd;           // chaspc: spacing addend, share of the height
    double wfac;             // chawth: width factor
    int fixon;               // fixspc on
    double fixfac;           // its factor
    double fixbase;          // base of the fixed pitch (1.4 in single precision)
    double linsp;            // linesp
    double basfac;           // setbas: exponent and index shift
    double expfac;           // setexp: exponent and index height
    int hjus, vjus;          // txtjus: 0 LEFT/TOP, 1 CENT/MIDD, 2 RIGH/BOTT
    int frmthk;              // frmess
    int bgclr;               // txtbgd, -1 none
    int mixon;               // mixalf
    char mixchr[5];          // exponent, index, reset, legend, TeX
    int basalf;              // base alphabet 1 to 6
    int shdon;               // shdcha
    double italdiv;          // italic slope divisor (3.732 in single precision)
    int font;                // font number 1, 3 to 7, 11 to 14
    TextSection sect[QQ_NSECT];
    int nsect;               // sections registered by the font routine
    int32_t idxsum;          // running sum of index words while registering
    // code sets and shifts
    int chacod;              // 0 STAN ... 7 ISO7
    int shfon;               // eushft mechanism on
    int shfset;              // eushft called in this session
    char shfchr[8];          // shift character of each language, 0 none
    int smxon;               // alphabet shifts on
    int smxalf[6];           // slot: alphabet 0 free, 1 to 6, 7 instructions
    char smxc1[6], smxc2[6];
    int texon;               // TeX mode (set by a later subsystem)
    int hwmode;              // a hardware font is selected (set by its subsystem)
    void (*hwend)(TextBlock *b);  // ends the hardware font mode, or null
    char result[16];         // text results of the getters
    int cntlab;              // 1 while a contour label is being drawn
    // working state of a string
    double penx, peny;       // pen, origin shift included
    double strx, stry;       // start of the string
    int curhgt, starthgt;    // current height and that of the string's start
    int curalf;              // current alphabet
    int curclr, startclr;    // colour
    double curwfac, curspc, curshear;  // width factor, spacing addend, shear
    int curfix;              // fixed pitch on in this string
    double curfixfac;
    double vshift, voff;     // vertical shift and offset, added together
    int cachesec;            // cached section (alphabet) or 0
    int cachehgt;            // height of the cache
    double cachewf, cachespc;  // width factor and spacing of the cache
    int cachefix;
    double xscl, yscl, gapw; // of the cached section
    int measure;             // 1: no output
    int fallback;            // previous character fell back: -1 unknown, 0, 1
    double lastgap;          // gap of the last character drawn
    double maxlen;           // measuring: the largest distance from the start
    int ncodes;
    int32_t codes[QQ_NCODES];
    // shift state of a string
    int shfact;              // an alphabet shift is active
    int shfslot;             // its slot
    int shfret;              // alphabet to return to
    char ibuf[21];           // collected instruction
    int ibufn, iletters;
    double tabs[QQ_NTABS];   // tabulators: distances from the string's start
    // Hooks of higher layers, null when not set: user coordinates of an
    // axis system to plot coordinates (rlmess), a symbol of the plot layer
    // (instruction S), a filled polygon (backgrounds, outline glyphs) and a
    // frame of thickness n round a rotated box.
    int (*userpos)(TextBlock *b, double x, double y, double *px, double *py);
    void (*symbol)(TextBlock *b, int n, double x, double y, double size, int angle);
    // The formula parser of TeX mode: runs over codes[0..ncodes) from the
    // pen, drawing unless measure is 1; returns 0, or 1 after it reported
    // an error.  It leaves the height and depth of the formula in texhgt and
    // texdep for frames.  Null: strings are read as plain text.
    int (*tex)(TextBlock *b, int measure);
    double texhgt, texdep;
    int texpass;             // 1 the run that fills the tables, 2 the one that reads them
    // TeX mode settings
    int texlim, texital, texbrac;   // limits above and below, math italics, bracket alphabet
    double texexp, texh1br, texh2br, texvbra, texwbra, texoper;
    // Geometry that the first run of a formula measures for the second,
    // kept by the running number of each construct.
    double texlimw[2][QQ_TEXMAX];    // upper and lower limit widths
    double texfrac[5][QQ_TEXMAX];    // numerator, denominator width, numerator depth,
                                     // denominator height, bar
    double texbrk[2][QQ_TEXMAX];     // top and bottom of bracket contents
    // Set while texts are shielded: receives the box of each string drawn
    // (four corners in plot coordinates, origin shift not added), after the
    // string, so that the text itself is not cut.
    void (*shield)(TextBlock *b, const double *bx, const double *by);
    // The frame primitive of the fill layer (null when not linked): t
    // outlines round the box with upper left corner (x, y), w by h plot
    // coordinates, turned by angle degrees about that corner.
    void (*frame)(TextBlock *b, int x, int y, int w, int h, int t, double angle);
    // A polygon filled in the solid pattern of the fill layer, the pattern
    // coming back afterwards (null when not linked).
    void (*solidfill)(TextBlock *b, const double *x, const double *y, int n);
};
