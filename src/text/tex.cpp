// TeX mode: strings of the text path read as a small formula language.
//
// One recursive parser walks the string's codes twice.  The first run
// (texpass 1) measures with output off and stores, by the running number of
// each fraction, bracket pair and big operator, what is only known once a
// group has closed: part widths, depths and heights, limit widths, bracket
// ranges.  The second run meets the same numbers in the same order, reads
// them and draws.  Positions are kept along the writing direction from the
// string's start (the pen stays on the main baseline) and upward from it
// (the baseline offset, passed to the character loop as its vertical offset),
// so rotated text needs nothing special.
//
// Every working table is a fixed array: recursion is bounded by the group,
// script, fraction and root limits, and nothing is allocated per string.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "text/text_block.h"
#include "text/text_internal.h"

namespace {

enum { kGroups = 8, kScripts = 8, kFracNest = 8, kRoots = 8, kTrackers = kGroups + QQ_TEXMAX + 4 };
enum { kEnd = -1 };
enum { ALF_STAN = 1, ALF_GREEK = 2, ALF_MATH = 3, ALF_ITAL = 4 };

// Height factors of the display, text, script and scriptscript styles.
const double kStyleFactor[4] = {1.0, 1.0, 0.6, 0.5};

struct Word {
    const char *name;
    int value;
};

const Word kGreek[] = {
    {"alpha", 'a'},   {"beta", 'b'},   {"gamma", 'c'}, {"delta", 'd'},   {"epsilon", 'e'},
    {"zeta", 'z'},    {"eta", 'h'},    {"theta", 'q'}, {"iota", 'i'},    {"kappa", 'k'},
    {"lambda", 'l'},  {"mu", 'm'},     {"nu", 'n'},    {"xi", 'x'},      {"pi", 'p'},
    {"rho", 'r'},     {"sigma", 's'},  {"tau", 't'},   {"upsilon", 'y'}, {"phi", 'f'},
    {"chi", 'g'},     {"psi", 'u'},    {"omega", 'w'}, {"Gamma", 'C'},   {"Delta", 'D'},
    {"Theta", 'Q'},   {"Lambda", 'L'}, {"Xi", 'X'},    {"Pi", 'P'},      {"Sigma", 'S'},
    {"Upsilon", 'Y'}, {"Phi", 'F'},    {"Psi", 'U'},   {"Omega", 'W'},   {nullptr, 0},
};

const Word kSpaces[] = {{"quad", 18}, {"qquad", 36}, {",", 3},    {":", 4},
                        {";", 5},     {"!", -3},     {nullptr, 0}};

// clang-format off
const Word kSymbols[] = {
    {"pm", 70}, {"mp", 71}, {"times", 68}, {"div", 69}, {"cdot", 127}, {"ast", 42}, {"star", 42},
    {"cap", 76}, {"cup", 77}, {"vee", 112}, {"wedge", 113}, {"setminus", 92}, {"odot", 106},
    {"oplus", 104}, {"ominus", 105}, {"le", 72}, {"leq", 72}, {"subset", 78}, {"subseteq", 82},
    {"in", 87}, {"ge", 74}, {"geq", 74}, {"supset", 79}, {"supseteq", 83}, {"ni", 89}, {"neq", 73},
    {"cong", 122}, {"equiv", 66}, {"parallel", 84}, {"sim", 126}, {"mid", 124}, {"notin", 88},
    {"not=", 73}, {"leftarrow", 99}, {"Leftarrow", 102}, {"rightarrow", 97}, {"to", 101},
    {"Rightarrow", 101}, {"Leftrightarrow", 103}, {"uparrow", 98}, {"downarrow", 100},
    {"emptyset", 121}, {"nabla", 110}, {"surd", 120}, {"partial", 109}, {"forall", 107},
    {"exists", 85}, {"backslash", 92}, {"infty", 108}, {"perp", 75}, {"approx", 128},
    {"leqslant", 129}, {"geqslant", 130}, {"nless", 131}, {"ngtr", 132}, {"nleq", 133},
    {"ngeq", 134}, {"prec", 137}, {"succ", 138}, {"nprec", 139}, {"nsucc", 140}, {"preceq", 141},
    {"succeq", 142}, {"npreceq", 143}, {"nsucceq", 144}, {"ll", 145}, {"gg", 146}, {"lll", 147},
    {"ggg", 148}, {"not", 149}, {"sqsubset", 152}, {"sqsupset", 153}, {"doteq", 156},
    {"simeq", 157}, {"propto", 158}, {"angle", 159}, {"nleqslant", 135}, {"ngeqslant", 136},
    {"nsubseteq", 150}, {"nsupseteq", 151}, {"sqsubseteq", 154}, {"sqsupseteq", 155},
    {"measuredangle", 160}, {"sphericalangle", 161}, {"circ", 162}, {nullptr, 0},
};
// clang-format on

const Word kAlphabets[] = {{"rm", 1}, {"gr", 2}, {"it", 4}, {"cal", 5}, {"ru", 6}, {nullptr, 0}};

const Word kStyles[] = {{"displaystyle", 0}, {"D", 0}, {"textstyle", 1},         {"T", 1},
                        {"scriptstyle", 2},  {"S", 2}, {"scriptscriptstyle", 3}, {"SS", 3},
                        {nullptr, 0}};

// Size factors, kept as the single-precision values they were given in.
const char *const kSizes[] = {"tiny",  "scriptsize", "footnotesize", "small", "normalsize",
                              "large", "Large",      "LARGE",        "huge",  "Huge"};
const float kSizeFactor[] = {0.482f, 0.578f, 0.695f, 0.83f,   1.0f,
                             1.2f,   1.44f,  1.728f, 2.0736f, 2.488f};

// Colours by the index of the colour table's named entries (WHIT RED GREE
// YELL BLUE ORAN CYAN MAGE BLAC); fore and background are -1 and -2.
const Word kColours[] = {{"black", 8}, {"red", 1},    {"green", 2},  {"blue", 4},
                         {"cyan", 6},  {"yellow", 3}, {"orange", 5}, {"magenta", 7},
                         {"white", 0}, {"fore", -1},  {"back", -2},  {nullptr, 0}};

const char *const kFunctions[] = {"arccos", "arcsin", "arctan", "arg",  "cos", "cosh", "cot",
                                  "coth",   "csc",    "dec",    "dim",  "exp", "hom",  "ln",
                                  "log",    "sec",    "sin",    "sinh", "tan", "tanh", nullptr};

// The constructs and their internal numbers.
enum {
    C_SUM = 314,
    C_PROD = 315,
    C_INT = 318,
    C_OINT = 319,
    C_LIM = 261,
    C_SQRT = 320,
    C_FRAC = 259,
    C_OVERLINE = 264,
    C_UNDERLINE = 265,
    C_VEC = 266,
    C_HAT = 270,
    C_TILDE = 271,
    C_DOT = 272
};
// clang-format off
const Word kConstructs[] = {
    {"sum", C_SUM}, {"prod", C_PROD}, {"int", C_INT}, {"oint", C_OINT}, {"lim", C_LIM},
    {"sqrt", C_SQRT}, {"frac", C_FRAC}, {"overline", C_OVERLINE}, {"underline", C_UNDERLINE},
    {"vec", C_VEC}, {"hat", C_HAT}, {"tilde", C_TILDE}, {"dot", C_DOT}, {nullptr, 0},
};
// clang-format on

int lookup(const Word *table, const char *w) {
    for (int k = 0; table[k].name; ++k)
        if (std::strcmp(table[k].name, w) == 0) return k;
    return -1;
}

int lookup(const char *const *table, int n, const char *w) {
    for (int k = 0; k < n && table[k]; ++k)
        if (std::strcmp(table[k], w) == 0) return k;
    return -1;
}

// The part of the working state that a group saves and restores.
struct Mode {
    int style, cramped;
    int hgt, basehgt;  // current and base height
    double boff;       // baseline offset, upward
    int alf;           // alphabet command in force, 0 none
    int ital;          // math letters italic
    int colour;
};

// Extents of what was drawn since a tracker opened, upward from the main
// baseline, with the letter class and whether the last letter was italic.
struct Tracker {
    double top, bot;
    bool any;
    int cls;  // 1 descender, 2 ascender
    bool lastital;
};

class Parser {
public:
    Parser(TextBlock *b, int measure)
        : b_(b), t_(b->txt), measure_(measure != 0), first_(b->txt.texpass != 2) {}

    int run();

private:
    TextBlock *b_;
    TextState &t_;
    bool measure_, first_;
    int pos_ = 0;
    int math_ = 0;
    Mode m_{};
    double top_ = 0.0, bot_ = 0.0;
    int err_ = 0;
    Tracker trk_[kTrackers];
    int ntrk_ = 0;
    int groups_ = 0, scripts_ = 0, fracs_ = 0, fracnest_ = 0, nlim_ = 0, nbrk_ = 0;
    int roots_ = 0;
    double rootextra_[kRoots] = {};
    int rootheight_[kRoots] = {};
    // open \left brackets: running number, pen, kind, tracker
    struct Open {
        int n;
        int kind;
        int trk;
    } brk_[QQ_TEXMAX];
    int nopen_ = 0;
    // open accents by kind (overline, underline, vec, hat, tilde, dot)
    int accnest_[6] = {};

    int code(int p) const { return p < t_.ncodes ? t_.codes[p] : kEnd; }
    int peek() const { return code(pos_); }
    char esc() const { return t_.mixchr[4]; }
    double along() const { return qqtxtalong(b_); }
    void penTo(double a) { qqtxtadvance(b_, a - along()); }
    void move(double d) { qqtxtadvance(b_, d); }
    double gap() {
        t_.curhgt = m_.hgt;
        qqtxtsection(b_, ALF_STAN);
        return t_.gapw;
    }

    bool fail(int n, const char *msg);
    void feed(double top, double bot);
    int track() {
        if (ntrk_ >= kTrackers) return -1;
        trk_[ntrk_] = Tracker{0.0, 0.0, false, 0, false};
        return ntrk_++;
    }
    Tracker untrack(int k) {
        // a tracker already dropped (a \left left open in a group) gives nothing
        if (k < 0 || k >= ntrk_) return Tracker{0, 0, false, 0, false};
        Tracker r = trk_[k];
        ntrk_ = k;
        return r;
    }
    void setColour(int v);
    double glyph(int c, int alf, int hgt, double boff, bool italic = false);
    void character(int c);
    void skipBlanks();
    int readWord(char *w);

    void list(int closer);
    void atom();
    void group(bool mandatory);
    void command(const char *w);
    int scriptHeight(int style, double e) const;
    void scripts();
    double scriptArg(int kind, double *shiftOut);
    void bigop(int which);
    void fraction();
    void root();
    void accent(int which);
    void left();
    void right();
    void big(double factor);
    void bracket(int c, int hb, double bb);
    int bracketHeight(double t, double d) const;
    double bracketBase(double t, double d) const;
    void line(double a0, double v0, double a1, double v1);

    // The extents before a fraction part, so that the first run, which
    // learns the part's depth or height only at its end, can feed them again
    // from where the part really stands.
    struct Snapshot {
        double top, bot;
        double ttop[kTrackers], tbot[kTrackers];
        bool tany[kTrackers];
    };
    void save(Snapshot &s) const {
        s.top = top_;
        s.bot = bot_;
        for (int k = 0; k < ntrk_; ++k) {
            s.ttop[k] = trk_[k].top;
            s.tbot[k] = trk_[k].bot;
            s.tany[k] = trk_[k].any;
        }
    }
    void restore(const Snapshot &s) {
        top_ = s.top;
        bot_ = s.bot;
        for (int k = 0; k < ntrk_; ++k) {
            trk_[k].top = s.ttop[k];
            trk_[k].bot = s.tbot[k];
            trk_[k].any = s.tany[k];
        }
    }
};

bool Parser::fail(int n, const char *msg) {
    if (err_) return true;
    err_ = 1;
    // the messages of the formula language belong to messag, whoever drew
    char saved[sizeof b_->core.rtnam];
    std::memcpy(saved, b_->core.rtnam, sizeof saved);
    std::strncpy(b_->core.rtnam, "messag", sizeof b_->core.rtnam - 1);
    b_->core.rtnam[sizeof b_->core.rtnam - 1] = 0;
    qqwar1(b_, n, msg);
    std::memcpy(b_->core.rtnam, saved, sizeof saved);
    return true;
}

void Parser::feed(double top, double bot) {
    top_ = std::max(top_, top);
    bot_ = std::min(bot_, bot);
    for (int k = 0; k < ntrk_; ++k) {
        Tracker &r = trk_[k];
        if (!r.any) {
            r.top = top;
            r.bot = bot;
            r.any = true;
        } else {
            r.top = std::max(r.top, top);
            r.bot = std::min(r.bot, bot);
        }
    }
}

void Parser::setColour(int v) {
    if (v == t_.curclr) return;
    t_.curclr = v;
    if (!measure_) qqsetc(b_, v);
}

// Draws one code at the pen and returns its advance.
double Parser::glyph(int c, int alf, int hgt, double boff, bool italic) {
    double a0 = along();
    t_.curalf = alf;
    t_.curhgt = hgt;
    t_.voff = boff;
    t_.fallback = -1;
    qqtxtcode(b_, c);
    feed(boff + hgt, boff);
    if (c >= 'a' && c <= 'z') {
        int cls = 0;
        if (c == 'q' || c == 'p' || c == 'y' || c == 'j' || c == 'g') cls |= 1;
        bool low = c == 'a' || c == 'c' || c == 'e' || (c >= 'n' && c <= 'y' && c != 't');
        if (!low) cls |= 2;
        for (int k = 0; k < ntrk_; ++k) trk_[k].cls |= cls;
    } else if (c > ' ' && c != '.' && c != ',' && c != '-' && c != '=' && c != '+' && c != '~') {
        for (int k = 0; k < ntrk_; ++k) trk_[k].cls |= 2;
    }
    if (c > ' ')
        for (int k = 0; k < ntrk_; ++k) trk_[k].lastital = italic;
    return along() - a0;
}

// A plain character of the string.
void Parser::character(int c) {
    if (!math_) {
        glyph(c, m_.alf ? m_.alf : t_.basalf, m_.hgt, m_.boff);
        return;
    }
    bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (letter && m_.alf == 0 && m_.ital) {
        glyph(c, ALF_ITAL, m_.hgt, m_.boff, true);
        return;
    }
    bool oper = c == '=' || c == '*' || c == '+' || c == '-' || c == '/';
    double sp = oper ? t_.texoper * 0.2 * m_.hgt : 0.0;
    move(sp);
    glyph(c, m_.alf ? m_.alf : ALF_STAN, m_.hgt, m_.boff);
    move(sp);
}

void Parser::skipBlanks() {
    while (peek() == ' ') ++pos_;
}

// Reads a command word behind the escape character; returns its length.
int Parser::readWord(char *w) {
    int n = 0;
    int c = peek();
    bool alpha = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (c != kEnd && c < 256 && !alpha && c != ' ') {
        // punctuation spaces are words of one character
        w[n++] = (char)c;
        ++pos_;
    } else {
        // A word is made of letters: besides the blank, the braces, the
        // script and escape characters, the dollar, the brackets and the
        // operators, any other sign ends it too, so that \left. and \left|
        // read as a command and its bracket.
        while (true) {
            c = peek();
            bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
            if (!letter) break;
            if (n < 32) w[n++] = (char)c;
            ++pos_;
        }
        if (n == 3 && std::memcmp(w, "not", 3) == 0 && peek() == '=') {
            w[n++] = '=';
            ++pos_;
        }
    }
    w[n] = 0;
    if (peek() == ' ') ++pos_;
    return n;
}

int Parser::run() {
    m_.style = 1;
    m_.cramped = 0;
    m_.hgt = m_.basehgt = t_.starthgt;
    m_.boff = 0.0;
    m_.alf = 0;
    m_.ital = t_.texital;
    m_.colour = t_.curclr;
    if (first_) {
        std::memset(t_.texlimw, 0, sizeof t_.texlimw);
        std::memset(t_.texfrac, 0, sizeof t_.texfrac);
        std::memset(t_.texbrk, 0, sizeof t_.texbrk);
    }
    list(0);
    if (!err_) {
        t_.texhgt = top_;
        t_.texdep = -bot_;
    }
    t_.voff = 0.0;
    t_.curhgt = t_.starthgt;
    t_.curalf = t_.basalf;
    t_.cachesec = 0;
    return err_;
}

// Items up to the closer ('}' or ']', consumed) or the end of the string.
void Parser::list(int closer) {
    while (!err_) {
        int c = peek();
        if (c == kEnd) {
            if (closer == ']') fail(145, "Syntax error - missing root");
            return;
        }
        if (c == closer) {
            ++pos_;
            return;
        }
        if (c == '}') {
            fail(147, "Unbalanced parenthesis");
            return;
        }
        if (math_ && (c == '^' || c == '_')) {
            scripts();
            continue;
        }
        atom();
    }
}

// One item: a character, a group or a command with its arguments.
void Parser::atom() {
    int c = peek();
    if (c == kEnd || err_) return;
    if (c == '$') {
        math_ ^= 1;
        ++pos_;
        return;
    }
    if (c == ' ') {
        ++pos_;
        if (!math_) glyph(' ', m_.alf ? m_.alf : t_.basalf, m_.hgt, m_.boff);
        return;
    }
    if (c == '{') {
        group(true);
        return;
    }
    if (c == '}') {
        fail(147, "Unbalanced parenthesis");
        return;
    }
    if (c == (unsigned char)esc()) {
        ++pos_;
        int d = peek();
        if (d == '\\' || d == '{' || d == '}' || d == '^' || d == '_' || d == '$' || d == '[' ||
            d == ']' || d == (unsigned char)esc()) {
            ++pos_;
            character(d);
            return;
        }
        char w[40];
        if (readWord(w) == 0) return;
        command(w);
        return;
    }
    ++pos_;
    character(c);
}

// A group in braces; without mandatory, a single item stands for it.
void Parser::group(bool mandatory) {
    if (peek() != '{') {
        if (!mandatory) atom();
        return;
    }
    if (groups_ >= kGroups) {
        fail(146, "Too many nested parenthesis");
        return;
    }
    ++pos_;
    ++groups_;
    Mode saved = m_;
    list('}');
    --groups_;
    int clr = m_.colour;
    m_ = saved;
    if (clr != saved.colour) setColour(saved.colour);
}

int Parser::scriptHeight(int style, double e) const {
    return (int)(kStyleFactor[style] * m_.basehgt * e + 0.5);
}

// One script: sets style, height and shift, reads its item, returns the
// width; the mode comes back.
double Parser::scriptArg(int kind, double *shiftOut) {
    ++pos_;
    if (scripts_ >= kScripts) {
        fail(143, "Too many nested exponents/indices");
        return 0.0;
    }
    ++scripts_;
    Mode saved = m_;
    int style = m_.style <= 1 ? 2 : std::min(m_.style + 1, 3);
    int h = scriptHeight(style, t_.texexp);
    if (h < 1) h = 1;
    double shift;
    if (kind == '^')
        shift = (m_.cramped ? 0.9 : 1.1) * h;
    else
        shift = -0.6 * h;
    if (shiftOut) shift = *shiftOut * h;
    m_.style = style;
    m_.hgt = h;
    m_.boff += shift;
    if (kind == '_') m_.cramped = 1;
    double a0 = along();
    skipBlanks();
    group(false);
    double w = along() - a0;
    --scripts_;
    int clr = m_.colour;
    m_ = saved;
    if (clr != saved.colour) setColour(saved.colour);
    return w;
}

// Exponent and index behind an item: both start at the same place.
void Parser::scripts() {
    int first = peek();
    double a0 = along();
    double w1 = scriptArg(first, nullptr);
    if (err_) return;
    skipBlanks();
    int next = peek();
    if (next == first) {
        fail(144, "Syntax error for Indices/Exponents");
        return;
    }
    if (next == '^' || next == '_') {
        penTo(a0);
        double w2 = scriptArg(next, nullptr);
        if (err_) return;
        skipBlanks();
        if (peek() == '^' || peek() == '_') {
            fail(144, "Syntax error for Indices/Exponents");
            return;
        }
        penTo(a0 + std::max(w1, w2) + gap());
        return;
    }
    move(gap());
}

// sum, prod, int, oint and lim with their limits.
void Parser::bigop(int which) {
    double a0 = along();
    if (which == C_LIM) {
        glyph('l', ALF_STAN, m_.hgt, m_.boff);
        glyph('i', ALF_STAN, m_.hgt, m_.boff);
        glyph('m', ALF_STAN, m_.hgt, m_.boff);
    } else {
        int c = which == C_SUM ? 114 : which == C_PROD ? 115 : which == C_INT ? 118 : 119;
        glyph(c, ALF_MATH, m_.hgt, m_.boff);
    }
    double w = along() - a0;
    // limits or nolimits directly behind decide the form
    int lim = t_.texlim;
    int save = pos_;
    skipBlanks();
    if (peek() == (unsigned char)esc()) {
        ++pos_;
        char word[40];
        readWord(word);
        if (std::strcmp(word, "limits") == 0)
            lim = 1;
        else if (std::strcmp(word, "nolimits") == 0)
            lim = 0;
        else
            pos_ = save;
    } else {
        pos_ = save;
    }
    if (!lim) return;  // ordinary scripts follow, if any
    int n = nlim_++;
    penTo(a0);
    skipBlanks();
    bool integral = which == C_INT || which == C_OINT;
    int seen = 0;
    while (!err_ && (peek() == '^' || peek() == '_')) {
        int kind = peek();
        if (seen & (kind == '^' ? 1 : 2)) {
            fail(144, "Syntax error for Indices/Exponents");
            return;
        }
        seen |= kind == '^' ? 1 : 2;
        int row = kind == '^' ? 0 : 1;
        double lw = (!first_ && n < QQ_TEXMAX) ? t_.texlimw[row][n] : 0.0;
        double start = a0 + 0.5 * w - 0.5 * lw;
        if (integral) start += kind == '^' ? 0.5 * m_.hgt : -0.5 * m_.hgt;
        penTo(start);
        double f = kind == '^' ? 2.3 : -1.8;
        double lwm = scriptArg(kind, &f);
        if (first_ && n < QQ_TEXMAX) t_.texlimw[row][n] = lwm;
        skipBlanks();
    }
    penTo(a0 + w);
    move(gap());
}

void Parser::line(double a0, double v0, double a1, double v1) {
    if (measure_) return;
    double sn = t_.sina, cs = t_.cosa;
    double ox = t_.strx - b_->dev.nxsh, oy = t_.stry - b_->dev.nysh;
    qqmove(b_, ox + a0 * cs - v0 * sn, oy - a0 * sn - v0 * cs);
    qqdraw(b_, ox + a1 * cs - v1 * sn, oy - a1 * sn - v1 * cs);
}

void Parser::fraction() {
    skipBlanks();
    if (peek() != '{') {
        fail(137, "Syntax error for fractions");
        return;
    }
    if (fracs_ >= QQ_TEXMAX || fracnest_ >= kFracNest) {
        fail(138, "Too many fractions");
        return;
    }
    int n = fracs_++;
    ++fracnest_;
    double a0 = along();
    int H = m_.hgt;
    double bar = m_.boff + 0.42 * H;
    double *F[5];
    for (int k = 0; k < 5; ++k) F[k] = &t_.texfrac[k][n];
    double W = first_ ? 0.0 : std::max(*F[0], *F[1]);
    Mode saved = m_;
    int style = std::min(m_.style + 1, 3);
    int h = style >= 2 ? (int)(kStyleFactor[style] * m_.basehgt + 0.5) : m_.hgt;
    if (h < 1) h = 1;

    // numerator
    m_.style = style;
    m_.hgt = h;
    m_.boff = bar + 0.3 * H + (first_ ? 0.0 : *F[2]);
    penTo(a0 + (first_ ? 0.0 : (W - *F[0]) * 0.5));
    double s = along();
    Snapshot snap{};
    if (first_) save(snap);
    int k = track();
    group(true);
    Tracker r = untrack(k);
    double wa = along() - s;
    double dep = r.any ? m_.boff - r.bot : 0.0;
    if (first_ && r.any) {
        restore(snap);
        feed(r.top + dep, r.bot + dep);
    }
    m_ = saved;
    if (err_) return;
    skipBlanks();
    if (peek() != '{') {
        fail(148, "Missing denominator for fractions");
        return;
    }
    // denominator
    m_.style = style;
    m_.hgt = h;
    m_.cramped = 1;
    m_.boff = bar - 0.3 * H - (first_ ? 0.0 : *F[3]);
    penTo(a0 + (first_ ? 0.0 : (W - *F[1]) * 0.5));
    s = along();
    if (first_) save(snap);
    k = track();
    group(true);
    r = untrack(k);
    double wb = along() - s;
    double hd = r.any ? r.top - m_.boff : 0.0;
    if (first_ && r.any) {
        restore(snap);
        feed(r.top - hd, r.bot - hd);
    }
    m_ = saved;
    --fracnest_;
    if (err_) return;
    if (first_) {
        *F[0] = wa;
        *F[1] = wb;
        *F[2] = dep;
        *F[3] = hd;
        *F[4] = bar;
        W = std::max(wa, wb);
    }
    line(a0, bar, a0 + W, bar);
    feed(bar, bar);
    penTo(a0 + W);
    move(2 * gap());
}

void Parser::root() {
    if (roots_ >= kRoots) {
        fail(136, "Too many nested roots");
        return;
    }
    int me = roots_++;
    int H = m_.hgt;
    rootextra_[me] = 0.0;
    rootheight_[me] = H;
    // a root inside raises the stroke of every enclosing one
    for (int j = 0; j < me; ++j) rootextra_[j] += 0.4 * rootheight_[j];
    double a0 = along();
    if (peek() == '[') {
        ++pos_;
        Mode saved = m_;
        int style = std::min(m_.style + 1, 3);
        int h = (int)(kStyleFactor[style] * m_.basehgt + 0.5);
        if (h < 1) h = 1;
        m_.style = style;
        m_.hgt = h;
        m_.boff += 1.25 * h;
        list(']');
        int clr = m_.colour;
        m_ = saved;
        if (clr != saved.colour) setColour(saved.colour);
        if (err_) return;
        penTo(a0 + 1.2 * H);
    } else {
        move(1.2 * H);
    }
    skipBlanks();
    double s = along();
    int k = track();
    group(false);
    Tracker r = untrack(k);
    --roots_;
    if (err_) return;
    double w = along() - s;
    double top = r.any ? r.top - m_.boff : H;
    double dep = r.any ? m_.boff - r.bot : 0.0;
    double e = rootextra_[me], q = 0.25 * H, bo = m_.boff;
    double v4 = 0.4 * H + top + e;
    if (!measure_) {
        line(a0, bo + 0.5 * H, a0 + q, bo + 0.5 * H);
        line(a0 + q, bo + 0.5 * H, a0 + 2 * q, bo - dep);
        line(a0 + 2 * q, bo - dep, a0 + 4 * q, bo + v4);
        line(a0 + 4 * q, bo + v4, a0 + 1.2 * H + w, bo + v4);
        line(a0 + q - 0.1 * H, bo + 0.5 * H, a0 + 2 * q - 0.1 * H, bo - dep);
    }
    feed(bo + v4, bo - dep);
}

// overline, underline, vec, hat, tilde, dot over a group.
void Parser::accent(int which) {
    skipBlanks();
    int kind = which == C_OVERLINE    ? 0
               : which == C_UNDERLINE ? 1
               : which == C_VEC       ? 2
               : which == C_HAT       ? 3
               : which == C_TILDE     ? 4
                                      : 5;
    if (peek() != '{') {
        static const char *const msg[] = {
            "Syntax error for overstrike", "Syntax error for understrike", "Syntax error for vec",
            "Syntax error for hat",        "Syntax error for tilde",       "Syntax error for dot"};
        static const int num[] = {139, 141, 140, 139, 139, 139};
        fail(num[kind], msg[kind]);
        return;
    }
    // k: 1 plus the accents of the same kind inside, so that outer ones stand further out
    int before = accnest_[kind];
    accnest_[kind] = 0;
    double a0 = along();
    int H = m_.hgt;
    double bo = m_.boff;
    int tk = track();
    group(true);
    Tracker r = untrack(tk);
    int k = accnest_[kind] + 1;
    accnest_[kind] = std::max(before, k);
    if (err_) return;
    double w = along() - a0;
    double T = r.any ? r.top - bo : H;
    bool asc = (r.cls & 2) != 0, desc = (r.cls & 1) != 0;
    double v;
    if (kind == 1) {
        v = bo - 0.3 * k * H + (desc ? 0.3 * H : 0.0);
    } else if (kind <= 2) {
        v = T + bo + 0.3 * k * H - (asc ? 0.0 : 0.3 * H);
    } else {
        v = T + bo - 0.1 * k * H - (asc ? 0.0 : 0.3 * H);
    }
    if (kind <= 2) {
        line(a0, v, a0 + w, v);
        if (kind == 2) {
            double g = gap();
            line(a0 + w, v, a0 + w - 2 * g, v + g);
            line(a0 + w, v, a0 + w - 2 * g, v - g);
        }
        feed(std::max(v, bo), std::min(v, bo));
        return;
    }
    double centre = a0 + 0.5 * w;
    double x = centre - (kind == 5 ? 0.5 : 0.4) * H;
    if (r.lastital) x += 0.3 * (v - bo);
    penTo(x);
    if (kind == 3)
        glyph('^', m_.alf ? m_.alf : ALF_STAN, H, v);
    else if (kind == 4)
        glyph('~', m_.alf ? m_.alf : ALF_STAN, H, v);
    else
        glyph(127, ALF_MATH, H, v);
    penTo(a0 + w);
}

int Parser::bracketHeight(double t, double d) const {
    double f = t_.hwmode ? 1.0 : 0.9;
    return std::max(1, (int)(f * t_.texvbra * (t - d) + 0.5));
}

double Parser::bracketBase(double t, double d) const {
    double f = t_.hwmode ? 1.0 : 0.9;
    double bb = std::fabs(d) < 0.5 ? m_.boff - f * t * (t_.texvbra - 1.0) / 2.0
                                   : m_.boff + f * t_.texvbra * d;
    // a hardware font's bracket stands lower in its cell
    return t_.hwmode ? bb + 0.09 * m_.hgt : bb;
}

// Draws a bracket glyph at height hb on baseline bb, with the spacing of
// a tall bracket taken back; '.' takes no room.
void Parser::bracket(int c, int hb, double bb) {
    if (c == '.') return;
    double wf = t_.curwfac;
    if (t_.texwbra != 1.0) t_.curwfac = t_.texwbra;
    glyph(c, t_.texbrac ? ALF_MATH : ALF_STAN, hb, bb);
    t_.curwfac = wf;
    if (hb > m_.hgt) move(-(0.1 + t_.spcadd) * (hb - m_.hgt));
}

void Parser::left() {
    skipBlanks();
    int c = peek();
    if (c != '(' && c != '[' && c != '{' && c != '.') {
        fail(176, "Not allowed bracket symbol");
        return;
    }
    ++pos_;
    if (nbrk_ >= QQ_TEXMAX || nopen_ >= QQ_TEXMAX) {
        fail(177, "Too many brackets");
        return;
    }
    int n = nbrk_++;
    int H = m_.hgt;
    move(0.2 * t_.texh2br * H);
    double t = first_ ? H : t_.texbrk[0][n], d = first_ ? 0.0 : t_.texbrk[1][n];
    bracket(c, bracketHeight(t, d), bracketBase(t, d));
    if (c == '{') move(0.3 * H);
    move(0.2 * t_.texh1br * H);
    brk_[nopen_++] = Open{n, c, track()};
}

void Parser::right() {
    skipBlanks();
    if (nopen_ == 0) {
        fail(176, "Missing left bracket symbol");
        return;
    }
    int c = peek();
    if (c != ')' && c != ']' && c != '}' && c != '.') {
        fail(176, "Not allowed bracket symbol");
        return;
    }
    ++pos_;
    Open o = brk_[--nopen_];
    Tracker r = untrack(o.trk);
    int H = m_.hgt;
    double t = r.any ? r.top - m_.boff : H, d = r.any ? r.bot - m_.boff : 0.0;
    if (first_) {
        t_.texbrk[0][o.n] = t;
        t_.texbrk[1][o.n] = d;
    }
    move(0.2 * t_.texh1br * H);
    bracket(c, bracketHeight(t, d), bracketBase(t, d));
    if (c == '}') move(0.2 * H);
    move(0.2 * t_.texh2br * H);
}

void Parser::big(double factor) {
    skipBlanks();
    int c = peek();
    if (c != '(' && c != '[' && c != '{' && c != ')' && c != ']' && c != '}') {
        fail(143, "Not allowed bracket symbol");
        return;
    }
    ++pos_;
    int H = m_.hgt;
    int hb = std::max(1, qqnint(factor * t_.texvbra * H));
    double bb = m_.boff - (factor - 1.0) * H / 2.0 + (t_.hwmode ? 0.09 * H : 0.0);
    bracket(c, hb, bb);
}

void Parser::command(const char *w) {
    int k;
    if ((k = lookup(kGreek, w)) >= 0) {
        glyph(kGreek[k].value, ALF_GREEK, m_.hgt, m_.boff);
        return;
    }
    if ((k = lookup(kSpaces, w)) >= 0) {
        move(m_.hgt * kSpaces[k].value / 18.0);
        return;
    }
    if (std::strcmp(w, "left") == 0) return left();
    if (std::strcmp(w, "right") == 0) return right();
    static const Word kBig[] = {{"big", 125},  {"Big", 150}, {"bigg", 175},
                                {"Bigg", 200}, {"low", 80},  {nullptr, 0}};
    if ((k = lookup(kBig, w)) >= 0) return big(kBig[k].value / 100.0);
    if ((k = lookup(kSymbols, w)) >= 0) {
        int c = kSymbols[k].value;
        double a0 = along();
        glyph(c, ALF_MATH, m_.hgt, m_.boff);
        if (c == 127) move(0.25 * m_.hgt);
        if (c == 149) penTo(a0);  // \not lies on the next symbol
        return;
    }
    if ((k = lookup(kAlphabets, w)) >= 0) {
        m_.alf = kAlphabets[k].value;
        m_.ital = 0;
        return;
    }
    if ((k = lookup(kStyles, w)) >= 0) {
        m_.style = kStyles[k].value;
        m_.hgt = std::max(1, (int)(kStyleFactor[m_.style] * m_.basehgt + 0.5));
        return;
    }
    if ((k = lookup(kSizes, 10, w)) >= 0) {
        m_.hgt = m_.basehgt = std::max(1, qqnint((double)kSizeFactor[k] * t_.starthgt));
        return;
    }
    if ((k = lookup(kColours, w)) >= 0) {
        int v = kColours[k].value;
        v = v == -1 ? b_->clr.forclr : v == -2 ? b_->clr.bckclr : b_->clr.named[v];
        m_.colour = v;
        setColour(v);
        return;
    }
    if (lookup(kFunctions, 20, w) >= 0) {
        move(gap());
        for (const char *p = w; *p; ++p) glyph((unsigned char)*p, ALF_STAN, m_.hgt, m_.boff);
        move(gap());
        return;
    }
    if (std::strcmp(w, "copyright") == 0) {
        glyph(t_.chacod == 0 ? 264 : 169, ALF_STAN, m_.hgt, m_.boff);
        return;
    }
    if (std::strcmp(w, "diameter") == 0) {
        // chacod: 0 STAN, ISO1 and UTF8 carry the sign at 216
        int cs = t_.chacod;
        int c = cs == 0 ? 135 : (cs == 1 || cs == 6) ? 216 : ' ';
        glyph(c, ALF_STAN, m_.hgt, m_.boff);
        return;
    }
    if ((k = lookup(kConstructs, w)) >= 0) {
        int c = kConstructs[k].value;
        switch (c) {
            case C_SUM:
            case C_PROD:
            case C_INT:
            case C_OINT:
            case C_LIM:
                return bigop(c);
            case C_SQRT:
                return root();
            case C_FRAC:
                return fraction();
            default:
                return accent(c);
        }
    }
    fail(142, "Unknown TeX command");
}

}  // namespace

void qqtexdefaults(TextBlock *b) noexcept {
    TextState &t = b->txt;
    t.texlim = 1;
    t.texital = 1;
    t.texbrac = 0;
    t.texexp = 1.0;
    t.texh1br = 0.0;
    t.texh2br = 0.0;
    t.texvbra = 1.0;
    t.texwbra = 1.0;
    t.texoper = 1.0;
}

int qqtexrun(TextBlock *b, int measure) noexcept {
    Parser p(b, measure);
    return p.run();
}

void texmod(const char *cmode) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("texmod"));
    if (!b) return;
    int k = qqkey(b, "OFF +ON  ", 2, cmode);
    if (k > 0) b->txt.texon = k - 1;
}

void texopt(const char *copt, const char *ctype) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("texopt"));
    if (!b) return;
    int k = qqkey(b, "LIMI+ITAL+BRAC", 3, ctype);
    if (k <= 0) return;
    TextState &t = b->txt;
    if (k == 3) {
        int v = qqkey(b, "STAN+VECT", 2, copt);
        if (v > 0) t.texbrac = v - 1;
        return;
    }
    int v = qqkey(b, "OFF +ON  ", 2, copt);
    if (v <= 0) return;
    if (k == 1)
        t.texlim = v - 1;
    else
        t.texital = v - 1;
}

void texval(double xval, const char *copt) noexcept {
    TextBlock *b = qqtxtblk(KX_ENTRY("texval"));
    if (!b) return;
    int k = qqkey(b, "EXP +H1BR+H2BR+VBRA+OPER+WBRA", 6, copt);
    if (k <= 0) return;
    TextState &t = b->txt;
    bool positive = k == 4 || k == 6;
    if (!std::isfinite(xval) || (positive && !(xval > 0.0))) {
        qqwarnd(b, 2, xval);
        return;
    }
    double *slot[] = {&t.texexp, &t.texh1br, &t.texh2br, &t.texvbra, &t.texoper, &t.texwbra};
    *slot[k - 1] = xval;
}
