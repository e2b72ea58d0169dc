// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace beatatlas {

/** Magnitudes of a row of semitone bins, each over a window of as many periods of its own pitch (J.
 *  C. Brown, "Calculation of a constant Q spectral transform", JASA 89, 1991), summed directly.
 *
 *  A direct sum in single precision, in order of time, is what makes the results reproducible; a
 *  transform by FFT would be faster and would round otherwise.
 *
 *  Cost: per frame two products per sample of each window; about 950,000 samples for six octaves
 *  from 27.5 Hz at 44,100 Hz. Memory: two floats per sample of all windows. */
class ConstantQBank {
public:
    /** @param bins      semitone bins upward from lowestHz, above 0
     *  @param lowestHz  centre of bin 0
     *  @param rate      samples per second
     *  Arguments without meaning (NaN, not above 0, a rate at which even bin 0 would see no whole
     *  sample) give a bank that is not usable. Where only the upper bins see none, their magnitudes
     *  are NaN. */
    ConstantQBank(int bins, float lowestHz, float rate);

    bool isUsable() const { return usable_; }

    /** Whole frames in n samples at a hop of hop samples; 0 when the bank is not usable or hop <
     *  1. */
    int frameCount(long n, int hop) const;

    /** Samples under the window of bin k; those of bin 0, the longest, are the frame. */
    int windowLength(int k) const { return lengths_[static_cast<std::size_t>(k)]; }
    int frameLength() const { return windowLength(0); }

    /** Where in the frame the windows lie that are shorter than it. */
    enum class Place { start, middle };

    /** The magnitudes of all bins in frames frames that start at samples, samples + hop …, each
     *  weighed by the ratio of the frame's length to the window's.
     *  @param rows  receives the frames of bin 0, then those of bin 1 … */
    void magnitudes(const float* samples, int hop, int frames, Place place, float* rows) const;

private:
    std::vector<float> kernels() const;
    float weightOf(std::size_t k) const;

    float rate_;
    bool usable_ = false;
    // In Hz, one more than bins.
    std::vector<float> frequencies_;
    // In samples.
    std::vector<std::int32_t> lengths_;
};

}  // namespace beatatlas
