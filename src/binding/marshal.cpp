#include "marshal.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>

int pyrgb = 0;
int pymfl = 0;

namespace {

void set_error(PyObject *type, const char *message) { PyErr_SetString(type, message); }

// ---- the buffer fast path -------------------------------------------------------

enum class Kind { None, F64, I32, I64 };

// The element kind of a buffer format, native byte order only.
Kind kind_of(const Py_buffer &view) {
    const char *f = view.format ? view.format : "B";
    if (*f == '@' || *f == '=' || *f == '<') ++f;
    if (f[0] == '\0' || f[1] != '\0') return Kind::None;
    switch (f[0]) {
    case 'd': return view.itemsize == 8 ? Kind::F64 : Kind::None;
    case 'i':
    case 'l':
    case 'q':
        if (view.itemsize == 4) return Kind::I32;
        if (view.itemsize == 8) return Kind::I64;
        return Kind::None;
    default: return Kind::None;
    }
}

// A view of a numeric buffer, released on scope exit.
struct View {
    Py_buffer view;
    bool held = false;
    Kind kind = Kind::None;
    explicit View(PyObject *obj, int flags = PyBUF_RECORDS_RO) {
        if (!PyObject_CheckBuffer(obj)) return;
        if (PyObject_GetBuffer(obj, &view, flags) != 0) {
            PyErr_Clear();
            return;
        }
        held = true;
        kind = kind_of(view);
    }
    ~View() {
        if (held) PyBuffer_Release(&view);
    }
    bool usable(int ndim) const { return held && kind != Kind::None && view.ndim == ndim; }
    const char *at(Py_ssize_t i) const { return (const char *)view.buf + i * view.strides[0]; }
    const char *at(Py_ssize_t i, Py_ssize_t j) const {
        return (const char *)view.buf + i * view.strides[0] + j * view.strides[1];
    }
    const char *at(Py_ssize_t i, Py_ssize_t j, Py_ssize_t k) const {
        return (const char *)view.buf + i * view.strides[0] + j * view.strides[1] + k * view.strides[2];
    }
};

template <typename T>
T read_as(Kind kind, const char *p) {
    switch (kind) {
    case Kind::F64: {
        double v;
        std::memcpy(&v, p, 8);
        return (T)v;
    }
    case Kind::I32: {
        int32_t v;
        std::memcpy(&v, p, 4);
        return (T)v;
    }
    default: {
        int64_t v;
        std::memcpy(&v, p, 8);
        return (T)v;
    }
    }
}

template <typename T>
T *alloc_zeroed(size_t n) {
    T *a = static_cast<T *>(std::calloc(n ? n : 1, sizeof(T)));
    if (!a) set_error(PyExc_MemoryError, "out of memory");
    return a;
}

// ---- element conversion of the generic path ----------------------------------------

// A float element, or an element of the int family (Python ints and
// anything with __index__, such as numpy integers).
bool element_double(PyObject *item, double *out) {
    if (PyFloat_Check(item)) {
        *out = PyFloat_AsDouble(item);
        return true;
    }
    if (PyLong_Check(item) || PyIndex_Check(item)) {
        PyObject *index = PyNumber_Index(item);
        if (!index) {
            PyErr_Clear();
            return false;
        }
        *out = PyLong_AsDouble(index);
        Py_DECREF(index);
        if (*out == -1.0 && PyErr_Occurred()) {
            PyErr_Clear();
            return false;
        }
        return true;
    }
    return false;
}

bool element_int(PyObject *item, int *out) {
    if (PyFloat_Check(item)) return false;
    if (PyLong_Check(item) || PyIndex_Check(item)) {
        PyObject *index = PyNumber_Index(item);
        if (!index) {
            PyErr_Clear();
            return false;
        }
        long v = PyLong_AsLong(index);
        Py_DECREF(index);
        if (v == -1 && PyErr_Occurred()) {
            PyErr_Clear();
            return false;
        }
        *out = (int)v;
        return true;
    }
    return false;
}

const char kNoFloat[] = "no floatingpoint element in sequence";
const char kNoInt[] = "no integer element in sequence";

template <typename T>
bool convert(PyObject *item, T *out);
template <>
bool convert<double>(PyObject *item, double *out) {
    if (element_double(item, out)) return true;
    set_error(PyExc_ValueError, kNoFloat);
    return false;
}
template <>
bool convert<int>(PyObject *item, int *out) {
    if (element_int(item, out)) return true;
    set_error(PyExc_ValueError, kNoInt);
    return false;
}

// Reads n elements of a flat sequence; fetch errors raise the given type.
template <typename T>
T *flat(PyObject *slot, int n, PyObject *fetch_error) {
    {
        View v(slot);
        if (v.usable(1)) {
            if (v.view.shape[0] < n) {
                set_error(PyExc_MemoryError, "out of range");
                return nullptr;
            }
            T *a = alloc_zeroed<T>((size_t)n);
            if (!a) return nullptr;
            // int from a float buffer goes the generic way (and fails there).
            if (!(std::is_same<T, int>::value && v.kind == Kind::F64)) {
                for (int i = 0; i < n; ++i) a[i] = read_as<T>(v.kind, v.at(i));
                return a;
            }
            std::free(a);
        }
    }
    Py_ssize_t len = qqpyln(slot);
    if (len < 0) return nullptr;
    if (len < n) {
        set_error(PyExc_MemoryError, "out of range");
        return nullptr;
    }
    T *a = alloc_zeroed<T>((size_t)n);
    if (!a) return nullptr;
    for (int i = 0; i < n; ++i) {
        PyObject *item = PySequence_GetItem(slot, i);
        if (!item) {
            PyErr_Clear();
            set_error(fetch_error, "sequence error");
            std::free(a);
            return nullptr;
        }
        bool ok = convert<T>(item, &a[i]);
        Py_DECREF(item);
        if (!ok) {
            std::free(a);
            return nullptr;
        }
    }
    return a;
}

// Nested 2-D input: rows of equal length, or a flat sequence of numbers.
template <typename T>
T *nested2(PyObject *slot, int nx, int ny) {
    size_t need = (size_t)nx * (size_t)ny;
    {
        View v(slot);
        if (v.held && v.kind != Kind::None && (v.view.ndim == 1 || v.view.ndim == 2) &&
            !(std::is_same<T, int>::value && v.kind == Kind::F64)) {
            Py_ssize_t outer = v.view.shape[0];
            Py_ssize_t row = v.view.ndim == 2 ? v.view.shape[1] : 1;
            if (outer < 1) {
                set_error(PyExc_ValueError, "sequence error");
                return nullptr;
            }
            size_t total = (size_t)outer * (size_t)row;
            if (total < need) {
                set_error(PyExc_MemoryError, "out of range");
                return nullptr;
            }
            T *a = alloc_zeroed<T>(total);
            if (!a) return nullptr;
            for (Py_ssize_t i = 0; i < outer; ++i)
                for (Py_ssize_t j = 0; j < row; ++j)
                    a[i * row + j] = read_as<T>(v.kind, v.view.ndim == 2 ? v.at(i, j) : v.at(i));
            return a;
        }
    }
    Py_ssize_t outer = qqpyln(slot);
    if (outer < 0) return nullptr;
    PyObject *first = PySequence_GetItem(slot, 0);
    if (!first) {
        PyErr_Clear();
        set_error(PyExc_ValueError, "sequence error");
        return nullptr;
    }
    Py_ssize_t row = 1;
    if (PySequence_Check(first)) {
        row = PySequence_Size(first);
        if (row < 0) {
            PyErr_Clear();
            Py_DECREF(first);
            set_error(PyExc_ValueError, "sequence has no length");
            return nullptr;
        }
    }
    Py_DECREF(first);
    size_t total = (size_t)outer * (size_t)row;
    if (total < need) {
        set_error(PyExc_MemoryError, "out of range");
        return nullptr;
    }
    T *a = alloc_zeroed<T>(total);
    if (!a) return nullptr;
    for (Py_ssize_t i = 0; i < outer; ++i) {
        PyObject *el = PySequence_GetItem(slot, i);
        bool ok = el != nullptr;
        if (!ok) {
            PyErr_Clear();
            set_error(PyExc_MemoryError, "sequence error");
        } else if (PySequence_Check(el)) {
            Py_ssize_t len = PySequence_Size(el);
            if (len != row) {
                PyErr_Clear();
                set_error(PyExc_ValueError, "matrix rows have different lengths");
                ok = false;
            }
            for (Py_ssize_t j = 0; ok && j < row; ++j) {
                PyObject *item = PySequence_GetItem(el, j);
                if (!item) {
                    PyErr_Clear();
                    set_error(PyExc_MemoryError, "sequence error");
                    ok = false;
                    break;
                }
                ok = convert<T>(item, &a[i * row + j]);
                Py_DECREF(item);
            }
        } else {
            ok = convert<T>(el, &a[i * row]);
        }
        Py_XDECREF(el);
        if (!ok) {
            std::free(a);
            return nullptr;
        }
    }
    return a;
}

// The length of a nested level: its size when it is a sequence, else 1.
bool level_length(PyObject *obj, Py_ssize_t *len) {
    if (!PySequence_Check(obj)) {
        *len = 1;
        return true;
    }
    *len = PySequence_Size(obj);
    if (*len < 0) {
        PyErr_Clear();
        set_error(PyExc_ValueError, "sequence has no length");
        return false;
    }
    return true;
}

}  // namespace

Py_ssize_t qqpyln(PyObject *object) {
    if (!PySequence_Check(object)) {
        set_error(PyExc_ValueError, "parameter is not a sequence");
        return -1;
    }
    Py_ssize_t n = PySequence_Size(object);
    if (n < 0) {
        PyErr_Clear();
        set_error(PyExc_ValueError, "sequence has no length");
        return -1;
    }
    return n;
}

double *qqpydb(PyObject *slot, int n) { return flat<double>(slot, n, PyExc_ValueError); }
int *qqpyin(PyObject *slot, int n) { return flat<int>(slot, n, PyExc_MemoryError); }

int *qqpyib(PyObject *slot, int n) {
    if (slot == Py_None) return alloc_zeroed<int>((size_t)n);
    if (PySequence_Check(slot) && PySequence_Size(slot) == 0) return alloc_zeroed<int>((size_t)n);
    PyErr_Clear();
    return flat<int>(slot, n, PyExc_MemoryError);
}

double *qqpyd2(PyObject *slot, int nx, int ny) { return nested2<double>(slot, nx, ny); }
int *qqpyi2(PyObject *slot, int nx, int ny) { return nested2<int>(slot, nx, ny); }

double *qqpyd3(PyObject *slot, int nx, int ny, int nz) {
    size_t need = (size_t)nx * (size_t)ny * (size_t)nz;
    {
        View v(slot);
        if (v.held && v.kind != Kind::None && v.view.ndim >= 1 && v.view.ndim <= 3) {
            Py_ssize_t d0 = v.view.shape[0];
            Py_ssize_t d1 = v.view.ndim >= 2 ? v.view.shape[1] : 1;
            Py_ssize_t d2 = v.view.ndim == 3 ? v.view.shape[2] : 1;
            if (d0 < 1) {
                set_error(PyExc_ValueError, "sequence error");
                return nullptr;
            }
            if (d1 == 0) d2 = 1;  // an empty second level has no third
            size_t total = (size_t)d0 * (size_t)d1 * (size_t)d2;
            if (total < need) {
                set_error(PyExc_MemoryError, "out of range");
                return nullptr;
            }
            double *a = alloc_zeroed<double>(total);
            if (!a) return nullptr;
            for (Py_ssize_t i = 0; i < d0; ++i)
                for (Py_ssize_t j = 0; j < d1; ++j)
                    for (Py_ssize_t k = 0; k < d2; ++k) {
                        const char *p = v.view.ndim == 3   ? v.at(i, j, k)
                                        : v.view.ndim == 2 ? v.at(i, j)
                                                           : v.at(i);
                        a[(i * d1 + j) * d2 + k] = read_as<double>(v.kind, p);
                    }
            return a;
        }
    }
    Py_ssize_t d0 = qqpyln(slot);
    if (d0 < 0) return nullptr;
    PyObject *first = PySequence_GetItem(slot, 0);
    if (!first) {
        PyErr_Clear();
        set_error(PyExc_ValueError, "sequence error");
        return nullptr;
    }
    Py_ssize_t d1 = 1, d2 = 1;
    bool ok = level_length(first, &d1);
    if (ok && PySequence_Check(first) && d1 > 0) {
        PyObject *inner = PySequence_GetItem(first, 0);
        if (!inner) {
            PyErr_Clear();
            set_error(PyExc_ValueError, "sequence error");
            ok = false;
        } else {
            ok = level_length(inner, &d2);
            Py_DECREF(inner);
        }
    }
    Py_DECREF(first);
    if (!ok) return nullptr;
    size_t total = (size_t)d0 * (size_t)d1 * (size_t)d2;
    if (total < need) {
        set_error(PyExc_MemoryError, "out of range");
        return nullptr;
    }
    double *a = alloc_zeroed<double>(total);
    if (!a) return nullptr;
    for (Py_ssize_t i = 0; i < d0 && ok; ++i) {
        PyObject *el = PySequence_GetItem(slot, i);
        if (!el) {
            PyErr_Clear();
            set_error(PyExc_MemoryError, "sequence error");
            ok = false;
            break;
        }
        if (!PySequence_Check(el)) {  // a number at the outer level counts for one
            ok = convert<double>(el, &a[i * d1 * d2]);
            Py_DECREF(el);
            continue;
        }
        if (PySequence_Size(el) != d1) {
            PyErr_Clear();
            set_error(PyExc_ValueError, "matrix rows have different lengths");
            ok = false;
        }
        for (Py_ssize_t j = 0; ok && j < d1; ++j) {
            PyObject *row = PySequence_GetItem(el, j);
            if (!row) {
                PyErr_Clear();
                set_error(PyExc_MemoryError, "sequence error");
                ok = false;
                break;
            }
            size_t base = ((size_t)i * d1 + j) * d2;
            if (PySequence_Check(row)) {
                if (PySequence_Size(row) != d2) {
                    PyErr_Clear();
                    set_error(PyExc_ValueError, "matrix rows have different lengths");
                    ok = false;
                }
                for (Py_ssize_t k = 0; ok && k < d2; ++k) {
                    PyObject *item = PySequence_GetItem(row, k);
                    if (!item) {
                        PyErr_Clear();
                        set_error(PyExc_MemoryError, "sequence error");
                        ok = false;
                        break;
                    }
                    ok = convert<double>(item, &a[base + k]);
                    Py_DECREF(item);
                }
            } else {
                ok = convert<double>(row, &a[base]);
            }
            Py_DECREF(row);
        }
        Py_DECREF(el);
    }
    if (!ok) {
        std::free(a);
        return nullptr;
    }
    return a;
}

namespace {

template <typename T>
bool write_fast(const T *array, PyObject *seq, int n) {
    View v(seq, PyBUF_RECORDS);
    if (!v.usable(1) || v.view.readonly || v.view.shape[0] < n) {
        if (!v.held) PyErr_Clear();
        return false;
    }
    Kind want = std::is_same<T, double>::value ? Kind::F64 : Kind::I32;
    if (v.kind != want && !(want == Kind::I32 && v.kind == Kind::I64)) return false;
    for (int i = 0; i < n; ++i) {
        char *p = (char *)v.view.buf + i * v.view.strides[0];
        if (v.kind == Kind::F64) {
            double d = (double)array[i];
            std::memcpy(p, &d, 8);
        } else if (v.kind == Kind::I32) {
            int32_t d = (int32_t)array[i];
            std::memcpy(p, &d, 4);
        } else {
            int64_t d = (int64_t)array[i];
            std::memcpy(p, &d, 8);
        }
    }
    return true;
}

}  // namespace

void qqpywd(const double *array, PyObject *sequence, int n) {
    if (write_fast(array, sequence, n)) return;
    PyErr_Clear();
    for (int i = 0; i < n; ++i) {
        PyObject *v = PyFloat_FromDouble(array[i]);
        if (!v) break;
        PySequence_SetItem(sequence, i, v);
        Py_DECREF(v);
    }
    PyErr_Clear();
}

void qqpywi(const int *array, PyObject *sequence, int n) {
    if (write_fast(array, sequence, n)) return;
    PyErr_Clear();
    for (int i = 0; i < n; ++i) {
        PyObject *v = PyLong_FromLong(array[i]);
        if (!v) break;
        PySequence_SetItem(sequence, i, v);
        Py_DECREF(v);
    }
    PyErr_Clear();
}

PyObject *kxpy_argfail() {
    if (PyErr_ExceptionMatches(PyExc_OverflowError)) {
        PyObject *type, *value, *tb;
        PyErr_Fetch(&type, &value, &tb);
        PyObject *text = value ? PyObject_Str(value) : nullptr;
        const char *msg = text ? PyUnicode_AsUTF8(text) : nullptr;
        PyErr_SetString(PyExc_ValueError, msg ? msg : "integer out of range");
        Py_XDECREF(text);
        Py_XDECREF(type);
        Py_XDECREF(value);
        Py_XDECREF(tb);
    }
    return nullptr;
}

void KxErrStash::take() {
    if (!PyErr_Occurred()) return;
    Py_XDECREF(type);
    Py_XDECREF(value);
    Py_XDECREF(tb);
    PyErr_Fetch(&type, &value, &tb);
}

bool KxErrStash::restore() {
    if (!type) return false;
    PyErr_Restore(type, value, tb);
    type = value = tb = nullptr;
    return true;
}

char *kxpy_strdup(const char *text) {
    size_t n = std::strlen(text);
    char *copy = static_cast<char *>(std::malloc(n + 1));
    if (copy) std::memcpy(copy, text, n + 1);
    return copy;
}
