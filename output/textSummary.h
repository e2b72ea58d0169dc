// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "output/TrackReport.h"

namespace output {

/** What was found in a track, in a few lines for a person. Ends with a line feed. */
std::string textSummary(const TrackReport& report);

/** @name The results in a picture: "128.00 BPM", "F# minor (11A)", "no tempo found"
 *  @{ */
std::string tempoText(const TrackReport& report);
std::string keyText(const TrackReport& report);

/** The range of a varying tempo and what is uncertain about it, to follow tempoText(): ", varies:
 *  100.00 to 125.50, perhaps 186.00". */
std::string tempoRemarks(const TrackReport& report);
/** @} */

}  // namespace output
