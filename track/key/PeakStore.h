// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "track/key/PeakFinder.h"

namespace beatatlas::track::inner {

/** Keeps the peaks of a track's frames until its tuning and its loudest frame are known. Only peaks
 *  that may enter a chroma are kept.
 *
 *  Memory: 8 bytes a peak and 16 a frame. */
class PeakStore {
public:
    /** @param top  amplitude of the frame's largest bin */
    void add(float top, const std::vector<SpectralPeak>& peaks);

    std::size_t frames() const { return frames_.size(); }
    float top(std::size_t frame) const { return frames_[frame].top; }
    std::span<const SpectralPeak> peaks(std::size_t frame) const;

    /** The largest top of all frames; 0 without frames. */
    float loudest() const { return loudest_; }

private:
    struct Frame {
        float top;
        std::size_t firstPeak;
    };

    std::vector<Frame> frames_;
    std::vector<SpectralPeak> peaks_;
    float loudest_ = 0.0F;
};

}  // namespace beatatlas::track::inner
