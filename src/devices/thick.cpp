// Thick lines on devices that do not draw widths themselves.
//
// The layer has drawn the centre line; each pass goes once round it at a
// growing half-width, so that the passes together fill the line.  The
// device's own thin line has some width, which closes the gaps.  Every
// stroke streams through the clipping pen: nothing is stored, however long
// a round cap makes the outline.
#include <cmath>

#include "core/text.h"
#include "devices/device.h"
#include "devices/device_block.h"
#include "devices/stroke.h"

namespace {

const double kPi = 3.1415927;

struct Dir {
    double ux, uy;  // unit direction
    double vx, vy;  // unit normal, to the left of the direction on the page
};

// Direction of a segment; a repeated point has none and falls back to the
// vertical, as the dash walker does.
Dir direction(double x0, double y0, double x1, double y1) {
    double dx = x1 - x0, dy = y1 - y0;
    double len = std::hypot(dx, dy);
    Dir d;
    if (len < 1e-12) {
        d.ux = 0;
        d.uy = -1;
    } else {
        d.ux = dx / len;
        d.uy = dy / len;
    }
    d.vx = d.uy;
    d.vy = -d.ux;
    return d;
}

// Angle of a segment as the line style code measures it.
double seg_angle(const Dir &d) { return std::atan2(-d.uy, d.ux); }

struct Outline {
    DeviceBlock *b;
    ClipPen pen;
    double h;      // half-width
    bool started;
    double sx, sy;  // first point, to close back to
    void to(double x, double y) {
        if (!started) {
            pen_move(pen, x, y);
            sx = x;
            sy = y;
            started = true;
        } else {
            pen_draw(pen, x, y);
        }
    }
    void close() {
        if (started) pen_draw(pen, sx, sy);
    }
};

// The join at point (px, py) between segment a (into the point) and
// segment c (out of it), on the offset side already applied to the normals.
void join(Outline &o, double px, double py, const Dir &a, const Dir &c, double side) {
    const DeviceState &d = o.b->dev;
    double h = o.h * side;
    double ex = px + h * a.vx, ey = py + h * a.vy;  // end of the incoming offset
    double nx = px + h * c.vx, ny = py + h * c.vy;  // start of the outgoing one
    if (d.lnjn == 0) {
        double t = kPi - seg_angle(a) + seg_angle(c);
        while (t < 0) t += 6.28319;
        while (t >= 6.28319) t -= 6.28319;
        double u = t <= kPi ? t / 2 : kPi - t / 2;
        double miter = u == 0 ? d.lnwid : d.lnwid / std::sin(u);
        if (std::fabs(miter) <= d.lnwid * d.lnml) {
            // Intersection of the two offset lines.
            double den = a.ux * c.uy - a.uy * c.ux;
            if (std::fabs(den) < 0.001) {
                o.to(ex, ey);
            } else {
                double t1 = ((nx - ex) * c.uy - (ny - ey) * c.ux) / den;
                o.to(ex + t1 * a.ux, ey + t1 * a.uy);
            }
            return;
        }
    }
    o.to(ex, ey);
    o.to(nx, ny);
}

// A half circle round an end: from the current side across the end.
void round_cap(Outline &o, double px, double py, const Dir &d, double side) {
    int m = (int)std::trunc(kPi * o.h / 2.5);
    if (m < 3) return;
    double step = M_PI / (m + 1);
    for (int j = 1; j <= m; ++j) {
        double th = j * step;
        double c = std::cos(th), s = std::sin(th);
        o.to(px + o.h * (side * d.vx * c + d.ux * s), py + o.h * (side * d.vy * c + d.uy * s));
    }
}

// One pass round an open line of n >= 2 points.
void open_pass(DeviceBlock *b, const double *x, const double *y, int n, double h) {
    const DeviceState &dv = b->dev;
    Outline o{b, {b, 0, 0, false}, h, false, 0, 0};
    double cap = dv.lncp == 2 ? h : 0;
    Dir first = direction(x[0], y[0], x[1], y[1]);
    // Forward along the left side.
    o.to(x[0] + h * first.vx - cap * first.ux, y[0] + h * first.vy - cap * first.uy);
    for (int i = 1; i < n - 1; ++i)
        join(o, x[i], y[i], direction(x[i - 1], y[i - 1], x[i], y[i]),
             direction(x[i], y[i], x[i + 1], y[i + 1]), 1);
    Dir last = direction(x[n - 2], y[n - 2], x[n - 1], y[n - 1]);
    o.to(x[n - 1] + h * last.vx + cap * last.ux, y[n - 1] + h * last.vy + cap * last.uy);
    if (dv.lncp == 1) round_cap(o, x[n - 1], y[n - 1], last, 1);
    // Back along the right side.
    o.to(x[n - 1] - h * last.vx + cap * last.ux, y[n - 1] - h * last.vy + cap * last.uy);
    for (int i = n - 2; i >= 1; --i)
        join(o, x[i], y[i], direction(x[i + 1], y[i + 1], x[i], y[i]),
             direction(x[i], y[i], x[i - 1], y[i - 1]), 1);
    Dir back = direction(x[1], y[1], x[0], y[0]);
    o.to(x[0] + h * back.vx + cap * back.ux, y[0] + h * back.vy + cap * back.uy);
    if (dv.lncp == 1) round_cap(o, x[0], y[0], back, 1);
    o.close();
}

// One pass round a closed line: an outline on each side, no caps.  The
// points run 0 .. n-1 with the last equal to the first.
void closed_pass(DeviceBlock *b, const double *x, const double *y, int n, double h) {
    int m = n - 1;  // distinct vertices
    for (int side = 1; side >= -1; side -= 2) {
        Outline o{b, {b, 0, 0, false}, h, false, 0, 0};
        for (int k = 0; k < m; ++k) {
            int i = side > 0 ? k : (m - k) % m;
            int prev = side > 0 ? (i + m - 1) % m : (i + 1) % m;
            int next = side > 0 ? (i + 1) % m : (i + m - 1) % m;
            join(o, x[i], y[i], direction(x[prev], y[prev], x[i], y[i]),
                 direction(x[i], y[i], x[next], y[next]), 1);
        }
        o.close();
    }
}

}  // namespace

void qqthick(DeviceBlock *b, const double *x, const double *y, int n) noexcept {
    if (n < 2) return;
    const DeviceState &d = b->dev;
    double unitf = b->core.unitf;
    int w = qqnint(d.lnwid * unitf);
    int passes = (w + 1) / 3;
    bool closed = n >= 3 && std::fabs(x[0] - x[n - 1]) < 0.5 && std::fabs(y[0] - y[n - 1]) < 0.5;
    for (int k = 1; k <= passes; ++k) {
        double h = (k == passes ? w / 2.0 : 1.5 * k) / unitf;
        if (closed && n >= 4)
            closed_pass(b, x, y, n, h);
        else
            open_pass(b, x, y, n, h);
    }
}
