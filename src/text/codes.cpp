// Code sets: bytes and UTF-8 into 32-bit codes, the national letters of
// the shift characters, and the conversion of a code into an internal code
// and alphabet while drawing.
#include <cstring>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "text/text_block.h"
#include "text/text_internal.h"

namespace {

enum { STAN = 0, ISO1, ISO2, ISO3, ISO5, KOI8, UTF8, ISO7 };

// Latin-1 192 to 255 to internal codes (0 none).
const short kLatin1[64] = {
    158, 148, 168, 178, 127, 134, 136, 142, 159, 149, 169, 144, 160, 150, 170, 145,
    187, 140, 161, 151, 171, 180, 128, 0,   135, 162, 152, 172, 129, 182, 189, 133,
    163, 153, 173, 179, 130, 137, 139, 143, 164, 154, 174, 146, 165, 155, 175, 147,
    188, 141, 166, 156, 176, 181, 131, 0,   138, 167, 157, 177, 132, 183, 190, 184};

const short kIso2[96] = {
    0,   191, 0,   192, 0,   193, 194, 0,   0,   195, 196, 197, 198, 0,   199, 200,
    0,   201, 0,   202, 0,   203, 204, 0,   0,   205, 206, 207, 208, 0,   209, 210,
    211, 148, 168, 212, 127, 213, 214, 142, 215, 149, 216, 144, 217, 150, 170, 218,
    187, 219, 220, 151, 171, 221, 128, 0,   222, 223, 152, 224, 129, 182, 225, 133,
    226, 153, 173, 227, 130, 228, 229, 143, 230, 154, 231, 146, 232, 155, 175, 233,
    188, 234, 235, 156, 176, 236, 131, 0,   237, 238, 157, 239, 132, 183, 240, 0};

const short kIso3[96] = {
    0,   249, 0,   0,   0,   0,   247, 0,   0,   242, 196, 241, 251, 0,   0,   200,
    0,   250, 0,   0,   0,   0,   248, 0,   0,   244, 206, 243, 252, 0,   0,   210,
    158, 148, 168, 0,   127, 257, 255, 142, 159, 149, 169, 144, 160, 150, 170, 145,
    0,   140, 161, 151, 171, 245, 128, 0,   259, 162, 152, 172, 129, 253, 261, 133,
    163, 153, 173, 0,   130, 258, 256, 143, 164, 154, 174, 146, 165, 155, 175, 147,
    0,   141, 166, 156, 176, 246, 131, 0,   260, 167, 157, 177, 132, 254, 262, 0};

// The 64 Cyrillic letters of ISO-8859-5 from 176 on, as RUSSIAN codes.
const short kCyr64[64] = {
    65, 66, 86, 71, 68, 91,  72,  90,  73,  69,  75,  76,  77,  78,  79,  80,
    82, 83, 84, 89, 70, 88,  93,  74,  81,  87,  36,  37,  38,  67,  85,  94,
    97, 98, 118, 103, 100, 123, 104, 122, 105, 101, 107, 108, 109, 110, 111, 112,
    114, 115, 116, 121, 102, 120, 125, 106, 113, 119, 60, 61, 62, 99, 117, 126};

const short kKoi8[64] = {
    117, 97, 98, 125, 100, 123, 102, 103, 120, 105, 101, 107, 108, 109, 110, 111,
    112, 126, 114, 115, 116, 121, 104, 118, 62,  61,  122, 113, 99,  119, 106, 60,
    85,  65, 66, 93,  68,  91,  70,  71,  88,  73,  69,  75,  76,  77,  78,  79,
    80,  94, 82, 83,  84,  89,  72,  86,  38,  37,  90,  81,  67,  87,  74,  36};

// Greek letters: the codes 182 to 254 of ISO-8859-7, the same as the code
// points 902 to 974 (ISO-8859-7 has one difference, at 224).
const short kGreek73[73] = {
    127, 0,   128, 129, 130, 0,   131, 0,   132, 133, 134, 65,  66,  67,  68,  69,
    90,  72,  81,  73,  75,  76,  77,  78,  88,  79,  80,  82,  0,   83,  84,  89,
    70,  71,  85,  87,  135, 136, 137, 138, 139, 140, 141, 97,  98,  99,  100, 101,
    122, 104, 113, 105, 107, 108, 109, 110, 120, 111, 112, 114, 147, 115, 116, 121,
    102, 103, 117, 119, 142, 143, 144, 145, 146};

// The shift table: letters of each language's run and their replacements.
struct ShiftRun {
    const char *letters;
    short stan[12];
    short iso1[12];
    short iso2[12];
    short iso3[12];
};

const ShiftRun kRuns[8] = {
    {"AOUaous", {127, 128, 129, 130, 131, 132, 133}, {196, 214, 220, 228, 246, 252, 223},
     {196, 214, 220, 228, 246, 252, 223}, {196, 214, 220, 228, 246, 252, 223}},
    {"AOEaoe", {134, 135, 136, 137, 138, 139}, {197, 216, 198, 229, 248, 230},
     {32, 32, 32, 32, 32, 32}, {32, 32, 32, 32, 32, 32}},
    {"Nn!?", {140, 141, 185, 186}, {209, 241, 161, 191}, {32, 32, 32, 32}, {209, 241, 32, 32}},
    {"CcEIei", {142, 143, 144, 145, 146, 147}, {199, 231, 203, 207, 235, 239},
     {199, 231, 32, 32, 235, 32}, {199, 231, 203, 207, 235, 239}},
    {"AEIOUaeiou", {148, 149, 150, 151, 152, 153, 154, 155, 156, 157},
     {193, 201, 205, 211, 218, 225, 233, 237, 243, 250},
     {193, 201, 205, 211, 218, 225, 233, 237, 243, 250},
     {193, 201, 205, 211, 218, 225, 233, 237, 243, 250}},
    {"AEIOUaeiou", {158, 159, 160, 161, 162, 163, 164, 165, 166, 167},
     {192, 200, 204, 210, 217, 224, 232, 236, 242, 249},
     {32, 32, 32, 32, 32, 32, 32, 32, 32, 32},
     {192, 200, 204, 210, 217, 224, 232, 236, 242, 249}},
    {"AEIOUaeiou", {168, 169, 170, 171, 172, 173, 174, 175, 176, 177},
     {194, 202, 206, 212, 219, 226, 234, 238, 244, 251},
     {194, 32, 206, 212, 32, 226, 32, 238, 244, 32},
     {194, 202, 206, 212, 219, 226, 234, 238, 244, 251}},
    {"CcGgIiOoSsUu", {142, 143, 241, 243, 242, 244, 128, 131, 196, 206, 129, 132},
     {199, 231, 32, 32, 32, 32, 214, 246, 32, 32, 220, 252},
     {199, 231, 32, 32, 32, 32, 214, 246, 170, 186, 220, 252},
     {199, 231, 171, 187, 169, 185, 214, 246, 170, 186, 220, 252}},
};

}  // namespace

int qqtxtcodes(TextBlock *b, const char *text, int32_t *codes, int max, int *n, int warn) noexcept {
    *n = 0;
    if (!text) return 0;
    const unsigned char *s = (const unsigned char *)text;
    int k = 0;
    bool utf = b->txt.chacod == UTF8;
    while (*s) {
        int32_t c;
        if (utf && *s >= 128) {
            unsigned char c0 = *s;
            int more;
            if (c0 < 192 || c0 >= 248) goto syntax;
            more = c0 >= 240 ? 3 : c0 >= 224 ? 2 : 1;
            c = c0 & (more == 3 ? 7 : more == 2 ? 15 : 31);
            for (int j = 1; j <= more; ++j) {
                unsigned char cj = s[j];
                if (cj < 128 || cj > 191) goto syntax;
                c = (c << 6) | (cj & 63);
            }
            s += more + 1;
        } else {
            c = *s++;
        }
        if (k >= max) {
            if (warn) qqwar1(b, 174, "Not enough space in array");
            return -2;
        }
        codes[k++] = c;
    }
    while (k > 0 && codes[k - 1] == ' ') --k;
    *n = k;
    return 0;
syntax:
    if (warn) qqwar1(b, 174, "Syntax error in UTF string");
    return -1;
}

void qqtxteushft(TextBlock *b) noexcept {
    TextState &t = b->txt;
    if (!t.shfon || t.chacod == ISO5 || t.chacod == KOI8 || t.chacod == ISO7) return;
    int out = 0;
    for (int k = 0; k < t.ncodes; ++k) {
        int32_t c = t.codes[k];
        int lang = -1;
        for (int l = 0; l < 8; ++l)
            if (t.shfchr[l] != 0 && c == (unsigned char)t.shfchr[l]) lang = l;
        if (lang < 0 || k + 1 >= t.ncodes) {
            t.codes[out++] = c;
            continue;
        }
        int32_t nx = t.codes[k + 1];
        if (nx == c) {
            t.codes[out++] = c;
            ++k;
            continue;
        }
        const ShiftRun &r = kRuns[lang];
        const char *p = nx > 0 && nx < 128 ? std::strchr(r.letters, (int)nx) : nullptr;
        if (p && nx != 0) {
            int j = (int)(p - r.letters);
            int cs = t.chacod;
            int v = cs == STAN ? r.stan[j] : cs == ISO2 ? r.iso2[j] : cs == ISO3 ? r.iso3[j] : r.iso1[j];
            t.codes[out++] = v;
            ++k;
            continue;
        }
        char ch[2] = {0, 0};
        if (nx > 0 && nx < 256) ch[0] = (char)nx;
        qqwarc(b, 18, ch);
        t.codes[out++] = c;
    }
    t.ncodes = out;
}

int qqtxtconvert(TextBlock *b, int code, int *alf) noexcept {
    const TextState &t = b->txt;
    if (code < 32) return 32;
    if (code < 127 || t.chacod == STAN) return code;
    if (*alf == 3 && code <= t.sect[2].limit + 31) return code;
    int v = 0;
    switch (t.chacod) {
    case ISO1:
    case UTF8:
        if (code <= 255) {
            if (code >= 192) v = kLatin1[code - 192];
            else if (code == 161) v = 185;
            else if (code == 191) v = 186;
            else if (code == 164) v = 263;
            else if (code == 169) v = 264;
            break;
        }
        if (code >= 1024 && code <= 1119) {
            int p = code - 1024;
            static const short head[16] = {149, 92, 0, 0, 0, 83, 73, 145, 74, 0, 0, 0, 0, 0, 0, 93};
            static const short tail[16] = {164, 124, 0, 0, 0, 115, 105, 147, 106, 0, 0, 0, 0, 0, 0, 125};
            v = p < 16 ? head[p] : p < 80 ? kCyr64[p - 16] : tail[p - 80];
            if (p == 1 || (p >= 15 && p <= 79) || p == 81 || p == 95) *alf = 6;
            else *alf = 1;
        } else if (code >= 902 && code <= 974) {
            int p = code - 902;
            v = kGreek73[p];
            *alf = (p == 1 || p == 5 || p == 7 || p == 28) ? 1 : 2;
        }
        break;
    case ISO2:
        if (code >= 160 && code <= 255) v = kIso2[code - 160];
        break;
    case ISO3:
        if (code >= 160 && code <= 255) v = kIso3[code - 160];
        break;
    case ISO5:
    case KOI8:
        if (code <= 159) {
            *alf = 1;
            return code;
        }
        if (code <= 255) {
            *alf = 6;
            if (t.chacod == ISO5) {
                int p = code - 160;
                v = p == 1 ? 92 : (p >= 16 && p < 80) ? kCyr64[p - 16] : 0;
            } else {
                v = code >= 192 ? kKoi8[code - 192] : 0;
            }
        }
        break;
    case ISO7:
        if (code <= 159) {
            *alf = 1;
            return code;
        }
        if (code <= 255) {
            *alf = 2;
            int p = code - 160;
            v = (p >= 22 && p < 95) ? kGreek73[p - 22] : 0;
            if (code == 224) v = 145;
        }
        break;
    default: break;
    }
    return v == 0 ? 32 : v;
}

void chacod(const char *copt) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("chacod"));
    if (!b) return;
    int k = qqkey(b, "STAN+ISO1+ISO2+ISO3+ISO5+KOI8+UTF8+ISO7", 8, copt);
    if (k > 0) b->txt.chacod = k - 1;
}

void basalf(const char *calph) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("basalf"));
    if (!b) return;
    int k = qqkey(b, "STAN+GREE+MATH+ITAL+SCRI+RUSS", 6, calph);
    if (k > 0) b->txt.basalf = k;
}

const char *getalf() noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("getalf"));
    static const char *const names[6] = {"STANDARD", "GREEK", "MATHEMATIC", "ITALIC", "SCRIPT",
                                         "RUSSIAN"};
    if (!b) return "";
    int a = b->txt.basalf;
    std::strcpy(b->txt.result, names[(a >= 1 && a <= 6 ? a : 1) - 1]);
    return b->txt.result;
}

void eushft(const char *cnat, const char *cshf) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("eushft"));
    if (!b) return;
    int k = qqkey(b, "GERM+DANI+SPAN+FREN+ACUT+GRAV+CIRC+TURK", 8, cnat);
    if (k <= 0) return;
    TextState &t = b->txt;
    char c = cshf ? cshf[0] : 0;
    if (!t.shfset) {
        std::memset(t.shfchr, 0, sizeof t.shfchr);
        t.shfset = 1;
    }
    for (int l = 0; l < 8; ++l)
        if (l != k - 1 && c != 0 && t.shfchr[l] == c) {
            qqwar0(b, 57);
            return;
        }
    t.shfchr[k - 1] = c;
    t.shfon = 1;
}

const char *getshf(const char *cnat) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("getshf"));
    if (!b) return "";
    int k = qqkey(b, "GERM+DANI+SPAN+FREN+ACUT+GRAV+CIRC+TURK", 8, cnat);
    TextState &t = b->txt;
    t.result[0] = 0;
    if (k > 0 && t.shfset && t.shfchr[k - 1] != 0) {
        t.result[0] = t.shfchr[k - 1];
        t.result[1] = 0;
    }
    return t.result;
}

void mixalf() noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("mixalf"));
    if (!b) return;
    b->txt.mixon = 1;
}

void setmix(const char *cchar, const char *cmix) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("setmix"));
    if (!b) return;
    int k = qqkey(b, "EXP +IND +RES +LEG +TEX ", 5, cmix);
    if (k <= 0) return;
    b->txt.mixchr[k - 1] = cchar ? cchar[0] : 0;
}

const char *getmix(const char *cmix) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("getmix"));
    if (!b) return "";
    int k = qqkey(b, "EXP +IND +RES +LEG +TEX ", 5, cmix);
    TextState &t = b->txt;
    t.result[0] = k > 0 ? t.mixchr[k - 1] : 0;
    t.result[1] = 0;
    return t.result;
}

void newmix() noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("newmix"));
    if (!b) return;
    b->txt.mixchr[0] = '^';
    b->txt.mixchr[1] = '_';
    b->txt.mixchr[2] = '%';
}

int intutf(const int *iray, int nray, char *cstr, int nmax) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("intutf"));
    if (!b) return -1;
    if (!iray || !cstr || nray < 0 || nmax < 0) return -1;
    int k = 0;
    for (int i = 0; i < nray; ++i) {
        unsigned v = (unsigned)iray[i];
        int len = v < 0x80 ? 1 : v < 0x800 ? 2 : v < 0x10000 ? 3 : v <= 0x1FFFFF ? 4 : 0;
        if (len == 0 || iray[i] < 0) {
            qqwar1(b, 174, "Number too big for UTF8 conversion");
            return -1;
        }
        if (k + len > nmax) {
            qqwar1(b, 174, "Not enough space in string");
            return -1;
        }
        if (len == 1) {
            cstr[k++] = (char)v;
        } else {
            static const unsigned lead[5] = {0, 0, 0xC0, 0xE0, 0xF0};
            cstr[k++] = (char)(lead[len] | (v >> (6 * (len - 1))));
            for (int j = len - 2; j >= 0; --j) cstr[k++] = (char)(0x80 | ((v >> (6 * j)) & 63));
        }
    }
    cstr[k] = 0;
    return k;
}

int utfint(const char *cstr, int *iray, int nray) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("utfint"));
    if (!b) return -1;
    if (!iray || nray < 0) return -1;
    TextState &t = b->txt;
    int keep = t.chacod;
    t.chacod = UTF8;
    int n = 0;
    int r = qqtxtcodes(b, cstr, (int32_t *)iray, nray, &n, 1);
    t.chacod = keep;
    return r < 0 ? r : n;
}
