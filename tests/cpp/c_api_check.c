/* A C program that uses the public header alone: it must compile as C and
 * link against the core, and a session must write its metafile. */
#include <stdio.h>

#include "kolvex.h"

int main(void) {
    int nx = 0, ny = 0;
    setfil("c_api_check.met");
    filmod("DELE");
    metafl("PLOG");
    kolini();
    getpag(&nx, &ny);
    pagera();
    kolfin();
    return (nx == 2970 && ny == 2100 && getlev() == 0) ? 0 : 1;
}
