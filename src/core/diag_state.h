// State of the warning system, the protocol and the error file.
#pragma once

#include <cstdio>

struct CoreBlock;

struct DiagState {
    int nwarn;              // warnings of the session
    int outu;               // output unit: 0 silent, 1 on, 6 console, 17 error file
    FILE *errfp;            // where warnings go; null means the console
    FILE *errhnd;           // the open error file
    unsigned char erron;    // warnings printed
    int chkon;              // coordinates checked against the axis limits
    unsigned char proton;   // protocol: 0 OFF, 1 ON, 2 FILE
    unsigned char errdv;    // errdev: 0 CONS, 1 FILE, 2 APPE
    unsigned char erropn;   // 1 while the error file is open
    char errnam[257];       // error file name
    unsigned char errnmf;   // 1 once errfil gave a name
    char wrntxt[81];        // text of a warning above 100
    int nnan;               // points with a NaN coordinate in the session
    int nout;               // points outside the axis limits in the session
    int nanon;              // nancrv: NaN coordinates are gaps
    // What qqchkd compares user values with, asked of the axis systems
    // (which own them) once a call: fills lim with the lower and upper
    // limits of X, Y and Z and returns 0 without limits, 1 for an axis
    // scaling, 2 for a grafr system, 3 for a polar one.  Set by the axes
    // in their share of the session defaults; null checks nothing.
    int (*chklimits)(const CoreBlock *b, double lim[6]);
};
