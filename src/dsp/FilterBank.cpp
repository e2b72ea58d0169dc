// SPDX-License-Identifier: MIT
#include "dsp/FilterBank.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "dsp/IirPassFilter.h"
#include "dsp/SecondOrderSection.h"
#include "dsp/filterBankTile.h"
#include "dsp/isConstant.h"

namespace beatatlas {

namespace {

constexpr int kShortSections = 2;
constexpr int kLongSections = 4;

// By cascade, those over the 16-bit signal last.
constexpr std::array<int, FilterBank::kCascades + FilterBank::kLevels> kSections = {kShortSections,
                                                                                    kShortSections,
                                                                                    kShortSections,
                                                                                    kShortSections,
                                                                                    kLongSections,
                                                                                    kShortSections,
                                                                                    1,
                                                                                    1};

struct Coefficients {
    double b0, b1, b2, a1, a2;
};

/** The lane's section from silence. */
void startLane(FilterBankLanes& lanes, std::size_t lane, const Coefficients& c) {
    assert(std::fabs(c.b2) == std::fabs(c.b0) ||
           std::isnan(c.b0));  // an absurd rate designs no numbers
    lanes.b0[lane] = c.b0;
    lanes.b1[lane] = c.b1;
    lanes.flipB2[lane] = std::bit_cast<std::int64_t>(c.b2) ^ std::bit_cast<std::int64_t>(c.b0);
    lanes.a1[lane] = c.a1;
    lanes.a2[lane] = c.a2;
    lanes.b1x1[lane] = c.b1 * 0.0;
    lanes.b2x1[lane] = lanes.b2x2[lane] = c.b2 * 0.0;
    lanes.y1[lane] = lanes.y2[lane] = 0.0;
}

bool areSameFrames(const std::int16_t* stereo, int n) {
    constexpr std::size_t kFrameBytes = 2 * sizeof *stereo;
    return stereo == nullptr ||
           std::memcmp(stereo, stereo + 2, static_cast<std::size_t>(n - 1) * kFrameBytes) == 0;
}

template <class Arrays>
void repeatFirst(const Arrays& outputs, int n) {
    for (auto* output : outputs)
        if (output != nullptr) std::fill_n(output + 1, n - 1, *output);
}

template <class Arrays>
Arrays behindFirst(Arrays outputs) {
    for (auto& output : outputs)
        if (output != nullptr) ++output;
    return outputs;
}

}  // namespace

void FilterBank::design(int cascade, const IirPassFilter& plain) {
    const auto c = static_cast<std::size_t>(cascade);
    assert(plain.stageCount() == kSections[c]);
    for (int section = 0; section < kSections[c]; ++section) {
        const IirFilter& from = plain.stage(section);
        const std::size_t lane = kFilterBankPlaces[c][static_cast<std::size_t>(section)];
        startLane(lanes_, lane, {from.b0(), from.b1(), from.b2(), from.a1(), from.a2()});
    }
}

void FilterBank::designLevel(Level level, const SecondOrderSection& plain) {
    const std::size_t c = static_cast<std::size_t>(kCascades) + static_cast<std::size_t>(level);
    for (int section = 0; section < kSections[c]; ++section) {
        const std::size_t lane = kFilterBankPlaces[c][static_cast<std::size_t>(section)];
        startLane(lanes_, lane, {plain.b0, plain.b1, plain.b2, plain.a1, plain.a2});
    }
}

void FilterBank::operate(const float* mono, const std::int16_t* stereo, const Outputs& outputs,
                         const LevelOutputs& levels, int n) {
    FilterBankRunner alone;
    operate(mono, stereo, outputs, levels, n, alone);
}

// In silence the sections die away to numbers so small that a processor takes a hundred times as long for each, and
// there they stay for ever: rounded toward zero, what feeds back equals what is there. A frame that leaves every
// section as it was tells that all frames like it will, with the same outputs.
void FilterBank::operate(const float* mono, const std::int16_t* stereo, const Outputs& outputs,
                         const LevelOutputs& levels, int n, FilterBankRunner& runner) {
    if (n <= 0) return;
    if (!isConstant(mono, n) || !areSameFrames(stereo, n))
        return filter(mono, stereo, outputs, levels, n, runner);
    const FilterBankLanes before = lanes_;
    filter(mono, stereo, outputs, levels, 1, runner);
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison, cert-exp42-c, cert-flp37-c): to the bit
    if (std::memcmp(&before, &lanes_, sizeof lanes_) == 0) {
        repeatFirst(outputs, n);
        repeatFirst(levels, n);
    } else if (n > 1) {
        filter(mono + 1, stereo == nullptr ? nullptr : stereo + 2, behindFirst(outputs),
               behindFirst(levels), n - 1, runner);
    }
}

void FilterBank::filter(const float* mono, const std::int16_t* stereo, const Outputs& outputs,
                        const LevelOutputs& levels, int n, FilterBankRunner& runner) {
    const FilterBankLanes before = lanes_;
    FilterBankTile tile;
    for (int first = 0; first < n; first += FilterBankTile::kSteps) {
        const int left = n - first;
        const int steps =
            left <= FilterBankTile::kSteps ? left + kFilterBankDepth : FilterBankTile::kSteps;
        const FilterBankStretch stretch{first, steps, n};
        fillTile(tile, stretch, mono, stereo);
        runner.run(lanes_, tile, stretch);
        readBands(tile, stretch, {outputs[0], outputs[1], outputs[2], outputs[3]});
        if (outputs[kLongCascade] != nullptr) readLongBand(tile, stretch, outputs[kLongCascade]);
        if (levels[kTwice] != nullptr) readLevels(tile.p, stretch, 1, levels[kTwice]);
        if (levels[kOnce] != nullptr) readLevels(tile.q, stretch, 0, levels[kOnce]);
        if (levels[kWhole] != nullptr) readLevels(tile.b, stretch, 0, levels[kWhole]);
    }
    for (std::size_t c = 0; c < kCascades; ++c)
        if (outputs[c] == nullptr) forgetBlock(c, before);
    for (std::size_t c = 0; c < kLevels; ++c)
        if (levels[c] == nullptr) forgetBlock(kCascades + c, before);
}

void FilterBank::forgetBlock(std::size_t cascade, const FilterBankLanes& before) {
    for (int section = 0; section < kSections[cascade]; ++section) {
        const std::size_t lane = kFilterBankPlaces[cascade][static_cast<std::size_t>(section)];
        lanes_.b1x1[lane] = before.b1x1[lane];
        lanes_.b2x1[lane] = before.b2x1[lane];
        lanes_.b2x2[lane] = before.b2x2[lane];
        lanes_.y1[lane] = before.y1[lane];
        lanes_.y2[lane] = before.y2[lane];
    }
}

}  // namespace beatatlas
