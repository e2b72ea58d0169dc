// SPDX-License-Identifier: MIT
#include "peakss/grid/AnchorWalk.h"

#include <cstddef>

#include "dsp/truncation.h"
#include "peakss/grid/beatLength.h"
#include "peakss/grid/beatSearch.h"

namespace peakss {

namespace {

constexpr double kBehindNumberRange = 2147483648.0;  // of positions

}  // namespace

AnchorWalk::AnchorWalk(const BeatList& raw, double beatSamples, int spacing, int tolerance)
    : raw_(raw), quarterSamples_(beatSamples / kQuartersPerBeat),
      spacing_(spacing > 0 ? spacing : kQuartersPerBeat), tolerance_(tolerance) {}

void AnchorWalk::begin(double start) {
    position_ = start;
    bands_.assign(1, snap());
}

void AnchorWalk::walkBeat() {
    for (int i = 0; i < kQuartersPerBeat; ++i) {
        position_ += quarterSamples_;
        bands_.push_back(kNoBand);
        if (isAnchor(quarter())) bands_.back() = snap();
    }
}

void AnchorWalk::slide(std::int64_t fromQuarter, std::int64_t quarters) {
    const auto from = bands_.begin() + static_cast<std::ptrdiff_t>(fromQuarter);
    bands_.erase(from, from + static_cast<std::ptrdiff_t>(quarters));
}

int AnchorWalk::bandAt(std::int64_t quarter) const {
    if (quarter < 0 || quarter > this->quarter()) return kNoBand;
    return bands_[static_cast<std::size_t>(quarter)];
}

int AnchorWalk::snap() {
    // A walk that has just left the number range would come out at its other end.
    if (position_ >= kBehindNumberRange) return kNoBand;
    int beat = -1;
    const std::int32_t pos =
        findNearPos(raw_, beatatlas::truncToInt32(position_), tolerance_, &beat);
    if (beat < 0) return kNoBand;
    position_ = pos;
    return raw_[static_cast<std::size_t>(beat)].band;
}

}  // namespace peakss
