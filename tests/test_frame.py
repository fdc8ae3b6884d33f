"""The call frame: guards and levels, keywords, units and the page, threads."""
import os
import subprocess
import sys
import textwrap

import pytest

import kolvex


def warnings_of(capfd):
    return [line for line in capfd.readouterr().out.split("\n") if "<<<< Warning" in line]


def run_python(code, timeout=60):
    """Runs code in a fresh interpreter: thrini works on the whole process."""
    env = dict(os.environ)
    build = os.environ.get("KOLVEX_BUILD_DIR")
    if build:
        env["PYTHONPATH"] = os.path.abspath(build) + os.pathsep + env.get("PYTHONPATH", "")
    return subprocess.run([sys.executable, "-c", textwrap.dedent(code)], capture_output=True, text=True,
                          timeout=timeout, env=env)


# ---- guards ---------------------------------------------------------------------


def test_hard_guard_refuses_at_level_0_and_changes_nothing(capfd):
    kolvex.color("RED")
    assert warnings_of(capfd) == [" <<<< Warning 3: Incorrect level in color!   ( 0)"]
    kolvex.kolini()
    colour = kolvex.getclr()
    kolvex.kolfin()
    kolvex.color("RED")  # after the session: level 0 again
    kolvex.kolini()
    assert kolvex.getclr() == colour


def test_level_0_routine_refused_inside_a_session(capfd):
    kolvex.kolini()
    kolvex.setpag("DA3L")
    kolvex.metafl("POST")
    assert warnings_of(capfd) == [" <<<< Warning 3: Incorrect level in setpag!   ( 1)",
                                  " <<<< Warning 3: Incorrect level in metafl!   ( 1)"]
    assert kolvex.getpag() == (2970, 2100)
    assert kolvex.getmfl() == "PLOG"


def test_soft_guard_warns_and_still_stores(capfd):
    # unit(0) before the session is reported, and silences what follows.
    kolvex.unit(0)
    kolvex.metafl("XYZ")
    assert warnings_of(capfd) == [" <<<< Warning 3: Incorrect level in unit!   ( 0)"]
    # kolini sets the output unit anew.
    kolvex.kolini()
    kolvex.linwid(0)
    assert warnings_of(capfd) == [" <<<< Warning 2: Incorrect parameter in linwid!   ( 0)"]


def test_fresh_block_at_a_wrong_level_gets_its_first_values(capfd):
    kolvex.delglb()
    kolvex.getpag()  # the first call of the block is refused...
    assert warnings_of(capfd) == [" <<<< Warning 3: Incorrect level in getpag!   ( 0)"]
    kolvex.kolini()  # ...but the block has its first values: DA4L, 1/100 cm, PLOG
    assert kolvex.getpag() == (2970, 2100)
    assert kolvex.getmfl() == "PLOG"


def test_first_call_of_a_fresh_block_may_be_metafl(capfd):
    kolvex.delglb()
    kolvex.metafl("PLOG")
    assert warnings_of(capfd) == []
    assert kolvex.getlev() == 0


def test_failed_kolini_leaves_level_0(capfd):
    open("kolvex.met", "w").close()
    kolvex.filmod("BREA")
    kolvex.kolini()
    assert kolvex.getlev() == 0
    kolvex.color("RED")
    assert warnings_of(capfd) == [" <<<< Warning 169: Plotfile does exist in kolini!",
                                  " <<<< Warning 3: Incorrect level in color!   ( 0)"]


def test_level_machine_of_a_session():
    assert kolvex.getlev() == 0
    kolvex.kolini()
    assert kolvex.getlev() == 1
    kolvex.kolini()  # a second kolini is refused
    assert kolvex.getlev() == 1
    kolvex.kolfin()
    assert kolvex.getlev() == 0
    kolvex.unit(0)  # the soft guard warns, and stores: the next warning is silent
    kolvex.kolfin()
    assert kolvex.getlev() == 0


# ---- keywords -------------------------------------------------------------------


@pytest.mark.parametrize("word", ["off", "Offset", "OFF", "oFf "])
def test_keywords_count_four_characters_without_case(word, capfd):
    kolvex.kolini()
    kolvex.nancrv(word)
    assert warnings_of(capfd) == []


@pytest.mark.parametrize("word, shown", [("", ""), ("O", "O"), ("OF", "OF"), ("N0", "N0"), ("x" * 300, "x" * 300)])
def test_bad_keywords_name_the_word_as_given(word, shown, capfd):
    kolvex.kolini()
    kolvex.nancrv(word)
    line = " <<<< Warning 2: Incorrect parameter in nancrv!   (" + shown + ")"
    assert warnings_of(capfd) == [line[:132].rstrip("\n")]


def test_a_short_word_is_padded_with_blanks(capfd):
    # "ON" and "ON  " are the same keyword; "O" is not a keyword of the list.
    kolvex.kolini()
    kolvex.nancrv("ON")
    kolvex.nancrv("O")
    assert warnings_of(capfd) == [" <<<< Warning 2: Incorrect parameter in nancrv!   (O)"]


# ---- units and the page -----------------------------------------------------------


@pytest.mark.parametrize("unit, page", [("CM", (2970, 2100)), ("inch", (1170, 827)),
                                        ("POINTS", (8417, 5951)), ("twip", (16833, 11901))])
def test_units_divide_the_page(unit, page):
    kolvex.units(unit)
    kolvex.kolini()
    assert kolvex.getpag() == page


def test_units_stay_for_the_next_session_and_refuse_bad_words(capfd):
    kolvex.units("INCH")
    kolvex.units("MM")
    assert warnings_of(capfd) == [" <<<< Warning 2: Incorrect parameter in units!   (MM)"]
    kolvex.kolini()
    kolvex.kolfin()
    kolvex.kolini()
    assert kolvex.getpag() == (1170, 827)


@pytest.mark.parametrize("name, size", [("DA4L", (2970, 2100)), ("da4p", (2100, 2970)), ("DA0L", (11890, 8410)),
                                        ("HP2P", (3360, 5340)), ("USAL", (2790, 2160)),
                                        ("usel", (11180, 8640)), ("KY4Landscape", (2870, 2000))])
def test_page_formats(name, size):
    kolvex.setpag(name)
    kolvex.kolini()
    assert kolvex.getpag() == size


@pytest.mark.parametrize("bad", ["DA4X", "DA5L", "", "A4"])
def test_unknown_page_format_keeps_the_page(bad, capfd):
    kolvex.setpag("DA3L")
    kolvex.setpag(bad)
    assert warnings_of(capfd) == [f" <<<< Warning 2: Incorrect parameter in setpag!   ({bad})"]
    kolvex.kolini()
    assert kolvex.getpag() == (4200, 2970)


def test_page_of_plot_coordinates_follows_the_unit(capfd):
    kolvex.page(3000, 2100)
    kolvex.kolini()
    assert kolvex.getpag() == (3000, 2100)
    kolvex.kolfin()
    kolvex.units("INCH")  # page keeps its size in 1/100 cm
    kolvex.kolini()
    assert kolvex.getpag() == (round(2999 / 2.54) + 1, round(2099 / 2.54) + 1)
    kolvex.kolfin()
    assert "Pageformat: PAGE" in capfd.readouterr().out


@pytest.mark.parametrize("nx, ny", [(0, 100), (100, 0), (-5, 100), (-2**31, -2**31)])
def test_page_below_1_keeps_the_page(nx, ny, capfd):
    kolvex.page(nx, ny)
    assert warnings_of(capfd) == [f" <<<< Warning 2: Incorrect parameter in page!   ( {min(nx, ny)})"]
    kolvex.kolini()
    assert kolvex.getpag() == (2970, 2100)


def test_the_smallest_and_a_huge_page_open_a_session():
    kolvex.page(1, 1)
    kolvex.kolini()
    kolvex.pagera()
    assert kolvex.getpag() == (1, 1)
    kolvex.kolfin()
    kolvex.page(2**31 - 1, 2**31 - 1)
    kolvex.kolini()
    kolvex.pagera()
    assert kolvex.getpag() == (2**31 - 1, 2**31 - 1)
    kolvex.kolfin()
    assert os.path.getsize("kolvex_1.met") > 0


def test_page_origin_at_the_bottom_is_a_session_setting(capfd):
    kolvex.pagorg("BOTT")
    assert warnings_of(capfd) == [" <<<< Warning 3: Incorrect level in pagorg!   ( 0)"]
    kolvex.kolini()
    kolvex.pagorg("bottom")
    kolvex.pagorg("LEFT")
    assert warnings_of(capfd) == [" <<<< Warning 2: Incorrect parameter in pagorg!   (LEFT)"]


def test_upstr_and_the_pure_functions_need_no_session(capfd):
    assert kolvex.upstr("abc") is None
    assert kolvex.getver() == 11.5
    assert kolvex.getdsp() in ("NONE", "XWIN")
    assert warnings_of(capfd) == []


# ---- threads ----------------------------------------------------------------------

THREADED_SESSIONS = """
    import threading, kolvex
    kolvex.thrini(2)
    barrier = threading.Barrier(2)
    def session(name, n):
        kolvex.setfil(name)
        kolvex.page(1000 + n, 800 + n)
        kolvex.kolini()
        barrier.wait()
        for _ in range(200):
            kolvex.pagera()
        kolvex.kolfin()
    threads = [threading.Thread(target=session, args=(f"t{n}.met", n)) for n in range(2)]
    for t in threads: t.start()
    for t in threads: t.join()
"""


def test_two_threads_write_two_sessions_at_once(tmp_path):
    r = run_python(THREADED_SESSIONS)
    assert r.returncode == 0, r.stderr
    for n in range(2):
        text = open(f"t{n}.met").read()
        lines = text.rstrip("\n").split("\n")
        # Each file has its own page in the header and is complete.
        assert lines[0] == f"{(999 + n) / 100:10.1f}{(799 + n) / 100:10.1f}"
        assert lines[-1].endswith(" 9.0000000")
        assert all(len(line) <= 80 and len(line) % 10 == 0 for line in lines[1:])
    # The two banners do not mix: each is a block of seven lines.
    out = r.stdout.split("\n")
    starts = [i for i, line in enumerate(out) if "END OF KOLVEX" in line]
    assert len(starts) == 2
    for i in starts:
        assert out[i - 1] == " " + "<" * 66
        assert out[i + 1].startswith(" <<  Date    : ")
        assert out[i + 2] == " <<  Vectors : 800         Warnings: 0         Fileformat: PLOG  <<"
        assert out[i + 3].startswith(" <<  Metafile: t")
        assert out[i + 4] == " " + "<" * 66
    assert sorted(out[i + 3].split()[2] for i in starts) == ["t0.met", "t1.met"]


def test_a_thread_beyond_the_table_ends_the_process():
    r = run_python("""
        import threading, kolvex
        kolvex.thrini(1)
        kolvex.getver()  # needs no block
        kolvex.metafl("PLOG")  # the main thread takes the only slot
        t = threading.Thread(target=kolvex.metafl, args=("PLOG",))
        t.start(); t.join()
        print("not reached")
    """)
    assert r.returncode == 1
    assert r.stdout == ">>>> Too many threads!\n"


def test_thrini_after_a_call_and_twice():
    r = run_python("""
        import kolvex
        kolvex.thrini(0)
        kolvex.metafl("PLOG")
        kolvex.thrini(2)
        kolvex.thrfin()
    """)
    assert r.returncode == 0
    assert r.stdout == (">>>> Invalid parameter in thrini!\n"
                        ">>>> A KOLVEX routine is called before thrini!\n"
                        ">>>> thrini is not called before!\n")
    r = run_python("""
        import kolvex
        kolvex.thrini(2)
        kolvex.thrini(2)
        kolvex.kolini(); kolvex.unit(0); kolvex.kolfin()
        kolvex.thrfin()
        kolvex.thrfin()
    """)
    assert r.returncode == 0
    assert r.stdout == ">>>> thrini is already called before!\n>>>> thrini is not called before!\n"


def test_delglb_inside_a_session_does_nothing(capfd):
    kolvex.kolini()
    kolvex.delglb()
    assert kolvex.getlev() == 1
    kolvex.kolfin()
    assert capfd.readouterr().out.count("END OF KOLVEX") == 1
    kolvex.delglb()
    kolvex.delglb()  # no block: nothing to free
    assert kolvex.getlev() == 0


def test_getdsp_names_a_display_only_where_a_screen_session_could_open(monkeypatch, capfd):
    # A display is configured; whether a screen session opens on it is the
    # build's answer, and getdsp must give the same one.
    monkeypatch.setenv("DISPLAY", ":0")
    kolvex.metafl("XWIN")
    kolvex.kolini()
    opened = kolvex.getlev() == 1
    if opened:
        kolvex.kolfin()
    unavailable = "not available in this build" in capfd.readouterr().out
    assert (kolvex.getdsp() == "NONE") == unavailable
