"""The routine table against the list of the module's 805 methods, the
module's own face (its attributes and its type stub), and a self-test of the
generator: every method shape of the list can be written as a table line or
is one of the hand-written wrappers."""
import ast
import os
import shutil
import subprocess
import sys
import sysconfig

import pytest

import kolvex
from conftest import ROOT, bound_methods, method_list

sys.path.insert(0, os.path.join(ROOT, "tools"))
import gen_binding  # noqa: E402

METHODS = method_list()
BOUND = bound_methods()
TABLE = {m.name: m for m in gen_binding.read_table()}


@pytest.mark.parametrize("bound", [len(BOUND)], ids=[f"{len(BOUND)}-of-{len(METHODS)}-bound"])
def test_every_bound_method_is_in_the_list(bound):
    print(f"\nkolvex binds {bound} of the {len(METHODS)} methods")
    assert len(METHODS) == 805
    assert set(BOUND) == set(TABLE), "the module and the routine table differ"
    for name, m in TABLE.items():
        assert name in METHODS, f"{name} is not a method of the module's list"
        assert (m.table_format, m.table_gives, m.lock) == METHODS[name], f"{name} differs from the list"


def test_the_c_header_is_up_to_date():
    with open(os.path.join(ROOT, "include", "kolvex.h"), encoding="utf-8") as f:
        assert f.read() == gen_binding.header_text(list(TABLE.values())), \
            "include/kolvex.h is stale: run tools/gen_binding.py"


def test_the_module_has_nothing_but_its_methods():
    own = {n for n in dir(kolvex) if not (n.startswith("__") and n.endswith("__"))}
    assert own == set(BOUND)
    assert kolvex.__doc__ is None
    for name in own:
        fn = getattr(kolvex, name)
        assert type(fn).__name__ == "builtin_function_or_method", name


def test_wrong_argument_counts_and_keywords_are_type_errors():
    for name in BOUND:
        if METHODS[name][0] == "own":  # optional arguments: their Part tests them
            continue
        fn = getattr(kolvex, name)
        n = len(gen_binding.units(METHODS[name][0].replace("-", "")))
        for count in {n + 1, n - 1} - {-1}:
            with pytest.raises(TypeError):
                fn(*([0] * count))
        with pytest.raises(TypeError):
            fn(*([0] * n), keyword=1)


def test_the_stub_names_every_method_with_its_parameters():
    stub = os.path.join(os.path.dirname(kolvex.__file__), "kolvex.pyi")
    assert os.path.exists(stub), "kolvex.pyi is not installed beside the module"
    with open(stub, encoding="utf-8") as f:
        tree = ast.parse(f.read())
    defs = {d.name: d for d in tree.body if isinstance(d, ast.FunctionDef)}
    assert set(defs) == set(BOUND)
    for name, d in defs.items():
        fmt = METHODS[name][0]
        if fmt == "own":
            continue
        want = len(gen_binding.units(fmt.replace("-", "")))
        assert len(d.args.posonlyargs) == want and not d.args.args and not d.args.kwonlyargs, name
        assert d.returns is not None, name
    assert ast.unparse(defs["getpag"].returns) == "tuple[int, int]"
    assert ast.unparse(defs["myvlt"].args.posonlyargs[0].annotation) == "Sequence[float]"
    assert ast.unparse(defs["getvlt"].returns) == "str"


# ---- the generator covers every shape of the list ---------------------------------------

WRITE_DOUBLES = {"bezier", "conpts", "getmat", "gwgtbl", "histog", "isopts", "licpts", "polclp", "sortr1",
                 "sortr2", "spline", "stmpts", "stmpts3d", "trfco1", "trfco2", "trfco3", "trfrel", "trfmat",
                 "tripts"}
WRITE_INTS = {"colray", "conpts", "csrmov", "csrpol", "csrpts", "triang", "tripts", "txture", "utfint"}
THREE_D = {"isopts", "stmpts3d", "stream3d", "suriso", "vecmat3d"}
MAY_BE_EMPTY = {"shdafr", "shdasi", "shdaus", "shdeur", "shdnor", "shdsou", "shdusa"}
CTYPE = {"i": "int", "d": "double", "f": "float", "s": "const char *"}


def declaration(name, fmt, gives):
    """A declaration of the routine behind a method, as a later table line
    could give it: made up from the format and the roles that the list
    names, to show that the generator can express the shape."""
    us = gen_binding.units("" if fmt == "-" else fmt)
    ints = [k for k, u in enumerate(us) if u == "i"]
    arrays = [k for k, u in enumerate(us) if u == "O"]
    written = {}
    if name in WRITE_INTS and arrays:
        written[arrays[-1]] = "int"
    if name in WRITE_DOUBLES and len(arrays) > len(written):
        written[[k for k in arrays if k not in written][-1]] = "double"
    form = gives.split(",")[0] if gives != "-" else ""
    ret, results = "void", gen_binding.units(form)
    params = []
    if form == "s#i":
        ret, results = "int", []
        params.append(f"out unsigned char *buf[p{ints[-1]}:return]")
    elif results:
        ret = CTYPE[results[0]]
        results = results[1:]
    for k, u in enumerate(us):
        size = next((f"p{i}" for i in ints if i > k), f"p{ints[-1]}" if ints else "3")
        if u == "O":
            if name in THREE_D and k == arrays[0] and len(ints) >= 3:
                params.append(f"const double *p{k}[p{ints[0]}][p{ints[1]}][p{ints[2]}]")
            elif k in written:
                count = ":return" if ret == "int" else ""
                params.append(f"{written[k]} *p{k}[{size}{count}]")
            elif name in MAY_BE_EMPTY:
                params.append(f"const int *p{k}[{size}?]")
            elif len(ints) >= 2 and k == 0 and us[1:3] == ["i", "i"]:
                params.append(f"const double *p{k}[p1][p2]")
            else:
                params.append(f"const double *p{k}[{size}]")
        elif u == "s#":
            params.append(f"const char *p{k}[{size}]")
        else:
            params.append(f"{CTYPE[u]}{'' if u == 's' else ' '}p{k}")
    for j, r in enumerate(results):
        params.append(f"out char *r{j}[80]" if r == "s" else f"{CTYPE[r]} *r{j}")
    sep = "" if ret.endswith("*") else " "
    return f"{ret}{sep}{name}({', '.join(params)})"


@pytest.fixture(scope="module")
def scratch_table(tmp_path_factory):
    d = tmp_path_factory.mktemp("table")
    lines = ["## Every method of the list"]
    for name, (fmt, gives, lock) in sorted(METHODS.items()):
        if name in gen_binding.SPECIAL:
            lines.append(f"{name} {fmt} {gives} {lock} special:")
        elif name == "vscl3d":
            lines.append(f"{name} {fmt} {gives} {lock} alias: vltfil")
        else:
            lines.append(f"{name} {fmt} {gives} {lock} {declaration(name, fmt, gives)}")
    (d / "all.tbl").write_text("\n".join(lines) + "\n")
    return d


def test_the_hand_written_methods_are_the_ones_the_parts_name():
    assert set(gen_binding.SPECIAL) <= set(METHODS)
    assert {n for n, (fmt, _, _) in METHODS.items() if fmt == "own"} <= set(gen_binding.SPECIAL)
    for name in gen_binding.SPECIAL:
        if name in TABLE:
            assert TABLE[name].special, f"{name} must be hand-written"


def test_every_method_shape_can_be_a_table_line(scratch_table):
    methods = gen_binding.read_table(str(scratch_table), strict=True)
    assert len(methods) == 805
    by_name = {m.name: m for m in methods}
    for name, (fmt, gives, lock) in METHODS.items():
        m = by_name[name]
        assert (m.table_format, m.table_gives, m.lock) == (fmt, gives, lock)
    shapes = {(m.format, ",".join(m.gives)) for m in methods if not m.special}
    assert len(shapes) > 150


@pytest.mark.skipif(shutil.which("g++") is None, reason="g++ is not installed")
def test_the_wrappers_of_every_shape_compile(scratch_table, tmp_path):
    methods = gen_binding.read_table(str(scratch_table), strict=True)
    (tmp_path / "all.h").write_text(gen_binding.header_text(methods, "ALL_H"))
    (tmp_path / "all.inc").write_text(gen_binding.wrappers_text(methods))
    (tmp_path / "all.cpp").write_text('#include "marshal.h"\n#include "all.h"\n#include "all.inc"\n'
                                      "PyMethodDef *table() { return kolvex_methods; }\n")
    r = subprocess.run(["g++", "-std=c++17", "-fsyntax-only", "-Wall", "-Wextra", "-Wno-unused-parameter",
                        "-Wno-missing-field-initializers", "-Werror",
                        # ours first: the interpreter has a marshal.h of its own
                        f"-I{os.path.join(ROOT, 'src', 'binding')}", f"-I{sysconfig.get_paths()['include']}",
                        str(tmp_path / "all.cpp")], capture_output=True, text=True, timeout=600)
    assert r.returncode == 0, r.stderr[-5000:]


def test_the_generator_refuses_lines_that_disagree(tmp_path):
    def table(line):
        (tmp_path / "t.tbl").write_text(line + "\n")
        return gen_binding.read_table(str(tmp_path), strict=True)

    bad = [
        "curve OOi - r void curve(const double *x[n], int n)",  # format
        "getpag - i - void getpag(int *nx, int *ny)",  # result
        "curve OOi - r void curve(const double *x[n], const double *y[m], int n)",  # unknown length
        "histog OiOO i - void histog(const double *x[n], int n, double *a[n:k], double *b[n], int *nh)",
        "thrfin - - r void thrfin(void)",  # must be hand-written
        "getlev - i - special: int getlev(void)",  # must not be
        "vscl3d ss - - alias: nothing",
        "pdfbuf i s#i - r int pdfbuf(out unsigned char *b[n:return], int n)",  # both forms
        "curve OOi - x void curve(const double *x[n], const double *y[n], int n)",  # lock
    ]
    for line in bad:
        with pytest.raises(gen_binding.TableError):
            table(line)
    assert table("pdfbuf i s#i,si r int pdfbuf(out unsigned char *b[n:return], int n)")


@pytest.mark.skipif(shutil.which("nm") is None, reason="nm is not installed")
def test_every_routine_of_the_core_is_bound():
    from conftest import native_build

    build = native_build("kolvex_core")
    lib = os.path.join(build, "libkolvex_core.a")
    out = subprocess.run(["nm", "-g", "--defined-only", lib], capture_output=True, text=True, check=True).stdout
    # Routines with C linkage: unmangled code symbols.
    routines = {f[2] for f in (line.split() for line in out.splitlines()) if len(f) == 3 and f[1] == "T"
                and not f[2].startswith("_Z")}
    declared = {m.cname for m in TABLE.values() if m.decl}
    assert routines - declared == set(), "routines of the core that no table line binds"
