"""Area fill, patterns, polygon clipping and line styles.

The test page of examples/fill_patterns.py is drawn as PNG and as SVG and
the SVG, rendered by rsvg-convert, must match the PNG; hatch lines are read
back from the native metafile and must end exactly on the polygon's edges
and lie inside it by the even-odd rule.
"""
import math
import os
import re
import subprocess
import sys

import numpy as np
import pytest

import kolvex
from conftest import ROOT, needs

sys.path.insert(0, os.path.join(ROOT, "examples"))
from fill_patterns import draw_page  # noqa: E402

NXP, NYP = 2969, 2099


def warnings_of(out):
    return [line for line in out.split("\n") if "<<<< Warning" in line]


def session(device="PLOG", name="f.met"):
    kolvex.metafl(device)
    kolvex.filmod("DELE")
    kolvex.setfil(name)
    kolvex.kolini()


def metafile_segments(path):
    """The drawn segments of a native metafile, in plot coordinates."""
    text = open(path).read().split("\n", 1)[1].replace("\n", "")
    values = [float(text[i:i + 10]) for i in range(0, len(text), 10)]
    points, pending, op = [], [], 3
    for v in values:
        if v < 1.5:
            pending.append(v)
            if len(pending) == 2:
                points.append([pending[0] * NXP, NYP - pending[1] * NXP, None])
                pending = []
        elif v in (2.0, 3.0):
            points[-1][2] = v
    segs, last = [], None
    for x, y, o in points:
        op = o if o is not None else op
        if op == 2.0 and last is not None:
            segs.append((last[0], last[1], x, y))
        last = (x, y)
    return np.array(segs)


def inside_even_odd(px, py, xs, ys):
    """Even-odd test of many points against one polygon."""
    inside = np.zeros(px.shape, bool)
    n = len(xs)
    for i in range(n):
        x0, y0, x1, y1 = xs[i], ys[i], xs[(i + 1) % n], ys[(i + 1) % n]
        if y0 == y1:
            continue
        crosses = (py >= min(y0, y1)) & (py < max(y0, y1))
        xc = x0 + (x1 - x0) * (py - y0) / (y1 - y0)
        inside ^= crosses & (px < xc)
    return inside


def distance_to_edges(px, py, xs, ys):
    best = np.full(px.shape, np.inf)
    n = len(xs)
    for i in range(n):
        x0, y0, x1, y1 = xs[i], ys[i], xs[(i + 1) % n], ys[(i + 1) % n]
        dx, dy = x1 - x0, y1 - y0
        t = np.clip(((px - x0) * dx + (py - y0) * dy) / max(dx * dx + dy * dy, 1e-12), 0, 1)
        best = np.minimum(best, np.hypot(px - x0 - t * dx, py - y0 - t * dy))
    return best


STAR = ([round(1500 + 600 * math.sin(4 * math.pi * i / 5)) for i in range(5)],
        [round(1000 - 600 * math.cos(4 * math.pi * i / 5)) for i in range(5)])
FRAME = ([400, 2400, 2400, 400, 400, 900, 900, 1900, 1900, 900, 400],
         [300, 300, 1800, 1800, 300, 700, 1400, 1400, 700, 700, 300])


@pytest.mark.parametrize("shape", [STAR, FRAME], ids=["self-crossing star", "frame with a hole"])
@pytest.mark.parametrize("angle,cross", [(0, 0), (30, 1), (135, 0)])
def test_hatch_lines_end_on_the_edges_and_fill_by_even_odd(shape, angle, cross):
    xs, ys = shape
    session()
    kolvex.noarln()
    kolvex.mypat(angle, 1, 3, cross)  # lines 16.9999 apart
    kolvex.areaf(xs, ys, len(xs))
    kolvex.kolfin()
    segs = metafile_segments("f.met")
    assert len(segs) > 50
    ends = np.concatenate([segs[:, :2], segs[:, 2:]])
    # Written with 7 decimals of a unit of 2969: 3e-4 apart at most.
    assert distance_to_edges(ends[:, 0], ends[:, 1], xs, ys).max() < 1e-3
    # Points along each line lie inside, by the even-odd rule.
    t = np.linspace(0.02, 0.98, 9)[:, None]
    px = segs[:, 0] + t * (segs[:, 2] - segs[:, 0])
    py = segs[:, 1] + t * (segs[:, 3] - segs[:, 1])
    near = distance_to_edges(px, py, xs, ys) < 0.01
    assert (inside_even_odd(px, py, xs, ys) | near).all()
    # The lines cover the area: its size is their length times the distance.
    gx, gy = np.meshgrid(np.arange(0, NXP, 4.0) + 1, np.arange(0, NYP, 4.0) + 1)
    area = inside_even_odd(gx, gy, xs, ys).sum() * 16
    length = np.hypot(segs[:, 2] - segs[:, 0], segs[:, 3] - segs[:, 1]).sum()
    assert length * 16.9999 / (2 if cross else 1) == pytest.approx(area, rel=0.03)
    # The lines have the pattern's direction (the second pass: a + 90 below
    # 90, else 180 - a).
    long = np.hypot(segs[:, 2] - segs[:, 0], segs[:, 3] - segs[:, 1]) > 10
    direction = np.degrees(np.arctan2(-(segs[long, 3] - segs[long, 1]), segs[long, 2] - segs[long, 0])) % 180
    want = [angle] + ([angle + 90 if angle < 90 else 180 - angle] if cross else [])
    off = np.min([np.minimum(abs(direction - w), 180 - abs(direction - w)) for w in want], axis=0)
    assert off.max() < 0.01


def test_bundles_and_styles_of_the_pattern_types():
    """Type 2 draws two lines and leaves trunc(density + 0.9999) out; type 4
    eight and 5 * density + 4; the solid pattern on the metafile comes as
    lines 1.4 apart."""
    def lines_of(*pattern, shdpat=None):
        session()
        kolvex.noarln()
        if shdpat is None:
            kolvex.mypat(*pattern)
        else:
            kolvex.shdpat(shdpat)
        kolvex.areaf([100, 1100, 1100, 100], [100, 100, 1100, 1100], 4)
        kolvex.kolfin()
        segs = metafile_segments("f.met")
        return np.unique(np.round(segs[:, 1], 3))

    # Scan lines from trunc(100 / 20 - 0.5) * 20 = 80; the first bundle is
    # line 0 alone (it meets nothing), then line 1 is left out.
    rows = lines_of(0, 2, 1, 0)  # d = 20: 2 drawn, 1 left out
    assert rows[:8].tolist() == [120, 140, 180, 200, 240, 260, 300, 320]
    rows = lines_of(0, 4, 1, 0)  # d = 1: 8 drawn, 9 left out
    assert sorted(set(np.round(np.diff(rows)).astype(int))) == [1, 10]
    rows = lines_of(0, 0, 0, 0, shdpat=16)
    # Between the outline's two edges, drawn once more.
    assert rows[0] == 100 and rows[-1] == 1100
    assert np.allclose(np.diff(rows[1:-1]), 1.4, atol=1e-3)


@needs("rsvg-convert")
def test_svg_rendering_of_the_test_page_matches_the_png(tmp_path):
    from PIL import Image
    from test_vector_files import colour_mask, dilate

    draw_page("PNG", "page.png")
    draw_page("SVG", "page.svg")
    svg = open("page.svg").read()
    # Solid fill inside the clip window is an SVG polygon; the clipped one
    # and every other pattern are hatch lines.
    assert svg.count("<polygon fill=") == 1
    # Caps, joins and miter limits are not written: only the width.
    assert "stroke-linecap" not in svg and "stroke-linejoin" not in svg
    subprocess.run(["rsvg-convert", "-w", "853", "-h", "603", "-b", "white", "-o", "svg.png", "page.svg"],
                   check=True, timeout=120)
    a = np.asarray(Image.open("svg.png").convert("RGB"))
    b = np.asarray(Image.open("page.png").convert("RGB"))
    assert a.shape == b.shape == (603, 853, 3)
    colours = {"blue": (0, 0, 255), "red": (255, 0, 0), "green": (0, 255, 0), "black": (0, 0, 0),
               "cyan": (0, 255, 255)}
    for what, c in colours.items():
        ma, mb = colour_mask(a, c), colour_mask(b, c)
        assert ma.sum() > 500 and mb.sum() > 500, what
        assert (ma & dilate(mb, 2)).sum() >= 0.95 * ma.sum(), what
        assert (mb & dilate(ma, 2)).sum() >= 0.95 * mb.sum(), what
    # The solid shapes cover the same area (cyan: the solid pattern; blue
    # includes the clipped solid fill, hatched in both).
    for c in ((0, 255, 255), (0, 0, 255)):
        na, nb = colour_mask(a, c).sum(), colour_mask(b, c).sum()
        assert abs(na - nb) <= 0.08 * nb


@pytest.mark.parametrize("edge,xv,want", [
    ("LEFT", 5.0, [(5, 0), (10, 0), (10, 10), (5, 10)]),
    ("RIGHT", 5.0, [(0, 0), (5, 0), (5, 10), (0, 10)]),
    ("top", 4.0, [(0, 0), (10, 0), (10, 4), (0, 4)]),
    ("BOTT", 4.0, [(10, 4), (10, 10), (0, 10), (0, 4)]),
    ("LEFT", -1.0, [(0, 0), (10, 0), (10, 10), (0, 10)]),  # wholly inside: n
    ("LEFT", 11.0, []),  # wholly outside: 0
])
def test_polclp_on_a_convex_polygon(edge, xv, want):
    xs, ys = [0.0, 10.0, 10.0, 0.0], [0.0, 0.0, 10.0, 10.0]
    xo, yo = [0.0] * 8, [0.0] * 8
    n = kolvex.polclp(xs, ys, 4, xo, yo, 8, xv, edge)
    assert n == len(want)
    got = set(zip(xo[:n], yo[:n]))
    assert got == {(float(x), float(y)) for x, y in want}
    assert xo[n:] == [0.0] * (8 - n)  # untouched beyond the count


def test_polclp_concave_degenerate_and_failures(capfd):
    # A U whose two arms cross the border: the result runs along the border
    # between them, in order.
    xs = [0.0, 10.0, 10.0, 7.0, 7.0, 3.0, 3.0, 0.0]
    ys = [0.0, 0.0, 10.0, 10.0, 2.0, 2.0, 10.0, 10.0]
    xo, yo = [0.0] * 20, [0.0] * 20
    n = kolvex.polclp(xs, ys, 8, xo, yo, 20, 5.0, "TOP")
    assert list(zip(xo[:n], yo[:n])) == [(0, 5), (0, 0), (10, 0), (10, 5), (7, 5), (7, 2), (3, 2), (3, 5)]
    # One point, two points, all points equal.
    assert kolvex.polclp([1.0], [1.0], 1, xo, yo, 20, 0.0, "LEFT") == 1
    # Two points make two edges, each cut once.
    assert kolvex.polclp([1.0, 3.0], [1.0, 1.0], 2, xo, yo, 20, 2.0, "LEFT") == 3
    assert (xo[:3], yo[:3]) == ([2.0, 2.0, 3.0], [1.0, 1.0, 1.0])
    assert kolvex.polclp([2.0] * 5, [2.0] * 5, 5, xo, yo, 20, 2.0, "RIGH") == 5
    assert kolvex.polclp([2.0] * 5, [2.0] * 5, 5, xo, yo, 20, 1.0, "RIGH") == 0
    assert kolvex.polclp([0.0, 9.0, math.nan], [0.0, 0.0, 5.0], 3, xo, yo, 20, 1.0, "LEFT") >= 0
    capfd.readouterr()
    assert kolvex.polclp(xs, ys, 8, xo, yo, 3, 5.0, "TOP") == 0
    assert kolvex.polclp(xs, ys, 8, xo, yo, 20, 5.0, "MIDD") == 0
    assert warnings_of(capfd.readouterr().out) == [" <<<< Warning 112: Too many points in polclp!"]


def test_pattern_and_style_settings_warn_and_keep(capfd):
    session()
    kolvex.shdpat(-1)
    kolvex.mypat(180, 8, 10, 2)
    kolvex.shdfac(0.0)
    kolvex.lintyp(8)
    kolvex.myline([10, 0], 2)
    kolvex.linclr([1, -1], 2)
    kolvex.patcyc(31, 1)
    kolvex.rectan(100, 100, 0, 50)
    out = warnings_of(capfd.readouterr().out)
    assert out == [" <<<< Warning 2: Incorrect parameter in shdpat!   ( -1)",
                   " <<<< Warning 2: Incorrect parameter in mypat!   ( 180)",
                   " <<<< Warning 2: Incorrect parameter in mypat!   ( 8)",
                   " <<<< Warning 2: Incorrect parameter in mypat!   ( 10)",
                   " <<<< Warning 2: Incorrect parameter in mypat!   ( 2)",
                   " <<<< Warning 2: Incorrect parameter in shdfac!   ( 0)",
                   " <<<< Warning 2: Incorrect parameter in lintyp!   ( 8)",
                   " <<<< Warning 2: Incorrect parameter in myline!   ( 0)",
                   " <<<< Warning 2: Incorrect parameter in linclr!   ( -1)",
                   " <<<< Warning 2: Incorrect parameter in patcyc!   ( 31)",
                   " <<<< Warning 2: Incorrect parameter in rectan!   ( 0)"]
    # Nothing changed: an outline alone, solid.
    assert (kolvex.getpat(), kolvex.gettyp(), kolvex.getlin()) == (0, 0, 1)
    kolvex.mypat(45, 1, 5, 1)
    kolvex.chndsh()
    assert (kolvex.getpat(), kolvex.gettyp()) == (45151, 3)
    kolvex.reset("SHDPAT")
    kolvex.solid()
    kolvex.areaf([100, 500, 500], [100, 100, 500], 3)
    kolvex.kolfin()
    segs = metafile_segments("f.met")
    assert len(segs) == 3


def test_coinciding_points_and_outline_switch():
    session()
    kolvex.areaf([300] * 4, [300] * 4, 4)  # a line from the first to the second point
    kolvex.areaf([10], [10], 1)  # one point: nothing
    kolvex.noarln()
    kolvex.shdpat(0)
    kolvex.areaf([100, 500, 500], [100, 100, 500], 3)  # neither outline nor fill
    kolvex.reset("NOARLN")
    kolvex.areaf([1000, 1500, 1500], [100, 100, 500], 3)
    kolvex.kolfin()
    segs = metafile_segments("f.met")
    assert len(segs) == 4 and tuple(segs[0]) == pytest.approx((300, 300, 300, 300), abs=1e-3)


def test_bad_coordinates_and_huge_polygons_draw_nothing_wrong(capfd):
    session("PNG", "f.png")
    kolvex.shdpat(16)
    big = 2**31 - 1
    kolvex.areaf([-big, big, big, -big], [-big, -big, big, big], 4)
    kolvex.shdpat(5)
    kolvex.areaf([-big, big, 0], [-big, -big, big], 3)
    kolvex.shdfac(1e-30)  # lines closer than any device shows
    kolvex.shdpat(1)
    kolvex.areaf([100, 900, 900], [100, 100, 900], 3)
    kolvex.areaf([5, 5], [6, 6], 2)
    kolvex.recfll(-5, -5, big, big, 3)
    kolvex.pagfll(-1)
    # Ten million vertices: a ring with a fine zigzag, filled solid and
    # hatched.
    n = 10**7
    t = np.arange(n) * (2 * np.pi / n)
    r = 700 + 3 * (np.arange(n) % 2)
    xs = (1480 + r * np.cos(t)).astype(np.int32)
    ys = (1050 + r * np.sin(t)).astype(np.int32)
    kolvex.shdfac(1.0)
    kolvex.shdpat(16)
    kolvex.areaf(xs, ys, n)
    kolvex.shdpat(1)
    kolvex.areaf(xs, ys, n)
    kolvex.kolfin()
    out = warnings_of(capfd.readouterr().out)
    # Near its top and bottom the zigzag crosses a scan line more than 100
    # times: the raster fill and the hatching say so.
    assert len(out) == 2 and all("Warning 26" in w for w in out)


@pytest.mark.skipif(not hasattr(kolvex, "graf"), reason="axis systems are not in this build")
def test_rlarea_fills_in_user_coordinates_cut_to_the_axis_system():
    session()
    kolvex.graf(0.0, 10.0, 0.0, 2.0, 0.0, 10.0, 0.0, 2.0)
    kolvex.noarln()
    kolvex.mypat(0, 1, 1, 0)
    # The polygon reaches beyond the axis system on the right.
    kolvex.rlarea([2.0, 14.0, 14.0, 2.0], [2.0, 2.0, 8.0, 8.0], 4)
    x0, x1 = kolvex.xposn(2.0), kolvex.xposn(10.0)
    y0, y1 = sorted((kolvex.yposn(2.0), kolvex.yposn(8.0)))
    kolvex.endgrf()
    kolvex.kolfin()
    segs = metafile_segments("f.met")
    # The hatch lines among the axis system's own: long horizontal lines
    # within the polygon's rows.
    flat = (segs[:, 1] == segs[:, 3]) & (segs[:, 1] > y0 + 0.5) & (segs[:, 1] < y1 - 0.5)
    hatch = segs[flat & (np.abs(segs[:, 2] - segs[:, 0]) > 1000)]
    assert len(hatch) == pytest.approx((y1 - y0) / 6.9999, abs=2)
    assert np.minimum(hatch[:, 0], hatch[:, 2]) == pytest.approx(x0, abs=1e-3)
    # Cut at the axis system's right edge.
    assert np.maximum(hatch[:, 0], hatch[:, 2]) == pytest.approx(x1, abs=1.01)
