"""PostScript and EPS files, proven by an interpreter we did not write.

Ghostscript must read every file without a word of complaint; its rendering
of the C++ test page ps_test_page must show the same shapes at the same
places as the PNG of the same page; an EPS file must carry a bounding box
that holds its drawing and must embed in a LaTeX document.
"""
import os
import re
import subprocess
import sys
import textwrap

import numpy as np
import pytest

import kolvex
from conftest import have, needs
from test_native import native_build, write_test_page  # noqa: F401  (the fixture that builds the C++ tests)
from test_vector_files import colour_mask, dilate, png_device_built

EXT = {"POST": "psc", "PSCL": "psc", "EPS": "eps", "PS": "ps"}
C = 0.1417322835  # points per device unit


def run(args, cwd=None, env=None):
    r = subprocess.run(args, cwd=cwd, env=env, capture_output=True, text=True, timeout=120)
    assert r.returncode == 0, f"{args[0]} failed:\n{r.stdout[-2000:]}{r.stderr[-2000:]}"
    return r


def ghostscript(src, out, res=72, device="png16m"):
    """Renders every page; Ghostscript must neither fail nor say anything."""
    r = run(["gs", "-q", "-dNOPAUSE", "-dBATCH", "-dSAFER", "-sPAPERSIZE=a4", f"-sDEVICE={device}",
             f"-r{res}", f"-sOutputFile={out}", str(src)])
    assert r.stdout.strip() == "" and r.stderr.strip() == "", r.stdout + r.stderr
    return r


def session(device, name, pages=2, page=None):
    """The page frame in three colours and widths, a filled rectangle, and
    a new page."""
    kolvex.setfil(name)
    if page:
        kolvex.setpag(page)
    kolvex.metafl(device)
    kolvex.kolini()
    assert kolvex.getlev() == 1
    kolvex.unit(0)
    kolvex.pagera()
    kolvex.color("RED")
    kolvex.linwid(5)
    kolvex.lncap("ROUN")
    kolvex.lnjoin("SHAR")
    kolvex.pagera()
    for _ in range(pages - 1):
        kolvex.newpag()
        kolvex.setrgb(0.0, 0.5, 1.0)
        kolvex.penwid(0.5)
        kolvex.pagera()
    kolvex.kolfin()
    with open(name, "rb") as f:
        return f.read()


@needs("gs")
@pytest.mark.parametrize("device", list(EXT))
@pytest.mark.parametrize("page", [None, "DA4P"])
def test_every_device_is_read_without_a_warning(tmp_path, device, page):
    name = "plot." + EXT[device]
    data = session(device, name, page=page).decode("ascii")
    ghostscript(name, "page%d.png")
    pages = sorted(p for p in os.listdir() if p.startswith("page"))
    # EPS holds one page whatever newpag asks.
    assert len(pages) == (1 if device == "EPS" else 2)
    assert ("%%Pages: 2 \n%%EOF \n" in data) == (device != "EPS")
    from PIL import Image
    im = np.asarray(Image.open(pages[0]).convert("RGB")).astype(int)
    red = (im[..., 0] > 200) & (im[..., 1] < 80) & (im[..., 2] < 80)
    if device == "POST":
        # The grey table: no colour at all, the red frame a grey one.
        assert red.sum() == 0 and (np.ptp(im, axis=2) == 0).all()
    else:
        assert red.sum() > 500
    dark = (im.sum(axis=2) < 100).mean()
    # PSCL paints the dark background of the screen; the others are white.
    assert (dark > 0.5) == (device == "PSCL")


@needs("gs")
def test_eps_bounding_box_holds_the_drawing(tmp_path):
    for page in ("DA4L", "DA4P"):
        data = session("EPS", "plot.eps", pages=1, page=page).decode("ascii")
        box = [int(v) for v in re.search(r"^%%BoundingBox:  (\d+) (\d+) (\d+) (\d+)$", data, re.M).groups()]
        r = subprocess.run(["gs", "-q", "-dNOPAUSE", "-dBATCH", "-dSAFER", "-sDEVICE=bbox", "plot.eps"],
                           capture_output=True, text=True, timeout=120)
        drawn = [float(v) for v in re.search(r"%%HiResBoundingBox: (\S+) (\S+) (\S+) (\S+)", r.stderr).groups()]
        # The frame runs round the page: the drawing fills the box, to the
        # half line width and the rounding up of the upper corner.
        assert all(abs(d - b) < 3 for d, b in zip(drawn, box)), (drawn, box)
        assert drawn[0] >= box[0] - 1 and drawn[2] <= box[2] + 1


@needs("latex")
@needs("dvips")
@needs("gs")
def test_eps_embeds_in_latex(tmp_path):
    session("EPS", "plot.eps", pages=1)
    with open("doc.tex", "w") as f:
        f.write(textwrap.dedent(r"""
            \documentclass{article}
            \usepackage{graphicx}
            \begin{document}
            Before.\par
            \includegraphics[width=8cm]{plot.eps}\par
            After.
            \end{document}
            """))
    run(["latex", "-interaction=nonstopmode", "doc.tex"])
    run(["dvips", "-q", "-o", "doc.ps", "doc.dvi"])
    ghostscript("doc.ps", "doc.png", res=50)
    from PIL import Image
    im = np.asarray(Image.open("doc.png").convert("RGB")).astype(int)
    red = (im[..., 0] > 200) & (im[..., 1] < 80) & (im[..., 2] < 80)
    rows, cols = np.nonzero(red)
    # The picture stands 8 cm wide in the page, not over it.
    assert red.sum() > 100
    assert abs((cols.max() - cols.min()) - 8 / 2.54 * 50) < 6
    assert rows.max() < im.shape[0] * 0.6


@needs("gs")
def test_image_mode_embeds_the_canvas(tmp_path):
    kolvex.setfil("img.ps")
    kolvex.metafl("PS")
    kolvex.winsiz(60, 40)
    kolvex.kolini()
    kolvex.unit(0)
    kolvex.imgini()
    # Red above, blue below, on a white canvas; the left third left white.
    for y in range(40):
        for x in range(20, 60):
            kolvex.wpixel(x, y, kolvex.intrgb(1.0, 0, 0) if y < 20 else kolvex.intrgb(0, 0, 1.0))
    kolvex.imgfin()
    kolvex.kolfin()
    data = open("img.ps").read()
    assert "/Width 60 \n/Height 40 \n" in data and "/ImageMatrix [60 0 0 -40 0 40] \n" in data
    # Each dictionary entry has its line, the last one too: the hex rows follow.
    assert "filter \n>> image \nFFFFFF" in data
    assert all(len(line) <= 80 for line in data.splitlines())
    ghostscript("img.ps", "img.png", res=30)
    from PIL import Image
    im = np.asarray(Image.open("img.png").convert("RGB")).astype(int)
    red = (im[..., 0] > 200) & (im[..., 2] < 80)
    blue = (im[..., 2] > 200) & (im[..., 0] < 80)
    # Landscape on portrait paper: the page's top runs along the paper's
    # left side, so red stands left of blue, and the white third at the bottom.
    rr, rc = np.nonzero(red)
    br, bc = np.nonzero(blue)
    assert red.sum() > 1000 and abs(red.sum() - blue.sum()) < 0.05 * red.sum()
    assert rc.mean() < bc.mean()
    both = red | blue
    rows = np.nonzero(both.any(axis=1))[0]
    assert rows.max() < im.shape[0] * 0.75


def test_two_runs_give_the_same_bytes(tmp_path, monkeypatch):
    monkeypatch.setenv("SOURCE_DATE_EPOCH", "1700000000")
    first = session("PS", "a.ps")
    kolvex.delglb()
    second = session("PS", "b.ps")
    assert first == second
    assert b"%%CreationDate: 14.11.2023 , 22:13:20\n" in first


def test_psmode_and_psmeta(tmp_path, capfd):
    kolvex.psmode("XXXX")
    assert "Warning 2" in capfd.readouterr().out
    kolvex.psmode("SING")
    kolvex.psmeta("%%Title: (x) \\ y", "INFO")
    kolvex.setfil("s.ps")
    kolvex.metafl("PS")
    kolvex.kolini()
    kolvex.psmode("MULT")  # the file's page mode is chosen before it opens
    assert "Warning 3" in capfd.readouterr().out
    kolvex.psmode("GREE")
    kolvex.unit(0)
    kolvex.kolfin()
    data = open("s.ps").read()
    assert "%%Title: (x) \\ y\n%%EndComments\n%%Page: 1 1\n" in data
    assert data.endswith(" f showpage \n") and "%%Pages" not in data and "gsave showpage" not in data


def test_unopenable_file_fails_the_session(tmp_path, capfd):
    kolvex.setfil(str(tmp_path / "missing" / "plot.ps"))
    kolvex.metafl("PS")
    kolvex.kolini()
    assert kolvex.getlev() == 0
    assert "Warning 36" in capfd.readouterr().out


def test_full_disk_leaves_no_file(tmp_path):
    # A file size limit makes every write past 8 KB fail, as a full disk does.
    script = textwrap.dedent("""
        import resource, signal, sys
        sys.path.insert(0, sys.argv[1])
        import kolvex
        signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (8192, 8192))
        kolvex.setfil("full.ps")
        kolvex.metafl("PS")
        kolvex.kolini()
        for k in range(200):
            kolvex.pagera()
        kolvex.kolfin()
        """)
    r = subprocess.run([sys.executable, "-c", script, os.path.dirname(os.path.dirname(kolvex.__file__))
                        if os.path.basename(os.path.dirname(kolvex.__file__)) == "kolvex"
                        else os.path.dirname(kolvex.__file__)],
                       capture_output=True, text=True, timeout=120)
    assert r.returncode == 0, r.stderr
    assert "Warning 36" in r.stdout
    # Nothing that looks like a picture: no file, or an empty one.
    assert not os.path.exists("full.ps") or os.path.getsize("full.ps") == 0


# ---- the test page -------------------------------------------------------------------------

COLOURS = {"frame": (0, 0, 0), "curve": (255, 0, 0), "zigzag": (0, 255, 0), "star": (0, 0, 255),
           "rect": (255, 128, 0), "dashes": (255, 0, 255)}


@pytest.fixture(scope="module")
def page(native_build, tmp_path_factory):  # noqa: F811
    out = tmp_path_factory.mktemp("ps_page")
    write_test_page(native_build, "ps_test_page", out)
    return out


@needs("gs")
def test_exported_image_is_read(page, tmp_path):
    if not png_device_built(tmp_path):
        pytest.skip("PNG device not built")
    ghostscript(page / "ps_test_page.export.ps", tmp_path / "export.png", res=40)
    from PIL import Image
    im = np.asarray(Image.open(tmp_path / "export.png").convert("RGB"))
    for what in ("star", "rect", "curve"):
        assert colour_mask(im, COLOURS[what]).sum() > 20, what


@needs("gs")
def test_sector_and_triangle_are_filled(page, tmp_path):
    ghostscript(page / "ps_test_page.shapes.ps", tmp_path / "shapes.png", res=40)
    from PIL import Image
    im = np.asarray(Image.open(tmp_path / "shapes.png").convert("RGB"))
    red, blue = colour_mask(im, (255, 0, 0)), colour_mask(im, (0, 0, 255))
    # A ring sector of 120 degrees between radii 200 and 600, and a
    # triangle of base 800 and height 800, in plot coordinates.
    unit = (min(5600 / 2969, 3900 / 2099) * C * 40 / 72) ** 2
    assert abs(red.sum() - np.pi * (600 ** 2 - 200 ** 2) / 3 * unit) < 0.05 * red.sum()
    assert abs(blue.sum() - 800 * 800 / 2 * unit) < 0.05 * blue.sum()


@needs("gs")
def test_ps_rendering_matches_the_png(page, tmp_path):
    if not png_device_built(tmp_path):
        pytest.skip("PNG device not built")
    from PIL import Image
    res = 150
    ghostscript(page / "ps_test_page.ps", tmp_path / "gs.png", res=res)
    g = np.asarray(Image.open(tmp_path / "gs.png").convert("RGB"))
    b = np.asarray(Image.open(page / "ps_test_page.png").convert("RGB"))
    assert b.shape == (603, 853, 3)
    # Each pixel of the PNG looks up the same plot position in the
    # rendering: plot X runs up the portrait sheet, plot Y along it.
    sp = min(852 / 2969, 602 / 2099)
    sps = min(5600 / 2969, 3900 / 2099)
    rows, cols = np.mgrid[0:603, 0:853]
    px = (sps * rows / sp + 150) * C
    py = (sps * cols / sp + 200) * C
    gi = np.clip(np.rint(px * res / 72 - 0.5).astype(int), 0, g.shape[1] - 1)
    gj = np.clip(np.rint(g.shape[0] - py * res / 72 - 0.5).astype(int), 0, g.shape[0] - 1)
    a = g[gj, gi]
    for what, c in COLOURS.items():
        ma = colour_mask(a, c)
        mb = colour_mask(b, c)
        assert ma.sum() > 100 and mb.sum() > 100, what
        # Each picture's pixels of the colour lie within two pixels of the other's.
        assert (ma & dilate(mb, 2)).sum() >= 0.97 * ma.sum(), what
        assert (mb & dilate(ma, 2)).sum() >= 0.97 * mb.sum(), what
    # Fills cover the same area within a few per cent.
    for what in ("star", "rect"):
        na, nb = colour_mask(a, COLOURS[what]).sum(), colour_mask(b, COLOURS[what]).sum()
        assert abs(na - nb) <= 0.05 * nb, (what, na, nb)
    # The zig-zag of linwid(12) is 12 plot coordinates wide: its area over
    # its length of 1500 gives that width, less than a pixel more for the
    # square caps and the joins.
    width = colour_mask(a, COLOURS["zigzag"]).sum() / (1500 * sp)
    assert 12 * sp - 0.3 < width < 12 * sp + 1.2, width


@pytest.mark.parametrize("device", ["PS", "PDF"])
def test_whole_page_image_ignores_the_origin_shift(tmp_path, device):
    """A picture that fills the page stays on the page when the origin moves."""
    def placed(shift):
        name = f"img{shift}.{device.lower()}"
        kolvex.setfil(name)
        kolvex.metafl(device)
        if device == "PDF":
            kolvex.pdfmod("OFF", "COMP")
        kolvex.kolini()
        kolvex.origin(shift, shift)
        kolvex.imgini()
        kolvex.imgfin()
        kolvex.kolfin()
        text = open(name, "rb").read().decode("latin-1")
        pat = r"gsave *([-\d.]+) +([-\d.]+) +translate" if device == "PS" else r"1 0 0 1 ([-\d.]+) ([-\d.]+) cm\n"
        return re.search(pat, text).groups()

    assert placed(300) == placed(0)
