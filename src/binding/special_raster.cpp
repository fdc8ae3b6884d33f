// Wrappers of the raster routines that read pixels into bytes.
//
// The result is sized from the library's own state at the call (the image,
// and one byte a pixel or three in RGB mode), never from the arguments
// alone: an accepted request gets its bytes; a refused one (warning 58)
// gets zeros of the size asked while that is no more than the whole image
// holds, and b"" beyond, so that no size a caller names allocates more than
// the image.  (wpixls, wpxrow and rbfpng are table lines.)
#include "marshal.h"

#include <cstdlib>

#include "kolvex.h"
#include "raster/image_mode.h"

namespace {

// The bytes of a result: those of an accepted request, or for a refused
// one (bytes -1) the size asked when the image could hold it, else 0 (the
// routine then runs without a buffer: it refuses before it writes).  -1
// with MemoryError set when the bytes cannot be had.
Py_ssize_t pixel_buffer(long long bytes, long long asked, const char *routine,
                        KxOwned<unsigned char> &buf) {
    if (bytes < 0) bytes = asked <= qqpixlimit() ? asked : 0;
    if (bytes <= 0) return 0;
    if (bytes > PY_SSIZE_T_MAX / 2) bytes = -1;
    if (bytes > 0) buf.reset(static_cast<unsigned char *>(std::calloc((size_t)bytes, 1)));
    if (!buf) {
        PyErr_Format(PyExc_MemoryError, "out of memory in %s", routine);
        return -1;
    }
    return (Py_ssize_t)bytes;
}

}  // namespace

PyObject *kxs_rpixls(PyObject *, PyObject *args) {
    int ix = 0, iy = 0, nw = 0, nh = 0;
    if (!PyArg_ParseTuple(args, "iiii:rpixls", &ix, &iy, &nw, &nh)) return kxpy_argfail();
    if (nw < 1 || nh < 1) return PyBytes_FromStringAndSize("", 0);
    KxOwned<unsigned char> buf;
    Py_ssize_t size = pixel_buffer(qqpixrequest(ix, iy, nw, nh, 0),
                                   (KxDim(nw) * KxDim(nh) * KxDim(qqpixbytes())).v, "rpixls", buf);
    if (size < 0) return nullptr;
    rpixls(buf.get(), ix, iy, nw, nh);
    return kxpy_bytes(buf.get(), size);
}

PyObject *kxs_rpxrow(PyObject *, PyObject *args) {
    int ix = 0, iy = 0, n = 0;
    if (!PyArg_ParseTuple(args, "iii:rpxrow", &ix, &iy, &n)) return kxpy_argfail();
    if (n < 1) return PyBytes_FromStringAndSize("", 0);
    KxOwned<unsigned char> buf;
    Py_ssize_t size =
        pixel_buffer(qqpixrequest(ix, iy, n, 1, 1), (long long)n * qqpixbytes(), "rpxrow", buf);
    if (size < 0) return nullptr;
    rpxrow(buf.get(), ix, iy, n);
    return Py_BuildValue("Ni", kxpy_bytes(buf.get(), size), size > 0 ? n : 0);
}
