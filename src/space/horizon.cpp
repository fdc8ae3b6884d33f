// The floating horizon of hidden-line surfaces.
//
// A surface is drawn strictly from front to back.  Each column of plot x
// keeps the range of plot y that earlier lines covered; a pixel of a new
// line shows only outside that range: below it (the underside is seen) or
// above it (the top is seen).  The line pen of the device layer hands every
// clipped segment to the hook below while a surface is drawn, and the walk
// sends the visible runs on through the shield test to the driver.
#include <cstdlib>

#include "core/warnings.h"
#include "devices/device.h"
#include "space/space.h"
#include "space/space_block.h"

namespace {

// The start values of the two edges: nothing drawn yet in the column.
const int kNoLower = -1;
const int kNoUpper = 10000;

// Plot coordinates become pixels of the walk by adding 0.5 and cutting.
// The clipper has kept segments near the page; the bound only keeps a
// walk through a clip window far larger than any page finite.
int pixel(double v) {
    const double kFar = 1e5;
    if (!(v > -kFar)) v = -kFar;
    if (v > kFar) v = kFar;
    return (int)(v + 0.5);
}

// Which side of the surface shows at a pixel: 0 hidden, 1 the top (above
// the upper edge), 2 the underside (below the lower edge).  The lower edge
// is asked first.  Columns off the page see nothing of the surface.
int seen(const SpaceState &s, int x, int y) {
    if (x < 0 || x >= s.hzn) return s.hzside ? s.hzside : 1;
    if (y > s.hzlow[x] && s.survis != 1) return 2;
    if (y < s.hzup[x] && s.survis != 2) return 1;
    return 0;
}

void update(SpaceState &s, int x, int y) {
    if (x < 0 || x >= s.hzn) return;
    if (y > s.hzlow[x]) s.hzlow[x] = y;
    if (y < s.hzup[x]) s.hzup[x] = y;
}

// The colour of a side under surclr; -1 is the caller's colour.
void side_colour(SpaceBlock *b, int side) {
    SpaceState &s = b->sp;
    s.hzside = side;
    if (!s.surclrset) return;
    int c = s.surclr[side == 1 ? 0 : 1];
    if (c == -1) c = s.hzbase;
    if (c != b->clr.curclr) qqsetc(b, c);
}

// The pen of the walk: the last position sent to the driver.
struct WalkPen {
    SpaceBlock *b;
    double x, y;
    void move(int px, int py) {
        x = px;
        y = py;
        qqplot(b, x, y, QQ_MOVE);
    }
    void draw(int px, int py) {
        qqshout(b, x, y, px, py, false);
        x = px;
        y = py;
    }
};

// Walks from the current pixel to (x1, y1) by Bresenham steps.
void walk(SpaceBlock *b, int x1, int y1, bool moved) {
    SpaceState &s = b->sp;
    const int mode = s.hzmode;
    const bool test = mode != 2, keep = mode != 0;
    int x = s.hzx, y = s.hzy;
    int dx = std::abs(x1 - x), dy = std::abs(y1 - y);
    int sx = x1 >= x ? 1 : -1, sy = y1 >= y ? 1 : -1;
    bool steep = dy > dx;
    int n = steep ? dy : dx;
    int err = (steep ? -dy : -dx) / 2;
    WalkPen pen{b, (double)x, (double)y};
    if (moved && test) pen.move(x, y);
    int vis = 0;
    if (test) {
        vis = seen(s, x, y);
        // A change of side at the first pixel only sets the colour; the
        // pen stands there already.
        if (vis && vis != s.hzside) {
            side_colour(b, vis);
            if (s.surclrset) pen.move(x, y);
        }
    }
    for (int k = 0; k < n; ++k) {
        // The step to come: along the major axis always, along the minor
        // one when the error says so.
        err += steep ? dx : dy;
        bool minor = err > 0;
        if (minor) err -= steep ? dy : dx;
        bool xstep = !steep || minor;
        // On a steep walk the column is updated only when x changes, so
        // that every pixel of one column sees the same horizon.
        if (keep && xstep) update(s, x, y);
        int px = x, py = y;
        if (steep) {
            y += sy;
            if (minor) x += sx;
        } else {
            x += sx;
            if (minor) y += sy;
        }
        if (!test) continue;
        int v = seen(s, x, y);
        if (v && vis && v != s.hzside && s.surclrset) {
            // Still visible, but from the other side: the run so far ends
            // in its own colour, the next begins where it stopped.
            pen.draw(px, py);
            side_colour(b, v);
            pen.move(px, py);
        } else if (v && v != s.hzside) {
            side_colour(b, v);
        }
        if (vis && !v)
            pen.draw(px, py);
        else if (!vis && v)
            pen.move(x, y);
        vis = v;
    }
    s.hzx = x;
    s.hzy = y;
    if (!test) return;
    if (vis)
        pen.draw(x, y);
    else
        pen.move(x, y);
}

// A move flag means that the driver's pen is not at the start yet.
void hook(DeviceBlock *dev, double x0, double y0, double x1, double y1, int move) {
    SpaceBlock *b = qqspcblk(dev);
    qqhorz(b, pixel(x0), pixel(y0), 3);
    walk(b, pixel(x1), pixel(y1), move != 0);
}

}  // namespace

int qqhorz(SpaceBlock *b, int x, int y, int mode) noexcept {
    SpaceState &s = b->sp;
    switch (mode) {
        case 0: {
            int n = b->core.nxp + 1;
            if (n < 1) n = 1;
            if (!s.hzlow || s.hzn != n) {
                std::free(s.hzlow);
                s.hzlow = s.hzup = nullptr;
                s.hzn = 0;
                // Two arrays of the page width in one block.
                int *p = (int *)std::malloc(sizeof(int) * 2 * (size_t)n);
                if (!p) {
                    qqwar0(b, 53);
                    return 0;
                }
                s.hzlow = p;
                s.hzup = p + n;
                s.hzn = n;
            }
            for (int i = 0; i < n; ++i) {
                s.hzlow[i] = kNoLower;
                s.hzup[i] = kNoUpper;
            }
            return 1;
        }
        case 3:
            s.hzx = x;
            s.hzy = y;
            return 1;
        case 2:
            if (!s.hzlow) return 0;
            walk(b, x, y, false);
            return 1;
        case 999:
            std::free(s.hzlow);
            s.hzlow = s.hzup = nullptr;
            s.hzn = 0;
            b->dev.horizon = nullptr;
            return 1;
        default:
            return 0;
    }
}

void qqhorzon(SpaceBlock *b, int on) noexcept {
    qqflsh(b);
    b->dev.horizon = on && b->sp.hzlow ? hook : nullptr;
}
