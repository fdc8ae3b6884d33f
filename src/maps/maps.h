// What the map routines share among their sources: the projection of a
// point, the polar form of azimuthal maps, and the pen of map lines.
#pragma once

#include "maps/map_block.h"

// Projection families by code.
inline bool qqmcyl(int c) {
    return c >= 1 && c <= 6;
}
inline bool qqmpseudo(int c) {
    return c >= 10 && c <= 15;
}
inline bool qqmconic(int c) {
    return c >= 20 && c <= 23;
}
inline bool qqmazim(int c) {
    return c >= 30 && c <= 34;
}

// The family's formula: (X, Y) of a longitude and latitude in degrees,
// before scale and offset.  Not for codes 0 and 100.
void qqmproj(MapBlock *b, double lon, double lat, double *X, double *Y) noexcept;
// Polar form (theta, r) of a point around the centre of an azimuthal map,
// radians, and the radial function rho(r) of the code.
void qqmpolar(const MapBlock *b, double lon, double lat, double *theta, double *r) noexcept;
double qqmrho(int code, double r) noexcept;
// Makes the conic constants from the reference colatitudes.
void qqmconst(MapBlock *b) noexcept;
// A position to plot coordinates in the map in force (the map branch of
// qqpos2).
void qqmpos(MapBlock *b, double lon, double lat, double *xp, double *yp) noexcept;

// Map lines: qqmmov starts one, qqmdrw draws to a point in the curve
// mode, qqmlin draws one step with the circular clipping.
void qqmmov(MapBlock *b, double lon, double lat) noexcept;
void qqmdrw(MapBlock *b, double lon, double lat) noexcept;
void qqmlin(MapBlock *b, double lon, double lat) noexcept;
