// SPDX-License-Identifier: MIT
#include "output/formats/BeatsCsv.h"

#include "base/displayName.h"
#include "output/formats/csvText.h"
#include "output/textFormat.h"

namespace output {

void BeatsCsv::begin() {
    write_(csvLine({"file", "seconds", "frame", "bar", "beat", "bpm"}));
}

void BeatsCsv::add(const TrackReport& report, const Peaks*) {
    const std::string file = base::displayName(report.path);
    std::string lines;
    int bar = 0;
    for (const beatatlas::track::Beat& beat : report.analysis.beats) {
        if (beat.isDownbeat()) ++bar;
        lines +=
            csvLine({file, csvSeconds(beat.seconds), std::to_string(beat.frame),
                     std::to_string(bar), std::to_string(beat.numberInBar), bpmText(beat.bpm)});
    }
    write_(lines);
}

}  // namespace output
