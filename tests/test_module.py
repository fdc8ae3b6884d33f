"""The shipped module with the routines that exist: arrays into the core,
warnings that stay warnings, and the interpreter lock given up around a
long call."""
import os
import re
import subprocess
import sys
import textwrap

import pytest

import kolvex


def entry(i):
    return tuple(round(v * 255) for v in kolvex.getind(i))


def test_arrays_reach_the_core():
    kolvex.myvlt([1, 0.5], (0, 1), [0, 0.0], 2)
    kolvex.metafl("PLOG")
    kolvex.kolini()
    assert entry(0) == (255, 0, 0) and entry(1) == (128, 255, 0)
    kolvex.myvlt([0, 1, 1], [0, 1, 0.5, 0.75], [1, 1, 0.25], 2)  # longer lists: the count rules
    assert entry(0) == (0, 0, 255) and entry(1) == (255, 255, 255)
    assert entry(2) != (255, 128, 64)


def test_array_failures_change_nothing(capfd):
    kolvex.metafl("PLOG")
    kolvex.kolini()
    before = [entry(i) for i in range(3)]
    with pytest.raises(MemoryError, match="^out of range$"):
        kolvex.myvlt([1, 1], [1, 1], [1, 1], 3)
    with pytest.raises(ValueError, match="^no floatingpoint element in sequence$"):
        kolvex.myvlt([1, 1, 1], [1, "1", 1], [1, 1, 1], 3)
    with pytest.raises(ValueError, match="^parameter is not a sequence$"):
        kolvex.myvlt([1], [1], 1.0, 1)
    assert "Warning" not in capfd.readouterr().out
    # A count that the routine refuses reaches it for its warning; the
    # arrays are not looked at.
    assert kolvex.myvlt([], [], [], 0) is None
    assert kolvex.myvlt(None, None, None, -3) is None
    assert [entry(i) for i in range(3)] == before
    assert capfd.readouterr().out.count("Warning 2: Incorrect parameter in myvlt!") == 2


def test_a_warning_is_no_exception(capfd):
    assert kolvex.pagera() is None  # level 0: the routine refuses
    assert "Warning 3: Incorrect level in pagera!" in capfd.readouterr().out
    kolvex.metafl("PLOG")
    kolvex.kolini()
    assert kolvex.myvlt([2], [0], [0], 1) is None  # a value the routine refuses
    assert "Warning" in capfd.readouterr().out


def test_text_arguments():
    assert kolvex.upstr("abc") is None
    with pytest.raises(ValueError):
        kolvex.setfil("a\0b")
    with pytest.raises(TypeError):
        kolvex.setfil(b"bytes are no text")
    kolvex.setfil("é" * 300)  # longer than the routine's field: it cuts


def test_another_thread_runs_while_kolfin_writes(tmp_path):
    """kolfin writes its banner to standard output.  With a full pipe there,
    the write blocks until someone reads: a Python thread that can only run
    because kolfin gave up the interpreter lock, as it does when each thread
    has a block of its own.  Without the release the child hangs and the
    timeout fails the test."""
    script = textwrap.dedent(
        """
        import fcntl, os, sys, threading, time
        import kolvex
        kolvex.thrini(2)
        kolvex.metafl("PLOG")
        kolvex.kolini()
        kolvex.pagera()
        r, w = os.pipe()
        sys.stdout.flush()
        saved = os.dup(1)
        os.dup2(w, 1)
        flags = fcntl.fcntl(w, fcntl.F_GETFL)
        fcntl.fcntl(w, fcntl.F_SETFL, flags | os.O_NONBLOCK)
        for size in (4096, 1):  # to the last byte
            try:
                while True:
                    os.write(w, b"." * size)
            except BlockingIOError:
                pass
        fcntl.fcntl(w, fcntl.F_SETFL, flags)
        returned = threading.Event()
        seen = {}

        def drain():
            time.sleep(0.3)  # kolfin is blocked by now
            # Python code running here, before kolfin has returned.
            seen["while_kolfin_ran"] = not returned.is_set()
            data = b""
            while b"END OF KOLVEX" not in data:
                chunk = os.read(r, 65536)
                if not chunk:
                    break
                data += chunk
            seen["banner"] = b"END OF KOLVEX" in data

        t = threading.Thread(target=drain)
        t.start()
        kolvex.kolfin()
        returned.set()
        os.dup2(saved, 1)
        os.close(w)
        t.join()
        print("RESULT", seen.get("while_kolfin_ran"), seen.get("banner"))
        """
    )
    env = dict(os.environ, PYTHONPATH=os.path.dirname(kolvex.__file__))
    try:
        r = subprocess.run([sys.executable, "-c", script], cwd=tmp_path, env=env, capture_output=True,
                           text=True, timeout=60)
    except subprocess.TimeoutExpired:
        pytest.fail("kolfin kept the interpreter lock: the reading thread never ran")
    assert r.returncode == 0, r.stderr
    assert "RESULT True True" in r.stdout, r.stdout + r.stderr


def test_every_method_has_help_in_the_stub():
    # The module is nothing but its methods (no doc strings, no attributes);
    # the help lives in the stub installed beside it, where editors read it.
    import ast
    assert all(getattr(kolvex, n).__doc__ is None for n in dir(kolvex) if not n.startswith("_"))
    stub = os.path.join(os.path.dirname(kolvex.__file__), "kolvex.pyi")
    with open(stub, encoding="utf-8") as f:
        tree = ast.parse(f.read())
    docs = {d.name: ast.get_docstring(d) or "" for d in tree.body if isinstance(d, ast.FunctionDef)}
    names = [n for n in dir(kolvex) if not n.startswith("_")]
    assert sorted(docs) == sorted(names)
    for name in names:
        lines = docs[name].split("\n")
        # A one-line summary, then the calling form with its types.
        assert len(lines) >= 3 and lines[0].endswith(".") and lines[1] == "", name
        assert lines[-1].startswith(name + "(") and ") -> " in lines[-1], name
