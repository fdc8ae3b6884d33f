"""SVG, IPE and Java files, proven by readers we did not write.

Sessions from Python (pages, colours, widths, new pages, rotated and
portrait pages) must give files that xmllint, rsvg-convert, ipetoipe and
javac accept.  The C++ test vector_test_page draws one page through the
device layer into every format and PNG; the SVG rendered by rsvg-convert
must show the same shapes at the same places as the PNG of the raster
device.
"""
import os
import re
import shutil
import subprocess
import unicodedata

import numpy as np
import pytest

import kolvex
from conftest import have, needs
from test_native import native_build, write_test_page  # noqa: F401  (the fixture that builds the C++ tests)

EXT = {"SVG": "svg", "IPE": "ipe", "JAVA": "java"}


def session(device, name, page=None, mode=None):
    """A session that draws the page frame in three colours and widths and
    turns one page."""
    kolvex.setfil(name)
    if page:
        kolvex.setpag(page)
    if mode:
        kolvex.pagmod(mode)
    kolvex.metafl(device)
    kolvex.kolini()
    assert kolvex.getlev() == 1
    kolvex.unit(0)
    kolvex.pagera()
    kolvex.color("RED")
    kolvex.linwid(20)
    kolvex.pagera()
    kolvex.setrgb(0.0, 0.5, 1.0)
    kolvex.penwid(0.5)
    kolvex.pagera()
    kolvex.newpag()
    kolvex.linwid(1)
    kolvex.pagera()
    kolvex.kolfin()
    with open(name, "rb") as f:
        return f.read()


def latex_can_run_ipe_labels():
    """ipetoipe typesets labels with pdflatex and the packages that Ipe and
    our preamble load."""
    if not have("pdflatex") or not have("kpsewhich"):
        return False
    found = subprocess.run(["kpsewhich", "xcolor.sty", "times.sty", "ptmr7t.tfm"],
                           capture_output=True, text=True).stdout.split()
    return len(found) == 3


def run(args, cwd=None):
    r = subprocess.run(args, cwd=cwd, capture_output=True, text=True, timeout=120)
    assert r.returncode == 0, f"{args[0]} failed:\n{r.stdout[-2000:]}{r.stderr[-2000:]}"
    return r


@needs("xmllint")
@needs("rsvg-convert")
@pytest.mark.parametrize("page,mode,size", [(None, None, (853, 603)), (None, "PORT", (853, 603)),
                                            ("DA4P", None, (603, 853))])
def test_svg_sessions_are_read_and_rendered(tmp_path, page, mode, size):
    data = session("SVG", "plot.svg", page, mode)
    run(["xmllint", "--noout", "--nonet", "plot.svg"])
    run(["rsvg-convert", "-b", "white", "-o", "plot.png", "plot.svg"])
    from PIL import Image
    im = np.asarray(Image.open("plot.png").convert("RGB")).astype(int)
    assert im.shape[1::-1] == size
    # The red frame of width 20 and the light blue one both show.
    red = (im[..., 0] > 200) & (im[..., 1] < 80) & (im[..., 2] < 80)
    blue = (im[..., 2] > im[..., 1] + 40) & (im[..., 1] > im[..., 0] + 20)
    assert red.sum() > 1000 and blue.sum() > 300
    text = data.decode("latin-1")
    # A new page keeps the one picture; every group is closed.
    assert text.count("<svg ") == 1 and text.endswith("</g>\n</svg>\n")
    assert text.count("<g ") == text.count("</g>")
    # Widths scale like positions (the long side of the page, 2970 units,
    # fills 853 pixels, or 603 on a turned page), never below 1.
    scale = (603 if mode == "PORT" else 853) / 2970
    widths = sorted({float(w) for w in re.findall(r'stroke-width="([0-9.]+)"', text)})
    assert widths[0] == 1.0 and widths[-1] == pytest.approx(20 * scale, abs=0.01)
    if mode == "PORT":
        # The page turns: its frame stands upright in the left of the picture.
        cols = np.nonzero(red.any(axis=0))[0]
        rows = np.nonzero(red.any(axis=1))[0]
        assert cols.max() < 0.6 * size[0] and rows.max() - rows.min() > 0.9 * size[1]


@needs("ipetoipe")
@pytest.mark.parametrize("page,mode", [(None, None), (None, "PORT"), ("DA4P", None)])
def test_ipe_sessions_become_pdf(tmp_path, page, mode):
    data = session("IPE", "plot.ipe", page, mode).decode("ascii")
    run(["ipetoipe", "-pdf", "plot.ipe", "plot.pdf"])
    assert os.path.getsize("plot.pdf") > 500
    # newpag starts the second page of the document.
    assert data.count("<page>") == 2 and data.endswith("</page>\n</ipe>\n")
    if have("qpdf"):
        assert run(["qpdf", "--show-npages", "plot.pdf"]).stdout.strip() == "2"
    paper = re.search(r'<layout paper="(\d+) (\d+)"', data).groups()
    wide = int(paper[0]) > int(paper[1])
    assert wide == (page is None and mode is None)
    assert 'stroke="1 0 0" pen="' in data and 'stroke="0 0.502 1"' in data


@needs("javac")
@pytest.mark.parametrize("name,public", [("Plot.java", True), ("kolvex.java", True),
                                         ("my-plot.java", False), ("1st.java", False),
                                         ("class.java", False)])
def test_java_files_compile(tmp_path, name, public):
    data = session("JAVA", name).decode("ascii")
    cls = re.search(r"^(public )?class (\w+) extends Applet \{$", data, re.M)
    assert cls and bool(cls.group(1)) == public
    if public:
        assert cls.group(2) == name.split(".")[0]
    run(["javac", "-nowarn", "-d", "classes", name])
    assert os.path.exists(os.path.join("classes", cls.group(2) + ".class"))
    assert data.count("g.drawLine") >= 16 and data.endswith("  }\n}\n")


@needs("javac")
def test_java_file_in_a_directory(tmp_path):
    os.mkdir("out")
    data = session("JAVA", "out/Chart.v2.java").decode("ascii")
    # The class takes the base name up to its first point; Java wants a
    # public class in a file of its own name only.
    assert "\nclass Chart extends Applet" in data
    run(["javac", "-nowarn", "-d", "classes", "out/Chart.v2.java"])


def test_two_runs_give_the_same_file(tmp_path):
    def strip(data):
        return re.sub(rb"\d\d\.\d\d\.\d{4},? \d\d:\d\d:\d\d|D:\d{14}", b"", data)

    os.mkdir("a")
    os.mkdir("b")
    for device in EXT:
        first = strip(session(device, "a/plot." + EXT[device]))
        kolvex.delglb()
        second = strip(session(device, "b/plot." + EXT[device]))
        kolvex.delglb()
        assert first == second


def test_unwritable_file_fails_the_session_only(tmp_path, capfd):
    kolvex.setfil(str(tmp_path / "missing" / "plot.svg"))
    kolvex.metafl("SVG")
    kolvex.kolini()
    assert kolvex.getlev() == 0
    assert "Warning 36" in capfd.readouterr().out
    kolvex.setfil("plot.svg")
    kolvex.kolini()
    assert kolvex.getlev() == 1
    kolvex.unit(0)
    kolvex.kolfin()
    assert open("plot.svg", "rb").read().endswith(b"</svg>\n")


# ---- the test page -------------------------------------------------------------------------

def png_device_built(tmp_path):
    kolvex.setfil(str(tmp_path / "probe.png"))
    kolvex.metafl("PNG")
    kolvex.kolini()
    ok = kolvex.getlev() > 0
    if ok:
        kolvex.unit(0)
        kolvex.kolfin()
    kolvex.delglb()
    return ok


@pytest.fixture(scope="module")
def page(native_build, tmp_path_factory):  # noqa: F811
    out = tmp_path_factory.mktemp("vector_page")
    write_test_page(native_build, "vector_test_page", out)
    return out


@needs("xmllint")
def test_page_svg_is_well_formed(page):
    run(["xmllint", "--noout", "--nonet", str(page / "vector_test_page.svg")])
    data = (page / "vector_test_page.svg").read_bytes()
    assert b"<text x=" in data and b">\xdc</text>" in data and b"&amp;" in data


@needs("ipetoipe")
def test_page_ipe_becomes_pdf_with_its_labels(page, tmp_path):
    data = (page / "vector_test_page.ipe").read_bytes()
    assert "Ü</text>".encode() in data and b"\\textbackslash" in data
    if not latex_can_run_ipe_labels():
        pytest.skip("pdflatex with xcolor and the Times fonts is not installed")
    shutil.copy(page / "vector_test_page.ipe", tmp_path)
    run(["ipetoipe", "-pdf", "vector_test_page.ipe", "page.pdf"], cwd=tmp_path)
    if have("pdftotext"):
        text = run(["pdftotext", str(tmp_path / "page.pdf"), "-"]).stdout
        # The accent may come out as a letter and a combining mark.
        text = unicodedata.normalize("NFC", text.replace("\u00a8", "\u0308").replace("U\u0308", "Ü"))
        assert "<&>" in text and "Ü" in text


@needs("javac")
def test_page_java_compiles(page, tmp_path):
    shutil.copy(page / "vector_test_page.java", tmp_path)
    run(["javac", "-nowarn", "-d", "classes", "vector_test_page.java"], cwd=tmp_path)


# Colours of the page and what they draw.
COLOURS = {"frame": (0, 0, 0), "curve": (255, 0, 0), "zigzag": (0, 255, 0), "star": (0, 0, 255),
           "rect": (255, 128, 0), "box": (255, 0, 255)}


def colour_mask(im, c):
    """Pixels of colour c over white, anti-aliased ones included."""
    d = 255.0 - im.astype(float)
    w = 255.0 - np.array(c, dtype=float)
    alpha = (d @ w) / (w @ w)
    resid = np.linalg.norm(d - alpha[..., None] * w, axis=-1)
    return (alpha > 0.45) & (resid < 40)


def dilate(mask, r):
    out = mask.copy()
    h, w = mask.shape
    for dy in range(-r, r + 1):
        for dx in range(-r, r + 1):
            out[max(dy, 0):h + min(dy, 0), max(dx, 0):w + min(dx, 0)] |= \
                mask[max(-dy, 0):h + min(-dy, 0), max(-dx, 0):w + min(-dx, 0)]
    return out


@needs("rsvg-convert")
def test_svg_rendering_matches_the_png(page, tmp_path):
    if not png_device_built(tmp_path):
        pytest.skip("PNG device not built")
    from PIL import Image
    svg_png = tmp_path / "svg.png"
    run(["rsvg-convert", "-w", "853", "-h", "603", "-b", "white", "-o", str(svg_png),
         str(page / "vector_test_page.svg")])
    a = np.asarray(Image.open(svg_png).convert("RGB"))
    b = np.asarray(Image.open(page / "vector_test_page.png").convert("RGB"))
    assert a.shape == b.shape == (603, 853, 3)
    # The text stands only in the formats with fonts: leave the inside of
    # its box out.
    s = min(852 / 2969, 602 / 2099)
    inside = np.zeros(a.shape[:2], bool)
    inside[int(1700 * s) + 3:int(2000 * s) - 2, int(1600 * s) + 3:int(2800 * s) - 2] = True
    for what, c in COLOURS.items():
        ma = colour_mask(a, c) & ~inside
        mb = colour_mask(b, c) & ~inside
        assert ma.sum() > 100 and mb.sum() > 100, what
        # Each picture's pixels of the colour lie within two pixels of the other's.
        assert (ma & dilate(mb, 2)).sum() >= 0.97 * ma.sum(), what
        assert (mb & dilate(ma, 2)).sum() >= 0.97 * mb.sum(), what
    # Filled shapes are filled in both, with the same area within a few per cent.
    for what in ("star", "rect"):
        na, nb = colour_mask(a, COLOURS[what]).sum(), colour_mask(b, COLOURS[what]).sum()
        assert abs(na - nb) <= 0.05 * nb, what


@needs("rsvg-convert")
def test_svg_lines_are_as_wide_as_png_lines():
    """linwid(40) on an A4 page: the page frame rendered from the SVG file
    and drawn into the PNG file has the same width in pixels (half of it
    inside the page at the left edge)."""
    from PIL import Image

    def draw(device, name):
        kolvex.setfil(name)
        kolvex.metafl(device)
        kolvex.scrmod("REVERS")  # black lines on white on both
        kolvex.kolini()
        kolvex.unit(0)
        kolvex.linwid(40)
        kolvex.pagera()
        kolvex.kolfin()

    draw("SVG", "w.svg")
    draw("PNG", "w.png")
    run(["rsvg-convert", "-b", "white", "-o", "svg.png", "w.svg"])

    def width(path):
        im = np.asarray(Image.open(path).convert("L")).astype(float)
        row = 255 - im[im.shape[0] // 2, :100]  # ink at the left of the middle row
        return row.sum() / 255

    png, svg = width("w.png"), width("svg.png")
    assert 5 < png < 8
    assert svg == pytest.approx(png, abs=1.0)
