#include "marshal.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <cstring>
#include <type_traits>

#include <sys/mman.h>

int (*kxpy_perthread)() = nullptr;
KxCallGate kxpy_calls;

namespace {
std::mutex gate_mutex;
std::condition_variable gate_changed;
int gate_inside = 0;
bool gate_closing = false;
}  // namespace

void KxCallGate::enter() {
    std::unique_lock<std::mutex> lock(gate_mutex);
    gate_changed.wait(lock, [] { return !gate_closing; });
    ++gate_inside;
}

void KxCallGate::leave() {
    std::lock_guard<std::mutex> lock(gate_mutex);
    if (--gate_inside == 0) gate_changed.notify_all();
}

void KxCallGate::close() {
    std::unique_lock<std::mutex> lock(gate_mutex);
    gate_changed.wait(lock, [] { return !gate_closing; });
    gate_closing = true;
    gate_changed.wait(lock, [] { return gate_inside == 0; });
}

void KxCallGate::open() {
    std::lock_guard<std::mutex> lock(gate_mutex);
    gate_closing = false;
    gate_changed.notify_all();
}

namespace {

const char kNoFloat[] = "no floatingpoint element in sequence";
const char kNoInt[] = "no integer element in sequence";
const char kSequenceError[] = "sequence error";

void set_error(PyObject *type, const char *message) {
    PyErr_SetString(type, message);
}

// ---- elements of the generic path ---------------------------------------------------

// A real number that converts itself to float and is no sequence: numpy
// float32 and integer scalars, Decimal, Fraction.  Sequences are left out
// so that a one-element numpy array does not pass for a number.
bool real_number(PyObject *item, double *out) {
    PyNumberMethods *nb = Py_TYPE(item)->tp_as_number;
    if (!nb || !nb->nb_float || PySequence_Check(item)) return false;
    double v = PyFloat_AsDouble(item);
    if (v == -1.0 && PyErr_Occurred()) {
        PyErr_Clear();
        return false;
    }
    *out = v;
    return true;
}

// An element of the int family: int, bool, anything with __index__.
bool integer(PyObject *item, long long *out) {
    if (!PyLong_Check(item) && !PyIndex_Check(item)) return false;
    // An int (or bool) is read as it is; anything else through __index__.
    PyObject *index = PyLong_Check(item) ? (Py_INCREF(item), item) : PyNumber_Index(item);
    if (!index) {
        PyErr_Clear();
        return false;
    }
    int overflow = 0;
    long long v = PyLong_AsLongLongAndOverflow(index, &overflow);
    Py_DECREF(index);
    if (overflow || (v == -1 && PyErr_Occurred())) {
        PyErr_Clear();
        return false;
    }
    *out = v;
    return true;
}

bool element(PyObject *item, double *out) {
    if (PyFloat_Check(item)) {
        *out = PyFloat_AS_DOUBLE(item);
        return true;
    }
    if (PyLong_Check(item) || PyIndex_Check(item)) {
        // Exact for every int that a double holds; a huge int rounds the
        // way float() rounds it, and one beyond the double range fails.
        PyObject *index = PyLong_Check(item) ? (Py_INCREF(item), item) : PyNumber_Index(item);
        if (!index) {
            PyErr_Clear();
            return false;
        }
        double v = PyLong_AsDouble(index);
        Py_DECREF(index);
        if (v == -1.0 && PyErr_Occurred()) {
            PyErr_Clear();
            return false;
        }
        *out = v;
        return true;
    }
    return real_number(item, out);
}

bool element(PyObject *item, int *out) {
    long long v;
    if (PyFloat_Check(item) || !integer(item, &v) || v < INT_MIN || v > INT_MAX) return false;
    *out = (int)v;
    return true;
}

template <typename T>
bool convert(PyObject *item, T *out) {
    if (element(item, out)) return true;
    set_error(PyExc_ValueError, std::is_same<T, int>::value ? kNoInt : kNoFloat);
    return false;
}

// Memory for n elements, freed with free().  Large arrays are asked to use
// huge pages: a fresh array of many megabytes otherwise costs a page fault
// every 4 KB, which made a conversion of big data slower than copying it.
// `zero` asks for zero-filled memory (from calloc, which leaves untouched
// pages uncommitted); the converters that write every element don't need it.
template <typename T>
T *allocate(Py_ssize_t n, bool zero) {
    if (n < 0) n = 0;
    if ((size_t)n > SIZE_MAX / sizeof(T)) {
        set_error(PyExc_MemoryError, "out of memory");
        return nullptr;
    }
    size_t bytes = (n ? (size_t)n : 1) * sizeof(T);
    const size_t huge = (size_t)2 << 20;
    void *p = nullptr;
    if (zero)
        p = std::calloc(1, bytes);
    else if (bytes < 2 * huge || posix_memalign(&p, huge, bytes) != 0)
        p = std::malloc(bytes);
#ifdef MADV_HUGEPAGE
    if (p && bytes >= 2 * huge) {
        uintptr_t from = ((uintptr_t)p + huge - 1) & ~(uintptr_t)(huge - 1);
        uintptr_t to = ((uintptr_t)p + bytes) & ~(uintptr_t)(huge - 1);
        if (to > from) madvise((void *)from, to - from, MADV_HUGEPAGE);
    }
#endif
    if (!p) set_error(PyExc_MemoryError, "out of memory");
    return static_cast<T *>(p);
}

template <typename T>
T *zeros(Py_ssize_t n) {
    return allocate<T>(n, true);
}

Py_ssize_t product(Py_ssize_t a, Py_ssize_t b) {
    return (KxDim(a) * KxDim(b)).size();
}

// ---- the buffer fast path -------------------------------------------------------------

enum class Kind { None, F64, I32, I64 };

// The element kind of a buffer format, native byte order only.
Kind kind_of(const Py_buffer &view) {
    const char *f = view.format ? view.format : "B";
    if (*f == '@' || *f == '=' || (*f == '<' && PY_LITTLE_ENDIAN)) ++f;
    if (f[0] == '\0' || f[1] != '\0') return Kind::None;
    switch (f[0]) {
        case 'd':
            return view.itemsize == 8 ? Kind::F64 : Kind::None;
        case 'i':
        case 'l':
        case 'q':
            if (view.itemsize == 4) return Kind::I32;
            if (view.itemsize == 8) return Kind::I64;
            return Kind::None;
        default:
            return Kind::None;
    }
}

// A view of a numeric buffer, released on scope exit.  Objects without a
// buffer, and buffers that can't be had as strided records, simply give
// no view: the generic path takes them.
struct View {
    Py_buffer view;
    bool held = false;
    Kind kind = Kind::None;
    View(PyObject *obj, int flags) {
        if (!PyObject_CheckBuffer(obj)) return;
        if (PyObject_GetBuffer(obj, &view, flags) != 0) {
            PyErr_Clear();
            return;
        }
        held = true;
        kind = kind_of(view);
    }
    View(const View &) = delete;
    View &operator=(const View &) = delete;
    ~View() {
        if (held) PyBuffer_Release(&view);
    }
    bool numeric() const { return held && kind != Kind::None && view.ndim >= 1; }
    Py_ssize_t count() const {
        Py_ssize_t n = 1;
        for (int d = 0; d < view.ndim; ++d) n = product(n, view.shape[d]);
        return n;
    }
    // Calls fn(k, pointer) for the first `limit` elements in the order of
    // the nesting; stops when fn returns false.
    template <typename Fn>
    bool each(Py_ssize_t limit, Fn fn) const {
        Py_ssize_t idx[PyBUF_MAX_NDIM] = {0};
        Py_ssize_t total = kxpy_min(limit, count());
        for (Py_ssize_t k = 0; k < total; ++k) {
            const char *p = (const char *)view.buf;
            for (int d = 0; d < view.ndim; ++d) p += idx[d] * view.strides[d];
            if (!fn(k, const_cast<char *>(p))) return false;
            for (int d = view.ndim - 1; d >= 0; --d) {
                if (++idx[d] < view.shape[d]) break;
                idx[d] = 0;
            }
        }
        return true;
    }
};

// An element of a numeric buffer, by the rules of the generic path: a
// float64 buffer gives no integers, an int64 value must fit in 32 bits.
bool read_element(Kind kind, const char *p, double *out) {
    if (kind == Kind::F64) {
        std::memcpy(out, p, 8);
    } else if (kind == Kind::I32) {
        int32_t v;
        std::memcpy(&v, p, 4);
        *out = (double)v;
    } else {
        int64_t v;
        std::memcpy(&v, p, 8);
        *out = (double)v;
    }
    return true;
}

bool read_element(Kind kind, const char *p, int *out) {
    if (kind == Kind::F64) return false;
    if (kind == Kind::I32) {
        int32_t v;
        std::memcpy(&v, p, 4);
        *out = v;
        return true;
    }
    int64_t v;
    std::memcpy(&v, p, 8);
    if (v < INT_MIN || v > INT_MAX) return false;
    *out = (int)v;
    return true;
}

// One strided row, with the element kind settled once for the whole row.
template <Kind K, typename T>
bool read_row(const char *p, Py_ssize_t stride, Py_ssize_t n, T *a) {
    for (Py_ssize_t k = 0; k < n; ++k, p += stride)
        if (!read_element(K, p, &a[k])) return false;
    return true;
}

template <typename T>
bool read_strided(Kind kind, const char *p, Py_ssize_t stride, Py_ssize_t n, T *a) {
    switch (kind) {
        case Kind::F64:
            return read_row<Kind::F64>(p, stride, n, a);
        case Kind::I32:
            return read_row<Kind::I32>(p, stride, n, a);
        default:
            return read_row<Kind::I64>(p, stride, n, a);
    }
}

// The buffer path of all input converters.  `levels` is the nesting that
// the converter accepts (1 flat, 2 or 3 nested); shape[0] is the outer
// length and the other levels are those of the first element, as the
// generic path finds them.  false leaves the object to the generic path;
// true settles the conversion: *out is the array, or null with the error.
template <typename T>
bool from_buffer(PyObject *slot, int levels, Py_ssize_t need, T **out) {
    View v(slot, PyBUF_RECORDS_RO);
    if (!v.numeric() || v.view.ndim > levels) return false;
    // An integer array from float64 data fails on its first element; the
    // generic path says so with its own message.
    if (std::is_same<T, int>::value && v.kind == Kind::F64) return false;
    Py_ssize_t outer = v.view.shape[0];
    if (levels > 1 && outer < 1) {
        set_error(PyExc_ValueError, kSequenceError);
        return true;
    }
    Py_ssize_t total = v.count();
    if (levels == 3 && v.view.ndim == 3 && v.view.shape[1] == 0) total = 0;
    if (levels == 1) total = outer;
    if (total < need) {
        set_error(PyExc_MemoryError, "out of range");
        return true;
    }
    if (levels == 1) total = need;     // a flat array holds just the count
    T *a = allocate<T>(total, false);  // every element is written below
    if (!a) return true;
    bool ok = true;
    if (v.view.ndim == 1 && v.view.strides[0] == (Py_ssize_t)sizeof(T) &&
        v.kind == (std::is_same<T, int>::value ? Kind::I32 : Kind::F64))
        std::memcpy(a, v.view.buf, (size_t)total * sizeof(T));  // the common case: one copy
    else if (v.view.ndim == 1)
        ok = read_strided(v.kind, (const char *)v.view.buf, v.view.strides[0], total, a);
    else
        ok = v.each(total, [&](Py_ssize_t k, char *p) { return read_element(v.kind, p, &a[k]); });
    if (!ok) {
        std::free(a);
        set_error(PyExc_ValueError, std::is_same<T, int>::value ? kNoInt : kNoFloat);
        return true;
    }
    *out = a;
    return true;
}

// ---- the generic path -----------------------------------------------------------------

template <typename T>
T *flat(PyObject *slot, Py_ssize_t n, PyObject *fetch_error) {
    T *fast = nullptr;
    if (from_buffer<T>(slot, 1, n, &fast)) return fast;
    Py_ssize_t len = qqpyln(slot);
    if (len < 0) return nullptr;
    if (len < n) {
        set_error(PyExc_MemoryError, "out of range");
        return nullptr;
    }
    T *a = allocate<T>(n, false);  // every element is written below
    if (!a) return nullptr;
    for (Py_ssize_t i = 0; i < n; ++i) {
        PyObject *item = PySequence_GetItem(slot, i);
        if (!item) {
            PyErr_Clear();
            set_error(fetch_error, kSequenceError);
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

// The length of one level of nesting: the size of a sequence, 1 for a
// number.  false with ValueError when the size fails.
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

// Reads one element of a nested sequence into base[...]: a number fills
// base[0]; a sequence must have the length dims[0] and its items are read
// at the strides of the levels below.
template <typename T>
bool fill(PyObject *obj, T *base, const Py_ssize_t *dims, int ndims) {
    if (ndims == 0 || !PySequence_Check(obj)) return convert<T>(obj, base);
    Py_ssize_t len;
    if (!level_length(obj, &len)) return false;
    if (len != dims[0]) {
        set_error(PyExc_ValueError, "matrix rows have different lengths");
        return false;
    }
    Py_ssize_t stride = 1;
    for (int d = 1; d < ndims; ++d) stride *= dims[d];
    for (Py_ssize_t j = 0; j < len; ++j) {
        PyObject *item = PySequence_GetItem(obj, j);
        if (!item) {
            PyErr_Clear();
            set_error(PyExc_MemoryError, kSequenceError);
            return false;
        }
        bool ok = fill<T>(item, base + j * stride, dims + 1, ndims - 1);
        Py_DECREF(item);
        if (!ok) return false;
    }
    return true;
}

// Nested input of 2 or 3 levels; the lengths of the inner levels are those
// of the first element (and its first element).
template <typename T>
T *nested(PyObject *slot, int levels, Py_ssize_t need) {
    T *fast = nullptr;
    if (from_buffer<T>(slot, levels, need, &fast)) return fast;
    Py_ssize_t outer = qqpyln(slot);
    if (outer < 0) return nullptr;
    Py_ssize_t dims[2] = {1, 1};
    PyObject *first = PySequence_GetItem(slot, 0);
    if (!first) {
        PyErr_Clear();
        set_error(PyExc_ValueError, kSequenceError);
        return nullptr;
    }
    bool ok = level_length(first, &dims[0]);
    if (ok && levels == 3 && PySequence_Check(first) && dims[0] > 0) {
        PyObject *inner = PySequence_GetItem(first, 0);
        if (!inner) {
            PyErr_Clear();
            set_error(PyExc_ValueError, kSequenceError);
            ok = false;
        } else {
            ok = level_length(inner, &dims[1]);
            Py_DECREF(inner);
        }
    }
    Py_DECREF(first);
    if (!ok) return nullptr;
    Py_ssize_t row = product(dims[0], levels == 3 ? dims[1] : 1);
    Py_ssize_t total = product(outer, row);
    if (total < need) {
        set_error(PyExc_MemoryError, "out of range");
        return nullptr;
    }
    T *a = zeros<T>(total);
    if (!a) return nullptr;
    for (Py_ssize_t i = 0; i < outer && ok; ++i) {
        PyObject *el = PySequence_GetItem(slot, i);
        if (!el) {
            PyErr_Clear();
            set_error(PyExc_MemoryError, kSequenceError);
            ok = false;
            break;
        }
        ok = fill<T>(el, a + i * row, dims, levels - 1);
        Py_DECREF(el);
    }
    if (!ok) {
        std::free(a);
        return nullptr;
    }
    return a;
}

// ---- writing back -----------------------------------------------------------------------

bool write_element(Kind kind, char *p, double v) {
    if (kind != Kind::F64) return false;
    std::memcpy(p, &v, 8);
    return true;
}

bool write_element(Kind kind, char *p, int v) {
    if (kind == Kind::I32) {
        int32_t d = v;
        std::memcpy(p, &d, 4);
    } else if (kind == Kind::I64) {
        int64_t d = v;
        std::memcpy(p, &d, 8);
    } else {
        return false;
    }
    return true;
}

// A writable buffer of the array's own kind takes the elements straight,
// in the order of its nesting; false sends the caller the generic way.
template <typename T>
bool write_buffer(const T *array, PyObject *seq, Py_ssize_t n) {
    View v(seq, PyBUF_RECORDS);
    if (!v.numeric() || v.view.readonly) return false;
    char probe[8];
    if (!write_element(v.kind, probe, T())) return false;
    v.each(n, [&](Py_ssize_t k, char *p) { return write_element(v.kind, p, array[k]); });
    return true;
}

PyObject *boxed(double v) {
    return PyFloat_FromDouble(v);
}
PyObject *boxed(int v) {
    return PyLong_FromLong(v);
}

// Sets seq[i] = v; false when the write fails (the error is dropped).
template <typename T>
bool set_item(PyObject *seq, Py_ssize_t i, T value) {
    PyObject *v = boxed(value);
    bool ok = v && PySequence_SetItem(seq, i, v) == 0;
    Py_XDECREF(v);
    if (!ok) PyErr_Clear();
    return ok;
}

template <typename T>
void write_back(const T *array, PyObject *seq, Py_ssize_t n, bool nested) {
    if (n <= 0 || write_buffer(array, seq, n)) return;
    Py_ssize_t row = 0;
    if (nested) {
        PyObject *first = PySequence_GetItem(seq, 0);
        if (first && PySequence_Check(first) && !PyUnicode_Check(first))
            row = PySequence_Size(first);
        Py_XDECREF(first);
        PyErr_Clear();
    }
    if (row <= 0) {
        for (Py_ssize_t i = 0; i < n; ++i)
            if (!set_item(seq, i, array[i])) return;
        return;
    }
    for (Py_ssize_t i = 0; i * row < n; ++i) {
        PyObject *r = PySequence_GetItem(seq, i);
        if (!r) {
            PyErr_Clear();
            return;
        }
        bool ok = true;
        for (Py_ssize_t j = 0; ok && j < row && i * row + j < n; ++j)
            ok = set_item(r, j, array[i * row + j]);
        Py_DECREF(r);
        if (!ok) return;
    }
}

}  // namespace

// ---- the converters -------------------------------------------------------------------

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

double *qqpydb(PyObject *slot, Py_ssize_t n) {
    return flat<double>(slot, n, PyExc_ValueError);
}

const double *KxInD::get(PyObject *slot, Py_ssize_t n) {
    if (PyObject_CheckBuffer(slot)) {
        if (PyObject_GetBuffer(slot, &view, PyBUF_C_CONTIGUOUS | PyBUF_FORMAT) == 0) {
            held = true;
            if (view.ndim == 1 && view.itemsize == 8 && kind_of(view) == Kind::F64 && view.shape &&
                view.shape[0] >= n)
                return (const double *)view.buf;
            PyBuffer_Release(&view);
            held = false;
        } else {
            PyErr_Clear();
        }
    }
    copy = qqpydb(slot, n);
    return copy;
}

const double *KxInD::get2(PyObject *slot, Py_ssize_t nx, Py_ssize_t ny) {
    if (PyObject_CheckBuffer(slot) && nx > 0 && ny > 0 && nx <= PY_SSIZE_T_MAX / ny) {
        if (PyObject_GetBuffer(slot, &view, PyBUF_C_CONTIGUOUS | PyBUF_FORMAT) == 0) {
            held = true;
            if ((view.ndim == 1 || view.ndim == 2) && view.itemsize == 8 &&
                kind_of(view) == Kind::F64 && view.len / 8 >= nx * ny &&
                (view.ndim == 1 || view.shape[0] > 0))
                return (const double *)view.buf;
            PyBuffer_Release(&view);
            held = false;
        } else {
            PyErr_Clear();
        }
    }
    copy = qqpyd2(slot, nx, ny);
    return copy;
}

KxInD::~KxInD() {
    if (held) PyBuffer_Release(&view);
    std::free(copy);
}
int *qqpyin(PyObject *slot, Py_ssize_t n) {
    return flat<int>(slot, n, PyExc_MemoryError);
}

int *qqpyib(PyObject *slot, Py_ssize_t n) {
    if (slot == Py_None) return zeros<int>(n);
    if (PySequence_Check(slot)) {
        Py_ssize_t len = PySequence_Size(slot);
        if (len == 0) return zeros<int>(n);
        PyErr_Clear();
    }
    return flat<int>(slot, n, PyExc_MemoryError);
}

double *qqpyd2(PyObject *slot, Py_ssize_t nx, Py_ssize_t ny) {
    return nested<double>(slot, 2, product(nx, ny));
}
int *qqpyi2(PyObject *slot, Py_ssize_t nx, Py_ssize_t ny) {
    return nested<int>(slot, 2, product(nx, ny));
}
double *qqpyd3(PyObject *slot, Py_ssize_t nx, Py_ssize_t ny, Py_ssize_t nz) {
    return nested<double>(slot, 3, product(product(nx, ny), nz));
}

void qqpywd(const double *array, PyObject *sequence, Py_ssize_t n) {
    write_back(array, sequence, n, false);
}
void qqpywi(const int *array, PyObject *sequence, Py_ssize_t n) {
    write_back(array, sequence, n, false);
}
void qqpywd2(const double *array, PyObject *sequence, Py_ssize_t n) {
    write_back(array, sequence, n, true);
}
void qqpywi2(const int *array, PyObject *sequence, Py_ssize_t n) {
    write_back(array, sequence, n, true);
}

// ---- arguments, failures and results ----------------------------------------------------

PyObject *kxpy_argfail() {
    if (!PyErr_Occurred()) return nullptr;
    bool overflow = PyErr_ExceptionMatches(PyExc_OverflowError);
    if (!overflow &&
        (PyErr_ExceptionMatches(PyExc_TypeError) || PyErr_ExceptionMatches(PyExc_ValueError) ||
         PyErr_ExceptionMatches(PyExc_MemoryError) || !PyErr_ExceptionMatches(PyExc_Exception)))
        return nullptr;  // already one of ours, or an interrupt that must pass
    PyObject *type, *value, *tb;
    PyErr_Fetch(&type, &value, &tb);
    PyObject *text = value ? PyObject_Str(value) : nullptr;
    const char *msg = text ? PyUnicode_AsUTF8(text) : nullptr;
    if (!msg) PyErr_Clear();
    PyErr_SetString(overflow ? PyExc_ValueError : PyExc_TypeError,
                    msg ? msg : (overflow ? "integer out of range" : "bad argument"));
    Py_XDECREF(text);
    Py_XDECREF(type);
    Py_XDECREF(value);
    Py_XDECREF(tb);
    return nullptr;
}

KxErrStash::~KxErrStash() {
    Py_XDECREF(type);
    Py_XDECREF(value);
    Py_XDECREF(tb);
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

double *kxpy_zeros_d(Py_ssize_t n) {
    return zeros<double>(n);
}
int *kxpy_zeros_i(Py_ssize_t n) {
    return zeros<int>(n);
}

namespace {

// An output array must have room for what the routine writes: its length,
// times the length of its first row when it holds rows.
template <typename T>
T *output(PyObject *sequence, Py_ssize_t n, bool nested) {
    Py_ssize_t room = qqpyln(sequence);
    if (room < 0) return nullptr;
    if (nested && room > 0) {
        PyObject *first = PySequence_GetItem(sequence, 0);
        Py_ssize_t row = 1;
        if (first && PySequence_Check(first) && !PyUnicode_Check(first))
            row = PySequence_Size(first);
        Py_XDECREF(first);
        PyErr_Clear();
        room = product(room, row < 1 ? 1 : row);
    }
    if (room < n) {
        set_error(PyExc_MemoryError, "out of range");
        return nullptr;
    }
    return zeros<T>(n);
}

}  // namespace

double *kxpy_out_d(PyObject *sequence, Py_ssize_t n, bool nested) {
    return output<double>(sequence, n, nested);
}
int *kxpy_out_i(PyObject *sequence, Py_ssize_t n, bool nested) {
    return output<int>(sequence, n, nested);
}

char *kxpy_textbuf(const char *text, Py_ssize_t room) {
    size_t n = std::strlen(text);
    size_t size = n + 1;
    if (room >= 0 && (size_t)room + 1 > size) size = (size_t)room + 1;
    char *copy = static_cast<char *>(std::calloc(size, 1));
    if (!copy) {
        set_error(PyExc_MemoryError, "out of memory");
        return nullptr;
    }
    std::memcpy(copy, text, n);
    return copy;
}

bool kxpy_enough(Py_ssize_t have, Py_ssize_t need) {
    if (have >= need) return true;
    set_error(PyExc_ValueError, "buffer is shorter than its size");
    return false;
}

char *kxpy_bytecopy(const char *bytes, Py_ssize_t n) {
    char *copy = static_cast<char *>(std::malloc(n > 0 ? (size_t)n : 1));
    if (!copy) {
        set_error(PyExc_MemoryError, "out of memory");
        return nullptr;
    }
    if (n > 0) std::memcpy(copy, bytes, (size_t)n);
    return copy;
}

PyObject *kxpy_text(const char *text) {
    if (!text) return PyUnicode_FromStringAndSize("", 0);
    Py_ssize_t n = (Py_ssize_t)std::strlen(text);
    PyObject *s = PyUnicode_DecodeUTF8(text, n, nullptr);
    if (s || !PyErr_ExceptionMatches(PyExc_UnicodeDecodeError)) return s;
    PyErr_Clear();
    return PyUnicode_DecodeLatin1(text, n, nullptr);
}

PyObject *kxpy_bytes(const void *data, Py_ssize_t n) {
    if (!data || n < 0) n = 0;
    return PyBytes_FromStringAndSize(n ? static_cast<const char *>(data) : "", n);
}
