// SPDX-License-Identifier: MIT
// Method: spectral flux of log-compressed bands, as surveyed in S. Böck, F. Krebs, M. Schedl, "Evaluating the online
// capabilities of onset detection methods" (2012).
//   1. the logarithm of a level, relative to the loud passages of the track; nearly linear far below them, so that the
//      rustle of a quiet passage is no onset
//   2. its rise in each band over one frame and over two, averaged over each group of bands
//   3. each group divided by its mean over the track: what seldom happens in a group counts more
#include "track/evidence/OnsetEnvelopes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace beatatlas::track::inner {

namespace {

// A level of a hundredth of the loud one is where the curve turns from linear to logarithmic.
constexpr double kCompression = 100.0;
constexpr double kLeastLoudLevel = 1e-9;
constexpr double kLeastMean = 1e-9;
// The groups from 520 Hz up.
constexpr std::size_t kFirstSharpGroup = 2;
constexpr std::int64_t kPeakFramesBefore = 2;
constexpr std::int64_t kPeakFramesAfter = 4;

using Groups = OnsetEnvelopes::Groups;
using Sums = std::array<double, kGroups>;

/** The compressed level of each code. */
std::vector<float> compressedLevels(const BandLevels& levels) {
    std::vector<float> compressed = levelsOfCodes();
    const double scale = kCompression / std::max(levels.loudLevel(compressed), kLeastLoudLevel);
    for (float& level : compressed)
        level = static_cast<float>(std::log1p(scale * static_cast<double>(level)));
    return compressed;
}

/** The rises of a track, frame after frame. */
class RiseMeter {
public:
    explicit RiseMeter(const BandLevels& levels)
        : compressed_(compressedLevels(levels)), bands_(levels.bands()),
          starts_(levels.groupStarts()) {
        for (auto& row : rows_) row.resize(bands_);
    }

    /** The codes of the next frame. */
    void put(const LevelCode* codes) {
        std::vector<float>& row = rows_[static_cast<std::size_t>(frame_ % 3)];
        for (std::size_t band = 0; band < bands_; ++band) row[band] = compressed_[codes[band]];
        ++frame_;
    }

    /** Mean rise of each group of the latest frame over the one `lag` before; 0 where there is none. */
    Groups riseOver(std::int64_t lag) const {
        Groups rises{};
        if (frame_ <= lag) return rises;
        const std::vector<float>& row = rows_[static_cast<std::size_t>((frame_ - 1) % 3)];
        const std::vector<float>& before = rows_[static_cast<std::size_t>((frame_ - 1 - lag) % 3)];
        for (std::size_t g = 0; g < kGroups; ++g) {
            float sum = 0.0F;
            for (std::size_t band = starts_[g]; band < starts_[g + 1]; ++band)
                sum += std::max(0.0F, row[band] - before[band]);
            rises[g] = sum / static_cast<float>(starts_[g + 1] - starts_[g]);
        }
        return rises;
    }

private:
    std::vector<float> compressed_;
    std::size_t bands_;
    std::array<std::size_t, kGroups + 1> starts_;
    std::array<std::vector<float>, 3> rows_;
    std::int64_t frame_ = 0;
};

void addTo(Sums& sums, const Groups& values) {
    for (std::size_t g = 0; g < kGroups; ++g) sums[g] += static_cast<double>(values[g]);
}

/** What makes the mean of so many values 1. */
Groups scalesOf(const Sums& sums, std::size_t count) {
    Groups scales{};
    for (std::size_t g = 0; g < kGroups; ++g)
        scales[g] = static_cast<float>(1.0 / (sums[g] / static_cast<double>(count) + kLeastMean));
    return scales;
}

float meanFrom(std::size_t firstGroup, const Groups& values) {
    float sum = 0.0F;
    for (std::size_t g = firstGroup; g < kGroups; ++g) sum += values[g];
    return sum / static_cast<float>(kGroups - firstGroup);
}

}  // namespace

OnsetEnvelopes makeOnsetEnvelopes(BandLevels& levels) {
    OnsetEnvelopes envelopes;
    const auto frames = static_cast<std::size_t>(levels.frames());
    std::vector<Groups> quick;
    quick.reserve(frames);
    envelopes.rises.reserve(frames);
    Sums quickSums{};
    Sums sums{};
    RiseMeter meter(levels);
    while (const std::unique_ptr<LevelCode[]> chunk = levels.takeChunk()) {
        const std::size_t end = std::min(frames, quick.size() + BandLevels::kChunkFrames);
        for (const LevelCode* codes = chunk.get(); quick.size() < end; codes += levels.bands()) {
            meter.put(codes);
            addTo(quickSums, quick.emplace_back(meter.riseOver(1)));
            addTo(sums, envelopes.rises.emplace_back(meter.riseOver(2)));
        }
    }
    const Groups quickScales = scalesOf(quickSums, frames);
    const Groups scales = scalesOf(sums, frames);
    envelopes.sharp.reserve(frames);
    envelopes.full.reserve(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        for (std::size_t g = 0; g < kGroups; ++g) {
            quick[i][g] *= quickScales[g];
            envelopes.rises[i][g] *= scales[g];
        }
        envelopes.sharp.push_back(meanFrom(kFirstSharpGroup, quick[i]));
        envelopes.full.push_back(meanFrom(0, envelopes.rises[i]));
    }
    return envelopes;
}

Groups OnsetEnvelopes::strengthAt(double seconds) const {
    const auto last = static_cast<double>(rises.size() - 1);
    const double frame = std::clamp(std::nearbyint(seconds * kFramesPerSecond), 0.0, last);
    const auto center = static_cast<std::int64_t>(frame);
    const auto from =
        static_cast<std::size_t>(std::max<std::int64_t>(0, center - kPeakFramesBefore));
    const auto to = std::min(rises.size() - 1, static_cast<std::size_t>(center + kPeakFramesAfter));
    Groups strongest = rises[from];
    for (std::size_t i = from + 1; i <= to; ++i)
        for (std::size_t g = 0; g < kGroups; ++g)
            strongest[g] = std::max(strongest[g], rises[i][g]);
    return strongest;
}

}  // namespace beatatlas::track::inner
