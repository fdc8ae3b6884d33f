// The glyphs of every font: each national letter of the code sets is drawn
// with strokes, in every font, and a page shows them all to the eye.
#include <cstdlib>
#include <string>

#include "core/guard.h"
#include "glbblk.h"
#include "kolvex.h"
#include "testkit.h"
#include "text/text.h"

namespace {

struct Font {
    const char *name;
    void (*select)();
    int last;  // the highest internal code the font's first section accepts
};
const Font kFonts[] = {{"kolalf", kolalf, 163}, {"complx", complx, 264}, {"simplx", simplx, 163},
                       {"duplx", duplx, 163},   {"triplx", triplx, 163}, {"gothic", gothic, 126},
                       {"helve", helve, 163},   {"helves", helves, 163}, {"helvet", helvet, 163},
                       {"serif", serif, 163}};

// Internal codes of the national letters and signs of the STANDARD alphabet.
const int kFirstNational = 127;

// Puts the pen of the next character at (x, y), the upper left corner.
void pen_at(glbblk *b, int x, int y) {
    b->txt.penx = x + b->dev.nxsh;
    b->txt.peny = y + b->dev.nysh + b->txt.height - 1;
}

}  // namespace

TEST(every_font_draws_every_national_letter) {
    testkit::RecordingDriver rec;
    glbblk *b = testkit::recording_session(rec);
    height(40);
    for (const Font &f : kFonts) {
        f.select();
        int blank = 0;
        for (int code = kFirstNational; code <= f.last; ++code) {
            size_t before = rec.count('d');
            pen_at(b, 100, 100);
            qqtxtchar(b, code);
            if ((size_t)rec.count('d') == before) {
                ++blank;
                testkit::fail(
                    __FILE__, __LINE__,
                    std::string(f.name) + ": no strokes for code " + std::to_string(code));
            }
        }
        CHECK_EQ(blank, 0);
        // A code past the font's limit is a blank.
        size_t before = rec.count('d');
        qqtxtchar(b, f.last + 1);
        CHECK_EQ((size_t)rec.count('d'), before);
    }
    testkit::end_session(b);
}

// All national letters of all fonts on one PNG page, to be looked at: one
// block a font, codes 127 to 264 in rows of 46.
PAGE(glyph_repertoire_page) {
    const char *dir = std::getenv("KOLVEX_PAGE_DIR");
    std::string name =
        std::string(dir ? dir : testkit::temp_dir().c_str()) + "/glyph_repertoire.png";
    setfil(name.c_str());
    filmod("DELE");
    scrmod("REVE");
    metafl("PNG");
    setpag("DA4P");
    winsiz(2100, 2970);
    kolini();
    glbblk *b = qqglbblk(qqcur());
    b->diag.outu = 0;
    int y = 60;
    for (const Font &f : kFonts) {
        f.select();
        height(30);
        messag(f.name, 60, y);
        height(44);
        for (int code = kFirstNational; code <= f.last; ++code) {
            int k = code - kFirstNational;
            if (k % 46 == 0) pen_at(b, 60, y + 50 + 75 * (k / 46));
            qqtxtchar(b, code);
        }
        y += 290;
    }
    kolfin();
}
