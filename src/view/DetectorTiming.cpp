// SPDX-License-Identifier: MIT
#include "view/DetectorTiming.h"

#include <cmath>

#include "dsp/truncation.h"

namespace beatatlas {

namespace {

constexpr double kMinIntervalSeconds = 0.32;
constexpr double kHoldSeconds = 1.714;
constexpr double kDecaySamplesAt44100 = 512.0;

}  // namespace

// A whole count is at least a real bound when it is at least its ceiling, and above it when above
// its whole part.
DetectorTiming::DetectorTiming(int rate, int len)
    : blockLen(rate / 75), trackLen(len),
      minInterval(truncToInt64(std::ceil(static_cast<double>(rate) * kMinIntervalSeconds))),
      holdTime(truncToInt64(static_cast<double>(rate) * kHoldSeconds)),
      decayStep(truncToInt32((static_cast<double>(rate) / 44100.0) * kDecaySamplesAt44100)) {}

}  // namespace beatatlas
