"""Legends: sizes from the texts, the ten positions, entries recorded by the
curves, the warnings; and the everyday plot by two routes (PNG and SVG)."""
import math

import pytest

import kolvex
from conftest import needs
from test_curves import read_plog
import test_curves

H, S = 30, 2.0  # character height and line spacing of these tests


def session(device="PLOG", name="c.met", frame=0):
    kolvex.metafl(device)
    kolvex.setfil(name)
    kolvex.filmod("DELE")
    if device != "PLOG":
        kolvex.scrmod("REVERS")
    kolvex.kolini()
    kolvex.unit(0)
    test_curves.kolvex_page = kolvex.getpag()
    kolvex.complx()
    kolvex.height(H)
    kolvex.linesp(S)
    kolvex.frame(frame)
    kolvex.axspos(500, 1500)
    kolvex.axslen(1500, 1000)
    kolvex.nograf()
    kolvex.graf(0.0, 10.0, 0.0, 2.0, 0.0, 10.0, 0.0, 2.0)


TEXTS = ["first", "the second one", "3"]


def legend_lines(n=3, nmax=20):
    kolvex.legini("", n, nmax)
    for i, t in enumerate(TEXTS[:n]):
        kolvex.leglin("", t, i + 1)


def expected_size(texts, rows_h=None, frame=0, title=True, patt=4.0):
    p, m, d = int(H * patt), int(0.5 * S * H), int(H * 1.0)
    r, l = int(H * S), int(H * 1.0 * S)
    w = max(kolvex.nlmess(t) for t in texts) + d + p + 2 * m
    rows = rows_h or [1] * len(texts)
    h = (int(S * 1.5 * H) if title else 0) + 2 * m
    for i, th in enumerate(rows):
        h += (th - 1) * l + (r if i < len(rows) - 1 else H)
    return w + 2 * max(frame, 0) * (frame >= 1), h + 2 * max(frame, 0) * (frame >= 1)


def test_box_size_follows_the_texts():
    session()
    kolvex.curve([1.0, 2.0], [1.0, 2.0], 2)
    legend_lines()
    assert (kolvex.nxlegn(""), kolvex.nylegn("")) == expected_size(TEXTS)
    kolvex.frame(3)
    assert (kolvex.nxlegn(""), kolvex.nylegn("")) == expected_size(TEXTS, frame=3)
    kolvex.frame(0)
    kolvex.legtit("")
    assert kolvex.nylegn("") == expected_size(TEXTS, title=False)[1]
    kolvex.legval(-50.0, "MARG")  # an absolute margin of 50
    assert kolvex.nylegn("") == expected_size(TEXTS, title=False)[1] - 2 * int(0.5 * S * H) + 100


def test_mixed_lines_and_tables():
    session()
    kolvex.mixleg()
    kolvex.legini("", 3, 20)
    kolvex.leglin("", "one/two", 1)
    kolvex.leglin("", "x", 2)
    kolvex.leglin("", "y", 3)
    _, h = expected_size(["one", "x", "y"], rows_h=[2, 1, 1])
    assert kolvex.nylegn("") == h
    kolvex.legtyp("TABL")  # too late: after legini


def test_table_of_two_columns_filled_by_rows():
    session()
    kolvex.legtyp("TABL")
    kolvex.legini("", 5, 10)
    for i in range(5):
        kolvex.leglin("", "e%d" % i, i + 1)
    kolvex.legtbl(2, "HORI")
    p, m, d, c = 4 * H, int(0.5 * S * H), H, 2 * H
    # Filled by rows: the first column holds e0, e2, e4, the second e1, e3.
    w0 = max(kolvex.nlmess(t) for t in ("e0", "e2", "e4"))
    w1 = max(kolvex.nlmess(t) for t in ("e1", "e3"))
    assert kolvex.nxlegn("") == w0 + w1 + 2 * (d + p) + c + 2 * m
    assert kolvex.nylegn("") == int(S * 1.5 * H) + 2 * int(H * S) + H + 2 * m


@pytest.mark.parametrize("pos", range(1, 11))
def test_positions(pos):
    session(frame=1)
    kolvex.curve([1.0, 2.0], [1.0, 2.0], 2)
    kolvex.curve([1.0, 2.0], [2.0, 3.0], 2)
    kolvex.legini("", 2, 10)
    kolvex.leglin("", "a", 1)
    kolvex.leglin("", "b", 2)
    w, t = kolvex.nxlegn(""), kolvex.nylegn("")
    kolvex.legend("", pos)
    kolvex.endgrf()
    kolvex.kolfin()
    pts = [p for line in read_plog("c.met")[2:] for p in line]
    x0, y0 = min(p[0] for p in pts), min(p[1] for p in pts)
    x1, y1 = max(p[0] for p in pts), max(p[1] for p in pts)
    P, Q = kolvex_page_size()
    mm = int(H * 0.5)
    px, py, rx, ty = 500, 1500, 500 + 1500 - 1, 1500 - 1000 + 1
    want = {1: (mm, Q - mm - t + 2), 2: (P - mm - w + 2, Q - mm - t + 2), 3: (P - mm - w + 2, mm),
            4: (mm, mm), 5: (px + mm, py - mm - t + 2), 6: (rx - mm - w + 2, py - mm - t + 2),
            7: (rx - mm - w + 2, ty + mm), 8: (px + mm, ty + mm), 9: (mm, py - 1000 // 2 - t // 2),
            10: (P - mm - w + 2, py - 1000 // 2 - t // 2)}[pos]
    assert abs(x0 - want[0]) <= 1.01 and abs(y0 - want[1]) <= 1.01, (x0, y0, want)
    # A frame of 1 goes round the inner box, which is 2 smaller than the box.
    assert abs(x1 - (want[0] + w - 3)) <= 1.01 and abs(y1 - (want[1] + t - 3)) <= 1.01


def kolvex_page_size():
    nxp, nyp = test_curves.kolvex_page
    return nxp - 1, nyp - 1


def test_entries_repeat_the_curves():
    session()
    kolvex.chncrv("COLO")
    kolvex.curve([1.0, 2.0], [1.0, 2.0], 2)
    kolvex.incmrk(-1)
    kolvex.marker(3)
    kolvex.curve([1.0, 2.0], [2.0, 3.0], 2)
    kolvex.legini("", 2, 10)
    kolvex.legtit("")
    kolvex.legval(0.0, "DIST")
    x0, y0 = 100, 100
    kolvex.legpos(x0, y0)
    kolvex.legend("", 1)
    kolvex.endgrf()
    kolvex.kolfin()
    colours = []
    lines = read_plog("c.met", colours)
    sample = [ln for ln in lines if len(ln) == 2 and abs(ln[0][1] - ln[1][1]) < 0.01 and ln[0][0] < 400]
    m = int(0.5 * S * H)
    # Only the first entry has a line; the symbol entry has none.  One entry
    # has a line, so the pattern keeps its full width.
    p = 4 * H
    first = [ln for ln in sample if abs(ln[0][1] - (y0 + m + H // 2)) < 0.6]
    assert first and abs(first[0][0][0] - (x0 + m)) < 0.6 and abs(first[0][1][0] - (x0 + m + p)) < 0.6
    plus = [ln for ln in sample if abs(ln[0][1] - (y0 + m + int(H * S) + H // 2)) < 0.6]
    assert plus and abs((plus[0][0][0] + plus[0][1][0]) / 2 - (x0 + m + p // 2)) < 0.6
    assert len(set(c for c in colours[:2])) == 2


def test_warnings(capfd):
    session()
    kolvex.unit(6)
    kolvex.leglin("", "x", 1)
    kolvex.curve([1.0, 2.0], [1.0, 2.0], 2)
    kolvex.legini("", 3, 4)
    kolvex.leglin("", "too long", 1)
    kolvex.leglin("", "ok", 4)
    kolvex.legtyp("HORI")
    kolvex.legsel([1, 5], 2)
    kolvex.legend("", 11)
    kolvex.legend("", 1)
    out = capfd.readouterr().out
    assert "Warning 15: No call to legini before in leglin!" in out
    assert "Warning 16: Too long string for legend line in leglin!   (too long)" in out
    assert "Warning 2: Incorrect parameter in leglin!   ( 4)" in out
    assert "Warning 182: legtyp must be called before legini in legtyp!" in out
    assert "Warning 2: Incorrect parameter in legend!   ( 11)" in out
    assert "Warning 42: More legend lines than calls to curve in legend!   ( 2)" in out
    assert "Undefined legend line by legsel" in out and "Warning 149" in out


def test_own_patterns_replace_the_records(capfd):
    session()
    kolvex.unit(6)
    kolvex.legini("", 2, 10)
    kolvex.legpat(2, 1, 5, -1, -1, 1)
    kolvex.legpat(-1, 1, -1, -1, 16, 2)
    kolvex.leglin("", "dashed", 1)
    kolvex.leglin("", "patch", 2)
    kolvex.legend("", 7)
    assert "Warning" not in capfd.readouterr().out


def ink(path):
    from PIL import Image

    im = Image.open(path).convert("L")
    return im.size, im.load()


@needs("rsvg-convert")
def test_everyday_plot_same_on_png_and_svg(tmp_path):
    import subprocess
    import sys

    sys.path.insert(0, str(__import__("pathlib").Path(__file__).parents[1] / "examples"))
    import demo

    demo.draw("PNG", "d.png")
    kolvex.delglb()
    demo.draw("SVG", "d.svg")
    subprocess.run(["rsvg-convert", "-b", "white", "d.svg", "-o", "s.png"], check=True)
    (w, h), a = ink("d.png")
    (w2, h2), b = ink("s.png")
    assert (w, h) == (w2, h2)
    dark = [(x, y) for y in range(h) for x in range(w) if a[x, y] < 128]
    assert len(dark) > 5000
    near = sum(any(b[min(max(x + dx, 0), w - 1), min(max(y + dy, 0), h - 1)] < 200
                   for dx in (-1, 0, 1) for dy in (-1, 0, 1)) for x, y in dark)
    assert near / len(dark) > 0.97


def test_legsel_counts_zero_and_minus_one_reach_the_legend():
    """From Python too, a count of 0 shows no line and -1 all lines again."""
    session()
    legend_lines()
    full = kolvex.nylegn("")
    kolvex.legsel([1], 0)
    m = int(0.5 * S * H)
    assert kolvex.nylegn("") == int(S * 1.5 * H) + 2 * m
    kolvex.legsel([], -1)
    assert kolvex.nylegn("") == full


def test_areas_count_their_own_legend_lines(capfd):
    session()
    kolvex.unit(6)
    kolvex.legbgd(3)  # any colour from 0 up is a background
    kolvex.curve([1.0, 2.0], [1.0, 2.0], 2)
    kolvex.shdcrv([1.0, 2.0], [1.0, 1.0], 2, [1.0, 2.0], [3.0, 3.0], 2)
    # The area is the first of its kind: it takes line 1, the curve's.
    kolvex.legini("", 2, 10)
    kolvex.leglin("", "a", 1)
    kolvex.leglin("", "b", 2)
    kolvex.legend("", 3)
    out = capfd.readouterr().out
    assert "Warning 2" not in out
    assert "Warning 42: More legend lines than calls to curve in legend!   ( 1)" in out
