// qqsetc: the current colour on its way to the driver.
#include "colour/colour.h"
#include "core/session.h"
#include "devices/device.h"
#include "devices/device_block.h"

void qqsetc(DeviceBlock *b, int value) noexcept {
    DeviceState &d = b->dev;
    if (!d.inflsh) qqflsh(b);
    b->clr.curclr = value;
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
