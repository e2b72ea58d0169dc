// SPDX-License-Identifier: MIT
// A session sleeps for zero time while it feeds and analyses; the calling thread's timer slack is
// the host's.
#include <gtest/gtest.h>

#if defined(__linux__)

#include <sys/prctl.h>

#include "support/HostSession.h"
#include "support/TrackSynth.h"

namespace {

using namespace beatatlas::test;

TEST(SleepAllowanceTest, EveryCallLeavesTheThreadTheAllowanceItHad) {
    TrackPlan plan;
    plan.sampleRate = 44100;
    plan.lengthFrames = 44100LL * 8;
    plan.bpm = 120.0;
    const StereoTrack track = TrackSynth(plan).renderAll();
    const int length = static_cast<int>(plan.lengthFrames);
    ASSERT_EQ(prctl(PR_SET_TIMERSLACK, 61234L, 0L, 0L, 0L), 0);
    HostSession session({.kind = SessionKind::constant, .key = true}, length);
    session.feedPre(track, 0, length);
    constexpr int kCall = 4410;
    for (int at = 0; at < length; at += kCall) {
        session.feed(track, at, kCall);
        ASSERT_EQ(prctl(PR_GET_TIMERSLACK, 0L, 0L, 0L, 0L), 61234) << at;
    }
    EXPECT_TRUE(session.results().analyzed);
    prctl(PR_SET_TIMERSLACK, 0L, 0L, 0L, 0L);
}

}  // namespace

#endif
