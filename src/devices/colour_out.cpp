// qqsetc: the current colour on its way to the driver.
#include <cstdlib>

#include "core/glbblk.h"
#include "core/session.h"
#include "devices/device.h"

namespace {

// Entries of the table that a search for the nearest colour looks at.
int table_entries(const glbblk *b) {
    switch (b->clr.vltkind) {
    case 0: return 9;    // the small table
    case 7: return 16;   // the VGA table
    default: return 256;
    }
}

}  // namespace

int qqnearest(const glbblk *b, int r, int g, int bl) noexcept {
    int best = 0, bestd = 0x7fffffff;
    int n = table_entries(b);
    for (int i = 0; i < n; ++i) {
        int e = b->clr.colmap[i];
        int d = std::abs(((e >> 16) & 255) - r) + std::abs(((e >> 8) & 255) - g) + std::abs((e & 255) - bl);
        if (d < bestd) {
            bestd = d;
            best = i;
            if (d == 0) break;
        }
    }
    return best;
}

void qqsetc(glbblk *b, int value) noexcept {
    DeviceState &d = b->dev;
    if (!d.inflsh) qqflsh(b);
    d.curclr = value;
    const DriverOps *drv = d.drv;
    if (!drv || !drv->colour) return;
    int r, g, bl, index;
    if (((unsigned)value >> 24) == 1) {
        r = value & 255;
        g = (value >> 8) & 255;
        bl = (value >> 16) & 255;
        index = -1;
        if (b->sess.colbits <= 8) {
            index = qqnearest(b, r, g, bl);
            int e = b->clr.colmap[index];
            r = (e >> 16) & 255;
            g = (e >> 8) & 255;
            bl = e & 255;
        }
    } else {
        index = ((value % 256) + 256) % 256;
        int e = b->clr.colmap[index];
        r = (e >> 16) & 255;
        g = (e >> 8) & 255;
        bl = e & 255;
    }
    drv->colour(b, value, r, g, bl, index);
}
