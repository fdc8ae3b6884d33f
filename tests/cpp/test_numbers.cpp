// Number texts: exponent forms, numode decorations, automatic digits and
// the label formatter of the axes.
#include <cstring>
#include <string>

#include "axes/label_text.h"
#include "core/text.h"
#include "glbblk.h"
#include "testkit.h"
#include "text/numbers.h"

namespace {

std::string expo(double x, int nd, int kind) {
    char t[80];
    qqexptxt(x, nd, kind, '[', '$', t, sizeof t);
    return t;
}

std::string numtxt(glbblk *b, double x, int nd) {
    char t[120];
    qqnumtxt(b, x, nd, t, sizeof t);
    return t;
}

}  // namespace

TEST(exponent_forms_carry_rounding_into_the_exponent) {
    CHECK(expo(9.996, 2, 1) == "1.00*10[1$");
    CHECK(expo(-9.996, 2, 1) == "-1.00*10[1$");
    CHECK(expo(12345.0, 1, 2) == "1.2E4");
    CHECK(expo(0.00025, 1, 4) == "2.5{D}10[-4$");
    CHECK(expo(0.0, 1, 2) == "0.0E0");
    CHECK(expo(1e-300, 0, 2) == "1.E-300");
}

TEST(automatic_digits) {
    CHECK_EQ(qqautodig(2.0), -1);
    CHECK_EQ(qqautodig(0.5), 1);
    CHECK_EQ(qqautodig(0.05), 2);
    CHECK_EQ(qqautodig(0.25), 2);
    CHECK_EQ(qqautodig(1.125), 3);
    CHECK_EQ(qqautodig(0.0), -1);
    CHECK_EQ(qqautodig(1.0 / 3.0), 5);
}

TEST(numode_decorates_digits) {
    testkit::RecordingDriver rec;
    glbblk *b = testkit::recording_session(rec);
    CHECK(numtxt(b, 2.5, 0) == "3.");
    CHECK(numtxt(b, 2.5, -1) == "3");
    CHECK(numtxt(b, -0.001, 2) == "0.00");
    CHECK(numtxt(b, -17.0, 101) == "");
    qqscpy(b->num.numode, ",.00", 4);
    CHECK(numtxt(b, 1234567.5, 1) == "1.234.567,5");
    qqscpy(b->num.numode, ". 00", 4);
    CHECK(numtxt(b, 1.23456, 5) == "1.234 56");
    qqscpy(b->num.numode, ".0+0", 4);
    CHECK(numtxt(b, -2.0, 1) == "+-2.0");
    qqscpy(b->num.numode, ".000", 4);
    b->num.numfmt = 3;
    CHECK(numtxt(b, 3.0, -1) == "10[3$");
    b->num.numfmt = 1;
    CHECK(numtxt(b, 1500.0, 1) == "1.5*10[3$");
    b->num.numfmt = 2;
    qqscpy(b->num.numode, ",000", 4);
    CHECK(numtxt(b, 1500.0, 1) == "1,5E3");
    // number keeps eight characters of the tail behind the mantissa.
    qqscpy(b->num.numode, ".000", 4);
    b->num.numfmt = 1;
    CHECK(numtxt(b, 1.5e-12, 1) == "1.5*10[-12$");
    CHECK(numtxt(b, 1.5e-300, 1) == "1.5*10[-300");
    b->num.numfmt = 4;
    CHECK(numtxt(b, 1.5e-12, 1) == "1.5{D}10[-12$");
    testkit::end_session(b);
}

TEST(axis_label_texts_by_label_type) {
    testkit::RecordingDriver rec;
    glbblk *b = testkit::recording_session(rec);
    char t[QQ_LABLEN + 1];
    AxesState &ax = b->ax;
    ax.ndig[0] = 1;
    qqlabtxt(b, 2.25, 1, 0, 0, t);
    CHECK(std::string(t) == "2.3");
    // A logarithmic axis: plain values of FLOA, powers of LOG, exponents of ELOG.
    qqlabtxt(b, 2.0, 1, 1, 0, t);
    CHECK(std::string(t) == "100.0");
    ax.lab[0] = 3;
    ax.logfrm[0] = 1;
    ax.ndig[0] = -1;
    qqlabtxt(b, 2.0, 1, 1, 0, t);
    CHECK(std::string(t) == "10[2$");
    ax.lab[0] = 5;
    ax.logfrm[0] = 3;
    qqlabtxt(b, 2.0, 1, 1, 0, t);
    CHECK(std::string(t) == "2");
    ax.lab[0] = 12;
    ax.nmylab[0] = 2;
    qqscpy(ax.mylab[0][1], "Feb", 32);
    qqlabtxt(b, 0.0, 2, 0, 0, t);
    CHECK(std::string(t) == "Feb");
    qqlabtxt(b, 0.0, 3, 0, 0, t);
    CHECK(std::string(t) == "");
    ax.lab[1] = 6;
    ax.ndig[1] = -1;
    qqlabtxt(b, -30.0, 1, 0, 1, t);
    CHECK(std::string(t) == "30[o$ S");
    ax.lab[0] = 8;
    qqlabtxt(b, 200.0, 1, 0, 0, t);
    CHECK(std::string(t) == "160[o$ w");
    testkit::end_session(b);
}
