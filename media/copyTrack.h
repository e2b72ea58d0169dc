// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "media/StereoBlock.h"
#include "media/audioKinds.h"

namespace media {

/** A track that was analysed, to be decoded another time and copied. */
struct CopiedTrack {
    std::string path;
    /** Of the analysis, Hz. */
    int rate = 0;
    /** At that rate. */
    std::int64_t frames = 0;
};

/** Writes a track as another audio file, a stretch at a time, at the rate of the analysis or, where
 *  that kind of file does not have it, at its highest. The file begins and ends with the music, and
 *  appears whole or not at all.
 *  @param change  may change each block before it is written, at the rate of the file
 *  @param shown   is told how much is done, 0 to 1
 *  @return as OutputFile::commit()
 *  @throws TrackError when the track is no longer the one that was analysed; OutputError,
 *          Interrupted */
std::string copyTrack(const CopiedTrack& track, const std::string& outputPath,
                      const AudioKind& kind, const std::function<void(StereoBlock&)>& change,
                      const std::function<void(double)>& shown);

}  // namespace media
