// SPDX-License-Identifier: MIT
#include "peakss/grid/printBeatList.h"

namespace peakss {

void printBeatList(const BeatList& list, std::FILE* stream) {
    std::FILE* const target = stream != nullptr ? stream : stdout;
    for (const BeatInfo& beat : list) {
        const float bpm = 60000.0F / beat.interval;
        std::fprintf(target, "%d\t%f\t%f\t%d\t%d\n", beat.group, static_cast<double>(bpm),
                     static_cast<double>(beat.phase), beat.pos, beat.band);
    }
}

}  // namespace peakss
