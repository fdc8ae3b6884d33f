// Line styles: the style table behind lintyp and the internal line entries.
//
// Drawing code of any layer above the devices draws its lines with these
// (plot coordinates as doubles, the page-origin flip already applied, the
// origin shift added by qqmove).  Both restore the current colour when the
// dash colours of linclr changed it.
#pragma once

struct glbblk;

// Sets line style 0 to 7 by the style table (no checks): the dash lengths
// in plot coordinates and a fresh dash state.
void qqlintyp(glbblk *b, int ityp) noexcept;
// One line from (x1, y1) to (x2, y2): the axes' qqline (axes/axis_draw.h).
void qqline(glbblk *b, double x1, double y1, double x2, double y2) noexcept;
// The closed outline of a polygon of n points (n below 2 draws nothing);
// the last point joins the first.
void qqpolyln(glbblk *b, const double *x, const double *y, int n) noexcept;

// The dash pattern of the device layer, saved round a drawing that needs
// a style of its own (hatching, frames).
struct SavedDash {
    int ltyp, dshn, dshl[10];
    double dsrem;
    int dspen, dsidx, clridx;
};
void qqdshsave(glbblk *b, SavedDash *s) noexcept;
void qqdshback(glbblk *b, const SavedDash *s) noexcept;
