// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>

#include "media/Recording.h"

namespace app {

/** How to cut out the percussive beats. */
struct CutOptions {
    /** Hop between frames, 0 to 4. */
    int mode = 0;
    /** Divides the lengths of frame and hop: 1, 2, 4, 8 or 16. */
    int div = 1;
};

/** Cuts the percussive beats out of a recording, channel by channel.
 *
 *  The library fades in a buffer's first frame and leaves its last frames untouched; silence around
 *  each channel keeps that off the music. Each call holds the spectrum of a whole channel in
 *  memory. */
class BeatCutter {
public:
    explicit BeatCutter(const CutOptions& options) : options_(options) {}

    /** @param shown  is called with the fraction that is done, 0 to 1
     *  @throws TrackError when the recording is too long for the library or for this machine's
     *    memory
     *  @throws Interrupted between two channels */
    void cut(media::Recording& recording, const std::function<void(double)>& shown) const;

    /** Bytes of memory that cutting takes, the recording included. */
    double bytesFor(const media::Recording& recording) const;

private:
    void refuseTooLong(const media::Recording& recording) const;
    std::size_t frameLength() const;
    std::size_t paddedLength(std::size_t frames) const;

    CutOptions options_;
};

}  // namespace app
