// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "output/StoredEntry.h"
#include "output/TrackReport.h"

namespace output {

/** What the view of a track in a browser (web/track) is given: the track's entry of docs/json.md
 *  with the name of its file alone, and
 *
 *    artist, title   by its tags, "" where they do not say
 *    remarks         what is uncertain, in words: `tempo` and `key`
 *    beats           `frames` (int32), `numbers` in the bar (one byte), `bpm` in hundredths
 *                    (int32): little-endian, as base64
 *    waves           `loud`, `dots`: `levels` (float32), `colors` (one byte); `zoom`: `points`,
 *                    one byte each of level times 8 plus color, and `pointsPerSecond`
 *    keys            the names of all 24, by their numbers
 *    corrections     `kind`, `value` and `text` of each, in order
 *
 *  @param report  with waves, counted from the first frame of music */
nlohmann::ordered_json viewJson(const TrackReport& report,
                                const std::vector<CorrectionNote>& corrections);

}  // namespace output
