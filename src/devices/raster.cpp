// The raster devices TIFF, IMAG, VIRT, PNG, PPM, BMP and GIF (601 to 607):
// the session draws on a canvas in memory, and kolfin writes the canvas
// in the device's format (VIRT writes nothing).
//
// Positions become pixels by X = trunc(devscl·x + 0.5), Y likewise, with
// row 0 at the top of the page; a portrait-rotated page turns by
// (devscl·y, devscl·(nxp − x)).  The canvas draws widths, caps, joins and
// filled polygons itself, so the layer emulates none of them.
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "core/family.h"
#include "core/session.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "devices/device_block.h"
#include "raster/canvas.h"
#include "raster/primitives.h"
#include "raster/writers.h"

void qqcnvpen(DeviceBlock *b) noexcept {
    qqcanvas *cv = qqcanvasof(b);
    if (!cv) return;
    const DeviceState &d = b->dev;
    qqcoption(cv, 27, d.lncp);
    qqcoption(cv, 28, d.lnjn);
    cv->miter = d.lnml >= 1.0 ? d.lnml : 1.0;
    qqcoption(cv, 34, d.lnsmooth ? 2 : 1);
}

namespace {

// The codes of the family follow the format numbers of qqwrite; the one
// between IMAG and PNG writes nothing.
enum { VIRT = QQ_WIMAG + 1 };

int format_of(const DeviceBlock *b) {
    return b->core.devcod - b->core.fam->lo + 1;
}

// Whether a picture of w by h pixels fits the device: 0, or the warning
// number with the offending value.  Every format keeps its image below
// 2 GiB (32-bit file offsets, zlib's counters); GIF records sizes in 16
// bits and the image file in five decimal columns.
int size_problem(int dev, int w, int h, bool rgb, int *value) {
    int limit = dev == QQ_WGIF ? 65535 : (dev == QQ_WIMAG ? 99999 / (rgb ? 3 : 1) : 0x7fffffff);
    int hlimit = dev == QQ_WGIF ? 65535 : (dev == QQ_WIMAG ? 99999 : 0x7fffffff);
    if (w > limit || h > hlimit) {
        *value = w > limit ? w : h;
        return 2;
    }
    if ((uint64_t)w * (uint64_t)h * (rgb ? 4u : 1u) > 0x7fff0000ull) return 53;
    return 0;
}

// Drops the file that kolini opened: a session that writes no picture
// leaves no file behind that looks like one (an old file stays).
void discard_file(DeviceBlock *b) {
    qqplotclose(b, 0);
}

bool to_pixel(DeviceBlock *b, double x, double y, int *px, int *py) {
    double dx, dy;
    qqmapdown(b, x, y, &dx, &dy);
    dx += 0.5;
    dy += 0.5;
    if (!(dx > -1e8 && dx < 1e8 && dy > -1e8 && dy < 1e8)) return false;
    *px = (int)std::trunc(dx);
    *py = (int)std::trunc(dy);
    return true;
}

int raster_open(DeviceBlock *b) {
    SessionState &s = b->sess;
    int dev = format_of(b);
    bool rgb = dev == QQ_WPPM || b->cnv.ropt.rasfmt == 1;
    int w = s.wsiz[0], h = s.wsiz[1], value = 0;
    int problem = size_problem(dev, w, h, rgb, &value);
    if (problem == 0 && qqcnvnew(&b->cnv.cv, w, h, rgb, s.bgmode == 2) != 0) problem = 53;
    if (problem != 0) {
        if (problem == 2)
            qqwarn(b, 2, value);
        else
            qqwar0(b, 53);
        discard_file(b);
        return 1;
    }
    s.colbits = rgb ? 24 : 8;
    s.devscl = qqfitscale(b, w, h);
    b->cnv.cv.alpha = (unsigned char)b->cnv.tpralpha;
    return 0;
}

void raster_line(DeviceBlock *b, double x, double y, int op) {
    qqcanvas *cv = qqcanvasof(b);
    if (!cv) return;
    if (op == QQ_ENDPATH) {
        qqcflush(cv);
        return;
    }
    int px, py;
    if (to_pixel(b, x, y, &px, &py)) qqcline(cv, px, py, op == QQ_DRAW ? 2 : 3);
}

void raster_colour(DeviceBlock *b, int value, int, int, int, int) {
    if (qqcanvas *cv = qqcanvasof(b)) qqcsetc(cv, value);
}

void raster_table(DeviceBlock *b) {
    qqcanvas *cv = qqcanvasof(b);
    if (!cv) return;
    qqctable(cv, b->clr.colmap, b->clr.vltkind);
    // A transparent colour given by index follows the table.
    if (b->cnv.imgtran != -1) qqcoption(cv, 32, b->cnv.imgtran);
}

int raster_width(DeviceBlock *b, double n, int fractional) {
    qqcanvas *cv = qqcanvasof(b);
    if (!cv) return 0;
    if (n <= 0) {
        qqcoption(cv, 26, 1);
        return 0;
    }
    // A pen of pixels takes whole widths: penwid's value is rounded first.
    if (fractional) n = qqnint(n) < 1 ? 1 : qqnint(n);
    int px = qqnint(n * b->sess.devscl);
    qqcoption(cv, 26, px < 1 ? 1 : px);
    return 1;
}

void raster_style(DeviceBlock *b) {
    qqcnvpen(b);
}

void raster_clip(DeviceBlock *b, int x1, int y1, int x2, int y2, int reset) {
    qqcanvas *cv = qqcanvasof(b);
    if (!cv) return;
    int ax = 0, ay = 0, bx = cv->cw - 1, by = cv->ch - 1;
    if (!reset) {
        // An axis system's window with the default margin: back out to the
        // axis lines, then one pixel in, so that nothing covers the lines.
        int widen = b->dev.clpwiden ? 1 : 0;
        int px1, py1, px2, py2;
        if (!to_pixel(b, x1 - widen, y1 - widen, &px1, &py1) ||
            !to_pixel(b, x2 + widen, y2 + widen, &px2, &py2))
            return;
        ax = (px1 < px2 ? px1 : px2) + widen;
        bx = (px1 < px2 ? px2 : px1) - widen;
        ay = (py1 < py2 ? py1 : py2) + widen;
        by = (py1 < py2 ? py2 : py1) - widen;
    }
    qqcoption(cv, 11, ax);
    qqcoption(cv, 12, ay);
    qqcoption(cv, 13, bx);
    qqcoption(cv, 14, by);
    qqcoption(cv, 33, 0);
}

int raster_fill(DeviceBlock *b, const double *x, const double *y, int n) {
    qqcanvas *cv = qqcanvasof(b);
    if (!cv) return 0;
    double s = b->sess.devscl;
    // Plot coordinates to pixels, as qqmapdown does it.
    double m[6] = {s, 0, 0, 0, s, 0};
    if (b->sess.pagrot == 1) {
        m[0] = 0;
        m[1] = s;
        m[3] = -s;
        m[4] = 0;
        m[5] = s * b->core.nxp;
    }
    if (qqcfillm(cv, x, y, n, m)) qqwar0(b, 26);
    return 1;
}

void raster_rect(DeviceBlock *b, int x1, int y1, int x2, int y2, int colour) {
    qqcanvas *cv = qqcanvasof(b);
    int px1, py1, px2, py2;
    if (!cv || !to_pixel(b, x1, y1, &px1, &py1) || !to_pixel(b, x2, y2, &px2, &py2)) return;
    qqcrect(cv, px1, py1, px2, py2, colour);
}

void raster_clear(DeviceBlock *b) {
    if (qqcanvas *cv = qqcanvasof(b)) qqcerase(cv);
}

int raster_close(DeviceBlock *b) {
    int dev = format_of(b), written = 0;
    qqcanvas *cv = qqcanvasof(b);
    if (cv && dev != VIRT && b->sess.fhnd) {
        if (qqwrite(b, b->sess.fhnd, b->sess.fname, dev) == 0)
            written = 1;
        else
            discard_file(b);
    }
    qqcnvfree(&b->cnv.cv);
    return written;
}

int raster_marker(DeviceBlock *b, int kind, double x, double y, double size) {
    qqcanvas *cv = qqcanvasof(b);
    int px, py;
    if (!cv || !to_pixel(b, x, y, &px, &py)) return 0;
    double s = size * b->sess.devscl;
    if (!(s >= 0 && s < 1e6)) return 0;
    qqcmark(cv, kind, px, py, qqnint(s));
    return 1;
}

// The canvas does everything itself but characters, images and pages:
// hardware fonts are stroked by the layer.
const DriverOps kOps = {
    .open = raster_open,
    .line = raster_line,
    .colour = raster_colour,
    .colour_table = raster_table,
    .width = raster_width,
    .linestyle = raster_style,
    .clip = raster_clip,
    .fill_polygon = raster_fill,
    .fill_rect = raster_rect,
    .clear = raster_clear,
    .close = raster_close,
    .marker = raster_marker,
};

const DeviceKey kKeys[] = {
    {"TIFF", 601, "tif", QQ_CLR_TURN_ON_WHITE}, {"IMAG", 602, "img", QQ_CLR_TURN_ON_WHITE},
    {"VIRT", 603, nullptr, QQ_CLR_TURN_ON_WHITE}, {"PNG ", 604, "png", QQ_CLR_TURN_ON_WHITE},
    {"PPM ", 605, "ppm", QQ_CLR_TURN_ON_WHITE | QQ_CLR_RGB},
    {"BMP ", 606, "bmp", QQ_CLR_TURN_ON_WHITE}, {"GIF ", 607, "gif", QQ_CLR_TURN_ON_WHITE}, {},
};

}  // namespace

extern const DeviceFamily kxfam_raster = {
    .name = "raster",
    .keys = kKeys,
    .lo = 601,
    .hi = 607,
    .kind = QQ_KIND_RASTER,
    .file = QQ_FILE_BINARY,
    .lnlen = 0,
    .viewer = "kolhpj",
    .ops = &kOps,
};
