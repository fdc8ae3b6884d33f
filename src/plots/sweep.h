// The scan-line sweep that hatches a polygon (private to the fill).
#pragma once

struct glbblk;

struct SweepLines {
    double d;         // line distance in the rotated frame
    int run, gap;     // bundle: lines drawn, lines left out; run 0 draws all
    double c, s;      // cosine and sine of the angle: lines go back by -angle
    bool limit;       // scan only the lines that can meet the clip window
};

// Work of 3 n integers for a polygon of n points; null when the memory
// is not there.  Free with std::free.
int *qqsweepwork(int n) noexcept;

// Draws the hatch lines of the polygon (x, y), given in the rotated frame,
// with qqmove and qqdraw.  work holds 3 n integers.  Returns 0, or the
// number of crossings of a scan line above 100 (the sweep then stopped).
int qqsweep(glbblk *b, const double *x, const double *y, int n, const SweepLines &l,
            int *work) noexcept;
