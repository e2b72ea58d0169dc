// SPDX-License-Identifier: MIT
#include "output/formats/AudacityLabels.h"

#include <fmt/format.h>

namespace output {

std::string AudacityLabels::labelOf(int bar, const beatatlas::track::Beat& beat) const {
    if (kind_ == Kind::bars) return std::to_string(bar);
    if (kind_ == Kind::numbers) return std::to_string(beat.numberInBar);
    return fmt::format("{}.{}", bar, beat.numberInBar);
}

void AudacityLabels::add(const TrackReport& report, const Peaks*) {
    std::string lines;
    int bar = 0;
    for (const beatatlas::track::Beat& beat : report.analysis.beats) {
        if (beat.isDownbeat()) ++bar;
        if (beat.seconds < 0.0 || (kind_ == Kind::bars && !beat.isDownbeat())) continue;
        lines += fmt::format("{0:.6f}\t{0:.6f}\t{1}\n", beat.seconds, labelOf(bar, beat));
    }
    write_(lines);
}

}  // namespace output
