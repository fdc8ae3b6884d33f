"""The shape of the source tree: layers that point one way, and device codes
that only the registry of families knows."""
import os
import re

import pytest

from conftest import ROOT

SRC = os.path.join(ROOT, "src")
# From the bottom up; a directory includes only those at or below it.
LAYERS = ["platform", "core", "colour", "raster", "devices", "text", "axes", "plots", "fields", "space",
          "maps", "imageio", "widgets", "utilities", "binding"]
INCLUDE = re.compile(r'^\s*#\s*include\s+"([a-z]+)/([^"]+)"', re.M)


def sources():
    for d, _, files in os.walk(SRC):
        for f in files:
            if f.endswith((".cpp", ".h")):
                path = os.path.join(d, f)
                with open(path, encoding="utf-8") as fh:
                    yield os.path.relpath(path, SRC), fh.read()


def upward_includes():
    bad = []
    for rel, text in sources():
        layer = rel.split(os.sep)[0]
        if layer not in LAYERS:
            continue
        for target, header in INCLUDE.findall(text):
            if target not in LAYERS or LAYERS.index(target) <= LAYERS.index(layer):
                continue
            # The block is composed of every subsystem's state record: that
            # header alone names the records of the layers above.
            if rel == os.path.join("core", "glbblk.h") and header.endswith("_state.h"):
                continue
            bad.append(f"{rel} includes {target}/{header}")
    return bad


def test_no_layer_includes_one_above_it():
    assert upward_includes() == []


# A device code compared with, assigned to or computed from a number.
CODE = re.compile(r"\b(devcod|dev)\b\s*(==|!=|<=|>=|<|>|=|-|\+)\s*\d{2,3}\b|\b\d{2,3}\s*(==|!=|<=|>=|<|>)\s*(devcod|dev)\b")


def device_numbers():
    registry = os.path.join("devices", "registry.cpp")
    return [f"{rel}: {m.group(0)}" for rel, text in sources() if rel != registry for m in CODE.finditer(text)]


def test_device_codes_are_numbers_only_in_the_registry():
    assert device_numbers() == []


def members(text, struct):
    """Names of the members of a plain struct, function pointers included."""
    body = re.search(r"struct\s+%s\s*\{(.*?)\n\};" % struct, text, re.S).group(1)
    names = set()
    for decl in re.sub(r"//[^\n]*", "", body).split(";"):
        hook = re.search(r"\(\s*\*\s*(\w+)\s*\)", decl)
        if hook:
            names.add(hook.group(1))
            continue
        words = re.sub(r"\[[^\]]*\]|=[^,]*", "", decl).split(",")
        if words[0].split():
            names.update(w.split()[-1].lstrip("*&") for w in words if w.split())
    return names


def read(rel):
    with open(os.path.join(SRC, rel), encoding="utf-8") as fh:
        return fh.read()


def foreign_fields():
    """Fields of the device layer and of the diagnostics that belong to the
    axis systems, the 3-D space or the maps."""
    owned = set()
    for rel, text in sources():
        if rel.split(os.sep)[0] in ("axes", "space", "maps") and rel.endswith("_state.h"):
            for struct in re.findall(r"^struct\s+(\w+)\s*\{", text, re.M):
                owned |= members(text, struct)
    dev = members(read(os.path.join("devices", "device_state.h")), "DeviceState")
    diag = members(read(os.path.join("core", "diag_state.h")), "DiagState")
    return sorted((dev | diag) & owned) + sorted(n for n in dev if n.startswith("map"))


def test_layer_and_diagnostics_hold_no_field_of_a_higher_subsystem():
    assert foreign_fields() == []


def test_the_field_check_catches_a_stray_field(monkeypatch):
    for rel, struct, field in [(os.path.join("devices", "device_state.h"), "DeviceState", "int grace;"),
                               (os.path.join("core", "diag_state.h"), "DiagState", "int chkaxis;"),
                               (os.path.join("devices", "device_state.h"), "DeviceState", "int mapprj;")]:
        text = read(rel).replace("struct %s {" % struct, "struct %s {\n    %s" % (struct, field))
        monkeypatch.setattr(__import__(__name__), "read", lambda r, t=text, rel=rel: t if r == rel
                            else open(os.path.join(SRC, r), encoding="utf-8").read())
        assert foreign_fields() == [field[4:-1]]


@pytest.mark.parametrize("line, caught", [
    ('#include "devices/device.h"', True), ('#include "core/text.h"', False)])
def test_the_checks_catch_what_they_look_for(tmp_path, monkeypatch, line, caught):
    core = tmp_path / "core"
    core.mkdir()
    (core / "x.cpp").write_text(line + "\nint f(int dev) { return dev == 501; }\n")
    monkeypatch.setattr(__import__(__name__), "SRC", str(tmp_path))
    assert bool(upward_includes()) == caught
    assert device_numbers() == ["core/x.cpp: dev == 501"]
