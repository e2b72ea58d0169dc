// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>

namespace beatatlas {

/** The newest 16384 filtered samples, from which every fourth makes one analysis frame of 4096; a
 *  frame every 0.3 s. */
class DecimationBuffer {
public:
    static constexpr int kSamples = 16384;
    static constexpr int kFrameSamples = 4096;

    /** @param rate  samples per second; below 4 there is no hop, and nothing may be put */
    void create(int rate);
    void reset();
    void release() { samples_.reset(); }

    /** Samples until the next frame is complete; with none missing, take it, then hop. */
    int missing() const { return kSamples - position_; }

    /** Where the next room() samples go; add() counts how many of them have been written, 0 ≤ n ≤
     *  room(). */
    std::int16_t* end() { return samples_.get() + std::max(position_, 0); }
    int room() const { return position_ < 0 ? std::min(-position_, kSamples) : missing(); }
    void add(int n) { position_ += n; }

    /** The complete frame: kFrameSamples of them, each so many entries after the one before. */
    static constexpr int kSpacing = kSamples / kFrameSamples;
    const std::int16_t* frame() const { return samples_.get(); }

    /** Makes room for the next 0.3 s. At rates above 54,600 that is more than the buffer holds: the
     *  position turns negative, and those that come before 0 are overwritten by those that
     *  follow. */
    void hop();

private:
    static std::size_t index(int i) { return static_cast<std::size_t>(i); }

    std::unique_ptr<std::int16_t[]> samples_;
    int position_ = 0;
    int hopSamples_ = 0;
};

}  // namespace beatatlas
