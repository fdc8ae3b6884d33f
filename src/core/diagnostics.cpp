// The switches of the warning system: errmod, errdev, errfil, unit,
// nochek, nancrv.
#include <cstring>

#include "core/core_block.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/subsystems.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"

namespace {

void diag_first(CoreBlock *b) {
    DiagState &d = b->diag;
    d.outu = 6;
    d.errfp = nullptr;
    d.errhnd = nullptr;
    d.erron = 1;
    d.chkon = 1;
    d.proton = 1;
}

// The session's share: warnings, checks and protocol on again.
void diag_init(CoreBlock *b) {
    DiagState &d = b->diag;
    d.erron = 1;
    d.chkon = 1;
    d.proton = 1;
    d.nanon = 0;
}

void diag_release(CoreBlock *b) {
    qqerrc(b);
}

void reset_unit(CoreBlock *b) {
    DiagState &d = b->diag;
    d.outu = d.erropn ? 17 : 6;
    d.errfp = d.erropn ? d.errhnd : nullptr;
}

void reset_nochek(CoreBlock *b) {
    b->diag.chkon = 1;
}

const ResetEntry kResets[] = {
    {"UNIT", reset_unit},
    {"NOCH", reset_nochek},
    {nullptr, nullptr},
};

}  // namespace

extern const Subsystem kxsub_diagnostics = {"diagnostics", diag_first, diag_init, diag_release,
                                            kResets, nullptr};

void errmod(const char *cstr, const char *cmode) noexcept {
    CoreBlock *b = KX_ENTRY("errmod");
    if (!b) return;
    int what = qqkey(b, "WARN+CHEC+PROT+ALL ", 4, cstr);
    if (what == 0) return;
    int mode = what == 3 ? qqkey(b, "OFF +ON  +FILE", 3, cmode) : qqkey(b, "OFF +ON  ", 2, cmode);
    if (mode == 0) return;
    int v = mode - 1;
    DiagState &d = b->diag;
    switch (what) {
    case 1: d.erron = (unsigned char)v; break;
    case 2: d.chkon = v; break;
    case 3: d.proton = (unsigned char)v; break;
    case 4:
        d.erron = (unsigned char)v;
        d.chkon = v;
        d.proton = (unsigned char)v;
        break;
    }
}

void errdev(const char *cdev) noexcept {
    CoreBlock *b = KX_ENTRY("errdev");
    if (!b) return;
    int k = qqkey(b, "CONS+FILE+APPE", 3, cdev);
    if (k > 0) b->diag.errdv = (unsigned char)(k - 1);
}

void errfil(const char *cfil) noexcept {
    CoreBlock *b = KX_ENTRY("errfil");
    if (!b) return;
    qqscpy(b->diag.errnam, cfil ? cfil : "", 256);
    b->diag.errnmf = 1;
}

void unit(int nu) noexcept {
    CoreBlock *b = KX_ENTRY("unit");
    if (!b) return;
    // A stream number means nothing at this interface: anything but 0 turns
    // output on; 6 keeps the stream that warnings go to.
    if (nu == 0) {
        b->diag.outu = 0;
    } else {
        b->diag.outu = 1;
    }
}

void nochek() noexcept {
    CoreBlock *b = KX_ENTRY("nochek");
    if (!b) return;
    b->diag.chkon = 0;
}

void nancrv(const char *copt) noexcept {
    CoreBlock *b = KX_ENTRY("nancrv");
    if (!b) return;
    int k = qqkey(b, "OFF +ON  ", 2, copt);
    if (k > 0) b->diag.nanon = k - 1;
}
