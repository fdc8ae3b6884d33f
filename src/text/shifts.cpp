// Alphabet shifts inside strings and the instruction alphabet, whose text
// is not drawn but moves the pen and changes height, colour and spacing.
#include <cmath>
#include <cstring>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "text/text_block.h"
#include "text/text_internal.h"

namespace {

enum { kInst = 7 };

// The parameter of a command: kind 0 none, 1 number, 2 'X'; -1 after a
// warning.  isint tells whether the number had no fraction.
struct Param {
    int kind;
    double value;
    bool isint;
};

Param parse_param(TextBlock *b, const char *buf, int n) {
    Param p{0, 0.0, true};
    if (n <= 1) return p;
    if (n == 2 && (buf[1] == 'X' || buf[1] == 'x')) {
        p.kind = 2;
        return p;
    }
    double ip = 0.0, frac = 0.0, scale = 0.1;
    bool neg = false, infrac = false;
    for (int k = 1; k < n; ++k) {
        char c = buf[k];
        if (c == '-') {
            neg = true;
        } else if (c == '.') {
            infrac = true;
            p.isint = false;
        } else if (c >= '0' && c <= '9') {
            if (infrac) {
                frac += (c - '0') * scale;
                scale *= 0.1;
            } else if (ip < 1e12) {
                ip = ip * 10 + (c - '0');
            }
        } else {
            qqwarc(b, 43, buf);
            p.kind = -1;
            return p;
        }
    }
    p.kind = 1;
    p.value = neg ? -(ip + frac) : ip + frac;
    return p;
}

// An integer parameter within [lo, hi]: false after a warning.  Out of
// range is warning 44 for a tabulator index, 43 for any other value.
bool int_param(TextBlock *b, const char *buf, const Param &p, int lo, int hi, int *v,
               bool tab = false) {
    if (!p.isint) {
        qqwarc(b, 45, buf);
        return false;
    }
    if (p.value < lo || p.value > hi) {
        qqwarc(b, tab ? 44 : 43, buf);
        return false;
    }
    *v = (int)p.value;
    return true;
}

double blank_width(TextBlock *b) {
    TextState &t = b->txt;
    const TextSection *s = qqtxtsection(b, t.curalf);
    if (t.curfix) return t.curfixfac * t.fixbase * t.curwfac * (t.curhgt - 1);
    double units = s->xdiv == 6 ? 6.0 : (s->xdiv == 200 ? 60.0 : 9.0);
    return units * t.xscl;
}

void execute(TextBlock *b) {
    TextState &t = b->txt;
    int n = t.ibufn;
    if (n <= 0) return;
    char buf[24];
    std::memcpy(buf, t.ibuf, n);
    buf[n] = 0;
    char cmd = buf[0];
    if (cmd >= 'a' && cmd <= 'z') cmd = (char)(cmd - 32);
    buf[0] = cmd;
    if (!std::strchr("ACDEFGHIJKLMNOPRSTUVWYZ", cmd) || cmd == 0) {
        qqwarc(b, 46, buf);
        return;
    }
    Param p = parse_param(b, buf, n);
    if (p.kind < 0) return;
    // X names a value of the string's start: these commands have none
    if (p.kind == 2 && std::strchr("ACFGJLPRSTV", cmd)) {
        qqwarc(b, 43, buf);
        return;
    }
    double h = t.curhgt;
    double sh = t.starthgt;
    int iv = 0;
    auto real = [&](double def) { return p.kind == 1 ? p.value : def; };
    auto noarg = [&]() {
        if (p.kind == 1) {
            qqwarc(b, 43, buf);
            return false;
        }
        return true;
    };
    switch (cmd) {
    case 'A': qqtxtadvance(b, real(1.0) * h); break;
    case 'C':
        iv = 1;
        if (p.kind == 1 && !int_param(b, buf, p, -1000000, 1000000, &iv)) return;
        qqtxtsection(b, t.curalf);
        qqtxtadvance(b, iv * t.gapw);
        break;
    case 'D':
    case 'U': {
        double v = p.kind == 2 ? 0.0 : real(1.0);
        double off = v > 0 ? v * sh : std::fabs(v) * h;
        if (p.kind == 2) off = 0.0;
        t.vshift = cmd == 'U' ? off : -off;
        break;
    }
    case 'E':
    case 'I':
        if (!noarg()) return;
        if (p.kind == 2) {
            t.vshift = 0.0;
            t.curhgt = t.starthgt;
        } else {
            t.vshift += cmd == 'E' ? 0.75 * h : -0.35 * h;
            t.curhgt = qqnint(0.6 * h);
        }
        break;
    case 'F':
        iv = 1;
        if (p.kind == 1 && !int_param(b, buf, p, -1000000, 1000000, &iv)) return;
        qqtxtadvance(b, iv * blank_width(b));
        break;
    case 'G':
    case 'J':
    case 'L':
    case 'V':
    case 'P': {
        iv = 1;
        if (p.kind == 1 && !int_param(b, buf, p, 1, QQ_NTABS, &iv, true)) return;
        double along = qqtxtalong(b);
        qqtxtsection(b, t.curalf);
        double end = along - t.gapw;
        if (cmd == 'G') qqtxtadvance(b, t.tabs[iv - 1] - along);
        if (cmd == 'P') t.tabs[iv - 1] = along;
        if (cmd == 'L' || cmd == 'J') qqtxtrule(b, t.tabs[iv - 1], end, 0.2 * h);
        if (cmd == 'J') qqtxtrule(b, t.tabs[iv - 1], end, 0.4 * h);
        if (cmd == 'V') qqtxtrule(b, t.tabs[iv - 1], end, -0.5 * h);
        break;
    }
    case 'H':
        if (p.kind == 2) {
            t.curhgt = t.starthgt;
        } else {
            double v = real(0.6);
            t.curhgt = v > 0 ? qqnint(v * h) : qqnint(std::fabs(v) * sh);
        }
        if (t.curhgt < 1) t.curhgt = 1;
        if (t.curhgt > 100000) t.curhgt = 100000;
        break;
    case 'K':
        if (p.kind == 2) {
            t.curfix = 0;
        } else {
            double v = real(0.8);
            if (!(v > 0)) {
                qqwarc(b, 43, buf);
                return;
            }
            t.curfix = 1;
            t.curfixfac = v;
        }
        break;
    case 'M':
        if (p.kind == 2) {
            t.curalf = t.basalf;
        } else {
            iv = 1;
            if (p.kind == 1 && !int_param(b, buf, p, 1, 6, &iv)) return;
            t.curalf = iv;
        }
        t.shfret = t.curalf;
        break;
    case 'N':
        if (p.kind == 2) {
            iv = t.startclr;
        } else {
            iv = 1;
            if (p.kind == 1 && !int_param(b, buf, p, 0, 255, &iv)) return;
        }
        t.curclr = iv;
        if (!t.measure) qqsetc(b, iv);
        break;
    case 'O': t.voff = p.kind == 2 ? 0.0 : real(1.0) * h; break;
    case 'R':
        if (!noarg()) return;
        t.vshift = 0.0;
        t.voff = 0.0;
        t.curhgt = t.starthgt;
        break;
    case 'S':
        iv = 0;
        if (p.kind == 1 && !int_param(b, buf, p, 0, 21, &iv)) return;
        if (!t.measure && t.symbol) {
            double o = t.vshift + t.voff + 0.5 * h;
            t.symbol(b, iv, t.penx + 0.5 * h * t.cosa - t.sina * o - b->dev.nxsh,
                     t.peny - 0.5 * h * t.sina - t.cosa * o - b->dev.nysh, h, t.angle);
        }
        qqtxtsection(b, t.curalf);
        qqtxtadvance(b, h + t.gapw);
        break;
    case 'T':
        iv = 0;
        if (p.kind == 1 && !int_param(b, buf, p, -100000000, 100000000, &iv)) return;
        qqtxtadvance(b, iv - qqtxtalong(b));
        break;
    case 'W': {
        double v = p.kind == 2 ? t.wfac : real(1.0);
        if (!(v > 0 && v < 100)) {
            qqwarc(b, 43, buf);
            return;
        }
        t.curwfac = v;
        break;
    }
    case 'Y': t.curspc = p.kind == 2 ? t.spcadd : real(0.0); break;
    case 'Z': {
        if (p.kind == 2) {
            t.curshear = t.shear;
            break;
        }
        double v = real(0.0);
        if (v < -60 || v > 60) {
            qqwarc(b, 43, buf);
            return;
        }
        t.curshear = std::fabs(v) < 0.5 ? 0.0 : 1.0 / std::tan((90.0 - v) * 3.1415927 / 180.0);
        break;
    }
    default: qqwarc(b, 46, buf); return;
    }
    t.cachesec = 0;
}

// Adds a character to the instruction buffer; a full buffer takes it in
// place of its last one.
void buffer_put(TextState &t, char c) {
    if (t.ibufn >= 20)
        t.ibuf[19] = c;
    else
        t.ibuf[t.ibufn++] = c;
}

void collect(TextBlock *b, int code) {
    TextState &t = b->txt;
    if (code == ' ') return;
    bool param = code == 'X' || code == 'x' || code == '.' || code == '-' || (code >= '0' && code <= '9');
    char c = (code > 0 && code < 256) ? (char)code : '?';
    if (param) {
        buffer_put(t, c);
        return;
    }
    // The first command letter joins whatever the buffer holds; the next
    // one executes it and starts a new buffer.
    if (t.iletters == 0) {
        buffer_put(t, c);
        t.iletters = 1;
        return;
    }
    execute(b);
    t.ibufn = 0;
    buffer_put(t, c);
}

}  // namespace

int qqtxtshift(TextBlock *b, int code) noexcept {
    TextState &t = b->txt;
    if (!t.shfact) {
        for (int s = 0; s < 6; ++s) {
            if (t.smxalf[s] != 0 && code == (unsigned char)t.smxc1[s]) {
                t.shfact = 1;
                t.shfslot = s;
                t.shfret = t.curalf;
                if (t.smxalf[s] == kInst) {
                    t.ibufn = 0;
                    t.iletters = 0;
                } else {
                    t.curalf = t.smxalf[s];
                }
                return 1;
            }
        }
        return 0;
    }
    int s = t.shfslot;
    if (code == (unsigned char)t.smxc2[s]) {
        t.shfact = 0;
        if (t.smxalf[s] == kInst) {
            if (t.ibufn > 0) execute(b);
            t.ibufn = 0;
            t.iletters = 0;
        } else {
            t.curalf = t.shfret;
        }
        return 1;
    }
    if (t.smxalf[s] == kInst) {
        collect(b, code);
        return 1;
    }
    return 0;
}

void smxalf(const char *calph, const char *c1, const char *c2, int n) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("smxalf"));
    if (!b) return;
    int k = qqkey(b, "STAN+GREE+MATH+ITAL+SCRI+RUSS+INST", 7, calph);
    if (k <= 0) return;
    if (qqchki(b, n, 1, 6)) return;
    TextState &t = b->txt;
    if (k == t.basalf) {
        qqwar0(b, 19);
        return;
    }
    t.smxalf[n - 1] = k;
    t.smxc1[n - 1] = c1 ? c1[0] : 0;
    t.smxc2[n - 1] = c2 ? c2[0] : 0;
    t.smxon = 1;
}

void gmxalf(const char *calph, char *c1, char *c2, int *n) noexcept {
    if (c1) c1[0] = 0;
    if (c2) c2[0] = 0;
    if (n) *n = 0;
    TextBlock *b = qqtxtblk(KX_ENTRY("gmxalf"));
    if (!b) return;
    int k = qqkey(b, "STAN+GREE+MATH+ITAL+SCRI+RUSS+INST", 7, calph);
    if (c1) std::strcpy(c1, " ");
    if (c2) std::strcpy(c2, " ");
    if (k <= 0) return;
    const TextState &t = b->txt;
    for (int s = 0; s < 6; ++s)
        if (t.smxalf[s] == k) {
            if (c1) c1[0] = t.smxc1[s];
            if (c2) c2[0] = t.smxc2[s];
            if (n) *n = s + 1;
            return;
        }
}
