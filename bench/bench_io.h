// What the C++ sides of the benchmarks share: reading the points that the
// Python side wrote, and the clock.
#pragma once

#include <chrono>
#include <cstdio>
#include <vector>

namespace bench {

// The pairs of a file of raw (x, y) values of type T, flattened; empty when
// the file cannot be read.
template <class T>
std::vector<T> read_pairs(const char *name) {
    std::vector<T> v;
    FILE *fp = std::fopen(name, "rb");
    if (!fp) return v;
    T pair[2];
    while (std::fread(pair, sizeof pair, 1, fp) == 1) {
        v.push_back(pair[0]);
        v.push_back(pair[1]);
    }
    std::fclose(fp);
    return v;
}

inline double seconds_since(std::chrono::steady_clock::time_point t0) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

}  // namespace bench
