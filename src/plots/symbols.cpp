// Plot symbols: the table of 24 line figures, the user symbol of mysymb,
// and the routines that draw one symbol at a page or user position.
#include <cmath>
#include <cstdio>

#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "plots/curves.h"
#include "plots/plot_block.h"
#include "plots/shields.h"

namespace {

// A figure: polylines in hundredths of the symbol size from its centre,
// y downward.  Each polyline is its point count followed by the points.
struct Figure {
    const signed char *data;  // count, x, y, x, y ...; a count of 0 ends it
    bool filled;
};

#define SQUARE 5, -50, -50, 50, -50, 50, 50, -50, 50, -50, -50
#define OCTAGON 9, -20, -50, 20, -50, 50, -20, 50, 20, 20, 50, -20, 50, -50, 20, -50, -20, -20, -50
#define TRI_UP 4, 0, -50, 50, 50, -50, 50, 0, -50
#define PLUS 2, -50, 0, 50, 0, 2, 0, -50, 0, 50
#define CROSS 2, -50, -50, 50, 50, 2, -50, 50, 50, -50
#define DIAMOND 5, 0, -50, 50, 0, 0, 50, -50, 0, 0, -50
#define TRI_DOWN 4, -50, -50, 0, 50, 50, -50, -50, -50
#define CIRCLE                                                                                 \
    19, 49, 0, 49, -9, 42, -27, 27, -42, 9, -49, -9, -49, -27, -42, -42, -27, -49, -9, -49, 0, \
        -49, 9, -42, 27, -27, 42, -9, 49, 9, 49, 27, 42, 42, 27, 49, 9, 49, -9
#define HALF \
    11, 49, 0, 49, -9, 42, -27, 27, -42, 9, -49, -9, -49, -27, -42, -42, -27, -49, -9, -49, 0, 49, 0

const signed char s0[] = {SQUARE, 0};
const signed char s1[] = {OCTAGON, 0};
const signed char s2[] = {TRI_UP, 0};
const signed char s3[] = {PLUS, 0};
const signed char s4[] = {CROSS, 0};
const signed char s5[] = {DIAMOND, 0};
const signed char s6[] = {TRI_DOWN, 0};
const signed char s7[] = {SQUARE, CROSS, 0};
const signed char s8[] = {PLUS, CROSS, 0};
const signed char s9[] = {DIAMOND, PLUS, 0};
const signed char s10[] = {OCTAGON, PLUS, 0};
const signed char s11[] = {TRI_UP, TRI_DOWN, 0};
const signed char s12[] = {SQUARE, PLUS, 0};
const signed char s13[] = {OCTAGON, CROSS, 0};
const signed char s14[] = {SQUARE, TRI_UP, 0};
const signed char s15[] = {CIRCLE, 0};
const signed char s22[] = {HALF, 0};

const Figure kFigures[QQ_NSYMB] = {
    {s0, false},  {s1, false},  {s2, false},  {s3, false},  {s4, false},  {s5, false},
    {s6, false},  {s7, false},  {s8, false},  {s9, false},  {s10, false}, {s11, false},
    {s12, false}, {s13, false}, {s14, false}, {s15, false}, {s0, true},   {s1, true},
    {s2, true},   {s5, true},   {s6, true},   {s15, true},  {s22, false}, {s22, true},
};

// Symbols go to the driver as one call where it draws them itself and
// nothing transforms the page.
bool hardware_symbol(PlotBlock *b, int nsym, double x, double y) {
    const CurveState &c = b->crv;
    int kind = qqdevkind(b);
    if (nsym >= QQ_NSYMB || std::fabs(c.symrot) > 0.001) return false;
    if (c.usrn > 0 && c.usrsym == nsym) return false;
    if (kind != QQ_KIND_SCREEN && kind != QQ_KIND_RASTER) return false;
    return qqhwmark(b, nsym, x, y, c.hsymbl);
}

void draw_symbol(PlotBlock *b, int nsym, double x, double y) {
    const CurveState &c = b->crv;
    if (hardware_symbol(b, nsym, x, y)) return;
    double a = c.symrot * (-3.1415927 / 180.0);
    double ca = std::cos(a), sa = std::sin(a);
    double px[24], py[24];
    if (c.usrn > 0 && c.usrsym == nsym) {
        double s = c.hsymbl / 2.0;
        double fx[256], fy[256];
        for (int i = 0; i < c.usrn; ++i) {
            double u = c.usrx[i] * s, v = -c.usry[i] * s;
            double rx = x + u * ca - v * sa, ry = y + u * sa + v * ca;
            if (i < 256) {
                fx[i] = rx;
                fy[i] = ry;
            }
            if (i == 0)
                qqmove(b, rx, ry);
            else
                qqdraw(b, rx, ry);
        }
        // A filled user figure of more than 256 points is filled in its
        // first 256: figures of a symbol's size need no more.
        if (c.usrfill == 1 && c.usrn >= 3) qqsolidfill(b, fx, fy, c.usrn < 256 ? c.usrn : 256);
        return;
    }
    if (nsym >= QQ_NSYMB) return;
    const Figure &f = kFigures[nsym];
    double s = c.hsymbl / 100.0;
    for (const signed char *p = f.data; *p; p += 1 + 2 * p[0]) {
        int n = p[0];
        for (int i = 0; i < n; ++i) {
            double u = p[1 + 2 * i] * s, v = p[2 + 2 * i] * s;
            px[i] = x + u * ca - v * sa;
            py[i] = y + u * sa + v * ca;
        }
        if (f.filled) qqsolidfill(b, px, py, n);
        qqmove(b, px[0], py[0]);
        for (int i = 1; i < n; ++i) qqdraw(b, px[i], py[i]);
    }
}

}  // namespace

void qqsymb(PlotBlock *b, int nsym, double x, double y) noexcept {
    if (nsym < 0) return;
    draw_symbol(b, nsym, x, y);
    // A shielded symbol keeps a square of 1.2 times its size free of
    // the lines drawn after it.
    if (qqshlauto(b, QQ_SHL_SYMB)) {
        double r = 0.6 * b->crv.hsymbl;
        double v[4] = {x - r, y - r, x + r, y + r};
        qqshlautoadd(b, QQ_SHL_SYMB, 1, v, 4);
    }
}

void symbol(int nsym, int nx, int ny) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("symbol"));
    if (!b) return;
    bool user = b->crv.usrn > 0 && nsym == b->crv.usrsym;
    if (!user && qqchki(b, nsym, -1, QQ_NSYMB - 1)) return;
    int y = qqyflpi(b, ny);
    if (nx < 0 || nx > b->core.nxp || y < 0 || y > b->core.nyp) {
        char text[80];
        std::snprintf(text, sizeof text, "(%5d/%5d) out of page", nx, ny);
        qqwar1(b, 193, text);
    }
    qqsymb(b, nsym, nx, y);
    qqflsh(b);
}
