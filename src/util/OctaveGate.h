// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace beatatlas {

/** Silences the bins of a magnitude spectrum that do not stand out of the octave around them.
 *
 *  A held note is a peak; a drum hit spreads over all bins. The bar to reach rises with the
 *  logarithm of the frequency, since the octaves of the treble hold ever more bins. The lowest four
 *  bins always pass.
 *
 *  Life: one gate serves spectra of one length. Nothing is allocated after construction. */
class OctaveGate {
public:
    /** @param bins 0 or more: the lower half of a spectrum */
    explicit OctaveGate(int bins);

    /** Sets the weak bins of `magnitudes` to 0. */
    void apply(float* magnitudes);

private:
    std::size_t bins_;
    // Per bin k: the octave lo … hi around it, both included, 1 / (hi - lo), and log10(k + 1).
    std::unique_ptr<std::int32_t[]> lo_;
    std::unique_ptr<std::int32_t[]> hi_;
    std::unique_ptr<float[]> widthWeight_;
    std::unique_ptr<float[]> logPlace_;
    std::unique_ptr<float[]> sums_;  // with room for the last block
};

}  // namespace beatatlas
