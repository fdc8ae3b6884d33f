"""incfil, filbox and filclr: a native metafile or a CGM drawn back into a page."""
import struct

import numpy as np
import pytest
from PIL import Image

import kolvex
from test_raster_session import warnings


def border_met(name, colour):
    kolvex.setfil(name)
    kolvex.kolini()
    kolvex.setclr(colour)
    kolvex.pagera()
    kolvex.kolfin()


def png_of(draw, name):
    kolvex.setfil(name)
    kolvex.filmod("DELE")
    kolvex.metafl("PNG")
    kolvex.kolini()
    draw()
    kolvex.kolfin()
    return np.asarray(Image.open(name).convert("RGB"))


def test_a_metafile_included_is_the_page_drawn_directly():
    border_met("border.met", 50)
    direct = png_of(lambda: (kolvex.setclr(50), kolvex.pagera()), "direct.png")
    included = png_of(lambda: (kolvex.frame(0), kolvex.incfil("border.met")), "included.png")
    assert (direct != direct[300, 400]).any(axis=2).sum() > 2000
    assert (direct == included).all()


def test_box_and_colours(capfd):
    border_met("border.met", 50)

    def half():
        kolvex.filbox(0, 0, 1485, 1050)
        kolvex.filclr("NONE")
        kolvex.incfil("border.met")

    img = png_of(half, "half.png")
    inked = np.argwhere((img != img[-1, -1]).any(axis=2))
    h, w = img.shape[:2]
    # The page's frame, halved, in the upper left quarter, in the foreground.
    assert inked[:, 0].max() <= h // 2 + 1 and inked[:, 1].max() <= w // 2 + 1
    fore = png_of(kolvex.pagera, "fore.png")[0, 0]
    assert {tuple(img[y, x]) for y, x in inked} == {tuple(fore)}
    assert warnings(capfd) == []


@pytest.mark.parametrize("content, number", [
    (None, 36),                      # no file
    (b"%PDF-1.3\n", 56),             # a format that is not included
    (b"!Bitmap KOLVEX " + b" " * 65, 56),
    (b"      29.7      21.0\n 0.1000000 0.1000000 3.0000000\n", 122),  # no end field
])
def test_files_that_cannot_be_included(capfd, content, number):
    if content is not None:
        with open("f.bin", "wb") as f:
            f.write(content)
    kolvex.kolini()
    capfd.readouterr()
    kolvex.incfil("f.bin")
    assert [int(w.split(":")[0].split()[-1]) for w in warnings(capfd)] == [number]


def test_filbox_limits(capfd):
    kolvex.kolini()
    capfd.readouterr()
    kolvex.filbox(-1, 0, 10, 10)
    kolvex.filbox(0, 0, 0, 10)
    kolvex.filbox(2000, 0, 971, 10)
    assert [w.split(":")[0] for w in warnings(capfd)] == [" <<<< Warning 1", " <<<< Warning 2", " <<<< Warning 2"]


def test_the_box_gets_the_frame_of_frame():
    kolvex.setfil("empty.met")
    kolvex.kolini()
    kolvex.kolfin()

    def include(thickness):
        def draw():
            kolvex.filbox(500, 500, 1000, 700)
            kolvex.frame(thickness)
            kolvex.incfil("empty.met")
        return draw

    bare = png_of(include(0), "bare.png")
    assert not (bare != bare[0, 0]).any()
    framed = png_of(include(1), "framed.png")
    inked = np.argwhere((framed != framed[0, 0]).any(axis=2))
    s = 852 / 2969
    assert np.allclose(inked.min(axis=0), [500 * s, 500 * s], atol=1.5)
    assert np.allclose(inked.max(axis=0), [1199 * s, 1499 * s], atol=1.5)


def test_the_current_colour_comes_back():
    border_met("border.met", 50)
    kolvex.setfil("out.met")
    kolvex.kolini()
    kolvex.setclr(7)
    kolvex.incfil("border.met")
    assert kolvex.getclr() == 7


def cgm_file(name, pieces):
    """A binary CGM as the library's CGM device writes it: direct colours,
    LINE COLOUR and POLYLINE elements of (r, g, b) and [(x, y), ...] in
    device units, records of 80 bytes padded with blanks."""
    def element(cls, eid, params):
        n = len(params)
        head = (cls << 12) | (eid << 5)
        out = struct.pack(">HH", head | 31, n) if n >= 31 else struct.pack(">H", head | n)
        return out + params + (b"\0" if n % 2 else b"")

    def string(text):
        data = bytes([len(text)]) + text.encode()
        return data + (b"\0" if len(text) % 2 == 0 else b"")

    body = element(0, 1, string(name)) + bytes.fromhex("1022 0001")
    body += element(0, 7, string("ProfileId:CALS")) + bytes.fromhex("1166 0001 FFFF 0001")
    body += element(0, 3, string("Picture1")) + bytes.fromhex("2042 0001")
    body += element(1, 6, struct.pack(">HHHH", 0, 0, 5938, 4198)) + bytes.fromhex("20E4 FFFFFF00 0080")
    for piece in pieces:
        if len(piece) == 3 and isinstance(piece[0], int):
            body += element(5, 4, bytes(piece))
        else:
            body += element(4, 1, b"".join(struct.pack(">HH", x, y) for x, y in piece))
    body += bytes.fromhex("00A0 0040")
    body += b" " * (-len(body) % 80)
    with open(name, "wb") as f:
        f.write(body)


def test_a_cgm_file_is_drawn_in_its_box():
    # The page's border gives the extent: 2970 by 2100 plot units, the
    # whole page, with y turned upward from the lower edge.
    frame = [(0, 2), (5938, 2), (5938, 4198), (0, 4198), (0, 2)]
    cgm_file("pic.cgm", [(255, 0, 0), frame, (0, 0, 0), [(200, 200), (3000, 1000)], [(4000, 4000), (600, 3000)]])
    assert kolvex.filtyp("pic.cgm") == 7

    def direct():
        def polyline(points):
            kolvex.xmove(points[0][0] / 2, 2100 - points[0][1] / 2)
            for x, y in points[1:]:
                kolvex.xdraw(x / 2, 2100 - y / 2)
        kolvex.setrgb(1.0, 0.0, 0.0)
        polyline(frame)
        kolvex.color("FORE")
        polyline([(200, 200), (3000, 1000)])
        polyline([(4000, 4000), (600, 3000)])

    drawn = png_of(direct, "direct.png")
    included = png_of(lambda: (kolvex.frame(0), kolvex.incfil("pic.cgm")), "included.png")
    assert (drawn != drawn[300, 400]).any(axis=2).sum() > 2000
    assert (drawn == included).all()

    def plain():
        kolvex.frame(0)
        kolvex.filclr("NONE")
        kolvex.incfil("pic.cgm")
    img = png_of(plain, "plain.png")
    inked = (img != img[300, 400]).any(axis=2)
    assert (inked == (included != included[300, 400]).any(axis=2)).all()
    assert {tuple(p) for p in img[inked]} == {tuple(png_of(kolvex.pagera, "fore.png")[0, 0])}


def test_a_point_just_left_of_the_page_is_read_back():
    # Within the clipper's tolerance the file holds "-0.0000002".
    kolvex.setfil("edge.met")
    kolvex.kolini()
    kolvex.xmove(-0.0005, 1000)
    kolvex.xdraw(1000, 1000)
    kolvex.kolfin()
    assert "-0.0000002" in open("edge.met").read()
    direct = png_of(lambda: (kolvex.xmove(0, 1000), kolvex.xdraw(1000, 1000)), "direct.png")
    included = png_of(lambda: (kolvex.frame(0), kolvex.incfil("edge.met")), "included.png")
    assert (direct == included).all()
