// SPDX-License-Identifier: MIT
#include "track/key/PeakStream.h"

#include <array>

namespace beatatlas::track::inner {

namespace {

constexpr int kLength = 4096;
constexpr std::int64_t kStep = kLength / 2;

}  // namespace

PeakStream::PeakStream(int rate)
    : rate_(static_cast<double>(rate) / Decimator::kFactor),
      stream_(static_cast<double>(kStep), kLength), finder_(rate_, kLength) {}

void PeakStream::put(const float* mono, std::int64_t samples) {
    addDecimated(decimator_.put(mono, samples));
}

void PeakStream::finish() {
    addDecimated(decimator_.finish());
    stream_.finish(decimated_ / kStep,
                   [this](const FrameSpectra& spectra, int count) { addBatch(spectra, count); });
}

double PeakStream::secondsPerFrame() const {
    return static_cast<double>(kStep) / rate_;
}

void PeakStream::addDecimated(const std::vector<float>& samples) {
    const auto count = static_cast<std::int64_t>(samples.size());
    decimated_ += count;
    stream_.put(samples.data(), count,
                [this](const FrameSpectra& spectra, int frames) { addBatch(spectra, frames); });
}

void PeakStream::addBatch(const FrameSpectra& spectra, int frames) {
    constexpr int kBins = kLength / 2;
    std::array<float, kBins> even;
    std::array<float, kBins> odd;
    for (int frame = 0; frame < frames; frame += 2) {
        spectra.powers(frame / 2, kBins, even.data(), odd.data());
        addFrame(even.data());
        if (frame + 1 < frames) addFrame(odd.data());
    }
}

// The stream's first frame is centred on the first sample: half of it is silence, and its edge
// no sound.
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
