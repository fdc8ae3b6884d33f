"""The test module of the marshalling layer, built on demand.

kolvex_marshal_test holds the converters on their own and generated
wrappers over stand-in routines (tests/ext); it is built into the tests'
CMake tree, never installed, so that the shipped module has nothing but its
own methods.
"""
import importlib
import sys

from conftest import native_build

_module = None


def marshal_module():
    global _module
    if _module is None:
        build = native_build("kolvex_marshal_test")
        if build not in sys.path:
            sys.path.insert(0, build)
        _module = importlib.import_module("kolvex_marshal_test")
    return _module


class Raises:
    """Objects whose protocol methods fail, for the converters' error paths."""

    class BadLen:
        def __len__(self):
            raise RuntimeError("no length today")

        def __getitem__(self, i):
            return 1.0

    class BadItem:
        def __init__(self, n=3):
            self.n = n

        def __len__(self):
            return self.n

        def __getitem__(self, i):
            raise KeyError(i)

    class BadIndex:
        def __index__(self):
            raise ZeroDivisionError

    class BadFloat:
        def __float__(self):
            raise ArithmeticError

    class NegativeLen:
        def __len__(self):
            return -1

        def __getitem__(self, i):
            return 0
