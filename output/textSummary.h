// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "output/TrackReport.h"

namespace output {

/** What was found in a track, in a few lines for a person. Ends with a line feed. */
std::string textSummary(const TrackReport& report);

/** The headings a picture or a line has room for: "128.00 BPM", "no tempo found". */
std::string tempoText(const TrackReport& report);
std::string keyText(const TrackReport& report);

}  // namespace output
