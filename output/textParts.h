// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "output/TrackReport.h"

namespace output {

constexpr const char* kNoKeyText = "no key found";

/** @name Lines that the summaries of several commands share
 *  @{ */
std::string textLine(const std::string& label, const std::string& value);

/** Name, file and length, each on a line. @param frames  at the session's rate */
std::string trackFileText(const base::TrackSource& file, std::int64_t frames);

/** A key in the given notation, otherwise in several: "F# minor, 11A, 4m, number 21". */
std::string keyNames(int number, const std::optional<KeyNotation>& notation);

/** A key among others: in the given notation, otherwise "F# minor (11A)". */
std::string shortKeyName(int number, const std::optional<KeyNotation>& notation);

/** The key by evidence and, if it is uncertain, what else it may be. */
std::string keyDetails(const TrackReport& report);

/** ", perhaps B minor (10A)" if the key is uncertain, otherwise nothing. */
std::string keyDoubts(const TrackReport& report);
/** @} */

}  // namespace output
