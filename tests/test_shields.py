"""Shield regions: lines read back from the native metafile must be cut
exactly at the borders of every region kind, and the store must keep its
identifiers, visibility and limits."""
import math

import pytest

import kolvex
from axes_support import read_plog, segments


def warnings_of(out):
    return [line for line in out.split("\n") if "<<<< Warning" in line]


def drawn(tmp_path, register, lines):
    """Registers regions, draws the lines, returns the drawn segments."""
    path = str(tmp_path / "s.met")
    kolvex.metafl("PLOG")
    kolvex.filmod("DELE")
    kolvex.setfil(path)
    kolvex.kolini()
    kolvex.frame(0)  # no frame round own regions: only the cut lines count
    register()
    for (x0, y0, x1, y1) in lines:
        kolvex.xmove(x0, y0)
        kolvex.xdraw(x1, y1)
    kolvex.kolfin()
    return segments(read_plog(path))


def length(segs):
    return sum(math.hypot(b[0] - a[0], b[1] - a[1]) for a, b in segs)


H = (500, 1050, 1500, 1050)
CASES = [
    # region, line, drawn length
    (lambda: kolvex.shlrec(1000, 1000, 200, 100), H, 500 + 301),
    (lambda: kolvex.shlrec(1000, 1000, 200, 100), (1100, 1050, 1500, 1050), 301),  # starts inside
    (lambda: kolvex.shlrec(1000, 1000, 200, 100), (1100, 1020, 1150, 1080), 0),  # wholly inside
    (lambda: kolvex.shlcir(1000, 1050, 100), H, 800),
    (lambda: kolvex.shlcir(1000, 1050, 100), (1000, 1050, 1500, 1050), 400),  # starts at the centre
    (lambda: kolvex.shlell(1000, 1050, 200, 100, 0), H, 600),
    (lambda: kolvex.shlell(1000, 1050, 200, 100, 90), H, 800),
    (lambda: kolvex.shlrct(1000, 1000, 200, 200, 45), (500, 1000, 1500, 1000), 1000 - 199 * math.sqrt(2)),
    (lambda: kolvex.shlpie(1000, 1050, 100, 0, 90), (500, 1000, 1500, 1000), 1000 - math.sqrt(100**2 - 50**2)),
    (lambda: kolvex.shlpie(1000, 1050, 100, 0, 360), H, 800),
    (lambda: kolvex.shlpol([900, 1100, 1000], [1000, 1000, 1200], 3), (500, 1100, 1500, 1100), 900),
    (lambda: kolvex.shlpol([900, 1100, 1000], [1000, 1000, 1200], 3), (1000, 1100, 1500, 1100), 450),  # ends inside
]


@pytest.mark.parametrize("register,line,want", CASES)
def test_lines_are_cut_at_each_region_kind(tmp_path, register, line, want):
    segs = drawn(tmp_path, register, [line])
    assert length(segs) == pytest.approx(want, abs=1.5)


def test_own_regions_get_the_frame_of_the_axis_setting(tmp_path):
    def register():
        kolvex.frame(1)
        kolvex.shlrec(1000, 1000, 200, 100)
        kolvex.frame(0)
        kolvex.shlcir(2000, 1050, 100)

    segs = drawn(tmp_path, register, [])
    assert length(segs) == pytest.approx(2 * (199 + 99), abs=2)


def test_grid_of_lines_is_cut_exactly_across_a_box(tmp_path):
    lines = [(100, y, 2800, y) for y in range(900, 1300, 10)]
    segs = drawn(tmp_path, lambda: kolvex.shlrec(1000, 1000, 200, 100), lines)
    for a, b in segs:
        mx, my = (a[0] + b[0]) / 2, (a[1] + b[1]) / 2
        assert not (1000 < mx < 1199 and 1000 <= my <= 1099)
    crossing = [y for y in range(900, 1300, 10) if 1000 <= y <= 1099]
    assert length(segs) == pytest.approx(2700 * 40 - 199 * len(crossing), abs=2)


def test_hidden_deleted_and_reset_regions(tmp_path, capfd):
    ids = []

    def register():
        kolvex.shlrec(1000, 1000, 200, 100)     # id 1
        kolvex.shlcir(2000, 1050, 100)          # id 2
        kolvex.shlvis(1, "OFF")
        ids.append(kolvex.shlind())
        kolvex.shlres(1)                        # takes the circle
        ids.append(kolvex.shlind())
        kolvex.shldel(0)
        ids.append(kolvex.shlind())
        kolvex.shlcir(2000, 1050, 100)          # the store restarts: id 1
        kolvex.shlvis(1, "OFF")
        kolvex.shlvis(1, "ON")

    segs = drawn(tmp_path, register, [(500, 1050, 2500, 1050)])
    assert ids == [2, 1, 0]
    assert length(segs) == pytest.approx(1800, abs=1.5)


def test_bad_regions_warn_and_store_nothing(tmp_path, capfd):
    counts = []

    def register():
        capfd.readouterr()
        kolvex.shlcir(100, 100, 0)
        kolvex.shlrec(100, 100, 0, 5)
        kolvex.shlpol([1, 1, 2], [1, 1, 2], 3)
        kolvex.shlpol([1, 2, 3, 1], [1, 5, 1, 1], 4)   # closing point dropped
        kolvex.shlres(0)
        kolvex.shldel(-1)
        kolvex.shlell(10, 10, 0, 5, 0)
        counts.append(kolvex.shlind())
        for i in range(400):
            kolvex.shlrec(i, i, 5, 5)
        counts.append(kolvex.shlind())

    drawn(tmp_path, register, [(0, 0, 2900, 2000)])
    out = warnings_of(capfd.readouterr().out)
    assert counts[0] == 1
    assert 100 <= counts[1] <= 170
    assert any("Warning 30" in w for w in out)
    assert any("Blanking buffer overflow" in w for w in out)
    assert sum("Warning 2:" in w or "Warning  2" in w or "Warning 2 " in w for w in out) >= 1


def test_frames_round_own_pie_and_polygon_regions(tmp_path):
    def register():
        kolvex.frame(2)  # the outline and one more at a distance of one unit
        kolvex.shlpol([1000, 1100, 1100, 1000], [1000, 1000, 1100, 1100], 4)
        kolvex.frame(1)
        kolvex.shlpie(2000, 1500, 100, 0, 90)
        kolvex.frame(0)

    segs = drawn(tmp_path, register, [])
    square = 400 + 4 * 102
    sector = 100 * math.pi / 2 + 200
    assert length(segs) == pytest.approx(square + sector, abs=3)


def test_polygon_on_a_3d_plane_lies_where_the_plane_draws(tmp_path):
    # The polygon is given in the plane's coordinates, like the line; away
    # from the plane's own mapping it would miss the line entirely.
    path = str(tmp_path / "p.met")

    def longest(shield):
        kolvex.metafl("PLOG")
        kolvex.filmod("DELE")
        kolvex.setfil(path)
        kolvex.kolini()
        kolvex.graf3d(-3.0, 3.0, -3.0, 1.0, -3.0, 3.0, -3.0, 1.0, -3.0, 3.0, -3.0, 1.0)
        kolvex.grfini(-3.0, -3.0, 0.0, 3.0, -3.0, 0.0, 3.0, 3.0, 0.0)
        if shield:
            kolvex.shlpol([2100, 2300, 2300, 2100], [900, 900, 1100, 1100], 4)
        kolvex.line(500, 1000, 2500, 1000)
        kolvex.grffin()
        kolvex.endgrf()
        kolvex.kolfin()
        return max(sum(math.dist(p[i], p[i + 1]) for i in range(len(p) - 1)) for p in read_plog(path))

    whole = longest(False)
    assert longest(True) < 0.8 * whole
