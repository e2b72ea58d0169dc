// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <vector>

#include "track/evidence/DecimatedPowers.h"

namespace beatatlas::track::inner {

/** The strength of each pitch class, from A. */
using Chroma = std::array<float, 12>;

/** A chroma in double precision: sums and means of frames, or scaled. */
using ChromaSum = std::array<double, std::tuple_size_v<Chroma>>;

/** The chroma of a track ten times a second: how strongly each pitch class sounds between 100 Hz
 *  and 2 kHz.
 *
 *  Life: construct, rounding to nearest → put() per block → finish(). */
class ChromaStream {
public:
    static constexpr double kFramesPerSecond = 10.0;

    /** @param rate  44100 or 48000 Hz */
    explicit ChromaStream(int rate);

    /** Takes the mean of both channels, full scale ±1.0. */
    void put(const float* mono, std::int64_t samples);

    /** The frames of the whole track, compressed: ln(1 + c), where c = 1 is a twelfth of the median
     *  strength of all frames. Call once. */
    std::vector<Chroma> finish();

private:
    /** Neighbouring bins of one pitch class. */
    struct Tone {
        std::size_t firstBin;
        std::size_t endBin;
        std::size_t pitchClass;
    };

    static std::vector<Tone> tonesOf(double rate);
    void addFrame(const float* powers);
    void compress();

    DecimatedPowers powers_;
    std::vector<Tone> tones_;  // ascending
    std::vector<Chroma> frames_;
};

}  // namespace beatatlas::track::inner
