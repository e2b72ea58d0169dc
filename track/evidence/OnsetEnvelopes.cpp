// SPDX-License-Identifier: MIT
// Method: spectral flux of log-compressed bands, as surveyed in S. Böck, F. Krebs, M. Schedl,
// "Evaluating the online capabilities of onset detection methods" (2012).
//   1. the logarithm of a level, relative to the loud passages of the track; nearly linear far
//      below them, so that the noise of a quiet passage gives no onsets
//   2. its rise in each band over one frame and over two, averaged over each group of bands
//   3. each group divided by its mean over the track: an onset in a group with few onsets gets more
//      weight
//   4. its largest value around each frame, for stages that look up the onset strength near a time
#include "track/evidence/OnsetEnvelopes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace beatatlas::track::inner {

namespace {

// At a hundredth of the loud level the curve changes from linear to logarithmic.
constexpr double kCompression = 100.0;
constexpr double kLeastLoudLevel = 1e-9;
constexpr double kLeastMean = 1e-9;
// The first of the groups above 520 Hz.
constexpr std::size_t kFirstSharpGroup = 2;
constexpr std::size_t kSharpGroups = kGroups - kFirstSharpGroup;
constexpr std::size_t kPeakFramesBefore = 2;
constexpr std::size_t kPeakFramesAfter = 4;
constexpr float kMostUpper = 5.0F;
constexpr float kMostStrength = 6.0F;

using Groups = OnsetEnvelopes::Groups;
using SharpGroups = std::array<float, kSharpGroups>;

/** The compressed level of each code. */
std::vector<float> compressedLevels(const BandLevels& levels) {
    std::vector<float> compressed = levelsOfCodes();
    const double scale = kCompression / std::max(levels.loudLevel(compressed), kLeastLoudLevel);
    for (float& level : compressed)
        level = static_cast<float>(std::log1p(scale * static_cast<double>(level)));
    return compressed;
}

/** Measures the rises of a track, frame after frame. */
class RiseMeter {
public:
    explicit RiseMeter(const BandLevels& levels)
        : compressed_(compressedLevels(levels)), bands_(levels.bands()),
          starts_(levels.groupStarts()) {
        for (auto& row : rows_) row.resize(bands_);
    }

    /** Takes the codes of the next frame. */
    void put(const LevelCode* codes) {
        std::vector<float>& row = rows_[static_cast<std::size_t>(frame_ % 3)];
        for (std::size_t band = 0; band < bands_; ++band) row[band] = compressed_[codes[band]];
        ++frame_;
    }

    /** Values of a group in the latest frame: mean level, and mean rise over one frame and over two
     *  frames; 0 where there is no earlier frame. */
    struct Means {
        float level;
        float rise;
        float riseOverTwo;
    };

    // The three sums are independent, so none waits for another.
    Means meansOf(std::size_t group) const {
        const float* row = rowBefore(0);
        const float* last = rowBefore(std::min<std::int64_t>(1, frame_ - 1));
        const float* lastButOne = frame_ > 2 ? rowBefore(2) : row;
        Means sums{};
        for (std::size_t band = starts_[group]; band < starts_[group + 1]; ++band) {
            sums.level += row[band];
            sums.rise += std::max(0.0F, row[band] - last[band]);
            sums.riseOverTwo += std::max(0.0F, row[band] - lastButOne[band]);
        }
        const auto count = static_cast<float>(starts_[group + 1] - starts_[group]);
        return {sums.level / count, sums.rise / count, sums.riseOverTwo / count};
    }

private:
    /** The row of the given number of frames ago. */
    const float* rowBefore(std::int64_t frames) const {
        return rows_[static_cast<std::size_t>((frame_ - 1 - frames) % 3)].data();
    }

    std::vector<float> compressed_;
    std::size_t bands_;
    std::array<std::size_t, kGroups + 1> starts_;
    std::array<std::vector<float>, 3> rows_;
    std::int64_t frame_ = 0;
};

/** Divides each column of a list by its mean. */
template <std::size_t kCount>
void divideByMean(std::vector<std::array<float, kCount>>& list) {
    std::array<double, kCount> sums{};
    for (const auto& row : list)
        for (std::size_t g = 0; g < kCount; ++g) sums[g] += static_cast<double>(row[g]);
    std::array<float, kCount> scales{};
    for (std::size_t g = 0; g < kCount; ++g)
        scales[g] =
            static_cast<float>(1.0 / (sums[g] / static_cast<double>(list.size()) + kLeastMean));
    for (auto& row : list)
        for (std::size_t g = 0; g < kCount; ++g) row[g] *= scales[g];
}

template <std::size_t kCount>
float meanFrom(std::size_t first, const std::array<float, kCount>& values) {
    float sum = 0.0F;
    for (std::size_t g = first; g < kCount; ++g) sum += values[g];
    return sum / static_cast<float>(kCount - first);
}

/** Replaces each row by the maximum over itself and its neighbours; at the ends, over those that
 *  exist. */
void spreadPeaks(std::vector<Groups>& rises) {
    std::array<Groups, kPeakFramesBefore> before;  // their original values
    before.fill(rises.front());
    for (std::size_t i = 0; i < rises.size(); ++i) {
        Groups largest = rises[i];
        const auto take = [&largest](const Groups& row) {
            for (std::size_t g = 0; g < kGroups; ++g) largest[g] = std::max(largest[g], row[g]);
        };
        for (const Groups& row : before) take(row);
        const std::size_t end = std::min(rises.size(), i + kPeakFramesAfter + 1);
        for (std::size_t j = i + 1; j < end; ++j) take(rises[j]);
        before[i % kPeakFramesBefore] = std::exchange(rises[i], largest);
    }
}

/** Stores the mean peak of the upper groups, then divides the peaks of each group by their mean and
 *  clips the exceptional ones. */
void makeStrengths(OnsetEnvelopes& envelopes) {
    envelopes.upper.reserve(envelopes.strength.size());
    for (const Groups& peaks : envelopes.strength)
        envelopes.upper.push_back(std::min(meanFrom(kFirstSharpGroup, peaks), kMostUpper));
    divideByMean(envelopes.strength);
    for (Groups& strengths : envelopes.strength)
        for (float& strength : strengths) strength = std::min(strength, kMostStrength);
}

/** Adds the groups of the meter's latest frame to the level, to the rise over two frames, and to
 *  the rise over one frame of the upper groups. */
void addFrame(const RiseMeter& meter, std::vector<Groups>& levels, std::vector<Groups>& rises,
              std::vector<SharpGroups>& quickRises) {
    Groups& level = levels.emplace_back();
    Groups& rise = rises.emplace_back();
    SharpGroups& quickRise = quickRises.emplace_back();
    for (std::size_t g = 0; g < kGroups; ++g) {
        const RiseMeter::Means means = meter.meansOf(g);
        level[g] = means.level;
        rise[g] = means.riseOverTwo;
        if (g >= kFirstSharpGroup) quickRise[g - kFirstSharpGroup] = means.rise;
    }
}

/** Divides each column of a list by its mean. Returns the mean of each row. */
template <std::size_t kCount>
std::vector<float> evenColumns(std::vector<std::array<float, kCount>>& list) {
    divideByMean(list);
    std::vector<float> means;
    means.reserve(list.size());
    for (const auto& row : list) means.push_back(meanFrom(0, row));
    return means;
}

}  // namespace

OnsetEnvelopes makeOnsetEnvelopes(BandLevels& levels) {
    OnsetEnvelopes envelopes;
    const auto frames = static_cast<std::size_t>(levels.frames());
    std::vector<SharpGroups> quickRises;
    std::vector<Groups>& rises = envelopes.strength;
    quickRises.reserve(frames);
    rises.reserve(frames);
    envelopes.level.reserve(frames);
    RiseMeter meter(levels);
    while (const std::unique_ptr<LevelCode[]> chunk = levels.takeChunk()) {
        const std::size_t end = std::min(frames, rises.size() + BandLevels::kChunkFrames);
        for (const LevelCode* codes = chunk.get(); rises.size() < end; codes += levels.bands()) {
            meter.put(codes);
            addFrame(meter, envelopes.level, rises, quickRises);
        }
    }
    envelopes.sharp = evenColumns(quickRises);
    envelopes.full = evenColumns(rises);
    spreadPeaks(rises);
    makeStrengths(envelopes);
    return envelopes;
}

std::size_t OnsetEnvelopes::frameAt(double seconds) const {
    const auto last = static_cast<double>(sharp.size() - 1);
    return static_cast<std::size_t>(
        std::clamp(std::floor(seconds * kFramesPerSecond + 0.5), 0.0, last));
}

}  // namespace beatatlas::track::inner
