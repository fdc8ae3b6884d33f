// State of the device layer: the polyline buffer, the dash walker, the
// clip window, the line style and the driver of the session.
#pragma once

struct DeviceBlock;
struct DriverOps;
struct QQHwChar;

enum { QQ_NPOL = 100 };  // points the polyline buffer holds

struct DeviceState {
    const DriverOps *drv;      // driver of the session's device family
    double polx[QQ_NPOL];      // polyline buffer, absolute plot positions
    double poly[QQ_NPOL];
    int npol;                  // points in the buffer
    unsigned char inflsh;      // 1 while qqflsh runs
    double curx, cury;         // pen position with the origin shift
    int nxsh, nysh;            // origin shift (origin)
    int clpx1, clpy1, clpx2, clpy2;  // clip window, inclusive
    int savclp[4];             // clip window saved by qqclip(0)
    unsigned char clpflg;      // 0 none, 1 clpwin, 2 clpbor("AXIS")
    unsigned char clpmd;       // clpmod: 0 AUTO, 1 NONE, 2 CIRC, 3 RECT
    int clpcir;                // 1 while the clip region is a circle
    double ccx, ccy, ccr;      // the clip circle
    // The region qqclip(0) narrows to, handed over by the axis systems
    // (qqaxclip), and what a map asks of the clipper (qqmapclip).
    int axclp[4];              // its rectangle: left, top, right, bottom, inclusive
    double axccx, axccy, axccr;  // its circle
    unsigned char axround;     // 0 rectangle, 1 circle always, 2 circle under clpmod AUTO
    unsigned char axgrace;     // 1 when the rectangle has grace's default margin of -1
    unsigned char clpwiden;    // 1 while qqclip(0) hands such a rectangle to the device
    unsigned char clpjump;     // a segment across the window in X is a jump: dropped
    unsigned char clpnochord;  // a segment with both ends outside the circle: nothing
    unsigned char softfill;    // fills take the software path, never the driver's
    int lnwid;                 // line width; negative when the device draws it
    int lnjn;                  // lnjoin: 0 SHAR, 1 ROUN, 2 TRUN
    int lncp;                  // lncap: 0 CUT, 1 ROUN, 2 LONG
    double lnml;               // miter limit
    unsigned char hwlin, hwshd;  // hardware line width and fill
    double lnoff;              // parallel offset of a line
    int offfirst;              // 1 until the first offset segment starts the line
    int dshn;                  // elements of the dash pattern, 1 is solid
    int dshl[10];              // their lengths in plot coordinates
    double dsrem;              // rest of the current element
    int dspen;                 // 0 drawing, 1 in a gap
    int dsidx;                 // current element, from 1
    int clridx, clrn;          // colour pattern of linclr: index from 1, count
    int clrtab[10];
    int pl3on;                 // a 3-D plane of grfini is the drawing surface
    int trfon;                 // the user transformation is on
    double trf[6];             // a, b, c for X and d, e, f for Y
    int lnsmooth;              // linmod SMOO
    int lincycl[30];           // line style cycle of lincyc
    int lastop;                // last operation a metafile driver wrote, 0 none
    int fbox[4];               // filbox: corner (Y down) and size for incfil
    unsigned char fboxset;     // 1 once filbox gave a box
    unsigned char fclrnone;    // filclr NONE: included colours are ignored
    int fwin[4];               // filwin: the part of an image used, in pixels
    unsigned char fwinset;     // 1 once filwin gave a window
    // Hooks of later stages: a position mapped into the 3-D plane, and a
    // segment test of hidden lines or shields.  Null when not in use.
    void (*planemap)(DeviceBlock *b, double *x, double *y);
    int (*segtest)(DeviceBlock *b, double x0, double y0, double x1, double y1);
    // Strokes a hardware character that the driver refused (the text
    // subsystem sets it at kolini); null draws nothing.
    void (*strokechar)(DeviceBlock *b, const QQHwChar *c);
    // The polygon fill of the plots with the current pattern (qqfillpoly),
    // set when a block is made: the layer hands fills upward through it.
    void (*fillfn)(DeviceBlock *b, double *x, double *y, int n);
    // The frame of the frame thickness round a box (upper left corner x,
    // y, w by h, plot coordinates), drawn after an included file; set by the
    // plots with the fill, null draws nothing.
    void (*boxframe)(DeviceBlock *b, int x, int y, int w, int h);
    // The hatching of several polygons together (qqhatchpolys).
    int (*hatchfn)(DeviceBlock *b, const double *const *x, const double *const *y, const int *n,
                   int npoly, double d, int maxcross, void (*move)(DeviceBlock *, double, double),
                   void (*draw)(DeviceBlock *, double, double));
};
