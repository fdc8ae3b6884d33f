// Axis scaling: the per-axis settings, setscl and the automatic choice of
// limits, first label and step, the tests of a scaling, and the
// conversions between user and plot coordinates.
#include <climits>
#include <cmath>
#include <cstring>

#include "axes/axes.h"
#include "axes/axes_block.h"
#include "axes/label_text.h"
#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "text/numbers.h"

namespace {

// Label types of labels(): class, logarithm form, exponent flag.
struct LabelKind {
    int cls, logfrm, expflg;
};
const LabelKind kLabelKinds[17] = {
    {0, 2, 0}, {0, 2, 0}, {0, 2, 1}, {0, 1, 0}, {0, 1, 1}, {0, 3, 0}, {2, 2, 0}, {2, 2, 0}, {2, 2, 0},
    {1, 2, 0}, {1, 2, 0}, {1, 2, 0}, {0, 2, 0}, {0, 2, 0}, {3, 2, 0}, {2, 2, 0}, {0, 2, 1},
};

bool expkind(int lab) { return lab == 2 || lab == 13 || lab == 16; }

double clamp6(double v) {
    if (v < -1e6) return -1e6;
    if (v > 1e6) return 1e6;
    return v;  // NaN stays NaN: the device layer drops it
}

double logv(const AxesState &ax, double v) {
    if (v <= 0 && ax.neglg) return ax.neglv;
    return std::log10(v);
}

int tdiv(int l, int d) { return d == 0 ? 0 : l / d; }

}  // namespace

// ---------------------------------------------------------------------------
// Conversions.

double qqxpos(AxesBlock *b, double x) noexcept {
    const ScaleRecord &r = b->ax.rec;
    if (r.log[0]) x = logv(b->ax, x);
    double v = (x - r.a[0]) * r.xfac + r.xorg;
    return r.type == 0 ? clamp6(v) : v;
}

double qqypos(AxesBlock *b, double y) noexcept {
    const ScaleRecord &r = b->ax.rec;
    if (r.log[1]) y = logv(b->ax, y);
    double v = r.yorg - (y - r.a[1]) * r.yfac;
    return r.type == 0 ? clamp6(v) : v;
}

void qqpos2(AxesBlock *b, double x, double y, double *xp, double *yp) noexcept {
    const ScaleRecord &r = b->ax.rec;
    if (r.type == 1) {
        // Polar: radius along X, angle in degrees.
        double rad = x * r.xfac;
        double t = y * b->core.xdegr;
        *xp = b->ax.ncx + rad * std::cos(t);
        *yp = b->ax.ncy - rad * std::sin(t);
        return;
    }
    if (r.type == 2 && b->ax.mappos) {
        b->ax.mappos(b, x, y, xp, yp);
        return;
    }
    *xp = qqxpos(b, x);
    *yp = qqypos(b, y);
}

double qqxinv(AxesBlock *b, double xp) noexcept {
    const ScaleRecord &r = b->ax.rec;
    double v = r.xfac != 0 ? (xp - r.xorg) / r.xfac + r.a[0] : r.a[0];
    return r.log[0] ? std::pow(10.0, v) : v;
}

double qqyinv(AxesBlock *b, double yp) noexcept {
    const ScaleRecord &r = b->ax.rec;
    double v = r.yfac != 0 ? (r.yorg - yp) / r.yfac + r.a[1] : r.a[1];
    return r.log[1] ? std::pow(10.0, v) : v;
}

// ---------------------------------------------------------------------------
// Automatic scaling.

int qqaxdig(double orl, double step) noexcept {
    int d1 = qqautodig(orl), d2 = qqautodig(step);
    return d1 > d2 ? d1 : d2;
}

namespace {

double first_label(double a, double s, bool *outside) {
    double q = a / s;
    *outside = !(q >= -2147483647.0 && q <= 2147483647.0);
    if (*outside) return a;
    double t = std::trunc(q);
    if (std::fabs(q - t) < 1e-15) return a;
    return (t + (a >= 0 ? 1 : 0)) * s;
}

}  // namespace

void qqautscl(AxesBlock *b, int axis, double *pa, double *pe, double *por, double *pstep) noexcept {
    AxesState &ax = b->ax;
    if (!ax.autscl[axis]) return;
    double a = ax.autmin[axis], e = ax.autmax[axis];
    bool lg = ax.scl[axis] == 1;
    if (lg) {
        if (a <= 0) {
            qqwar0(b, 23);
            a = -1.0;
            ax.autmin[axis] = 0.1;
        } else {
            a = std::log10(a);
        }
        if (e <= 0) {
            qqwar0(b, 24);
            e = 0.0;
            ax.autmax[axis] = 1.0;
        } else {
            e = std::log10(e);
        }
        ax.logfrm[axis] = 1;
    }
    double r = e - a;
    int p = 0;
    double m = r;
    for (int k = 0; k < 50 && m >= 10.0; ++k) m = r / std::pow(10.0, ++p);
    for (int k = 0; k < 50 && m < 1.0; ++k) m = r / std::pow(10.0, --p);
    // Beyond fifty decades the quotient may stay out of 1 to 10.
    int d = m >= 9.0 ? 9 : (m >= 1.0 ? (int)m : (m > 0 ? 0 : 0));
    double s = std::pow(10.0, p);
    int dig = p < 0 ? -p : -1;
    int L = ax.nlen[axis];
    bool along = axis == 0 ? ax.labori[axis] == 0 : ax.labori[axis] == 1;
    int Q = along ? 200 : 100;
    if (along) {
        ax.ndig[axis] = dig;
        bool out;
        double f = first_label(a, s, &out);
        char t[QQ_LABLEN + 1];
        // The sample is formatted by the settings of the X axis.
        qqlabtxt(b, f, 1, lg ? 1 : 0, 0, t);
        int w = (int)std::trunc(1.25 * qqaxtw(b, t));
        if (w > Q) Q = w;
    }
    int lab = ax.lab[axis];
    bool divided = false;
    if (d == 1) {
        if (lg) {
            if (s > 2) s = 1.0;
        } else if (tdiv(L, 2) >= Q) {
            if (expkind(lab) && m > 1.7999999523162842)
                s /= 2;
            else if (tdiv(L, 5) >= Q)
                s /= 5;
            else
                s /= 2;
            divided = true;
        }
    } else if (d == 2 || d == 3) {
        if (!lg && tdiv(L, 2 * d) >= Q) {
            s /= 2;
            divided = true;
        }
    } else if (d >= 5) {
        if (tdiv(L, d) < Q)
            s *= 2;
        else if (d >= 7 && expkind(lab))
            s *= 2;
    }
    if (divided) {
        if (p < 0)
            ++dig;
        else if (p == 0)
            dig = 1;
    }
    ax.ndig[axis] = dig;
    bool out;
    double orl = first_label(a, s, &out);
    if (out) {
        s = e - a;
        ax.ndig[axis] = 3;
    } else if (expkind(lab)) {
        double v = 0;
        for (int i = 0; i < 1000; ++i) {
            double x = orl + i * s;
            if ((s > 0 && x > e) || (s < 0 && x < e)) break;
            if (std::fabs(x) > v) v = std::fabs(x);
        }
        for (int k = 0; k < 700 && v >= 10.0; ++k) {
            v /= 10;
            if (dig >= 1) ++dig;
        }
        for (int k = 0; k < 700 && v > 0 && v < 1; ++k) {
            v *= 10;
            --dig;
        }
        ax.ndig[axis] = dig > 1 ? dig : 1;
    }
    *pa = a;
    *pe = e;
    *por = orl;
    *pstep = s;
}

int qqtstscl(AxesBlock *b, double a, double e, double orl, double step, int len, int pos,
             int which) noexcept {
    // A NaN fails the comparisons as a zero range or step does.
    if (!(std::fabs(e - a) >= 1e-35)) {
        qqwar0(b, 10);
        return 1;
    }
    if (!(std::fabs(step) >= 1e-35) || !std::isfinite(step)) {
        qqwar0(b, 9);
        return 1;
    }
    if (len < 2) {
        qqwar0(b, 11);
        return 1;
    }
    if (which) {
        // The left end of an X axis, the top of a Y axis, origin shift added.
        int p = which == 4 ? pos + b->dev.nxsh : pos - len + 1 + b->dev.nysh;
        if (p < 0) qqwarn(b, which, pos);
    }
    double lo = a < e ? a : e, hi = a < e ? e : a;
    if (!(orl >= lo - 1e-35 * std::fabs(lo) && orl <= hi + 1e-35 * std::fabs(hi))) qqwar0(b, 12);
    if ((e > a && step < 0) || (e < a && step > 0)) qqwar0(b, 50);
    return 0;
}

// ---------------------------------------------------------------------------
// Routines.

namespace {

// The axes named in an option string: bit 0 X, 1 Y, 2 Z; three characters
// are looked at.
int axes_of(const char *s) {
    int m = 0;
    for (int i = 0; s && i < 3 && s[i]; ++i) {
        char c = s[i];
        if (c == 'X' || c == 'x') m |= 1;
        if (c == 'Y' || c == 'y') m |= 2;
        if (c == 'Z' || c == 'z') m |= 4;
    }
    return m;
}

void set_label_kind(AxesState &ax, int i, int k) {
    ax.lab[i] = k;
    ax.labcls[i] = kLabelKinds[k].cls;
    ax.logfrm[i] = kLabelKinds[k].logfrm;
    ax.expflg[i] = kLabelKinds[k].expflg;
}

}  // namespace

int qqaxsmask(const char *s) noexcept { return axes_of(s); }

void qqlabkind(AxesBlock *b, int axis, int k) noexcept {
    set_label_kind(b->ax, axis, k);
}

void setscl(const double *ray, int n, const char *copt) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("setscl"));
    if (!b) return;
    char key[4] = {' ', ' ', ' ', '\0'};
    int len = 0;
    for (int i = 0; copt && copt[i] && i < 3; ++i, ++len) key[i] = copt[i];
    if (len == 0) return;
    qqupc(key);
    AxesState &ax = b->ax;
    if (std::strcmp(key, "RES") == 0) {
        ax.autscl[0] = ax.autscl[1] = ax.autscl[2] = 0;
        return;
    }
    if (key[1] == 'R' && key[2] == 'E') {
        int m = axes_of(key) & (key[0] == 'X' ? 1 : key[0] == 'Y' ? 2 : key[0] == 'Z' ? 4 : 0);
        for (int i = 0; i < 3; ++i)
            if (m >> i & 1) ax.autscl[i] = 0;
        if (m) return;
    }
    int mask;
    if (key[1] == 'A' && key[2] == 'X' && (key[0] == 'X' || key[0] == 'Y' || key[0] == 'Z'))
        mask = key[0] == 'X' ? 1 : key[0] == 'Y' ? 2 : 4;
    else
        mask = axes_of(key);
    if (!mask) return;
    if (!ray || n < 1) {
        qqwarn(b, 2, n);
        return;
    }
    double lo = 0, hi = 0;
    bool any = false;
    for (int i = 0; i < n; ++i) {
        double v = ray[i];
        if (!std::isfinite(v)) continue;
        if (!any) {
            lo = hi = v;
            any = true;
        } else {
            if (v < lo) lo = v;
            if (v > hi) hi = v;
        }
    }
    if (!any) {
        qqwarn(b, 2, n);
        return;
    }
    if (hi - lo < 1e-35) {
        qqwar0(b, 25);
        lo -= 1.0;
        hi += 1.0;
    }
    for (int i = 0; i < 3; ++i)
        if (mask >> i & 1) {
            ax.autscl[i] = 1;
            ax.autmin[i] = lo;
            ax.autmax[i] = hi;
        }
}

void scale(const char *cscl, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("scale"));
    if (!b) return;
    int k = qqkey(b, "LIN +LOG ", 2, cscl);
    if (k < 1) return;
    int m = axes_of(cax);
    for (int i = 0; i < 3; ++i)
        if (m >> i & 1) b->ax.scl[i] = k - 1;
}

void axsscl(const char *cscl, const char *cax) noexcept { scale(cscl, cax); }

void labdig(int ndig, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("labdig"));
    if (!b) return;
    if (ndig < -2 || ndig > 100) {
        qqwarn(b, 2, ndig);
        return;
    }
    // The special words: BAR, CON, PIE (percent and data digits), DAT, PER.
    char w[4] = {0, 0, 0, 0};
    qqscpy(w, cax ? cax : "", 3);
    qqupc(w);
    static const char *const words[] = {"BAR", "CON", "PIE", "DAT", "PER"};
    for (int k = 0; k < 5; ++k)
        if (std::strcmp(w, words[k]) == 0) {
            if (k == 2)
                b->ax.xdig[2] = b->ax.xdig[3] = ndig;
            else
                b->ax.xdig[k == 0 ? 0 : k == 1 ? 1 : k == 3 ? 3 : 2] = ndig;
            return;
        }
    int m = axes_of(cax);
    for (int i = 0; i < 3; ++i)
        if (m >> i & 1) {
            b->ax.ndig[i] = ndig;
            b->ax.autdig[i] = ndig == -2 ? 1 : 0;
        }
}

void digits(int ndig, const char *cax) noexcept { labdig(ndig, cax); }

void ticks(int ntic, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("ticks"));
    if (!b) return;
    if (ntic < 0 || ntic > 1000) {
        qqwarn(b, 2, ntic);
        return;
    }
    int m = axes_of(cax);
    for (int i = 0; i < 3; ++i)
        if (m >> i & 1) b->ax.ntic[i] = ntic;
}

void intax() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("intax"));
    if (!b) return;
    for (int i = 0; i < 3; ++i) {
        b->ax.ndig[i] = -1;
        b->ax.autdig[i] = 0;
    }
}

void logtic(const char *cmod) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("logtic"));
    if (!b) return;
    int k = qqkey(b, "AUTO+FULL", 2, cmod);
    if (k > 0) b->ax.logtic = k - 1;
}

void neglog(double eps) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("neglog"));
    if (!b) return;
    if (!(eps > 0) || !std::isfinite(eps)) {
        qqwarnd(b, 2, eps);
        return;
    }
    b->ax.neglg = 1;
    b->ax.neglv = std::log10(eps);
}

void axslen(int nxl, int nyl) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("axslen"));
    if (b) qqaxslen(b, nxl, nyl);
}

bool qqaxslen(AxesBlock *b, int nxl, int nyl) noexcept {
    if (nxl < 2) {
        qqwarn(b, 2, nxl);
        return false;
    }
    if (nyl < 2) {
        qqwarn(b, 2, nyl);
        return false;
    }
    b->ax.nlen[0] = nxl;
    b->ax.nlen[1] = nyl;
    return true;
}

void axspos(int nxa, int nya) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("axspos"));
    if (!b) return;
    int y = qqyflpi(b, nya);
    if (nxa + b->dev.nxsh < 0 || nxa + b->dev.nxsh > b->core.nxp) qqwarn(b, 4, nxa);
    if (y + b->dev.nysh < 0 || y + b->dev.nysh > b->core.nyp) qqwarn(b, 5, nya);
    b->ax.nxa = nxa;
    b->ax.nya = y;
    b->ax.orgflg = 0;
}

void axsorg(int nx, int ny) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("axsorg"));
    if (!b) return;
    int y = qqyflpi(b, ny);
    if (nx + b->dev.nxsh < 0 || nx + b->dev.nxsh > b->core.nxp) qqwarn(b, 4, nx);
    if (y + b->dev.nysh < 0 || y + b->dev.nysh > b->core.nyp) qqwarn(b, 5, ny);
    b->ax.nxorg = nx;
    b->ax.nyorg = y;
    b->ax.orgflg = 1;
}

void origin(int nx, int ny) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("origin"));
    if (!b) return;
    qqflsh(b);
    b->dev.nxsh = nx;
    b->dev.nysh = qqyflpi(b, ny) - (b->core.yorig == 1 && b->core.ynoflp != 1 ? b->core.nyp : 0);
}

void setres(int nx, int ny) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("setres"));
    if (!b) return;
    // A negative size is refused alone: the other size and the mode are
    // set all the same.
    if (nx < 0)
        qqwarn(b, 1, nx);
    else
        b->ax.nxres = nx < 1 ? 1 : nx;
    if (ny < 0)
        qqwarn(b, 1, ny);
    else
        b->ax.nyres = ny < 1 ? 1 : ny;
    b->ax.resmod = 0;
}

void autres(int ixdim, int iydim) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("autres"));
    if (!b) return;
    AxesState &ax = b->ax;
    int mode;
    if (ixdim == 0 && iydim == 0)
        mode = 2;
    else if (ixdim < 0 && iydim < 0)
        mode = 3;
    else if (ixdim < 0)
        mode = 4;
    else if (iydim < 0)
        mode = 5;
    else
        mode = 1;
    // Exact cells need no grid: the grid of an earlier call stays.
    if (mode == 2) {
        ax.resmod = mode;
        return;
    }
    // Sizes by magnitude; the most negative int has none and is refused below.
    auto mag = [](int v) { return v == INT_MIN ? 0 : (v < 0 ? -v : v); };
    int nx = mag(ixdim), ny = mag(iydim);
    if (qqchki(b, nx, 2, 10000) || qqchki(b, ny, 2, 10000)) return;
    ax.resmod = mode;
    ax.autrx = nx;
    ax.autry = ny;
    if (b->core.level > 1) qqautres(b, nx, ny, ax.rec.nxl, ax.rec.nyl);
}

void qqautres(AxesBlock *b, int nx, int ny, int wx, int wy) noexcept {
    // Rounded up, and one more on every device but the screen, so that
    // neighbouring rectangles overlap instead of leaving seams.
    auto size = [b](int n, int w) {
        if (n < 2) n = 2;
        long long s = ((long long)w - 1 + n - 2) / (n - 1);
        if (s < 1) s = 1;
        if (s > 1000000) s = 1000000;
        return (int)s + (qqdevkind(b) != QQ_KIND_SCREEN ? 1 : 0);
    };
    b->ax.nxres = size(nx, wx);
    b->ax.nyres = size(ny, wy);
}

void axsbgd(int iclr) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("axsbgd"));
    if (!b) return;
    b->ax.bgclr = iclr;
}

double xposn(double x) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("xposn"));
    if (!b) return 0;
    double xp, yp;
    qqpos2(b, x, b->ax.rec.a[1], &xp, &yp);
    return b->ax.rec.type == 1 ? xp : qqxpos(b, x);
}

double yposn(double y) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("yposn"));
    if (!b) return 0;
    if (b->ax.rec.type == 1) {
        qqwar1(b, 109, "Routine does not work for polar axis systems");
        return 0;
    }
    return qqyflp(b, qqypos(b, y));
}

int nxposn(double x) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("nxposn"));
    if (!b) return 0;
    return qqround(qqxpos(b, x));
}

int nyposn(double y) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("nyposn"));
    if (!b) return 0;
    if (b->ax.rec.type == 1) {
        qqwar1(b, 109, "Routine does not work for polar axis systems");
        return 0;
    }
    return qqround(qqyflp(b, qqypos(b, y)));
}

double xinvrs(int nx) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("xinvrs"));
    if (!b) return 0;
    return qqxinv(b, nx);
}

double yinvrs(int ny) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("yinvrs"));
    if (!b) return 0;
    return qqyinv(b, qqyflp(b, ny));
}

void getgrf(double *a, double *e, double *orl, double *step, const char *cax) noexcept {
    *a = *e = *orl = *step = 0;
    AxesBlock *b = qqaxsblk(KX_ENTRY("getgrf"));
    if (!b) return;
    int m = axes_of(cax);
    int i = m & 1 ? 0 : m & 2 ? 1 : m & 4 ? 2 : -1;
    if (i < 0) {
        qqwarc(b, 2, cax ? cax : "");
        return;
    }
    // The Z axis exists only in the systems of level 3.
    if (i == 2 && !qqentry(3, 3, "getgrf")) return;
    const ScaleRecord &r = b->ax.rec;
    *a = r.a[i];
    *e = r.e[i];
    *orl = r.orl[i];
    *step = r.stp[i];
}

void getscl(int *nx, int *ny, int *nz) noexcept {
    *nx = *ny = *nz = 0;
    AxesBlock *b = qqaxsblk(KX_ENTRY("getscl"));
    if (!b) return;
    *nx = b->ax.scl[0];
    *ny = b->ax.scl[1];
    *nz = b->ax.scl[2];
}

void getscm(int *nx, int *ny, int *nz) noexcept {
    *nx = *ny = *nz = 0;
    AxesBlock *b = qqaxsblk(KX_ENTRY("getscm"));
    if (!b) return;
    *nx = b->ax.autscl[0];
    *ny = b->ax.autscl[1];
    *nz = b->ax.autscl[2];
}

void getdig(int *nx, int *ny, int *nz) noexcept {
    *nx = *ny = *nz = 0;
    AxesBlock *b = qqaxsblk(KX_ENTRY("getdig"));
    if (!b) return;
    *nx = b->ax.ndig[0];
    *ny = b->ax.ndig[1];
    *nz = b->ax.ndig[2];
}

void getlen(int *nx, int *ny, int *nz) noexcept {
    *nx = *ny = *nz = 0;
    AxesBlock *b = qqaxsblk(KX_ENTRY("getlen"));
    if (!b) return;
    *nx = b->ax.nlen[0];
    *ny = b->ax.nlen[1];
    *nz = b->ax.nlen[2];
}

void gettic(int *nx, int *ny, int *nz) noexcept {
    *nx = *ny = *nz = 0;
    AxesBlock *b = qqaxsblk(KX_ENTRY("gettic"));
    if (!b) return;
    *nx = b->ax.ntic[0];
    *ny = b->ax.ntic[1];
    *nz = b->ax.ntic[2];
}

void getpos(int *nxa, int *nya) noexcept {
    *nxa = *nya = 0;
    AxesBlock *b = qqaxsblk(KX_ENTRY("getpos"));
    if (!b) return;
    *nxa = b->ax.nxa;
    *nya = qqyflpi(b, b->ax.nya);
}

void getor(int *nx, int *ny) noexcept {
    *nx = *ny = 0;
    AxesBlock *b = qqaxsblk(KX_ENTRY("getor"));
    if (!b) return;
    *nx = b->dev.nxsh;
    *ny = b->dev.nysh;
}

void getres(int *nx, int *ny) noexcept {
    *nx = *ny = 0;
    AxesBlock *b = qqaxsblk(KX_ENTRY("getres"));
    if (!b) return;
    *nx = b->ax.nxres;
    *ny = b->ax.nyres;
}

void getran(int *nca, int *nce) noexcept {
    *nca = *nce = 0;
    AxesBlock *b = qqaxsblk(KX_ENTRY("getran"));
    if (!b) return;
    *nca = b->clr.minidx;
    *nce = b->clr.maxidx;
}

namespace {
const char *const kLabelNames[17] = {"NONE", "FLOA", "EXP",  "LOG",  "CLOG", "ELOG", "MAP",  "DMAP", "LMAP",
                                     "TIME", "HOUR", "SECO", "MYLA", "FEXP", "DATE", "MAPN", "XEXP"};
}

void getlab(char *cx, char *cy, char *cz) noexcept {
    cx[0] = cy[0] = cz[0] = '\0';
    AxesBlock *b = qqaxsblk(KX_ENTRY("getlab"));
    if (!b) return;
    qqscpy(cx, kLabelNames[b->ax.lab[0]], 4);
    qqscpy(cy, kLabelNames[b->ax.lab[1]], 4);
    qqscpy(cz, kLabelNames[b->ax.lab[2]], 4);
}

void gaxpar(double a1, double a2, const char *copt, const char *cax, double *a, double *e, double *orl,
            double *step, int *ndig) noexcept {
    *a = *e = *orl = *step = 0;
    *ndig = 0;
    AxesBlock *b = qqaxsblk(KX_ENTRY("gaxpar"));
    if (!b) return;
    int k = qqkey(b, "NOEX+EXTE", 2, copt);
    if (k < 1) return;
    int m = axes_of(cax);
    int i = m & 1 ? 0 : m & 2 ? 1 : m & 4 ? 2 : -1;
    if (i < 0) {
        qqwarc(b, 2, cax ? cax : "");
        return;
    }
    if (!std::isfinite(a1) || !std::isfinite(a2)) {
        qqwarnd(b, 2, std::isfinite(a1) ? a2 : a1);
        return;
    }
    bool swap = a2 < a1;
    double lo = swap ? a2 : a1, hi = swap ? a1 : a2;
    if (hi - lo < 1e-35) {
        qqwar0(b, 25);
        lo -= 1;
        hi += 1;
    }
    AxesState &ax = b->ax;
    int sdig = ax.ndig[i], sauto = ax.autscl[i], stic = ax.ntic[i], slab = ax.lab[i];
    int slogfrm = ax.logfrm[i];
    double smin = ax.autmin[i], smax = ax.autmax[i];
    bool lg = ax.scl[i] == 1;
    // The arguments of a logarithmic axis are exponents already.
    ax.autscl[i] = 1;
    ax.autmin[i] = lg ? std::pow(10.0, lo) : lo;
    ax.autmax[i] = lg ? std::pow(10.0, hi) : hi;
    double ra, re, ro, rs;
    qqautscl(b, i, &ra, &re, &ro, &rs);
    int found = ax.ndig[i];
    ax.ndig[i] = sdig;
    ax.autscl[i] = sauto;
    ax.ntic[i] = stic;
    ax.lab[i] = slab;
    ax.logfrm[i] = slogfrm;
    ax.autmin[i] = smin;
    ax.autmax[i] = smax;
    if (k == 2 && rs > 0) {
        // Pull the limits out to label positions.
        int n = 0;
        while (n < 100 && ro - n * rs > ra + 1e-35) ++n;
        double lo2 = ro - n * rs;
        n = 0;
        while (n < 100 && ro + n * rs < re - 1e-35) ++n;
        ra = lo2;
        re = ro + n * rs;
    }
    if (swap) {
        int n = 0;
        while (n < 100 && ro + (n + 1) * rs <= re + 1e-35) ++n;
        double top = ro + n * rs;
        double t = ra;
        ra = re;
        re = t;
        ro = top;
        rs = -rs;
    }
    *a = ra;
    *e = re;
    *orl = ro;
    *step = rs;
    *ndig = found;
}

namespace {

// Devices that draw in pixels: the screen, the raster formats, and the
// Windows metafiles, whose units are device pixels too.
bool pixel_device(const AxesBlock *b) {
    const DeviceFamily *f = b->core.fam;
    if (!f) return false;
    if (f->kind == QQ_KIND_SCREEN || f->kind == QQ_KIND_RASTER) return true;
    return std::strcmp(f->name, "WMF") == 0 || std::strcmp(f->name, "EMF") == 0;
}

}  // namespace

int nxpixl(int ix, int iy) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("nxpixl"));
    if (!b) return 0;
    if (!pixel_device(b)) {
        qqwar1(b, 161, "Bad output device");
        return 0;
    }
    double v = b->sess.pagrot == 1 ? iy : ix;
    return (int)std::trunc(v * b->sess.devscl + 0.5);
}

int nypixl(int ix, int iy) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("nypixl"));
    if (!b) return 0;
    if (!pixel_device(b)) {
        qqwar1(b, 161, "Bad output device");
        return 0;
    }
    double v = b->sess.pagrot == 1 ? b->core.nxp - ix : iy;
    return (int)std::trunc(v * b->sess.devscl + 0.5);
}
