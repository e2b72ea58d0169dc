// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/TrackSource.h"
#include "beatatlas/track.hpp"
#include "output/KeyName.h"
#include "output/TimeOrigin.h"

namespace output {

/** A correction that somebody made. */
struct CorrectionNote {
    /** Its name in documents: "double". */
    std::string kind;
    double value = 0.0;
    /** For people: "doubled". */
    std::string text;

    bool isOfKey() const { return kind == "key"; }
};

/** Everything that was found out about one track. */
struct TrackReport : base::TrackSource {
    /** What was asked for. */
    beatatlas::track::Options options;
    beatatlas::track::TrackResult analysis;
    /** How text names keys; nothing: in several ways at once. */
    std::optional<KeyNotation> keyNotation;

    /** From where the positions are counted. */
    TimeOrigin origin;

    /** In the order in which they were made; the analysis has them already. */
    std::vector<CorrectionNote> corrections{};

    /** The position of the first frame of music, in seconds. */
    double startSeconds() const {
        const double atFile = origin.at == TimeOrigin::At::file ? droppedSeconds() : 0.0;
        return atFile + origin.offsetMs / 1000.0;
    }
};

/** "doubled, key C major"; empty without corrections. */
std::string correctionsText(const TrackReport& report);

/** Moves every position in a report, which were counted from the first frame of music: beats,
 *  stretches, key segments and gaps. Lengths and waves stay. */
void countFrom(TrackReport& report, const TimeOrigin& origin);

}  // namespace output
