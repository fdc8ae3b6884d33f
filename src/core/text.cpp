#include "core/text.h"

#include <climits>
#include <cmath>
#include <cstring>

void qqupc(char *text) noexcept {
    for (; *text; ++text)
        if (*text >= 'a' && *text <= 'z') *text = (char)(*text - 'a' + 'A');
}

int qqscpy(char *dest, const char *source, int n) noexcept {
    int i = 0;
    for (; i < n && source[i]; ++i) dest[i] = source[i];
    dest[i] = '\0';
    return i;
}

int qqscat(char *dest, const char *source, int n) noexcept {
    int len = (int)std::strlen(dest);
    while (len < n && *source) dest[len++] = *source++;
    dest[len] = '\0';
    return len;
}

int qqicha(int value, char *dest, int size, int width, int zero) noexcept {
    if (size < 1) return 0;
    char digits[16];
    int nd = 0;
    long long v = value;
    bool neg = v < 0;
    if (neg) v = -v;
    do {
        digits[nd++] = (char)('0' + v % 10);
        v /= 10;
    } while (v && nd < 12);
    int len = 0;
    int total = nd + (neg ? 1 : 0);
    int pad = width > total ? width - total : 0;
    auto put = [&](char c) {
        if (len < size - 1) dest[len++] = c;
    };
    // Padding of either kind goes in front of the sign, so zero padding of
    // -5 to four places gives "00-5"; a caller that wants "-005" pads the
    // magnitude itself.
    for (int i = 0; i < pad; ++i) put(zero == 1 ? '0' : ' ');
    if (neg) put('-');
    while (nd) put(digits[--nd]);
    dest[len] = '\0';
    return len;
}

int qqfcha(double value, int decimals, char *dest, int size, int width) noexcept {
    if (size < 1) return 0;
    bool neg = value < 0;
    double x = std::fabs(value);
    if (decimals > 0) x *= std::pow(10.0, decimals);
    x = std::floor(x + 0.5);
    char digits[101];
    int nd = 0;
    if (!std::isfinite(x)) {
        // No digits to split: say what the value is.
        const char *word = value != value ? "NaN" : (neg ? "-Inf" : "Inf");
        int wl = (int)std::strlen(word), len = 0;
        for (int i = wl; i < width && len < size - 1; ++i) dest[len++] = ' ';
        for (int i = 0; i < wl && len < size - 1; ++i) dest[len++] = word[i];
        dest[len] = '\0';
        return len;
    }
    // Repeated division by ten, at most 100 digits.
    while (x >= 1.0 && nd < 100) {
        double q = std::floor(x / 10.0);
        int d = (int)(x - q * 10.0);
        if (d < 0) d = 0;
        if (d > 9) d = 9;
        digits[nd++] = (char)('0' + d);
        x = q;
    }
    if (nd == 0) digits[nd++] = '0';
    int dec = decimals;
    int len = 0;
    auto put = [&](char c) {
        if (len < size - 1) dest[len++] = c;
    };
    int own;
    if (dec >= 0 && nd <= dec)
        own = dec + (neg ? 1 : 0) + 2;
    else
        own = nd + (neg ? 1 : 0) + (dec >= 0 ? 1 : 0);
    if (width > 0)
        for (int i = own; i < width; ++i) put(' ');
    int signpos = len;
    if (neg) put('-');
    if (dec >= 0 && nd <= dec) {
        put('0');
        put('.');
        for (int i = nd; i < dec; ++i) put('0');
        for (int i = nd - 1; i >= 0; --i) put(digits[i]);
    } else {
        for (int i = nd - 1; i >= 0; --i) {
            put(digits[i]);
            if (dec >= 0 && i == dec) put('.');
        }
    }
    dest[len] = '\0';
    if (width == 0 && neg) {
        bool allzero = true;
        for (int i = 0; i < nd; ++i)
            if (digits[i] != '0') allzero = false;
        if (allzero && signpos < len && dest[signpos] == '-') {
            std::memmove(dest + signpos, dest + signpos + 1, (size_t)(len - signpos));
            --len;
        }
    }
    return len;
}

int qqiapp(char *dest, int value, int n) noexcept {
    char tmp[41];
    qqicha(value, tmp, 41, 0, 0);
    if (dest[0]) qqscat(dest, " ", n);
    return qqscat(dest, tmp, n);
}

int qqfapp(char *dest, double value, int decimals, int n) noexcept {
    char tmp[41];
    qqfcha(value, decimals, tmp, 41, 0);
    if (dest[0]) qqscat(dest, " ", n);
    return qqscat(dest, tmp, n);
}

int qqntok(const char *text, int k) noexcept {
    const char *p = text;
    auto blank = [](char c) { return c == ' ' || c == '\t'; };
    for (int group = 1;; ++group) {
        while (*p && blank(*p)) ++p;
        if (!*p) return 0;
        if (group == k) break;
        while (*p && !blank(*p)) ++p;
    }
    int sign = 1;
    if (*p == '-' || *p == '+') {
        if (*p == '-') sign = -1;
        ++p;
    }
    long long v = 0;
    for (; *p && !blank(*p) && *p != '\n'; ++p)
        if (*p >= '0' && *p <= '9' && v < 100000000000LL) v = v * 10 + (*p - '0');
    v *= sign;
    if (v > INT_MAX || v < INT_MIN) return INT_MIN;
    return (int)v;
}

int qqround(double v) noexcept {
    double r = std::trunc(v + 0.5);
    if (!(r >= (double)INT_MIN && r <= (double)INT_MAX)) return INT_MIN;
    return (int)r;
}

int qqnint(double v) noexcept {
    double r = v >= 0 ? std::trunc(v + 0.5) : std::trunc(v - 0.5);
    if (!(r >= (double)INT_MIN && r <= (double)INT_MAX)) return INT_MIN;
    return (int)r;
}
