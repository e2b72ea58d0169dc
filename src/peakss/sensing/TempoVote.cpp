// SPDX-License-Identifier: MIT
#include "peakss/sensing/TempoVote.h"

#include <algorithm>
#include <cstddef>

#include "dsp/truncation.h"
#include "peakss/beatInterval.h"

namespace peakss {

using beatatlas::truncToInt32;

void TempoVote::reset() {
    bpmHist_.fill(0);
    resetRange();
}

void TempoVote::resetRange() {
    histMin_ = 200;
    histMax_ = 40;
}

void TempoVote::widenRange(int bpm) {
    histMin_ = std::min(histMin_, bpm);
    histMax_ = std::max(histMax_, bpm);
}

int TempoVote::bpmOf(float intervalMs) {
    return truncToInt32((60000.0F / intervalMs) + 0.5F);
}

void TempoVote::add(float intervalMs, float dev) {
    const int bpm = bpmOf(intervalMs);
    if (!isInside(bpm)) return;
    bpmHist_[static_cast<std::size_t>(bpm)] += std::max(truncToInt32(4.0F / (dev + 1.0F)), 1);
    widenRange(bpm);
}

int TempoVote::winner() const {
    int winner = -1;
    int most = 0;
    for (int bpm = histMin_; bpm <= histMax_; ++bpm) {
        if (votes(bpm) <= most) continue;
        most = votes(bpm);
        winner = bpm;
    }
    return winner;
}

void TempoVote::keepOnly(float intervalMs) {
    const int lowest = histMin_;
    const int highest = histMax_;
    resetRange();
    for (int bpm = lowest; bpm <= highest; ++bpm) {
        if (missesTempoOf(intervalOfBpm(bpm), intervalMs)) {
            bpmHist_[static_cast<std::size_t>(bpm)] = 0;
        } else if (votes(bpm) != 0) {
            widenRange(bpm);
        }
    }
}

}  // namespace peakss
