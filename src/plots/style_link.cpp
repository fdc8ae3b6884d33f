// Line styles and patterns as the curve routines use them.
#include <cmath>

#include "devices/device.h"
#include "plots/curve_draw.h"
#include "plots/curves.h"

namespace {

const int kStyles[8][5] = {
    {1, 1}, {2, 1, 10}, {2, 10, 10}, {4, 30, 15, 10, 15},
    {4, 1, 15, 15, 15}, {2, 20, 15}, {2, 1, 20}, {2, 30, 20},
};

}  // namespace

void qqsetstyle(glbblk *b, int ltyp) noexcept {
    if (ltyp < 0 || ltyp > 7) return;
    qqflsh(b);
    DeviceState &d = b->dev;
    double uf = b->core.unitf > 0 ? b->core.unitf : 1.0;
    d.dshn = kStyles[ltyp][0];
    for (int i = 0; i < d.dshn; ++i) {
        int v = (int)(kStyles[ltyp][1 + i] / uf + 0.5);
        d.dshl[i] = v < 1 ? 1 : v;
    }
    qqdshres(b);
}

int qqgetstyle(glbblk *b) noexcept {
    const DeviceState &d = b->dev;
    for (int k = 0; k < 8; ++k) {
        if (kStyles[k][0] != (d.dshn < 1 ? 1 : d.dshn)) continue;
        if (k == 0) return 0;
        bool same = true;
        double uf = b->core.unitf > 0 ? b->core.unitf : 1.0;
        for (int i = 0; i < d.dshn; ++i) {
            int v = (int)(kStyles[k][1 + i] / uf + 0.5);
            if ((v < 1 ? 1 : v) != d.dshl[i]) same = false;
        }
        if (same) return k;
    }
    return 8;
}

void qqstylesave(glbblk *b, CurveSave *s) noexcept {
    s->ltyp = qqgetstyle(b);
    s->pattern = 0;
}

void qqstylerestore(glbblk *b, const CurveSave *s) noexcept {}

void qqpatfill(glbblk *b, const double *x, const double *y, int n, int pattern) noexcept {
    if (pattern != 0) qqsolidfill(b, x, y, n);
}

int qqgetpattern(glbblk *b) noexcept { return 16; }
void qqsetpattern(glbblk *b, int pattern) noexcept {}
int qqpatcycle(glbblk *b, int index) noexcept { return (index - 1) % 18; }
bool qqarealine(glbblk *b) noexcept { return true; }
