// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "envelope/EnvelopeGrid.h"

namespace beatatlas {

/** Votes of the pulses on which of four successive beats is the first of the bar.
 *
 *  The first pulse, pulses after long quiet passages and the starts of rhythm figures each vote
 *  for the beat nearest to them, with their level or with a constant. Life: construct → the add…
 *  stages in their order below → firstOfBar(). The constructor's arguments must outlive it. */
class BarPhaseScores {
public:
    /** @param grid        beats on the envelope
     *  @param peaks       envelope indices of the pulses, ascending; empty gives no votes
     *  @param peakLevels  level of each pulse at its envelope index
     *  @param lead        envelope values by which a pulse's maximum follows its beat */
    BarPhaseScores(const EnvelopeGrid& grid, const std::vector<int>& peaks,
                   const std::vector<std::int16_t>& peakLevels, int lead);

    void setFirstPulse();
    void addSectionStarts();
    void addFigures(const std::vector<int>& figures);

    /** Position 0..3 of the bar's first beat, counted from the first beat of the grid. */
    int firstOfBar() const;

    const std::array<double, 4>& scores() const { return scores_; }

private:
    int level(int peak) const { return peakLevels_[static_cast<std::size_t>(peak)]; }
    double beatLengthAt(int peak) const;
    void addVote(int peak, double weight);
    bool isLoudSectionStart(std::size_t i, int loudest) const;

    const EnvelopeGrid& grid_;
    const std::vector<int>& peaks_;
    const std::vector<std::int16_t>& peakLevels_;
    int lead_;
    std::array<double, 4> scores_{};
};

}  // namespace beatatlas
