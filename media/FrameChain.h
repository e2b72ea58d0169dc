// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

struct AVFrame;

namespace media {

/** What becomes of a track's decoded frames, from its first to its last. */
class FrameChain {
public:
    virtual ~FrameChain() = default;

    /** Gets ready for frames like this one, which is not put in: silence may come before it. */
    virtual void begin(const AVFrame& frame) = 0;

    /** Leaves out so many of the next frames at the track's own rate: they belong to the encoder's
     *  delay, or were there before. */
    virtual void dropFrames(std::int64_t frames) = 0;

    virtual void put(const AVFrame& frame) = 0;

    /** Keeps the time where a damaged stretch could not be decoded. Before the first frame:
     *  nothing.
     *  @param frames  at the track's own rate */
    virtual void putSilence(std::int64_t frames) = 0;

    virtual void finish() = 0;

    virtual int trackRate() const = 0;   ///< of the last frame; 0 before the first
    virtual int outputRate() const = 0;  ///< what the frames are turned into; 0 before the first
};

}  // namespace media
