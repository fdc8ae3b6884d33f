// The label formatter of the axes: the text of one label by the label type
// and digits of its axis.
#include <cmath>
#include <cstring>

#include "axes/axes_block.h"
#include "axes/label_text.h"
#include "core/text.h"
#include "text/numbers.h"

namespace {

// Map labels: degrees with the degree sign and the hemisphere letter.
int map_label(AxesBlock *b, double v, int axis, int lab, char *out) {
    int mode = lab == 6 || lab == 15 ? 2 : lab == 7 ? 1 : lab == 8 ? 3 : 2;
    if (mode >= 2) {
        if (axis == 0) {
            if (v > 180.001) v -= 360.0;
            if (v < -180.001) v += 360.0;
        } else {
            if (v > 90.001) v = 180.0 - v;
            if (v < -90.001) v = -180.0 - v;
        }
    }
    double shown = mode == 1 ? v : std::fabs(v);
    int n = QQ_LABLEN;
    qqfcha(shown, b->ax.ndig[axis], out, n + 1, 0);
    if (lab != 15) {
        char deg[4] = {qqraisech(b), 'o', qqbackch(b), '\0'};
        qqscat(out, deg, n);
    }
    if (std::fabs(v) <= 0.001) return (int)std::strlen(out);
    if (mode == 1) return qqscat(out, "  ", n);
    char letter[3] = {' ', 0, 0};
    if (v > 0.001)
        letter[1] = axis == 0 ? 'E' : 'N';
    else
        letter[1] = axis == 0 ? 'W' : 'S';
    if (mode == 3) letter[1] = (char)(letter[1] + ('a' - 'A'));
    return qqscat(out, letter, n);
}

}  // namespace

int qqlabtxt(AxesBlock *b, double v, int idx, int logax, int axis, char *out) noexcept {
    const AxesState &ax = b->ax;
    int lab = ax.lab[axis];
    int nd = ax.ndig[axis];
    if (nd < -1) nd = -1;
    out[0] = '\0';
    char raise = qqraisech(b), back = qqbackch(b);
    double val = logax ? std::pow(10.0, v) : v;
    switch (lab) {
    case 0: return 0;
    case 2:
    case 13:
    case 16:
        return qqexptxt(val, nd, lab == 2 ? 1 : lab == 13 ? 2 : 4, raise, back, out, QQ_LABLEN + 1);
    case 1:
    case 3:
    case 4:
    case 5:
        // On a logarithmic axis the logarithm form decides: powers of ten,
        // plain values, or the exponent alone.
        if (logax && ax.logfrm[axis] == 1) {
            char d[QQ_LABLEN + 1];
            qqfcha(v, nd, d, sizeof d, 0);
            char r[2] = {raise, 0}, bk[2] = {back, 0};
            qqscpy(out, "10", QQ_LABLEN);
            qqscat(out, r, QQ_LABLEN);
            qqscat(out, d, QQ_LABLEN);
            return qqscat(out, bk, QQ_LABLEN);
        }
        if (logax && ax.logfrm[axis] == 2) return qqfcha(val, nd, out, QQ_LABLEN + 1, 0);
        return qqfcha(v, nd, out, QQ_LABLEN + 1, 0);
    case 12: {
        int i = (int)idx;
        if (i < 1 || i > ax.nmylab[axis]) return 0;
        return qqscpy(out, ax.mylab[axis][i - 1], QQ_LABLEN);
    }
    case 6:
    case 7:
    case 8:
    case 15: return map_label(b, val, axis, lab, out);
    default:
        // FLOA, and the time and date kinds until they have their own form.
        return qqfcha(val, nd, out, QQ_LABLEN + 1, 0);
    }
}
