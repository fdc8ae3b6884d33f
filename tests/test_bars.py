"""Bar graphs: the rectangles read back from the native metafile against the
rules for widths, groups and orientation; label placement; the arrays that
barpos fills; bad input; and the page by two routes (PNG and SVG)."""
import math

import pytest

import kolvex
from axes_support import read_plog
from conftest import example_png_and_svg_alike


def rnd(v):
    return math.trunc(v + 0.5) if v >= 0 else math.trunc(v - 0.5)


def session(path, scaling=(0.0, 6.0, 0.0, 1.0, 0.0, 10.0, 0.0, 2.0)):
    kolvex.metafl("PLOG")
    kolvex.filmod("DELE")
    kolvex.setfil(path)
    kolvex.kolini()
    kolvex.axspos(500, 1500)
    kolvex.axslen(1800, 1200)
    kolvex.nograf()
    kolvex.grace(0)  # bars standing on the axis keep their lower edge
    kolvex.graf(*scaling)


def rectangles(path):
    """The closed four-cornered pieces of the file as sorted corner tuples."""
    out = []
    for p in read_plog(path):
        if len(p) == 5 and p[0] == pytest.approx(p[-1], abs=1e-3):
            out.append(tuple(sorted((round(x), round(y)) for x, y in p[:4])))
    return out


def box(x0, y0, x1, y1):
    return tuple(sorted([(x0, y0), (x1, y0), (x1, y1), (x0, y1)]))


def test_grouped_vertical_bars_stand_where_the_rules_put_them(tmp_path):
    path = str(tmp_path / "b.met")
    session(path)
    x, heights = [1.0, 2.0, 4.0], [[3.0, 5.0, 8.0], [2.0, 7.5, 1.0]]
    kolvex.bargrp(2, 0.25)
    want = []
    W = abs(kolvex.xposn(2.0) - kolvex.xposn(1.0)) * 0.75
    w = W / (0.25 + 2)
    s = 0.25 * w
    for slot, ys in enumerate(heights, 1):
        kolvex.bars(x, [0.0] * 3, ys, 3)
        for xi, yi in zip(x, ys):
            xl = rnd(kolvex.xposn(xi) - W / 2 + (w + s) * (slot - 1))
            want.append(box(xl, rnd(kolvex.yposn(0.0)), xl + rnd(w), rnd(kolvex.yposn(yi))))
    kolvex.kolfin()
    got = rectangles(path)
    for r in want:
        assert r in got


def test_horizontal_single_and_variable_bars(tmp_path):
    path = str(tmp_path / "b.met")
    session(path)
    kolvex.bartyp("HORI")
    kolvex.barwth(-40.0)  # an absolute width in plot units
    kolvex.bars([4.0], [1.0], [5.0], 1)
    ya = rnd(kolvex.yposn(4.0) - 20)
    first = box(rnd(kolvex.xposn(1.0)), ya, rnd(kolvex.xposn(5.0)), ya + 40)
    # A single bar with a factor takes its width from the axis step.
    kolvex.bartyp("VERT")
    kolvex.barwth(0.5)
    kolvex.bars([3.0], [0.0], [6.0], 1)
    W = abs(kolvex.xposn(1.0) - kolvex.xposn(0.0)) * 0.5
    xl = rnd(kolvex.xposn(3.0) - W / 2)
    single = box(xl, rnd(kolvex.yposn(0.0)), xl + rnd(W), rnd(kolvex.yposn(6.0)))
    # VARI: each bar measures its own neighbours.
    kolvex.barmod("VARI", "WIDTH")
    xs = [1.0, 1.5, 3.5]
    kolvex.bars(xs, [0.0] * 3, [2.0] * 3, 3)
    d = [abs(kolvex.xposn(b) - kolvex.xposn(a)) for a, b in zip(xs, xs[1:])]
    widths = [d[0], min(d), d[1]]
    vari = []
    for xi, Wi in zip(xs, widths):
        Wi *= 0.5
        xl = rnd(kolvex.xposn(xi) - Wi / 2)
        vari.append(box(xl, rnd(kolvex.yposn(0.0)), xl + rnd(Wi), rnd(kolvex.yposn(2.0))))
    kolvex.kolfin()
    got = rectangles(path)
    for r in [first, single] + vari:
        assert r in got


def test_3d_look_adds_side_and_top_faces(tmp_path):
    path = str(tmp_path / "b.met")
    session(path)
    kolvex.bartyp("3DVE")
    kolvex.baropt(30.0, 45.0)
    kolvex.bars([2.0], [0.0], [4.0], 1)
    W = abs(kolvex.xposn(1.0) - kolvex.xposn(0.0)) * 0.75
    xl = rnd(kolvex.xposn(2.0) - W / 2)
    xr, y1, y2 = xl + rnd(W), rnd(kolvex.yposn(0.0)), rnd(kolvex.yposn(4.0))
    dx = dy = math.trunc(math.cos(math.radians(45)) * 30)
    kolvex.kolfin()
    pieces = [tuple(sorted((round(x), round(y)) for x, y in p[:4])) for p in read_plog(path) if len(p) == 5]
    assert box(xl, y1, xr, y2) in pieces
    assert tuple(sorted([(xr, y1), (xr + dx, y1 - dy), (xr + dx, y2 - dy), (xr, y2)])) in pieces
    assert tuple(sorted([(xl, y2), (xl + dx, y2 - dy), (xr + dx, y2 - dy), (xr, y2)])) in pieces


def ink_box(path, keep):
    pts = [pt for p in read_plog(path) for pt in p if keep(pt)]
    xs, ys = [p[0] for p in pts], [p[1] for p in pts]
    return min(xs), min(ys), max(xs), max(ys)


@pytest.mark.parametrize("height,code", [(8.0, "OUTS"), (-8.0, "OUTS"), (8.0, "INSI")])
def test_labels_above_below_and_inside(tmp_path, height, code):
    """Code 12 lands beyond the bar's end: above an upward bar, below a
    downward one; code 22 inside at its end."""
    path = str(tmp_path / "b.met")
    session(path, (0.0, 6.0, 0.0, 1.0, -10.0, 10.0, -10.0, 5.0))
    kolvex.height(30)
    kolvex.labels("SECO", "BARS")
    kolvex.labpos(code, "BARS")
    kolvex.labdig(-1, "BARS")
    kolvex.noarln()
    kolvex.bars([3.0], [0.0], [height], 1)
    end = kolvex.yposn(height)
    left, right = kolvex.xposn(2.625), kolvex.xposn(3.375)
    kolvex.kolfin()
    x0, y0, x1, y1 = ink_box(path, lambda p: True)
    assert left < x0 and x1 < right  # centred across the bar
    if code == "OUTS" and height > 0:
        assert y1 <= end - 30 + 1 and y0 >= end - 2.25 * 30 + 7.5 - 1
    elif code == "OUTS":
        assert y0 >= end + 30 - 1 and y1 <= end + 2 * 30 + 1
    else:
        assert y0 >= end + 1.5 * 30 - 1 and y1 <= end + 2.5 * 30 + 1


def test_barpos_fills_the_callers_arrays(tmp_path, capfd):
    session(str(tmp_path / "b.met"), (0.0, 6.0, 0.0, 1.0, 2.0, 10.0, 2.0, 2.0))
    x, y1 = [0.0] * 6, [5.0] * 6
    kolvex.barpos("BOTH")
    capfd.readouterr()
    kolvex.bars(x, y1, [7.0] * 6, 6)
    out = capfd.readouterr().out
    assert y1 == [2.0] * 6
    assert x[:5] == [1.0, 2.0, 3.0, 4.0, 5.0]
    assert "Warning 28" in out


def test_bad_input_warns_and_never_crashes(tmp_path, capfd):
    path = str(tmp_path / "b.met")
    session(path)
    capfd.readouterr()
    kolvex.bars([1.0, 2.0, float("nan")], [0.0, float("nan"), 0.0], [1.0, 2.0, 3.0], 3)
    kolvex.barwth(-1e9)
    kolvex.bars([1.0, 2.0], [0.0, 0.0], [1e300, -1e300], 2)
    kolvex.barwth(float("nan"))
    kolvex.bars([1.0, 2.0], [0.0, 0.0], [1.0, 2.0], 2)
    kolvex.bargrp(31, 0.0)
    kolvex.barmod("VARI", "HEIGHT")
    kolvex.bars3d([1.0], [1.0], [0.0], [1.0], [0.5], [0.5], [-1], 1)
    out = capfd.readouterr().out
    kolvex.kolfin()
    assert out.count("Warning 2:") == 2  # bargrp, barmod
    assert "out of axis scaling in bars" in out
    assert "Warning 3:" in out  # bars3d outside a 3-D axis system


def test_patterns_move_on_from_set_to_set(tmp_path):
    session(str(tmp_path / "b.met"))
    kolvex.patcyc(2, 7)
    kolvex.patcyc(3, 9)
    kolvex.bars([1.0], [0.0], [1.0], 1)
    second = kolvex.getpat()
    kolvex.bars([2.0], [0.0], [1.0], 1)
    assert (second, kolvex.getpat()) == (7, 9)


def test_text_shield_cuts_later_lines(tmp_path):
    path = str(tmp_path / "s.met")
    kolvex.metafl("PLOG")
    kolvex.filmod("DELE")
    kolvex.setfil(path)
    kolvex.kolini()
    kolvex.unit(0)
    kolvex.height(40)
    kolvex.linesp(1.5)  # the box reaches (1.5 - 1) h beyond the text
    kolvex.shield("MESS", "ON")
    kolvex.messag("SHIELD", 1000, 1000)
    n = kolvex.nlmess("SHIELD")
    kolvex.shield("MESS", "OFF")
    kolvex.xmove(500, 1020)
    kolvex.xdraw(2500, 1020)
    kolvex.kolfin()
    line = [p for p in read_plog(path) if all(abs(y - 1020) < 1e-3 for _, y in p)]
    xs = sorted(x for p in line for x, _ in p)
    assert len(line) == 2
    assert xs[1] == pytest.approx(1000 - 20, abs=1.5) and xs[2] == pytest.approx(1000 + n + 20, abs=1.5)


def test_example_page_same_on_png_and_svg():
    # Every mark that is not white: the fills' shades differ between the
    # two routes, their places must not.
    example_png_and_svg_alike("bars.py", threshold=200)


def test_automatic_shields_of_bars_symbols_and_legends(tmp_path):
    session(str(tmp_path / "b.met"))
    counts = []
    kolvex.shield("BARS", "ON")
    kolvex.bars([1.0, 2.0, 3.0], [1.0] * 3, [2.0] * 3, 3)
    counts.append(kolvex.shlind())          # one rectangle a bar
    kolvex.bartyp("3DVE")
    kolvex.bars([4.0], [1.0], [2.0], 1)
    counts.append(kolvex.shlind())          # and side and top as polygons
    kolvex.shield("BARS", "RESE")
    kolvex.bars([5.0], [1.0], [2.0], 1)
    counts.append(kolvex.shlind())
    kolvex.shield("SYMB", "ON")
    kolvex.rlsymb(3, 1.0, 5.0)
    kolvex.rlsymb(4, 2.0, 5.0)
    counts.append(kolvex.shlind())
    kolvex.shield("SYMB", "DELE")
    kolvex.endgrf()                         # a new system counts entries from 1
    kolvex.graf(0.0, 6.0, 0.0, 1.0, 0.0, 10.0, 0.0, 2.0)
    kolvex.shield("LEGE", "ON")
    kolvex.legini("", 1, 10)
    kolvex.leglin("", "bars", 1)
    kolvex.bars([1.0], [3.0], [4.0], 1)     # the first entry reserves the place
    counts.append(kolvex.shlind())
    kolvex.legend("", 7)                    # and the legend takes it over
    counts.append(kolvex.shlind())
    assert counts == [3, 6, 0, 2, 1, 1]


def test_bars3d_needs_a_3d_system(tmp_path, capfd):
    path = str(tmp_path / "b.met")
    kolvex.metafl("PLOG")
    kolvex.filmod("DELE")
    kolvex.setfil(path)
    kolvex.kolini()
    args = ([1.0, 2.0], [1.0, 2.0], [0.0, 0.0], [3.0, 5.0], [0.5, 0.5], [0.5, 0.5], [-1, 3], 2)
    kolvex.graf(0.0, 3.0, 0.0, 1.0, 0.0, 3.0, 0.0, 1.0)
    capfd.readouterr()
    kolvex.bars3d(*args)
    assert "Warning 3: Incorrect level in bars3d!" in capfd.readouterr().out
    kolvex.endgrf()
    # A colour system stands at the level of a 3-D one, but is not one.
    kolvex.graf3(0.0, 3.0, 0.0, 1.0, 0.0, 3.0, 0.0, 1.0, 0.0, 6.0, 0.0, 1.0)
    kolvex.bars3d(*args)
    assert "Warning 35: Confusion of graf3d and graf3 in bars3d!" in capfd.readouterr().out
    kolvex.endgrf()
    kolvex.graf3d(0.0, 3.0, 0.0, 1.0, 0.0, 3.0, 0.0, 1.0, 0.0, 6.0, 0.0, 1.0)
    kolvex.bars3d(*args)
    out = capfd.readouterr().out
    kolvex.endgrf()
    kolvex.kolfin()
    assert "Warning" not in out
    # Two bars of three faces, filled and outlined: closed pieces of four sides.
    assert sum(1 for p in read_plog(path) if len(p) == 5) >= 6
