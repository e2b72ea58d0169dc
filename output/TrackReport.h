// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "base/TrackSource.h"
#include "beatatlas/track.hpp"
#include "output/KeyName.h"
#include "output/TimeOrigin.h"

namespace output {

/** Everything that was found out about one track. */
struct TrackReport : base::TrackSource {
    /** What was asked for. */
    beatatlas::track::Options options;
    beatatlas::track::TrackResult analysis;
    /** How text names keys; nothing: in several ways at once. */
    std::optional<KeyNotation> keyNotation;

    /** From where the positions are counted. */
    TimeOrigin origin;

    /** The position of the first frame of music, in seconds. */
    double startSeconds() const {
        const double atFile = origin.at == TimeOrigin::At::file ? droppedSeconds() : 0.0;
        return atFile + origin.offsetMs / 1000.0;
    }
};

/** Moves every position in a report, which were counted from the first frame of music: beats,
 *  stretches, key segments and gaps. Lengths and waves stay. */
void countFrom(TrackReport& report, const TimeOrigin& origin);

}  // namespace output
