// SPDX-License-Identifier: MIT
// The whole session as a host drives it, through the public interface only.
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

#include "beatatlas/beatatlas.hpp"
#include "bench/BenchTrack.h"
#include "dsp/RoundingMode.h"

namespace beatatlas::bench {
namespace {

constexpr int kFeedFrames = 4096;
constexpr int kPhraseBeats = 32;

/** Sends standard output nowhere while it lives: a session prints its progress among the results otherwise. */
class QuietOutput {
public:
    QuietOutput() : kept_(dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        close(nowhere);
    }
    ~QuietOutput() {
        std::fflush(stdout);
        dup2(kept_, STDOUT_FILENO);
        close(kept_);
    }
    QuietOutput(const QuietOutput&) = delete;
    QuietOutput& operator=(const QuietOutput&) = delete;

private:
    int kept_;
};

using SetSample = void (*)(void*, float*, float*, int);

void feed(SetSample setSample, void* session, test::StereoTrack& track) {
    for (int from = 0; from < kFrames; from += kFeedFrames)
        setSample(session, track.left.data() + from, track.right.data() + from,
                  std::min(kFeedFrames, kFrames - from));
}

void analyse(void* session, test::StereoTrack& track, bool withKey) {
    if (withKey) feed(BA_SetSamplePre, session, track);
    feed(BA_SetSample, session, track);
    benchmark::DoNotOptimize(BA_GetBpm(session));
    BA_Release(session);
}

template <typename Create>
void session(benchmark::State& state, Create create, bool withKey) {
    test::StereoTrack track = benchTrack().stereo;
    const QuietOutput quiet;
    for (auto _ : state) {
        const TowardZeroScope giveBackMode;
        analyse(create(), track, withKey);
    }
    reportAudio(state, kFrames);
}

void sessionConstant(benchmark::State& state) {
    session(
        state, [] { return BA_Create44k(kFrames, kPhraseBeats, true, true, true); }, true);
}
BENCHMARK(sessionConstant)->Unit(benchmark::kMillisecond);

void sessionVaried(benchmark::State& state) {
    session(
        state, [] { return BA_CreateVaried44k(kFrames, kPhraseBeats, true, true, true); }, true);
}
BENCHMARK(sessionVaried)->Unit(benchmark::kMillisecond);

void sessionSimple(benchmark::State& state) {
    session(
        state, [] { return BA_CreateSimple44k(kFrames, 0, true, true, true); }, true);
}
BENCHMARK(sessionSimple)->Unit(benchmark::kMillisecond);

void sessionBeatsOnly(benchmark::State& state) {
    session(
        state, [] { return BA_Create44k(kFrames, kPhraseBeats, false, false, false); }, false);
}
BENCHMARK(sessionBeatsOnly)->Unit(benchmark::kMillisecond);

void sessionViewsOnly(benchmark::State& state) {
    session(
        state, [] { return BA_Create44k(kFrames, 0, true, true, false); }, false);
}
BENCHMARK(sessionViewsOnly)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace beatatlas::bench
