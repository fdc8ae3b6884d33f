"""A PostScript file of two pages, and an EPS picture of the first one.

Page 1: the page border in three colours and widths, with round caps and
sharp joins, and the rainbow colour table embedded as an image in a box.
Page 2: the border again, thin, in a colour given as red, green, blue.
With Ghostscript installed the pages are rendered as PNG files beside it.
"""
import shutil
import subprocess

import kolvex


def draw(device, name, pages):
    kolvex.setfil(name)
    kolvex.filmod("DELE")
    kolvex.metafl(device)
    kolvex.imgsiz(256, 40)
    kolvex.imgbox(500, 900, 1969, 300)
    kolvex.kolini()
    kolvex.lncap("ROUN")
    kolvex.lnjoin("SHAR")
    kolvex.linwid(60)
    kolvex.color("BLUE")
    kolvex.pagera()
    kolvex.linwid(25)
    kolvex.color("ORANGE")
    kolvex.pagera()
    kolvex.linwid(1)
    kolvex.color("FORE")
    kolvex.pagera()
    kolvex.imgini()
    kolvex.wpixls(bytes(range(256)) * 40, 0, 0, 256, 40)
    kolvex.imgfin()
    if pages > 1:
        kolvex.newpag()
        kolvex.setrgb(0.0, 0.5, 1.0)
        kolvex.penwid(0.5)
        kolvex.pagera()
    kolvex.kolfin()


draw("PS", "postscript.ps", 2)
draw("EPS", "postscript.eps", 1)
if shutil.which("gs"):
    subprocess.run(["gs", "-q", "-dNOPAUSE", "-dBATCH", "-dSAFER", "-sPAPERSIZE=a4", "-sDEVICE=png16m",
                    "-r50", "-sOutputFile=postscript-%d.png", "postscript.ps"], check=True)
