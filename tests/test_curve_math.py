"""The helpers that only compute, against independent computations."""
import math

import numpy as np
import pytest

import kolvex

scipy_interp = pytest.importorskip("scipy.interpolate")


def knots(u, k):
    """The not-a-knot knots of order k, as the library places them."""
    n = len(u)
    t = [u[0]] * k
    for i in range(k + 1, n + 1):
        if k % 2 == 0:
            t.append(u[i - k // 2 - 1])
        else:
            t.append((u[i - (k - 1) // 2 - 2] + u[i - (k - 1) // 2 - 1]) / 2)
    return np.array(t + [u[-1] + 1.0000000116860974e-7] * k)


def session():
    kolvex.metafl("VIRT")
    kolvex.kolini()
    kolvex.unit(0)


@pytest.mark.parametrize("degree", [2, 3, 5])
def test_spline_matches_scipy_bspline(degree):
    session()
    kolvex.splmod(degree, 50)
    rng = np.random.default_rng(degree)
    x = np.sort(rng.uniform(0, 10, 14))
    y = np.sin(x) + rng.normal(0, 0.1, 14)
    xs, ys = [0.0] * 51, [0.0] * 51
    assert kolvex.spline(x, y, 14, xs, ys) == 51
    ref = scipy_interp.make_interp_spline(x, y, k=degree, t=knots(list(x), degree + 1))
    assert np.allclose(xs, np.linspace(x[0], x[-1], 51), rtol=0, atol=1e-12)
    assert np.allclose(ys, ref(xs), rtol=1e-9, atol=1e-9)
    assert (xs[0], ys[0], xs[-1], ys[-1]) == (x[0], y[0], x[-1], y[-1])
    if degree == 3:  # the cubic is scipy's own not-a-knot spline
        nak = scipy_interp.make_interp_spline(x, y, k=3)
        assert np.allclose(ys, nak(xs), atol=1e-5)


def test_parametric_spline_follows_chord_length():
    session()
    kolvex.polcrv("PSPL")
    kolvex.splmod(3, 40)
    a = np.linspace(0, 1.5 * math.pi, 9)
    x, y = np.cos(a), np.sin(a)
    xs, ys = [0.0] * 41, [0.0] * 41
    kolvex.spline(x, y, 9, xs, ys)
    t = np.concatenate([[0], np.cumsum(np.hypot(np.diff(x), np.diff(y)))])
    kt = knots(list(t), 4)
    rx = scipy_interp.make_interp_spline(t, x, k=3, t=kt)
    ry = scipy_interp.make_interp_spline(t, y, k=3, t=kt)
    s = np.linspace(0, t[-1], 41)
    assert np.allclose(xs, rx(s), atol=1e-9) and np.allclose(ys, ry(s), atol=1e-9)
    assert np.allclose(np.hypot(xs, ys), 1, atol=0.01)  # stays on the circle


def test_spline_refusals(capfd):
    session()
    kolvex.unit(6)
    out = [0.0] * 201
    assert kolvex.spline([0, 1], [0, 1], 2, out, list(out)) == 0
    assert kolvex.spline([0, 2, 1, 3], [0, 1, 2, 3], 4, out, list(out)) == 0
    assert kolvex.spline(list(range(200)), [0.0] * 200, 200, out, list(out)) == 0  # band too big
    err = capfd.readouterr().out
    assert "Warning 31: Incorrect number of points for spline interpolation in spline!   ( 2)" in err
    assert "Warning 32: No increasing x coordinates for spline interpolation" in err
    assert "( 200)" in err


def test_bezier_is_de_casteljau():
    cx, cy = [0.0, 1.0, 3.0, 4.0], [0.0, 3.0, -1.0, 2.0]
    xs, ys = [0.0] * 11, [0.0] * 11
    kolvex.bezier(cx, cy, 4, xs, ys, 11)
    s = np.linspace(0, 1, 11)
    bern = [math.comb(3, i) * s**i * (1 - s) ** (3 - i) for i in range(4)]
    assert np.allclose(xs, np.dot(cx, bern)) and np.allclose(ys, np.dot(cy, bern))
    xs, ys = [9.0] * 2, [9.0] * 2
    kolvex.bezier(cx, cy, 4, xs, ys, 2)
    assert (xs, ys) == ([0.0, 4.0], [0.0, 2.0])


def test_histog_counts_distinct_values():
    xh, yh = [0.0] * 4, [0.0] * 4
    assert kolvex.histog([3, 1, 3, 3], 4, xh, yh) == 2
    assert (xh[:2], yh[:2]) == ([1.0, 3.0], [1.0, 3.0])
    data = np.random.default_rng(1).integers(0, 20, 500).astype(float)
    xh, yh = [0.0] * 500, [0.0] * 500
    m = kolvex.histog(data, 500, xh, yh)
    vals, counts = np.unique(data, return_counts=True)
    assert m == len(vals) and xh[:m] == list(vals) and yh[:m] == list(counts)


def test_linfit_against_numpy():
    rng = np.random.default_rng(7)
    x = rng.uniform(0, 5, 40)
    y = 2.5 * x - 1 + rng.normal(0, 0.3, 40)
    a, b, r = kolvex.linfit(x, y, 40, "NONE")
    ra, rb = np.polyfit(x, y, 1)
    assert a == pytest.approx(ra, rel=1e-12) and b == pytest.approx(rb, rel=1e-9)
    assert r == pytest.approx(np.corrcoef(x, y)[0, 1], rel=1e-12)
