"""Shaded surfaces: analytic functions with and without lights, with a mesh,
from several view points, on PNG (z-buffer) and SVG (depth buffer), two
surfaces that pass through each other, the four label modes of the 3-D
axes, and a parametric sphere with curved mesh lines and its PLY model."""
import math
import sys

import kolvex as k

N = 40


def grid(f, lo=-2.0, hi=2.0, n=N):
    xs = [lo + (hi - lo) * i / (n - 1) for i in range(n)]
    z = [[f(x, y) for y in xs] for x in xs]
    return xs, z


def plot(fname, fmt, surfaces, view=None, lights=False, mesh=False, smooth=False, zbuf=False):
    k.metafl(fmt)
    k.setfil(fname)
    k.filmod("DELE")
    k.scrmod("REVERS")
    if fmt == "PNG":
        k.imgfmt("RGB")
    k.kolini()
    k.setvlt("RAIN")
    k.axspos(300, 1800)
    k.axslen(1600, 1600)
    k.name("X", "X")
    k.name("Y", "Y")
    k.name("Z", "Z")
    if view:
        k.view3d(*view, "ABS")
    if lights:
        k.light("ON")
    if mesh:
        k.surmsh("ON")
    if smooth:
        k.shdmod("SMOO", "SURF")
    k.graf3d(-2, 2, -2, 1, -2, 2, -2, 1, -1, 1, -1, 0.5)
    # One bracket round all surfaces, so that they hide each other: the
    # z-buffer on PNG, the depth buffer on SVG.  The box is drawn inside it
    # on PNG, so that its hidden edges stay hidden.
    if zbuf:
        k.zbfini()
    else:
        k.dbfini()
    for xs, z in surfaces:
        k.surshd(xs, len(xs), xs, len(xs), z)
    if zbuf:
        k.box3d()
        k.zbffin()
    else:
        k.dbffin()
    k.endgrf()
    k.kolfin()


def open_png(fname):
    k.metafl("PNG")
    k.setfil(fname)
    k.filmod("DELE")
    k.scrmod("REVERS")
    k.imgfmt("RGB")
    k.kolini()


def labelled_box(fname, mode, view=None):
    """The axes of a 3-D system in one of the four label modes."""
    open_png(fname)
    k.axspos(500, 1800)
    k.axslen(1600, 1600)
    k.name("X-axis", "X")
    k.name("Y-axis", "Y")
    k.name("Z-axis", "Z")
    k.labl3d(mode)
    if view:
        k.view3d(*view, "ABS")
    k.graf3d(-2, 2, -2, 1, 0, 10, 0, 2, -1, 1, -1, 0.5)
    k.box3d()
    k.endgrf()
    k.kolfin()


def sphere(p, q, i):
    a, b = math.radians(p), math.radians(q)
    return (math.cos(a) * math.cos(b), math.sin(a) * math.cos(b), math.sin(b))[i - 1]


def parametric(fname, ply=None):
    """A sphere from surfcp, lit, on the z-buffer, with mesh lines that
    follow the sphere between the grid points; optionally as a PLY model."""
    open_png(fname)
    k.setvlt("RAIN")
    k.axspos(500, 1800)
    k.axslen(1600, 1600)
    k.light("ON")
    k.surmsh("ON")
    k.mshcrv(10)
    if ply:
        k.plyini("STAN")
    k.labl3d("HORI")
    k.graf3d(-1, 1, -1, 0.5, -1, 1, -1, 0.5, -1, 1, -1, 0.5)
    k.zbfini()
    k.surfcp(sphere, 0, 360, 30, -90, 90, 30)
    k.zbffin()
    k.endgrf()
    if ply:
        k.plyfin(ply, "sphere")
    k.kolfin()


def main(out="."):
    sinc = grid(lambda x, y: math.sin(2 * math.hypot(x, y)) / (1 + math.hypot(x, y)))
    saddle = grid(lambda x, y: 0.25 * (x * x - y * y))
    bump = grid(lambda x, y: 0.9 * math.exp(-(x * x + y * y)) - 0.3)
    plane = grid(lambda x, y: 0.2 * x + 0.1 * y)
    for fmt, ext, zb in (("PNG", "png", True), ("SVG", "svg", False)):
        plot(f"{out}/sinc_flat.{ext}", fmt, [sinc], zbuf=zb)
        plot(f"{out}/sinc_light.{ext}", fmt, [sinc], lights=True, zbuf=zb)
        plot(f"{out}/saddle_mesh.{ext}", fmt, [saddle], mesh=True, view=(-6, -5, 5), zbuf=zb)
        plot(f"{out}/bump_side.{ext}", fmt, [bump], lights=True, view=(6, 2, 1.5), zbuf=zb)
        plot(f"{out}/cross.{ext}", fmt, [bump, plane], zbuf=zb)
    plot(f"{out}/sinc_smooth.png", "PNG", [sinc], lights=True, smooth=True)
    for mode in ("STAN", "HORI", "PARA", "OTHE"):
        labelled_box(f"{out}/labels_{mode.lower()}.png", mode)
    labelled_box(f"{out}/labels_othe_back.png", "OTHE", view=(-5, 4, 3))
    parametric(f"{out}/sphere.png", ply=f"{out}/sphere.ply")


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else ".")
