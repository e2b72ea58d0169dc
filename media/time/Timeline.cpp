// SPDX-License-Identifier: MIT
#include "media/time/Timeline.h"

#include <algorithm>
#include <cmath>

#include "media/ffmpeg.h"

namespace media {

namespace {

// The first times of a track include the encoder's delay in different ways.
constexpr int kSettlingFrames = 4;

constexpr double kWaverTicks = 2.2;
constexpr double kLeastFrames = 2.0;

// In frames: months at any rate. A damaged time may differ by more: the track is then refused as
// too long.
constexpr double kMostMissing = 1e12;

// The first blocks after damage may be shorter than they were encoded: it takes some seconds until
// the times agree again.
constexpr int kWatchedFrames = 200;

// Fast enough to follow times that are rounded at every packet, slow enough to average out the
// jitter of a tick.
constexpr double kFollowing = 1.0 / 64.0;

}  // namespace

double Timeline::toleranceFor(const AVFrame& frame, bool isWatched) const {
    const double waver = std::max(kWaverTicks * tick_, kLeastFrames / frame.sample_rate);
    return isWatched ? waver : std::max(waver, 0.5 * frame.nb_samples / frame.sample_rate);
}

/** Packets are lost as a whole: if the missing frames are a whole number of packets within the
 *  jitter of the times, that number is taken. */
std::int64_t Timeline::wholeBlocks(double frames, const AVFrame& frame) const {
    const double blocks = std::round(frames / frame.nb_samples) * frame.nb_samples;
    const double waver = kWaverTicks * tick_ * frame.sample_rate;
    const double missing = std::abs(blocks - frames) <= waver ? blocks : frames;
    return std::llround(std::clamp(missing, -kMostMissing, kMostMissing));
}

std::int64_t Timeline::place(double seconds, const AVFrame& frame, bool isAlarmed) {
    const double late = seconds - expected_;
    watched_ = isAlarmed ? kWatchedFrames : std::max(0, watched_ - 1);
    if (placed_ == 0 || (placed_ < kSettlingFrames && !isAlarmed)) {
        ++placed_;
        expected_ = seconds;
        return 0;
    }
    if (std::abs(late) <= toleranceFor(frame, watched_ > 0)) {
        expected_ += late * kFollowing;
        return 0;
    }
    const std::int64_t missing = wholeBlocks(late * frame.sample_rate, frame);
    if (missing > 0) advance(missing, frame.sample_rate);
    return missing;
}

void Timeline::advance(std::int64_t frames, int rate) {
    expected_ += static_cast<double>(frames) / rate;
}

}  // namespace media
