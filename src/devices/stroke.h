// A pen that streams line pieces through the clipper to the driver.
//
// qqflsh and the thick-line outlines both draw through it: each new point
// is tested against the clip region, segments that stay inside go straight
// to the driver, the others through qqseg.  It holds no memory of its own.
#pragma once

#include "devices/device_block.h"

struct DeviceBlock;

struct ClipPen {
    DeviceBlock *b;
    double x, y;   // last point given
    bool in;       // whether it lies in the clip region
};

void pen_move(ClipPen &p, double x, double y) noexcept;
void pen_draw(ClipPen &p, double x, double y) noexcept;

// Whether all n points lie in the clip region: a rectangle, with the
// tolerance of the segment clipper (a circle always answers false).
bool qqallin(DeviceBlock *b, const double *x, const double *y, int n) noexcept;
// Clips one segment whose ends are not both inside and sends what remains.
void qqseg(DeviceBlock *b, double x0, double y0, double x1, double y1) noexcept;
// Sends a visible segment: a move first when asked, then the draw, which
// passes the hidden-line or shield test when one is active.
void qqout(DeviceBlock *b, double x0, double y0, double x1, double y1, bool move) noexcept;
// Draws the outlines of a thick line round the points of one piece.
void qqthick(DeviceBlock *b, const double *x, const double *y, int n) noexcept;
