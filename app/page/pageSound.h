// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "beatatlas/track.hpp"

namespace app {

/** A track as compressed sound that a page can hold: Opus at 128 kbit/s, 48,000 Hz. Its first frame
 *  is the first frame of music; browsers leave out what the encoder put before it.
 *  @param mostBytes  the largest that is wanted
 *  @param shown      is told how much is done, 0 to 1
 *  @return nothing when it would be larger, or when no encoder is there
 *  @throws TrackError when the track is no longer the one that was analysed; OutputError when the
 *          folder for temporary files does not take it; Interrupted */
std::optional<std::string> encodedSound(const std::string& trackPath,
                                        const beatatlas::track::TrackResult& analysis,
                                        std::int64_t mostBytes,
                                        const std::function<void(double)>& shown);

/** The address of a track as seen from a page: "../music/a%20b.flac".
 *  @param pagePath  where the page will be; empty: in the working folder */
std::string addressFrom(const std::string& pagePath, const std::string& trackPath);

}  // namespace app
