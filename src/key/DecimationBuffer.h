// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

namespace beatatlas {

/** The newest 16384 filtered samples, from which every fourth makes one analysis frame of 4096; a frame every 0.3 s.
 *
 *  Each sample is held twice, as the left and the right of a stereo stream would be; positions count entries. */
class DecimationBuffer {
public:
    static constexpr int kEntries = 32768;
    static constexpr int kFrameSamples = 4096;

    /** @param rate  samples per second; below 4 there is no hop, and nothing may be put */
    void create(int rate);
    void reset();
    void release() { entries_.reset(); }

    /** Adds one sample; true when a frame is complete: take it, then hop. */
    bool put(std::int16_t sample);

    /** Sample i of the frame, 0 ≤ i < kFrameSamples. */
    std::int16_t frameSample(int i) const { return entries_[index(i * kEntriesPerFrameSample)]; }

    /** Makes room for the next 0.3 s. At rates above 54,600 that is more than the buffer holds: the position
     *  turns negative and the samples up to 0 are passed over. */
    void hop();

private:
    static constexpr int kEntriesPerFrameSample = kEntries / kFrameSamples;

    static std::size_t index(int i) { return static_cast<std::size_t>(i); }

    std::unique_ptr<std::int16_t[]> entries_;
    int position_ = 0;
    int hopEntries_ = 0;
};

}  // namespace beatatlas
