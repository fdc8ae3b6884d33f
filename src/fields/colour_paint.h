// What the colour plots share: the test of the axis system, the painting
// of value points and cells with runs of equal colour merged, and the
// colour-number triangle.
//
// Positions are user values unless named plot; plot coordinates are
// doubles before the origin shift, y growing downward.
#pragma once

#include "fields/field_block.h"

// Warning 35 and false in a graf3d system: the colour plots need graf3.
bool qqcolsys(FieldBlock *b) noexcept;

// Collects filled rectangles of plot coordinates and sends neighbours of
// one colour in one column (same x extent, touching in y) as one
// rectangle, so that a large matrix gives a file of its colour bands, not
// of its cells.  flush() must run before anything else is drawn.
// With a canvas the rectangles go into it instead, shifted by -ox, -oy.
struct qqcanvas;
struct QQCellRuns {
    FieldBlock *b;
    int x1, x2, y1, y2, clr;
    bool open;
    qqcanvas *cv;
    int ox, oy;
    explicit QQCellRuns(FieldBlock *blk, qqcanvas *canvas = nullptr, int dx = 0, int dy = 0)
        : b(blk), x1(0), x2(0), y1(0), y2(0), clr(0), open(false), cv(canvas), ox(dx), oy(dy) {}
    void add(int ax, int ay, int bx, int by, int colour) noexcept;
    void flush() noexcept;
};

// The settings of the point rectangles of crvmat and curve3 for one call.
struct QQPointPaint {
    FieldBlock *b;
    QQCellRuns runs;
    int wx, wy;  // point size
    bool pixel;  // PIXE on a device of pixels: one unit
    explicit QQPointPaint(FieldBlock *blk, qqcanvas *canvas = nullptr, int dx = 0, int dy = 0);
    // One value point: the limit test, its colour, the rectangle of the
    // point size centred on it.
    void point(double x, double y, double z) noexcept;
};

// A picture of the axis area, one pixel a plot unit, that a page format
// embeds in place of many rectangles: begin gives the canvas (null when
// the device has no pictures, the page is turned or memory is short), end
// embeds and frees it.
qqcanvas *qqcellpicture(FieldBlock *b) noexcept;
void qqcellpictureend(FieldBlock *b) noexcept;

// The colour of a value for painting; -1 when it is left out (a NaN under
// nancrv, counted, or the darkest colour under nobgd).
int qqcellclr(FieldBlock *b, double z) noexcept;

// A filled triangle of plot coordinates whose colour numbers c0, c1, c2 at
// the corners are interpolated along scan lines and rounded, so that the
// colours pass through the table.
void qqclrtri(FieldBlock *b, const double *x, const double *y, const double *c) noexcept;
