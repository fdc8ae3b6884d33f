"""The raster test page: drawn by the C++ test raster_test_page through the
device layer (lines of several widths with each cap, zig-zags with each
join, a closed square, filled polygons, all markers), read back here."""
import os
import subprocess

import numpy as np
import pytest
from PIL import Image

from test_native import native_build  # noqa: F401  (the fixture that builds the C++ tests)

# The small table on a white sheet.
WHITE, BLACK, RED, GREEN, BLUE = (255,) * 3, (0,) * 3, (255, 0, 0), (0, 255, 0), (0, 0, 255)
YELLOW, ORANGE, CYAN, MAGENTA = (255, 255, 0), (255, 128, 0), (0, 255, 255), (255, 0, 255)
S = 1199 / 2969  # pixels per plot coordinate on the 1200 by 850 picture


def px(x, y):
    return int(S * x + 0.5), int(S * y + 0.5)


@pytest.fixture(scope="module")
def page(native_build, tmp_path_factory):  # noqa: F811
    out = tmp_path_factory.mktemp("page")
    r = subprocess.run([os.path.join(native_build, "kolvex_cpptest"), "raster_test_page"], cwd=out,
                       env=dict(os.environ, KOLVEX_PAGE_DIR=str(out)), capture_output=True, text=True,
                       timeout=120)
    assert r.returncode == 0, r.stderr
    im = Image.open(out / "raster_test_page.png")
    assert im.size == (1200, 850) and im.mode == "P"
    return np.asarray(im.convert("RGB"))


def colour(a, xy):
    x, y = xy
    return tuple(int(v) for v in a[y, x])


def test_background_border_and_line_colours(page):
    assert colour(page, (600, 10)) == WHITE
    assert colour(page, (0, 400)) == BLACK and colour(page, px(2969, 1000)) == BLACK
    assert colour(page, px(1500, 2099)) == BLACK and colour(page, (600, 849)) == WHITE
    for c, want in enumerate([RED, GREEN, BLUE]):
        for k in range(6):
            assert colour(page, px(500 + 950 * c, 150 + 150 * k)) == want


def test_line_widths_grow(page):
    def thickness(c, k):
        x, y = px(500 + 950 * c, 150 + 150 * k)
        return int((page[y - 20:y + 21, x] != 255).any(axis=1).sum())

    widths = [thickness(0, k) for k in range(6)]
    assert widths[0] == 1
    assert widths == sorted(widths) and widths[-1] >= 19


def test_caps_at_the_line_ends(page):
    # The thickest line of each column: CUT stops at the end, ROUN and LONG
    # go on by half the width; only LONG has square corners there.
    y = px(0, 900)[1]
    for c, (beyond, corner) in enumerate([(False, False), (True, False), (True, True)]):
        x_end = px(850 + 950 * c, 0)[0]
        assert (colour(page, (x_end + 6, y)) != WHITE) == beyond
        assert (colour(page, (x_end + 9, y - 9)) != WHITE) == corner


def test_joins_at_a_peak(page):
    # Above the first peak of each zig-zag: the miter reaches highest, the
    # round join covers half the width, the bevel stops lower still.
    peaks = [px(200 + 950 * j + 160, 1050) for j in range(3)]
    above = [[colour(page, (x, y - d)) for d in (8, 12)] for x, y in peaks]
    assert above[0] == [ORANGE, ORANGE]
    assert above[1] == [ORANGE, WHITE]
    assert above[2] == [WHITE, WHITE]


def test_closed_square_has_round_corners_and_no_caps(page):
    x0, y0 = px(2450, 1450)
    x1, y1 = px(2800, 1800)
    assert colour(page, (x0, y0)) == BLUE and colour(page, (x1, y1)) == BLUE
    assert colour(page, ((x0 + x1) // 2, (y0 + y1) // 2)) == WHITE
    assert colour(page, (x0 - 7, y0 - 7)) == WHITE  # rounded outer corner
    assert colour(page, (x0 - 7, (y0 + y1) // 2)) == BLUE


def test_filled_polygons(page):
    assert colour(page, px(450, 1700)) == YELLOW           # the star's centre
    assert colour(page, px(450, 1470)) == YELLOW           # a point of it
    assert colour(page, px(560, 1580)) == WHITE            # between two points
    assert colour(page, px(900, 1500)) == CYAN             # the concave shape
    assert colour(page, px(1050, 1800)) == WHITE           # its notch
    assert colour(page, px(1235, 1900)) == CYAN


def test_markers(page):
    # Marker 16 (filled square) and 21 (disc) are solid at their centres;
    # marker 0 (square) and 15 (circle) are hollow.
    def centre(k):
        return px(1400 + 80 * (k % 12), 1550 + 200 * (k // 12))

    assert colour(page, centre(16)) == MAGENTA
    assert colour(page, centre(21)) == MAGENTA
    assert colour(page, centre(0)) == WHITE
    assert colour(page, centre(15)) == WHITE
    assert colour(page, centre(3)) == MAGENTA  # the plus crosses its centre
    cx, cy = centre(0)
    assert colour(page, (cx + 12, cy)) == MAGENTA  # the square's right side
