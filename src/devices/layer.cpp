// The device layer's share of the block, the coordinate mappings and the
// device scale rule shared by several families.
#include <algorithm>
#include <cmath>

#include "core/session.h"
#include "core/subsystems.h"
#include "devices/device.h"
#include "devices/device_block.h"
#include "devices/registry.h"

namespace {

// The current colour on its way to the driver, and the buffered lines
// that must reach the driver before the canvas changes under them.
void set_colour(ColourBlock *b, int value) {
    qqsetc(qqdevblk(b), value);
}
void flush_lines(RasterBlock *b) {
    qqflsh(qqdevblk(b));
}
void canvas_pen(RasterBlock *b) {
    qqcnvpen(qqdevblk(b));
}

void send_table(ColourBlock *cb) {
    DeviceBlock *b = qqdevblk(cb);
    const DriverOps *drv = b->dev.drv;
    if (drv && drv->colour_table) {
        qqflsh(b);
        drv->colour_table(b);
    }
}

void embed_image(RasterBlock *rb) {
    DeviceBlock *b = qqdevblk(rb);
    const DriverOps *drv = b->dev.drv;
    if (drv && drv->image) drv->image(b);
}

void devices_first(CoreBlock *blk) {
    DeviceBlock *b = qqdevblk(blk);
    DeviceState &d = b->dev;
    d.lnwid = 1;
    d.hwlin = d.hwshd = 1;
    // The family a session falls back on when no device is chosen.
    int code;
    b->core.deffam = qqfamilykey("PLOG", &code);
    // What the colour model and the canvas need of the layer.
    b->clr.setc = set_colour;
    b->clr.table = send_table;
    b->cnv.flush = flush_lines;
    b->cnv.embed = embed_image;
    b->cnv.pen = canvas_pen;
}

void devices_init(CoreBlock *blk) {
    DeviceBlock *b = qqdevblk(blk);
    DeviceState &d = b->dev;
    d.fboxset = 0;
    d.fclrnone = 0;
    d.fwinset = 0;
    d.npol = 0;
    d.inflsh = 0;
    d.nxsh = d.nysh = 0;
    d.clpx1 = d.clpy1 = 0;
    d.clpx2 = b->core.nxp;
    d.clpy2 = b->core.nyp;
    d.clpflg = 0;
    d.clpmd = 0;
    d.clpcir = 0;
    d.axround = 0;
    d.clpjump = d.clpnochord = d.softfill = 0;
    d.lnjn = 2;
    d.lncp = 2;
    d.lnml = 2.0;
    d.hwlin = d.hwshd = 1;
    d.lnoff = 0.0;
    d.offfirst = 0;
    d.dshn = 1;
    d.dspen = 0;
    d.dsidx = 1;
    d.dsrem = 0;
    d.clrn = 0;
    d.clridx = 1;
    d.pl3on = 0;
    d.trfon = 0;
    d.lnsmooth = 0;
    d.planemap = nullptr;
    d.segtest = nullptr;
    // The session starts with a thin line and the whole page as clip
    // window; the colour table's share then sets the foreground colour.
    d.lnwid = 1;
    b->clr.curclr = 0;
    for (int k = 0; k < 30; ++k) d.lincycl[k] = k % 8;
    if (d.drv && d.drv->clip) d.drv->clip(b, 0, 0, b->core.nxp, b->core.nyp, 1);
}

void reset_origin(CoreBlock *blk) {
    DeviceBlock *b = qqdevblk(blk);
    qqflsh(b);
    b->dev.nxsh = b->dev.nysh = 0;
}

void reset_clip_window(CoreBlock *b) {
    qqclippage(qqdevblk(b));
}

void reset_filbox(CoreBlock *b) { qqdevblk(b)->dev.fboxset = 0; }
void reset_filclr(CoreBlock *b) { qqdevblk(b)->dev.fclrnone = 0; }

void reset_clip_mode(CoreBlock *blk) {
    DeviceBlock *b = qqdevblk(blk);
    DeviceState &d = b->dev;
    d.clpmd = 0;
    if (d.clpflg == 2) {
        // Apply the clip border again under the mode that now holds.
        qqclip(b, 1);
        d.clpflg = 0;
        qqclip(b, 0);
        d.clpflg = 2;
    }
}

const ResetEntry kResets[] = {
    {"ORIG", reset_origin},    {"CLPB", reset_clip_window}, {"CLPW", reset_clip_window},
    {"CLPM", reset_clip_mode}, {"NOCL", reset_clip_mode},   {"FILB", reset_filbox},
    {"FILC", reset_filclr},    {nullptr, nullptr},
};

}  // namespace

extern const Subsystem kxsub_devices = {"devices", devices_first, devices_init, nullptr,
                                        kResets,   nullptr};

void qqmapdown(DeviceBlock *b, double x, double y, double *dx, double *dy) noexcept {
    double s = b->sess.devscl;
    if (b->sess.pagrot == 1) {
        *dx = s * y;
        *dy = s * (b->core.nxp - x);
    } else {
        *dx = s * x;
        *dy = s * y;
    }
}

void qqmapup(DeviceBlock *b, double x, double y, double *dx, double *dy) noexcept {
    double s = b->sess.devscl;
    if (b->sess.pagrot == 1) {
        *dx = s * y;
        *dy = s * x;
    } else {
        *dx = s * x;
        *dy = s * (b->core.nyp - y);
    }
}

double qqfitscale(DeviceBlock *b, int pw, int ph) noexcept {
    double w = b->core.nxp, h = b->core.nyp;
    if (b->sess.pagrot == 1) std::swap(w, h);
    if (w < 1) w = 1;
    if (h < 1) h = 1;
    double s = std::min((pw - 1) / w, (ph - 1) / h);
    if (b->sess.sclm == 0) {
        double a = b->core.unitf * b->sess.sclf;
        double t = w <= h ? (ph - 1) * a / 2969.0 : (pw - 1) * a / 2969.0;
        s = std::min(s, t);
    }
    return s;
}

void qqsendbuf(DeviceBlock *b) noexcept {
    qqflsh(b);
    const DriverOps *drv = b->dev.drv;
    if (drv && drv->update) drv->update(b);
}
