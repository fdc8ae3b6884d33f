"""Raster sessions and their files: every format and mode read back by
readers we did not write, and the settings that shape the files."""
import io
import os
import random
import struct
import subprocess
import sys

import numpy as np
import pytest
from PIL import Image

import kolvex
from conftest import needs

EXT = {"PNG": "png", "GIF": "gif", "TIFF": "tif", "BMP": "bmp", "PPM": "ppm"}
RED, GREEN = 0x010000FF, 0x0100FF00


def draw(device, fmt="IND", page=None, size=None):
    """A session with the page border and two pixels of known colour."""
    kolvex.imgfmt(fmt)
    if page:
        kolvex.setpag(page)
    if size:
        kolvex.winsiz(*size)
    kolvex.metafl(device)
    kolvex.kolini()
    kolvex.pagera()
    kolvex.imgini()
    kolvex.wpixel(10, 20, RED)
    kolvex.wpixel(11, 20, GREEN)
    kolvex.imgfin()


def read(device):
    kolvex.kolfin()
    im = Image.open("kolvex." + EXT[device])
    im.load()
    return im


@pytest.mark.parametrize("fmt", ["IND", "RGB", "BIL"])
@pytest.mark.parametrize("device", sorted(EXT))
def test_every_format_opens_with_its_size_and_colours(device, fmt):
    draw(device, fmt)
    im = read(device)
    assert im.size == (853, 603)
    rgb = im.convert("RGB")
    if device == "TIFF" and fmt == "BIL":
        # One bit a pixel: whatever is not black is white.
        assert im.mode == "1"
        assert rgb.getpixel((10, 20)) == (255, 255, 255)
    else:
        assert rgb.getpixel((10, 20)) == (255, 0, 0)
        assert rgb.getpixel((11, 20)) == (0, 255, 0)
    # The border lies on the outermost pixels, in the white foreground.
    for xy in [(0, 0), (852, 0), (0, 602), (852, 602), (400, 0), (0, 300)]:
        assert rgb.getpixel(xy) == (255, 255, 255)
    assert rgb.getpixel((400, 300)) == (0, 0, 0)
    assert rgb.getpixel((1, 300)) == (0, 0, 0)


@pytest.mark.parametrize("device", sorted(EXT))
def test_portrait_page(device):
    draw(device, page="DA4P")
    im = read(device)
    assert im.size == (603, 853)
    assert im.convert("RGB").getpixel((602, 852)) == (255, 255, 255)


def test_winsiz_sets_the_picture_and_scales_the_page():
    draw("PNG", size=(300, 200))
    im = read("PNG").convert("RGB")
    assert im.size == (300, 200)
    # The page keeps its proportions: it fits the height and ends short
    # of the right edge.
    right = int(min(299 / 2969, 199 / 2099) * 2969 + 0.5)
    assert right < 299
    assert im.getpixel((right, 100)) == (255, 255, 255)
    assert im.getpixel((right + 1, 100)) == (0, 0, 0)
    assert im.getpixel((150, 199)) == (255, 255, 255)


@needs("tiffinfo")
@pytest.mark.parametrize("fmt", ["IND", "RGB", "BIL"])
def test_tiffinfo_accepts_the_tiff(fmt):
    kolvex.tifmod(300, "CM", "RESO")
    draw("TIFF", fmt)
    kolvex.kolfin()
    r = subprocess.run(["tiffinfo", "kolvex.tif"], capture_output=True, text=True)
    assert r.returncode == 0 and "rror" not in r.stderr, r.stderr
    assert "Image Width: 853 Image Length: 603" in r.stdout
    assert "Resolution: 300, 300 pixels/cm" in r.stdout
    kind = {"IND": "palette color", "RGB": "RGB color", "BIL": "min-is-black"}[fmt]
    assert kind in r.stdout


@needs("tiffinfo")
def test_single_row_tiff_keeps_its_values_in_the_directory():
    draw("TIFF", size=(5, 1))
    kolvex.kolfin()
    r = subprocess.run(["tiffinfo", "-s", "kolvex.tif"], capture_output=True, text=True)
    assert r.returncode == 0 and "rror" not in r.stderr, r.stderr
    im = Image.open("kolvex.tif")
    assert im.size == (5, 1) and im.convert("RGB").getpixel((0, 0)) == (255, 255, 255)


@needs("pngcheck")
@pytest.mark.parametrize("fmt", ["IND", "RGB"])
def test_pngcheck_accepts_the_png(fmt):
    kolvex.pngmod("ON", "TRAN")
    draw("PNG", fmt)
    kolvex.kolfin()
    r = subprocess.run(["pngcheck", "-v", "kolvex.png"], capture_output=True, text=True)
    assert r.returncode == 0, r.stdout
    assert "tRNS" in r.stdout and "IDAT" in r.stdout


def png_chunks(data):
    pos, chunks = 8, []
    while pos < len(data):
        n, kind = struct.unpack(">I4s", data[pos:pos + 8])
        chunks.append((kind.decode(), data[pos + 8:pos + 8 + n]))
        pos += 12 + n
    return chunks


def test_png_palette_has_256_entries_and_transparency_modes():
    kolvex.pngmod("ON", "TRAN")
    draw("PNG")
    kolvex.kolfin()
    chunks = dict(png_chunks(open("kolvex.png", "rb").read()))
    assert len(chunks["PLTE"]) == 768
    assert chunks["tRNS"] == b"\x00"
    assert Image.open("kolvex.png").info["transparency"] == 0
    kolvex.pngmod("ON", "TRAN")
    draw("PNG", "RGB")
    kolvex.kolfin()
    assert Image.open("kolvex_1.png").info["transparency"] == (255, 255, 255)


def test_pngmod_and_gifmod_refuse_other_options(capfd):
    kolvex.pngmod("ON", "ALPH")
    kolvex.gifmod("MAYB", "TRAN")
    out = capfd.readouterr().out
    assert "Warning 2: Incorrect parameter in pngmod!   (ALPH)" in out
    assert "Warning 2: Incorrect parameter in gifmod!   (MAYB)" in out


def test_rbfpng_gives_the_same_image_as_the_file(capfd):
    draw("PNG")
    data, n = kolvex.rbfpng(0)
    assert data == b"" and n > 100
    png, m = kolvex.rbfpng(n)
    assert m == n and len(png) == n and png[:8] == b"\x89PNG\r\n\x1a\n"
    assert kolvex.rbfpng(n - 1) == (b"", 0)
    assert "Warning 125: Buffer too small for PNG file in rbfpng!" in capfd.readouterr().out
    kolvex.imgclp(10, 20, 50, 40)  # the memory PNG keeps the whole picture
    assert kolvex.rbfpng(n) == (png, n)
    kolvex.kolfin()
    mem = np.asarray(Image.open(io.BytesIO(png)))
    assert mem.shape == (603, 853)
    assert np.array_equal(np.asarray(Image.open("kolvex.png")), mem[20:60, 10:60])


def test_rbfpng_outside_a_raster_session(capfd):
    kolvex.metafl("PLOG")
    kolvex.kolini()
    assert kolvex.rbfpng(100) == (b"", 0)
    assert "Warning 40" in capfd.readouterr().out
    kolvex.kolfin()
    # The picture of a page format's image mode is no image file either.
    kolvex.metafl("PS")
    kolvex.kolini()
    kolvex.imgini()
    kolvex.rimage("page.img")
    kolvex.wimage("page.img")
    kolvex.imgfin()
    kolvex.kolfin()
    out = capfd.readouterr().out
    assert "Warning 40: File format and output device are incompatible in rimage!" in out
    assert "Warning 40: File format and output device are incompatible in wimage!" in out
    assert not os.path.exists("page.img")


@pytest.mark.parametrize("device", sorted(EXT))
def test_imgclp_cuts_the_file(device):
    draw(device, "RGB")
    full = np.asarray(Image.open(io.BytesIO(kolvex.rbfpng(10**7)[0])).convert("RGB"))
    kolvex.imgclp(5, 15, 100, 50)
    im = read(device)
    assert im.size == (100, 50)
    got = np.asarray(im.convert("RGB"))
    if device == "GIF":  # quantised: the few colours here stay exact
        assert got.shape == (50, 100, 3)
    assert np.array_equal(got, full[15:65, 5:105])


def test_imgclp_limits(capfd):
    draw("PNG")
    kolvex.imgclp(753, 0, 100, 10)
    kolvex.imgclp(754, 0, 100, 10)
    kolvex.imgclp(0, -1, 5, 5)
    out = capfd.readouterr().out
    assert out.count("Warning 2: Incorrect parameter in imgclp!") == 2
    assert read("PNG").size == (100, 10)


def test_gif_transparency_and_background():
    kolvex.gifmod("ON", "TRAN")
    draw("GIF")
    kolvex.kolfin()
    data = open("kolvex.gif", "rb").read()
    assert data[:6] == b"GIF89a"
    assert Image.open("kolvex.gif").info["transparency"] == 0
    kolvex.gifmod("OFF", "TRAN")
    draw("GIF")
    kolvex.kolfin()
    assert open("kolvex_1.gif", "rb").read()[:6] == b"GIF87a"


def test_gif_of_one_pixel_holds_clear_the_pixel_and_end():
    draw("GIF", size=(1, 1))
    kolvex.kolfin()
    data = open("kolvex.gif", "rb").read()
    pixel = 255  # the border's colour
    codes = 256 | pixel << 9 | 257 << 18
    image = data.index(b",\x00\x00\x00\x00\x01\x00\x01\x00\x00")
    assert data[image + 10:] == bytes([8, 4]) + codes.to_bytes(4, "little") + b"\x00;"


@pytest.mark.parametrize("seed,w,h", [(1, 256, 256), (2, 97, 61), (3, 400, 300)])
def test_gif_lzw_survives_table_resets(seed, w, h):
    # Random pixels fill the string table again and again; runs of one
    # colour build long strings.
    rnd = random.Random(seed)
    pixels = bytearray(rnd.randbytes(w * h))
    for k in range(0, len(pixels) - 500, 997):
        run = rnd.randrange(1, 400)
        pixels[k:k + run] = bytes([rnd.randrange(256)]) * run
    kolvex.winsiz(w, h)
    kolvex.metafl("GIF")
    kolvex.kolini()
    kolvex.imgini()
    kolvex.wpixls(bytes(pixels), 0, 0, w, h)
    kolvex.imgfin()
    kolvex.kolfin()
    got = np.asarray(Image.open("kolvex.gif"))
    assert np.array_equal(got, np.frombuffer(bytes(pixels), np.uint8).reshape(h, w))


def test_gif_lzw_of_a_smooth_picture():
    w, h = 640, 480
    rows = bytes((x // 3 + y // 5) % 256 for y in range(h) for x in range(w))
    kolvex.winsiz(w, h)
    kolvex.metafl("GIF")
    kolvex.kolini()
    kolvex.imgini()
    kolvex.wpixls(rows, 0, 0, w, h)
    kolvex.imgfin()
    kolvex.kolfin()
    assert np.array_equal(np.asarray(Image.open("kolvex.gif")), np.frombuffer(rows, np.uint8).reshape(h, w))


def test_true_colour_is_quantised_for_gif():
    rnd = random.Random(5)
    w, h = 64, 64
    few = [(255, 0, 0), (0, 0, 255), (10, 200, 30), (90, 90, 90)]
    data = b"".join(bytes(rnd.choice(few)) for _ in range(w * h))
    for name, block in [("few", data), ("many", rnd.randbytes(3 * w * h))]:
        kolvex.filmod("DELE")
        kolvex.imgfmt("RGB")
        kolvex.winsiz(w, h)
        kolvex.setfil(name + ".gif")
        kolvex.metafl("GIF")
        kolvex.kolini()
        kolvex.imgmod("RGB")
        kolvex.imgini()
        kolvex.wpixls(block, 0, 0, w, h)
        kolvex.imgfin()
        kolvex.imgmod("IND")
        kolvex.kolfin()
        im = Image.open(name + ".gif")
        got = np.asarray(im.convert("RGB")).astype(int)
        want = np.frombuffer(block, np.uint8).reshape(h, w, 3).astype(int)
        if name == "few":
            assert np.array_equal(got, want)
        else:
            assert len(set(np.asarray(im).ravel().tolist())) <= 256
            assert np.abs(got - want).mean() < 40


def test_bmp_rows_are_padded_and_resolution_set():
    kolvex.bmpmod(300, "INCH", "RESO")
    draw("BMP", "RGB", size=(3, 2))
    kolvex.kolfin()
    data = open("kolvex.bmp", "rb").read()
    assert len(data) == 54 + 2 * 12
    assert struct.unpack("<IIHH", data[18:30]) == (3, 2, 1, 24)
    assert struct.unpack("<II", data[38:46]) == (11811, 11811)
    assert Image.open("kolvex.bmp").size == (3, 2)
    draw("BMP", size=(3, 2))
    kolvex.kolfin()
    data = open("kolvex_1.bmp", "rb").read()
    assert len(data) == 54 + 1024 + 2 * 4
    assert struct.unpack("<H", data[28:30]) == (8,)


def test_bilevel_tiff_packs_rows_into_bytes():
    draw("TIFF", "BIL", size=(9, 4))
    kolvex.kolfin()
    data = open("kolvex.tif", "rb").read()
    assert data[:4] == b"II*\x00"
    assert struct.unpack("<H", data[8:10]) == (13,)
    im = Image.open("kolvex.tif")
    assert im.mode == "1" and im.size == (9, 4)
    # Two bytes a row after a directory of 13 entries, the tables and the
    # resolutions: 12 * 13 + 14 + 8 * 4 + 16 + 4 * 2 bytes.
    assert len(data) == 226
    # The page fits 4 pixels across: the border's top row is 5 pixels.
    assert data[-8:-6] == b"\xf8\x00"
    assert np.asarray(im.convert("L"))[0].tolist() == [255] * 5 + [0] * 4


def test_ppm_header():
    draw("PPM")
    kolvex.kolfin()
    data = open("kolvex.ppm", "rb").read()
    assert data.startswith(b"P6\n853 603\n255\n")
    assert len(data) == len(b"P6\n853 603\n255\n") + 853 * 603 * 3


def test_image_file_of_the_session_and_rimage_wimage_round_trip():
    draw("PNG", "RGB")
    kolvex.rimage("copy.img")
    kolvex.kolfin()
    head = open("copy.img", "rb").read(80)
    assert head == b"!Bitmap KOLVEX VIRT   853   603    24  2559    24    32     0     5     0       "
    kolvex.imgfmt("RGB")
    kolvex.metafl("PNG")
    kolvex.kolini()
    kolvex.wimage("copy.img")
    kolvex.kolfin()
    a = np.asarray(Image.open("kolvex.png"))
    b = np.asarray(Image.open("kolvex_1.png"))
    assert np.array_equal(a, b)
    kolvex.metafl("IMAG")
    draw("IMAG")
    kolvex.kolfin()
    data = open("kolvex.img", "rb").read()
    assert data[:80].split()[3:5] == [b"853", b"603"] and len(data) == 80 + 853 * 603


def test_wtiff_reads_a_window_into_the_image():
    draw("TIFF")
    kolvex.kolfin()
    kolvex.metafl("PNG")
    kolvex.kolini()
    kolvex.tifwin(5, 15, 20, 10)
    kolvex.tiforg(100, 200)
    kolvex.wtiff("kolvex.tif")
    kolvex.kolfin()
    im = Image.open("kolvex.png").convert("RGB")
    # Pixel (10, 20) of the file lands at (105, 205).
    assert im.getpixel((105, 205)) == (255, 0, 0)
    assert im.getpixel((106, 205)) == (0, 255, 0)
    assert im.getpixel((10, 20)) == (0, 0, 0)


def test_wtiff_errors(capfd):
    kolvex.metafl("PNG")
    kolvex.kolini()
    kolvex.wtiff("missing.tif")
    open("bad.tif", "wb").write(b"MM\x00*" + bytes(40))
    kolvex.wtiff("bad.tif")
    kolvex.kolfin()
    out = capfd.readouterr().out
    assert "Warning 36: File error in wtiff!" in out
    assert "Warning 56: Incorrect file format in wtiff!" in out


def test_the_same_program_writes_the_same_bytes():
    outputs = []
    for k in range(3):
        kolvex.setfil(f"same{k}.png")
        draw("PNG")
        kolvex.kolfin()
        outputs.append(open(f"same{k}.png", "rb").read())
    assert outputs[0] == outputs[1] == outputs[2]


def test_virt_writes_no_file():
    kolvex.metafl("VIRT")
    kolvex.kolini()
    kolvex.pagera()
    png, n = kolvex.rbfpng(10**6)
    kolvex.kolfin()
    assert n > 0 and Image.open(io.BytesIO(png)).size == (853, 603)
    assert not [f for f in os.listdir(".") if f.startswith("kolvex")]


def test_demo_writes_a_png_to_look_at(tmp_path):
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    env = dict(os.environ, PYTHONPATH=os.path.dirname(kolvex.__file__))
    r = subprocess.run([sys.executable, os.path.join(root, "examples", "demo.py")], cwd=tmp_path,
                       capture_output=True, text=True, env=env, timeout=60)
    assert r.returncode == 0, r.stderr
    im = Image.open(tmp_path / "demo.png").convert("RGB")
    assert im.size == (853, 603)
    assert im.getpixel((5, 5)) == (255, 255, 255)    # white paper
    colours = {tuple(c) for c in np.unique(np.asarray(im).reshape(-1, 3), axis=0)}
    assert (0, 0, 0) in colours                      # axes, texts, the first curve
    assert len(colours) >= 3                         # the curves change colour


def test_imgfmt_reads_three_characters(capfd):
    kolvex.imgfmt("RGBA")
    kolvex.imgfmt("RG")
    kolvex.metafl("PNG")
    kolvex.kolini()
    kolvex.kolfin()
    assert Image.open("kolvex.png").mode == "RGB"
    assert "Warning 2: Incorrect parameter in imgfmt!   (RG)" in capfd.readouterr().out
