#!/usr/bin/env python3
"""Generate the module's wrappers, its type stub and the C header from the
routine table (src/binding/table/*.tbl).

A table line describes one method:

    name   format   gives   lock   declaration

format  the argument format of PyArg_ParseTuple, '-' for none, 'own' for a
        method that parses its arguments itself and has no core routine
gives   the result format of Py_BuildValue, '-' for None; a method with two
        result forms lists both, separated by a comma
lock    'r' when the wrapper releases the interpreter lock around the call
declaration
        the core routine's C declaration, with the role of each pointer
        parameter in brackets after its name:
          const double *x[n]        input array of n doubles (also nx*ny)
          const double *z[nx][ny]   nested 2-D input; three brackets: 3-D
          const int *k[n?]          integer list that may be empty or None
          double *x[n]              array written back after the call
          double *x[n:count]        written back, as many as the result
                                    named count (an out-parameter or 'return')
          int *nx                   out-parameter, part of the result
          char *s                   text the routine changes (gets a copy)
          const unsigned char *b    bytes given as "s#" (hand-written wrappers)
          unsigned char *b          bytes the routine fills (hand-written wrappers)
        'special:' in front means that the wrapper is hand-written (kxs_name
        in src/binding/*.cpp); the declaration still goes to the header.
        An 'own' line may end in 'stub: (args) -> result' for the stub.

Lines starting with '##' are group headings of the C header; '#' starts a
comment.  Run with --header, --wrappers, --stub to write those files, or
--check to test that include/kolvex.h is up to date.
"""
import argparse
import glob
import os
import re
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
TABLE_DIR = os.path.join(ROOT, "src", "binding", "table")
HEADER = os.path.join(ROOT, "include", "kolvex.h")

SCALARS = {"int": "i", "double": "d", "float": "f", "const char *": "s"}
PYTYPES = {"i": "int", "d": "float", "f": "float", "s": "str", "s#": "bytes"}


class TableError(Exception):
    pass


class Param:
    def __init__(self, text, where):
        m = re.match(r"^(?P<type>.*?)(?P<name>\w+)\s*(?P<dims>(\[[^\]]*\])*)\s*$", text.strip())
        if not m:
            raise TableError(f"{where}: cannot read parameter {text!r}")
        self.type = re.sub(r"\s+", " ", m.group("type").replace("*", " *")).strip()
        self.type = self.type.replace(" *", " *")
        self.name = m.group("name")
        dims = re.findall(r"\[([^\]]*)\]", m.group("dims"))
        self.count = None  # write-back count: a result name
        self.optional = False
        if dims and ":" in dims[-1]:
            dims[-1], self.count = [s.strip() for s in dims[-1].split(":", 1)]
        if dims and dims[-1].endswith("?"):
            dims[-1] = dims[-1][:-1]
            self.optional = True
        self.dims = [d.strip() for d in dims]
        base = self.type.replace("const ", "").replace(" *", "").strip()
        pointer = self.type.endswith("*")
        const = self.type.startswith("const ")
        if self.dims:
            if base not in ("double", "int") or not pointer:
                raise TableError(f"{where}: arrays are double or int: {text!r}")
            self.role = "in" if const else "inout"
            self.elem = base
        elif self.type == "const char *":
            self.role, self.letter = "arg", "s"
        elif self.type == "char *":
            self.role, self.letter = "text", "s"
        elif self.type in ("const unsigned char *", "unsigned char *"):
            # Byte buffers: their sizes follow the library's state, so
            # only a hand-written wrapper can marshal them.
            self.role = "bytes" if const else "bytesout"
            self.letter = "s#"
        elif pointer and base in ("int", "double", "float") and not const:
            self.role, self.letter = "out", SCALARS[base]
        elif self.type in SCALARS:
            self.role, self.letter = "arg", SCALARS[self.type]
        else:
            raise TableError(f"{where}: no role for parameter {text!r}")

    def c_text(self):
        t = self.type
        return f"{t}{self.name}" if t.endswith("*") else f"{t} {self.name}"


def prefixed(expr):
    """A length expression over parameters, in terms of the wrapper's locals."""
    return re.sub(r"\b([A-Za-z_]\w*)\b", r"a_\1", expr)


def split_params(text):
    out, depth, cur = [], 0, ""
    for ch in text:
        if ch == "," and depth == 0:
            out.append(cur)
            cur = ""
            continue
        depth += ch in "([" 
        depth -= ch in ")]"
        cur += ch
    if cur.strip():
        out.append(cur)
    return out


class Method:
    def __init__(self, line, where, group):
        parts = line.split(None, 4)
        if len(parts) < 4:
            raise TableError(f"{where}: a line needs name, format, gives and lock")
        self.where = where
        self.group = group
        self.name, fmt, gives, lock = parts[:4]
        rest = parts[4].strip() if len(parts) > 4 else ""
        self.own = fmt == "own"
        self.format = "" if fmt in ("-", "own") else fmt
        self.gives = [] if gives == "-" else gives.split(",")
        if lock not in ("r", "-"):
            raise TableError(f"{where}: lock is 'r' or '-'")
        self.release = lock == "r"
        self.stub = None
        m = re.search(r"\bstub:\s*(.*)$", rest)
        if m:
            self.stub = m.group(1).strip()
            rest = rest[: m.start()].strip()
        self.special = self.own
        if rest.startswith("special:"):
            self.special = True
            rest = rest[len("special:"):].strip()
        self.decl = None
        if rest:
            self.parse_decl(rest.rstrip(";"))
        elif not self.special:
            raise TableError(f"{where}: {self.name} needs a declaration")

    def parse_decl(self, text):
        m = re.match(r"^(?P<ret>[\w\s\*]+?)\s*\b(?P<name>\w+)\s*\((?P<params>.*)\)\s*$", text)
        if not m:
            raise TableError(f"{self.where}: cannot read declaration {text!r}")
        self.cname = m.group("name")
        self.ret = re.sub(r"\s+", " ", m.group("ret").replace("*", " *")).strip()
        params = m.group("params").strip()
        self.params = [] if params in ("", "void") else [Param(p, self.where) for p in split_params(params)]
        self.decl = text
        if not self.special:
            self.check()

    # The format and result letters must agree with the declaration.
    def check(self):
        fmt = ""
        for p in self.params:
            if p.role in ("bytes", "bytesout"):
                raise TableError(f"{self.where}: {self.name}: byte buffers need a 'special:' wrapper")
            if p.role in ("in", "inout"):
                fmt += "O"
            elif p.role in ("arg", "text"):
                fmt += p.letter
        if fmt != self.format:
            raise TableError(f"{self.where}: {self.name}: format {self.format!r} but the declaration gives {fmt!r}")
        res = ""
        if self.ret != "void":
            if self.ret not in SCALARS:
                raise TableError(f"{self.where}: {self.name}: result type {self.ret!r}")
            res += SCALARS[self.ret]
        res += "".join(p.letter for p in self.params if p.role == "out")
        want = self.gives[0] if self.gives else ""
        if res != want or len(self.gives) > 1:
            raise TableError(f"{self.where}: {self.name}: gives {self.gives} but the declaration gives {res!r}")
        names = {p.name for p in self.params}
        for p in self.params:
            for d in p.dims:
                for ident in re.findall(r"[A-Za-z_]\w*", d):
                    if ident not in names:
                        raise TableError(f"{self.where}: {self.name}: unknown length {ident!r}")
            if p.count and p.count != "return" and p.count not in names:
                raise TableError(f"{self.where}: {self.name}: unknown count {p.count!r}")

    # ---- output ---------------------------------------------------------------
    def header_decl(self):
        params = ", ".join(p.c_text() for p in self.params) or "void"
        ret = self.ret if not self.ret.endswith("*") else self.ret
        sep = "" if ret.endswith("*") else " "
        return f"KOLVEX_API {ret}{sep}{self.cname}({params}) KOLVEX_NOEXCEPT;"

    def wrapper(self):
        if self.special:
            return None
        n = self.name
        L = [f"static PyObject *kxw_{n}(PyObject *, PyObject *args) {{"]
        slots, addrs = [], []
        for p in self.params:
            if p.role in ("in", "inout"):
                L.append(f"    PyObject *o_{p.name} = nullptr;")
                addrs.append(f"&o_{p.name}")
            elif p.role in ("arg", "text"):
                ctype = {"i": "int", "d": "double", "f": "float", "s": "const char *"}[p.letter]
                L.append(f"    {ctype} {'a_' + p.name} = {{}};")
                addrs.append(f"&a_{p.name}")
        if self.format:
            L.append(f'    if (!PyArg_ParseTuple(args, "{self.format}:{n}", {", ".join(addrs)})) return kxpy_argfail();')
        else:
            L.append(f'    if (!PyArg_ParseTuple(args, ":{n}")) return kxpy_argfail();')
        arrays = [p for p in self.params if p.role in ("in", "inout")]
        # A count below 1 skips the call.
        counts = []
        for p in arrays:
            for d in p.dims:
                for ident in re.findall(r"[A-Za-z_]\w*", d):
                    if ident not in counts:
                        counts.append(ident)
        if counts:
            cond = " || ".join(f"a_{c} < 1" for c in counts)
            L.append(f"    if ({cond}) Py_RETURN_NONE;")
        for p in self.params:
            if p.role == "out":
                ctype = {"i": "int", "d": "double", "f": "float"}[p.letter]
                L.append(f"    {ctype} r_{p.name} = 0;")
        if arrays:
            L.append("    KxErrStash err;")
            for p in arrays:
                dims = [prefixed(d) for d in p.dims]
                if len(dims) == 1:
                    fn = {"double": "qqpydb", "int": "qqpyib" if p.optional else "qqpyin"}[p.elem]
                    call = f"{fn}(o_{p.name}, {dims[0]})"
                elif len(dims) == 2:
                    fn = {"double": "qqpyd2", "int": "qqpyi2"}[p.elem]
                    call = f"{fn}(o_{p.name}, {dims[0]}, {dims[1]})"
                else:
                    if p.elem != "double":
                        raise TableError(f"{self.where}: 3-D arrays are double")
                    call = f"qqpyd3(o_{p.name}, {dims[0]}, {dims[1]}, {dims[2]})"
                L.append(f"    {p.elem} *v_{p.name} = {call};")
                L.append("    err.take();")
            ok = " && ".join(f"v_{p.name}" for p in arrays)
        texts = [p for p in self.params if p.role == "text"]
        for p in texts:
            L.append(f"    char *t_{p.name} = kxpy_strdup(a_{p.name});")
        cargs = []
        for p in self.params:
            cargs.append({"in": "v_", "inout": "v_", "arg": "a_", "text": "t_", "out": "&r_"}[p.role] + p.name)
        call = f"{self.cname}({', '.join(cargs)})"
        has_ret = self.ret != "void"
        if has_ret:
            rtype = "const char *" if self.ret == "const char *" else self.ret
            L.append(f"    {rtype} ret = {{}};")
            call = f"ret = {call}"
        guard = []
        if arrays:
            guard.append(ok)
        if texts:
            guard.append(" && ".join(f"t_{p.name}" for p in texts))
        body = []
        if self.release:
            body += ["Py_BEGIN_ALLOW_THREADS", f"{call};", "Py_END_ALLOW_THREADS"]
        else:
            body += [f"{call};"]
        if guard:
            L.append(f"    if ({' && '.join(guard)}) {{")
            for b in body:
                L.append(f"        {b}")
            for p in arrays:
                if p.role == "inout":
                    total = " * ".join("(" + prefixed(d) + ")" for d in p.dims)
                    if p.count:
                        cnt = "ret" if p.count == "return" else f"r_{p.count}"
                        total = f"kxpy_min({total}, {cnt})"
                    fn = "qqpywd" if p.elem == "double" else "qqpywi"
                    L.append(f"        {fn}(v_{p.name}, o_{p.name}, {total});")
            L.append("    }")
        else:
            for b in body:
                L.append(f"    {b}")
        for p in arrays:
            L.append(f"    std::free(v_{p.name});")
        for p in texts:
            L.append(f"    std::free(t_{p.name});")
        if texts:
            cond = " || ".join(f"!t_{p.name}" for p in texts)
            L.append(f'    if ({cond}) return PyErr_NoMemory();')
        if arrays:
            L.append("    if (err.restore()) return nullptr;")
        results = []
        if has_ret:
            results.append("ret")
        results += [f"r_{p.name}" for p in self.params if p.role == "out"]
        if results:
            fmt = self.gives[0]
            vals = [f"(double){r}" if l == "f" else r for r, l in zip(results, fmt)]
            L.append(f'    return Py_BuildValue("{fmt}", {", ".join(vals)});')
        else:
            L.append("    Py_RETURN_NONE;")
        L.append("}")
        return "\n".join(L)

    def stub_text(self):
        if self.stub:
            return f"def {self.name}{self.stub}: ..."
        args = []
        if self.decl:
            for p in self.params:
                if p.role in ("in", "inout"):
                    elem = "float" if p.elem == "double" else "int"
                    if len(p.dims) == 1:
                        t = f"Sequence[{elem}]" if p.role == "in" else f"MutableSequence[{elem}]"
                        if p.optional:
                            t = f"Optional[Sequence[{elem}]]"
                    elif len(p.dims) == 2:
                        t = f"Sequence[{elem}] | Sequence[Sequence[{elem}]]"
                    else:
                        t = f"Sequence[Any]"
                    args.append(f"{p.name}: {t}")
                elif p.role in ("arg", "text", "bytes"):
                    args.append(f"{p.name}: {PYTYPES[p.letter]}")
        else:
            args = [f"arg{i}: Any" for i, _ in enumerate(self.format)]
        if len(args) != len(re.findall(r"s#|.", self.format)) and self.format:
            args = [f"arg{i}: Any" for i, _ in enumerate(re.findall(r"s#|.", self.format))]
        sig = ", ".join(args + ["/"]) if args else ""
        return f"def {self.name}({sig}) -> {result_type(self.gives)}: ..."


def result_type(gives):
    def one(fmt):
        letters = re.findall(r"s#|.", fmt)
        types = [PYTYPES[l] for l in letters]
        if len(types) == 1:
            return types[0]
        return f"tuple[{', '.join(types)}]"

    if not gives:
        return "None"
    forms = []
    for g in gives:
        t = one(g)
        if t not in forms:
            forms.append(t)
    return " | ".join(forms)


def read_table(table_dir=TABLE_DIR):
    methods, seen = [], {}
    for path in sorted(glob.glob(os.path.join(table_dir, "*.tbl"))):
        group = None
        with open(path, encoding="utf-8") as f:
            for no, raw in enumerate(f, 1):
                line = raw.rstrip("\n")
                where = f"{os.path.relpath(path, ROOT)}:{no}"
                if line.startswith("##"):
                    group = line[2:].strip()
                    continue
                line = line.split(" #", 1)[0].rstrip() if not line.lstrip().startswith("#") else ""
                if not line.strip():
                    continue
                m = Method(line, where, group)
                if m.name in seen:
                    raise TableError(f"{where}: {m.name} is already at {seen[m.name]}")
                seen[m.name] = where
                methods.append(m)
    return methods


def header_text(methods):
    out = [
        "/* kolvex: the public routines of the plotting library.",
        " *",
        " * Generated from the routine table by tools/gen_binding.py; do not edit.",
        " * Routines take arrays as a pointer with a count given by the caller,",
        " * strings as zero-terminated UTF-8, and report failures as numbered",
        " * warnings on the console or in the error file, never by return codes.",
        " * Every routine may be called from C or C++; none throws. */",
        "#ifndef KOLVEX_H",
        "#define KOLVEX_H",
        "",
        "#if defined(KOLVEX_EXPORTS)",
        "#define KOLVEX_API __attribute__((visibility(\"default\")))",
        "#else",
        "#define KOLVEX_API",
        "#endif",
        "",
        "#ifdef __cplusplus",
        "#define KOLVEX_NOEXCEPT noexcept",
        'extern "C" {',
        "#else",
        "#define KOLVEX_NOEXCEPT",
        "#endif",
    ]
    group = None
    for m in methods:
        if not m.decl:
            continue
        if m.group != group:
            group = m.group
            out += ["", f"/* {group} */"]
        out.append(m.header_decl())
    out += ["", "#ifdef __cplusplus", "}", "#endif", "", "#endif /* KOLVEX_H */", ""]
    return "\n".join(out)


def wrappers_text(methods):
    out = ["// Generated from the routine table by tools/gen_binding.py; do not edit.", ""]
    for m in methods:
        if m.special:
            out.append(f"PyObject *kxs_{m.name}(PyObject *self, PyObject *args);")
    out.append("")
    for m in methods:
        w = m.wrapper()
        if w:
            out += [w, ""]
    out.append("static PyMethodDef kolvex_methods[] = {")
    for m in sorted(methods, key=lambda m: m.name):
        fn = f"kxs_{m.name}" if m.special else f"kxw_{m.name}"
        out.append(f'    {{"{m.name}", {fn}, METH_VARARGS, nullptr}},')
    out.append("    {nullptr, nullptr, 0, nullptr},")
    out.append("};")
    return "\n".join(out) + "\n"


def stub_text(methods):
    out = [
        '"""kolvex: scientific plotting from Python.',
        "",
        "Every function is a routine of the library; arguments are positional.",
        '"""',
        "# Generated from the routine table by tools/gen_binding.py; do not edit.",
        "from typing import Any, Callable, MutableSequence, Optional, Sequence",
        "",
    ]
    for m in sorted(methods, key=lambda m: m.name):
        out.append(m.stub_text())
    return "\n".join(out) + "\n"


def write(path, text):
    os.makedirs(os.path.dirname(os.path.abspath(path)), exist_ok=True)
    old = None
    if os.path.exists(path):
        with open(path, encoding="utf-8") as f:
            old = f.read()
    if old != text:
        with open(path, "w", encoding="utf-8") as f:
            f.write(text)


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("--header", nargs="?", const=HEADER)
    ap.add_argument("--wrappers")
    ap.add_argument("--stub")
    ap.add_argument("--check", action="store_true", help="fail when include/kolvex.h is stale")
    a = ap.parse_args()
    try:
        methods = read_table()
    except TableError as e:
        sys.exit(f"routine table: {e}")
    if a.header:
        write(a.header, header_text(methods))
    if a.wrappers:
        write(a.wrappers, wrappers_text(methods))
    if a.stub:
        write(a.stub, stub_text(methods))
    if a.check:
        with open(HEADER, encoding="utf-8") as f:
            if f.read() != header_text(methods):
                sys.exit("include/kolvex.h is stale: run tools/gen_binding.py --header")
    if not (a.header or a.wrappers or a.stub or a.check):
        write(HEADER, header_text(methods))


if __name__ == "__main__":
    main()
