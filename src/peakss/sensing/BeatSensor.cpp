// SPDX-License-Identifier: MIT
#include "peakss/sensing/BeatSensor.h"

#include <algorithm>
#include <cstddef>

#include "peakss/beatInterval.h"
#include "peakss/sensing/BeatSensorSignal.h"
#include "peakss/sensing/PeakBuffer.h"
#include "peakss/sensing/PeakSensor.h"
#include "peakss/sensing/StepMeans.h"
#include "peakss/sensing/designBands.h"
#include "view/LVMakeBase.h"

namespace peakss {

namespace {

constexpr int kBlocksPerSecond = 75;
// Two votes may be one beat that two bands heard: a tempo needs more.
constexpr int kMinVotes = 3;

/** How many of a sensor's bands are filtered; the others are the onsets of these. */
int filteredBands(int bands) {
    return bands == 6 ? 4 : bands;
}

// What the last two of six bands take the moving mean of.
constexpr float kLowOnsetMs = 1.0F;
constexpr float kHighOnsetMs = 0.2F;

}  // namespace

struct BeatSensor::Band {
    PeakSensor sensor;
    PeakBuffer buffer;
    /** A block for a band that listens to the onsets of another. */
    std::unique_ptr<float[]> onsets;
    /** The block in hand, filtered and rectified, or its onsets. */
    const float* signal = nullptr;
    /** Sum of the samples in the current step. */
    float acc = 0.0F;
    /** Of the steps that the block in hand closes. */
    std::unique_ptr<float[]> levels;
    /** Index of the first of these levels that confirms a peak and has not been taken yet. */
    int nextPeak = 0;
};

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

std::unique_ptr<BeatSensor::Band[]> BeatSensor::makeBands(int rate, int blockLen, int decim,
                                                          int bands) {
    auto made = std::make_unique<Band[]>(static_cast<std::size_t>(bands));
    for (int b = 0; b < bands; ++b) {
        Band& band = made[static_cast<std::size_t>(b)];
        if (b >= filteredBands(bands))
            band.onsets = std::make_unique<float[]>(static_cast<std::size_t>(blockLen));
        band.levels = std::make_unique<float[]>(static_cast<std::size_t>(blockLen));
        band.buffer.create(b);
        band.sensor.setSamplingRate(rate);
        band.sensor.setStep(decim);
    }
    if (bands == 6) {
        made[4].sensor.setDiffAnalyze(kLowOnsetMs, 0);
        made[5].sensor.setDiffAnalyze(kHighOnsetMs, 3);
    }
    return made;
}

void BeatSensor::reset() {
    for (int b = 0; b < bandNum_; ++b) {
        Band& band = bands_[static_cast<std::size_t>(b)];
        band.buffer.reset();
        band.sensor.reset(start_);
        band.acc = 0.0F;
    }
    decimCount_ = 0;
    counter_ = 0;
    vote_.reset();
}

void BeatSensor::release() {
    bands_.reset();
    bandNum_ = 0;
    blockLen_ = 0;
}

bool BeatSensor::put(const float* mono, const BandSignals& bands, int n,
                     beatatlas::LVMakeBase* loudView) {
    if (mono == nullptr || n <= 0 || n > blockLen_) return false;
    if (isOver(loudView)) return false;
    for (int b = 0; b < filteredBands(bandNum_); ++b)
        bands_[static_cast<std::size_t>(b)].signal = bands.bands[b];
    makeOnsets(n);
    if (loudView != nullptr) sendBands(mono, bands, n, *loudView);
    return senseBeats(n);
}

bool BeatSensor::isOver(const beatatlas::LVMakeBase* loudView) const {
    return counter_ >= end_ && loudView == nullptr;
}

void BeatSensor::makeOnsets(int n) {
    if (bandNum_ != 6) return;
    Band& low = bands_[4];
    Band& high = bands_[5];
    const auto source = [this](const Band& band) {
        return bands_[static_cast<std::size_t>(band.sensor.diffSource())].signal;
    };
    PeakSensor::getDiffs({{{&low.sensor, source(low), low.onsets.get()},
                           {&high.sensor, source(high), high.onsets.get()}}},
                         n);
    low.signal = low.onsets.get();
    high.signal = high.onsets.get();
}

void BeatSensor::sendBands(const float* mono, const BandSignals& signals, int n,
                           beatatlas::LVMakeBase& loudView) const {
    const int mid = bandNum_ < 4 ? 1 : 2;
    if (mid + 1 >= bandNum_) return;
    loudView.analyzePeak(mono, signals.viewLow, signals.bands[mid], signals.bands[mid + 1], n);
}

// The sample at index i counts as the one behind it, i + 1, on both borders of the range: the range
// thus begins one sample early and leaves out its last. Kept, as every position depends on it.
bool BeatSensor::senseBeats(int n) {
    const std::int64_t seen = counter_;
    const std::int64_t count = n;
    const auto first = static_cast<int>(std::clamp<std::int64_t>(start_ - seen - 1, 0, count));
    const auto last = static_cast<int>(std::clamp<std::int64_t>(end_ - seen - 1, 0, count));
    // Stops at the end of the range, so that it cannot wrap and enter the range again.
    counter_ =
        static_cast<std::int32_t>(std::min(seen + count, std::max<std::int64_t>(end_, seen)));
    if (first >= last) return false;
    return followPeaks(closeSteps(first, last));
}

/** Averages samples from..to-1 over steps, in every band; the last step may stay open. Returns how
 *  many closed. */
int BeatSensor::closeSteps(int from, int to) {
    StepMeans means{decim_, decimCount_};
    int steps = 0;
    for (int b = 0; b < bandNum_; ++b) {
        Band& band = bands_[static_cast<std::size_t>(b)];
        means.open = decimCount_;
        means.sum = band.acc;
        steps = means.put(band.signal + from, to - from, band.levels.get());
        band.acc = means.sum;
    }
    decimCount_ = means.open;
    return steps;
}

// Peaks are rare and every band knows of its own alone, so each runs ahead to the next level that
// confirms one; the confirming levels of all bands are then taken in order of time.
bool BeatSensor::followPeaks(int steps) {
    bool chosen = false;
    int next = 0;
    for (int b = 0; b < bandNum_; ++b) runAhead(bands_[static_cast<std::size_t>(b)], 0, steps);
    for (;;) {
        int step = steps;
        for (int b = 0; b < bandNum_; ++b)
            step = std::min(step, bands_[static_cast<std::size_t>(b)].nextPeak);
        if (step == steps) break;
        if (takePeaks(step, steps)) chosen = true;
        next = step + 1;
    }
    if (next < steps) clearBeats();
    return chosen;
}

void BeatSensor::runAhead(Band& band, int from, int steps) {
    band.nextPeak = band.sensor.putQuietLevels(band.levels.get(), from, steps);
}

/** Closes a step in which at least one band confirms a peak; whether a beat was chosen in it. */
bool BeatSensor::takePeaks(int step, int steps) {
    clearBeats();
    bool found = false;
    for (int b = 0; b < bandNum_; ++b) {
        Band& band = bands_[static_cast<std::size_t>(b)];
        if (band.nextPeak != step) continue;
        band.sensor.putLevel(band.levels[static_cast<std::size_t>(step)], band.buffer);
        found = found || band.buffer.beatFound();
        runAhead(band, step + 1, steps);
    }
    if (!found || selectBand() == nullptr) return false;
    signalBeats();
    return true;
}

// A beat found lasts until the next level.
void BeatSensor::clearBeats() {
    for (int b = 0; b < bandNum_; ++b) bands_[static_cast<std::size_t>(b)].buffer.clearBeat();
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

// Brings the winner of the vote to the best band's tempo. A band that alone is for it does not
// overturn the vote; with enough votes behind it the music has changed, and the other tempi lose
// theirs.
bool BeatSensor::settleVote(float interval) {
    while (missesTempoOf(intervalOfBpm(vote_.winner()), interval)) {
        if (vote_.votesFor(interval) < kMinVotes) return false;
        vote_.keepOnly(interval);
    }
    return true;
}

}  // namespace peakss
