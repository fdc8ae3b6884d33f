// The settings of the contour lines that are not label settings of the
// axes: conlab, conmod, congap, conclr; their defaults and reset rows.
#include <cstdlib>
#include <cstring>

#include "core/guard.h"
#include "core/subsystems.h"
#include "core/text.h"
#include "core/warnings.h"
#include "fields/field_block.h"
#include "kolvex.h"

namespace {

void r_conc(CoreBlock *b) {
    qqfldblk(b)->con.nclr = 0;
}
void r_cong(CoreBlock *b) {
    qqfldblk(b)->con.gapfac = 0.5;
}
void r_conm(CoreBlock *blk) {
    FieldBlock *b = qqfldblk(blk);
    b->con.marfac = 0.5;
    b->con.curquot = 1.5;
}

void contours_init(CoreBlock *blk) {
    FieldBlock *b = qqfldblk(blk);
    ContourState &c = b->con;
    std::free(c.polyx);
    std::memset(&c, 0, sizeof c);
    r_cong(b);
    r_conm(b);
}

void contours_release(CoreBlock *blk) {
    FieldBlock *b = qqfldblk(blk);
    std::free(b->con.polyx);
    b->con.polyx = b->con.polyy = nullptr;
}

const ResetEntry kResets[] = {
    {"CONC", r_conc}, {"CONG", r_cong}, {"CONM", r_conm}, {nullptr, nullptr}};

}  // namespace

extern const Subsystem kxsub_contours = {"contours", contours_init, contours_init,
                                         contours_release, kResets, nullptr};

void conlab(const char *ctext) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("conlab"));
    if (!b) return;
    qqscpy(b->con.conlab, ctext ? ctext : "", QQ_CON_LABLEN);
}

void conmod(double xfac, double xquot) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("conmod"));
    if (!b) return;
    if (!(xfac >= 0) || !(xquot > 1)) {
        qqwarnd(b, 2, !(xfac >= 0) ? xfac : xquot);
        return;
    }
    b->con.marfac = xfac;
    b->con.curquot = xquot;
}

void congap(double xfac) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("congap"));
    if (!b) return;
    if (!(xfac >= 0)) {
        qqwarnd(b, 2, xfac);
        return;
    }
    b->con.gapfac = xfac;
}

void conclr(const int *nclray, int n) noexcept {
    FieldBlock *b = qqfldblk(KX_ENTRY("conclr"));
    if (!b) return;
    if (n < 0 || n > QQ_CON_MAXCLR) {
        qqwarn(b, 2, n);
        return;
    }
    for (int i = 0; i < n; ++i) b->con.clrs[i] = nclray[i];
    b->con.nclr = n;
}
