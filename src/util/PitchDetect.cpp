// SPDX-License-Identifier: MIT
// Finds what A4 is tuned to. Each candidate reference is given two octaves of semitone bins; a
// recording tuned to it puts its notes at the centres of bins, where magnitudes are largest and the
// strongest bin does not waver from frame to frame:
//   1. score the candidates of the first pass
//   2. where that pass left gaps, score the neighbours of the best ones
//   3. the best score wins, the lower reference among equals
#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <numeric>

#include "beatatlas/dsp.h"
#include "beatatlas/utilities.h"
#include "dsp/ConstantQBank.h"
#include "dsp/isLongTrack.h"
#include "util/PitchSearchPlan.h"

namespace {

constexpr int kLowestReferenceHz = 434;
constexpr int kCandidates = 13;
constexpr int kBins = 24;

/** Recording and hop, and the scores of the candidates measured so far; 0 for the others. */
class CandidateScores {
public:
    CandidateScores(const float* samples, int n, float rate, int hop)
        : samples_(samples), n_(n), rate_(rate), hop_(hop) {}

    /** Scores candidates first, first + step, … below end. */
    void measure(int first, int step, int end) {
        for (int candidate = first; candidate < end; candidate += step)
            scores_[static_cast<std::size_t>(candidate)] = scoreOf(candidate);
    }

    /** Scores the neighbours that the every-other pass left out, where the best candidate may
     *  hide. */
    void refine();

    int best() {
        int at = 0;
        max_v(scores_.data(), kCandidates, &at);
        return at;
    }

private:
    float scoreOf(int candidate) const;

    const float* samples_;
    int n_;
    float rate_;
    int hop_;
    std::array<float, kCandidates> scores_{};
};

/** Adds up the strongest magnitudes of the frames whose strongest bin is that of the frame before.
 *  The first frame has none before it and counts. */
float steadyMaxima(const float* rows, int frames) {
    float score = 0.0F;
    int previous = 0;
    for (int j = 0; j < frames; ++j) {
        std::array<float, kBins> bins{};
        for (std::size_t k = 0; k < kBins; ++k)
            bins[k] = rows[(k * static_cast<std::size_t>(frames)) + static_cast<std::size_t>(j)];
        int at = 0;
        const float strongest = max_v(bins.data(), kBins, &at);
        if (j == 0 || at == previous) score += strongest;
        previous = at;
    }
    return score;
}

float CandidateScores::scoreOf(int candidate) const {
    const auto referenceHz = static_cast<float>(kLowestReferenceHz + candidate);
    const beatatlas::ConstantQBank bank(kBins, referenceHz, rate_);
    const int frames = bank.frameCount(n_, hop_);
    if (frames == 0) return 0.0F;
    const auto row = static_cast<std::size_t>(frames);
    const auto rows = std::make_unique<float[]>(kBins * row);
    bank.magnitudes(samples_, hop_, frames, beatatlas::ConstantQBank::Place::start, rows.get());
    return steadyMaxima(rows.get(), frames);
}

void CandidateScores::refine() {
    std::array<float, kCandidates> sorted = scores_;
    std::array<int, kCandidates> order{};
    std::iota(order.begin(), order.end(), 0);
    QSort3(sorted.data(), order.data(), 0, kCandidates - 1);
    // At the edges of the first pass the answer may lie beyond it.
    if (order[0] == 2) {
        measure(0, 1, 2);
    } else if (order[0] == 10) {
        measure(11, 1, kCandidates);
    } else {
        measure(std::min(order[0], order[1]) + 1, 2, std::max(order[0], order[1]));
    }
}

}  // namespace

int PitchDetect(float* samples, int n, float rate, int hopDivisor, int mode) {
    if (samples == nullptr || hopDivisor < 1) return kLowestReferenceHz;
    const beatatlas::PitchSearchPlan plan =
        beatatlas::pitchSearchPlanOf(mode, beatatlas::isLongTrack(n, rate));
    CandidateScores scores(samples, n, rate, plan.hop / hopDivisor);
    scores.measure(plan.start, plan.step, plan.end);
    if (plan.refinesAfter) scores.refine();
    return kLowestReferenceHz + scores.best();
}
