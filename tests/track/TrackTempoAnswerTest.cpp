// SPDX-License-Identifier: MIT
// The automatic tempo as a host gets it.
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "support/TrackSynth.h"
#include "support/signals.h"
#include "track/TrackHost.h"

namespace beatatlas::test {
namespace {

struct ReleaseTrack {
    void operator()(BA_Track* track) const { BA_TrackRelease(track); }
};
using TrackHandle = std::unique_ptr<BA_Track, ReleaseTrack>;

TrackHandle analyse(const Audio& audio, double lowest = 0.0, double highest = 0.0,
                    std::int32_t perBar = 0) {
    BA_TrackOptions options = allWanted();
    options.wants_key = options.wants_session_key = 0;
    options.wants_waves = 0;
    options.lowest_bpm = lowest;
    options.highest_bpm = highest;
    options.beats_per_bar = perBar;
    BA_Track* track = nullptr;
    EXPECT_EQ(BA_TrackAnalyzeArrays(&options, audio.rate, audio.left.data(), audio.right.data(),
                                    audio.frames(), &track),
              BA_TRACK_OK);
    return TrackHandle(track);
}

std::vector<BA_TrackBeat> beatsOf(const TrackHandle& track) {
    std::vector<BA_TrackBeat> beats(BA_TrackBeats(track.get(), nullptr, 0));
    BA_TrackBeats(track.get(), beats.data(), beats.size());
    return beats;
}

const Audio& music() {
    static const Audio audio = shortMusic(44100, 30, 112.0);
    return audio;
}

/** 120 BPM, from the middle on 100. */
Audio musicOfTwoTempi() {
    TrackPlan plan;
    plan.sampleRate = 44100;
    plan.lengthFrames = std::int64_t{44100} * 80;
    plan.bpm = 120.0;
    plan.tempoChanges = {{40.0, 100.0}};
    return inFullScale(44100, TrackSynth(plan).renderAll());
}

Audio inBothChannels(std::vector<float> samples) {
    return {44100, samples, std::move(samples)};
}

void expectNoTempo(const Audio& audio) {
    const TrackHandle track = analyse(audio);
    EXPECT_EQ(BA_TrackBpm(track.get()), 0.0);
    EXPECT_EQ(BA_TrackRawBpm(track.get()), 0.0);
    EXPECT_EQ(BA_TrackIsSteady(track.get()), -1);
    EXPECT_EQ(BA_TrackBeats(track.get(), nullptr, 0), 0U);
    EXPECT_EQ(BA_TrackReadings(track.get(), nullptr, 0), 0U);
    EXPECT_EQ(BA_TrackTempoStretches(track.get(), nullptr, 0), 0U);
    BA_TrackConfidence confidence{1.0, 1.0, 1.0, 1.0};
    EXPECT_EQ(BA_TrackTempoConfidence(track.get(), &confidence), 0);
    EXPECT_EQ(confidence.tempo, 0.0);
}

bool isInHundredths(double bpm) {
    return bpm == std::round(100.0 * bpm) / 100.0;
}

TEST(TrackTempoAnswer, HasBeatsOnTheNearestFrames) {
    const TrackHandle track = analyse(music());
    const double bpm = BA_TrackBpm(track.get());
    EXPECT_NEAR(bpm, 112.0, 0.015);
    EXPECT_TRUE(isInHundredths(bpm));
    EXPECT_EQ(BA_TrackIsSteady(track.get()), 1);
    const std::vector<BA_TrackBeat> beats = beatsOf(track);
    ASSERT_NEAR(static_cast<double>(beats.size()), 56.0, 1.0);  // 30 s of 112 a minute
    for (const BA_TrackBeat& beat : beats) {
        EXPECT_NEAR(static_cast<double>(beat.frame), beat.seconds * 44100.0, 0.5);
        EXPECT_EQ(beat.bpm, bpm);
        EXPECT_GE(beat.number_in_bar, 1);
        EXPECT_LE(beat.number_in_bar, 4);
    }
}

TEST(TrackTempoAnswer, TellsHowSureItIsAndWhatElseItMayBe) {
    const TrackHandle track = analyse(music());
    BA_TrackConfidence confidence;
    ASSERT_EQ(BA_TrackTempoConfidence(track.get(), &confidence), 1);
    for (const double share :
         {confidence.tempo, confidence.level, confidence.phase, confidence.bars}) {
        EXPECT_GT(share, 0.0);
        EXPECT_LT(share, 1.0);
    }
    std::vector<BA_TrackReading> readings(BA_TrackReadings(track.get(), nullptr, 0));
    ASSERT_EQ(readings.size(), 5U);
    BA_TrackReadings(track.get(), readings.data(), readings.size());
    const double kRatios[] = {0.5, 2.0, 1.0, 1.5, 2.0 / 3.0};
    constexpr std::int32_t kKinds[] = {BA_TRACK_READING_HALF, BA_TRACK_READING_DOUBLE,
                                       BA_TRACK_READING_SHIFTED, BA_TRACK_READING_THREE_TO_TWO,
                                       BA_TRACK_READING_TWO_TO_THREE};
    for (const BA_TrackReading& reading : readings) {
        EXPECT_TRUE(isInHundredths(reading.bpm));
        const auto* kind = std::find(std::begin(kKinds), std::end(kKinds), reading.kind);
        if (kind == std::end(kKinds)) continue;
        EXPECT_NEAR(reading.bpm, 112.0 * kRatios[kind - std::begin(kKinds)], 0.03);
    }
}

TEST(TrackTempoAnswer, IsBroughtIntoTheRangeAndKeepsTheRawTempo) {
    const TrackHandle asItIs = analyse(music());
    const double bpm = BA_TrackBpm(asItIs.get());
    EXPECT_EQ(BA_TrackRawBpm(asItIs.get()), bpm);
    const std::vector<BA_TrackBeat> plain = beatsOf(asItIs);
    const TrackHandle doubled = analyse(music(), 150.0, 300.0);
    EXPECT_NEAR(BA_TrackBpm(doubled.get()), 2.0 * bpm, 0.011);
    EXPECT_EQ(BA_TrackRawBpm(doubled.get()), bpm);
    EXPECT_EQ(BA_TrackBeats(doubled.get(), nullptr, 0), 2 * plain.size() - 1);
    const TrackHandle halved = analyse(music(), 40.0, 80.0);
    EXPECT_NEAR(BA_TrackBpm(halved.get()), 0.5 * bpm, 0.011);
    EXPECT_EQ(BA_TrackRawBpm(halved.get()), bpm);
    for (const BA_TrackBeat& beat : beatsOf(halved))
        EXPECT_TRUE(std::any_of(plain.begin(), plain.end(), [&](const BA_TrackBeat& other) {
            return other.frame == beat.frame;
        }));
}

TEST(TrackTempoAnswer, CountsBarsOfTheLengthThatIsKnown) {
    for (const std::int32_t perBar : {3, 4}) {
        const std::vector<BA_TrackBeat> beats = beatsOf(analyse(music(), 0.0, 0.0, perBar));
        ASSERT_GT(beats.size(), 2U);
        for (std::size_t i = 1; i < beats.size(); ++i)
            EXPECT_EQ(beats[i].number_in_bar, beats[i - 1].number_in_bar % perBar + 1);
    }
}

TEST(TrackTempoAnswer, TellsTheStretchesOfAVaryingTempo) {
    const TrackHandle track = analyse(musicOfTwoTempi());
    EXPECT_EQ(BA_TrackIsSteady(track.get()), 0);
    std::vector<BA_TrackTempoStretch> stretches(BA_TrackTempoStretches(track.get(), nullptr, 0));
    ASSERT_GE(stretches.size(), 2U);
    BA_TrackTempoStretches(track.get(), stretches.data(), stretches.size());
    const std::vector<BA_TrackBeat> beats = beatsOf(track);
    EXPECT_EQ(stretches.front().from_seconds, beats.front().seconds);
    EXPECT_EQ(stretches.back().to_seconds, beats.back().seconds);
    EXPECT_NEAR(stretches.front().bpm, 120.0, 1.0);
    EXPECT_NEAR(stretches.back().bpm, 100.0, 1.0);
    for (std::size_t i = 1; i < stretches.size(); ++i)
        EXPECT_EQ(stretches[i].from_seconds, stretches[i - 1].to_seconds);
    EXPECT_NEAR(beats[20].bpm, 120.0, 0.5);
    EXPECT_NEAR(beats[beats.size() - 20].bpm, 100.0, 0.5);
}

TEST(TrackTempoAnswer, IsNoneForSignalsWithoutBeats) {
    constexpr std::size_t kFrames = 44100 * 20;
    expectNoTempo(inBothChannels(silence(kFrames)));
    expectNoTempo(inBothChannels(std::vector<float>(kFrames, 0.3F)));
    expectNoTempo(inBothChannels(whiteNoise(kFrames, 0.5, 3)));
    expectNoTempo(inBothChannels(sine(kFrames, 50.0, 44100, 0.5)));
}

TEST(TrackTempoAnswer, IsNoneForSamplesThatAreNoNumbers) {
    constexpr std::size_t kFrames = 44100 * 20;
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    expectNoTempo(inBothChannels(std::vector<float>(kFrames, kInfinity)));
    expectNoTempo(inBothChannels(std::vector<float>(kFrames, -kInfinity)));
    expectNoTempo(
        inBothChannels(std::vector<float>(kFrames, std::numeric_limits<float>::quiet_NaN())));
}

/** Syllables of a hummed tone or a hiss, a seventh to a third of a second each, with pauses between
 *  words. */
Audio speech(std::uint64_t seed) {
    constexpr int kRate = 44100;
    std::vector<float> track = silence(std::size_t{kRate} * 60);
    const std::vector<float> chances = whiteNoise(2000, 1.0, seed);
    std::size_t next = 0;
    const auto chance = [&] { return 0.5 + 0.5 * static_cast<double>(chances[next++]); };
    for (double at = 0.3; at < 59.0;) {
        const double length = 0.14 + 0.2 * chance() * chance();
        const auto frames = static_cast<std::size_t>(length * kRate);
        const double hz = 110.0 + 60.0 * chance();
        std::vector<float> syllable =
            chance() < 0.7 ? square(frames, hz, kRate, 0.2) : whiteNoise(frames, 0.15, next);
        const double loudness = 0.4 + 0.6 * chance();
        for (std::size_t i = 0; i < frames; ++i)
            syllable[i] *=
                static_cast<float>(loudness * std::sin(3.14159265 * static_cast<double>(i) /
                                                       static_cast<double>(frames)));
        mixInto(track, syllable, static_cast<std::size_t>(at * kRate));
        at += length * (0.7 + 0.4 * chance()) + (chance() < 0.15 ? 0.2 + 0.6 * chance() : 0.0);
    }
    return inBothChannels(std::move(track));
}

TEST(TrackTempoAnswer, IsNoneOrUnsureForSpeech) {
    for (const std::uint64_t seed : {1U, 2U, 3U, 4U}) {
        const TrackHandle track = analyse(speech(seed));
        BA_TrackConfidence confidence{};
        if (BA_TrackTempoConfidence(track.get(), &confidence) == 0) continue;
        EXPECT_LE(confidence.tempo, 0.5) << seed;
    }
}

}  // namespace
}  // namespace beatatlas::test
