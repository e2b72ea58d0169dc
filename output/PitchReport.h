// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

#include "base/TrackSource.h"

namespace output {

/** How closely to look for the concert pitch. */
struct PitchOptions {
    int mode = 0;             ///< 0 (closest) to 4
    bool isFullRate = false;  ///< at the session's rate instead of a tenth of it
};

/** The concert pitch of one track. */
struct PitchReport : base::TrackSource {
    PitchOptions options;     ///< what was asked for
    std::int64_t frames = 0;  ///< at the session's rate
    std::optional<int> pitchHz;
};

}  // namespace output
