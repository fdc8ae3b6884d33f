#!/usr/bin/env python3
"""Generate the module's wrappers, its type stub and the C header from the
routine table (src/binding/table/*.tbl).

A table line describes one method:

    name   format   gives   lock   declaration
    name   format   gives   lock   special: [declaration] [stub: (args) -> result]
    name   format   gives   lock   alias: other

format  the argument format of PyArg_ParseTuple, '-' for none, 'own' for a
        method that parses its arguments itself
gives   the result format of Py_BuildValue, '-' for None; a method with two
        result forms lists both, separated by a comma
lock    'r' when the wrapper may release the interpreter lock around the
        call (it does so only when each thread has a block of its own:
        kxpy_unlocked), '-' when it keeps it
special the wrapper is hand-written: kxs_<name> in src/binding/special_*.cpp.
        Only the methods in SPECIAL below may be hand-written, and they must
        be.  A declaration after 'special:' goes to the C header and names
        the stub's parameters; 'stub:' gives the stub's signature outright.
alias   the method shares the wrapper (and the routine) of another method
        with the same format, result and lock

The declaration is the core routine's C declaration.  The role of each
parameter follows from its type, an optional keyword in front, and the
lengths in brackets after its name:

    int n   double x   float f   const char *s
                          an argument: format letter i, d, f or s
    const char *b[need]   bytes or str given as "s#"; the routine reads `need`
                          bytes, and a shorter argument raises MemoryError
                          "out of range" (const unsigned char * likewise;
                          counts in `need` follow the count rule below)
    char *s               a text argument that the routine changes: it gets a
    char *s[room]         writable copy, with room for `room` characters
    const double *x[n]    an input array (format O) of n doubles, const int *
                          for 32-bit integers; [nx][ny] is a nested 2-D array,
                          [nx][ny][nz] a 3-D one
    const int *k[n?]      an integer list that may also be None or empty,
                          which gives n zeros (the map shading routines)
    double *x[n]          an array read from the caller's sequence, given to
    int *k[n]             the routine and written back after the call
    double *x[n:count]    written back, but only as many elements as `count`:
                          a result ('return', an out-parameter) or argument
    out double *x[n]      an output array: the caller's sequence is not read
    out int *k[n:count]   but must have room for n elements (rows count when
                          it is nested), the routine gets n zeros, and the
                          elements are written back as above
    work double *w[n]     a scratch array of n zeros, made once every argument
                          has passed: no argument, no result
    int *r  double *r  float *r
                          an out-parameter: part of the result
    inout int *r          an argument (format letter) whose new value is also
                          part of the result
    out char *s[size]     a text result, in a buffer of size + 1 bytes
    out unsigned char *b[n:return]
                          a bytes result of a routine returning int, where n
                          is an int argument: the size rules of kxpy_sized_bytes
                          (gives "s#i,si")
    int m = expr          a value that the wrapper computes: no argument
    int n[lo..hi]         a count that the routine tests itself: outside lo..hi
                          the routine is called with null arrays (it warns and
                          reads none) and nothing is converted
    unsigned char *p      (any pointer without lengths) only in a declaration
                          after 'special:'
    double (*f)(double, int)
                          a callback (format letter O), likewise only after
                          'special:': the wrapper turns a callable into it

Lengths are expressions over parameter names, integer literals, + - * / and
calls of functions (name(...)) that the wrappers can see; they are computed
without overflow.  A count below 1 among the int arguments that size an
array makes the method return None without doing anything.

The result is, in this order: a bytes result, the routine's return value,
then the out-parameters, inout arguments and text results in the order of
the parameters.  One value is returned bare, more as a tuple.

Lines starting with '##' are group headings of the C header; '#' starts a
comment.

summaries.txt beside the table gives each method's one-line summary (name,
blanks, text).  The stub's docstring of each method is generated from it and
the line: the summary, and the calling form with the types of arguments and
result.  The module itself carries no doc strings.  A method
without a summary still builds, but a test requires one for every method:
add it with the table line.  Run with --header, --wrappers, --stub to write those files, or
--check to test that include/kolvex.h is up to date.  --table-dir reads
another table (a test table: then SPECIAL is not enforced).
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
CTYPES = {"i": "int", "d": "double", "f": "float", "s": "const char *"}
PYTYPES = {"i": "int", "d": "float", "f": "float", "s": "str", "s#": "bytes"}

# The methods whose wrappers are written by hand, and why.  Every other
# method is a table line with a declaration.
SPECIAL = {
    **{n: "a convenience plot without a core routine of its name" for n in
       ("conshade", "contour", "plot", "plot3", "scattr", "setvar", "surf3", "surface", "surshade")},
    **{n: "takes a Python callable" for n in
       ("piecbk", "setcbk", "surfcp", "surfun", "swgcb", "swgcb2", "swgcb3", "swgcbk", "wincbk")},
    "thrfin": "waits for the calls of other threads before it frees their blocks",
    "legini": "allocates the module's legend buffer",
    "legend": "passes the module's legend buffer",
    "leglin": "passes the module's legend buffer",
    "nxlegn": "passes the module's legend buffer",
    "nylegn": "passes the module's legend buffer",
    "piegrf": "passes the module's legend buffer",
    "legsel": "passes its counts 0 and -1, which select no line and all lines",
    "itmcat": "sizes its buffer from the lengths of both texts",
    "itmncat": "sizes its buffer from the lengths of both texts",
    "rpixls": "sizes its bytes from the library's image mode",
    "rpxrow": "sizes its bytes from the library's image mode",
    "ldimg": "returns a list of integers or bytes",
}


class TableError(Exception):
    pass


def units(fmt):
    """The format units of a PyArg_ParseTuple format: 's#' counts as one."""
    return re.findall(r"s#|.", fmt)


IDENT = re.compile(r"\b([A-Za-z_]\w*)\b(\s*\()?")


def dim_names(expr):
    """The parameter names in a length expression (not the called functions)."""
    return [m.group(1) for m in IDENT.finditer(expr) if not m.group(2)]


class Param:
    ROLES_WITH_DIMS = ("in", "inout", "out", "work", "text", "bytes", "outtext", "outbytes")

    def __init__(self, text, where):
        text = text.strip()
        self.where = where
        self.expr = None
        # A callback: a plain function pointer, which only a hand-written
        # wrapper can supply (it turns a Python callable into one).
        fp = re.match(r"^(?P<ret>\w+)\s*\(\s*\*\s*(?P<name>\w+)\s*\)\s*\((?P<args>[^()]*)\)$", text)
        if fp:
            self.type, self.name, self.text = text, fp.group("name"), text
            self.dims, self.count, self.optional, self.range = [], None, False, None
            self.letter, self.result, self.role = "O", None, "callback"
            return
        if "=" in text:
            text, self.expr = [s.strip() for s in text.split("=", 1)]
        m = re.match(r"^(?:(?P<kw>out|inout|work)\s+)?(?P<type>.*?)(?P<name>\w+)\s*"
                     r"(?P<dims>(\[[^\]]*\])*)$", text)
        if not m:
            raise TableError(f"{where}: cannot read parameter {text!r}")
        kw = m.group("kw")
        self.type = re.sub(r"\s+", " ", m.group("type").replace("*", " *")).strip()
        self.name = m.group("name")
        dims = re.findall(r"\[([^\]]*)\]", m.group("dims"))
        # int n[lo..hi]: a count that the routine tests itself (it warns
        # outside lo..hi and reads no array then).
        self.range = None
        if len(dims) == 1 and re.fullmatch(r"\s*-?\d+\s*\.\.\s*-?\d+\s*", dims[0]):
            if m.group("type").strip() != "int" or kw:
                raise TableError(f"{where}: only an int count has a range: {text!r}")
            self.range = tuple(int(v) for v in dims[0].split(".."))
            dims = []
        self.count = None
        self.optional = False
        if dims and ":" in dims[-1]:
            dims[-1], self.count = [s.strip() for s in dims[-1].split(":", 1)]
        if dims and dims[-1].endswith("?"):
            dims[-1] = dims[-1][:-1]
            self.optional = True
        self.dims = [d.strip() for d in dims]
        self.letter = None  # format letter(s) when the caller passes it
        self.result = None  # result letter(s) when the caller gets it back
        self.role = self._role(kw, text)
        if self.optional and not (self.role == "in" and self.elem == "int" and len(self.dims) == 1):
            raise TableError(f"{where}: only a flat input list of int may be empty: {text!r}")
        if self.count and self.role not in ("inout", "out", "outbytes"):
            raise TableError(f"{where}: only written-back arrays take a count: {text!r}")
        if self.role not in self.ROLES_WITH_DIMS and self.dims:
            raise TableError(f"{where}: no lengths for {text!r}")

    def _role(self, kw, text):
        t = self.type
        base = t.replace("const ", "").replace(" *", "").strip()
        pointer = t.endswith("*")
        const = t.startswith("const ")
        bad = TableError(f"{self.where}: no role for parameter {text!r}")
        if self.expr is not None:
            if kw or t not in ("int", "double", "float"):
                raise TableError(f"{self.where}: a computed value is a plain int, double or float: {text!r}")
            return "derived"
        if kw == "work" or (self.dims and base in ("double", "int") and pointer):
            if base not in ("double", "int") or not pointer or not self.dims or (const and kw):
                raise bad
            if len(self.dims) > 3:
                raise TableError(f"{self.where}: arrays have at most three levels: {text!r}")
            self.elem = base
            if kw == "work":
                return "work"
            if kw == "out":
                self.letter = "O"
                return "out"
            if kw == "inout":
                raise bad
            self.letter = "O"
            return "in" if const else "inout"
        if kw == "out" and t == "char *":
            if len(self.dims) != 1:
                raise TableError(f"{self.where}: a text result needs its size: {text!r}")
            self.result = "s"
            return "outtext"
        if kw == "out" and t == "unsigned char *":
            if len(self.dims) != 1 or self.count != "return":
                raise TableError(f"{self.where}: a bytes result is written as [n:return]: {text!r}")
            self.result = "s#"
            return "outbytes"
        if kw == "inout":
            if not pointer or base not in ("int", "double", "float") or const:
                raise bad
            self.letter = self.result = SCALARS[base]
            return "inoutscalar"
        if kw:
            raise bad
        if t in ("const char *", "const unsigned char *") and self.dims:
            if len(self.dims) != 1:
                raise bad
            self.letter = "s#"
            return "bytes"
        if t == "char *":
            if len(self.dims) > 1:
                raise bad
            self.letter = "s"
            return "text"
        if t in SCALARS:
            self.letter = SCALARS[t]
            return "arg"
        if pointer and base in ("int", "double", "float") and not const:
            self.result = SCALARS[base]
            return "outscalar"
        if pointer and not self.dims:
            return "raw"  # a buffer that only a hand-written wrapper can size
        raise bad

    def c_text(self):
        if self.role == "callback":
            return self.text
        t = self.type
        return f"{t}{self.name}" if t.endswith("*") else f"{t} {self.name}"

    def local(self):
        """The expression that the wrapper passes for this parameter."""
        return {
            "arg": f"a_{self.name}", "derived": f"a_{self.name}", "inoutscalar": f"&a_{self.name}",
            "outscalar": f"&r_{self.name}", "text": f"t_{self.name}", "outtext": f"t_{self.name}",
        }.get(self.role, f"v_{self.name}")

    def stub_type(self):
        if self.role == "callback":
            return "Callable[..., float]"
        if self.letter == "s#":
            return "str | bytes"
        if self.letter != "O":
            return PYTYPES[self.letter]
        elem = "float" if self.elem == "double" else "int"
        if self.role == "in":
            if len(self.dims) == 1:
                return f"Optional[Sequence[{elem}]]" if self.optional else f"Sequence[{elem}]"
            if len(self.dims) == 2:
                return f"Sequence[{elem}] | Sequence[Sequence[{elem}]]"
            return "Sequence[Any]"
        return f"MutableSequence[{elem}]" if len(self.dims) == 1 else "MutableSequence[Any]"


def c_local(ctype, name):
    return f"{ctype}{name}" if ctype.endswith("*") else f"{ctype} {name}"


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
        self.table_format = fmt
        self.table_gives = gives
        self.gives = [] if gives == "-" else gives.split(",")
        if lock not in ("r", "-"):
            raise TableError(f"{where}: lock is 'r' or '-'")
        self.release = lock == "r"
        self.stub = None
        self.alias = None
        self.decl = None
        self.params = []
        m = re.search(r"\bstub:\s*(.*)$", rest)
        if m:
            self.stub = m.group(1).strip()
            rest = rest[: m.start()].strip()
        self.special = self.own
        if rest.startswith("alias:"):
            self.alias = rest[len("alias:"):].strip()
            if not re.fullmatch(r"\w+", self.alias or ""):
                raise TableError(f"{where}: alias: names one method")
            return
        if rest.startswith("special:"):
            self.special = True
            rest = rest[len("special:"):].strip()
        if rest:
            self.parse_decl(rest.rstrip(";"))
        elif not self.special:
            raise TableError(f"{where}: {self.name} needs a declaration")

    def error(self, text):
        return TableError(f"{self.where}: {self.name}: {text}")

    @property
    def lock(self):
        return "r" if self.release else "-"

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

    def computed_format(self):
        return "".join(p.letter for p in self.params if p.letter)

    def results(self):
        """(letter, C expression) of each result value, in the order of the result."""
        out = [(p.result, f"v_{p.name}") for p in self.params if p.role == "outbytes"]
        if self.ret != "void":
            out.append((SCALARS[self.ret], "ret"))
        for p in self.params:
            if p.role in ("outscalar", "inoutscalar", "outtext"):
                prefix = {"outscalar": "r_", "inoutscalar": "a_", "outtext": "t_"}[p.role]
                out.append((p.result, prefix + p.name))
        return out

    # The format and result letters must agree with the declaration.
    def check(self):
        for p in self.params:
            if p.role in ("raw", "callback"):
                raise self.error(f"{p.name}: a pointer needs its lengths in brackets, or a special: wrapper")
        fmt = self.computed_format()
        if fmt != self.format:
            raise self.error(f"format {self.format!r} but the declaration gives {fmt!r}")
        if self.ret != "void" and self.ret not in SCALARS:
            raise self.error(f"result type {self.ret!r}")
        res = "".join(letter for letter, _ in self.results())
        sized = [p for p in self.params if p.role == "outbytes"]
        want = [res]
        if sized:
            p = sized[0]
            size = p.dims[0]
            named = {q.name: q for q in self.params}
            if (len(sized) > 1 or self.ret != "int" or size not in named or named[size].role != "arg"
                    or named[size].letter != "i"):
                raise self.error("a bytes result needs an int result and its size as an int argument")
            if any(q.role not in ("arg", "derived", "outbytes") for q in self.params):
                raise self.error("a bytes result goes with plain arguments only")
            want = ["s#i", "si"]
        if self.gives != want and not (not self.gives and want == [""]):
            given, declared = ",".join(self.gives) or "-", ",".join(want) or "-"
            raise self.error(f"gives {given} but the declaration gives {declared}")
        for p in self.params:
            # Lengths may name parameters that come later too (x[n], n); a
            # computed value may use the arguments and the values before it.
            for d in p.dims + ([p.expr] if p.expr else []):
                for ident in dim_names(d):
                    q = next((q for q in self.params if q.name == ident), None)
                    if q is None or q.type != "int" or q.role not in ("arg", "derived"):
                        raise self.error(f"{ident!r} in a length is no int argument")
                    if p.expr and q.role == "derived" and self.params.index(q) >= self.params.index(p):
                        raise self.error(f"{p.name} uses {ident} before it is computed")
            if p.count and p.count != "return":
                q = next((q for q in self.params if q.name == p.count), None)
                roles = ("arg", "outscalar", "inoutscalar", "derived")
                if q is None or q.type not in ("int", "int *") or q.role not in roles:
                    raise self.error(f"the count {p.count!r} is no int")
            if p.count == "return" and self.ret not in ("int",):
                raise self.error("a count from the result needs an int result")
            if p.range and (self.ret != "void" or any(q.role not in ("in", "arg") for q in self.params)):
                raise self.error("a ranged count goes with input arrays, plain arguments and no result")

    # ---- output ---------------------------------------------------------------
    def header_decl(self):
        params = ", ".join(p.c_text() for p in self.params) or "void"
        sep = "" if self.ret.endswith("*") else " "
        return f"KOLVEX_API {self.ret}{sep}{self.cname}({params}) KOLVEX_NOEXCEPT;"

    def count_args(self):
        """The int arguments that size arrays: one below 1 makes the method
        return None at once."""
        counts = []
        args = {p.name for p in self.params if p.role == "arg" and p.letter == "i" and not p.range}
        for p in self.params:
            if p.role in ("in", "inout", "out", "work", "bytes"):
                for d in p.dims:
                    for ident in dim_names(d):
                        if ident in args and ident not in counts:
                            counts.append(ident)
        return counts

    def fn_name(self):
        return f"kxs_{self.name}" if self.special else f"kxw_{self.name}"

    def wrapper(self):
        if self.special or self.alias:
            return None
        if any(p.role == "outbytes" for p in self.params):
            return self.sized_bytes_wrapper()
        return Wrapper(self).text()

    def sized_bytes_wrapper(self):
        n = self.name
        buf = next(p for p in self.params if p.role == "outbytes")
        L = [f"static PyObject *kxw_{n}(PyObject *, PyObject *args) {{"]
        L += parse_lines(self)
        L += derived_lines(self)
        cargs = ", ".join("buffer" if p is buf else ("size" if p.name == buf.dims[0] else p.local())
                          for p in self.params)
        rel = "true" if self.release else "false"
        lam = "[&](unsigned char *buffer, int size)"
        L.append(f'    return kxpy_sized_bytes("{n}", a_{buf.dims[0]}, {rel}, {lam} {{')
        L.append(f"        return {self.cname}({cargs});")
        L.append("    });")
        L.append("}")
        return "\n".join(L)

    def signature(self):
        """The Python parameters as (name, type) pairs, or None when a
        'stub:' gives the signature outright; and the result type."""
        if self.stub:
            return None, None
        fmt_units = units(self.format)
        named = [p for p in self.params if p.letter]
        if self.decl and [p.letter for p in named] == fmt_units:
            args = [(p.name, p.stub_type()) for p in named]
        else:
            args = [(f"arg{i}", "Any" if u == "O" else PYTYPES[u]) for i, u in enumerate(fmt_units)]
        result = result_type(self.gives)
        if result != "None" and self.decl and self.count_args():
            result += " | None"  # a count below 1
        return args, result

    def stub_text(self):
        if self.stub:
            return f"def {self.name}{self.stub}: ..."
        args, result = self.signature()
        sig = ", ".join([f"{n}: {t}" for n, t in args] + ["/"]) if args else ""
        return f"def {self.name}({sig}) -> {result}: ..."

    def doc_text(self, name, summary):
        """The docstring of the method `name` (an alias has its own name and
        summary): a signature that inspect reads, the summary, and the
        calling form with the types of arguments and result."""
        args, result = self.signature()
        if args is None:
            typed = f"{name}{self.stub}"
            head = ""
        else:
            typed = f"{name}({', '.join(f'{n}: {t}' for n, t in args)}) -> {result}"
            head = f"{name}({', '.join(['$module'] + [n for n, _ in args] + ['/'])})\n--\n\n"
        body = f"{summary}\n\n{typed}" if summary else typed
        return head + body


def c_dim(expr):
    """A length expression in the wrapper's terms, computed as KxDim so that
    it cannot overflow; the arguments of a called function stay plain."""
    out, depth_in_call, stack = "", 0, []
    for tok in re.findall(r"[A-Za-z_]\w*\s*\(|[A-Za-z_]\w*|\d+|\S", expr):
        if tok != "(" and tok.endswith("("):  # a call: its int result joins the arithmetic
            out += ("" if depth_in_call else "KxDim(") + tok.replace(" ", "")
            stack.append(not depth_in_call)
            depth_in_call += 1
        elif tok == "(":
            out += tok
            stack.append(None)
        elif tok == ")":
            opened = stack.pop() if stack else None
            out += ")"
            if opened is not None:
                depth_in_call -= 1
                if opened:
                    out += ")"
        elif re.fullmatch(r"[A-Za-z_]\w*", tok):
            out += f"a_{tok}" if depth_in_call else f"KxDim(a_{tok})"
        elif tok.isdigit():
            out += tok if depth_in_call else f"KxDim({tok})"
        else:
            out += f" {tok} " if tok in "+-*/" else tok
    return f"({out})"


def array_size(p):
    """The number of elements of an array parameter, as a KxDim expression."""
    return c_dim(p.dims[0]) if len(p.dims) == 1 else f"({' * '.join(c_dim(d) for d in p.dims)})"


def parse_lines(m):
    """Declarations of the parse targets, the parse, and the count test."""
    L, addrs = [], []
    for p in m.params:
        if p.letter == "O":
            L.append(f"    PyObject *o_{p.name} = nullptr;")
            addrs.append(f"&o_{p.name}")
        elif p.letter == "s#":
            L.append(f"    const char *a_{p.name} = nullptr;")
            L.append(f"    Py_ssize_t l_{p.name} = 0;")
            addrs += [f"&a_{p.name}", f"&l_{p.name}"]
        elif p.letter:
            ctype = CTYPES[p.letter]
            init = "nullptr" if p.letter == "s" else "0"
            L.append(f"    {c_local(ctype, 'a_' + p.name)} = {init};")
            addrs.append(f"&a_{p.name}")
    targets = "".join(", " + a for a in addrs)
    L.append(f'    if (!PyArg_ParseTuple(args, "{m.format}:{m.name}"{targets})) return kxpy_argfail();')
    # A count below 1 among the arguments that size the arrays: nothing happens.
    counts = m.count_args()
    if counts:
        L.append(f"    if ({' || '.join(f'a_{c} < 1' for c in counts)}) Py_RETURN_NONE;")
    # A count outside the routine's own range: the routine gives its warning
    # without arrays, and nothing is converted.
    for p in m.params:
        if p.range:
            lo, hi = p.range
            refused = ", ".join("nullptr" if q.role == "in" else q.local() for q in m.params)
            L.append(f"    if (a_{p.name} < {lo} || a_{p.name} > {hi}) {{")
            L.append(f"        {m.cname}({refused});")
            L.append("        Py_RETURN_NONE;")
            L.append("    }")
    return L


def derived_lines(m):
    L = []
    for p in m.params:
        if p.role == "derived":
            if p.type == "int":
                L.append(f"    int a_{p.name} = {c_dim(p.expr)}.as_int();")
            else:
                expr = IDENT.sub(lambda x: x.group(0) if x.group(2) else f"a_{x.group(1)}", p.expr)
                L.append(f"    {p.type} a_{p.name} = ({p.type})({expr});")
    return L


class Wrapper:
    """The generic wrapper of a table line."""

    def __init__(self, m):
        self.m = m

    def text(self):
        m = self.m
        L = [f"static PyObject *kxw_{m.name}(PyObject *, PyObject *args) {{"]
        L += parse_lines(m)
        L += derived_lines(m)
        for p in m.params:
            if p.role == "outscalar":
                L.append(f"    {p.type[:-2]} r_{p.name} = 0;")
        owned = []  # locals freed at the end
        checks = [p for p in m.params if p.role in ("in", "inout", "out", "text", "outtext", "bytes")]
        checks += [p for p in m.params if p.role == "work"]
        if checks:
            L.append("    KxErrStash err;")
        for p in checks:
            L += self.acquire(p, owned)
            L.append("    err.take();")
        call = f"{m.cname}({', '.join(self.carg(p) for p in m.params)})"
        if m.ret != "void":
            L.append(f"    {c_local(m.ret, 'ret')} = {{}};")
            call = f"ret = {call}"
        body = [f"kxpy_unlocked([&] {{ {call}; }});"] if m.release else [f"{call};"]
        body += self.write_backs()
        if not checks:
            L += [f"    {b}" for b in body]
            L.append(f"    return {self.result()};")
            L.append("}")
            return "\n".join(L)
        # The result is built before the buffers that it reads are freed.
        L.append("    PyObject *res = nullptr;")
        L.append("    if (!err.failed()) {")
        L += [f"        {b}" for b in body]
        L.append(f"        res = {self.result()};")
        L.append("    }")
        L += [f"    std::free({v});" for v in owned]
        L.append("    if (err.restore()) return nullptr;")
        L.append("    return res;")
        L.append("}")
        return "\n".join(L)

    def acquire(self, p, owned):
        dims = [c_dim(d) + ".size()" for d in p.dims]
        if p.role == "in" and p.elem == "double" and len(dims) == 1:
            # Read-only doubles: a C-contiguous float64 buffer is used in
            # place, anything else converted into a copy that h_ owns.
            return [f"    KxInD h_{p.name};",
                    f"    const double *v_{p.name} = h_{p.name}.get(o_{p.name}, {dims[0]});"]
        if p.role == "in" and p.elem == "double" and len(dims) == 2:
            return [f"    KxInD h_{p.name};",
                    f"    const double *v_{p.name} = h_{p.name}.get2(o_{p.name}, {dims[0]}, {dims[1]});"]
        if p.role in ("in", "inout"):
            if len(dims) == 1:
                fn = {"double": "qqpydb", "int": "qqpyib" if p.optional else "qqpyin"}[p.elem]
            else:
                fn = {("double", 2): "qqpyd2", ("int", 2): "qqpyi2", ("double", 3): "qqpyd3"}.get((p.elem, len(dims)))
                if not fn:
                    raise TableError(f"{self.m.where}: 3-D arrays are double")
            owned.append(f"v_{p.name}")
            return [f"    {p.elem} *v_{p.name} = {fn}(o_{p.name}, {', '.join(dims)});"]
        if p.role == "out":
            alloc = {"double": "kxpy_out_d", "int": "kxpy_out_i"}[p.elem]
            nested = "true" if len(p.dims) > 1 else "false"
            owned.append(f"v_{p.name}")
            return [f"    {p.elem} *v_{p.name} = {alloc}(o_{p.name}, {array_size(p)}.size(), {nested});"]
        if p.role == "work":
            # Scratch memory only once the caller's data has passed.
            alloc = {"double": "kxpy_zeros_d", "int": "kxpy_zeros_i"}[p.elem]
            owned.append(f"v_{p.name}")
            return [f"    {p.elem} *v_{p.name} = err.failed() ? nullptr : {alloc}({array_size(p)}.size());"]
        if p.role in ("text", "outtext"):
            room = dims[0] if dims else "-1"
            src = f"a_{p.name}" if p.role == "text" else '""'
            owned.append(f"t_{p.name}")
            return [f"    char *t_{p.name} = kxpy_textbuf({src}, {room});"]
        # bytes given as s#: long enough, and a private copy while unlocked
        need = dims[0]
        if self.m.release:
            owned.append(f"c_{p.name}")
            copy = f"kxpy_bytecopy(a_{p.name}, {need})"
            return [f"    char *c_{p.name} = kxpy_enough(l_{p.name}, {need}) ? {copy} : nullptr;"]
        return [f"    kxpy_enough(l_{p.name}, {need});"]

    def carg(self, p):
        if p.role == "bytes":
            src = f"c_{p.name}" if self.m.release else f"a_{p.name}"
            return f"({p.type}){src}"
        return p.local()

    def write_backs(self):
        out = []
        for p in self.m.params:
            if p.role not in ("inout", "out"):
                continue
            total = f"{array_size(p)}.size()"
            if p.count:
                q = next((q for q in self.m.params if q.name == p.count), None)
                cnt = "ret" if p.count == "return" else {"outscalar": "r_"}.get(q.role, "a_") + p.count
                total = f"kxpy_limit({total}, {cnt})"
            fn = ("qqpywd" if p.elem == "double" else "qqpywi") + ("2" if len(p.dims) > 1 else "")
            out.append(f"{fn}(v_{p.name}, o_{p.name}, {total});")
        return out

    def result(self):
        res = self.m.results()
        if not res:
            return "kxpy_none()"
        fmt, vals = "", []
        for letter, expr in res:
            if letter == "s":
                fmt += "N"
                vals.append(f"kxpy_text({expr})")
            elif letter == "f":
                fmt += "d"
                vals.append(f"(double){expr}")
            else:
                fmt += letter
                vals.append(expr)
        return f'Py_BuildValue("{fmt}", {", ".join(vals)})'


def result_type(gives):
    def one(fmt):
        types = [PYTYPES[u] for u in units(fmt)]
        return types[0] if len(types) == 1 else f"tuple[{', '.join(types)}]"

    if not gives:
        return "None"
    # Binary results are bytes also in their empty form.
    forms = [g for g in gives if "s#" in g] or gives
    out = []
    for g in forms:
        t = one(g)
        if t not in out:
            out.append(t)
    return " | ".join(out)


def read_table(table_dir=TABLE_DIR, strict=None):
    if strict is None:
        strict = os.path.abspath(table_dir) == os.path.abspath(TABLE_DIR)
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
                    raise TableError(f"{where}: {m.name} is already at {seen[m.name].where}")
                seen[m.name] = m
                methods.append(m)
    for m in methods:
        if m.alias:
            t = seen.get(m.alias)
            if t is None or t.alias:
                raise TableError(f"{m.where}: {m.name}: alias of an unknown method {m.alias!r}")
            if (t.format, t.gives, t.release, t.own) != (m.format, m.gives, m.release, m.own):
                raise TableError(f"{m.where}: {m.name}: an alias has the format, result and lock of {t.name}")
            m.target = t
        if strict:
            if m.special and m.name not in SPECIAL:
                raise TableError(f"{m.where}: {m.name} is a plain forward: give its declaration, not special:")
            if not m.special and not m.alias and m.name in SPECIAL:
                raise TableError(f"{m.where}: {m.name} must be hand-written: it {SPECIAL[m.name]}")
    return methods


def header_text(methods, guard="KOLVEX_H", title="kolvex: the public routines of the plotting library."):
    out = [
        f"/* {title}",
        " *",
        " * Generated from the routine table by tools/gen_binding.py; do not edit.",
        " * Routines take arrays as a pointer with a count given by the caller,",
        " * strings as zero-terminated UTF-8, and report failures as numbered",
        " * warnings on the console or in the error file, never by return codes.",
        " * Every routine may be called from C or C++; none throws. */",
        f"#ifndef {guard}",
        f"#define {guard}",
        "",
        "#ifndef KOLVEX_API",
        "#if defined(KOLVEX_EXPORTS)",
        "#define KOLVEX_API __attribute__((visibility(\"default\")))",
        "#else",
        "#define KOLVEX_API",
        "#endif",
        "#endif",
        "",
        "#ifndef KOLVEX_NOEXCEPT",
        "#ifdef __cplusplus",
        "#define KOLVEX_NOEXCEPT noexcept",
        "#else",
        "#define KOLVEX_NOEXCEPT",
        "#endif",
        "#endif",
        "",
        "#ifdef __cplusplus",
        'extern "C" {',
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
    out += ["", "#ifdef __cplusplus", "}", "#endif", "", f"#endif /* {guard} */", ""]
    return "\n".join(out)


def c_string(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n") + '"'


def read_summaries(table_dir=TABLE_DIR):
    """The one-line summaries of the methods (summaries.txt beside the
    table): name, blanks, the summary.  A method without one gets a
    docstring without it; a test requires one for every bound method."""
    out = {}
    path = os.path.join(table_dir, "summaries.txt")
    if not os.path.exists(path):
        return out
    with open(path, encoding="utf-8") as f:
        for no, line in enumerate(f, 1):
            if not line.strip() or line.startswith("#"):
                continue
            parts = line.split(None, 1)
            if len(parts) < 2:
                raise TableError(f"{os.path.relpath(path, ROOT)}:{no}: a summary line is a name and its text")
            if parts[0] in out:
                raise TableError(f"{os.path.relpath(path, ROOT)}:{no}: {parts[0]} has a summary already")
            out[parts[0]] = parts[1].strip()
    return out


def method_doc(m, summaries):
    src = m.target if m.alias else m
    return src.doc_text(m.name, summaries.get(m.name, ""))


def wrappers_text(methods, summaries=None):
    summaries = summaries or {}
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
        fn = m.target.fn_name() if m.alias else m.fn_name()
        # The method table carries no doc strings: the module is exactly its
        # methods.  The help text lives in the stub, where editors read it.
        out.append(f'    {{"{m.name}", {fn}, METH_VARARGS, nullptr}},')
    out.append("    {nullptr, nullptr, 0, nullptr},")
    out.append("};")
    return "\n".join(out) + "\n"


def stub_text(methods, module="kolvex", summaries=None):
    summaries = summaries or {}
    out = [
        f'"""{module}: scientific plotting from Python.',
        "",
        "Every function is a routine of the library; arguments are positional.",
        '"""',
        "# Generated from the routine table by tools/gen_binding.py; do not edit.",
        "from typing import Any, Callable, MutableSequence, Optional, Sequence",
        "",
    ]
    for m in sorted(methods, key=lambda m: m.name):
        src = m.target if m.alias else m
        text = src.stub_text().replace(f"def {src.name}(", f"def {m.name}(", 1)
        doc = method_doc(m, summaries)
        if "\n--\n\n" in doc:
            doc = doc.split("\n--\n\n", 1)[1]
        assert text.endswith(": ...")
        body = doc.replace("\\", "\\\\").replace('"""', '\\"\\"\\"').replace("\n", "\n    ")
        text = text[: -len(" ...")] + '\n    """' + body + '"""'
        out.append(text)
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
    ap.add_argument("--table-dir", default=TABLE_DIR)
    ap.add_argument("--header", nargs="?", const=HEADER)
    ap.add_argument("--guard", default="KOLVEX_H", help="include guard of the header")
    ap.add_argument("--wrappers")
    ap.add_argument("--stub")
    ap.add_argument("--module", default="kolvex", help="module name in the stub")
    ap.add_argument("--check", action="store_true", help="fail when include/kolvex.h is stale")
    a = ap.parse_args()
    try:
        methods = read_table(a.table_dir)
        summaries = read_summaries(a.table_dir)
        if a.header:
            write(a.header, header_text(methods, a.guard))
        if a.wrappers:
            write(a.wrappers, wrappers_text(methods, summaries))
        if a.stub:
            write(a.stub, stub_text(methods, a.module, summaries))
    except TableError as e:
        sys.exit(f"routine table: {e}")
    if a.check:
        with open(HEADER, encoding="utf-8") as f:
            if f.read() != header_text(methods):
                sys.exit("include/kolvex.h is stale: run tools/gen_binding.py")
    if not (a.header or a.wrappers or a.stub or a.check):
        write(HEADER, header_text(methods))


if __name__ == "__main__":
    main()
