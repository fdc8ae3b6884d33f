// Wrappers of the raster routines that pass bytes.
//
// The size of pixel data follows the library's own image mode (one byte a
// pixel, or three in RGB mode), read from the library at the call: a
// module flag that could disagree with it never sizes a buffer.  Results
// are bytes objects; a given buffer may be bytes or str.  A buffer shorter
// than the pixels it must hold is refused as a short sequence is.
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

PyObject *too_short() {
    PyErr_SetString(PyExc_MemoryError, "out of range");
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

PyObject *kxs_wpixls(PyObject *, PyObject *args) {
    const char *data = nullptr;
    Py_ssize_t len = 0;
    int ix = 0, iy = 0, nw = 0, nh = 0;
    if (!PyArg_ParseTuple(args, "s#iiii:wpixls", &data, &len, &ix, &iy, &nw, &nh))
        return kxpy_argfail();
    if (nw < 1 || nh < 1) Py_RETURN_NONE;
    Py_ssize_t need = pixel_bytes((long long)nw * nh);
    if (need < 0 || len < need) return too_short();
    wpixls(reinterpret_cast<const unsigned char *>(data), ix, iy, nw, nh);
    Py_RETURN_NONE;
}

PyObject *kxs_wpxrow(PyObject *, PyObject *args) {
    const char *data = nullptr;
    Py_ssize_t len = 0;
    int ix = 0, iy = 0, n = 0;
    if (!PyArg_ParseTuple(args, "s#iii:wpxrow", &data, &len, &ix, &iy, &n)) return kxpy_argfail();
    if (n < 1) Py_RETURN_NONE;
    Py_ssize_t need = pixel_bytes(n);
    if (need < 0 || len < need) return too_short();
    wpxrow(reinterpret_cast<const unsigned char *>(data), ix, iy, n);
    Py_RETURN_NONE;
}

PyObject *kxs_rbfpng(PyObject *, PyObject *args) {
    int nmax = 0;
    if (!PyArg_ParseTuple(args, "i:rbfpng", &nmax)) return kxpy_argfail();
    if (nmax < 0) return Py_BuildValue("yi", "", 0);
    unsigned char *buf = nullptr;
    if (nmax > 0) {
        buf = static_cast<unsigned char *>(std::malloc((size_t)nmax));
        if (!buf) return no_memory("rbfpng");
    }
    int len = 0;
    Py_BEGIN_ALLOW_THREADS len = rbfpng(buf, nmax);
    Py_END_ALLOW_THREADS
        // With no buffer the routine only counts: the length comes alone.
        PyObject *r =
            Py_BuildValue("y#i", reinterpret_cast<const char *>(buf ? buf : (unsigned char *)""),
                          (Py_ssize_t)(buf ? len : 0), len);
    std::free(buf);
    return r;
}
