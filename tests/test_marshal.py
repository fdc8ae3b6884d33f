"""The converters between Python sequences and plain arrays: which objects
pass, which exception and message each failure gives, and that arrays come
back into the caller's sequences as they should."""
import array
import fractions
import gc
import sys

import pytest

from marshal_support import Raises, marshal_module


@pytest.fixture(scope="module")
def mt():
    return marshal_module()


def raises(exc, message, fn, *args):
    with pytest.raises(exc) as info:
        fn(*args)
    assert type(info.value) is exc
    assert str(info.value) == message
    return info.value


class Seq:
    """The bare sequence protocol, no list or tuple behind it."""

    def __init__(self, items):
        self.items = list(items)

    def __len__(self):
        return len(self.items)

    def __getitem__(self, i):
        return self.items[i]


# ---- flat input ------------------------------------------------------------------------


def test_sequence_kinds_and_mixed_numbers(mt):
    assert mt.pydb([1, 2.5, True], 3) == [1.0, 2.5, 1.0]
    assert mt.pydb((1, 2.5), 2) == [1.0, 2.5]
    assert mt.pydb(Seq([3, 4.25]), 2) == [3.0, 4.25]
    assert mt.pydb(range(5), 3) == [0.0, 1.0, 2.0]
    assert mt.pydb(array.array("f", [0.5, 1.5]), 2) == [0.5, 1.5]
    assert mt.pyin(array.array("h", [7, -8]), 2) == [7, -8]
    assert mt.pyin(b"AB", 2) == [65, 66]
    # Other real numbers convert themselves; integers stay exact.
    assert mt.pydb([fractions.Fraction(1, 4)], 1) == [0.25]
    assert mt.pydb([2**53 + 1], 1) == [float(2**53 + 1)]
    assert mt.pyin([True, -(2**31), 2**31 - 1], 3) == [1, -(2**31), 2**31 - 1]


def test_only_the_first_n_elements_are_read(mt):
    assert mt.pydb([1, 2, 3, "not read"], 3) == [1.0, 2.0, 3.0]
    assert mt.pyin([5, None], 1) == [5]


def test_flat_failures(mt):
    raises(ValueError, "parameter is not a sequence", mt.pydb, 5, 1)
    raises(ValueError, "parameter is not a sequence", mt.pydb, {1: 2.0}, 1)
    raises(ValueError, "parameter is not a sequence", mt.pyin, None, 1)
    raises(ValueError, "sequence has no length", mt.pydb, Raises.BadLen(), 1)
    raises(ValueError, "sequence has no length", mt.pydb, Raises.NegativeLen(), 1)
    raises(MemoryError, "out of range", mt.pydb, [1, 2], 3)
    raises(MemoryError, "out of range", mt.pyin, [], 1)
    raises(ValueError, "no floatingpoint element in sequence", mt.pydb, ["a"], 1)
    raises(ValueError, "no floatingpoint element in sequence", mt.pydb, [1, [2]], 2)
    raises(ValueError, "no floatingpoint element in sequence", mt.pydb, [1j], 1)
    raises(ValueError, "no floatingpoint element in sequence", mt.pydb, [10**400], 1)
    raises(ValueError, "no floatingpoint element in sequence", mt.pydb, [Raises.BadFloat()], 1)
    raises(ValueError, "no integer element in sequence", mt.pyin, [1, 2.0], 2)
    raises(ValueError, "no integer element in sequence", mt.pyin, [2**31], 1)
    raises(ValueError, "no integer element in sequence", mt.pyin, [Raises.BadIndex()], 1)
    # An element that can't be fetched: ValueError for doubles, MemoryError
    # for integers.
    raises(ValueError, "sequence error", mt.pydb, Raises.BadItem(), 2)
    raises(MemoryError, "sequence error", mt.pyin, Raises.BadItem(), 2)


def test_shading_lists_may_be_empty_or_none(mt):
    assert mt.pyib([], 3) == [0, 0, 0]
    assert mt.pyib(None, 2) == [0, 0]
    assert mt.pyib((4, 5), 2) == [4, 5]
    raises(MemoryError, "out of range", mt.pyib, [1], 2)
    raises(ValueError, "no integer element in sequence", mt.pyib, [1.5], 1)
    raises(ValueError, "parameter is not a sequence", mt.pyib, 3, 1)


def test_length(mt):
    assert mt.pyln([1, 2]) == 2
    assert mt.pyln("abc") == 3
    raises(ValueError, "parameter is not a sequence", mt.pyln, 1.0)
    raises(ValueError, "sequence has no length", mt.pyln, Raises.BadLen())


# ---- nested input --------------------------------------------------------------------------


def test_nested_rows_and_flat_form(mt):
    assert mt.pyd2([[1, 2], [3, 4]], 2, 2) == [1.0, 2.0, 3.0, 4.0]
    assert mt.pyd2([1, 2, 3, 4], 2, 2) == [1.0, 2.0, 3.0, 4.0]
    assert mt.pyd2(((1, 2), [3, 4.5]), 2, 2) == [1.0, 2.0, 3.0, 4.5]
    # The order of the nesting, whatever the counts say: [i][j] lands at
    # i * (row length) + j.
    assert mt.pyd2([[1, 2, 3], [4, 5, 6]], 3, 2) == [1.0, 2.0, 3.0, 4.0, 5.0, 6.0]
    assert mt.pyi2([[1, 2], [3, 4], [5, 6]], 2, 2) == [1, 2, 3, 4]
    # A number among rows stands for its row's first element.
    assert mt.pyd2([[1, 2], 7, [3, 4]], 3, 2) == [1.0, 2.0, 7.0, 0.0, 3.0, 4.0]


def test_nested_failures(mt):
    raises(ValueError, "matrix rows have different lengths", mt.pyd2, [[1, 2], [3]], 2, 2)
    raises(ValueError, "matrix rows have different lengths", mt.pyi2, [[1], [2, 3]], 1, 1)
    raises(MemoryError, "out of range", mt.pyd2, [[1, 2], [3, 4]], 2, 3)
    raises(MemoryError, "out of range", mt.pyd2, [[], []], 1, 1)
    raises(ValueError, "sequence error", mt.pyd2, [], 1, 1)
    raises(ValueError, "parameter is not a sequence", mt.pyd2, 3.0, 1, 1)
    raises(ValueError, "sequence has no length", mt.pyd2, [Raises.BadLen()], 1, 1)
    raises(ValueError, "no floatingpoint element in sequence", mt.pyd2, [[1, "x"]], 1, 2)
    raises(ValueError, "no integer element in sequence", mt.pyi2, [[1, 2.5]], 1, 2)
    raises(ValueError, "no floatingpoint element in sequence", mt.pyd2, [[[1]]], 1, 1)
    raises(MemoryError, "sequence error", mt.pyd2, [[1, 2], Raises.BadItem(2)], 2, 2)
    raises(ValueError, "sequence error", mt.pyd2, Raises.BadItem(), 1, 1)


def test_three_levels(mt):
    cube = [[[1, 2], [3, 4]], [[5, 6], [7, 8]]]
    assert mt.pyd3(cube, 2, 2, 2) == [float(v) for v in range(1, 9)]
    assert mt.pyd3(list(range(8)), 2, 2, 2) == [float(v) for v in range(8)]
    assert mt.pyd3([[1, 2], [3, 4]], 2, 2, 1) == [1.0, 2.0, 3.0, 4.0]
    raises(ValueError, "matrix rows have different lengths", mt.pyd3, [[[1, 2], [3, 4]], [[5, 6]]], 2, 2, 1)
    raises(ValueError, "matrix rows have different lengths", mt.pyd3, [[[1, 2], [3]]], 1, 1, 2)
    raises(MemoryError, "out of range", mt.pyd3, cube, 2, 2, 3)
    raises(ValueError, "no floatingpoint element in sequence", mt.pyd3, [[[1, None]]], 1, 1, 2)


# ---- writing back ---------------------------------------------------------------------------


def test_write_back_into_lists_and_nested_lists(mt):
    target = [0, 0, 0, "keep"]
    mt.pywd([1.5, 2.5, 3.5], target, 3)
    assert target == [1.5, 2.5, 3.5, "keep"]
    ints = [0] * 3
    mt.pywi([7, 8, 9], ints, 2)
    assert ints == [7, 8, 0] and all(type(v) is int for v in ints)
    rows = [[0, 0], [0, 0]]
    mt.pywd([1, 2, 3, 4], rows, 4, True)
    assert rows == [[1.0, 2.0], [3.0, 4.0]]
    flat = [0] * 4
    mt.pywd([1, 2, 3, 4], flat, 4, True)
    assert flat == [1.0, 2.0, 3.0, 4.0]


def test_failing_writes_are_not_looked_at(mt):
    t = (1, 2, 3)
    mt.pywd([9, 9, 9], t, 3)
    assert t == (1, 2, 3)
    short = [0]
    mt.pywi([5, 6, 7], short, 3)
    assert short == [5]

    class Refuses(list):
        def __setitem__(self, i, v):
            raise RuntimeError("read only")

    r = Refuses([0, 0])
    mt.pywd([1, 2], r, 2)
    assert r == [0, 0]
    mt.pywd([1, 2], "ab", 2)
    mt.pywd([1, 2], ((0, 0), (0, 0)), 2, True)


def test_no_references_are_lost(mt):
    """Every temporary of a conversion is released, on success and on failure."""
    item = 12345.678
    seq = [item] * 50
    rows = [[item] * 5 for _ in range(10)]
    before = sys.getrefcount(item)
    for _ in range(200):
        mt.pydb(seq, 50)
        mt.pyd2(rows, 10, 5)
        mt.pyd3([rows], 1, 10, 5)
        with pytest.raises(ValueError):
            mt.pydb(seq + ["x"], 51)
        with pytest.raises(ValueError):
            mt.pyd2(rows + [[item]], 11, 5)
        mt.pywd(seq, list(seq), 50)
    gc.collect()
    assert sys.getrefcount(item) == before
