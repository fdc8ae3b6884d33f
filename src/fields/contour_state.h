// State of the contour lines: the settings of the labelling and the working
// state of one contour pass (the pen and its label buffers).
//
// The label kind, digits, orientation, distance and colour are kept with
// the other label settings of the axes (labels, labdig, labtyp, labdis,
// labclr with the word CON); this record holds the rest.
#pragma once

enum { QQ_CON_MAXBUF = 500, QQ_CON_MAXCLR = 256, QQ_CON_LABLEN = 20 };

struct ContourState {
    // Settings, kept until kolini or reset.
    char conlab[QQ_CON_LABLEN + 1];  // text of label mode 2
    double marfac;                   // margin factor of conmod
    double curquot;                  // curvature limit of conmod
    double gapfac;                   // gap factor of congap
    int nclr;                        // conclr: count and colours
    int clrs[QQ_CON_MAXCLR];

    // Working state of a pass.
    double level;      // the level being drawn
    int lstate;        // 3 the next point opens a line, 2 inside a line, 4 end
    int lmode;         // label mode of the pass: 0 none, 1 number, 2 text, 3 gaps only
    int ndig;          // digits of the level's number
    double gaplen;     // gap beside the label text
    double lablen;     // text extent plus gaplen
    double pathlen;    // path since the last label, while collecting the chord
    double nextdist;   // path to reach before the next label
    double curvlen;    // path collected since the collection began
    double sx, sy;     // start of the collection
    double p0x, p0y;   // last accepted point
    double lastdir;    // direction of the previous segment, degrees
    int collect;       // 1 while collecting points for a label
    int nbuf;          // collected points
    double *bufx;      // QQ_CON_MAXBUF x then QQ_CON_MAXBUF y in one block
    double *bufy;
    int writing;       // 1 while a label is written

    // Polygon mode of the shading: the pen collects instead of drawing.
    int polyon;
    int npoly;
    double *polyx, *polyy;
};
