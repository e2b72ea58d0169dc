// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "analysis/TrackAnalyzer.h"

namespace app {

/** How the key of a buffer is to be looked for. */
struct KeyOptions {
    std::optional<double> pitchHz;  ///< what A4 is tuned to; nothing: find out
    int mode = 0;                   ///< weights, 0 to 4
};

/** The key of one track by both finders: that of a buffer, and that of a session (analysis.key). */
struct KeyReport : TrackReport {
    KeyOptions wanted;
    std::optional<double> pitchHz;  ///< as given, else as found
    std::optional<int> bufferKey;   ///< 0 to 23
};

/** Decodes one file and finds its key. The buffer is gathered while the session measures the track. */
class KeyAnalyzer {
public:
    /** @param acceptsCutOff  take what is left of a track that was cut off, instead of refusing it */
    KeyAnalyzer(const KeyOptions& options, bool acceptsCutOff)
        : options_(options), acceptsCutOff_(acceptsCutOff) {}

    /** @throws TrackError with the reason why the track cannot be analysed */
    KeyReport analyze(const std::string& path, ProgressLine& progress) const;

private:
    KeyOptions options_;
    bool acceptsCutOff_;
};

}  // namespace app
