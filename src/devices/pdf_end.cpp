// The end of a PDF document (page tree, outlines, catalog, info,
// cross-reference table, trailer) and the bookmarks that it carries.
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/filetime.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/warnings.h"
#include "devices/device_block.h"
#include "devices/pdf_doc.h"
#include "kolvex.h"

namespace {

void put(PdfRecord *p, const char *from, const char *to) {
    pdfw_put(p, from, (size_t)(to - from));
}

char *two_digits(char *at, int v) {
    *at++ = (char)('0' + v / 10 % 10);
    *at++ = (char)('0' + v % 10);
    return at;
}

// The object numbers of the pages, in order; count in *n.  Null without
// memory.
int *page_objects(PdfRecord *p, int *n) {
    *n = 0;
    for (int i = 1; i < p->objnext && i < p->objcap; ++i) *n += p->objtype[i] == PDF_PAGE;
    int *pages = static_cast<int *>(qqpdfrealloc(nullptr, (size_t)(*n > 0 ? *n : 1) * sizeof(int)));
    if (!pages) return nullptr;
    int k = 0;
    for (int i = 1; i < p->objnext && i < p->objcap; ++i)
        if (p->objtype[i] == PDF_PAGE) pages[k++] = i;
    return pages;
}

void write_ref(PdfRecord *p, const char *key, long long number, const char *tail) {
    char line[64];
    put(p, line, pdfw_txt(pdfw_int(pdfw_txt(line, key), number), tail));
}

// A title goes in as the user gave it.  Only when the string, read as a
// literal string, would not end at our closing parenthesis (an unbalanced
// one, or a backslash that would swallow it) are "(", ")" and "\\"
// escaped, so that the file stays readable.
void write_title(PdfRecord *p, const char *title) {
    int depth = 0;
    bool plain = true;
    for (const char *c = title; *c && plain; ++c) {
        if (*c == '\\') {
            if (!c[1]) {
                plain = false;
                break;
            }
            ++c;
        } else if (*c == '(') {
            ++depth;
        } else if (*c == ')' && --depth < 0) {
            plain = false;
        }
    }
    if (plain && depth == 0) {
        pdfw_str(p, title);
        return;
    }
    for (const char *c = title; *c; ++c) {
        if (*c == '(' || *c == ')' || *c == '\\') pdfw_put(p, "\\", 1);
        pdfw_put(p, c, 1);
    }
}

// The outline tree of the bookmarks: a root and one item per mark, each
// item's parent the last earlier mark of a lower level.  An item's /Last
// and the root's name the end of the run of marks below it, not its last
// direct child, and /Count is the length of that run.  Returns the root's
// number, 0 without marks or memory.
int write_outlines(PdfRecord *p, const int *pages, int npages) {
    int n = p->nmarks;
    if (n == 0) return 0;
    size_t bytes = (size_t)n * 3 * sizeof(int);
    int *work = static_cast<int *>(qqpdfrealloc(nullptr, bytes));
    if (!work) return 0;
    int *parent = work, *prev = work + n, *count = work + 2 * n;
    int lastat[5] = {-1, -1, -1, -1, -1};
    for (int i = 0; i < n; ++i) {
        int L = p->marks[i].level;
        int par = -1;
        for (int l = 0; l < L; ++l)
            if (lastat[l] > par) par = lastat[l];
        parent[i] = par;
        prev[i] = lastat[L] > par ? lastat[L] : -1;
        lastat[L] = i;
        for (int l = L + 1; l < 5; ++l) lastat[l] = -1;
        count[i] = 0;
    }
    for (int i = n - 1; i >= 0; --i)
        if (parent[i] >= 0) count[parent[i]] += 1 + count[i];

    int root = pdfw_object(p, PDF_OUTLINE);
    pdfw_str(p, "<< /Type /Outlines\n");
    write_ref(p, "   /First ", root + 1, " 0 R\n");
    write_ref(p, "   /Last ", root + n, " 0 R\n");
    write_ref(p, "   /Count ", n, "\n");
    pdfw_str(p, ">>\nendobj\n");
    for (int i = 0; i < n; ++i) {
        int self = pdfw_object(p, PDF_OUTLINE);
        pdfw_str(p, "<< /Title (");
        write_title(p, p->marks[i].title);
        pdfw_str(p, ")\n");
        write_ref(p, "   /Parent ", parent[i] >= 0 ? root + 1 + parent[i] : root, " 0 R\n");
        if (prev[i] >= 0) write_ref(p, "   /Prev ", root + 1 + prev[i], " 0 R\n");
        for (int j = i + 1; j < n; ++j) {
            if (p->marks[j].level < p->marks[i].level) break;
            if (prev[j] == i) {
                write_ref(p, "   /Next ", root + 1 + j, " 0 R\n");
                break;
            }
        }
        if (count[i] > 0) {
            write_ref(p, "   /First ", self + 1, " 0 R\n");
            write_ref(p, "   /Last ", self + count[i], " 0 R\n");
            write_ref(p, "   /Count ", count[i], "\n");
        }
        int page = p->marks[i].page;
        if (page > npages) page = npages;
        char line[96];
        char *e = pdfw_int(pdfw_txt(line, "   /Dest ["), page >= 1 ? pages[page - 1] : 3);
        e = pdfw_int(pdfw_txt(e, " 0 R /XYZ 0 "), p->mediah);
        put(p, line, pdfw_txt(e, " 0]\n>>\nendobj\n"));
    }
    std::free(work);
    return root;
}

}  // namespace

void pdfw_end(PdfRecord *p) noexcept {
    int npages = 0;
    int *pages = page_objects(p, &npages);
    if (!pages) {
        p->nomem = 1;
        return;
    }
    pdfw_fixed_object(p, 2);
    pdfw_str(p, "<< /Type /Pages /Kids [\n");
    for (int i = 0; i < npages; ++i) write_ref(p, "", pages[i], " 0 R\n");
    write_ref(p, "] /Count ", npages, "\n");
    pdfw_str(p, ">>\nendobj\n");

    int outlines = write_outlines(p, pages, npages);
    if (p->nmarks > 0 && outlines == 0) p->nomem = 1;
    std::free(pages);

    pdfw_fixed_object(p, 1);
    pdfw_str(p, "<< /Type /Catalog /Pages 2 0 R\n");
    if (outlines) {
        write_ref(p, "   /Outlines ", outlines, " 0 R\n");
        pdfw_str(p, "   /PageMode /UseOutlines\n");
    }
    pdfw_str(p, ">>\nendobj\n");

    int info = pdfw_object(p, PDF_PLAIN);
    int t[6];
    qqfiletime(t);  // SOURCE_DATE_EPOCH when set: identical programs, identical files
    char line[128];
    char *e = pdfw_int(pdfw_txt(line, "<< /CreationDate (D:"), t[0]);
    for (int i = 1; i < 6; ++i) e = two_digits(e, t[i]);
    put(p, line, pdfw_txt(e, ")\n/Producer (KOLVEX 10.5)\n>>\nendobj\n"));

    long long xref = p->pdfpos;
    write_ref(p, "xref\n0 ", p->objnext, "\n0000000000 65535 f \n");
    for (int i = 1; i < p->objnext && i < p->objcap; ++i) {
        char entry[24];
        std::snprintf(entry, sizeof entry, "%010lld 00000 n \n", p->objpos[i]);
        pdfw_put(p, entry, 20);
    }
    e = pdfw_int(pdfw_txt(line, "trailer\n<< /Size "), p->objnext);
    e = pdfw_int(pdfw_txt(e, " /Root 1 0 R /Info "), info);
    e = pdfw_int(pdfw_txt(e, " 0 R\n>>\nstartxref\n"), xref);
    put(p, line, pdfw_txt(e, "\n%%EOF\n"));
}

void pdfmrk(const char *cstr, const char *copt) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("pdfmrk"));
    if (!b) return;
    int k = qqkey(b, "CHAP+SECT+SUBS+PARA+SUBP", 5, copt);
    if (k == 0) return;
    PdfRecord *p = b->pdf.rec;
    if (!p) return;  // only a PDF document has bookmarks
    int level = k - 1;
    for (int l = 0; l < level; ++l) {
        bool found = false;
        for (int i = 0; i < p->nmarks && !found; ++i) found = p->marks[i].level == l;
        if (!found) {
            qqwar1(b, 131, "Bad structure for bookmarks");
            return;
        }
    }
    if (p->nmarks == p->capmarks) {
        if (p->capmarks > INT_MAX / 2 - 16) {
            qqwar0(b, 53);
            return;
        }
        int cap = p->capmarks * 2 + 16;
        void *grown = qqpdfrealloc(p->marks, (size_t)cap * sizeof(PdfMark));
        if (!grown) {
            qqwar0(b, 53);
            return;
        }
        p->marks = static_cast<PdfMark *>(grown);
        p->capmarks = cap;
    }
    const char *title = cstr ? cstr : "";
    size_t len = std::strlen(title);
    char *copy = static_cast<char *>(qqpdfrealloc(nullptr, len + 1));
    if (!copy) {
        qqwar0(b, 53);
        return;
    }
    std::memcpy(copy, title, len + 1);
    p->marks[p->nmarks++] = PdfMark{level, p->pageno, copy};
}
