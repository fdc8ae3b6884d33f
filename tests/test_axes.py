"""Axis systems: automatic scaling, the positions of ticks and labels in the
native metafile, and bad input."""
import math
import time

import pytest

import kolvex
from conftest import example_png_and_svg_alike
from axes_support import read_plog, segments

X0, Y0, XL, YL = 494, 1799, 1980, 1400   # defaults of the DA4L page


def session(name="axes.met"):
    kolvex.metafl("PLOG")
    kolvex.setfil(name)
    kolvex.filmod("DELE")
    kolvex.kolini()


def finish():
    kolvex.unit(0)
    kolvex.kolfin()


def warnings_of(capfd):
    return [l for l in capfd.readouterr().out.splitlines() if l.startswith(" <<<< Warning")]


@pytest.mark.parametrize("lo, hi, length, want", [
    (1.0, 2.0, 2000, (1.0, 2.0, 1.0, 0.2, 1)),
    (0.0, 7.0, 2000, (0.0, 7.0, 0.0, 1.0, -1)),
    (0.0, 7.0, 1000, (0.0, 7.0, 0.0, 2.0, -1)),
    (3.0, 7.5, 2000, (3.0, 7.5, 3.0, 1.0, -1)),
    (3.2, 7.5, 2000, (3.2, 7.5, 4.0, 1.0, -1)),
    (-3.5, 3.5, 2000, (-3.5, 3.5, -3.0, 1.0, -1)),
    (0.0, 0.35, 2000, (0.0, 0.35, 0.0, 0.05, 2)),
])
def test_automatic_scaling_of_linear_axes(lo, hi, length, want):
    session()
    kolvex.axslen(length, 1000)
    got = kolvex.gaxpar(lo, hi, "NOEX", "X")
    assert got[:4] == pytest.approx(want[:4]) and got[4] == want[4]
    finish()


def test_setscl_feeds_graf_and_reversed_limits_come_back_exchanged(capfd):
    session()
    kolvex.scale("LOG", "Y")
    kolvex.setscl([1.0, 1000.0], 2, "Y")
    kolvex.setscl([5.0, 5.0], 2, "X")
    kolvex.graf(0, 0, 0, 0, 0, 0, 0, 0)
    assert kolvex.getgrf("Y") == pytest.approx((0.0, 3.0, 0.0, 1.0))
    assert kolvex.getgrf("X")[:2] == pytest.approx((4.0, 6.0))
    assert kolvex.yposn(10.0) == pytest.approx(Y0 - (YL - 1) / 3)
    kolvex.endgrf()
    assert warnings_of(capfd) == [
        " <<<< Warning 25: Minimum equal maximum (added -1 and +1) in setscl!"]
    assert kolvex.gaxpar(7.0, 0.0, "NOEX", "X") == pytest.approx((7.0, 0.0, 7.0, -1.0, -1))
    assert kolvex.gaxpar(0.3, 9.5, "EXTE", "X")[:2] == pytest.approx((0.0, 10.0))
    finish()


def test_awkward_data_ranges_end_in_a_scaling_or_a_warning(capfd):
    for data in ([1e-300, 2e-300], [-1e300, 1e300], [3.0] * 5, [-2.5, 0.0, 4.0]):
        session()
        kolvex.setscl(data, len(data), "XY")
        t = time.time()
        kolvex.graf(0, 0, 0, 0, 0, 0, 0, 0)
        assert time.time() - t < 5
        if kolvex.getlev() == 2:
            a, e, orl, step = kolvex.getgrf("X")
            assert a <= orl <= e and step > 0
            kolvex.endgrf()
        finish()
    capfd.readouterr()
    session()
    kolvex.scale("LOG", "XY")
    kolvex.setscl([-5.0, -1.0], 2, "XY")
    kolvex.graf(0, 0, 0, 0, 0, 0, 0, 0)
    assert kolvex.getgrf("X") == pytest.approx((-1.0, 0.0, -1.0, 1.0))
    kolvex.endgrf()
    w = warnings_of(capfd)
    assert " <<<< Warning 23: Non positive minimum for log scaling (set to 0.1) in graf!" in w
    assert " <<<< Warning 24: Non positive maximum for log scaling (set to 1.0) in graf!" in w
    finish()


def test_bad_scalings_leave_level_one(capfd):
    session()
    cases = [((0, 0, 0, 1, 0, 1, 0, 1), "Warning 10: Begin and end of scaling are equal"),
             ((0, 1, 0, 0, 0, 1, 0, 1), "Warning 9: Step equal zero"),
             ((0, 1, 0, math.nan, 0, 1, 0, 1), "Warning 9: Step equal zero"),
             ((0, 1, 0, 1, math.nan, 1, 0, 1), "Warning 10: Begin and end of scaling are equal")]
    for args, text in cases:
        kolvex.graf(*args)
        assert kolvex.getlev() == 1
        assert any(text in l for l in warnings_of(capfd))
    kolvex.graf(0, 10, 2, -1, 0, 1, 0, 1)       # wrong sign: drawn all the same
    assert kolvex.getlev() == 2
    kolvex.graf(0, 1, 0, 1, 0, 1, 0, 1)
    w = warnings_of(capfd)
    assert any("Warning 50: Incorrect sign for step" in l for l in w)
    assert w[-1] == " <<<< Warning 3: Incorrect level in graf!   ( 2)"
    kolvex.endgrf()
    assert kolvex.getlev() == 1
    t = time.time()
    kolvex.graf(0, 1e6, 0, 1, 0, 1e-6, 0, 1e-12)   # a million labels, 1e6 ticks
    kolvex.endgrf()
    assert time.time() - t < 5
    finish()


def ticks_of(path, axis_y):
    """x of the vertical tick segments that start or end on the line y."""
    out = {}
    for (x0, y0), (x1, y1) in segments(read_plog(path)):
        if abs(x0 - x1) < 0.01 and min(abs(y0 - axis_y), abs(y1 - axis_y)) < 0.01 and abs(y1 - y0) > 1:
            out[round(x0)] = round(abs(y1 - y0))
    return out


@pytest.mark.parametrize("scaling, log", [
    ((0.0, 10.0, 0.0, 2.0), False),
    ((10.0, 0.0, 10.0, -2.5), False),
    ((-0.3, 0.7, -0.2, 0.2), False),
    ((0.0, 3.0, 0.0, 1.0), True),
])
def test_tick_positions_follow_the_scaling(tmp_path, scaling, log):
    session("ticks.met")
    kolvex.setgrf("TICK", "NONE", "NONE", "NONE")
    kolvex.frame(0)
    kolvex.noline("X")
    if log:
        kolvex.scale("LOG", "X")
    a, e, orl, s = scaling
    kolvex.graf(a, e, orl, s, 0.0, 1.0, 0.0, 1.0)
    kolvex.endgrf()
    finish()
    got = ticks_of(tmp_path / "ticks.met", Y0)
    f = (XL - 1) / (e - a)
    want = {}
    if log:
        for i in range(0, 4):
            want[math.trunc(i * f + X0 + 0.5)] = 24
        for dec in range(0, 3):
            for j in range(2, 10):
                want[X0 + round((dec + math.log10(j)) * f)] = 16
    else:
        ds = s / 2
        for i in range(-math.trunc((orl - a) / ds + 1e-4), math.trunc((e - orl) / ds + 1e-4) + 1):
            want[math.trunc(i * f * ds + (orl - a) * f + X0 + 0.5)] = 24 if i % 2 == 0 else 16
    assert got == want


def _strokes(path):
    return sorted((round(a[0], 1), round(a[1], 1), round(b[0], 1), round(b[1], 1))
                  for a, b in segments(read_plog(path)))


@pytest.mark.parametrize("axis, vert", [("X", False), ("X", True), ("Y", False), ("Y", True)])
def test_label_positions_follow_the_formulas(tmp_path, axis, vert):
    """The labels of graf against the same texts drawn by messag where the
    formulas put them (no ticks, so the base line is the label distance)."""
    a, e, orl, step = -0.5, 2.5, 0.0, 0.5
    session("graf.met")
    kolvex.setgrf("LABE" if axis == "X" else "NONE", "LABE" if axis == "Y" else "NONE", "NONE", "NONE")
    kolvex.frame(0)
    kolvex.noline("XY")
    kolvex.ticks(0, "XY")
    if vert:
        kolvex.labtyp("VERT", axis)
    kolvex.graf(a, e, orl, step, a, e, orl, step)
    kolvex.endgrf()
    finish()
    session("messag.met")
    h = 36
    length = XL if axis == "X" else YL
    f = (length - 1) / (e - a)
    for i in range(6):
        v = orl + i * step
        text = kolvex.fcha(v, 1)
        w = kolvex.nlmess(text)
        d = (v - a) * f
        if axis == "X" and not vert:
            kolvex.messag(text, math.trunc(d + X0 + 0.5 - w / 2), Y0 + 24)
        elif axis == "X":
            wmax = max(kolvex.nlmess(kolvex.fcha(orl + k * step, 1)) for k in range(6))
            kolvex.angle(90)
            kolvex.messag(text, math.trunc(d + X0 + 0.5 - h / 2), Y0 + 24 + w)
            assert wmax >= w
        elif not vert:
            kolvex.messag(text, X0 - 24 - w, math.trunc(Y0 - 0.5 - d - h / 2))
        else:
            kolvex.angle(90)
            kolvex.messag(text, X0 - 24 - h, math.trunc(Y0 - 0.5 - d + w / 2))
        kolvex.angle(0)
    finish()
    assert _strokes(tmp_path / "graf.met") == _strokes(tmp_path / "messag.met")


def test_example_page_on_png_and_svg_alike():
    """The example's page of axes drawn as PNG and as SVG (rendered by
    rsvg-convert) has its dark pixels in the same places."""
    example_png_and_svg_alike("axes.py")


def test_setting_warnings_and_crossed_systems(capfd, tmp_path):
    session("cros.met")
    kolvex.mylab("a", 1, "X")
    kolvex.mylab("b", 1, "X")
    kolvex.mylab("c", 101, "X")
    kolvex.titlin("t", 5)
    kolvex.axstyp("CROS")
    kolvex.scale("LOG", "X")
    kolvex.graf(0, 2, 0, 1, -1, 1, -1, 1)
    assert kolvex.getlev() == 1
    kolvex.scale("LIN", "X")
    kolvex.graf(1, 2, 1, 1, -1, 1, -1, 1)
    assert kolvex.getlev() == 1
    kolvex.graf(-2, 2, -2, 1, -1, 1, -1, 1)
    assert kolvex.getlev() == 2
    kolvex.grid(-1, 0)
    kolvex.endgrf()
    assert warnings_of(capfd) == [
        " <<<< Warning 6: Same tick number as in a call before in mylab!   ( 1)",
        " <<<< Warning 2: Incorrect parameter in mylab!   ( 101)",
        " <<<< Warning 2: Incorrect parameter in titlin!   ( 5)",
        " <<<< Warning 150: Crossed axis systems must have linear scaling in graf!",
        " <<<< Warning 151: No origin found for crossed axis system in graf!",
        " <<<< Warning 2: Incorrect parameter in grid!   ( -1)"]
    # nograf computes the system and draws nothing.
    kolvex.axstyp("RECT")
    kolvex.nograf()
    kolvex.graf(0, 1, 0, 1, 0, 1, 0, 1)
    assert kolvex.xposn(1.0) == pytest.approx(X0 + XL - 1)
    kolvex.endgrf()
    finish()
    assert read_plog(tmp_path / "cros.met") and len(segments(read_plog(tmp_path / "cros.met"))) > 20


def test_numbers_draw_their_texts(tmp_path, capfd):
    """number, nlnumb and rlnumb against messag and nlmess of the texts that
    the number settings give."""
    session("number.met")
    kolvex.numode("COMM", "POIN", "NONE", "NOEQ")
    kolvex.number(1234567.5, 1, 100, 100)
    assert kolvex.nlnumb(1234567.5, 1) == kolvex.nlmess("1.234.567,5")
    kolvex.numode("POIN", "NONE", "NONE", "NOEQ")
    kolvex.numfmt("EXP")
    kolvex.number(9.996, 2, 100, 300)
    kolvex.numfmt("FLOA")
    kolvex.graf(0, 10, 0, 2, 0, 10, 0, 2)
    kolvex.rlnumb(-0.004, 2, 5.0, 5.0)
    x, y = kolvex.nxposn(5.0), kolvex.nyposn(5.0)
    kolvex.endgrf()
    kolvex.number(2.5, 101, 100, 500)
    assert kolvex.nlnumb(2.5, -2) == 0
    finish()
    assert warnings_of(capfd) == [" <<<< Warning 2: Incorrect parameter in number!   ( 101)",
                                  " <<<< Warning 2: Incorrect parameter in nlnumb!   ( -2)"]
    session("messag.met")
    kolvex.messag("1.234.567,5", 100, 100)
    kolvex.mixalf()
    kolvex.messag("1.00*10[1$", 100, 300)
    kolvex.reset("MIXA")
    kolvex.graf(0, 10, 0, 2, 0, 10, 0, 2)
    kolvex.endgrf()
    kolvex.messag("0.00", x, y)
    finish()
    assert _strokes(tmp_path / "number.met") == _strokes(tmp_path / "messag.met")


@pytest.mark.parametrize("jus", ["AUTO", "RIGH"])
def test_power_labels_are_placed_by_the_width_of_10(tmp_path, jus):
    """Left of a logarithmic Y axis: AUTO aligns the "10"s from the far edge
    of the widest label, RIGH ends each "10" at the label distance."""
    a, e = -2.0, 1.0
    session("graf.met")
    kolvex.setgrf("NONE", "LABE", "NONE", "NONE")
    kolvex.frame(0)
    kolvex.noline("XY")
    kolvex.ticks(0, "XY")
    kolvex.scale("LOG", "Y")
    kolvex.labels("LOG", "Y")
    kolvex.labdig(-1, "Y")
    kolvex.labjus(jus, "Y")
    kolvex.graf(0.0, 1.0, 0.0, 1.0, a, e, a, 1.0)
    kolvex.endgrf()
    finish()
    session("messag.met")
    kolvex.mixalf()
    texts = ["10[%d$" % v for v in range(-2, 2)]
    w10 = kolvex.nlmess("10")
    x = X0 - 24 - (max(kolvex.nlmess(t) for t in texts) if jus == "AUTO" else w10)
    f = (YL - 1) / (e - a)
    for i, t in enumerate(texts):
        kolvex.messag(t, x, math.trunc(Y0 - 0.5 - i * f - 36 / 2))
    finish()
    assert _strokes(tmp_path / "graf.met") == _strokes(tmp_path / "messag.met")

@pytest.mark.parametrize("given, whole", [((-1.0, 1.5), (-2.0, 2.0)), ((0.5, 2.0), (0.0, 3.0)),
                                          ((1.5, -0.5), (2.0, -1.0))])
def test_zaxlg_widens_to_decades_by_the_cut_towards_zero(tmp_path, given, whole):
    """Ends that are already whole exponents still move out a decade, except
    a start at or above 0 on a rising bar (the tolerance is far too small to
    hold them)."""
    for name, mode, (a, e) in (("wide.met", "BOTH", given), ("whole.met", "NONE", whole)):
        session(name)
        kolvex.labdig(-1, "Z")
        kolvex.expzlb(mode)
        step = 1.0 if e > a else -1.0
        kolvex.zaxlg(a, e, a, step, 1000, "Z", 0, 1, 500, 1500)
        finish()
    # Ticks alternate their direction across the session: compare undirected.
    def undirected(path):
        return sorted(min(s[:2], s[2:]) + max(s[:2], s[2:]) for s in _strokes(path))
    assert undirected(tmp_path / "wide.met") == undirected(tmp_path / "whole.met")

def test_axsers_keeps_the_axis_lines_of_a_raster_page():
    """The erased inside stays one device dot away from the axes, which on a
    raster page spans several plot units."""
    from PIL import Image
    kolvex.metafl("PNG")
    kolvex.setfil("axsers.png")
    kolvex.filmod("DELE")
    kolvex.scrmod("REVERS")
    kolvex.kolini()
    kolvex.graf(0, 10, 0, 2, 0, 10, 0, 2)
    kolvex.axsers()
    kolvex.endgrf()
    finish()
    im = Image.open("axsers.png").convert("L")
    w, h = im.size
    s = w / 2969
    row = int((Y0 - YL // 2) * s + 0.5)
    dark = [x for x in range(w) if im.getpixel((x, row)) < 128]
    # The left and the right axis line both survive.
    assert dark and dark[0] <= int(X0 * s + 0.5) + 1 and dark[-1] >= int((X0 + XL - 1) * s + 0.5) - 1


def test_graf_frame_on_a_raster_page_steps_by_device_dots():
    """A frame of 3 on a page drawn at two dots a unit is one solid band of
    trunc((x + 2) s + 0.5) - trunc(x s + 0.5) + 1 dots, no gaps."""
    from PIL import Image
    kolvex.metafl("PNG")
    kolvex.setfil("frame.png")
    kolvex.filmod("DELE")
    kolvex.scrmod("REVERS")
    kolvex.winsiz(2 * 2969, 2 * 2099)
    kolvex.kolini()
    kolvex.setgrf("NONE", "NONE", "NONE", "NONE")
    kolvex.frame(3)
    kolvex.graf(0, 1, 0, 1, 0, 1, 0, 1)
    kolvex.endgrf()
    finish()
    im = Image.open("frame.png").convert("L")
    dark = [x for x in range(im.size[0] // 2) if im.getpixel((x, 2 * (Y0 - YL // 2))) < 128]
    n = math.trunc((X0 + 2) * 2 + 0.5) - math.trunc(X0 * 2 + 0.5) + 1
    assert len(dark) == n and dark[-1] - dark[0] == n - 1
