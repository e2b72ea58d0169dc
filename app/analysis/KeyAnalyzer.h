// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "io/ProgressLine.h"
#include "output/KeyReport.h"

namespace app {

/** Decodes one file and finds its key. The buffer is gathered while the session measures the track. */
class KeyAnalyzer {
public:
    /** @param acceptsCutOff  take what is left of a track that was cut off, instead of refusing it */
    KeyAnalyzer(const output::KeyOptions& options, bool acceptsCutOff)
        : options_(options), acceptsCutOff_(acceptsCutOff) {}

    /** @throws TrackError with the reason why the track cannot be analysed */
    output::KeyReport analyze(const std::string& path, ProgressLine& progress) const;

private:
    output::KeyOptions options_;
    bool acceptsCutOff_;
};

}  // namespace app
