// symfil: hands the finished plot file to an outside driver program.
//
// The drivers (koldrv for the vector and metafile formats, kolhpj for the
// raster formats, koldot for the others) are separate programs that the
// library only starts through the command processor; where none is
// installed the command fails quietly and the file stays where it is.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/family.h"
#include "core/guard.h"
#include "core/session.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"

namespace {

enum { CMDMAX = 255 };

// The colour table's name as the drivers know it, by table kind.
const char *table_name(int kind) {
    static const char *const names[] = {"smal", "rain", "spec", "grey", "rrai",
                                        "rspe", "rgre", "vga",  "temp"};
    return kind >= 0 && kind < 9 ? names[kind] : "rain";
}

// A word of the call: its first four characters in upper case.
void word4(const char *text, char *out) {
    qqscpy(out, text ? text : "", 4);
    qqupc(out);
}

}  // namespace

int qqsymcmd(glbblk *b, const char *device, const char *status, char *cmd) noexcept {
    const char *program = b->core.fam->viewer;
    cmd[0] = '\0';
    qqscat(cmd, program, CMDMAX);
    qqscat(cmd, " ", CMDMAX);
    qqscat(cmd, b->sess.fname, CMDMAX);
    qqscat(cmd, " ", CMDMAX);
    qqscat(cmd, device, CMDMAX);
    qqscat(cmd, " ", CMDMAX);
    qqscat(cmd, status, CMDMAX);
    qqscat(cmd, " ", CMDMAX);
    qqscat(cmd, table_name(b->clr.vltkind), CMDMAX);
    if (b->sess.bgmode == 2) qqscat(cmd, " REVERS", CMDMAX);
    // The options of koldrv, which shows the vector formats on the screen.
    if (std::strcmp(program, "koldrv") == 0) {
        qqscat(cmd, " -Q", CMDMAX);
        if (b->opt.x11md == 0) qqscat(cmd, " -BS", CMDMAX);
        if (b->opt.x11md == 1) qqscat(cmd, " -NB", CMDMAX);
    }
    if (b->clr.vltfnm[0]) {
        qqscat(cmd, " V=\"", CMDMAX);
        qqscat(cmd, b->clr.vltfnm, CMDMAX);
        qqscat(cmd, "\"", CMDMAX);
    }
    return (int)std::strlen(cmd);
}

void symfil(const char *cdev, const char *cstat) noexcept {
    glbblk *b = KX_ENTRY("symfil");
    if (!b) return;
    SessionState &s = b->sess;
    if (!b->core.fam || !b->core.fam->viewer) {
        qqwar0(b, 20);
        return;
    }
    if (s.finfl == 0) {
        qqwar0(b, 21);
        return;
    }
    if (s.finfl == -1) {
        qqwar0(b, 22);
        return;
    }
    char device[5], status[5];
    word4(cdev, device);
    word4(cstat, status);
    if (std::strcmp(status, "NODE") == 0) std::strcpy(status, "KEEP");
    if (std::strcmp(status, "DELE") != 0 && std::strcmp(status, "KEEP") != 0) {
        qqwarc(b, 2, cstat ? cstat : "");
        std::strcpy(status, "KEEP");
    }
    bool dele = std::strcmp(status, "DELE") == 0;
    if (std::strcmp(device, "NONE") == 0) {
        if (dele) {
            std::remove(s.fname);
            s.finfl = -1;
        }
        return;
    }
    char cmd[CMDMAX + 1];
    qqsymcmd(b, device, status, cmd);
    // The driver's messages are not the library's: its output is dropped.
    char line[CMDMAX + 32];
    std::strcpy(line, cmd);
    std::strcat(line, " >/dev/null 2>&1");
    int rc = std::system(line);
    (void)rc;
    if (dele) s.finfl = -1;
}
