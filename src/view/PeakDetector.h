// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "view/DetectorTiming.h"
#include "view/PeakRecords.h"

namespace beatatlas {

/** What the two peak detectors of a band have in common: a held level, the time since the last
 *  accepted peak, and the rules by which a level counts as a candidate and decays. */
class PeakDetector {
public:
    /** @param ratio  share of the held level from which a level is a peak candidate */
    void create(const DetectorTiming& timing, float ratio);
    void reset();

    /** Records closed so far; the record of this index is the current one. */
    std::int32_t recordCount() const { return recordCount_; }

    /** The declared track's last sample has been judged. */
    bool ended() const { return ended_; }

protected:
    /** @param floor  level (16-bit scale) under which nothing is held */
    explicit PeakDetector(float floor) : floor_(floor) {}
    ~PeakDetector() = default;

    /** Whether a chunk passes without a trace but for the time it takes. Before the least interval
     *  only a sample above the held level has an effect, after it every candidate; past the hold
     *  time silence itself has one.
     *  @param m           samples of the chunk
     *  @param loudest     the loudest of them; NaN counts for nothing, as in every comparison of
     *                     the detectors
     *  @param recordZero  what record 0 holds: the mark of no peak yet, or any level */
    bool passesUnnoticed(int m, float loudest, float recordZero) const;

    float candidateLevel(float held) const { return held > floor_ ? ratio_ * held : floor_; }
    float decayed(float held) const {
        const float lower = held * kDecay;
        return lower > floor_ ? lower : floor_;
    }

    DetectorTiming timing_;
    std::int64_t count_ = 0;  // samples since the last accepted peak
    std::int32_t recordCount_ = 0;
    std::int64_t chunksSeen_ = 0;
    bool ended_ = false;
    float held_ = 0.0F;
    // Samples since the last decay. Starts anew with every chunk, so a chunk of 588 samples (44,100
    // Hz) lets the level decay once at the most.
    std::int32_t decay_ = 0;

private:
    static constexpr float kDecay = 0.9938303F;

    float floor_;
    float ratio_ = 0.0F;
};

}  // namespace beatatlas
