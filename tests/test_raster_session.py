"""The raster canvas in a session: line settings, colours, the pixel
routines, transparency, and what bad input does."""
import os
import subprocess
import sys

import numpy as np
import pytest
from PIL import Image

import kolvex

WHITE, RED = 0x01FFFFFF, 0x010000FF


def start(device="PNG", fmt="IND", size=None):
    kolvex.imgfmt(fmt)
    if size:
        kolvex.winsiz(*size)
    kolvex.metafl(device)
    kolvex.kolini()


def finish(name="kolvex.png"):
    kolvex.kolfin()
    return np.asarray(Image.open(name).convert("RGB"))


def warnings(capfd):
    return [line for line in capfd.readouterr().out.splitlines() if line.startswith(" <<<< Warning")]


# ---- lines ------------------------------------------------------------------------

@pytest.mark.parametrize("width,columns", [(1, 1), (7, 2), (10, 2), (14, 3), (35, 6)])
def test_linwid_gives_the_border_its_pixels(width, columns):
    # Widths in plot coordinates become round(n * 0.287) pixels: 1, 2, 3
    # and then bands of 4 and 10 whose inner half (and the centre column)
    # lies on the page.
    start()
    kolvex.linwid(width)
    kolvex.pagera()
    px = finish()
    row = px[300, :12, 0]
    assert (row[:columns] == 255).all() and (row[columns:] == 0).all()


def test_penwid_rounds_to_the_width_of_linwid():
    # round(5.4) = 5 gives round(5 * 0.287) = 1 pixel, not round(1.55) = 2.
    def border(set_width):
        kolvex.filmod("DELE")
        start()
        set_width()
        kolvex.pagera()
        return finish()

    assert (border(lambda: kolvex.penwid(5.4)) == border(lambda: kolvex.linwid(5))).all()


def test_emulated_width_with_hwmode_off():
    start()
    kolvex.hwmode("OFF", "LINE")
    kolvex.linwid(35)
    kolvex.pagera()
    px = finish()
    # The layer draws outlines round the line: the border is thick all the same.
    assert (px[300, :4, 0] == 255).all()
    assert px[300, 40, 0] == 0


@pytest.mark.parametrize("page", [None, "PORT"])
def test_fill_stops_short_of_the_axis_lines(page):
    # With grace at its default the canvas clips one pixel inside the axis
    # lines: a solid area larger than the axis system leaves them whole.
    def axes(fill):
        kolvex.filmod("DELE")
        if page:
            kolvex.pagmod(page)
        start()
        kolvex.graf(0, 10, 0, 2, 0, 10, 0, 2)
        if fill:
            kolvex.shdpat(16)
            kolvex.color("RED")
            kolvex.rlarea([-5, 15, 15, -5], [-5, -5, 15, 15], 4)
        return finish()

    lines = (axes(False) == 255).all(axis=2)
    filled = axes(True)
    assert (filled[lines] == 255).all()
    assert ((filled[:, :, 0] > 200) & (filled[:, :, 1] < 60)).sum() > 10000


def test_smooth_lines_blend_on_an_rgb_canvas():
    start(fmt="RGB")
    kolvex.linmod("ON", "SMOO")
    kolvex.color("WHITE")
    kolvex.pagera()
    px = finish()
    # The border is axis-parallel: nothing to blend, the lines stay sharp.
    assert set(np.unique(px[:, 0, 0]).tolist()) == {255}
    assert set(np.unique(px)) <= {0, 255}


def test_erase_clears_the_canvas():
    start()
    kolvex.pagera()
    kolvex.erase()
    assert finish().max() == 0


# ---- colours ----------------------------------------------------------------------

def nearest_entry(rgb):
    """The canvas's choice: the first entry at the least city-block distance."""
    table = [tuple(round(v * 255) for v in kolvex.getind(i)) for i in range(256)]
    return min(table, key=lambda e: sum(abs(a - b) for a, b in zip(e, rgb)))


def test_colour_reaches_the_file_by_table_or_exactly():
    start()
    kolvex.setrgb(0.2, 0.4, 0.6)  # not in the table: the nearest entry
    kolvex.pagera()
    want = nearest_entry((51, 102, 153))
    got = tuple(finish()[0, 400])
    kolvex.setfil("exact.png")
    start(fmt="RGB")
    kolvex.setrgb(0.2, 0.4, 0.6)
    kolvex.pagera()
    assert tuple(finish("exact.png")[0, 400]) == (51, 102, 153)
    assert got == want != (51, 102, 153)


def test_colour_table_changes_reach_the_canvas():
    start()
    kolvex.setind(7, 1, 0.5, 0)
    kolvex.setclr(7)
    kolvex.pagera()
    assert tuple(finish()[0, 400]) == (255, 128, 0)


def test_white_sheet():
    kolvex.scrmod("REVE")
    start()
    kolvex.pagera()
    px = finish()
    assert tuple(px[300, 400]) == (255, 255, 255)
    assert tuple(px[0, 400]) == (0, 0, 0)
    kolvex.scrmod("REVE")
    kolvex.setfil("rgb.png")
    start(fmt="RGB")
    px = finish("rgb.png")
    assert tuple(px[300, 400]) == (255, 255, 255)


def test_bad_colours_are_refused(capfd):
    start()
    kolvex.setclr(-1)
    kolvex.color("PURPLE")
    kolvex.setrgb(1.5, 0, 0)
    kolvex.setclr(300)  # index form above 255: entry 44
    assert kolvex.getclr() == 300
    finish()
    w = warnings(capfd)
    assert w == [" <<<< Warning 2: Incorrect parameter in setclr!   ( -1)",
                 " <<<< Warning 2: Incorrect parameter in color!   (PURPLE)",
                 " <<<< Warning 2: Incorrect parameter in setrgb!   ( 0)"]


# ---- pixel routines ---------------------------------------------------------------

@pytest.mark.parametrize("fmt", ["IND", "RGB"])
@pytest.mark.parametrize("mode", ["IND", "RGB"])
def test_blocks_and_rows_round_trip(fmt, mode):
    start(fmt=fmt)
    kolvex.imgmod(mode)
    n = 3 if mode == "RGB" else 1
    # Colours of the table, so that both canvases hold them exactly.
    table = [tuple(round(v * 255) for v in kolvex.getind(i)) for i in range(256)]
    idx = [(7 * i) % 256 for i in range(6 * 4)]
    data = bytes(idx) if n == 1 else b"".join(bytes(table[i]) for i in idx)
    kolvex.imgini()
    kolvex.wpixls(data, 100, 50, 6, 4)
    assert kolvex.rpixls(100, 50, 6, 4) == data
    row, count = kolvex.rpxrow(100, 51, 6)
    assert count == 6 and row == data[6 * n:12 * n]
    kolvex.wpxrow(data[:6 * n], 300, 10, 6)
    assert kolvex.rpixls(300, 10, 6, 1) == data[:6 * n]
    kolvex.imgfin()
    px = finish()
    assert tuple(px[50, 101]) == table[idx[1]]
    assert tuple(px[53, 105]) == table[idx[23]]


def test_bottom_up_blocks():
    start()
    kolvex.imgmod("BOT")
    kolvex.imgini()
    kolvex.wpixls(bytes([1, 2, 3, 4, 5, 6]), 10, 20, 3, 2)
    assert kolvex.rpixls(10, 20, 3, 2) == bytes([1, 2, 3, 4, 5, 6])
    kolvex.imgmod("TOP")
    # Stored bottom row first: the first row went to y = 20, the next to 19.
    assert kolvex.rpixls(10, 19, 3, 2) == bytes([4, 5, 6, 1, 2, 3])
    kolvex.imgfin()
    finish()


def test_rows_are_cut_at_the_edges():
    start(size=(20, 10))
    kolvex.imgini()
    kolvex.wpxrow(bytes(range(1, 11)), -3, 2, 10)   # the first three fall off
    assert kolvex.rpixls(0, 2, 8, 1) == bytes(range(4, 11)) + b"\x00"
    kolvex.wpxrow(bytes([9] * 10), 15, 3, 10)       # cut at the right edge
    assert kolvex.rpxrow(14, 3, 6) == (bytes([0, 9, 9, 9, 9, 9]), 6)
    kolvex.wpxrow(bytes([9] * 10), 0, 10, 10)       # below the picture: nothing
    kolvex.wpixls(bytes([5] * 40), -2, 8, 4, 10)    # rows beyond the bottom skipped
    assert kolvex.rpixls(0, 8, 2, 2) == bytes([5] * 4)
    kolvex.imgfin()
    finish()


def test_single_pixels_and_the_edge(capfd):
    start(size=(20, 10))
    kolvex.imgini()
    kolvex.wpixel(19, 9, 77)
    kolvex.wpixel(20, 9, 77)  # outside: ignored
    assert kolvex.rpixel(19, 9) == 77
    assert kolvex.rpixel(20, 9) == 0
    kolvex.imgmod("RGB")
    kolvex.wpixel(0, 0, RED)
    assert kolvex.rpixel(0, 0) == RED  # the rainbow's last colour entry is red
    kolvex.imgmod("IND")
    assert kolvex.rpixel(0, 0) == 254
    assert kolvex.rpixls(15, 5, 6, 1) == b"\x00" * 6
    assert kolvex.rpxrow(0, 10, 3) == (b"\x00" * 3, 3)
    kolvex.imgfin()
    finish()
    w = warnings(capfd)
    assert w == [" <<<< Warning 58: Array is out of screen in rpixel!",
                 " <<<< Warning 58: Array is out of screen in rpixls!",
                 " <<<< Warning 58: Array is out of screen in rpxrow!"]


def test_transparent_colour_of_the_pixel_routines():
    start(size=(20, 10))
    kolvex.imgtpr(5)
    kolvex.imgini()
    kolvex.wpixls(bytes([1]) * 4, 0, 0, 4, 1)
    kolvex.wpixls(bytes([5, 2, 5, 3]), 0, 0, 4, 1)
    assert kolvex.rpixls(0, 0, 4, 1) == bytes([1, 2, 1, 3])
    kolvex.imgtpr(-1)
    kolvex.wpixls(bytes([5, 2, 5, 3]), 0, 0, 4, 1)
    assert kolvex.rpixls(0, 0, 4, 1) == bytes([5, 2, 5, 3])
    kolvex.imgfin()
    finish()


def test_image_mode_is_required_once(capfd):
    start()
    kolvex.wpixel(1, 1, 3)
    kolvex.imgfin()
    kolvex.imgini()
    kolvex.imgini()
    kolvex.imgfin()
    finish()
    assert warnings(capfd) == [" <<<< Warning 55: No call to imgini in wpixel!",
                               " <<<< Warning 55: No call to imgini in imgfin!",
                               " <<<< Warning 54: No call to imgfin in imgini!"]


def test_image_mode_ends_with_the_session():
    start()
    kolvex.imgini()
    kolvex.wpixel(5, 5, 255)
    kolvex.kolfin()
    assert Image.open("kolvex.png").convert("RGB").getpixel((5, 5)) == (255, 255, 255)


def test_buffer_sizes_follow_the_library_mode(capfd):
    start(fmt="RGB")
    kolvex.imgini()
    kolvex.imgmod("RXB")  # refused by the library: data stay one byte a pixel
    assert len(kolvex.rpixls(0, 0, 4, 3)) == 12
    kolvex.imgmod("rgba")  # three characters count: RGB
    assert len(kolvex.rpixls(0, 0, 4, 3)) == 36
    # A buffer shorter than its stated size is a bad argument.
    with pytest.raises(ValueError, match="shorter than its size"):
        kolvex.wpixls(b"\x00" * 35, 0, 0, 4, 3)
    with pytest.raises(ValueError, match="shorter than its size"):
        kolvex.wpxrow(b"\x00" * 5, 0, 0, 2)
    kolvex.wpixls("abc" * 12, 0, 0, 4, 3)  # str passes as its bytes
    assert kolvex.rpixls(0, 0, 1, 1) == b"abc"
    assert kolvex.rpixls(0, 0, 0, 3) == b""
    kolvex.imgfin()
    finish()
    assert "Warning 2: Incorrect parameter in imgmod!   (RXB)" in capfd.readouterr().out


# ---- transparency -----------------------------------------------------------------

def test_transparent_border_over_black():
    start(fmt="RGB")
    kolvex.tprval(0.5)
    kolvex.tprini()
    kolvex.pagera()
    kolvex.tprfin()
    px = finish()
    assert tuple(px[0, 400]) == (128, 128, 128)


def test_opaque_over_the_background_with_noop():
    start(fmt="RGB")
    kolvex.tprmod("NOOP", "BACK")
    kolvex.tprval(0.5)
    kolvex.tprini()
    kolvex.pagera()
    kolvex.tprfin()
    assert tuple(finish()[0, 400]) == (255, 255, 255)


def test_open_layer_is_composited_at_kolfin():
    start(fmt="RGB")
    kolvex.tprval(0.25)
    kolvex.tprini()
    kolvex.pagera()
    px = finish()
    assert tuple(px[0, 400]) == ((65 * 255) >> 8,) * 3


def test_transparency_rules(capfd):
    kolvex.metafl("PLOG")
    kolvex.kolini()
    kolvex.tprini()
    kolvex.kolfin()
    start()
    kolvex.tprini()
    kolvex.kolfin()
    start(fmt="RGB")
    kolvex.tprfin()
    kolvex.tprini()
    kolvex.tprini()
    kolvex.tprfin()
    kolvex.tprval(1.5)
    kolvex.imgini()
    kolvex.tprini()
    kolvex.imgfin()
    kolvex.kolfin()
    assert warnings(capfd) == [
        " <<<< Warning 169: Output format must be a raster format in tprini!",
        " <<<< Warning 170: Output format must be in RGB mode in tprini!",
        " <<<< Warning 174: Transparency is not in use in tprfin!",
        " <<<< Warning 171: Transparency is already in use in tprini!",
        " <<<< Warning 2: Incorrect parameter in tprval!   ( 2)",
        " <<<< Warning 172: Routine cannot be used between IMGINI and IMGFIN in tprini!",
    ]


# ---- bad sizes and files ----------------------------------------------------------

def test_sizes_that_do_not_fit(capfd):
    kolvex.winsiz(70000, 10)
    kolvex.metafl("GIF")
    kolvex.kolini()
    assert kolvex.getlev() == 0
    kolvex.winsiz(100000, 100000)
    kolvex.metafl("PNG")
    kolvex.kolini()
    assert kolvex.getlev() == 0
    assert os.listdir(".") == []
    w = warnings(capfd)
    assert w == [" <<<< Warning 2: Incorrect parameter in kolini!   ( 70000)",
                 " <<<< Warning 53: Not enough memory in kolini!"]
    # The next session works again.
    kolvex.winsiz(50, 40)
    kolvex.kolini()
    assert kolvex.getlev() == 1
    assert finish().shape == (40, 50, 3)


def test_a_file_that_cannot_be_opened(capfd):
    kolvex.setfil("no/such/dir/picture.png")
    kolvex.metafl("PNG")
    kolvex.kolini()
    assert kolvex.getlev() == 0
    assert "Warning 36: File error in kolini!" in capfd.readouterr().out


@pytest.mark.parametrize("device", ["BMP", "PNG", "TIFF", "GIF", "PPM", "IMAG"])
def test_a_full_disk_leaves_no_picture_behind(tmp_path, device):
    # The file size limit makes every write past 4 kB fail, as a full disk does.
    script = f"""
import resource, signal, sys
sys.path.insert(0, {os.path.dirname(kolvex.__file__)!r})
signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096))
import random, kolvex
kolvex.imgfmt("RGB")
kolvex.metafl({device!r})
kolvex.kolini()
kolvex.imgini()
kolvex.wpixls(random.Random(1).randbytes(3 * 853 * 603), 0, 0, 853, 603)
kolvex.imgfin()
kolvex.kolfin()
kolvex.metafl("PLOG")
kolvex.kolini()
kolvex.kolfin()
"""
    r = subprocess.run([sys.executable, "-c", script], cwd=tmp_path, capture_output=True, text=True, timeout=60)
    assert r.returncode == 0, r.stderr
    assert "Warning 36: File error in kolfin!" in r.stdout
    assert [f for f in os.listdir(tmp_path) if not f.endswith(".met")] == []
    assert "Metafile: kolvex.met" in r.stdout  # the session after it works
