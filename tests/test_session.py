"""A session from metafl to kolfin, its page, its file and its banner."""
import re

import kolvex


def run_session(device="PLOG"):
    kolvex.metafl(device)
    kolvex.kolini()
    kolvex.pagera()
    kolvex.kolfin()


def test_default_session_writes_metafile_with_banner(capfd):
    kolvex.kolini()
    assert kolvex.getlev() == 1
    assert kolvex.getmfl() == "PLOG"
    assert kolvex.getpag() == (2970, 2100)
    kolvex.pagera()
    kolvex.kolfin()
    assert kolvex.getlev() == 0
    out = capfd.readouterr().out
    lines = out.split("\n")
    assert lines[0] == ""
    assert lines[1] == " " + "<" * 66
    assert lines[2] == " <<                END OF KOLVEX / VERSION 11.5.2                <<"
    assert re.fullmatch(r" <<  Date    : \d\d\.\d\d\.\d{4}  Time    : \d\d:\d\d:\d\d  Pageformat: DA4L  <<", lines[3])
    assert lines[4] == " <<  Vectors : 4           Warnings: 0         Fileformat: PLOG  <<"
    assert lines[5] == " <<  " + "Metafile: kolvex.met".ljust(58) + "  <<"
    assert lines[6] == " " + "<" * 66
    assert out.endswith("<\n\n")
    text = open("kolvex.met").read()
    assert text.startswith("      29.7      21.0\n")
    assert text.rstrip("\n").endswith(" 9.0000000")


def test_versions_of_the_default_file():
    for _ in range(3):
        run_session()
    import os

    assert sorted(f for f in os.listdir(".") if f.endswith(".met")) == ["kolvex.met", "kolvex_1.met", "kolvex_2.met"]
