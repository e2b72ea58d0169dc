// SPDX-License-Identifier: MIT
#include "track/key/PeakStream.h"

namespace beatatlas::track::inner {

namespace {

constexpr int kLength = 4096;
constexpr int kStep = kLength / 2;

}  // namespace

PeakStream::PeakStream(int rate)
    : powers_(rate, static_cast<double>(kStep), kLength), finder_(powers_.rate(), kLength) {}

void PeakStream::put(const float* mono, std::int64_t samples) {
    powers_.put(mono, samples, [this](const float* powers) { addFrame(powers); });
}

void PeakStream::finish() {
    powers_.finish([this](const float* powers) { addFrame(powers); });
}

double PeakStream::secondsPerFrame() const {
    return static_cast<double>(kStep) / powers_.rate();
}

// The stream's first frame is centred on the first sample: half of it is padding, and the edge
// would show partials that do not sound.
void PeakStream::addFrame(const float* powers) {
    if (!hasBegun_) {
        hasBegun_ = true;
        return;
    }
    const float top = finder_.find(powers, frame_);
    tuning_.add(frame_);
    store_.add(top, frame_);
}

}  // namespace beatatlas::track::inner
