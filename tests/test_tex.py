"""TeX mode: the geometry of scripts, fractions and limits as measured by
nlmess, the drawn formula in pixels, SVG against PNG, and the parser's
warnings."""
import re

import numpy as np
import pytest

import kolvex as k
from conftest import example_png_and_svg_alike


def start(device="PLOG", name="t", size=None, hgt=60):
    k.metafl(device)
    k.setfil(f"{name}." + ("met" if device == "PLOG" else device.lower()))
    k.filmod("DELE")
    if size:
        k.winsiz(*size)
    k.kolini()
    k.complx()
    k.height(hgt)
    k.texmod("ON")


def at_height(h, s):
    old = k.gethgt()
    k.height(h)
    n = k.nlmess(s)
    k.height(old)
    return n


def test_scripts_fractions_and_limits_measure_by_the_rules():
    start()
    nl = k.nlmess
    gap = nl("$x^{}$") - nl("$x$")  # an empty exponent leaves one gap
    assert gap == 15  # 0.25 of the height 60
    # the exponent has the script height round(0.6 * 60) = 36
    assert nl("$x^2$") == pytest.approx(nl("$x$") + at_height(36, "$2$") + gap, abs=1)
    assert nl("$x^2_3$") == nl("$x_3^2$") == pytest.approx(nl("$x^2$"), abs=1)
    k.texval(0.5, "EXP")  # 0.6 * 60 * 0.5 = 18
    assert nl("$x^2$") == pytest.approx(nl("$x$") + at_height(18, "$2$") + gap, abs=1)
    k.texval(1.0, "EXP")
    # a fraction is as wide as its wider part at the script height, plus two gaps
    assert nl(r"$\frac{abc}{b}$") == pytest.approx(at_height(36, "$abc$") + 2 * gap, abs=1)
    assert nl(r"$\frac{b}{abc}$") == nl(r"$\frac{abc}{b}$")
    # an invisible left bracket takes no room, the right one is still measured
    assert nl(r"$\left. x \right)$") < nl(r"$\left( x \right)$")
    assert nl(r"$\left. x \right)$") > nl(r"$\left. x \right.$")
    # limits above and below take no room beside the sum; at the right they do
    above = nl(r"$\sum_{i=1}^n$")
    assert nl(r"$\sum\nolimits_{i=1}^n$") > above + 30
    k.texopt("OFF", "LIMI")
    assert nl(r"$\sum_{i=1}^n$") > above + 30
    assert nl(r"$\sum\limits_{i=1}^n$") == above
    # text mode keeps ^ as a character; TeX off reads the dollars too
    assert nl("x^2") > nl("$x^2$") - 10 and nl("x^2") > nl("x2")
    k.texmod("OFF")
    assert nl(r"$\alpha$") > nl("$x$")


def test_parser_warnings_go_out_under_messag(capfd):
    start()
    capfd.readouterr()
    cases = [(r"$x^2^3$", 144), (r"\foo", 142), (r"$\frac a$", 137), (r"$\frac{a}$", 148),
             ("{" * 9 + "a" + "}" * 9, 146), ("a}", 147), (r"$\left| x$", 176),
             (r"$\left < x$", 176), (r"$x \right)$", 176), (r"$\sqrt[3 x$", 145),
             (r"\hat x", 139), (r"\vec x", 140), (r"\underline x", 141), (r"$\big<$", 143),
             ("\\" + "a" * 40, 142), (r"$\sqrt{\sqrt{\sqrt{\sqrt{\sqrt{\sqrt{\sqrt{\sqrt{\sqrt{x}}}}}}}}}$", 136)]
    for s, n in cases:
        k.nlmess(s)
        out = capfd.readouterr().out
        assert re.findall(r"Warning (\d+): .* in messag!", out) == [str(n)], s
    # nested depth within the limits, and escaped characters, are fine
    for s in [r"$x^{2^{3^{4}}}$", r"\{\}\$\^\_", r"$\sqrt[3]{\frac{1}{\left( x \right)}}$",
              r"$\not= \not < \copyright \diameter$", r"{\red a} {\LARGE b} {\SS c} $\sin x$"]:
        k.nlmess(s)
    assert capfd.readouterr().out == ""
    k.texval(0.0, "VBRA")
    k.texval(-1.0, "WBRA")
    k.texopt("MAYBE", "ITAL")
    k.texopt("ON", "BOLD")
    k.texmod("HALF")
    assert re.findall(r"Warning +(\d+)", capfd.readouterr().out) == ["2"] * 5


def ink(path):
    from PIL import Image
    return np.asarray(Image.open(path).convert("L")) > 128  # light strokes on a black page


def test_fraction_bar_and_exponent_in_pixels():
    start("PNG", size=(1485, 1050), hgt=100)  # half a pixel per plot coordinate
    k.messag(r"$\frac{ab}{c}$", 400, 400)
    k.messag(r"$x^2$", 1400, 400)
    k.height(60)
    k.messag("$2$", 2000, 400 + 99 - 59)  # the same baseline, at the script height
    k.height(100)
    width = at_height(60, "$ab$")  # round(0.6 * 100)
    k.kolfin()
    im = ink("t.png")
    # the bar: the longest run of ink in a row of the fraction's part of the page
    part = im[:, 150:600]
    runs = part.sum(axis=1)
    row = int(np.argmax(runs))
    assert runs[row] == pytest.approx(width / 2, abs=2)
    baseline = (400 + 99) / 2
    assert (baseline - row) == pytest.approx(42 / 2, abs=1.5)  # 0.42 of the height above it
    assert part[:row - 2].any() and part[row + 2:].any()  # parts above and below
    # the exponent stands 1.1 * 60 above a 2 of the same height on the baseline
    top_2 = np.nonzero(im[:, 950:1100].any(axis=1))[0][0]
    top_e = np.nonzero(im[:, 650:900].any(axis=1))[0][0]
    assert top_2 - top_e == pytest.approx(66 / 2, abs=1.5)


def test_formula_page_is_the_same_in_svg_and_png():
    # the example's formulas, texts and plot strings by two devices
    example_png_and_svg_alike("formulas.py")
