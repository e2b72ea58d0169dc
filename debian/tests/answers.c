/* SPDX-License-Identifier: MIT */
/* answers FILE: prints what libbeatatlas_media finds in a file, numbers with all their digits. */
#include <beatatlas/media.h>
#include <stdio.h>
#include <stdlib.h>

static void printBeats(const BA_Track* track) {
    size_t count = BA_TrackBeats(track, NULL, 0);
    BA_TrackBeat* beats = malloc(count * sizeof *beats + 1);
    if (beats == NULL) exit(1);
    BA_TrackBeats(track, beats, count);
    for (size_t i = 0; i < count; ++i)
        printf("beat %.17g %d\n", beats[i].seconds, (int)beats[i].number_in_bar);
    free(beats);
}

static void printKeys(const BA_Track* track) {
    BA_TrackKeyCandidate keys[24];
    size_t count = BA_TrackKeyRanking(track, keys, 24);
    for (size_t i = 0; i < count; ++i)
        printf("key %d %.17g\n", (int)keys[i].key, keys[i].probability);
}

static void printWave(const BA_Track* track) {
    size_t count = BA_TrackWave(track, BA_TRACK_WAVE_LOUD, NULL, 0);
    BA_WaveInfo* points = malloc(count * sizeof *points + 1);
    if (points == NULL) exit(1);
    BA_TrackWave(track, BA_TRACK_WAVE_LOUD, points, count);
    for (size_t i = 0; i < count; ++i) printf("loud %.17g\n", (double)points[i].level);
    free(points);
}

int main(int argc, char** argv) {
    if (argc != 2) return fprintf(stderr, "usage: %s FILE\n", argv[0]), 2;
    BA_File* file;
    if (BA_FileAnalyze(argv[1], NULL, NULL, &file) != BA_FILE_OK) {
        fprintf(stderr, "%s %s\n", argv[1], BA_FileReason(file));
        BA_FileRelease(file);
        return 1;
    }
    const BA_Track* track = BA_FileTrack(file);
    printf("tempo %.17g\n", BA_TrackBpm(track));
    printBeats(track);
    printKeys(track);
    printWave(track);
    BA_FileRelease(file);
    return 0;
}
