// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

#include "analysis/TrackAnalyzer.h"

namespace app {

/** A track's entry in the JSON document, as docs/json.md tells it.
 *  @param withWaves  the three waveform overviews too */
nlohmann::ordered_json trackJson(const TrackReport& report, bool withWaves);

/** The entry of a track that could not be analysed. */
nlohmann::ordered_json failureJson(const std::string& path, const std::string& reason);

}  // namespace app
