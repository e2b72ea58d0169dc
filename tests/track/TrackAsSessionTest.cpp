// SPDX-License-Identifier: MIT
// What a whole-track analysis finds is what a session of the core finds, bit for bit: in every
// mode, at both rates, with each switch, for samples that no audio should have.
#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "support/HostSession.h"
#include "support/signals.h"
#include "track/TrackHost.h"

namespace beatatlas::test {
namespace {

/** The samples that a session is fed, as the header states it. */
StereoTrack inSessionScale(const Audio& audio) {
    StereoTrack track{audio.left, audio.right};
    for (auto* channel : {&track.left, &track.right}) {
        for (float& sample : *channel)
            sample = std::isnan(sample) ? 0.0F : std::clamp(sample * 32768.0F, -32768.0F, 32767.0F);
    }
    return track;
}

void expectSameWave(const std::vector<BA_WaveInfo>& found,
                    const std::vector<BA_WaveInfo>& expected) {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(found[i].level, expected[i].level) << "point " << i;
        EXPECT_EQ(found[i].color, expected[i].color) << "point " << i;
    }
}

void expectSameBeats(const Found& found, const SessionResults& expected) {
    EXPECT_EQ(found.bpm, expected.bpm / 100.0);
    ASSERT_EQ(found.beats.size(), expected.beats.size());
    for (std::size_t i = 0; i < found.beats.size(); ++i) {
        const BA_TrackBeat& beat = found.beats[i];
        EXPECT_EQ(beat.frame, expected.beats[i].pos) << "beat " << i;
        EXPECT_EQ(beat.number_in_bar, expected.beats[i].beatNum) << "beat " << i;
        EXPECT_EQ(beat.bpm, expected.beats[i].bpm / 100.0) << "beat " << i;
        EXPECT_EQ(beat.seconds, static_cast<double>(expected.beats[i].pos) / found.rate);
    }
}

void expectSameKey(const Found& found, const SessionResults& expected) {
    EXPECT_EQ(found.sessionKey, expected.mainKey);
    ASSERT_EQ(found.ranking.size(), 24U);
    ASSERT_EQ(found.notes.size(), 12U);
    for (std::size_t i = 0; i < 24; ++i) {
        EXPECT_EQ(found.ranking[i].key, expected.keyRanks[i]) << "rank " << i;
        EXPECT_EQ(found.ranking[i].score, expected.keyPoints[i]) << "rank " << i;
    }
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_EQ(found.notes[i].count, expected.noteCounts[i]) << "note " << i;
        EXPECT_EQ(found.notes[i].share, expected.noteValues[i]) << "note " << i;
    }
}

void expectSame(const Found& found, const SessionResults& expected) {
    ASSERT_EQ(found.status, BA_TRACK_OK);
    ASSERT_TRUE(expected.analyzed);
    expectSameBeats(found, expected);
    expectSameWave(found.waves[BA_TRACK_WAVE_LOUD], expected.loud);
    expectSameWave(found.waves[BA_TRACK_WAVE_DOTS], expected.dots);
    expectSameWave(found.waves[BA_TRACK_WAVE_ZOOM], expected.zoom);
}

std::string nameOf(BA_TrackTempo tempo) {
    switch (tempo) {
    case BA_TRACK_TEMPO_CONSTANT:
        return "Constant";
    case BA_TRACK_TEMPO_VARIED:
        return "Varied";
    case BA_TRACK_TEMPO_SIMPLE:
        return "Simple";
    default:
        return "Off";
    }
}

/** Tempo, rate, key, waves. */
class TrackAsSessionTest
    : public ::testing::TestWithParam<std::tuple<BA_TrackTempo, int, bool, bool>> {
protected:
    static BA_TrackTempo tempo() { return std::get<0>(GetParam()); }
    static int rate() { return std::get<1>(GetParam()); }
    static bool wantsKey() { return std::get<2>(GetParam()); }
    static bool wantsWaves() { return std::get<3>(GetParam()); }

    static BA_TrackOptions options() {
        BA_TrackOptions options = allWanted();
        options.tempo = tempo();
        options.wants_key = options.wants_session_key = wantsKey() ? 1 : 0;
        options.wants_waves = wantsWaves() ? 1 : 0;
        return options;
    }
    static SessionRequest request() {
        const bool isSimple = tempo() == BA_TRACK_TEMPO_SIMPLE;
        SessionRequest request;
        request.kind = isSimple                           ? SessionKind::simple
                       : tempo() == BA_TRACK_TEMPO_VARIED ? SessionKind::varied
                                                          : SessionKind::constant;
        request.rate = rate();
        request.sectionBeats = isSimple || tempo() == BA_TRACK_TEMPO_OFF ? 0 : 32;
        request.loud = request.zoom = wantsWaves();
        request.key = wantsKey();
        return request;
    }
};

TEST_P(TrackAsSessionTest, FindsTheSameBits) {
    const Audio audio = shortMusic(rate(), 12, 126.3);
    const Found found = analyseArrays(options(), audio);
    const SessionResults expected = analyseTrack(request(), inSessionScale(audio), {4096});
    expectSame(found, expected);
    EXPECT_EQ(found.rate, rate());
    EXPECT_EQ(found.frames, audio.frames());
    EXPECT_EQ(found.beats.empty(), tempo() == BA_TRACK_TEMPO_OFF);
    EXPECT_EQ(found.waves[BA_TRACK_WAVE_LOUD].size(), wantsWaves() ? 400U : 0U);
    if (wantsKey())
        expectSameKey(found, expected);
    else
        EXPECT_EQ(found.sessionKey, -1);
}

INSTANTIATE_TEST_SUITE_P(
    Modes, TrackAsSessionTest,
    ::testing::Combine(::testing::Values(BA_TRACK_TEMPO_CONSTANT, BA_TRACK_TEMPO_VARIED,
                                         BA_TRACK_TEMPO_SIMPLE, BA_TRACK_TEMPO_OFF),
                       ::testing::Values(44100, 48000), ::testing::Bool(), ::testing::Bool()),
    [](const auto& instance) {
        const auto& param = instance.param;
        return nameOf(std::get<0>(param)) + std::to_string(std::get<1>(param)) +
               (std::get<2>(param) ? "Key" : "") + (std::get<3>(param) ? "Waves" : "");
    });

TEST(TrackAsSessionEdgeTest, TheVariedGridIsMeasuredOverTheStatedPhrase) {
    const Audio audio = shortMusic(44100, 20, 126.3);
    for (const int beats : {4, 8, 64, 7}) {
        BA_TrackOptions options = allWanted();
        options.tempo = BA_TRACK_TEMPO_VARIED;
        options.section_beats = beats;
        options.wants_key = options.wants_session_key = 0;
        const SessionRequest request{.kind = SessionKind::varied, .sectionBeats = beats};
        expectSame(analyseArrays(options, audio),
                   analyseTrack(request, inSessionScale(audio), {4096}));
    }
}

// Below a frame one is sensed, and the whole track where the range reaches or passes its end.
TEST(TrackAsSessionEdgeTest, ASimpleGridIsSensedInTheStatedRange) {
    const Audio audio = shortMusic(44100, 12, 126.3);
    const auto whole = static_cast<int>(audio.frames());
    const std::pair<double, int> ranges[] = {{0.0, 0},
                                             {4.0, 4 * 44100},
                                             {0.5, 22050},
                                             {1e-9, 1},
                                             {12.0, whole},
                                             {1e300, whole},
                                             {std::numeric_limits<double>::infinity(), whole}};
    for (const auto& [seconds, frames] : ranges) {
        BA_TrackOptions options = allWanted();
        options.tempo = BA_TRACK_TEMPO_SIMPLE;
        options.range_seconds = seconds;
        options.wants_key = options.wants_session_key = 0;
        const SessionRequest request{.kind = SessionKind::simple, .sectionBeats = frames};
        expectSame(analyseArrays(options, audio),
                   analyseTrack(request, inSessionScale(audio), {4096}));
    }
}

// Of about half of all tempi the nearest double lies above: a quotient that was cut off would be
// another.
TEST(TrackAsSessionEdgeTest, ATempoIsTheDoubleNearestToItsHundredths) {
    BA_TrackOptions options = allWanted();
    options.wants_key = options.wants_session_key = options.wants_waves = 0;
    for (const double played : {91.7, 101.3, 117.7, 127.9, 133.1, 142.6}) {
        const Found found = analyseArrays(options, shortMusic(44100, 10, played));
        EXPECT_GT(found.bpm, 0.0);
        EXPECT_EQ(found.bpm, static_cast<double>(std::lround(found.bpm * 100.0)) / 100.0);
        for (const BA_TrackBeat& beat : found.beats) EXPECT_EQ(beat.bpm, found.bpm);
    }
}

TEST(TrackAsSessionEdgeTest, TooLoudSamplesAreClippedAndThoseThatAreNoNumbersAreSilent) {
    Audio audio = shortMusic(44100, 6, 126.3);
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const float odd[] = {std::numeric_limits<float>::quiet_NaN(),
                         kInfinity,
                         -kInfinity,
                         1.0F,
                         -1.0F,
                         1.5F,
                         -7.0F,
                         std::numeric_limits<float>::max(),
                         -std::numeric_limits<float>::max(),
                         std::numeric_limits<float>::denorm_min()};
    for (std::size_t i = 0; i < audio.left.size(); i += 997) {
        audio.left[i] = odd[(i / 997) % std::size(odd)];
        audio.right[i] = odd[(i / 997 + 3) % std::size(odd)];
    }
    const SessionResults expected = analyseTrack({.key = true}, inSessionScale(audio), {4096});
    BA_TrackOptions options = allWanted();
    options.tempo = BA_TRACK_TEMPO_CONSTANT;
    const Found found = analyseArrays(options, audio);
    expectSame(found, expected);
    expectSameKey(found, expected);
}

TEST(TrackAsSessionEdgeTest, ATrackOfAnyLengthIsClosed) {
    for (const std::int64_t frames : {1, 2, 587, 588, 589, 16383, 16384, 16385, 32768, 44100}) {
        Audio audio = shortMusic(44100, 2);
        audio.left.resize(static_cast<std::size_t>(frames));
        audio.right.resize(static_cast<std::size_t>(frames));
        const Found found = analyseArrays(allWanted(), audio);
        expectSame(found, analyseTrack({.key = true}, inSessionScale(audio), {4096}));
        EXPECT_EQ(found.frames, frames);
    }
}

TEST(TrackAsSessionEdgeTest, SilenceHasNeitherTempoNorKey) {
    const Audio audio{44100, silence(5 * 44100), silence(5 * 44100)};
    const Found found = analyseArrays(allWanted(), audio);
    EXPECT_EQ(found.status, BA_TRACK_OK);
    EXPECT_TRUE(found.hasTrack);
    EXPECT_EQ(found.bpm, 0.0);
    EXPECT_TRUE(found.beats.empty());
    EXPECT_EQ(found.sessionKey, -1);
    EXPECT_TRUE(found.ranking.empty());
    EXPECT_TRUE(found.notes.empty());
    EXPECT_EQ(found.waves[BA_TRACK_WAVE_LOUD].size(), 400U);
}

}  // namespace
}  // namespace beatatlas::test
