// The IPE driver (device 802): an XML file of the Ipe drawing editor,
// file format 70010, in points.
//
// A plot coordinate is a tenth of a millimetre times unitf·sclf, so s =
// unitf·sclf·72/254.  Ipe's y axis runs upward: positions map as (s·x,
// s·(nyp − y)), on a portrait-rotated page (s·y, s·x), written with one
// decimal.  Lines are collected into path objects of at most 100 points;
// filled polygons and rectangles are filled paths; hardware characters are
// LaTeX labels, one character each.  Every object lies on the one layer
// "alpha"; newpag starts a new page of the document.
#include <cmath>

#include "colour/colour.h"
#include "core/family.h"
#include "core/text.h"
#include "devices/device.h"
#include "devices/device_block.h"
#include "devices/vector.h"

namespace {

// A colour as Ipe reads it: three numbers 0 to 1, "0" and "1" plain,
// others with three decimals.
void colour_text(DeviceBlock *b, int r, int g, int bl) {
    int parts[3] = {r, g, bl};
    for (int i = 0; i < 3; ++i) {
        if (i > 0) qqvchr(b, ' ');
        int v = parts[i];
        if (v <= 0)
            qqvchr(b, '0');
        else if (v >= 255)
            qqvchr(b, '1');
        else
            qqvnum(b, (int)(v * 1000.0 / 255.0 + 0.5) / 1000.0, 3);
    }
}

void current_colour(DeviceBlock *b) {
    colour_text(b, b->vec.r, b->vec.g, b->vec.bl);
}

void point(DeviceBlock *b, double x, double y, const char *op) {
    qqvnum(b, x, 1);
    qqvchr(b, ' ');
    qqvnum(b, y, 1);
    qqvput(b, op);
}

void write_poly(DeviceBlock *b) {
    VectorState &v = b->vec;
    if (v.npts < 2) return;
    qqvput(b, "<path layer=\"alpha\" stroke=\"");
    current_colour(b);
    qqvput(b, "\" pen=\"");
    qqvnum(b, v.strokew, 3);
    qqvput(b, "\">\n");
    point(b, v.ptx[0], v.pty[0], " m\n");
    for (int i = 1; i < v.npts; ++i) point(b, v.ptx[i], v.pty[i], " l\n");
    qqvput(b, "</path>\n");
}

void end_path(DeviceBlock *b) {
    qqvcollect(b, 0, 0, QQ_ENDPATH, write_poly);
}

// The thinnest pen: a quarter millimetre at unit scale.
double thin_pen(DeviceBlock *b) {
    return b->sess.devscl / b->core.unitf * 2.5;
}

int ipe_open(DeviceBlock *b) {
    SessionState &s = b->sess;
    VectorState &v = b->vec;
    if (qqvalloc(b) != 0) return 1;
    s.devscl = b->core.unitf * s.sclf * 72.0 / 254.0;
    s.colbits = 24;
    v.r = v.g = v.bl = 0;
    v.strokew = thin_pen(b);

    int t[6];
    qqvtime(t);
    char stamp[20] = "D:";
    const int digits[6] = {4, 2, 2, 2, 2, 2};
    int n = 2;
    for (int i = 0; i < 6; ++i) n += qqicha(t[i], stamp + n, digits[i] + 1, digits[i], 1);
    // The paper holds the picture: a portrait-rotated page turns it.
    double pw = b->core.nxp * s.devscl, ph = b->core.nyp * s.devscl;
    if (s.pagrot == 1) {
        double k = pw;
        pw = ph;
        ph = k;
    }
    char size[48];
    int k = qqicha((int)(pw + 0.5), size, 20, 0, 0);
    size[k++] = ' ';
    qqicha((int)(ph + 0.5), size + k, 20, 0, 0);

    qqvput(b, "<?xml version=\"1.0\"?>\n<!DOCTYPE ipe SYSTEM \"ipe.dtd\">\n");
    qqvput(b, "<ipe version=\"70010\" creator=\"Kolvex 11.5\">\n<info created=\"");
    qqvput(b, stamp);
    qqvput(b, "\" modified=\"");
    qqvput(b, stamp);
    qqvput(b, "\"/>\n<preamble>\\usepackage{times,graphicx}</preamble>\n");
    qqvput(b, "<ipestyle name=\"basic\">\n<layout paper=\"");
    qqvput(b, size);
    qqvput(b, "\" frame=\"");
    qqvput(b, size);
    qqvput(b, "\" origin=\"0 0\"/>\n</ipestyle>\n<page>\n<layer name=\"alpha\"/>\n");
    qqvput(b, "<view layers=\"alpha\" active=\"alpha\"/>\n");
    return 0;
}

void ipe_line(DeviceBlock *b, double x, double y, int op) {
    double dx, dy;
    qqmapup(b, x, y, &dx, &dy);
    qqvcollect(b, dx, dy, op, write_poly);
}

void ipe_colour(DeviceBlock *b, int, int r, int g, int bl, int) {
    VectorState &v = b->vec;
    end_path(b);
    v.r = (unsigned char)r;
    v.g = (unsigned char)g;
    v.bl = (unsigned char)bl;
}

// The pen: never thinner than the thinnest line; linwid(1) and penwid(1)
// keep the setting thin, so that nothing is emulated either way.
int ipe_width(DeviceBlock *b, double n, int fractional) {
    VectorState &v = b->vec;
    end_path(b);
    double s = b->sess.devscl, p = thin_pen(b);
    if (n <= 0) {
        v.strokew = p;
        return 0;
    }
    bool one = fractional ? std::fabs(n - 1.0) < 0.001 : n <= 1;
    if (one) {
        v.strokew = p;
        return 2;
    }
    if (fractional && n < 0.99)
        v.strokew = n * p;
    else
        v.strokew = n * s > p ? n * s : p;
    return 1;
}

int ipe_fill(DeviceBlock *b, const double *x, const double *y, int n) {
    if (n < 1 || (b->dev.pl3on == 0 && !qqvinside(b, x, y, n))) return 0;
    end_path(b);
    qqvput(b, "<path layer=\"alpha\" fill=\"");
    current_colour(b);
    qqvput(b, "\" stroke=\"");
    current_colour(b);
    qqvput(b, "\">\n");
    double dx, dy;
    for (int i = 0; i < n; ++i) {
        qqmapup(b, x[i], y[i], &dx, &dy);
        point(b, dx, dy, i == 0 ? " m\n" : " l\n");
    }
    qqmapup(b, x[0], y[0], &dx, &dy);
    point(b, dx, dy, " l\n");
    qqvput(b, "</path>\n");
    return 1;
}

void ipe_rect(DeviceBlock *b, int x1, int y1, int x2, int y2, int colour) {
    if (!qqvcutrect(b, &x1, &y1, &x2, &y2)) return;
    end_path(b);
    double ax, ay, bx, by;
    qqmapup(b, x1, y1, &ax, &ay);
    qqmapup(b, x2, y2, &bx, &by);
    int r, g, bl;
    qqclrrgb(b, colour, &r, &g, &bl);
    qqvput(b, "<path layer=\"alpha\" fill=\"");
    colour_text(b, r, g, bl);
    qqvput(b, "\">\n");
    point(b, ax, ay, " m\n");
    point(b, ax, by, " l\n");
    point(b, bx, by, " l\n");
    point(b, bx, ay, " l\n");
    point(b, ax, ay, " l\n");
    qqvput(b, "</path>\n");
}

// The character as LaTeX reads it, with the closing tag.
void label_text(DeviceBlock *b, int code) {
    int ch = qqvlatin(code);
    if (code > 186) {
        qqvput(b, " </text>\n");
        return;
    }
    switch (ch) {
        case '>':
            qqvput(b, "\\textgreater</text>\n");
            return;
        case '<':
            qqvput(b, "\\textless</text>\n");
            return;
        case '\\':
            qqvput(b, "\\textbackslash</text>\n");
            return;
        case '~':
            qqvput(b, "\\textasciitilde</text>\n");
            return;
        case '^':
            qqvput(b, "\\textasciicircum</text>\n");
            return;
        // The ampersand must be escaped for XML as well as for LaTeX.
        case '&':
            qqvput(b, "\\&amp;</text>\n");
            return;
        case '}':
        case '{':
        case '$':
        case '%':
        case '#':
        case '_':
            qqvchr(b, '\\');
            qqvchr(b, ch);
            qqvput(b, "</text>\n");
            return;
        default:
            // The file declares no encoding, so XML and LaTeX read it as
            // UTF-8: an accented letter takes two bytes.
            if (ch >= 0x80) {
                qqvchr(b, 0xC0 | (ch >> 6));
                qqvchr(b, 0x80 | (ch & 0x3F));
            } else {
                qqvchr(b, ch);
            }
            qqvput(b, "</text>\n");
    }
}

int ipe_char(DeviceBlock *b, const QQHwChar *c) {
    const VectorState &v = b->vec;
    end_path(b);
    double x, y, dx, dy;
    qqvplace(b, c, &x, &y);
    qqmapup(b, x, y, &dx, &dy);
    qqvput(b, "<text pos=\"");
    point(b, dx, dy, "\" type=\"label\" valign=\"baseline\" ");
    // Black is the label's own colour.
    if (v.r != 0 || v.g != 0 || v.bl != 0) {
        qqvput(b, "stroke=\"");
        current_colour(b);
        qqvput(b, "\" ");
    }
    float per_cap = c->capheight > 0 ? 1000.0f / (float)c->capheight : 1.0f;
    qqvput(b, "size=\"");
    qqvnum(b, c->height * b->sess.devscl * per_cap, 1);
    qqvchr(b, '"');
    int angle = qqvangle(b, c->angle);
    if (angle == 0) {
        qqvchr(b, '>');
    } else {
        qqvchr(b, '\n');
        if (angle == 90 || angle == 180) qqvput(b, "halign=\"right\" ");
        qqvput(b, ">\\rotatebox{");
        qqvint(b, angle);
        qqvchr(b, '}');
    }
    label_text(b, c->code);
    return 1;
}

void ipe_page(DeviceBlock *b) {
    end_path(b);
    qqvput(b, "</page>\n<page>\n");
}

int ipe_close(DeviceBlock *b) {
    end_path(b);
    qqvput(b, "</page>\n</ipe>\n");
    qqvfree(b);
    return 1;
}

// Colours arrive as red, green, blue; caps, joins and miter limits are not
// written; the layer clips and draws markers; every label carries its own
// size.
const DriverOps kOps = {
    .open = ipe_open,
    .line = ipe_line,
    .colour = ipe_colour,
    .width = ipe_width,
    .fill_polygon = ipe_fill,
    .fill_rect = ipe_rect,
    .new_page = ipe_page,
    .close = ipe_close,
    .character = ipe_char,
};

const DeviceKey kKeys[] = {{"IPE ", 802, "ipe", QQ_CLR_TURN_ON_WHITE | QQ_CLR_WHITE_BACK}, {}};

}  // namespace

extern const DeviceFamily kxfam_ipe = {
    .name = "IPE",
    .keys = kKeys,
    .lo = 802,
    .hi = 802,
    .kind = QQ_KIND_FILE,
    .file = 0,
    .lnlen = 0,  // writes its own lines
    .viewer = "koldot",
    .ops = &kOps,
};
