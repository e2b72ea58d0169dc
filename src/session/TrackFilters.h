// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "dsp/FilterBank.h"
#include "dsp/SecondOrderSection.h"
#include "key/KeyRankMaker.h"
#include "peakss/sensing/designBands.h"
#include "session/SessionCascades.h"

namespace beatatlas {

/** What the analysers of a session hear through filters at the full rate, made block by block in
 *  one pass: sections of different filters do not wait for each other. The bass filter of the zoom
 *  wave, when nothing else is wanted, is run plainly: a bank costs the same for one section as for
 *  all.
 *
 *  Life: create() → operate() per block, then the signals of that block. Memory: a bank of 90 KB,
 *  allocated in create(). */
class TrackFilters {
public:
    using Bank = FilterBank<SessionCascades>;

    /** What will be heard: the bands of the beat sensor and the loudness view, and the analysers'
     *  own filters over the 16-bit signal, null for an analyser that is off. */
    struct Wanted {
        bool bands;
        /** Of the unit envelope, used twice. */
        const SecondOrderSection* pulses;
        /** Of the simple envelope. */
        const SecondOrderSection* bassLine;
        /** Of the zoom wave. */
        const SecondOrderSection* bass;
    };

    /** @param rate  of the track, in Hz. Throws std::bad_alloc. */
    void create(int rate, const Wanted& wanted);

    /** Takes the next n frames in both forms, at most a block of 1/75 s: the mean of the channels,
     *  full scale ±1.0, and 16 bits.
     *  @param key  may have as many of the frames filtered that wait in it; null: none */
    void operate(const float* mono, const std::int16_t* stereo, int n, KeyRankMaker* key);

    peakss::BandSignals bands() {
        return {bands_.data(), bank_->magnitudes(SessionCascades::kViewLow)};
    }
    const double* pulses() const { return bank_->values(SessionCascades::kPulses); }
    const double* bassLine() const { return bank_->values(SessionCascades::kBassLine); }
    const double* bass() const {
        return bassAlone_ ? bassBlock_.data() : bank_->values(SessionCascades::kBass);
    }

private:
    void designBands(float rate);

    bool wantsBands_ = false;
    bool wantsMeans_ = false;
    std::unique_ptr<Bank> bank_;
    std::array<float*, 4> bands_{};
    std::optional<SecondOrderSection> bassAlone_;
    std::array<double, static_cast<std::size_t>(SessionCascades::kMostSamples)> bassBlock_{};
};

}  // namespace beatatlas
