"""Map projections: projected points of every family against textbook
formulas (up to the one scale and two offsets of a map), the scale rules,
the position lookup, great circles seen through a user projection, the
circular clipping of hemisphere maps on PNG pixels, and bad input."""
import math

import numpy as np
import pytest

import kolvex
from conftest import example_png_and_svg_alike

NXA, NYA, NXL, NYL = 500, 1700, 1600, 1000
R = math.radians


def warnings_of(capfd):
    return [l for l in capfd.readouterr().out.splitlines() if l.startswith(" <<<< Warning")]


def open_map(proj, lim, device="PNG", path="m.png", setup=None, axes=False):
    kolvex.metafl(device)
    if path:
        kolvex.setfil(path)
        kolvex.filmod("DELE")
    kolvex.scrmod("REVERS")
    kolvex.kolini()
    kolvex.errmod("PROTOCOL", "OFF")
    kolvex.axspos(NXA, NYA)
    kolvex.axslen(NXL, NYL)
    kolvex.projct(proj)
    if setup:
        setup()
    if not axes:
        kolvex.nograf()
    kolvex.grafmp(*[float(v) for v in lim])


def fit(points, XY):
    """Least squares of xp = s X + ox, yp = oy - s Y; returns s and the
    largest residual."""
    xp = np.array([p[0] for p in points])
    yp = np.array([p[1] for p in points])
    X, Y = np.array(XY).T
    A = np.zeros((2 * len(X), 3))
    A[: len(X), 0], A[: len(X), 1] = X, 1
    A[len(X):, 0], A[len(X):, 2] = -Y, 1
    rhs = np.concatenate([xp, yp])
    sol = np.linalg.lstsq(A, rhs, rcond=None)[0]
    return sol[0], np.abs(A @ sol - rhs).max()


def aitoff(lon, lat):
    a = math.acos(math.cos(R(lat)) * math.cos(R(lon) / 2))
    sinc = math.sin(a) / a if a else 1.0
    return 2 * math.cos(R(lat)) * math.sin(R(lon) / 2) / sinc, math.sin(R(lat)) / sinc


def hammer(lon, lat):
    d = math.sqrt(1 + math.cos(R(lat)) * math.cos(R(lon) / 2))
    return 2 * math.sqrt(2) * math.cos(R(lat)) * math.sin(R(lon) / 2) / d, math.sqrt(2) * math.sin(R(lat)) / d


def winkel(lon, lat):
    x, y = aitoff(lon, lat)
    return (x + R(lon) * 0.7660444) / 2, (y + R(lat)) / 2


def lcc(lon, lat, p1=32.5, p2=57.5, lon0=70):
    n = math.log(math.cos(R(p1)) / math.cos(R(p2))) / math.log(
        math.tan(math.pi / 4 + R(p2) / 2) / math.tan(math.pi / 4 + R(p1) / 2))
    rho = math.tan(math.pi / 4 + R(lat) / 2) ** -n
    return rho * math.sin(n * R(lon - lon0)), -rho * math.cos(n * R(lon - lon0))


def equidistant_conic(lon, lat, p0=30):
    n = math.sin(R(p0))
    rho = 1 / math.tan(R(p0)) + R(p0) - R(lat)
    return rho * math.sin(n * R(lon)), -rho * math.cos(n * R(lon))


def azimuthal(rho_of, lon0, lat0):
    def f(lon, lat):
        p, p0, dl = R(lat), R(lat0), R(lon - lon0)
        c = math.acos(max(-1, min(1, math.sin(p0) * math.sin(p) + math.cos(p0) * math.cos(p) * math.cos(dl))))
        az = math.atan2(math.cos(p) * math.sin(dl), math.cos(p0) * math.sin(p) - math.sin(p0) * math.cos(p) * math.cos(dl))
        r = rho_of(c)
        return r * math.sin(az), r * math.cos(az)
    return f


WORLD = (-180, 180, -180, 60, -90, 90, -90, 30)
PTS = [(lon, lat) for lon in (-150, -75, -10, 0, 35, 120, 170) for lat in (-70, -20, 0, 15, 55, 80)]
NEAR = [(lon, lat) for lon in (-40, -5, 10, 45) for lat in (10, 30, 50, 75)]

CASES = [
    ("MERC", (-180, 180, -180, 60, -80, 80, -60, 30), lambda lo, la: (R(lo), math.log(math.tan(math.pi / 4 + R(la) / 2))), PTS, None),
    ("EQUA", WORLD, lambda lo, la: (R(lo), math.sin(R(la))), PTS, None),
    ("AITO", WORLD, aitoff, PTS, None),
    ("HAMM", WORLD, hammer, PTS, None),
    ("WINK", WORLD, winkel, PTS, None),
    ("SANS", WORLD, lambda lo, la: (R(lo) * math.cos(R(la)), R(la)), PTS, None),
    ("MOLL", WORLD, lambda lo, la: (lo, la), PTS, None),
    ("CONF", (10, 130, 10, 30, 20, 70, 20, 10), lcc, [(lo, la) for lo in (20, 70, 125) for la in (25, 44, 68)], None),
    ("CONI", (-60, 60, -60, 30, 20, 60, 20, 10), equidistant_conic,
     [(lo, la) for lo in (-50, 0, 40) for la in (22, 41, 59)], lambda: kolvex.mapref(30.0, 30.0)),
    ("ORTH", WORLD, azimuthal(math.sin, 20, 45), NEAR, lambda: kolvex.mappol(20.0, 45.0)),
    ("STER", WORLD, azimuthal(lambda c: 2 * math.tan(c / 2), 20, 45), NEAR, lambda: kolvex.mappol(20.0, 45.0)),
    ("AZIM", WORLD, azimuthal(lambda c: c, -100, -30), NEAR, lambda: kolvex.mappol(-100.0, -30.0)),
    ("LAMB", WORLD, azimuthal(lambda c: 2 * math.sin(c / 2), 0, 90), NEAR, lambda: kolvex.mappol(0.0, 90.0)),
    ("GNOM", (0, 60, 0, 10, 10, 70, 10, 10), azimuthal(math.tan, 30, 40),
     [(lo, la) for lo in (5, 30, 55) for la in (15, 40, 65)], None),
]


@pytest.mark.parametrize("proj, lim, formula, pts, setup", CASES, ids=[c[0] for c in CASES])
def test_projection_matches_formula(proj, lim, formula, pts, setup):
    open_map(proj, lim, setup=setup)
    got = [kolvex.pos2pt(float(lo), float(la)) for lo, la in pts]
    s, res = fit(got, [formula(lo, la) for lo, la in pts])
    assert s > 0 and res < 1e-6 * max(1.0, s), (s, res)
    # x2dpos and y2dpos agree with pos2pt (the page origin is upper left).
    lo, la = pts[1]
    assert kolvex.x2dpos(float(lo), float(la)) == pytest.approx(got[1][0])
    assert kolvex.y2dpos(float(lo), float(la)) == pytest.approx(got[1][1])


def test_scales_and_origins():
    # Cylindrical: the latitude range fills the axis height from its bottom.
    open_map("MERC", (-180, 180, -180, 60, -80, 80, -60, 30))
    ymerc = math.log(math.tan(R(85) / 1.0 - R(45)) if False else math.tan(math.pi / 4 + R(40)))
    x, y = kolvex.pos2pt(0.0, -80.0)
    assert (x, y) == pytest.approx((NXA + NXL // 2, NYA))
    assert kolvex.pos2pt(0.0, 80.0)[1] == pytest.approx(NYA - (NYL - 1))
    s = (NYL - 1) / (2 * ymerc)
    assert kolvex.pos2pt(90.0, 0.0)[0] - x == pytest.approx(s * math.pi / 2)
    # The pole is taken just short of 90 degrees.
    kolvex.endgrf()
    kolvex.projct("MERC")
    kolvex.grafmp(-180.0, 180.0, -180.0, 60.0, -85.0, 85.0, -60.0, 30.0)
    assert kolvex.pos2pt(0.0, 90.0)[1] == pytest.approx(kolvex.pos2pt(0.0, 89.98999786376953)[1])
    kolvex.endgrf()
    # Hemisphere scales by code: the sphere limit reaches the radius (m - 1) / 2.
    m = min(NXL, NYL)
    for proj in ("ORTH", "STER", "LAMB", "GNOM"):
        kolvex.projct(proj)
        kolvex.mappol(0.0, 90.0)
        kolvex.grafmp(*[float(v) for v in WORLD])
        cx, cy = kolvex.pos2pt(0.0, 90.0)
        assert (cx, cy) == pytest.approx((NXA + NXL // 2, NYA - NYL // 2))
        lat = 5.0 if proj == "GNOM" else 0.0
        r = math.hypot(*np.subtract(kolvex.pos2pt(33.0, lat), (cx, cy)))
        assert r == pytest.approx((m - 1) / 2, rel=1e-6), proj
        kolvex.endgrf()
    # AZIM: the scale is (m - 1) / D, so the equator lies at m - 1.
    kolvex.projct("AZIM")
    kolvex.grafmp(*[float(v) for v in WORLD])
    assert kolvex.pos2pt(90.0, 0.0)[0] - kolvex.pos2pt(0.0, 0.0)[0] == pytest.approx(m - 1, rel=1e-6)


def test_conic_wraps_longitude():
    open_map("ALBE", (-40, 40, -40, 20, 30, 70, 30, 10))
    assert kolvex.pos2pt(200.0, 50.0) == pytest.approx(kolvex.pos2pt(-160.0, 50.0))
    kolvex.endgrf()
    # A southern map turns over: its pole lies below.
    kolvex.projct("CONF")
    kolvex.grafmp(-40.0, 40.0, -40.0, 20.0, -70.0, -30.0, -70.0, 10.0)
    assert kolvex.pos2pt(0.0, -70.0)[1] == pytest.approx(NYA, abs=0.5)
    assert kolvex.pos2pt(30.0, -70.0)[1] > NYA


@pytest.mark.parametrize("proj, lim, pts, setup", [
    ("STER", WORLD, [(10, 50), (-33.3, 12.7), (61.25, 70.5)], lambda: kolvex.mappol(20.0, 45.0)),
    ("AITO", WORLD, [(-120.5, -33.3), (0.0, 0.0), (101.2, 40.4)], None),
    ("CONF", (10, 130, 10, 30, 20, 70, 20, 10), [(40.3, 33.3), (101.1, 61.7)], None),
])
def test_pt2pos_round_trip(proj, lim, pts, setup):
    open_map(proj, lim, setup=setup)
    for lon, lat in pts:
        xp, yp = kolvex.pos2pt(lon, lat)
        back = kolvex.pt2pos(xp, yp)
        assert back == pytest.approx((lon, lat), abs=0.1)
    # Outside a map the linear inverse holds.
    kolvex.endgrf()
    kolvex.graf(0.0, 10.0, 0.0, 2.0, 0.0, 5.0, 0.0, 1.0)
    assert kolvex.pt2pos(*kolvex.pos2pt(3.25, 1.5)) == pytest.approx((3.25, 1.5))


def unit(lon, lat):
    return np.array([math.cos(R(lat)) * math.cos(R(lon)), math.cos(R(lat)) * math.sin(R(lon)), math.sin(R(lat))])


def test_great_circle_through_user_projection():
    seen = []

    def proj(x, y):
        seen.append((x, y))
        return [x * 3.0, y * 3.0]

    kolvex.setcbk(proj, "MYPR")
    open_map("MYPR", (-180, 180, -180, 60, -90, 90, -90, 30))
    kolvex.mapmod("GREA")
    a, b = (-9.14, 38.72), (139.69, 35.69)
    del seen[:]
    kolvex.curvmp([a[0], b[0]], [a[1], b[1]], 2)
    pts = seen[:]
    assert pts[0] == pytest.approx(a) and pts[-1] == pytest.approx(b)
    d = math.acos(unit(*a) @ unit(*b))
    n = int(d / 0.01)
    assert len(pts) == 2 + (n - 2)          # start, m - 1 between, end
    normal = np.cross(unit(*a), unit(*b))
    normal /= np.linalg.norm(normal)
    dist = [math.acos(max(-1, min(1, unit(*a) @ unit(*p)))) for p in pts]
    assert max(abs(unit(*p) @ normal) for p in pts) < 1e-6
    assert all(np.diff(dist) > 0) and dist[-1] == pytest.approx(d)
    # The callback's result places the point: xp = X + ox, yp = oy - Y.
    assert kolvex.pos2pt(10.0, 20.0) == pytest.approx((NXA + 30.0, NYA - 60.0))
    # Two points 0.02 radians apart: a straight step.
    del seen[:]
    kolvex.curvmp([0.0, 1.0], [0.0, 0.5], 2)
    assert np.allclose(seen, [(0.0, 0.0), (1.0, 0.5)])
    # INTE: steps of equal size, truncated length in degrees.
    kolvex.mapmod("INTE")
    del seen[:]
    kolvex.curvmp([0.0, 3.0], [0.0, 4.5], 2)
    assert np.allclose(seen, [(0.6 * i, 0.9 * i) for i in range(6)])   # n = 5
    # A result of the wrong shape leaves the point as it was.
    kolvex.setcbk(lambda x, y: (1.0, 2.0), "MYPR")
    assert kolvex.pos2pt(10.0, 20.0) == pytest.approx((NXA + 10.0, NYA - 20.0))
    kolvex.setcbk(lambda x, y: [1, 2], "MYPR")
    assert kolvex.pos2pt(10.0, 20.0) == pytest.approx((NXA + 1.5, NYA - 2.5))


def test_hemisphere_is_clipped_to_its_circle():
    Image = pytest.importorskip("PIL.Image")
    open_map("ORTH", WORLD, device="PNG", path="orth.png", setup=lambda: kolvex.mappol(20.0, 45.0))
    kolvex.linwid(3)
    kolvex.gridmp(1, 2)            # meridians and parallels round the whole sphere
    kolvex.mapmod("STRA")
    kolvex.curvmp([20.0, 200.0], [45.0, -45.0], 2)   # from the centre to the antipode
    cx, cy = NXA + NXL // 2, NYA - NYL // 2
    kolvex.kolfin()
    img = np.asarray(Image.open("orth.png").convert("L")) < 128
    f = img.shape[1] / 2970
    yy, xx = np.nonzero(img)
    r = np.hypot(xx / f - cx, yy / f - cy)
    radius = min(NXL, NYL) / 2
    assert r.max() < radius + 6 / f                  # nothing beyond the circle
    assert (r > 0.97 * radius).sum() > 50           # but lines reach it


def test_bad_input(capfd):
    kolvex.metafl("PNG")
    kolvex.setfil("m.png")
    kolvex.kolini()
    kolvex.errmod("PROTOCOL", "OFF")
    capfd.readouterr()
    kolvex.mapsph(90.0)
    assert warnings_of(capfd) == []
    for call in (lambda: kolvex.mapsph(0.0), lambda: kolvex.mapref(-20.0, 20.0),
                 lambda: kolvex.mapref(10.0, 95.0), lambda: kolvex.mappol(190.0, 0.0),
                 lambda: kolvex.projct("XYZ"), lambda: kolvex.mapmod("BEND")):
        call()
        w = warnings_of(capfd)
        assert len(w) == 1 and w[0].startswith(" <<<< Warning 2:"), w
    kolvex.projct("MERC")
    kolvex.grafmp(-180.0, 180.0, -180.0, 60.0, -86.0, 86.0, -60.0, 30.0)
    assert warnings_of(capfd)[0].startswith(" <<<< Warning 2:") and kolvex.getlev() == 1
    kolvex.grafmp(10.0, 10.0, 10.0, 60.0, -80.0, 80.0, -60.0, 30.0)
    assert warnings_of(capfd)[0].startswith(" <<<< Warning 52:") and kolvex.getlev() == 1
    kolvex.projct("CONF")
    kolvex.grafmp(-40.0, 40.0, -40.0, 20.0, -30.0, 30.0, -30.0, 10.0)   # crosses the equator
    assert warnings_of(capfd)[0].startswith(" <<<< Warning 2:") and kolvex.getlev() == 1
    kolvex.projct("STER")
    kolvex.grafmp(-100.0, 100.0, -100.0, 20.0, 0.0, 60.0, 0.0, 10.0)   # wider than 180
    assert warnings_of(capfd)[0].startswith(" <<<< Warning 2:") and kolvex.getlev() == 1
    kolvex.projct("AITO")
    kolvex.grafmp(*[float(v) for v in WORLD])
    kolvex.curvmp([0.0], [0.0], 1)
    kolvex.gridmp(0, 1)
    assert len(warnings_of(capfd)) == 2
    kolvex.endgrf()


def test_example_png_and_svg_agree():
    example_png_and_svg_alike("maps.py")


def test_auto_x_axis_fits_the_map():
    Image = pytest.importorskip("PIL.Image")

    def setup():
        kolvex.labels("NONE", "XY")
        kolvex.mapopt("AUTO", "XAXI")
    open_map("MERC", (-180, 180, -180, 90, -80, 80, -60, 30), path="fit.png", setup=setup, axes=True)
    left, right = kolvex.pos2pt(-180.0, 0.0)[0], kolvex.pos2pt(180.0, 0.0)[0]
    assert right - left < NXL - 100 and (left + right) / 2 == pytest.approx(NXA + NXL // 2)
    kolvex.kolfin()
    img = np.asarray(Image.open("fit.png").convert("L")) < 128
    f = img.shape[1] / 2970
    cols = np.nonzero(img[int(round(NYA * f))])[0] / f
    assert cols.min() == pytest.approx(left, abs=3 / f) and cols.max() == pytest.approx(right, abs=3 / f)
