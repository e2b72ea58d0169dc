// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "peakss/BeatInfo.h"

namespace beatatlas::test {

/** Interleaved 16-bit stereo. */
using Stereo = std::vector<std::int16_t>;

inline int framesOf(const Stereo& audio) {
    return static_cast<int>(audio.size() / 2);
}

/** Adds a dry kick that starts at a frame: a falling 60 Hz tone of 40 ms and a 4 kHz click of 1 ms,
 *  at most `peak` high. */
inline void addKick(Stereo& audio, std::int64_t start, int sampleRate, double peak) {
    constexpr double kTwoPi = 6.283185307179586;
    const int length = sampleRate / 8;
    for (int n = 0; n < length; ++n) {
        const std::int64_t frame = start + n;
        if (frame < 0 || 2 * frame + 1 >= static_cast<std::int64_t>(audio.size())) continue;
        const double t = static_cast<double>(n) / sampleRate;
        const double tone = 0.7 * std::exp(-t / 0.04) * std::cos(kTwoPi * 60.0 * t);
        const double click = 0.3 * std::exp(-t / 0.001) * std::cos(kTwoPi * 4000.0 * t);
        const auto value = static_cast<std::int16_t>(peak * (tone + click));
        audio[static_cast<std::size_t>(2 * frame)] = value;
        audio[static_cast<std::size_t>(2 * frame + 1)] = value;
    }
}

/** Silence with kicks of one height. */
inline Stereo kickTrack(int frames, int sampleRate, const std::vector<std::int64_t>& starts,
                        double peak = 20000.0) {
    Stereo audio(2 * static_cast<std::size_t>(frames));
    for (const std::int64_t start : starts) addKick(audio, start, sampleRate, peak);
    return audio;
}

/** Positions from `first` on, as far as they lie below `end`, each rounded to a frame. */
inline std::vector<std::int64_t> regularFrames(double first, double step, double end) {
    std::vector<std::int64_t> frames;
    for (int i = 0; first + i * step < end; ++i) {
        frames.push_back(static_cast<std::int64_t>(first + i * step + 0.5));
    }
    return frames;
}

/** Beats at these frames, numbered 1 to 4 from the first on. */
inline peakss::BeatList beatsAt(const std::vector<std::int64_t>& frames, float intervalMs) {
    peakss::BeatList beats;
    for (const std::int64_t frame : frames) {
        peakss::BeatInfo beat;
        beat.pos = static_cast<std::int32_t>(frame);
        beat.interval = intervalMs;
        beat.group = static_cast<std::int32_t>(beats.size() % 4) + 1;
        beats.push_back(beat);
    }
    return beats;
}

inline std::vector<std::int32_t> positionsOf(const peakss::BeatList& beats) {
    std::vector<std::int32_t> positions;
    for (const peakss::BeatInfo& beat : beats) positions.push_back(beat.pos);
    return positions;
}

inline std::vector<std::int32_t> numbersOf(const peakss::BeatList& beats) {
    std::vector<std::int32_t> numbers;
    for (const peakss::BeatInfo& beat : beats) numbers.push_back(beat.group);
    return numbers;
}

/** Feeds a whole track in blocks of one size, as many frames as there are left in the last one. */
template <class Maker>
void feed(Maker& maker, const Stereo& audio, int blockFrames) {
    const int frames = framesOf(audio);
    for (int at = 0; at < frames; at += blockFrames) {
        maker.putSample(audio.data() + 2 * static_cast<std::size_t>(at),
                        std::min(blockFrames, frames - at));
    }
}

/** 16-bit stereo noise from a fixed generator, the channels different. */
inline Stereo stereoNoise(int frames) {
    Stereo audio(2 * static_cast<std::size_t>(frames));
    std::uint32_t state = 4711;
    for (std::int16_t& sample : audio) {
        state = state * 1664525U + 1013904223U;
        sample = static_cast<std::int16_t>(static_cast<int>(state >> 16U) - 32768);
    }
    return audio;
}

/** Noise fed to makers in blocks of any size must leave the envelope that one whole block leaves.
 *
 *  @param envelopeOf  (audio, length in frames, frames per block) → envelope of a new maker */
template <class EnvelopeOf>
void expectBlocksLeaveNoTrace(EnvelopeOf envelopeOf) {
    const Stereo audio = stereoNoise(20005);
    const auto whole = envelopeOf(audio, 20005, 20005);
    for (const int block : {1, 2, 3, 587, 588, 589, 640, 4096}) {
        EXPECT_EQ(envelopeOf(audio, 20005, block), whole) << "blocks of " << block;
    }
}

}  // namespace beatatlas::test
