// SPDX-License-Identifier: MIT
#include "beatatlas/beatatlas.hpp"
#include "support/ExportSet.h"

namespace beatatlas::test {

const ExportSet& mangledExports() {
    static constexpr ExportSet set{
        .createCount = 8,
        .create = {BA_Create48k, BA_Create44k, BA_CreateVaried48k, BA_CreateVaried44k,
                   BA_CreateConst48k, BA_CreateConst44k, BA_CreateSimple48k, BA_CreateSimple44k},
        .release = BA_Release,
        .analyzed = BA_Analyzed,
        .setSamplePre = BA_SetSamplePre,
        .setSample = BA_SetSample,
        .getBpm = BA_GetBpm,
        .getBeatNum = BA_GetBeatNum,
        .getBeatList = BA_GetBeatList,
        .getLoudWave = BA_GetLoudWave,
        .getDotsWave = BA_GetDotsWave,
        .getZoomWave = BA_GetZoomWave,
        .getMainKey = BA_GetMainKey,
        .getKeyPoint = BA_GetKeyPoint,
        .getKeyRank = BA_GetKeyRank,
        .getNoteEncount = BA_GetNoteEncount,
        .getNoteEncountVal = BA_GetNoteEncountVal,
        .resample = BA_Resample,
        .cutBeats = BA_CutBeats,
        .pitchDetect = BA_PitchDetect,
        .getKey = BA_GetKey,
    };
    return set;
}

}  // namespace beatatlas::test
