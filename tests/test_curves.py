"""Curves in an axis system: positions read back from the native metafile
against the axis formulas, the interpolation modes, symbols, cycles, and
bad input."""
import math

import numpy as np
import pytest

import kolvex

NXA, NYA, NXL, NYL = 400, 1700, 2001, 1201  # axis position and lengths
XA, XE, YA, YE = 0.0, 10.0, -2.0, 2.0


def px(v):
    return (v - XA) * (NXL - 1) / (XE - XA) + NXA


def py(v):
    return NYA - (v - YA) * (NYL - 1) / (YE - YA)


def read_plog(path, colours=None):
    """Polylines of a native metafile, in plot coordinates; the colour of
    each goes to the list colours when one is given."""
    text = open(path).read().splitlines()
    fields = [float(line[i:i + 10]) for line in text[1:] for i in range(0, len(line), 10)]
    nxp, nyp = kolvex_page[0] - 1, kolvex_page[1] - 1
    hi = max(nxp, nyp)
    coords, pairs, colour, extra = [], [], None, 0
    for v in fields:  # an operation code follows the pair it applies to
        if v < 2:
            coords.append(v)
            if len(coords) == 2:
                pairs.append([coords[0] * hi, nyp - coords[1] * hi, None, colour])
                coords = []
        elif v == 99.0:
            extra += 89
        elif v >= 10:
            colour, extra = int(v) - 9 + extra, 0
        elif v in (2.0, 3.0):
            pairs[-1][2] = int(v)
        elif v == 9.0:
            break
    lines, op = [], 3
    for x, y, code, c in pairs:
        op = code or op
        if op == 3 or not lines:
            lines.append([(x, y)])
            if colours is not None:
                colours.append(c)
        else:
            lines[-1].append((x, y))
    return lines


kolvex_page = (0, 0)


def session(device="PLOG", name="c.met"):
    global kolvex_page
    kolvex.metafl(device)
    kolvex.setfil(name)
    kolvex.filmod("DELE")
    kolvex.kolini()
    kolvex.unit(0)
    kolvex_page = kolvex.getpag()
    kolvex.axspos(NXA, NYA)
    kolvex.axslen(NXL, NYL)
    kolvex.nograf()
    kolvex.graf(XA, XE, 0.0, 2.0, YA, YE, YA, 1.0)


def finish():
    kolvex.endgrf()
    kolvex.kolfin()
    return read_plog("c.met")


def close(line, expected, tol=0.01):
    assert len(line) == len(expected), (line, expected)
    for (a, b), (c, d) in zip(line, expected):
        assert abs(a - c) < tol and abs(b - d) < tol, (line, expected)


def test_points_follow_the_axis_formulas():
    session()
    x = [0.5, 2.0, 4.25, 9.5]
    y = [-1.5, 1.0, 0.25, 1.75]
    kolvex.curve(x, y, 4)
    (line,) = finish()
    close(line, [(px(a), py(b)) for a, b in zip(x, y)])


def test_nan_and_gaps_break_the_line():
    session()
    kolvex.curve([math.nan, 1, 2, math.nan, 4, 5, 6], [0, 0, 1, 1, math.inf, 1, 0], 7)
    kolvex.gapcrv(1.5)
    kolvex.curve([1, 2, 5, 6], [0, 0, 0, 0], 4)
    kolvex.gapsiz(0.0, "res")
    kolvex.curve([1, 2, 5, 6], [1, 1, 1, 1], 4)
    lines = finish()
    close(lines[0], [(px(1), py(0)), (px(2), py(1))])
    close(lines[1], [(px(5), py(1)), (px(6), py(0))])
    close(lines[2], [(px(1), py(0)), (px(2), py(0))])
    close(lines[3], [(px(5), py(0)), (px(6), py(0))])
    close(lines[4], [(px(v), py(1)) for v in (1, 2, 5, 6)])
    assert len(lines) == 5


def test_steps_stairs_stems_and_bars():
    session()
    x, y = [2.0, 4.0, 5.0], [0.0, 1.0, -1.0]
    for mode in ("STEP", "STAI", "STEM", "BARS"):
        kolvex.polcrv(mode)
        kolvex.curve(x, y, 3)
    lines = finish()
    close(lines[0], [(px(a), py(b)) for a, b in
                     [(1, 0), (2, 0), (3, 0), (3, 1), (4, 1), (4.5, 1), (4.5, -1), (5, -1), (5.5, -1)]])
    close(lines[1], [(px(a), py(b)) for a, b in [(2, 0), (4, 0), (4, 1), (5, 1), (5, -1)]])
    for k in range(3):  # stems from the value 0
        close(lines[2 + k], [(px(x[k]), py(0)), (px(x[k]), py(y[k]))])
    w = (x[1] - x[0]) * 0.75
    for k in range(3):  # bars from the lower limit, whose edge the clipping takes
        xl, xr = x[k] - w / 2, x[k] + w / 2
        close(lines[5 + k], [(px(xr), py(YA) - 1), (px(xr), py(y[k])), (px(xl), py(y[k])),
                             (px(xl), py(YA) - 1)])


def test_spline_mode_draws_the_interpolation():
    session()
    kolvex.polcrv("SPLI")
    kolvex.splmod(3, 20)
    x = [1.0, 2.0, 4.0, 6.0, 8.0]
    y = [0.0, 1.0, 0.0, -1.0, 0.0]
    kolvex.curve(x, y, 5)
    xs, ys = [0.0] * 21, [0.0] * 21
    kolvex.spline(x, y, 5, xs, ys)
    (line,) = finish()
    close(line, [(px(a), py(b)) for a, b in zip(xs, ys)])


def test_thick_curve_passes_are_shifted():
    session()
    kolvex.thkcrv(3)
    kolvex.curve([1.0, 9.0], [0.0, 0.0], 2)
    lines = finish()
    ys = [round(line[0][1] - py(0), 3) for line in lines]
    assert ys == [0.0, -1.0, 1.0] or ys == [0.0, 1.0, -1.0]


def test_symbols_at_every_kth_point_without_line():
    session()
    kolvex.incmrk(-2)
    kolvex.marker(3)  # plus: two strokes a symbol
    kolvex.hsymbl(40)
    x = [1.0, 2.0, 3.0, 4.0, 5.0]
    kolvex.curve(x, [0.0] * 5, 5)
    lines = finish()
    assert len(lines) == 6
    centres = sorted({round((ln[0][0] + ln[-1][0]) / 2, 2) for ln in lines})
    assert centres == [round(px(v), 2) for v in (1, 3, 5)]
    close(lines[0], [(px(1) - 20, py(0)), (px(1) + 20, py(0))])


def test_one_point_needs_symbols(capfd):
    session()
    kolvex.unit(6)
    kolvex.curve([1.0], [1.0], 1)
    kolvex.incmrk(-1)
    kolvex.curve([1.0], [1.0], 1)
    lines = finish()
    assert "Warning 2: Incorrect parameter in curve!   ( 1)" in capfd.readouterr().out
    assert len(lines) == 1  # the square of symbol 0


def test_cycles_change_after_inccrv_curves_and_wrap():
    session()
    kolvex.chncrv("COLO")
    kolvex.inccrv(2)
    for k in range(4):
        kolvex.curve([1.0, 2.0], [0.0, 0.0], 2)
    kolvex.inccrv(1)
    for k in range(30):
        kolvex.curve([1.0, 2.0], [0.0, 0.0], 2)
    kolvex.endgrf()
    kolvex.kolfin()
    colours = []
    read_plog("c.met", colours)
    # Pairs of curves share a colour; thirty changes later the cycle is back.
    assert colours[0] == colours[1] != colours[2] == colours[3] != colours[4]
    assert colours[3:11] == colours[11:19]
    assert colours[33] == colours[3]


def test_bad_input_warns_and_never_crashes(capfd):
    session()
    kolvex.unit(6)
    nan = [math.nan] * 4
    kolvex.curve(nan, nan, 4)
    kolvex.curve([math.inf, -math.inf, 1.0], [0.0, 1.0, math.inf], 3)
    kolvex.curve([], [], 0)
    with pytest.raises(MemoryError):
        kolvex.curve([1.0, 2.0], [1.0], 2)
    with pytest.raises(MemoryError):
        kolvex.curve([1.0], [1.0], 100_000_000)
    kolvex.polcrv("SPLI")
    kolvex.nancrv("ON")
    kolvex.curve([1.0, 2.0], [1.0, 2.0], 2)
    kolvex.curve([1.0, math.nan, 3.0, 4.0, 5.0], [1.0, 2.0, 3.0, 4.0, 5.0], 5)
    kolvex.polcrv("LINE")
    kolvex.errbar(nan, nan, nan, nan, 4)
    kolvex.shdcrv(nan, nan, 4, nan, nan, 4)
    big = np.linspace(0, 10, 2_000_000)
    kolvex.curve(big, np.sin(big), big.size)
    finish()
    out = capfd.readouterr().out
    assert "Warning 31: Incorrect number of points for spline interpolation in curve!" in out
    assert "NaN Values are not handled for spline interpolation" in out


def test_log_axis_refuses_non_positive_values(capfd):
    kolvex.metafl("PLOG")
    kolvex.setfil("c.met")
    kolvex.filmod("DELE")
    kolvex.kolini()
    kolvex.unit(6)
    kolvex.axsscl("LOG", "Y")
    kolvex.graf(0.0, 10.0, 0.0, 2.0, 0.0, 3.0, 0.0, 1.0)
    kolvex.curve([1.0, 2.0], [0.0, 10.0], 2)
    assert "Warning 27: Non positive values for log scaling in curve!" in capfd.readouterr().out


def test_thinned_dense_curve_looks_like_the_full_one():
    from PIL import Image

    rng = np.random.default_rng(3)
    n = 20000
    x = np.sort(rng.uniform(0, 10, n))
    y = np.cumsum(rng.normal(0, 0.05, n))
    y = (y - y.min()) / (y.max() - y.min()) * 3.6 - 1.8
    pictures = []
    for name, pieces in (("whole.png", [(0, n)]), ("parts.png", [(i, min(i + 60, n)) for i in range(0, n, 59)])):
        kolvex.metafl("PNG")
        kolvex.setfil(name)
        kolvex.filmod("DELE")
        kolvex.kolini()
        kolvex.unit(0)
        kolvex.axspos(NXA, NYA)
        kolvex.axslen(NXL, NYL)
        kolvex.graf(XA, XE, 0.0, 2.0, YA, YE, YA, 1.0)
        for a, b in pieces:  # pieces of 60 points are drawn point by point
            kolvex.curve(x[a:b], y[a:b], b - a)
        kolvex.endgrf()
        kolvex.kolfin()
        pictures.append(np.asarray(Image.open(name).convert("L")) > 0)
    whole, parts = pictures
    differ = np.count_nonzero(whole != parts)
    assert differ <= 0.002 * np.count_nonzero(parts), differ


def test_symbol_and_user_symbol_warnings_and_reset(capfd):
    session()
    kolvex.unit(6)
    kolvex.mysymb([0.0, 2.0, 0.0], [1.0, 0.0, -1.0], 3, 30, 0)
    kolvex.symbol(30, 5000, 100)
    kolvex.polcrv("STEP")
    kolvex.reset("POLCRV")
    kolvex.curve([2.0, 4.0], [0.0, 1.0], 2)
    lines = finish()
    out = capfd.readouterr().out
    assert "Warning 108: values out of range in mysymb!" in out
    assert "Warning 193: ( 5000/  100) out of page in symbol!" in out
    close(lines[-1], [(px(2), py(0)), (px(4), py(1))])  # a plain line again
