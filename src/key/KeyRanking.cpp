// SPDX-License-Identifier: MIT
// A key scores by how much its seven degrees sound, the tonic and the fifth counting most. Major
// and minor of one tonic share four degrees, so when they lead together the third decides: a leader
// whose third is the weaker one is marked down until it no longer leads.
#include "key/KeyRanking.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

namespace beatatlas {

namespace {

constexpr std::size_t kDegrees = 7;

// Semitones above the tonic.
constexpr std::array<int, kDegrees> kMajorScale = {0, 2, 4, 5, 7, 9, 11};
constexpr std::array<int, kDegrees> kMinorScale = {0, 2, 3, 5, 7, 8, 10};
constexpr int kMinorThird = 3;
constexpr int kMajorThird = 4;

// 6, 2, 3, 2, 5, 2 and 3 of 23 parts.
constexpr std::array<double, kDegrees> kDegreeWeights = {
    0.26086956521739130435, 0.08695652173913043478, 0.13043478260869565217, 0.08695652173913043478,
    0.21739130434782608696, 0.08695652173913043478, 0.13043478260869565217};

bool isMajor(int key) {
    return key < kPitchClasses;
}

double at(const Chroma& chroma, int note) {
    return chroma[static_cast<std::size_t>(note % kPitchClasses)];
}

}  // namespace

void KeyRanking::reset() {
    std::iota(keys_.begin(), keys_.end(), 0);
    scores_.fill(0.0);
}

void KeyRanking::rank(const Chroma& chroma) {
    reset();
    score(chroma);
    sort();
    while (settleParallelKeys(chroma)) sort();
}

void KeyRanking::score(const Chroma& chroma) {
    for (int key = 0; key < kKeys; ++key) {
        const auto& scale = isMajor(key) ? kMajorScale : kMinorScale;
        double sum = 0.0;
        for (std::size_t j = 0; j < kDegrees; ++j)
            sum += at(chroma, key + scale[j]) * kDegreeWeights[j];
        scores_[static_cast<std::size_t>(key)] = sum;
    }
}

// An exchange sort: which of several equal keys comes first depends on its exchanges.
void KeyRanking::sort() {
    for (std::size_t i = 0; i < keys_.size(); ++i)
        for (std::size_t j = i + 1; j < keys_.size(); ++j) {
            if (!(scores_[j] > scores_[i])) continue;
            std::swap(scores_[i], scores_[j]);
            std::swap(keys_[i], keys_[j]);
        }
}

/** Marks the leader down when its parallel key is second and has the stronger third; true when the
 *  order has changed by that.
 *
 *  While the leader keeps its place nothing else changes, so all its rounds are taken here. It
 *  loses the lead to its parallel key, whose third is the stronger one: there is no second time,
 *  the ranking stands after one. */
bool KeyRanking::settleParallelKeys(const Chroma& chroma) {
    const int leader = keys_[0];
    const int tonic = leader % kPitchClasses;
    if (keys_[1] % kPitchClasses != tonic) return false;
    const double majorOverMinor = at(chroma, tonic + kMajorThird) - at(chroma, tonic + kMinorThird);
    const double lead = isMajor(leader) ? majorOverMinor : -majorOverMinor;
    if (!(lead < 0.0)) return false;
    scores_[0] = subtractUntilBelow(scores_[0], -lead, scores_[1]);
    return scores_[0] < scores_[1];
}

double subtractUntilBelow(double score, double step, double limit) {
    while (score >= limit) {
        const double next = score - step;
        if (!(next < score)) break;
        // From one power of two to the next, differences rounded toward zero all lose the same
        // amount, a whole number of the score's last places. As many as surely stay between the two
        // are taken at once: exactly.
        const int exponent = std::ilogb(score);
        const double lowerEnd =
            score > 0.0 ? std::ldexp(1.0, exponent) : -std::ldexp(2.0, exponent);
        const double loss = score - next;
        const double rounds = std::floor((score - std::max(limit, lowerEnd)) / loss);
        score = rounds > 1.0 ? score - (rounds * loss) : next;
    }
    return score;
}

}  // namespace beatatlas
