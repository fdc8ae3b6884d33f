// Conversion between Python objects and the plain arrays of the core.
//
// Every helper that returns an array hands the caller ownership of memory
// from malloc; the caller frees it with free() on every path.  On failure
// the helpers return null with a Python exception set, using only
// ValueError, MemoryError and TypeError, with the module's fixed messages.
//
// Objects that export a buffer of float64, int32 or int64 numbers are read
// straight from the buffer, whatever their strides; they give the same
// numbers as reading the elements one by one would.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

// The length of a sequence, or -1 with ValueError set.
Py_ssize_t qqpyln(PyObject *object);

// n doubles or 32-bit integers from a flat sequence.
double *qqpydb(PyObject *slot, int n);
int *qqpyin(PyObject *slot, int n);
// The integer list of the map shading routines: an empty sequence or None
// gives an array of n zeros.
int *qqpyib(PyObject *slot, int n);
// Flattened nested input, flat input accepted too.
double *qqpyd2(PyObject *slot, int nx, int ny);
int *qqpyi2(PyObject *slot, int nx, int ny);
double *qqpyd3(PyObject *slot, int nx, int ny, int nz);

// Writes n elements back into the caller's sequence.  Failing writes (a
// tuple) are ignored and leave no exception behind.
void qqpywd(const double *array, PyObject *sequence, int n);
void qqpywi(const int *array, PyObject *sequence, int n);

// Called after PyArg_ParseTuple failed: an OverflowError of an integer
// argument becomes a ValueError with the same message, so that bad
// arguments raise only the module's three exception types.  Returns null.
PyObject *kxpy_argfail();

// Keeps the last of several conversion failures: each conversion runs with
// no exception pending, and the latest failure's exception stands.
struct KxErrStash {
    PyObject *type = nullptr, *value = nullptr, *tb = nullptr;
    // Moves a pending exception into the stash, replacing an older one.
    void take();
    // Restores the stashed exception; returns true when there was one.
    bool restore();
};

// Module-level state that several wrappers share.
extern int pyrgb;  // pixel rows are 3 bytes a pixel (imgmod "RGB")
extern int pymfl;  // metafl was called through the module

// A copy of a text for a routine that changes it in place; null with
// MemoryError set when there is no memory.
char *kxpy_strdup(const char *text);
inline int kxpy_min(int a, int b) { return a < b ? a : b; }
