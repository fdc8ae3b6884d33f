"""Shared fixtures of the test suite.

The module is the installed kolvex, or the one in the build tree named by
KOLVEX_BUILD_DIR.  Every test runs in a temporary directory with a fresh
block: the library keeps its state per process, so a test that ends in the
middle of a session, or leaves a level-0 setting behind, must not leak into
the next one.
"""
import os
import shutil
import sys

import pytest

_build = os.environ.get("KOLVEX_BUILD_DIR")
if _build:
    sys.path.insert(0, os.path.abspath(_build))

import kolvex  # noqa: E402


@pytest.fixture(autouse=True)
def fresh_session(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    monkeypatch.delenv("KOLVEX", raising=False)
    yield
    if kolvex.getlev() > 0:
        kolvex.unit(0)
        kolvex.kolfin()
    kolvex.delglb()


def have(program):
    return shutil.which(program) is not None


def needs(program):
    """Skip unless an outside program is installed."""
    return pytest.mark.skipif(not have(program), reason=f"{program} is not installed")
