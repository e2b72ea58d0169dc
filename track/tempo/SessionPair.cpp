// SPDX-License-Identifier: MIT
#include "track/tempo/SessionPair.h"

#include <algorithm>
#include <cstddef>

#include "dsp/RoundingMode.h"
#include "dsp/processorYield.h"
#include "peakss/BeatInfoAnalyzeInfo.h"
#include "peakss/BeatInfoAnalyzer.h"
#include "session/frameKernels.h"
#include "session/tempoHundredths.h"

namespace beatatlas::track::inner {

namespace {

// The same values as in a session of the core.
constexpr int kBlocksPerSecond = 75;
constexpr int kZoomPointsPerSecond = 150;
constexpr int kBeatsPerBar = 4;
constexpr int kPhraseBeats = 32;
constexpr int kFrontBeats = kPhraseBeats / 2;
constexpr int kBackBeats = kFrontBeats - kBeatsPerBar;

}  // namespace

SessionPair::SessionPair(int rate, int frames, bool wantsWaves)
    : rate_(rate), frames_(frames), wantsWaves_(wantsWaves), blockFrames_(rate / kBlocksPerSecond),
      mono_(static_cast<std::size_t>(blockFrames_)), stereo_(2 * mono_.size()) {
    const TowardZeroScope mode;
    createAnalysers();
}

void SessionPair::createAnalysers() {
    beatListMaker_.create(rate_, 0, frames_);
    simpleEnvelopeMaker_.create(rate_, frames_);
    variedUnitEnvelope_.create(rate_, frames_);
    simpleUnitEnvelope_.create(rate_, frames_);
    unitBeatAdjust_.create(rate_, frames_);
    loudViewMaker_.create(rate_, frames_);
    zoomViewMaker_.create(rate_, frames_, kZoomPointsPerSecond, true);
    trackFilters_.create(rate_, blockFrames_,
                         {&variedUnitEnvelope_.audioFilter(), &simpleEnvelopeMaker_.audioFilter(),
                          wantsWaves_ ? &zoomViewMaker_.bassFilter() : nullptr});
}

void SessionPair::hear(const Block& block) {
    const TowardZeroScope mode;
    for (int taken = 0; taken < block.frames;) {
        taken += fillBlock(block, taken);
        if (blockFill_ == blockFrames_ || fedFrames_ == frames_) dispatchBlock();
    }
}

int SessionPair::fillBlock(const Block& block, int from) {
    const int count = std::min(block.frames - from, blockFrames_ - blockFill_);
    convertFrames(block.left + from, block.right + from, count, mono_.data() + blockFill_,
                  stereo_.data() + 2 * static_cast<std::ptrdiff_t>(blockFill_));
    blockFill_ += count;
    fedFrames_ += count;
    return count;
}

void SessionPair::dispatchBlock() {
    trackFilters_.operate(mono_.data(), stereo_.data(), blockFill_, nullptr);
    beatListMaker_.putBands(mono_.data(), trackFilters_.bands(), blockFill_,
                            wantsWaves_ ? &loudViewMaker_ : nullptr);
    simpleEnvelopeMaker_.putFiltered(trackFilters_.bassLine(), blockFill_);
    variedUnitEnvelope_.putFiltered(trackFilters_.pulses(), blockFill_);
    simpleUnitEnvelope_.putFiltered(trackFilters_.pulses(), blockFill_);
    unitBeatAdjust_.putSample(stereo_.data(), blockFill_);
    if (wantsWaves_) zoomViewMaker_.putFiltered(stereo_.data(), trackFilters_.bass(), blockFill_);
    blockFill_ = 0;
}

void SessionPair::close() {
    const TowardZeroScope mode;
    const UnbrokenWork working;
    closeVaried();
    closeSimple();
}

void SessionPair::closeVaried() {
    const float bpm = proposeGrid(true, grids_.varied.beats);
    variedUnitEnvelope_.analyze(bpm, grids_.varied.beats, true);
    grids_.varied.bpm100 = tempoHundredths(bpm);
}

void SessionPair::closeSimple() {
    float bpm = proposeGrid(false, grids_.simple.beats);
    bpm = simpleEnvelopeMaker_.analyze(bpm, grids_.simple.beats);
    simpleUnitEnvelope_.analyze(bpm, grids_.simple.beats, false);
    unitBeatAdjust_.analyze(bpm, grids_.simple.beats);
    grids_.simple.bpm100 = tempoHundredths(bpm);
}

float SessionPair::proposeGrid(bool isVaried, peakss::BeatList& beats) const {
    peakss::BeatList candidates = beatListMaker_.list();
    peakss::BeatInfoAnalyzeInfo info{beatListMaker_.bandNum(), &candidates};
    peakss::BeatInfoAnalyzer analyzer;
    analyzer.setSamplingRate(rate_);
    analyzer.setQuiet(true);
    return analyzer.analyze(&info, beats, frames_, kBeatsPerBar, kFrontBeats, kBackBeats, isVaried);
}

const WavePoint* SessionPair::loudWave() {
    const TowardZeroScope mode;
    loudViewMaker_.analyzeLoudColor(0, loudViewMaker_.loudNum());
    return loudViewMaker_.loudWave();
}

const WavePoint* SessionPair::dotsWave() {
    const TowardZeroScope mode;
    loudViewMaker_.analyzeDotsColor(0, loudViewMaker_.dotsNum());
    return loudViewMaker_.dotsWave();
}

}  // namespace beatatlas::track::inner
