// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

struct AVFrame;

namespace media {

/** Compares where a decoded frame belongs by its own time with where the track has come to.
 *
 *  Times of milliseconds waver, and some writers' times drift: only what lies outside both is a
 *  stretch that is missing or there twice. */
class Timeline {
public:
    /** @param tick  the shortest time that the frames' times can tell apart, seconds */
    explicit Timeline(double tick) : tick_(tick) {}

    /** Frames of silence that are missing before this one; below 0, frames at its beginning whose
     *  time has passed.
     *  @param seconds    the frame's own time
     *  @param isAlarmed  something was amiss since the last frame: for a while less than half a frame
     *                    may be missing too */
    std::int64_t place(double seconds, const AVFrame& frame, bool isAlarmed);

    /** The track goes on by so much. */
    void advance(std::int64_t frames, int rate);

private:
    double toleranceFor(const AVFrame& frame, bool isWatched) const;
    std::int64_t wholeBlocks(double frames, const AVFrame& frame) const;

    double tick_;
    double expected_ = 0.0;  ///< the next frame's own time, were nothing missing
    int placed_ = 0;
    int watched_ = 0;  ///< so many frames yet after something was amiss
};

}  // namespace media
