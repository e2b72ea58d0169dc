// SPDX-License-Identifier: MIT
#include "track/evidence/ChordChanges.h"

#include <algorithm>
#include <cmath>

namespace beatatlas::track::inner {

namespace {

constexpr double kTiny = 1e-9;
constexpr std::array<std::size_t, ChordChanges::kSpans> kSpanFrames = {5, 10, 20};

double lengthOf(const ChromaSum& sum) {
    double squares = 0.0;
    for (const double value : sum) squares += value * value;
    return std::sqrt(squares);
}

/** For each frame the sum of all frames before it; at the end the sum of all. */
std::vector<ChromaSum> sumsBefore(const std::vector<Chroma>& chroma) {
    std::vector<ChromaSum> sums(chroma.size() + 1);
    for (std::size_t i = 0; i < chroma.size(); ++i)
        for (std::size_t p = 0; p < chroma[i].size(); ++p)
            sums[i + 1][p] = sums[i][p] + static_cast<double>(chroma[i][p]);
    return sums;
}

ChromaSum difference(const ChromaSum& later, const ChromaSum& earlier) {
    ChromaSum sum;
    for (std::size_t p = 0; p < sum.size(); ++p) sum[p] = later[p] - earlier[p];
    return sum;
}

std::vector<float> curveOf(const std::vector<ChromaSum>& sums, std::size_t span) {
    const std::size_t frames = sums.size() - 1;
    std::vector<float> curve(sums.size());
    for (std::size_t k = 1; k < frames; ++k) {
        const ChromaSum before = difference(sums[k], sums[k > span ? k - span : 0]);
        const ChromaSum after = difference(sums[std::min(frames, k + span)], sums[k]);
        curve[k] = static_cast<float>(chordDistance(before, after));
    }
    return curve;
}

}  // namespace

ChordChanges findChordChanges(const std::vector<Chroma>& chroma) {
    ChordChanges changes;
    const std::vector<ChromaSum> sums = sumsBefore(chroma);
    for (std::size_t span = 0; span < ChordChanges::kSpans; ++span) {
        changes.curves[span] = curveOf(sums, kSpanFrames[span]);
        double sum = 0.0;
        for (const float value : changes.curves[span]) sum += static_cast<double>(value);
        changes.means[span] = sum / static_cast<double>(changes.curves[span].size());
    }
    return changes;
}

double ChordChanges::at(Span span, double seconds) const {
    const std::vector<float>& curve = curves[span];
    const auto last = static_cast<double>(curve.size() - 1);
    const double frame = std::floor(seconds * ChromaStream::kFramesPerSecond + 0.5);
    return static_cast<double>(curve[static_cast<std::size_t>(std::clamp(frame, 0.0, last))]);
}

double chordDistance(const ChromaSum& a, const ChromaSum& b) {
    const double aLength = lengthOf(a) + kTiny;
    const double bLength = lengthOf(b) + kTiny;
    ChromaSum apart;
    for (std::size_t p = 0; p < apart.size(); ++p) apart[p] = a[p] / aLength - b[p] / bLength;
    return lengthOf(apart);
}

}  // namespace beatatlas::track::inner
