// Options of the CGM, HPGL and WMF formats (devices 101 to 300): set at
// level 0 and kept across sessions, read by their drivers.
#pragma once

struct CgmState {
    int cgmversion;  // cgmver: 1 the CALS profile, 4 WebCGM; 1 at first
    int wmfplace;    // wmfmod FORM: 1 writes a placeable header
    int hpgaris;     // hpgmod PLOT: 0 STAN, 1 ARIS
};
