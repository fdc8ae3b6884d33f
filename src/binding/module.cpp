// The module kolvex: one method per routine of the library, no classes,
// attributes or exceptions of its own.  The wrappers come from the routine
// table (tools/gen_binding.py); the few that the table cannot express are
// written by hand in special_*.cpp.
#include "marshal.h"

#include <cstdlib>

#include "kolvex.h"

#include "wrappers.inc"

static struct PyModuleDef kolvex_module = {
    PyModuleDef_HEAD_INIT, "kolvex", nullptr, -1, kolvex_methods, nullptr, nullptr, nullptr, nullptr,
};

PyMODINIT_FUNC PyInit_kolvex(void) { return PyModule_Create2(&kolvex_module, 1013); }
