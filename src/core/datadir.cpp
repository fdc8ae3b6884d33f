// The installation directory of fonts, maps and logos.
//
// It is resolved each time a file is wanted, in this order: the directory
// given to kolenv, the environment variable KOLVEX, the directory
// kolvex_data beside the shared object that holds the library (where an
// installation puts it), and last the directory fixed at build time.
#include <cstdlib>
#include <cstring>

#include "core/core_block.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/text.h"
#include "kolvex.h"
#include "platform/platform.h"

#ifndef KOLVEX_DATADIR_FALLBACK
#define KOLVEX_DATADIR_FALLBACK "/usr/local/share/kolvex"
#endif

namespace {

enum { DIRMAX = 256 };

// kolvex_data in the directory of the library file, if it is there.
bool installed_dir(char *buf) {
    char path[4096];
    if (!qqpcodefile(reinterpret_cast<const void *>(&qqdatadir), path, sizeof path)) return false;
    char *slash = std::strrchr(path, '/');
    if (!slash) return false;
    const char kSub[] = "/kolvex_data";
    if ((size_t)(slash - path) + sizeof kSub > sizeof path) return false;
    std::strcpy(slash, kSub);
    if (std::strlen(path) > DIRMAX || !qqpisdir(path)) return false;
    qqscpy(buf, path, DIRMAX);
    return true;
}

}  // namespace

void qqdatadir(CoreBlock *b, char *buf) noexcept {
    if (b && b->sess.envset && b->sess.envdir[0]) {
        qqscpy(buf, b->sess.envdir, DIRMAX);
        return;
    }
    const char *env = std::getenv("KOLVEX");
    if (env && *env) {
        qqscpy(buf, env, DIRMAX);
        return;
    }
    if (installed_dir(buf)) return;
    qqscpy(buf, KOLVEX_DATADIR_FALLBACK, DIRMAX);
}

void kolenv(const char *cstr) noexcept {
    CoreBlock *b = KX_ENTRY("kolenv");
    if (!b) return;
    SessionState &s = b->sess;
    char key[5];
    qqkeyword(cstr, key);
    if (std::strcmp(key, "NONE") == 0) {
        s.envdir[0] = '\0';
        s.envset = 0;
        return;
    }
    qqscpy(s.envdir, cstr ? cstr : "", DIRMAX);
    s.envset = 1;
}
