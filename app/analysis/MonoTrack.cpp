// SPDX-License-Identifier: MIT
#include "analysis/MonoTrack.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "analysis/LibraryCall.h"
#include "beatatlas/utilities.h"

namespace app {

namespace {

constexpr float kFullScale = 32768.0F;
constexpr int kStep = 10;
constexpr long kFirstTaken = 7;  // the resampler skips its filter's rise
constexpr float kSilence = 1.0F;
constexpr float kLongSeconds = 30.0F;
constexpr double kReservedAtMost = 4.0 * 3600 * 48000;  // a header may be wrong

/** Scales to 16-bit integers and clips; NaN becomes silence. */
float scaled(float sample) {
    const float full = sample * kFullScale;
    const float above = full > -kFullScale ? full : -kFullScale;
    const float within = above < kFullScale - 1.0F ? above : kFullScale - 1.0F;
    return full == full ? within : 0.0F;
}

}  // namespace

bool MonoTrack::isSilent() const {
    return std::all_of(samples.begin(), samples.end(),
                       [](float sample) { return std::fabs(sample) < kSilence; });
}

bool MonoTrack::isLong() const {
    return static_cast<float>(samples.size()) >= kLongSeconds * static_cast<float>(rate);
}

void MonoGatherer::reserve(double frames) {
    mono_.reserve(static_cast<std::size_t>(std::clamp(frames, 0.0, kReservedAtMost)));
}

void MonoGatherer::put(const media::StereoBlock& block) {
    const std::size_t before = mono_.size();
    const std::size_t count = block.frames();
    mono_.resize(before + count);
    float* mono = mono_.data() + before;
    for (std::size_t i = 0; i < count; ++i)
        mono[i] = (scaled(block.left[i]) + scaled(block.right[i])) * 0.5F;
}

MonoTrack MonoGatherer::whole(int sessionRate) {
    return {std::move(mono_), sessionRate};
}

MonoTrack MonoGatherer::thinOut(int sessionRate) {
    const auto count = static_cast<long>(mono_.size());
    const long taken = std::max(0L, (count - kFirstTaken + kStep - 1) / kStep);
    libraryCall(
        [&] { resample2(mono_.data(), taken, mono_.data(), count, 1.0F / kStep, kStep, 0); });
    mono_.resize(static_cast<std::size_t>(taken));
    mono_.shrink_to_fit();
    return {std::move(mono_), sessionRate / kStep};
}

}  // namespace app
