// State of a session: the device, the plot file, the page options and the
// screen window placement.  Fields set before kolini survive the session;
// kolini derives the rest.
#pragma once

#include <cstdio>

struct SessionState {
    char devkey[5];          // device keyword, upper case, blank padded
    unsigned char mflset;    // 1 once metafl accepted a keyword
    unsigned char scrmd;     // screen mode: 0 ERAS, 1 NOER, 2 REVE, 4 AUTO
    unsigned char bgmode;    // effective background: 0 dark, 1 no erase, 2 white
    int bgprev;              // background mode of the first session, -1 none
    unsigned char pagrot;    // page mode: 0 LAND, 1 PORT, 2 NONE
    unsigned char sclm;      // scale mode: 0 DOWN, 1 FULL, 2 NONE
    double sclf;             // scale factor
    double hwscl;            // hardware scale
    unsigned char hwpflg;    // hworig given
    int hworg[2];            // hardware origin in plot coordinates
    unsigned char hwsflg;    // hwpage given
    int hwsiz[2];            // hardware page in 1/100 cm
    int fstate;              // 0 default name, 1 setfil given, 2 name from fsave
    char fname[257];         // plot file name
    char fsave[257];         // the setfil name, reused by later sessions
    unsigned char fmode;     // 0 COUN, 1 DELE, 2 BREA, 3 VERS
    unsigned char fsep;      // 0 UNDE, 1 HYPH, 2 NONE
    unsigned char flong;     // 0 SHOR, 1 LONG
    unsigned char fdig;      // digits of a version number, 2 to 6
    unsigned char fscal;     // scaling of included files: 0 OFF, 1 PAGE/ON, 2 VIEW
    FILE *fhnd;              // the open plot file
    char ftemp[320];         // the name fhnd writes under until kolfin, or empty
    int freserved;           // 1 when kolini created fname empty to reserve it
    char *lnbuf;             // line buffer of the text formats
    int lnlen, lnpos;        // line length and characters in the buffer
    int wplace;              // window placement: 0 automatic, 1 window, 2 winsiz
    int wpos[2], wsiz[2];    // window position and size in pixels
    int wreqpos[2];          // from window()
    int wreqsiz[2];          // from window() and winsiz()
    unsigned char wjus;      // winjus 1 to 5, 0 none
    unsigned char wtyp;      // 0 STAN, 1 POPU
    unsigned char wmode;     // 0 FULL, 1 NOER, 2 NONE, 3 NOHO, 4 DELA, 5 NOMB
    unsigned char wkey;      // 0 NONE, 1 RETU, 2 ESCA
    int wdelay;              // delay of DELA in milliseconds
    unsigned char wapp;      // 0 CONS, 1 WIND
    int nvec;                // vectors drawn in the session
    int pageno;              // page number within the session, from 1
    int colbits;             // colour bits of the device: 8 or 24
    double devscl;           // device units per plot coordinate
    int finfl;               // 0 in a session, 1 after kolfin, -1 file deleted
    int swapfl;              // binary big-endian output needs byte swapping
    int axdefl[2];           // default axis lengths derived from the page
    int axdefp[2];           // default axis position derived from the page
    char envdir[257];        // installation directory given to kolenv
    unsigned char envset;    // 1 while kolenv's directory is in force
    unsigned char bufsend;   // bufmod SEND: sendbf at endgrf
    unsigned char x11md;     // x11mod backing store: 0 STOR, 1 NOST, 2 AUTO, 3 PIXM
};
