// SPDX-License-Identifier: MIT
#pragma once

namespace media {

class TrackDecoder;

/** @throws TrackError when a track is longer than the library can count */
void refuseAbove(double frames);

/** @throws TrackError when the file says that the track is longer than the library can count */
void refuseTooLong(const TrackDecoder& decoder);

/** How many frames the file says it has at a session's rate, about; at least 1. */
double expectedFrames(const TrackDecoder& decoder);

}  // namespace media
