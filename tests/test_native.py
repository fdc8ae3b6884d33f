"""The C++ tests of the core's internals and the C interface check.

They are built with CMake into build/native-tests beside the sources (an
incremental build after the first run) and run from here, so that one
pytest command runs the whole suite.
"""
import os
import subprocess

import pytest

from conftest import native_build as build_targets


@pytest.fixture(scope="module")
def native_build():
    return build_targets("kolvex_cpptest", "kolvex_ctest")


def write_test_page(build, test, out):
    """Runs the C++ test that draws a test page, writing its files into out."""
    r = subprocess.run([os.path.join(build, "kolvex_cpptest"), test], cwd=out,
                       env=dict(os.environ, KOLVEX_PAGE_DIR=str(out)), capture_output=True, text=True,
                       timeout=120)
    assert r.returncode == 0, r.stderr


def test_cpp_internals(native_build, tmp_path):
    r = subprocess.run([os.path.join(native_build, "kolvex_cpptest")], cwd=tmp_path,
                       capture_output=True, text=True, timeout=600)
    assert r.returncode == 0, r.stderr[-6000:]


def test_c_program_uses_the_header_alone(native_build, tmp_path):
    r = subprocess.run([os.path.join(native_build, "kolvex_ctest")], cwd=tmp_path,
                       capture_output=True, text=True, timeout=60)
    assert r.returncode == 0, r.stdout + r.stderr
    assert (tmp_path / "c_api_check.met").exists()
