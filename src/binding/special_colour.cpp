// vscl3d is a second name of vltfil: one wrapper, one routine.
#include "marshal.h"

#include "kolvex.h"

PyObject *kxs_vscl3d(PyObject *, PyObject *args) {
    const char *cfl = nullptr, *copt = nullptr;
    if (!PyArg_ParseTuple(args, "ss:vscl3d", &cfl, &copt)) return kxpy_argfail();
    vltfil(cfl, copt);
    Py_RETURN_NONE;
}
