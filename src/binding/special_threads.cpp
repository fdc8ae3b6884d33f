// thrfin frees the blocks of every thread: it must not run while another
// thread is inside a call on its block.
#include "marshal.h"

#include "kolvex.h"

PyObject *kxs_thrfin(PyObject *, PyObject *args) {
    if (!PyArg_ParseTuple(args, ":thrfin")) return kxpy_argfail();
    kxpy_exclusive([] { thrfin(); });
    Py_RETURN_NONE;
}
