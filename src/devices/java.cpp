// The Java driver (device 701): the source of an applet class whose paint
// method repeats the drawing call by call.
//
// Positions become pixels as on the raster devices: trunc(s·x + 0.5),
// trunc(s·y + 0.5), on a portrait-rotated page from (s·y, s·(nxp − x)),
// with s from the fit rule for the picture size of winsiz.  Each draw is
// one drawLine from the last position; nothing is buffered.  Widths, fills
// and text reach the driver as lines drawn by the layer, except filled
// rectangles.
#include <cmath>
#include <cstring>

#include "colour/colour.h"
#include "core/family.h"
#include "devices/device.h"
#include "devices/device_block.h"
#include "devices/vector.h"

namespace {

int pixel(double v) {
    v += 0.5;
    if (!(v > -2e9 && v < 2e9)) return v > 0 ? 2000000000 : -2000000000;
    return (int)std::trunc(v);
}

void to_pixel(DeviceBlock *b, double x, double y, int *px, int *py) {
    double dx, dy;
    qqmapdown(b, x, y, &dx, &dy);
    *px = pixel(dx);
    *py = pixel(dy);
}

bool identifier_start(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '$';
}

bool identifier_part(char c) {
    return identifier_start(c) || (c >= '0' && c <= '9');
}

bool reserved(const char *name) {
    static const char *const kWords[] = {
        "abstract",  "assert",       "boolean",  "break",      "byte",    "case",       "catch",
        "char",      "class",        "const",    "continue",   "default", "do",         "double",
        "else",      "enum",         "extends",  "false",      "final",   "finally",    "float",
        "for",       "goto",         "if",       "implements", "import",  "instanceof", "int",
        "interface", "long",         "native",   "new",        "null",    "package",    "private",
        "protected", "public",       "return",   "short",      "static",  "strictfp",   "super",
        "switch",    "synchronized", "this",     "throw",      "throws",  "transient",  "true",
        "try",       "void",         "volatile", "while",      "var",     "record",     "yield",
        "_",
    };
    for (const char *w : kWords)
        if (std::strcmp(w, name) == 0) return true;
    return false;
}

// The class is named after the file: the base name behind the last "/",
// "\" or ":", cut to 60 characters and at its first point.  Java takes a
// public class only from a file of its own name, and only with a name that
// is an identifier and no reserved word.  Otherwise what is not allowed is
// replaced and the class is declared without "public", so that the file
// still compiles.  Returns whether the class can be public.
bool class_name(const char *fname, char name[64]) {
    const char *base = fname;
    for (const char *p = fname; *p; ++p)
        if (*p == '/' || *p == '\\' || *p == ':') base = p + 1;
    int n = 0;
    bool exact = true;
    while (base[n] && base[n] != '.' && n < 60) {
        name[n] = base[n];
        ++n;
    }
    // Java wants a public class in a file of its own name.
    if (std::strcmp(base + n, ".java") != 0) exact = false;
    name[n] = '\0';
    if (n == 0) {
        std::strcpy(name, "Plot");
        return false;
    }
    for (int i = 0; i < n; ++i) {
        if (!identifier_part(name[i])) {
            name[i] = '_';
            exact = false;
        }
    }
    if (!identifier_start(name[0]) || reserved(name)) {
        std::memmove(name + 1, name, (size_t)n + 1);
        name[0] = '_';
        exact = false;
    }
    return exact;
}

void set_colour(DeviceBlock *b, int r, int g, int bl) {
    VectorState &v = b->vec;
    qqvput(b, "  g.setColor (new Color (");
    qqvint(b, r);
    qqvchr(b, ',');
    qqvint(b, g);
    qqvchr(b, ',');
    qqvint(b, bl);
    qqvput(b, "));\n");
    v.jr = r;
    v.jg = g;
    v.jb = bl;
}

// Four integers of a call, "(a,b,c,d);\n".
void args(DeviceBlock *b, int a, int c, int d, int e) {
    const int v[4] = {a, c, d, e};
    qqvchr(b, '(');
    for (int i = 0; i < 4; ++i) {
        if (i > 0) qqvchr(b, ',');
        qqvint(b, v[i]);
    }
    qqvput(b, ");\n");
}

int java_open(DeviceBlock *b) {
    SessionState &s = b->sess;
    VectorState &v = b->vec;
    int w = s.wsiz[0], h = s.wsiz[1];
    s.devscl = qqfitscale(b, w, h);
    s.colbits = 24;
    v.jx = v.jy = 0;
    v.jr = v.jg = v.jb = 0;

    char date[11], clock[9], name[64];
    qqvdate(date, clock);
    bool pub = class_name(s.fname, name);
    qqvput(b, "// KOLVEX Java Metafile\n// Creator: KOLVEX 11.5\n// Date   : ");
    qqvput(b, date);
    qqvput(b, ", ");
    qqvput(b, clock);
    qqvput(b, "\n// Size   : ");
    qqvint(b, w);
    qqvchr(b, ' ');
    qqvint(b, h);
    qqvput(b, "\n\nimport java.applet.*;\nimport java.awt.*;\n\n");
    qqvput(b, pub ? "public class " : "class ");
    qqvput(b, name);
    qqvput(b, " extends Applet {\npublic void paint(Graphics g) {\n");
    return 0;
}

void java_line(DeviceBlock *b, double x, double y, int op) {
    if (op != QQ_DRAW && op != QQ_MOVE) return;
    VectorState &v = b->vec;
    int px, py;
    to_pixel(b, x, y, &px, &py);
    if (op == QQ_DRAW) {
        qqvput(b, "  g.drawLine ");
        args(b, v.jx, v.jy, px, py);
    }
    v.jx = px;
    v.jy = py;
}

void java_colour(DeviceBlock *b, int, int r, int g, int bl, int) {
    set_colour(b, r, g, bl);
}

// The rectangle is filled in its own colour, always set before it; the
// lines after it keep the current one.
void java_rect(DeviceBlock *b, int x1, int y1, int x2, int y2, int colour) {
    if (!qqvcutrect(b, &x1, &y1, &x2, &y2)) return;
    int ax, ay, bx, by;
    if (b->sess.pagrot == 1) {
        to_pixel(b, x2, y1, &ax, &ay);
        to_pixel(b, x1, y2, &bx, &by);
    } else {
        to_pixel(b, x1, y1, &ax, &ay);
        to_pixel(b, x2, y2, &bx, &by);
    }
    VectorState &v = b->vec;
    int r0 = v.jr, g0 = v.jg, b0 = v.jb, r, g, bl;
    qqclrrgb(b, colour, &r, &g, &bl);
    set_colour(b, r, g, bl);
    qqvput(b, "  g.fillRect ");
    args(b, ax, ay, bx - ax + 1, by - ay + 1);
    if (r != r0 || g != g0 || bl != b0) set_colour(b, r0, g0, b0);
}

void java_clear(DeviceBlock *b) {
    qqvput(b, "  g.clearRect ");
    args(b, 0, 0, b->sess.wsiz[0], b->sess.wsiz[1]);
}

int java_close(DeviceBlock *b) {
    qqvput(b, "  }\n}\n");
    return 1;
}

// Colours arrive as red, green, blue; thick lines, fills, markers and
// characters come as lines from the layer; all pages fall on one picture.
const DriverOps kOps = {
    .open = java_open,
    .line = java_line,
    .colour = java_colour,
    .fill_rect = java_rect,
    .clear = java_clear,
    .close = java_close,
};

const DeviceKey kKeys[] = {{"JAVA", 701, "java", QQ_CLR_BACK_LAST | QQ_CLR_TURN_ON_WHITE}, {}};

}  // namespace

extern const DeviceFamily kxfam_java = {
    .name = "Java",
    .keys = kKeys,
    .lo = 701,
    .hi = 701,
    .kind = QQ_KIND_FILE,
    .file = 0,
    .lnlen = 0,  // writes its own lines
    .viewer = "koldot",
    .ops = &kOps,
};
