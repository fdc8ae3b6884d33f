// State of the call frame: the level machine, the routine name for
// warnings, the page in plot coordinates and the library's constants.
#pragma once

struct DeviceFamily;

struct CoreState {
    unsigned level;     // 0 no session, 1 session, 2 axis system, 3 colour/3-D
    int devcod;         // device code chosen by metafl, 0 until one is chosen
    const DeviceFamily *fam;  // its family (core/family.h), null while devcod is 0
    const DeviceFamily *deffam;  // the family of a session without metafl
    char rtnam[9];      // name of the routine now running, cut to 8
    double xpi;         // pi as the library has always held it (single precision)
    double xdegr;       // degrees to radians
    double eps;         // the smallest tolerance
    double pagw, pagh;  // page size in 1/100 cm, highest coordinate
    char pagnam[5];     // page format name
    double unitf;       // 1/100 cm per plot coordinate
    int nxp, nyp;       // highest plot coordinate of the page
    unsigned char yorig;   // 0 origin at the top, 1 at the bottom (pagorg)
    unsigned char ynoflp;  // 1 while the library calls its own routines
};
