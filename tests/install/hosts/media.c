/* SPDX-License-Identifier: MIT */
/* The smallest host of a file: a second of silence in memory, and a file that is not there. */
#include <beatatlas/media.h>
#include <stdio.h>

int main(void) {
    static float silence[88200];
    BA_File* file = NULL;
    BA_File* missing = NULL;
    int status = BA_FileAnalyzeSamples(silence, 44100, 2, 44100, NULL, &file);
    int isAnalyzed = status == BA_FILE_OK && BA_TrackFrames(BA_FileTrack(file)) == 44100 &&
                     BA_FileAnalyze("none.mp3", NULL, NULL, &missing) == BA_FILE_MISSING;
    printf("media %s %s\n", BEATATLAS_VERSION, isAnalyzed ? "analyzed" : "not analyzed");
    BA_FileRelease(missing);
    BA_FileRelease(file);
    return 0;
}
