// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "base/TrackSource.h"
#include "beatatlas/track.hpp"
#include "output/TimeOrigin.h"

namespace output {

/** @name Members that the documents of several commands share, described in docs/json.md
 *  @{ */

/** The name of a file: "file", and "fileBytes" where the name is not UTF-8: it is then shown with
 *  escapes. */
nlohmann::ordered_json nameJson(const std::string& path);

/** Name, file and length, and from where positions are counted.
 *  @param frames  at the session's rate */
nlohmann::ordered_json trackFileJson(const base::TrackSource& file, std::int64_t frames,
                                     const TimeOrigin& origin);

/** The entry of a track that could not be analysed. */
nlohmann::ordered_json failureJson(const std::string& path, const std::string& reason);

/** A key's number and all of its names. */
nlohmann::ordered_json keyNameJson(int number);

/** The key by evidence with all its details; null when none was found. */
nlohmann::ordered_json keyJson(const std::optional<beatatlas::track::Key>& key);

/** The session's key with ranking and notes; null when none was found. */
nlohmann::ordered_json sessionKeyJson(const std::optional<beatatlas::track::SessionKey>& key);
/** @} */

}  // namespace output
