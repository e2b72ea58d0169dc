// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/StereoTrack.h"
#include "support/TrackSynth.h"
#include "support/signals.h"
#include "track/evidence/EvidenceListener.h"
#include "track/tempo/AutoTempo.h"

namespace beatatlas::test {

/** An onset envelope: 1 on the frame nearest to each time, half of it on the two beside, of 150
 *  frames a second. */
inline std::vector<float> onsetsAt(const std::vector<double>& times, double seconds) {
    std::vector<float> envelope(static_cast<std::size_t>(seconds * 150.0) + 1);
    for (const double time : times) {
        const auto frame = static_cast<std::size_t>(time * 150.0 + 0.5);
        for (std::size_t i = frame == 0 ? 0 : frame - 1; i <= frame + 1 && i < envelope.size(); ++i)
            envelope[i] += i == frame ? 1.0F : 0.5F;
    }
    return envelope;
}

/** From `first` on, `interval` apart, before the end. */
inline std::vector<double> evenTimes(double first, double interval, double end) {
    std::vector<double> times;
    for (double time = first; time < end;
         time = first + static_cast<double>(times.size()) * interval)
        times.push_back(time);
    return times;
}

template <class Listener>
void hearBlocks(Listener& listener, const StereoTrack& track, int block) {
    for (int i = 0; i < track.frames(); i += block)
        listener.hear(track::inner::Block{track.left.data() + i, track.right.data() + i,
                                          std::min(block, track.frames() - i)});
}

inline track::inner::TempoAnswer tempoOf(int rate, const StereoTrack& track, int block = 16384) {
    track::inner::AutoTempo tempo(rate, track.frames(), false);
    hearBlocks(tempo, track, block);
    return tempo.finish();
}

inline track::inner::Evidence evidenceOf(int rate, const StereoTrack& track) {
    track::inner::EvidenceListener listener(rate);
    hearBlocks(listener, track, 16384);
    return listener.finish();
}

/** A chord and a strong bass on the downbeats, something on every beat. */
template <class IsDownbeat>
track::inner::Evidence evidenceOfBars(const std::vector<double>& beats, double seconds,
                                      const IsDownbeat& isDownbeat) {
    track::inner::Evidence evidence;
    evidence.seconds = seconds;
    const auto frames = static_cast<std::size_t>(seconds * 150.0) + 1;
    evidence.onsets.sharp.assign(frames, 0.0F);
    evidence.onsets.strength.assign(frames, {});
    evidence.onsets.level.assign(frames, {});
    evidence.chroma.assign(static_cast<std::size_t>(seconds * 10.0), track::inner::Chroma{});
    std::size_t bar = 0;
    for (std::size_t k = 0; k < beats.size(); ++k) {
        if (isDownbeat(k)) ++bar;
        for (float& group : evidence.onsets.strength[evidence.onsets.frameAt(beats[k])])
            group = isDownbeat(k) ? 3.0F : 1.0F;
        const double end = k + 1 < beats.size() ? beats[k + 1] : seconds;
        const auto to =
            std::min(evidence.chroma.size(), static_cast<std::size_t>(end * 10.0 + 0.5));
        for (auto i = static_cast<std::size_t>(beats[k] * 10.0 + 0.5); i < to; ++i)
            evidence.chroma[i][bar * 5 % 12] = 2.0F;
    }
    return evidence;
}

inline StereoTrack inBothChannels(const std::vector<float>& mono) {
    return {mono, mono};
}

/** Bursts of noise, each a twentieth of a second, loudest in their first frames. */
inline std::vector<float> burstsAt(const std::vector<double>& times, int rate, std::size_t frames,
                                   double peak) {
    std::vector<float> sum(frames);
    for (std::size_t i = 0; i < times.size(); ++i) {
        std::vector<float> burst = whiteNoise(static_cast<std::size_t>(rate) / 20, peak,
                                              static_cast<std::uint64_t>(i) + 1);
        for (std::size_t k = 0; k < burst.size(); ++k)
            burst[k] *= 1.0F - static_cast<float>(k) / static_cast<float>(burst.size());
        mixInto(sum, burst, static_cast<std::size_t>(times[i] * rate + 0.5));
    }
    return sum;
}

}  // namespace beatatlas::test
