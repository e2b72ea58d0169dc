// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "io/ProgressLine.h"
#include "output/PitchReport.h"

namespace app {

/** Decodes one file and finds its concert pitch. */
class PitchAnalyzer {
public:
    /** @param acceptsCutOff  analyse what is left of a track that was cut off, instead of refusing
     *  it */
    PitchAnalyzer(const output::PitchOptions& options, bool acceptsCutOff)
        : options_(options), acceptsCutOff_(acceptsCutOff) {}

    /** @throws TrackError with the reason why the track cannot be analysed */
    output::PitchReport analyze(const std::string& path, ProgressLine& progress) const;

private:
    output::PitchOptions options_;
    bool acceptsCutOff_;
};

}  // namespace app
