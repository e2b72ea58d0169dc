// SPDX-License-Identifier: MIT
#include "track/key/scoreKeys.h"

#include <algorithm>
#include <cmath>

#include "track/key/keyTemplates.h"

namespace beatatlas::track::inner {

namespace {

// Weights of the other parts relative to the profile.
constexpr double kTriadWeight = 0.4;
constexpr double kBeginWeight = 0.1;
constexpr std::size_t kBeginFrames = 8;  // three seconds
// Fitted so that a probability matches the share of right answers.
constexpr double kSharpness = 14.0;

}  // namespace

ChromaSum meanChroma(const KeyFrames& frames, FrameRange range) {
    ChromaSum mean{};
    for (std::size_t i = range.first; i < range.end; ++i)
        for (std::size_t tone = 0; tone < mean.size(); ++tone)
            mean[tone] += static_cast<double>(frames.chroma[i][tone]);
    for (double& tone : mean) tone /= static_cast<double>(range.end - range.first);
    return mean;
}

KeyValues scoreStretch(const KeyFrames& frames, FrameRange range) {
    KeyValues scores = fitsOf(profileTemplates(), meanChroma(frames, range));
    KeyValues sums{};
    for (std::size_t i = range.first; i < range.end; ++i)
        for (std::size_t key = 0; key < kKeys; ++key)
            sums[key] += static_cast<double>(frames.triads[i][key]);
    const auto count = static_cast<double>(range.end - range.first);
    for (std::size_t key = 0; key < kKeys; ++key) scores[key] += kTriadWeight * (sums[key] / count);
    return scores;
}

KeyValues scoreKeys(const KeyFrames& frames, FrameRange range) {
    KeyValues scores = scoreStretch(frames, range);
    const FrameRange begin{range.first, std::min(range.end, range.first + kBeginFrames)};
    const KeyValues triads = fitsOf(triadTemplates(), meanChroma(frames, begin));
    for (std::size_t key = 0; key < kKeys; ++key) scores[key] += kBeginWeight * triads[key];
    return scores;
}

KeyValues keyProbabilities(const KeyValues& scores) {
    const double best = scores[bestKey(scores)];
    KeyValues shares{};
    double sum = 0.0;
    for (std::size_t key = 0; key < kKeys; ++key) {
        shares[key] = std::exp(kSharpness * (scores[key] - best));
        sum += shares[key];
    }
    for (double& share : shares) share /= sum;
    return shares;
}

std::size_t bestKey(const KeyValues& values) {
    return static_cast<std::size_t>(std::max_element(values.begin(), values.end()) -
                                    values.begin());
}

}  // namespace beatatlas::track::inner
