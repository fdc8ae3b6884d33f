// The device families of this build.  A family that is added gets its
// descriptor in its own source and one line in kFamilies.  The families
// described here have no driver yet, so metafl accepts their keywords and
// kolini reports that the format is not available; a driver that arrives
// takes its family's descriptor (keywords, colours, file) into its own
// source, fills .ops, and replaces the family's line below.
#include "devices/registry.h"

#include <cstring>


extern const DeviceFamily kxfam_plogfl;
extern const DeviceFamily kxfam_raster;
extern const DeviceFamily kxfam_java;
extern const DeviceFamily kxfam_svg;
extern const DeviceFamily kxfam_ipe;
extern const DeviceFamily kxfam_pdf;
extern const DeviceFamily kxfam_postscript;

namespace {

// The screen takes the place of the OpenGL window, which needs GLX.
const DeviceKey kOpenGLKeys[] = {{"GL  ", 81, nullptr, QQ_CLR_TURN_ON_WHITE}, {}};
const DeviceFamily kOpenGL = {.name = "OpenGL", .keys = kOpenGLKeys, .lo = 81, .hi = 81,
                               .kind = QQ_KIND_SCREEN, .absent = "OPENGL is not supported",
                               .instead = "XWND"};

const DeviceKey kScreenKeys[] = {
    {"XWIN", 72, nullptr, QQ_CLR_TURN_ON_WHITE}, {"XWI1", 72, nullptr, QQ_CLR_TURN_ON_WHITE},
    {"XWI2", 73, nullptr, QQ_CLR_TURN_ON_WHITE}, {"XWI3", 74, nullptr, QQ_CLR_TURN_ON_WHITE},
    {"XWI4", 75, nullptr, QQ_CLR_TURN_ON_WHITE}, {"XWI5", 76, nullptr, QQ_CLR_TURN_ON_WHITE},
    {"XWI6", 77, nullptr, QQ_CLR_TURN_ON_WHITE}, {"XWI7", 78, nullptr, QQ_CLR_TURN_ON_WHITE},
    {"XWI8", 79, nullptr, QQ_CLR_TURN_ON_WHITE}, {"XWND", 80, nullptr, QQ_CLR_TURN_ON_WHITE},
    {"CONS", 80, nullptr, QQ_CLR_TURN_ON_WHITE}, {"MET1", 80, nullptr, QQ_CLR_TURN_ON_WHITE},
    {"MET2", 80, nullptr, QQ_CLR_TURN_ON_WHITE}, {"MET3", 80, nullptr, QQ_CLR_TURN_ON_WHITE},
    {"MET4", 80, nullptr, QQ_CLR_TURN_ON_WHITE}, {"MET5", 80, nullptr, QQ_CLR_TURN_ON_WHITE},
    {"MET6", 80, nullptr, QQ_CLR_TURN_ON_WHITE}, {"MET7", 80, nullptr, QQ_CLR_TURN_ON_WHITE},
    {"MET8", 80, nullptr, QQ_CLR_TURN_ON_WHITE}, {"MET9", 80, nullptr, QQ_CLR_TURN_ON_WHITE},
    {},
};
const DeviceFamily kScreen = {.name = "screen", .keys = kScreenKeys, .lo = 1, .hi = 100,
                               .kind = QQ_KIND_SCREEN};

// Printed on white paper: the colour table keeps black ink on it.
constexpr unsigned kPaper =
    QQ_CLR_WHITE_SHEET | QQ_CLR_WHIT_BLACK | QQ_CLR_BACK_LAST | QQ_CLR_KEEP_REVERSED;

const DeviceKey kCgmKeys[] = {{"CGM ", 211, "cgm", kPaper}, {}};
const DeviceFamily kCgm = {.name = "CGM", .keys = kCgmKeys, .lo = 211, .hi = 211,
                            .kind = QQ_KIND_FILE, .file = QQ_FILE_BINARY | QQ_FILE_RECORDS,
                            .lnlen = 80, .viewer = "koldrv"};

const DeviceKey kWmfKeys[] = {{"WMF ", 221, "wmf", kPaper}, {}};
const DeviceFamily kWmf = {.name = "WMF", .keys = kWmfKeys, .lo = 221, .hi = 221,
                            .kind = QQ_KIND_FILE, .file = QQ_FILE_OWN, .viewer = "koldrv",
                            .densehatch = 0.39999f};

const DeviceKey kEmfKeys[] = {
    {"EMF ", 231, "emf", QQ_CLR_KEEP_REVERSED | QQ_CLR_TURN_ON_WHITE | QQ_CLR_WHITE_BACK}, {}};
const DeviceFamily kEmf = {.name = "EMF", .keys = kEmfKeys, .lo = 231, .hi = 231,
                            .kind = QQ_KIND_FILE, .file = QQ_FILE_OWN, .viewer = "koldrv"};

const DeviceKey kHpglKeys[] = {
    {"HPGL", 401, "hpg", 0}, {"HPA4", 402, "hpg", 0}, {"HPA3", 403, "hpg", 0},
    {"HPA2", 404, "hpg", 0}, {"HPA1", 405, "hpg", 0}, {},
};
const DeviceFamily kHpgl = {.name = "HPGL", .keys = kHpglKeys, .lo = 401, .hi = 405,
                             .kind = QQ_KIND_FILE, .lnlen = 80, .viewer = "koldrv"};

// In the order in which metafl has always searched the keywords; where
// two families share a code range the first wins.
const DeviceFamily *const kFamilies[] = {
    &kxfam_plogfl, &kCgm,  &kHpgl,        &kOpenGL,   &kScreen,   &kxfam_postscript,
    &kxfam_raster, &kxfam_java, &kWmf,    &kEmf,      &kxfam_pdf, &kxfam_svg, &kxfam_ipe,
};

}  // namespace

const DeviceFamily *const *qqfamilies(int *n) noexcept {
    *n = (int)(sizeof kFamilies / sizeof kFamilies[0]);
    return kFamilies;
}

const DeviceFamily *qqfamily(int devcod) noexcept {
    for (const DeviceFamily *f : kFamilies)
        if (devcod >= f->lo && devcod <= f->hi) return f;
    return nullptr;
}

const DeviceFamily *qqfamilykey(const char *key, int *code) noexcept {
    for (const DeviceFamily *f : kFamilies)
        for (const DeviceKey *k = f->keys; k->key; ++k)
            if (std::strcmp(k->key, key) == 0) {
                *code = k->code;
                return f;
            }
    *code = 0;
    return nullptr;
}
