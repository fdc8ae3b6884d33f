"""Pie charts: segment angles in proportion to the data (2-D) and to area
(3-D), seen through the segment callback; the callback's draw flag and
exceptions; a lone value's label in the centre; settings' refusals; the
example page drawn as PNG and as SVG alike."""
import numpy as np
import pytest

import kolvex
from conftest import example_png_and_svg_alike
from test_fill import warnings_of


def png_session(name="p.png"):
    kolvex.metafl("PNG")
    kolvex.filmod("DELE")
    kolvex.setfil(name)
    kolvex.scrmod("REVERS")
    kolvex.kolini()
    kolvex.axspos(500, 1800)
    kolvex.axslen(1600, 1600)


def segments(data, **opts):
    """(segment, value, percent, middle angle) of every callback call."""
    seen = []

    def cbk(iseg, xdat, xper, nrad, noff, angle, nvx, nvy, idrw, iann):
        seen.append((iseg, xdat, xper, angle, nrad, noff))
    png_session()
    kolvex.piecbk(cbk)
    for name, args in opts.items():
        getattr(kolvex, name)(*args)
    kolvex.piegrf(" ", 0, data, len(data))
    kolvex.endgrf()
    kolvex.kolfin()
    return seen


def test_2d_segments_follow_the_data():
    data = [1.0, 3.0, -2.0, 4.0]
    seen = segments(data)
    assert [s[0] for s in seen] == [1, 2, 3, 4]
    total = sum(abs(v) for v in data)
    assert [s[2] for s in seen] == pytest.approx([abs(v) * 100 / total for v in data])
    assert [s[1] for s in seen] == [1.0, 3.0, 2.0, 4.0]
    mids = np.array([s[3] for s in seen]) % 360
    want = np.cumsum([0] + [(abs(a) + abs(b)) * 180 / total for a, b in zip(data, data[1:])]) % 360
    assert np.allclose(mids, want, atol=1e-6)
    r = seen[0][4]
    assert r == 800 and [s[5] for s in seen] == [0, 0, round(0.08 * r), 0]
    turned = segments(data, pierot=(30.0,))
    assert (turned[0][3] - 30) % 360 == pytest.approx(0, abs=1e-6)


def test_3d_segments_are_true_in_area():
    # Seen from above the ellipse is a circle: equal areas are equal angles.
    seen = segments([1.0, 1.0, 1.0, 1.0], pietyp=("3D",), pieopt=(0.2, 90.0))
    assert np.allclose(np.array([s[3] for s in seen]) % 360, [0, 90, 180, 270], atol=1e-3)
    # View 30: b = trunc((sqrt(1/3) + 30/500) 800) = 509.  Segments 1/4, 1/2,
    # 1/4 of the area end at atan(b/a) and 360 - (180 - atan(b/a)), so the
    # middle one is centred at 90 + atan(b/a), not at 135.
    flat = segments([1.0, 2.0, 1.0], pietyp=("3D",), pieopt=(0.2, 30.0))
    mids = np.array([s[3] for s in flat]) % 360
    assert mids[1] == pytest.approx(90 + np.degrees(np.arctan2(509, 800)), abs=1e-4)


def test_callback_draw_flag_leaves_a_gap_and_exceptions_stop_the_calls():
    from PIL import Image

    def hide_second(iseg, xdat, xper, nrad, noff, angle, nvx, nvy, idrw, iann):
        return (nrad, noff, angle, nvx, nvy, 0 if iseg == 2 else 1, iann)
    png_session()
    kolvex.shdpat(16)
    kolvex.labels("NONE", "PIE")
    kolvex.chnpie("NONE")
    kolvex.piecbk(hide_second)
    kolvex.piegrf(" ", 0, [1.0, 1.0], 2)  # segment 2 is the left half
    kolvex.endgrf()
    kolvex.kolfin()
    im = np.asarray(Image.open("p.png").convert("L"))
    s = im.shape[1] / 2970.0
    assert im[int(1000 * s), int(1000 * s)] > 200 and im[int(1000 * s), int(1600 * s)] < 100

    calls = []

    def bad(*args):
        calls.append(args[0])
        raise ValueError("no pie today")
    png_session("q.png")
    kolvex.piecbk(bad)
    with pytest.raises(ValueError, match="no pie today"):
        kolvex.piegrf(" ", 0, [1.0, 2.0, 3.0], 3)
    assert calls == [1]
    kolvex.endgrf()


def test_a_lone_value_is_labelled_in_the_centre():
    from PIL import Image
    png_session()
    kolvex.height(60)
    kolvex.piegrf(" ", 0, [5.0], 1)
    kolvex.endgrf()
    kolvex.kolfin()
    im = np.asarray(Image.open("p.png").convert("L")) < 128
    s = im.shape[1] / 2970.0
    yy, xx = np.mgrid[0:im.shape[0], 0:im.shape[1]]
    inner = im & (np.hypot(xx / s - 1300, yy / s - 1000) < 600)
    ys, xs = np.nonzero(inner)
    assert len(xs) > 50
    assert abs((xs.min() + xs.max()) / 2 / s - 1300) < 10 and abs((ys.min() + ys.max()) / 2 / s - 1000) < 10


def test_refusals(capfd):
    png_session()
    capfd.readouterr()
    kolvex.piegrf(" ", 0, [0.0, 0.0], 2)
    kolvex.piegrf(" ", 0, [1.0], 0)
    kolvex.pieopt(0.0, 100.0)
    kolvex.pieval(-1.0, "DIST")
    kolvex.pieclr([1, -2], [1, 1], 2)
    kolvex.pievec(10000, "BROK")
    out = warnings_of(capfd.readouterr().out)
    assert [w.split(":")[0].split()[-1] for w in out] == ["29", "2", "2", "2", "2", "2", "2"]
    assert kolvex.getlev() == 1


def test_png_and_svg_of_the_example_page_agree():
    example_png_and_svg_alike("pies.py")
