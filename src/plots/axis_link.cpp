// The curve routines' view of the axis system: the factors of the scaling
// record for the inline conversion, the general conversion for the rest.
#include "axes/axes.h"
#include "plots/axis_map.h"
#include "plots/plot_block.h"

bool qqaxmap(PlotBlock *b, AxisMap *m) noexcept {
    const ScaleRecord &r = b->ax.rec;
    *m = AxisMap{};
    m->type = r.type;
    m->logx = r.log[0] != 0;
    m->logy = r.log[1] != 0;
    m->neglog = b->ax.neglg != 0;
    m->negexp = b->ax.neglv;
    m->ax = r.a[0];
    m->fx = r.xfac;
    m->ox = r.xorg;
    m->ay = r.a[1];
    m->fy = r.yfac;
    m->oy = r.yorg;
    m->xlow = r.xmin;
    m->xhigh = r.xmax;
    m->ylow = r.ymin;
    m->yhigh = r.ymax;
    return true;
}

void qqaxconv(PlotBlock *b, double x, double y, double *px, double *py) noexcept {
    qqpos2(b, x, y, px, py);
}
