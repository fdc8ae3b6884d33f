// The curve routines' view of the axis system.
#include "plots/axis_map.h"

bool qqaxmap(glbblk *b, AxisMap *m) noexcept {
    *m = AxisMap{};
    return false;
}

void qqaxconv(glbblk *b, double x, double y, double *px, double *py) noexcept {
    *px = x;
    *py = y;
}
