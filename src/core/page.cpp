// The page before a session: its format, size, rotation and scaling.
#include <cmath>
#include <cstring>

#include "core/core_block.h"
#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"

namespace {

struct PageRow {
    const char *name;  // landscape name; the fourth letter P gives portrait
    int w, h;          // highest coordinates in 1/100 cm
};

const PageRow kPages[] = {
    {"DA4L", 2969, 2099},  {"DA3L", 4199, 2969}, {"DA2L", 5939, 4199}, {"DA1L", 8409, 5939},
    {"DA0L", 11889, 8409}, {"HP4L", 2716, 1899}, {"HP3L", 3989, 2716}, {"HP2L", 5339, 3359},
    {"HP1L", 7569, 5339},  {"KY4L", 2869, 1999}, {"PS4L", 2799, 1949}, {"USAL", 2789, 2159},
    {"USBL", 4319, 2789},  {"USCL", 5589, 4319}, {"USDL", 8639, 5589}, {"USEL", 11179, 8639},
};

}  // namespace

void setpag(const char *cpag) noexcept {
    CoreBlock *b = KX_ENTRY("setpag");
    if (!b) return;
    char key[5];
    qqkeyword(cpag, key);
    for (const PageRow &p : kPages) {
        if (std::strncmp(p.name, key, 3) != 0) continue;
        if (key[3] != 'L' && key[3] != 'P') break;
        bool portrait = key[3] == 'P';
        b->core.pagw = portrait ? p.h : p.w;
        b->core.pagh = portrait ? p.w : p.h;
        std::memcpy(b->core.pagnam, key, 5);
        if (b->sess.mflset == 0) qqdefdev(b);
        return;
    }
    qqwarc(b, 2, cpag ? cpag : "");
}

void page(int nxp, int nyp) noexcept {
    CoreBlock *b = KX_ENTRY("page");
    if (!b) return;
    if (nxp < 1 || nyp < 1) {
        qqwarn(b, 2, nxp < nyp ? nxp : nyp);
        return;
    }
    b->core.pagw = (nxp - 1) * b->core.unitf;
    b->core.pagh = (nyp - 1) * b->core.unitf;
    std::memcpy(b->core.pagnam, "PAGE", 5);
}

void pagmod(const char *copt) noexcept {
    CoreBlock *b = KX_ENTRY("pagmod");
    if (!b) return;
    int k = qqkey(b, "COMI+MOVI+LAND+PORT+NONE", 5, copt);
    if (k > 0) b->sess.pagrot = (unsigned char)(k > 2 ? k - 3 : k - 1);
}

void scrmod(const char *cmode) noexcept {
    CoreBlock *b = KX_ENTRY("scrmod");
    if (!b) return;
    static const unsigned char modes[5] = {0, 1, 2, 0, 4};  // NORE counts as ERAS
    int k = qqkey(b, "ERAS+NOER+REVE+NORE+AUTO", 5, cmode);
    if (k > 0) b->sess.scrmd = modes[k - 1];
}

void sclmod(const char *cmode) noexcept {
    CoreBlock *b = KX_ENTRY("sclmod");
    if (!b) return;
    int k = qqkey(b, "DOWN+FULL+NONE", 3, cmode);
    if (k > 0) b->sess.sclm = (unsigned char)(k - 1);
}

namespace {
// A positive, finite factor; else warning 2.
bool positive_factor(CoreBlock *b, double x) {
    if (x > 0 && std::isfinite(x)) return true;
    qqwarnd(b, 2, x);
    return false;
}
}  // namespace

void sclfac(double xfac) noexcept {
    CoreBlock *b = KX_ENTRY("sclfac");
    if (!b || !positive_factor(b, xfac)) return;
    b->sess.sclf = xfac;
    b->sess.sclm = 0;
}

void hwscal(double xfac) noexcept {
    CoreBlock *b = KX_ENTRY("hwscal");
    if (!b || !positive_factor(b, xfac)) return;
    b->sess.hwscl = xfac;
}

void hwpage(int nxp, int nyp) noexcept {
    CoreBlock *b = KX_ENTRY("hwpage");
    if (!b) return;
    if (nxp < 1 || nyp < 1) {
        qqwarn(b, 2, nxp < nyp ? nxp : nyp);
        return;
    }
    b->sess.hwsiz[0] = qqround(nxp * b->core.unitf);
    b->sess.hwsiz[1] = qqround(nyp * b->core.unitf);
    b->sess.hwsflg = 1;
}

void hworig(int nx, int ny) noexcept {
    CoreBlock *b = KX_ENTRY("hworig");
    if (!b) return;
    b->sess.hworg[0] = nx;
    b->sess.hworg[1] = ny;
    b->sess.hwpflg = 1;
}
