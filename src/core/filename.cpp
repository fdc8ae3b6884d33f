// The plot file: its name, the version rule and the open of kolini.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"

namespace {

bool file_exists(const char *name) { return access(name, F_OK) == 0; }

}  // namespace

int qqvers(glbblk *b, char *name) noexcept {
    if (!file_exists(name)) return 0;
    const SessionState &s = b->sess;
    if (s.fmode == 1) {
        if (std::remove(name) != 0) {
            qqwtxt(b, "Plotfile cannot be deleted");
            return 168;
        }
        return 0;
    }
    if (s.fmode == 2) {
        qqwtxt(b, "Plotfile does exist");
        return 169;
    }
    // Directories stay as they are: only the base name is versioned.
    int len = (int)std::strlen(name);
    int base = 0;
    for (int i = 0; i < len; ++i)
        if (name[i] == '/' || name[i] == '\\') base = i + 1;
    int dot = -1;
    for (int i = base; i < len; ++i)
        if (name[i] == '.') dot = i;
    int stem_end = dot;
    if (dot < 0) {
        stem_end = len;
        while (stem_end > base && name[stem_end - 1] == ' ') --stem_end;
    }
    const char *ext = dot >= 0 ? name + dot : "";
    const char *sep = s.fsep == 0 ? "_" : (s.fsep == 1 ? "-" : "");
    int seplen = (int)std::strlen(sep);
    int fdig = s.fdig >= 2 && s.fdig <= 6 ? s.fdig : 4;
    int limit = 1;
    for (int i = 0; i < fdig; ++i) limit *= 10;
    char cand[600];
    for (int i = 1; i < limit; ++i) {
        char num[16];
        int nlen = qqicha(i, num, sizeof num, s.flong ? fdig : 0, 1);
        int stem = stem_end - base;
        if (s.fmode == 0) {
            int room = 8 - seplen - nlen;
            if (room < 0) room = 0;
            if (stem > room) stem = room;
        }
        int total = base + stem + seplen + nlen + (int)std::strlen(ext);
        if (total > 256) break;
        std::memcpy(cand, name, (size_t)(base + stem));
        cand[base + stem] = '\0';
        std::strcat(cand, sep);
        std::strcat(cand, num);
        std::strcat(cand, ext);
        if (!file_exists(cand)) {
            std::strcpy(name, cand);
            return 0;
        }
    }
    qqwtxt(b, "Too many file versions");
    return 170;
}

int qqopenf(glbblk *b, const char *mode) noexcept {
    qqlock(0);
    int w = qqvers(b, b->sess.fname);
    if (w != 0) {
        qqlock(1);
        qqwar0(b, w);
        qqkolfail(b);
        return w;
    }
    FILE *fp = std::fopen(b->sess.fname, mode);
    qqlock(1);
    if (!fp) {
        qqwar0(b, 36);
        qqkolfail(b);
        return 36;
    }
    b->sess.fhnd = fp;
    return 0;
}

FILE *qqopenw(glbblk *b, char *name, const char *mode) noexcept {
    qqlock(0);
    int w = qqvers(b, name);
    FILE *fp = w == 0 ? std::fopen(name, mode) : nullptr;
    qqlock(1);
    if (w != 0)
        qqwar0(b, w);
    else if (!fp)
        qqwar0(b, 36);
    return fp;
}

int qqopenplot(glbblk *b) noexcept {
    SessionState &s = b->sess;
    const DeviceFamily *fam = b->core.fam;
    const char *ext = qqfamkey(fam, b->core.devcod)->ext;
    if (s.fstate == 1) {
        qqscpy(s.fsave, s.fname, 256);
        s.fstate = 2;
    } else if (s.fstate == 2) {
        qqscpy(s.fname, s.fsave, 256);
    } else {
        qqscpy(s.fname, "kolvex.", 256);
        if (ext) qqscat(s.fname, ext, 256);
    }
    // A code without an extension writes no file; some drivers open theirs.
    s.lnlen = fam->lnlen;
    s.lnpos = 0;
    if (!ext || (fam->file & QQ_FILE_OWN)) return 0;
    if (fam->lnlen > 0) {
        s.lnbuf = static_cast<char *>(std::calloc((size_t)fam->lnlen + 2, 1));
        if (!s.lnbuf) {
            qqwar0(b, 53);
            qqkolfail(b);
            return 53;
        }
    }
    return qqopenf(b, (fam->file & QQ_FILE_BINARY) ? "wb" : "w");
}

void setfil(const char *cfil) noexcept {
    glbblk *b = KX_ENTRY("setfil");
    if (!b) return;
    qqscpy(b->sess.fname, cfil ? cfil : "", 256);
    b->sess.fstate = 1;
}

void filmod(const char *cmod) noexcept {
    glbblk *b = KX_ENTRY("filmod");
    if (!b) return;
    int k = qqkey(b, "COUN+DELE+BREA+VERS", 4, cmod);
    if (k > 0) b->sess.fmode = (unsigned char)(k - 1);
}

void filopt(const char *copt, const char *ckey) noexcept {
    glbblk *b = KX_ENTRY("filopt");
    if (!b) return;
    int what = qqkey(b, "SEPA+NUMB+DIGI+SCAL", 4, ckey);
    SessionState &s = b->sess;
    int k;
    switch (what) {
    case 1:
        if ((k = qqkey(b, "UNDE+HYPH+NONE", 3, copt)) > 0) s.fsep = (unsigned char)(k - 1);
        break;
    case 2:
        if ((k = qqkey(b, "SHOR+LONG", 2, copt)) > 0) s.flong = (unsigned char)(k - 1);
        break;
    case 3:
        if ((k = qqkey(b, "2   +3   +4   +5   +6   ", 5, copt)) > 0) s.fdig = (unsigned char)(k + 1);
        break;
    case 4:
        // OFF, PAGE, VIEW, and ON which is PAGE.
        if ((k = qqkey(b, "OFF +PAGE+VIEW+ON  ", 4, copt)) > 0)
            s.fscal = (unsigned char)(k == 4 ? 1 : k - 1);
        break;
    }
}
