// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "output/TrackReport.h"

namespace output {

/** A part of a track with one tempo and one key. */
struct Section {
    double fromSeconds = 0.0;
    double toSeconds = 0.0;
    std::optional<double> bpm;
    std::optional<int> key;
};

/** The whole track in sections, without gaps: a new one begins where the tempo changes and where
 *  the key does, unless the last one began less than a second before. What lies before position 0
 *  is left out. One section where nothing changes. */
std::vector<Section> sectionsOf(const TrackReport& report);

/** "126.00 BPM, A minor". */
std::string sectionTitle(const Section& section, const std::optional<KeyNotation>& notation);

}  // namespace output
