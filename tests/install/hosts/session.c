/* SPDX-License-Identifier: MIT */
/* The smallest host of a session: one frame of silence, and the version it was compiled with. */
#include <beatatlas/beatatlas.h>
#include <stdio.h>

#if BEATATLAS_VERSION_NUMBER !=                                                                    \
    BEATATLAS_VERSION_MAJOR * 10000 + BEATATLAS_VERSION_MINOR * 100 + BEATATLAS_VERSION_PATCH
#error "the version's number is not made of its parts"
#endif

int main(void) {
    float silence[1] = {0};
    void* session = BA_CreateConst44k(1, 32, true, true, false);
    BA_SetSample(session, silence, silence, 1);
    printf("session %s %s\n", BEATATLAS_VERSION,
           BA_Analyzed(session) ? "analyzed" : "not analyzed");
    BA_Release(session);
    return 0;
}
