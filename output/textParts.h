// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/TrackSource.h"
#include "beatatlas/track.hpp"

namespace output {

constexpr const char* kNoKeyText = "no key found";

/** @name Lines that the summaries of several commands share
 *  @{ */
std::string textLine(const std::string& label, const std::string& value);

/** Name, file and length, each on a line. @param frames  at the session's rate */
std::string trackFileText(const base::TrackSource& file, std::int64_t frames);

/** A key in all its notations: "F# minor, 11A, 4m, number 21". */
std::string keyNames(int number);

/** The session's key and how far the next one lies behind. */
std::string keyDetails(const std::optional<beatatlas::track::KeyRanking>& key);
/** @} */

}  // namespace output
