// The legend's view of the text and axis layers.
#include "devices/device.h"
#include "plots/legend_link.h"

int qqleghgt(glbblk *b) noexcept { return 36; }
double qqleglsp(glbblk *b) noexcept { return 1.5; }
int qqlegwidth(glbblk *b, const char *text, int n) noexcept { return n * 22; }
void qqlegtext(glbblk *b, const char *text, int n, int x, int y) noexcept {}
int qqlegframe(glbblk *b) noexcept { return 1; }

void qqlegbox(glbblk *b, int x, int y, int w, int h, int f) noexcept {
    // f lines, outward from the box for a positive thickness, inward for a
    // negative one.
    int n = f < 0 ? -f : f, step = f < 0 ? 1 : -1;
    for (int i = 0; i < n; ++i) {
        int o = i * step;
        qqmove(b, x + o, y + o);
        qqdraw(b, x + w - 1 - o, y + o);
        qqdraw(b, x + w - 1 - o, y + h - 1 - o);
        qqdraw(b, x + o, y + h - 1 - o);
        qqdraw(b, x + o, y + o);
    }
    qqflsh(b);
}

void qqlegaxis(glbblk *b, LegendAxis *a) noexcept {
    const int *r = b->dev.axrect;
    a->px = r[0];
    a->py = r[3];
    a->xlen = r[2] - r[0];
    a->ylen = r[3] - r[1];
    a->rx = r[2];
    a->ty = r[1];
}
