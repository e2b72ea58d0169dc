// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "base/AnalysisResult.h"
#include "base/TrackSource.h"

namespace output {

/** @name Members that the documents of several commands share, as docs/json.md tells them
 *  @{ */

/** Name, file and length. @param frames  at the session's rate */
nlohmann::ordered_json trackFileJson(const base::TrackSource& file, int frames);

/** The entry of a track that could not be analysed. */
nlohmann::ordered_json failureJson(const std::string& path, const std::string& reason);

/** A key's number and names. */
nlohmann::ordered_json keyNameJson(int number);

/** The session's key with ranking and notes; null when none was found. */
nlohmann::ordered_json keyJson(const std::optional<base::KeyRanking>& key);
/** @} */

}  // namespace output
