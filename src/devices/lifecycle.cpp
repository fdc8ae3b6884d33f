// The session's life: metafl, kolini, kolfin and the routines that act on
// the whole page.  They open and close drivers, so they sit above the
// device layer although their state record (SessionState) is the core's.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/subsystems.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "devices/device_block.h"
#include "devices/registry.h"
#include "kolvex.h"
#include "platform/platform.h"

namespace {

bool display_available() { return qqpdisplay(); }

}  // namespace

void metafl(const char *cdev) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("metafl"));
    if (!b) return;
    char key[5];
    qqkeyword(cdev, key);
    int code;
    const DeviceFamily *fam = qqfamilykey(key, &code);
    if (!fam) {
        qqwarc(b, 2, cdev ? cdev : "");
        return;
    }
    if (fam->absent) {
        // A family this build lacks, with a stand-in of its kind (the
        // OpenGL window needs GLX: the screen takes its place).
        qqwar1(b, 181, fam->absent);
        fam = qqfamilykey(fam->instead, &code);
    }
    b->core.devcod = code;
    b->core.fam = fam;
    std::memcpy(b->sess.devkey, key, 5);
    b->sess.mflset = 1;
}

void kolini() noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("kolini"));
    if (!b) return;
    CoreState &c = b->core;
    SessionState &s = b->sess;
    c.level = 1;
    s.nvec = 0;
    b->diag.nwarn = 0;
    s.finfl = 0;
    b->dev.npol = 0;
    b->diag.nnan = 0;
    b->diag.nout = 0;

    if (c.devcod == 0) qqdefdev(b);
    s.bgmode = s.scrmd;
    if (s.scrmd == 4) s.bgmode = (qqdevclr(b) & QQ_CLR_WHITE_BACK) ? 2 : 0;
    s.swapfl = 1;

    // The page in plot coordinates and what the axis systems derive from it.
    s.pageno = 1;
    c.nxp = qqnint(c.pagw / c.unitf);
    c.nyp = qqnint(c.pagh / c.unitf);
    s.axdefl[0] = qqnint((c.nxp + 1) * 2.0 / 3.0);
    s.axdefl[1] = qqnint((c.nyp + 1) * 2.0 / 3.0);
    s.axdefp[0] = (c.nxp - s.axdefl[0]) / 2;
    s.axdefp[1] = c.nyp - qqnint(300.0 / c.unitf);

    s.fhnd = nullptr;
    s.wpos[0] = s.wpos[1] = 0;
    if (s.wplace == 0) {
        s.wsiz[0] = c.nxp <= c.nyp ? 603 : 853;
        s.wsiz[1] = c.nxp <= c.nyp ? 853 : 603;
    } else {
        if (s.wplace == 1) {
            s.wpos[0] = s.wreqpos[0];
            s.wpos[1] = s.wreqpos[1];
        }
        s.wsiz[0] = s.wreqsiz[0];
        s.wsiz[1] = s.wreqsiz[1];
    }
    s.colbits = 8;

    const DriverOps *drv = c.fam->ops;
    if (c.fam->kind == QQ_KIND_SCREEN && !drv) {
        // The screen device needs a window system; without one the session
        // fails as a failed file open does.
        qqwarm(b, 36, display_available() ? "The screen device is not available in this build"
                                          : "No display for the screen device");
        qqkolfail(b);
        return;
    }
    if (!drv) {
        qqwarm(b, 40, "This output format is not available in this build");
        qqkolfail(b);
        return;
    }
    b->dev.drv = drv;
    if (qqopenplot(b) != 0 || (drv->open && drv->open(b) != 0)) {
        qqkolfail(b);
        b->dev.drv = nullptr;
        return;
    }

    DiagState &d = b->diag;
    // Warnings of a console program with errdev("CONS") go to the console;
    // an error file that an earlier errdev opened is closed, not leaked.
    if (s.wapp == 0 && d.errdv == 0) qqerrc(b);
    d.outu = d.erropn ? 17 : 6;

    qqinit(b);

    if (s.bgprev == -1) s.bgprev = s.bgmode;
}

void kolfin() noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("kolfin"));
    if (!b) return;
    SessionState &s = b->sess;
    DiagState &d = b->diag;
    qqflsh(b);
    qqend(b);

    int flag = 1;
    const DriverOps *drv = b->dev.drv;
    if (drv && drv->close) flag = drv->close(b);
    if (b->core.fam->kind == QQ_KIND_SCREEN) flag = 0;
    if (s.lnbuf && s.lnpos > 0) qqsbufend(b);
    // The file is complete: it takes its name now.
    if (qqplotclose(b, 1) != 0) flag = 0;
    std::free(s.lnbuf);
    s.lnbuf = nullptr;
    b->dev.drv = nullptr;

    b->core.level = 0;
    s.finfl = 1;

    // The protocol.
    bool banner_done = false;
    if (s.wapp == 1 || d.errdv != 0) {
        if (d.erropn) flag += 10;
        if (d.proton == 2 && d.outu != 0) {
            qqerrf(b);
            if (d.errfp) {
                char text[700];
                int len = qqbanner(b, flag, text, sizeof text);
                qqlock(0);
                std::fwrite(text, 1, (size_t)len, d.errfp);
                std::fflush(d.errfp);
                qqlock(1);
                banner_done = true;
            }
        }
        qqerrc(b);
        // Warnings go to the console again; a silenced output stays silent.
        if (d.outu == 17) d.outu = 6;
    }
    if (!banner_done && d.outu != 0 && d.proton != 0) {
        char text[700];
        int len = qqbanner(b, flag, text, sizeof text);
        FILE *out = d.errfp ? d.errfp : stdout;
        qqlock(0);
        if (out) {
            std::fwrite(text, 1, (size_t)len, out);
            std::fflush(out);
        }
        qqlock(1);
    }
}

void newpag() noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("newpag"));
    if (!b) return;
    qqflsh(b);
    b->sess.pageno++;
    const DriverOps *drv = b->dev.drv;
    if (drv && drv->new_page) drv->new_page(b);
}

void erase() noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("erase"));
    if (!b) return;
    qqflsh(b);
    const DriverOps *drv = b->dev.drv;
    if (drv && drv->clear) drv->clear(b);
}

void sendbf() noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("sendbf"));
    if (!b) return;
    if (b->core.level > 0) qqsendbuf(b);
}

void winupd() noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("winupd"));
    if (!b) return;
    const DriverOps *drv = b->dev.drv;
    if (b->core.level > 0 && drv && drv->update) drv->update(b);
}

void pagera() noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("pagera"));
    if (!b) return;
    double xp = b->core.nxp, yp = b->core.nyp;
    qqrmov(b, 0, 0);
    qqrdrw(b, 0, yp);
    qqrdrw(b, xp, yp);
    qqrdrw(b, xp, 0);
    qqrdrw(b, 0, 0);
    qqflsh(b);
}

void getpag(int *nxpag, int *nypag) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("getpag"));
    if (!b) return;
    *nxpag = b->core.nxp + 1;
    *nypag = b->core.nyp + 1;
}

const char *getfil() noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("getfil"));
    return b ? b->sess.fname : "";
}

const char *getmfl() noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("getmfl"));
    return b ? b->sess.devkey : "";
}

double getver() noexcept { return 11.5; }

// The class of the screen layer that a session could open: none while this
// build has no screen driver or no display is configured.
const char *getdsp() noexcept {
    int code = 0;
    const DeviceFamily *screen = qqfamilykey("XWIN", &code);
    return screen && screen->ops && display_available() ? "XWIN" : "NONE";
}
