// The CGM branch of incfil: a binary CGM of the form this library writes,
// drawn into a box of the page.
//
// Elements are 16-bit big-endian words: class in the top 4 bits, id in the
// next 7, the parameter length in bytes in the low 5 (31: a further word
// holds it), odd lengths padded to even.  Only polylines (class 4, id 1)
// and line colours (class 5, id 4) are drawn; the colour selection mode
// (class 2, id 2) tells indexed from direct colours.  The first pass finds
// the extent of the coordinates, the second draws them scaled into the box
// with y turned upward.  Both stream through the file.
#include "devices/incfil.h"

#include <cstdio>

#include "colour/colour.h"
#include "devices/device_block.h"
#include "devices/device.h"

namespace {

struct Element {
    int cls, id;
    long len;  // parameter bytes, without the pad byte
};

bool word(FILE *fp, unsigned *w) {
    int hi = std::fgetc(fp), lo = std::fgetc(fp);
    if (hi == EOF || lo == EOF) return false;
    *w = ((unsigned)hi << 8) | (unsigned)lo;
    return true;
}

bool next_element(FILE *fp, Element *e) {
    unsigned w;
    if (!word(fp, &w)) return false;
    e->cls = (int)(w >> 12);
    e->id = (int)((w >> 5) & 127);
    e->len = (long)(w & 31);
    if (e->len == 31) {
        unsigned l;
        if (!word(fp, &l)) return false;
        e->len = (long)(l & 0x7fff);  // the top bit marks a partition
    }
    return true;
}

// Skips the parameters of an element of which k bytes have been read.
bool skip_rest(FILE *fp, const Element &e, long k) {
    long rest = e.len - k + (e.len & 1);
    return rest <= 0 || std::fseek(fp, rest, SEEK_CUR) == 0;
}

// A coordinate word: signed, raised by 32767 with indexed colours.
long coordinate(unsigned w, bool direct) {
    long v = (long)(short)(w & 0xffff);
    return direct ? v : v + 32767;
}

bool end_of_metafile(const Element &e) {
    return e.cls == 0 && e.id == 2;
}
bool is_polyline(const Element &e) {
    return e.cls == 4 && e.id == 1;
}
bool is_colour_mode(const Element &e) {
    return e.cls == 2 && e.id == 2;
}
bool is_line_colour(const Element &e) {
    return e.cls == 5 && e.id == 4;
}

// Reads the colour selection mode: 1 is direct.
bool colour_mode(FILE *fp, const Element &e, bool *direct) {
    unsigned v;
    if (e.len >= 2) {
        if (!word(fp, &v)) return false;
        *direct = v == 1;
        return skip_rest(fp, e, 2);
    }
    return skip_rest(fp, e, 0);
}

// Pass 1: the largest trunc(v / 2 + 0.5) in x and y.
bool extent(FILE *fp, long *mx, long *my) {
    bool direct = false;
    Element e;
    *mx = *my = 0;
    while (next_element(fp, &e) && !end_of_metafile(e)) {
        if (is_colour_mode(e)) {
            if (!colour_mode(fp, e, &direct)) return false;
            continue;
        }
        long k = 0;
        if (is_polyline(e)) {
            for (; k + 4 <= e.len; k += 4) {
                unsigned wx, wy;
                if (!word(fp, &wx) || !word(fp, &wy)) return false;
                long x = (long)(coordinate(wx, direct) * 0.5 + 0.5);
                long y = (long)(coordinate(wy, direct) * 0.5 + 0.5);
                if (x > *mx) *mx = x;
                if (y > *my) *my = y;
            }
        }
        if (!skip_rest(fp, e, k)) return false;
    }
    ++*mx;
    ++*my;
    return !std::ferror(fp);
}

}  // namespace

int qqincgm(DeviceBlock *b, FILE *fp, const int box[4]) noexcept {
    long mx, my;
    if (!extent(fp, &mx, &my)) return 36;
    std::rewind(fp);
    double fx = box[2] / (double)mx, fy = box[3] / (double)my;
    double f = fx < fy ? fx : fy, yb = f * my + box[1], nx = box[0];
    bool direct = false;
    Element e;
    while (next_element(fp, &e) && !end_of_metafile(e)) {
        long k = 0;
        if (is_colour_mode(e)) {
            if (!colour_mode(fp, e, &direct)) return 36;
            continue;
        }
        if (is_polyline(e)) {
            double x = 0, y = 0;
            for (; k + 4 <= e.len; k += 4) {
                unsigned wx, wy;
                if (!word(fp, &wx) || !word(fp, &wy)) return 36;
                x = nx + coordinate(wx, direct) * 0.5 * f;
                y = yb - coordinate(wy, direct) * 0.5 * f;
                qqplot(b, x, y, k == 0 ? QQ_MOVE : QQ_DRAW);
            }
            if (k > 0) qqplot(b, x, y, QQ_ENDPATH);
        } else if (is_line_colour(e) && !b->dev.fclrnone) {
            int c[3] = {0, 0, 0};
            int n = direct ? 3 : 1;
            for (; k < n && k < e.len; ++k) c[k] = std::fgetc(fp);
            if (c[0] == EOF || c[1] == EOF || c[2] == EOF) return 36;
            if (!direct)
                qqsetc(b, c[0]);
            else if (c[0] == 0 && c[1] == 0 && c[2] == 0)
                qqsetc(b, b->clr.forclr);
            else if (c[0] == 255 && c[1] == 255 && c[2] == 255)
                qqsetc(b, b->clr.bckclr);
            else
                qqsetc(b, qqrgbval(c[0], c[1], c[2]));
        }
        if (!skip_rest(fp, e, k)) return 36;
    }
    return std::ferror(fp) ? 36 : 0;
}
