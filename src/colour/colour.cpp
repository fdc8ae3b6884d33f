// The colour model: colour tables, named colours, fore- and background,
// and the routines that set and read colours.
#include "colour/colour.h"

#include "colour/perceptual.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "colour/colour_block.h"
#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/numfmt.h"
#include "core/session.h"
#include "core/subsystems.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"

namespace {

// Kinds 9 to 12 are our perceptually uniform ramps, beyond the classic
// nine: they behave as RAIN does (black below, white above the range).
enum Kind { SMAL, RAIN, SPEC, GREY, RRAI, RSPE, RGRE, VGA, TEMP, VIRI, MAGM, INFE, PLAS, NKINDS };

const char kKinds[] = "SMAL+RAIN+SPEC+GREY+RRAI+RSPE+RGRE+VGA +TEMP+VIRI+MAGM+INFE+PLAS";

// The kinds that keep black at entry 0, white at 255 and a ramp between:
// the rainbow-like tables.
bool ramp_kind(int kind) {
    return kind == RAIN || kind == SPEC || kind == GREY || kind == TEMP || kind >= VIRI;
}

// Stops of the rainbow table; the entries between them are interpolated.
struct Stop {
    int index;
    int rgb;
};
const Stop kRainbow[] = {
    {0, 0x000000},   {1, 0x220044},   {5, 0x330066},   {13, 0x3300AA},  {18, 0x2200CC},
    {22, 0x2200EE},  {26, 0x1100FF},  {30, 0x0000FF},  {43, 0x0033FF},  {49, 0x0048FF},
    {68, 0x0093FF},  {74, 0x00A8FF},  {96, 0x00FFFF},  {102, 0x00FFEA}, {117, 0x00FFAA},
    {125, 0x00FF66}, {130, 0x00FF44}, {138, 0x00FF00}, {146, 0x44FF00}, {154, 0x66FF00},
    {160, 0x7BFF00}, {183, 0xDDFF00}, {189, 0xF2FF00}, {192, 0xFFFF00}, {208, 0xFFBB00},
    {214, 0xFFA600}, {237, 0xFF4400}, {243, 0xFF2F00}, {254, 0xFF0000}, {255, 0xFFFFFF},
};
const Stop kSpectrum[] = {
    {0, 0x000000},   {1, 0xFF00FF},   {52, 0x0000FF},  {102, 0x00FFFF},
    {153, 0x00FF00}, {204, 0xFFFF00}, {254, 0xFF0000}, {255, 0xFFFFFF},
};

void interpolate(int *map, const Stop *stops, int n) {
    map[stops[0].index] = stops[0].rgb;
    for (int s = 1; s < n; ++s) {
        const Stop &a = stops[s - 1], &c = stops[s];
        // Entry 255 is white whatever the last stop: no ramp towards it.
        if (c.index == 255) {
            map[255] = c.rgb;
            continue;
        }
        if (a.index == 0) {
            map[c.index] = c.rgb;
            continue;
        }
        for (int i = a.index + 1; i <= c.index; ++i) {
            double t = (double)(i - a.index) / (c.index - a.index);
            int rgb = 0;
            for (int shift = 16; shift >= 0; shift -= 8) {
                int p0 = (a.rgb >> shift) & 255, p1 = (c.rgb >> shift) & 255;
                int v = (int)std::floor(p0 + (p1 - p0) * t + 0.5);
                rgb |= v << shift;
            }
            map[i] = rgb;
        }
    }
}

const int kSmall[9] = {0x000000, 0xFFFFFF, 0xFF0000, 0x00FF00, 0x0000FF,
                       0xFFFF00, 0xFF8000, 0x00FFFF, 0xFF00FF};
const int kVga[16] = {0x000000, 0x0000AA, 0x00AA00, 0x00AAAA, 0xAA0000, 0xAA00AA,
                      0xAA5500, 0xAAAAAA, 0x555555, 0x5555FF, 0x55FF55, 0x55FFFF,
                      0xFF5555, 0xFF55FF, 0xFFFF55, 0xFFFFFF};
const int kNamedColour[9] = {0x01FFFFFF, 0x010000FF, 0x0100FF00, 0x0100FFFF, 0x01FF0000,
                             0x010080FF, 0x01FFFF00, 0x01FF00FF, 0x01000000};
const int kNamedGrey[9] = {0x01FFFFFF, 0x01E6E6E6, 0x01B9B9B9, 0x01969696, 0x015F5F5F,
                           0x01D7D7D7, 0x01AFAFAF, 0x016E6E6E, 0x01000000};
enum { WHIT = 0, BLAC = 8 };
const int kBlack = 0x01000000, kWhite = 0x01FFFFFF;

void swap(int &a, int &c) {
    int t = a;
    a = c;
    c = t;
}

// The colour and the table on their way to the device, through the hooks
// that the device layer sets.
void set_colour(ColourBlock *b, int value) {
    b->clr.setc(b, value);
}
void send_table(ColourBlock *b) {
    if (b->core.level > 0) b->clr.table(b);
}

// A part of a colour given as 0..1 with the tolerance of the routines.
bool part_ok(double v, double tol) { return v >= -tol && v <= 1.0 + tol; }
int part_byte(double v) {
    int k = (int)std::trunc(v * 255.0 + 0.5);
    return k < 0 ? 0 : (k > 255 ? 255 : k);
}

void colour_init(CoreBlock *blk) {
    ColourBlock *b = qqclrblk(blk);
    b->clr.curclr = 0;
    b->clr.vltfnm[0] = '\0';
    qqsetvlt(b, (qqdevclr(b) & QQ_CLR_GREY_TABLE) ? RGRE : RAIN);
}

void reset_colour(CoreBlock *b) {
    qqcolorfore(qqclrblk(b));
}

void reset_range(CoreBlock *blk) {
    ColourBlock *b = qqclrblk(blk);
    b->clr.minidx = 1;
    b->clr.maxidx = b->clr.whtidx - 1;
}

void reset_cycle(CoreBlock *blk) {
    ColourBlock *b = qqclrblk(blk);
    for (int k = 1; k <= 30; ++k) b->clr.clrcycl[k - 1] = b->clr.named[(k % 8 == 0 ? 8 : k % 8) - 1];
}

const ResetEntry kResets[] = {
    {"COLO", reset_colour}, {"SETC", reset_colour}, {"COLR", reset_range},
    {"CLRC", reset_cycle},  {nullptr, nullptr},
};

void colour_first(CoreBlock *b) {
    qqclrblk(b)->clr.vltkind = RAIN;
}

// Entries of the table that a search for the nearest colour looks at.
int table_entries(const ColourBlock *b) {
    switch (b->clr.vltkind) {
    case 0: return 9;    // the small table
    case 7: return 16;   // the VGA table
    default: return 256;
    }
}

}  // namespace

extern const Subsystem kxsub_colour = {"colour", colour_first, colour_init, nullptr, kResets, nullptr};

int qqnearest(const ColourBlock *b, int r, int g, int bl) noexcept {
    int best = 0, bestd = 0x7fffffff;
    int n = table_entries(b);
    for (int i = 0; i < n; ++i) {
        int e = b->clr.colmap[i];
        int d = std::abs(((e >> 16) & 255) - r) + std::abs(((e >> 8) & 255) - g) + std::abs((e & 255) - bl);
        if (d < bestd) {
            bestd = d;
            best = i;
            if (d == 0) break;
        }
    }
    return best;
}

void qqclrrgb(const ColourBlock *b, int value, int *r, int *g, int *bl) noexcept {
    if (qqexplicit(value)) {
        *r = value & 255;
        *g = (value >> 8) & 255;
        *bl = (value >> 16) & 255;
        return;
    }
    int e = b->clr.colmap[((value % 256) + 256) % 256];
    *r = (e >> 16) & 255;
    *g = (e >> 8) & 255;
    *bl = e & 255;
}

void qqsetvlt(ColourBlock *b, int kind) noexcept {
    ColourState &c = b->clr;
    unsigned dev = qqdevclr(b);
    bool white_sheet = dev & QQ_CLR_WHITE_SHEET;
    c.vltkind = kind;
    bool grey = kind == GREY || kind == RGRE;
    bool reversed = kind == RRAI || kind == RSPE || kind == RGRE;
    // 1-3: the named colours, adapted to the sheet of the device.
    std::memcpy(c.named, grey ? kNamedGrey : kNamedColour, sizeof c.named);
    if (kind == SMAL || kind == GREY || kind == RGRE) c.named[BLAC] = c.named[WHIT];
    if (ramp_kind(kind) && (dev & QQ_CLR_WHIT_BLACK))
        c.named[WHIT] = kBlack;
    if ((reversed || kind == SMAL) && white_sheet) {
        c.named[WHIT] = c.named[BLAC] = kBlack;
    } else if (reversed && b->sess.colbits < 9) {
        swap(c.named[WHIT], c.named[BLAC]);
    }
    if (kind == VGA && white_sheet) {
        c.named[BLAC] = kWhite;
        c.named[WHIT] = kBlack;
    }
    // 4: the entries, unless myvlt before the session asked to keep them.
    if (c.vltkeep == 1) {
        c.vltkeep = 0;
    } else {
        int *map = c.colmap;
        std::memset(map, 0, sizeof c.colmap);
        switch (kind) {
        case SMAL:
            std::memcpy(map, kSmall, sizeof kSmall);
            if (white_sheet) swap(map[0], map[1]);
            break;
        case RAIN:
        case RRAI: interpolate(map, kRainbow, (int)(sizeof kRainbow / sizeof *kRainbow)); break;
        case SPEC:
        case RSPE: interpolate(map, kSpectrum, (int)(sizeof kSpectrum / sizeof *kSpectrum)); break;
        case GREY:
        case RGRE:
            for (int i = 0; i < 256; ++i) map[i] = (i << 16) | (i << 8) | i;
            break;
        case VGA:
            std::memcpy(map, kVga, sizeof kVga);
            if (white_sheet) swap(map[0], map[15]);
            break;
        case TEMP:
            for (int i = 0; i < 256; ++i) {
                int r = i < 150 ? (int)std::trunc(i * 1.7 + 0.5) : 255;
                int g = i < 120 ? 0 : (int)std::trunc((i - 120) * 1.8888888888888888 + 0.5);
                int bl = i < 190 ? 0 : (int)std::trunc((i - 190) * 3.923076923076923 + 0.5);
                map[i] = (r << 16) | (g << 8) | bl;
            }
            break;
        default: {
            // Entries 1 to 254 sample the 256 colours of the ramp evenly,
            // so both ends of the ramp are in the colour range.
            const int *ramp = qqperceptual(kind - VIRI);
            map[0] = 0x000000;
            map[255] = 0xFFFFFF;
            for (int i = 1; i <= 254 && ramp; ++i) {
                double t = (i - 1) * 255.0 / 253.0;
                int k = (int)t;
                double f = t - k;
                const int lo = ramp[k], hi = ramp[k < 255 ? k + 1 : 255];
                int rgb = 0;
                for (int shift = 16; shift >= 0; shift -= 8) {
                    int p0 = (lo >> shift) & 255, p1 = (hi >> shift) & 255;
                    rgb |= (int)std::floor(p0 + (p1 - p0) * f + 0.5) << shift;
                }
                map[i] = rgb;
            }
            break;
        }
        }
        if (reversed)
            for (int i = 0; i < 128; ++i) swap(map[i], map[255 - i]);
    }
    // 5-6: fore- and background.
    c.forclr = 255;
    c.bckclr = 0;
    c.blkidx = 0;
    c.whtidx = 255;
    if ((dev & QQ_CLR_BACK_LAST) && ramp_kind(kind)) {
        c.bckclr = 255;
        c.forclr = 0;
    } else if (kind == SMAL) {
        c.whtidx = 9;
        c.forclr = 1;
    } else if (kind == VGA) {
        c.whtidx = 15;
        c.forclr = 15;
    } else if (reversed && b->sess.colbits >= 9 && !(dev & QQ_CLR_KEEP_REVERSED)) {
        c.bckclr = 255;
        c.forclr = 0;
    }
    c.minidx = 1;
    c.maxidx = c.whtidx - 1;
    // 7: a white background turns the table round.
    int bg = b->sess.bgmode;
    if (bg == 2 && (dev & QQ_CLR_TURN_ON_WHITE)) {
        int q = kind == SMAL ? 1 : (kind == VGA ? 15 : 255);
        swap(c.colmap[0], c.colmap[q]);
        swap(c.blkidx, c.whtidx);
        if (kind == SMAL || kind == GREY || kind == RGRE)
            c.named[WHIT] = c.named[BLAC] = kBlack;
        else
            swap(c.named[WHIT], c.named[BLAC]);
    }
    // 8: the colour cycle.
    reset_cycle(b);
    // 9: the table to the device, and the foreground.
    if (b->core.level > 0) {
        send_table(b);
        set_colour(b, c.forclr);
    }
}

void qqcolorfore(ColourBlock *b) noexcept {
    set_colour(b, b->clr.forclr);
}

// ---- public routines -------------------------------------------------------------

void color(const char *col) noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("color"));
    if (!b) return;
    int k = qqkey(b, "WHIT+RED +GREE+YELL+BLUE+ORAN+CYAN+MAGE+BLAC+FORE+BACK+GRAY+HALF", 13, col);
    if (k == 0) return;
    ColourState &c = b->clr;
    if (k <= 9) {
        set_colour(b, c.named[k - 1]);
    } else if (k == 10) {
        set_colour(b, c.forclr);
    } else if (k == 11) {
        set_colour(b, c.bckclr);
    } else if (k == 12) {
        set_colour(b, qqrgbval(128, 128, 128));
    } else {
        // Halfway between the current colour and the background.
        int r0, g0, b0, r1, g1, b1;
        qqclrrgb(b, b->clr.curclr, &r0, &g0, &b0);
        qqclrrgb(b, c.bckclr, &r1, &g1, &b1);
        set_colour(b, qqrgbval(part_byte((r0 + r1) / 510.0), part_byte((g0 + g1) / 510.0),
                           part_byte((b0 + b1) / 510.0)));
    }
}

void setclr(int ncol) noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("setclr"));
    if (!b || qqchki(b, ncol, 0, -1)) return;
    set_colour(b, ncol);
}

int intrgb(double xr, double xg, double xb) noexcept {
    if (!part_ok(xr, 0.001) || !part_ok(xg, 0.001) || !part_ok(xb, 0.001)) return -1;
    return qqrgbval(part_byte(xr), part_byte(xg), part_byte(xb));
}

void setrgb(double xr, double xg, double xb) noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("setrgb"));
    if (!b) return;
    int v = intrgb(xr, xg, xb);
    if (v == -1) {
        qqwarn(b, 2, 0);
        return;
    }
    set_colour(b, v);
}

int indrgb(double xr, double xg, double xb) noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("indrgb"));
    if (!b) return -1;
    if (!part_ok(xr, 0.001) || !part_ok(xg, 0.001) || !part_ok(xb, 0.001)) {
        qqwarn(b, 2, 0);
        return -1;
    }
    return qqnearest(b, part_byte(xr), part_byte(xg), part_byte(xb));
}

int getclr() noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("getclr"));
    return b ? b->clr.curclr : 0;
}

void getrgb(double *xr, double *xg, double *xb) noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("getrgb"));
    if (!b) return;
    int r, g, bl;
    qqclrrgb(b, b->clr.curclr, &r, &g, &bl);
    *xr = r / 255.0;
    *xg = g / 255.0;
    *xb = bl / 255.0;
}

void getind(int i, double *xr, double *xg, double *xb) noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("getind"));
    if (!b) return;
    if (!qqexplicit(i) && (i < 0 || i > 255)) {
        qqwarn(b, 2, i);
        return;
    }
    int r, g, bl;
    qqclrrgb(b, i, &r, &g, &bl);
    *xr = r / 255.0;
    *xg = g / 255.0;
    *xb = bl / 255.0;
}

void setind(int i, double xr, double xg, double xb) noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("setind"));
    if (!b) return;
    if (i < 0 || i > 255) {
        qqwarn(b, 2, i);
        return;
    }
    if (!part_ok(xr, 1e-35) || !part_ok(xg, 1e-35) || !part_ok(xb, 1e-35)) {
        qqwarn(b, 2, i);
        return;
    }
    b->clr.colmap[i] = (part_byte(xr) << 16) | (part_byte(xg) << 8) | part_byte(xb);
    send_table(b);
}

void setvlt(const char *ctab) noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("setvlt"));
    if (!b) return;
    int k = qqkey(b, kKinds, NKINDS, ctab);
    if (k > 0) qqsetvlt(b, k - 1);
}

const char *getvlt() noexcept {
    static const char *const names[NKINDS] = {"SMALL", "RAIN",  "SPEC", "GREY",    "RRAIN",
                                              "RSPEC", "RGREY", "VGA",  "TEMP",    "VIRIDIS",
                                              "MAGMA", "INFERNO", "PLASMA"};
    ColourBlock *b = qqclrblk(KX_ENTRY("getvlt"));
    if (!b) return "";
    int k = b->clr.vltkind;
    return k >= 0 && k < NKINDS ? names[k] : "";
}

void myvlt(const double *xr, const double *xg, const double *xb, int n) noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("myvlt"));
    if (!b) return;
    if (n < 1 || n > 256) {
        qqwarn(b, 2, n);
        return;
    }
    for (int i = 0; i < n; ++i)
        if (!part_ok(xr[i], 0) || !part_ok(xg[i], 0) || !part_ok(xb[i], 0)) {
            qqwarn(b, 2, i + 1);
            return;
        }
    for (int i = 0; i < n; ++i)
        b->clr.colmap[i] = (part_byte(xr[i]) << 16) | (part_byte(xg[i]) << 8) | part_byte(xb[i]);
    if (b->core.level == 0) {
        b->clr.vltkeep = 1;
    } else {
        send_table(b);
    }
}

void revscr() noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("revscr"));
    if (!b) return;
    ColourState &c = b->clr;
    int fg = c.vltkind == SMAL ? 1 : (c.vltkind == VGA ? 15 : 255);
    swap(c.colmap[0], c.colmap[fg]);
    if (qqdevkind(b) == QQ_KIND_PAGE)
        set_colour(b, b->clr.curclr);
    else
        send_table(b);
}

void vltfil(const char *cfl, const char *copt) noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("VLTFIL"));
    if (!b) return;
    int k = qqkey(b, "SAVE+LOAD", 2, copt);
    if (k == 0) return;
    if (k == 1) {
        QQOutFile out{};
        qqscpy(out.name, cfl ? cfl : "", 256);
        if (qqoutopen(b, &out, "w") != 0) return;
        FILE *fp = out.fp;
        qqscpy(b->clr.vltfnm, out.name, 256);
        for (int i = 0; i < 256; ++i) {
            int r, g, bl;
            qqclrrgb(b, i, &r, &g, &bl);
            char line[40];
            int n = qqfmtf(line, sizeof line, r / 255.0, 10, 6);
            n += qqfmtf(line + n, (int)sizeof line - n, g / 255.0, 10, 6);
            n += qqfmtf(line + n, (int)sizeof line - n, bl / 255.0, 10, 6);
            line[n++] = '\n';
            std::fwrite(line, 1, (size_t)n, fp);
        }
        qqoutclose(b, &out, 1);
        return;
    }
    FILE *fp = std::fopen(cfl ? cfl : "", "r");
    if (!fp) {
        qqwar0(b, 36);
        return;
    }
    qqscpy(b->clr.vltfnm, cfl ? cfl : "", 256);
    char line[83];
    for (int i = 0; i < 256 && std::fgets(line, sizeof line, fp); ++i) {
        // A line longer than the buffer: the rest of it is not a new line.
        if (!std::strchr(line, '\n') && !std::feof(fp)) {
            int ch;
            while ((ch = std::fgetc(fp)) != EOF && ch != '\n') {
            }
        }
        double v[3];
        int got = 0;
        char *p = line;
        while (got < 3 && *p) {
            while (*p == ' ' || *p == ',' || *p == '\t' || *p == '\n' || *p == '\r') ++p;
            if (!*p) break;
            char *end = p;
            // Numbers in the C locale whatever the program set.
            v[got] = qqatof(p, &end);
            if (end == p) break;
            ++got;
            p = end;
        }
        if (got < 3) continue;
        float r = (float)v[0], g = (float)v[1], bl = (float)v[2];
        setind(i, r, g, bl);
        qqscpy(b->core.rtnam, "VLTFIL", 8);
    }
    std::fclose(fp);
}

void hsvrgb(double xh, double xs, double xv, double *xr, double *xg, double *xb) noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("hsvrgb"));
    if (!b) return;
    if (!(xh >= -0.0001 && xh <= 360.0001) || !(xs >= -0.0001 && xs <= 1.0001) ||
        !(xv >= -0.0001 && xv <= 1.0001)) {
        qqwarn(b, 2, 0);
        return;
    }
    double h = xh / 60.0;
    int i = (int)std::trunc(h);
    double f = h - i;
    double p = (1 - xs) * xv, q = (1 - f * xs) * xv, t = (1 - (1 - f) * xs) * xv;
    if (i < 0 || i >= 6) i = 0;  // 360 degrees is the first sextant again
    const double out[6][3] = {{xv, t, p}, {q, xv, p}, {p, xv, t}, {p, q, xv}, {t, p, xv}, {xv, p, q}};
    *xr = out[i][0];
    *xg = out[i][1];
    *xb = out[i][2];
}

void rgbhsv(double xr, double xg, double xb, double *xh, double *xs, double *xv) noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("rgbhsv"));
    if (!b) return;
    for (double v : {xr, xg, xb})
        if (!(v >= -0.0001 && v <= 1.0001)) {
            qqwarn(b, 2, 0);
            return;
        }
    double mx = std::fmax(xr, std::fmax(xg, xb)), mn = std::fmin(xr, std::fmin(xg, xb));
    *xv = mx;
    *xs = mx == 0 ? 0 : (mx - mn) / mx;
    if (mx == mn) {
        *xh = 0;
        return;
    }
    double rr = (mx - xr) / (mx - mn), gg = (mx - xg) / (mx - mn), bb = (mx - xb) / (mx - mn);
    double s;
    if (xr == mx)
        s = xg == mn ? bb + 5 : 1 - gg;
    else if (xg == mx)
        s = xb == mn ? rr + 1 : 3 - bb;
    else
        s = xr == mn ? gg + 3 : 5 - rr;
    // A red hue comes out as 360 when green and blue are both the
    // minimum; the circle closes at 0.
    *xh = s * 60.0 >= 360.0 ? s * 60.0 - 360.0 : s * 60.0;
}

void clrcyc(int index, int iclr) noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("clrcyc"));
    if (!b || qqchki(b, index, 1, 30) || qqchki(b, iclr, 0, -1)) return;
    b->clr.clrcycl[index - 1] = iclr;
}

void colran(int nca, int nce) noexcept {
    ColourBlock *b = qqclrblk(KX_ENTRY("colran"));
    if (!b) return;
    if (qqchki(b, nca, 0, 255) || qqchki(b, nce, 0, 255)) return;
    // A range that runs downward is taken as its ascending twin: the bands
    // of a scale always count from the lower index.
    b->clr.minidx = nca < nce ? nca : nce;
    b->clr.maxidx = nca < nce ? nce : nca;
}
