// The creation date that a file format writes into its header.
//
// Every driver that writes a date or time into a file (SVG, IPE, Java,
// PostScript, PDF, CGM, ...) takes it from here and from nowhere else, so
// that identical programs give byte-identical files: when the environment
// variable SOURCE_DATE_EPOCH holds an integer, that many seconds after
// 1970-01-01 00:00:00 are the moment, taken as UTC; otherwise the moment
// is the local time now.  (The protocol's banner is no file and keeps the
// clock.)
#pragma once

// t receives year, month (1 to 12), day, hour, minute and second.  Returns
// 1 when the moment came from SOURCE_DATE_EPOCH (a UTC time), 0 when it is
// the local clock.
int qqfiletime(int t[6]) noexcept;
