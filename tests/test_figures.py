"""Geometric figures: the arc engine's points and steps read back from the
native metafile, the closing of pies against open arcs, ring sectors,
rounded rectangles, wind barbs, circ3p, the user-coordinate twins and the
refusals."""
import math

import numpy as np
import pytest

import kolvex
from test_fill import metafile_segments, session, warnings_of


def drawn(draw, name="f.met"):
    session(name=name)
    draw()
    kolvex.kolfin()
    segs = metafile_segments(name)
    return segs[np.hypot(segs[:, 2] - segs[:, 0], segs[:, 3] - segs[:, 1]) > 1e-6]


def radii(segs, cx, cy):
    pts = np.concatenate([segs[:, :2], segs[:, 2:]])
    return np.hypot(pts[:, 0] - cx, pts[:, 1] - cy)


def test_circle_points_lie_on_the_circle_with_5_to_1000_steps():
    segs = drawn(lambda: kolvex.circle(1500, 1000, 400))
    assert np.allclose(radii(segs, 1500, 1000), 400, atol=0.6)
    assert len(segs) == 251  # trunc(400 * 2 pi / 10) steps
    small = drawn(lambda: kolvex.circle(1500, 1000, 3), "s.met")
    assert 5 <= len(small) <= 6
    assert np.allclose(radii(small, 1500, 1000), 3, atol=0.6)

    def fine():
        kolvex.circsp(1)
        kolvex.circle(1500, 1000, 900)
    assert 1000 <= len(drawn(fine, "l.met")) <= 1001


def test_pie_closes_through_the_centre_and_an_arc_stays_open():
    pie = drawn(lambda: kolvex.pie(1500, 1000, 500, 30, 120))
    r = radii(pie, 1500, 1000)
    assert r.min() < 0.6 and np.allclose(r[r > 1], 500, atol=0.6)
    ang = np.degrees(np.arctan2(-(pie[:, 1] - 1000), pie[:, 0] - 1500))[r[:len(pie)] > 1]
    assert ang.min() > 29.5 and ang.max() < 120.5
    arc = drawn(lambda: kolvex.arcell(1500, 1000, 500, 200, 30, 120, 0), "a.met")
    assert radii(arc, 1500, 1000).min() > 190
    # equal start and end make a whole ellipse, turned by theta
    whole = drawn(lambda: kolvex.arcell(1500, 1000, 500, 200, 60, 60, 90), "w.met")
    pts = whole[:, :2]
    assert np.ptp(pts[:, 1]) == pytest.approx(1000, abs=2) and np.ptp(pts[:, 0]) == pytest.approx(400, abs=2)


def test_ellipse_points_and_user_circle_in_an_axis_system():
    segs = drawn(lambda: kolvex.ellips(1500, 1000, 600, 200))
    x, y = segs[:, 0] - 1500, segs[:, 1] - 1000
    assert np.allclose((x / 600) ** 2 + (y / 200) ** 2, 1, atol=0.01)

    def user():
        kolvex.axspos(500, 1800)
        kolvex.axslen(2001, 1001)
        kolvex.graf(0.0, 20.0, 0.0, 5.0, 0.0, 10.0, 0.0, 5.0)
        kolvex.rlcirc(10.0, 5.0, 2.0)   # 200 plot units
        kolvex.rlstrt(2.0, 1.0)
        kolvex.rlconn(10.0, 1.0)
        kolvex.rlconn(18.0, 9.0)
        kolvex.endgrf()
    segs = drawn(user, "u.met")
    pen = [tuple(np.round(s)) for s in segs]
    assert (700, 1700, 1500, 1700) in pen and (1500, 1700, 2300, 900) in pen
    circ = segs[np.hypot(segs[:, 0] - 1500, segs[:, 1] - 1300) < 260]
    assert np.allclose(radii(circ, 1500, 1300), 200, atol=0.6)


def test_sector_rndrec_and_point_on_the_page(tmp_path):
    from PIL import Image
    kolvex.metafl("PNG")
    kolvex.filmod("DELE")
    kolvex.setfil("s.png")
    kolvex.scrmod("REVERS")
    kolvex.kolini()
    kolvex.sector(1000, 1000, 200, 600, 0, 90, kolvex.intrgb(1.0, 0.0, 0.0))
    kolvex.shdpat(16)
    kolvex.rndrec(1800, 600, 801, 801, 9)   # a circle shape
    kolvex.point(2800, 300, 61, 41, kolvex.intrgb(0.0, 0.0, 1.0))
    kolvex.kolfin()
    im = np.asarray(Image.open("s.png").convert("RGB")).astype(int)
    s = im.shape[1] / 2970.0
    red = (im[:, :, 0] > 200) & (im[:, :, 1] < 80)
    ys, xs = np.nonzero(red)
    r = np.hypot(xs / s - 1000, ys / s - 1000)
    assert r.min() > 195 and r.max() < 605 and xs.min() / s > 995 and ys.max() / s < 1005
    dark = im.sum(axis=2) < 200
    ys, xs = np.nonzero(dark[:, int(1700 * s):int(2700 * s)])
    cx, cy = xs.mean() / s + int(1700 * s) / s, ys.mean() / s
    assert abs(cx - 2200) < 6 and abs(cy - 1000) < 6
    # corners rounded away: the bounding box's corner is empty
    assert not dark[int(610 * s), int(1810 * s)]
    blue = (im[:, :, 2] > 200) & (im[:, :, 0] < 80)
    ys, xs = np.nonzero(blue)
    assert abs((xs.max() - xs.min() + 1) / s - 61) < 8 and abs((ys.max() - ys.min() + 1) / s - 41) < 8


@pytest.mark.parametrize("speed,lines", [(5, 2), (15, 3), (65, 3)])
def test_wind_barbs_have_their_staff_and_barbs(speed, lines):
    def barb():
        kolvex.hsymbl(60)
        kolvex.windbr(speed, 1500, 1000, 400, 0)
    segs = drawn(barb)
    staff = segs[(abs(segs[:, 0] - 1500) < 0.6) & (abs(segs[:, 2] - 1500) < 0.6)]
    assert abs(staff[:, 1] - staff[:, 3]).sum() >= 399
    off = segs[(abs(segs[:, 0] - segs[:, 2]) > 1)]
    assert (off[:, [0, 2]] >= 1499).all()  # barbs on one side for a positive length
    neg = drawn(lambda: (kolvex.hsymbl(60), kolvex.windbr(speed, 1500, 1000, -400, 0)), "n.met")
    off = neg[(abs(neg[:, 0] - neg[:, 2]) > 1)]
    assert (off[:, [0, 2]] <= 1501).all()


def test_circ3p_and_refusals(capfd):
    assert kolvex.circ3p(0.0, 0.0, 4.0, 0.0, 0.0, 2.0) == pytest.approx((2.0, 1.0, math.sqrt(5)))
    session()
    capfd.readouterr()
    kolvex.circ3p(0.0, 0.0, 1.0, 1.0, 2.0, 2.0)
    kolvex.circle(100, 100, 0)
    kolvex.sector(500, 500, 10, 0, 0, 90, 1)
    kolvex.sector(500, 500, -1, 10, 0, 90, 1)
    kolvex.sector(500, 500, 1, 10, 90, 90, 1)
    kolvex.sector(500, 500, 20, 10, 0, 90, 1)
    kolvex.rndrec(100, 100, 0, 10, 1)
    kolvex.rndrec(100, 100, 10, 10, 10)
    kolvex.circsp(0)
    out = warnings_of(capfd.readouterr().out)
    assert [w.split(":")[0].split()[-1] for w in out] == ["102", "2", "51", "1", "8", "7", "2", "2", "2"]
    assert "Points are collinear" in out[0]
