"""PDF files, proven by readers we did not write.

Sessions from Python (pages, colours, widths, clip windows, an image,
bookmarks, portrait and rotated pages, with and without compression) must
pass qpdf's check and keep exact byte offsets; memory output must be the
file's bytes; pypdf must read the bookmarks back; the test page drawn by
the C++ tests must render with pdftoppm like the PNG of the same page and
name only the standard fonts, none embedded.
"""
import os
import re
import subprocess
import sys

import numpy as np
import pytest

import kolvex
from conftest import needs
from test_native import native_build  # noqa: F401  (the fixture that builds the C++ tests)
from test_vector_files import COLOURS, colour_mask, dilate, page, png_device_built, run  # noqa: F401


def warnings_of(out):
    return [line.strip() for line in out.split("\n") if "<<<< Warning" in line]


def draw(pages=2):
    """Frames in three colours and widths, a clipped frame, an image of the
    letter F, and bookmarks, over some pages."""
    kolvex.pagera()
    kolvex.color("RED")
    kolvex.linwid(5)
    kolvex.pagera()
    kolvex.pdfmrk("Chapter 1", "CHAP")
    kolvex.pdfmrk("Section 1.1", "SECT")
    kolvex.imgmod("RGB")
    kolvex.imgsiz(6, 5)
    kolvex.imgbox(1500, 300, 600, 500)
    kolvex.imgini()
    for y, row in enumerate(["XXXXXX", "X.....", "XXXX..", "X.....", "X....."]):
        for x, c in enumerate(row):
            kolvex.wpixel(x, y, kolvex.intrgb(1.0, 0.0, 0.0) if c == "X" else kolvex.intrgb(0.0, 0.0, 1.0))
    kolvex.imgfin()
    for p in range(1, pages):
        kolvex.newpag()
        kolvex.pdfmrk(f"Chapter {p + 1}", "CHAP")
        kolvex.setrgb(0.0, 0.5, 1.0)
        kolvex.penwid(0.5)
        kolvex.clpwin(100, 100, 1000, 800)
        kolvex.pagera()  # wholly outside the window: nothing
        kolvex.clpwin(0, 0, 1500, 1000)
        kolvex.linwid(1)
        kolvex.pagera()


def session(name, page=None, mode=None, compress=True, memory=False, pages=2):
    kolvex.setfil(name)
    if page:
        kolvex.setpag(page)
    if mode:
        kolvex.pagmod(mode)
    kolvex.pdfmod("ON" if compress else "OFF", "COMP")
    kolvex.pdfmod("ON" if memory else "OFF", "BUFF")
    kolvex.metafl("PDF")
    kolvex.kolini()
    assert kolvex.getlev() == 1
    kolvex.unit(0)
    draw(pages)
    kolvex.kolfin()
    if memory:
        n = kolvex.pdfbuf(0)[1]
        data, m = kolvex.pdfbuf(n)
        assert m == n == len(data)
        return data
    with open(name, "rb") as f:
        return f.read()


def check_offsets(data):
    """Every entry of the cross-reference table points at its object, and
    startxref at the table; every stream is as long as its /Length says."""
    xref = int(re.search(rb"startxref\n(\d+)\n%%EOF\n$", data).group(1))
    assert data[xref:xref + 5] == b"xref\n"
    m = re.match(rb"xref\n0 (\d+)\n0000000000 65535 f \n", data[xref:])
    n = int(m.group(1))
    rows = data[xref + m.end():xref + m.end() + 20 * (n - 1)]
    for i in range(1, n):
        row = rows[20 * (i - 1):20 * i]
        assert row.endswith(b" 00000 n \n")
        off = int(row[:10])
        assert data[off:].startswith(b"%d 0 obj\n" % i)
    assert re.search(rb"trailer\n<< /Size %d /Root 1 0 R /Info \d+ 0 R\n>>\n" % n, data)


def qpdf_check(path):
    r = subprocess.run(["qpdf", "--check", str(path)], capture_output=True, text=True, timeout=120)
    assert r.returncode == 0, r.stdout + r.stderr
    assert "No syntax or stream encoding errors" in r.stdout


@needs("qpdf")
@pytest.mark.parametrize("page, mode", [(None, None), ("DA4P", None), ("DA4L", "PORT"), ("DA4L", "NONE")])
@pytest.mark.parametrize("compress", [True, False])
def test_sessions_pass_qpdf_with_exact_offsets(tmp_path, page, mode, compress):
    data = session("plot.pdf", page, mode, compress)
    assert data.startswith(b"%PDF-1.3\n")
    check_offsets(data)
    qpdf_check(tmp_path / "plot.pdf")
    assert (b"/FlateDecode" in data) == compress
    assert data.count(b"/Type /Page\n") == 2
    # A file without text has no font dictionary; the image page names its image.
    assert b"/Font" not in data and b"/ProcSet [/PDF /ImageC]\n/XObject <<\n/Image1 " in data
    assert (b"/Rotate 90\n" in data) == (page in (None, "DA4L") and mode != "NONE")


def test_memory_output_is_the_file_and_runs_repeat(tmp_path, monkeypatch):
    monkeypatch.setenv("SOURCE_DATE_EPOCH", "1700000000")
    file = session("plot.pdf")
    kolvex.delglb()
    memory = session("other.pdf", memory=True)
    assert not os.path.exists("other.pdf")
    kolvex.delglb()
    again = session("again.pdf")
    assert memory == file == again
    assert b"/CreationDate (D:20231114221320)\n" in file


@needs("pdftoppm")
def test_the_image_lands_in_its_box(tmp_path):
    from PIL import Image
    session("plot.pdf", pages=1)
    run(["pdftoppm", "-png", "-scale-to", "2969", "plot.pdf", "page"])
    im = np.asarray(Image.open("page-1.png").convert("RGB")).astype(int)
    # The box is 1500 to 2100 across, 300 to 800 down; the F is red on blue.
    red = (im[..., 0] > 200) & (im[..., 1] < 60) & (im[..., 2] < 60)
    blue = (im[..., 2] > 200) & (im[..., 0] < 60) & (im[..., 1] < 60)
    ys, xs = np.nonzero((red | blue)[50:-50, 50:-50])  # not the red page frame
    xs, ys = xs + 50, ys + 50
    assert abs(xs.min() - 1500) <= 4 and abs(xs.max() - 2100) <= 4
    assert abs(ys.min() - 300) <= 4 and abs(ys.max() - 800) <= 4
    # The top row is red, the right part of the second row blue.
    assert red[310, 1550:2050].all() and blue[400, 1700:2050].all() and red[400, 1510]


@needs("pdftoppm")
def test_page_rendering_matches_the_png(page, tmp_path):  # noqa: F811
    if not png_device_built(tmp_path):
        pytest.skip("PNG device not built")
    from PIL import Image
    # One plot coordinate is s pixels in the PNG and t points in the PDF.
    s = min(852 / 2969, 602 / 2099)
    t = min(5600 * 72 / 508 / 2969, 3900 * 72 / 508 / 2099, 72 / 254)
    run(["pdftoppm", "-png", "-r", "%.4f" % (72 * s / t), str(page / "vector_test_page.pdf"), str(tmp_path / "r")])
    a = np.asarray(Image.open(tmp_path / "r-1.png").convert("RGB"))[:603, :853]
    a = np.pad(a, ((0, 603 - a.shape[0]), (0, 853 - a.shape[1]), (0, 0)), constant_values=255)
    b = np.asarray(Image.open(page / "vector_test_page.png").convert("RGB"))
    assert a.shape == b.shape == (603, 853, 3)
    inside = np.zeros(a.shape[:2], bool)
    inside[int(1700 * s) + 3:int(2000 * s) - 2, int(1600 * s) + 3:int(2800 * s) - 2] = True
    for what, c in COLOURS.items():
        ma = colour_mask(a, c) & ~inside
        mb = colour_mask(b, c) & ~inside
        assert ma.sum() > 100 and mb.sum() > 100, what
        assert (ma & dilate(mb, 2)).sum() >= 0.97 * ma.sum(), what
        assert (mb & dilate(ma, 2)).sum() >= 0.97 * mb.sum(), what
    for what in ("star", "rect"):
        na, nb = colour_mask(a, COLOURS[what]).sum(), colour_mask(b, COLOURS[what]).sum()
        assert abs(na - nb) <= 0.05 * nb, what
    # The text of the hardware fonts stands inside its box in the PDF.
    assert colour_mask(a, COLOURS["box"])[inside].sum() > 200


@needs("pdffonts")
@needs("qpdf")
def test_page_names_only_standard_fonts(page):  # noqa: F811
    path = page / "vector_test_page.pdf"
    qpdf_check(path)
    check_offsets(path.read_bytes())
    out = run(["pdffonts", str(path)]).stdout.splitlines()[2:]
    fonts = {line.split()[0]: line.split() for line in out}
    assert set(fonts) == {"Helvetica", "Times-Bold"}
    for cols in fonts.values():
        assert cols[1:3] == ["Type", "1"] and cols[4] == "no"  # not embedded
    if have_pdftotext():
        text = run(["pdftotext", str(path), "-"]).stdout
        assert "<&>" in text and "Ü" in text


def have_pdftotext():
    from conftest import have
    return have("pdftotext")


def test_bookmarks_read_back(tmp_path):
    pypdf = pytest.importorskip("pypdf")
    kolvex.setfil("marks.pdf")
    kolvex.metafl("PDF")
    kolvex.kolini()
    kolvex.unit(0)
    kolvex.pdfmrk("Intro", "CHAP")
    kolvex.pdfmrk("Part (a)", "SECT")
    kolvex.pdfmrk("Detail", "SUBS")
    kolvex.newpag()
    kolvex.pdfmrk("Part b", "SECT")
    kolvex.pdfmrk("Odd ) title \\", "SECT")
    kolvex.pdfmrk("End", "CHAP")
    kolvex.kolfin()
    reader = pypdf.PdfReader("marks.pdf")

    def tree(items):
        out = []
        for it in items:
            if isinstance(it, list):
                out[-1] = (out[-1][0], out[-1][1], tree(it))
            else:
                out.append((it.title, reader.get_destination_page_number(it), []))
        return out

    assert tree(reader.outline) == [
        ("Intro", 0, [("Part (a)", 0, [("Detail", 0, [])]), ("Part b", 1, []), ("Odd ) title \\", 1, [])]),
        ("End", 1, []),
    ]
    assert reader.trailer["/Root"]["/PageMode"] == "/UseOutlines"


def test_bad_input_warns_and_goes_on(tmp_path, capfd):
    kolvex.metafl("PDF")
    kolvex.pdfmod("ON", "BUFF")
    assert kolvex.pdfbuf(100) == (b"", 0)  # nothing written yet
    kolvex.kolini()
    assert kolvex.pdfbuf(0) == (b"", 0)  # not before kolfin
    kolvex.pdfmrk("A", "SECT")  # no chapter yet
    kolvex.pdfmrk("A", "CHAP")
    kolvex.pdfmrk("A", "PART")
    kolvex.pdfmrk("B", "PARA")  # no subsection yet
    kolvex.kolfin()
    n = kolvex.pdfbuf(0)[1]
    assert n > 500
    assert kolvex.pdfbuf(n - 1) == (b"", 0)  # too small: the data stay
    data, m = kolvex.pdfbuf(n)
    assert m == n and data.startswith(b"%PDF-1.3\n") and data.endswith(b"%%EOF\n")
    assert data.count(b"/Title (A)") == 1
    kolvex.pdfmod("OFF", "BUFF")
    assert kolvex.pdfbuf(n) == (b"", 0)
    kolvex.metafl("SVG")
    assert kolvex.pdfbuf(n) == (b"", 0)
    out = capfd.readouterr().out
    assert warnings_of(out) == [
        "<<<< Warning 129: Internal PDF buffer is empty in pdfbuf!",
        "<<<< Warning 3: Incorrect level in pdfbuf!   ( 1)",
        "<<<< Warning 131: Bad structure for bookmarks in pdfmrk!",
        "<<<< Warning 2: Incorrect parameter in pdfmrk!   (PART)",
        "<<<< Warning 131: Bad structure for bookmarks in pdfmrk!",
        "<<<< Warning 130: Buffer too small for PDF file in pdfbuf!",
        "<<<< Warning 128: Buffer output is not enabled for PDF in pdfbuf!",
        "<<<< Warning 127: Output format is not PDF in pdfbuf!",
    ]


def test_files_that_cannot_be_written(tmp_path, capfd):
    kolvex.setfil(str(tmp_path / "missing" / "plot.pdf"))
    kolvex.metafl("PDF")
    kolvex.kolini()
    assert kolvex.getlev() == 0
    assert "Warning 36" in capfd.readouterr().out
    # Replacing a file: the old one stays whole until the new one is, also
    # when the program ends in the middle of the session.
    with open("plot.pdf", "wb") as f:
        f.write(b"old")
    program = ("import os, sys; sys.path[:0] = %r; import kolvex as k; k.setfil('plot.pdf'); k.filmod('DELE');"
               "k.metafl('PDF'); k.kolini(); k.unit(0); k.pagera(); os._exit(0)" % [os.path.dirname(kolvex.__file__)])
    subprocess.run([sys.executable, "-c", program], check=True, timeout=60)
    assert open("plot.pdf", "rb").read() == b"old"
    assert not [f for f in os.listdir(".") if f.startswith("plot.pdf") and f != "plot.pdf" and not f.endswith(".tmp")]
    kolvex.setfil("plot.pdf")
    kolvex.filmod("DELE")
    kolvex.metafl("PDF")
    kolvex.kolini()
    kolvex.unit(0)
    kolvex.pagera()
    assert open("plot.pdf", "rb").read() == b"old"
    kolvex.kolfin()
    assert open("plot.pdf", "rb").read().endswith(b"%%EOF\n")


@needs("pdftoppm")
@needs("qpdf")
def test_exported_picture_is_the_png(page):  # noqa: F811
    """The PNG session's canvas written as a PDF of its own (expimg's form):
    rendered at one pixel per image pixel it is the PNG again."""
    from PIL import Image
    path = page / "vector_test_page.png.pdf"
    qpdf_check(path)
    check_offsets(path.read_bytes())
    b = np.asarray(Image.open(page / "vector_test_page.png").convert("RGB")).astype(int)
    c = 0.1417322835
    f = min(5600 / 853, 3900 / 603)  # wider than high: turned onto the paper
    run(["pdftoppm", "-png", "-r", "%.5f" % (72 / (f * c)), str(path), str(page / "export")])
    a = np.asarray(Image.open(page / "export-1.png").convert("RGB")).astype(int)[:603, :853]
    assert a.shape == b.shape
    assert np.abs(a - b).mean() < 8


def test_bookmark_runs_and_titles(capfd):
    # Levels 0 1 2 1 2 3 0: the first chapter's run is items 2 to 6, and its
    # /Last names the end of that run, as the root's names the last item.
    kolvex.metafl("PDF")
    kolvex.pdfmod("ON", "BUFF")
    kolvex.pdfmod("OFF", "COMP")
    kolvex.kolini()
    for title, key in [("C1", "CHAP"), ("S1", "SECT"), (r"a\(b", "SUBS"), ("S2", "SECT"),
                       ("x)", "SUBS"), ("end\\", "PARA"), ("C2", "CHAP")]:
        kolvex.pdfmrk(title, key)
    kolvex.kolfin()
    data = kolvex.pdfbuf(kolvex.pdfbuf(0)[1])[0].decode("latin-1")
    kolvex.pdfmod("ON", "COMP")
    kolvex.pdfmod("OFF", "BUFF")
    capfd.readouterr()
    k = int(re.search(r"(\d+) 0 obj\n<< /Type /Outlines\n", data).group(1))

    def item(i):
        return re.search(r"\n%d 0 obj\n(.*?)endobj\n" % (k + i), data, re.S).group(1)

    assert f"   /First {k + 1} 0 R\n   /Last {k + 7} 0 R\n   /Count 7\n" in data
    assert f"   /Next {k + 7} 0 R\n   /First {k + 2} 0 R\n   /Last {k + 6} 0 R\n   /Count 5\n" in item(1)
    assert f"   /Prev {k + 2} 0 R\n   /First {k + 5} 0 R\n   /Last {k + 6} 0 R\n   /Count 2\n" in item(4)
    # As given while the string still ends where it should; escaped otherwise.
    assert item(3).startswith("<< /Title (a\\(b)\n")
    assert item(5).startswith("<< /Title (x\\))\n")
    assert item(6).startswith("<< /Title (end\\\\)\n")


def test_image_box_stands_where_postscript_puts_it(tmp_path):
    corners = []
    kolvex.pdfmod("OFF", "COMP")  # the content stream as text
    for dev, name, pattern in (("PDF", "box.pdf", rb"1 0 0 1 ([\d.]+) ([\d.]+) cm\n"),
                               ("PSCL", "box.ps", rb"gsave ([\d.]+) ([\d.]+) \s*translate")):
        kolvex.metafl(dev)
        kolvex.setfil(str(tmp_path / name))
        kolvex.setpag("DA4P")
        kolvex.kolini()
        kolvex.imgbox(300, 400, 200, 100)
        kolvex.imgini()
        kolvex.imgfin()
        kolvex.kolfin()
        m = re.search(pattern, open(tmp_path / name, "rb").read())
        corners.append((float(m.group(1)), float(m.group(2))))
    kolvex.pdfmod("ON", "COMP")
    assert corners[0] == pytest.approx(corners[1], abs=0.01)
