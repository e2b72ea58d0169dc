// SPDX-License-Identifier: MIT
// The smallest host of a file: a second of silence in memory, and a file that is not there.
#include <beatatlas/media.h>

#include <cstdio>

int main() {
    static float silence[88200];
    BA_File* file = nullptr;
    BA_File* missing = nullptr;
    int status = BA_FileAnalyzeSamples(silence, 44100, 2, 44100, nullptr, &file);
    int isAnalyzed = status == BA_FILE_OK && BA_TrackFrames(BA_FileTrack(file)) == 44100 &&
                     BA_FileAnalyze("none.mp3", nullptr, nullptr, &missing) == BA_FILE_MISSING;
    std::printf("media %s %s\n", BEATATLAS_VERSION, isAnalyzed ? "analyzed" : "not analyzed");
    BA_FileRelease(missing);
    BA_FileRelease(file);
    return 0;
}
