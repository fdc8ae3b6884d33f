// The drivers of this build, by range of device codes.  A family that is
// added gets one line here and a source of its own.
#include "devices/device.h"

extern const DriverOps kxdrv_plogfl;
extern const DriverOps kxdrv_raster;

namespace {

struct Family {
    int lo, hi;
    const DriverOps *ops;
};

const Family kFamilies[] = {
    {201, 201, &kxdrv_plogfl},
    {601, 607, &kxdrv_raster},
};

}  // namespace

const DriverOps *qqdriver(int devcod) noexcept {
    for (const Family &f : kFamilies)
        if (devcod >= f.lo && devcod <= f.hi) return f.ops;
    return nullptr;
}
