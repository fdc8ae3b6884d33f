// The level-0 settings of the CGM, HPGL and WMF formats.
#include "core/guard.h"
#include "core/keywords.h"
#include "core/subsystems.h"
#include "core/warnings.h"
#include "devices/device_block.h"
#include "kolvex.h"

namespace {

void cgm_first(CoreBlock *blk) {
    DeviceBlock *b = qqdevblk(blk);
    b->cgm.cgmversion = 1;
}

}  // namespace

extern const Subsystem kxsub_cgm = {"cgm", cgm_first, nullptr, nullptr, nullptr, nullptr};

void cgmver(int nclr) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("cgmver"));
    if (!b) return;
    if (nclr != 1 && nclr != 4) {
        qqwarn(b, 2, nclr);
        return;
    }
    b->cgm.cgmversion = nclr;
}

void wmfmod(const char *cval, const char *copt) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("wmfmod"));
    if (!b) return;
    int k = qqkeyopt(b, "FORM", copt, "STAN+PLAC", 2, cval);
    if (k > 0) b->cgm.wmfplace = k - 1;
}

// The method is called hpgmog; its setting reports under the name hpgmod.
void hpgmog(const char *cval, const char *copt) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("hpgmod"));
    if (!b) return;
    int k = qqkeyopt(b, "PLOT", copt, "STAN+ARIS", 2, cval);
    if (k > 0) b->cgm.hpgaris = k - 1;
}
