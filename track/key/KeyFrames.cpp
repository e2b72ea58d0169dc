// SPDX-License-Identifier: MIT
#include "track/key/KeyFrames.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "track/key/frameChroma.h"
#include "track/key/keyTemplates.h"

namespace beatatlas::track::inner {

namespace {

// 60 dB below the loudest frame: the decay after the end of the music.
constexpr float kLeastTop = 1e-3F;
// A sine 100 dB below full scale, under a Hann window of 4,096 samples: inaudible, however quiet
// the rest is.
constexpr float kSilence = 1e-5F * 1024.0F;
// How strongly the share of a triad grows with its fit; larger: the best triad takes all.
constexpr double kTriadSharpness = 10.0;

/** The sum of a frame and its neighbours, which shows the chord even if the frame lies between two
 *  chords. */
ChromaSum aroundFrame(const std::vector<Chroma>& chroma, std::size_t frame) {
    ChromaSum sum{};
    const std::size_t from = frame == 0 ? 0 : frame - 1;
    const std::size_t end = std::min(frame + 2, chroma.size());
    for (std::size_t i = from; i < end; ++i)
        for (std::size_t tone = 0; tone < sum.size(); ++tone)
            sum[tone] += static_cast<double>(chroma[i][tone]);
    return sum;
}

KeyFrames::Triads triadsOf(const ChromaSum& chroma) {
    const KeyValues fits = fitsOf(triadTemplates(), chroma);
    const double best = *std::max_element(fits.begin(), fits.end());
    KeyValues shares{};
    double sum = 0.0;
    for (std::size_t key = 0; key < kKeys; ++key) {
        shares[key] = std::exp(kTriadSharpness * (fits[key] - best));
        sum += shares[key];
    }
    KeyFrames::Triads triads{};
    for (std::size_t key = 0; key < kKeys; ++key)
        triads[key] = static_cast<float>(shares[key] / sum);
    return triads;
}

}  // namespace

KeyFrames foldFrames(const PeakStore& peaks, double tuning, double secondsPerFrame) {
    KeyFrames frames;
    const float least = std::max(kLeastTop * peaks.loudest(), kSilence);
    for (std::size_t i = 0; i < peaks.frames(); ++i) {
        if (peaks.top(i) <= least) continue;
        const std::optional<Chroma> chroma = foldFrame(peaks.peaks(i), tuning);
        if (!chroma) continue;
        frames.chroma.push_back(*chroma);
        frames.seconds.push_back(static_cast<double>(i + 1) * secondsPerFrame);
    }
    frames.triads.reserve(frames.size());
    for (std::size_t i = 0; i < frames.size(); ++i)
        frames.triads.push_back(triadsOf(aroundFrame(frames.chroma, i)));
    return frames;
}

}  // namespace beatatlas::track::inner
