// The scan-line sweep of the hatching.
//
// The vertices are sorted by y once; an active list, walked from its head,
// holds the vertices that still have an edge reaching above the scan line,
// so each vertex is touched while its edges are crossed and then dropped:
// no scan line looks at the whole polygon.  Each edge counts for
// ymin <= y < ymax, so a vertex on the line is not taken twice and a
// horizontal edge never.
#include "plots/sweep.h"

#include <cmath>
#include <cstdlib>
#include <initializer_list>

#include "core/warnings.h"
#include "devices/device.h"
#include "plots/plot_block.h"

namespace {

enum { MAXCROSS = 100 };

// Stable merge sort of the indices 0 .. n-1 by y (ties keep input order).
void sort_by_y(const double *y, int n, int *order, int *tmp) {
    for (int i = 0; i < n; ++i) order[i] = i;
    // Short runs by insertion, then merges of doubling width.
    const int RUN = 16;
    for (int lo = 0; lo < n; lo += RUN) {
        int hi = lo + RUN < n ? lo + RUN : n;
        for (int i = lo + 1; i < hi; ++i) {
            int t = order[i], j = i;
            while (j > lo && y[order[j - 1]] > y[t]) {
                order[j] = order[j - 1];
                --j;
            }
            order[j] = t;
        }
    }
    int *src = order, *dst = tmp;
    for (int w = RUN; w < n; w *= 2) {
        for (int lo = 0; lo < n; lo += 2 * w) {
            int mid = lo + w < n ? lo + w : n, hi = lo + 2 * w < n ? lo + 2 * w : n;
            int i = lo, j = mid, k = lo;
            while (i < mid && j < hi) dst[k++] = y[src[j]] < y[src[i]] ? src[j++] : src[i++];
            while (i < mid) dst[k++] = src[i++];
            while (j < hi) dst[k++] = src[j++];
        }
        int *t = src;
        src = dst;
        dst = t;
    }
    if (src != order)
        for (int i = 0; i < n; ++i) order[i] = src[i];
}

void sort_small(double *v, int n) {
    for (int i = 1; i < n; ++i) {
        double t = v[i];
        int j = i;
        while (j > 0 && v[j - 1] > t) {
            v[j] = v[j - 1];
            --j;
        }
        v[j] = t;
    }
}

// Whether scan line k is drawn: the first bundle holds run - 1 lines, then
// gaps of gap lines and bundles of run lines take turns.
bool drawn(long long k, int run, int gap) {
    if (run <= 0 || k < run - 1) return true;
    long long p = (k - (run - 1)) % (run + gap);
    return p >= gap;
}

// The range of y in the rotated frame that the clip region covers, with a
// margin; false when it cannot be told.
bool clip_range(PlotBlock *b, const SweepLines &l, double *lo, double *hi) {
    const DeviceState &d = b->dev;
    double x1, y1, x2, y2;
    if (d.clpcir == 1) {
        x1 = d.ccx - d.ccr;
        x2 = d.ccx + d.ccr;
        y1 = d.ccy - d.ccr;
        y2 = d.ccy + d.ccr;
    } else {
        x1 = d.clpx1;
        y1 = d.clpy1;
        x2 = d.clpx2;
        y2 = d.clpy2;
    }
    // Hatch positions do not have the origin shift yet.
    x1 -= d.nxsh;
    x2 -= d.nxsh;
    y1 -= d.nysh;
    y2 -= d.nysh;
    const double cx[4] = {x1, x2, x2, x1}, cy[4] = {y1, y1, y2, y2};
    *lo = 1e300;
    *hi = -1e300;
    for (int k = 0; k < 4; ++k) {
        double v = cx[k] * l.s + cy[k] * l.c;
        if (v < *lo) *lo = v;
        if (v > *hi) *hi = v;
    }
    double m = 2.0 + std::fabs((double)d.lnwid) + l.d;
    *lo -= m;
    *hi += m;
    return std::isfinite(*lo) && std::isfinite(*hi);
}

}  // namespace

int *qqsweepwork(int n) noexcept {
    if (n < 1 || (size_t)n > ((size_t)-1) / (3 * sizeof(int))) return nullptr;
    return (int *)std::malloc(sizeof(int) * 3 * (size_t)n);
}

int qqsweep(PlotBlock *b, const double *x, const double *y, int n, const SweepLines &l,
            int *work) noexcept {
    if (n < 3 || !(l.d > 0) || !std::isfinite(l.d)) return 0;
    for (int i = 0; i < n; ++i)
        if (!std::isfinite(x[i]) || !std::isfinite(y[i])) return 0;
    int *order = work, *link = work + n, *tmp = work + 2 * n;
    sort_by_y(y, n, order, tmp);
    double ymin = y[order[0]], ymax = y[order[n - 1]];
    double d = l.d;
    double lo = ymin, hi = ymax;
    bool limited = l.limit && clip_range(b, l, &lo, &hi);
    if (!limited || lo < ymin) lo = ymin;
    if (!limited || hi > ymax) hi = ymax;
    if (lo > hi) return 0;
    // However fine the spacing, a sweep draws a bounded number of lines:
    // beyond that they are closer than any device shows.
    // Lines a tenth of a plot coordinate apart already look solid on every
    // device.
    const double MAXLINES = 400000;
    if (d < 0.1) d = 0.1;
    if ((hi - lo) / d > MAXLINES) d = (hi - lo) / MAXLINES;
    double first = std::trunc(ymin / d - 0.5) * d;
    double kend = std::floor((ymax + d / 2 - first) / d);
    double kbeg = 0;
    if (limited) {
        double a = std::floor((lo - first) / d) - 1, z = std::ceil((hi - first) / d) + 1;
        if (a > kbeg) kbeg = a;
        if (z < kend) kend = z;
    }
    if (!(kend >= kbeg) || !(kend - kbeg <= MAXLINES + 4)) return 0;
    for (int i = 0; i < n; ++i) link[i] = i + 1;
    link[n - 1] = -1;
    int head = 0;
    double cross[MAXCROSS];
    long long k0 = (long long)kbeg, k1 = (long long)kend;
    for (long long k = k0; k <= k1 && head != -1; ++k) {
        double yy = first + (double)k * d;
        int nc = 0, total = 0;
        int prev = -1, cur = head;
        while (cur != -1) {
            int v = order[cur];
            double yv = y[v];
            if (yv > yy) break;
            int p = v == 0 ? n - 1 : v - 1, q = v == n - 1 ? 0 : v + 1;
            double yp = y[p], yq = y[q];
            int next = link[cur];
            if ((yv >= yq && yv >= yp) || (yy >= yq && yy >= yp)) {
                if (prev == -1)
                    head = next;
                else
                    link[prev] = next;
                cur = next;
                continue;
            }
            if (yq > yy) {
                if (nc < MAXCROSS) cross[nc++] = x[v] + (x[q] - x[v]) * (yy - yv) / (yq - yv);
                ++total;
            }
            if (yp > yy) {
                if (nc < MAXCROSS) cross[nc++] = x[v] + (x[p] - x[v]) * (yy - yv) / (yp - yv);
                ++total;
            }
            prev = cur;
            cur = next;
        }
        if (total > MAXCROSS) {
            qqwarn(b, 26, total);
            return total;
        }
        if (nc < 2 || !drawn(k, l.run, l.gap)) continue;
        sort_small(cross, nc);
        // Equal neighbours cancel, as often as the cancelling brings new
        // equal neighbours together.
        int m = 0;
        for (int i = 0; i < nc; ++i) {
            if (m > 0 && cross[m - 1] == cross[i])
                --m;
            else
                cross[m++] = cross[i];
        }
        for (int i = 0; i + 1 < m; i += 2) {
            double xa = cross[i + 1], xb = cross[i];
            qqmove(b, xa * l.c + yy * l.s, -xa * l.s + yy * l.c);
            qqdraw(b, xb * l.c + yy * l.s, -xb * l.s + yy * l.c);
        }
    }
    return 0;
}

int qqsweepn(PlotBlock *b, const double *const *x, const double *const *y, const int *n, int npoly,
             double d, int maxcross, int inverted, double xleft, double xright,
             const SweepPen &pen) noexcept {
    if (npoly < 1 || maxcross < 1 || !(d > 0) || !std::isfinite(d)) return 0;
    // All vertices finite, and their count, for one allocation.
    size_t total = 0;
    double ymin = 1e300, ymax = -1e300;
    for (int p = 0; p < npoly; ++p) {
        if (n[p] < 3) continue;
        for (int i = 0; i < n[p]; ++i) {
            if (!std::isfinite(x[p][i]) || !std::isfinite(y[p][i])) return 0;
            if (y[p][i] < ymin) ymin = y[p][i];
            if (y[p][i] > ymax) ymax = y[p][i];
        }
        total += (size_t)n[p];
    }
    if (total == 0 || total > 0x3fffffff) return 0;
    int *work = (int *)std::malloc(sizeof(int) * (3 * total + 2 * (size_t)npoly));
    double *cross = (double *)std::malloc(sizeof(double) * ((size_t)maxcross + 1));
    if (!work || !cross) {
        std::free(work);
        std::free(cross);
        qqwar0(b, 53);
        return 0;
    }
    // Per polygon: its sorted order, its links and its list head.
    int *order = work, *link = work + total, *tmp = work + 2 * total;
    int *base = work + 3 * total, *head = base + npoly;
    size_t at = 0;
    for (int p = 0; p < npoly; ++p) {
        base[p] = (int)at;
        head[p] = -1;
        if (n[p] < 3) continue;
        sort_by_y(y[p], n[p], order + at, tmp);
        for (int i = 0; i < n[p]; ++i) link[at + i] = i + 1;
        link[at + n[p] - 1] = -1;
        head[p] = 0;
        at += (size_t)n[p];
    }
    const double MAXLINES = 400000;
    if (d < 0.1) d = 0.1;
    if ((ymax - ymin + d) / d > MAXLINES) d = (ymax - ymin + d) / MAXLINES;
    int result = 0;
    for (double k = 0;; ++k) {
        double yy = ymin - d / 2 + k * d;
        if (yy > ymax + d / 2) break;
        int nc = 0, count = 0;
        for (int p = 0; p < npoly; ++p) {
            if (head[p] == -1) continue;
            const double *px = x[p], *py = y[p];
            int m = n[p], *ord = order + base[p], *lnk = link + base[p];
            int prev = -1, cur = head[p];
            while (cur != -1) {
                int v = ord[cur];
                double yv = py[v];
                if (yv > yy) break;
                int a = v == 0 ? m - 1 : v - 1, c = v == m - 1 ? 0 : v + 1;
                int next = lnk[cur];
                if ((yv >= py[c] && yv >= py[a]) || (yy >= py[c] && yy >= py[a])) {
                    if (prev == -1)
                        head[p] = next;
                    else
                        lnk[prev] = next;
                    cur = next;
                    continue;
                }
                for (int w : {c, a})
                    if (py[w] > yy) {
                        if (nc < maxcross) cross[nc++] = px[v] + (px[w] - px[v]) * (yy - yv) / (py[w] - yv);
                        ++count;
                    }
                prev = cur;
                cur = next;
            }
        }
        if (count > maxcross) {
            qqwarn(b, 26, count);
            result = 1;
            break;
        }
        sort_small(cross, nc);
        int m = 0;
        for (int i = 0; i < nc; ++i) {
            if (m > 0 && cross[m - 1] == cross[i])
                --m;
            else
                cross[m++] = cross[i];
        }
        if (inverted) {
            double from = xleft;
            for (int i = 0; i + 1 < m; i += 2) {
                if (cross[i] > from) {
                    pen.move(b, from, yy);
                    pen.draw(b, cross[i], yy);
                }
                from = cross[i + 1];
            }
            if (xright > from) {
                pen.move(b, from, yy);
                pen.draw(b, xright, yy);
            }
        } else {
            for (int i = 0; i + 1 < m; i += 2) {
                pen.move(b, cross[i + 1], yy);
                pen.draw(b, cross[i], yy);
            }
        }
    }
    std::free(work);
    std::free(cross);
    return result;
}
