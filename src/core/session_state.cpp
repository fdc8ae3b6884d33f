// The session's own share of the block: first values, the defaults of
// qqinit, what a block frees, and the failure path of kolini.
#include <cstdlib>

#include "core/core_block.h"
#include "core/session.h"
#include "core/subsystems.h"

namespace {

void session_first(CoreBlock *b) {
    SessionState &s = b->sess;
    s.scrmd = 4;
    s.bgprev = -1;
    s.sclf = 1.0;
    s.hwscl = 1.0;
    s.fmode = 0;
    s.fdig = 4;
    s.swapfl = 1;
}

// The session's own share of qqinit: the window behaviour of the screen.
void session_init(CoreBlock *b) {
    SessionState &s = b->sess;
    s.wmode = 0;
    s.wkey = 0;
    s.wdelay = 10000;
    s.bufsend = 0;
}

void session_release(CoreBlock *b) {
    SessionState &s = b->sess;
    // A session that never reached kolfin leaves no file behind.
    qqplotclose(b, 0);
    std::free(s.lnbuf);
    s.lnbuf = nullptr;
}

void reset_window(CoreBlock *b) {
    b->sess.wplace = 0;
}
void reset_winmod(CoreBlock *b) {
    b->sess.wmode = 0;
}

const ResetEntry kResets[] = {
    {"WIND", reset_window}, {"WINM", reset_winmod}, {"WINS", reset_window}, {nullptr, nullptr},
};

}  // namespace

extern const Subsystem kxsub_session = {"session", session_first, session_init, session_release,
                                        kResets, nullptr};

void qqkolfail(CoreBlock *b) noexcept {
    SessionState &s = b->sess;
    qqplotclose(b, 0);
    std::free(s.lnbuf);
    s.lnbuf = nullptr;
    b->core.level = 0;
}
