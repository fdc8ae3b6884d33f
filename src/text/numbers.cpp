// Numbers as text: digit texts, exponent forms, numode decorations and the
// routines that measure and convert numbers without drawing them.
#include "text/numbers.h"

#include <cmath>
#include <cstring>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/subsystems.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "text/text.h"
#include "text/text_block.h"

namespace {

// Longest digit text that an exponent form keeps for its mantissa.
constexpr int kMantissa = 21;
// Longest tail (marker, base and exponent) that number keeps.  The tail of
// XEXP counts from its "}": the "{D" before it is part of the mantissa's
// side, so two more characters go with the cut made at "{".
constexpr int kTail = 8;
constexpr int kTailXexp = kTail + 2;

void number_init(CoreBlock *blk) {
    TextBlock *b = qqtxtblk(blk);
    b->num.numfmt = 0;
    qqscpy(b->num.numode, ".000", 4);
}

void reset_numfmt(CoreBlock *b) {
    qqtxtblk(b)->num.numfmt = 0;
}
void reset_numode(CoreBlock *b) {
    qqscpy(qqtxtblk(b)->num.numode, ".000", 4);
}

const ResetEntry kResets[] = {{"NUMF", reset_numfmt}, {"NUMO", reset_numode}, {nullptr, nullptr}};

}  // namespace

extern const Subsystem kxsub_numbers = {"numbers", number_init, number_init, nullptr, kResets, nullptr};

int qqdigtxt(double x, int ndig, char *out, int size) noexcept {
    return qqfcha(x, ndig, out, size, 0);
}

int qqexptxt(double x, int ndig, int kind, char raise, char back, char *out, int size) noexcept {
    if (size < 1) return 0;
    out[0] = '\0';
    double m = std::fabs(x);
    int e = 0;
    if (x != 0 && std::isfinite(m)) {
        // A double spans about 640 decades; the bound only guards the loop.
        for (int k = 0; m >= 10.0 && k < 700; ++k) {
            m /= 10.0;
            ++e;
        }
        for (int k = 0; m < 1.0 && k < 700; ++k) {
            m *= 10.0;
            --e;
        }
    }
    if (x < 0) m = -m;
    char mant[kMantissa + 1];
    qqfcha(m, ndig, mant, sizeof mant, 0);
    if (std::strncmp(mant, "10.", 3) == 0 || std::strncmp(mant, "-10.", 4) == 0) {
        // Rounding carried over into a second integer digit.
        m /= 10.0;
        ++e;
        qqfcha(m, ndig, mant, sizeof mant, 0);
    }
    char ex[16];
    qqicha(e, ex, sizeof ex, 0, 0);
    char r[2] = {raise, '\0'}, bk[2] = {back, '\0'};
    int n = size - 1;
    qqscpy(out, mant, n);
    if (kind == 2) {
        qqscat(out, "E", n);
        return qqscat(out, ex, n);
    }
    qqscat(out, kind == 4 ? "{D}10" : "*10", n);
    qqscat(out, r, n);
    qqscat(out, ex, n);
    return qqscat(out, bk, n);
}

int qqautodig(double v) noexcept {
    double a = std::fabs(v);
    if (!std::isfinite(a)) return -1;
    int e = a == 0 ? 0 : (int)std::trunc(std::log10(a));
    double m = e >= 0 ? a / std::pow(10.0, e) : a * std::pow(10.0, -e);
    static const double tol[5] = {(double)1e-5f, (double)1e-4f, (double)1e-3f, (double)1e-2f,
                                  (double)0.1f};
    int k = 0;
    for (; k < 5; ++k) {
        double t = std::pow(10.0, k) * m;
        if (std::fabs(t - std::floor(t + 0.5)) < tol[k]) break;
    }
    int d = k - e;
    return d < 1 ? -1 : d;
}

int qqnumode(const TextBlock *b, char *text, int size) noexcept {
    const char *nm = b->num.numode;
    char dec = nm[0] ? nm[0] : '.';
    char th = nm[1] ? nm[1] : '0';
    char sg = nm[2] ? nm[2] : '0';
    char buf[160];
    int len = 0;
    auto put = [&](char c) {
        if (len < (int)sizeof buf - 1 && len < size - 1) buf[len++] = c;
    };
    if (sg != '0') put(sg);
    const char *p = text;
    if (*p == '-') put(*p++);
    const char *point = std::strchr(p, '.');
    int nint = point ? (int)(point - p) : (int)std::strlen(p);
    for (int i = 0; i < nint; ++i) {
        put(p[i]);
        int rest = nint - 1 - i;
        if (th != '0' && rest > 0 && rest % 3 == 0) put(th);
    }
    if (point) {
        put(dec);
        const char *f = point + 1;
        int nf = (int)std::strlen(f);
        for (int i = 0; i < nf; ++i) {
            put(f[i]);
            if (th != '0' && (i + 1) % 3 == 0 && i + 1 < nf) put(th);
        }
    }
    buf[len] = '\0';
    qqscpy(text, buf, size - 1);
    return len;
}

int qqnumtxt(const TextBlock *b, double x, int ndig, char *out, int size) noexcept {
    if (size > 0) out[0] = '\0';  // a refused call leaves an empty text
    if (ndig < -1 || ndig > 100) return -1;
    int fmt = b->num.numfmt;
    char raise = qqraisech(b), back = qqbackch(b);
    char body[160], tail[kTailXexp + 1];
    tail[0] = '\0';
    if (fmt == 0 || fmt == 3) {
        qqdigtxt(x, ndig, body, sizeof body);
    } else {
        int kind = fmt == 1 ? 1 : fmt == 2 ? 2 : 4;
        char t[80];
        qqexptxt(x, ndig, kind, raise, back, t, sizeof t);
        char marker = kind == 1 ? '*' : kind == 2 ? 'E' : '{';
        char *cut = std::strchr(t, marker);
        if (cut) {
            qqscpy(tail, cut, kind == 4 ? kTailXexp : kTail);
            *cut = '\0';
        }
        qqscpy(body, t, (int)sizeof body - 1);
    }
    qqnumode(b, body, sizeof body);
    int n = size - 1;
    out[0] = '\0';
    if (fmt == 3) {
        char r[2] = {raise, '\0'}, bk[2] = {back, '\0'};
        qqscpy(out, "10", n);
        qqscat(out, r, n);
        qqscat(out, body, n);
        return qqscat(out, bk, n);
    }
    qqscpy(out, body, n);
    return qqscat(out, tail, n);
}

// ---------------------------------------------------------------------------
// Public routines that only convert.

void fcha(double x, int ndig, char *cstr) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("fcha"));
    if (!cstr) return;
    cstr[0] = '\0';
    if (!b) return;
    if (ndig < -1 || ndig > 100) {
        qqwarn(b, 2, ndig);
        return;
    }
    qqfcha(x, ndig, cstr, 120, 0);
}

int flen(double x, int ndig) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("flen"));
    if (!b) return 0;
    if (ndig < -1 || ndig > 100) {
        qqwarn(b, 2, ndig);
        return 0;
    }
    if (!std::isfinite(x)) {
        char t[16];
        return qqfcha(x, ndig, t, sizeof t, 0);
    }
    // |x| rounded at ndig, counted in digits of that rounded integer so
    // that a value just below a power of ten counts the carry (9.96 with
    // one decimal reads 10.0).
    double v = std::fabs(x);
    v = ndig > 0 ? std::floor(v * std::pow(10.0, ndig) + 0.5) : std::floor(v + 0.5);
    int nd = 1;
    while (nd < 100 && !(std::pow(10.0, nd) - 0.5 > v)) ++nd;
    // d: digits before the point, at least the "0" of "0.".
    int d = ndig > 0 ? (nd > ndig ? nd - ndig : 1) : nd;
    int len = ndig < 0 ? d : d + ndig + 1;
    // Room for a sign whenever x is negative, even where the drawn text
    // later drops the minus of an all-zero result: callers size fields
    // with this and a spare column costs nothing.
    if (x < 0) ++len;
    return len;
}

void intcha(int nint, char *cstr) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("intcha"));
    (void)b;
    if (!cstr) return;
    qqicha(nint, cstr, 20, 0, 0);
}

int intlen(int nint) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("intlen"));
    (void)b;
    long long a = nint < 0 ? -(long long)nint : nint;
    int n = 1;
    long long p = 10;
    // Compared up to 10^8 only; anything from 10^8 up is given the full
    // ten columns of the widest integer.
    while (n < 9 && a >= p) {
        ++n;
        p *= 10;
    }
    if (n == 9) n = 10;
    return n + (nint < 0 ? 1 : 0);
}

int trmlen(const char *cstr) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("trmlen"));
    (void)b;
    if (!cstr) return 0;
    int n = (int)std::strlen(cstr);
    while (n > 0 && cstr[n - 1] == ' ') --n;
    return n;
}

void numfmt(const char *copt) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("numfmt"));
    if (!b) return;
    int k = qqkey(b, "FLOA+EXP +FEXP+LOG +XEXP", 5, copt);
    if (k > 0) b->num.numfmt = k - 1;
}

void numode(const char *cdec, const char *cgrp, const char *cpos, const char *cfix) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("numode"));
    if (!b) return;
    char *nm = b->num.numode;
    int k = qqkey(b, "POIN+COMM", 2, cdec);
    if (k > 0) nm[0] = ".,"[k - 1];
    k = qqkey(b, "NONE+SPAC+POIN+COMM", 4, cgrp);
    if (k > 0) nm[1] = "0 .,"[k - 1];
    k = qqkey(b, "NONE+SPAC+PLUS", 3, cpos);
    if (k > 0) nm[2] = "0 +"[k - 1];
    k = qqkey(b, "NOEQ+EQUA", 2, cfix);
    if (k > 0) nm[3] = "01"[k - 1];
}

// The exponent and reset characters of mix mode.
char qqraisech(const TextBlock *b) noexcept {
    return b->txt.mixchr[0] ? b->txt.mixchr[0] : '[';
}
char qqbackch(const TextBlock *b) noexcept {
    return b->txt.mixchr[2] ? b->txt.mixchr[2] : '$';
}

// ---------------------------------------------------------------------------
// Numbers drawn and measured through the text path.

namespace {

struct NumberModes {
    int fixon;
    double fixfac;
    int mixon, smxon, smxalf;
    char c1, c2;
};

// Fixed pitch for equal widths, mix mode for the exponent forms and the
// MATHEMATIC shift of XEXP, for the length of one call.
void modes_on(TextBlock *b, NumberModes *m) {
    TextState &t = b->txt;
    m->fixon = t.fixon;
    m->fixfac = t.fixfac;
    m->mixon = t.mixon;
    m->smxon = t.smxon;
    m->smxalf = t.smxalf[0];
    m->c1 = t.smxc1[0];
    m->c2 = t.smxc2[0];
    if (b->num.numode[3] == '1') {
        t.fixon = 1;
        t.fixfac = 0.7;
    }
    if (b->num.numfmt != 0) t.mixon = 1;
    if (b->num.numfmt == 4) {
        t.smxon = 1;
        t.smxalf[0] = 3;
        t.smxc1[0] = '{';
        t.smxc2[0] = '}';
    }
    t.cachesec = 0;
}

void modes_off(TextBlock *b, const NumberModes *m) {
    TextState &t = b->txt;
    t.fixon = m->fixon;
    t.fixfac = m->fixfac;
    t.mixon = m->mixon;
    t.smxon = m->smxon;
    t.smxalf[0] = m->smxalf;
    t.smxc1[0] = m->c1;
    t.smxc2[0] = m->c2;
    t.cachesec = 0;
}

// The text of number cut to the buffer limit of 50 characters.
bool number_text(TextBlock *b, double x, int ndig, char *out) {
    if (ndig < -1 || ndig > 100) {
        qqwarn(b, 2, ndig);
        return false;
    }
    char t[160];
    qqnumtxt(b, x, ndig, t, sizeof t);
    qqscpy(out, t, 50);
    return true;
}

}  // namespace

void number(double x, int ndig, int nx, int ny) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("number"));
    if (!b) return;
    char t[51];
    if (!number_text(b, x, ndig, t)) return;
    NumberModes m;
    modes_on(b, &m);
    qqmessag(b, t, nx, ny);
    modes_off(b, &m);
}

int qqnumlen(TextBlock *b, double x, int ndig) noexcept {
    char t[51];
    if (!number_text(b, x, ndig, t)) return 0;
    NumberModes m;
    modes_on(b, &m);
    int n = qqtxtlen(b, t);
    modes_off(b, &m);
    return n;
}

void qqnumat(TextBlock *b, double x, int ndig, int nx, int ny) noexcept {
    char t[51];
    if (!number_text(b, x, ndig, t)) return;
    TextState &ts = b->txt;
    int hj = ts.hjus, vj = ts.vjus;
    unsigned char keep = b->core.ynoflp;
    ts.hjus = ts.vjus = 0;
    b->core.ynoflp = 1;
    NumberModes m;
    modes_on(b, &m);
    qqmessag(b, t, nx, ny);
    modes_off(b, &m);
    b->core.ynoflp = keep;
    ts.hjus = hj;
    ts.vjus = vj;
}

int nlnumb(double x, int ndig) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("nlnumb"));
    if (!b) return 0;
    char t[51];
    if (!number_text(b, x, ndig, t)) return 0;
    NumberModes m;
    modes_on(b, &m);
    int n = qqtxtlen(b, t);
    modes_off(b, &m);
    return n;
}

void rlnumb(double x, int ndig, double xp, double yp) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("rlnumb"));
    if (!b) return;
    char t[51];
    if (!number_text(b, x, ndig, t)) return;
    int nx = 999, ny = 999;
    if (!(std::fabs(xp - 999.0) < 0.1 && std::fabs(yp - 999.0) < 0.1)) {
        double px = xp, py = yp;
        if (b->txt.userpos && !b->txt.userpos(b, xp, yp, &px, &py)) return;
        nx = (int)std::trunc(px + 0.5);
        ny = (int)std::trunc(py + 0.5);
    }
    NumberModes m;
    modes_on(b, &m);
    unsigned char keep = b->core.ynoflp;
    b->core.ynoflp = 1;
    qqmessag(b, t, nx, ny);
    b->core.ynoflp = keep;
    modes_off(b, &m);
}
