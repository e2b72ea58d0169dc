// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

namespace beatatlas {

/** The newest 16384 filtered samples, from which every fourth makes one analysis frame of 4096; a frame every 0.3 s. */
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

    /** Adds n samples; 0 ≤ n ≤ missing(). */
    void put(const std::int16_t* filtered, int n);

    /** The complete frame: kFrameSamples of them, each so many entries after the one before. */
    static constexpr int kSpacing = kSamples / kFrameSamples;
    const std::int16_t* frame() const { return samples_.get(); }

    /** Makes room for the next 0.3 s. At rates above 54,600 that is more than the buffer holds: the position
     *  turns negative and the samples up to 0 are passed over. */
    void hop();

private:
    static std::size_t index(int i) { return static_cast<std::size_t>(i); }

    std::unique_ptr<std::int16_t[]> samples_;
    int position_ = 0;
    int hopSamples_ = 0;
};

}  // namespace beatatlas
