/* SPDX-License-Identifier: MIT */
/* Prints tempo, beats and the sizes of the waves of a headerless 16-bit stereo file at 44,100 Hz.
 * To make one: ffmpeg -i song.mp3 -f s16le -ac 2 -ar 44100 song.raw */
#include <beatatlas/beatatlas.h>
#include <stdint.h>
#include <stdio.h>

int main(int argc, char** argv) {
    if (argc != 2) return fprintf(stderr, "usage: %s FILE\n", argv[0]), 2;
    FILE* file = fopen(argv[1], "rb");
    if (file == NULL || fseek(file, 0, SEEK_END) != 0) return perror(argv[1]), 1;
    void* session = BA_CreateConst44k((int)(ftell(file) / 4), 32, true, true, false);
    static int16_t pcm[2 * 4096];
    static float left[4096], right[4096];
    rewind(file);
    for (size_t n; (n = fread(pcm, 4, 4096, file)) > 0; BA_SetSample(session, left, right, (int)n))
        for (size_t i = 0; i < n; ++i) left[i] = pcm[2 * i], right[i] = pcm[2 * i + 1];
    static BA_WaveInfo loud[400], dots[100];
    const int bpm100 = BA_GetBpm(session);
    printf("tempo %d.%02d BPM, %d beats\n", bpm100 / 100, bpm100 % 100, BA_GetBeatNum(session));
    printf("loud %d, dots %d, zoom %d points\n", BA_GetLoudWave(session, loud, 0),
           BA_GetDotsWave(session, dots, 0), BA_GetZoomWave(session, NULL));
    BA_Release(session);
    return fclose(file);
}
