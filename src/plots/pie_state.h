// Settings of the pie charts.  The label content, place, alignment, digits
// and colour of pies live with the axis label settings (AxesState xlab[1],
// xpos[1], xori[0], xdig[2] percent and xdig[3] data, labclr[1]).
#pragma once

// The segment callback: segment number, |value|, percentage; then radius,
// offset, angle of the middle, label shifts, draw and label flags, each in
// and out.
typedef void (*QQPieCallback)(int iseg, double xdat, double xper, int *nrad, int *noff,
                              double *angle, int *nvx, int *nvy, int *idrw, int *iann);

struct PieState {
    int form;           // 0 2-D, 1 3-D
    int chn;            // change per segment: 0 NONE, 1 COLO, 2 PATT, 3 BOTH
    int expl;           // 1 after pieexp: every segment moves out
    int leader;         // 0 BROK, 1 STRA, 2 NONE
    int arrow;          // vector code of the leader, 0 to 9999
    double rot;         // rotation of a 2-D pie, degrees
    double view;        // view angle of a 3-D pie, degrees
    double hfac;        // rim height as a share of the radius
    double dist[2];     // leader length and hook factors
    double gap;         // labels' distance beyond the rim
    char labl[21];      // text before the number (pielab LEFT)
    char labr[21];      // text after it (RIGH)
    int nclr;           // colours given by pieclr, 0 to 30
    int top[30];        // top colours, -1 keep
    int rim[30];        // rim colours, -1 keep
    int border;         // border colour, -1 none
    QQPieCallback cbk;  // null: no callback
};
