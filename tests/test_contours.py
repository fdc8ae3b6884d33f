"""Contour lines: the traced points against the field and an independent
marching-squares tracer, closed lines, saddles, holes, the drawn page on PNG
and SVG, and bad input."""

import numpy as np
import pytest

import kolvex
from conftest import example_png_and_svg_alike
import test_curves


def read_plog(path, colour=None):
    """Polylines of the native metafile (of one colour when given), pieces
    of one line joined."""
    out, colours = [], []
    for line, c in zip(test_curves.read_plog(path, colours), colours):
        if colour is not None and c != colour:
            continue
        if out and np.hypot(line[0][0] - out[-1][-1][0], line[0][1] - out[-1][-1][1]) < 1e-3:
            out[-1].extend(line[1:])
        else:
            out.append(list(line))
    return out


def grid(n=61, m=47, f=lambda X, Y: X ** 2 + Y ** 2):
    x = np.linspace(-2.0, 2.0, n)
    y = np.linspace(-1.5, 1.5, m)
    X, Y = np.meshgrid(x, y, indexing="ij")
    return x, y, f(X, Y)


def lines_of(x, y, z, lev, maxpts=200000, maxlin=2000):
    xp, yp = np.zeros(maxpts), np.zeros(maxpts)
    npt = np.zeros(maxlin, dtype=np.int32)
    nl = kolvex.conpts(x, len(x), y, len(y), z, lev, xp, yp, maxpts, npt, maxlin)
    out, k = [], 0
    for c in npt[:nl]:
        out.append(np.column_stack([xp[k:k + c], yp[k:k + c]]))
        k += c
    return out


def warnings_of(capfd):
    return [l for l in capfd.readouterr().out.splitlines() if "Warning" in l]


def test_points_lie_on_the_level_and_rings_close():
    x, y, z = grid()
    h = x[1] - x[0]
    for lev in (0.3, 1.0, 2.2):
        lines = lines_of(x, y, z, lev)
        assert len(lines) == 1
        p = lines[0]
        # linear interpolation of x^2 + y^2: error at most about h^2
        assert np.abs(p[:, 0] ** 2 + p[:, 1] ** 2 - lev).max() < 1.5 * h * h
        assert np.array_equal(p[0], p[-1])  # the ring ends with its first point
        # higher values on the right hand: a ring around a minimum runs
        # counter-clockwise in user coordinates
        area = 0.5 * np.sum(p[:-1, 0] * p[1:, 1] - p[1:, 0] * p[:-1, 1])
        assert area > 0


def test_lines_agree_with_an_independent_marching_squares():
    measure = pytest.importorskip("skimage.measure")
    x, y, z = grid(f=lambda X, Y: np.sin(2 * X) * np.cos(3 * Y) + 0.3 * X)
    h = x[1] - x[0]
    for lev in (-0.7, 0.1, 0.55):
        ours = np.vstack(lines_of(x, y, z, lev))
        ref = measure.find_contours(z, lev)
        ref = np.vstack([np.column_stack([np.interp(c[:, 0], np.arange(len(x)), x),
                                          np.interp(c[:, 1], np.arange(len(y)), y)]) for c in ref])
        # each point of one set near the polyline points of the other
        d1 = np.sqrt(((ours[:, None, :] - ref[None, :, :]) ** 2).sum(-1)).min(1)
        d2 = np.sqrt(((ref[:, None, :] - ours[None, :, :]) ** 2).sum(-1)).min(1)
        assert d1.max() < h and d2.max() < h


def test_line_count_agrees_with_contourpy():
    contourpy = pytest.importorskip("contourpy")
    x, y, z = grid(81, 81, lambda X, Y: np.cos(3 * np.hypot(X, Y)) + 0.1 * X)
    gen = contourpy.contour_generator(x, y, z.T, name="serial", corner_mask=False)
    for lev in (-0.5, 0.0, 0.6):
        ours = lines_of(x, y, z, lev)
        ref = gen.lines(lev)
        assert len(ours) == len(ref)
        closed = sum(np.array_equal(p[0], p[-1]) for p in ours)
        assert closed == sum(np.array_equal(r[0], r[-1]) for r in ref)


def test_saddle_is_decided_by_the_mean():
    x = np.array([0.0, 1.0])
    y = np.array([0.0, 1.0])
    z = np.array([[1.0, 0.0], [0.0, 1.0]])  # (0,0) and (1,1) high
    # mean 0.5 above 0.4: the high corners are joined, lines cut off the
    # low corners (1,0) and (0,1)
    lines = lines_of(x, y, z, 0.4)
    assert len(lines) == 2
    corners = sorted(tuple(np.round(np.mean(p, 0))) for p in lines)
    assert corners == [(0.0, 1.0), (1.0, 0.0)]
    # mean equal to the level counts as below: the low corners are joined
    lines = lines_of(x, y, z, 0.5)
    assert len(lines) == 2
    corners = sorted(tuple(np.round(np.mean(p, 0))) for p in lines)
    assert corners == [(0.0, 0.0), (1.0, 1.0)]


def test_nan_cells_are_holes():
    x, y, z = grid(f=lambda X, Y: X + 0 * Y)
    z[28:33, 20:27] = np.nan
    lines = lines_of(x, y, z, 0.0)  # the line x = 0 meets the hole
    assert len(lines) == 2
    pts = np.vstack(lines)
    assert np.isfinite(pts).all()
    assert np.allclose(pts[:, 0], 0.0, atol=1e-12)
    # no point inside a cell with a NaN corner: between y[19] and y[27]
    assert not ((pts[:, 1] > y[19] + 1e-12) & (pts[:, 1] < y[27] - 1e-12)).any()
    # a ring cut by a hole becomes one open line
    x, y, z = grid()
    z[36:40, 21:26] = np.nan
    lines = lines_of(x, y, z, 0.3)
    assert len(lines) == 1 and not np.array_equal(lines[0][0], lines[0][-1])
    z[:] = np.nan
    assert lines_of(x, y, z, 0.3) == []


def test_empty_results_and_bad_input(capfd):
    x, y, z = grid(11, 9)
    assert lines_of(x, y, z, -1.0) == [] and lines_of(x, y, z, 100.0) == []
    assert lines_of(x, y, np.full_like(z, 2.0), 2.0) == []  # equal counts as below
    assert lines_of(x[:1], y[:1], z[:1, :1].copy(), 0.5) == []
    # non-monotonic vectors trace the same topology without trouble
    xs = x.copy()
    xs[[3, 7]] = xs[[7, 3]]
    assert len(lines_of(xs, y, z, 1.0)) == 1
    # overflows give their warnings and a well formed result
    xp, yp = np.zeros(10), np.zeros(10)
    npt = np.zeros(1, dtype=np.int32)
    x, y, z = grid(41, 41, lambda X, Y: np.cos(4 * X) * np.cos(4 * Y))
    nl = kolvex.conpts(x, 41, y, 41, z, 0.5, xp, yp, 10, npt, 1)
    assert nl == 1 and npt[0] == 10
    w = warnings_of(capfd)
    assert w[0] == " <<<< Warning 2: Incorrect parameter in conpts!   ( 1)"
    assert " <<<< Warning 117: Overflow - Too many contour lines in conpts!" in w
    assert w.count(" <<<< Warning 116: Overflow - Too many contour points in conpts!") == 1
    kolvex.conmod(-1.0, 2.0)
    kolvex.conmod(0.5, 1.0)
    kolvex.congap(-0.1)
    kolvex.conclr([1] * 257, 257)
    assert [l for l in warnings_of(capfd) if "Warning 3:" not in l] == [
        " <<<< Warning 2: Incorrect parameter in conmod!   ( -1)",
        " <<<< Warning 2: Incorrect parameter in conmod!   ( 1)",
        " <<<< Warning 2: Incorrect parameter in congap!   ( 0)",
        " <<<< Warning 2: Incorrect parameter in conclr!   ( 257)",
    ]


def session(device="PLOG", name="c.met"):
    kolvex.metafl(device)
    kolvex.setfil(name)
    kolvex.filmod("DELE")
    kolvex.kolini()
    kolvex.unit(0)
    test_curves.kolvex_page = kolvex.getpag()
    kolvex.axspos(400, 1700)
    kolvex.axslen(2000, 1500)
    kolvex.nograf()
    kolvex.graf(-2.0, 2.0, -2.0, 1.0, -1.5, 1.5, -1.5, 0.5)


def test_drawn_lines_follow_conpts_and_labels_cut_gaps():
    x, y, z = grid()
    traced = lines_of(x, y, z, 1.0)[0]
    session(name="a.met")
    kolvex.contur(x, len(x), y, len(y), z, 1.0)
    kolvex.endgrf()
    kolvex.kolfin()
    plain = np.array(read_plog("a.met")[0])
    px = 400 + (traced[:, 0] + 2) * 1999 / 4
    py = 1700 - (traced[:, 1] + 1.5) * 1499 / 3
    assert len(plain) == len(traced)
    assert np.abs(plain[:, 0] - px).max() < 1.0 and np.abs(plain[:, 1] - py).max() < 1.0

    session(name="b.met")
    kolvex.labels("FLOA", "CON")
    kolvex.labclr(2, "CON")
    kolvex.conmat(z, len(x), len(y), 1.0)  # the same grid over the axis range
    kolvex.contur(x, 1, y, len(y), z[:1], 1.0)  # warning 2, nothing drawn
    kolvex.endgrf()
    kolvex.kolfin()
    # the line in pieces with gaps, plus the strokes of the digits; the
    # pieces of the line stay on the line
    line_colour = []
    test_curves.read_plog("a.met", line_colour)
    pieces = [np.array(l) for l in read_plog("b.met", line_colour[0])]
    assert len(pieces) >= 2 and len(read_plog("b.met")) > len(pieces) + 2
    on = np.vstack(pieces)
    a, ab = plain[:-1], np.diff(plain, axis=0)
    t = np.clip(((on[:, None, :] - a) * ab).sum(-1) / np.maximum((ab * ab).sum(-1), 1e-12), 0, 1)
    d = np.hypot(*(a + t[..., None] * ab - on[:, None, :]).transpose(2, 0, 1)).min(1)
    assert d.max() < 4.0  # the gap's ends lie on a chord: within its sagitta
    total = sum(np.hypot(*np.diff(p, axis=0).T).sum() for p in pieces)
    assert total < np.hypot(*np.diff(plain, axis=0).T).sum() - 20


def test_page_on_png_and_svg_alike():
    example_png_and_svg_alike("contours.py", threshold=200)


def labelled_ring(name, lev, ndig, thick=1, scale=1.0):
    x, y, z = grid()
    z = z * scale
    session(name=name)
    kolvex.labels("FLOA", "CON")
    kolvex.labdig(ndig, "CON")
    kolvex.labclr(2, "CON")
    kolvex.thkcrv(thick)
    kolvex.contur(x, len(x), y, len(y), z, lev)
    kolvex.endgrf()
    kolvex.kolfin()
    return open(name).read()


def test_automatic_digits_and_thick_lines_label_once():
    # -2 chooses the digits by the level: two for 0.25, none for 100
    assert labelled_ring("a.met", 0.25, -2) == labelled_ring("b.met", 0.25, 2)
    assert labelled_ring("a.met", 1.0, -2) == labelled_ring("b.met", 1.0, -1)
    assert labelled_ring("a.met", 1.0, -2) != labelled_ring("b.met", 1.0, 1)
    assert labelled_ring("a.met", 100.0, -2, scale=100) == labelled_ring("b.met", 100.0, -1, scale=100)
    # a thick line writes every label once, and all its passes keep the gaps
    labelled_ring("a.met", 1.0, 1)
    labelled_ring("b.met", 1.0, 1, thick=3)
    colours = []
    test_curves.read_plog("a.met", colours)
    text_colour = [c for c in colours if c != colours[0]][0]
    one, three = read_plog("a.met", text_colour), read_plog("b.met", text_colour)
    assert one and one == three
    assert len(read_plog("b.met", colours[0])) == 3 * len(read_plog("a.met", colours[0]))


def test_conmat_runs_from_the_start_of_a_falling_axis():
    # The matrix's first row belongs to the axis's start, here its right end.
    x, y, z = grid(f=lambda X, Y: (X + 2) ** 2 + Y)
    pages = []
    for name, explicit in (("a.met", True), ("b.met", False)):
        kolvex.metafl("PLOG")
        kolvex.setfil(name)
        kolvex.filmod("DELE")
        kolvex.kolini()
        kolvex.unit(0)
        test_curves.kolvex_page = kolvex.getpag()
        kolvex.nograf()
        kolvex.graf(2.0, -2.0, 2.0, -1.0, -1.5, 1.5, -1.5, 0.5)
        if explicit:
            kolvex.contur(x[::-1].copy(), len(x), y, len(y), z, 3.0)
        else:
            kolvex.conmat(z, len(x), len(y), 3.0)
        kolvex.endgrf()
        kolvex.kolfin()
        pages.append(read_plog(name))
    assert len(pages[0]) == 1 and np.allclose(pages[0], pages[1], atol=1.0)
