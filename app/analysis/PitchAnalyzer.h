// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "analysis/TrackFile.h"
#include "io/ProgressLine.h"

namespace app {

/** How closely to look for the concert pitch. */
struct PitchOptions {
    int mode = 0;             ///< 0 (closest) to 4
    bool isFullRate = false;  ///< at the session's rate instead of a tenth of it
};

/** The concert pitch of one track. */
struct PitchReport : TrackFile {
    PitchOptions options;  ///< what was asked for
    int frames = 0;        ///< at the session's rate
    std::optional<int> pitchHz;
};

/** Decodes one file and finds its concert pitch. */
class PitchAnalyzer {
public:
    /** @param acceptsCutOff  take what is left of a track that was cut off, instead of refusing it */
    PitchAnalyzer(const PitchOptions& options, bool acceptsCutOff)
        : options_(options), acceptsCutOff_(acceptsCutOff) {}

    /** @throws TrackError with the reason why the track cannot be analysed */
    PitchReport analyze(const std::string& path, ProgressLine& progress) const;

private:
    PitchOptions options_;
    bool acceptsCutOff_;
};

}  // namespace app
