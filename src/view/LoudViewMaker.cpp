// SPDX-License-Identifier: MIT
//
// Chunk by chunk of 1/75 s:
//   1. follow the level peaks of its three bands
//   2. follow the peaks of the low and mid band once more, decimated, for the dots
//   3. average the level of the whole signal and sum the peaks of each band, in strips of 400
//      points
//   4. finish the loudness points that all four strips have left behind
//   5. sum the decimated peaks in strips of 100 dots and finish dots likewise
#include "view/LoudViewMaker.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace beatatlas {

namespace {

constexpr int kBlocksPerSecond = 75;
constexpr std::int32_t kUncolored = 5;

/** Shares of the held level that make a peak candidate: in the high band hats fall off faster than
 *  bass notes. */
constexpr float kRatio = 0.75F;
constexpr float kHighRatio = 0.66F;

/** The low band's sum; 1 where the mid band alone has one. */
float dotLevel(std::int32_t lowSum, std::int32_t midSum) {
    if (lowSum != 0) return static_cast<float>(lowSum);
    return midSum != 0 ? 1.0F : 0.0F;
}

}  // namespace

int LoudViewMaker::create(int rate, int len) {
    release();
    if (rate < kBlocksPerSecond) return 0;
    const int blockLen = rate / kBlocksPerSecond;
    createBands(rate, len);
    averageLevel_.create(blockLen);
    startOver();
    blockLen_ = blockLen;
    return 1;
}

void LoudViewMaker::createBands(int rate, int len) {
    const DetectorTiming timing(rate, len);
    const double realBlocks = static_cast<double>(len) / static_cast<double>(timing.blockLen);
    const auto blocks = static_cast<float>(std::ceil(realBlocks));
    const float chunksPerSlot = blocks * 0.005F;
    low_.create(timing, kRatio, chunksPerSlot);
    mid_.create(timing, kRatio, chunksPerSlot);
    high_.create(timing, kHighRatio, chunksPerSlot);
    averageStrip_.create(blocks * 0.0025F);
    const int chunksPerDot = std::max(1, (len / timing.blockLen) / kDots);
    lowDots_.create(timing, kRatio, chunksPerDot);
    midDots_.create(timing, kRatio, chunksPerDot);
}

void LoudViewMaker::reset() {
    if (blockLen_ > 0) startOver();
}

void LoudViewMaker::startOver() {
    for (LoudBand* band : {&low_, &mid_, &high_}) band->reset();
    lowDots_.reset();
    midDots_.reset();
    averageLevel_.reset();
    averageStrip_.reset();
    clearWaves();
    chunk_ = 0;
}

void LoudViewMaker::clearWaves() {
    loudWave_.fill({0.0F, kUncolored});
    dotsWave_.fill({0.0F, kUncolored});
    loudSteps_.fill({});
    loudNum_ = 0;
    dotsNum_ = 0;
}

void LoudViewMaker::release() {
    for (LoudBand* band : {&low_, &mid_, &high_}) band->release();
    clearWaves();
    blockLen_ = 0;
}

int LoudViewMaker::analyzePeak(const float* in, float* low, float* mid, float* high, int n) {
    if (blockLen_ == 0) return 0;
    if (in == nullptr || low == nullptr || mid == nullptr || high == nullptr) return 0;
    for (int at = 0; at < n;) {
        const int m = std::min(blockLen_, n - at);
        takeChunk(in + at, low + at, mid + at, high + at, m);
        at += m;
    }
    return 1;
}

void LoudViewMaker::takeChunk(const float* in, const float* low, const float* mid,
                              const float* high, int m) {
    ++chunk_;
    low_.put(low, m);
    mid_.put(mid, m);
    high_.put(high, m);
    lowDots_.put(low_, m);
    midDots_.put(mid_, m);
    fillAverageStrip(in, m);
    for (LoudBand* band : {&low_, &mid_, &high_}) band->sumPeaks(chunk_);
    finishLoudPoints(loudPointsReady());
    lowDots_.sumPeaks(low_, chunk_);
    midDots_.sumPeaks(mid_, chunk_);
    finishDots(dotsReady());
}

void LoudViewMaker::fillAverageStrip(const float* in, int m) {
    const bool peakInChunk = low_.detector().peakPosition() > 0;
    const auto average = averageLevel_.put(in, m, peakInChunk);
    averageStrip_.put(chunk_, low_.detector().ended(), average);
}

int LoudViewMaker::loudPointsReady() const {
    if (low_.detector().ended() && mid_.detector().ended() && high_.detector().ended())
        return kLoudPoints;
    return std::min(
        {averageStrip_.index(), low_.sum().index(), mid_.sum().index(), high_.sum().index()});
}

void LoudViewMaker::finishLoudPoints(int ready) {
    for (; loudNum_ < ready; ++loudNum_) {
        const int k = loudNum_;
        const LoudPoint point =
            makeLoudPoint(averageStrip_[k], low_.sum()[k], mid_.sum()[k], high_.sum()[k]);
        loudWave_[static_cast<std::size_t>(k)].level = point.level;
        loudSteps_[static_cast<std::size_t>(k)] = point.steps;
    }
}

int LoudViewMaker::dotsReady() const {
    if (lowDots_.detector().ended() && midDots_.detector().ended()) return kDots;
    return std::min(lowDots_.sum().index(), midDots_.sum().index());
}

void LoudViewMaker::finishDots(int ready) {
    for (; dotsNum_ < ready; ++dotsNum_) {
        dotsWave_[static_cast<std::size_t>(dotsNum_)].level =
            dotLevel(lowDots_.sum()[dotsNum_], midDots_.sum()[dotsNum_]);
    }
}

void LoudViewMaker::analyzeLoudColor(int from, int to) {
    for (int k = std::max(from, 0); k < std::min(to, kLoudPoints); ++k)
        loudWave_[static_cast<std::size_t>(k)].color =
            loudColor(loudSteps_[static_cast<std::size_t>(k)]);
}

}  // namespace beatatlas
