// Legend wrappers: the module owns the legend's text buffer, which the
// caller's first argument only stands for.
#include "marshal.h"

#include <cstdlib>
#include <cstring>

#include "kolvex.h"
#include "plots/curves.h"

namespace {

char *pylegb = nullptr;  // the legend buffer that legini allocated
Py_ssize_t pylegn = 0;   // its size in bytes
int pylegf = 0;          // 1 once it exists

// A buffer of at least n bytes, blank-filled beyond what it held: the
// library's legend state (of this thread's block) may ask for more than
// the last legini of the module gave.
char *legend_buffer(Py_ssize_t n) {
    if (pylegb && pylegn >= n) return pylegb;
    char *p = (char *)std::malloc((size_t)n + 1);
    if (!p) return nullptr;
    std::memset(p, ' ', (size_t)n);
    p[n] = '\0';
    if (pylegb) std::memcpy(p, pylegb, (size_t)pylegn);
    std::free(pylegb);
    pylegb = p;
    pylegn = n;
    pylegf = 1;
    return p;
}

char *current_buffer() {
    int need = qqlegbytes();
    return legend_buffer(need > 0 ? need : 1);
}

}  // namespace

PyObject *kxs_legini(PyObject *, PyObject *args) {
    const char *cbuf = nullptr;
    int nlin = 0, nmaxln = 0;
    if (!PyArg_ParseTuple(args, "sii:legini", &cbuf, &nlin, &nmaxln)) return kxpy_argfail();
    if (nlin >= 1 && nlin <= 80 && nmaxln >= 1 && nmaxln <= 256) {
        Py_ssize_t n = (Py_ssize_t)nlin * nmaxln;
        char *p = (char *)std::malloc((size_t)n + 1);
        if (!p) {
            PyErr_SetString(PyExc_MemoryError, "out of memory in legini");
            return nullptr;
        }
        std::memset(p, ' ', (size_t)n);
        p[n] = '\0';
        std::free(pylegb);
        pylegb = p;
        pylegn = n;
        pylegf = 1;
        legini(pylegb, nlin, nmaxln);
    } else {
        char scratch[2] = {' ', '\0'};
        legini(scratch, nlin, nmaxln);  // refuses the sizes with its warning
    }
    Py_RETURN_NONE;
}

PyObject *kxs_leglin(PyObject *, PyObject *args) {
    const char *cbuf = nullptr, *cstr = nullptr;
    int ilin = 0;
    if (!PyArg_ParseTuple(args, "ssi:leglin", &cbuf, &cstr, &ilin)) return kxpy_argfail();
    char *p = current_buffer();
    if (!p) return PyErr_NoMemory();
    leglin(p, cstr, ilin);
    Py_RETURN_NONE;
}

PyObject *kxs_legend(PyObject *, PyObject *args) {
    const char *cbuf = nullptr;
    int npos = 0;
    if (!PyArg_ParseTuple(args, "si:legend", &cbuf, &npos)) return kxpy_argfail();
    char *p = current_buffer();
    if (!p) return PyErr_NoMemory();
    legend(p, npos);
    Py_RETURN_NONE;
}

PyObject *kxs_nxlegn(PyObject *, PyObject *args) {
    const char *cbuf = nullptr;
    if (!PyArg_ParseTuple(args, "s:nxlegn", &cbuf)) return kxpy_argfail();
    char *p = current_buffer();
    if (!p) return PyErr_NoMemory();
    return Py_BuildValue("i", nxlegn(p));
}

PyObject *kxs_nylegn(PyObject *, PyObject *args) {
    const char *cbuf = nullptr;
    if (!PyArg_ParseTuple(args, "s:nylegn", &cbuf)) return kxpy_argfail();
    char *p = current_buffer();
    if (!p) return PyErr_NoMemory();
    return Py_BuildValue("i", nylegn(p));
}

// legsel's count is a selection, not only a length: 0 shows no line and -1
// all lines again, so those counts reach the library (which reads no
// element for them), and so does a count beyond the 30 selections, which
// it refuses before anything is read.
PyObject *kxs_legsel(PyObject *, PyObject *args) {
    PyObject *o_nray = nullptr;
    int n = 0;
    if (!PyArg_ParseTuple(args, "Oi:legsel", &o_nray, &n)) return kxpy_argfail();
    if (n < 1 || n > 30) {
        int none = 0;
        legsel(&none, n);
        Py_RETURN_NONE;
    }
    KxErrStash err;
    int *v = qqpyin(o_nray, n);
    err.take();
    if (!err.failed()) legsel(v, n);
    std::free(v);
    if (err.restore()) return nullptr;
    Py_RETURN_NONE;
}

// The pie's label lines come from the module's legend buffer; without a
// legini no line is read.
PyObject *kxs_piegrf(PyObject *, PyObject *args) {
    const char *cbuf = nullptr;
    PyObject *o_xray = nullptr;
    int nlin = 0, n = 0;
    if (!PyArg_ParseTuple(args, "siOi:piegrf", &cbuf, &nlin, &o_xray, &n)) return kxpy_argfail();
    if (n < 1) {
        double none = 0;
        piegrf(nullptr, 0, &none, n);  // refuses the count with its warning
        Py_RETURN_NONE;
    }
    KxErrStash err;
    double *x = qqpydb(o_xray, n);
    err.take();
    if (!err.failed()) {
        char *p = qqlegbytes() > 0 ? current_buffer() : nullptr;
        piegrf(p, p ? nlin : 0, x, n);
    }
    std::free(x);
    bool raised = kxpy_pie_raise();
    if (err.restore() || raised) return nullptr;
    Py_RETURN_NONE;
}
