// SPDX-License-Identifier: MIT
#include "track/Pass.h"

#include <algorithm>
#include <utility>

#include "track/Outcome.h"

namespace beatatlas::track::inner {

namespace {

constexpr float kFullScale = 32768.0F;

// A third of a second: every call of a session and of the host costs time.
constexpr std::int64_t kBlockFrames = 16384;

/** Lossy decoders overshoot full scale, and a session keeps only the low 16 bits of a sample: a
 *  sample that is too loud would wrap. Multiplying by a power of two is exact in every rounding
 *  mode. */
void scaleForSession(float* samples, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const float sample = samples[i] * kFullScale;
        const float above = sample > -kFullScale ? sample : -kFullScale;
        const float within = above < kFullScale - 1.0F ? above : kFullScale - 1.0F;
        samples[i] = sample == sample ? within : 0.0F;
    }
}

}  // namespace

Pass::Pass(const BA_TrackSource& source, std::int64_t frames)
    : source_(source), framesLeft_(frames),
      left_(static_cast<std::size_t>(std::min(frames, kBlockFrames))), right_(left_.size()),
      pass_(source.open(source.host)) {
    if (pass_ == nullptr) throw Failure{BA_TRACK_STOPPED};
}

Block Pass::next() {
    const auto frames = static_cast<std::size_t>(std::min(framesLeft_, kBlockFrames));
    if (frames == 0) return {nullptr, nullptr, 0};
    fill(frames);
    framesLeft_ -= static_cast<std::int64_t>(frames);
    if (framesLeft_ == 0) checkEnd();
    scaleForSession(left_.data(), frames);
    scaleForSession(right_.data(), frames);
    return {left_.data(), right_.data(), static_cast<int>(frames)};
}

void Pass::fill(std::size_t frames) {
    for (std::size_t filled = 0; filled < frames;) {
        const std::int64_t count = read(filled, static_cast<std::int64_t>(frames - filled));
        if (count == 0) throw Failure{BA_TRACK_WRONG_LENGTH};
        filled += static_cast<std::size_t>(count);
    }
}

std::int64_t Pass::read(std::size_t at, std::int64_t frames) {
    const std::int64_t count =
        source_.read(source_.host, pass_, left_.data() + at, right_.data() + at, frames);
    if (count < 0) throw Failure{BA_TRACK_STOPPED};
    if (count > frames) throw Failure{BA_TRACK_WRONG_LENGTH};
    return count;
}

void Pass::checkEnd() {
    float left = 0.0F;
    float right = 0.0F;
    const std::int64_t count = source_.read(source_.host, pass_, &left, &right, 1);
    if (count < 0) throw Failure{BA_TRACK_STOPPED};
    if (count > 0) throw Failure{BA_TRACK_WRONG_LENGTH};
    close();
}

void Pass::close() {
    if (void* pass = std::exchange(pass_, nullptr)) source_.close(source_.host, pass);
}

}  // namespace beatatlas::track::inner
