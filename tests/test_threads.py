"""Python threads through whole sessions, with one shared block and with a
block per thread (thrini).  Each run is a child process: thrini works on the
whole process, and a crash or a deadlock must fail the test, not end it.

With one block the calls of different threads are serialised, so a thread's
calls land in whatever session another thread has open: levels and warnings
decide what they do, and nothing may crash or hang.  With thrini every
thread writes its own file, which must equal the one thread's file.
"""
import os
import subprocess
import sys
import textwrap

import pytest

SESSIONS = """
    import sys, threading, kolvex
    mode = "{mode}"  # "shared", "thrini" or "sequential"
    nthreads, rounds = {nthreads}, {rounds}
    if mode == "thrini":
        kolvex.thrini(nthreads + 1)
    def work(n):
        for r in range(rounds):
            kolvex.unit(0)
            kolvex.metafl(("PLOG", "SVG", "PNG")[(n + r) % 3])
            kolvex.setfil(f"t{{n}}_{{r}}")
            kolvex.filmod("DELE")
            kolvex.page(1000 + 10 * n, 800 + 10 * r)
            kolvex.kolini()
            kolvex.unit(0)
            for k in range(20):
                kolvex.linwid(1 + k % 4)
                kolvex.pagera()
                kolvex.erase()
            kolvex.kolfin()
        if mode == "thrini":
            kolvex.delglb()
    if mode == "sequential":
        for n in range(nthreads):
            work(n)
    else:
        threads = [threading.Thread(target=work, args=(n,)) for n in range(nthreads)]
        for t in threads: t.start()
        for t in threads: t.join()
    if mode == "thrini":
        kolvex.thrfin()
    print("done")
"""


def run_sessions(path, mode, nthreads=4, rounds=6):
    code = textwrap.dedent(SESSIONS.format(mode=mode, nthreads=nthreads, rounds=rounds))
    env = dict(os.environ, SOURCE_DATE_EPOCH="1700000000")
    try:
        return subprocess.run([sys.executable, "-c", code], cwd=path, capture_output=True, text=True,
                              timeout=120, env=env)
    except subprocess.TimeoutExpired:
        pytest.fail("the threads deadlocked")


@pytest.mark.parametrize("mode", ["shared", "thrini"])
def test_threads_run_whole_sessions_without_crash(tmp_path, mode):
    for attempt in range(8):
        r = run_sessions(tmp_path, mode)
        assert r.returncode == 0, f"run {attempt}: status {r.returncode}\n{r.stderr[-2000:]}"
        assert r.stdout.endswith("done\n")


def test_a_block_per_thread_writes_the_files_of_one_thread(tmp_path):
    for mode in ("sequential", "thrini"):
        (tmp_path / mode).mkdir()
        r = run_sessions(tmp_path / mode, mode, rounds=3)
        assert r.returncode == 0, r.stderr
    names = sorted(os.listdir(tmp_path / "sequential"))
    assert len(names) == 12
    assert sorted(os.listdir(tmp_path / "thrini")) == names
    for name in names:
        assert (tmp_path / "thrini" / name).read_bytes() == (tmp_path / "sequential" / name).read_bytes(), name


def test_thrfin_while_other_threads_draw(tmp_path):
    """thrfin frees the blocks of threads that are still drawing: it waits
    for their calls, and their later calls share the one block."""
    code = textwrap.dedent("""
        import threading, time, kolvex
        kolvex.thrini(8)
        def work(n):
            for r in range(25):
                kolvex.unit(0)
                kolvex.metafl("PNG")
                kolvex.setfil(f"t{n}.png")
                kolvex.filmod("DELE")
                kolvex.kolini()
                kolvex.unit(0)
                for k in range(10):
                    kolvex.pagera()
                kolvex.kolfin()
        threads = [threading.Thread(target=work, args=(n,)) for n in range(3)]
        for t in threads: t.start()
        time.sleep(0.05)
        kolvex.thrfin()
        for t in threads: t.join()
        print("done")
    """)
    for attempt in range(2):
        try:
            r = subprocess.run([sys.executable, "-c", code], cwd=tmp_path, capture_output=True, text=True,
                               timeout=120)
        except subprocess.TimeoutExpired:
            pytest.fail("thrfin deadlocked")
        assert r.returncode == 0 and r.stdout.endswith("done\n"), r.stderr[-2000:]
