// Session wrappers that do more than forward to their routine.
#include "marshal.h"

#include "kolvex.h"

PyObject *kxs_metafl(PyObject *, PyObject *args) {
    const char *cdev = nullptr;
    if (!PyArg_ParseTuple(args, "s:metafl", &cdev)) return kxpy_argfail();
    metafl(cdev);
    // The convenience plots no longer choose a device of their own.
    pymfl = 1;
    Py_RETURN_NONE;
}

PyObject *kxs_kolini(PyObject *, PyObject *args) {
    if (!PyArg_ParseTuple(args, ":kolini")) return kxpy_argfail();
    Py_BEGIN_ALLOW_THREADS
    kolini();
    Py_END_ALLOW_THREADS
    // The settings that the convenience plots keep for a session are
    // applied here once they exist.
    Py_RETURN_NONE;
}
