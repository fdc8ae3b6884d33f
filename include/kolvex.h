/* kolvex: the public routines of the plotting library.
 *
 * Generated from the routine table by tools/gen_binding.py; do not edit.
 * Routines take arrays as a pointer with a count given by the caller,
 * strings as zero-terminated UTF-8, and report failures as numbered
 * warnings on the console or in the error file, never by return codes.
 * Every routine may be called from C or C++; none throws. */
#ifndef KOLVEX_H
#define KOLVEX_H

#ifndef KOLVEX_API
#if defined(KOLVEX_EXPORTS)
#define KOLVEX_API __attribute__((visibility("default")))
#else
#define KOLVEX_API
#endif
#endif

#ifndef KOLVEX_NOEXCEPT
#ifdef __cplusplus
#define KOLVEX_NOEXCEPT noexcept
#else
#define KOLVEX_NOEXCEPT
#endif
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Global state and call frame */
KOLVEX_API void delglb(void) KOLVEX_NOEXCEPT;
KOLVEX_API int getlev(void) KOLVEX_NOEXCEPT;
KOLVEX_API int getuni(void) KOLVEX_NOEXCEPT;
KOLVEX_API void pagorg(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void thrfin(void) KOLVEX_NOEXCEPT;
KOLVEX_API void thrini(int nmax) KOLVEX_NOEXCEPT;
KOLVEX_API void units(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void upstr(char *cstr) KOLVEX_NOEXCEPT;

/* Diagnostics and protocol */
KOLVEX_API void errdev(const char *cdev) KOLVEX_NOEXCEPT;
KOLVEX_API void errfil(const char *cfil) KOLVEX_NOEXCEPT;
KOLVEX_API void errmod(const char *cstr, const char *cmode) KOLVEX_NOEXCEPT;
KOLVEX_API void nancrv(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void nochek(void) KOLVEX_NOEXCEPT;
KOLVEX_API void unit(int nu) KOLVEX_NOEXCEPT;

/* Session */
KOLVEX_API void bmpmod(int n, const char *cval, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void bufmod(const char *cmod, const char *ckey) KOLVEX_NOEXCEPT;
KOLVEX_API void cgmver(int nclr) KOLVEX_NOEXCEPT;
KOLVEX_API void clrmod(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void erase(void) KOLVEX_NOEXCEPT;
KOLVEX_API void filmod(const char *cmod) KOLVEX_NOEXCEPT;
KOLVEX_API void filopt(const char *copt, const char *ckey) KOLVEX_NOEXCEPT;
KOLVEX_API int filsiz(const char *cfil, int *nw, int *nh) KOLVEX_NOEXCEPT;
KOLVEX_API int filtyp(const char *cfil) KOLVEX_NOEXCEPT;
KOLVEX_API const char *getdsp(void) KOLVEX_NOEXCEPT;
KOLVEX_API const char *getfil(void) KOLVEX_NOEXCEPT;
KOLVEX_API const char *getmfl(void) KOLVEX_NOEXCEPT;
KOLVEX_API void getpag(int *nxpag, int *nypag) KOLVEX_NOEXCEPT;
KOLVEX_API double getver(void) KOLVEX_NOEXCEPT;
KOLVEX_API void gifmod(const char *cval, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void hpgmog(const char *cval, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void hworig(int nx, int ny) KOLVEX_NOEXCEPT;
KOLVEX_API void hwpage(int nxp, int nyp) KOLVEX_NOEXCEPT;
KOLVEX_API void hwscal(double xfac) KOLVEX_NOEXCEPT;
KOLVEX_API void imgfmt(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void kolenv(const char *cstr) KOLVEX_NOEXCEPT;
KOLVEX_API void kolfin(void) KOLVEX_NOEXCEPT;
KOLVEX_API void kolini(void) KOLVEX_NOEXCEPT;
KOLVEX_API void metafl(const char *cdev) KOLVEX_NOEXCEPT;
KOLVEX_API void newpag(void) KOLVEX_NOEXCEPT;
KOLVEX_API void page(int nxp, int nyp) KOLVEX_NOEXCEPT;
KOLVEX_API void pagera(void) KOLVEX_NOEXCEPT;
KOLVEX_API void pagfll(int ncol) KOLVEX_NOEXCEPT;
KOLVEX_API void pagmod(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void pdfmod(const char *cval, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void pngmod(const char *cval, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void psmeta(const char *cstr, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void reset(const char *cname) KOLVEX_NOEXCEPT;
KOLVEX_API void sclfac(double xfac) KOLVEX_NOEXCEPT;
KOLVEX_API void sclmod(const char *cmode) KOLVEX_NOEXCEPT;
KOLVEX_API void scrmod(const char *cmode) KOLVEX_NOEXCEPT;
KOLVEX_API void sendbf(void) KOLVEX_NOEXCEPT;
KOLVEX_API void setfil(const char *cfil) KOLVEX_NOEXCEPT;
KOLVEX_API void setpag(const char *cpag) KOLVEX_NOEXCEPT;
KOLVEX_API void symfil(const char *cdev, const char *cstat) KOLVEX_NOEXCEPT;
KOLVEX_API void tifmod(int n, const char *cval, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void winapp(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void window(int nx, int ny, int nw, int nh) KOLVEX_NOEXCEPT;
KOLVEX_API void winjus(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void winkey(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void winmod(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void winopt(int iopt, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void winsiz(int nw, int nh) KOLVEX_NOEXCEPT;
KOLVEX_API void wintyp(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void winupd(void) KOLVEX_NOEXCEPT;
KOLVEX_API void wmfmod(const char *cval, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void x11mod(const char *copt) KOLVEX_NOEXCEPT;

/* Device layer */
KOLVEX_API void clpbor(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void clpmod(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void clpwin(int nx, int ny, int nw, int nh) KOLVEX_NOEXCEPT;
KOLVEX_API void hwmode(const char *cmode, const char *ckey) KOLVEX_NOEXCEPT;
KOLVEX_API void linmod(const char *cmode, const char *ckey) KOLVEX_NOEXCEPT;
KOLVEX_API void linwid(int nwidth) KOLVEX_NOEXCEPT;
KOLVEX_API void lncap(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void lnjoin(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void lnmlt(double xfac) KOLVEX_NOEXCEPT;
KOLVEX_API void noclip(void) KOLVEX_NOEXCEPT;
KOLVEX_API void penwid(double xwidth) KOLVEX_NOEXCEPT;

/* PostScript */
KOLVEX_API void psmode(const char *copt) KOLVEX_NOEXCEPT;

/* PDF driver */
KOLVEX_API int pdfbuf(unsigned char *cbuf, int nmax) KOLVEX_NOEXCEPT;
KOLVEX_API void pdfmrk(const char *cstr, const char *copt) KOLVEX_NOEXCEPT;

/* Colours */
KOLVEX_API void clrcyc(int index, int iclr) KOLVEX_NOEXCEPT;
KOLVEX_API void color(const char *col) KOLVEX_NOEXCEPT;
KOLVEX_API int getclr(void) KOLVEX_NOEXCEPT;
KOLVEX_API void getind(int i, double *xr, double *xg, double *xb) KOLVEX_NOEXCEPT;
KOLVEX_API void getrgb(double *xr, double *xg, double *xb) KOLVEX_NOEXCEPT;
KOLVEX_API const char *getvlt(void) KOLVEX_NOEXCEPT;
KOLVEX_API void hsvrgb(double xh, double xs, double xv, double *xr, double *xg, double *xb) KOLVEX_NOEXCEPT;
KOLVEX_API int indrgb(double xr, double xg, double xb) KOLVEX_NOEXCEPT;
KOLVEX_API int intrgb(double xr, double xg, double xb) KOLVEX_NOEXCEPT;
KOLVEX_API void lincyc(int index, int ityp) KOLVEX_NOEXCEPT;
KOLVEX_API void myvlt(const double *xr, const double *xg, const double *xb, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void revscr(void) KOLVEX_NOEXCEPT;
KOLVEX_API void rgbhsv(double xr, double xg, double xb, double *xh, double *xs, double *xv) KOLVEX_NOEXCEPT;
KOLVEX_API void setclr(int ncol) KOLVEX_NOEXCEPT;
KOLVEX_API void setind(int i, double xr, double xg, double xb) KOLVEX_NOEXCEPT;
KOLVEX_API void setrgb(double xr, double xg, double xb) KOLVEX_NOEXCEPT;
KOLVEX_API void setvlt(const char *ctab) KOLVEX_NOEXCEPT;
KOLVEX_API void vltfil(const char *cfl, const char *copt) KOLVEX_NOEXCEPT;

/* Raster canvas, image mode and transparency */
KOLVEX_API void imgbox(int nx, int ny, int nw, int nh) KOLVEX_NOEXCEPT;
KOLVEX_API void imgclp(int nx, int ny, int nw, int nh) KOLVEX_NOEXCEPT;
KOLVEX_API void imgfin(void) KOLVEX_NOEXCEPT;
KOLVEX_API void imgini(void) KOLVEX_NOEXCEPT;
KOLVEX_API void imgmod(const char *cmode) KOLVEX_NOEXCEPT;
KOLVEX_API void imgsiz(int nw, int nh) KOLVEX_NOEXCEPT;
KOLVEX_API void imgtpr(int nclr) KOLVEX_NOEXCEPT;
KOLVEX_API void rimage(const char *cfl) KOLVEX_NOEXCEPT;
KOLVEX_API void rpixel(int ix, int iy, int *iclr) KOLVEX_NOEXCEPT;
KOLVEX_API void rpixls(unsigned char *iray, int ix, int iy, int nw, int nh) KOLVEX_NOEXCEPT;
KOLVEX_API void rpxrow(unsigned char *iray, int ix, int iy, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void tprfin(void) KOLVEX_NOEXCEPT;
KOLVEX_API void tprini(void) KOLVEX_NOEXCEPT;
KOLVEX_API void tprmod(const char *cmode, const char *ckey) KOLVEX_NOEXCEPT;
KOLVEX_API void tprval(double xalph) KOLVEX_NOEXCEPT;
KOLVEX_API void wimage(const char *cfl) KOLVEX_NOEXCEPT;
KOLVEX_API void wpixel(int ix, int iy, int iclr) KOLVEX_NOEXCEPT;
KOLVEX_API void wpixls(const unsigned char *iray, int ix, int iy, int nw, int nh) KOLVEX_NOEXCEPT;
KOLVEX_API void wpxrow(const unsigned char *iray, int ix, int iy, int n) KOLVEX_NOEXCEPT;

/* Raster file writers */
KOLVEX_API int rbfpng(unsigned char *cbuf, int nmax) KOLVEX_NOEXCEPT;
KOLVEX_API void tiforg(int nx, int ny) KOLVEX_NOEXCEPT;
KOLVEX_API void tifwin(int nx, int ny, int nw, int nh) KOLVEX_NOEXCEPT;
KOLVEX_API void wtiff(const char *cfl) KOLVEX_NOEXCEPT;

/* Line styles */
KOLVEX_API void chndot(void) KOLVEX_NOEXCEPT;
KOLVEX_API void chndsh(void) KOLVEX_NOEXCEPT;
KOLVEX_API void dash(void) KOLVEX_NOEXCEPT;
KOLVEX_API void dashl(void) KOLVEX_NOEXCEPT;
KOLVEX_API void dashm(void) KOLVEX_NOEXCEPT;
KOLVEX_API void dot(void) KOLVEX_NOEXCEPT;
KOLVEX_API void dotl(void) KOLVEX_NOEXCEPT;
KOLVEX_API void linclr(const int *nray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void line(int nx1, int ny1, int nx2, int ny2) KOLVEX_NOEXCEPT;
KOLVEX_API void lintyp(int ityp) KOLVEX_NOEXCEPT;
KOLVEX_API void myline(const int *nray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void solid(void) KOLVEX_NOEXCEPT;
KOLVEX_API int getlin(void) KOLVEX_NOEXCEPT;
KOLVEX_API int gettyp(void) KOLVEX_NOEXCEPT;

/* Area fill, polygon clipping and patterns */
KOLVEX_API void areaf(const int *nxray, const int *nyray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void mypat(int iang, int itype, int idens, int icross) KOLVEX_NOEXCEPT;
KOLVEX_API void noarln(void) KOLVEX_NOEXCEPT;
KOLVEX_API void nofill(void) KOLVEX_NOEXCEPT;
KOLVEX_API void patcyc(int index, int ipat) KOLVEX_NOEXCEPT;
KOLVEX_API int polclp(const double *xray, const double *yray, int n, double *xout, double *yout, int nmax, double xv, const char *cedge) KOLVEX_NOEXCEPT;
KOLVEX_API void recfll(int nx, int ny, int nw, int nh, int ncol) KOLVEX_NOEXCEPT;
KOLVEX_API void rectan(int nx, int ny, int nw, int nh) KOLVEX_NOEXCEPT;
KOLVEX_API void shdfac(double xfac) KOLVEX_NOEXCEPT;
KOLVEX_API void shdpat(int ipat) KOLVEX_NOEXCEPT;
KOLVEX_API void xdraw(double x, double y) KOLVEX_NOEXCEPT;
KOLVEX_API void xmove(double x, double y) KOLVEX_NOEXCEPT;
KOLVEX_API int getpat(void) KOLVEX_NOEXCEPT;
KOLVEX_API void rlarea(const double *xray, const double *yray, int n) KOLVEX_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif /* KOLVEX_H */
