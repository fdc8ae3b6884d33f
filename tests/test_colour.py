"""The colour model: tables, named colours, conversions and their limits."""
import math

import pytest

import kolvex


@pytest.fixture
def session():
    kolvex.metafl("PLOG")
    kolvex.kolini()
    yield
    kolvex.kolfin()


def entry(i):
    return tuple(round(v * 255) for v in kolvex.getind(i))


def test_default_table_is_the_rainbow_with_black_and_white_ends(session):
    assert kolvex.getvlt() == "RAIN"
    assert entry(0) == (0, 0, 0)
    assert entry(255) == (255, 255, 255)
    # The stops of the table, and a point between two of them.
    assert entry(1) == (0x22, 0x00, 0x44)
    assert entry(30) == (0, 0, 255)
    assert entry(96) == (0, 255, 255)
    assert entry(192) == (255, 255, 0)
    assert entry(254) == (255, 0, 0)
    r, g, b = entry(128)  # between 125 (00FF66) and 130 (00FF44)
    assert (r, g) == (0, 255) and abs(b - (0x66 + (0x44 - 0x66) * 3 / 5)) <= 1
    # The session starts in the foreground colour.
    assert kolvex.getclr() == 255


def test_index_values_wrap_and_explicit_values_keep_their_bytes(session):
    kolvex.setclr(256)
    assert kolvex.getrgb() == (0.0, 0.0, 0.0)
    kolvex.setclr(257)
    assert entry(1) == tuple(round(v * 255) for v in kolvex.getrgb())
    assert kolvex.intrgb(1, 0, 0) == 0x010000FF
    kolvex.setrgb(1, 0.5, 0)
    assert kolvex.getclr() == 0x010080FF
    assert kolvex.getrgb() == (1.0, 128 / 255, 0.0)


def test_named_colours_follow_the_table_kind(session):
    kolvex.color("RED")
    assert kolvex.getclr() == 0x010000FF
    kolvex.setvlt("SMAL")
    kolvex.color("BLAC")  # black would vanish on the dark sheet: white
    assert kolvex.getclr() == 0x01FFFFFF
    kolvex.setvlt("GREY")
    kolvex.color("RED")
    assert kolvex.getclr() == 0x01E6E6E6
    kolvex.color("FORE")
    assert kolvex.getclr() == 255
    kolvex.color("BACK")
    assert kolvex.getclr() == 0


def test_reversed_tables(session):
    kolvex.setvlt("RGRE")
    assert entry(0) == (255, 255, 255)
    assert entry(255) == (0, 0, 0)
    assert kolvex.getvlt() == "RGREY"
    kolvex.setvlt("VGA")
    assert entry(15) == (255, 255, 255) and entry(1) == (0, 0, 0xAA)
    kolvex.setvlt("TEMP")
    assert entry(149) == (253, 55, 0)
    assert entry(255) == (255, 255, 255)


def test_indrgb_finds_the_nearest_entry(session):
    assert kolvex.indrgb(1, 0, 0) == 254
    kolvex.setvlt("SMAL")
    assert kolvex.indrgb(0.9, 0.1, 0.1) == 2


def test_myvlt_before_the_session_survives_its_table(capfd):
    kolvex.myvlt([1, 0.5], [0, 0.5], [0, 0.5], 2)
    kolvex.metafl("PLOG")
    kolvex.kolini()
    assert entry(0) == (255, 0, 0)
    assert entry(1) == (128, 128, 128)
    kolvex.setvlt("RAIN")  # the second setvlt loads the table again
    assert entry(0) == (0, 0, 0)
    kolvex.kolfin()


def test_myvlt_refuses_bad_parts_and_counts(session, capfd):
    before = entry(3)
    kolvex.myvlt([0.1, 1.5], [0, 0], [0, 0], 2)
    kolvex.myvlt([0.1] * 257, [0] * 257, [0] * 257, 257)
    assert entry(3) == before
    out = capfd.readouterr().out
    assert out.count("Warning 2: Incorrect parameter in myvlt!") == 2


def test_setind_limits(session, capfd):
    kolvex.setind(10, 1, 0, 0)
    assert entry(10) == (255, 0, 0)
    kolvex.setind(256, 1, 0, 0)
    kolvex.setind(10, 1.01, 0, 0)
    assert entry(10) == (255, 0, 0)
    out = capfd.readouterr().out
    assert " <<<< Warning 2: Incorrect parameter in setind!   ( 256)\n" in out


@pytest.mark.parametrize("rgb,hsv", [
    ((1, 0, 0), (0, 1, 1)),
    ((1, 1, 1), (0, 0, 1)),
    ((0, 0, 0), (0, 0, 0)),
    ((0, 1, 0), (120, 1, 1)),
    ((0, 0, 1), (240, 1, 1)),
    ((1, 0, 1), (300, 1, 1)),
    ((0.5, 0.25, 0.25), (0, 0.5, 0.5)),
])
def test_hsv_conversions_both_ways(rgb, hsv):
    h, s, v = kolvex.rgbhsv(*rgb)
    assert (h, s, v) == pytest.approx(hsv)
    assert kolvex.hsvrgb(*hsv) == pytest.approx(rgb)


def test_hsv_range_checks(capfd):
    kolvex.hsvrgb(361, 0, 0)
    kolvex.rgbhsv(1.1, 0, 0)
    assert kolvex.hsvrgb(360, 1, 1) == pytest.approx((1, 0, 0))
    out = capfd.readouterr().out
    assert "Warning 2: Incorrect parameter in hsvrgb!" in out
    assert "Warning 2: Incorrect parameter in rgbhsv!" in out


def test_table_file_round_trip(session):
    kolvex.setvlt("SPEC")
    saved = [entry(i) for i in range(256)]
    kolvex.vltfil("spec.vlt", "SAVE")
    lines = open("spec.vlt").read().split("\n")
    assert len(lines) == 257 and lines[0] == "  0.000000  0.000000  0.000000"
    kolvex.setvlt("GREY")
    kolvex.vscl3d("spec.vlt", "LOAD")
    assert [entry(i) for i in range(256)] == saved


def test_table_file_errors_report_under_one_name(session, capfd):
    kolvex.vscl3d("missing.vlt", "LOAD")
    kolvex.vltfil("x.vlt", "KEEP")
    out = capfd.readouterr().out
    assert " <<<< Warning 36: File error in VLTFIL!\n" in out
    assert " <<<< Warning 2: Incorrect parameter in VLTFIL!   (KEEP)\n" in out


def test_colour_routines_need_a_session(capfd):
    kolvex.color("RED")
    kolvex.setvlt("GREY")
    out = capfd.readouterr().out
    assert " <<<< Warning 3: Incorrect level in color!   ( 0)\n" in out
    assert " <<<< Warning 3: Incorrect level in setvlt!   ( 0)\n" in out
    # intrgb and hsvrgb work before the session; bad parts give -1 quietly.
    assert kolvex.intrgb(2, 0, 0) == -1
    assert kolvex.intrgb(math.nan, 0, 0) == -1
