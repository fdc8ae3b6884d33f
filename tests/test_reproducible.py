"""Identical programs give identical files: with SOURCE_DATE_EPOCH set, the
date that a format writes comes from it (as UTC), so two runs of one program
give the same bytes in every format."""
import os
import subprocess
import sys
import textwrap

import pytest

import kolvex

PROGRAM = """
    import kolvex
    kolvex.setfil("out")
    kolvex.metafl("{device}")
    kolvex.kolini()
    kolvex.unit(0)
    kolvex.linwid(5)
    kolvex.pagera()
    kolvex.kolfin()
    print(kolvex.getfil())
"""

# Every format that this build writes through kolini (a format whose driver
# comes later joins this list with it).
DEVICES = ["PLOG", "SVG", "IPE", "JAVA", "PNG", "GIF", "TIFF", "BMP", "PPM", "IMAG", "POST", "PSCL", "PS",
           "EPS", "PDF"]


def run(tmp_path, device, epoch, sub):
    d = tmp_path / sub
    d.mkdir()
    env = dict(os.environ, SOURCE_DATE_EPOCH=epoch)
    r = subprocess.run([sys.executable, "-c", textwrap.dedent(PROGRAM.format(device=device))], cwd=d, env=env,
                       capture_output=True, text=True, timeout=60)
    assert r.returncode == 0, r.stderr
    files = sorted(os.listdir(d))
    return {name: (d / name).read_bytes() for name in files}


@pytest.mark.parametrize("device", DEVICES)
def test_two_runs_give_the_same_bytes(tmp_path, device):
    first = run(tmp_path, device, "1700000000", "a")
    assert first, f"{device} wrote no file"
    assert run(tmp_path, device, "1700000000", "b") == first


@pytest.mark.parametrize("device,date", [("SVG", b"Date   : 14.11.2023 22:13:20"),
                                         ("JAVA", b"14.11.2023")])
def test_the_date_is_the_epoch_in_utc(tmp_path, device, date):
    files = run(tmp_path, device, "1700000000", "a")
    (data,) = files.values()
    assert date in data
