// SPDX-License-Identifier: MIT
#include "peakss/grid/SnapWalkScorer.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <limits>

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

SnapWalkScorer::SnapWalkScorer(const BeatList& raw) : raw_(raw), tails_(raw.size()) {}

void SnapWalkScorer::setPulse(double to, double step, int tolerance) {
    ++pulse_;
    to_ = to;
    step_ = step;
    tolerance_ = tolerance;
}

double SnapWalkScorer::score(double from, double& firstHit) {
    firstHit = -1.0;
    const Hit first = nextHit(from);
    if (first.beat < 0) return 0.0;
    // A beat before the start of the track does not pass for a first hit.
    for (Hit hit = first; hit.beat >= 0; hit = nextHit(positionOf(hit.beat) + step_)) {
        firstHit = positionOf(hit.beat);
        if (firstHit >= 0.0) break;
    }
    return first.points + pointsBehind(first.beat);
}

SnapWalkScorer::Hit SnapWalkScorer::nextHit(double x) const {
    double quietUntil = std::numeric_limits<double>::lowest();
    for (; x < to_; x += step_) {
        if (x < quietUntil) continue;
        const std::int32_t target = beatatlas::truncToInt32(x);
        int beat = -1;
        const std::int32_t pos = findNearPos(raw_, target, tolerance_, &beat);
        if (beat >= 0) {
            const auto away = static_cast<int>(std::abs(static_cast<std::int64_t>(pos) - target));
            return {beat, tolerance_ - away};
        }
        const auto next = std::upper_bound(
            raw_.begin(), raw_.end(), target,
            [](std::int32_t value, const BeatInfo& later) { return value < later.pos; });
        if (next == raw_.end()) break;
        // Steps are added one by one all the same: each sum rounds.
        quietUntil = (static_cast<double>(next->pos) - tolerance_) - 1.0;
    }
    return {};
}

double SnapWalkScorer::pointsBehind(int beat) {
    path_.clear();
    double points = 0.0;
    // path_ holds the beats whose tails are asked for, each with the points its next beat gives.
    while (beat >= 0) {
        const Tail& tail = tails_[static_cast<std::size_t>(beat)];
        if (tail.pulse == pulse_) {
            points = tail.points;
            break;
        }
        const Hit next = nextHit(positionOf(beat) + step_);
        path_.push_back({beat, next.points});
        beat = next.beat;
    }
    // NOLINTNEXTLINE(modernize-loop-convert): Clang 14 cannot read views::reverse of GCC's library
    for (auto hit = path_.rbegin(); hit != path_.rend(); ++hit) {
        points += hit->points;
        tails_[static_cast<std::size_t>(hit->beat)] = {pulse_, points};
    }
    return points;
}

}  // namespace peakss
