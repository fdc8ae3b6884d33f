// The session: metafl, kolini, kolfin and the routines that act on the
// whole page.
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
#include "kolvex.h"

namespace {

struct DeviceRow {
    const char *key;
    int code;
};

// The device keywords in the order the library has always searched them.
const DeviceRow kDevices[] = {
    {"PLOG", 201}, {"CGM ", 211}, {"HPGL", 401}, {"HPA4", 402}, {"HPA3", 403},
    {"HPA2", 404}, {"HPA1", 405}, {"CONS", 101}, {"POST", 501}, {"PSCL", 502},
    {"XWIN", 72},  {"XWI1", 72},  {"XWI2", 73},  {"XWI3", 74},  {"XWI4", 75},
    {"XWI5", 76},  {"XWI6", 77},  {"XWI7", 78},  {"XWI8", 79},  {"XWND", 80},
    {"TIFF", 601}, {"IMAG", 602}, {"VIRT", 603}, {"PNG ", 604}, {"JAVA", 701},
    {"WMF ", 221}, {"EMF ", 231}, {"PPM ", 605}, {"PDF ", 511}, {"EPS ", 503},
    {"BMP ", 606}, {"PS  ", 504}, {"SVG ", 801}, {"IPE ", 802}, {"GIF ", 607},
    {"GL  ", 81},
};

int lookup_device(const char *key) {
    for (const DeviceRow &r : kDevices)
        if (std::strcmp(r.key, key) == 0) return r.code;
    if (std::strcmp(key, "MET1") >= 0 && std::strcmp(key, "MET9") <= 0) return 80;
    return 0;
}

bool display_available() {
    const char *d = std::getenv("DISPLAY");
    return d && *d;
}

void session_first(glbblk *b) {
    SessionState &s = b->sess;
    s.scrmd = 4;
    s.bgprev = -1;
    s.sclf = 1.0;
    s.hwscl = 1.0;
    s.fmode = 0;
    s.fdig = 4;
    s.swapfl = 1;
    OutputOptions &o = b->opt;
    o.cgmver = 1;
    o.pdfcomp = 1;
    o.bmpres = 2500;
    o.tifres = 100;
    o.tifunit = 2;
}

// The extra PostScript header text serves the session that it was given
// for: the driver has written it when the session's defaults are set.
void free_psinfo(glbblk *b) {
    std::free(b->opt.psinfo);
    b->opt.psinfo = nullptr;
}

// The session's own share of qqinit: the window behaviour of the screen.
void session_init(glbblk *b) {
    SessionState &s = b->sess;
    s.wmode = 0;
    s.wkey = 0;
    s.wdelay = 10000;
    s.bufsend = 0;
    free_psinfo(b);
}

void session_release(glbblk *b) {
    SessionState &s = b->sess;
    // A session that never reached kolfin leaves no file behind.
    qqplotclose(b, 0);
    std::free(s.lnbuf);
    s.lnbuf = nullptr;
    free_psinfo(b);
}

void reset_window(glbblk *b) { b->sess.wplace = 0; }
void reset_winmod(glbblk *b) { b->sess.wmode = 0; }

const ResetEntry kResets[] = {
    {"PSME", free_psinfo}, {"WIND", reset_window}, {"WINM", reset_winmod},
    {"WINS", reset_window}, {nullptr, nullptr},
};

}  // namespace

extern const Subsystem kxsub_session = {"session", session_first, session_init, session_release,
                                        kResets, nullptr};

void metafl(const char *cdev) noexcept {
    glbblk *b = KX_ENTRY("metafl");
    if (!b) return;
    char key[5];
    qqkeyword(cdev, key);
    int code = lookup_device(key);
    if (code == 0) {
        qqwarc(b, 2, cdev ? cdev : "");
        return;
    }
    if (code == 101) code = 80;
    if (code == 81) {
        // The OpenGL window needs a display with GLX; this build has no
        // OpenGL device, so the screen takes its place.
        qqwar1(b, 181, "OPENGL is not supported");
        code = 80;
    }
    b->core.devcod = code;
    std::memcpy(b->sess.devkey, key, 5);
    b->sess.mflset = 1;
}

void qqkolfail(glbblk *b) noexcept {
    SessionState &s = b->sess;
    qqplotclose(b, 0);
    std::free(s.lnbuf);
    s.lnbuf = nullptr;
    b->dev.drv = nullptr;
    b->core.level = 0;
}

void kolini() noexcept {
    glbblk *b = KX_ENTRY("kolini");
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

    s.bgmode = s.scrmd;
    if (s.scrmd == 4) {
        int d = c.devcod;
        s.bgmode = (d == 511 || d == 503 || d == 504 || d == 801 || d == 802 || d == 231) ? 2 : 0;
    }
    if (c.devcod == 0) {
        c.devcod = 201;
        std::memcpy(s.devkey, "PLOG", 5);
    }
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

    const DriverOps *drv = qqdriver(c.devcod);
    if (qqscreen(c.devcod)) {
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
    if (qqopenplot(b) != 0) return;
    if (drv->open && drv->open(b) != 0) {
        qqkolfail(b);
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
    glbblk *b = KX_ENTRY("kolfin");
    if (!b) return;
    SessionState &s = b->sess;
    DiagState &d = b->diag;
    qqflsh(b);
    qqend(b);

    int flag = 1;
    const DriverOps *drv = b->dev.drv;
    if (drv && drv->close) flag = drv->close(b);
    if (qqscreen(b->core.devcod)) flag = 0;

    int dev = b->core.devcod;
    bool textfmt = dev > 100 && dev < 601 && dev != 221 && dev != 231 && dev != 511;
    if (textfmt && s.lnbuf && s.lnpos > 0) qqsbufend(b);
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
    glbblk *b = KX_ENTRY("newpag");
    if (!b) return;
    qqflsh(b);
    b->sess.pageno++;
    const DriverOps *drv = b->dev.drv;
    if (drv && drv->new_page) drv->new_page(b);
}

void erase() noexcept {
    glbblk *b = KX_ENTRY("erase");
    if (!b) return;
    qqflsh(b);
    const DriverOps *drv = b->dev.drv;
    if (drv && drv->clear) drv->clear(b);
}

void sendbf() noexcept {
    glbblk *b = KX_ENTRY("sendbf");
    if (!b) return;
    if (b->core.level > 0) {
        qqflsh(b);
        const DriverOps *drv = b->dev.drv;
        if (drv && drv->update) drv->update(b);
    }
}

void winupd() noexcept {
    glbblk *b = KX_ENTRY("winupd");
    if (!b) return;
    const DriverOps *drv = b->dev.drv;
    if (b->core.level > 0 && drv && drv->update) drv->update(b);
}

void pagera() noexcept {
    glbblk *b = KX_ENTRY("pagera");
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
    glbblk *b = KX_ENTRY("getpag");
    if (!b) return;
    *nxpag = b->core.nxp + 1;
    *nypag = b->core.nyp + 1;
}

const char *getfil() noexcept {
    glbblk *b = KX_ENTRY("getfil");
    return b ? b->sess.fname : "";
}

const char *getmfl() noexcept {
    glbblk *b = KX_ENTRY("getmfl");
    return b ? b->sess.devkey : "";
}

double getver() noexcept { return 11.5; }

const char *getdsp() noexcept { return display_available() ? "XWIN" : "NONE"; }
