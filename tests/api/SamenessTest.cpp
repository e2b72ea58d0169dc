// SPDX-License-Identifier: MIT
// One track, one answer: whichever threads drive a session, whatever else runs beside it or ran
// before.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/HostSession.h"
#include "support/TrackSynth.h"

namespace {

using namespace beatatlas::test;

constexpr int kSeconds = 12;

StereoTrack musicAt(int rate, double bpm, int tonic) {
    TrackPlan plan;
    plan.sampleRate = rate;
    plan.lengthFrames = static_cast<std::int64_t>(rate) * kSeconds;
    plan.bpm = bpm;
    plan.tonic = tonic;
    return TrackSynth(plan).renderAll();
}

/** A track and what is asked of it. */
struct Job {
    SessionRequest request;
    StereoTrack track;
};

SessionRequest requestOf(SessionKind kind, int rate) {
    return {.kind = kind,
            .rate = rate,
            .sectionBeats = kind == SessionKind::simple ? 0 : 32,
            .key = true};
}

/** Eight sessions of all kinds and both rates over different music. */
std::vector<Job> eightJobs() {
    std::vector<Job> jobs;
    for (int i = 0; i < 8; ++i) {
        const auto kind = static_cast<SessionKind>(i % 3);
        const int rate = i % 2 == 0 ? 44100 : 48000;
        jobs.push_back({requestOf(kind, rate), musicAt(rate, 96.0 + (7.3 * i), i)});
    }
    return jobs;
}

SessionResults analysed(const Job& job) {
    return analyseTrack(job.request, job.track, {4096});
}

void onAnotherThread(const auto& work) {
    std::thread(work).join();
}

class SamenessOfKindTest : public ::testing::TestWithParam<SessionKind> {};

TEST_P(SamenessOfKindTest, EveryCallMayComeFromAnotherThread) {
    const Job job{requestOf(GetParam(), 44100), musicAt(44100, 124.0, 2)};
    const SessionResults expected = analysed(job);
    ASSERT_TRUE(expected.analyzed);
    const int half = job.track.frames() / 2;
    const int rest = job.track.frames() - half;

    HostSession session(job.request, job.track.frames());
    onAnotherThread([&] { session.feedPre(job.track, 0, half); });
    onAnotherThread([&] { session.feedPre(job.track, half, rest); });
    onAnotherThread([&] { session.feed(job.track, 0, half); });
    onAnotherThread([&] { session.feed(job.track, half, rest); });
    SessionResults found;
    onAnotherThread([&] { found = session.results(); });

    EXPECT_TRUE(sameBits(found, expected));
}

INSTANTIATE_TEST_SUITE_P(AllKinds, SamenessOfKindTest,
                         ::testing::Values(SessionKind::constant, SessionKind::varied,
                                           SessionKind::simple));

TEST(SamenessTest, EightSessionsAtOnceGiveWhatTheyGiveOneAfterTheOther) {
    const std::vector<Job> jobs = eightJobs();
    std::vector<SessionResults> alone;
    for (const Job& job : jobs) alone.push_back(analysed(job));

    std::vector<SessionResults> together(jobs.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < jobs.size(); ++i)
        threads.emplace_back([&, i] { together[i] = analysed(jobs[i]); });
    for (std::thread& thread : threads) thread.join();

    for (std::size_t i = 0; i < jobs.size(); ++i) {
        EXPECT_TRUE(alone[i].analyzed);
        EXPECT_TRUE(sameBits(together[i], alone[i])) << "session " << i;
    }
}

TEST(SamenessTest, SessionsFedInTurnOnOneThreadDoNotHearEachOther) {
    const std::vector<Job> jobs = eightJobs();
    const Job& first = jobs[0];
    const Job& second = jobs[2];
    HostSession one(first.request, first.track.frames());
    HostSession other(second.request, second.track.frames());
    one.feedPre(first.track, 0, first.track.frames());
    other.feedPre(second.track, 0, second.track.frames());
    constexpr int kStretch = 1000;
    for (int at = 0; at < first.track.frames(); at += kStretch) {
        const int count = std::min(kStretch, first.track.frames() - at);
        one.feed(first.track, at, count);
        other.feed(second.track, at, count);
    }
    EXPECT_TRUE(sameBits(one.results(), analysed(first)));
    EXPECT_TRUE(sameBits(other.results(), analysed(second)));
}

TEST(SamenessTest, NothingOfAnEarlierSessionIsLeft) {
    const std::vector<Job> jobs = eightJobs();
    const SessionResults fresh = analysed(jobs[0]);
    for (std::size_t i = 1; i < jobs.size(); ++i) {
        {
            HostSession abandoned(jobs[i].request, jobs[i].track.frames());
            abandoned.feedPre(jobs[i].track, 0, jobs[i].track.frames());
            abandoned.feed(jobs[i].track, 0, jobs[i].track.frames() / 3);
        }
        analysed(jobs[i]);
        EXPECT_TRUE(sameBits(analysed(jobs[0]), fresh)) << "after session " << i;
    }
}

}  // namespace
