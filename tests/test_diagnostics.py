"""Warnings, their switches, the error file and the end-of-session banner."""
import os
import re

import pytest

import kolvex

RULE = " " + "<" * 66


def lines_of(text):
    return [line for line in text.split("\n") if "<<<< Warning" in line]


def banner(text):
    """The banner's lines between its two rules, or None."""
    lines = text.split("\n")
    if RULE not in lines:
        return None
    i = lines.index(RULE)
    j = lines.index(RULE, i + 1)
    return lines[i + 1:j]


def session_with_warnings(n=2):
    kolvex.kolini()
    for _ in range(n):
        kolvex.linwid(-1)
    kolvex.kolfin()


# ---- the line formats -------------------------------------------------------------


def test_the_three_line_formats(capfd):
    kolvex.page(-7, 10)  # integer parameter: a blank before the number
    kolvex.errdev("SCREEN")  # text parameter: the word as given
    open("kolvex.met", "w").close()
    kolvex.filmod("BREA")
    kolvex.kolini()  # a warning above 100 without parameter
    assert capfd.readouterr().out == (" <<<< Warning 2: Incorrect parameter in page!   ( -7)\n"
                                      " <<<< Warning 2: Incorrect parameter in errdev!   (SCREEN)\n"
                                      " <<<< Warning 169: Plotfile does exist in kolini!\n")


def test_a_long_line_is_cut_at_132_characters(capfd):
    word = "W" * 200
    kolvex.errdev(word)
    kolvex.errdev("X")
    out = capfd.readouterr().out
    first = " <<<< Warning 2: Incorrect parameter in errdev!   (" + word
    # The cut line has lost its ")\n": the next warning follows on the same line.
    assert out == first[:132] + " <<<< Warning 2: Incorrect parameter in errdev!   (X)\n"


# ---- errmod, unit ----------------------------------------------------------------


def test_warnings_off_still_counts_them(capfd):
    kolvex.kolini()
    kolvex.errmod("WARN", "OFF")
    kolvex.linwid(0)
    kolvex.lnjoin("bevel")
    kolvex.kolfin()
    out = capfd.readouterr().out
    assert lines_of(out) == []
    assert banner(out)[2].startswith(" <<  Vectors : 0           Warnings: 2  ")


def test_out_of_scaling_lines_are_not_counted_as_warnings(capfd, tmp_path):
    # The lines are not counted as warnings; they keep quiet with the
    # warnings, and the check's own switch and unit(0) stop them too.
    line = " <<<< (  2.0000e+00 /  5.0000e-01) out of axis scaling in curve!\n"
    kolvex.metafl("PLOG")
    kolvex.setfil(str(tmp_path / "o.met"))
    kolvex.kolini()
    kolvex.nograf()
    kolvex.graf(0.0, 1.0, 0.0, 1.0, 0.0, 1.0, 0.0, 1.0)
    kolvex.curve([0.5, 2.0], [0.5, 0.5], 2)
    assert capfd.readouterr().out == line
    kolvex.errmod("WARN", "OFF")
    kolvex.curve([0.5, 2.0], [0.5, 0.5], 2)
    kolvex.errmod("WARN", "ON")
    kolvex.errmod("CHEC", "OFF")
    kolvex.curve([0.5, 2.0], [0.5, 0.5], 2)
    kolvex.errmod("CHEC", "ON")
    kolvex.unit(0)
    kolvex.curve([0.5, 2.0], [0.5, 0.5], 2)
    kolvex.unit(6)
    kolvex.endgrf()
    kolvex.kolfin()
    out = capfd.readouterr().out
    assert "out of axis scaling" not in out
    assert " <<  Vectors : " in out and "Warnings: 0 " in out

def test_errmod_before_kolini_is_lost_at_kolini(capfd):
    kolvex.errmod("ALL", "OFF")  # the soft guard reports the level and stores
    kolvex.kolini()
    kolvex.linwid(0)
    kolvex.kolfin()
    out = capfd.readouterr().out
    assert lines_of(out) == [" <<<< Warning 3: Incorrect level in errmod!   ( 0)",
                             " <<<< Warning 2: Incorrect parameter in linwid!   ( 0)"]
    assert banner(out) is not None


@pytest.mark.parametrize("what, mode, warnings, has_banner", [
    ("PROT", "OFF", True, False),
    ("ALL", "OFF", False, False),
    ("all", "on", True, True),
    ("CHECK", "OFF", True, True),
    ("WARNINGS", "ON", True, True),
])
def test_errmod_switches(what, mode, warnings, has_banner, capfd):
    kolvex.kolini()
    kolvex.errmod(what, mode)
    kolvex.linwid(0)
    kolvex.kolfin()
    out = capfd.readouterr().out
    assert bool(lines_of(out)) == warnings
    assert (banner(out) is not None) == has_banner


@pytest.mark.parametrize("what, mode, bad", [("XYZ", "ON", "XYZ"), ("WARN", "FILE", "FILE"),
                                             ("PROT", "MAYBE", "MAYBE"), ("", "ON", "")])
def test_errmod_refuses_bad_words(what, mode, bad, capfd):
    kolvex.kolini()
    kolvex.errmod(what, mode)
    kolvex.kolfin()
    out = capfd.readouterr().out
    assert lines_of(out) == [f" <<<< Warning 2: Incorrect parameter in errmod!   ({bad})"]
    assert banner(out) is not None  # nothing was switched


def test_unit_0_silences_warnings_and_banner_and_unit_6_brings_them_back(capfd):
    kolvex.kolini()
    kolvex.unit(0)
    kolvex.linwid(0)
    kolvex.kolfin()
    assert capfd.readouterr().out == ""
    kolvex.kolini()
    kolvex.unit(0)
    kolvex.unit(6)
    kolvex.linwid(0)
    kolvex.kolfin()
    out = capfd.readouterr().out
    assert len(lines_of(out)) == 1
    assert "Warnings: 1 " in out


def test_nochek_and_nancrv_guards(capfd):
    kolvex.nochek()  # soft: warns at level 0
    kolvex.nancrv("ON")  # hard: refused at level 0
    kolvex.kolini()
    kolvex.nochek()
    kolvex.nancrv("on")
    kolvex.nancrv("YES")
    assert lines_of(capfd.readouterr().out) == [
        " <<<< Warning 3: Incorrect level in nochek!   ( 0)",
        " <<<< Warning 3: Incorrect level in nancrv!   ( 0)",
        " <<<< Warning 2: Incorrect parameter in nancrv!   (YES)",
    ]


# ---- the error file ----------------------------------------------------------------


def test_error_file_takes_the_warnings_and_the_banner_names_it(capfd):
    kolvex.errdev("FILE")
    session_with_warnings(2)
    out = capfd.readouterr().out
    assert lines_of(out) == []
    assert lines_of(open("kolvex.err").read()) == [" <<<< Warning 2: Incorrect parameter in linwid!   ( -1)"] * 2
    b = banner(out)
    assert b[3] == " <<  " + "Metafile: kolvex.met".ljust(58) + "  <<"
    assert b[4] == " <<  " + "Err-file: kolvex.err".ljust(58) + "  <<"


def test_error_file_versions_and_append(capfd):
    with open("kolvex.err", "w") as f:
        f.write("old\n")
    kolvex.errdev("FILE")
    session_with_warnings(1)
    assert open("kolvex.err").read() == "old\n"
    assert len(lines_of(open("kolvex_1.err").read())) == 1
    assert "Err-file: kolvex_1.err" in capfd.readouterr().out
    # The next session opens the error file anew: the next version.
    session_with_warnings(1)
    assert os.path.exists("kolvex_2.err")
    kolvex.errdev("APPE")
    session_with_warnings(2)
    text = open("kolvex.err").read()
    assert text.startswith("old\n") and len(lines_of(text)) == 2
    assert not os.path.exists("kolvex_3.err")


def test_error_file_follows_filmod_and_filopt(capfd):
    open("kolvex.err", "w").close()
    kolvex.errdev("FILE")
    kolvex.filopt("HYPH", "SEPA")
    session_with_warnings(1)
    assert os.path.exists("kolvex-1.err")
    # BREA refuses the existing name: the warnings go to the console.
    kolvex.filmod("BREA")
    kolvex.setfil("plot.met")
    session_with_warnings(1)
    assert len(lines_of(capfd.readouterr().out)) == 1


def test_error_file_of_errfil_and_the_null_device(capfd):
    kolvex.errfil("mine.log")
    kolvex.errdev("FILE")
    session_with_warnings(1)
    assert len(lines_of(open("mine.log").read())) == 1
    kolvex.errfil("/dev/null")
    session_with_warnings(3)
    out = capfd.readouterr().out
    assert lines_of(out) == []
    assert "Err-file: /dev/null" in out
    assert sorted(os.listdir(".")) == ["kolvex.met", "kolvex_1.met", "mine.log"]


def test_error_file_that_cannot_be_created_leaves_the_console(capfd):
    kolvex.errfil("no/such/dir/x.err")
    kolvex.errdev("FILE")
    session_with_warnings(1)
    out = capfd.readouterr().out
    assert len(lines_of(out)) == 1
    assert "Err-file" not in out


def test_protocol_to_file_goes_to_the_error_file(capfd):
    kolvex.errdev("FILE")
    kolvex.kolini()
    kolvex.errmod("PROT", "FILE")
    kolvex.kolfin()
    assert capfd.readouterr().out == ""
    text = open("kolvex.err").read()
    b = banner(text)
    assert b[3] == " <<  " + "Metafile: kolvex.met".ljust(58) + "  <<"
    assert len(b) == 4  # the file was not open yet when the flag was taken


def test_protocol_to_file_with_console_errors_prints_on_the_console(capfd):
    kolvex.kolini()
    kolvex.errmod("PROT", "FILE")
    kolvex.kolfin()
    assert banner(capfd.readouterr().out) is not None
    assert not os.path.exists("kolvex.err")


def test_errdev_and_errfil_are_level_0_and_hold_across_sessions(capfd):
    kolvex.errdev("FILE")
    kolvex.kolini()
    kolvex.errdev("CONS")
    kolvex.errfil("x.err")
    kolvex.kolfin()
    session_with_warnings(1)
    out = capfd.readouterr().out
    assert lines_of(out) == []
    assert len(lines_of(open("kolvex.err").read())) == 2  # the two level warnings
    assert len(lines_of(open("kolvex_1.err").read())) == 1


def test_errfil_cuts_a_long_name(capfd):
    kolvex.errfil("e" * 10000)
    kolvex.errdev("FILE")
    session_with_warnings(1)
    out = capfd.readouterr().out
    # The name is too long for the file system: the console takes the lines.
    assert len(lines_of(out)) == 1


# ---- the banner ---------------------------------------------------------------------


def test_banner_of_a_session(capfd):
    kolvex.setpag("USAP")
    kolvex.setfil("a-plot-with-a-rather-long-name-of-more-than-forty-eight-chars.met")
    kolvex.kolini()
    kolvex.pagera()
    kolvex.linwid(0)
    kolvex.kolfin()
    out = capfd.readouterr().out
    text = out[out.index("\n" + RULE):]
    lines = text.split("\n")
    assert lines[0] == "" and lines[1] == RULE
    assert lines[2] == " <<                END OF KOLVEX / VERSION 11.5.2                <<"
    assert re.fullmatch(r" <<  Date    : (\d\d)\.(\d\d)\.(\d{4})  Time    : \d\d:\d\d:\d\d  Pageformat: USAP  <<",
                        lines[3])
    assert lines[4] == " <<  Vectors : 4           Warnings: 1         Fileformat: PLOG  <<"
    name = "a-plot-with-a-rather-long-name-of-more-than-forty-eight-chars.met"
    assert lines[5] == " <<  Metafile: " + name[:48] + "  <<"
    assert lines[6] == RULE
    assert lines[7:] == ["", ""]
    assert all(len(line) == 67 for line in lines[1:7])
