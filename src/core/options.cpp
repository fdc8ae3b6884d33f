// Level-0 options of the output formats whose drivers are not built yet,
// and the settings of the screen window.  They are stored here; the
// drivers that use them read them.  (The raster formats keep theirs in
// raster/options.cpp.)
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"

namespace {

// A simple "value, option" setting: the option must be the one keyword
// given, the value one of the list.  Returns the value's position or 0.
int option_value(glbblk *b, const char *option, const char *copt, const char *list, int count,
                 const char *cval) {
    if (qqkey(b, option, 1, copt) == 0) return 0;
    return qqkey(b, list, count, cval);
}

}  // namespace

void winapp(const char *copt) noexcept {
    glbblk *b = KX_ENTRY("winapp");
    if (!b) return;
    int k = qqkey(b, "CONS+WIND", 2, copt);
    if (k > 0) b->sess.wapp = (unsigned char)(k - 1);
}

void wintyp(const char *copt) noexcept {
    glbblk *b = KX_ENTRY("wintyp");
    if (!b) return;
    int k = qqkey(b, "STAN+POPU", 2, copt);
    if (k > 0) b->sess.wtyp = (unsigned char)(k - 1);
}

void x11mod(const char *copt) noexcept {
    glbblk *b = KX_ENTRY("x11mod");
    if (!b) return;
    int k = qqkey(b, "STOR+NOST+AUTO+PIXM", 4, copt);
    if (k > 0) b->opt.x11md = (unsigned char)(k - 1);
}

void clrmod(const char *copt) noexcept {
    glbblk *b = KX_ENTRY("clrmod");
    if (!b) return;
    int k = qqkey(b, "NONE+FULL+CONT", 3, copt);
    if (k > 0) b->opt.clrmd = (unsigned char)(k - 1);
}

void pdfmod(const char *cval, const char *copt) noexcept {
    glbblk *b = KX_ENTRY("pdfmod");
    if (!b) return;
    int what = qqkey(b, "COMP+BUFF", 2, copt);
    if (what == 0) return;
    int k = qqkey(b, "OFF +ON  ", 2, cval);
    if (k == 0) return;
    if (what == 1)
        b->opt.pdfcomp = k - 1;
    else
        b->opt.pdfbuff = k - 1;
}

void wmfmod(const char *cval, const char *copt) noexcept {
    glbblk *b = KX_ENTRY("wmfmod");
    if (!b) return;
    int k = option_value(b, "FORM", copt, "STAN+PLAC", 2, cval);
    if (k > 0) b->opt.wmfplac = k - 1;
}

// The method is called hpgmog; its setting reports under the name hpgmod.
void hpgmog(const char *cval, const char *copt) noexcept {
    glbblk *b = KX_ENTRY("hpgmod");
    if (!b) return;
    int k = option_value(b, "PLOT", copt, "STAN+ARIS", 2, cval);
    if (k > 0) b->opt.hpgaris = k - 1;
}

void cgmver(int nclr) noexcept {
    glbblk *b = KX_ENTRY("cgmver");
    if (!b) return;
    if (nclr != 1 && nclr != 4) {
        qqwarn(b, 2, nclr);
        return;
    }
    b->opt.cgmver = nclr;
}

void psmeta(const char *cstr, const char *copt) noexcept {
    glbblk *b = KX_ENTRY("psmeta");
    if (!b) return;
    if (qqkey(b, "INFO", 1, copt) == 0) return;
    size_t n = cstr ? std::strlen(cstr) : 0;
    char *copy = static_cast<char *>(std::malloc(n + 1));
    if (!copy) {
        qqwar0(b, 53);
        return;
    }
    std::memcpy(copy, cstr ? cstr : "", n + 1);
    std::free(b->opt.psinfo);
    b->opt.psinfo = copy;
}

// ---- the screen window ---------------------------------------------------------

void window(int nx, int ny, int nw, int nh) noexcept {
    glbblk *b = KX_ENTRY("window");
    if (!b) return;
    if (qqchkrect(b, nx, ny, nw, nh)) return;
    SessionState &s = b->sess;
    s.wreqpos[0] = nx;
    s.wreqpos[1] = ny;
    s.wreqsiz[0] = nw;
    s.wreqsiz[1] = nh;
    s.wplace = 1;
}

void winsiz(int nw, int nh) noexcept {
    glbblk *b = KX_ENTRY("winsiz");
    if (!b) return;
    if (nw < 1 || nh < 1) {
        qqwarn(b, 2, nw < nh ? nw : nh);
        return;
    }
    SessionState &s = b->sess;
    s.wreqsiz[0] = nw;
    s.wreqsiz[1] = nh;
    s.wplace = 2;
}

void winjus(const char *copt) noexcept {
    glbblk *b = KX_ENTRY("winjus");
    if (!b) return;
    int k = qqkey(b, "RBOT+RTOP+LTOP+LBOT+CENT", 5, copt);
    if (k > 0) b->sess.wjus = (unsigned char)k;
}

void winkey(const char *copt) noexcept {
    glbblk *b = KX_ENTRY("winkey");
    if (!b) return;
    int k = qqkey(b, "NONE+RETU+ESCA", 3, copt);
    if (k > 0) b->sess.wkey = (unsigned char)(k - 1);
}

void winmod(const char *copt) noexcept {
    glbblk *b = KX_ENTRY("winmod");
    if (!b) return;
    int k = qqkey(b, "FULL+NOER+NONE+NOHO+DELA+NOMB", 6, copt);
    if (k > 0) b->sess.wmode = (unsigned char)(k - 1);
}

void winopt(int iopt, const char *copt) noexcept {
    glbblk *b = KX_ENTRY("winopt");
    if (!b) return;
    int k = qqkey(b, "DELA+MDEL", 2, copt);
    if (k == 0 || qqchki(b, iopt, 0, -1)) return;
    if (k == 1) {
        long long ms = (long long)iopt * 1000;
        b->sess.wdelay = ms > 0x7fffffff ? 0x7fffffff : (int)ms;
    } else {
        b->sess.wdelay = iopt;
    }
}

void bufmod(const char *cmod, const char *ckey) noexcept {
    glbblk *b = KX_ENTRY("bufmod");
    if (!b) return;
    int k = option_value(b, "SEND", ckey, "OFF +ON  ", 2, cmod);
    if (k > 0) b->sess.bufsend = (unsigned char)(k - 1);
}
