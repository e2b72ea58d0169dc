// SPDX-License-Identifier: MIT
#include "session/PreChecker.h"

#include <algorithm>
#include <limits>

#include "session/frameKernels.h"

namespace beatatlas {

namespace {

// About −70 dB of full scale: below it in both channels a frame is near-silent.
constexpr int kSoundingLevel = 10;

// Short enough that a search for the last sounding frame of a block is soon over.
constexpr int kBlockFrames = 1024;

bool sounds(float left, float right) {
    return magnitude(left) >= kSoundingLevel || magnitude(right) >= kSoundingLevel;
}

}  // namespace

void PreChecker::putSample(const float* left, const float* right, int count) {
    for (int i = 0; i < count;) {
        const int frames = std::min(count - i, kBlockFrames);
        putBlock(left + i, right + i, frames);
        i += frames;
    }
}

// Up to its last sounding frame a block is music, quiet frames and all. The sums are whole numbers
// far below 2^53: they come out the same in any order.
void PreChecker::putBlock(const float* left, const float* right, int count) {
    const LevelTotals all = levelTotals(left, right, count);
    int tailStart = 0;
    if (all.max >= kSoundingLevel) {
        tailStart = count;
        while (!sounds(left[tailStart - 1], right[tailStart - 1])) --tailStart;
    }
    const LevelTotals tail =
        tailStart == 0 ? all : levelTotals(left + tailStart, right + tailStart, count - tailStart);
    if (tailStart > 0) {
        if (quietCount_ != 0) foldQuietRun();
        loudSum_ += static_cast<double>(all.sum - tail.sum);
        loudMax_ = std::max(loudMax_, static_cast<double>(all.max));
        loudCount_ += tailStart;
    }
    quietSum_ += static_cast<double>(tail.sum);
    quietMax_ = std::max(quietMax_, static_cast<double>(tail.max));
    quietCount_ += count - tailStart;
}

int PreChecker::capped(std::int64_t frames) {
    return static_cast<int>(std::min<std::int64_t>(frames, std::numeric_limits<int>::max()));
}

void PreChecker::foldQuietRun() {
    loudSum_ += quietSum_;
    loudMax_ = std::max(loudMax_, quietMax_);
    loudCount_ += quietCount_;
    quietCount_ = 0;
    quietSum_ = 0.0;
    quietMax_ = 0.0;
}

}  // namespace beatatlas
