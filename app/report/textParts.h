// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "analysis/AnalysisResult.h"
#include "analysis/TrackFile.h"

namespace app {

constexpr const char* kNoKeyText = "no key found";

/** @name Lines that the summaries of several commands share
 *  @{ */
std::string textLine(const std::string& label, const std::string& value);

/** Name, file and length, each on a line. @param frames  at the session's rate */
std::string trackFileText(const TrackFile& file, int frames);

/** A key in all its notations: "F# minor, 11A, 4m, number 21". */
std::string keyNames(int number);

/** The session's key and how far the next one lies behind. */
std::string keyDetails(const std::optional<KeyRanking>& key);
/** @} */

}  // namespace app
