// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <limits>

namespace media {

class TrackDecoder;

/** The library counts frames in an int. */
constexpr std::int64_t kMostFrames = std::numeric_limits<int>::max();

/** @throws TrackError when a track is longer than the library can count */
void refuseAbove(double frames);

/** @throws TrackError when the file says that the track is longer than the library can count, or
 *          has a rate that cannot be converted */
void refuseTooLong(const TrackDecoder& decoder);

/** Approximate number of frames at a session's rate, as the file states it; at least 1. */
double expectedFrames(const TrackDecoder& decoder);

}  // namespace media
