// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "audio/TrackDecoder.h"

namespace app {

/** What reading a track's file once showed. */
struct TrackFile {
    std::string path;
    TrackFormat format;
    bool isCutOff = false;  ///< the file holds only the beginning of the track
    std::int64_t damagedPackets =
        0;            ///< stretches that could not be decoded; silence stands in their place
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

}  // namespace app
