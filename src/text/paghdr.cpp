// The page header: a line of prefix, date, time, library version and
// suffix in a corner of the page.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <utility>

#include "core/guard.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "text/text.h"
#include "text/text_internal.h"

namespace {

// The moment of the header: SOURCE_DATE_EPOCH (taken as UTC) when set to an
// integer, so that identical programs give identical pages; else local time.
void header_time(std::tm *out) {
    const char *env = std::getenv("SOURCE_DATE_EPOCH");
    if (env && *env) {
        char *end = nullptr;
        long long v = std::strtoll(env, &end, 10);
        if (end && *end == 0) {
            std::time_t t = (std::time_t)v;
            gmtime_r(&t, out);
            return;
        }
    }
    std::time_t now = std::time(nullptr);
    localtime_r(&now, out);
}

}  // namespace

void paghdr(const char *cstr1, const char *cstr2, int iopt, int idir) noexcept {
    glbblk *b = KX_ENTRY("paghdr");
    if (!b) return;
    int corner = iopt < 0 ? -iopt : iopt;
    if (corner < 1 || corner > 4) {
        qqwarn(b, 2, iopt);
        corner = 1;
    }
    if (idir != 0 && idir != 1) {
        qqwarn(b, 2, idir);
        idir = 1;
    }
    std::tm tmv;
    std::memset(&tmv, 0, sizeof tmv);
    header_time(&tmv);
    int day = tmv.tm_mday, mon = tmv.tm_mon + 1, year = (tmv.tm_year + 1900) % 10000;
    if (iopt < 0) std::swap(day, mon);
    char stamp[64];
    std::snprintf(stamp, sizeof stamp, "%02d.%02d.%04d, %02d:%02d:%02d, KOLVEX 11.5", day, mon, year,
                  tmv.tm_hour, tmv.tm_min, tmv.tm_sec % 60);
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
    int len = qqtxtlenh(b, text, h);
    int nxp = b->core.nxp, nyp = b->core.nyp;
    int ang = 0, x = 0, y = 0;
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
    qqmesshgt(b, text, x, y, h, ang);
    t.hjus = hj;
    t.vjus = vj;
}
