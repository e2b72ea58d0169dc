// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "dsp/FilterBank.h"
#include "dsp/SecondOrderSection.h"
#include "key/KeyRankMaker.h"
#include "peakss/sensing/designBands.h"

namespace beatatlas {

/** What the analysers of a session with beat analysis hear through filters at the full rate, made
 *  block by block in one pass: each analyser could filter for itself, but sections of different
 *  filters do not wait for each other.
 *
 *  Life: create() → operate() per block, then the signals of that block. Memory: eight blocks,
 *  allocated in create(). */
class TrackFilters {
public:
    /** The analysers' filters over the 16-bit signal; null for an analyser that is off. */
    struct Levels {
        /** Filter of the unit envelope, used twice. */
        const SecondOrderSection* pulses;
        /** Filter of the simple envelope. */
        const SecondOrderSection* bassLine;
        /** Filter of the zoom wave. */
        const SecondOrderSection* bass;
    };

    void create(int rate, int blockLen, const Levels& levels);

    /** Takes the next n ≤ blockLen frames in both forms: the mean of the channels, full scale ±1.0,
     *  and 16 bits.
     *  @param key  may have as many of the frames filtered that wait in it; null: none */
    void operate(const float* mono, const std::int16_t* stereo, int n, KeyRankMaker* key);

    peakss::BandSignals bands() { return {bands_.data(), viewLow_.data()}; }
    const double* pulses() const { return levels_[FilterBank::kTwice].data(); }
    const double* bassLine() const { return levels_[FilterBank::kOnce].data(); }
    const double* bass() const { return levels_[FilterBank::kWhole].data(); }

private:
    void createLevel(FilterBank::Level level, const SecondOrderSection* filter, std::size_t frames);

    static constexpr std::size_t kBands = 4;

    FilterBank bank_;
    std::array<std::vector<float>, kBands> bandBlocks_;
    std::array<float*, kBands> bands_{};
    std::vector<float> viewLow_;
    std::array<std::vector<double>, FilterBank::kLevels> levels_;
};

}  // namespace beatatlas
