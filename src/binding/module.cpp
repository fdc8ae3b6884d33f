// The module kolvex: one method per routine of the library, no classes,
// attributes or exceptions of its own.  The wrappers come from the routine
// table (tools/gen_binding.py); the few that the table cannot express are
// written by hand in special_*.cpp.
//
// A hand-written wrapper is `PyObject *kxs_<name>(PyObject *, PyObject *args)`
// and follows the rules of the generated ones:
//   - parse with PyArg_ParseTuple(args, "<format>:<name>", ...) and on
//     failure `return kxpy_argfail();`, so that only TypeError, ValueError
//     and MemoryError leave the module;
//   - with arrays: a count below 1 returns None at once; every conversion
//     runs (qqpydb and its kin), each followed by KxErrStash::take(); the
//     routine runs only when err.failed() is false; every array is freed on
//     every path (KxOwned holds one for you);
//   - run the routine through kxpy_unlocked exactly when the table's line
//     says r (it gives the interpreter lock up only when each thread has a
//     block of its own), and then hand the routine no memory of a Python
//     object that is not immutable;
//   - texts come back through kxpy_text, binary data as bytes through
//     kxpy_bytes, and a bytes result of a caller-given size through
//     kxpy_sized_bytes, which applies the size rules; a buffer that the
//     routine fills is sized from the library's real state, never from a
//     module flag alone.
#include "marshal.h"

#include <cstdlib>

#include "kolvex.h"
#include "core/threads.h"
// The library's own sizes that lengths of table lines call.
#include "raster/image_mode.h"
#include "plots/curves.h"

#include "wrappers.inc"

static struct PyModuleDef kolvex_module = {
    // clang-format off
    PyModuleDef_HEAD_INIT, "kolvex", nullptr, -1, kolvex_methods, nullptr, nullptr, nullptr, nullptr,
    // clang-format on
};

PyMODINIT_FUNC PyInit_kolvex(void) {
    kxpy_perthread = qqthrmode;
    return PyModule_Create2(&kolvex_module, 1013);
}
