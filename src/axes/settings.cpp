// The settings of axis drawing: sides, ticks, labels, names, titles and
// frame; the axes' share of the session defaults and their reset rows.
#include <climits>
#include <cstring>

#include "axes/axes.h"
#include "axes/axes_block.h"
#include "axes/axes_state.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/subsystems.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"

void qqaxdefaults(AxesBlock *b, AxesState *o) noexcept {
    std::memset(o, 0, sizeof *o);
    const SessionState &s = b->sess;
    auto px = [b](double v) { return qqpxu(b, v); };
    for (int i = 0; i < 3; ++i) {
        // The third length is that of the colour bar of graf3: as long as
        // the Y axis unless ax3len says otherwise.
        o->nlen[i] = i < 2 ? s.axdefl[i] : s.axdefl[1];
        o->ndig[i] = 1;
        o->ntic[i] = 2;
        o->ticpos[i] = 0;
        o->labdis[i] = px(24);
        o->namdis[i] = px(30);
        for (int k = 0; k < 4; ++k) o->axclr[i][k] = -1;
        o->lab[i] = 1;
        o->labcls[i] = 0;
        o->logfrm[i] = 2;
        o->labclr[i] = -1;
    }
    o->nxa = s.axdefp[0];
    o->nya = s.axdefp[1];
    o->nxres = o->nyres = qqpxu(b, 1) > 1 ? qqpxu(b, 1) : 1;
    o->bgclr = -1;
    o->grfsid[0] = o->grfsid[1] = 4;
    o->grfsid[2] = o->grfsid[3] = 2;
    o->ticmaj = px(24);
    o->ticmin = px(16);
    o->hname = px(36);
    o->frmthk = 1;
    o->frmcol = -1;
    o->grace = -1;
    o->widbar = px(85);
    o->spcbar = px(85);
    o->condis = px(500);
    for (int i = 0; i < 5; ++i) o->xdig[i] = 1;
    o->xlab[1] = 1;  // pies show their percentages unless told otherwise
}

namespace {

// User coordinates of the axis system for rlmess and rlnumb.
int user_position(TextBlock *tb, double x, double y, double *px, double *py) {
    AxesBlock *b = qqaxsblk(tb);
    if (b->core.level < 2) return 0;
    qqpos2(b, x, y, px, py);
    return 1;
}

// The limits of the coordinate check: the diagnostics ask for them.
int check_limits(const CoreBlock *cb, double lim[6]) {
    const AxesBlock *b = qqaxsblk(cb);
    const AxesState &a = b->ax;
    lim[0] = a.chkx[0];
    lim[1] = a.chkx[1];
    lim[2] = a.chky[0];
    lim[3] = a.chky[1];
    lim[4] = a.chkz[0];
    lim[5] = a.chkz[1];
    return a.chkaxis;
}

void axes_init(CoreBlock *blk) {
    AxesBlock *b = qqaxsblk(blk);
    // The scaling record and the saved state die with the session too.
    qqaxdefaults(b, &b->ax);
    b->txt.userpos = user_position;
    b->diag.chklimits = check_limits;
}

// Each reset row copies its fields from a fresh set of defaults.
#define KX_RESET(fn, ...)             \
    void fn(CoreBlock *blk) {         \
        AxesBlock *b = qqaxsblk(blk); \
        AxesState d;                  \
        qqaxdefaults(b, &d);          \
        AxesState &a = b->ax;         \
        __VA_ARGS__;                  \
    }
#define CP(f) std::memcpy(&a.f, &d.f, sizeof a.f)

KX_RESET(r_axcl, CP(axclr))
KX_RESET(r_axen, CP(axends))
KX_RESET(r_axsl, CP(nlen))
KX_RESET(r_axsp, CP(nxa); CP(nya); CP(orgflg))
KX_RESET(r_cent, CP(center); CP(centdone))
KX_RESET(r_digi, CP(ndig); CP(autdig); CP(xdig))
KX_RESET(r_fram, CP(frmthk))
KX_RESET(r_frme, CP(frmcol))
KX_RESET(r_grac, CP(grace))
KX_RESET(r_hnam, CP(hname))
KX_RESET(r_htit, CP(htit))
KX_RESET(r_inta, CP(ndig); CP(autdig))
KX_RESET(r_labc, CP(labclr))
KX_RESET(r_labd, CP(ndig); CP(autdig); CP(labdis); CP(condis))
KX_RESET(r_labe, CP(lab); CP(labcls); CP(logfrm); CP(expflg); CP(xlab))
KX_RESET(r_labj, CP(labjus))
KX_RESET(r_labp, CP(labpos); CP(xpos))
KX_RESET(r_labt, CP(labori); CP(xori))
KX_RESET(r_lftt, CP(titjus))
KX_RESET(r_logt, CP(logtic))
KX_RESET(r_myla, CP(mylab); CP(nmylab))
KX_RESET(r_namd, CP(namdis))
KX_RESET(r_name, CP(name))
KX_RESET(r_negl, CP(neglg); CP(neglv))
KX_RESET(r_nogr, CP(nogrf))
KX_RESET(r_noli, CP(noline))
KX_RESET(r_rgtl, CP(rgtlab))
KX_RESET(r_rvyn, CP(rvynam))
KX_RESET(r_scal, CP(scl))
KX_RESET(r_setg, CP(grfsid))
KX_RESET(r_setr, CP(nxres); CP(nyres); CP(resmod))
KX_RESET(r_sets, CP(autscl))
KX_RESET(r_tick, CP(ntic))
KX_RESET(r_ticl, CP(ticmaj); CP(ticmin))
KX_RESET(r_ticp, CP(ticpos))
KX_RESET(r_titl, CP(title); CP(titul); CP(titpos))
KX_RESET(r_vkxb, CP(vkxbar))
KX_RESET(r_vkyb, CP(vkybar))
KX_RESET(r_vkyt, CP(vkytit))
KX_RESET(r_widb, CP(widbar))
KX_RESET(r_noba, CP(nobar))
KX_RESET(r_ax3l, CP(nlen))
KX_RESET(r_autr, CP(resmod))
KX_RESET(r_expz, CP(expzlb))
KX_RESET(r_axis, CP(axtyp); CP(grtyp); CP(ax2))

void r_orig(CoreBlock *blk) {
    AxesBlock *b = qqaxsblk(blk);
    b->dev.nxsh = b->dev.nysh = 0;
}

const ResetEntry kResets[] = {
    {"AXCL", r_axcl}, {"AXEN", r_axen}, {"AXSL", r_axsl}, {"AXSP", r_axsp}, {"CENT", r_cent},
    {"DIGI", r_digi}, {"FRAM", r_fram}, {"FRME", r_frme}, {"GRAC", r_grac}, {"HNAM", r_hnam},
    {"HTIT", r_htit}, {"INTA", r_inta}, {"LABC", r_labc}, {"LABD", r_labd}, {"LABE", r_labe},
    {"LABJ", r_labj}, {"LABP", r_labp}, {"LABT", r_labt}, {"LFTT", r_lftt}, {"LOGT", r_logt},
    {"MYLA", r_myla}, {"NAMD", r_namd}, {"NAME", r_name}, {"NEGL", r_negl}, {"NOGR", r_nogr},
    {"NOLI", r_noli}, {"RGTL", r_rgtl}, {"RVYN", r_rvyn}, {"SCAL", r_scal}, {"SETG", r_setg},
    {"SETR", r_setr}, {"SETS", r_sets}, {"TICK", r_tick}, {"TICL", r_ticl}, {"TICP", r_ticp},
    {"TITL", r_titl}, {"VKXB", r_vkxb}, {"VKYB", r_vkyb}, {"VKYT", r_vkyt}, {"WIDB", r_widb},
    {"AUTR", r_autr}, {"EXPZ", r_expz}, {"AXIS", r_axis}, {"ORIG", r_orig}, {"NOBA", r_noba},
    {"AX3L", r_ax3l}, {nullptr, nullptr},
};

// Stores a keyword's position (from 0) in the named axes.
void per_axis(AxesBlock *b, int *field, const char *list, int count, const char *key,
              const char *cax) {
    int k = qqkey(b, list, count, key);
    if (k < 1) return;
    int m = qqaxsmask(cax);
    for (int i = 0; i < 3; ++i)
        if (m >> i & 1) field[i] = k - 1;
}

// The special axes words of the label routines: BAR, PIE, CON, POL, DAT, PER.
int special_word(const char *cax) {
    if (!cax) return 0;
    char w[4] = {0, 0, 0, 0};
    qqscpy(w, cax, 3);
    qqupc(w);
    static const char *const words[] = {"BAR", "PIE", "CON", "POL", "DAT", "PER"};
    for (int i = 0; i < 6; ++i)
        if (std::strcmp(w, words[i]) == 0) return i + 1;
    return 0;
}

}  // namespace

extern const Subsystem kxsub_axes = {"axes", axes_init, axes_init, nullptr, kResets, nullptr};

void labels(const char *clab, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("labels"));
    if (!b) return;
    switch (special_word(cax)) {
    case 1: {
        int k = qqkey(b, "NONE+SECO+FIRS+MAXI+MINI+DELT+POSI", 7, clab);
        if (k > 0) b->ax.xlab[0] = k - 1;
        return;
    }
    case 2: {
        int k = qqkey(b, "NONE+PERC+DATA+BOTH", 4, clab);
        if (k > 0) b->ax.xlab[1] = k - 1;
        return;
    }
    case 3: {
        int k = qqkey(b, "NONE+FLOA+CONL", 3, clab);
        if (k > 0) b->ax.xlab[2] = k - 1;
        return;
    }
    default: break;
    }
    int k = qqkey(b,
                  "NONE+FLOA+EXP +LOG +CLOG+ELOG+MAP +DMAP+LMAP+TIME+HOUR+SECO+MYLA+FEXP+DATE+MAPN+XEXP",
                  17, clab);
    if (k < 1) return;
    int m = qqaxsmask(cax);
    for (int i = 0; i < 3; ++i)
        if (m >> i & 1) qqlabkind(b, i, k - 1);
}

void labtyp(const char *ctyp, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("labtyp"));
    if (!b) return;
    int sw = special_word(cax);
    if (sw == 2) {
        int k = qqkey(b, "CENT+LEFT+RIGH+TYPS+OUTW+INWA", 6, ctyp);
        if (k > 0) b->ax.xori[0] = k - 1;
        return;
    }
    if (sw == 4) {
        int k = qqkey(b, "HORI", 1, ctyp);
        if (k > 0) b->ax.xori[1] = 1;
        return;
    }
    if (sw == 3) {
        int k = qqkey(b, "HORI+VERT", 2, ctyp);
        if (k > 0) b->ax.xori[2] = k - 1;
        return;
    }
    int k = qqkey(b, "HORI+VERT", 2, ctyp);
    if (k < 1) return;
    int m = qqaxsmask(cax);
    for (int i = 0; i < 3; ++i)
        if (m >> i & 1) b->ax.labori[i] = k - 1;
    if (m & 2) b->ax.xori[1] = 0;
}

void labpos(const char *cpos, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("labpos"));
    if (!b) return;
    int sw = special_word(cax);
    if (sw == 1) {
        int k = qqkey(b, "AUTO+INSI+OUTS+LEFT+ABOV+RIGH+BELO+CENT", 8, cpos);
        if (k > 0) b->ax.xpos[0] = k - 1;
        return;
    }
    if (sw == 2) {
        int k = qqkey(b, "INTE+EXTE+ALIG", 3, cpos);
        if (k > 0) b->ax.xpos[1] = k - 1;
        return;
    }
    per_axis(b, b->ax.labpos, "TICK+CENT+SHIF", 3, cpos, cax);
}

void labjus(const char *cjus, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("labjus"));
    if (!b) return;
    per_axis(b, b->ax.labjus, "AUTO+LEFT+RIGH+OUTW+INWA", 5, cjus, cax);
}

void axends(const char *ckey, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("axends"));
    if (!b) return;
    per_axis(b, b->ax.axends, "NONE+NOFI+NOLA+NOEN+ENDS+FIRS+LAST", 7, ckey, cax);
}

void ticpos(const char *cpos, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("ticpos"));
    if (!b) return;
    per_axis(b, b->ax.ticpos, "LABE+REVE+CENT", 3, cpos, cax);
}

void namjus(const char *cjus, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("namjus"));
    if (!b) return;
    per_axis(b, b->ax.namjus, "CENT+LEFT+RIGH", 3, cjus, cax);
}

void labdis(int ndis, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("labdis"));
    if (!b) return;
    if (special_word(cax) == 3) {
        if (ndis < 1 || ndis > 10000) {
            qqwarn(b, 2, ndis);
            return;
        }
        b->ax.condis = ndis;
        return;
    }
    int m = qqaxsmask(cax);
    for (int i = 0; i < 3; ++i)
        if (m >> i & 1) b->ax.labdis[i] = ndis;
}

void namdis(int ndis, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("namdis"));
    if (!b) return;
    int m = qqaxsmask(cax);
    for (int i = 0; i < 3; ++i)
        if (m >> i & 1) b->ax.namdis[i] = ndis;
}

void name(const char *cstr, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("name"));
    if (!b) return;
    int m = qqaxsmask(cax);
    for (int i = 0; i < 3; ++i)
        if (m >> i & 1) qqscpy(b->ax.name[i], cstr ? cstr : "", QQ_NAMELEN);
}

void hname(int nh) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("hname"));
    if (!b) return;
    if (nh < 1 || nh > 10000) {
        qqwarn(b, 2, nh);
        return;
    }
    b->ax.hname = nh;
}

void ticlen(int nmaj, int nmin) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("ticlen"));
    if (!b) return;
    if (nmaj < 1 || nmaj > 10000) {
        qqwarn(b, 2, nmaj);
        return;
    }
    if (nmin < 1 || nmin > 10000) {
        qqwarn(b, 2, nmin);
        return;
    }
    b->ax.ticmaj = nmaj;
    b->ax.ticmin = nmin;
}

void mylab(const char *cstr, int itick, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("mylab"));
    if (!b) return;
    if (itick < 1 || itick > QQ_NMYLAB) {
        qqwarn(b, 2, itick);
        return;
    }
    int m = qqaxsmask(cax);
    bool twice = false;
    for (int i = 0; i < 3; ++i)
        if (m >> i & 1) {
            char *slot = b->ax.mylab[i][itick - 1];
            if (itick <= b->ax.nmylab[i] && slot[0]) twice = true;
            qqscpy(slot, cstr ? cstr : "", QQ_MYLABLEN);
            if (itick > b->ax.nmylab[i]) b->ax.nmylab[i] = itick;
        }
    if (twice) qqwarn(b, 6, itick);
}

void rgtlab() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("rgtlab"));
    if (b) b->ax.rgtlab = 1;
}

void rvynam() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("rvynam"));
    if (b) b->ax.rvynam = 1;
}

void axclrs(int nclr, const char *copt, const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("axclrs"));
    if (!b) return;
    int k = qqkey(b, "LINE+TICK+LABE+NAME+ALL ", 5, copt);
    if (k < 1) return;
    int m = qqaxsmask(cax);
    for (int i = 0; i < 3; ++i)
        if (m >> i & 1)
            for (int j = 0; j < 4; ++j)
                if (k == 5 || k - 1 == j) b->ax.axclr[i][j] = nclr;
}

void frame(int nfrm) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("frame"));
    if (b) b->ax.frmthk = nfrm;
}

void frmclr(int nclr) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("frmclr"));
    if (b) b->ax.frmcol = nclr;
}

void axstyp(const char *copt) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("axstyp"));
    if (!b) return;
    int k = qqkey(b, "RECT+CROS+IMPE+ADMI", 4, copt);
    if (k == 1 || k == 2) b->ax.axtyp = k - 1;
    if (k == 3 || k == 4) b->ax.grtyp = k - 3;
}

void ax2grf() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("ax2grf"));
    if (b) b->ax.ax2 = 1;
}

void nograf() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("nograf"));
    if (b) b->ax.nogrf = 1;
}

void grace(int ngrace) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("grace"));
    if (!b) return;
    b->ax.grace = ngrace;
}

void center() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("center"));
    if (!b) return;
    b->ax.center = 1;
    b->ax.centdone = 0;
}

void setgrf(const char *c1, const char *c2, const char *c3, const char *c4) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("setgrf"));
    if (!b) return;
    const char *w[4] = {c1, c2, c3, c4};
    for (int i = 0; i < 4; ++i) {
        int k = qqkey(b, "NONE+LINE+TICK+LABE+NAME", 5, w[i]);
        if (k > 0) b->ax.grfsid[i] = k - 1;
    }
}

void noline(const char *cax) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("noline"));
    if (!b) return;
    int m = qqaxsmask(cax);
    for (int i = 0; i < 3; ++i)
        if (m >> i & 1) b->ax.noline[i] = 1;
}

void titlin(const char *cstr, int nlin) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("titlin"));
    if (!b) return;
    int n = nlin < 0 ? (nlin == INT_MIN ? INT_MAX : -nlin) : nlin;
    if (n < 1 || n > 4) {
        qqwarn(b, 2, nlin);
        return;
    }
    qqscpy(b->ax.title[n - 1], cstr ? cstr : "", QQ_NAMELEN);
    b->ax.titul[n - 1] = nlin < 0 ? 1 : 0;
}

void htitle(int nh) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("htitle"));
    if (!b) return;
    if (nh < 0) {
        qqwarn(b, 2, nh);
        return;
    }
    b->ax.htit = nh;
}

void titjus(const char *copt) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("titjus"));
    if (!b) return;
    int k = qqkey(b, "CENT+LEFT+RIGH", 3, copt);
    if (k > 0) b->ax.titjus = k - 1;
}

void lfttit() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("lfttit"));
    if (b) b->ax.titjus = 1;
}

void titpos(const char *copt) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("titpos"));
    if (!b) return;
    int k = qqkey(b, "ABOV+BELO", 2, copt);
    if (k > 0) b->ax.titpos = k - 1;
}

void vkytit(int nshift) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("vkytit"));
    if (b) b->ax.vkytit = nshift;
}

void vkxbar(int nshift) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("vkxbar"));
    if (b) b->ax.vkxbar = nshift;
}

void vkybar(int nshift) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("vkybar"));
    if (b) b->ax.vkybar = nshift;
}

void widbar(int nwid) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("widbar"));
    if (b && !qqchki(b, nwid, 0, 10000)) b->ax.widbar = nwid;
}

void spcbar(int nspc) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("spcbar"));
    if (b) b->ax.spcbar = nspc;
}

void frmbar(int nfrm) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("frmbar"));
    if (b) b->ax.frmbar = nfrm;
}

void posbar(const char *copt) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("posbar"));
    if (!b) return;
    int k = qqkey(b, "FIXE+LEFT+RIGH+BOTT+TOP ", 5, copt);
    if (k > 0) b->ax.posbar = k - 1;
}

void jusbar(const char *copt) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("jusbar"));
    if (!b) return;
    int k = qqkey(b, "STAR+CENT+END ", 3, copt);
    if (k > 0) b->ax.jusbar = k - 1;
}

void nobar() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("nobar"));
    if (b) b->ax.nobar = 1;
}

void expzlb(const char *cstr) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("expzlb"));
    if (!b) return;
    int k = qqkey(b, "NONE+FIRS+BOTH", 3, cstr);
    if (k > 0) b->ax.expzlb = k - 1;
}

void labclr(int nclr, const char *copt) noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("labclr"));
    if (!b) return;
    int k = qqkey(b, "BAR +PIE +CON ", 3, copt);
    if (k > 0) b->ax.labclr[k - 1] = nclr;
}

void getvk(int *nytit, int *nxbar, int *nybar) noexcept {
    *nytit = *nxbar = *nybar = 0;
    AxesBlock *b = qqaxsblk(KX_ENTRY("getvk"));
    if (!b) return;
    *nytit = b->ax.vkytit;
    *nxbar = b->ax.vkxbar;
    *nybar = b->ax.vkybar;
}

int getwid() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("getwid"));
    return b ? b->ax.widbar : 0;
}

int gethnm() noexcept {
    AxesBlock *b = qqaxsblk(KX_ENTRY("gethnm"));
    return b ? b->ax.hname : 0;
}

void getsp1(int *nxdis, int *nydis, int *nzdis) noexcept {
    *nxdis = *nydis = *nzdis = 0;
    AxesBlock *b = qqaxsblk(KX_ENTRY("getsp1"));
    if (!b) return;
    *nxdis = b->ax.labdis[0];
    *nydis = b->ax.labdis[1];
    *nzdis = b->ax.labdis[2];
}

void getsp2(int *nxdis, int *nydis, int *nzdis) noexcept {
    *nxdis = *nydis = *nzdis = 0;
    AxesBlock *b = qqaxsblk(KX_ENTRY("getsp2"));
    if (!b) return;
    *nxdis = b->ax.namdis[0];
    *nydis = b->ax.namdis[1];
    *nzdis = b->ax.namdis[2];
}

void gettcl(int *nmaj, int *nmin) noexcept {
    *nmaj = *nmin = 0;
    AxesBlock *b = qqaxsblk(KX_ENTRY("gettcl"));
    if (!b) return;
    *nmaj = b->ax.ticmaj;
    *nmin = b->ax.ticmin;
}
