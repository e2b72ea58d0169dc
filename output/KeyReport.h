// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "output/TrackReport.h"

namespace output {

/** How to look for the key of a buffer. */
struct KeyOptions {
    /** The tuning of A4; nothing: it is determined. */
    std::optional<double> pitchHz;
    /** Weights, 0 to 4. */
    int mode = 0;
};

/** The key of one track by all finders: by evidence (analysis.key), that of a buffer, and that of a
 *  session (analysis.sessionKey). */
struct KeyReport : TrackReport {
    KeyOptions wanted;
    /** As given, otherwise as determined. */
    std::optional<double> pitchHz;
    /** 0 to 23. */
    std::optional<int> bufferKey;
};

}  // namespace output
