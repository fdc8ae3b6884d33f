// Depth-tested drawing on a canvas: Gouraud triangles and lines against a
// z-buffer of one float per pixel (row-major, the canvas's size).  Depth
// grows away from the viewer; a null buffer draws without the test.
#pragma once

struct qqcanvas;

struct QQZVert {
    double x, y;     // pixel position
    double z;        // depth
    double r, g, b;  // colour, 0 to 1
};

// One triangle.  alpha below 255 on an RGB canvas blends with what is
// there, and only in front of it by more than 0.001.
void qqcrast(qqcanvas *cv, float *zb, const QQZVert *v, int alpha) noexcept;
// One line in the canvas's current colour; a pixel is written when its
// depth is not behind the stored one by more than bias.
void qqczline(qqcanvas *cv, float *zb, double x0, double y0, double z0, double x1, double y1,
              double z1, float bias) noexcept;
