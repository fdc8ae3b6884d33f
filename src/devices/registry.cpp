// The device families of this build.  A family that is added gets its
// descriptor in its own source and one line in kFamilies; the families
// described here have no driver yet, so metafl accepts their keywords and
// kolini reports that the format is not available.
#include "devices/registry.h"

#include <cstring>

#include "devices/device.h"

extern const DeviceFamily kxfam_plogfl;
extern const DeviceFamily kxfam_raster;
extern const DeviceFamily kxfam_java;
extern const DeviceFamily kxfam_svg;
extern const DeviceFamily kxfam_ipe;
extern const DeviceFamily kxfam_postscript;

namespace {

// The screen takes the place of the OpenGL window, which needs GLX.
const DeviceKey kOpenGLKeys[] = {{"GL  ", 81, nullptr, QQ_CLR_TURN_ON_WHITE}, {}};
const DeviceFamily kOpenGL = {
    "OpenGL", kOpenGLKeys, 81, 81, QQ_KIND_SCREEN, 0, 0, nullptr, "OPENGL is not supported",
    "XWND",   nullptr,
};

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
const DeviceFamily kScreen = {"screen", kScreenKeys, 1,       100,     QQ_KIND_SCREEN, 0,
                              0,        nullptr,     nullptr, nullptr, nullptr};

// Printed on white paper: the colour table keeps black ink on it.
constexpr unsigned kPaper =
    QQ_CLR_WHITE_SHEET | QQ_CLR_WHIT_BLACK | QQ_CLR_BACK_LAST | QQ_CLR_KEEP_REVERSED;

const DeviceKey kCgmKeys[] = {{"CGM ", 211, "cgm", kPaper}, {}};
const DeviceFamily kCgm = {"CGM", kCgmKeys, 211, 211, QQ_KIND_FILE, QQ_FILE_BINARY | QQ_FILE_RECORDS,
                           80,    "koldrv", nullptr, nullptr, nullptr};

const DeviceKey kWmfKeys[] = {{"WMF ", 221, "wmf", kPaper}, {}};
const DeviceFamily kWmf = {"WMF",    kWmfKeys, 221,     221,    QQ_KIND_FILE, QQ_FILE_OWN, 0,
                           "koldrv", nullptr,  nullptr, nullptr};

const DeviceKey kEmfKeys[] = {
    {"EMF ", 231, "emf", QQ_CLR_KEEP_REVERSED | QQ_CLR_TURN_ON_WHITE | QQ_CLR_WHITE_BACK}, {}};
const DeviceFamily kEmf = {"EMF",    kEmfKeys, 231,     231,    QQ_KIND_FILE, QQ_FILE_OWN, 0,
                           "koldrv", nullptr,  nullptr, nullptr};

const DeviceKey kHpglKeys[] = {
    {"HPGL", 401, "hpg", 0}, {"HPA4", 402, "hpg", 0}, {"HPA3", 403, "hpg", 0},
    {"HPA2", 404, "hpg", 0}, {"HPA1", 405, "hpg", 0}, {},
};
const DeviceFamily kHpgl = {"HPGL",   kHpglKeys, 401,     405,    QQ_KIND_FILE, 0, 80,
                            "koldrv", nullptr,   nullptr, nullptr};

constexpr unsigned kWhitePage = QQ_CLR_TURN_ON_WHITE | QQ_CLR_WHITE_BACK;
const DeviceKey kPdfKeys[] = {{"PDF ", 511, "pdf", kWhitePage}, {}};
const DeviceFamily kPdf = {"PDF",    kPdfKeys, 511,     511,    QQ_KIND_PAGE, QQ_FILE_OWN, 0,
                           "koldrv", nullptr,  nullptr, nullptr};

// In the order in which metafl has always searched the keywords; where
// two families share a code range the first wins.
const DeviceFamily *const kFamilies[] = {
    &kxfam_plogfl, &kCgm,  &kHpgl,        &kOpenGL,   &kScreen,   &kxfam_postscript,
    &kxfam_raster, &kxfam_java, &kWmf,    &kEmf,      &kPdf,      &kxfam_svg, &kxfam_ipe,
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

const DriverOps *qqdriver(int devcod) noexcept {
    const DeviceFamily *f = qqfamily(devcod);
    return f ? f->ops : nullptr;
}
