// What the PDF driver keeps in the block: the record of an open document
// (null outside a session on device 511) and a finished document held in
// memory for pdfbuf.
#pragma once

#include <cstddef>

struct PdfRecord;

struct PdfState {
    PdfRecord *rec;         // the document being written; made at open, freed at close
    unsigned char *out;     // a finished document of memory mode, until pdfbuf or the next open
    size_t outlen;          // its length
    unsigned char outfail;  // memory ran out while it was written: only the count went on
    // pdfmod, set at level 0 and kept across sessions.
    unsigned char comp;     // page streams compressed (COMP), on at first
    unsigned char buff;     // the document goes to memory for pdfbuf (BUFF)
};
