// The contour pen: lines with gaps, and the level written into the gaps
// where a stretch of the line is straight enough for its label.
#include <cmath>
#include <cstdio>

#include "devices/device.h"
#include "fields/contours.h"
#include "fields/field_block.h"
#include "text/numbers.h"
#include "text/text.h"

namespace {

const double kAngleTol = 5.0;  // degrees between two segments where a label may begin

double rad2deg(FieldBlock *b, double r) {
    return r / b->core.xdegr;
}

}  // namespace

// The text angle, as angle sets it (a hardware font carries it).
void qqconangle(FieldBlock *b, int deg) noexcept {
    TextState &t = b->txt;
    if (t.angle == deg) return;
    t.angle = deg;
    double r = (double)(deg % 360) * b->core.xdegr;
    t.sina = std::sin(r);
    t.cosa = std::cos(r);
    if (t.hwmode) qqhwstyle(b);
}

namespace {

void label_text(FieldBlock *b, char *out, int size) {
    const ContourState &c = b->con;
    if (c.lmode == 2) {
        std::snprintf(out, (size_t)size, "%s", c.conlab);
        return;
    }
    qqnumtxt(b, c.level, c.ndig, out, size);
}

void flush_buffer(FieldBlock *b, int from) {
    ContourState &c = b->con;
    for (int k = from; k < c.nbuf; ++k) qqdraw(b, c.bufx[k], c.bufy[k]);
    c.nbuf = 0;
}

// Cuts the gap into the collected stretch from S and writes the label.
void place_label(FieldBlock *b) {
    ContourState &c = b->con;
    const double eps = b->core.eps;
    double ax = c.sx, ay = c.sy;
    int kb = c.nbuf - 1;
    for (int k = 0; k < c.nbuf; ++k) {
        double r = std::hypot(c.bufx[k] - c.sx, c.bufy[k] - c.sy);
        if (r < c.marfac * c.lablen) {
            qqdraw(b, c.bufx[k], c.bufy[k]);
            ax = c.bufx[k];
            ay = c.bufy[k];
        } else if (r >= (1 + c.marfac) * c.lablen) {
            kb = k;
            break;
        }
    }
    double bx = c.bufx[kb], by = c.bufy[kb];
    double dx = bx - ax, dy = by - ay, d = std::hypot(dx, dy);
    double phi = dx == 0 ? 0.5 * b->core.xpi : -std::atan2(dy, dx);
    double h = (d - c.lablen) / 2;
    qqdraw(b, ax + h * std::cos(phi), ay - h * std::sin(phi));
    if (c.lmode != 3) {
        const AxesState &a = b->ax;
        double ang = std::fabs(dx) <= eps ? 90.0 : rad2deg(b, -std::atan(dy / dx));
        double hgt = b->txt.height;
        char text[160];
        label_text(b, text, sizeof text);
        int tang;
        double w, s = 1, e = 0;
        bool across = a.xori[2] == 1;
        if (!across) {
            tang = (int)std::lround(ang);
            w = hgt;
        } else {
            tang = std::fabs(dy) < eps ? 90 : (int)std::lround(ang < 0 ? ang + 90 : ang - 90);
            w = qqtxtlen(b, text);
            if ((dx > 0 && dy < 0) || (dx <= 0 && dy > 0))
                e = hgt;
            else
                s = -1;
        }
        double h2 = (d - c.lablen + c.gaplen) / 2, tx, ty;
        if (std::fabs(dx) < eps) {
            tx = ax - w / 2;
            ty = across ? std::fmin(ay, by) + h2 : std::fmax(ay, by) - h2;
        } else if (across && std::fabs(dy) < eps) {
            ty = ay + w / 2;
            tx = std::fmin(ax, bx) + h2;
        } else {
            double r = ang * b->core.xdegr;
            double qx = dx > 0 ? ax : bx, qy = dx > 0 ? ay : by;
            qx += (h2 + e) * std::cos(r);
            qy -= (h2 + e) * std::sin(r);
            tx = qx - s * std::sin(r) * w / 2;
            ty = qy - s * std::cos(r) * w / 2;
        }
        int clr = b->clr.curclr, lclr = a.labclr[2];
        if (lclr != -1 && lclr != clr) qqsetc(b, lclr);
        int oldang = b->txt.angle;
        qqconangle(b, tang);
        // The text is drawn from the start of the line's dash pattern and
        // on the line itself, not on a thick pass's offset.
        qqflsh(b);
        double off = b->dev.lnoff;
        b->dev.lnoff = 0;
        c.writing = 1;
        qqmessag(b, text, (int)std::trunc(tx), (int)std::trunc(ty));
        c.writing = 0;
        qqflsh(b);
        b->dev.lnoff = off;
        qqconangle(b, oldang);
        if (b->clr.curclr != clr) qqsetc(b, clr);
    }
    qqmove(b, ax + (c.lablen + h) * std::cos(phi), ay - (c.lablen + h) * std::sin(phi));
    flush_buffer(b, kb);
    c.collect = 0;
    c.pathlen = 0;
}

void poly_point(FieldBlock *b, double x, double y) {
    ContourState &c = b->con;
    if (!c.polyx || !c.polyy) return;  // the shading that switched it on holds the buffer
    if (c.lstate == 3 || c.lstate == 4) {
        int n = c.npoly;
        if (n > 2 && std::fabs(c.polyx[0] - c.polyx[n - 1]) < 1.0 &&
            std::fabs(c.polyy[0] - c.polyy[n - 1]) < 1.0)
            qqfillpoly(b, c.polyx, c.polyy, n);
        c.npoly = 0;
        if (c.lstate == 4) return;
        c.lstate = 2;
    }
    if (c.npoly >= 25000) return;
    int n = c.npoly;
    if (n == 0 || std::fabs(x - c.polyx[n - 1]) > 0.5 || std::fabs(y - c.polyy[n - 1]) > 0.5) {
        c.polyx[n] = x;
        c.polyy[n] = y;
        c.npoly = n + 1;
    }
}

}  // namespace

int qqcondigits(double level) noexcept {
    double x = std::fabs(level);
    int e = x > 0 ? (int)std::trunc(std::log10(x)) : 0;
    double v = e >= 0 ? x / std::pow(10.0, e) : x * std::pow(10.0, -e);
    static const double tol[5] = {1e-5, 1e-4, 1e-3, 1e-2, 0.1};
    int k = 0;
    for (; k < 5; ++k) {
        double p = std::pow(10.0, k) * v;
        if (std::fabs(p - std::trunc(p + 0.5)) < tol[k]) break;
    }
    int d = k - e;
    return d < 1 ? -1 : d;
}

void qqconlevel(FieldBlock *b, double level) noexcept {
    ContourState &c = b->con;
    c.level = level;
    int nd = b->ax.xdig[1];
    c.ndig = nd == -2 ? qqcondigits(level) : nd;
    if (c.lmode == 0) return;
    double hgt = b->txt.height;
    c.gaplen = 2 * c.gapfac * hgt;
    double ext;
    if (b->ax.xori[2] == 1) {
        ext = hgt;
    } else {
        char text[160];
        int keep = c.lmode;
        if (keep == 3) c.lmode = b->ax.xlab[2];
        label_text(b, text, sizeof text);
        c.lmode = keep;
        ext = qqtxtlen(b, text);
    }
    c.lablen = ext + c.gaplen;
}

void qqconpen(FieldBlock *b, double x, double y) noexcept {
    ContourState &c = b->con;
    if (c.polyon) {
        poly_point(b, x, y);
        return;
    }
    if (c.lmode == 0) {
        if (c.lstate == 3) {
            qqmove(b, x, y);
            c.lstate = 2;
        } else if (c.lstate == 2) {
            qqdraw(b, x, y);
        }
        return;
    }
    if (c.lstate == 4) {
        flush_buffer(b, 0);
        return;
    }
    if (c.lstate == 3) {
        flush_buffer(b, 0);
        c.pathlen = 0;
        c.collect = 0;
        c.nextdist = 100.0;
        c.p0x = x;
        c.p0y = y;
        qqmove(b, x, y);
        c.lstate = 2;
        return;
    }
    double dx = x - c.p0x, dy = y - c.p0y, d = std::hypot(dx, dy);
    if (d < 0.5) return;
    double dir = std::fabs(dx) <= b->core.eps ? 90.0 : rad2deg(b, -std::atan(dy / dx));
    if (!c.collect) {
        c.pathlen += d;
        if (c.pathlen >= c.nextdist && std::fabs(dir - c.lastdir) <= kAngleTol) {
            c.collect = 1;
            c.sx = c.p0x;
            c.sy = c.p0y;
            c.curvlen = 0;
            c.nextdist = b->ax.condis;
        } else {
            qqdraw(b, x, y);
        }
    }
    c.lastdir = dir;
    c.p0x = x;
    c.p0y = y;
    if (!c.collect) return;
    c.pathlen = std::hypot(x - c.sx, y - c.sy);
    int k = c.nbuf < QQ_CON_MAXBUF ? c.nbuf++ : QQ_CON_MAXBUF - 1;
    c.bufx[k] = x;
    c.bufy[k] = y;
    if (c.pathlen >= (1 + 2 * c.marfac) * c.lablen) {
        if (c.nbuf > 1) {
            place_label(b);
        } else {
            qqdraw(b, x, y);
            c.sx = x;
            c.sy = y;
            c.curvlen = 0;
            c.nbuf = 0;
        }
        return;
    }
    c.curvlen += d;
    if (c.curvlen > c.curquot * c.pathlen) {
        flush_buffer(b, 0);
        c.sx = x;
        c.sy = y;
        c.curvlen = 0;
    }
}
