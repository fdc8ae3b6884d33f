"""Random objects into every bound method, with and without an open
session: a call returns, raises TypeError, ValueError or MemoryError, or
prints a library warning; it never crashes, never raises anything else and
never keeps a reference to what it was given.

The same goes for the wrappers of the test module (one for each role of a
table line).  KOLVEX_FUZZ_SEED and KOLVEX_FUZZ_CALLS (calls a method and
level) vary the run; a failure names the seed, the method and the arguments.
"""
import math
import os
import random
import re
import sys

import pytest

import kolvex
from conftest import ROOT, bound_methods, method_list
from marshal_support import Raises, marshal_module

try:
    import numpy as np
except ImportError:  # the fuzz runs without numpy's objects then
    np = None

SEED = int(os.environ.get("KOLVEX_FUZZ_SEED", "20261123"))
CALLS = int(os.environ.get("KOLVEX_FUZZ_CALLS", "40"))
METHODS = method_list()
ALLOWED = (TypeError, ValueError, MemoryError)

# Methods whose well-typed calls have effects beyond one session by design:
# they get only arguments of the wrong type.
WRONG_TYPES_ONLY = {
    "thrini": "a large slot count ends the process (not enough memory for the thread table), "
              "and any count switches the process to one block per thread for good",
}
# Methods that keep what they are given (callables, settings of the
# convenience plots): their references are not counted.
KEEPERS = {"piecbk", "setcbk", "surfcp", "surfun", "swgcb", "swgcb2", "swgcb3", "swgcbk", "wincbk", "setvar"}

INTS = [0, 1, -1, 2, 3, 7, 100, 255, 256, 1000, -(2**31), 2**31 - 1, 2**31, 2**63, -(2**70), True]
SMALL_INTS = [0, 1, -1, 2, 3, 7, 100, -(2**31), 2**31, True]
FLOATS = [0.0, -0.0, 1.5, -3.25, 0.5, 90.0, math.nan, math.inf, -math.inf, 1e308, 5e-324, 1e-35, -1e300]
TEXTS = ["", "A", "PLOG", "ON", "OFF", "ALL", "XWIN", "SVG", "NONE", "abc", "é€😀", "x" * 10000, "a\0b",
         "\ud800", "   ", "1234", "-1", "Ä.met", "RGB", "SAVE", "LOAD", "KEYW+ORD"]


def sequences():
    out = [[], [1, 2, 3], [1.5] * 50, ["a", "b"], [[1, 2], [3, 4]], [[1], [2, 3]], [None], list(range(1000)),
           (1, 2, 3), (), [[[1.0, 2.0]], [[3.0, 4.0]]], [math.nan, math.inf, -1e308] * 4, range(20), "abc",
           b"\x00\x01", Raises.BadLen(), Raises.BadItem(), Raises.BadItem(1000), Raises.NegativeLen()]
    if np is not None:
        out += [np.arange(10.0), np.zeros((3, 3)), np.arange(5, dtype=np.int32), np.array([np.nan]),
                np.arange(12.0).reshape(3, 4).T, np.array(["a", "b"]), np.float32([1, 2, 3]), np.array(2.0)]
    return out


OTHERS = [None, {}, {1: 2}, object(), Raises.BadIndex(), Raises.BadFloat(), lambda *a: 0, bytearray(b"abc"),
          b"", b"\x00\xff" * 10, 1j]


def value(rng, unit, ints):
    """An argument for a format unit: mostly of the right type, sometimes anything."""
    if rng.random() < 0.25:
        return rng.choice(INTS + FLOATS + TEXTS + sequences() + OTHERS)
    if unit == "i":
        return rng.choice(ints)
    if unit in "df":
        return rng.choice(FLOATS + INTS[:10])
    if unit == "s":
        return rng.choice(TEXTS)
    if unit == "s#":
        return rng.choice(TEXTS + [b"", b"\x00\xff" * 10, b"x" * 5000])
    return rng.choice(sequences() + OTHERS)


def arguments(rng, name, fmt, ints=INTS):
    units = [] if fmt in ("-", "own") else re.findall(r"s#|.", fmt)
    if fmt == "own":
        units = ["O"] * rng.randint(0, 5)
    args = [value(rng, u, ints) for u in units]
    roll = rng.random()
    if roll < 0.04:
        args.append(value(rng, "O", ints))
    elif roll < 0.08 and args:
        args.pop()
    if name in WRONG_TYPES_ONLY and len(args) == len(units):
        args = [rng.choice(FLOATS[1:] + TEXTS + OTHERS) for _ in units]
    return args


def short(args):
    text = repr(args)
    return text if len(text) < 300 else text[:300] + "..."


def counted(args):
    """The arguments whose references can be counted: objects made for the
    fuzz, not shared constants of the interpreter."""
    kinds = (list, tuple, dict, bytearray, Raises.BadLen, Raises.BadItem, Raises.BadIndex, Raises.BadFloat)
    if np is not None:
        kinds += (np.ndarray,)
    return [a for a in args if isinstance(a, kinds)]


def call(fn, args, where, failures, keeps=False):
    keep = [] if keeps else counted(args)
    before = [sys.getrefcount(a) for a in keep]
    try:
        fn(*args)
    except ALLOWED:
        pass
    except BaseException as e:  # noqa: BLE001 - every other outcome is a failure
        failures.append(f"seed {SEED}, {where}: {fn.__name__}{short(tuple(args))} raised {e!r}")
    after = [sys.getrefcount(a) for a in keep]
    if before != after:
        failures.append(f"seed {SEED}, {where}: {fn.__name__}{short(tuple(args))} "
                        f"changed reference counts {before} -> {after}")


def fuzz(level, rng, failures):
    for name in bound_methods():
        for _ in range(CALLS):
            args = arguments(rng, name, METHODS[name][0])
            call(getattr(kolvex, name), args, f"level {level}", failures, name in KEEPERS)
            restore(level)


def restore(level):
    """Back to a sane state of the level under test."""
    lev = kolvex.getlev()
    if level == 0:
        if lev != 0:
            kolvex.unit(0)
            kolvex.kolfin()
        if random.random() < 0.1:
            kolvex.delglb()
        return
    if lev == 1:
        return
    if lev > 1 and hasattr(kolvex, "endgrf"):
        kolvex.endgrf()
        if kolvex.getlev() == 1:
            return
    if kolvex.getlev() != 0:
        kolvex.unit(0)
        kolvex.kolfin()
    kolvex.delglb()
    kolvex.metafl("PLOG")
    kolvex.filmod("DELE")
    kolvex.kolini()
    assert kolvex.getlev() == 1, "the session cannot be opened again"


@pytest.fixture
def no_display(monkeypatch):
    monkeypatch.delenv("DISPLAY", raising=False)


@pytest.mark.parametrize("level", [0, 1])
def test_random_arguments_to_every_method(level, no_display):
    rng = random.Random(SEED + level)
    random.seed(SEED)
    failures = []
    if level == 1:
        restore(1)
    fuzz(level, rng, failures)
    if kolvex.getlev() != 0:
        kolvex.unit(0)
        kolvex.kolfin()
    assert not failures, "\n".join(failures[:40])


def test_random_arguments_to_every_role_of_the_table():
    """The same over the test module's wrappers, one for each role of a
    table line.  Its stand-in routines do work in proportion to their counts,
    so counts stay small; twait waits as long as it is told."""
    sys.path.insert(0, os.path.join(ROOT, "tools"))
    import gen_binding

    mt = marshal_module()
    lines = gen_binding.read_table(os.path.join(ROOT, "tests", "ext"))
    rng = random.Random(SEED + 2)
    failures = []
    for m in lines:
        if m.name in ("twait", "twaitl", "tsetdep"):
            continue
        for _ in range(CALLS * 3):
            call(getattr(mt, m.name), arguments(rng, m.name, m.table_format, SMALL_INTS), "test module", failures)
    assert not failures, "\n".join(failures[:40])
