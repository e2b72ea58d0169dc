// SPDX-License-Identifier: MIT
#include "session/PreChecker.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "dsp/truncation.h"

namespace beatatlas {

namespace {

// About −70 dB of full scale: below it in both channels a frame is near-silent.
constexpr int kSoundingLevel = 10;

// In int, so that −32768 has its true magnitude.
int magnitude(float sample) {
    return std::abs(static_cast<int>(truncToInt16(sample)));
}

}  // namespace

void PreChecker::putSample(const float* left, const float* right, int count) {
    for (int i = 0; i < count; ++i) {
        const int a = magnitude(left[i]);
        const int b = magnitude(right[i]);
        const auto sum = static_cast<double>(a + b);
        const auto peak = static_cast<double>(std::max(a, b));
        if (a >= kSoundingLevel || b >= kSoundingLevel) {
            if (quietCount_ != 0) foldQuietRun();
            loudSum_ += sum;
            loudMax_ = std::max(loudMax_, peak);
            ++loudCount_;
        } else {
            quietSum_ += sum;
            quietMax_ = std::max(quietMax_, peak);
            ++quietCount_;
        }
    }
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
