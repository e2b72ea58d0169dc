// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "support/TrackSynth.h"

namespace beatatlas::test {

/** A tonic-subdominant-dominant progression with drums in one of the 24 keys, numbered as results
 *  are. */
inline StereoTrack stereoProgression(int key, int sampleRate, int seconds) {
    TrackPlan plan;
    plan.sampleRate = sampleRate;
    plan.lengthFrames = static_cast<std::int64_t>(sampleRate) * seconds;
    plan.bpm = 150.0;
    plan.tonic = key % 12;
    plan.mode = key < 12 ? KeyMode::major : KeyMode::minor;
    return TrackSynth(plan).renderAll();
}

/** The same as one channel of full scale 1. */
inline std::vector<float> monoProgression(int key, int sampleRate, int seconds) {
    const StereoTrack track = stereoProgression(key, sampleRate, seconds);
    std::vector<float> mono(track.left.size());
    for (std::size_t i = 0; i < mono.size(); ++i)
        mono[i] = (track.left[i] + track.right[i]) / 65536.0F;
    return mono;
}

/** A stereo track of 16-bit samples as it reaches the key ranking, with the levels a pre-check
 *  finds in it. */
struct KeyTrack {
    int rate = 44100;
    /** Left and right in turn. */
    std::vector<std::int16_t> samples;
    /** Σ |left| + |right|. */
    double sum = 0.0;
    double peak = 0.0;

    int frames() const { return static_cast<int>(samples.size() / 2); }

    void measureLevels() {
        sum = 0.0;
        peak = 0.0;
        for (std::int16_t sample : samples) {
            const double magnitude = std::abs(static_cast<double>(sample));
            sum += magnitude;
            peak = std::max(peak, magnitude);
        }
    }
};

inline KeyTrack keyTrack(const StereoTrack& track, int rate) {
    KeyTrack out;
    out.rate = rate;
    for (std::size_t i = 0; i < track.left.size(); ++i) {
        out.samples.push_back(static_cast<std::int16_t>(track.left[i]));
        out.samples.push_back(static_cast<std::int16_t>(track.right[i]));
    }
    out.measureLevels();
    return out;
}

}  // namespace beatatlas::test
