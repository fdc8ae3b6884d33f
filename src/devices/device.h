// The device layer: the line interface that all drawing ends in, and the
// operations that a driver supplies.
//
// Drawing routines call qqmove and qqdraw with double plot coordinates (the
// page-origin flip already applied).  Points collect in a buffer of 100;
// qqflsh clips them and hands them to the driver through qqplot.  Every
// change of state that a driver must see in order (colour, width, clip,
// fill, image, text) flushes first, so a driver sees one ordered stream.
#pragma once

#include "devices/device_block.h"

struct DeviceBlock;

// One character of a hardware font on its way to a driver.  The text layer
// has done the layout: the pen position, the advance width and the cell of
// fixed-pitch text; the driver places the character on the baseline and
// writes it in its own form.
struct QQHwChar {
    int code;          // internal code: below 127 as ISO-8859-1, 127 to 186
                       // the accented letters, above 186 a blank
    double x, y;       // pen position in plot coordinates, origin shift added
    double width;      // advance width in plot coordinates
    double pitch;      // cell width of fixed-pitch text, 0 when proportional
    double shift;      // sum of the baseline shifts (indices, exponents)
    double height;     // text height in plot coordinates
    int angle;         // text angle in degrees, counter-clockwise
    int font;          // PostScript font index 0 to 34
    double capheight;  // capital height of that font, in 1/1000 of the size
    double wfac;       // width factor of the characters (chawth); 0 counts as 1
};

// Operation codes of qqplot and a driver's line operation.
enum { QQ_DRAW = 2, QQ_MOVE = 3, QQ_ENDPATH = 9 };

// A driver: one set of operations of the same shape for each device family,
// filled by member name (designated initialisers) in the family's
// descriptor (core/family.h), so that a reordered struct cannot connect the
// wrong function.  Positions arrive in double plot coordinates; each driver
// maps them to its own device units (see qqmapdown and qqmapup).  A null
// operation is one the family does not offer: the layer emulates it where
// it can (widths, clipping, fills, markers, characters) and skips it
// otherwise.  A driver's own state is created by open and freed by close.
struct DriverOps {
    // Computes devscl, sets colbits and writes the header.  The plot file
    // is open unless the family opens its own.  Returns 0, or non-zero after
    // it has reported a warning: kolini then fails.
    int (*open)(DeviceBlock *b);
    // One position: QQ_MOVE starts a path, QQ_DRAW extends it (nvec has
    // been raised), QQ_ENDPATH writes what the driver buffers.
    void (*line)(DeviceBlock *b, double x, double y, int op);
    // A piece of n points (n at least 2) that lies wholly inside the clip
    // region with no hidden-line or shield test at work: the first point a
    // move, the others draws, exactly as line would get them one by one
    // (nvec has been raised for the draws).  Optional: a driver that offers
    // it saves the layer's work per point on long curves.
    void (*polyline)(DeviceBlock *b, const double *x, const double *y, int n);
    // The colour: the value as the caller gave it (raster and screen take
    // it as it stands), and its red, green, blue 0 to 255 and index as the
    // layer decoded them for the device's colour depth.
    void (*colour)(DeviceBlock *b, int value, int r, int g, int bl, int index);
    // The colour table changed (screen and raster).
    void (*colour_table)(DeviceBlock *b);
    // Line width of n plot coordinates (penwid gives fractions); n = 0
    // asks for the device's thinnest line.  Returns 1 when the device
    // draws the width itself, so that the layer does not emulate it (lnwid
    // becomes -n); 0 or 2 leave lnwid at n (2: the device took the width
    // but the setting stays as given).
    int (*width)(DeviceBlock *b, double n, int fractional);
    // Line cap, join or miter limit changed.
    void (*linestyle)(DeviceBlock *b);
    // Clip rectangle in plot coordinates; reset 1 means the whole page.
    void (*clip)(DeviceBlock *b, int x1, int y1, int x2, int y2, int reset);
    // Filled polygon in plot coordinates, the origin shift added as to
    // every position a driver receives; returns 0 when the layer must fall
    // back to hatching.
    int (*fill_polygon)(DeviceBlock *b, const double *x, const double *y, int n);
    // Filled rectangle, corners in plot coordinates, with a colour value.
    void (*fill_rect)(DeviceBlock *b, int x1, int y1, int x2, int y2, int colour);
    void (*new_page)(DeviceBlock *b);
    void (*clear)(DeviceBlock *b);
    void (*update)(DeviceBlock *b);
    // Writes the trailer and frees the driver's buffers.  Returns 1 when a
    // file was written, 0 when not (screen, memory output).
    int (*close)(DeviceBlock *b);
    // A marker of kind 0 to 23 centred at a plot position, its size in
    // plot coordinates, in the current colour; returns 0 when the layer
    // must draw it as a figure of lines.
    int (*marker)(DeviceBlock *b, int kind, double x, double y, double size);
    // Takes the canvas of image mode at imgfin (formats that embed it).
    void (*image)(DeviceBlock *b);
    // One character of a hardware font; returns 0 when the layer must
    // stroke it instead.
    int (*character)(DeviceBlock *b, const QQHwChar *c);
    // The hardware font or its height changed: a driver that carries the
    // font in its open state ends that state.
    void (*textstyle)(DeviceBlock *b);
    // A filled ring sector: centre and radii (r1 at most r2) in plot
    // coordinates, the angles from a1 to a2 in degrees counter-clockwise,
    // a colour value.  Returns 0 when the layer must fill it as a polygon.
    int (*sector)(DeviceBlock *b, double x, double y, double r1, double r2, double a1, double a2,
                  int colour);
    // A filled triangle in the current colour, corners in plot
    // coordinates.  Returns 0 when the layer must fill it as a polygon.
    int (*triangle)(DeviceBlock *b, const double *x, const double *y);
};

void qqmove(DeviceBlock *b, double x, double y) noexcept;
void qqdraw(DeviceBlock *b, double x, double y) noexcept;
void qqrmov(DeviceBlock *b, double x, double y) noexcept;
void qqrdrw(DeviceBlock *b, double x, double y) noexcept;
void qqflsh(DeviceBlock *b) noexcept;
void qqplot(DeviceBlock *b, double x, double y, int op) noexcept;
// Sends a segment that the clipper and the hidden-line test passed on
// through the shield test to the driver: a move to its start first when
// asked.  The horizon of hidden-line surfaces draws its pieces by it.
void qqshout(DeviceBlock *b, double x0, double y0, double x1, double y1, bool move) noexcept;
void qqsetc(DeviceBlock *b, int value) noexcept;
void qqclip(DeviceBlock *b, int back) noexcept;
int qqin(DeviceBlock *b, double x, double y) noexcept;
// Clears the clip border and makes the whole page the clip window.
void qqclippage(DeviceBlock *b) noexcept;
// Sends the picture drawn so far out (sendbf): the pending polyline, then
// the driver's update.
void qqsendbuf(DeviceBlock *b) noexcept;
// Sends the clip window to a driver that clips itself.
void qqclipdev(DeviceBlock *b, int narrowing) noexcept;
// The region qqclip(0) narrows to: a rectangle (left, top, right, bottom,
// inclusive, absolute plot coordinates) and a circle (centre x, y and
// radius).  round 0 clips to the rectangle, 1 to the circle whatever
// clpmod says (a polar system), 2 to the circle under clpmod AUTO (a map
// in a round frame).  grace is the margin the rectangle was made with: at
// its default of -1 a pixel device gets the rectangle widened by one plot
// coordinate and narrowed by one pixel.  The axis systems call it; the
// layer keeps no other trace of them.
void qqaxclip(DeviceBlock *b, const int rect[4], const double circ[3], int round, int grace) noexcept;
// What a map projection asks of the clipper: jump 1 drops a segment whose
// ends lie left and right of the window (it crosses the map's seam);
// nochord 1 draws nothing of a segment with both ends outside the clip
// circle; softfill 1 keeps filled areas off the driver's polygon fill,
// which knows nothing of a curved frame.  All 0 without a map.
void qqmapclip(DeviceBlock *b, int jump, int nochord, int softfill) noexcept;
// Filled rectangle, corners in plot coordinates before the origin shift,
// in a colour value, cut to the clip window: the driver's rectangle, else
// (a device without fills, or the user transformation on) lines 1.4 / unitf
// apart.  The 3-D plane is the caller's affair (qqrectf of the plots).
void qqfrect(DeviceBlock *b, int x1, int y1, int x2, int y2, int colour) noexcept;
// Marker of kind 0 to 23 centred at a plot position, size in plot
// coordinates, in the current colour: the driver's marker, else lines.
void qqmark(DeviceBlock *b, int kind, double x, double y, double size) noexcept;
// The driver's own marker alone, where it draws one and nothing transforms the
// page; false where the caller must draw the figure itself.
bool qqhwmark(DeviceBlock *b, int kind, double x, double y, double size) noexcept;
// A filled ring sector, centre and radii (r1 at most r2) in plot
// coordinates before the origin shift, angles a1 to a2 in degrees
// counter-clockwise, in a colour value; a filled triangle in the current
// colour.  The driver's shape with hwmode SHAD on, else its polygon, else
// lines.
void qqsector(DeviceBlock *b, double x, double y, double r1, double r2, double a1, double a2,
              int colour) noexcept;
void qqtriangle(DeviceBlock *b, const double *x, const double *y) noexcept;
// The driver's own ring sector alone, whatever its span (a page description
// draws it with an operator of its own); false where the caller must fill
// a polygon.
bool qqhwsector(DeviceBlock *b, double x, double y, double r1, double r2, double a1, double a2,
                int colour) noexcept;
// One character of a hardware font: the driver's, else the stroke hook of
// DeviceState (set by the text subsystem).
void qqhwchar(DeviceBlock *b, const QQHwChar *c) noexcept;
// The hardware font or its height changed.
void qqhwstyle(DeviceBlock *b) noexcept;
// One line from (x1, y1) to (x2, y2), and the closed outline of a polygon
// of n points (below 2 nothing), in plot coordinates through qqmove and
// qqdraw; the current colour comes back when the dash colours of linclr
// changed it.
void qqline(DeviceBlock *b, double x1, double y1, double x2, double y2) noexcept;
void qqpolyln(DeviceBlock *b, const double *x, const double *y, int n) noexcept;
// Fills a polygon of n points in plot coordinates (the origin shift is
// added on the way, as to every position) with the current pattern: solid
// fill goes to a driver that takes polygons, everything else is hatched
// with lines through qqmove and qqdraw, so that it is clipped like a line.
// The arrays may be changed.  Without the fill of the plots nothing is
// drawn.
void qqfillpoly(DeviceBlock *b, double *x, double *y, int n) noexcept;
// Hatches several polygons together with horizontal lines d apart in
// their own frame, from the lowest y - d/2 to the highest + d/2, so that
// holes and islands cancel (the shading of outline characters, contour
// and map shading).  Each line goes to the caller's move and draw; more
// than maxcross crossings on a line give warning 26 and end the hatching
// (returns 1).  Without the fill of the plots nothing is drawn.
int qqhatchpolys(DeviceBlock *b, const double *const *x, const double *const *y, const int *n,
                 int npoly, double d, int maxcross, void (*move)(DeviceBlock *, double, double),
                 void (*draw)(DeviceBlock *, double, double)) noexcept;
// Hands a solid polygon (plot coordinates without origin shift) to the
// driver when it fills polygons itself; returns 1 when the driver drew it,
// 0 when the caller must hatch.  No checks of pattern or hardware mode.
int qqdevpoly(DeviceBlock *b, const double *x, const double *y, int n) noexcept;
// The same for a solid fill of a drawing routine: only when hardware fill
// is on and no stage of the layer must see the polygon's points (segment
// tests, the 3-D plane, a map that keeps fills off the driver).  0: the
// caller hatches.
int qqdevsolid(DeviceBlock *b, const double *x, const double *y, int n) noexcept;
// Resets the dash pattern to its first element (lintyp, myline, solid).
void qqdshres(DeviceBlock *b) noexcept;

// Text output of the line-oriented formats: qqsbuf adds n bytes to the
// line buffer, writing the line first when it would pass lnlen; qqlbuf is
// the word-wrapping form (n = -1 writes the line out).
void qqsbuf(DeviceBlock *b, const char *text, int n) noexcept;
void qqlbuf(DeviceBlock *b, const char *text, int n) noexcept;
// Writes the pending line with a line feed.
void qqsbufend(DeviceBlock *b) noexcept;

// The common mappings to device coordinates with s = devscl.  "Down":
// Y grows downward, (sX, sY), rotated (sY, s(nxp - X)).  "Up": Y grows
// upward, (sX, s(nyp - Y)), rotated (sY, sX).
void qqmapdown(DeviceBlock *b, double x, double y, double *dx, double *dy) noexcept;
void qqmapup(DeviceBlock *b, double x, double y, double *dx, double *dy) noexcept;
// The fit rule of screen, raster, Java, SVG and EMF for a picture of
// pw by ph pixels.
double qqfitscale(DeviceBlock *b, int pw, int ph) noexcept;
// Sends the pen of the device layer (cap, join, miter limit, smooth lines)
// to the canvas of the session.
void qqcnvpen(DeviceBlock *b) noexcept;
