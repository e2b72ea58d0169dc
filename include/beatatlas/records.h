/* SPDX-License-Identifier: MIT */
/** @file
 *  The records that cross the interface. Both interface headers include this file; a host need not.
 *
 *  Their layout is fixed for the life of the library: 32-bit fields, 4-byte alignment, no
 *  padding. */
#ifndef BEATATLAS_RECORDS_H
#define BEATATLAS_RECORDS_H

// C reads this as well: NOLINTBEGIN(modernize-deprecated-headers, modernize-use-using)
#include <stddef.h>
#include <stdint.h>

/** One beat of the final grid. 12 bytes. */
typedef struct BA_BeatInfo {
    int32_t pos;     /**< offset 0: frames from the first fed frame, at the session's rate */
    int32_t beatNum; /**< offset 4: number within the bar, from 1 (the downbeat) to beats per bar */
    int32_t bpm;     /**< offset 8: local tempo in hundredths of a BPM; 12850 is 128.50 BPM */
} BA_BeatInfo;

/** One point of a waveform overview. 8 bytes. What level and color mean is described at each wave's
 *  getter. */
typedef struct BA_WaveInfo {
    float level;   /**< offset 0: height of the point */
    int32_t color; /**< offset 4: colour class of the point */
} BA_WaveInfo;
// NOLINTEND(modernize-deprecated-headers, modernize-use-using)

#if defined(__cplusplus)
static_assert(sizeof(BA_BeatInfo) == 12 && alignof(BA_BeatInfo) == 4, "layout of BA_BeatInfo");
static_assert(offsetof(BA_BeatInfo, pos) == 0 && offsetof(BA_BeatInfo, beatNum) == 4 &&
                  offsetof(BA_BeatInfo, bpm) == 8,
              "field order of BA_BeatInfo");
static_assert(sizeof(BA_WaveInfo) == 8 && alignof(BA_WaveInfo) == 4, "layout of BA_WaveInfo");
static_assert(offsetof(BA_WaveInfo, level) == 0 && offsetof(BA_WaveInfo, color) == 4,
              "field order of BA_WaveInfo");
#endif

#endif
