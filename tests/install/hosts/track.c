/* SPDX-License-Identifier: MIT */
/* The smallest host of a whole track: one second of silence and the version it was compiled with. */
#include <beatatlas/track.h>
#include <stdio.h>

int main(void) {
    static float silence[44100];
    BA_Track* track;
    int status = BA_TrackAnalyzeArrays(NULL, 44100, silence, silence, 44100, &track);
    printf("track %s %s\n", BEATATLAS_VERSION, status == BA_TRACK_OK ? "analyzed" : "not analyzed");
    BA_TrackRelease(track);
    return 0;
}
