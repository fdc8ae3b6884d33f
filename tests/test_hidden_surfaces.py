"""Hidden-line surfaces: a ridge that must hide the plane behind it, seen in
the lines of the metafile and in the pixels of the PNG; the two sides in
their colours; a function against the same matrix; the settings' warnings;
the extent of sursze in the colour matrix; PNG against SVG of the example."""
import numpy as np
import pytest

import kolvex
from axes_support import read_plog
from conftest import example_png_and_svg_alike

Image = pytest.importorskip("PIL.Image")

X = np.linspace(0, 4, 21)
RIDGE = np.zeros((21, 21))
RIDGE[:, 4] = 1.5          # a wall along x at y = 0.8, rising from the row y = 0.6


def warnings_of(capfd):
    return [l for l in capfd.readouterr().out.splitlines() if l.startswith(" <<<< Warning")]


def open_page(fmt, name, hide=True, view=(1.8, -5, 2.2)):
    kolvex.metafl(fmt)
    kolvex.setfil(name)
    kolvex.filmod("DELE")
    kolvex.scrmod("REVERS")
    kolvex.kolini()
    if not hide:
        kolvex.nohide()
    kolvex.view3d(*view, "ABS")
    kolvex.nograf()
    kolvex.graf3d(0, 4, 0, 1, 0, 4, 0, 1, 0, 2, 0, 1)


def ridge_page(fmt, name, hide=True, after=None, keep=False):
    open_page(fmt, name, hide)
    if keep:
        kolvex.shlsur()
    kolvex.surfce(X, 21, X, 21, RIDGE)
    if after:
        after()
    face = [kolvex.rel3pt(x, y, z) for x, y, z in ((0.5, 0.6, 0), (3.5, 0.6, 0), (3.5, 0.8, 1.5), (0.5, 0.8, 1.5))]
    probes = {"behind": kolvex.rel3pt(2.1, 1.6, 0), "top": kolvex.rel3pt(2.1, 0.8, 1.5),
              "line": kolvex.rel3pt(2.1, 1.7, 0.05)}
    kolvex.endgrf()
    kolvex.kolfin()
    return face, probes


def inside(poly, p, margin):
    """Whether p lies in the convex polygon at least `margin` from its edges."""
    sign = None
    for (x0, y0), (x1, y1) in zip(poly, poly[1:] + poly[:1]):
        ex, ey = x1 - x0, y1 - y0
        d = (ex * (p[1] - y0) - ey * (p[0] - x0)) / np.hypot(ex, ey)
        if abs(d) < margin:
            return False
        if sign is None:
            sign = d > 0
        elif (d > 0) != sign:
            return False
    return True


def flat_points_in(face, name):
    """Points along the flat (more horizontal than steep) lines of a
    metafile that fall inside the wall's front face: only lines behind the
    wall could be there."""
    n = 0
    for piece in read_plog(name):
        for (x0, y0), (x1, y1) in zip(piece, piece[1:]):
            if abs(y1 - y0) >= abs(x1 - x0):
                continue
            for t in np.linspace(0, 1, 9):
                n += inside(face, (x0 + t * (x1 - x0), y0 + t * (y1 - y0)), 4)
    return n


def ink(name):
    return np.asarray(Image.open(name).convert("L")) < 128


def ink_near(mask, p, r=2):
    # Plot units to pixels of the DA4L page.
    s = mask.shape[1] / 2970
    x, y = int(round(p[0] * s)), int(round(p[1] * s))
    return mask[y - r:y + r + 1, x - r:x + r + 1].any()


def test_ridge_hides_the_plane_behind_it():
    face, _ = ridge_page("PLOG", "hide.met")
    assert flat_points_in(face, "hide.met") == 0
    face, _ = ridge_page("PLOG", "all.met", hide=False)
    assert flat_points_in(face, "all.met") > 50
    # The same on pixels; the wall's top edge shows in both.
    _, probes = ridge_page("PNG", "hide.png")
    ridge_page("PNG", "all.png", hide=False)
    hid, full = ink("hide.png"), ink("all.png")
    assert ink_near(hid, probes["top"]) and ink_near(full, probes["top"])
    assert ink_near(full, probes["behind"]) and not ink_near(hid, probes["behind"])
    assert hid.sum() < full.sum()


def test_shlsur_keeps_the_horizon_for_later_lines():
    def line_behind():
        kolvex.strt3d(0.2, 1.7, 0.05)
        kolvex.conn3d(3.8, 1.7, 0.05)
    _, probes = ridge_page("PNG", "plain.png", after=line_behind)
    assert ink_near(ink("plain.png"), probes["line"])
    _, probes = ridge_page("PNG", "kept.png", after=line_behind, keep=True)
    assert not ink_near(ink("kept.png"), probes["line"])


def colours(name):
    a = np.asarray(Image.open(name).convert("RGB")).astype(int)
    red = (a[..., 0] > 150) & (a[..., 1] < 90) & (a[..., 2] < 90)
    blue = (a[..., 2] > 150) & (a[..., 0] < 90) & (a[..., 1] < 90)
    return red.sum(), blue.sum()


@pytest.mark.parametrize("vis, want_red, want_blue", [("BOTH", True, True), ("TOP", True, False),
                                                       ("BOTT", False, True)])
def test_the_two_sides_in_their_colours(vis, want_red, want_blue):
    kolvex.imgfmt("RGB")
    open_page("PNG", "sides.png", view=(3, -4, -0.9))
    kolvex.surclr(kolvex.intrgb(1, 0, 0), kolvex.intrgb(0, 0, 1))
    kolvex.survis(vis)
    kolvex.surfun(lambda x, y: 1 + 0.12 * ((x - 2) ** 2 - (y - 2) ** 2), 1, 0.2, 1, 0.2)
    kolvex.endgrf()
    kolvex.kolfin()
    red, blue = colours("sides.png")
    assert (red > 200) == want_red and (blue > 200) == want_blue


def test_surfun_draws_what_surmat_draws_and_raises_after():
    def f(x, y):
        return 1 + np.sin(x) * np.cos(y)
    z = np.array([[f(x, y) for y in X] for x in X])
    for name, draw in (("mat.png", lambda: kolvex.surmat(z, 21, 21, 1, 1)),
                       ("fun.png", lambda: kolvex.surfun(lambda x, y: float(f(x, y)), 1, 0.2, 1, 0.2))):
        open_page("PNG", name, view=(4, -5, 4))
        kolvex.sursze(0, 4, 0, 4)
        draw()
        kolvex.endgrf()
        kolvex.kolfin()
    a, b = ink("mat.png"), ink("fun.png")
    assert a.sum() > 3000 and (a != b).sum() < 0.02 * a.sum()
    calls = []

    def bad(x, y):
        calls.append(1)
        raise KeyError("stop")
    open_page("PNG", "bad.png")
    with pytest.raises(KeyError):
        kolvex.surfun(bad, 1, 0.5, 1, 0.5)
    kolvex.endgrf()
    kolvex.kolfin()
    assert len(calls) == 1


def test_bad_calls_warn_and_draw_nothing(capfd):
    kolvex.metafl("PLOG")
    kolvex.setfil("w.met")
    kolvex.filmod("DELE")
    kolvex.kolini()
    kolvex.nograf()
    kolvex.graf3(0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1)
    kolvex.surmat([0, 1, 2, 3], 2, 2, 1, 1)
    kolvex.endgrf()
    capfd.readouterr()
    kolvex.graf3d(0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1)
    kolvex.surmat([0, 1], 1, 2, 1, 1)
    kolvex.surfce([0, 1], 2, [0], 1, [0, 1])
    kolvex.surfun(lambda x, y: 0.0, 1, 0.0, 1, 0.1)
    kolvex.surfun(lambda x, y: 0.0, -1, 0.1, 1, 0.1)
    kolvex.sursze(1, 1, 0, 1)
    kolvex.surclr(-2, 0)
    kolvex.survis("SIDE")
    out = warnings_of(capfd)
    kolvex.surmat([0, 1, 2, 3], 2, 2, 0, 0)     # no lines asked: nothing, no warning
    assert warnings_of(capfd) == []
    kolvex.endgrf()
    kolvex.kolfin()
    assert [w.split(":")[0].split()[-1] for w in out] == ["2", "2", "2", "2", "10", "2", "2"]
    assert "Begin and end of scaling are equal" in out[4]


def test_sursze_places_the_colour_matrix():
    kolvex.metafl("PNG")
    kolvex.setfil("m.png")
    kolvex.filmod("DELE")
    kolvex.scrmod("REVERS")
    kolvex.kolini()
    kolvex.nograf()
    kolvex.graf3(0, 10, 0, 2, 0, 10, 0, 2, 0, 1, 0, 1)
    kolvex.sursze(2, 6, 4, 8)
    kolvex.crvmat(np.ones((5, 5)), 5, 5, 1, 1)
    inner = kolvex.nxposn(4), kolvex.nyposn(6)
    outer = kolvex.nxposn(8), kolvex.nyposn(2)
    kolvex.endgrf()
    kolvex.kolfin()
    m = ink("m.png") | (np.asarray(Image.open("m.png").convert("L")) < 250)
    assert ink_near(m, inner) and not ink_near(m, outer)


def test_example_png_and_svg_alike():
    example_png_and_svg_alike("hidden_surfaces.py")


@pytest.mark.parametrize("pts, lines", [(1, 10), (-2, 6), (-3, 4)])
def test_nohide_draws_every_line_front_first_and_strides_skip_lines(pts, lines):
    kolvex.metafl("PLOG")
    kolvex.setfil("n.met")
    kolvex.filmod("DELE")
    kolvex.kolini()
    kolvex.nohide()
    kolvex.nograf()
    kolvex.graf3d(0, 4, 0, 1, 0, 4, 0, 1, 0, 1, 0, 1)
    far = 4 - 4 % abs(pts)
    want = kolvex.rel3pt(4, 0, 0.5), kolvex.rel3pt(4, far, 0.5)
    kolvex.surmat(np.full((5, 5), 0.5), 5, 5, pts, pts)
    kolvex.endgrf()
    kolvex.kolfin()
    pieces = read_plog("n.met")
    assert len(pieces) == lines
    # The eye stands at positive x and negative y: the first line runs along
    # y at the largest x, from y = 0 to the last line a stride reaches.
    ends = pieces[0][0], pieces[0][-1]
    assert np.allclose(ends, want, atol=1.0)


def test_bars_draw_one_box_per_point_above_the_base():
    kolvex.metafl("PLOG")
    kolvex.setfil("c.met")
    kolvex.filmod("DELE")
    kolvex.kolini()
    kolvex.nohide()
    kolvex.polcrv("BARS")
    kolvex.nograf()
    kolvex.graf3d(0, 2, 0, 1, 0, 2, 0, 1, 0, 2, 0, 1)
    # One point above the base z = 0; the others below it are left out.
    z = np.full((3, 3), -1.0)
    z[1, 1] = 1.5
    kolvex.surfce([0, 1, 2], 3, [0, 1, 2], 3, z)
    top = [kolvex.rel3pt(1 + d, 1 + d, 1.5) for d in (-0.375, 0.375)]
    kolvex.endgrf()
    kolvex.kolfin()
    pieces = read_plog("c.met")
    # The top and bottom rectangles, then the four upright edges.
    assert [len(p) for p in pieces] == [5, 5, 2, 2, 2, 2]
    for corner in top:
        assert min(np.hypot(x - corner[0], y - corner[1]) for x, y in pieces[0]) < 1.0
