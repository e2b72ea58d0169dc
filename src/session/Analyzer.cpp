// SPDX-License-Identifier: MIT
#include "session/Analyzer.h"

#include <algorithm>
#include <bit>
#include <cstddef>

#include "dsp/PromptSleeps.h"
#include "dsp/RoundingMode.h"
#include "dsp/processorYield.h"
#include "peakss/grid/BeatInfoAnalyzer.h"
#include "session/frameKernels.h"
#include "session/tempoHundredths.h"

namespace beatatlas {

namespace {

constexpr int kBlocksPerSecond = 75;
constexpr int kZoomPointsPerSecond = 150;
constexpr int kBeatsPerBar = 4;
constexpr int kDefaultSectionBeats = 32;
constexpr int kSimpleRangeSeconds = 60;
constexpr int kFeedsPerYield = 4;

// Grid phrases are bars of four times a power of two, or the bar itself.
bool isPhraseLength(int beats) {
    return beats >= kBeatsPerBar && beats % kBeatsPerBar == 0 &&
           std::has_single_bit(static_cast<unsigned>(beats / kBeatsPerBar));
}

}  // namespace

Analyzer::Analyzer() {
    reset();
}

Analyzer::~Analyzer() {
    reset();
}

void Analyzer::reset() {
    created_ = simple_ = beatOn_ = loudOn_ = zoomOn_ = keyOn_ = preChecked_ = analyzed_ = false;
    rate_ = blockLen_ = totalSamples_ = startSample_ = rangeSamples_ = 0;
    sectionBeats_ = kDefaultSectionBeats;
    varied_ = false;
    monoBlock_.reset();
    stereoBlock_.reset();
    fedSamples_ = 0;
    blockFill_ = 0;
    bpm_ = 0.0F;
    beatList_.clear();
    loudColored_ = dotsColored_ = zoomRead_ = 0;
}

void Analyzer::create(int rate, int totalSamples, int sectionBeats, bool varied, bool loudOn,
                      bool zoomOn, bool keyOn) {
    if (refuses(rate, totalSamples) || sectionBeats < 0) return;
    prepare(rate, totalSamples, loudOn, zoomOn, keyOn);
    beatOn_ = sectionBeats != 0;
    varied_ = varied;
    // A constant tempo is always measured over the default phrase, whatever the host asked for.
    if (varied && isPhraseLength(sectionBeats)) sectionBeats_ = sectionBeats;
    startSample_ = 0;
    rangeSamples_ = totalSamples;
    createAnalysers();
    created_ = true;
}

void Analyzer::createSimple(int rate, int totalSamples, int startSample, int rangeSamples,
                            bool loudOn, bool zoomOn, bool keyOn) {
    if (refuses(rate, totalSamples)) return;
    prepare(rate, totalSamples, loudOn, zoomOn, keyOn);
    simple_ = true;
    beatOn_ = true;
    limitSensingRange(startSample, rangeSamples);
    createAnalysers();
    created_ = true;
}

bool Analyzer::refuses(int rate, int totalSamples) const {
    return created_ || (rate != 44100 && rate != 48000) || totalSamples <= 0;
}

void Analyzer::prepare(int rate, int totalSamples, bool loudOn, bool zoomOn, bool keyOn) {
    reset();
    setRoundTowardZero();
    loudOn_ = loudOn;
    zoomOn_ = zoomOn;
    keyOn_ = keyOn;
    preChecked_ = !keyOn;
    rate_ = rate;
    blockLen_ = rate / kBlocksPerSecond;
    totalSamples_ = totalSamples;
    const auto blockLen = static_cast<std::size_t>(blockLen_);
    monoBlock_ = std::make_unique<float[]>(blockLen);
    stereoBlock_ = std::make_unique<std::int16_t[]>(2 * blockLen);
}

void Analyzer::limitSensingRange(int startSample, int rangeSamples) {
    rangeSamples_ = rangeSamples;
    if (rangeSamples < 1 || rangeSamples > totalSamples_)
        rangeSamples_ = std::min(totalSamples_, kSimpleRangeSeconds * rate_);
    startSample_ = startSample < 0 || startSample >= rangeSamples_ ? 0 : startSample;
}

// Every analyser is made, whatever the switches say: a getter of one that is off answers as an
// empty one does. The fine adjustment alone has no place in a session of varied tempo.
void Analyzer::createAnalysers() {
    beatListMaker_.create(rate_, startSample_, rangeSamples_);
    simpleEnvelopeMaker_.create(rate_, totalSamples_);
    unitEnvelopeMaker_.create(rate_, totalSamples_);
    if (!varied_) unitBeatAdjust_.create(rate_, totalSamples_);
    loudViewMaker_.create(rate_, totalSamples_);
    zoomViewMaker_.create(rate_, totalSamples_, kZoomPointsPerSecond, true);
    keyRankMaker_.create(rate_, totalSamples_);
    trackFilters_.create(rate_,
                         {.bands = beatOn_ || loudOn_,
                          .pulses = beatOn_ ? &unitEnvelopeMaker_.audioFilter() : nullptr,
                          .bassLine = simple_ ? &simpleEnvelopeMaker_.audioFilter() : nullptr,
                          .bass = zoomOn_ ? &zoomViewMaker_.bassFilter() : nullptr});
}

void Analyzer::setSamplePre(const float* left, const float* right, int count) {
    if (!created_ || preChecked_ || analyzed_) return;
    if (count <= 0 || left == nullptr || right == nullptr) return;
    setRoundTowardZero();
    preChecker_.putSample(left, right, count);
    fedSamples_ += count;
    if (fedSamples_ < totalSamples_) return;
    keyRankMaker_.setPreCheckData(preChecker_.loudCount(), preChecker_.loudSum(),
                                  preChecker_.loudMax(), preChecker_.quietCount(),
                                  preChecker_.quietSum(), preChecker_.quietMax());
    preChecked_ = true;
    fedSamples_ = 0;
}

void Analyzer::setSample(const float* left, const float* right, int count) {
    if (!created_ || !preChecked_ || analyzed_) return;
    if (count <= 0 || left == nullptr || right == nullptr) return;
    setRoundTowardZero();
    int taken = 0;
    while (taken < count) {
        taken += fillBlock(left + taken, right + taken, count - taken);
        const bool complete = fedSamples_ >= totalSamples_;
        if (blockFill_ != blockLen_ && !complete) continue;
        dispatchBlock();
        blockFill_ = 0;
        if (complete) {
            analyze();
            break;
        }
    }
    // With calls of equal length this lets the host's other threads breathe on every fourth one.
    if (fedSamples_ / count % kFeedsPerYield != 0) return;
    const PromptSleeps prompt;
    yieldProcessor();
}

// Takes frames until the block is full or the input used up; returns how many.
int Analyzer::fillBlock(const float* left, const float* right, int count) {
    const int frames = std::min(count, blockLen_ - blockFill_);
    convertFrames(left, right, frames, monoBlock_.get() + blockFill_,
                  stereoBlock_.get() + 2 * static_cast<std::ptrdiff_t>(blockFill_));
    blockFill_ += frames;
    fedSamples_ += frames;
    return frames;
}

void Analyzer::dispatchBlock() {
    if (beatOn_ || loudOn_ || zoomOn_) dispatchFiltered();
    if (keyOn_) keyRankMaker_.putSample(stereoBlock_.get(), blockFill_);
}

// One pass filters for all.
void Analyzer::dispatchFiltered() {
    const float* mono = monoBlock_.get();
    const std::int16_t* stereo = stereoBlock_.get();
    trackFilters_.operate(mono, stereo, blockFill_, keyOn_ ? &keyRankMaker_ : nullptr);
    if (beatOn_) {
        dispatchBeats();
    } else if (loudOn_) {
        const peakss::BandSignals bands = trackFilters_.bands();
        loudViewMaker_.analyzePeak(mono, bands.viewLow, bands.bands[2], bands.bands[3], blockFill_);
    }
    if (zoomOn_) zoomViewMaker_.putSample(stereo, trackFilters_.bass(), blockFill_);
}

void Analyzer::dispatchBeats() {
    beatListMaker_.put(monoBlock_.get(), trackFilters_.bands(), blockFill_,
                       loudOn_ ? &loudViewMaker_ : nullptr);
    if (simple_) simpleEnvelopeMaker_.putSample(trackFilters_.bassLine(), blockFill_);
    unitEnvelopeMaker_.putSample(trackFilters_.pulses(), blockFill_);
    if (!varied_) unitBeatAdjust_.putSample(stereoBlock_.get(), blockFill_);
}

// A fixed chain, no vote: each stage takes the tempo and the grid of the one before.
void Analyzer::analyze() {
    if (!created_ || analyzed_) return;
    setRoundTowardZero();
    const PromptSleeps prompt;
    analyzed_ = true;
    if (!beatOn_) return;
    bpm_ = proposeGrid();
    if (simple_) bpm_ = simpleEnvelopeMaker_.analyze(bpm_, beatList_);
    unitEnvelopeMaker_.analyze(bpm_, beatList_, varied_);
    yieldProcessor();
    if (!varied_) unitBeatAdjust_.analyze(bpm_, beatList_);
}

// Lays the grid from the raw candidates; the result is the tempo in BPM, 0 when there is none.
float Analyzer::proposeGrid() {
    peakss::BeatList candidates = beatListMaker_.list();
    peakss::BeatInfoAnalyzeInfo info{beatListMaker_.bandNum(), &candidates};
    peakss::BeatInfoAnalyzer analyzer;
    analyzer.setSamplingRate(rate_);
    analyzer.setQuiet(isQuiet_);
    const bool hasPhrase = sectionBeats_ >= 2 * kBeatsPerBar;
    const int front = hasPhrase ? sectionBeats_ / 2 : 0;
    const int back = hasPhrase ? front - kBeatsPerBar : 0;
    return analyzer.analyze(&info, beatList_, totalSamples_, kBeatsPerBar, front, back, varied_);
}

int Analyzer::getBpm() const {
    const TowardZeroScope mode;
    // Through memory, so that no compiler moves the arithmetic out of the scope.
    const volatile int hundredths = tempoHundredths(bpm_);
    return hundredths;
}

const WavePoint* Analyzer::getLoudWave() {
    const int count = getLoudNum();
    if (loudColored_ < count) loudViewMaker_.analyzeLoudColor(loudColored_, count);
    loudColored_ = count;
    return loudViewMaker_.loudWave();
}

const WavePoint* Analyzer::getDotsWave() {
    const int count = getDotsNum();
    if (dotsColored_ < count) loudViewMaker_.analyzeDotsColor(dotsColored_, count);
    dotsColored_ = count;
    return loudViewMaker_.dotsWave();
}

const ZoomPoint* Analyzer::getZoomWave() {
    zoomRead_ = std::max(zoomRead_, getZoomNum());
    return zoomViewMaker_.points();
}

}  // namespace beatatlas
