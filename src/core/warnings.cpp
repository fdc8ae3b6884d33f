#include "core/warnings.h"

#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/core_block.h"
#include "core/lock.h"
#include "core/numfmt.h"
#include "core/session.h"
#include "core/text.h"

namespace {

const char *const kWarnings[59] = {
    " ",
    "Negative parameter",
    "Incorrect parameter",
    "Incorrect level",
    "X coordinate out of page",
    "Y coordinate out of page",
    "Same tick number as in a call before",
    "First radius greater than second radius",
    "Start angle greater/equal end angle",
    "Step equal zero",
    "Begin and end of scaling are equal",
    "Axis length < 2",
    "Startlabel out of scaling",
    "Linear scaling must be used",
    "Linear interpolation must be used",
    "No call to legini before",
    "Too long string for legend line",
    "Not enough store for the legend buffer",
    "Incorrect character after the eushft operator",
    "The basealphabet cannot be used",
    "No metafile",
    "The routine must be called after kolfin",
    "The metafile is deleted before",
    "Non positive minimum for log scaling (set to 0.1)",
    "Non positive maximum for log scaling (set to 1.0)",
    "Minimum equal maximum (added -1 and +1)",
    "Too many intersections",
    "Non positive values for log scaling",
    "Number of bars unequal number of main ticks",
    "Sum of data is zero",
    "Incorrect number of points",
    "Incorrect number of points for spline interpolation",
    "No increasing x coordinates for spline interpolation",
    "Incorrect viewpoint",
    "No call to grfini before",
    "Confusion of graf3d and graf3",
    "File error",
    "Incorrect filename",
    "Singular matrix",
    "Too many pages for CGM file (max. length 327 cm)",
    "File format and output device are incompatible",
    "Incorrect device for HPGL file",
    "More legend lines than calls to curve",
    "Instruction code: incorrect parameter",
    "Instruction code: incorrect tabulator index",
    "Instruction code: no integer value",
    "Instruction code: unknown command",
    "Blanking buffer overflow",
    "No call to psfont",
    "Fileformat is not PostScript",
    "Incorrect sign for step",
    "Non positive parameter",
    "Hiddenline overflow",
    "Not enough memory",
    "No call to imgfin",
    "No call to imgini",
    "Incorrect file format",
    "Control characters must be different",
    "Array is out of screen",
};

enum { LINE_MAX = 132 };

// A warning line under construction, cut at LINE_MAX characters.
struct Line {
    char text[LINE_MAX + 1];
    int len = 0;
    void add(const char *s) {
        while (*s && len < LINE_MAX) text[len++] = *s++;
    }
    void add_int(int v) {
        char tmp[16];
        qqicha(v, tmp, sizeof tmp, 0, 0);
        add(tmp);
    }
};

void emit(CoreBlock *b, Line &line) {
    qqerrf(b);
    FILE *out = b->diag.errfp ? b->diag.errfp : stdout;
    if (!out) return;
    std::fwrite(line.text, 1, (size_t)line.len, out);
    std::fflush(out);
}

bool printing(CoreBlock *b) {
    return b->diag.outu != 0 && b->diag.erron == 1;
}

const char *text_of(CoreBlock *b, int n) {
    if (n >= 1 && n <= 58) return kWarnings[n];
    if (n > 100) return b->diag.wrntxt;
    return kWarnings[0];
}

void head(CoreBlock *b, Line &line, int n, const char *text) {
    line.add(" <<<< Warning ");
    line.add_int(n);
    line.add(": ");
    line.add(text);
    line.add(" in ");
    line.add(b->core.rtnam);
    line.add("!");
}

}  // namespace

const char *qqwartext(int n) noexcept { return (n >= 1 && n <= 58) ? kWarnings[n] : kWarnings[0]; }

void qqwarn(CoreBlock *b, int n, int value) noexcept {
    b->diag.nwarn++;
    if (!printing(b)) return;
    Line line;
    head(b, line, n, text_of(b, n));
    line.add("   ( ");
    line.add_int(value);
    line.add(")\n");
    emit(b, line);
}

void qqwarnd(CoreBlock *b, int n, double value) noexcept {
    qqwarn(b, n, std::isfinite(value) ? qqnint(value) : 0);
}

void qqwarc(CoreBlock *b, int n, const char *text) noexcept {
    b->diag.nwarn++;
    if (!printing(b)) return;
    Line line;
    head(b, line, n, text_of(b, n));
    line.add("   (");
    line.add(text ? text : "");
    line.add(")\n");
    emit(b, line);
}

void qqwar0(CoreBlock *b, int n) noexcept {
    b->diag.nwarn++;
    if (!printing(b)) return;
    Line line;
    head(b, line, n, text_of(b, n));
    line.add("\n");
    emit(b, line);
}

void qqwarm(CoreBlock *b, int n, const char *text) noexcept {
    if (n < 0) {
        if (b->diag.outu == 0) return;
        Line line;
        line.add(" <<<< ");
        line.add(text ? text : "");
        line.add(" in ");
        line.add(b->core.rtnam);
        line.add("!\n");
        emit(b, line);
        return;
    }
    b->diag.nwarn++;
    if (!printing(b)) return;
    Line line;
    head(b, line, n, text ? text : "");
    line.add("\n");
    emit(b, line);
}

void qqwtxt(CoreBlock *b, const char *text) noexcept {
    qqscpy(b->diag.wrntxt, text ? text : "", 80);
}

void qqwar1(CoreBlock *b, int n, const char *text) noexcept {
    qqwtxt(b, text);
    qqwar0(b, n);
}

void qqerrf(CoreBlock *b) noexcept {
    DiagState &d = b->diag;
    if (!(b->sess.wapp == 1 || d.errdv != 0)) return;
    if (d.erropn == 1) return;
    bool null_device = false;
    if (d.errnmf)
        null_device = std::strncmp(d.errnam, "/dev/null", 9) == 0;
    else
        qqscpy(d.errnam, "kolvex.err", 256);
    qqlock(0);
    if (!null_device && d.errdv != 2) {
        if (qqvers(b, d.errnam) != 0) {
            qqlock(1);
            return;
        }
    }
    FILE *fp = std::fopen(d.errnam, d.errdv == 2 ? "a" : "w");
    qqlock(1);
    if (fp) {
        d.errhnd = fp;
        d.errfp = fp;
        d.erropn = 1;
    }
}

void qqerrc(CoreBlock *b) noexcept {
    DiagState &d = b->diag;
    if (d.erropn && d.errhnd) std::fclose(d.errhnd);
    d.errhnd = nullptr;
    d.errfp = nullptr;
    d.erropn = 0;
}

// ---- the coordinate check -----------------------------------------------------

namespace {

bool outside(double v, const double lim[2]) {
    double lo = lim[0] < lim[1] ? lim[0] : lim[1];
    double hi = lim[0] < lim[1] ? lim[1] : lim[0];
    return v < lo || v > hi;
}

// The axis limits of the moment, by the hook of the axis systems.
int limits(const CoreBlock *b, double lim[6]) {
    const DiagState &d = b->diag;
    return d.chklimits ? d.chklimits(b, lim) : 0;
}

void report_out(CoreBlock *b, const double *v, int dims) {
    char text[96];
    int len = 0;
    text[len++] = '(';
    for (int i = 0; i < dims; ++i) {
        if (i) {
            text[len++] = ' ';
            text[len++] = '/';
        }
        len += qqfmte(text + len, (int)sizeof text - len, v[i], 12, 4);
    }
    qqscpy(text + len, ") out of axis scaling", (int)sizeof text - len - 1);
    qqwarm(b, -1, text);
}

// A point out of the scaling is counted whenever it is checked; the line
// about it goes out only while warnings are on, as the plotting routines
// promise (nochek and errmod("CHEC", "OFF") stop the check itself).
void out_point(CoreBlock *b, const double *v, int dims) {
    b->diag.nout++;
    if (printing(b)) report_out(b, v, dims);
}

}  // namespace

void qqchkd(CoreBlock *b, const double *x, const double *y, int n) noexcept {
    DiagState &d = b->diag;
    if (d.nanon == 1)
        for (int i = 0; i < n; ++i)
            if (std::isnan(x[i]) || std::isnan(y[i])) d.nnan++;
    if (d.chkon != 1 || d.outu == 0) return;
    double lim[6];
    int kind = limits(b, lim);
    if (kind == 0 || kind == 3) return;
    for (int i = 0; i < n; ++i) {
        if (std::isnan(x[i]) || std::isnan(y[i])) continue;
        bool out = kind == 2 ? x[i] < 0 : (outside(x[i], lim) || outside(y[i], lim + 2));
        if (out) {
            double v[2] = {x[i], y[i]};
            out_point(b, v, 2);
        }
    }
}

void qqchk3(CoreBlock *b, const double *x, const double *y, const double *z, int n) noexcept {
    DiagState &d = b->diag;
    if (d.nanon == 1)
        for (int i = 0; i < n; ++i)
            if (std::isnan(x[i]) || std::isnan(y[i]) || std::isnan(z[i])) d.nnan++;
    if (d.chkon != 1 || d.outu == 0) return;
    double lim[6];
    int kind = limits(b, lim);
    if (kind == 0 || kind == 3) return;
    for (int i = 0; i < n; ++i) {
        if (std::isnan(x[i]) || std::isnan(y[i]) || std::isnan(z[i])) continue;
        if (outside(x[i], lim) || outside(y[i], lim + 2) || outside(z[i], lim + 4)) {
            double v[3] = {x[i], y[i], z[i]};
            out_point(b, v, 3);
        }
    }
}
