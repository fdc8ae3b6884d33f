// reset: puts one setting, or all of them, back to the session default.
//
// The names are fixed here, one for each routine whose setting can be
// reset; what a name does is answered by the subsystem that owns the
// routine (its rows in core/subsystems.h).  reset() takes the names that a
// subsystem of the build answers; the others are refused with warning 2
// until their subsystem is built.
#include <cstring>

#include "core/core_block.h"
#include "core/guard.h"
#include "core/subsystems.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"

namespace {

// Each name is the first letters of its routine (NOCH nochek, CLPW clpwin).
const char *const kResetNames[] = {
    "ALL",  "ANGL", "AUTR", "AX3L", "AXCL", "AXEN", "AXIS", "AXSL", "AXSP", "BARD", "BARG", "BARP",
    "BART", "BARW", "BASA", "CENT", "CHAA", "CHAS", "CHAW", "CHNC", "CHNP", "CIRC", "CLPB", "CLPM",
    "CLPW", "CLRC", "COLM", "COLO", "COLR", "CONC", "CONG", "CONM", "DIGI", "EUSH", "EXPZ", "FILB",
    "FILC", "FIXS", "FLAB", "FRAM", "FRME", "GAPC", "GRAC", "HEIG", "HNAM", "HTIT", "IANG", "IMGC",
    "INTA", "LABC", "LABD", "LABE", "LABJ", "LABP", "LABT", "LEGC", "LEGE", "LFTT", "LINC", "LINS",
    "LOGT", "MAPD", "MAPM", "MAPP", "MAPR", "MAPS", "MDFM", "MIXA", "MIXL", "QRLA", "QRLC", "QRLS",
    "MYLA", "NAMD", "NAME", "NEGL", "NEWM", "NOAR", "NOBA", "NOBG", "NOCH", "NOCL", "NOFI", "NOGR",
    "NOHI", "NOLI", "NUMF", "NUMO", "ORIG", "PATC", "PIEC", "PIEE", "PIEL", "PIEV", "POLC", "PROJ",
    "PSME", "RGTL", "RVYN", "SCAL", "SETB", "SETC", "SETE", "SETG", "SETM", "SETR", "SETS", "SHDC",
    "SHDP", "SHIE", "SHLS", "SMXA", "SPLM", "SURC", "SURS", "SURV", "SYMR", "THKC", "TICK", "TICL",
    "TICP", "TIMO", "TITL", "UNIT", "VIEW", "VKXB", "VKYB", "VKYT", "WIDB", "WIND", "WINM", "WINS",
    "ZSCA",
};

}  // namespace

bool qqresetname(const char *name) noexcept {
    for (const char *n : kResetNames)
        if (std::strcmp(n, name) == 0) return true;
    return false;
}

int qqresetcount() noexcept {
    return (int)(sizeof kResetNames / sizeof kResetNames[0]);
}

void reset(const char *cname) noexcept {
    CoreBlock *b = KX_ENTRY("reset");
    if (!b) return;
    // Four characters, upper case, compared as they stand: "all" is ALL.
    char key[5];
    qqscpy(key, cname ? cname : "", 4);
    qqupc(key);
    // A name that no subsystem of this build answers would promise a reset
    // that does not happen: it is refused like an unknown one.
    if (std::strcmp(key, "ALL") == 0)
        qqinit(b);
    else if (!qqresetname(key) || qqresetrow(b, key) == 0)
        qqwarc(b, 2, cname ? cname : "");
}
