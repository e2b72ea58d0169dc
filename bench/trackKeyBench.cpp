// SPDX-License-Identifier: MIT
// The key of a whole track by evidence, and its stages.
#include <algorithm>
#include <vector>

#include "bench/BenchTrack.h"
#include "track/NearestScope.h"
#include "track/key/EvidenceKey.h"
#include "track/key/KeyFrames.h"
#include "track/key/PeakStream.h"
#include "track/key/keySegments.h"
#include "track/key/scoreKeys.h"

namespace beatatlas::bench {
namespace {

using namespace beatatlas::track::inner;

// The block length of a pass over a source.
constexpr int kPassFrames = 16384;

void putTrack(PeakStream& stream) {
    const std::vector<float>& mono = benchTrack().mono;
    for (int from = 0; from < kFrames; from += kPassFrames)
        stream.put(mono.data() + from, std::min(kPassFrames, kFrames - from));
    stream.finish();
}

/** What the stages pass to each other. */
struct Stages {
    Stages() {
        const NearestScope mode;
        putTrack(stream);
        frames = foldFrames(stream.peaks(), stream.tuning(), stream.secondsPerFrame());
    }

    PeakStream stream{kRate};
    KeyFrames frames;
};

const Stages& stages() {
    static const Stages made;
    return made;
}

void evidenceKey(benchmark::State& state) {
    const test::StereoTrack& track = benchTrack().stereo;
    for (auto _ : state) {
        EvidenceKey key(kRate);
        for (int from = 0; from < kFrames; from += kPassFrames)
            key.hear(Block{track.left.data() + from, track.right.data() + from,
                           std::min(kPassFrames, kFrames - from)});
        TrackResult result;
        result.rate = kRate;
        result.frames = kFrames;
        key.addTo(result);
        benchmark::DoNotOptimize(result.keyConfidence);
    }
    reportAudio(state, kFrames);
}
BENCHMARK(evidenceKey)->Unit(benchmark::kMillisecond);

void keyPeaks(benchmark::State& state) {
    const NearestScope mode;
    benchTrack();
    for (auto _ : state) {
        PeakStream stream(kRate);
        putTrack(stream);
        benchmark::DoNotOptimize(stream.tuning());
    }
    reportAudio(state, kFrames);
}
BENCHMARK(keyPeaks)->Unit(benchmark::kMillisecond);

void keyFolding(benchmark::State& state) {
    const NearestScope mode;
    const PeakStream& stream = stages().stream;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            foldFrames(stream.peaks(), stream.tuning(), stream.secondsPerFrame()).size());
    reportAudio(state, kFrames);
}
BENCHMARK(keyFolding)->Unit(benchmark::kMillisecond);

void keySegments(benchmark::State& state) {
    const NearestScope mode;
    const KeyFrames& frames = stages().frames;
    const double seconds = static_cast<double>(kFrames) / kRate;
    for (auto _ : state) {
        const KeyValues scores = scoreKeys(frames, {0, frames.size()});
        benchmark::DoNotOptimize(findKeySegments(frames, keyWindows({}, seconds), scores).size());
    }
    reportAudio(state, kFrames);
}
BENCHMARK(keySegments)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace beatatlas::bench
