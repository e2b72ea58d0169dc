// SPDX-License-Identifier: MIT
#include "peakss/grid/getScore.h"

#include <cstdlib>

#include "dsp/truncation.h"
#include "peakss/grid/beatSearch.h"

namespace peakss {

double getScore(const BeatList& raw, double from, double to, double step, int tolerance,
                double* firstHit) {
    double score = 0.0;
    double first = -1.0;
    double x = from;
    while (x < to && step >= 1.0) {
        const double before = x;
        const std::int32_t target = beatatlas::truncToInt32(x);
        int beat = -1;
        const std::int32_t pos = findNearPos(raw, target, tolerance, &beat);
        if (beat >= 0) {
            score +=
                static_cast<double>(tolerance - std::abs(static_cast<std::int64_t>(pos) - target));
            x = pos;
            if (first < 0.0) first = x;
        }
        x += step;
        if (!(x > before)) break;
    }
    if (firstHit != nullptr) *firstHit = first;
    return score;
}

}  // namespace peakss
