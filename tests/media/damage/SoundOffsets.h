// SPDX-License-Identifier: MIT
#pragma once

#include <complex>
#include <cstddef>
#include <optional>
#include <vector>

namespace test {

/** Finds where stretches of a damaged track belong in the whole one. */
class SoundOffsets {
public:
    /** How far a track is out of place. */
    struct Answer {
        /** Seconds, of any stretch that was recognised. */
        double worst = 0.0;
        /** Of the last one. */
        double last = 0.0;
        /** Share of the stretches of the whole track that are somewhere. */
        double heard = 0.0;
        /** Seconds by which the damaged track is shorter; longer: negative. */
        double missing = 0.0;
    };

    SoundOffsets(std::vector<float> whole, int rate);

    Answer compare(const std::vector<float>& damaged) const;

private:
    using Spectrum = std::vector<std::complex<double>>;

    double likeness(const std::vector<float>& damaged, std::size_t at, long lag) const;
    std::optional<long> search(const std::vector<float>& damaged, std::size_t at) const;
    std::optional<long> refine(const std::vector<float>& damaged, std::size_t at, long lag) const;
    Spectrum coarse(const std::vector<float>& sound, std::size_t from, std::size_t count) const;

    std::vector<float> whole_;
    int rate_;
    std::size_t coarseSize_ = 1;
    Spectrum wholeSpectrum_;
};

}  // namespace test
