// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>

#include "media/Recording.h"

namespace app {

/** How the percussive beats are cut out. */
struct CutOptions {
    int mode = 0;  ///< hop between frames, 0 to 4
    int div = 1;   ///< divides the lengths of frame and hop: 1, 2, 4, 8 or 16
};

/** Cuts the percussive beats out of a recording, channel by channel.
 *
 *  The library leaves a buffer's first frame faded in and its last frames untouched; silence put
 *  around each channel for the call keeps that off the music. Each call holds the spectrum of a
 *  whole channel in memory. */
class BeatCutter {
public:
    explicit BeatCutter(const CutOptions& options) : options_(options) {}

    /** @param shown  is told how much is done, 0 to 1
     *  @throws TrackError when the recording is too long for the library or for this machine's
     *    memory
     *  @throws Interrupted between two channels */
    void cut(media::Recording& recording, const std::function<void(double)>& shown) const;

    /** Bytes of memory the recording takes while it is cut, itself included. */
    double bytesFor(const media::Recording& recording) const;

private:
    void refuseTooLong(const media::Recording& recording) const;
    std::size_t frameLength() const;
    std::size_t paddedLength(std::size_t frames) const;

    CutOptions options_;
};

}  // namespace app
