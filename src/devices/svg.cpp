// The SVG driver (device 801): an SVG 1.0 document in pixels.
//
// Positions map as (s·x, s·y), on a portrait-rotated page (s·y, s·(nxp −
// x)), with s from the fit rule for the picture size of winsiz, and are
// written with two decimals.  Everything drawn stands in a group that
// carries its colour: a stroke group (fill none, stroke colour and width)
// for lines, polygons and rectangles, a text group (font and fill colour)
// for hardware characters.  A group stays open until the colour, the line
// width or the kind of thing drawn changes.  Lines are collected into
// elements of at most 100 points: a line element for two points, a
// polyline for more.
#include "colour/colour.h"
#include "core/family.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "devices/device_block.h"
#include "devices/vector.h"
#include "raster/canvas.h"
#include "raster/writers.h"

#include <cstdlib>

namespace {

enum { NO_GROUP = 0, STROKE = 1, TEXT = 2 };

// Family, weight and style of the 35 PostScript fonts.
const char *const kFamily[4] = {"Times", "Helvetica", "Courier", "Symbol"};
const char *const kWeight[2] = {"normal", "bold"};
const char *const kStyle[3] = {"normal", "italic", "oblique"};
const unsigned char kFonts[35][3] = {
    {0, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 1, 1},  // Times
    {1, 0, 0}, {1, 1, 0}, {1, 0, 2}, {1, 1, 2}, {1, 0, 0}, {1, 1, 0}, {1, 0, 2},
    {1, 1, 2}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0},  // 12 to 17
    {2, 0, 0}, {2, 1, 0}, {2, 0, 2}, {2, 1, 2},                                   // Courier
    {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0},  // 22 to 33
    {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {3, 0, 0},             // Symbol
};

// The font size of a text group, in pixels.
int font_size(DeviceBlock *b, double height) {
    double v = height * 22.0 * b->sess.devscl / 15.0 + 0.5;
    return v > 0 && v < 2e9 ? (int)v : 0;
}

// Brings the group to the wanted state; c gives the font of a text group.
void group(DeviceBlock *b, int wanted, const QQHwChar *c = nullptr) {
    VectorState &v = b->vec;
    if (v.group == wanted) return;
    if (v.group != NO_GROUP) qqvput(b, "</g>\n");
    v.group = NO_GROUP;
    if (wanted == STROKE) {
        qqvput(b, "<g fill=\"none\" stroke=\"#");
        qqvhex(b, v.r, v.g, v.bl);
        qqvput(b, "\" stroke-width=\"");
        qqvnum(b, v.strokew, 3);
        qqvput(b, "\">\n");
    } else if (wanted == TEXT && c) {
        int f = c->font >= 0 && c->font < 35 ? c->font : 0;
        qqvput(b, "<g font-family=\"");
        qqvput(b, kFamily[kFonts[f][0]]);
        qqvput(b, "\" font-weight=\"");
        qqvput(b, kWeight[kFonts[f][1]]);
        qqvput(b, "\" font-style=\"");
        qqvput(b, kStyle[kFonts[f][2]]);
        qqvput(b, "\"\nfont-size=\"");
        v.groupsize = font_size(b, c->height);
        qqvint(b, v.groupsize);
        qqvput(b, "\" stroke=\"none\" fill=\"#");
        qqvhex(b, v.r, v.g, v.bl);
        qqvput(b, "\">\n");
        v.groupfont = c->font;
    } else {
        return;
    }
    v.group = (unsigned char)wanted;
}

// The points of a polyline or polygon: a line break after every fifth
// pair unless it is the last.
void points(DeviceBlock *b, const double *x, const double *y, int n) {
    for (int i = 0; i < n; ++i) {
        qqvchr(b, ' ');
        qqvnum(b, x[i], 2);
        qqvput(b, ", ");
        qqvnum(b, y[i], 2);
        if (i % 5 == 4 && i != n - 1) qqvchr(b, '\n');
    }
}

void write_poly(DeviceBlock *b) {
    VectorState &v = b->vec;
    if (v.npts == 0) return;
    // Even a lone point opens the group, which the end closes.
    group(b, STROKE);
    if (v.npts == 2) {
        qqvput(b, "<line x1=\"");
        qqvnum(b, v.ptx[0], 2);
        qqvput(b, "\" y1=\"");
        qqvnum(b, v.pty[0], 2);
        qqvput(b, "\" x2=\"");
        qqvnum(b, v.ptx[1], 2);
        qqvput(b, "\" y2=\"");
        qqvnum(b, v.pty[1], 2);
        qqvput(b, "\"/>\n");
    } else if (v.npts > 2) {
        qqvput(b, "<polyline points=\"\n");
        points(b, v.ptx, v.pty, v.npts);
        qqvput(b, "\"/>\n");
    }
}

// The rect element, in device units.
void rect(DeviceBlock *b, double x, double y, double w, double h, int r, int g, int bl) {
    group(b, STROKE);
    qqvput(b, "<rect x=\"");
    qqvnum(b, x, 2);
    qqvput(b, "\" y=\"");
    qqvnum(b, y, 2);
    qqvput(b, "\" width=\"");
    qqvnum(b, w, 2);
    qqvput(b, "\" height=\"");
    qqvnum(b, h, 2);
    qqvput(b, "\"\n fill=\"#");
    qqvhex(b, r, g, bl);
    qqvput(b, "\" stroke=\"none\"/>\n");
}

void end_path(DeviceBlock *b) {
    qqvcollect(b, 0, 0, QQ_ENDPATH, write_poly);
}

int svg_open(DeviceBlock *b) {
    SessionState &s = b->sess;
    VectorState &v = b->vec;
    if (qqvalloc(b) != 0) return 1;
    int w = s.wsiz[0], h = s.wsiz[1];
    s.devscl = qqfitscale(b, w, h);
    s.colbits = 24;
    v.r = v.g = v.bl = 0;
    v.strokew = 1.0;
    v.group = NO_GROUP;
    v.groupfont = -1;

    char date[11], clock[9];
    qqvdate(date, clock);
    qqvput(b, "<?xml version=\"1.0\" encoding=\"ISO-8859-1\" standalone=\"no\"?>\n");
    qqvput(b, "<!DOCTYPE svg PUBLIC \"-//W3C//DTD SVG 20010904//EN\"\n");
    qqvput(b, "  \"http://www.w3.org/TR/2001/REC-SVG-20010904/DTD/svg10.dtd\">\n");
    qqvput(b, "<!-- Created by KOLVEX (https://www.kolvex.org)\nVersion: 11.5\nDate   : ");
    qqvput(b, date);
    qqvchr(b, ' ');
    qqvput(b, clock);
    qqvput(b, "\n-->\n<svg width=\"");
    qqvint(b, w);
    qqvput(b, "\" height=\"");
    qqvint(b, h);
    qqvput(b, "\"\n  xmlns=\"http://www.w3.org/2000/svg\"\n");
    qqvput(b, "  xmlns:xlink=\"http://www.w3.org/1999/xlink\">\n\n");
    // The sheet is white unless the screen mode asks for a dark one.
    if (s.bgmode != 2) rect(b, 0, 0, w - 1, h - 1, 0, 0, 0);
    return 0;
}

void svg_line(DeviceBlock *b, double x, double y, int op) {
    double dx, dy;
    qqmapdown(b, x, y, &dx, &dy);
    qqvcollect(b, dx, dy, op, write_poly);
}

void svg_colour(DeviceBlock *b, int, int r, int g, int bl, int) {
    VectorState &v = b->vec;
    end_path(b);
    group(b, NO_GROUP);
    v.r = (unsigned char)r;
    v.g = (unsigned char)g;
    v.bl = (unsigned char)bl;
}

// A width of n plot coordinates is scaled like the positions, so that a
// line is as wide as on every other device; the thinnest line is the 1.0
// of the open, as one pixel is on raster output.  n = 0 (hardware lines
// off) gives that thinnest line.
int svg_width(DeviceBlock *b, double n, int) {
    end_path(b);
    group(b, NO_GROUP);
    double w = n * b->sess.devscl;
    b->vec.strokew = n > 0 && w > 1.0 ? w : 1.0;
    return n > 0 ? 1 : 0;
}

int svg_fill(DeviceBlock *b, const double *x, const double *y, int n) {
    // A polygon that crosses the clip window is hatched by the layer,
    // which clips its lines.
    if (n < 1 || (b->dev.pl3on == 0 && !qqvinside(b, x, y, n))) return 0;
    VectorState &v = b->vec;
    group(b, STROKE);
    qqvput(b, "<polygon fill=\"#");
    qqvhex(b, v.r, v.g, v.bl);
    qqvput(b, "\" points=\"\n");
    for (int i = 0; i < n; ++i) {
        double dx, dy;
        qqmapdown(b, x[i], y[i], &dx, &dy);
        qqvchr(b, ' ');
        qqvnum(b, dx, 2);
        qqvput(b, ", ");
        qqvnum(b, dy, 2);
        if (i % 5 == 4 && i != n - 1) qqvchr(b, '\n');
    }
    qqvput(b, "\"/>\n");
    return 1;
}

void svg_rect(DeviceBlock *b, int x1, int y1, int x2, int y2, int colour) {
    if (!qqvcutrect(b, &x1, &y1, &x2, &y2)) return;
    double s = b->sess.devscl;
    double x, y, w, h;
    if (b->sess.pagrot == 1) {
        int nxp = b->core.nxp;
        x = s * y1;
        y = (nxp - x2) * s;
        w = s * y2 - s * y1 + 1.0;
        h = (nxp - x1) * s - (nxp - x2) * s + 1.0;
    } else {
        x = s * x1;
        y = s * y1;
        w = s * x2 - s * x1 + 1.0;
        h = s * y2 - s * y1 + 1.0;
    }
    int r, g, bl;
    qqclrrgb(b, colour, &r, &g, &bl);
    rect(b, x, y, w, h, r, g, bl);
}

int svg_char(DeviceBlock *b, const QQHwChar *c) {
    VectorState &v = b->vec;
    if (v.group == STROKE) {
        end_path(b);
        group(b, NO_GROUP);
    }
    if (v.group == TEXT && (c->font != v.groupfont || font_size(b, c->height) != v.groupsize))
        group(b, NO_GROUP);
    group(b, TEXT, c);

    double x, y, dx, dy;
    qqvplace(b, c, &x, &y);
    qqmapdown(b, x, y, &dx, &dy);
    qqvput(b, "<text x=\"");
    qqvnum(b, dx, 2);
    qqvput(b, "\" y=\"");
    qqvnum(b, dy, 2);
    int angle = qqvangle(b, c->angle);
    if (angle != 0) {
        qqvput(b, "\" rotate=\"");
        qqvint(b, -angle);
        qqvput(b, "\">");
    } else {
        qqvput(b, "\">");
    }
    int ch = qqvlatin(c->code);
    if (ch == '&')
        qqvput(b, "&amp;");
    else if (ch == '<')
        qqvput(b, "&lt;");
    else if (ch == '>')
        qqvput(b, "&gt;");
    else
        qqvchr(b, ch);
    qqvput(b, "</text>\n");
    return 1;
}

// The picture of the canvas as a PNG inside the document, on the box of
// imgbox (or the whole page), stretched to it without smoothing.
void svg_image(DeviceBlock *b) {
    qqcanvas *cv = qqcanvasof(b);
    if (!cv || cv->cw < 1 || cv->ch < 1) return;
    long n = qqpngmem(b, nullptr, 0);
    if (n <= 0) return;
    unsigned char *png = static_cast<unsigned char *>(std::malloc((size_t)n));
    if (!png) {
        qqwar0(b, 53);
        return;
    }
    if (qqpngmem(b, png, (size_t)n) != n) {
        std::free(png);
        return;
    }
    end_path(b);
    group(b, NO_GROUP);
    const CanvasState &cs = b->cnv;
    double x0 = 0, y0 = 0, w = b->core.nxp + 1.0, h = b->core.nyp + 1.0;
    if (cs.imgbflg) {
        x0 = cs.imgbx[0] + b->dev.nxsh;
        y0 = cs.imgbx[1] + b->dev.nysh;
        w = cs.imgbx[2];
        h = cs.imgbx[3];
    }
    double s = b->sess.devscl;
    if (b->sess.pagrot == 1) {
        // The turned page: the picture's top left corner lands at the
        // lower left and its rows run upward.
        qqvput(b, "<image transform=\"translate(");
        qqvnum(b, s * y0, 2);
        qqvchr(b, ' ');
        qqvnum(b, s * (b->core.nxp - x0), 2);
        qqvput(b, ") rotate(-90)\" x=\"0\" y=\"0");
    } else {
        qqvput(b, "<image x=\"");
        qqvnum(b, s * x0, 2);
        qqvput(b, "\" y=\"");
        qqvnum(b, s * y0, 2);
    }
    qqvput(b, "\" width=\"");
    qqvnum(b, s * w, 2);
    qqvput(b, "\" height=\"");
    qqvnum(b, s * h, 2);
    qqvput(b, "\"\n preserveAspectRatio=\"none\" image-rendering=\"optimizeSpeed\"\n");
    qqvput(b, " xlink:href=\"data:image/png;base64,\n");
    static const char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    char line[80];
    int k = 0;
    for (long i = 0; i < n; i += 3) {
        unsigned v = (unsigned)png[i] << 16;
        if (i + 1 < n) v |= (unsigned)png[i + 1] << 8;
        if (i + 2 < n) v |= png[i + 2];
        line[k++] = kDigits[(v >> 18) & 63];
        line[k++] = kDigits[(v >> 12) & 63];
        line[k++] = i + 1 < n ? kDigits[(v >> 6) & 63] : '=';
        line[k++] = i + 2 < n ? kDigits[v & 63] : '=';
        if (k == 76 || i + 3 >= n) {
            line[k++] = '\n';
            line[k] = '\0';
            qqvput(b, line);
            k = 0;
        }
    }
    qqvput(b, "\"/>\n");
    std::free(png);
}

// A new height or font opens a new text group with the next character.
void svg_textstyle(DeviceBlock *b) {
    end_path(b);
    group(b, NO_GROUP);
}

int svg_close(DeviceBlock *b) {
    end_path(b);
    group(b, NO_GROUP);
    qqvput(b, "</svg>\n");
    qqvfree(b);
    return 1;
}

// Colours arrive as red, green, blue; caps, joins and miter limits are not
// written; the layer clips and draws markers; all pages fall on one picture.
const DriverOps kOps = {
    .open = svg_open,
    .line = svg_line,
    .colour = svg_colour,
    .width = svg_width,
    .fill_polygon = svg_fill,
    .fill_rect = svg_rect,
    .close = svg_close,
    .image = svg_image,
    .character = svg_char,
    .textstyle = svg_textstyle,
};

const DeviceKey kKeys[] = {{"SVG ", 801, "svg", QQ_CLR_TURN_ON_WHITE | QQ_CLR_WHITE_BACK}, {}};

}  // namespace

extern const DeviceFamily kxfam_svg = {
    .name = "SVG",
    .keys = kKeys,
    .lo = 801,
    .hi = 801,
    .kind = QQ_KIND_FILE,
    .file = 0,
    .lnlen = 0,  // writes its own lines
    .viewer = "koldot",
    .ops = &kOps,
};
