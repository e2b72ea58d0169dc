// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/FilteredTrack.h"
#include "peakss/BeatInfo.h"
#include "support/TrackSynth.h"

namespace beatatlas::bench {

constexpr int kRate = 44100;
constexpr int kSeconds = 300;
constexpr int kFrames = kRate * kSeconds;
constexpr int kBlockFrames = kRate / 75;  // the block length of a session
constexpr float kBpm = 126.0F;

/** Five minutes of synthesised music in every form that a component takes. */
struct BenchTrack {
    /** 16-bit scale. */
    test::StereoTrack stereo;
    /** Full scale ±1.0. */
    std::vector<float> mono;
    /** Left first. */
    std::vector<std::int16_t> interleaved;
    /** The true grid. */
    peakss::BeatList beats;
};

/** A song that is as demanding for the analysis as music: intro, verse, chorus, break and ending,
 *  each with its own instruments, chords and bass under an improvised melody and percussion. It
 *  yields about as many beat candidates a minute as recorded dance music (several hundred, where a
 *  drum machine alone yields three thousand), and as many sleeps in the closing analysis. */
test::StereoTrack makeSong(double seconds);

/** Made once, at the first call. It has too many events for a branch predictor to memorise, so the
 *  same track may be used repeatedly. */
const BenchTrack& benchTrack();

/** What analysers hear of that track through filters. */
FilteredTrack& filteredBenchTrack();

/** Calls feed(first frame, frames) for block after block of the track. */
template <typename Feed>
void forEachBlock(Feed feed) {
    for (int from = 0; from < kFrames; from += kBlockFrames)
        feed(from, std::min(kBlockFrames, kFrames - from));
}

/** Reports the work of an iteration as seconds of audio per second of processor time, and as
 *  processor time per frame. */
void reportAudio(benchmark::State& state, double frames, double rate = kRate);

}  // namespace beatatlas::bench
