// The call frame's own routines: units, page origin, level, upstr, and the
// first values of the core fields.
#include <cmath>

#include "core/core_block.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/subsystems.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"

namespace {

void core_first(CoreBlock *b) {
    CoreState &c = b->core;
    c.level = 0;
    c.devcod = 0;
    c.xpi = 3.1415927410125732;
    c.xdegr = 0.01745329277777778;
    c.eps = 1e-35;
    c.pagw = 2969.0;
    c.pagh = 2099.0;
    qqscpy(c.pagnam, "DA4L", 4);
    c.unitf = 1.0;
    c.nxp = c.nyp = 0;
    c.yorig = 0;
    c.ynoflp = 0;
}

void core_init(CoreBlock *b) {
    b->core.yorig = 0;
}

}  // namespace

extern const Subsystem kxsub_core = {"core", core_first, core_init, nullptr, nullptr, nullptr};

double qqyflp(CoreBlock *b, double y) noexcept {
    if (b->core.yorig == 1 && b->core.ynoflp != 1) return b->core.nyp - y;
    return y;
}

int qqyflpi(CoreBlock *b, int y) noexcept {
    if (b->core.yorig == 1 && b->core.ynoflp != 1) return b->core.nyp - y;
    return y;
}

int qqpxu(CoreBlock *b, double length) noexcept {
    return (int)std::trunc(length / b->core.unitf + 0.5);
}

int getlev() noexcept {
    CoreBlock *b = KX_ENTRY("getlev");
    return b ? (int)b->core.level : 0;
}

void units(const char *copt) noexcept {
    CoreBlock *b = KX_ENTRY("units");
    if (!b) return;
    // The factors as the library has always stored them: single precision.
    static const double factors[4] = {1.0, 2.5399999618530273, 0.35277798771858215,
                                      0.17638899385929108};
    int k = qqkey(b, "CM  +INCH+POIN+TWIP", 4, copt);
    if (k > 0) b->core.unitf = factors[k - 1];
}

void pagorg(const char *copt) noexcept {
    CoreBlock *b = KX_ENTRY("pagorg");
    if (!b) return;
    int k = qqkey(b, "TOP +BOTT", 2, copt);
    if (k > 0) b->core.yorig = (unsigned char)(k - 1);
}

void upstr(char *cstr) noexcept {
    if (cstr) qqupc(cstr);
}

int getuni() noexcept {
    CoreBlock *b = KX_ENTRY("getuni");
    return b ? b->diag.outu : 0;
}
