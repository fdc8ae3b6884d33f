// State of the raster canvas: the image memory of the raster formats, the
// image mode of the pixel routines and the transparency layer.
//
// qqcanvas is the record that the primitives draw on (raster/primitives.h);
// it carries everything they need (planes, clip, pen, colour, the colour
// table), so they take the record and not the whole block.  Its planes are
// allocated at kolini on the raster devices and freed at kolfin; the record
// itself lives as long as the block.
#pragma once

struct RasterBlock;

enum { QQ_CPTS = 100 };  // points that the canvas collects before drawing

struct qqcanvas {
    unsigned char *pix;      // the plane in use: pixbase, or pixtpr with the layer open
    unsigned char *pixbase;  // the base plane
    unsigned char *pixtpr;   // the transparency layer, made when first needed
    int cw, ch;              // size in pixels
    int rowb;                // bytes per row: cw or 4 * cw, no padding
    unsigned char rgbcnv;    // 1: four bytes a pixel, red, green, blue, alpha
    unsigned char revcnv;    // 1: white background (bgmode 2)
    // The inclusive clip rectangle in pixels, and whether lines must test
    // it (0 when the caller guarantees points inside).
    int clipx0, clipy0, clipx1, clipy1;
    unsigned char clipon;
    int lw;        // line width in pixels
    int lcap;      // 0 CUT, 1 ROUN, 2 LONG
    int ljoin;     // 0 SHAR, 1 ROUN, 2 TRUN
    double miter;  // miter limit of sharp joins, in half-widths
    // The transparent colour of the pixel routines: an index (-1 none)
    // and its red, green, blue.
    int tcol;
    unsigned char tr, tg, tb;
    unsigned char tabr[256], tabg[256], tabb[256];  // the colour table, split
    unsigned char tabkind;                          // its kind (vltkind)
    int colval;                                     // colour value last set
    unsigned char colidx, colr, colg, colb;         // its index and red, green, blue
    unsigned char alpha;                            // alpha of every RGB pixel drawn
    int ptx[QQ_CPTS], pty[QQ_CPTS];                 // collected polyline
    int ptn;                                        // points collected

    unsigned char ptmove;    // 1: the only point collected comes from a move
    unsigned char smooth;    // 1: anti-aliased thin lines on an RGB canvas
    unsigned char tprplane;  // 1 base plane, 2 transparency layer in use
    unsigned char tprsave;   // the plane to go back to
    unsigned char tpropaq;   // 1: a background pixel composites like any other
};

// Level-0 options of the raster file formats, kept across sessions.
struct RasterOptions {
    int rasfmt;              // imgfmt: 0 IND, 1 RGB, 2 BIL
    int bmpres;              // BMP resolution in pixels per metre
    int tifres;              // TIFF resolution
    int tifunit;             // TIFF unit code: 2 inch, 3 cm
    int pngtran;             // PNG transparency
    int giftran;             // GIF transparency
    int clrmd;               // clrmod colour mode: 0 NONE, 1 FULL, 2 CONT
};

struct CanvasState {
    qqcanvas cv;
    RasterOptions ropt;     // imgfmt, bmpmod, tifmod, pngmod, gifmod
    int imgact;             // 1 between imgini and imgfin
    int imgrgb;             // imgmod: 0 IND, 1 RGB data in the pixel routines
    int imgbot;             // imgmod: 0 TOP, 1 BOT (blocks stored bottom row first)
    int imgbflg, imgbx[4];  // imgbox: place of an embedded image, plot coordinates
    int imgsflg, imgsw[2];  // imgsiz: canvas size of an embedded image
    int imgcflg, imgcx[4];  // imgclp: the rectangle that the file writers keep
    int imgtran;            // imgtpr colour, -1 none
    int tpralpha;           // tprval alpha 0 to 255
    int tprauto, tprnoop;   // tprmod NOAU/AUTO and OPAQ/NOOP
    int tprlvl;             // nesting depth of the transparency layer
    int ownsiz[2];          // wsiz of the session while image mode changes it
    unsigned char owncnv;   // 1: image mode made the canvas and frees it
    unsigned char tifwflg;  // tifwin given
    int tifwin[4];          // window of wtiff: x, y, width, height
    int tiforgx, tiforgy;   // where wtiff puts the window's first pixel
    // Set by the device layer with its first values: sends the pending
    // polyline, hands the canvas of image mode to a page format, and gives
    // the canvas the layer's pen (cap, join, miter limit, smooth lines).
    void (*flush)(RasterBlock *b);
    void (*embed)(RasterBlock *b);
    void (*pen)(RasterBlock *b);
};
