// The PDF document writer; see pdf_doc.h.
#include "devices/pdf_doc.h"

#include <charconv>
#include <climits>
#include <cstdint>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>
#include <thread>
#include <zlib.h>

// A full piece of a long page handed to a second thread for compression.
// The thread owns raw, z and zlen from its start to its join; the record
// takes them back at the join, before anything of the piece is written.
struct PdfPiece {
    std::thread worker;
    bool busy = false;
    int obj = 0;                // the piece's object number
    unsigned char *raw = nullptr;  // its bytes (a buffer of the content size)
    size_t rawlen = 0;
    unsigned char *z = nullptr;  // deflate's output
    size_t zcap = 0;
    long long zlen = -1;  // compressed length, -1 when zlib failed
};

namespace {

void *plain_realloc(void *old, size_t size) {
    return std::realloc(old, size);
}

const size_t kContentCap = 300000;  // a content stream is compressed in pieces of this size
const size_t kMemoryStep = 512000;  // memory output grows by this much

void sink_put(PdfRecord *p, const void *data, size_t n) {
    PdfSink &s = p->sink;
    p->pdfpos += (long long)n;
    if (s.memmode) {
        if (s.memfail) return;
        if (n > s.memcap - s.memlen) {
            size_t need = n - (s.memcap - s.memlen);
            size_t steps = need / kMemoryStep + (need % kMemoryStep != 0);
            if (steps > (SIZE_MAX - s.memcap) / kMemoryStep) {
                s.memfail = 1;
                return;
            }
            size_t cap = s.memcap + steps * kMemoryStep;
            void *grown = qqpdfrealloc(s.mem, cap);
            if (!grown) {
                s.memfail = 1;
                return;
            }
            s.mem = static_cast<unsigned char *>(grown);
            s.memcap = cap;
        }
        std::memcpy(s.mem + s.memlen, data, n);
        s.memlen += n;
        return;
    }
    if (s.fp && std::fwrite(data, 1, n, s.fp) != n) s.ioerr = 1;
}

// A buffer of at least size bytes in *buf (kept when large enough).
bool reserve(unsigned char **buf, size_t *cap, size_t size) {
    if (*buf && *cap >= size) return true;
    void *q = qqpdfrealloc(*buf, size);
    if (!q) return false;
    *buf = static_cast<unsigned char *>(q);
    *cap = size;
    return true;
}

// What deflate may need for n bytes in one call; 0 when n is too large.
size_t deflate_room(size_t n) {
    return n > UINT_MAX / 2 ? 0 : n + n / 100 + 13;
}

// Deflates n bytes at the default level in one call into out, which holds
// deflate_room(n) bytes; the compressed length, or -1.
long long deflate_into(const unsigned char *in, size_t n, unsigned char *out, size_t room) {
    z_stream zs;
    std::memset(&zs, 0, sizeof zs);
    if (deflateInit(&zs, Z_DEFAULT_COMPRESSION) != Z_OK) return -1;
    zs.next_in = const_cast<unsigned char *>(in);
    zs.avail_in = (uInt)n;
    zs.next_out = out;
    zs.avail_out = (uInt)room;
    int r = deflate(&zs, Z_FINISH);
    long long len = (long long)zs.total_out;
    if (deflateEnd(&zs) != Z_OK || r != Z_STREAM_END) return -1;
    return len;
}

// Deflates the collected stream into zbuf; the compressed length, or -1.
long long deflate_stream(PdfRecord *p) {
    size_t need = deflate_room(p->stmlen);
    if (need == 0 || !reserve(&p->zbuf, &p->zcap, need)) return -1;
    return deflate_into(p->stmbuf, p->stmlen, p->zbuf, need);
}

// Writes a collected stream, compressed when zlib succeeded (z of zlen
// bytes), else raw, and ends the object.  A content stream (obj above 0)
// writes its "obj" line first; an image carries the first lines of its
// dictionary already.
void write_stream(PdfRecord *p, int obj, const unsigned char *raw, size_t rawlen,
                  const unsigned char *z, long long zlen, bool image) {
    if (obj > 0) pdfw_place(p, obj);
    char line[96];
    char *e;
    if (zlen >= 0) {
        e = pdfw_int(pdfw_txt(line, image ? "   /Length " : "<< /Length "), zlen);
        e = pdfw_txt(e, image ? "\n   /Filter /FlateDecode\n>>\nstream\n"
                              : "\n/Filter /FlateDecode\n>>\nstream\n");
        pdfw_put(p, line, (size_t)(e - line));
        pdfw_put(p, reinterpret_cast<const char *>(z), (size_t)zlen);
    } else {
        // No compression today: the same data as they stand.
        e = pdfw_int(pdfw_txt(line, image ? "   /Length " : "<< /Length "), (long long)rawlen);
        e = pdfw_txt(e, image ? "\n>>\nstream\n" : " >>\nstream\n");
        pdfw_put(p, line, (size_t)(e - line));
        pdfw_put(p, reinterpret_cast<const char *>(raw), rawlen);
    }
    pdfw_str(p, "endstream\nendobj\n");
}

// Writes the collected stream and ends the object.
void write_collected(PdfRecord *p, bool image) {
    p->stmon = 0;
    long long z = deflate_stream(p);
    write_stream(p, image ? 0 : p->stmobj, p->stmbuf, p->stmlen, p->zbuf, z, image);
    p->stmlen = 0;
}

// Waits for the piece on the second thread, if any, and writes it.
void finish_piece(PdfRecord *p) {
    PdfPiece *q = p->piece;
    if (!q || !q->busy) return;
    q->worker.join();
    q->busy = false;
    write_stream(p, q->obj, q->raw, q->rawlen, q->z, q->zlen, false);
}

// Hands the full content stream being collected to a second thread and
// swaps in a free buffer, so that collecting goes on at once.  False when
// a piece is still on its way, or memory or a thread cannot be had: the
// caller then compresses here.
bool hand_over(PdfRecord *p) {
    if (!qqpdfpieces || std::thread::hardware_concurrency() < 2) return false;
    if (!p->piece) p->piece = new (std::nothrow) PdfPiece;
    PdfPiece *q = p->piece;
    if (!q || q->busy || p->stmcap != kContentCap) return false;
    size_t room = deflate_room(p->stmlen);
    if (room == 0 || !reserve(&q->z, &q->zcap, room)) return false;
    if (!q->raw) {
        q->raw = static_cast<unsigned char *>(qqpdfrealloc(nullptr, kContentCap));
        if (!q->raw) return false;
    }
    std::swap(q->raw, p->stmbuf);
    q->rawlen = p->stmlen;
    q->obj = p->stmobj;
    q->zlen = -1;
    try {
        q->worker = std::thread([q, room] { q->zlen = deflate_into(q->raw, q->rawlen, q->z, room); });
    } catch (...) {
        std::swap(q->raw, p->stmbuf);
        return false;
    }
    q->busy = true;
    return true;
}

// A content stream whose buffer is full, with more of the page to come:
// it ends, and the next one begins.
void next_piece(PdfRecord *p) {
    if (hand_over(p)) {
        p->stmobj = pdfw_number(p, PDF_CONTENT);
        p->stmlen = 0;
        return;
    }
    pdfw_content_end(p);
    pdfw_content_start(p);
}

}  // namespace

void *(*qqpdfrealloc)(void *old, size_t size) = plain_realloc;
int qqpdfpieces = 1;

void pdfw_put(PdfRecord *p, const char *data, size_t n) noexcept {
    while (n > 0) {
        if (!p->stmon) {
            sink_put(p, data, n);
            return;
        }
        size_t room = p->stmcap - p->stmlen;
        if (n > room && !p->stmimage && p->stmlen > 0) {
            // A long page goes on in a new content stream.
            next_piece(p);
            continue;
        }
        if (room == 0) return;  // an image never holds more than its pixels
        size_t k = n < room ? n : room;
        std::memcpy(p->stmbuf + p->stmlen, data, k);
        p->stmlen += k;
        data += k;
        n -= k;
    }
}

void pdfw_str(PdfRecord *p, const char *text) noexcept {
    pdfw_put(p, text, std::strlen(text));
}

char *pdfw_txt(char *at, const char *text) noexcept {
    while (*text) *at++ = *text++;
    return at;
}

char *pdfw_int(char *at, long long v) noexcept {
    return std::to_chars(at, at + 24, v).ptr;
}

char *pdfw_fix(char *at, double v, int prec) noexcept {
    static const double kScale[4] = {1.0, 10.0, 100.0, 1000.0};
    static const unsigned kDiv[4] = {1, 10, 100, 1000};
    if (prec < 0) prec = 0;
    if (prec > 3) prec = 3;
    double a = std::fabs(v);
    // Below 1e6 the scaled value is exact to far better than 1e-6, so any
    // value not within 1e-6 of a tie rounds as printf rounds the exact
    // binary value; ties and large values take the exact conversion.
    if (a < 1e6) {
        double t = a * kScale[prec];
        double fl = std::floor(t);
        double fr = t - fl;
        if (std::fabs(fr - 0.5) > 1e-6) {
            unsigned long long u = (unsigned long long)fl + (fr > 0.5 ? 1 : 0);
            if (std::signbit(v)) *at++ = '-';
            unsigned long long ip = u / kDiv[prec];
            unsigned fp = (unsigned)(u % kDiv[prec]);
            at = std::to_chars(at, at + 24, ip).ptr;
            if (prec > 0) {
                *at++ = '.';
                for (int i = prec - 1; i >= 0; --i) {
                    at[i] = (char)('0' + fp % 10);
                    fp /= 10;
                }
                at += prec;
            }
            return at;
        }
    }
    if (!std::isfinite(v)) return pdfw_txt(at, "0");
    auto r = std::to_chars(at, at + 40, v, std::chars_format::fixed, prec);
    return r.ec == std::errc() ? r.ptr : pdfw_txt(at, "0");
}

int pdfw_number(PdfRecord *p, int type) noexcept {
    int num = p->objnext;
    if (num >= p->objcap && !p->nomem) {
        int cap = p->objcap + 100;
        void *pos = qqpdfrealloc(p->objpos, (size_t)cap * sizeof(long long));
        if (pos) p->objpos = static_cast<long long *>(pos);
        void *typ = pos ? qqpdfrealloc(p->objtype, (size_t)cap) : nullptr;
        if (typ) p->objtype = static_cast<unsigned char *>(typ);
        if (pos && typ)
            p->objcap = cap;
        else
            p->nomem = 1;
    }
    if (num < p->objcap) {
        p->objpos[num] = 0;
        p->objtype[num] = (unsigned char)type;
    }
    if (type == PDF_CONTENT) {
        p->pagecont++;
        p->contlast = num;
    }
    p->objnext = num + 1;
    return num;
}

void pdfw_place(PdfRecord *p, int num) noexcept {
    if (num < p->objcap) p->objpos[num] = p->pdfpos;
    char line[40];
    char *e = pdfw_txt(pdfw_int(line, num), " 0 obj\n");
    pdfw_put(p, line, (size_t)(e - line));
}

int pdfw_object(PdfRecord *p, int type) noexcept {
    int num = pdfw_number(p, type);
    pdfw_place(p, num);
    return num;
}

void pdfw_fixed_object(PdfRecord *p, int number) noexcept {
    if (number < p->objcap) p->objpos[number] = p->pdfpos;
    char line[40];
    char *e = pdfw_txt(pdfw_int(line, number), " 0 obj\n");
    pdfw_put(p, line, (size_t)(e - line));
}

void pdfw_content_start(PdfRecord *p) noexcept {
    p->compnow = 0;
    if (p->compress) {
        if (!(p->stmbuf && p->stmcap == kContentCap)) {
            std::free(p->stmbuf);
            p->stmbuf = static_cast<unsigned char *>(qqpdfrealloc(nullptr, kContentCap));
            p->stmcap = p->stmbuf ? kContentCap : 0;
        }
        p->compnow = p->stmbuf != nullptr;
    }
    p->instream = 1;
    if (p->compnow) {
        p->stmobj = pdfw_number(p, PDF_CONTENT);
        p->stmon = 1;
        p->stmimage = 0;
        p->stmlen = 0;
        return;
    }
    pdfw_object(p, PDF_CONTENT);
    // Without compression the length follows in an object of its own.
    char line[64];
    char *e = pdfw_int(pdfw_txt(line, "<< /Length "), p->objnext);
    e = pdfw_txt(e, " 0 R >>\nstream\n");
    pdfw_put(p, line, (size_t)(e - line));
    p->stmstart = p->pdfpos;
}

void pdfw_content_end(PdfRecord *p) noexcept {
    if (!p->instream) return;
    p->instream = 0;
    if (p->stmon) {
        if (p->piece && p->piece->busy) {
            // The last piece is compressed here while the thread finishes
            // the one before it; then both go out in their order.
            p->stmon = 0;
            long long z = deflate_stream(p);
            finish_piece(p);
            write_stream(p, p->stmobj, p->stmbuf, p->stmlen, p->zbuf, z, false);
            p->stmlen = 0;
            return;
        }
        write_collected(p, false);
        return;
    }
    long long len = p->pdfpos - p->stmstart;
    pdfw_str(p, "endstream\nendobj\n");
    pdfw_object(p, PDF_PLAIN);
    char line[40];
    char *e = pdfw_txt(pdfw_int(line, len), "\nendobj\n");
    pdfw_put(p, line, (size_t)(e - line));
}

void pdfw_image_data(PdfRecord *p) noexcept {
    size_t n = (size_t)3 * (size_t)p->imgw * (size_t)p->imgh;
    p->compnow = 0;
    if (p->compress) {
        std::free(p->stmbuf);
        p->stmbuf = n > 0 ? static_cast<unsigned char *>(qqpdfrealloc(nullptr, n)) : nullptr;
        p->stmcap = p->stmbuf ? n : 0;
        p->compnow = p->stmbuf != nullptr;
    }
    if (p->compnow) {
        p->stmon = 1;
        p->stmimage = 1;
        p->stmlen = 0;
        return;
    }
    char line[64];
    char *e = pdfw_int(pdfw_txt(line, "   /Length "), (long long)n);
    e = pdfw_txt(e, "\n>>\nstream\n");
    pdfw_put(p, line, (size_t)(e - line));
}

void pdfw_image_end(PdfRecord *p) noexcept {
    if (p->stmon) {
        write_collected(p, true);
        p->stmimage = 0;
        return;
    }
    pdfw_str(p, "endstream\nendobj\n");
}

int pdfw_sink_memory(PdfRecord *p) noexcept {
    PdfSink &s = p->sink;
    s.memmode = 1;
    s.mem = static_cast<unsigned char *>(qqpdfrealloc(nullptr, kMemoryStep));
    if (!s.mem) return 53;
    s.memcap = kMemoryStep;
    s.memlen = 0;
    return 0;
}

void pdfw_free(PdfRecord *p) noexcept {
    if (PdfPiece *q = p->piece) {
        // A session dropped in the middle of a page: the piece is not
        // wanted any more, but its thread must end before its memory goes.
        if (q->busy) q->worker.join();
        std::free(q->raw);
        std::free(q->z);
        delete q;
    }
    std::free(p->objpos);
    std::free(p->objtype);
    std::free(p->stmbuf);
    std::free(p->zbuf);
    std::free(p->sink.mem);
    for (int i = 0; i < p->nmarks; ++i) std::free(p->marks[i].title);
    std::free(p->marks);
    if (p->sink.fp) std::fclose(p->sink.fp);
    std::memset(p, 0, sizeof *p);
}
