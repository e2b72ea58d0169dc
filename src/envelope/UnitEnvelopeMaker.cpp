// SPDX-License-Identifier: MIT
// Half-beat phase and bar numbers of a finished grid.
//   1. the beats on the time scale of the envelope     4. votes for the first beat of the bar
//   2. strong pulses, and the rhythm figures in them   5. positions and numbers written back
//   3. half a beat aside where most pulses are off     6. one beat more or less at each end
#include "envelope/UnitEnvelopeMaker.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "dsp/truncation.h"
#include "envelope/BarPhaseScores.h"
#include "envelope/GridEnds.h"
#include "envelope/HalfBeatShift.h"
#include "envelope/PulsePeaks.h"
#include "envelope/RhythmFigures.h"
#include "envelope/designFilter.h"

namespace beatatlas {

namespace {

constexpr double kAudioCornerHz = 150.0;   // kick and bass fundamentals
constexpr double kEnvelopeCornerHz = 5.0;  // one hump per beat up to fast tempos
constexpr double kDriftCornerHz = 0.5;     // slower than any beat
constexpr int kBeatsPerBar = 4;

int firstOfBar(const EnvelopeGrid& grid, const std::vector<int>& peaks,
               const std::vector<std::int16_t>& peakLevels, const RhythmFigures& figures,
               int lead) {
    BarPhaseScores scores(grid, peaks, peakLevels, lead);
    scores.setFirstPulse();
    scores.addSectionStarts();
    if (figures.trusted() != nullptr) scores.addFigures(*figures.trusted());
    return scores.firstOfBar();
}

/** Position in the bar, 0..4, of the first given beat, when `firstOfBar` is that of the grid's. */
int placeOfFirstBeat(int firstOfBar, bool isPrepended) {
    const int back = -(firstOfBar % kBeatsPerBar);
    return isPrepended ? (back + 5) % kBeatsPerBar : back + kBeatsPerBar;
}

/** Frames by which a moved grid differs from the beats, measured at the second beat: the first may
 *  have been held at the start of the track. */
std::int64_t shiftInFrames(const EnvelopeGrid& grid, const peakss::BeatList& beats) {
    const std::size_t second = grid.isPrepended ? 2 : 1;
    // Of two beats behind a made-up one, the grid holds only the first.
    if (second >= grid.beatIndex.size()) return 0;
    return std::int64_t{128} * grid.beatIndex[second] - beats[1].pos;
}

void rewriteBeats(peakss::BeatList& beats, std::int64_t shiftFrames, int firstPlace) {
    int place = firstPlace;
    for (peakss::BeatInfo& beat : beats) {
        beat.pos = static_cast<std::int32_t>(beat.pos + shiftFrames);
        beat.group = place % kBeatsPerBar + 1;
        place = place % kBeatsPerBar + 1;
    }
}

}  // namespace

bool UnitEnvelopeMaker::create(int sampleRate, int length) {
    release();
    length_ = length;
    sampleRate_ = sampleRate;
    const double audioRate = sampleRate;
    const double valueRate = audioRate / 128.0;
    audioLowPass_ = designFilter<LowPathFilter2D>(kAudioCornerHz, audioRate);
    envelopeLowPass_ = designFilter<LowPathFilter2D>(kEnvelopeCornerHz, valueRate);
    envelopeHighPass_ = designFilter<HighPathFilter1D>(kDriftCornerHz, valueRate);
    envelope_.resize(ChunkCollector::valueCount(length));
    peakLevels_.resize(envelope_.size());
    chunks_.create(length);
    return true;
}

void UnitEnvelopeMaker::reset() {
    chunks_.rewind();
    std::fill(envelope_.begin(), envelope_.end(), std::int16_t{0});
    std::fill(peakLevels_.begin(), peakLevels_.end(), std::int16_t{0});
}

void UnitEnvelopeMaker::putSample(const double* filtered, int frames) {
    chunks_.putSample(filtered, frames,
                      [this](double first, std::size_t index) { putLevel(first, index); });
}

// One value stands for the chunk: the filtered first frame.
void UnitEnvelopeMaker::putLevel(double filteredFirst, std::size_t index) {
    const double level = filterValue(*envelopeLowPass_, std::fabs(filteredFirst));
    envelope_[index] = truncToInt16(filterValue(*envelopeHighPass_, level));
}

void UnitEnvelopeMaker::analyze(float bpm, peakss::BeatList& beats, bool keepPhase) {
    if (!(bpm > 0.0F) || beats.size() < 2) return;
    const float rate = envelopeRate();
    // 110 ms: the smoothed level peaks after the beat.
    const int lead = truncToInt32(rate * 110.0F / 1000.0F + 0.5F);
    EnvelopeGrid grid = makeEnvelopeGrid(beats, sampleRate_);
    const std::vector<int> peaks = retainPulsePeaks(envelope_, peakLevels_);
    const RhythmFigures figures = findRhythmFigures(peaks, grid);

    const auto& pulses = figures.trusted() != nullptr ? *figures.trusted() : peaks;
    const float beatLength = rate * (60000.0F / bpm) / 1000.0F;
    const bool isShifted = !keepPhase && shiftToPulses(grid, pulses, lead, beatLength);
    const int first = firstOfBar(grid, peaks, peakLevels_, figures, lead);

    const std::int64_t shiftFrames = isShifted ? shiftInFrames(grid, beats) : 0;
    rewriteBeats(beats, shiftFrames, placeOfFirstBeat(first, grid.isPrepended));
    fitTail(beats, sampleRate_, length_);
    fitHead(beats, sampleRate_);
}

void UnitEnvelopeMaker::release() {
    length_ = 0;
    sampleRate_ = 0;
    chunks_.create(0);
    audioLowPass_.reset();
    envelopeLowPass_.reset();
    envelopeHighPass_.reset();
    std::vector<std::int16_t>().swap(envelope_);
    std::vector<std::int16_t>().swap(peakLevels_);
}

}  // namespace beatatlas
