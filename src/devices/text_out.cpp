// The line buffer of the text formats.
//
// Text formats write through an 80-character line: an item goes out with
// its line only when the next one does not fit, so fields never split
// across lines.  The binary CGM writes fixed records of lnlen bytes
// instead, split wherever the record is full.
#include <cstdio>
#include <cstring>

#include "core/family.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "devices/device_block.h"

namespace {

// The line and its line feed go out in one write: the buffer holds two
// bytes beyond the longest line for it.
void write_line(DeviceBlock *b, bool newline) {
    SessionState &s = b->sess;
    if (s.fhnd) {
        size_t n = (size_t)s.lnpos;
        if (newline) s.lnbuf[n++] = '\n';
        if (n > 0) std::fwrite(s.lnbuf, 1, n, s.fhnd);
    }
    s.lnpos = 0;
}

}  // namespace

void qqsbufend(DeviceBlock *b) noexcept {
    SessionState &s = b->sess;
    if (!s.lnbuf) return;
    if (b->core.fam->file & QQ_FILE_RECORDS) {
        // A CGM record is always full: blanks up to its length.
        if (s.lnpos > 0) {
            std::memset(s.lnbuf + s.lnpos, ' ', (size_t)(s.lnlen - s.lnpos));
            s.lnpos = s.lnlen;
            write_line(b, false);
        }
        return;
    }
    write_line(b, true);
}

void qqsbuf(DeviceBlock *b, const char *text, int n) noexcept {
    SessionState &s = b->sess;
    if (!s.lnbuf || n <= 0) return;
    if (b->core.fam->file & QQ_FILE_RECORDS) {
        while (n > 0) {
            int room = s.lnlen - s.lnpos;
            int k = n < room ? n : room;
            std::memcpy(s.lnbuf + s.lnpos, text, (size_t)k);
            s.lnpos += k;
            text += k;
            n -= k;
            if (s.lnpos == s.lnlen) write_line(b, false);
        }
        return;
    }
    if (s.lnpos + n > s.lnlen) write_line(b, true);
    if (n > s.lnlen) {
        qqwar1(b, 176, "Internal overflow in qqsbuf");
        return;
    }
    std::memcpy(s.lnbuf + s.lnpos, text, (size_t)n);
    s.lnpos += n;
}

void qqlbuf(DeviceBlock *b, const char *text, int n) noexcept {
    SessionState &s = b->sess;
    if (!s.lnbuf) return;
    if (n == -1) {
        write_line(b, true);
        return;
    }
    // Cut at blanks; a blank goes with the word that it ends.
    int i = 0;
    while (i < n) {
        int j = i;
        while (j < n && text[j] != ' ') ++j;
        if (j < n) ++j;  // the blank ending the word
        int len = j - i;
        if (len == 1 && text[i] == ' ') {  // a lone blank is skipped
            i = j;
            continue;
        }
        if (s.lnpos + len > s.lnlen && s.lnpos > 0) write_line(b, true);
        if (len > s.lnlen) {
            qqwar1(b, 176, "Internal overflow in qqsbuf");
            return;
        }
        std::memcpy(s.lnbuf + s.lnpos, text + i, (size_t)len);
        s.lnpos += len;
        i = j;
    }
}
