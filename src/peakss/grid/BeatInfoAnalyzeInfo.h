// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "peakss/BeatInfo.h"

namespace peakss {

/** What the analysis of a beat list is given. */
struct BeatInfoAnalyzeInfo {
    std::int32_t bandNum = 0;      ///< detection bands of the beat sensor; not read by the analysis
    BeatList* beatList = nullptr;  ///< working copy of the raw list; candidates are erased from it
};

}  // namespace peakss
