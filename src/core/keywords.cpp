#include "core/keywords.h"

#include <initializer_list>

#include "core/core_block.h"
#include "core/warnings.h"

void qqkeyword(const char *word, char *out) noexcept {
    int i = 0;
    if (word)
        for (; i < 4 && word[i]; ++i) {
            char c = word[i];
            out[i] = (c >= 'a' && c <= 'z') ? (char)(c - 'a' + 'A') : c;
        }
    for (; i < 4; ++i) out[i] = ' ';
    out[4] = '\0';
}

int qqkeyq(const char *list, int count, const char *word) noexcept {
    char key[5];
    qqkeyword(word, key);
    for (int i = 0; i < count; ++i) {
        const char *k = list + 5 * i;
        // The blanks that pad a short keyword take any character, so that
        // "Offset" is OFF as "LANDSCAPE" is LAND; no list has a keyword
        // that would shadow a later one this way.
        bool same = true;
        for (int j = 0; j < 4 && same; ++j) {
            char c = k[j];
            if (c >= 'a' && c <= 'z') c = (char)(c - 'a' + 'A');
            same = c == ' ' || c == key[j];
        }
        if (same) return i + 1;
    }
    return 0;
}

int qqkey(CoreBlock *b, const char *list, int count, const char *word) noexcept {
    int k = qqkeyq(list, count, word);
    if (k == 0) qqwarc(b, 2, word ? word : "");
    return k;
}

int qqchki(CoreBlock *b, int value, int low, int high) noexcept {
    if (value < low || (low <= high && value > high)) {
        qqwarn(b, 2, value);
        return 1;
    }
    return 0;
}

int qqchkrect(CoreBlock *b, int nx, int ny, int nw, int nh) noexcept {
    if (nx >= 0 && ny >= 0 && nw >= 1 && nh >= 1) return 0;
    int bad = 0x7fffffff;
    for (int v : {nx, ny})
        if (v < 0 && v < bad) bad = v;
    for (int v : {nw, nh})
        if (v < 1 && v < bad) bad = v;
    qqwarn(b, 2, bad);
    return 1;
}

int qqkeyopt(CoreBlock *b, const char *option, const char *copt, const char *list, int count,
             const char *cval) noexcept {
    if (qqkey(b, option, 1, copt) == 0) return 0;
    return qqkey(b, list, count, cval);
}
