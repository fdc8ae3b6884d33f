#include "core/numfmt.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace {

int justify(char *dst, int size, const char *src, int len, int width, bool left) {
    if (size < 1) return 0;
    int pad = width > len ? width - len : 0;
    int out = 0;
    if (!left)
        for (int i = 0; i < pad && out < size - 1; ++i) dst[out++] = ' ';
    for (int i = 0; i < len && out < size - 1; ++i) dst[out++] = src[i];
    if (left)
        for (int i = 0; i < pad && out < size - 1; ++i) dst[out++] = ' ';
    dst[out] = '\0';
    return out;
}

int special(char *tmp, double v) {
    if (std::isnan(v)) {
        std::memcpy(tmp, std::signbit(v) ? "-nan" : "nan", std::signbit(v) ? 4 : 3);
        return std::signbit(v) ? 4 : 3;
    }
    std::memcpy(tmp, v < 0 ? "-inf" : "inf", v < 0 ? 4 : 3);
    return v < 0 ? 4 : 3;
}

}  // namespace

int qqfmtf(char *dst, int size, double v, int width, int prec) noexcept {
    char tmp[400];
    int len;
    if (!std::isfinite(v)) {
        len = special(tmp, v);
    } else {
        auto r = std::to_chars(tmp, tmp + sizeof tmp, v, std::chars_format::fixed, prec);
        len = r.ec == std::errc() ? (int)(r.ptr - tmp) : 0;
    }
    return justify(dst, size, tmp, len, width, false);
}

int qqfmte(char *dst, int size, double v, int width, int prec) noexcept {
    char tmp[64];
    int len;
    if (!std::isfinite(v)) {
        len = special(tmp, v);
    } else {
        auto r = std::to_chars(tmp, tmp + sizeof tmp, v, std::chars_format::scientific, prec);
        len = r.ec == std::errc() ? (int)(r.ptr - tmp) : 0;
    }
    return justify(dst, size, tmp, len, width, false);
}

int qqfmti(char *dst, int size, long long v, int width) noexcept {
    char tmp[32];
    auto r = std::to_chars(tmp, tmp + sizeof tmp, v);
    return justify(dst, size, tmp, (int)(r.ptr - tmp), width, true);
}

double qqatof(const char *text, char **end) noexcept {
    const char *p = text;
    bool plus = *p == '+';
    if (plus) ++p;
    double v = 0;
    auto r = std::from_chars(p, p + std::strlen(p), v, std::chars_format::general);
    if (r.ec == std::errc::invalid_argument || (plus && (*p == '-'))) {
        *end = const_cast<char *>(text);
        return 0;
    }
    *end = const_cast<char *>(r.ptr);
    return v;
}
