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


@pytest.mark.parametrize("line, caught", [
    ('#include "devices/device.h"', True), ('#include "core/text.h"', False)])
def test_the_checks_catch_what_they_look_for(tmp_path, monkeypatch, line, caught):
    core = tmp_path / "core"
    core.mkdir()
    (core / "x.cpp").write_text(line + "\nint f(int dev) { return dev == 501; }\n")
    monkeypatch.setattr(__import__(__name__), "SRC", str(tmp_path))
    assert bool(upward_includes()) == caught
    assert device_numbers() == ["core/x.cpp: dev == 501"]
