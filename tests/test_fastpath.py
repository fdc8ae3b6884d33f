"""Objects with a numeric buffer are read straight from their memory: the
same numbers and the same errors as element by element, without a Python
call per element."""
import array

import pytest

from marshal_support import marshal_module

np = pytest.importorskip("numpy")


@pytest.fixture(scope="module")
def mt():
    return marshal_module()


class Counting(np.ndarray):
    """An array that counts the elements fetched through Python."""

    fetched = 0

    def __getitem__(self, i):
        Counting.fetched += 1
        return super().__getitem__(i)


def counting(a):
    Counting.fetched = 0
    return a.view(Counting)


def generic(a):
    """The same data with no buffer: lists of Python numbers or numpy scalars."""
    return a.tolist()


def same(x, y):
    """Equal as the bits of doubles (NaN and -0.0 included)."""
    return np.array(x, dtype=float).tobytes() == np.array(y, dtype=float).tobytes()


SPECIAL = np.array([0.0, -0.0, 1.5, np.nan, np.inf, -np.inf, 1e308, 5e-324, -2.0**60])


@pytest.mark.parametrize(
    "make",
    [
        lambda: SPECIAL.copy(),
        lambda: np.repeat(SPECIAL, 2)[::2],  # strided
        lambda: SPECIAL[::-1],  # negative stride
        lambda: np.arange(-5, 9, dtype=np.int32),
        lambda: np.arange(-5, 9, dtype=np.int64) * 3,
        lambda: np.arange(20, dtype=np.int32)[1::3],
        lambda: np.frombuffer(SPECIAL.tobytes(), dtype=float),  # read-only
    ],
    ids=["float64", "strided", "reversed", "int32", "int64", "int32-strided", "readonly"],
)
def test_flat_doubles_as_by_the_elements(mt, make):
    a = make()
    n = len(a)
    c = counting(a)
    assert same(mt.pydb(c, n), mt.pydb(generic(a), n))
    assert Counting.fetched == 0
    assert same(mt.pydb(c, n - 2), mt.pydb(generic(a), n - 2))


@pytest.mark.parametrize("dtype", [np.int32, np.int64, np.intc, np.int_])
def test_flat_integers_as_by_the_elements(mt, dtype):
    a = np.array([3, -7, 2**31 - 1, -(2**31), 0], dtype=dtype)[::-1]
    c = counting(a)
    assert mt.pyin(c, 5) == mt.pyin(generic(a), 5) == [0, -(2**31), 2**31 - 1, -7, 3]
    assert Counting.fetched == 0
    assert mt.pyib(c, 3) == mt.pyin(generic(a), 3)


def test_array_module_buffers(mt):
    d = array.array("d", [1.25, -3.5])
    assert mt.pydb(d, 2) == [1.25, -3.5]
    i = array.array("i", [4, 5, 6])
    assert mt.pyin(i, 3) == [4, 5, 6]
    q = array.array("q", [2**40])
    assert mt.pydb(q, 1) == [float(2**40)]


def test_the_errors_are_those_of_the_elements(mt):
    def both(fn, a, *counts):
        outcome = []
        for arg in (a, generic(a)):
            try:
                outcome.append(("ok", fn(arg, *counts)))
            except Exception as e:  # noqa: BLE001 - comparing the two paths
                outcome.append((type(e), str(e)))
        assert outcome[0] == outcome[1]
        return outcome[0]

    assert both(mt.pyin, np.array([1.0, 2.0]), 2) == (ValueError, "no integer element in sequence")
    assert both(mt.pyin, np.array([1, 2**31], dtype=np.int64), 2) == (ValueError, "no integer element in sequence")
    assert both(mt.pyin, np.array([1, 2**31], dtype=np.int64), 1) == ("ok", [1])
    assert both(mt.pydb, np.zeros(3), 4) == (MemoryError, "out of range")
    assert both(mt.pyd2, np.zeros((0, 3)), 1, 1) == (ValueError, "sequence error")
    assert both(mt.pyd2, np.zeros((3, 0)), 1, 1) == (MemoryError, "out of range")
    assert both(mt.pyd2, np.zeros((2, 2)), 2, 3) == (MemoryError, "out of range")
    assert both(mt.pyd2, np.zeros((2, 2, 2)), 1, 1) == (ValueError, "no floatingpoint element in sequence")
    assert both(mt.pyi2, np.ones((2, 2)), 2, 2) == (ValueError, "no integer element in sequence")
    assert both(mt.pyd3, np.zeros((2, 0, 4)), 1, 1, 1) == (MemoryError, "out of range")
    assert both(mt.pydb, np.zeros((2, 2)), 2) == (ValueError, "no floatingpoint element in sequence")


@pytest.mark.parametrize(
    "make",
    [
        lambda: np.arange(12.0).reshape(3, 4),
        lambda: np.arange(12.0).reshape(4, 3).T,  # not C-contiguous
        lambda: np.arange(24, dtype=np.int32).reshape(4, 6)[::2, 1::2],
        lambda: np.arange(6, dtype=np.int64).reshape(6, 1),
        lambda: np.linspace(-1, 1, 5),  # flat form
    ],
    ids=["c-order", "transposed", "int32-sliced", "int64-column", "flat"],
)
def test_two_levels_as_by_the_elements(mt, make):
    a = make()
    n = a.size
    c = counting(a)
    assert same(mt.pyd2(c, 1, n), mt.pyd2(generic(a), 1, n))
    assert Counting.fetched == 0
    if a.dtype.kind == "i":
        assert mt.pyi2(a, n, 1) == mt.pyi2(generic(a), n, 1)


def test_three_levels_as_by_the_elements(mt):
    a = np.arange(60.0).reshape(3, 4, 5).transpose(2, 0, 1)  # strided in every level
    c = counting(a)
    assert same(mt.pyd3(c, 5, 3, 4), mt.pyd3(generic(a), 5, 3, 4))
    assert same(mt.pyd3(c, 5, 3, 4), a.ravel())
    assert Counting.fetched == 0
    b = np.arange(6, dtype=np.int32).reshape(2, 3)
    assert same(mt.pyd3(b, 2, 3, 1), mt.pyd3(generic(b), 2, 3, 1))


@pytest.mark.parametrize("dtype", [np.float32, np.float16, np.int16, np.uint8, np.uint64, np.bool_])
def test_other_dtypes_take_the_element_path(mt, dtype):
    a = np.array([1, 0, 3, 1], dtype=dtype)
    c = counting(a)
    assert mt.pydb(c, 4) == mt.pydb(generic(a), 4) == [float(v) for v in a.tolist()]
    assert Counting.fetched > 0
    if np.dtype(dtype).kind in "iu":
        assert mt.pyin(a, 4) == [int(v) for v in a.tolist()]
    elif np.dtype(dtype).kind == "f":  # a float is never an integer
        with pytest.raises(ValueError, match="no integer element in sequence"):
            mt.pyin(a, 4)
    m = np.arange(6, dtype=dtype if dtype is not np.bool_ else np.float32).reshape(2, 3)
    assert mt.pyd2(m, 2, 3) == mt.pyd2(generic(m), 2, 3)


def test_big_endian_data_takes_the_element_path(mt):
    a = np.array([1.5, -2.25], dtype=">f8")
    assert mt.pydb(a, 2) == [1.5, -2.25]
    assert mt.pyin(np.array([7, 8], dtype=">i4"), 2) == [7, 8]


# ---- writing back ---------------------------------------------------------------------------


@pytest.mark.parametrize("dtype", [np.float64, np.float32, np.int32, np.int64])
def test_write_back_into_arrays(mt, dtype):
    a = np.zeros(6, dtype=dtype)
    mt.pywd([1, 2, 3, 4], a[::2], 3)  # strided view writes into its base
    assert a.tolist() == [1, 0, 2, 0, 3, 0]
    b = np.zeros(4, dtype=dtype)
    mt.pywi([-1, 5, 7], b, 3)
    assert b.tolist() == [-1, 5, 7, 0]


def test_write_back_into_two_levels(mt):
    for dtype in (np.float64, np.float32):
        m = np.zeros((2, 3), dtype=dtype)
        mt.pywd(list(range(6)), m, 6, True)
        assert m.tolist() == [[0, 1, 2], [3, 4, 5]]
    t = np.zeros((3, 2)).T  # a transposed view: the nesting is what counts
    mt.pywd(list(range(6)), t, 6, True)
    assert t.tolist() == [[0, 1, 2], [3, 4, 5]]
    i = np.zeros((2, 2), dtype=np.int32)
    mt.pywi([1, 2, 3], i, 3, True)
    assert i.tolist() == [[1, 2], [3, 0]]


def test_read_only_arrays_stay_as_they_are(mt):
    a = np.arange(3.0)
    a.setflags(write=False)
    mt.pywd([9, 9, 9], a, 3)
    assert a.tolist() == [0.0, 1.0, 2.0]
    big = np.zeros(2)
    mt.pywd([1, 2, 3], big, 3)  # short: what fits
    assert big.tolist() == [1.0, 2.0]
