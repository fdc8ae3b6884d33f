// symfil: hands the finished plot file to an outside driver program.
//
// The drivers (koldrv for the vector and metafile formats, kolhpj for the
// raster formats, koldot for the others) are separate programs that the
// library only starts, with the file name, the device and status words,
// the colour table and the options as arguments; where none is installed
// nothing happens and the file stays where it is.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/family.h"
#include "core/guard.h"
#include "core/session.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device_block.h"
#include "kolvex.h"
#include "platform/platform.h"

namespace {

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

// The arguments with which symfil starts an outside driver for the
// finished plot file (device and status words already checked): argv gets
// at most 11 and a null; store (260 bytes) holds the colour file's
// argument.  Returns their count.
int symargs(DeviceBlock *b, const char *device, const char *status, char *store,
            const char **argv) {
    const char *program = b->core.fam->viewer;
    int n = 0;
    argv[n++] = program;
    argv[n++] = b->sess.fname;
    argv[n++] = device;
    argv[n++] = status;
    argv[n++] = table_name(b->clr.vltkind);
    if (b->sess.bgmode == 2) argv[n++] = "REVERS";
    // The options of koldrv, which shows the vector formats on the screen.
    if (std::strcmp(program, "koldrv") == 0) {
        argv[n++] = "-Q";
        if (b->sess.x11md == 0) argv[n++] = "-BS";
        if (b->sess.x11md == 1) argv[n++] = "-NB";
    }
    if (b->clr.vltfnm[0]) {
        qqscpy(store, "V=", 2);
        qqscat(store, b->clr.vltfnm, 258);
        argv[n++] = store;
    }
    argv[n] = nullptr;
    return n;
}

}  // namespace

void symfil(const char *cdev, const char *cstat) noexcept {
    DeviceBlock *b = qqdevblk(KX_ENTRY("symfil"));
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
    // The driver starts without a command processor, so that no file name
    // is ever read as a command; its messages are not the library's.
    char store[260];
    const char *argv[12];
    symargs(b, device, status, store, argv);
    qqprun(argv);
    if (dele) s.finfl = -1;
}
