// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "base/TrackSource.h"
#include "beatatlas/track.hpp"
#include "output/KeyName.h"

namespace output {

/** Everything that is known about one track in the end. */
struct TrackReport : base::TrackSource {
    beatatlas::track::Options options;  ///< what was asked for
    beatatlas::track::TrackResult analysis;
    /** How text names keys; nothing: in several ways at once. */
    std::optional<KeyNotation> keyNotation;
};

}  // namespace output
