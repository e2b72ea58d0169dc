// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "base/TrackSource.h"
#include "beatatlas/track.hpp"
#include "output/KeyName.h"

namespace output {

/** Everything that was found out about one track. */
struct TrackReport : base::TrackSource {
    /** What was asked for. */
    beatatlas::track::Options options;
    beatatlas::track::TrackResult analysis;
    /** How text names keys; nothing: in several ways at once. */
    std::optional<KeyNotation> keyNotation;
};

}  // namespace output
