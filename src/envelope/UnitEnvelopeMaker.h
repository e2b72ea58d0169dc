// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "dsp/HighPathFilter1D.h"
#include "dsp/LowPathFilter2D.h"
#include "envelope/ChunkCollector.h"
#include "envelope/EnvelopeGrid.h"
#include "peakss/BeatInfo.h"

namespace beatatlas {

/** Checks a finished beat grid against the pulses of the music and numbers its bars.
 *
 *  From the strong pulses of a detrended bass envelope and the rhythm figures among them it decides
 *  whether the grid must move by half a beat and which beat of each four is the first. The tempo
 *  stays as it is.
 *
 *  Life: create() → putSample() per block → analyze(); reset() feeds the same track anew, create()
 *  again starts over. A second analyze() without reset() still sees the pulses of the first.
 *  Memory: four bytes per 128 frames of the declared length, allocated in create(); none in
 *  putSample(). */
class UnitEnvelopeMaker {
public:
    UnitEnvelopeMaker() = default;
    UnitEnvelopeMaker(const UnitEnvelopeMaker&) = delete;
    UnitEnvelopeMaker& operator=(const UnitEnvelopeMaker&) = delete;
    virtual ~UnitEnvelopeMaker() { release(); }

    /** @param sampleRate  Hz
     *  @param length      frames of the track
     *  @return true */
    bool create(int sampleRate, int length);

    /** Back to the first frame with an empty envelope and no pulses; the filters of the envelope
     *  keep their state. */
    void reset();

    /** Takes one block: the mean of both channels, in 16-bit scale, that has been through two
     *  sections like audioFilter(), one after the other; null and frames ≤ 0 do nothing. */
    void putSample(const double* filtered, int frames);

    /** Either of the two equal sections of the audio filter; after create(). */
    const SecondOrderSection& audioFilter() const { return audioLowPass_->section(); }

    /** Moves the beats by half a beat where the pulses ask for it, numbers them 1 to 4, and adds or
     *  drops one at each end so that they cover the track.
     *
     *  @param bpm        tempo of the track; nothing happens unless it is above 0
     *  @param beats      nothing happens to fewer than two
     *  @param keepPhase  leaves out the half-beat move */
    void analyze(float bpm, peakss::BeatList& beats, bool keepPhase);

    /** Safe to call twice. */
    void release();

    /** One level per 128 frames, in 16-bit scale, centred on 0; 0 where nothing was fed. */
    const std::vector<std::int16_t>& envelope() const { return envelope_; }
    /** Level of each retained pulse at its envelope index, 0 elsewhere. */
    const std::vector<std::int16_t>& peakLevels() const { return peakLevels_; }

private:
    void putLevel(double filteredFirst, std::size_t index);
    float envelopeRate() const { return static_cast<float>(sampleRate_) / 128.0F; }

    int length_ = 0;
    int sampleRate_ = 0;
    ChunkCollector chunks_;
    std::unique_ptr<LowPathFilter2D> audioLowPass_;
    std::unique_ptr<LowPathFilter2D> envelopeLowPass_;
    std::unique_ptr<HighPathFilter1D> envelopeHighPass_;
    std::vector<std::int16_t> envelope_;
    std::vector<std::int16_t> peakLevels_;
};

}  // namespace beatatlas
