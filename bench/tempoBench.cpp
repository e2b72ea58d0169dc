// SPDX-License-Identifier: MIT
// The automatic tempo: the evidence, and each stage of the decision.
#include <memory>
#include <vector>

#include "bench/BenchTrack.h"
#include "track/NearestScope.h"
#include "track/evidence/EvidenceListener.h"
#include "track/tempo/AutoTempo.h"
#include "track/tempo/BeatLine.h"
#include "track/tempo/LocalTempo.h"
#include "track/tempo/PulseSpectrum.h"
#include "track/tempo/beatFold.h"
#include "track/tempo/exactTempo.h"
#include "track/tempo/layBeats.h"
#include "track/tempo/trackBeats.h"

namespace beatatlas::bench {
namespace {

using namespace beatatlas::track::inner;

// The block length of a pass over a source.
constexpr int kPassFrames = 16384;
constexpr double kHz = static_cast<double>(kBpm) / 60.0;

template <class Listening>
void hearTrack(Listening& listener) {
    const test::StereoTrack& track = benchTrack().stereo;
    for (int from = 0; from < kFrames; from += kPassFrames)
        listener.hear(Block{track.left.data() + from, track.right.data() + from,
                            std::min(kPassFrames, kFrames - from)});
}

/** What the stages pass to each other. */
struct Stages {
    Stages() : sessions(kRate, kFrames, false) {
        const NearestScope mode;
        EvidenceListener listener(kRate);
        hearTrack(listener);
        evidence = listener.finish();
        hearTrack(sessions);
        sessions.close();
        answer = decideTempo(evidence, sessions.grids(), kRate, {});
        local = followTempo(evidence.onsets.full, kHz);
        tracked = trackBeats(evidence.onsets.sharp, local);
    }

    MetreEvidence metreEvidence(const BeatLine& line) const {
        return {evidence, line, 60.0 * kHz, answer.beats, answer.beats, 0.0};
    }

    SessionPair sessions;
    Evidence evidence;
    TempoAnswer answer;
    LocalTempo local;
    std::vector<double> tracked;
};

const Stages& stages() {
    static const Stages made;
    return made;
}

template <class Stage>
void run(benchmark::State& state, const Stage& stage) {
    const NearestScope mode;
    const Stages& given = stages();
    for (auto _ : state) benchmark::DoNotOptimize(stage(given));
    reportAudio(state, kFrames);
}

void sessionPair(benchmark::State& state) {
    benchTrack();
    for (auto _ : state) {
        SessionPair pair(kRate, kFrames, false);
        hearTrack(pair);
        pair.close();
        benchmark::DoNotOptimize(pair.grids().varied.bpm100);
    }
    reportAudio(state, kFrames);
}
BENCHMARK(sessionPair)->Unit(benchmark::kMillisecond);

void sessionPairClose(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto pair = std::make_unique<SessionPair>(kRate, kFrames, false);
        hearTrack(*pair);
        state.ResumeTiming();
        pair->close();
    }
    reportAudio(state, kFrames);
}
BENCHMARK(sessionPairClose)->Unit(benchmark::kMillisecond)->Iterations(2);

void evidenceListener(benchmark::State& state) {
    benchTrack();
    for (auto _ : state) {
        EvidenceListener listener(kRate);
        hearTrack(listener);
        benchmark::DoNotOptimize(listener.finish().seconds);
    }
    reportAudio(state, kFrames);
}
BENCHMARK(evidenceListener)->Unit(benchmark::kMillisecond);

template <class Stream>
void feedMono(benchmark::State& state) {
    const NearestScope mode;
    const std::vector<float>& mono = benchTrack().mono;
    for (auto _ : state) {
        Stream stream(kRate);
        for (int from = 0; from < kFrames; from += kPassFrames)
            stream.put(mono.data() + from, std::min(kPassFrames, kFrames - from));
        stream.finish();
    }
    reportAudio(state, kFrames);
}
BENCHMARK(feedMono<BandLevels>)->Name("bandLevels")->Unit(benchmark::kMillisecond);
BENCHMARK(feedMono<ChromaStream>)->Name("chromaStream")->Unit(benchmark::kMillisecond);

void chordChanges(benchmark::State& state) {
    run(state, [](const Stages& s) { return findChordChanges(s.evidence.chroma).means; });
}
BENCHMARK(chordChanges)->Unit(benchmark::kMillisecond);

void exactTempo(benchmark::State& state) {
    run(state, [](const Stages& s) {
        PulseSpectrum spectrum(s.evidence.onsets.full);
        return findExactTempo(spectrum, s.evidence.seconds, {kHz, 0.5 * kHz}).hz;
    });
}
BENCHMARK(exactTempo)->Unit(benchmark::kMillisecond);

void tempoClarity(benchmark::State& state) {
    const NearestScope mode;
    const PulseSpectrum spectrum(stages().evidence.onsets.full);
    run(state, [&](const Stages&) { return clarityOf(spectrum, kHz); });
}
BENCHMARK(tempoClarity)->Unit(benchmark::kMillisecond);

void localTempo(benchmark::State& state) {
    run(state, [](const Stages& s) { return followTempo(s.evidence.onsets.full, kHz).standing; });
}
BENCHMARK(localTempo)->Unit(benchmark::kMillisecond);

void beatTracking(benchmark::State& state) {
    run(state, [](const Stages& s) { return trackBeats(s.evidence.onsets.sharp, s.local).size(); });
}
BENCHMARK(beatTracking)->Unit(benchmark::kMillisecond);

void beatFold(benchmark::State& state) {
    run(state, [](const Stages& s) { return firstBeat(s.evidence.onsets.sharp, kHz); });
}
BENCHMARK(beatFold)->Unit(benchmark::kMillisecond);

void steadiness(benchmark::State& state) {
    run(state, [](const Stages& s) {
        return judgeSteadiness(s.evidence.onsets, kHz, s.answer.line, s.tracked).evenness;
    });
}
BENCHMARK(steadiness)->Unit(benchmark::kMillisecond);

void metre(benchmark::State& state) {
    const BeatLine line(stages().answer.line);
    run(state, [&](const Stages& s) { return judgeMetre(s.metreEvidence(line)).size(); });
}
BENCHMARK(metre)->Unit(benchmark::kMillisecond);

void beatLaying(benchmark::State& state) {
    const BeatLine line(stages().answer.line);
    run(state, [&](const Stages& s) {
        return layBeats(s.evidence.onsets.sharp, s.evidence.seconds, line, s.answer.metres.front(),
                        true)
            .size();
    });
}
BENCHMARK(beatLaying)->Unit(benchmark::kMillisecond);

void bars(benchmark::State& state) {
    run(state, [](const Stages& s) {
        return judgeBars(s.evidence, s.answer.beats, s.answer.downbeats, s.answer.downbeats).size();
    });
}
BENCHMARK(bars)->Unit(benchmark::kMillisecond);

void tempoDecision(benchmark::State& state) {
    run(state,
        [](const Stages& s) { return decideTempo(s.evidence, s.sessions.grids(), kRate, {}).bpm; });
}
BENCHMARK(tempoDecision)->Unit(benchmark::kMillisecond);

void autoTempo(benchmark::State& state) {
    benchTrack();
    for (auto _ : state) {
        AutoTempo tempo(kRate, kFrames, false);
        hearTrack(tempo);
        benchmark::DoNotOptimize(tempo.finish().bpm);
    }
    reportAudio(state, kFrames);
}
BENCHMARK(autoTempo)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace beatatlas::bench
