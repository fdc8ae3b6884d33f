// The end-of-session banner.
#include <cstdio>
#include <cstring>
#include <ctime>

#include "core/core_block.h"
#include "core/numfmt.h"
#include "core/session.h"
#include "core/text.h"

namespace {

struct Text {
    char *out;
    int size, len = 0;
    void add(const char *s) {
        while (*s && len < size - 1) out[len++] = *s++;
        out[len] = '\0';
    }
    void addn(const char *s, int n) {
        for (int i = 0; i < n && s[i] && len < size - 1; ++i) out[len++] = s[i];
        out[len] = '\0';
    }
    // "%-Ns"
    void left(const char *s, int width) {
        int n = (int)std::strlen(s);
        add(s);
        for (int i = n; i < width && len < size - 1; ++i) out[len++] = ' ';
        out[len] = '\0';
    }
    // "%Ns"
    void right(const char *s, int width) {
        int n = (int)std::strlen(s);
        for (int i = n; i < width && len < size - 1; ++i) out[len++] = ' ';
        add(s);
    }
    void rule() {
        add(" ");
        for (int i = 0; i < 66; ++i) add("<");
    }
};

}  // namespace

int qqbanner(CoreBlock *b, int flag, char *out, int size) noexcept {
    // The whole banner is limited to 650 characters.
    if (size > 651) size = 651;
    Text t{out, size};
    out[0] = '\0';
    std::time_t now = std::time(nullptr);
    std::tm tmv;
    localtime_r(&now, &tmv);
    char date[16], clock[16], num[32];
    std::snprintf(date, sizeof date, "%02d.%02d.%04d", tmv.tm_mday % 100, (tmv.tm_mon + 1) % 100,
                  (tmv.tm_year + 1900) % 10000);
    std::snprintf(clock, sizeof clock, "%02d:%02d:%02d", tmv.tm_hour % 100, tmv.tm_min % 100,
                  tmv.tm_sec % 100);

    t.add("\n");
    t.rule();
    t.add("\n <<                END OF KOLVEX / VERSION ");
    qqfmtf(num, sizeof num, 11.5, 4, 1);
    t.add(num);
    t.add(".2 ");
    t.add("               <<");
    t.add("\n <<  Date    : ");
    t.right(date, 10);
    t.add("  Time    : ");
    t.right(clock, 8);
    t.add("  Pageformat: ");
    t.right(b->core.pagnam, 4);
    t.add("  <<");
    t.add("\n <<  Vectors : ");
    qqfmti(num, sizeof num, b->sess.nvec, 0);
    t.left(num, 10);
    t.add("  Warnings: ");
    qqfmti(num, sizeof num, b->diag.nwarn, 0);
    t.left(num, 8);
    t.add("  Fileformat: ");
    t.right(b->sess.devkey, 4);
    t.add("  <<");
    if (b->diag.nnan > 0) {
        t.add("\n <<  NaN     : ");
        qqfmti(num, sizeof num, b->diag.nnan, 0);
        t.left(num, 48);
        t.add("  <<");
    }
    char line[80];
    if (flag != 10) {
        qqscpy(line, "Metafile: ", 10);
        if (flag % 10 == 1) qqscat(line, b->sess.fname, 10 + 48);
        t.add("\n <<  ");
        t.left(line, 58);
        t.add("  <<");
    }
    if (flag >= 10) {
        qqscpy(line, "Err-file: ", 10);
        qqscat(line, b->diag.errnam, 10 + 48);
        t.add("\n <<  ");
        t.left(line, 58);
        t.add("  <<");
    }
    t.add("\n");
    t.rule();
    t.add("\n\n");
    return t.len;
}
