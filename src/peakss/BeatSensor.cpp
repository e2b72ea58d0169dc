// SPDX-License-Identifier: MIT
#include "peakss/BeatSensor.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "dsp/truncation.h"
#include "peakss/BeatSensorSignal.h"
#include "peakss/SensorBand.h"
#include "peakss/bandDesigns.h"
#include "peakss/beatInterval.h"
#include "view/LVMakeBase.h"

namespace peakss {

using beatatlas::wrappingAdd;

namespace {

constexpr int kBlocksPerSecond = 75;
// Two votes may be one beat that two bands heard: a tempo needs more.
constexpr int kMinVotes = 3;

void rectify(float* samples, int n) {
    for (int i = 0; i < n; ++i) samples[i] = std::fabs(samples[i]);
}

}  // namespace

BeatSensor::BeatSensor() = default;

BeatSensor::~BeatSensor() {
    release();
}

bool BeatSensor::create(int rate, int start, int end, int decim, int bands) {
    release();
    const int blockLen = std::max(rate / kBlocksPerSecond, 0);
    const int bandNum = std::max(bands, 0);
    decim_ = std::max(decim, 1);
    bands_ = makeBands(rate, blockLen, decim_, bandNum);
    bandNum_ = bandNum;
    blockLen_ = blockLen;
    start_ = start;
    end_ = end;
    reset();
    return true;
}

std::unique_ptr<SensorBand[]> BeatSensor::makeBands(int rate, int blockLen, int decim, int bands) {
    auto made = std::make_unique<SensorBand[]>(static_cast<std::size_t>(bands));
    for (int b = 0; b < bands; ++b) {
        SensorBand& band = made[static_cast<std::size_t>(b)];
        band.samples = std::make_unique<float[]>(static_cast<std::size_t>(blockLen));
        band.buffer.create(b);
        band.sensor.setSamplingRate(rate);
        band.sensor.setStep(decim);
    }
    designBands(made.get(), bands, static_cast<float>(rate));
    return made;
}

void BeatSensor::reset() {
    for (int b = 0; b < bandNum_; ++b) {
        SensorBand& band = bands_[static_cast<std::size_t>(b)];
        band.buffer.reset();
        band.sensor.reset(start_);
        band.acc = 0.0F;
    }
    lastInterval_ = lastLevel_ = 0.0F;
    lastPos_ = 0;
    decimCount_ = 0;
    sinceBeat_ = 0;
    counter_ = 0;
    vote_.reset();
}

void BeatSensor::release() {
    bands_.reset();
    bandNum_ = 0;
    blockLen_ = 0;
}

bool BeatSensor::put(const float* mono, int n, beatatlas::LVMakeBase* loudView) {
    if (mono == nullptr || n <= 0 || blockLen_ == 0) return false;
    sinceBeat_ = wrappingAdd(sinceBeat_, n);
    bool chosen = false;
    for (int done = 0; done < n;) {
        if (counter_ >= end_ && loudView == nullptr) return chosen;
        const int count = std::min(n - done, blockLen_);
        filterBands(mono + done, count);
        if (loudView != nullptr) sendBands(mono + done, count, *loudView);
        if (senseBeats(count)) chosen = true;
        done += count;
    }
    return chosen;
}

void BeatSensor::filterBands(const float* chunk, int n) {
    for (int b = 0; b < bandNum_; ++b) {
        SensorBand& band = bands_[static_cast<std::size_t>(b)];
        float* samples = band.samples.get();
        if (band.sensor.diffSource() < 0) {
            band.filter.operate(chunk, samples, n);
            rectify(samples, n);
        } else {
            const SensorBand& source = bands_[static_cast<std::size_t>(band.sensor.diffSource())];
            std::copy_n(source.samples.get(), n, samples);
        }
        if (!band.sensor.isDiffOn()) continue;
        for (int i = 0; i < n; ++i) samples[i] = band.sensor.getDiff(samples[i]);
    }
}

// The mid and high bands are those the view would make; its low band is of another width, so it makes that itself.
void BeatSensor::sendBands(const float* chunk, int n, beatatlas::LVMakeBase& loudView) {
    const int mid = bandNum_ < 4 ? 1 : 2;
    if (mid + 1 >= bandNum_) {
        loudView.analyzePeak(chunk, nullptr, nullptr, nullptr, n);
        return;
    }
    SensorBand* bands = bands_.get() + mid;
    loudView.analyzePeak(chunk, nullptr, bands[0].samples.get(), bands[1].samples.get(), n);
}

// The sample at index i counts as the one behind it, i + 1, on both borders of the range: the range thus begins one
// sample early and leaves out its last. Kept, as every position depends on it.
bool BeatSensor::senseBeats(int n) {
    const std::int64_t seen = counter_;
    const std::int64_t count = n;
    const auto first = static_cast<int>(std::clamp<std::int64_t>(start_ - seen - 1, 0, count));
    const auto last = static_cast<int>(std::clamp<std::int64_t>(end_ - seen - 1, 0, count));
    // Stops at the end of the range, so that it cannot wrap and enter the range again.
    counter_ =
        static_cast<std::int32_t>(std::min(seen + count, std::max<std::int64_t>(end_, seen)));
    bool chosen = false;
    for (int i = first; i < last;) {
        const int part = std::min(decim_ - decimCount_, last - i);
        accumulate(i, part);
        i += part;
        decimCount_ += part;
        if (decimCount_ == decim_ && closeStep()) chosen = true;
    }
    return chosen;
}

void BeatSensor::accumulate(int from, int count) {
    for (int b = 0; b < bandNum_; ++b) {
        SensorBand& band = bands_[static_cast<std::size_t>(b)];
        const float* samples = band.samples.get() + from;
        float acc = band.acc;
        for (int i = 0; i < count; ++i) acc += samples[i];
        band.acc = acc;
    }
}

bool BeatSensor::closeStep() {
    decimCount_ = 0;
    const auto samplesPerStep = static_cast<float>(decim_);
    for (int b = 0; b < bandNum_; ++b) {
        SensorBand& band = bands_[static_cast<std::size_t>(b)];
        const float level = band.acc / samplesPerStep;
        band.acc = 0.0F;
        band.buffer.clearBeat();
        band.sensor.putLevel(level, band.buffer);
    }
    const PeakBuffer* chosen = selectBand();
    if (chosen == nullptr) return false;
    lastInterval_ = chosen->interval();
    lastPos_ = chosen->beatPos();
    lastLevel_ = chosen->beatLevel();
    sinceBeat_ = 0;
    signalBeats();
    return true;
}

void BeatSensor::signalBeats() {
    if (signal_ == nullptr) return;
    for (int b = 0; b < bandNum_; ++b) {
        PeakBuffer& buffer = bands_[static_cast<std::size_t>(b)].buffer;
        if (!buffer.beatFound()) continue;
        signal_->changeStat(buffer.interval(), buffer.beatPos(), buffer.beatLevel(), &buffer);
    }
}

PeakBuffer* BeatSensor::selectBand() {
    PeakBuffer* best = voteOfBands();
    if (best == nullptr || !settleVote(best->interval())) return nullptr;
    const int winner = vote_.winner();
    if (vote_.votes(winner) < kMinVotes) return nullptr;
    for (int b = 0; b < bandNum_; ++b) {
        PeakBuffer& buffer = bands_[static_cast<std::size_t>(b)].buffer;
        if (buffer.beatFound() && missesTempoOf(intervalOfBpm(winner), buffer.interval()))
            buffer.clearBeat();
    }
    return best;
}

// Every band that found a beat adds its votes; the first of the steadiest is the best band.
PeakBuffer* BeatSensor::voteOfBands() {
    PeakBuffer* best = nullptr;
    for (int b = 0; b < bandNum_; ++b) {
        PeakBuffer& buffer = bands_[static_cast<std::size_t>(b)].buffer;
        if (!buffer.beatFound()) continue;
        vote_.add(buffer.interval(), buffer.dev());
        if (best == nullptr || buffer.dev() < best->dev()) best = &buffer;
    }
    return best;
}

// Brings the winner of the vote to the best band's tempo. A band that alone is for it does not overturn the vote;
// with enough votes behind it the music has changed, and the other tempi lose theirs.
bool BeatSensor::settleVote(float interval) {
    for (int winner = vote_.winner(); winner > 0; winner = vote_.winner()) {
        if (!missesTempoOf(intervalOfBpm(winner), interval)) return true;
        if (vote_.votesFor(interval) < kMinVotes) return false;
        vote_.keepOnly(interval);
        if (vote_.winner() < 0) return false;
    }
    return true;
}

}  // namespace peakss
