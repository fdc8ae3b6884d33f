"""filtyp and filsiz on small files of every kind."""
import os
import struct

import pytest

import kolvex

Image = pytest.importorskip("PIL.Image", reason="Pillow writes the raster files")

W, H = 7, 5  # odd, unequal sizes: a swap of width and height shows


def pillow_file(name, fmt, mode="RGB"):
    Image.new(mode, (W, H), (200, 30, 10) if mode == "RGB" else 3).save(name, fmt)
    return name


def raw_image(name, w, h):
    numbers = [w, h, 24, 3 * w, 24, 32, 0, 5, 0]
    head = b"!Bitmap KOLVEX VIRT " + b" ".join(b"%5d" % n for n in numbers) + b" " * 7
    assert len(head) == 80
    with open(name, "wb") as f:
        f.write(head + bytes(3 * w * h))
    return name


def write(name, data):
    with open(name, "wb") as f:
        f.write(data)
    return name


def metafile():
    kolvex.setfil("m.met")
    kolvex.kolini()
    kolvex.unit(0)
    kolvex.pagera()
    kolvex.kolfin()
    return "m.met"


def big_endian_tiff():
    # Two directory entries: width 300 as SHORT, height 70000 as LONG.
    ifd = struct.pack(">H", 2) + struct.pack(">HHIHH", 256, 3, 1, 300, 0) + struct.pack(">HHII", 257, 4, 1, 70000)
    return write("big.tif", b"MM\x00\x2a" + struct.pack(">I", 8) + ifd + b"\0\0\0\0")


def top_down_bmp():
    data = bytearray(open(pillow_file("up.bmp", "BMP"), "rb").read())
    data[22:26] = struct.pack("<i", -H)
    return write("down.bmp", bytes(data))


KINDS = [
    (lambda: pillow_file("a.bmp", "BMP"), 1, (W, H)),
    (top_down_bmp, 1, (W, H)),
    (lambda: pillow_file("a.gif", "GIF", "P"), 2, (W, H)),
    (lambda: pillow_file("a.tif", "TIFF"), 3, (W, H)),
    (big_endian_tiff, 3, (300, 70000)),
    (lambda: pillow_file("a.png", "PNG"), 4, (W, H)),
    (lambda: raw_image("a.img", 123, 45), 5, (123, 45)),
    (metafile, 6, (0, 0)),
    (lambda: write("a.cgm", bytes([0x00, 0x2A, 0, 4]) + b"test" + bytes([0x00, 0x40])), 7, (0, 0)),
    (lambda: write("a.wmf", bytes([1, 0, 9, 0, 0, 3, 0x40, 0, 0, 0])), 8, (0, 0)),
    (lambda: write("a.hpg", b" SP1;PU0,0;\n"), 9, (0, 0)),
    (lambda: write("a.ps", b"%!PS-Adobe-3.0\n%%EOF\n"), 10, (0, 0)),
    (lambda: pillow_file("a.pdf", "PDF"), 11, (0, 0)),
    (lambda: write("p.wmf", bytes([0xD7, 0xCD, 0xC6, 0x9A, 0, 0])), 12, (0, 0)),
    (lambda: write("empty", b""), 0, (0, 0)),
    (lambda: write("binary", bytes(range(256))), 0, (0, 0)),
]


@pytest.mark.parametrize("make, kind, size", KINDS)
def test_kinds_and_sizes(make, kind, size, capfd):
    name = make()
    capfd.readouterr()
    assert kolvex.filtyp(name) == kind
    expect = (kind, *size) if 1 <= kind <= 5 else (0, 0, 0)
    assert kolvex.filsiz(name) == expect
    assert capfd.readouterr().out == ""


def test_raster_files_sniffed_inside_a_session():
    pillow_file("a.png", "PNG")
    kolvex.kolini()
    assert kolvex.filsiz("a.png") == (4, W, H)
    assert kolvex.filtyp("a.png") == 4


@pytest.mark.parametrize("data, kind", [
    (b"\x89PNG\r\n\x1a\n", 4),  # too short for the header
    (b"\x89PNG\r\n\x1a\n" + bytes(8) + struct.pack(">II", 0xFFFFFFFF, 0xFFFFFFFF), 4),  # no image is so big
    (b"II\x2a\x00" + struct.pack("<I", 1 << 30), 3),  # a directory beyond the file
    (b"BM", 1),
    (b"BM" + bytes(16) + struct.pack("<ii", 5, -2**31), 1),
    (b"GIF8", 2),
    (b"GIF89a" + bytes(4), 2),  # a size of 0
    (b"!Bitmap", 5),
])
def test_images_whose_size_cannot_be_read_are_unreadable(data, kind, capfd):
    write("cut", data)
    assert kolvex.filtyp("cut") == kind  # the kind shows in the first bytes
    assert kolvex.filsiz("cut") == (-1, 0, 0)
    assert capfd.readouterr().out == " <<<< Warning 36: File error in filsiz!   (cut)\n"


@pytest.mark.parametrize("name", ["missing.png", ".", ""])
def test_unreadable_files(name, capfd):
    assert kolvex.filtyp(name) == -1
    assert kolvex.filsiz(name) == (-1, 0, 0)
    line = f" <<<< Warning 36: File error in filtyp!   ({name})\n"
    assert capfd.readouterr().out == line + line.replace("filtyp", "filsiz")
