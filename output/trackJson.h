// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "output/TrackReport.h"

namespace output {

/** The name of the document that holds such entries. */
inline constexpr const char* kAnalysisDocument = "beatatlas.analysis";

/** A track's entry in the JSON document, described in docs/json.md.
 *  @param withWaves  includes the three waveform overviews */
nlohmann::ordered_json trackJson(const TrackReport& report, bool withWaves);

}  // namespace output
