"""The C++ tests of the core's internals and the C interface check.

They are built with CMake into build/native-tests beside the sources (an
incremental build after the first run) and run from here, each C++ test
as its own item, so that one pytest command runs the whole suite.
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


def cpp_tests():
    """The names of the C++ tests, from the built program; a build that
    fails is a failing item, not a missing one."""
    try:
        build = build_targets("kolvex_cpptest", "kolvex_ctest")
    except pytest.skip.Exception as e:
        return [pytest.param("-", marks=pytest.mark.skip(reason=str(e)))]
    except BaseException:  # noqa: BLE001 - the item's fixture fails with the reason
        return ["build"]
    r = subprocess.run([os.path.join(build, "kolvex_cpptest"), "--list"], capture_output=True, text=True,
                       timeout=60)
    return r.stdout.split()


def pytest_generate_tests(metafunc):
    if "cpp_test" in metafunc.fixturenames:
        metafunc.parametrize("cpp_test", cpp_tests())


def test_cpp(cpp_test, native_build, tmp_path):
    r = subprocess.run([os.path.join(native_build, "kolvex_cpptest"), cpp_test], cwd=tmp_path,
                       capture_output=True, text=True, timeout=300)
    assert r.returncode == 0, r.stderr[-6000:]


def test_c_program_uses_the_header_alone(native_build, tmp_path):
    r = subprocess.run([os.path.join(native_build, "kolvex_ctest")], cwd=tmp_path,
                       capture_output=True, text=True, timeout=60)
    assert r.returncode == 0, r.stdout + r.stderr
    assert (tmp_path / "c_api_check.met").exists()
