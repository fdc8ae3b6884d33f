// The description of a device family: everything the library knows about a
// kind of output besides its drawing code.
//
// Each driver source defines one DeviceFamily (its keywords, the range of
// its device codes, its file, its colour behaviour and its operations) and
// devices/registry.cpp lists them.  Nothing else in the library tests a
// device code by number: it asks the family of the session, which metafl
// and kolini store in CoreState::fam.  The record is plain data so that the
// layers below the devices (core, colour, raster) can read it without
// knowing any driver; the operations stay opaque to them.
#pragma once

#include "core/core_block.h"

struct DriverOps;

// Colour behaviour of a device code (flags of DeviceKey::colour).
enum {
    // Prints on white paper: named colours and small tables swap black and
    // white so that the foreground stays visible.
    QQ_CLR_WHITE_SHEET = 1,
    // The full tables give WHIT the value of black.
    QQ_CLR_WHIT_BLACK = 2,
    // The full tables draw with index 0 on background 255.
    QQ_CLR_BACK_LAST = 4,
    // The reversed tables keep their indices on a deep-colour device.
    QQ_CLR_KEEP_REVERSED = 8,
    // A white background turns the table round (entry 0 with the foreground).
    QQ_CLR_TURN_ON_WHITE = 16,
    // A session starts with the reversed grey table instead of the rainbow.
    QQ_CLR_GREY_TABLE = 32,
    // scrmod AUTO gives a white background.
    QQ_CLR_WHITE_BACK = 64,
    // Always true colour, whatever imgfmt says.
    QQ_CLR_RGB = 128,
};

// One keyword of metafl and the device code it chooses.
struct DeviceKey {
    const char *key;  // upper case, blank padded to four characters
    int code;
    const char *ext;  // extension of the default file name, without the
                      // point; null when the code writes no file
    unsigned colour;  // QQ_CLR_ flags
};

// What a family is, for the routines that treat kinds of output alike.
enum DeviceKind {
    QQ_KIND_SCREEN = 1,  // a window on the screen
    QQ_KIND_FILE,        // a vector or metafile format
    QQ_KIND_PAGE,        // a page description that embeds images (imgini)
    QQ_KIND_RASTER,      // drawn into the canvas and written as an image
};

// Flags of the plot file (DeviceFamily::file).
enum {
    QQ_FILE_BINARY = 1,   // opened "wb"
    QQ_FILE_OWN = 2,      // the driver opens its file itself
    QQ_FILE_RECORDS = 4,  // the line buffer writes fixed records without line feeds
};

struct DeviceFamily {
    const char *name;        // for messages and tests
    const DeviceKey *keys;   // keywords of metafl, ended by a null key; a
                             // code's first row gives its extension and colours
    int lo, hi;              // the device codes of the family
    int kind;                // DeviceKind
    unsigned file;           // QQ_FILE_ flags
    int lnlen;               // length of the text line buffer, 0 for none
    const char *viewer;      // program that symfil starts for the file
    // Set when this build lacks the family and another takes its place at
    // metafl: the text of warning 181 and the keyword chosen instead.
    const char *absent;
    const char *instead;
    const DriverOps *ops;    // null when this build has no driver for it
    // Distance factor of the lines of hatching density 0 where the family
    // needs its own (a coarse device resolution); 0 for the usual.
    float densehatch;
    // Points per device unit, which make the pixels per plot coordinate
    // (times devscl and zbfscl) of a picture that a page format renders
    // for itself, such as a z-buffered surface; 0 where the family draws
    // into a canvas of its own or takes no pictures.
    double picscale;
};

// The first row of a code of a family, null when the family lacks it.
inline const DeviceKey *qqfamkey(const DeviceFamily *f, int code) {
    if (f)
        for (const DeviceKey *k = f->keys; k && k->key; ++k)
            if (k->code == code) return k;
    return nullptr;
}

struct CoreBlock;
// The colour flags and kind of the session's device: of the code metafl
// chose, 0 before any choice (the default device has none).
unsigned qqdevclr(const CoreBlock *b) noexcept;
int qqdevkind(const CoreBlock *b) noexcept;
// Chooses the family a session falls back on (CoreState::deffam).
void qqdefdev(CoreBlock *b) noexcept;
