// SPDX-License-Identifier: MIT
#pragma once

#include "beatatlas/records.h"

namespace beatatlas::test {

/** The exported functions of one interface; null where that interface lacks one. No source file can
 *  include both headers, so each set is filled in by a file of its own. */
struct ExportSet {
    using Create = void* (*)(int, int, bool, bool, bool);
    using Feed = void (*)(void*, float*, float*, int);

    int createCount;
    Create create[8];
    void (*release)(void*);
    bool (*analyzed)(void*);
    Feed setSamplePre;
    Feed setSample;
    int (*getBpm)(void*);
    int (*getBeatNum)(void*);
    void (*getBeatList)(void*, BA_BeatInfo*);
    int (*getLoudWave)(void*, BA_WaveInfo*, int);
    int (*getDotsWave)(void*, BA_WaveInfo*, int);
    int (*getZoomWave)(void*, BA_WaveInfo*);
    int (*getMainKey)(void*);
    int (*getKeyPoint)(void*, double*);
    int (*getKeyRank)(void*, int*);
    int (*getNoteEncount)(void*, int*);
    int (*getNoteEncountVal)(void*, double*);
    void (*resample)(void*, float*, long, float*, long, float, int, long);
    void (*cutBeats)(void*, float*, float*, int, float, int, int);
    float (*pitchDetect)(void*, float*, int, float, int, int);
    int (*getKey)(void*, float*, long, float, float, int, int);
};

/** The 21 functions of beatatlas.h. */
const ExportSet& plainExports();
/** The 27 functions of beatatlas.hpp. */
const ExportSet& mangledExports();

}  // namespace beatatlas::test
