// The colour model: the 256-entry colour table, its kind and the named
// colours.  The colour value itself is described in colour/colour.h.
#pragma once

struct ColourBlock;

struct ColourState {
    int colmap[256];        // table entries 0x00RRGGBB
    int vltkind;            // table kind, 0 to 8 in the order of setvlt
    unsigned char vltkeep;  // myvlt before kolini: the next setvlt keeps the entries
    int bckclr, forclr;     // index of background and foreground
    int blkidx, whtidx;     // darkest and brightest end of the table
    int minidx, maxidx;     // index range of colour scales
    int named[9];           // values of WHIT RED GREE YELL BLUE ORAN CYAN MAGE BLAC
    int clrcycl[30];        // colour cycle of clrcyc
    int curclr;             // current colour value
    char vltfnm[257];       // the file vltfil saved or loaded this session, for symfil
    // Set by the device layer with its first values: the current colour
    // and the changed table on their way to the driver.
    void (*setc)(ColourBlock *b, int value);
    void (*table)(ColourBlock *b);
};
