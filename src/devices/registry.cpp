// The drivers of this build, by range of device codes.  A family that is
// added gets one line here and a source of its own.
#include "devices/device.h"

extern const DriverOps kxdrv_plogfl;
extern const DriverOps kxdrv_raster;
extern const DriverOps kxdrv_java;
extern const DriverOps kxdrv_svg;
extern const DriverOps kxdrv_ipe;
extern const DriverOps kxdrv_pdf;

namespace {

struct Family {
    int lo, hi;
    const DriverOps *ops;
};

const Family kFamilies[] = {
    {201, 201, &kxdrv_plogfl},
    {511, 511, &kxdrv_pdf},
    {601, 607, &kxdrv_raster},
    {701, 701, &kxdrv_java},
    {801, 801, &kxdrv_svg},
    {802, 802, &kxdrv_ipe},
};

}  // namespace

const DriverOps *qqdriver(int devcod) noexcept {
    for (const Family &f : kFamilies)
        if (devcod >= f.lo && devcod <= f.hi) return f.ops;
    return nullptr;
}
