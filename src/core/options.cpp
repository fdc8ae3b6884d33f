// The settings of the plot file's name and of the screen window, kept by
// the session.  The options of the file formats belong to their drivers
// (devices/, raster/options.cpp).
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "core/core_block.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"

void winapp(const char *copt) noexcept {
    CoreBlock *b = KX_ENTRY("winapp");
    if (!b) return;
    int k = qqkey(b, "CONS+WIND", 2, copt);
    if (k > 0) b->sess.wapp = (unsigned char)(k - 1);
}

void wintyp(const char *copt) noexcept {
    CoreBlock *b = KX_ENTRY("wintyp");
    if (!b) return;
    int k = qqkey(b, "STAN+POPU", 2, copt);
    if (k > 0) b->sess.wtyp = (unsigned char)(k - 1);
}

void x11mod(const char *copt) noexcept {
    CoreBlock *b = KX_ENTRY("x11mod");
    if (!b) return;
    int k = qqkey(b, "STOR+NOST+AUTO+PIXM", 4, copt);
    if (k > 0) b->sess.x11md = (unsigned char)(k - 1);
}

// ---- the screen window ---------------------------------------------------------

void window(int nx, int ny, int nw, int nh) noexcept {
    CoreBlock *b = KX_ENTRY("window");
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
    CoreBlock *b = KX_ENTRY("winsiz");
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
    CoreBlock *b = KX_ENTRY("winjus");
    if (!b) return;
    int k = qqkey(b, "RBOT+RTOP+LTOP+LBOT+CENT", 5, copt);
    if (k > 0) b->sess.wjus = (unsigned char)k;
}

void winkey(const char *copt) noexcept {
    CoreBlock *b = KX_ENTRY("winkey");
    if (!b) return;
    int k = qqkey(b, "NONE+RETU+ESCA", 3, copt);
    if (k > 0) b->sess.wkey = (unsigned char)(k - 1);
}

void winmod(const char *copt) noexcept {
    CoreBlock *b = KX_ENTRY("winmod");
    if (!b) return;
    int k = qqkey(b, "FULL+NOER+NONE+NOHO+DELA+NOMB", 6, copt);
    if (k > 0) b->sess.wmode = (unsigned char)(k - 1);
}

void winopt(int iopt, const char *copt) noexcept {
    CoreBlock *b = KX_ENTRY("winopt");
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
    CoreBlock *b = KX_ENTRY("bufmod");
    if (!b) return;
    int k = qqkeyopt(b, "SEND", ckey, "OFF +ON  ", 2, cmod);
    if (k > 0) b->sess.bufsend = (unsigned char)(k - 1);
}

void setfil(const char *cfil) noexcept {
    CoreBlock *b = KX_ENTRY("setfil");
    if (!b) return;
    qqscpy(b->sess.fname, cfil ? cfil : "", 256);
    b->sess.fstate = 1;
}

void filmod(const char *cmod) noexcept {
    CoreBlock *b = KX_ENTRY("filmod");
    if (!b) return;
    int k = qqkey(b, "COUN+DELE+BREA+VERS", 4, cmod);
    if (k > 0) b->sess.fmode = (unsigned char)(k - 1);
}

void filopt(const char *copt, const char *ckey) noexcept {
    CoreBlock *b = KX_ENTRY("filopt");
    if (!b) return;
    int what = qqkey(b, "SEPA+NUMB+DIGI+SCAL", 4, ckey);
    SessionState &s = b->sess;
    int k;
    switch (what) {
    case 1:
        if ((k = qqkey(b, "UNDE+HYPH+NONE", 3, copt)) > 0) s.fsep = (unsigned char)(k - 1);
        break;
    case 2:
        if ((k = qqkey(b, "SHOR+LONG", 2, copt)) > 0) s.flong = (unsigned char)(k - 1);
        break;
    case 3:
        if ((k = qqkey(b, "2   +3   +4   +5   +6   ", 5, copt)) > 0) s.fdig = (unsigned char)(k + 1);
        break;
    case 4:
        // OFF, PAGE, VIEW, and ON which is PAGE.
        if ((k = qqkey(b, "OFF +PAGE+VIEW+ON  ", 4, copt)) > 0)
            s.fscal = (unsigned char)(k == 4 ? 1 : k - 1);
        break;
    }
}
