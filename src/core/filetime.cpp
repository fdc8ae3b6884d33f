#include "core/filetime.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

// The value of SOURCE_DATE_EPOCH when it is an integer that time_t holds.
bool fixed_epoch(std::time_t *out) {
    const char *text = std::getenv("SOURCE_DATE_EPOCH");
    if (!text || !*text) return false;
    char *end = nullptr;
    errno = 0;
    long long v = std::strtoll(text, &end, 10);
    if (errno != 0 || *end != '\0') return false;
    *out = (std::time_t)v;
    return (long long)*out == v;
}

}  // namespace

int qqfiletime(int t[6]) noexcept {
    std::time_t when = 0;
    bool fixed = fixed_epoch(&when);
    if (!fixed) when = std::time(nullptr);
    std::tm tmv;
    std::memset(&tmv, 0, sizeof tmv);
    if (!(fixed ? gmtime_r(&when, &tmv) : localtime_r(&when, &tmv)))
        std::memset(&tmv, 0, sizeof tmv);
    t[0] = (tmv.tm_year + 1900) % 10000;
    t[1] = tmv.tm_mon + 1;
    t[2] = tmv.tm_mday;
    t[3] = tmv.tm_hour;
    t[4] = tmv.tm_min;
    t[5] = tmv.tm_sec % 60;
    return fixed ? 1 : 0;
}
