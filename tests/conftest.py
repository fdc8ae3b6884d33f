"""Shared fixtures of the test suite.

The module is the installed kolvex, or the one in the build tree named by
KOLVEX_BUILD_DIR.  Every test runs in a temporary directory with a fresh
block: the library keeps its state per process, so a test that ends in the
middle of a session, or leaves a level-0 setting behind, must not leak into
the next one.
"""
import os
import shutil
import subprocess
import sys

import pytest

_build = os.environ.get("KOLVEX_BUILD_DIR")
if _build:
    sys.path.insert(0, os.path.abspath(_build))
    # Python processes that the tests start find the same module.
    os.environ["PYTHONPATH"] = os.pathsep.join(
        [os.path.abspath(_build)] + [p for p in os.environ.get("PYTHONPATH", "").split(os.pathsep) if p])

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


ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
NATIVE_BUILD = os.path.abspath(os.environ.get("KOLVEX_NATIVE_BUILD_DIR", os.path.join(ROOT, "build", "native-tests")))


def _cached_python(build):
    try:
        with open(os.path.join(build, "CMakeCache.txt")) as f:
            for line in f:
                if line.startswith(("Python_EXECUTABLE:", "_Python_EXECUTABLE:")):
                    return line.split("=", 1)[1].strip()
    except OSError:
        pass
    return None


def native_build(*targets):
    """Builds targets of the tests' CMake tree (incrementally after the first
    run) with this interpreter's headers, and returns the tree's directory."""
    if shutil.which("cmake") is None:
        # CI sets KOLVEX_REQUIRE_NATIVE: there a missing compiler tree fails.
        if os.environ.get("KOLVEX_REQUIRE_NATIVE"):
            pytest.fail("cmake is not installed")
        pytest.skip("cmake is not installed")
    os.makedirs(NATIVE_BUILD, exist_ok=True)
    cached = _cached_python(NATIVE_BUILD)
    if cached is None or os.path.realpath(cached) != os.path.realpath(sys.executable):
        gen = ["-G", "Ninja"] if shutil.which("ninja") and cached is None else []
        configure = ["cmake", *gen, ROOT, "-DKOLVEX_TESTS=ON", f"-DPython_EXECUTABLE={sys.executable}"]
        if cached is None:
            configure.append("-DCMAKE_BUILD_TYPE=RelWithDebInfo")
        subprocess.run(configure, cwd=NATIVE_BUILD, check=True, capture_output=True)
    r = subprocess.run(["cmake", "--build", ".", "--parallel", "2", "--target", *targets],
                       cwd=NATIVE_BUILD, capture_output=True, text=True)
    assert r.returncode == 0, r.stdout[-4000:] + r.stderr[-4000:]
    return NATIVE_BUILD


def method_list():
    """The module's 805 methods: {name: (format, gives, lock)}, as the table
    writes them ('-' for none, 'own' for a method that parses its own)."""
    out = {}
    with open(os.path.join(ROOT, "tests", "data", "methods.txt"), encoding="utf-8") as f:
        for line in f:
            if line.startswith("#") or not line.strip():
                continue
            name, fmt, gives, lock = line.split()
            out[name] = (fmt, gives, lock)
    return out


def bound_methods():
    """The methods that the module offers, by name."""
    return sorted(n for n in dir(kolvex) if not (n.startswith("__") and n.endswith("__")))


def pytest_terminal_summary(terminalreporter):
    listed = method_list()
    bound = [n for n in bound_methods() if n in listed]
    terminalreporter.write_line(f"kolvex binds {len(bound)} of the {len(listed)} methods")


def example_png_and_svg_alike(script, threshold=128, radius=2, share=0.97):
    """Draws examples/<script> as PNG and as SVG, renders the SVG with
    rsvg-convert and checks that the ink of each lies within `radius` pixels
    of the other's for `share` of its pixels."""
    import importlib.util
    np = pytest.importorskip("numpy")
    Image = pytest.importorskip("PIL.Image")
    if not have("rsvg-convert"):
        pytest.skip("rsvg-convert is not installed")
    spec = importlib.util.spec_from_file_location("example", os.path.join(ROOT, "examples", script))
    ex = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(ex)
    kolvex.unit(0)
    ex.draw("PNG", "page.png")
    ex.draw("SVG", "page.svg")
    subprocess.run(["rsvg-convert", "-w", "853", "-h", "603", "-b", "white", "-o", "svg.png", "page.svg"],
                   check=True)
    a = np.asarray(Image.open("svg.png").convert("L")) < threshold
    b = np.asarray(Image.open("page.png").convert("L")) < threshold
    assert a.shape == b.shape and b.sum() > 5000

    def dilate(mask):
        out = mask.copy()
        h, w = mask.shape
        for dy in range(-radius, radius + 1):
            for dx in range(-radius, radius + 1):
                out[max(dy, 0):h + min(dy, 0), max(dx, 0):w + min(dx, 0)] |= \
                    mask[max(-dy, 0):h + min(-dy, 0), max(-dx, 0):w + min(-dx, 0)]
        return out
    assert (a & dilate(b)).sum() >= share * a.sum()
    assert (b & dilate(a)).sum() >= share * b.sum()
