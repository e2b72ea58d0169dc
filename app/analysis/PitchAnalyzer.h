// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "analysis/TrackFile.h"
#include "io/ProgressLine.h"

namespace app {

/** The concert pitch of one track. */
struct PitchReport : TrackFile {
    int frames = 0;  ///< at the session's rate
    int mode = 0;    ///< how closely it was looked for
    std::optional<int> pitchHz;

    double seconds() const { return static_cast<double>(frames) / format.sessionRate; }
};

/** Decodes one file and finds its concert pitch. */
class PitchAnalyzer {
public:
    /** @param mode          0 to 4
     *  @param acceptsCutOff  take what is left of a track that was cut off, instead of refusing it */
    PitchAnalyzer(int mode, bool acceptsCutOff) : mode_(mode), acceptsCutOff_(acceptsCutOff) {}

    /** @throws TrackError with the reason why the track cannot be analysed */
    PitchReport analyze(const std::string& path, ProgressLine& progress) const;

private:
    int mode_;
    bool acceptsCutOff_;
};

}  // namespace app
