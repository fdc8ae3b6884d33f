// The PDF document writer: where the bytes go, the object table, content
// and image streams with their compression, and the numbers of the
// format.  Private to the PDF driver (devices/pdf.cpp).
//
// Every byte of a document passes pdfw_put.  While a compressed stream is
// being collected the bytes go into the stream buffer; otherwise they go to
// the sink, a file or a growing memory block, so that a document in memory
// is byte for byte the document that the file would hold.  pdfpos counts
// the bytes that reached the sink: the cross-reference table is built from
// it.  Numbers are formatted without the C locale.
#pragma once

#include <cstddef>
#include <cstdio>

// Where the document's bytes go.  Memory output grows by 512000 bytes at a
// time; when growing fails, memfail is set and only the count goes on.
// A file that reports a write error sets ioerr.
struct PdfSink {
    FILE *fp;
    unsigned char *mem;
    size_t memlen, memcap;
    unsigned char memmode, memfail, ioerr;
};

// One bookmark: level 0 to 4, page from 1, its own copy of the title.
struct PdfMark {
    int level, page;
    char *title;
};

// Object types of the object table.
enum {
    PDF_PLAIN = 0,
    PDF_CONTENT = 1,
    PDF_PAGE = 2,
    PDF_IMAGE = 3,
    PDF_OUTLINE = 5,
    PDF_FONT = 10
};

// The driver's record, made at open and freed at close.
struct PdfRecord {
    PdfSink sink;
    long long pdfpos;         // bytes that reached the sink
    int objnext;              // next object number; 1 and 2 are the catalog and the page tree
    long long *objpos;        // byte offset of each object, by number
    unsigned char *objtype;   // its type (PDF_ above, PDF_FONT + index for a font)
    int objcap;               // entries of both tables, growing by 100
    int pagefirst;            // first object of the current page
    int pagecont, contlast;   // content objects of this page, the last one's number
    int mediaw, mediah;       // MediaBox in points
    unsigned char rotate;     // the page is shown turned by 90 degrees
    unsigned char landscape;  // positions map as (sY, sX)
    unsigned char compress;   // compression wished
    unsigned char compnow;    // the stream being written is collected for compression
    unsigned char instream;   // a content stream is open
    unsigned char *stmbuf;    // the stream being collected
    size_t stmcap, stmlen;    // its size and length
    unsigned char stmon;      // collecting
    unsigned char stmimage;   // the stream collected is an image: it is never split
    long long stmstart;       // offset of an uncompressed stream's data
    unsigned char *zbuf;      // output of deflate, kept from stream to stream
    size_t zcap;
    int stmobj;               // the content stream being collected: its "obj" line waits for its data
    struct PdfPiece *piece;   // a full piece of a long page being compressed beside it (pdf_doc.cpp)
    unsigned char pathopen;      // a path with segments is open and must be stroked
    unsigned char penmode;       // 3 after a move, 2 after a draw
    float penx, peny;            // last position in points
    unsigned char intext;        // between BT and ET
    int fontidx, fontsz;         // font and size (tenths of a point) of the open text object
    int fontwz;                  // its horizontal scaling in percent (Tz)
    unsigned char fontuse[35];   // 0 unused, 1 used and not yet written, 2 written
    unsigned char anyfont;       // a font was used
    unsigned char clipon;        // one q of a clip rectangle is open
    float clp[4];                // its corners: lower left, upper right
    int fillrgb[3], strkrgb[3];  // colours last written; -1 none
    // The line state last written, and as it stood at the q of the clip,
    // so that what a Q takes back can be written again.
    double linew, miter;
    int cap, join;
    int qfill[3], qstrk[3];
    double qlinew, qmiter;
    int qcap, qjoin;
    int imgcount;           // images so far
    unsigned char imgmask;  // the next image masks white
    int imgw, imgh;         // size of the image being written
    int pageno;             // page number from 1
    PdfMark *marks;         // bookmarks
    int nmarks, capmarks;
    unsigned char nomem;        // the object table could not grow: the document is lost
    unsigned char placeholder;  // the final name is held by an empty file until the rename
    char tmpname[300];          // the file as it is written; renamed at close
    char finalname[300];        // its name once complete
};

// Bytes as they are.
void pdfw_put(PdfRecord *p, const char *data, size_t n) noexcept;
void pdfw_str(PdfRecord *p, const char *text) noexcept;

// Appends a number to a text being built and returns the new end: with
// prec decimals exactly as printf's "%.<prec>f" (prec 0 to 3), or an
// integer.  The caller leaves room for 40 characters.
char *pdfw_fix(char *at, double v, int prec) noexcept;
char *pdfw_int(char *at, long long v) noexcept;
char *pdfw_txt(char *at, const char *text) noexcept;

// Starts object objnext of a type: its offset goes to the table, which
// grows by 100 entries; "n 0 obj\n" is written.  Returns its number, or 0
// when the table could not grow (warning 53 is then the caller's).
int pdfw_object(PdfRecord *p, int type) noexcept;
// The two halves of pdfw_object: the number and the table entry, then,
// when the object's bytes begin, its offset and its "obj" line.
int pdfw_number(PdfRecord *p, int type) noexcept;
void pdfw_place(PdfRecord *p, int num) noexcept;
// The offset of object 1 or 2, written at the end.
void pdfw_fixed_object(PdfRecord *p, int number) noexcept;

// Content streams of a page.  Start opens one (collected for compression
// when compression is wished and the buffer could be had, else written
// with an indirect length); end closes it.  A collected stream that
// overflows its buffer is closed and a new one started by pdfw_put.
//
// A collected stream takes its number at the start but reaches the sink,
// "obj" line and all, only when it ends: nothing else is written between.
// That lets a long page compress one full piece on a second thread while
// the next piece is collected and compressed here; the pieces still reach
// the sink in their order, so the document is byte for byte the one that
// one thread would write.
void pdfw_content_start(PdfRecord *p) noexcept;
void pdfw_content_end(PdfRecord *p) noexcept;

// An image stream of 3·w·h bytes: after the start the caller has written
// the dictionary's first lines; image_data writes the rest of it and
// "stream", then the rows follow through pdfw_put, then image_end.
void pdfw_image_data(PdfRecord *p) noexcept;
void pdfw_image_end(PdfRecord *p) noexcept;

// Ends the document after its last page: the page tree, the outline tree
// of the bookmarks, the catalog, the info object with the date, the
// cross-reference table and the trailer.
void pdfw_end(PdfRecord *p) noexcept;

// Opens the sink: memory (512000 bytes at first) or a file.  Returns 0,
// or 53 when memory could not be had.
int pdfw_sink_memory(PdfRecord *p) noexcept;
// Frees what the record holds, the sink's memory too unless it is taken.
void pdfw_free(PdfRecord *p) noexcept;

// Allocation (realloc's contract) of everything that the writer may fail
// to get; a test can replace it to see the fallbacks work.
extern void *(*qqpdfrealloc)(void *old, size_t size);
// Whether a long page may compress a piece on a second thread (1, the
// default) or compresses every piece here (0): a test compares the two.
extern int qqpdfpieces;
