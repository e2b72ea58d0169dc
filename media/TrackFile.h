// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "base/TrackSource.h"
#include "media/TrackDecoder.h"

namespace media {

/** What was found out about a track's file when it was read once. */
struct TrackFile : base::TrackSource {
    /** Every further pass must find the file in this state. */
    FileState state;
};

/** Evaluates what a decoder found, once it has run.
 *  @param frames         how many it yielded
 *  @param acceptsCutOff  accepts what is left of a track that was cut off, instead of refusing it
 *  @throws TrackError when that is not a whole track */
TrackFile usableTrack(const std::string& path, const TrackDecoder& decoder, std::int64_t frames,
                      bool acceptsCutOff);

/** @throws TrackError when the decoder's file is not in the given state */
void refuseUnlessUnchanged(const TrackDecoder& decoder, const FileState& state);

}  // namespace media
