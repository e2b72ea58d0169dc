/* SPDX-License-Identifier: MIT */
/* The plain header as C99 sees it, alone and first, and the layout a C host relies on. */
#include "beatatlas/beatatlas.h"

#define BA_CHECK(name, condition) typedef char name[(condition) ? 1 : -1]
BA_CHECK(beat_size, sizeof(BA_BeatInfo) == 12);
BA_CHECK(beat_num_offset, offsetof(BA_BeatInfo, beatNum) == 4);
BA_CHECK(beat_bpm_offset, offsetof(BA_BeatInfo, bpm) == 8);
BA_CHECK(wave_size, sizeof(BA_WaveInfo) == 8);
BA_CHECK(wave_color_offset, offsetof(BA_WaveInfo, color) == 4);

void* beatatlas_header_check(void) {
    return BA_Create48k(1, 0, false, false, false);
}
