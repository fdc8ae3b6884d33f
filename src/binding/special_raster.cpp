// Wrappers of the raster routines that read pixels into bytes, and imgmod.
//
// The size of pixel data follows the library's own image mode (one byte a
// pixel, or three in RGB mode), read from the library at the call: a
// module flag that could disagree with it never sizes a buffer.  Results
// are bytes objects.  (wpixls, wpxrow and rbfpng are table lines.)
#include "marshal.h"

#include <cstdlib>

#include "kolvex.h"
#include "raster/image_mode.h"

namespace {

// Bytes of n pixels in the library's mode, or -1 when that cannot be a
// Python object's size.
Py_ssize_t pixel_bytes(long long n) {
    long long bytes = n * qqpixbytes();
    return bytes > PY_SSIZE_T_MAX / 2 ? -1 : (Py_ssize_t)bytes;
}

PyObject *no_memory(const char *routine) {
    PyErr_Format(PyExc_MemoryError, "out of memory in %s", routine);
    return nullptr;
}

}  // namespace

PyObject *kxs_imgmod(PyObject *, PyObject *args) {
    const char *cmode = nullptr;
    if (!PyArg_ParseTuple(args, "s:imgmod", &cmode)) return kxpy_argfail();
    imgmod(cmode);
    pyrgb = cmode[0] == 'r' || cmode[0] == 'R';
    Py_RETURN_NONE;
}

PyObject *kxs_rpixls(PyObject *, PyObject *args) {
    int ix = 0, iy = 0, nw = 0, nh = 0;
    if (!PyArg_ParseTuple(args, "iiii:rpixls", &ix, &iy, &nw, &nh)) return kxpy_argfail();
    if (nw < 1 || nh < 1) return PyBytes_FromStringAndSize("", 0);
    Py_ssize_t size = pixel_bytes((long long)nw * nh);
    unsigned char *buf =
        size < 0 ? nullptr : static_cast<unsigned char *>(std::calloc((size_t)size, 1));
    if (!buf) return no_memory("rpixls");
    rpixls(buf, ix, iy, nw, nh);
    PyObject *r = Py_BuildValue("y#", reinterpret_cast<const char *>(buf), size);
    std::free(buf);
    return r;
}

PyObject *kxs_rpxrow(PyObject *, PyObject *args) {
    int ix = 0, iy = 0, n = 0;
    if (!PyArg_ParseTuple(args, "iii:rpxrow", &ix, &iy, &n)) return kxpy_argfail();
    if (n < 1) return PyBytes_FromStringAndSize("", 0);
    Py_ssize_t size = pixel_bytes(n);
    unsigned char *buf =
        size < 0 ? nullptr : static_cast<unsigned char *>(std::calloc((size_t)size, 1));
    if (!buf) return no_memory("rpxrow");
    rpxrow(buf, ix, iy, n);
    PyObject *r = Py_BuildValue("y#i", reinterpret_cast<const char *>(buf), size, n);
    std::free(buf);
    return r;
}
