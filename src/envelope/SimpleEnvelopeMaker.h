// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "dsp/LowPathFilter2D.h"
#include "envelope/ChunkCollector.h"
#include "peakss/BeatInfo.h"

namespace beatatlas {

/** Follows the bass level of a track and lays a strictly regular beat grid on its pulses.
 *
 *  Serves the simple sessions: from a tempo and provisional beats it decides whether the beats sit
 *  on the loud pulses or half a beat off them, refines the beat period to a hundredth of an
 *  envelope value, and replaces the beats.
 *
 *  Life: create() → putSample() per block → analyze(), any number of times; reset() feeds the same
 *  track anew, create() again starts over.
 *  Memory: two bytes per 128 frames of the declared length, allocated in create(); none in
 *  putSample(). */
class SimpleEnvelopeMaker {
public:
    SimpleEnvelopeMaker() = default;
    SimpleEnvelopeMaker(const SimpleEnvelopeMaker&) = delete;
    SimpleEnvelopeMaker& operator=(const SimpleEnvelopeMaker&) = delete;
    virtual ~SimpleEnvelopeMaker() { release(); }

    /** @param sampleRate  Hz
     *  @param length      frames of the track
     *  @return true */
    bool create(int sampleRate, int length);

    /** Back to the first frame with an empty envelope; the filter of the envelope keeps its
     *  state. */
    void reset();

    /** Takes one block: the mean of both channels, in 16-bit scale, that has been through a section
     *  like audioFilter(); null and frames ≤ 0 do nothing. */
    void putSample(const double* filtered, int frames);

    /** After create(). */
    const SecondOrderSection& audioFilter() const { return audioLowPass_->section(); }

    /** Replaces `beats` by a regular grid from the first beat to the end of the track.
     *
     *  @param bpm  tempo of the provisional beats
     *  @return     the refined tempo; `bpm` itself, with the beats untouched, when it is not above
     *              0, when there are no beats, or when it is so high that a refined beat would be
     *              shorter than one envelope value */
    float analyze(float bpm, peakss::BeatList& beats) const;

    /** Safe to call twice. */
    void release();

    /** One level per 128 frames, in 16-bit scale; 0 where nothing was fed. */
    const std::vector<std::int16_t>& envelope() const { return envelope_; }

private:
    void putLevel(double filteredFirst, std::size_t index);
    void layGrid(double beatSeconds, double firstBeat, peakss::BeatList& beats) const;

    int length_ = 0;
    int sampleRate_ = 0;
    ChunkCollector chunks_;
    std::unique_ptr<LowPathFilter2D> audioLowPass_;
    std::unique_ptr<LowPathFilter2D> envelopeLowPass_;
    std::vector<std::int16_t> envelope_;
};

}  // namespace beatatlas
