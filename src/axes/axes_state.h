// State of the axis systems: the per-axis settings (index 0 X, 1 Y, 2 Z),
// the drawing settings of the sides, titles and names, and the scaling
// record that graf writes and every plotting routine reads.
//
// Lengths are plot coordinates.  Texts are plain zero-terminated bytes.
#pragma once

struct AxesBlock;

enum { QQ_NMYLAB = 100, QQ_MYLABLEN = 32, QQ_NAMELEN = 132 };

// The scaling record: written by graf and its kin, read by the
// conversions of axes/axes.h.
struct ScaleRecord {
    int type;               // 0 rectangular, 1 polar, 2 map, 3 3-D, 4 complex chart
    double a[3], e[3];      // lower and upper limit (exponents on a log axis)
    double orl[3], stp[3];  // first label and label step
    double xmin, xmax;      // X user range, smaller and larger limit
    double ymin, ymax;      // Y user range
    double xfac, yfac;      // (length - 1) / (e - a)
    double xorg, yorg;      // lower left corner of the system, as doubles
    int nxa, nya;           // lower left corner used by the system
    int nxl, nyl;           // axis lengths used by the system
    int log[3];             // scaling type of each axis at graf
};

struct AxesState {
    // Per-axis settings of the scaling.
    int nlen[3];            // axis lengths (axslen); Z used by 3-D systems
    int scl[3];             // 0 linear, 1 logarithmic
    int lab[3];             // label type, index into the labels list
    int labcls[3];          // 0 numeric, 1 time, 2 map, 3 date
    int logfrm[3];          // 1 powers of ten, 2 plain values, 3 exponent alone
    int expflg[3];          // exponent flag of the label type
    int ndig[3];            // label digits; -2 automatic
    int autdig[3];          // 1 when digits are automatic
    int ntic[3];            // tick intervals between two labels
    int autscl[3];          // 1 when setscl asked for automatic scaling
    double autmin[3], autmax[3];  // data range of setscl
    int labori[3];          // labtyp: 0 HORI, 1 VERT
    int logtic;             // 0 AUTO, 1 FULL
    int neglg;              // 1 when neglog gave a substitute exponent
    double neglv;           // that exponent
    // Placement.
    int nxa, nya;           // lower left corner (axspos)
    int nxorg, nyorg;       // origin of a crossed system (axsorg)
    int orgflg;             // 1 after axsorg
    int nxres, nyres;       // size of a colour rectangle (setres)
    int resmod;             // autres mode, 0 off
    int autrx, autry;       // matrix sizes given to autres
    int bgclr;              // axsbgd colour, -1 none
    // Drawing of the sides.
    int grfsid[4];          // setgrf: element level of lower, left, upper, right
    int noline[3];          // 1 when the axis line is off
    int ticmaj, ticmin;     // ticlen
    int ticpos[3];          // 0 LABE, 1 REVE, 2 CENT
    int labdis[3];          // label distance
    int namdis[3];          // name distance
    char name[3][QQ_NAMELEN + 1];
    int hname;              // name height
    int namjus[3];          // 0 CENT, 1 LEFT, 2 RIGH
    int labpos[3];          // 0 TICK, 1 CENT, 2 SHIF
    int labjus[3];          // 0 AUTO, 1 LEFT, 2 RIGH, 3 OUTW, 4 INWA
    int axends[3];          // 0 NONE ... 6 LAST
    char mylab[3][QQ_NMYLAB][QQ_MYLABLEN + 1];
    int nmylab[3];          // highest index given to mylab
    int rgtlab;             // right-justified own labels
    int rvynam;             // name of a right Y axis reads upward
    int axclr[3][4];        // colours of line, ticks, labels, name; -1 current
    int frmthk;             // frame thickness
    int frmcol;             // frame colour, -1 current
    int axtyp;              // axstyp: 0 RECT, 1 CROS
    int grtyp;              // axstyp: 0 IMPE, 1 ADMI (complex chart)
    int ax2;                // ax2grf
    int nogrf;              // nograf
    int grace;              // margin of the clip rectangle
    int center;             // 1 after center, until the page ends
    int centdone;           // 1 once a graf on this page was centred
    int centpage;           // the page it was centred on
    char title[4][QQ_NAMELEN + 1];
    int titul[4];           // 1 when the line is underlined
    int htit;               // title height, 0 the character height
    int titjus;             // 0 CENT, 1 LEFT, 2 RIGH
    int titpos;             // 0 ABOV, 1 BELO
    int vkytit;             // title shift
    int vkxbar, vkybar, widbar;  // colour-bar distances and width
    int spcbar;             // distance of the bar of graf3 from the axis system
    int frmbar;             // frame thickness of that bar, 0 none
    int posbar;             // 0 FIXE, 1 LEFT, 2 RIGH, 3 BOTT, 4 TOP
    int jusbar;             // 0 STAR, 1 CENT, 2 END
    int nobar;              // 1 after nobar: graf3 draws no bar
    // The colour system of graf3, from graf3 to endgrf.
    int bar3;               // 1 while a graf3 system stands
    int bar3top;            // the room its bar takes above the system (title offset)
    int expzlb;             // 0 NONE, 1 FIRS, 2 BOTH
    int labclr[3];          // label colours of bars, pies, contours
    int xlab[3];            // label kinds of bars, pies, contours
    int xdig[5];            // digits of bars, contours, pie percent, pie data, dates
    int condis;             // contour label distance
    int xpos[2];            // label positions of bars and pies
    int xori[3];            // label orientation of pies, polar, contours
    // What the axis system keeps for itself.
    ScaleRecord rec;
    int legx, legy;         // right and top edges of the system for the legend
    int ncx, ncy;           // centre of the system
    int crsx, crsy;         // page position of the origin of a crossed system
    int savclr;             // colour saved by graf, restored by endgrf
    int savlev;             // 1 while graf's attributes are saved
    // The limits that user coordinates are checked against (qqchkd),
    // set by the axis systems and cleared by endgrf.
    int chkaxis;            // 0 no limits, 1 axis scaling, 2 grafr, 3 polar
    double chkx[2], chky[2], chkz[2];  // lower and upper limits
    // What higher layers end at endgrf (curve counters, legends); each
    // registers itself in its share of the session defaults.
    void (*endhook[4])(AxesBlock *b);
    // The frame of boxes drawn by the fill layer (box at x, y of size w by
    // h, thickness t, angle, colour -1 current), so that an axis system's
    // frame steps by device pixels as every other frame does.
    void (*framefn)(AxesBlock *b, int x, int y, int w, int h, int t, double angle, int colour);
    // The conversion of a map system (type 2), set by the maps at their
    // share of the session defaults; without it a map converts linearly.
    void (*mappos)(AxesBlock *b, double x, double y, double *xp, double *yp);
};

// The defaults of a session for the axis settings (used by qqinit and by
// the reset rows).
void qqaxdefaults(AxesBlock *b, AxesState *out) noexcept;
