// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

struct AVFrame;

namespace media {

/** Processes a track's decoded frames, from its first to its last. */
class FrameChain {
public:
    virtual ~FrameChain() = default;

    /** Prepares for frames like this one, without putting it in: silence may precede it. */
    virtual void begin(const AVFrame& frame) = 0;

    /** Leaves out that many of the next frames, at the track's own rate: they belong to the
     *  encoder's delay, or are repeated. */
    virtual void dropFrames(std::int64_t frames) = 0;

    virtual void put(const AVFrame& frame) = 0;

    /** Fills the time of damaged audio that could not be decoded. Before the first frame it does
     *  nothing.
     *  @param frames  at the track's own rate */
    virtual void putSilence(std::int64_t frames) = 0;

    virtual void finish() = 0;

    /** Of the last frame; 0 before the first. */
    virtual int trackRate() const = 0;
    /** The rate that the frames are converted to; 0 before the first. */
    virtual int outputRate() const = 0;
};

}  // namespace media
