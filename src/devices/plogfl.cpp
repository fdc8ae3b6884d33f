// The native metafile: a text stream of fixed-width numbers.
//
// After a header line with the page size in centimetres come fields of
// exactly ten characters, eight to a line: coordinate pairs normalised so
// that the long page side runs from 0 to 1 with y upward, an operation
// field (" 2.0000000" draw, " 3.0000000" move) only when the operation
// changes, colour fields, and " 9.0000000" at the end.
#include <algorithm>
#include <cstdio>

#include "core/family.h"
#include "core/numfmt.h"
#include "devices/device.h"
#include "devices/device_block.h"

namespace {

void field(DeviceBlock *b, double v) {
    char text[16];
    int n = qqfmtf(text, sizeof text, v, 10, 7);
    qqsbuf(b, text, n);
}

int plog_open(DeviceBlock *b) {
    const CoreState &c = b->core;
    SessionState &s = b->sess;
    int hi = std::max(c.nxp, c.nyp);
    s.devscl = 1.0 / (hi > 0 ? hi : 1);
    s.colbits = 8;
    double a = c.unitf * s.sclf;
    double w = c.nxp * a / 100.0, h = c.nyp * a / 100.0;
    if (s.pagrot == 1) std::swap(w, h);
    char head[64];
    int n = qqfmtf(head, sizeof head, w, 10, 1);
    n += qqfmtf(head + n, (int)sizeof head - n, h, 10, 1);
    head[n++] = '\n';
    if (s.fhnd) std::fwrite(head, 1, (size_t)n, s.fhnd);
    b->dev.lastop = 0;
    return 0;
}

void plog_line(DeviceBlock *b, double x, double y, int op) {
    if (op != QQ_DRAW && op != QQ_MOVE) return;
    double dx, dy;
    qqmapup(b, x, y, &dx, &dy);
    field(b, dx);
    field(b, dy);
    if (op != b->dev.lastop) {
        field(b, op);
        b->dev.lastop = op;
    }
}

void plog_colour(DeviceBlock *b, int value, int r, int g, int bl, int index) {
    int c = index == 0 ? 256 : index;
    int q = c / 89, rest = c - 89 * q;
    if (rest == 0) {
        rest = 89;
        --q;
    }
    for (int i = 0; i < q; ++i) field(b, 99.0);
    field(b, rest + 9.0);
}

int plog_close(DeviceBlock *b) {
    field(b, 9.0);
    b->dev.lastop = 0;
    return 1;
}

// Fills, widths, markers and characters are all drawn as lines by the
// layer: the metafile holds nothing but lines and colours.
const DriverOps kOps = {
    .open = plog_open,
    .line = plog_line,
    .colour = plog_colour,
    .close = plog_close,
};

const DeviceKey kKeys[] = {{"PLOG", 201, "met", 0}, {}};

}  // namespace

extern const DeviceFamily kxfam_plogfl = {
    .name = "native metafile",
    .keys = kKeys,
    .lo = 201,
    .hi = 201,
    .kind = QQ_KIND_FILE,
    .file = 0,
    .lnlen = 80,
    .viewer = "koldrv",
    .ops = &kOps,
};
