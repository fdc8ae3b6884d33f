// The 3-D axis system as the surface, solid and curve routines see it:
// coordinate conversions, the projection, the 3-D pen and the triangle
// path.  Valid between graf3d and endgrf (SpaceState::open).
#pragma once

#include "space/space_block.h"

struct SpaceBlock;

// User to absolute 3-D coordinates of one axis (0 X, 1 Y, 2 Z) and back.
double qqusr2abs(const SpaceBlock *b, int axis, double v) noexcept;
double qqabs2usr(const SpaceBlock *b, int axis, double v) noexcept;
// The same with the plain limits (no logarithm), as USER points of the
// eye, the focus and the lights are given.
double qqplain2abs(const SpaceBlock *b, int axis, double v) noexcept;
double qqabs2plain(const SpaceBlock *b, int axis, double v) noexcept;
// Applies the matrix: X, Y, Z, W of an absolute point.
void qqclip4(const SpaceBlock *b, const double p[3], double out[4]) noexcept;
// Absolute point to plot coordinates; the depth Z/W when depth is not null.
void qqabs2plot(const SpaceBlock *b, double x, double y, double z, double *xp, double *yp,
                double *depth) noexcept;
// The 3-D pen, absolute coordinates, with the clipping of clip3d.
void qqmov3(SpaceBlock *b, double x, double y, double z) noexcept;
void qqdrw3(SpaceBlock *b, double x, double y, double z) noexcept;

// A polygon of 3 or 4 vertices in absolute coordinates, colours per vertex
// in 0 to 1, an equivalent colour value for output without a z-buffer.
void qqtri3(SpaceBlock *b, const double *x, const double *y, const double *z, int n,
            const double *r, const double *g, const double *bl, int clr) noexcept;
// A depth-tested line on the z-buffer, absolute coordinates, current colour.
void qqzlin3(SpaceBlock *b, const double p0[3], const double p1[3]) noexcept;
// Whether triangles go to a z-buffer or to image mode (pixels).
int qqzpix(const SpaceBlock *b) noexcept;
// Opens and closes the z-buffer without the level rules (surface routines).
int qqzbfopen(SpaceBlock *b) noexcept;
void qqzbfclose(SpaceBlock *b) noexcept;
int qqdbfopen(SpaceBlock *b, long long ntri) noexcept;
void qqdbfclose(SpaceBlock *b) noexcept;
// Resolves the position of light k for the open axis system: USER and
// ANGL become absolute for good (graf3d, litpos).
void qqlitabs(SpaceBlock *b, int k) noexcept;
// The light model at point p with unit normal nrm; side 0 front, 1 back;
// the material diffuse colour may be replaced by dif (null: the material's).
void qqlight(const SpaceBlock *b, const double p[3], const double nrm[3], int side,
             const double *dif, double out[3]) noexcept;
// Cuts a segment to the box of the axis system; 0 when nothing is left.
int qqclipbox(const SpaceBlock *b, double p0[3], double p1[3]) noexcept;
// The three axes drawn in space, for the label modes HORI, PARA, OTHE.
void qqspaxes(SpaceBlock *b) noexcept;
// PLY export: a polygon of n corners in user coordinates with colours
// 0 to 1 joins the record; qqplypoly records a polygon of the triangle
// path (absolute coordinates, its colours or its colour number); qqplyfree
// drops the record and ends recording.
void qqplyadd(SpaceBlock *b, const double *x, const double *y, const double *z, const double *r,
              const double *g, const double *bl, int n) noexcept;
void qqplypoly(SpaceBlock *b, const double *x, const double *y, const double *z, int n,
               const double *r, const double *g, const double *bl, int clr) noexcept;
void qqplyfree(SpaceBlock *b) noexcept;
