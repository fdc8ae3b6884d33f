// Conversion between Python objects and the plain arrays of the core.
//
// Every helper that returns an array hands the caller ownership of memory
// from malloc; the caller frees it with free() on every path.  On failure
// the helpers return null with a Python exception set, using only
// ValueError, MemoryError and TypeError, with the module's fixed messages:
//
//   no sequence protocol          ValueError  "parameter is not a sequence"
//   a size that fails             ValueError  "sequence has no length"
//   shorter than the count        MemoryError "out of range"
//   rows of different lengths     ValueError  "matrix rows have different lengths"
//   an element of the wrong kind  ValueError  "no floatingpoint element in sequence"
//                                             "no integer element in sequence"
//   an element that can't be had  ValueError  "sequence error" (MemoryError for
//                                             integers and inner rows)
//   no memory                     MemoryError "out of memory"
//
// Counts are the caller's, never the sequence's: a longer sequence is
// accepted and only its first elements are read.
//
// What counts as a number: a double element is a float (or subtype), an
// integer (int, bool, anything with __index__ such as numpy integers), or
// another real number that converts itself to float and is not a sequence
// (numpy float32 scalars, Decimal, Fraction), so that every numeric numpy
// dtype can be given.  An integer element must be an integer, never a
// float, and must fit in 32 bits.
//
// Objects that export a buffer of float64, int32 or int64 numbers in native
// order are read straight from the buffer, whatever their strides, without
// a Python call per element; they give exactly the numbers and the errors
// that reading their elements one by one gives.  Other buffers (float32,
// int16, bytes) take the element path.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <climits>
#include <cstdlib>
#include <memory>

// The length of a sequence, or -1 with ValueError set.
Py_ssize_t qqpyln(PyObject *object);

// n doubles or 32-bit integers from a flat sequence.
double *qqpydb(PyObject *slot, Py_ssize_t n);
// n doubles that the routine only reads: the caller's own memory when the
// argument is a C-contiguous buffer of native float64 with at least n
// elements (held until the object goes out of scope, with the interpreter
// lock), else a copy made by qqpydb.  get returns null with the error of
// qqpydb set.
struct KxInD {
    Py_buffer view;
    bool held = false;
    double *copy = nullptr;
    KxInD() = default;
    KxInD(const KxInD &) = delete;
    KxInD &operator=(const KxInD &) = delete;
    const double *get(PyObject *slot, Py_ssize_t n);
    // A read-only matrix of nx by ny: a C-contiguous float64 buffer of one
    // or two dimensions holding at least nx*ny values is used in place,
    // anything else is read as qqpyd2 reads it.
    const double *get2(PyObject *slot, Py_ssize_t nx, Py_ssize_t ny);
    ~KxInD();
};
int *qqpyin(PyObject *slot, Py_ssize_t n);
// The integer list of the map shading routines: None or an empty sequence
// gives n zeros, anything else is read as by qqpyin.
int *qqpyib(PyObject *slot, Py_ssize_t n);
// Flattened nested input: rows of one length, or a flat sequence.  The
// result holds outer length x row length elements (at least nx*ny), element
// [i][j] at i * row length + j.
double *qqpyd2(PyObject *slot, Py_ssize_t nx, Py_ssize_t ny);
int *qqpyi2(PyObject *slot, Py_ssize_t nx, Py_ssize_t ny);
// The same with a third level (at least nx*ny*nz elements).
double *qqpyd3(PyObject *slot, Py_ssize_t nx, Py_ssize_t ny, Py_ssize_t nz);

// Writes n elements back into the caller's sequence.  Writes that fail (a
// tuple, a short or read-only sequence) are not looked at and leave no
// exception behind; the writing stops at the first of them.
void qqpywd(const double *array, PyObject *sequence, Py_ssize_t n);
void qqpywi(const int *array, PyObject *sequence, Py_ssize_t n);
// The same for an array that came from a nested sequence: element k goes to
// [k / row][k % row] when the sequence holds rows, else to [k].
void qqpywd2(const double *array, PyObject *sequence, Py_ssize_t n);
void qqpywi2(const int *array, PyObject *sequence, Py_ssize_t n);

// Called after PyArg_ParseTuple failed.  An OverflowError (an integer out
// of the C range) becomes a ValueError with the same message, and any other
// error that an argument's own conversion code raised becomes a TypeError,
// so that bad arguments raise only the module's three exception types.
// Returns null.
PyObject *kxpy_argfail();

// Keeps the latest of several conversion failures.  Each conversion runs
// with no exception pending (so that Python code it calls sees a clean
// state); take() moves a pending exception into the stash, replacing an
// older one, and restore() puts the latest back.
// Raises the exception that the pie callback of piecbk left during the
// last piegrf, once; false when there was none.
bool kxpy_pie_raise();

struct KxErrStash {
    PyObject *type = nullptr, *value = nullptr, *tb = nullptr;
    KxErrStash() = default;
    KxErrStash(const KxErrStash &) = delete;
    KxErrStash &operator=(const KxErrStash &) = delete;
    ~KxErrStash();
    void take();
    bool failed() const { return type != nullptr; }
    // Restores the stashed exception; returns true when there was one.
    bool restore();
};

// ---- array sizes -----------------------------------------------------------------

// Arithmetic on the sizes of a table line's arrays (nx*ny*nz and the
// like), saturating instead of overflowing: a product of three large counts
// becomes a huge size that no sequence satisfies ("out of range") rather
// than undefined behaviour.
struct KxDim {
    long long v;
    static constexpr long long kMax = 1LL << 62;
    constexpr KxDim(long long x) : v(x > kMax ? kMax : (x < -kMax ? -kMax : x)) {}
    // The size for an allocation or a length test: 0 for a negative value.
    Py_ssize_t size() const {
        return v < 0 ? 0 : (v > PY_SSIZE_T_MAX ? PY_SSIZE_T_MAX : (Py_ssize_t)v);
    }
    // A computed int argument of a routine, held to the int range.
    int as_int() const { return v < INT_MIN ? INT_MIN : (v > INT_MAX ? INT_MAX : (int)v); }
};
inline KxDim operator+(KxDim a, KxDim b) {
    return KxDim(a.v + b.v);
}
inline KxDim operator-(KxDim a, KxDim b) {
    return KxDim(a.v - b.v);
}
inline KxDim operator/(KxDim a, KxDim b) {
    return KxDim(b.v == 0 ? 0 : a.v / b.v);
}
inline KxDim operator*(KxDim a, KxDim b) {
    long long r;
    if (__builtin_mul_overflow(a.v, b.v, &r))
        return KxDim((a.v < 0) != (b.v < 0) ? -KxDim::kMax : KxDim::kMax);
    return KxDim(r);
}
inline Py_ssize_t kxpy_min(Py_ssize_t a, Py_ssize_t b) {
    return a < b ? a : b;
}
// The count written back: the array size, limited by a count that the
// routine returned (negative counts write nothing).
inline Py_ssize_t kxpy_limit(Py_ssize_t size, long long count) {
    return count < 0 ? 0 : (count < size ? (Py_ssize_t)count : size);
}

// ---- wrapper-owned memory ----------------------------------------------------------

struct KxFree {
    void operator()(void *p) const noexcept { std::free(p); }
};
// An array that a hand-written wrapper owns and that is freed on every path.
template <typename T>
using KxOwned = std::unique_ptr<T[], KxFree>;

// n zeroed elements for an output or work array; null with MemoryError
// "out of memory" set when there is no memory.
double *kxpy_zeros_d(Py_ssize_t n);
int *kxpy_zeros_i(Py_ssize_t n);
// n zeroed elements for an output array, which the routine fills and the
// wrapper writes back into `sequence`.  The sequence is not read, but it
// must be one (ValueError "parameter is not a sequence") with room for the
// n elements (MemoryError "out of range"), counting its rows when `nested`;
// so a count never asks for more memory than the caller's data can take.
double *kxpy_out_d(PyObject *sequence, Py_ssize_t n, bool nested);
int *kxpy_out_i(PyObject *sequence, Py_ssize_t n, bool nested);
// A writable copy of a text for a routine that changes it in place, with
// room for at least `room` characters and the terminating zero, the rest
// zero-filled; null with MemoryError set.
char *kxpy_textbuf(const char *text, Py_ssize_t room);
// A byte argument given as "s#" must hold the bytes that the routine
// reads: false with ValueError "buffer is shorter than its size" when it
// is shorter (a bad argument, not a lack of memory).
bool kxpy_enough(Py_ssize_t have, Py_ssize_t need);
// A private copy of a byte argument for a routine that runs without the
// interpreter lock (the object's memory is only guaranteed while the lock
// is held); null with MemoryError set.
char *kxpy_bytecopy(const char *bytes, Py_ssize_t n);

// ---- results -----------------------------------------------------------------------

// A text result as str.  Null gives "", and text that is not UTF-8 is read
// as Latin-1, so that a result never raises a decoding error.
PyObject *kxpy_text(const char *text);
// Binary data as bytes; a negative length gives b"".
PyObject *kxpy_bytes(const void *data, Py_ssize_t n);

// ---- the interpreter lock -------------------------------------------------------

// Whether each thread has a block of its own (thrini is in force).  The
// module sets it at import; without it (the marshalling test module) every
// call keeps the interpreter lock.
extern int (*kxpy_perthread)();
// Counts the calls that run without the interpreter lock, so that thrfin,
// which frees the blocks of all threads, runs only when none does.  A
// closing gate lets no new call in (it prefers the closer, so a stream of
// calls cannot starve it).
struct KxCallGate {
    void enter();  // waits while the gate is closed
    void leave();
    void close();  // waits until no call is inside; new calls wait
    void open();
};
extern KxCallGate kxpy_calls;

// Runs the core call of a method whose table line says r.  With one block
// for every thread the call keeps the interpreter lock for its whole length,
// so that calls from different threads never work on the block at once;
// with a block per thread it gives the lock up and runs in parallel with
// the calls of other threads.
template <typename Call>
void kxpy_unlocked(Call &&call) {
    if (!kxpy_perthread || !kxpy_perthread()) {
        call();
        return;
    }
    PyThreadState *state = PyEval_SaveThread();
    kxpy_calls.enter();
    if (!kxpy_perthread()) {
        // thrfin ran while this thread waited: the one block is back.
        kxpy_calls.leave();
        PyEval_RestoreThread(state);
        call();
        return;
    }
    call();
    kxpy_calls.leave();
    PyEval_RestoreThread(state);
}

// Runs a call that frees the blocks of other threads (thrfin) once the
// calls that run without the interpreter lock have ended; it waits without
// the lock, so that a call inside may still run Python code.
template <typename Call>
void kxpy_exclusive(Call &&call) {
    PyThreadState *state = PyEval_SaveThread();
    kxpy_calls.close();
    PyEval_RestoreThread(state);
    call();
    kxpy_calls.open();
}

// ---- results of a caller-given size -------------------------------------------------

// Sizes up to this many bytes are allocated as asked; a larger size is first
// put to the routine (size 0), so that a bad size never allocates more than
// the routine would write.
constexpr int kKxpyAskAbove = 1 << 20;

// The result of a routine that fills a byte buffer whose size the caller
// gives (pdfbuf, rbfpng, readfl, fitsimg and the like):
//   size < 0   (b"", 0) without calling the routine;
//   size == 0  the routine is asked with a null buffer for the size that it
//              needs, and (b"", that size) comes back;
//   size > 0   a buffer of size bytes is filled by the routine, which
//              returns the number of bytes it wrote (or a negative status),
//              and (the bytes written, the routine's result) comes back.
// A routine called with a null buffer and size 0 must return the size that
// it needs, or a status below 1 when it refuses the request; a size above
// kKxpyAskAbove asks it first and allocates no more than that need (a
// refusal returns (b"", status) at once).  The buffer is freed on every
// path; no memory raises MemoryError with "out of memory in <name>".
// `call(buffer, size)` runs as kxpy_unlocked says when `release` is set.
//
// The results are always bytes, also the empty ones, so that a caller sees
// one type whatever the size.
template <typename Call>
PyObject *kxpy_sized_bytes(const char *name, int size, bool release, Call call) {
    if (size < 0) return Py_BuildValue("Ni", kxpy_bytes(nullptr, 0), 0);
    int status = 0;
    auto run = [&](unsigned char *buffer, int n) {
        if (release)
            kxpy_unlocked([&] { status = call(buffer, n); });
        else
            status = call(buffer, n);
    };
    if (size > kKxpyAskAbove) {
        run(nullptr, 0);
        if (status < 1) return Py_BuildValue("Ni", kxpy_bytes(nullptr, 0), status);
        if (status < size) size = status;
    }
    KxOwned<unsigned char> buffer;
    if (size > 0) {
        buffer.reset(static_cast<unsigned char *>(std::calloc((size_t)size, 1)));
        if (!buffer) {
            PyErr_Format(PyExc_MemoryError, "out of memory in %s", name);
            return nullptr;
        }
    }
    run(buffer.get(), size);  // size 0: a null buffer, asking for the size
    Py_ssize_t length = size > 0 ? kxpy_limit(size, status) : 0;
    return Py_BuildValue("Ni", kxpy_bytes(buffer.get(), length), status);
}

// None, as a new reference.
inline PyObject *kxpy_none() {
    Py_INCREF(Py_None);
    return Py_None;
}
