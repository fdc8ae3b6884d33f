// The settings of the screen window, kept by the session.  The options of
// the file formats belong to their drivers (devices/, raster/options.cpp).
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "core/guard.h"
#include "core/core_block.h"
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
