// The number settings of a session: numfmt and numode.
#pragma once

struct NumberState {
    int numfmt;      // 0 FLOA, 1 EXP, 2 FEXP, 3 LOG, 4 XEXP
    char numode[5];  // decimal, thousands, sign, equal width; "0" is none
};
