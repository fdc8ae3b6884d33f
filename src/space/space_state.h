// State of the 3-D axis system: camera, projection, 3-D pen, the plane of
// 2-D drawing in space, the z-buffer and depth buffer, the light model and
// the settings of shaded surfaces.
#pragma once

struct SpaceBlock;
struct PlyStore;

struct Light3 {
    int on;
    double pos[3];
    int mode;      // 1 absolute, 2 user, 3 angles
    double at[3];  // the absolute position in effect in the open axis system
    double amb[3], dif[3], spc[3];
    double att[3];  // constant, linear, quadratic
};

struct Material3 {
    double amb[3], dif[3], spc[3];
    double expo;
};

// One polygon of the depth buffer; its vertices live in the shared pool.
struct DepthPoly {
    float depth;
    int first;  // index of its first vertex pair in the pool
    int n;      // vertex count
    int fill;   // fill colour value
    int edge;   // mesh colour value, or -1 for none
    int code;   // edge code: 0 the whole outline, k the edge from k
};

struct SpaceState {
    // Settings.
    double len[3];  // axis3d
    double eye[3];
    int eyemode;  // 0 default, 1 ABS, 2 USER, 3 ANGL
    double foc[3];
    int focmode;         // 0 origin, 1 ABS, 2 USER
    double vup;          // radians
    double vang;         // half view angle, radians
    double vnear, vfar;  // far -1: none
    int proj;            // 0 PERS, 1 ORTH
    double oscl;         // orthographic scale
    int clip;            // 0 WORL, 1 EYE, 2 NONE
    int labmode;         // 0 STAN, 1 HORI, 2 PARA, 3 OTHE
    int flab;            // first-label rule
    // The open system.
    int open;  // 1 from graf3d to endgrf
    double a[3], e[3], orl[3], stp[3];
    int logax[3];
    double umin[3], umax[3];  // limits as user values, ascending
    double ex, ey, ez;        // resolved eye, absolute
    double fx, fy, fz;        // resolved focus
    double m[4][4];           // rows X, Y, Z, W
    double s, cx, cy;         // scale and centre on the page
    // The 3-D pen: last point (absolute, or clip coordinates in eye mode).
    double pen[4];
    int penout;
    // The plane of 2-D drawing in space.
    int plane;
    double p1[3], v1[3], v2[3];
    int pnxa, pnya, pnxl, pnyl;  // the 2-D area that maps onto the plane
    int savnograf;
    // Z-buffer.
    int zopen, zact, zown;
    double zscl;
    float *zbuf;
    int zw, zh;
    float zbias;           // depth bias of lines
    int zimg;              // 1 when zbfini opened image mode
    int zsavsiz, zsiz[2];  // imgsiz saved for a page format
    // Depth buffer.
    int dopen, dact;
    DepthPoly *dpol;
    int dn, dcap;
    float *dpts;
    int dpn, dpcap;
    // Surfaces.
    int shade;      // 0 FLAT, 1 SMOO
    int cull;       // 0 OFF, 1 ON, 2 FRON
    int zsca;       // 0 ON, 1 OFF
    int mesh;       // 0 OFF, 1 ON, 2 ONLY, 3 LINE, 4 POIN
    int mshclr[2];  // front, back; -1 current colour
    int mshcrv;
    int side;       // 0 TOP, 1 BOTT, 2 BOTH
    int survis;     // 0 AUTO, 1 TOP, 2 BOTT, 3 BOTH
    int surclr[2];  // surface colours of surclr, -1 none
    int surclrset;
    // Lights.
    int lights;
    Light3 lit[8];
    Material3 mat[2];  // front, back
    double scene[3];
    // Where the cell pass draws its mesh lines (the current mesh colour).
    int curmesh;
    int edgecode;  // edge code of the polygon being sent
    // PLY export: 1 while plyini records; the store, made at the first polygon.
    int plymode;
    PlyStore *ply;
};
