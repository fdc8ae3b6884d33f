// Filled shapes on the canvas: the polygon scan converter, discs,
// rectangles and single pixels.
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "raster/canvas.h"
#include "raster/paint.h"
#include "raster/primitives.h"

namespace raster {

namespace {

// The half widths of the rows of the disc last drawn on this thread: a
// curve of markers draws the same disc thousands of times.
enum { DISC_ROWS = 64 };
struct DiscRows {
    int r = -1;
    double d[DISC_ROWS + 1];
};
thread_local DiscRows t_disc;

const double *disc_rows(int r) {
    DiscRows &c = t_disc;
    if (c.r != r) {
        for (int i = 0; i <= r; ++i) c.d[i] = i == 0 ? 0.0 : std::sqrt(2.0 * r * i - (double)i * i);
        c.r = r;
    }
    return c.d;
}

}  // namespace

template <class Pen>
void paint_disc(const Painter<Pen> &p, int x, int y, int r, int mode) {
    if (r < 0) return;
    if (r <= DISC_ROWS && x - r >= 0 && x - r - 1 >= p.x0 && x + r + 1 <= p.x1 &&
        y - r >= p.y0 && y + r <= p.y1) {
        // Wholly inside the clip: no row needs cutting.  Every half width
        // is at most r, so each row stays within x - r and x + r + 1, and
        // every position is positive: the conversion truncates as trunc.
        const double *rows = disc_rows(r);
        for (int i = 0; i <= r; ++i) {
            double d = rows[i];
            int xa = (int)(x - d + 0.5), xb = (int)(x + d + 0.5);
            p.pen.run(p.at(xa, y - r + i), xb - xa + 1);
            if (mode == 0) p.pen.run(p.at(xa, y + r - i), xb - xa + 1);
        }
        return;
    }
    for (int i = 0; i <= r; ++i) {
        double d = i == 0 ? 0.0 : std::sqrt(2.0 * r * i - (double)i * i);
        int xa = (int)std::trunc(x - d + 0.5), xb = (int)std::trunc(x + d + 0.5);
        p.span(y - r + i, xa, xb);
        if (mode == 0) p.span(y + r - i, xa, xb);
    }
}

namespace {

enum { MAXCROSS = 99 };

void sort_small(int *v, int n) {
    for (int i = 1; i < n; ++i) {
        int t = v[i], j = i;
        while (j > 0 && v[j - 1] > t) {
            v[j] = v[j - 1];
            --j;
        }
        v[j] = t;
    }
}

}  // namespace

// A vertex of the polygon in pixels.
struct Vertices {
    const double *x, *y, *m;
    double px(int i) const { return m ? m[0] * x[i] + m[1] * y[i] + m[2] : x[i]; }
    double py(int i) const { return m ? m[3] * x[i] + m[4] * y[i] + m[5] : y[i]; }
};

namespace {

// The crossing of edge i with row yy, or false when the edge does not
// reach the row: an edge counts for the rows above its lower end up to
// and with its upper end, so that a horizontal edge never counts.
inline bool edge_cross(const Vertices &v, int i, int n, double yy, int *xout) {
    int j = i + 1 == n ? 0 : i + 1;
    double yi = v.py(i), yj = v.py(j);
    if (!((yy > yi && yj >= yy) || (yi >= yy && yy > yj))) return false;
    double xi = v.px(i), xj = v.px(j);
    double xc = std::fabs(yi - yj) < 0.01 ? xi + 0.5 : xi + (xj - xi) * (yy - yi) / (yj - yi) + 0.5;
    if (!(xc > -1e9)) xc = -1e9;  // NaN too
    if (xc > 1e9) xc = 1e9;
    *xout = (int)std::trunc(xc);
    return true;
}

template <class Pen>
void fill_pairs(const Painter<Pen> &p, int row, int *cross, int nc) {
    sort_small(cross, nc);
    for (int k = 0; k + 1 < nc; k += 2) {
        int xa = cross[k], xb = cross[k + 1];
        if (xb < p.x0 || xa > p.x1) continue;
        p.span(row, xa, xb);
    }
}

// One row by testing every edge in polygon order: the reference rule,
// also for rows with more crossings than the table holds.
template <class Pen>
int full_row(const Painter<Pen> &p, const Vertices &v, int n, int row) {
    int cross[MAXCROSS];
    int nc = 0, overflow = 0, xc;
    for (int i = 0; i < n; ++i) {
        if (!edge_cross(v, i, n, row, &xc)) continue;
        if (nc == MAXCROSS) {
            overflow = 1;
            continue;
        }
        cross[nc++] = xc;
    }
    fill_pairs(p, row, cross, nc);
    return overflow;
}

// Polygons of many points: the edges enter an active list at their first
// row and leave it after their last, so a row costs what crosses it.
// Returns -1 when the work memory is not there.
template <class Pen>
int active_edges(const Painter<Pen> &p, const Vertices &v, int n, int ya, int yb) {
    size_t rows = (size_t)(yb - ya) + 2;
    int *first = (int *)std::malloc(sizeof(int) * (2 * (size_t)n + rows + 1));
    if (!first) return -1;
    int *order = first + n, *start = order + n;  // start: rows + 1 counters
    int *active = first;  // reuses the first rows once the edges are sorted
    for (size_t r = 0; r <= rows; ++r) start[r] = 0;
    // First and last row of each edge, cut to the rows that are filled.
    for (int i = 0; i < n; ++i) {
        int j = i + 1 == n ? 0 : i + 1;
        double yi = v.py(i), yj = v.py(j);
        double lo = yi < yj ? yi : yj, hi = yi < yj ? yj : yi;
        double r0 = std::floor(lo) + 1, r1 = std::floor(hi);
        if (!(r0 <= r1) || r1 < ya || r0 > yb) {
            first[i] = -1;
            continue;
        }
        int a = r0 < ya ? ya : (int)r0;
        first[i] = a - ya;
        start[a - ya + 1]++;
    }
    for (size_t r = 1; r <= rows; ++r) start[r] += start[r - 1];
    for (int i = 0; i < n; ++i)
        if (first[i] >= 0) order[start[first[i]]++] = i;
    // start[r] now ends row r's edges: the edges of row r are
    // order[start[r - 1] .. start[r]).
    int nact = 0, next = 0, overflow = 0, xc;
    int cross[MAXCROSS];
    for (int row = ya; row <= yb; ++row) {
        int end = start[row - ya];
        while (next < end) active[nact++] = order[next++];
        int nc = 0;
        bool full = false;
        for (int k = 0; k < nact;) {
            int i = active[k], j = i + 1 == n ? 0 : i + 1;
            double yi = v.py(i), yj = v.py(j);
            if ((yi > yj ? yi : yj) < row) {  // past its last row
                active[k] = active[--nact];
                continue;
            }
            if (edge_cross(v, i, n, row, &xc)) {
                if (nc == MAXCROSS)
                    full = true;
                else
                    cross[nc++] = xc;
            }
            ++k;
        }
        if (full) {
            // The table keeps the first crossings in the polygon's order:
            // the edges of the lowest numbers, found with a bounded heap.
            int heap[MAXCROSS], nh = 0;
            for (int k = 0; k < nact; ++k) {
                int i = active[k];
                if (!edge_cross(v, i, n, row, &xc)) continue;
                if (nh < MAXCROSS) {
                    heap[nh++] = i;
                    std::push_heap(heap, heap + nh);
                } else if (i < heap[0]) {
                    std::pop_heap(heap, heap + nh);
                    heap[nh - 1] = i;
                    std::push_heap(heap, heap + nh);
                }
            }
            nc = 0;
            for (int k = 0; k < nh; ++k)
                if (edge_cross(v, heap[k], n, row, &xc)) cross[nc++] = xc;
            overflow = 1;
        }
        fill_pairs(p, row, cross, nc);
    }
    std::free(first);
    return overflow;
}

}  // namespace

template <class Pen>
int paint_polygon(const Painter<Pen> &p, const double *xs, const double *ys, int n,
                  const double *m) {
    if (n < 2) return 0;
    Vertices v{xs, ys, m};
    double ymin = v.py(0), ymax = ymin;
    for (int i = 1; i < n; ++i) {
        double yi = v.py(i);
        if (yi < ymin) ymin = yi;
        if (yi > ymax) ymax = yi;
    }
    if (!(ymin >= -1e9 && ymax <= 1e9)) return 0;  // NaN or far away: nothing sensible to fill
    int ya = (int)std::trunc(ymin + 0.5), yb = (int)std::trunc(ymax + 0.5);
    if (ya < p.y0) ya = p.y0;
    if (yb > p.y1) yb = p.y1;
    if (ya > yb) return 0;
    // A few rows of a small polygon are cheaper without the edge list.
    if ((long long)n * (yb - ya + 1) > 4096) {
        int r = active_edges(p, v, n, ya, yb);
        if (r >= 0) return r;
    }
    int overflow = 0;
    for (int row = ya; row <= yb; ++row) overflow |= full_row(p, v, n, row);
    return overflow;
}

template void paint_disc<IndexPen>(const Painter<IndexPen> &, int, int, int, int);
template void paint_disc<RgbPen>(const Painter<RgbPen> &, int, int, int, int);
template int paint_polygon<IndexPen>(const Painter<IndexPen> &, const double *, const double *, int,
                                     const double *);
template int paint_polygon<RgbPen>(const Painter<RgbPen> &, const double *, const double *, int,
                                   const double *);

}  // namespace raster

using raster::IndexPen;
using raster::Painter;
using raster::RgbPen;

int qqcfillm(qqcanvas *cv, const double *x, const double *y, int n, const double m[6]) noexcept {
    if (!cv->pix) return 0;
    qqcflush(cv);
    if (cv->rgbcnv) return raster::paint_polygon(Painter<RgbPen>(*cv, RgbPen(*cv)), x, y, n, m);
    return raster::paint_polygon(Painter<IndexPen>(*cv, IndexPen(*cv)), x, y, n, m);
}

int qqcfill(qqcanvas *cv, const double *x, const double *y, int n) noexcept {
    return qqcfillm(cv, x, y, n, nullptr);
}

void qqcdisc(qqcanvas *cv, int x, int y, int r, int mode) noexcept {
    if (cv->rgbcnv)
        raster::paint_disc(Painter<RgbPen>(*cv, RgbPen(*cv)), x, y, r, mode);
    else
        raster::paint_disc(Painter<IndexPen>(*cv, IndexPen(*cv)), x, y, r, mode);
}

namespace {

// A rectangle that the clip has not cut yet is cut to the canvas at least:
// a caller that switched clipping off still may not write outside it.
template <class Pen>
void fill_rect(qqcanvas &cv, Pen pen, int x1, int y1, int x2, int y2) {
    Painter<Pen> p(cv, pen);
    if (!cv.clipon) {
        p.x0 = 0;
        p.y0 = 0;
        p.x1 = cv.cw - 1;
        p.y1 = cv.ch - 1;
    }
    p.rect(x1 < x2 ? x1 : x2, y1 < y2 ? y1 : y2, x1 < x2 ? x2 : x1, y1 < y2 ? y2 : y1);
}

}  // namespace

void qqcrect(qqcanvas *cv, int x1, int y1, int x2, int y2, int colour) noexcept {
    qqcflush(cv);
    unsigned char q[4];
    qqcresolve(cv, colour, q);
    if (cv->rgbcnv)
        fill_rect(*cv, RgbPen(q, 0), x1, y1, x2, y2);
    else
        fill_rect(*cv, IndexPen(q[0], 0), x1, y1, x2, y2);
}

void qqcpixel(qqcanvas *cv, int x, int y, int colour) noexcept {
    qqcflush(cv);
    if (x < cv->clipx0 || x > cv->clipx1 || y < cv->clipy0 || y > cv->clipy1) return;
    unsigned char q[4];
    qqcresolve(cv, colour, q);
    unsigned char *p = cv->pix + (size_t)y * (size_t)cv->rowb;
    if (cv->rgbcnv) {
        for (int k = 0; k < 4; ++k) p[(size_t)x * 4 + k] = q[k];
    } else {
        p[x] = q[0];
    }
}
