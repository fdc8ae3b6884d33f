// incfil: a finished file drawn into a box of the page, and its settings
// filbox, filclr and filwin.  The native metafile is read here and the CGM
// in cgm_read.cpp; the image readers take their formats when they are
// built, and until then those formats are refused as unknown (warning 56).
#include "devices/incfil.h"

#include <cstdio>
#include <cstring>

#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/numfmt.h"
#include "core/session.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "devices/device_block.h"
#include "kolvex.h"

namespace {

enum { BMP = 1, PNG = 4, METAFILE = 6, CGM = 7 };

// Where the pictures of a metafile go: the box, the scale m of its
// normalised coordinates and the base line yb.
struct Placement {
    double nx, yb, m;
};

// One field of ten characters: its integer part and the value.  A field
// that begins with two blanks is a coordinate, even with no digits, and so
// is a negative one (a point on the page's edge, within the clipper's
// tolerance).
bool read_field(const char *p, int *whole, double *value) {
    int i = 0, ip = 0;
    long frac = 0;
    while (i < 10 && p[i] == ' ') ++i;
    bool negative = i < 10 && p[i] == '-';
    if (negative) ++i;
    bool any = false;
    while (i < 10 && p[i] >= '0' && p[i] <= '9') {
        ip = ip * 10 + (p[i++] - '0');
        any = true;
    }
    if (i < 10 && p[i] == '.') {
        ++i;
        for (int k = 0; k < 7; ++k) {
            int digit = (i < 10 && p[i] >= '0' && p[i] <= '9') ? p[i++] - '0' : 0;
            frac = frac * 10 + digit;
        }
        any = true;
    }
    *whole = negative ? 0 : ip;
    *value = (negative ? -1 : 1) * (ip + frac / 1e7);
    return any || (p[0] == ' ' && p[1] == ' ');
}

// Draws the metafile; 0, or the warning it ended with (36 or 122).
int include_metafile(DeviceBlock *b, FILE *fp, const int box[4]) {
    char line[96];
    if (!std::fgets(line, sizeof line, fp)) return 36;
    char *end = line;
    while (*end == ' ') ++end;
    double w = 100.0 * qqatof(end, &end);
    while (*end == ' ') ++end;
    double h = 100.0 * qqatof(end, &end);
    if (!(w > 0 && h > 0)) return 36;
    double f = box[2] / w < box[3] / h ? box[2] / w : box[3] / h;
    Placement at{(double)box[0], f * h + box[1], f * (w > h ? w : h)};

    // Colours of an RGB device with a reversed table keep their sense.
    int vlt = b->clr.vltkind;
    bool turn = vlt >= 4 && vlt <= 6 && b->sess.colbits > 8;
    int op = QQ_MOVE, offset = 0, ncoord = 0;
    double px = 0, py = 0, cx = 0;
    bool pending = false, ended = false, drawn = false;
    auto draw_pending = [&]() {
        if (!pending) return;
        qqplot(b, at.nx + px, at.yb - py, op);
        drawn = true;
        pending = false;
    };
    auto end_path = [&]() {
        if (drawn) qqplot(b, at.nx + px, at.yb - py, QQ_ENDPATH);
        drawn = false;
    };
    while (!ended && std::fgets(line, sizeof line, fp)) {
        int n = (int)std::strcspn(line, "\r\n");
        for (int k = 0; k + 10 <= n && !ended; k += 10) {
            int whole;
            double v;
            if (!read_field(line + k, &whole, &v)) continue;
            if (whole <= 1) {
                if (ncoord == 0) {
                    draw_pending();
                    cx = v * at.m;
                    ncoord = 1;
                } else {
                    px = cx;
                    py = v * at.m;
                    pending = true;
                    ncoord = 0;
                }
            } else if (whole == 2 || whole == 3) {
                op = whole == 2 ? QQ_DRAW : QQ_MOVE;
            } else if (whole == 9) {
                draw_pending();
                ended = true;
            } else if (whole == 99) {
                offset += 89;
            } else {
                draw_pending();
                int index = whole + offset - 9;
                if (index == 256) index = 0;
                if (turn && (index == 0 || index == 255)) index = 255 - index;
                if (!b->dev.fclrnone) {
                    end_path();
                    qqsetc(b, index);
                }
                offset = 0;
            }
        }
    }
    end_path();
    if (std::ferror(fp)) return 36;
    return ended ? 0 : 122;
}

}  // namespace

void incfil(const char *cfil) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("incfil"));
    if (!b) return;
    const char *name = cfil ? cfil : "";
    int w, h;
    int type = qqfiletype(name, &w, &h);
    if (type < 0) {
        qqwarc(b, 36, name);
        return;
    }
    if (type >= BMP && type <= PNG) {
        int kind = qqdevkind(b);
        if (kind != QQ_KIND_SCREEN && kind != QQ_KIND_PAGE && kind != QQ_KIND_RASTER) {
            qqwar0(b, 40);
            return;
        }
    }
    if (type != METAFILE && type != CGM) {
        qqwar0(b, 56);
        return;
    }
    const DeviceState &d = b->dev;
    int box[4] = {0, 0, b->core.nxp + 1, b->core.nyp + 1};
    if (d.fboxset) std::memcpy(box, d.fbox, sizeof box);
    FILE *fp = std::fopen(name, "rb");
    if (!fp) {
        qqwarc(b, 36, name);
        return;
    }
    qqflsh(b);
    // The file's colours end with the file.
    int colour = b->clr.curclr;
    int w2 = type == CGM ? qqincgm(b, fp, box) : include_metafile(b, fp, box);
    std::fclose(fp);
    if (b->clr.curclr != colour) qqsetc(b, colour);
    if (w2 == 122)
        qqwar1(b, 122, "The PLOGFL file is not complete!");
    else if (w2 != 0)
        qqwarc(b, 36, name);
    // What was drawn gets the frame of the frame thickness round its box.
    if ((w2 == 0 || w2 == 122) && d.boxframe) {
        qqflsh(b);
        d.boxframe(b, box[0], box[1], box[2], box[3]);
    }
}

namespace {

// The box of filbox or the window of filwin: y through the page origin,
// a corner not negative (warning 1) and a size of at least 1 (warning 2);
// with a page limit, a box that leaves the page gives warning 2 too.
// Stores the four values and returns true when they pass.
bool store_box(DeviceBlock *b, int nx, int ny, int nw, int nh, bool on_page, int out[4]) {
    ny = qqyflpi(b, ny);
    if (nx < 0 || ny < 0) {
        qqwarn(b, 1, nx < ny ? nx : ny);
        return false;
    }
    if (nw < 1 || nh < 1) {
        qqwarn(b, 2, nw < nh ? nw : nh);
        return false;
    }
    long long x2 = (long long)nx + nw - 1, y2 = (long long)ny + nh - 1;
    if (on_page && (x2 > b->core.nxp || y2 > b->core.nyp)) {
        qqwarn(b, 2, (int)(x2 > b->core.nxp ? (x2 > 0x7fffffff ? 0x7fffffff : x2) : y2));
        return false;
    }
    out[0] = nx;
    out[1] = ny;
    out[2] = nw;
    out[3] = nh;
    return true;
}

}  // namespace

void filbox(int nx, int ny, int nw, int nh) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("filbox"));
    if (b && store_box(b, nx, ny, nw, nh, true, b->dev.fbox)) b->dev.fboxset = 1;
}

// The window is in the pixels of an image not yet read: the reader tests
// it against the image.
void filwin(int nx, int ny, int nw, int nh) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("filwin"));
    if (b && store_box(b, nx, ny, nw, nh, false, b->dev.fwin)) b->dev.fwinset = 1;
}

void filclr(const char *cmode) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("filclr"));
    if (!b) return;
    int k = qqkey(b, "ALL +NONE", 2, cmode);
    if (k > 0) b->dev.fclrnone = (unsigned char)(k - 1);
}
