// SPDX-License-Identifier: MIT
// The C++ header: the same results in values, and exceptions both ways.
#include <memory>
#include <new>
#include <stdexcept>

#include <gtest/gtest.h>

#include "beatatlas/track.hpp"
#include "support/signals.h"
#include "track/TrackHost.h"

namespace beatatlas::test {
namespace {

using track::Beat;
using track::Options;
using track::Pass;
using track::Source;
using track::TrackResult;

const Audio& music() {
    static const Audio audio = shortMusic(44100, 6, 126.3);
    return audio;
}

TrackResult analysed(const Options& options, const Audio& audio = music()) {
    return track::analyze(options, audio.rate, audio.left.data(), audio.right.data(),
                          audio.frames());
}

/** A source as a host writes it; counts the passes that live. */
struct CountedSource {
    std::shared_ptr<int> passes = std::make_shared<int>(0);
    int opens = 0;

    Source source(bool fewestPasses = false) {
        return {[this] {
                    ++opens;
                    return [alive = passes, at = std::size_t{0}](float* left, float* right,
                                                                 std::int64_t frames) mutable {
                        const auto count =
                            std::min(static_cast<std::size_t>(frames), music().left.size() - at);
                        std::copy_n(music().left.begin() + static_cast<std::ptrdiff_t>(at), count,
                                    left);
                        std::copy_n(music().right.begin() + static_cast<std::ptrdiff_t>(at), count,
                                    right);
                        at += count;
                        return static_cast<std::int64_t>(count);
                    };
                },
                fewestPasses};
    }
};

/** As allWanted(). */
Options allOptions() {
    Options options;
    options.wantsSessionKey = true;
    return options;
}

void expectSameWave(const std::vector<track::WavePoint>& found,
                    const std::vector<BA_WaveInfo>& expected) {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(found[i].level, expected[i].level);
        EXPECT_EQ(found[i].color, expected[i].color);
    }
}

TEST(TrackHeaderTest, GivesWhatThePlainInterfaceGives) {
    const TrackResult result = analysed(allOptions());
    const Found expected = analyseArrays(allWanted(), music());
    EXPECT_EQ(result.rate, expected.rate);
    EXPECT_EQ(result.frames, expected.frames);
    EXPECT_EQ(result.bpm, expected.bpm);
    ASSERT_EQ(result.beats.size(), expected.beats.size());
    for (std::size_t i = 0; i < result.beats.size(); ++i) {
        EXPECT_EQ(result.beats[i].seconds, expected.beats[i].seconds);
        EXPECT_EQ(result.beats[i].bpm, expected.beats[i].bpm);
        EXPECT_EQ(result.beats[i].frame, expected.beats[i].frame);
        EXPECT_EQ(result.beats[i].numberInBar, expected.beats[i].number_in_bar);
    }
    expectSameWave(result.loudWave, expected.waves[BA_TRACK_WAVE_LOUD]);
    expectSameWave(result.dotsWave, expected.waves[BA_TRACK_WAVE_DOTS]);
    expectSameWave(result.zoomWave, expected.waves[BA_TRACK_WAVE_ZOOM]);
    ASSERT_TRUE(result.sessionKey.has_value());
    for (std::size_t i = 0; i < 24; ++i) {
        EXPECT_EQ(result.sessionKey->keys[i], expected.ranking[i].key);
        EXPECT_EQ(result.sessionKey->scores[i], expected.ranking[i].score);
    }
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_EQ(result.sessionKey->noteCounts[i], expected.notes[i].count);
        EXPECT_EQ(result.sessionKey->noteShares[i], expected.notes[i].share);
    }
}

TEST(TrackHeaderTest, GivesTheKeyOfThePlainInterface) {
    const TrackResult result = analysed(allOptions());
    const Found expected = analyseArrays(allWanted(), music());
    ASSERT_TRUE(result.key.has_value());
    const track::Key& key = *result.key;
    EXPECT_EQ(key.best(), expected.key);
    EXPECT_EQ(key.second(), expected.keys[1].key);
    EXPECT_EQ(key.confidence, expected.keyConfidence);
    EXPECT_EQ(key.tuningCents, expected.tuningCents);
    EXPECT_EQ(key.tuningHz, expected.tuningHz);
    for (std::size_t i = 0; i < 24; ++i) {
        EXPECT_EQ(key.ranking[i].key, expected.keys[i].key);
        EXPECT_EQ(key.ranking[i].score, expected.keys[i].score);
        EXPECT_EQ(key.ranking[i].probability, expected.keys[i].probability);
    }
    for (std::size_t i = 0; i < 12; ++i) EXPECT_EQ(key.chroma[i], expected.chroma[i]);
    ASSERT_EQ(key.segments.size(), expected.keySegments.size());
    for (std::size_t i = 0; i < key.segments.size(); ++i) {
        EXPECT_EQ(key.segments[i].fromSeconds, expected.keySegments[i].from_seconds);
        EXPECT_EQ(key.segments[i].toSeconds, expected.keySegments[i].to_seconds);
        EXPECT_EQ(key.segments[i].key, expected.keySegments[i].key);
        EXPECT_EQ(key.segments[i].confidence, expected.keySegments[i].confidence);
    }
}

TEST(TrackHeaderTest, OptionsReachTheLibrary) {
    Options options;
    options.tempo = track::TempoMode::varied;
    options.sectionBeats = 8;
    options.wantsWaves = false;
    options.wantsKey = false;
    options.threads = 2;
    BA_TrackOptions plain = allWanted();
    plain.tempo = BA_TRACK_TEMPO_VARIED;
    plain.section_beats = 8;
    plain.wants_key = 0;
    plain.wants_session_key = 0;
    const TrackResult result = analysed(options);
    EXPECT_EQ(result.bpm, analyseArrays(plain, music()).bpm);
    EXPECT_TRUE(result.loudWave.empty());
    EXPECT_TRUE(result.zoomWave.empty());
    EXPECT_FALSE(result.key.has_value());
    EXPECT_FALSE(result.sessionKey.has_value());
    options.tempo = track::TempoMode::off;
    EXPECT_FALSE(analysed(options).bpm.has_value());
    options.wantsKey = true;
    EXPECT_TRUE(analysed(options).key.has_value());
    EXPECT_FALSE(analysed(options).sessionKey.has_value());
    options.wantsSessionKey = true;
    EXPECT_TRUE(analysed(options).sessionKey.has_value());
    options.tempo = track::TempoMode::simple;
    options.rangeSeconds = -1.0;
    EXPECT_THROW(analysed(options), track::Error);
}

TEST(TrackHeaderTest, ASourceIsOpenedAsOftenAsNeededAndItsPassesGoAway) {
    for (const bool fewest : {false, true}) {
        CountedSource counted;
        Options options = allOptions();
        options.threads = 2;
        const TrackResult result =
            track::analyze(options, 44100, music().frames(), counted.source(fewest));
        EXPECT_EQ(result.bpm, analysed(allOptions()).bpm);
        EXPECT_EQ(counted.opens, fewest ? 2 : 3);
        EXPECT_EQ(counted.passes.use_count(), 1) << "no pass is alive";
    }
}

TEST(TrackHeaderTest, WhatIsNotFoundIsMissing) {
    const Audio quiet{44100, silence(3 * 44100), silence(3 * 44100)};
    const TrackResult result = analysed({}, quiet);
    EXPECT_FALSE(result.bpm.has_value());
    EXPECT_FALSE(result.key.has_value());
    EXPECT_FALSE(result.sessionKey.has_value());
    EXPECT_TRUE(result.beats.empty());
}

TEST(TrackHeaderTest, TheStatusOfAFailureIsInItsException) {
    const Audio& audio = music();
    const auto statusOf = [](auto call) {
        try {
            call();
        } catch (const track::Error& error) {
            EXPECT_STREQ(error.what(), BA_TrackStatusText(error.status()));
            return error.status();
        }
        return static_cast<int>(BA_TRACK_OK);
    };
    EXPECT_EQ(statusOf([&] { track::analyze({}, 1, audio.left.data(), audio.left.data(), 1); }),
              BA_TRACK_BAD_ARGUMENT);
    CountedSource counted;
    EXPECT_EQ(statusOf([&] { track::analyze({}, 44100, audio.frames() + 1, counted.source()); }),
              BA_TRACK_WRONG_LENGTH);
    const Source stopping{
        [] { return [](float*, float*, std::int64_t) { return std::int64_t{-1}; }; }};
    EXPECT_EQ(statusOf([&] { track::analyze({}, 44100, 1000, stopping); }), BA_TRACK_STOPPED);
}

/** What a source is refused with as a bad argument. */
std::string refusalOf(const Source& source) {
    try {
        track::analyze({}, 44100, 1000, source);
    } catch (const track::Error& error) {
        return error.status() == BA_TRACK_BAD_ARGUMENT ? error.what() : "another status";
    }
    return "";
}

TEST(TrackHeaderTest, WhatTheHostThrowsComesOutAgain) {
    struct HostsOwn {};
    Options options;
    options.threads = 2;
    CountedSource counted;
    options.progress = [](double fraction) {
        if (fraction > 0.5) throw HostsOwn{};
    };
    EXPECT_THROW(track::analyze(options, 44100, music().frames(), counted.source()), HostsOwn);
    options.progress = nullptr;
    const Source noPass{[]() -> Pass { throw std::domain_error("no"); }};
    EXPECT_THROW(track::analyze(options, 44100, 1000, noPass), std::domain_error);
    const Source badPass{[] {
        return [](float*, float*, std::int64_t) -> std::int64_t { throw std::bad_alloc(); };
    }};
    EXPECT_THROW(track::analyze(options, 44100, 1000, badPass), std::bad_alloc);
    const Source emptyPass{[] { return Pass(); }};
    EXPECT_EQ(refusalOf(emptyPass), "The source opened an empty pass.");
    EXPECT_EQ(refusalOf(Source{}), "The source has no function to open it.");
}

TEST(TrackHeaderTest, ProgressEndsAtOne) {
    double last = 0.0;
    Options options;
    options.progress = [&](double fraction) { last = fraction; };
    analysed(options);
    EXPECT_EQ(last, 1.0);
}

TEST(TrackHeaderTest, ValuesAnswerWhatIsOftenAsked) {
    TrackResult result;
    result.rate = 48000;
    result.frames = 72000;
    EXPECT_EQ(result.seconds(), 1.5);
    EXPECT_EQ(result.secondsAt(24000), 0.5);
    EXPECT_TRUE((Beat{0.0, 120.0, 0, 1}).isDownbeat());
    EXPECT_FALSE((Beat{0.0, 120.0, 0, 2}).isDownbeat());
    track::SessionKey ranking;
    ranking.scores[0] = 8.0;
    ranking.scores[1] = 6.0;
    EXPECT_EQ(ranking.runnerUpDistance(), 0.25);
}

}  // namespace
}  // namespace beatatlas::test
