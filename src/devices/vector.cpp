// The shared part of the SVG, IPE and Java drivers; see vector.h.
#include "devices/vector.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "core/filetime.h"
#include "core/numfmt.h"
#include "core/subsystems.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "devices/device_block.h"

namespace {

// The point buffer belongs to a session; a block that goes away in the
// middle of one must not keep it.
void vector_release(CoreBlock *blk) {
    DeviceBlock *b = qqdevblk(blk);
    qqvfree(b);
}

// The accented letters of the internal codes 127 to 186 as ISO-8859-1.
const unsigned char kLatin[60] = {
    0xC4, 0xD6, 0xDC, 0xE4, 0xF6, 0xFC, 0xDF, 0xC5, 0xD8, 0xC6, 0xE5, 0xF8, 0xE6, 0xD1, 0xF1,
    0xC7, 0xE7, 0xCB, 0xCF, 0xEB, 0xEF, 0xC1, 0xC9, 0xCD, 0xD3, 0xDA, 0xE1, 0xE9, 0xED, 0xF3,
    0xFA, 0xC0, 0xC8, 0xCC, 0xD2, 0xD9, 0xE0, 0xE8, 0xEC, 0xF2, 0xF9, 0xC2, 0xCA, 0xCE, 0xD4,
    0xDB, 0xE2, 0xEA, 0xEE, 0xF4, 0xFB, 0xC3, 0xE3, 0xD5, 0xF5, 0xDD, 0xFD, 0xFF, 0xA1, 0xBF,
};

}  // namespace

extern const Subsystem kxsub_vector = {"vector",       nullptr, nullptr,
                                       vector_release, nullptr, nullptr};

void qqvput(DeviceBlock *b, const char *text) noexcept {
    if (b->sess.fhnd) std::fputs(text, b->sess.fhnd);
}

void qqvchr(DeviceBlock *b, int c) noexcept {
    if (b->sess.fhnd) std::fputc(c, b->sess.fhnd);
}

void qqvnum(DeviceBlock *b, double v, int prec) noexcept {
    char text[400];
    qqfmtf(text, sizeof text, v, 0, prec);
    qqvput(b, text);
}

void qqvint(DeviceBlock *b, long long v) noexcept {
    char text[32];
    qqfmti(text, sizeof text, v, 0);
    qqvput(b, text);
}

void qqvhex(DeviceBlock *b, int r, int g, int bl) noexcept {
    static const char digits[] = "0123456789abcdef";
    char text[7];
    int parts[3] = {r, g, bl};
    for (int i = 0; i < 3; ++i) {
        text[2 * i] = digits[(parts[i] >> 4) & 15];
        text[2 * i + 1] = digits[parts[i] & 15];
    }
    text[6] = '\0';
    qqvput(b, text);
}

int qqvalloc(DeviceBlock *b) noexcept {
    VectorState &v = b->vec;
    qqvfree(b);
    v.ptx = static_cast<double *>(std::malloc(2 * QQ_VPOINTS * sizeof(double)));
    if (!v.ptx) {
        qqwar0(b, 53);
        return 53;
    }
    v.pty = v.ptx + QQ_VPOINTS;
    v.npts = 0;
    v.penx = v.peny = 0;
    return 0;
}

void qqvfree(DeviceBlock *b) noexcept {
    VectorState &v = b->vec;
    std::free(v.ptx);
    v.ptx = v.pty = nullptr;
    v.npts = 0;
}

void qqvcollect(DeviceBlock *b, double x, double y, int op,
                void (*write_poly)(DeviceBlock *)) noexcept {
    VectorState &v = b->vec;
    if (!v.ptx) return;
    if (op == QQ_DRAW) {
        // A draw with nothing collected goes on from where the last
        // polyline ended, across a colour or width change.
        if (v.npts == 0) {
            v.ptx[0] = v.penx;
            v.pty[0] = v.peny;
            v.npts = 1;
        }
        v.ptx[v.npts] = x;
        v.pty[v.npts] = y;
        if (++v.npts < QQ_VPOINTS) return;
        // A full element goes out; the line goes on from its last point.
        write_poly(b);
        v.ptx[0] = x;
        v.pty[0] = y;
        v.npts = 1;
        return;
    }
    write_poly(b);
    if (op == QQ_MOVE) {
        v.ptx[0] = x;
        v.pty[0] = y;
        v.npts = 1;
        return;
    }
    if (v.npts > 0) {
        v.penx = v.ptx[v.npts - 1];
        v.peny = v.pty[v.npts - 1];
    }
    v.npts = 0;
}

void qqvtime(int t[6]) noexcept { qqfiletime(t); }

void qqvdate(char *date, char *clock) noexcept {
    int t[6];
    qqvtime(t);
    qqicha(t[2], date, 3, 2, 1);
    date[2] = '.';
    qqicha(t[1], date + 3, 3, 2, 1);
    date[5] = '.';
    qqicha(t[0], date + 6, 5, 4, 1);
    qqicha(t[3], clock, 3, 2, 1);
    clock[2] = ':';
    qqicha(t[4], clock + 3, 3, 2, 1);
    clock[5] = ':';
    qqicha(t[5], clock + 6, 3, 2, 1);
}

int qqvlatin(int code) noexcept {
    if (code >= 127 && code <= 186) return kLatin[code - 127];
    // Control characters have no place in a text file's strings.
    if (code < 32 || code > 186) return ' ';
    return code;
}

int qqvangle(DeviceBlock *b, int angle) noexcept {
    // On a portrait-rotated page the direction of increasing x runs up the
    // sheet, so upright text turns by a quarter.
    if (b->sess.pagrot == 1) angle += 90;
    return angle;
}

void qqvplace(DeviceBlock *b, const QQHwChar *c, double *x, double *y) noexcept {
    double a = c->pitch > 0 ? (c->pitch - c->width) * 0.5 : 0.0;
    double t = c->angle * b->core.xdegr;
    double sn = std::sin(t), cs = std::cos(t);
    *x = c->x - sn * c->shift + cs * a;
    *y = c->y - cs * c->shift - sn * a;
}

bool qqvinside(DeviceBlock *b, const double *x, const double *y, int n) noexcept {
    for (int i = 0; i < n; ++i)
        if (qqin(b, x[i], y[i]) != 0) return false;
    return true;
}

bool qqvcutrect(DeviceBlock *b, int *x1, int *y1, int *x2, int *y2) noexcept {
    const DeviceState &d = b->dev;
    int lx = *x1 < *x2 ? *x1 : *x2, hx = *x1 < *x2 ? *x2 : *x1;
    int ly = *y1 < *y2 ? *y1 : *y2, hy = *y1 < *y2 ? *y2 : *y1;
    if (lx < d.clpx1) lx = d.clpx1;
    if (ly < d.clpy1) ly = d.clpy1;
    if (hx > d.clpx2) hx = d.clpx2;
    if (hy > d.clpy2) hy = d.clpy2;
    if (lx > hx || ly > hy) return false;
    *x1 = lx;
    *y1 = ly;
    *x2 = hx;
    *y2 = hy;
    return true;
}
