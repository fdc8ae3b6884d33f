// The grid tracer of the contour lines, shared by the drawing routines and
// conpts (and by the shading, which traces the same way).
//
// A grid of n by m values has z(i, j) at element i*m + j, i along x.  A
// line crosses a grid edge between a low point L (value at or below the
// level) and a high point H (value above it), and runs with the higher
// values on its right hand.  Every cell is split into four triangles around
// its centre, which carries the mean of the corners; that decides saddles.
//
// The sink receives, in user coordinates, sink.open() before each line and
// sink.point(x, y) for every crossing.  A grid value that is not a number
// (NaN or infinite) makes a hole: no line enters a cell with such a corner;
// lines that end at a hole are found from the hole's border.
//
// Memory: two bit tables of n*m + 1 bits for one level (the edge marks
// and the interior's starting edges); nothing per point.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// Coordinates of grid points: vectors (contur, conpts) or matrices (contur2).
struct ConGrid {
    const double *x, *y, *z;
    int n, m;
    bool matrix;
};

namespace qqcon {

// The edge marks: grid point (i, j) is bit j*n + i + 1.
struct Bits {
    uint64_t *w = nullptr;
    size_t nw = 0;
    bool alloc(size_t nbits) {
        nw = nbits / 64 + 1;
        w = (uint64_t *)std::calloc(nw, sizeof(uint64_t));
        return w != nullptr;
    }
    ~Bits() { std::free(w); }
    // action 1 sets the bit; the answer is whether it was set before.
    bool test(size_t k, int action) {
        uint64_t mask = (uint64_t)1 << (k & 63);
        bool was = (w[k >> 6] & mask) != 0;
        if (action) w[k >> 6] |= mask;
        return was;
    }
};

template <class Sink> struct Tracer {
    const ConGrid &g;
    double lev;
    bool pts;  // conpts: only the first of the two closeness tests
    Sink &sink;
    Bits marks;

    double z(int i, int j) const { return g.z[(size_t)i * g.m + j]; }
    double xc(int i, int j) const { return g.matrix ? g.x[(size_t)i * g.m + j] : g.x[i]; }
    double yc(int i, int j) const { return g.matrix ? g.y[(size_t)i * g.m + j] : g.y[j]; }
    size_t bit(int i, int j) const { return (size_t)j * g.n + i + 1; }

    // The crossing between a point a in the role of H and a point b.
    void cross(double za, double xa, double ya, double zb, double xb, double yb) {
        double d = za - zb;
        if (std::fabs(d) < 1e-35 || (!pts && std::fabs(za - lev) < 1e-35)) {
            sink.point(xa, ya);
            return;
        }
        double t = (za - lev) / d;
        sink.point(xa - t * (xa - xb), ya - t * (ya - yb));
    }
    void cross_grid(int hi, int hj, int li, int lj) {
        cross(z(hi, hj), xc(hi, hj), yc(hi, hj), z(li, lj), xc(li, lj), yc(li, lj));
    }

    void trace(int li, int lj, int hi, int hj) {
        sink.open();
        const int n = g.n, m = g.m;
        for (;;) {
            cross_grid(hi, hj, li, lj);
            int dx = hi - li, dy = hj - lj;
            if (dx == 1 && dy == 0 && marks.test(bit(hi, hj), 1)) return;
            // The next cell lies to the left of the direction L to H.
            int ox, oy;
            if (dx == 1) ox = 0, oy = 1;
            else if (dy == 1) ox = -1, oy = 0;
            else if (dx == -1) ox = 0, oy = -1;
            else ox = 1, oy = 0;
            int ni = li + ox, nj = lj + oy, mi = hi + ox, mj = hj + oy;
            if (ni < 0 || ni >= n || nj < 0 || nj >= m) return;
            double zl = z(li, lj), zh = z(hi, hj), zn = z(ni, nj), zm = z(mi, mj);
            if (!finite(zn) || !finite(zm)) return;  // a hole ends the line
            double c = (zl + zh + zn + zm) / 4;
            double cx, cy;
            if (g.matrix) {
                cx = (xc(li, lj) + xc(hi, hj) + xc(ni, nj) + xc(mi, mj)) / 4;
                cy = (yc(li, lj) + yc(hi, hj) + yc(ni, nj) + yc(mi, mj)) / 4;
            } else {
                cx = (xc(hi, hj) + xc(ni, nj)) / 2;
                cy = (yc(hi, hj) + yc(ni, nj)) / 2;
            }
            if (c > lev) {
                cross(c, cx, cy, zl, xc(li, lj), yc(li, lj));
                if (zn > lev) {
                    hi = ni, hj = nj;
                } else {
                    cross(c, cx, cy, zn, xc(ni, nj), yc(ni, nj));
                    if (zm > lev) {
                        li = ni, lj = nj, hi = mi, hj = mj;
                    } else {
                        cross(c, cx, cy, zm, xc(mi, mj), yc(mi, mj));
                        li = mi, lj = mj;
                    }
                }
            } else {
                cross(zh, xc(hi, hj), yc(hi, hj), c, cx, cy);
                if (!(zm > lev)) {
                    li = mi, lj = mj;
                } else {
                    cross(zm, xc(mi, mj), yc(mi, mj), c, cx, cy);
                    if (!(zn > lev)) {
                        li = ni, lj = nj, hi = mi, hj = mj;
                    } else {
                        cross(zn, xc(ni, nj), yc(ni, nj), c, cx, cy);
                        hi = ni, hj = nj;
                    }
                }
            }
        }
    }

    static bool finite(double v) { return std::fabs(v) <= 1.7976931348623157e308; }
    bool starts(int li, int lj, int hi, int hj) const {
        double zl = z(li, lj), zh = z(hi, hj);
        return zl <= lev && zh > lev && finite(zl) && finite(zh);
    }

    // A cell (by its lower left corner) that a line may pass: inside the
    // grid, no corner a hole.
    bool cell_ok(int i, int j) const {
        if (i < 0 || j < 0 || i >= g.n - 1 || j >= g.m - 1) return false;
        return finite(z(i, j)) && finite(z(i + 1, j)) && finite(z(i, j + 1)) && finite(z(i + 1, j + 1));
    }

    // Lines that come out of a hole: edges between a hole cell and a cell
    // that can be passed, oriented so that the passable cell is the next.
    void hole_starts() {
        const int n = g.n, m = g.m;
        for (int j = 0; j < m; ++j)
            for (int i = 0; i + 1 < n; ++i) {
                // x edge (i, j)-(i+1, j): cell above (i, j), below (i, j-1)
                bool up = cell_ok(i, j), down = cell_ok(i, j - 1);
                bool uphole = j < m - 1 && !up, downhole = j > 0 && !down;
                if (up && downhole && starts(i, j, i + 1, j) && !marks.test(bit(i + 1, j), 0))
                    trace(i, j, i + 1, j);
                else if (down && uphole && starts(i + 1, j, i, j))
                    trace(i + 1, j, i, j);
            }
        for (int i = 0; i < n; ++i)
            for (int j = 0; j + 1 < m; ++j) {
                // y edge (i, j)-(i, j+1): cell left (i-1, j), right (i, j)
                bool left = cell_ok(i - 1, j), right = cell_ok(i, j);
                bool lhole = i > 0 && !left, rhole = i < n - 1 && !right;
                if (left && rhole && starts(i, j, i, j + 1))
                    trace(i, j, i, j + 1);
                else if (right && lhole && starts(i, j + 1, i, j))
                    trace(i, j + 1, i, j);
            }
    }

    // Traces every line of the level; false when the memory for the bit
    // tables is not there.
    bool run() {
        const int n = g.n, m = g.m;
        size_t nbits = (size_t)n * (size_t)m + 1;
        Bits cand;
        if (!marks.alloc(nbits) || !cand.alloc(nbits)) return false;
        // The boundary, counter-clockwise.
        for (int i = 1; i < n; ++i)
            if (starts(i - 1, 0, i, 0)) trace(i - 1, 0, i, 0);
        for (int j = 1; j < m; ++j)
            if (starts(n - 1, j - 1, n - 1, j)) trace(n - 1, j - 1, n - 1, j);
        for (int i = n - 2; i >= 0; --i)
            if (starts(i + 1, m - 1, i, m - 1)) trace(i + 1, m - 1, i, m - 1);
        for (int j = m - 2; j >= 0; --j)
            if (starts(0, j + 1, 0, j)) trace(0, j + 1, 0, j);
        // One pass over the matrix in its storage order finds the interior
        // edges that may start a line and whether any value is a hole.  Two
        // values are tested at once without branches; starting edges are
        // few, so the branch on the two results is nearly always the same.
        // They go into a bit table numbered as the marks, row by row.
        const double big = 1.7976931348623157e308;
        bool holes = false;
        auto edge = [&](int i, int j, double zl, double zh) {
            if (!(zh - zh == 0.0)) holes = true;
            if (j >= 1 && j <= m - 2 && zl <= lev && zh > lev && zl >= -big && zh <= big)
                cand.test(bit(i, j), 1);
        };
        for (int j = 0; j < m; ++j)
            if (!(g.z[j] - g.z[j] == 0.0)) holes = true;
        for (int i = 1; i < n; ++i) {
            const double *zh = g.z + (size_t)i * m, *zl = zh - m;
            int j = 0;
#if defined(__SSE2__)
            const __m128d vl = _mm_set1_pd(lev), vb = _mm_set1_pd(big), vnb = _mm_set1_pd(-big),
                          zero = _mm_setzero_pd();
            for (; j + 2 <= m; j += 2) {
                __m128d a = _mm_loadu_pd(zl + j), h = _mm_loadu_pd(zh + j);
                __m128d c = _mm_and_pd(_mm_and_pd(_mm_cmple_pd(a, vl), _mm_cmpgt_pd(h, vl)),
                                       _mm_and_pd(_mm_cmpge_pd(a, vnb), _mm_cmple_pd(h, vb)));
                __m128d bad = _mm_cmpneq_pd(_mm_sub_pd(h, h), zero);
                if (_mm_movemask_pd(_mm_or_pd(c, bad))) {
                    edge(i, j, zl[j], zh[j]);
                    edge(i, j + 1, zl[j + 1], zh[j + 1]);
                }
            }
#endif
            for (; j < m; ++j) edge(i, j, zl[j], zh[j]);
        }
        if (holes) hole_starts();
        // The interior, in the order of the rows.
        for (size_t k = 0; k < cand.nw; ++k) {
            uint64_t w = cand.w[k];
            while (w) {
                int b = __builtin_ctzll(w);
                w &= w - 1;
                size_t idx = k * 64 + (size_t)b - 1;
                int i = (int)(idx % (size_t)n), j = (int)(idx / (size_t)n);
                if (!marks.test(idx + 1, 0)) trace(i - 1, j, i, j);
            }
        }
        return true;
    }
};

}  // namespace qqcon
