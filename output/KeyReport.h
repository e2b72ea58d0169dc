// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "output/TrackReport.h"

namespace output {

/** How the key of a buffer is to be looked for. */
struct KeyOptions {
    std::optional<double> pitchHz;  ///< what A4 is tuned to; nothing: find out
    int mode = 0;                   ///< weights, 0 to 4
};

/** The key of one track by all finders: by evidence (analysis.key), that of a buffer, and that of a
 *  session (analysis.sessionKey). */
struct KeyReport : TrackReport {
    KeyOptions wanted;
    std::optional<double> pitchHz;  ///< as given, else as found
    std::optional<int> bufferKey;   ///< 0 to 23
};

}  // namespace output
