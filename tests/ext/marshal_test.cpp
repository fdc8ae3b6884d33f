// kolvex_marshal_test: a module for the tests and the benchmark of the
// marshalling layer, built with the tests only and never installed.
//
// It offers the converters on their own (pydb, pyd2, pywd, ...), and the
// wrappers that the generator makes from tests/ext/marshal_test.tbl over
// the stand-in routines below, which record what they were given.  The
// shipped module stays free of anything but its 805 methods.
#include "marshal.h"

#include <atomic>
#include <cfloat>
#include <cmath>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "marshal_test.h"

namespace {

// What the last routine was given.
struct Record {
    long calls = 0;
    std::vector<double> d;
    std::vector<int> i;
    std::string s;
    long n = 0;
} rec;

std::atomic<int> signalled{0};
int depth = 1;

void record(int n) {
    ++rec.calls;
    rec.d.clear();
    rec.i.clear();
    rec.s.clear();
    rec.n = n;
}
void keep(const double *x, long n) {
    rec.d.insert(rec.d.end(), x, x + n);
}
void keep(const int *k, long n) {
    rec.i.insert(rec.i.end(), k, k + n);
}

int wait_for_signal(int ms) {
    signalled = 0;
    auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
    while (std::chrono::steady_clock::now() < end) {
        if (signalled.load()) return 1;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return 0;
}

}  // namespace

// ---- the stand-in routines ---------------------------------------------------------

void tcurve(const double *x, const double *y, int n) noexcept {
    record(n);
    keep(x, n);
    keep(y, n);
}
int tisum(const int *k, int n) noexcept {
    record(n);
    keep(k, n);
    long long s = 0;
    for (int j = 0; j < n; ++j) s += k[j];
    return (int)s;
}
void tmat(const double *z, int nx, int ny) noexcept {
    record(nx * ny);
    keep(z, (long)nx * ny);
}
void timat(const int *k, int nx, int ny) noexcept {
    record(nx * ny);
    keep(k, (long)nx * ny);
}
void tcube(const double *w, int nx, int ny, int nz) noexcept {
    record(nx * ny * nz);
    keep(w, (long)nx * ny * nz);
}
void tshade(const int *k, const int *p, int n) noexcept {
    record(n);
    keep(k, n);
    keep(p, n);
}
void tflat(const double *z, int nx, int ny) noexcept {
    tmat(z, nx, ny);
}
void tfill(double *x, int n) noexcept {
    record(n);
    keep(x, n);
    for (int j = 0; j < n; ++j) x[j] = 2 * x[j] + 1;
}
void tfilli(int *k, int n) noexcept {
    record(n);
    keep(k, n);
    for (int j = 0; j < n; ++j) k[j] = (int)-(long long)k[j];
}
void tfill2(double *z, int nx, int ny) noexcept {
    record(nx * ny);
    keep(z, (long)nx * ny);
    for (int j = 0; j < nx * ny; ++j) z[j] = z[j] * 10;
}
// Fills the whole arrays but reports half of them as its points.
int tpts(double *x, int *k, int nmax) noexcept {
    record(nmax);
    for (int j = 0; j < nmax; ++j) {
        x[j] = j + 0.5;
        k[j] = 100 + j;
    }
    return nmax / 2;
}
void thist(const double *x, int n, double *h, int *nh) noexcept {
    record(n);
    keep(h, n);  // an output array arrives zeroed
    for (int j = 0; j < n; ++j) h[j] = x[j] * x[j];
    *nh = n - 1;
}
void tgetm(double *z, int nx, int ny) noexcept {
    record(nx * ny);
    keep(z, (long)nx * ny);
    for (int j = 0; j < nx * ny; ++j) z[j] = j;
}
void tpair(int a, int *twice, double *half) noexcept {
    record(a);
    *twice = (int)(2LL * a);
    *half = a / 2.0;
}
float tflt(double x) noexcept {
    record(0);
    if (x > FLT_MAX) return INFINITY;  // beyond float: no undefined conversion
    if (x < -FLT_MAX) return -INFINITY;
    return (float)x;
}
const char *tname(int k) noexcept {
    record(k);
    if (k < 0) return nullptr;
    if (k == 1) return "caf\xe9";  // Latin-1, not UTF-8
    if (k == 2) return "\xc3\xa9t\xc3\xa9";
    return "abc";
}
void tupper(char *s) noexcept {
    record(0);
    for (char *p = s; *p; ++p)
        if (*p >= 'a' && *p <= 'z') *p = (char)(*p - 'a' + 'A');
    rec.s = s;
}
// Writes nmax characters into its text, as a routine that fills a buffer
// of the caller's size does.
int troom(const int *k, int n, char *s, int nmax) noexcept {
    record(n);
    keep(k, n);
    if (nmax < 0) return -1;
    for (int j = 0; j < nmax; ++j) s[j] = (char)('a' + k[j % n] % 26);
    s[nmax] = '\0';
    rec.s = s;
    return nmax;
}
void tgmx(const char *c, char *a, char *b, int *n) noexcept {
    record(0);
    std::strncpy(a, c, 8);
    std::strcpy(b, "12345678");
    *n = (int)std::strlen(c);
}
int tbuf(unsigned char *buf, int n) noexcept {
    record(n);
    if (!buf) return 10;
    int m = n < 10 ? n : 10;
    for (int j = 0; j < m; ++j) buf[j] = (unsigned char)(j * 30);
    return m;
}
int tread(int unit, unsigned char *buf, int n) noexcept {
    record(n);
    if (unit < 0) return -2;
    if (!buf) return 0;
    std::memset(buf, 'x', (size_t)n);
    return n;
}
int twrite(int k, const char *buf, int n) noexcept {
    record(n);
    long long sum = k;
    for (int j = 0; j < n; ++j) sum += (unsigned char)buf[j];
    return (int)sum;
}
void tpix(const unsigned char *p, int nw, int nh) noexcept {
    long long n = (long long)nw * nh * depth;
    record((int)n);
    for (long long j = 0; j < n; ++j) rec.i.push_back(p[j]);
}
int twork(const double *x, int n, double *w, int m) noexcept {
    record(m);
    keep(w, m);  // a work array arrives zeroed
    keep(x, n);
    for (int j = 0; j < m; ++j) w[j] = 1;
    return m;
}
int tcsr(int *ix, int *iy) noexcept {
    record(0);
    *ix = (int)(*ix + 1LL);
    *iy = (int)(*iy - 1LL);
    return 7;
}
void tlit(const double *x, const double *y, const double *z) noexcept {
    record(3);
    keep(x, 3);
    keep(y, 3);
    keep(z, 3);
}
double tmixed(const double *x, double s, const int *k, int n, float f) noexcept {
    record(n);
    double sum = f;
    for (int j = 0; j < n; ++j) sum += s * x[j] + k[j];
    return sum;
}
int twait(int ms) noexcept {
    record(ms);
    return wait_for_signal(ms);
}
int twaitl(int ms) noexcept {
    return twait(ms);
}
void tsignal() noexcept {
    signalled = 1;
}
int tdepth() noexcept {
    return depth;
}
void tsetdep(int d) noexcept {
    depth = d;
}

#include "marshal_test.inc"

// ---- the converters on their own ----------------------------------------------------------

namespace {

template <typename T>
PyObject *as_list(const T *a, Py_ssize_t n) {
    PyObject *list = PyList_New(n);
    for (Py_ssize_t j = 0; list && j < n; ++j) {
        PyObject *v = std::is_same<T, double>::value ? PyFloat_FromDouble((double)a[j])
                                                     : PyLong_FromLong((long)a[j]);
        if (!v) {
            Py_CLEAR(list);
            break;
        }
        PyList_SET_ITEM(list, j, v);
    }
    return list;
}

template <typename T>
PyObject *listed(T *a, Py_ssize_t n) {
    if (!a) return nullptr;
    PyObject *list = as_list(a, n);
    std::free(a);
    return list;
}

// pydb(object, n) and its kin: the converted array as a list.
template <typename T, T *(*convert)(PyObject *, Py_ssize_t)>
PyObject *py_flat(PyObject *, PyObject *args) {
    PyObject *o;
    Py_ssize_t n;
    if (!PyArg_ParseTuple(args, "On", &o, &n)) return nullptr;
    return listed(convert(o, n), n);
}
template <typename T, T *(*convert)(PyObject *, Py_ssize_t, Py_ssize_t)>
PyObject *py_nested(PyObject *, PyObject *args) {
    PyObject *o;
    Py_ssize_t nx, ny;
    if (!PyArg_ParseTuple(args, "Onn", &o, &nx, &ny)) return nullptr;
    return listed(convert(o, nx, ny), nx * ny);
}
PyObject *py_d3(PyObject *, PyObject *args) {
    PyObject *o;
    Py_ssize_t nx, ny, nz;
    if (!PyArg_ParseTuple(args, "Onnn", &o, &nx, &ny, &nz)) return nullptr;
    return listed(qqpyd3(o, nx, ny, nz), nx * ny * nz);
}
PyObject *py_ln(PyObject *, PyObject *args) {
    PyObject *o;
    if (!PyArg_ParseTuple(args, "O", &o)) return nullptr;
    Py_ssize_t n = qqpyln(o);
    return n < 0 ? nullptr : PyLong_FromSsize_t(n);
}

// pyw?(values, sequence, n[, nested]): writes the numbers of `values` back
// into `sequence` as a wrapper does after its call.
template <typename T>
PyObject *py_write(PyObject *args, T *(*convert)(PyObject *, Py_ssize_t),
                   void (*flat)(const T *, PyObject *, Py_ssize_t),
                   void (*nested)(const T *, PyObject *, Py_ssize_t)) {
    PyObject *values, *seq;
    Py_ssize_t n;
    int two = 0;
    if (!PyArg_ParseTuple(args, "OOn|p", &values, &seq, &n, &two)) return nullptr;
    Py_ssize_t len = qqpyln(values);
    if (len < 0) return nullptr;
    T *a = convert(values, len);
    if (!a) return nullptr;
    (two ? nested : flat)(a, seq, n);
    std::free(a);
    if (PyErr_Occurred()) return nullptr;  // a write-back must leave none behind
    Py_RETURN_NONE;
}
PyObject *py_wd(PyObject *, PyObject *args) {
    return py_write<double>(args, qqpydb, qqpywd, qqpywd2);
}
PyObject *py_wi(PyObject *, PyObject *args) {
    return py_write<int>(args, qqpyin, qqpywi, qqpywi2);
}

// pyconv(kind, object, n): converts and frees, nothing else; for timing.
PyObject *py_conv(PyObject *, PyObject *args) {
    const char *kind;
    PyObject *o;
    Py_ssize_t n;
    if (!PyArg_ParseTuple(args, "sOn", &kind, &o, &n)) return nullptr;
    void *a = kind[0] == 'i' ? (void *)qqpyin(o, n) : (void *)qqpydb(o, n);
    if (!a) return nullptr;
    std::free(a);
    Py_RETURN_NONE;
}

PyObject *py_last(PyObject *, PyObject *) {
    return Py_BuildValue("{s:l,s:N,s:N,s:s#,s:l}", "calls", rec.calls, "d",
                         as_list(rec.d.data(), (Py_ssize_t)rec.d.size()), "i",
                         as_list(rec.i.data(), (Py_ssize_t)rec.i.size()), "s", rec.s.data(),
                         (Py_ssize_t)rec.s.size(), "n", rec.n);
}

PyMethodDef extra_methods[] = {
    {"pydb", py_flat<double, qqpydb>, METH_VARARGS, nullptr},
    {"pyin", py_flat<int, qqpyin>, METH_VARARGS, nullptr},
    {"pyib", py_flat<int, qqpyib>, METH_VARARGS, nullptr},
    {"pyd2", py_nested<double, qqpyd2>, METH_VARARGS, nullptr},
    {"pyi2", py_nested<int, qqpyi2>, METH_VARARGS, nullptr},
    {"pyd3", py_d3, METH_VARARGS, nullptr},
    {"pyln", py_ln, METH_VARARGS, nullptr},
    {"pywd", py_wd, METH_VARARGS, nullptr},
    {"pywi", py_wi, METH_VARARGS, nullptr},
    {"pyconv", py_conv, METH_VARARGS, nullptr},
    {"tlast", py_last, METH_NOARGS, nullptr},
    {nullptr, nullptr, 0, nullptr},
};

struct PyModuleDef module_def = {
    // clang-format off
    PyModuleDef_HEAD_INIT, "kolvex_marshal_test", nullptr, -1, kolvex_methods,
    nullptr, nullptr, nullptr, nullptr,
    // clang-format on
};

}  // namespace

PyMODINIT_FUNC PyInit_kolvex_marshal_test(void) {
    // The stand-ins share no block: releasing methods give the interpreter
    // lock up as they would with thrini.
    kxpy_perthread = [] { return 1; };
    PyObject *m = PyModule_Create(&module_def);
    if (m && PyModule_AddFunctions(m, extra_methods) != 0) Py_CLEAR(m);
    return m;
}
