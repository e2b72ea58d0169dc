// SPDX-License-Identifier: MIT
#pragma once

namespace catalogue {

/** Its results go with it; corrections belong to the sound and stay. */
constexpr const char* kDropTrack = "DELETE FROM tracks WHERE id = ?1";

/** The path is bound as bytes. */
constexpr const char* kDropFailure = "DELETE FROM failures WHERE path = ?1";

}  // namespace catalogue
