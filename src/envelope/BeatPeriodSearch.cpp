// SPDX-License-Identifier: MIT
#include "envelope/BeatPeriodSearch.h"

#include "dsp/truncation.h"

namespace beatatlas {

namespace {

constexpr int kCoarseTrials = 41;
constexpr double kCoarseStep = 0.1;
constexpr int kFineTrials = 21;
constexpr double kFineStep = 0.01;

std::int64_t sumAlong(const std::vector<std::int16_t>& envelope, std::int64_t start, double period,
                      std::size_t pointCount) {
    const auto end = static_cast<std::int64_t>(envelope.size());
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < pointCount; ++i) {
        const std::int64_t index = truncToInt32(static_cast<double>(i) * period + 0.5) + start;
        if (index >= end) break;
        if (index >= 0) sum += envelope[static_cast<std::size_t>(index)];
    }
    return sum;
}

}  // namespace

double findBeatPeriod(const std::vector<std::int16_t>& envelope, std::int64_t start,
                      double beatLength, std::size_t pointCount) {
    const auto bestTrial = [&](double base, double step, int trials) {
        int best = 0;
        std::int64_t bestSum = sumAlong(envelope, start, base, pointCount);
        for (int trial = 1; trial < trials; ++trial) {
            const std::int64_t sum = sumAlong(envelope, start, trial * step + base, pointCount);
            if (sum <= bestSum) continue;
            bestSum = sum;
            best = trial;
        }
        return best;
    };
    const double coarseBase = beatLength - 2.0;
    const int coarse = bestTrial(coarseBase, kCoarseStep, kCoarseTrials);
    const double fineBase = (coarseBase + coarse * kCoarseStep) + -0.1;
    return fineBase + bestTrial(fineBase, kFineStep, kFineTrials) * kFineStep;
}

}  // namespace beatatlas
