"""A session from metafl to kolfin, its page, its file and its banner."""
import os
import re

import pytest

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
    assert sorted(f for f in os.listdir(".") if f.endswith(".met")) == ["kolvex.met", "kolvex_1.met", "kolvex_2.met"]


def warnings_of(out):
    return [line for line in out.split("\n") if "<<<< Warning" in line]


def metafile(name="kolvex.met"):
    """Header and the fields of a native metafile."""
    text = open(name).read()
    head, _, rest = text.partition("\n")
    body = rest.replace("\n", "")
    return head, [body[i:i + 10] for i in range(0, len(body), 10)]


# ---- devices and pages -------------------------------------------------------------


def test_metafl_keeps_its_choice_on_a_bad_word(capfd):
    kolvex.metafl("plog")
    kolvex.metafl("")
    kolvex.metafl("POSTSCRIPT-ISH")  # four characters count: POST
    kolvex.metafl("PLO")
    kolvex.metafl("PLOG")
    assert warnings_of(capfd.readouterr().out) == [" <<<< Warning 2: Incorrect parameter in metafl!   ()",
                                                   " <<<< Warning 2: Incorrect parameter in metafl!   (PLO)"]
    kolvex.kolini()
    assert kolvex.getmfl() == "PLOG"


def test_screen_device_without_window_system_fails_like_a_file(capfd):
    kolvex.metafl("XWIN")
    kolvex.kolini()
    assert kolvex.getlev() == 0
    assert len(warnings_of(capfd.readouterr().out)) == 1
    kolvex.metafl("PLOG")
    kolvex.kolini()
    assert kolvex.getlev() == 1


@pytest.mark.parametrize("mode, head", [("LAND", "      29.7      21.0"), ("COMI", "      29.7      21.0"),
                                        ("PORT", "      21.0      29.7"), ("movie", "      21.0      29.7"),
                                        ("NONE", "      29.7      21.0")])
def test_page_mode_turns_the_metafile(mode, head):
    kolvex.pagmod(mode)
    kolvex.kolini()
    kolvex.pagera()
    kolvex.kolfin()
    h, fields = metafile()
    assert h == head
    # The border starts at (0, 0) and goes down to (0, nyp) on the page: y
    # points up in the file, and a turned page exchanges the coordinates.
    start = fields.index(" 3.0000000")
    first = (float(fields[start - 2]), float(fields[start - 1]))
    second = (float(fields[start + 1]), float(fields[start + 2]))
    y = 2099 / 2969
    if mode.upper()[:4] in ("PORT", "MOVI"):
        assert (first, second) == ((0, 0), (pytest.approx(y, abs=1e-7), 0))
    else:
        assert (first, second) == ((0, pytest.approx(y, abs=1e-7)), (0, 0))


def test_scale_factor_and_units_in_the_metafile_header(capfd):
    kolvex.sclfac(2)
    kolvex.kolini()
    kolvex.kolfin()
    assert metafile("kolvex.met")[0] == "      59.4      42.0"
    kolvex.sclfac(0)
    kolvex.sclfac(-1)
    kolvex.sclfac(float("nan"))
    kolvex.sclfac(float("inf"))
    assert warnings_of(capfd.readouterr().out) == [" <<<< Warning 2: Incorrect parameter in sclfac!   ( 0)",
                                                   " <<<< Warning 2: Incorrect parameter in sclfac!   ( -1)",
                                                   " <<<< Warning 2: Incorrect parameter in sclfac!   ( 0)",
                                                   " <<<< Warning 2: Incorrect parameter in sclfac!   ( 0)"]
    kolvex.units("inch")
    kolvex.kolini()
    kolvex.kolfin()
    assert metafile("kolvex_1.met")[0] == f"{1169 * 2.54 * 2 / 100:10.1f}{826 * 2.54 * 2 / 100:10.1f}"


# Level-0 options: a good call is silent, a bad one names its word or value.
OPTIONS = [
    (lambda: kolvex.scrmod("NORE"), lambda: kolvex.scrmod("BLACK"), "scrmod", "(BLACK)"),
    (lambda: kolvex.sclmod("full"), lambda: kolvex.sclmod("HALF"), "sclmod", "(HALF)"),
    (lambda: kolvex.hwscal(0.5), lambda: kolvex.hwscal(-0.5), "hwscal", "( -1)"),
    (lambda: kolvex.hwpage(2000, 1000), lambda: kolvex.hwpage(2000, -3), "hwpage", "( -3)"),
    (lambda: kolvex.hworig(-10, 5), None, "hworig", None),
    (lambda: kolvex.winapp("CONSOLE"), lambda: kolvex.winapp("TERM"), "winapp", "(TERM)"),
    (lambda: kolvex.wintyp("POPUP"), lambda: kolvex.wintyp("MODAL"), "wintyp", "(MODAL)"),
    (lambda: kolvex.x11mod("PIXMAP"), lambda: kolvex.x11mod("DISK"), "x11mod", "(DISK)"),
    (lambda: kolvex.clrmod("FULL"), lambda: kolvex.clrmod("HALF"), "clrmod", "(HALF)"),
    (lambda: kolvex.imgfmt("rgb"), lambda: kolvex.imgfmt("CMYK"), "imgfmt", "(CMYK)"),
    (lambda: kolvex.bmpmod(300, "INCH", "RESOLUTION"), lambda: kolvex.bmpmod(0, "METER", "RESO"), "bmpmod", "( 0)"),
    (lambda: kolvex.bmpmod(300, "METE", "RESO"), lambda: kolvex.bmpmod(300, "FEET", "RESO"), "bmpmod", "(FEET)"),
    (lambda: kolvex.tifmod(100, "CM", "RESO"), lambda: kolvex.tifmod(100, "CM", "SIZE"), "tifmod", "(SIZE)"),
    (lambda: kolvex.pngmod("ON", "TRANSPARENCY"), lambda: kolvex.pngmod("ON", "ALPHA"), "pngmod", "(ALPHA)"),
    (lambda: kolvex.gifmod("OFF", "TRAN"), lambda: kolvex.gifmod("MAYBE", "TRAN"), "gifmod", "(MAYBE)"),
    (lambda: kolvex.pdfmod("OFF", "COMPRESSION"), lambda: kolvex.pdfmod("ON", "FAST"), "pdfmod", "(FAST)"),
    (lambda: kolvex.pdfmod("ON", "BUFFER"), lambda: kolvex.pdfmod("", "BUFF"), "pdfmod", "()"),
    (lambda: kolvex.wmfmod("PLACEABLE", "FORMAT"), lambda: kolvex.wmfmod("STAN", "FORX"), "wmfmod", "(FORX)"),
    (lambda: kolvex.hpgmog("ARISTO", "PLOTTER"), lambda: kolvex.hpgmog("ROLAND", "PLOT"), "hpgmod", "(ROLAND)"),
    (lambda: kolvex.cgmver(4), lambda: kolvex.cgmver(3), "cgmver", "( 3)"),
    (lambda: kolvex.psmeta("%%Title: x", "INFO"), lambda: kolvex.psmeta("x", "TEXT"), "psmeta", "(TEXT)"),
    (lambda: kolvex.window(0, 0, 400, 300), lambda: kolvex.window(10, 10, 0, 300), "window", "( 0)"),
    (lambda: kolvex.window(5, 5, 400, 300), lambda: kolvex.window(-4, 10, 400, -9), "window", "( -9)"),
    (lambda: kolvex.winsiz(400, 300), lambda: kolvex.winsiz(-1, -2), "winsiz", "( -2)"),
    (lambda: kolvex.winjus("CENTER"), lambda: kolvex.winjus("MIDDLE"), "winjus", "(MIDDLE)"),
    (lambda: kolvex.filmod("VERSION"), lambda: kolvex.filmod("OVERWRITE"), "filmod", "(OVERWRITE)"),
    (lambda: kolvex.filopt("LONG", "NUMBER"), lambda: kolvex.filopt("LONG", "NAME"), "filopt", "(NAME)"),
    (lambda: kolvex.filopt("6", "DIGITS"), lambda: kolvex.filopt("7", "DIGI"), "filopt", "(7)"),
    (lambda: kolvex.filopt("VIEW", "SCALE"), lambda: kolvex.filopt("FIT", "SCAL"), "filopt", "(FIT)"),
]


@pytest.mark.parametrize("good, bad, name, param", OPTIONS)
def test_level_0_options(good, bad, name, param, capfd):
    good()
    assert warnings_of(capfd.readouterr().out) == []
    if bad:
        bad()
        assert warnings_of(capfd.readouterr().out) == [f" <<<< Warning 2: Incorrect parameter in {name}!   {param}"]
    kolvex.kolini()
    if name not in ("filmod", "filopt", "window", "winsiz", "winjus"):
        good()  # inside the session a level-0 option is refused
        assert warnings_of(capfd.readouterr().out) == [f" <<<< Warning 3: Incorrect level in {name}!   ( 1)"]


def test_window_application_sends_warnings_to_the_error_file(capfd):
    kolvex.winapp("WIND")
    kolvex.metafl("XYZ")
    assert warnings_of(capfd.readouterr().out) == []
    assert warnings_of(open("kolvex.err").read()) == [" <<<< Warning 2: Incorrect parameter in metafl!   (XYZ)"]


def test_session_settings_of_the_window_take_the_soft_guard(capfd):
    kolvex.winkey("RETURN")
    kolvex.winmod("NOERASE")
    kolvex.winopt(2, "DELAY")
    kolvex.bufmod("ON", "SEND")
    assert len(warnings_of(capfd.readouterr().out)) == 4  # the soft guard warns at level 0
    kolvex.kolini()
    kolvex.winkey("SPACE")
    kolvex.winmod("HIDE")
    kolvex.winopt(-1, "MDELAY")
    kolvex.winopt(1, "SECONDS")
    kolvex.bufmod("ON", "FLUSH")
    assert warnings_of(capfd.readouterr().out) == [
        " <<<< Warning 2: Incorrect parameter in winkey!   (SPACE)",
        " <<<< Warning 2: Incorrect parameter in winmod!   (HIDE)",
        " <<<< Warning 2: Incorrect parameter in winopt!   ( -1)",
        " <<<< Warning 2: Incorrect parameter in winopt!   (SECONDS)",
        " <<<< Warning 2: Incorrect parameter in bufmod!   (FLUSH)",
    ]


def test_session_routines_on_the_metafile(capfd):
    kolvex.sendbf()  # any level: nothing pending at level 0
    kolvex.winupd()
    kolvex.kolini()
    kolvex.pagera()
    kolvex.newpag()  # the native metafile has no pages: nothing is written
    kolvex.erase()
    kolvex.sendbf()
    kolvex.pagera()
    kolvex.kolfin()
    assert warnings_of(capfd.readouterr().out) == []
    _, fields = metafile()
    assert fields.count(" 3.0000000") == 2 and fields[-1] == " 9.0000000"


# ---- file names -----------------------------------------------------------------------


def session(name=None):
    if name:
        kolvex.setfil(name)
    kolvex.kolini()
    kolvex.unit(0)
    kolvex.kolfin()


def mets():
    return sorted(f for f in os.listdir(".") if f.endswith(".met"))


def test_versions_reach_ten_with_a_shorter_base():
    for name in ["kolvex.met"] + [f"kolvex_{i}.met" for i in range(1, 10)]:
        open(name, "w").close()
    session()
    assert "kolve_10.met" in mets()
    session()
    assert "kolve_11.met" in mets()


def test_long_numbers_without_separator():
    open("kolvex.met", "w").close()
    kolvex.filopt("NONE", "SEPA")
    kolvex.filopt("LONG", "NUMB")
    session()
    assert mets() == ["kolv0001.met", "kolvex.met"]
    kolvex.filopt("3", "DIGI")
    kolvex.filopt("HYPH", "SEPA")
    session()
    assert "kolv-001.met" in mets()


def test_version_mode_keeps_the_whole_base_and_directories(tmp_path):
    os.mkdir("sub")
    open("sub/longer-name.met", "w").close()
    session("sub/longer-name.met")
    assert sorted(os.listdir("sub")) == ["longer-name.met", "longer_1.met"]
    kolvex.filmod("VERS")
    session("sub/longer-name.met")
    assert "longer-name_1.met" in os.listdir("sub")


def test_a_name_without_extension_and_the_saved_name():
    session("plotfile")
    session()  # the setfil name is taken again and versioned
    assert sorted(os.listdir(".")) == ["plotfi_1", "plotfile"]


def test_delete_mode_replaces_the_file():
    with open("kolvex.met", "w") as f:
        f.write("old contents\n")
    kolvex.filmod("DELETE")
    session()
    assert mets() == ["kolvex.met"]
    assert open("kolvex.met").read().startswith("      29.7")


DIES_IN_SESSION = """
import os, kolvex
kolvex.metafl("{device}")
kolvex.setfil("{name}")
kolvex.filmod("{mode}")
kolvex.kolini()
kolvex.unit(0)
kolvex.pagera()
os._exit(3)  # the program dies before kolfin
"""


@pytest.mark.parametrize("device,name", [("PLOG", "plot.met"), ("SVG", "plot.svg"), ("PNG", "plot.png")])
def test_a_program_that_dies_in_a_session_leaves_the_old_file(device, name):
    import subprocess
    import sys
    old = b"the user's previous plot\n"
    with open(name, "wb") as f:
        f.write(old)
    code = DIES_IN_SESSION.format(device=device, name=name, mode="DELE")
    assert subprocess.run([sys.executable, "-c", code], timeout=60).returncode == 3
    assert open(name, "rb").read() == old
    # With a new name only an empty file reserves it: nothing that looks whole.
    code = DIES_IN_SESSION.format(device=device, name="new_" + name, mode="COUNT")
    assert subprocess.run([sys.executable, "-c", code], timeout=60).returncode == 3
    assert os.path.getsize("new_" + name) == 0
    # A session that ends replaces the old file and leaves nothing else.
    for f in os.listdir("."):
        if f.endswith(".part"):
            os.remove(f)
    kolvex.metafl(device)
    kolvex.setfil(name)
    kolvex.filmod("DELE")
    kolvex.kolini()
    kolvex.unit(0)
    kolvex.pagera()
    kolvex.kolfin()
    assert open(name, "rb").read() != old
    assert sorted(os.listdir(".")) == sorted([name, "new_" + name])


def test_delete_mode_that_cannot_delete(tmp_path, capfd):
    os.makedirs("kolvex.met/inside")  # a directory in the way
    kolvex.filmod("DELE")
    kolvex.kolini()
    assert kolvex.getlev() == 0
    assert warnings_of(capfd.readouterr().out) == [" <<<< Warning 168: Plotfile cannot be deleted in kolini!"]


def test_too_many_file_versions(capfd):
    kolvex.filopt("2", "DIGI")
    names = ["kolvex.met"] + [f"kolvex_{i}.met" for i in range(1, 10)] + [f"kolve_{i}.met" for i in range(10, 100)]
    for name in names:
        open(name, "w").close()
    kolvex.kolini()
    assert kolvex.getlev() == 0
    assert warnings_of(capfd.readouterr().out) == [" <<<< Warning 170: Too many file versions in kolini!"]
    assert len(mets()) == 100


def test_file_that_cannot_be_created(capfd):
    kolvex.setfil("no/such/directory/plot.met")
    kolvex.kolini()
    assert kolvex.getlev() == 0
    assert warnings_of(capfd.readouterr().out) == [" <<<< Warning 36: File error in kolini!"]


@pytest.mark.parametrize("name", ["", "x" * 10000, "a\tb", "dir/"])
def test_odd_file_names_do_not_crash(name, capfd):
    kolvex.setfil(name)
    kolvex.kolini()
    if kolvex.getlev() == 1:
        assert kolvex.getfil() == name[:256]
        kolvex.kolfin()
    else:
        assert warnings_of(capfd.readouterr().out) == [" <<<< Warning 36: File error in kolini!"]


# ---- reset ----------------------------------------------------------------------------


def test_reset_of_the_clip_window_and_all(capfd):
    kolvex.kolini()
    assert kolvex.getclp() == (0, 0, 2970, 2100)
    kolvex.clpwin(100, 120, 10, 20)
    assert kolvex.getclp() == (100, 120, 10, 20)
    kolvex.pagera()  # the border lies outside the window
    kolvex.reset("clpwin")
    assert kolvex.getclp() == (0, 0, 2970, 2100)
    kolvex.pagera()
    kolvex.clpwin(100, 100, 10, 10)
    kolvex.reset("ALL")
    kolvex.pagera()
    kolvex.kolfin()
    assert "Vectors : 8 " in capfd.readouterr().out


def test_reset_of_unit_and_nochek(capfd):
    kolvex.kolini()
    kolvex.unit(0)
    kolvex.reset("UNIT")
    kolvex.linwid(0)
    kolvex.nochek()
    kolvex.reset("nochek")
    assert len(warnings_of(capfd.readouterr().out)) == 1


def test_reset_takes_only_names_that_a_subsystem_answers(capfd):
    kolvex.kolini()
    for name in ("WINSIZ", "PSMETA", "colr", "SURVIS"):
        kolvex.reset(name)
    # No subsystem of this build resets the surfaces yet.
    assert warnings_of(capfd.readouterr().out) == [" <<<< Warning 2: Incorrect parameter in reset!   (SURVIS)"]


def test_reset_answers_the_settings_of_included_files_views_and_z_scale(capfd):
    kolvex.kolini()
    for name in ("filbox", "FILCLR", "zscale", "view3d", "flab3d"):
        kolvex.reset(name)
    assert warnings_of(capfd.readouterr().out) == []


@pytest.mark.parametrize("word", ["", "AL", "ALLE", "TICX", "RESET", " ALL"])
def test_reset_refuses_unknown_words(word, capfd):
    kolvex.kolini()
    kolvex.reset(word)
    assert warnings_of(capfd.readouterr().out) == [f" <<<< Warning 2: Incorrect parameter in reset!   ({word})"]


def test_reset_before_the_session_warns_and_still_works(capfd):
    kolvex.reset("ALL")
    kolvex.reset("XYZ")
    assert warnings_of(capfd.readouterr().out) == [" <<<< Warning 3: Incorrect level in reset!   ( 0)",
                                                   " <<<< Warning 3: Incorrect level in reset!   ( 0)",
                                                   " <<<< Warning 2: Incorrect parameter in reset!   (XYZ)"]


# ---- symfil ---------------------------------------------------------------------------


@pytest.fixture
def fake_driver(tmp_path, monkeypatch):
    """A koldrv on the PATH that records its arguments."""
    bindir = tmp_path / "bin"
    bindir.mkdir()
    for prog in ("koldrv", "kolhpj", "koldot"):
        script = bindir / prog
        script.write_text('#!/bin/sh\necho "$0" > ../args.txt\nfor a in "$@"; do echo "$a"; done >> ../args.txt\n'
                          'echo "driver output"\n')
        script.chmod(0o755)
    monkeypatch.setenv("PATH", str(bindir) + os.pathsep + os.environ["PATH"])
    os.mkdir("work")
    os.chdir("work")
    return tmp_path / "args.txt"


def test_symfil_hands_the_file_to_the_driver(fake_driver, capfd):
    kolvex.kolini()
    kolvex.pagera()
    kolvex.kolfin()
    capfd.readouterr()
    kolvex.symfil("hpgl-plotter", "keep")
    args = fake_driver.read_text().split("\n")
    assert os.path.basename(args[0]) == "koldrv"
    assert args[1:] == ["kolvex.met", "HPGL", "KEEP", "rain", "-Q", "-BS", ""]
    assert capfd.readouterr().out == ""  # the driver's output is dropped
    assert os.path.exists("kolvex.met")


def test_symfil_with_options_and_a_colour_file(fake_driver, capfd):
    kolvex.x11mod("NOSTORE")
    kolvex.setfil("p.met")
    kolvex.kolini()
    kolvex.vltfil("table.txt", "SAVE")
    kolvex.setvlt("GREY")
    kolvex.kolfin()
    kolvex.symfil("XWIN", "NODELETE")
    args = fake_driver.read_text().split("\n")
    assert args[1:] == ["p.met", "XWIN", "KEEP", "grey", "-Q", "-NB", "V=table.txt", ""]


def test_symfil_delete_status(fake_driver, capfd):
    kolvex.kolini()
    kolvex.kolfin()
    kolvex.symfil("PS", "WHATEVER")  # a bad status counts as KEEP
    assert fake_driver.read_text().split("\n")[3] == "KEEP"
    kolvex.symfil("PS", "DELETE")
    assert fake_driver.read_text().split("\n")[3] == "DELE"
    # The driver got DELE and is now responsible for the file.
    kolvex.symfil("PS", "KEEP")
    out = capfd.readouterr().out
    assert warnings_of(out) == [" <<<< Warning 2: Incorrect parameter in symfil!   (WHATEVER)",
                                " <<<< Warning 22: The metafile is deleted before in symfil!"]


def test_symfil_none_deletes_only_with_dele(capfd):
    kolvex.kolini()
    kolvex.kolfin()
    capfd.readouterr()
    kolvex.symfil("NONE", "KEEP")
    assert os.path.exists("kolvex.met")
    kolvex.symfil("none", "dele")
    assert not os.path.exists("kolvex.met")
    kolvex.symfil("NONE", "DELE")
    assert warnings_of(capfd.readouterr().out) == [" <<<< Warning 22: The metafile is deleted before in symfil!"]


def test_symfil_before_a_session_and_at_a_wrong_level(capfd):
    kolvex.symfil("NONE", "DELE")
    kolvex.metafl("PLOG")
    kolvex.symfil("NONE", "DELE")
    kolvex.kolini()
    kolvex.symfil("NONE", "DELE")
    kolvex.kolfin()
    assert warnings_of(capfd.readouterr().out) == [
        " <<<< Warning 20: No metafile in symfil!",
        " <<<< Warning 21: The routine must be called after kolfin in symfil!",
        " <<<< Warning 3: Incorrect level in symfil!   ( 1)",
    ]
    assert os.path.exists("kolvex.met")


def test_symfil_without_a_driver_fails_quietly(capfd):
    kolvex.kolini()
    kolvex.kolfin()
    capfd.readouterr()
    kolvex.symfil("HPGL" * 100, "KEEP")
    assert capfd.readouterr().out == ""
    assert os.path.exists("kolvex.met")


# ---- the installation directory --------------------------------------------------------


def test_kolenv_takes_any_text_at_any_level(capfd):
    kolvex.kolenv("/opt/kolvex")
    kolvex.kolenv("x" * 10000)
    kolvex.kolenv("none")
    kolvex.kolini()
    kolvex.kolenv("")
    assert warnings_of(capfd.readouterr().out) == []


def test_symfil_reads_no_file_name_as_a_command(fake_driver):
    """Plot and colour file names reach the driver as they stand, and run nothing."""
    name, table = "x.met;touch INJECTED;#", 't$(touch INJECTED2)".txt'
    kolvex.setfil(name)
    kolvex.kolini()
    kolvex.vltfil(table, "SAVE")
    kolvex.kolfin()
    kolvex.symfil("XWIN", "KEEP")
    assert not os.path.exists("INJECTED") and not os.path.exists("INJECTED2")
    args = fake_driver.read_text().split("\n")
    assert args[1] == name and args[-2] == "V=" + table


def test_parameter_getters_give_the_settings(capfd):
    kolvex.kolini()
    kolvex.angle(30)
    kolvex.height(50)
    kolvex.hname(44)
    kolvex.labdis(11, "XZ")
    kolvex.namdis(22, "Y")
    kolvex.marker(5)
    kolvex.hsymbl(33)
    kolvex.ticlen(40, 20)
    assert (kolvex.getang(), kolvex.gethgt(), kolvex.gethnm()) == (30, 50, 44)
    assert kolvex.getsp1()[::2] == (11, 11) and kolvex.getsp2()[1] == 22
    assert (kolvex.getsym(), kolvex.gettcl()) == ((5, 33), (40, 20))
    kolvex.color("RED")
    assert kolvex.getlit(0.0, 0.0, 0.0, 0.0, 0.0, 1.0) == kolvex.getclr()  # lights off
    kolvex.unit(0)
    kolvex.kolfin()
    assert kolvex.getang() == 0  # levels 1 to 3
    assert "Incorrect level in getang!" in capfd.readouterr().out
