// SPDX-License-Identifier: MIT
#include "beatatlas/beatatlas.h"
#include "support/ExportSet.h"

namespace beatatlas::test {

const ExportSet& plainExports() {
    static constexpr ExportSet set{
        .createCount = 6,
        .create = {BA_Create48k, BA_Create44k, BA_CreateVaried48k, BA_CreateVaried44k,
                   BA_CreateConst48k, BA_CreateConst44k, nullptr, nullptr},
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
        .getKeyPoint = nullptr,
        .getKeyRank = nullptr,
        .getNoteEncount = nullptr,
        .getNoteEncountVal = nullptr,
        .resample = BA_Resample,
        .cutBeats = BA_CutBeats,
        .pitchDetect = BA_PitchDetect,
        .getKey = BA_GetKey,
    };
    return set;
}

}  // namespace beatatlas::test
