// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "base/TrackSource.h"
#include "media/TrackDecoder.h"

namespace media {

/** What reading a track's file once showed. */
struct TrackFile : base::TrackSource {
    FileState state;  ///< in which every further pass has to find it
};

/** Tells what a decoder met once it has run.
 *  @param frames         how many came out of it
 *  @param acceptsCutOff  takes what is left of a track that was cut off, instead of refusing it
 *  @throws TrackError when that is no whole track */
TrackFile usableTrack(const std::string& path, const TrackDecoder& decoder, std::int64_t frames,
                      bool acceptsCutOff);

/** @throws TrackError when the decoder's file is no longer in the state it has to be in */
void refuseUnlessUnchanged(const TrackDecoder& decoder, const FileState& state);

}  // namespace media
