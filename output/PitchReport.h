// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

#include "base/TrackSource.h"

namespace output {

/** How precisely to determine the concert pitch. */
struct PitchOptions {
    /** 0 (most precise) to 4. */
    int mode = 0;
    /** Whether to use the session's rate instead of a tenth of it. */
    bool isFullRate = false;
};

/** The concert pitch of one track. */
struct PitchReport : base::TrackSource {
    /** What was asked for. */
    PitchOptions options;
    /** At the session's rate. */
    std::int64_t frames = 0;
    std::optional<int> pitchHz;
};

}  // namespace output
