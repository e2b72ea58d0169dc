// SPDX-License-Identifier: MIT
#include "dsp/FilterBank.h"

#include <cassert>

#include "dsp/IirPassFilter.h"
#include "dsp/SecondOrderSection.h"
#include "dsp/filterBankTile.h"

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

void startLane(FilterBankLanes& lanes, std::size_t lane) {
    for (FilterBankLanes::Row* past : {&lanes.x1, &lanes.x2, &lanes.y1, &lanes.y2})
        (*past)[lane] = 0.0;
}

}  // namespace

void FilterBank::design(int cascade, const IirPassFilter& plain) {
    const auto c = static_cast<std::size_t>(cascade);
    assert(plain.stageCount() == kSections[c]);
    for (int section = 0; section < kSections[c]; ++section) {
        const IirFilter& from = plain.stage(section);
        const std::size_t lane = kFilterBankPlaces[c][static_cast<std::size_t>(section)];
        lanes_.b0[lane] = from.b0();
        lanes_.b1[lane] = from.b1();
        lanes_.b2[lane] = from.b2();
        lanes_.a1[lane] = from.a1();
        lanes_.a2[lane] = from.a2();
        startLane(lanes_, lane);
    }
}

void FilterBank::designLevel(Level level, const SecondOrderSection& plain) {
    const auto c = static_cast<std::size_t>(kCascades + level);
    for (int section = 0; section < kSections[c]; ++section) {
        const std::size_t lane = kFilterBankPlaces[c][static_cast<std::size_t>(section)];
        lanes_.b0[lane] = plain.b0;
        lanes_.b1[lane] = plain.b1;
        lanes_.b2[lane] = plain.b2;
        lanes_.a1[lane] = plain.a1;
        lanes_.a2[lane] = plain.a2;
        startLane(lanes_, lane);
    }
}

void FilterBank::operate(const float* mono, const std::int16_t* stereo, const Outputs& outputs,
                         const LevelOutputs& levels, int n) {
    if (n <= 0) return;
    const FilterBankLanes before = lanes_;
    FilterBankTile tile;
    for (int first = 0; first < n; first += FilterBankTile::kSteps) {
        const int left = n - first;
        const int steps =
            left <= FilterBankTile::kSteps ? left + kFilterBankDepth : FilterBankTile::kSteps;
        const FilterBankStretch stretch{first, steps, n};
        fillTile(tile, stretch, mono, stereo);
        runFilterBank(lanes_, tile, stretch);
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
        lanes_.x1[lane] = before.x1[lane];
        lanes_.x2[lane] = before.x2[lane];
        lanes_.y1[lane] = before.y1[lane];
        lanes_.y2[lane] = before.y2[lane];
    }
}

}  // namespace beatatlas
