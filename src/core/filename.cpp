// The plot file: its name, the version rule and the open of kolini.
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/core_block.h"
#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "platform/platform.h"

namespace {

bool file_exists(const char *name) { return qqpexists(name); }

// Whether an existing file can be replaced: no directory, and its own
// directory may be written (a rename into it needs that).
bool replaceable(const char *name) {
    struct stat st;
    if (stat(name, &st) == 0 && S_ISDIR(st.st_mode)) return false;
    char dir[257];
    int cut = 0;
    for (int i = 0; name[i] && i < 256; ++i)
        if (name[i] == '/') cut = i + 1;
    if (cut == 0) return access(".", W_OK) == 0;
    std::memcpy(dir, name, (size_t)cut);
    dir[cut] = '\0';
    return access(dir, W_OK) == 0;
}

std::atomic<unsigned> temp_serial{0};

// A new file beside name, ".<base>.<pid>.<n>.part", created exclusively
// with the usual permissions; its descriptor, or -1.
int create_temp(const char *name, char *temp, size_t size) {
    const char *base = name;
    for (const char *p = name; *p; ++p)
        if (*p == '/') base = p + 1;
    for (int attempt = 0; attempt < 100; ++attempt) {
        unsigned n = temp_serial.fetch_add(1);
        int len = std::snprintf(temp, size, "%.*s.%s.%ld.%u.part", (int)(base - name), name, base,
                                (long)getpid(), n);
        if (len < 0 || (size_t)len >= size) break;
        int fd = open(temp, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0) return fd;
        if (errno != EEXIST) break;
    }
    temp[0] = '\0';
    return -1;
}

// The open of QQOutFile on the fields of a caller (a QQOutFile, or the
// session's plot file).
int open_out(CoreBlock *b, char *name, char *temp, size_t tsize, int *reserved, FILE **fp,
             const char *mode) {
    *fp = nullptr;
    temp[0] = '\0';
    *reserved = 0;
    qqlock(0);
    int w = qqvers(b, name);
    if (w == 0 && !file_exists(name)) {
        // The final name is taken now, so that another thread or program
        // choosing a version passes it by.
        int fd = open(name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0) {
            close(fd);
            *reserved = 1;
        } else {
            w = 36;
        }
    }
    if (w == 0) {
        int fd = create_temp(name, temp, tsize);
        *fp = fd >= 0 ? fdopen(fd, mode) : nullptr;
        if (!*fp) {
            if (fd >= 0) {
                close(fd);
                unlink(temp);
            }
            temp[0] = '\0';
            if (*reserved) unlink(name);
            *reserved = 0;
            w = 36;
        }
    }
    qqlock(1);
    if (w != 0) qqwar0(b, w);
    return w;
}

int close_out(CoreBlock *b, const char *name, char *temp, int *reserved, FILE **fp, int keep) {
    bool ok = true;
    if (*fp && std::fclose(*fp) != 0) ok = false;  // a full disk shows here
    *fp = nullptr;
    int r = 0;
    if (temp[0]) {
        if (keep && ok && std::rename(temp, name) == 0) {
            *reserved = 0;
        } else {
            if (keep) r = -1;
            unlink(temp);
        }
    }
    if (*reserved) unlink(name);
    temp[0] = '\0';
    *reserved = 0;
    if (r != 0) qqwar0(b, 36);
    return r;
}

}  // namespace

int qqvers(CoreBlock *b, char *name) noexcept {
    if (!file_exists(name)) return 0;
    const SessionState &s = b->sess;
    if (s.fmode == 1) {
        // The old file is replaced when the new one is complete.
        if (!replaceable(name)) {
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

int qqoutopen(CoreBlock *b, QQOutFile *f, const char *mode) noexcept {
    return open_out(b, f->name, f->temp, sizeof f->temp, &f->reserved, &f->fp, mode);
}

int qqoutclose(CoreBlock *b, QQOutFile *f, int keep) noexcept {
    return close_out(b, f->name, f->temp, &f->reserved, &f->fp, keep);
}

int qqopenf(CoreBlock *b, const char *mode) noexcept {
    SessionState &s = b->sess;
    int w = open_out(b, s.fname, s.ftemp, sizeof s.ftemp, &s.freserved, &s.fhnd, mode);
    if (w != 0) qqkolfail(b);
    return w;
}

int qqplotclose(CoreBlock *b, int keep) noexcept {
    SessionState &s = b->sess;
    return close_out(b, s.fname, s.ftemp, &s.freserved, &s.fhnd, keep);
}

int qqopenplot(CoreBlock *b) noexcept {
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
