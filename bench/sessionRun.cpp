// SPDX-License-Identifier: MIT
#include "bench/sessionRun.h"

#include <algorithm>
#include <cstdio>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include "beatatlas/beatatlas.hpp"
#include "bench/measure.h"
#include "dsp/RoundingMode.h"

namespace beatatlas::bench {

namespace {

constexpr int kFeedFrames = 4096;
constexpr int kPhraseBeats = 32;

using SetSample = void (*)(void*, float*, float*, int);

/** Calls for frames from … to - 1; from is a whole number of calls. */
void feed(SetSample setSample, void* session, test::StereoTrack& track, int from, int to) {
    // A whole number of calls, so that none runs past the end of the track.
    const int loop = static_cast<int>(track.left.size()) / kFeedFrames * kFeedFrames;
    while (from < to) {
        const int count = std::min(kFeedFrames, to - from);
        const int at = from % loop;
        setSample(session, track.left.data() + at, track.right.data() + at, count);
        // Not from += kFeedFrames, which could overflow: a track may end near the largest int.
        from += count;
    }
}

/** Seconds since the last call. */
class StopWatch {
public:
    double lap() {
        const double now = threadSeconds();
        const double passed = now - last_;
        last_ = now;
        return passed;
    }

private:
    double last_ = threadSeconds();
};

}  // namespace

QuietOutput::QuietOutput() : kept_(dup(STDOUT_FILENO)) {
    std::fflush(stdout);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
}

QuietOutput::~QuietOutput() {
    std::fflush(stdout);
    dup2(kept_, STDOUT_FILENO);
    close(kept_);
}

void* createWholeSession(int frames) {
    return BA_Create44k(frames, kPhraseBeats, true, true, true);
}

SessionTimes runSession(CreateSession create, test::StereoTrack& track, int frames,
                        bool withPreCheck) {
    const QuietOutput quiet;
    const TowardZeroScope giveBackMode;
    const int lastCall = (frames - 1) / kFeedFrames * kFeedFrames;
    SessionTimes times;
    StopWatch watch;
    void* session = create(frames);
    times.creating = watch.lap();
    if (withPreCheck) feed(BA_SetSamplePre, session, track, 0, frames);
    times.preCheck = watch.lap();
    feed(BA_SetSample, session, track, 0, lastCall);
    times.feeding = watch.lap();
    feed(BA_SetSample, session, track, lastCall, frames);
    benchmark::DoNotOptimize(BA_GetBpm(session));
    times.closing = watch.lap();
    BA_Release(session);
    return times;
}

}  // namespace beatatlas::bench
