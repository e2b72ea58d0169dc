// SPDX-License-Identifier: MIT
// A window of four beats b0..b3 slides over the grid. With the gaps d1, d2, d3 between them, the
// outer two say what the middle one should be:
//   too short   move b2 on to the gap of one neighbour, or share the window out evenly, or give up
//               a beat
//   too long    move b2 back to the gap of one neighbour, or share the window out evenly, or gain a
//               beat
// Which of them is decided by where the odd gap lies: a neighbour much unlike the other is not to
// be trusted.
#include "peakss/grid/gapCorrectVaried.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "dsp/truncation.h"

namespace peakss {

using beatatlas::truncToInt32;
using beatatlas::wrappingAdd;

namespace {

constexpr std::size_t kWindowBeats = 4;

// A grid gains about one beat per odd gap; a list of wild positions must not gain without end.
constexpr std::size_t kMostGainsPerBeat = 4;

class GapWindow {
public:
    explicit GapWindow(BeatList& beats)
        : beats_(beats), d1_(gap(0)), d2_(gap(1)), d3_(gap(2)), high_(std::max(d1_, d3_)),
          low_(std::min(d1_, d3_)) {}

    void repair(bool mayGain) {
        if (d2_ / high_ <= 1.1 && d2_ / low_ < 0.9) {
            lengthen();
        } else if (d2_ / high_ > 1.1) {
            shorten(mayGain);
        }
    }

private:
    double gap(std::size_t i) const {
        return static_cast<double>(beats_[i + 1].pos) - static_cast<double>(beats_[i].pos);
    }
    double span() const {
        return static_cast<double>(beats_[3].pos) - static_cast<double>(beats_[0].pos);
    }
    std::int32_t behind(std::size_t beat, double samples) const {
        return wrappingAdd(beats_[beat].pos, truncToInt32(samples));
    }

    void lengthen() {
        if (low_ == d1_ && (low_ - d2_) / (high_ - low_) < 4.0) {
            beats_[2].pos = behind(1, low_);
        } else if (high_ == d1_ && 4.0 * high_ > 4.0 * low_ + d2_) {
            moveOrGiveUp(behind(1, high_));
        } else if ((d1_ + d2_ + d3_) / low_ > 2.7) {
            shareOut();
        } else {
            const std::int64_t sum = static_cast<std::int64_t>(beats_[0].pos) + beats_[3].pos;
            beats_[1].pos = static_cast<std::int32_t>(sum / 2);
            giveUp();
        }
    }

    void shorten(bool mayGain) {
        if (high_ == d1_ && (d2_ - high_) / (high_ - low_) < 4.0) {
            beats_[2].pos = behind(1, high_);
        } else if (low_ == d1_ && 3.0 * high_ + d2_ > 5.0 * low_) {
            beats_[2].pos = behind(1, low_);
            const std::int32_t twoOn = wrappingAdd(beats_[2].pos, truncToInt32(2.0 * low_));
            if (beats_[3].pos > twoOn && mayGain) gain(behind(1, 2.0 * low_));
        } else if ((d1_ + d2_ + d3_) / high_ < 3.3) {
            shareOut();
        } else {
            const double quarter = span() / 4.0;
            beats_[1].pos = behind(0, quarter);
            beats_[2].pos = behind(0, 2.0 * quarter);
            if (mayGain) gain(behind(0, 3.0 * quarter));
        }
    }

    void moveOrGiveUp(std::int32_t pos) {
        if (pos < beats_[3].pos) {
            beats_[2].pos = pos;
        } else {
            giveUp();
        }
    }

    void shareOut() {
        beats_[1].pos = behind(0, span() / 3.0);
        beats_[2].pos = behind(0, 2.0 * span() / 3.0);
    }

    void giveUp() { beats_.erase(beats_.begin() + 2); }

    void gain(std::int32_t pos) {
        BeatInfo beat = beats_[2];
        beat.pos = pos;
        beats_.insert(beats_.begin() + 2, beat);
    }

    BeatList& beats_;
    double d1_;  // samples, as are the others
    double d2_;
    double d3_;
    double high_;
    double low_;
};

}  // namespace

void correctMiddleGap(BeatList& window, bool mayGain) {
    GapWindow(window).repair(mayGain);
}

void gapCorrectVaried(BeatList& grid) {
    const std::size_t mostBeats = grid.size() * (1 + kMostGainsPerBeat);
    BeatList repaired;
    repaired.reserve(grid.size());
    BeatList window;
    auto next = grid.begin();
    const auto fill = [&] {
        while (window.size() < kWindowBeats && next != grid.end()) window.push_back(*next++);
    };
    for (fill(); window.size() >= kWindowBeats; fill()) {
        correctMiddleGap(window, repaired.size() < mostBeats);
        repaired.push_back(window.front());
        window.erase(window.begin());
    }
    repaired.insert(repaired.end(), window.begin(), window.end());
    grid = std::move(repaired);
}

}  // namespace peakss
