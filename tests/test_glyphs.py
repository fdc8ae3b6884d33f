"""National letters in every font: the measured width against the drawn
strokes, where a composed accent sits, and the fill of outline glyphs by
the device and by hatching.  (That every font has strokes for every
national letter is tests/cpp/test_glyphs.cpp.)"""
import numpy as np
import pytest
from PIL import Image

import kolvex as k
from test_text import start, svg_points

FONTS = ["kolalf", "simplx", "complx", "duplx", "triplx", "gothic", "helve", "helves", "helvet", "serif"]


# gothic accepts no national letter: its first section stops at 95.
@pytest.mark.parametrize("font", [f for f in FONTS if f != "gothic"])
def test_right_edge_of_a_composed_letter_lands_where_nlmess_says(font):
    start("SVG", "j", size=(2969, 2099))  # one pixel a plot coordinate
    getattr(k, font)()
    k.height(80)
    k.chacod("UTF8")
    k.txtjus("RIGH")
    k.messag("Wy\u00c9", 2000, 500)
    k.kolfin()
    right = svg_points("j.svg")[:, 0].max()
    if font == "kolalf":  # the cell is wider than the glyph
        assert 1960 <= right <= 2001
    else:
        assert right == pytest.approx(2000, abs=1.5)


def ink(path):
    return np.asarray(Image.open(path).convert("L")) > 128


def grow(m):
    """The pixels within one pixel of m."""
    out = m.copy()
    for dy in (-1, 0, 1):
        for dx in (-1, 0, 1):
            out |= np.roll(np.roll(m, dy, 0), dx, 1)
    return out


def extra_ink(font, base, composed):
    """The pixels that the composed letter has beyond its base letter, and
    the base's pixels, both drawn at the same place."""
    rows = []
    for n, text in enumerate((base, composed)):
        start("PNG", f"acc{n}", size=(600, 424))  # 0.2 pixels a plot coordinate
        getattr(k, font)()
        k.height(500)
        k.chacod("UTF8")
        k.messag(text, 1000, 600)
        k.kolfin()
        rows.append(ink(f"acc{n}.png"))
    b, c = rows
    return np.argwhere(c & ~grow(b)), np.argwhere(b)


@pytest.mark.parametrize("font", ["simplx", "helve"])
def test_composed_accents_sit_on_their_letters(font):
    def span(p):
        return p[:, 0].min(), p[:, 0].max(), p[:, 1].min(), p[:, 1].max()

    acc, cap = extra_ink(font, "E", "É")
    a_top, a_bot, a_left, a_right = span(acc)
    c_top, c_bot, c_left, c_right = span(cap)
    # above the capital, over its middle
    assert len(acc) > 10 and a_bot < c_top
    assert c_left < (a_left + a_right) / 2 < c_right
    acc_small, small = extra_ink(font, "e", "é")
    s_top, s_bot, s_left, s_right = span(small)
    sa_top, sa_bot, _, _ = span(acc_small)
    # above the small letter, and lower than on the capital
    assert sa_bot < s_top and sa_top > a_top
    ced, c = extra_ink(font, "c", "ç")
    e_top, e_bot, e_left, e_right = span(ced)
    k_top, k_bot, k_left, k_right = span(c)
    # a cedilla hangs below the baseline, under the letter
    assert e_bot > k_bot + 5 and k_left < (e_left + e_right) / 2 < k_right


def test_outline_glyphs_fill_by_the_device_or_by_hatching():
    def page(device, name, hardware):
        start(device, name, size=(1485, 1050))
        if not hardware:
            k.hwmode("OFF", "SHADING")
        k.helve()
        k.shdcha()
        k.height(150)
        k.chacod("UTF8")
        k.messag("ÄÖÜ äöü ßøæ B8%", 200, 300)
        k.kolfin()
    page("SVG", "dev", True)
    page("SVG", "hatch", False)
    # one polygon for each outer contour with its holes, or none at all
    assert open("dev.svg").read().count("<polygon fill") >= 20
    assert open("hatch.svg").read().count("<polygon fill") == 0
    page("PNG", "dev", True)
    page("PNG", "hatch", False)
    a, b = ink("dev.png"), ink("hatch.png")
    assert a.sum() > 20000
    assert (a & grow(b)).sum() >= 0.99 * a.sum() and (b & grow(a)).sum() >= 0.99 * b.sum()
