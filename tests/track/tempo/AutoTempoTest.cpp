// SPDX-License-Identifier: MIT
// The automatic tempo from audio to answer, on music whose beats are known.
#include "track/tempo/AutoTempo.h"

#include <array>
#include <cfenv>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "support/VectorForms.h"
#include "track/tempo/tempoSignals.h"

namespace {

using namespace beatatlas::test;
using beatatlas::track::inner::confidenceOfBars;
using beatatlas::track::inner::confidenceOfLevel;
using beatatlas::track::inner::TempoAnswer;

TrackPlan planOf(int rate, double bpm, int seconds) {
    TrackPlan plan;
    plan.sampleRate = rate;
    plan.lengthFrames = static_cast<std::int64_t>(rate) * seconds;
    plan.bpm = bpm;
    plan.introFrames = rate / 3;
    plan.kickPattern = KickPattern::firstAndThird;
    return plan;
}

/** The share of true beats that the answer has within 20 ms. */
double shareFound(const std::vector<double>& beats, const std::vector<TrueBeat>& truth, int rate) {
    double found = 0.0;
    for (const TrueBeat& beat : truth) {
        const double time = static_cast<double>(beat.frame) / rate;
        const auto near = std::lower_bound(beats.begin(), beats.end(), time - 0.02);
        if (near != beats.end() && *near < time + 0.02) ++found;
    }
    return found / static_cast<double>(truth.size());
}

void expectNoTempo(const TempoAnswer& answer) {
    EXPECT_EQ(answer.bpm, 0.0);
    EXPECT_TRUE(answer.beats.empty());
    EXPECT_TRUE(answer.downbeats.empty());
    EXPECT_TRUE(answer.stretches.empty());
    EXPECT_TRUE(answer.alternatives.empty());
}

void expectEqual(const TempoAnswer& a, const TempoAnswer& b) {
    EXPECT_EQ(a.bpm, b.bpm);
    EXPECT_EQ(a.beats, b.beats);
    EXPECT_EQ(a.downbeats, b.downbeats);
    EXPECT_EQ(a.clarity, b.clarity);
    EXPECT_EQ(a.standing, b.standing);
    EXPECT_EQ(a.steadiness.evenness, b.steadiness.evenness);
    ASSERT_EQ(a.metres.size(), b.metres.size());
    for (std::size_t i = 0; i < a.metres.size(); ++i)
        EXPECT_EQ(a.metres[i].features, b.metres[i].features);
    EXPECT_EQ(a.bars.numbers, b.bars.numbers);
    EXPECT_EQ(a.bars.share, b.bars.share);
}

TEST(AutoTempo, FindsTempoAndBeatsOfMusic) {
    for (const double bpm : {84.0, 97.31, 119.99, 128.0, 140.5}) {
        const TrackSynth synth(planOf(44100, bpm, 60));
        const TempoAnswer answer = tempoOf(44100, synth.renderAll());
        EXPECT_NEAR(answer.bpm, bpm, 0.01);
        EXPECT_GT(shareFound(answer.beats, synth.beats(), 44100), 0.98) << bpm;
        EXPECT_NEAR(static_cast<double>(answer.beats.size()),
                    static_cast<double>(synth.beats().size()), 2.0);
        EXPECT_TRUE(answer.isSteady);
        EXPECT_EQ(answer.stretches.size(), 1U);
    }
}

// A kick on one and three and hats on the eighths between: without the first stroke, before which
// there is nothing that it could rise from, the beat could as well lie between.
TEST(AutoTempo, FindsTheBeatOnTheFirstFrame) {
    for (const double bpm : {126.0, 134.0, 142.0}) {
        TrackPlan plan = planOf(44100, bpm, 30);
        plan.introFrames = 0;
        plan.levels = {0.7, 0.0, 0.1, 0.0, 0.0};
        const TempoAnswer answer = tempoOf(44100, TrackSynth(plan).renderAll());
        EXPECT_NEAR(answer.bpm, bpm, 0.05);
        ASSERT_FALSE(answer.beats.empty());
        EXPECT_LT(answer.beats.front(), 0.01) << bpm;
    }
}

TEST(AutoTempo, FindsTheFirstBeatsOfBars) {
    const TrackSynth synth(planOf(44100, 112.0, 60));
    const TempoAnswer answer = tempoOf(44100, synth.renderAll());
    EXPECT_EQ(answer.bars.beatsPerBar, 4);
    for (const double downbeat : answer.downbeats) {
        const double beats = (downbeat - 1.0 / 3.0) * 112.0 / 60.0;
        EXPECT_NEAR(beats / 4.0, std::round(beats / 4.0), 0.02) << downbeat;
    }
}

constexpr int kClickRate = 44100;

/** A tone of `hz` that dies away within `seconds`. */
std::vector<float> clickOf(double hz, double seconds, double peak) {
    std::vector<float> tone =
        sine(static_cast<std::size_t>(seconds * kClickRate), hz, kClickRate, peak);
    for (std::size_t i = 0; i < tone.size(); ++i)
        tone[i] *= 1.0F - static_cast<float>(i) / static_cast<float>(tone.size());
    return tone;
}

/** A metronome: a sound on each beat, another on the first of each bar. */
StereoTrack metronome(double bpm, const std::vector<float>& sound, const std::vector<float>& first,
                      std::size_t perBar) {
    std::vector<float> track = silence(std::size_t{kClickRate} * 30);
    const std::vector<double> beats = evenTimes(0.0, 60.0 / bpm, 29.8);
    for (std::size_t k = 0; k < beats.size(); ++k)
        mixInto(track, k % perBar == 0 ? first : sound,
                static_cast<std::size_t>(beats[k] * kClickRate + 0.5));
    return inBothChannels(track);
}

void expectPulse(const TempoAnswer& answer, double bpm) {
    EXPECT_NEAR(answer.bpm, bpm, 0.05);
    EXPECT_GT(answer.confidence.pulse, 0.9);
    EXPECT_EQ(answer.confidence.level, confidenceOfLevel(0.0)) << "no sound tells the level";
    EXPECT_EQ(answer.confidence.bars, confidenceOfBars(0.0)) << "nor where bars begin";
}

// A tick of 5 ms and a beep, which each have been read as 3/2, half and three times their tempo.
TEST(AutoTempo, TakesThePulseOfAMetronomeForItsBeat) {
    const std::vector<float> tick = sine(220, 1000.0, kClickRate, 20000.0);
    const std::vector<float> beep = clickOf(880.0, 0.06, 15000.0);
    for (const double bpm : {45.0, 60.0, 75.0, 97.0, 120.0, 133.0, 160.0, 195.0}) {
        SCOPED_TRACE(bpm);
        expectPulse(tempoOf(kClickRate, metronome(bpm, tick, tick, 4)), bpm);
        expectPulse(tempoOf(kClickRate, metronome(bpm, beep, beep, 4)), bpm);
    }
}

TEST(AutoTempo, TakesThePulseOfAMetronomeWithAccentsForItsBeat) {
    const std::vector<float> low = clickOf(1000.0, 0.03, 14000.0);
    const std::vector<float> high = clickOf(1500.0, 0.03, 18000.0);
    for (const double bpm : {50.0, 70.0, 105.0, 140.0, 190.0})
        for (const std::size_t perBar : {3U, 4U}) {
            SCOPED_TRACE(bpm);
            expectPulse(tempoOf(kClickRate, metronome(bpm, low, high, perBar)), bpm);
        }
}

// Faster than people count: every second pulse is a beat, on the first of them.
TEST(AutoTempo, CountsEverySecondPulseOfAVeryFastMetronome) {
    const std::vector<float> tick = sine(220, 1000.0, kClickRate, 20000.0);
    const TempoAnswer answer = tempoOf(kClickRate, metronome(236.0, tick, tick, 4));
    expectPulse(answer, 118.0);
    EXPECT_NEAR(answer.beats.front(), 0.0, 0.01);
    EXPECT_NEAR(answer.alternatives.front().tempoRatio, 2.0, 1e-9);
}

// Drums tell the level, though nothing sounds between the eighths.
TEST(AutoTempo, HearsTheLevelOfKickAndHat) {
    TrackPlan plan = planOf(44100, 120.0, 40);
    plan.introFrames = 0;
    plan.levels = {0.7, 0.0, 0.3, 0.0, 0.0};
    plan.kickPattern = KickPattern::everyBeat;
    const TempoAnswer answer = tempoOf(44100, TrackSynth(plan).renderAll());
    EXPECT_NEAR(answer.bpm, 120.0, 0.05);
    EXPECT_TRUE(answer.metres.front().isHeard);
}

TEST(AutoTempo, HearsTheSameAtBothRates) {
    const TempoAnswer at44 = tempoOf(44100, TrackSynth(planOf(44100, 123.0, 40)).renderAll());
    const TempoAnswer at48 = tempoOf(48000, TrackSynth(planOf(48000, 123.0, 40)).renderAll());
    EXPECT_NEAR(at44.bpm, at48.bpm, 0.01);
    ASSERT_EQ(at44.beats.size(), at48.beats.size());
    for (std::size_t k = 0; k < at44.beats.size(); ++k)
        EXPECT_NEAR(at44.beats[k], at48.beats[k], 0.004);
}

constexpr int kWaltzRate = 44100;

/** Adds a tone that dies away within `seconds`. */
void pluck(std::vector<float>& track, double at, double hz, double seconds, double peak) {
    std::vector<float> tone =
        sine(static_cast<std::size_t>(seconds * kWaltzRate), hz, kWaltzRate, peak);
    for (std::size_t i = 0; i < tone.size(); ++i)
        tone[i] *= 1.0F - static_cast<float>(i) / static_cast<float>(tone.size());
    mixInto(track, tone, static_cast<std::size_t>(at * kWaltzRate + 0.5));
}

/** A bass note and a chord on one, the chord an octave higher and a brush on two and three, a hat
 *  on every eighth; another chord every bar. */
std::vector<float> waltz(const std::vector<double>& beats, double interval) {
    std::vector<float> track = silence(std::size_t{kWaltzRate} * 60);
    std::vector<double> brushes;
    std::vector<double> hats;
    for (std::size_t k = 0; k < beats.size(); ++k) {
        const double root = std::array{220.0, 293.66, 246.94, 261.63}[k / 3 % 4];
        const bool isOne = k % 3 == 0;
        if (isOne) pluck(track, beats[k], root / 4.0, 1.5 * interval, 9000.0);
        for (const double note : {1.0, 1.26, 1.5})
            pluck(track, beats[k], (isOne ? root : 2.0 * root) * note,
                  (isOne ? 3.0 : 0.5) * interval, isOne ? 2500.0 : 2000.0);
        if (!isOne) brushes.push_back(beats[k]);
        hats.push_back(beats[k]);
        hats.push_back(beats[k] + 0.5 * interval);
    }
    mixInto(track, burstsAt(brushes, kWaltzRate, track.size(), 4000.0));
    mixInto(track, burstsAt(hats, kWaltzRate, track.size(), 500.0));
    return track;
}

TEST(AutoTempo, HearsTripleMetre) {
    for (const double bpm : {96.0, 120.0, 144.0}) {
        const double interval = 60.0 / bpm;
        const std::vector<double> beats = evenTimes(0.2, interval, 59.0);
        const TempoAnswer answer = tempoOf(kWaltzRate, inBothChannels(waltz(beats, interval)));
        EXPECT_NEAR(answer.bpm, bpm, 0.01);
        EXPECT_EQ(answer.bars.beatsPerBar, 3);
        ASSERT_FALSE(answer.downbeats.empty());
        EXPECT_NEAR(answer.downbeats.front(), 0.2, 0.01);
    }
}

TEST(AutoTempo, SaysWhereTheTempoChanges) {
    TrackPlan plan = planOf(44100, 120.0, 90);
    plan.tempoChanges = {{45.0, 104.0}};
    const TrackSynth synth(plan);
    const TempoAnswer answer = tempoOf(44100, synth.renderAll());
    EXPECT_FALSE(answer.isSteady);
    EXPECT_GT(shareFound(answer.beats, synth.beats(), 44100), 0.9);
    ASSERT_GE(answer.stretches.size(), 2U);
    EXPECT_NEAR(answer.stretches.front().bpm, 120.0, 1.5);
    EXPECT_NEAR(answer.stretches.back().bpm, 104.0, 1.5);
}

TEST(AutoTempo, GivesAlternativesAndConfidence) {
    const TempoAnswer answer = tempoOf(44100, TrackSynth(planOf(44100, 128.0, 60)).renderAll());
    ASSERT_EQ(answer.alternatives.size(), 5U);
    double before = answer.metres.front().share;
    for (const auto& other : answer.alternatives) {
        EXPECT_LE(other.share, before);
        EXPECT_NEAR(other.bpm, answer.bpm * other.tempoRatio, 1e-9);
        EXPECT_GE(other.shiftBeats, 0.0);
        EXPECT_LT(other.shiftBeats, 1.0);
        before = other.share;
    }
    EXPECT_GT(answer.confidence.pulse * answer.confidence.level, 0.5);
    EXPECT_GT(answer.confidence.phase, 0.0);
    EXPECT_GT(answer.confidence.bars, 0.0);
}

TEST(AutoTempo, GivesTheSameBitsForBlocksOfEverySizeFormAndRoundingMode) {
    const StereoTrack track = TrackSynth(planOf(44100, 126.0, 20)).renderAll();
    const TempoAnswer expected = tempoOf(44100, track);
    ASSERT_GT(expected.bpm, 0.0);
    for (const int block : {1, 999, 1000000}) expectEqual(tempoOf(44100, track, block), expected);
    for (const auto form : formsOfThisMachine()) {
        const FormScope scope(form);
        expectEqual(tempoOf(44100, track), expected);
    }
    for (const int mode : {FE_TOWARDZERO, FE_UPWARD}) {
        ASSERT_EQ(std::fesetround(mode), 0);
        const TempoAnswer answer = tempoOf(44100, track);
        const int left = std::fegetround();
        std::fesetround(FE_TONEAREST);
        EXPECT_EQ(left, mode);
        expectEqual(answer, expected);
    }
}

TEST(AutoTempo, FindsNoneInSilenceHumAndNoise) {
    constexpr std::size_t kFrames = 44100 * 30;
    expectNoTempo(tempoOf(44100, inBothChannels(silence(kFrames))));
    expectNoTempo(tempoOf(44100, inBothChannels(std::vector<float>(kFrames, 9000.0F))));
    expectNoTempo(tempoOf(44100, inBothChannels(sine(kFrames, 50.0, 44100, 9000.0))));
    expectNoTempo(tempoOf(44100, inBothChannels(whiteNoise(kFrames, 9000.0, 1))));
    expectNoTempo(tempoOf(48000, inBothChannels(whiteNoise(kFrames, 32767.0, 2))));
}

TEST(AutoTempo, FindsNoneInTracksTooShortForOne) {
    for (const std::size_t frames : {1U, 2U, 293U, 588U, 1024U, 44100U})
        expectNoTempo(tempoOf(44100, inBothChannels(whiteNoise(frames, 9000.0, 5))));
}

}  // namespace
