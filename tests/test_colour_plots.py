"""Colour plots: the value-to-colour rule, pixels of crvmat, crvqdr and
crvtri against it, the colour bar's place from the native metafile, SVG and
PDF pages against the PNG of the same page, getmat, and bad input."""
import subprocess

import numpy as np
import pytest

import kolvex
import test_curves
from conftest import have, needs

Image = pytest.importorskip("PIL.Image")

NXA, NYA, NXL, NYL = 400, 1700, 1600, 1200


def session(device="PNG", name="c.png", table=None, reverse=True):
    kolvex.metafl(device)
    kolvex.setfil(name)
    kolvex.filmod("DELE")
    kolvex.scrmod("REVERS" if reverse else "NOREV")
    kolvex.kolini()
    kolvex.unit(0)
    test_curves.kolvex_page = kolvex.getpag()
    if table:
        kolvex.setvlt(table)
    kolvex.axspos(NXA, NYA)
    kolvex.ax3len(NXL, NYL, NYL)


def graf3(za=0.0, ze=1.0, zor=0.0, zstp=0.25):
    kolvex.graf3(0.0, 3.0, 0.0, 1.0, 0.0, 2.0, 0.0, 1.0, za, ze, zor, zstp)


def rgb_of(index):
    return tuple(int(round(v * 255)) for v in kolvex.getind(index))


def warnings_of(capfd):
    return [l for l in capfd.readouterr().out.splitlines() if "Warning" in l]


def test_value_to_colour_rule_and_colour_range():
    session("VIRT", reverse=False)
    graf3()
    assert [kolvex.nzposn(v) for v in (0.0, 1.0, 0.5, 1.5, -0.1)] == [1, 254, 128, 255, 0]
    z = np.array([0.0, 0.25, 0.999, 1.0])
    out = np.zeros(4, dtype=np.int32)
    kolvex.colray(z, out, 4)
    assert list(out) == [kolvex.nzposn(v) for v in z]
    kolvex.endgrf()
    # A falling z axis exchanges the colours beyond the ends.
    graf3(1.0, 0.0, 1.0, -0.25)
    assert [kolvex.nzposn(v) for v in (1.5, -0.5, 1.0, 0.0)] == [0, 255, 1, 254]
    kolvex.endgrf()
    # colran cuts the range into its own bands.
    kolvex.colran(10, 20)
    assert kolvex.getran() == (10, 20)
    graf3()
    assert [kolvex.nzposn(v) for v in (0.0, 0.5, 1.0)] == [10, 15, 20]
    kolvex.endgrf()


def test_perceptual_tables_are_chosen_in_one_call():
    session("VIRT")
    for name, first, last in (("VIRI", 0x440154, 0xFDE725), ("MAGM", 0x000004, 0xFCFDBF)):
        kolvex.setvlt(name)
        assert kolvex.getvlt() in ("VIRIDIS", "MAGMA")
        assert rgb_of(1) == ((first >> 16) & 255, (first >> 8) & 255, first & 255)
        assert rgb_of(254) == ((last >> 16) & 255, (last >> 8) & 255, last & 255)
        assert rgb_of(0) == (255, 255, 255) or rgb_of(0) == (0, 0, 0)
        # lightness rises along the range
        lum = [sum(c * w for c, w in zip(rgb_of(i), (0.2126, 0.7152, 0.0722))) for i in range(1, 255)]
        assert all(b > a - 1.0 for a, b in zip(lum, lum[1:]))


def pixel(x, y):
    nx, ny = kolvex.nxposn(x), kolvex.nyposn(y)
    return kolvex.nxpixl(nx, ny), kolvex.nypixl(nx, ny)


# 4 by 3 values without symmetry, so that a swap of x and y shows.
Z = np.array([[0.05, 0.30, 0.55], [0.20, 0.95, 0.10], [0.70, 0.40, 0.85], [0.15, 0.60, 0.35]])


@pytest.mark.parametrize("mode", ["exact", "centred"])
def test_matrix_pixels_follow_the_rule(mode):
    session(table="VIRI")
    n, m = Z.shape
    if mode == "exact":
        kolvex.autres(0, 0)
    else:
        kolvex.autres(n, m)
    graf3()
    dx, dy = 3.0 / (n - 1), 2.0 / (m - 1)
    want = {}
    for i in range(n):
        for j in range(m):
            if mode == "exact":
                if i == n - 1 or j == m - 1:
                    continue
                x, y = (i + 0.5) * dx, (j + 0.5) * dy
            else:  # a point rectangle centred on the grid point, cut at the axes
                x, y = min(max(i * dx, 0.1), 2.9), min(max(j * dy, 0.1), 1.9)
            want[pixel(x, y)] = rgb_of(kolvex.nzposn(Z[i, j]))
    kolvex.crvmat(Z, n, m, 1, 1)
    kolvex.endgrf()
    kolvex.kolfin()
    im = Image.open("c.png").convert("RGB")
    assert {p: im.getpixel(p) for p in want} == want


def test_bilinear_sub_points():
    session()
    kolvex.autres(0, 0)
    graf3()
    z = np.array([[0.0, 0.0], [1.0, 1.0]])
    pa, pb = pixel(0.75, 1.0), pixel(2.25, 1.0)
    want = rgb_of(kolvex.nzposn(0.0)), rgb_of(kolvex.nzposn(0.5))
    kolvex.crvmat(z, 2, 2, 2, 1)  # two sub-cells in x: 0 and the mid-value 0.5
    kolvex.endgrf()
    kolvex.kolfin()
    im = Image.open("c.png").convert("RGB")
    assert (im.getpixel(pa), im.getpixel(pb)) == want


@pytest.mark.parametrize("nancrv", ["OFF", "ON"])
def test_nan_values_are_never_a_random_colour(nancrv):
    session()
    kolvex.autres(0, 0)
    kolvex.nancrv(nancrv)
    graf3()
    z = np.array([[np.nan, 0.5], [0.5, 0.5]])
    p = pixel(0.7, 0.5)
    # without nancrv a NaN takes the colour below the range; with it the
    # cell is left out and the page shows
    want = rgb_of(kolvex.nzposn(-1.0)) if nancrv == "OFF" else (255, 255, 255)
    kolvex.crvmat(z, 2, 2, 1, 1)
    kolvex.endgrf()
    kolvex.kolfin()
    assert Image.open("c.png").convert("RGB").getpixel(p) == want


def test_quadrilaterals_and_triangles_flat_and_smooth(capfd):
    session(table="GREY")
    graf3()
    x = np.array([0.0, 1.0, 1.0, 0.0, 1.5, 2.5, 2.5, 1.5])
    y = np.array([0.0, 0.0, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0])
    z = np.array([0.1, 0.3, 0.5, 0.3, 0.0, 1.0, 1.0, 0.0])
    flat = pixel(0.5, 0.5)
    want_flat = rgb_of(kolvex.nzposn(0.3))
    kolvex.crvqdr(x[:4], y[:4], z[:4], 7 - 3)  # 4 points: one quadrilateral
    kolvex.shdmod("SMOO", "SURFACE")
    kolvex.crvtri(x, y, z, 8, np.array([5, 5]), np.array([6, 7]), np.array([7, 8]), 2)
    left, right = pixel(1.55, 0.5), pixel(2.45, 0.5)
    kolvex.endgrf()
    kolvex.kolfin()
    im = Image.open("c.png").convert("RGB")
    assert im.getpixel(flat) == want_flat
    # smooth: grey levels follow x through the table
    assert im.getpixel(left)[0] < 40 and im.getpixel(right)[0] > 215
    row = [im.getpixel((px, left[1]))[0] for px in range(left[0], right[0] + 1)]
    assert all(b >= a for a, b in zip(row, row[1:]))
    # A vector file cannot hold the colour-number shading: warning 40 and
    # nothing drawn.
    session("SVG", "c.svg")
    kolvex.unit(6)
    kolvex.shdmod("SMOO", "SURFACE")
    kolvex.nobar()
    kolvex.nograf()
    graf3()
    kolvex.crvqdr(x, y, z, 8)
    kolvex.endgrf()
    kolvex.kolfin()
    assert " <<<< Warning 40: File format and output device are incompatible in crvqdr!" in warnings_of(capfd)
    svg = open("c.svg").read()
    assert not any(tag in svg for tag in ("<line", "<path", "<polygon", "<rect"))
    kolvex.shdmod("FLAT", "SURFACE")


def test_autres_refuses_the_magnitude(capfd):
    session()
    kolvex.unit(6)
    kolvex.autres(-1, 5)
    kolvex.autres(20, -10001)
    kolvex.autres(4, 3)
    assert warnings_of(capfd) == [
        " <<<< Warning 2: Incorrect parameter in autres!   ( 1)",
        " <<<< Warning 2: Incorrect parameter in autres!   ( 10001)",
    ]


def bar_pieces(colour):
    lines, colours = [], []
    for line, c in zip(test_curves.read_plog("c.met", colours), colours):
        if c == colour:
            lines.extend(line)
    return np.round(np.array(lines).reshape(-1, 2))


@pytest.mark.parametrize("jus, vx, vy", [("STAR", 0, 0), ("CENT", 30, -20), ("END", -15, 40)])
def test_bar_place_from_the_metafile(jus, vx, vy):
    session("PLOG", "c.met")
    kolvex.ax3len(NXL, NYL, 800)
    kolvex.widbar(70)
    kolvex.spcbar(50)
    kolvex.vkxbar(vx)
    kolvex.vkybar(vy)
    kolvex.jusbar(jus)
    graf3()
    kolvex.endgrf()
    kolvex.kolfin()
    length = 800
    bx = NXA + vx + 50 + NXL
    by = {"STAR": NYA - vy, "CENT": NYA - vy - (NYL - length) // 2, "END": NYA - vy - NYL + length}[jus]
    low, high = bar_pieces(1), bar_pieces(254)
    assert low[:, 0].min() == bx and low[:, 0].max() == bx + 69
    assert low[:, 1].max() == by and high[:, 1].min() == by - (length - 1)
    assert high[:, 1].max() < by - length + 10


def test_nobar_leaves_the_scale():
    session("PLOG", "c.met")
    kolvex.nobar()
    graf3()
    assert kolvex.nzposn(1.0) == 254
    kolvex.endgrf()
    kolvex.kolfin()
    assert len(bar_pieces(1)) == 0


def heat_page(device, name, n):
    session(device, name, table="VIRI")
    kolvex.autres(n, n)
    x = np.linspace(0, 3, n)
    z = np.sin(2 * x)[:, None] * np.cos(3 * x[:, None].T) * 0.5 + 0.5
    kolvex.graf3(0.0, 3.0, 0.0, 1.0, 0.0, 3.0, 0.0, 1.0, 0.0, 1.0, 0.0, 0.25)
    kolvex.crvmat(z, n, n, 1, 1)
    kolvex.endgrf()
    kolvex.kolfin()


def render(kind, name):
    if kind == "SVG":
        subprocess.run(["rsvg-convert", "-w", "853", "-h", "603", "-b", "white", "-o", "r.png", name], check=True)
    else:
        subprocess.run(["pdftoppm", "-png", "-singlefile", "-scale-to", "853", name, "r"],
                       check=True)
    return np.asarray(Image.open("r.png").convert("RGB"), dtype=float)


@pytest.mark.parametrize("kind", ["SVG", "PDF"])
@pytest.mark.parametrize("n", [40, 400])  # rectangles, and a picture
def test_vector_pages_agree_with_the_png(kind, n):
    tool = "rsvg-convert" if kind == "SVG" else "pdftoppm"
    if not have(tool):
        pytest.skip(f"{tool} is not installed")
    heat_page("PNG", "p.png", n)
    png = np.asarray(Image.open("p.png").convert("RGB"), dtype=float)
    name = "p." + kind.lower()
    heat_page(kind, name, n)
    other = render(kind, name)
    x0, y0 = NXA * 853 // 2970 + 3, (NYA - NYL) * 603 // 2100 + 3
    x1, y1 = (NXA + NXL) * 853 // 2970 - 3, NYA * 603 // 2100 - 3
    diff = np.abs(png[y0:y1, x0:x1] - other[y0:y1, x0:x1]).mean()
    assert diff < 6
    if n == 400:
        import os
        assert os.path.getsize(name) < 600_000  # the matrix is one picture


def test_getmat_spreads_points():
    session("VIRT")
    graf3()
    x = np.array([1.0, 2.2, 0.4])
    y = np.array([1.0, 0.3, 1.7])
    z = np.array([5.0, 2.0, 3.0])
    zmat = np.zeros((7, 5))
    kolvex.mdfmat(1, 1, 2.0)
    kolvex.getmat(x, y, z, 3, zmat, 7, 5, -1.0)
    gx, gy = np.meshgrid(np.linspace(0, 3, 7), np.linspace(0, 2, 5), indexing="ij")
    # a point on a grid point gives it its value; far grid points hold zval
    assert zmat[2, 2] == 5.0 and zmat[6, 4] == -1.0
    # elsewhere inverse squared distances over the window of one step
    i, j = 4, 1
    near = [(k, (gx[i, j] - x[k]) ** 2 + (gy[i, j] - y[k]) ** 2) for k in range(3)
            if abs(x[k] - gx[i, j]) < 0.5 + 1e-9 and abs(y[k] - gy[i, j]) < 0.5 + 1e-9]
    w = np.array([1 / d for _, d in near])
    assert zmat[i, j] == pytest.approx((w * z[[k for k, _ in near]]).sum() / w.sum())
    kolvex.endgrf()


def test_getmat_takes_the_grid_of_a_3d_system():
    # A 2-D system met earlier must not lend its limits to the 3-D one.
    session("VIRT")
    graf3()
    kolvex.endgrf()
    kolvex.graf3d(10.0, 20.0, 10.0, 5.0, -4.0, 4.0, -4.0, 2.0, 0.0, 1.0, 0.0, 0.5)
    zmat = np.zeros((3, 3))
    kolvex.mdfmat(1, 1, 2.0)
    kolvex.getmat(np.array([15.0]), np.array([0.0]), np.array([7.0]), 1, zmat, 3, 3, -1.0)
    kolvex.endgrf()
    # The point sits on grid point (1, 1); the window of one step reaches
    # the grid points after it, not those before.
    want = np.full((3, 3), -1.0)
    want[1:, 1:] = 7.0
    assert zmat == pytest.approx(want)


def test_bad_input_warns_and_goes_on(capfd):
    session("VIRT")
    kolvex.unit(6)
    kolvex.setres(-1, 5)
    assert kolvex.getres()[1] == 5
    kolvex.colran(0, 300)
    kolvex.widbar(-1)
    kolvex.mdfmat(0, 1, 2.0)
    kolvex.graf3(0.0, 3.0, 0.0, 1.0, 0.0, 2.0, 0.0, 1.0, 0.5, 0.5, 0.5, 0.1)  # zmin == zmax
    assert kolvex.getlev() == 1
    graf3()
    one = np.array([[0.5]])
    kolvex.crvmat(one, 1, 1, 1, 1)
    kolvex.crvmat(Z, 4, 3, 0, 1)
    kolvex.crvmat(Z, 4, 3, 100000, 100000)  # refused at once, no hang
    kolvex.crvqdr(Z[0], Z[0], Z[0], 3)
    kolvex.curve3(np.array([np.nan, 1.0, 9.0]), np.array([1.0, np.nan, 1.0]), np.array([0.2, 0.3, 0.4]), 3)
    kolvex.endgrf()
    kolvex.graf3d(0.0, 3.0, 0.0, 1.0, 0.0, 2.0, 0.0, 1.0, 0.0, 1.0, 0.0, 0.5)
    kolvex.crvmat(Z, 4, 3, 1, 1)
    kolvex.endgrf()
    w = warnings_of(capfd)
    assert w[:4] == [
        " <<<< Warning 1: Negative parameter in setres!   ( -1)",
        " <<<< Warning 2: Incorrect parameter in colran!   ( 300)",
        " <<<< Warning 2: Incorrect parameter in widbar!   ( -1)",
        " <<<< Warning 2: Incorrect parameter in mdfmat!   ( 0)",
    ]
    assert " <<<< Warning 10: Begin and end of scaling are equal in graf3!" in w
    assert w.count(" <<<< Warning 2: Incorrect parameter in crvmat!   ( 1)") == 1
    assert " <<<< Warning 2: Incorrect parameter in crvmat!   ( 0)" in w
    assert " <<<< Warning 2: Incorrect parameter in crvmat!   ( 100000)" in w
    assert " <<<< Warning 2: Incorrect parameter in crvqdr!   ( 3)" in w
    assert w[-1] == " <<<< Warning 35: Confusion of graf3d and graf3 in crvmat!"


def test_example_on_png_and_svg_alike():
    from conftest import example_png_and_svg_alike
    example_png_and_svg_alike("colour_matrix.py")
