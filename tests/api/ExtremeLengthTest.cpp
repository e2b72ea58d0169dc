// SPDX-License-Identifier: MIT
// Lengths no track has: declared and never fed, declared too long or too short, and the longest of
// all. How long tracks of hours take is measured by ./x extremes.
#include <array>
#include <limits>

#include <gtest/gtest.h>

#include "support/HostSession.h"
#include "support/TrackSynth.h"

namespace beatatlas::test {
namespace {

constexpr int kLongest = std::numeric_limits<int>::max();

constexpr std::array kKinds = {SessionKind::constant, SessionKind::varied, SessionKind::simple};

StereoTrack kicks(int rate, double seconds) {
    const auto frames = static_cast<std::int64_t>(seconds * rate);
    return TrackSynth(dryKickPlan(rate, frames, 150.0)).renderAll();
}

class ExtremeLengthTest : public ::testing::TestWithParam<std::tuple<SessionKind, int>> {
protected:
    SessionRequest request(bool key) const {
        return {.kind = std::get<0>(GetParam()), .rate = rate(), .sectionBeats = 32, .key = key};
    }
    int rate() const { return std::get<1>(GetParam()); }
};

// 150 zoom points a second exist as soon as they are fed; the other two waves wait for a 400th and
// a 100th of half a day.
TEST_P(ExtremeLengthTest, TheLongestLengthIsTakenAndFedAsFarAsItGoes) {
    const StereoTrack track = kicks(rate(), 3.0);
    HostSession session(request(false), kLongest);
    session.feed(track, 0, track.frames());
    const SessionResults results = session.results();
    EXPECT_FALSE(results.analyzed);
    EXPECT_EQ(results.zoom.size(), 450U);
    EXPECT_EQ(results.loud.size(), 0U);
    EXPECT_EQ(results.dots.size(), 0U);
    EXPECT_EQ(results.beats.size(), 0U);
    EXPECT_EQ(results.bpm, 0);
}

TEST_P(ExtremeLengthTest, TheLongestLengthWaitsForItsPreCheck) {
    const StereoTrack track = kicks(rate(), 1.0);
    HostSession session(request(true), kLongest);
    session.feedPre(track, 0, track.frames());
    session.feed(track, 0, track.frames());
    EXPECT_EQ(session.results().zoom.size(), 0U);
}

// Half of the declared length: half of every wave, and no answer.
TEST_P(ExtremeLengthTest, ATrackShorterThanDeclaredIsNeverAnalysed) {
    const StereoTrack track = kicks(rate(), 6.0);
    HostSession session(request(false), 2 * track.frames());
    session.feed(track, 0, track.frames());
    const SessionResults results = session.results();
    EXPECT_FALSE(results.analyzed);
    EXPECT_EQ(results.zoom.size(), 900U);
    EXPECT_NEAR(static_cast<double>(results.loud.size()), 200.0, 20.0);
    EXPECT_NEAR(static_cast<double>(results.dots.size()), 50.0, 20.0);
    EXPECT_EQ(results.bpm, 0);
}

// What lies beyond the block that completes the declared length does not count.
TEST_P(ExtremeLengthTest, ATrackLongerThanDeclaredIsAnalysedAtItsDeclaredEnd) {
    const StereoTrack track = kicks(rate(), 8.0);
    const int declared = rate() / 75 * 450;  // six seconds of whole blocks
    StereoTrack beginning = track;
    beginning.left.resize(static_cast<std::size_t>(declared));
    beginning.right.resize(static_cast<std::size_t>(declared));
    HostSession session(request(true), declared);
    session.feedPre(beginning, 0, declared);
    session.feed(track, 0, track.frames());
    EXPECT_TRUE(sameBits(session.results(), analyseTrack(request(true), beginning, {1000})));
}

TEST_P(ExtremeLengthTest, ASessionCanBeReleasedAfterAnyCall) {
    const StereoTrack track = kicks(rate(), 2.0);
    const int frames = track.frames();
    for (const int calls : {0, 1, 2, 3, 4, 5}) {
        HostSession session(request(true), frames);
        if (calls >= 1) session.feedPre(track, 0, frames / 2);
        if (calls >= 2) session.feedPre(track, frames / 2, frames - frames / 2);
        if (calls >= 3) session.feed(track, 0, frames / 2 + 7);
        if (calls >= 4) session.feed(track, frames / 2 + 7, frames - frames / 2 - 7);
        if (calls >= 5) session.results();
        EXPECT_EQ(BA_Analyzed(session.handle()), calls >= 4);
    }
}

INSTANTIATE_TEST_SUITE_P(Sessions, ExtremeLengthTest,
                         ::testing::Combine(::testing::ValuesIn(kKinds),
                                            ::testing::Values(44100, 48000)));

}  // namespace
}  // namespace beatatlas::test
