// The helpers that only compute: the interpolating spline, Bezier curves,
// histograms and the regression line.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "plots/curves.h"
#include "plots/plot_block.h"

namespace {

// The last knots stand a little behind the last abscissa, so that it falls
// inside the last knot interval and needs no special case.
constexpr double kKnotPad = 1.0000000116860974e-7;

// The knot interval l (k - 1 <= l <= n - 1) with t[l] <= s < t[l + 1].
int find_interval(const double *t, int n, int k, double s, int hint) {
    int l = hint < k - 1 ? k - 1 : hint;
    while (l < n - 1 && s >= t[l + 1]) ++l;
    while (l > k - 1 && s < t[l]) --l;
    return l;
}

// The k B-splines that are not zero at s, for the interval l.
void basis(const double *t, int k, int l, double s, double *nb, double *left, double *right) {
    nb[0] = 1.0;
    for (int j = 1; j < k; ++j) {
        left[j] = s - t[l + 1 - j];
        right[j] = t[l + j] - s;
        double saved = 0.0;
        for (int r = 0; r < j; ++r) {
            double den = right[r + 1] + left[j - r];
            double temp = den != 0.0 ? nb[r] / den : 0.0;
            nb[r] = saved + right[r + 1] * temp;
            saved = left[j - r] * temp;
        }
        nb[j] = saved;
    }
}

// The value of the spline with coefficients c at s (de Boor).
double de_boor(const double *t, const double *c, int k, int l, double s, double *d) {
    for (int i = 0; i < k; ++i) d[i] = c[l - k + 1 + i];
    for (int r = 1; r < k; ++r)
        for (int j = k - 1; j >= r; --j) {
            double t0 = t[j + l - k + 1], t1 = t[j + 1 + l - r];
            double a = t1 != t0 ? (s - t0) / (t1 - t0) : 0.0;
            d[j] = (1.0 - a) * d[j - 1] + a * d[j];
        }
    return d[k - 1];
}

}  // namespace

int qqspline(const double *x, const double *y, int n, int k, int mode, int npts, bool logx,
             double *xs, double *ys) noexcept {
    if (n < k) return 31;
    if (mode == 0)
        for (int i = 1; i < n; ++i)
            if (!(x[i] > x[i - 1])) return 32;
    const int w = 2 * k - 1;
    // One block: the band, the abscissae, two right-hand sides (which
    // become the coefficients), the knots, and the small work rows.
    size_t need = (size_t)w * n + 3 * (size_t)n + (size_t)n + 20 + 4 * (size_t)k;
    double *mem = (double *)std::calloc(need, sizeof(double));
    if (!mem) return 53;
    double *band = mem;
    double *u = band + (size_t)w * n;
    double *cx = u + n;
    double *cy = cx + n;
    double *t = cy + n;  // n + k knots (n + 20 reserved)
    double *nb = t + n + 20;
    double *left = nb + k, *right = left + k, *dw = right + k;

    if (mode == 0) {
        std::memcpy(u, x, sizeof(double) * n);
    } else {
        u[0] = 0.0;
        for (int i = 1; i < n; ++i) {
            double dx = x[i] - x[i - 1], dy = y[i] - y[i - 1];
            u[i] = u[i - 1] + std::sqrt(dx * dx + dy * dy);
        }
        for (int i = 1; i < n; ++i)
            if (!(u[i] > u[i - 1])) {
                std::free(mem);
                return 38;  // a repeated point gives two equal rows
            }
    }
    for (int i = 0; i < k; ++i) t[i] = u[0];
    // Inner knots (1-based i = k + 1 .. n): the abscissae themselves for an
    // even order, the midpoints between them for an odd one.
    for (int i = k + 1; i <= n; ++i) {
        if (k % 2 == 0)
            t[i - 1] = u[i - k / 2 - 1];
        else
            t[i - 1] = (u[i - (k - 1) / 2 - 2] + u[i - (k - 1) / 2 - 1]) / 2.0;
    }
    for (int i = n; i < n + k; ++i) t[i] = u[n - 1] + kKnotPad;

    // Collocation rows: row j holds columns j - (k - 1) .. j + (k - 1).
    int l = k - 1;
    for (int j = 0; j < n; ++j) {
        l = find_interval(t, n, k, u[j], l);
        basis(t, k, l, u[j], nb, left, right);
        for (int r = 0; r < k; ++r) {
            int col = l - k + 1 + r;
            int off = col - j + k - 1;
            if (off < 0 || off >= w) {
                if (nb[r] != 0.0) {
                    std::free(mem);
                    return 38;
                }
                continue;
            }
            band[(size_t)j * w + off] = nb[r];
        }
        if (mode == 0) {
            cy[j] = y[j];
        } else {
            cx[j] = x[j];
            cy[j] = y[j];
        }
    }
    // Band elimination without pivoting.
    auto at = [&](int r, int c) -> double & { return band[(size_t)r * w + (c - r + k - 1)]; };
    for (int p = 0; p < n; ++p) {
        double piv = at(p, p);
        if (piv == 0.0 || !std::isfinite(piv)) {
            std::free(mem);
            return 38;
        }
        int last = std::min(n - 1, p + k - 1);
        for (int r = p + 1; r <= last; ++r) {
            double f = at(r, p) / piv;
            if (f == 0.0) continue;
            for (int c = p; c <= last; ++c) at(r, c) -= f * at(p, c);
            cy[r] -= f * cy[p];
            if (mode == 1) cx[r] -= f * cx[p];
        }
    }
    for (int p = n - 1; p >= 0; --p) {
        int last = std::min(n - 1, p + k - 1);
        double sy = cy[p], sx = cx[p];
        for (int c = p + 1; c <= last; ++c) {
            sy -= at(p, c) * cy[c];
            sx -= at(p, c) * cx[c];
        }
        cy[p] = sy / at(p, p);
        cx[p] = sx / at(p, p);
    }

    // Evaluation at npts + 1 positions, the ends exactly the data.
    double a = u[0], e = u[n - 1];
    bool lg = logx && mode == 0 && a > 0 && e > 0;
    if (lg) {
        a = std::log10(a);
        e = std::log10(e);
    }
    l = k - 1;
    for (int j = 0; j <= npts; ++j) {
        double s = a + (e - a) * j / npts;
        if (lg) s = std::pow(10.0, s);
        if (j == 0) s = u[0];
        if (j == npts) s = u[n - 1];
        l = find_interval(t, n, k, s, l);
        if (mode == 0) {
            xs[j] = s;
            ys[j] = de_boor(t, cy, k, l, s, dw);
        } else {
            xs[j] = de_boor(t, cx, k, l, s, dw);
            ys[j] = de_boor(t, cy, k, l, s, dw);
        }
    }
    xs[0] = x[0];
    ys[0] = y[0];
    xs[npts] = x[n - 1];
    ys[npts] = y[n - 1];
    std::free(mem);
    return 0;
}

int spline(const double *xray, const double *yray, int n, double *xsray, double *ysray) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("spline"));
    if (!b) return 0;
    const CurveState &c = b->crv;
    int k = c.splgrd + 1;
    if (n < 1 || (long long)(2 * k - 1) * n > 1000) {
        qqwarn(b, 31, n);
        return 0;
    }
    int mode = c.polcrv == CRV_PSPL ? 1 : 0;
    int w = qqspline(xray, yray, n, k, mode, c.splnpt, false, xsray, ysray);
    if (w == 31)
        qqwarn(b, 31, n);
    else if (w)
        qqwar0(b, w);
    return w ? 0 : c.splnpt + 1;
}

void bezier(const double *xray, const double *yray, int n, double *x, double *y, int m) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("bezier"));
    if (!b || qqchki(b, n, 2, 21) || qqchki(b, m, 2, 32000)) return;
    double wx[21], wy[21];
    for (int j = 0; j < m; ++j) {
        double s = j == m - 1 ? 1.0 : j * (1.0 / (m - 1));
        std::memcpy(wx, xray, sizeof(double) * n);
        std::memcpy(wy, yray, sizeof(double) * n);
        for (int r = n - 1; r > 0; --r)
            for (int i = 0; i < r; ++i) {
                wx[i] += s * (wx[i + 1] - wx[i]);
                wy[i] += s * (wy[i + 1] - wy[i]);
            }
        x[j] = wx[0];
        y[j] = wy[0];
    }
    x[0] = xray[0];
    y[0] = yray[0];
    x[m - 1] = xray[n - 1];
    y[m - 1] = yray[n - 1];
}

int histog(const double *xray, int n, double *x, double *y) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("histog"));
    if (!b || qqchki(b, n, 1, -1)) return 0;
    // The result array is the sort buffer: no copy is needed.  NaN values
    // sort last, each one an entry of its own.
    std::memcpy(x, xray, sizeof(double) * n);
    std::sort(x, x + n,
              [](double p, double q) { return p < q || (!std::isnan(p) && std::isnan(q)); });
    int m = 0;
    for (int i = 0; i < n; ++i) {
        if (m > 0 && x[i] == x[m - 1]) {
            y[m - 1] += 1.0;
        } else {
            x[m] = x[i];
            y[m] = 1.0;
            ++m;
        }
    }
    for (int i = m; i < n; ++i) x[i] = y[i] = 0.0;
    return m;
}

void linfit(const double *xray, const double *yray, int n, double *a, double *bb, double *r,
            const char *copt) noexcept {
    PlotBlock *b = qqpltblk(KX_ENTRY("linfit"));
    if (!b) return;
    *a = *bb = *r = 0.0;
    int mode = qqkey(b, "NONE+ALL +LINE", 3, copt);
    if (mode == 0) return;
    if (mode > 1) {
        // Drawing needs an axis system: the second guard of the routine.
        b = qqpltblk(qqentry(2, 3, "linfit"));
        if (!b) return;
    }
    if (qqchki(b, n, 2, -1)) return;
    double mx = 0, my = 0;
    for (int i = 0; i < n; ++i) {
        mx += xray[i];
        my += yray[i];
    }
    mx /= n;
    my /= n;
    double sxx = 0, syy = 0, sxy = 0;
    for (int i = 0; i < n; ++i) {
        double dx = xray[i] - mx, dy = yray[i] - my;
        sxx += dx * dx;
        syy += dy * dy;
        sxy += dx * dy;
    }
    *a = sxy / sxx;
    *bb = my - *a * mx;
    *r = sxy / (std::sqrt(syy) * std::sqrt(sxx));
    if (mode > 1) qqlinfitdraw(b, xray, yray, n, *a, *bb, mode == 2);
}
