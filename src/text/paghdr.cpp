// The page header: a line of prefix, date, time, library version and
// suffix in a corner of the page.
#include <climits>
#include <cstdio>
#include <cstring>
#include <utility>

#include "core/filetime.h"
#include "core/guard.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "text/text.h"
#include "text/text_block.h"
#include "text/text_internal.h"

namespace {

// Page places from heights and lengths that a careless call may make huge:
// computed wide and kept within the integers of the page grid.
int sat(long long v) {
    return v > 2147483647LL ? 2147483647 : v < -2147483647LL ? -2147483647 : (int)v;
}

}  // namespace

void paghdr(const char *cstr1, const char *cstr2, int iopt, int idir) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("paghdr"));
    if (!b) return;
    int corner = iopt < 0 ? (iopt == INT_MIN ? INT_MAX : -iopt) : iopt;
    if (corner < 1 || corner > 4) {
        qqwarn(b, 2, iopt);
        corner = 1;
    }
    if (idir != 0 && idir != 1) {
        qqwarn(b, 2, idir);
        idir = 1;
    }
    // The same moment as the file's own date, so that identical programs
    // give identical pages.
    int tv[6];
    qqfiletime(tv);
    int day = tv[2], mon = tv[1], year = tv[0] % 10000;
    if (iopt < 0) std::swap(day, mon);
    char stamp[64];
    std::snprintf(stamp, sizeof stamp, "%02d.%02d.%04d, %02d:%02d:%02d, KOLVEX 11.5", day, mon, year,
                  tv[3], tv[4], tv[5] % 60);
    char text[133];
    text[0] = 0;
    qqscat(text, cstr1 ? cstr1 : "", 132);
    qqscat(text, " ", 132);
    qqscat(text, stamp, 132);
    qqscat(text, " ", 132);
    qqscat(text, cstr2 ? cstr2 : "", 132);

    TextState &t = b->txt;
    int h = qqnint(0.6 * t.height);
    if (h < 1) h = 1;
    long long len = qqtxtlenh(b, text, h);
    long long nxp = b->core.nxp, nyp = b->core.nyp;
    int ang = 0;
    long long x = 0, y = 0;
    if (idir == 0) {
        x = (corner == 1 || corner == 4) ? 100 : nxp - len - 100;
        y = (corner == 1 || corner == 2) ? nyp - h - 15 : 15;
    } else {
        switch (corner) {
        case 1: ang = 90, x = 15, y = nyp - 100; break;
        case 2: ang = 270, x = nxp - 15, y = nyp - len - 100; break;
        case 3: ang = 270, x = nxp - 15, y = 100; break;
        default: ang = 90, x = 15, y = len + 100; break;
        }
    }
    // the corners are page places: no justification
    int hj = t.hjus, vj = t.vjus;
    t.hjus = t.vjus = 0;
    qqmesshgt(b, text, sat(x), sat(y), h, ang);
    t.hjus = hj;
    t.vjus = vj;
}
