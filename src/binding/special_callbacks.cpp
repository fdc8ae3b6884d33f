// Methods that take a Python callable: the module keeps the callable in a
// slot and hands the library a plain function (a trampoline) that calls it.
//
// The surface functions run while the library draws, in the calling thread;
// their wrappers keep the interpreter lock for the whole call, so the
// trampolines call Python directly.
#include "marshal.h"

#include "kolvex.h"

namespace {

PyObject *pysrffn = nullptr;  // the function of surfun and surfcp (one reference held)
// The function of the surfun or surfcp call that runs now: a callable that
// draws a surface itself replaces the slot, but not the function of the
// outer call.
PyObject *srf_active = nullptr;

// The exception of the callable during the current surface call: the first
// one is kept, the callable is not called again, and the method raises it
// once the library has returned.  Null outside such a call.
KxErrStash *srf_error = nullptr;

// A result counts when it is a float; anything else, or an exception,
// gives 0.0 at that point.
double float_result(PyObject *result) {
    if (!result) {
        if (srf_error && !srf_error->failed()) srf_error->take();
        PyErr_Clear();
        return 0.0;
    }
    double v = PyFloat_Check(result) ? PyFloat_AsDouble(result) : 0.0;
    Py_DECREF(result);
    return v;
}

double surfun_trampoline(double x, double y) {
    if (!srf_active || (srf_error && srf_error->failed())) return 0.0;
    PyObject *args = Py_BuildValue("(dd)", x, y);
    if (!args) return float_result(nullptr);
    PyObject *result = PyObject_CallObject(srf_active, args);
    Py_DECREF(args);
    return float_result(result);
}

double surfcp_trampoline(double p, double q, int iopt) {
    if (!srf_active || (srf_error && srf_error->failed())) return 0.0;
    PyObject *args = Py_BuildValue("(ffi)", (float)p, (float)q, iopt);
    if (!args) return float_result(nullptr);
    PyObject *result = PyObject_CallObject(srf_active, args);
    Py_DECREF(args);
    return float_result(result);
}

// Stores a new callable in a single slot, after the check.
bool store_callable(PyObject **slot, PyObject *fn) {
    if (!PyCallable_Check(fn)) {
        PyErr_SetString(PyExc_TypeError, "parameter must be callable");
        return false;
    }
    Py_INCREF(fn);
    Py_XSETREF(*slot, fn);
    return true;
}

PyObject *pyprjfn = nullptr;  // the function of setcbk (one reference held)

// A number of the user projection's result: a float as it is, an int
// with 0.5 added; false for anything else.
bool projection_value(PyObject *o, double *v) {
    if (PyFloat_Check(o)) {
        *v = PyFloat_AsDouble(o);
        return true;
    }
    if (PyLong_Check(o)) {
        double d = PyLong_AsDouble(o);
        if (d == -1.0 && PyErr_Occurred()) {
            PyErr_Clear();
            return false;
        }
        *v = d + 0.5;
        return true;
    }
    return false;
}

// Map drawing may have released the interpreter lock: the trampoline
// takes it for the call.  A result other than a list of two numbers, or
// an exception, leaves the coordinates as they are.
void setcbk_trampoline(double *x, double *y) {
    PyGILState_STATE st = PyGILState_Ensure();
    PyObject *fn = pyprjfn;
    if (fn) {
        Py_INCREF(fn);
        PyObject *result = PyObject_CallFunction(fn, "(dd)", *x, *y);
        Py_DECREF(fn);
        if (!result) {
            PyErr_Clear();
        } else {
            double a, b;
            if (PyList_Check(result) && PyList_GET_SIZE(result) == 2 &&
                projection_value(PyList_GET_ITEM(result, 0), &a) &&
                projection_value(PyList_GET_ITEM(result, 1), &b)) {
                *x = a;
                *y = b;
            }
            Py_DECREF(result);
        }
    }
    PyGILState_Release(st);
}

}  // namespace

PyObject *kxs_setcbk(PyObject *, PyObject *args) {
    PyObject *fn = nullptr;
    const char *key = nullptr;
    if (!PyArg_ParseTuple(args, "Os:setcbk", &fn, &key)) return kxpy_argfail();
    if (!store_callable(&pyprjfn, fn)) return nullptr;
    setcbk(setcbk_trampoline, key);
    Py_RETURN_NONE;
}

namespace {

// Runs one surface call with fn as the active function; raises what the
// function raised first, once the library has returned.
template <class Call>
PyObject *run_surface(PyObject *fn, Call call) {
    if (!store_callable(&pysrffn, fn)) return nullptr;
    KxErrStash err;
    KxErrStash *outer = srf_error;
    PyObject *outer_fn = srf_active;
    srf_error = &err;
    srf_active = fn;
    Py_INCREF(fn);  // held for the call, whatever happens to the slot
    call();
    srf_active = outer_fn;
    srf_error = outer;
    Py_DECREF(fn);
    if (err.restore()) return nullptr;
    Py_RETURN_NONE;
}

}  // namespace

PyObject *kxs_surfun(PyObject *, PyObject *args) {
    PyObject *fn = nullptr;
    int ixpts, iypts;
    double xdel, ydel;
    if (!PyArg_ParseTuple(args, "Oidid:surfun", &fn, &ixpts, &xdel, &iypts, &ydel))
        return kxpy_argfail();
    return run_surface(fn, [&] { surfun(surfun_trampoline, ixpts, xdel, iypts, ydel); });
}

PyObject *kxs_surfcp(PyObject *, PyObject *args) {
    PyObject *fn = nullptr;
    double pmin, pmax, pstp, qmin, qmax, qstp;
    if (!PyArg_ParseTuple(args, "Odddddd:surfcp", &fn, &pmin, &pmax, &pstp, &qmin, &qmax, &qstp))
        return kxpy_argfail();
    return run_surface(fn, [&] { surfcp(surfcp_trampoline, pmin, pmax, pstp, qmin, qmax, qstp); });
}

// ---- piecbk ------------------------------------------------------------------------

namespace {

PyObject *pypiefn = nullptr;  // the function of piecbk (one reference held)
// The exception of the callable during a pie: the first is kept, the
// callable is not called again, and piegrf raises it when the library has
// returned.
KxErrStash pie_pending;

// An integer of the callable's result, or the value it had.
void int_item(PyObject *seq, Py_ssize_t i, int *v) {
    PyObject *o = PySequence_GetItem(seq, i);
    if (!o) return PyErr_Clear();
    long x = PyLong_AsLong(o);
    if (!(x == -1 && PyErr_Occurred()) && x >= INT_MIN && x <= INT_MAX) *v = (int)x;
    PyErr_Clear();
    Py_DECREF(o);
}

// The callable receives (iseg, xdat, xper, nrad, noff, angle, nvx, nvy,
// idrw, iann) and returns the seven values that may change, in that order
// (nrad, noff, angle, nvx, nvy, idrw, iann); None keeps them.
void piecbk_trampoline(int iseg, double xdat, double xper, int *nrad, int *noff, double *angle,
                       int *nvx, int *nvy, int *idrw, int *iann) {
    if (!pypiefn || pie_pending.failed()) return;
    PyGILState_STATE gil = PyGILState_Ensure();
    PyObject *fn = pypiefn;
    Py_INCREF(fn);
    PyObject *r = PyObject_CallFunction(fn, "iddiidiiii", iseg, xdat, xper, *nrad, *noff, *angle,
                                        *nvx, *nvy, *idrw, *iann);
    Py_DECREF(fn);
    if (!r) {
        pie_pending.take();
    } else {
        if (r != Py_None && PySequence_Check(r) && PySequence_Size(r) == 7) {
            int_item(r, 0, nrad);
            int_item(r, 1, noff);
            PyObject *o = PySequence_GetItem(r, 2);
            if (o) {
                double d = PyFloat_AsDouble(o);
                if (!(d == -1.0 && PyErr_Occurred())) *angle = d;
                Py_DECREF(o);
            }
            PyErr_Clear();
            int_item(r, 3, nvx);
            int_item(r, 4, nvy);
            int_item(r, 5, idrw);
            int_item(r, 6, iann);
        }
        PyErr_Clear();
        Py_DECREF(r);
    }
    PyGILState_Release(gil);
}

}  // namespace

PyObject *kxs_piecbk(PyObject *, PyObject *args) {
    PyObject *fn = nullptr;
    if (!PyArg_ParseTuple(args, "O:piecbk", &fn)) return kxpy_argfail();
    if (!store_callable(&pypiefn, fn)) return nullptr;
    piecbk(piecbk_trampoline);
    Py_RETURN_NONE;
}

// Raises the exception that a pie callback left, once; called by piegrf's
// wrapper after the library returned.
bool kxpy_pie_raise() { return pie_pending.restore(); }
