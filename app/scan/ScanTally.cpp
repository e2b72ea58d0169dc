// SPDX-License-Identifier: MIT
#include "scan/ScanTally.h"

#include <fmt/format.h>

#include "output/textFormat.h"

namespace app {

std::string summaryOf(const ScanTally& tally) {
    std::string text = output::counted(tally.analysed, "track") + " analysed";
    if (tally.analysed > 0)
        text += fmt::format(" ({:.1f} hours of music)",
                            tally.audioSeconds / ScanTally::kSecondsPerHour);
    const auto add = [&](std::int64_t number, const char* what) {
        if (number > 0) text += ", " + output::grouped(number) + " " + what;
    };
    add(tally.known, "known");
    if (tally.knownFailures > 0)
        text += " (" + output::grouped(tally.knownFailures) + " of them failed before)";
    add(tally.retagged, "with other tags alone");
    add(tally.moved, "moved");
    add(tally.gone, "gone");
    add(tally.pruned, "deleted from the catalogue");
    add(tally.failed, "failed");
    add(tally.notAudio, "without audio");
    add(tally.noFiles,
        tally.noFiles == 1 ? "pipe or device left out" : "pipes or devices left out");
    return text;
}

}  // namespace app
