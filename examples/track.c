/* SPDX-License-Identifier: MIT */
/* Prints tempo, bars and key of a headerless 16-bit stereo file at 44,100 Hz. To make one:
 * ffmpeg -i song.mp3 -f s16le -ac 2 -ar 44100 song.raw */
#include <beatatlas/track.h>
#include <stdio.h>

static void* openPass(void* path) {
    return fopen((const char*)path, "rb");
}
static void closePass(void* path, void* pass) {
    (void)path, fclose((FILE*)pass);
}
static int64_t readPass(void* path, void* pass, float* left, float* right, int64_t frames) {
    int16_t frame[2];
    int64_t n = 0;
    for ((void)path; n < frames && fread(frame, 4, 1, (FILE*)pass) == 1; ++n)
        left[n] = frame[0] / 32768.0f, right[n] = frame[1] / 32768.0f;
    return n;
}

int main(int argc, char** argv) {
    if (argc != 2) return fprintf(stderr, "usage: %s FILE\n", argv[0]), 2;
    FILE* file = fopen(argv[1], "rb");
    if (file == NULL || fseek(file, 0, SEEK_END) != 0) return perror(argv[1]), 1;
    int64_t frames = ftell(file) / 4;
    if (frames < 1 || frames > INT32_MAX)
        return fprintf(stderr, "%s: empty, a folder or too long\n", argv[1]), 1;
    BA_TrackSource source = {sizeof source, argv[1], openPass, readPass, closePass, 0, 0};
    BA_Track* track;
    int status = BA_TrackAnalyze(NULL, 44100, frames, &source, &track);
    if (status != BA_TRACK_OK) return fprintf(stderr, "%s\n", BA_TrackStatusText(status)), 1;
    printf("tempo %.2f BPM, key %d\n", BA_TrackBpm(track), (int)BA_TrackKey(track));
    static BA_TrackBeat beats[100000];
    size_t count = BA_TrackBeats(track, beats, 100000);
    for (size_t i = 0, bar = 0; i < count && i < 100000; ++i)
        if (beats[i].number_in_bar == 1) printf("bar %zu at %.3f s\n", ++bar, beats[i].seconds);
    BA_TrackRelease(track);
    return fclose(file);
}
