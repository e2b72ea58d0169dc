// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

struct AVFrame;

namespace media {

/** Compares the time of a decoded frame with the time that the track has reached.
 *
 *  Times in milliseconds jitter, and the times of some writers drift: only a larger difference
 *  means that audio is missing or repeated. */
class Timeline {
public:
    /** @param tick  the resolution of the frames' times, in seconds */
    explicit Timeline(double tick) : tick_(tick) {}

    /** Frames of silence that are missing before this one; below 0, frames at its beginning whose
     *  time has passed.
     *  @param seconds    the frame's own time
     *  @param isAlarmed  something was wrong since the last frame: for a while even less than half
     *                    a frame may be missing */
    std::int64_t place(double seconds, const AVFrame& frame, bool isAlarmed);

    /** Adds that many frames to the track. */
    void advance(std::int64_t frames, int rate);

private:
    double toleranceFor(const AVFrame& frame, bool isWatched) const;
    std::int64_t wholeBlocks(double frames, const AVFrame& frame) const;

    double tick_;
    double expected_ = 0.0;  // the time of the next frame if nothing is missing
    int placed_ = 0;
    int watched_ = 0;  // frames left to watch after something was wrong
};

}  // namespace media
