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
KOLVEX_API void paghdr(const char *cstr1, const char *cstr2, int iopt, int idir) KOLVEX_NOEXCEPT;
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
KOLVEX_API void getclp(int *nx, int *ny, int *nw, int *nh) KOLVEX_NOEXCEPT;
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

/* Native metafile and its inclusion */
KOLVEX_API void filbox(int nx, int ny, int nw, int nh) KOLVEX_NOEXCEPT;
KOLVEX_API void filclr(const char *cmode) KOLVEX_NOEXCEPT;
KOLVEX_API void filwin(int nx, int ny, int nw, int nh) KOLVEX_NOEXCEPT;
KOLVEX_API void incfil(const char *cfil) KOLVEX_NOEXCEPT;

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

/* Stroke fonts and text drawing */
KOLVEX_API void angle(int ngrad) KOLVEX_NOEXCEPT;
KOLVEX_API void chaang(double xang) KOLVEX_NOEXCEPT;
KOLVEX_API void chaspc(double xspc) KOLVEX_NOEXCEPT;
KOLVEX_API void chawth(double xwth) KOLVEX_NOEXCEPT;
KOLVEX_API void complx(void) KOLVEX_NOEXCEPT;
KOLVEX_API void duplx(void) KOLVEX_NOEXCEPT;
KOLVEX_API void fixspc(double xfac) KOLVEX_NOEXCEPT;
KOLVEX_API void frmess(int nfrm) KOLVEX_NOEXCEPT;
KOLVEX_API int getang(void) KOLVEX_NOEXCEPT;
KOLVEX_API int gethgt(void) KOLVEX_NOEXCEPT;
KOLVEX_API void gothic(void) KOLVEX_NOEXCEPT;
KOLVEX_API void height(int nhchar) KOLVEX_NOEXCEPT;
KOLVEX_API void helve(void) KOLVEX_NOEXCEPT;
KOLVEX_API void helves(void) KOLVEX_NOEXCEPT;
KOLVEX_API void helvet(void) KOLVEX_NOEXCEPT;
KOLVEX_API void kolalf(void) KOLVEX_NOEXCEPT;
KOLVEX_API void linesp(double xfac) KOLVEX_NOEXCEPT;
KOLVEX_API void messag(const char *cstr, int nx, int ny) KOLVEX_NOEXCEPT;
KOLVEX_API void mixalf(void) KOLVEX_NOEXCEPT;
KOLVEX_API void newmix(void) KOLVEX_NOEXCEPT;
KOLVEX_API int nlmess(const char *cstr) KOLVEX_NOEXCEPT;
KOLVEX_API void rlmess(const char *cstr, double xp, double yp) KOLVEX_NOEXCEPT;
KOLVEX_API void serif(void) KOLVEX_NOEXCEPT;
KOLVEX_API void setbas(double xfac) KOLVEX_NOEXCEPT;
KOLVEX_API void setexp(double fexp) KOLVEX_NOEXCEPT;
KOLVEX_API void setmix(const char *cchar, const char *cmix) KOLVEX_NOEXCEPT;
KOLVEX_API void shdcha(void) KOLVEX_NOEXCEPT;
KOLVEX_API void simplx(void) KOLVEX_NOEXCEPT;
KOLVEX_API void triplx(void) KOLVEX_NOEXCEPT;
KOLVEX_API void txtbgd(int nclr) KOLVEX_NOEXCEPT;
KOLVEX_API void txtjus(const char *copt) KOLVEX_NOEXCEPT;

/* Alphabets, encodings and instruction characters */
KOLVEX_API void basalf(const char *calph) KOLVEX_NOEXCEPT;
KOLVEX_API void chacod(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void eushft(const char *cnat, const char *cshf) KOLVEX_NOEXCEPT;
KOLVEX_API const char *getalf(void) KOLVEX_NOEXCEPT;
KOLVEX_API const char *getmix(const char *cmix) KOLVEX_NOEXCEPT;
KOLVEX_API const char *getshf(const char *cnat) KOLVEX_NOEXCEPT;
KOLVEX_API void gmxalf(const char *calph, char *c1, char *c2, int *n) KOLVEX_NOEXCEPT;
KOLVEX_API int intutf(const int *iray, int nray, char *cstr, int nmax) KOLVEX_NOEXCEPT;
KOLVEX_API void smxalf(const char *calph, const char *c1, const char *c2, int n) KOLVEX_NOEXCEPT;
KOLVEX_API int utfint(const char *cstr, int *iray, int nray) KOLVEX_NOEXCEPT;

/* TeX mode */
KOLVEX_API void texmod(const char *cmode) KOLVEX_NOEXCEPT;
KOLVEX_API void texopt(const char *copt, const char *ctype) KOLVEX_NOEXCEPT;
KOLVEX_API void texval(double xval, const char *copt) KOLVEX_NOEXCEPT;

/* Numbers as text */
KOLVEX_API void fcha(double x, int ndig, char *cstr) KOLVEX_NOEXCEPT;
KOLVEX_API int flen(double x, int ndig) KOLVEX_NOEXCEPT;
KOLVEX_API void intcha(int nint, char *cstr) KOLVEX_NOEXCEPT;
KOLVEX_API int intlen(int nint) KOLVEX_NOEXCEPT;
KOLVEX_API int nlnumb(double x, int ndig) KOLVEX_NOEXCEPT;
KOLVEX_API void number(double x, int ndig, int nx, int ny) KOLVEX_NOEXCEPT;
KOLVEX_API void numfmt(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void numode(const char *cdec, const char *cgrp, const char *cpos, const char *cfix) KOLVEX_NOEXCEPT;
KOLVEX_API void rlnumb(double x, int ndig, double xp, double yp) KOLVEX_NOEXCEPT;
KOLVEX_API int trmlen(const char *cstr) KOLVEX_NOEXCEPT;

/* Axis scaling */
KOLVEX_API void axsbgd(int iclr) KOLVEX_NOEXCEPT;
KOLVEX_API void axsers(void) KOLVEX_NOEXCEPT;
KOLVEX_API void axslen(int nxl, int nyl) KOLVEX_NOEXCEPT;
KOLVEX_API void axsorg(int nx, int ny) KOLVEX_NOEXCEPT;
KOLVEX_API void axspos(int nxa, int nya) KOLVEX_NOEXCEPT;
KOLVEX_API void axsscl(const char *cscl, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void digits(int ndig, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void gaxpar(double a1, double a2, const char *copt, const char *cax, double *a, double *e, double *orl, double *step, int *ndig) KOLVEX_NOEXCEPT;
KOLVEX_API void getdig(int *nx, int *ny, int *nz) KOLVEX_NOEXCEPT;
KOLVEX_API void getgrf(double *a, double *e, double *orl, double *step, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void getlab(char *cx, char *cy, char *cz) KOLVEX_NOEXCEPT;
KOLVEX_API void getlen(int *nx, int *ny, int *nz) KOLVEX_NOEXCEPT;
KOLVEX_API void getor(int *nx, int *ny) KOLVEX_NOEXCEPT;
KOLVEX_API void getpos(int *nxa, int *nya) KOLVEX_NOEXCEPT;
KOLVEX_API void getran(int *nca, int *nce) KOLVEX_NOEXCEPT;
KOLVEX_API void getres(int *nx, int *ny) KOLVEX_NOEXCEPT;
KOLVEX_API void getscl(int *nx, int *ny, int *nz) KOLVEX_NOEXCEPT;
KOLVEX_API void getscm(int *nx, int *ny, int *nz) KOLVEX_NOEXCEPT;
KOLVEX_API void gettic(int *nx, int *ny, int *nz) KOLVEX_NOEXCEPT;
KOLVEX_API void intax(void) KOLVEX_NOEXCEPT;
KOLVEX_API void labdig(int ndig, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void neglog(double eps) KOLVEX_NOEXCEPT;
KOLVEX_API int nxpixl(int ix, int iy) KOLVEX_NOEXCEPT;
KOLVEX_API int nxposn(double x) KOLVEX_NOEXCEPT;
KOLVEX_API int nypixl(int ix, int iy) KOLVEX_NOEXCEPT;
KOLVEX_API int nyposn(double y) KOLVEX_NOEXCEPT;
KOLVEX_API int nzposn(double z) KOLVEX_NOEXCEPT;
KOLVEX_API void origin(int nx, int ny) KOLVEX_NOEXCEPT;
KOLVEX_API void scale(const char *cscl, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void setscl(const double *ray, int n, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API double xinvrs(int nx) KOLVEX_NOEXCEPT;
KOLVEX_API double xposn(double x) KOLVEX_NOEXCEPT;
KOLVEX_API double yinvrs(int ny) KOLVEX_NOEXCEPT;
KOLVEX_API double yposn(double y) KOLVEX_NOEXCEPT;

/* Axis drawing and labels */
KOLVEX_API void addlab(const char *cstr, double v, int itic, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void ax2grf(void) KOLVEX_NOEXCEPT;
KOLVEX_API void axclrs(int nclr, const char *copt, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void axends(const char *ckey, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void axgit(void) KOLVEX_NOEXCEPT;
KOLVEX_API void axstyp(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void center(void) KOLVEX_NOEXCEPT;
KOLVEX_API void endgrf(void) KOLVEX_NOEXCEPT;
KOLVEX_API void expzlb(const char *cstr) KOLVEX_NOEXCEPT;
KOLVEX_API void frame(int nfrm) KOLVEX_NOEXCEPT;
KOLVEX_API void frmclr(int nclr) KOLVEX_NOEXCEPT;
KOLVEX_API int gethnm(void) KOLVEX_NOEXCEPT;
KOLVEX_API void getsp1(int *nxdis, int *nydis, int *nzdis) KOLVEX_NOEXCEPT;
KOLVEX_API void getsp2(int *nxdis, int *nydis, int *nzdis) KOLVEX_NOEXCEPT;
KOLVEX_API void gettcl(int *nmaj, int *nmin) KOLVEX_NOEXCEPT;
KOLVEX_API void grace(int ngrace) KOLVEX_NOEXCEPT;
KOLVEX_API void graf(double xa, double xe, double xor_, double xstp, double ya, double ye, double yor, double ystp) KOLVEX_NOEXCEPT;
KOLVEX_API void grid(int igrid, int jgrid) KOLVEX_NOEXCEPT;
KOLVEX_API void hname(int nh) KOLVEX_NOEXCEPT;
KOLVEX_API void htitle(int nh) KOLVEX_NOEXCEPT;
KOLVEX_API void labclr(int nclr, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void labdis(int ndis, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void labels(const char *clab, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void labjus(const char *cjus, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void labpos(const char *cpos, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void labtyp(const char *ctyp, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void lfttit(void) KOLVEX_NOEXCEPT;
KOLVEX_API void logtic(const char *cmod) KOLVEX_NOEXCEPT;
KOLVEX_API void mylab(const char *cstr, int itick, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void namdis(int ndis, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void name(const char *cstr, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void namjus(const char *cjus, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void nograf(void) KOLVEX_NOEXCEPT;
KOLVEX_API void noline(const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void rgtlab(void) KOLVEX_NOEXCEPT;
KOLVEX_API void rvynam(void) KOLVEX_NOEXCEPT;
KOLVEX_API void setgrf(const char *c1, const char *c2, const char *c3, const char *c4) KOLVEX_NOEXCEPT;
KOLVEX_API void ticks(int ntic, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void ticlen(int nmaj, int nmin) KOLVEX_NOEXCEPT;
KOLVEX_API void ticpos(const char *cpos, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void titjus(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void title(void) KOLVEX_NOEXCEPT;
KOLVEX_API void titlin(const char *cstr, int nlin) KOLVEX_NOEXCEPT;
KOLVEX_API void titpos(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void vkytit(int nshift) KOLVEX_NOEXCEPT;
KOLVEX_API void xaxgit(void) KOLVEX_NOEXCEPT;
KOLVEX_API void xaxis(double a, double e, double orl, double step, int nl, const char *cstr, int it, int nx, int ny) KOLVEX_NOEXCEPT;
KOLVEX_API void xaxlg(double a, double e, double orl, double step, int nl, const char *cstr, int it, int nx, int ny) KOLVEX_NOEXCEPT;
KOLVEX_API void yaxgit(void) KOLVEX_NOEXCEPT;
KOLVEX_API void yaxis(double a, double e, double orl, double step, int nl, const char *cstr, int it, int nx, int ny) KOLVEX_NOEXCEPT;
KOLVEX_API void yaxlg(double a, double e, double orl, double step, int nl, const char *cstr, int it, int nx, int ny) KOLVEX_NOEXCEPT;
KOLVEX_API void zaxis(double a, double e, double orl, double step, int nl, const char *cstr, int it, int ndir, int nx, int ny) KOLVEX_NOEXCEPT;
KOLVEX_API void zaxlg(double a, double e, double orl, double step, int nl, const char *cstr, int it, int ndir, int nx, int ny) KOLVEX_NOEXCEPT;

/* Curves and interpolation */
KOLVEX_API void barwth(double xf) KOLVEX_NOEXCEPT;
KOLVEX_API void bartyp(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void bezier(const double *xray, const double *yray, int n, double *x, double *y, int m) KOLVEX_NOEXCEPT;
KOLVEX_API void chnatt(void) KOLVEX_NOEXCEPT;
KOLVEX_API void chncrv(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void curve(const double *xray, const double *yray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void curvx3(const double *xray, double y, const double *zray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void curvy3(double x, const double *yray, const double *zray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void errbar(const double *x, const double *y, const double *err1, const double *err2, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void gapcrv(double xgap) KOLVEX_NOEXCEPT;
KOLVEX_API void gapsiz(double xgap, const char *cax) KOLVEX_NOEXCEPT;
KOLVEX_API void getsym(int *nsym, int *nhsym) KOLVEX_NOEXCEPT;
KOLVEX_API int histog(const double *xray, int n, double *x, double *y) KOLVEX_NOEXCEPT;
KOLVEX_API void hsymbl(int nhsym) KOLVEX_NOEXCEPT;
KOLVEX_API void inccrv(int ncrv) KOLVEX_NOEXCEPT;
KOLVEX_API void incmrk(int nmrk) KOLVEX_NOEXCEPT;
KOLVEX_API void linfit(const double *xray, const double *yray, int n, double *a, double *b, double *r, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void marker(int nsym) KOLVEX_NOEXCEPT;
KOLVEX_API void mrkclr(int nclr) KOLVEX_NOEXCEPT;
KOLVEX_API void mysymb(const double *xray, const double *yray, int n, int isym, int iflag) KOLVEX_NOEXCEPT;
KOLVEX_API void polcrv(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void resatt(void) KOLVEX_NOEXCEPT;
KOLVEX_API void rlsymb(int nsym, double x, double y) KOLVEX_NOEXCEPT;
KOLVEX_API void shdcrv(const double *x1ray, const double *y1ray, int n1, const double *x2ray, const double *y2ray, int n2) KOLVEX_NOEXCEPT;
KOLVEX_API int spline(const double *xray, const double *yray, int n, double *xsray, double *ysray) KOLVEX_NOEXCEPT;
KOLVEX_API void splmod(int ngrad, int npts) KOLVEX_NOEXCEPT;
KOLVEX_API void symbol(int nsym, int nx, int ny) KOLVEX_NOEXCEPT;
KOLVEX_API void symrot(double xrot) KOLVEX_NOEXCEPT;
KOLVEX_API void thkcrv(int ithk) KOLVEX_NOEXCEPT;

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

/* Legends */
KOLVEX_API void legbgd(int nclr) KOLVEX_NOEXCEPT;
KOLVEX_API void legclr(void) KOLVEX_NOEXCEPT;
KOLVEX_API void legend(const char *cbuf, int npos) KOLVEX_NOEXCEPT;
KOLVEX_API void legini(char *cbuf, int nlin, int nmaxln) KOLVEX_NOEXCEPT;
KOLVEX_API void leglin(char *cbuf, const char *cstr, int ilin) KOLVEX_NOEXCEPT;
KOLVEX_API void legopt(double xf1, double xf2, double xf3) KOLVEX_NOEXCEPT;
KOLVEX_API void legpat(int ityp, int ithk, int isym, int iclr, int ipat, int ilin) KOLVEX_NOEXCEPT;
KOLVEX_API void legpos(int nx, int ny) KOLVEX_NOEXCEPT;
KOLVEX_API void legsel(const int *nray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void legtbl(int nclm, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void legtit(const char *ctit) KOLVEX_NOEXCEPT;
KOLVEX_API void legtyp(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void legval(double x, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void mixleg(void) KOLVEX_NOEXCEPT;
KOLVEX_API int nxlegn(const char *cbuf) KOLVEX_NOEXCEPT;
KOLVEX_API int nylegn(const char *cbuf) KOLVEX_NOEXCEPT;

/* Bars */
KOLVEX_API void barbor(int iclr) KOLVEX_NOEXCEPT;
KOLVEX_API void barclr(int ic1, int ic2, int ic3) KOLVEX_NOEXCEPT;
KOLVEX_API void bargrp(int ngrp, double gap) KOLVEX_NOEXCEPT;
KOLVEX_API void barmod(const char *cmode, const char *ckey) KOLVEX_NOEXCEPT;
KOLVEX_API void baropt(double xf, double angle) KOLVEX_NOEXCEPT;
KOLVEX_API void barpos(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void bars(double *xray, double *y1ray, const double *y2ray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void bars3d(const double *xray, const double *yray, const double *z1ray, const double *z2ray, const double *xwray, const double *ywray, const int *icray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void chnbar(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void fbars(const double *xray, const double *y1ray, const double *y2ray, const double *y3ray, const double *y4ray, int n) KOLVEX_NOEXCEPT;

/* Pies */
KOLVEX_API void chnpie(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void piebor(int nclr) KOLVEX_NOEXCEPT;
KOLVEX_API void piecbk(void (*callback)(int, double, double, int *, int *, double *, int *, int *, int *, int *)) KOLVEX_NOEXCEPT;
KOLVEX_API void pieclr(const int *nc1ray, const int *nc2ray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void pieexp(void) KOLVEX_NOEXCEPT;
KOLVEX_API void piegrf(const char *cbuf, int nlin, const double *xray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void pielab(const char *clab, const char *cpos) KOLVEX_NOEXCEPT;
KOLVEX_API void pieopt(double xf, double angle) KOLVEX_NOEXCEPT;
KOLVEX_API void pierot(double xrot) KOLVEX_NOEXCEPT;
KOLVEX_API void pietyp(const char *ctyp) KOLVEX_NOEXCEPT;
KOLVEX_API void pieval(double x, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void pievec(int ivec, const char *copt) KOLVEX_NOEXCEPT;

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

/* Shielding */
KOLVEX_API void shield(const char *cblank, const char *cmode) KOLVEX_NOEXCEPT;
KOLVEX_API void shlcir(int nx, int ny, int nr) KOLVEX_NOEXCEPT;
KOLVEX_API void shldel(int id) KOLVEX_NOEXCEPT;
KOLVEX_API void shlell(int nx, int ny, int na, int nb, double angle) KOLVEX_NOEXCEPT;
KOLVEX_API int shlind(void) KOLVEX_NOEXCEPT;
KOLVEX_API void shlpie(int nx, int ny, int nr, double alpha, double beta) KOLVEX_NOEXCEPT;
KOLVEX_API void shlpol(const int *nxray, const int *nyray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void shlrct(int nx, int ny, int nw, int nh, double angle) KOLVEX_NOEXCEPT;
KOLVEX_API void shlrec(int nx, int ny, int nw, int nh) KOLVEX_NOEXCEPT;
KOLVEX_API void shlres(int n) KOLVEX_NOEXCEPT;
KOLVEX_API void shlsur(void) KOLVEX_NOEXCEPT;
KOLVEX_API void shlvis(int id, const char *cvis) KOLVEX_NOEXCEPT;

/* Geometric figures */
KOLVEX_API void arcell(int nx, int ny, int na, int nb, double alpha, double beta, double theta) KOLVEX_NOEXCEPT;
KOLVEX_API void circ3p(double x1, double y1, double x2, double y2, double x3, double y3, double *xm, double *ym, double *r) KOLVEX_NOEXCEPT;
KOLVEX_API void circle(int nx, int ny, int nr) KOLVEX_NOEXCEPT;
KOLVEX_API void circsp(int nspc) KOLVEX_NOEXCEPT;
KOLVEX_API void connpt(double x, double y) KOLVEX_NOEXCEPT;
KOLVEX_API void ellips(int nx, int ny, int na, int nb) KOLVEX_NOEXCEPT;
KOLVEX_API void pie(int nx, int ny, int nr, double alpha, double beta) KOLVEX_NOEXCEPT;
KOLVEX_API void point(int nx, int ny, int nb, int nh, int ncol) KOLVEX_NOEXCEPT;
KOLVEX_API void rlarc(double x, double y, double a, double bb, double alpha, double beta, double theta) KOLVEX_NOEXCEPT;
KOLVEX_API void rlcirc(double x, double y, double r) KOLVEX_NOEXCEPT;
KOLVEX_API void rlconn(double x, double y) KOLVEX_NOEXCEPT;
KOLVEX_API void rlell(double x, double y, double a, double bb) KOLVEX_NOEXCEPT;
KOLVEX_API void rline(double x1, double y1, double x2, double y2) KOLVEX_NOEXCEPT;
KOLVEX_API void rlpie(double x, double y, double r, double alpha, double beta) KOLVEX_NOEXCEPT;
KOLVEX_API void rlpoin(double x, double y, int nw, int nh, int ncol) KOLVEX_NOEXCEPT;
KOLVEX_API void rlrec(double x, double y, double w, double h) KOLVEX_NOEXCEPT;
KOLVEX_API void rlrnd(double x, double y, double w, double h, int iopt) KOLVEX_NOEXCEPT;
KOLVEX_API void rlsec(double x, double y, double r1, double r2, double alpha, double beta, int ncol) KOLVEX_NOEXCEPT;
KOLVEX_API void rlstrt(double x, double y) KOLVEX_NOEXCEPT;
KOLVEX_API void rlwind(double xvel, double x, double y, int nw, double angle) KOLVEX_NOEXCEPT;
KOLVEX_API void rndrec(int nx, int ny, int nw, int nh, int iopt) KOLVEX_NOEXCEPT;
KOLVEX_API void sector(int nx, int ny, int nr1, int nr2, double alpha, double beta, int ncol) KOLVEX_NOEXCEPT;
KOLVEX_API void strtpt(double x, double y) KOLVEX_NOEXCEPT;
KOLVEX_API void windbr(double xvel, int nx, int ny, int nw, double angle) KOLVEX_NOEXCEPT;

/* Contour lines */
KOLVEX_API void conclr(const int *nclray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void concrv(const double *xray, const double *yray, int n, double zlev) KOLVEX_NOEXCEPT;
KOLVEX_API void congap(double xfac) KOLVEX_NOEXCEPT;
KOLVEX_API void conlab(const char *ctext) KOLVEX_NOEXCEPT;
KOLVEX_API void conmat(const double *zmat, int n, int m, double zlev) KOLVEX_NOEXCEPT;
KOLVEX_API void conmod(double xfac, double xquot) KOLVEX_NOEXCEPT;
KOLVEX_API void conpts(const double *xray, int n, const double *yray, int m, const double *zmat, double zlev, double *xpts, double *ypts, int maxpts, int *nptray, int maxlin, int *nlins) KOLVEX_NOEXCEPT;
KOLVEX_API void contur2(const double *xmat, const double *ymat, const double *zmat, int n, int m, double zlev) KOLVEX_NOEXCEPT;
KOLVEX_API void contur(const double *xray, int n, const double *yray, int m, const double *zmat, double zlev) KOLVEX_NOEXCEPT;

/* Colour matrix plots */
KOLVEX_API void autres(int ixdim, int iydim) KOLVEX_NOEXCEPT;
KOLVEX_API void autres3d(int ix, int iy, int iz) KOLVEX_NOEXCEPT;
KOLVEX_API void ax3len(int nxl, int nyl, int nzl) KOLVEX_NOEXCEPT;
KOLVEX_API void colran(int nca, int nce) KOLVEX_NOEXCEPT;
KOLVEX_API void colray(const double *zray, int *icray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void crvmat(const double *zmat, int n, int m, int ixpts, int iypts) KOLVEX_NOEXCEPT;
KOLVEX_API void crvqdr(const double *xray, const double *yray, const double *zray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void crvtri(const double *xray, const double *yray, const double *zray, int n, const int *i1ray, const int *i2ray, const int *i3ray, int ntri) KOLVEX_NOEXCEPT;
KOLVEX_API void curve3(const double *xray, const double *yray, const double *zray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void frmbar(int nfrm) KOLVEX_NOEXCEPT;
KOLVEX_API void getmat(const double *xray, const double *yray, const double *zray, int n, double *zmat, int nx, int ny, double zval, int *imat, double *wmat) KOLVEX_NOEXCEPT;
KOLVEX_API void getvk(int *nytit, int *nxbar, int *nybar) KOLVEX_NOEXCEPT;
KOLVEX_API int getwid(void) KOLVEX_NOEXCEPT;
KOLVEX_API void graf3(double xa, double xe, double xor_, double xstp, double ya, double ye, double yor, double ystp, double za, double ze, double zor, double zstp) KOLVEX_NOEXCEPT;
KOLVEX_API void hsym3d(double xh) KOLVEX_NOEXCEPT;
KOLVEX_API void jusbar(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void mdfmat(int ix, int iy, double weight) KOLVEX_NOEXCEPT;
KOLVEX_API void nobar(void) KOLVEX_NOEXCEPT;
KOLVEX_API void nobgd(void) KOLVEX_NOEXCEPT;
KOLVEX_API void posbar(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void setres(int npb, int npy) KOLVEX_NOEXCEPT;
KOLVEX_API void setres3d(double xl, double yl, double zl) KOLVEX_NOEXCEPT;
KOLVEX_API void spcbar(int nspc) KOLVEX_NOEXCEPT;
KOLVEX_API void vkxbar(int nshift) KOLVEX_NOEXCEPT;
KOLVEX_API void vkybar(int nshift) KOLVEX_NOEXCEPT;
KOLVEX_API void widbar(int nwid) KOLVEX_NOEXCEPT;
KOLVEX_API void thkc3d(double xthk) KOLVEX_NOEXCEPT;

/* 3-D axis system and projection */
KOLVEX_API void abs3pt(double x, double y, double z, double *xp, double *yp) KOLVEX_NOEXCEPT;
KOLVEX_API void axis3d(double x, double y, double z) KOLVEX_NOEXCEPT;
KOLVEX_API void box2d(void) KOLVEX_NOEXCEPT;
KOLVEX_API void box3d(void) KOLVEX_NOEXCEPT;
KOLVEX_API void clip3d(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void conn3d(double x, double y, double z) KOLVEX_NOEXCEPT;
KOLVEX_API void flab3d(void) KOLVEX_NOEXCEPT;
KOLVEX_API void graf3d(double xa, double xe, double xor_, double xstp, double ya, double ye, double yor, double ystp, double za, double ze, double zor, double zstp) KOLVEX_NOEXCEPT;
KOLVEX_API void grffin(void) KOLVEX_NOEXCEPT;
KOLVEX_API void grfini(double x1, double y1, double z1, double x2, double y2, double z2, double x3, double y3, double z3) KOLVEX_NOEXCEPT;
KOLVEX_API void grid3d(int nx, int ny, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void labl3d(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void pos3pt(double x, double y, double z, double *xp, double *yp, double *zp) KOLVEX_NOEXCEPT;
KOLVEX_API void proj3d(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void rel3pt(double x, double y, double z, double *xp, double *yp) KOLVEX_NOEXCEPT;
KOLVEX_API void strt3d(double x, double y, double z) KOLVEX_NOEXCEPT;
KOLVEX_API void vang3d(double angle) KOLVEX_NOEXCEPT;
KOLVEX_API void vclp3d(double xnear, double xfar) KOLVEX_NOEXCEPT;
KOLVEX_API void vfoc3d(double x, double y, double z, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void view3d(double x, double y, double z, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void vup3d(double angle) KOLVEX_NOEXCEPT;
KOLVEX_API double x3dabs(double x, double y, double z) KOLVEX_NOEXCEPT;
KOLVEX_API double x3dpos(double x, double y, double z) KOLVEX_NOEXCEPT;
KOLVEX_API double x3drel(double x, double y, double z) KOLVEX_NOEXCEPT;
KOLVEX_API double y3dabs(double x, double y, double z) KOLVEX_NOEXCEPT;
KOLVEX_API double y3dpos(double x, double y, double z) KOLVEX_NOEXCEPT;
KOLVEX_API double y3drel(double x, double y, double z) KOLVEX_NOEXCEPT;
KOLVEX_API float z3dpos(double x, double y, double z) KOLVEX_NOEXCEPT;

/* Hidden-line surfaces */
KOLVEX_API void nohide(void) KOLVEX_NOEXCEPT;
KOLVEX_API void surclr(int ictop, int icbot) KOLVEX_NOEXCEPT;
KOLVEX_API void surfce(const double *xray, int n, const double *yray, int m, const double *zmat) KOLVEX_NOEXCEPT;
KOLVEX_API void surfun(double (*zfun)(double, double), int ixpts, double xdel, int iypts, double ydel) KOLVEX_NOEXCEPT;
KOLVEX_API void surmat(const double *zmat, int n, int m, int ixpts, int iypts) KOLVEX_NOEXCEPT;
KOLVEX_API void suropt(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void sursze(double xa, double xe, double ya, double ye) KOLVEX_NOEXCEPT;
KOLVEX_API void survis(const char *copt) KOLVEX_NOEXCEPT;

/* Z-buffer, lighting and shaded surfaces */
KOLVEX_API void dbffin(void) KOLVEX_NOEXCEPT;
KOLVEX_API int dbfini(void) KOLVEX_NOEXCEPT;
KOLVEX_API void dbfmod(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API int getlit(double xp, double yp, double zp, double xn, double yn, double zn) KOLVEX_NOEXCEPT;
KOLVEX_API void light(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void litmod(int id, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void litop3(int id, double xr, double xg, double xb, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void litopt(int id, double xval, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void litpos(int id, double x, double y, double z, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void matop3(double xr, double xg, double xb, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void matopt(double xval, const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void mshclr(int nclr) KOLVEX_NOEXCEPT;
KOLVEX_API void mshcrv(int n) KOLVEX_NOEXCEPT;
KOLVEX_API void setfce(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void shdmod(const char *copt, const char *ctype) KOLVEX_NOEXCEPT;
KOLVEX_API void surfcp(double (*zfun)(double, double, int), double pmin, double pmax, double pstp, double qmin, double qmax, double qstp) KOLVEX_NOEXCEPT;
KOLVEX_API void surmsh(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void surshc(const double *xray, int n, const double *yray, int m, const double *zmat, const double *cmat) KOLVEX_NOEXCEPT;
KOLVEX_API void surshd(const double *xray, int n, const double *yray, int m, const double *zmat) KOLVEX_NOEXCEPT;
KOLVEX_API void surtri(const double *xray, const double *yray, const double *zray, int n, const int *i1ray, const int *i2ray, const int *i3ray, int ntri) KOLVEX_NOEXCEPT;
KOLVEX_API void zbfers(void) KOLVEX_NOEXCEPT;
KOLVEX_API void zbffin(void) KOLVEX_NOEXCEPT;
KOLVEX_API int zbfini(void) KOLVEX_NOEXCEPT;
KOLVEX_API void zbflin(double x1, double y1, double z1, double x2, double y2, double z2) KOLVEX_NOEXCEPT;
KOLVEX_API void zbfmod(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void zbfres(void) KOLVEX_NOEXCEPT;
KOLVEX_API void zbfscl(double x) KOLVEX_NOEXCEPT;
KOLVEX_API void zbftri(const double *xray, const double *yray, const double *zray, const int *iclr) KOLVEX_NOEXCEPT;
KOLVEX_API void zscale(double zmin, double zmax) KOLVEX_NOEXCEPT;

/* PLY export */
KOLVEX_API void plyfin(const char *cfile, const char *cobj) KOLVEX_NOEXCEPT;
KOLVEX_API void plyini(const char *copt) KOLVEX_NOEXCEPT;

/* Map projections */
KOLVEX_API void curvmp(const double *xray, const double *yray, int n) KOLVEX_NOEXCEPT;
KOLVEX_API void grafmp(double xa, double xe, double xor_, double xstp, double ya, double ye, double yor, double ystp) KOLVEX_NOEXCEPT;
KOLVEX_API void gridmp(int nx, int ny) KOLVEX_NOEXCEPT;
KOLVEX_API void maplab(const char *copt, const char *ckey) KOLVEX_NOEXCEPT;
KOLVEX_API void mapmod(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void mapopt(const char *copt, const char *ckey) KOLVEX_NOEXCEPT;
KOLVEX_API void mappol(double xpol, double ypol) KOLVEX_NOEXCEPT;
KOLVEX_API void mapref(double ylower, double yupper) KOLVEX_NOEXCEPT;
KOLVEX_API void mapsph(double xrad) KOLVEX_NOEXCEPT;
KOLVEX_API void pos2pt(double x, double y, double *xp, double *yp) KOLVEX_NOEXCEPT;
KOLVEX_API void projct(const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API void pt2pos(double xp, double yp, double *x, double *y) KOLVEX_NOEXCEPT;
KOLVEX_API void setcbk(void (*callbk)(double *x, double *y), const char *copt) KOLVEX_NOEXCEPT;
KOLVEX_API double x2dpos(double x, double y) KOLVEX_NOEXCEPT;
KOLVEX_API void xaxmap(double a, double b, double orl, double step, const char *cname, int nt, int ny) KOLVEX_NOEXCEPT;
KOLVEX_API double y2dpos(double x, double y) KOLVEX_NOEXCEPT;
KOLVEX_API void yaxmap(double a, double b, double orl, double step, const char *cname, int nt, int nx) KOLVEX_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif /* KOLVEX_H */
