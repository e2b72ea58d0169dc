// SPDX-License-Identifier: MIT
#pragma once

namespace media {

class TrackDecoder;

/** @throws TrackError when a track is longer than the library can count */
void refuseAbove(double frames);

/** How many frames the file says it has at a session's rate, about; at least 1.
 *  @throws TrackError when that is more than the library can count */
double expectedFrames(const TrackDecoder& decoder);

}  // namespace media
