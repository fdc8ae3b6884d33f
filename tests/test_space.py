"""The 3-D axis system and shaded surfaces: the projection against the
matrices built from the camera, the native metafile's coordinates of a 3-D
line, occlusion on the z-buffer, the light model's settings and bad input."""
import math

import numpy as np
import pytest

import kolvex
from axes_support import read_plog

X0, Y0, XL, YL = 494, 1799, 1980, 1400   # defaults of the DA4L page


def warnings_of(capfd):
    return [l for l in capfd.readouterr().out.splitlines() if l.startswith(" <<<< Warning")]


def plog(name="s.met"):
    kolvex.metafl("PLOG")
    kolvex.setfil(name)
    kolvex.filmod("DELE")
    kolvex.kolini()


def camera(eye, foc=(0, 0, 0), up=0.0, half=0.24497869610786438, near=1.0):
    """The matrix of the camera, written out from the rules of the view."""
    ex, ey, ez = eye
    a, b, c = ex - foc[0], ey - foc[1], ez - foc[2]
    h = math.hypot(a, b)
    cu, su = math.cos(up), math.sin(up)
    if h < 1e-6:
        X = [cu, -su, 0, su * ey - cu * ex]
        Y = [su, cu, 0, -(su * ex) - cu * ey]
        Z = [0, 0, -1, ez]
    else:
        L = math.hypot(h, c)
        p, q, t, w = b / h, a / h, c / L, h / L
        g, k = p * ex - q * ey, -(q * ex) - p * ey
        m = -(w * ez) - k * t
        X = [t * q * su - p * cu, t * p * su + q * cu, -(w * su), g * cu - m * su]
        Y = [-(p * su) - t * q * cu, q * su - t * p * cu, w * cu, m * cu + g * su]
        Z = [-(w * q), -(w * p), -t, t * ez - k * w]
    T = math.tan(half)
    W = np.array(Z) * T
    return np.array(X), np.array(Y), W


def project(M, pt):
    X, Y, W = M
    v = np.array([*pt, 1.0])
    s = min(XL, YL) / 2
    cx, cy = X0 + XL / 2, Y0 - YL / 2
    return cx + s * (X @ v) / (W @ v), cy - s * (Y @ v) / (W @ v)


POINTS = [(0, 0, 0), (1, 1, 1), (-1, 0.5, -1), (0.3, -0.7, 0.9)]


@pytest.mark.parametrize("view, eye", [
    (None, (4, -5, 4)),                           # the default eye of a 2, 2, 2 box
    ((30, 30, 6, "ANGL"), (6 * math.cos(math.pi / 6) * 0.5, 6 * math.cos(math.pi / 6) * math.cos(math.pi / 6), 3)),
    ((0, 0, 7, "ABS"), (0, 0, 7)),               # straight above: the other matrix
])
def test_projection_follows_the_camera(view, eye):
    plog()
    if view:
        kolvex.view3d(*view)
    kolvex.nograf()
    kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
    M = camera(eye)
    for p in POINTS:
        want = project(M, p)
        assert kolvex.abs3pt(*p) == pytest.approx(want, abs=1e-3)
        assert kolvex.x3dabs(*p) == pytest.approx(want[0], abs=1e-3)
    # User coordinates: an axis from 0 to 10 maps to -1 .. 1.
    kolvex.endgrf()
    kolvex.graf3d(0, 10, 0, 5, 0, 10, 0, 5, 0, 10, 0, 5)
    assert kolvex.pos3pt(10, 0, 5) == pytest.approx((1, -1, 0))
    assert kolvex.rel3pt(10, 0, 5) == pytest.approx(project(camera(eye), (1, -1, 0)), abs=1e-3)
    kolvex.endgrf()
    kolvex.kolfin()


def test_metafile_line_lands_on_the_projected_points():
    plog("line.met")
    kolvex.nograf()
    kolvex.clip3d("NONE")
    kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
    kolvex.strt3d(-1, -1, -1)
    kolvex.conn3d(1, 0.5, 0.25)
    kolvex.endgrf()
    kolvex.kolfin()
    pieces = [p for p in read_plog("line.met") if len(p) > 1]
    M = camera((4, -5, 4))
    a, e = project(M, (-1, -1, -1)), project(M, (1, 0.5, 0.25))
    got = pieces[-1]
    assert got[0] == pytest.approx(a, abs=1.0) and got[-1] == pytest.approx(e, abs=1.0)


def test_world_clipping_cuts_at_the_box():
    plog("clip.met")
    kolvex.nograf()
    kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
    kolvex.strt3d(-3, 0, 0)
    kolvex.conn3d(0.5, 0, 0)
    kolvex.endgrf()
    kolvex.kolfin()
    got = [p for p in read_plog("clip.met") if len(p) > 1][-1]
    M = camera((4, -5, 4))
    assert got[0] == pytest.approx(project(M, (-1, 0, 0)), abs=1.0)
    assert got[-1] == pytest.approx(project(M, (0.5, 0, 0)), abs=1.0)


def rgb_png(name):
    kolvex.metafl("PNG")
    kolvex.setfil(name)
    kolvex.filmod("DELE")
    kolvex.imgfmt("RGB")
    kolvex.scrmod("REVERS")
    kolvex.kolini()


@pytest.mark.parametrize("near_first", [True, False])
def test_near_triangle_hides_far_one_in_any_order(near_first):
    from PIL import Image
    rgb_png("occ.png")
    kolvex.nograf()
    kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
    kolvex.zbfini()
    red, blue = kolvex.intrgb(1, 0, 0), kolvex.intrgb(0, 0, 1)
    red = 0x01000000 | 255
    blue = 0x01000000 | (255 << 16)
    # Two triangles across the middle; the eye is at (4, -5, 4), so the
    # one moved towards it is nearer.
    near = ([-0.8, 0.8, 0.0], [-0.3, -0.3, -0.3], [-0.6, -0.6, 0.8], [red] * 3)
    far = ([-0.8, 0.8, 0.0], [0.3, 0.3, 0.3], [-0.6, -0.6, 0.8], [blue] * 3)
    for tri in ((near, far) if near_first else (far, near)):
        kolvex.zbftri(*tri)
    cx, cy = kolvex.abs3pt(0, -0.3, 0)
    kolvex.zbffin()
    kolvex.endgrf()
    kolvex.kolfin()
    im = np.asarray(Image.open("occ.png").convert("RGB"))
    sc = im.shape[1] / 2970
    px = im[int(cy * sc), int(cx * sc)]
    assert tuple(px) == (255, 0, 0)


def test_surface_with_light_and_hole(capfd):
    from PIL import Image
    rgb_png("surf.png")
    n = 30
    xs = list(np.linspace(-1, 1, n))
    z = [[float(np.exp(-3 * (x * x + y * y))) for y in xs] for x in xs]
    z[15][15] = float("nan")            # a hole, not a crash
    kolvex.light("ON")
    kolvex.litpos(1, 0, 0, 0, "ABS")    # a light inside the surface
    kolvex.litpos(2, 4, -5, 4, "ABS")   # and one at the eye
    kolvex.litmod(2, "ON")
    kolvex.shdmod("SMOO", "SURF")
    kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, 0, 1, 0, 0.5)
    kolvex.surshd(xs, n, xs, n, z)
    kolvex.surshd(xs, 1, xs, n, z)      # too small a grid
    kolvex.endgrf()
    kolvex.kolfin()
    w = warnings_of(capfd)
    assert any("Warning 2:" in l and "surshd" in l for l in w)
    im = np.asarray(Image.open("surf.png").convert("RGB")).astype(int)
    assert (np.abs(im - 255).sum(axis=2) > 30).sum() > 10000


def test_settings_and_their_warnings(capfd):
    plog()
    kolvex.vang3d(180)
    kolvex.vang3d(179.9)
    kolvex.axis3d(2, 0, 2)
    kolvex.zbfscl(0.5)
    kolvex.zbfscl(11)
    kolvex.litmod(9, "ON")
    kolvex.litopt(1, -1, "DIFF")
    kolvex.view3d(0.5, 0.5, 0.5, "ABS")   # inside the box: the default eye
    kolvex.nograf()
    kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
    kolvex.endgrf()
    kolvex.vang3d(28.07)
    kolvex.box3d()
    kolvex.zbffin()
    kolvex.dbffin()
    kolvex.kolfin()
    w = warnings_of(capfd)
    nums = [int(l.split("Warning ")[1].split(":")[0]) for l in w]
    assert nums == [2, 2, 2, 2, 2, 1, 33, 3, 115, 115]   # box3d at level 1: the level rule
    assert "No initialization of depth buffer" in w[-1]


def test_smooth_surface_on_a_vector_format_warns(capfd):
    kolvex.metafl("SVG")
    kolvex.setfil("s.svg")
    kolvex.filmod("DELE")
    kolvex.kolini()
    kolvex.shdmod("SMOO", "SURF")
    kolvex.nograf()
    kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
    kolvex.surshd([0, 1], 2, [0, 1], 2, [[0, 0], [0, 0]])
    assert kolvex.zbfini() == 1
    kolvex.shdmod("FLAT", "SURF")
    kolvex.surshd([0, 1], 2, [0, 1], 2, [[0, 0.5], [0.5, 1]])   # the depth buffer
    kolvex.endgrf()
    kolvex.kolfin()
    nums = [l.split(":")[0] for l in warnings_of(capfd)]
    assert nums == [" <<<< Warning 40", " <<<< Warning 40"]
    assert open("s.svg").read().count("<path") + open("s.svg").read().count("<polygon") == 1   # one cell, one side


def text_frame(deg):
    """Unit vectors along a text turned by deg and from its top to its
    bottom, in plot coordinates (y downward)."""
    t = math.radians(deg)
    return np.array([math.cos(t), -math.sin(t)]), np.array([math.sin(t), math.cos(t)])


@pytest.mark.parametrize("mode", ["HORI", "PARA", "OTHE"])
def test_label_modes_place_labels_beside_the_projected_axis(mode):
    plog(f"lab_{mode}.met")
    kolvex.labl3d(mode)
    kolvex.height(40)
    kolvex.labdis(30, "X")
    kolvex.ticks(0, "XYZ")
    kolvex.noline("XYZ")
    kolvex.labels("NONE", "YZ")
    kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
    # The X axis runs along the bottom edge at y = -1 (the eye is at
    # negative y), its labels leave the box toward -y.
    a, e = np.array(kolvex.abs3pt(-1, -1, -1)), np.array(kolvex.abs3pt(1, -1, -1))
    along = math.degrees(math.atan2(-(e - a)[1], (e - a)[0]))
    deg = {"HORI": 0, "PARA": along, "OTHE": along + 90}[mode]
    deg = (deg + 90) % 180 - 90
    e1, dn = text_frame(round(deg))
    boxes = []
    for v in (-1, 0, 1):
        p = np.array(kolvex.abs3pt(v, -1, -1))
        d = np.array(kolvex.abs3pt(v, -1.001, -1)) - p
        d /= np.hypot(*d)
        w, h = kolvex.nlmess("%.1f" % v), 40
        half = abs(d @ e1) * w / 2 + abs(d @ dn) * h / 2
        boxes.append((p + d * (30 + half), w, h))
    kolvex.endgrf()
    kolvex.kolfin()
    pts = np.array([q for piece in read_plog(f"lab_{mode}.met") for q in piece])
    # Every stroke belongs to the nearest label's box, in the text's frame.
    owner = np.argmin([np.hypot(*(pts - c).T) for c, _, _ in boxes], axis=0)
    for k, (c, w, h) in enumerate(boxes):
        mine = pts[owner == k] - c
        u, t = mine @ e1, mine @ dn
        assert len(mine) > 4
        assert np.abs(u).max() <= w / 2 + 6 and np.abs(t).max() <= h / 2 + 6
        # The text runs along e1: wide there, as high as a line across it.
        assert u.max() - u.min() > 1.5 * (t.max() - t.min())
        assert abs((u.max() + u.min()) / 2) < 0.35 * h and abs((t.max() + t.min()) / 2) < 0.35 * h


def rgb_pixels(name):
    from PIL import Image
    return np.asarray(Image.open(name).convert("RGB")).astype(int)


def shaded_page(name, draw):
    rgb_png(name)
    kolvex.light("ON")
    kolvex.surmsh("ON")
    kolvex.shdmod("SMOO", "SURF")
    kolvex.zscale(-1, 1)
    kolvex.nograf()   # ticks alternate their direction from page to page
    kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
    draw()
    kolvex.endgrf()
    kolvex.kolfin()
    return rgb_pixels(name)


def test_surfcp_draws_what_surshd_draws_for_the_same_grid():
    f = lambda p, q: 0.8 * math.sin(2 * p) * math.cos(3 * q)
    g = [-1 + 0.125 * i for i in range(17)]   # exact in single precision
    calls = []

    def fun(p, q, i):
        calls.append(i)
        return (p, q, f(p, q))[i - 1]

    want = shaded_page("grid.png", lambda: kolvex.surshd(g, 17, g, 17, [[f(x, y) for y in g] for x in g]))
    got = shaded_page("param.png", lambda: kolvex.surfcp(fun, -1, 1, 0.125, -1, 1, 0.125))
    assert len(calls) == 3 * 17 * 17 and set(calls) == {1, 2, 3}
    assert (np.abs(want - 255).sum(axis=2) > 30).sum() > 20000
    assert np.array_equal(want, got)


def test_surfcp_callables_that_fail(capfd):
    plog()
    kolvex.nograf()
    kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
    seen = []

    def boom(p, q, i):
        seen.append(i)
        raise KeyError("boom")

    with pytest.raises(KeyError):
        kolvex.surfcp(boom, 0, 1, 0.5, 0, 1, 0.5)
    assert seen == [1]                             # not called again after it raised
    with pytest.raises(TypeError):
        kolvex.surfcp(42, 0, 1, 0.5, 0, 1, 0.5)

    inner, outer = [], []

    def nests(p, q, i):                            # surfcp inside the callable
        outer.append(i)
        if len(outer) == 1:
            kolvex.surfcp(lambda p, q, i: inner.append(i) or 0.0, 0, 1, 1, 0, 1, 1)
        return 0.25

    kolvex.surfcp(nests, 0, 1, 0.5, 0, 1, 0.5)
    assert len(outer) == 27 and len(inner) == 12

    def ends_session(p, q, i):                     # the axis system is gone when it returns
        if kolvex.getlev() == 3:
            kolvex.endgrf()
        return 0.5

    kolvex.surfcp(ends_session, 0, 1, 0.5, 0, 1, 0.5)
    kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
    kolvex.surfcp(lambda p, q, i: 1, 0, 1, 0, 0, 1, 0.5)   # a step of 0
    assert kolvex.getlev() == 3
    kolvex.endgrf()
    kolvex.kolfin()
    assert any("Warning 2:" in l and "surfcp" in l for l in warnings_of(capfd))


def test_ply_record_of_a_surface_reads_back():
    plog()
    kolvex.plyini("STAN")
    kolvex.nograf()
    kolvex.graf3d(0, 2, 0, 1, 0, 10, 0, 5, 0, 1, 0, 0.5)
    kolvex.shdmod("OFF", "CULL")
    kolvex.shdmod("OFF", "ZSCA")   # one colour: the current one
    kolvex.setclr(200)
    kolvex.surtri([0, 2, 2, 0], [0, 0, 10, 10], [0, 0.5, 1, 0.5], 4, [1, 1], [2, 3], [3, 4], 2)
    kolvex.endgrf()
    kolvex.plyfin("out.ply", "two triangles")
    rgb = tuple(int(c * 255 + 0.5) for c in kolvex.getind(200))
    kolvex.kolfin()
    lines = open("out.ply").read().splitlines()
    end = lines.index("end_header")
    head = lines[:end]
    assert head[:4] == ["ply", "format ascii 1.0", "comment author: Kolvex", "comment object: two triangles"]
    nv = int(next(l for l in head if l.startswith("element vertex")).split()[2])
    nf = int(next(l for l in head if l.startswith("element face")).split()[2])
    verts = [l.split() for l in lines[end + 1:end + 1 + nv]]
    faces = [list(map(int, l.split())) for l in lines[end + 1 + nv:]]
    # Both sides of both triangles, on four shared vertices in user coordinates.
    assert nf == 4 and faces == [[3, 0, 1, 2], [3, 0, 2, 3]] * 2
    xyz = [tuple(float(v) for v in r[:3]) for r in verts]
    assert xyz == [(0, 0, 0), (2, 0, 0.5), (2, 10, 1), (0, 10, 0.5)]
    assert all(tuple(map(int, r[3:])) == rgb for r in verts)


def test_plot_coordinates_follow_the_page_origin():
    plog()
    kolvex.pagorg("BOTT")
    kolvex.nograf()
    kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
    x, y = kolvex.abs3pt(0.2, 0.3, 0.4)
    assert y == pytest.approx(2099 - project(camera((4, -5, 4)), (0.2, 0.3, 0.4))[1], abs=1e-3)
    assert kolvex.y3dabs(0.2, 0.3, 0.4) == pytest.approx(y)
    kolvex.endgrf()
    kolvex.kolfin()


def test_eye_straight_below_sees_the_lower_triangle_in_front():
    rgb_png("below.png")
    kolvex.view3d(0, 0, -7, "ABS")
    kolvex.nograf()
    kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
    kolvex.zbfini()
    red, blue = 0x01000000 | 255, 0x01000000 | (255 << 16)
    kolvex.zbftri([-0.8, 0.8, 0.0], [-0.6, -0.6, 0.8], [0.5] * 3, [blue] * 3)   # far from the eye
    kolvex.zbftri([-0.8, 0.8, 0.0], [-0.6, -0.6, 0.8], [-0.5] * 3, [red] * 3)   # near, drawn last
    kolvex.zbftri([-0.8, 0.8, 0.0], [-0.6, -0.6, 0.8], [0.6] * 3, [blue] * 3)   # far, drawn last
    cx, cy = kolvex.abs3pt(0, 0, -0.5)
    kolvex.zbffin()
    kolvex.endgrf()
    kolvex.kolfin()
    im = rgb_pixels("below.png")
    sc = im.shape[1] / 2970
    assert tuple(im[int(cy * sc), int(cx * sc)]) == (255, 0, 0)


def test_center_moves_the_3d_system_once():
    def box_points(name, centred):
        plog(name)
        if centred:
            kolvex.center()
        kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
        kolvex.grid3d(2, 2, "ALL")      # the faces' own systems are not centred again
        kolvex.box3d()
        kolvex.endgrf()
        kolvex.kolfin()
        return np.array(read_plog(name)[-1])

    plain, centred = box_points("plain.met", False), box_points("centred.met", True)
    shift = centred - plain
    assert np.abs(shift - shift[0]).max() < 1.01 and np.abs(shift[0]).max() > 5


@pytest.mark.parametrize("mode", ["STAN", "HORI", "PARA", "OTHE"])
def test_log_axis_gets_minor_ticks_in_every_label_mode(mode):
    plog(f"log_{mode}.met")
    kolvex.labl3d(mode)
    kolvex.axsscl("LOG", "Z")
    kolvex.ticks(0, "XY")
    kolvex.ticks(2, "Z")
    kolvex.noline("XYZ")
    kolvex.labels("NONE", "XYZ")
    kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, 0, 3, 0, 1)
    kolvex.endgrf()
    kolvex.kolfin()
    # 4 decade ticks and 2..9 in each of the 3 decades, each one stroke.
    assert len(read_plog(f"log_{mode}.met")) == 4 + 3 * 8


def test_absolute_light_given_in_the_axis_system_stays_with_the_data():
    g = [0.5 * i for i in range(21)]
    z = [[math.sin(x) * math.cos(y) for y in g] for x in g]

    def page(name, scalings, light, inside=False):
        rgb_png(name)
        kolvex.nograf()
        kolvex.light("ON")
        kolvex.shdmod("SMOO", "SURF")
        for k, sc in enumerate(scalings):
            if k == 0 and not inside:
                kolvex.litpos(*light)
            kolvex.graf3d(*sc)
            if k == 0 and inside:
                kolvex.litpos(*light)
            if k == len(scalings) - 1:
                kolvex.surshd(g, 21, g, 21, z)
            kolvex.endgrf()
        kolvex.kolfin()
        return rgb_pixels(name)

    a = (0, 10, 0, 2, 0, 10, 0, 2, -1, 1, -1, 0.5)
    b = (0, 20, 0, 5, 0, 20, 0, 5, -1, 1, -1, 0.5)
    light = (1, 0.5, -3, 2, "ABS")
    # Inside the system the position counts as absolute, as before it.
    assert np.array_equal(page("l0.png", [a], light), page("l1.png", [a], light, inside=True))
    # It is kept as the user point of the first scaling: (7.5, -10, 2).
    user = page("l2.png", [b], (1, 7.5, -10, 2, "USER"))
    assert (np.abs(user - 255).sum(axis=2) > 30).sum() > 10000
    assert np.array_equal(user, page("l3.png", [a, b], light, inside=True))


def test_3d_line_on_the_z_buffer_is_drawn_with_eye_clipping():
    def page(name, mode):
        rgb_png(name)
        kolvex.nograf()
        kolvex.clip3d(mode)
        kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
        kolvex.zbfini()
        kolvex.strt3d(-1, -1, 0)
        kolvex.conn3d(1, 1, 0.5)
        kolvex.zbffin()
        kolvex.endgrf()
        kolvex.kolfin()
        return rgb_pixels(name)

    world = page("w.png", "WORL")
    assert (np.abs(world - 255).sum(axis=2) > 30).sum() > 100
    assert np.array_equal(world, page("e.png", "EYE"))


def test_back_side_is_meshed_in_its_own_colour():
    rgb_png("back.png")
    kolvex.nograf()
    kolvex.setfce("TOP")
    kolvex.mshclr(0x01000000 | 255)            # red above
    kolvex.setfce("BOTT")
    kolvex.mshclr(0x01000000 | (255 << 16))    # blue below
    kolvex.surmsh("LINE")
    kolvex.view3d(4, -5, -4, "ABS")            # from below: only the back side faces the eye
    kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
    g = [-1 + 0.25 * i for i in range(9)]
    kolvex.surshd(g, 9, g, 9, [[0.0] * 9 for _ in g])
    kolvex.endgrf()
    kolvex.kolfin()
    im = rgb_pixels("back.png")
    blue = (im[..., 2] > 200) & (im[..., 0] < 80)
    red = (im[..., 0] > 200) & (im[..., 2] < 80)
    assert blue.sum() > 200 and red.sum() == 0


def test_z_buffer_picture_of_ps_and_pdf_has_zbfscl_pixels_per_point():
    import re
    widths = []
    for fmt in ("PS", "PDF"):
        kolvex.metafl(fmt)
        kolvex.setfil("zb." + fmt.lower())
        kolvex.filmod("DELE")
        kolvex.kolini()
        kolvex.zbfscl(2)
        kolvex.shdmod("SMOO", "SURF")
        kolvex.graf3d(-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1)
        kolvex.surshd([-1, 1], 2, [-1, 1], 2, [[-1, 0], [0, 1]])
        kolvex.endgrf()
        kolvex.kolfin()
        widths.append(int(re.search(rb"/Width (\d+)", open("zb." + fmt.lower(), "rb").read()).group(1)))
    # Both pages fit the same paper: the same points, the same pixels
    # (twice the points of the page as it stands on the paper).
    assert widths[0] == widths[1] and 1400 < widths[0] < 1700
