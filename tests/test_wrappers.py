"""The generated wrappers, end to end: every role of a table line through
the stand-in routines of tests/ext/marshal_test.tbl, which record what they
were given."""
import ctypes
import gc
import sys
import threading
import time

import pytest

from marshal_support import Raises, marshal_module


@pytest.fixture(scope="module")
def mt():
    return marshal_module()


def calls(mt):
    return mt.tlast()["calls"]


def test_arrays_reach_the_routine(mt):
    assert mt.tcurve([1, 2, 3], (3, 4.5, 5), 2) is None
    last = mt.tlast()
    assert last["n"] == 2 and last["d"] == [1.0, 2.0, 3.0, 4.5]
    mt.tcurve2([7], [8], 1)  # a second name of the same wrapper
    assert mt.tlast()["d"] == [7.0, 8.0]
    assert mt.tisum([1, 2, 3, 4], 3) == 6
    assert mt.tmixed([1, 2], 2.0, [3, 4], 2, 0.5) == 13.5
    mt.tlit([1, 2, 3], [4, 5, 6], [7, 8, 9, 10])
    assert mt.tlast()["d"] == [float(v) for v in range(1, 10)]


def test_nested_and_flat_matrices(mt):
    mt.tmat([[1, 2], [3, 4]], 2, 2)
    assert mt.tlast()["d"] == [1.0, 2.0, 3.0, 4.0]
    mt.tmat([1, 2, 3, 4], 2, 2)
    assert mt.tlast()["d"] == [1.0, 2.0, 3.0, 4.0]
    mt.timat([[5], [6]], 2, 1)
    assert mt.tlast()["i"] == [5, 6]
    mt.tcube([[[1, 2]], [[3, 4]]], 2, 1, 2)
    assert mt.tlast()["d"] == [1.0, 2.0, 3.0, 4.0]
    mt.tflat(range(6), 2, 3)
    assert mt.tlast()["d"] == [0.0, 1.0, 2.0, 3.0, 4.0, 5.0]
    with pytest.raises(ValueError, match="^matrix rows have different lengths$"):
        mt.tmat([[1, 2], [3]], 2, 2)


def test_shading_lists(mt):
    mt.tshade([], None, 3)
    assert mt.tlast()["i"] == [0] * 6
    mt.tshade([1, 2], (3, 4), 2)
    assert mt.tlast()["i"] == [1, 2, 3, 4]


def test_a_count_below_one_does_nothing(mt):
    before = calls(mt)
    assert mt.tcurve([], [], 0) is None
    assert mt.tcurve("no", "arrays", -5) is None  # not even looked at
    assert mt.tisum([1], 0) is None  # a method with a result gives None too
    assert mt.tmat([[1]], 1, 0) is None
    assert mt.tgetm(None, 0, 3) is None
    assert mt.twork([1], 0) is None
    assert calls(mt) == before


def test_short_and_wrong_sequences_call_nothing(mt):
    before = calls(mt)
    with pytest.raises(MemoryError, match="^out of range$"):
        mt.tcurve([1, 2], [3, 4], 3)
    with pytest.raises(ValueError, match="^no floatingpoint element in sequence$"):
        mt.tcurve(["a"], [1], 1)
    with pytest.raises(MemoryError, match="^out of range$"):
        mt.tlit([1, 2], [1, 2, 3], [1, 2, 3])
    assert calls(mt) == before


def test_all_conversions_run_and_the_latest_failure_stands(mt):
    with pytest.raises(ValueError, match="^parameter is not a sequence$"):
        mt.tcurve(["a"], 5, 1)
    with pytest.raises(ValueError, match="^no floatingpoint element in sequence$"):
        mt.tcurve(5, ["a"], 1)
    with pytest.raises(MemoryError, match="^out of range$"):
        mt.tmixed(["x"], 1.0, [1, 2], 2, 0.0)
    with pytest.raises(ValueError, match="^sequence has no length$"):
        mt.tmixed([1, 2], 1.0, Raises.BadLen(), 2, 0.0)


def test_argument_errors(mt):
    for bad in [(), ([1], [1]), ([1], [1], 1, 1)]:
        with pytest.raises(TypeError):
            mt.tcurve(*bad)
    with pytest.raises(TypeError):
        mt.tcurve(x=[1], y=[1], n=1)
    with pytest.raises(TypeError):
        mt.tcurve([1], [1], 1.0)  # a float is no count
    with pytest.raises(TypeError):
        mt.tflt("1.0")
    with pytest.raises(TypeError):
        mt.tflt(Raises.BadFloat())  # its own error becomes a TypeError
    with pytest.raises(ValueError):
        mt.tcurve([1], [1], 2**40)  # beyond the C range
    with pytest.raises(ValueError):
        mt.tflt(10**400)
    with pytest.raises(ValueError):
        mt.tupper("a\0b")
    with pytest.raises(ValueError):
        mt.tupper("\ud800")  # not encodable as UTF-8
    with pytest.raises(TypeError):
        mt.tsignal(1)


def test_arrays_written_back(mt):
    x = [1, 2.5, 3, "untouched"]
    assert mt.tfill(x, 3) is None
    assert x == [3.0, 6.0, 7.0, "untouched"]
    k = [1, -2]
    mt.tfilli(k, 2)
    assert k == [-1, 2]
    z = [[1, 2, 3], [4, 5, 6]]
    mt.tfill2(z, 2, 3)
    assert z == [[10.0, 20.0, 30.0], [40.0, 50.0, 60.0]]
    flat = [1, 2, 3, 4]
    mt.tfill2(flat, 2, 2)
    assert flat == [10.0, 20.0, 30.0, 40.0]


def test_tuples_as_output_arrays_stay_as_they_are(mt):
    t = (1.0, 2.0)
    assert mt.tfill(t, 2) is None
    assert t == (1.0, 2.0)
    assert mt.tlast()["d"] == [1.0, 2.0]  # the routine ran
    assert mt.tpts((0, 0, 0, 0), (0, 0, 0, 0), 4) == 2
    nested = ((1, 2), (3, 4))
    mt.tfill2(nested, 2, 2)
    assert nested == ((1, 2), (3, 4))
    assert mt.thist([1, 2], 2, (0, 0)) == 1


def test_a_returned_count_limits_the_write_back(mt):
    x, k = [0] * 6, [0] * 6
    assert mt.tpts(x, k, 6) == 3
    assert x == [0.5, 1.5, 2.5, 0, 0, 0]
    assert k == [100, 101, 102, 0, 0, 0]
    h = ["old"] * 4
    assert mt.thist([1, 2, 3, 4], 4, h) == 3  # count from an out-parameter
    assert h == [1.0, 4.0, 9.0, "old"]


def test_output_arrays_are_not_read(mt):
    h = [None, "x", []]
    assert mt.thist([2, 3, 4], 3, h) == 2
    assert mt.tlast()["d"] == [0.0, 0.0, 0.0]  # the routine got zeros
    assert h == [4.0, 9.0, []]
    with pytest.raises(ValueError, match="^parameter is not a sequence$"):
        mt.thist([1], 1, None)
    z = [[None] * 3, [None] * 3]
    mt.tgetm(z, 2, 3)
    assert z == [[0.0, 1.0, 2.0], [3.0, 4.0, 5.0]]
    with pytest.raises(MemoryError, match="^out of range$"):
        mt.tgetm([[0, 0, 0]], 2, 3)  # no room for what the routine writes
    with pytest.raises(MemoryError, match="^out of range$"):
        mt.thist([1, 2], 2, [0])
    t = (0,) * 6
    mt.tgetm(t, 2, 3)  # room, but no writes
    assert t == (0,) * 6


def test_out_parameters_and_results(mt):
    assert mt.tpair(5) == (10, 2.5)
    v = mt.tflt(0.1)
    assert type(v) is float and v == float(ctypes.c_float(0.1).value)
    assert mt.tcsr(3, 4) == (7, 4, 3)  # the result, then the changed arguments
    assert mt.twork([1.5, 2.5], 2) == 4
    assert mt.tlast()["d"] == [0.0] * 4 + [1.5, 2.5]  # a zeroed work array


def test_text_results(mt):
    assert mt.tname(0) == "abc"
    assert mt.tname(-1) == ""  # no text: empty, never None
    assert mt.tname(2) == "été"
    assert mt.tname(1) == "café"  # not UTF-8: read as Latin-1
    assert mt.tgmx("hello world") == ("hello wo", "12345678", 11)


def test_text_changed_in_place_gets_a_copy_with_room(mt):
    s = "mixed Case"
    assert mt.tupper(s) is None
    assert s == "mixed Case"
    assert mt.tlast()["s"] == "MIXED CASE"
    # The routine writes 300 characters into a text argument of none.
    assert mt.troom([0, 1, 2], 3, "", 300) == 300
    assert mt.tlast()["s"] == "abc" * 100


def test_bytes_results_and_their_size_rules(mt):
    assert mt.tbuf(-1) == (b"", 0)
    before = calls(mt)
    assert mt.tbuf(0) == (b"", 10)  # the size the routine needs
    assert calls(mt) == before + 1
    assert mt.tbuf(4) == (bytes([0, 30, 60, 90]), 4)
    data, n = mt.tbuf(100)
    assert n == 10 and data == bytes(j * 30 % 256 for j in range(10))
    assert mt.tread(3, 5) == (b"xxxxx", 5)
    assert mt.tread(-1, 5) == (b"", -2)  # a failure status: no bytes
    assert all(type(mt.tbuf(n)[0]) is bytes for n in (-1, 0, 3))


def test_bytes_arguments(mt):
    assert mt.twrite(1, b"\x01\x02\x03", 3) == 7
    assert mt.twrite(0, "é", 2) == 0xC3 + 0xA9  # a str goes as UTF-8
    assert mt.twrite(0, b"abc\0def", 7) == sum(b"abc\0def")
    with pytest.raises(ValueError, match="^buffer is shorter than its size$"):
        mt.twrite(0, b"ab", 3)
    before = calls(mt)
    assert mt.twrite(0, b"", 0) is None  # a count below 1 sizes these bytes too
    assert calls(mt) == before
    with pytest.raises(TypeError):
        mt.twrite(0, bytearray(b"ab"), 2)  # writable buffers are refused
    mt.tsetdep(3)
    try:
        with pytest.raises(ValueError, match="^buffer is shorter than its size$"):
            mt.tpix(b"123456", 1, 3)  # 3 bytes a pixel: 9 are read
        mt.tpix(b"123456789", 1, 3)
        assert mt.tlast()["i"] == list(b"123456789")
    finally:
        mt.tsetdep(1)


def test_another_thread_runs_while_a_releasing_routine_works(mt):
    """twait waits for tsignal, which needs the interpreter: only a released
    lock lets the other thread in.  twaitl is the same routine without the
    release, and times out."""

    def signal_soon():
        time.sleep(0.05)
        mt.tsignal()

    t = threading.Thread(target=signal_soon)
    t.start()
    assert mt.twait(10000) == 1
    t.join()
    t = threading.Thread(target=signal_soon)
    t.start()
    assert mt.twaitl(300) == 0
    t.join()


def test_no_reference_or_memory_is_lost(mt):
    libc = ctypes.CDLL(None)
    if not hasattr(libc, "mallinfo2"):
        pytest.skip("mallinfo2 is not available")

    class MallInfo(ctypes.Structure):
        _fields_ = [(n, ctypes.c_size_t) for n in
                    ("arena", "ordblks", "smblks", "hblks", "hblkhd", "usmblks", "fsmblks", "uordblks", "fordblks",
                     "keepcost")]

    libc.mallinfo2.restype = MallInfo
    x = [float(i) for i in range(2000)]
    bad = x[:-1] + ["x"]
    rows = [x[:40]] * 50

    def rounds():
        for _ in range(30):
            mt.tcurve(x, x, 2000)
            mt.tfill(list(x), 2000)
            mt.tmat(rows, 50, 40)
            for args in [(x, bad, 2000), (bad, x, 2000), (x, x, 2001), (x, 5, 2000)]:
                with pytest.raises((ValueError, MemoryError)):
                    mt.tcurve(*args)
            mt.tpts(list(x), [0] * 2000, 2000)
            mt.thist(x, 2000, [0] * 2000)
            mt.tgmx("some text")
            mt.tbuf(5000)
            mt.twrite(1, b"z" * 5000, 5000)
            mt.troom([1], 1, "abc", 4000)

    rounds()
    gc.collect()
    refs = [sys.getrefcount(o) for o in (x, bad, rows)]
    used = libc.mallinfo2().uordblks + libc.mallinfo2().hblkhd
    for _ in range(5):
        rounds()
    gc.collect()
    assert [sys.getrefcount(o) for o in (x, bad, rows)] == refs
    grown = libc.mallinfo2().uordblks + libc.mallinfo2().hblkhd - used
    assert grown < 256 * 1024, f"{grown} bytes more in use after 150 more rounds"
