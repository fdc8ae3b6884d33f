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
            bad.append(f"{rel} includes {target}/{header}")
    return bad


def test_no_layer_includes_one_above_it():
    assert upward_includes() == []


QUOTED = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)


def core_headers_reaching_out():
    """Headers of the core that include a header of this tree outside the
    core: every user of the core would see that header too."""
    return [f"{rel} includes {inc}" for rel, text in sources()
            if rel.startswith("core" + os.sep) and rel.endswith(".h")
            for inc in QUOTED.findall(text) if not inc.startswith("core/")]


def test_core_headers_include_only_the_core():
    assert core_headers_reaching_out() == []


# An object that a source uses by declaring it, and one that it defines.
EXTERN_USE = re.compile(r"^\s*extern\s+(?:const\s+)?\w+\s+(?:\*\s*)?(\w+)\s*;", re.M)
EXTERN_DEF = re.compile(r"^\s*extern\s+(?:const\s+)?\w+\s+(?:\*\s*)?(\w+)\s*=", re.M)


def upward_externs():
    """Objects that a layer names by an extern declaration although a
    layer above it defines them: a dependency that no include shows."""
    home = {}
    texts = list(sources())
    for rel, text in texts:
        for name in EXTERN_DEF.findall(text):
            home[name] = rel.split(os.sep)[0]
    bad = []
    for rel, text in texts:
        layer = rel.split(os.sep)[0]
        for name in EXTERN_USE.findall(text):
            above = home.get(name)
            if layer in LAYERS and above in LAYERS and LAYERS.index(above) > LAYERS.index(layer):
                bad.append(f"{rel} names {name} of {above}")
    return bad


def test_no_layer_names_an_object_of_one_above_it():
    assert upward_externs() == []


# A driver operation called: only the device layer may, so that its fallbacks apply.
DRIVER_CALL = re.compile(r"\bdrv\s*->\s*[a-z_]+\s*\(")


def driver_calls_outside_the_layer():
    return [f"{rel}: {m.group(0)}" for rel, text in sources() if rel.split(os.sep)[0] != "devices"
            for m in DRIVER_CALL.finditer(text)]


def test_only_the_device_layer_calls_drivers():
    assert driver_calls_outside_the_layer() == []


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
    (core / "x.h").write_text(line + "\n")
    assert bool(core_headers_reaching_out()) == caught
    assert device_numbers() == ["core/x.cpp: dev == 501"]
    (core / "d.cpp").write_text("void f(B *b) { b->dev.drv->marker(b, 1, 0, 0, 1); }\n")
    assert driver_calls_outside_the_layer() == ["core/d.cpp: drv->marker("]
    (core / "list.cpp").write_text("extern const Subsystem kxsub_axes;\n")
    (tmp_path / "axes").mkdir()
    (tmp_path / "axes" / "s.cpp").write_text("extern const Subsystem kxsub_axes = {};\n")
    assert upward_externs() == ["core/list.cpp names kxsub_axes of axes"]
