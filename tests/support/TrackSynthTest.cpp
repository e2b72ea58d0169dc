// SPDX-License-Identifier: MIT
#include "support/TrackSynth.h"

#include <algorithm>
#include <array>
#include <cfenv>
#include <cmath>

#include <gtest/gtest.h>

#include "support/Digest.h"

namespace beatatlas::test {
namespace {

constexpr double kPi = 3.14159265358979323846;

/** Four seconds that use everything: tempo change, shuffle, sections, stereo width. */
TrackPlan busyPlan() {
    TrackPlan plan;
    plan.sampleRate = 48000;
    plan.lengthFrames = 4 * 48000;
    plan.introFrames = 12345;
    plan.bpm = 131.7;
    plan.tempoChanges = {{2.3, 97.1}};
    plan.swing = 2.0 / 3.0;
    plan.tonic = 5;
    plan.mode = KeyMode::minor;
    plan.concertPitchHz = 442.0;
    plan.stereoWidth = 0.7;
    plan.sections = {{1, {.kick = 0.3, .snare = 0.3, .hats = 0.2, .bass = 0.1, .chords = 0.1}}};
    plan.seed = 99;
    return plan;
}

std::uint64_t digestOf(const StereoTrack& track) {
    Digest digest;
    digest.add(track.left);
    digest.add(track.right);
    return digest.value();
}

TrackPlan soloPlan(InstrumentLevels levels) {
    TrackPlan plan;
    plan.lengthFrames = 4 * 44100;
    plan.levels = levels;
    plan.level = 1.0;
    return plan;
}

/** Energy at one frequency, by Goertzel's recurrence over the whole signal. */
double energyAt(const std::vector<float>& signal, double hz, int sampleRate) {
    const double c = 2.0 * std::cos(2.0 * kPi * hz / sampleRate);
    double s1 = 0.0;
    double s2 = 0.0;
    for (const float x : signal) {
        const double s = x + (c * s1) - s2;
        s2 = s1;
        s1 = s;
    }
    return (s1 * s1) + (s2 * s2) - (c * s1 * s2);
}

/** Energy on a comb of frequencies low, low + step, … below high. */
double energyWithin(const std::vector<float>& signal, double low, double high, double step) {
    double sum = 0.0;
    for (double hz = low; hz < high; hz += step) sum += energyAt(signal, hz, 44100);
    return sum;
}

float peakOf(const std::vector<float>& signal) {
    float peak = 0.0F;
    for (const float x : signal) peak = std::max(peak, std::fabs(x));
    return peak;
}

/** The first frame that is not silent in [from, end), or end. */
std::int64_t firstSound(const std::vector<float>& signal, std::int64_t from, std::int64_t end) {
    while (from < end && signal[static_cast<std::size_t>(from)] == 0.0F) ++from;
    return from;
}

// 100 BPM at 44,100 is 26,460 frames a beat, and a kick (280 ms, 12,348 frames) has died away long
// before the next.
TEST(TrackSynth, DryKicksBeginExactlyOnTheBeats) {
    TrackPlan plan = dryKickPlan(44100, 26460 * 6, 100.0);
    plan.introFrames = 777;
    const TrackSynth synth(plan);
    const StereoTrack track = synth.renderAll();
    ASSERT_EQ(synth.beats().size(), 6U);
    std::int64_t silentFrom = 0;
    for (int i = 0; i < 6; ++i) {
        const TrueBeat& beat = synth.beats()[static_cast<std::size_t>(i)];
        EXPECT_EQ(beat.frame, 777 + (26460 * i));
        EXPECT_EQ(beat.number, 1 + (i % 4));
        EXPECT_EQ(firstSound(track.left, silentFrom, beat.frame + 100), beat.frame);
        silentFrom = beat.frame + 12348;
    }
    EXPECT_EQ(synth.downbeats(), (std::vector<std::int64_t>{777, 777 + (26460 * 4)}));
}

TEST(TrackSynth, DryKicksFollowATempoChange) {
    TrackPlan plan = dryKickPlan(48000, 48000 * 6, 60.0);
    plan.tempoChanges = {{2.0, 120.0}};
    const TrackSynth synth(plan);
    const StereoTrack track = synth.renderAll();
    for (const std::int64_t beat : {48000, 96000, 120000, 144000, 264000})
        EXPECT_EQ(firstSound(track.left, beat - 10000, beat + 100), beat);
}

// Hats alone, shuffled: with 24,000 frames a beat the off-beat lies at 16,000.
TEST(TrackSynth, SwingDelaysTheOffBeat) {
    TrackPlan plan = soloPlan({.kick = 0, .snare = 0, .hats = 1.0, .bass = 0, .chords = 0});
    plan.sampleRate = 48000;
    plan.swing = 2.0 / 3.0;
    const StereoTrack track = TrackSynth(plan).renderAll();
    EXPECT_EQ(firstSound(track.left, 4000, 20000), 16000);
    EXPECT_EQ(firstSound(track.left, 20000, 30000), 24000);
}

TEST(TrackSynth, SnareAnswersTheKickOnTwoAndFour) {
    TrackPlan plan = soloPlan({.kick = 0, .snare = 1.0, .hats = 0, .bass = 0, .chords = 0});
    const StereoTrack snare = TrackSynth(plan).renderAll();
    EXPECT_EQ(firstSound(snare.left, 0, 44100), 22050);
    EXPECT_EQ(firstSound(snare.left, 40000, 88200), 66150);
    plan.levels = {.kick = 1.0, .snare = 0, .hats = 0, .bass = 0, .chords = 0};
    plan.kickPattern = KickPattern::firstAndThird;
    const StereoTrack kick = TrackSynth(plan).renderAll();
    EXPECT_EQ(firstSound(kick.left, 0, 44100), 0);
    EXPECT_EQ(firstSound(kick.left, 15000, 88200), 44100);
}

TEST(TrackSynth, IntroHasChordsAndNoBeat) {
    TrackPlan plan;
    plan.lengthFrames = 6 * 44100;
    plan.introFrames = 3 * 44100;
    const TrackSynth synth(plan);
    EXPECT_EQ(synth.beats().front().frame, 3 * 44100);
    const StereoTrack track = synth.renderAll();
    const auto introEnd = track.left.begin() + plan.introFrames;
    EXPECT_NEAR(peakOf({track.left.begin(), introEnd}), 0.9 * 0.18 * 32767, 1200.0);
    EXPECT_GT(peakOf({introEnd, track.left.end()}), 0.9 * 0.36 * 32767);
}

TEST(TrackSynth, SectionsChangeTheBandFromTheirBarOn) {
    TrackPlan plan = dryKickPlan(44100, 12 * 44100, 120.0);
    plan.sections = {{2, {.kick = 0, .snare = 0, .hats = 0, .bass = 0, .chords = 0}},
                     {4, plan.levels}};
    const StereoTrack track = TrackSynth(plan).renderAll();
    EXPECT_EQ(firstSound(track.left, (7 * 22050) + 15000, 12 * 44100), 16 * 22050);
}

// The kick's envelope falls from 1 and its first crest comes a quarter turn (about 1.8 ms) later.
TEST(TrackSynth, LevelIsThePeakInSixteenBitScale) {
    for (const double level : {0.1, 0.5, 1.0}) {
        TrackPlan plan = dryKickPlan(44100, 44100, 120.0);
        plan.level = level;
        EXPECT_NEAR(peakOf(TrackSynth(plan).renderAll().left), level * 32767, level * 32767 * 0.03);
    }
}

TEST(TrackSynth, SamplesAreWholeNumbersWithinSixteenBits) {
    TrackPlan plan = busyPlan();
    plan.level = 5.0;
    const StereoTrack track = TrackSynth(plan).renderAll();
    for (const float x : track.left) ASSERT_EQ(x, std::trunc(x));
    EXPECT_EQ(peakOf(track.left), 32767.0F);
}

TEST(TrackSynth, DefaultLevelsNeverClip) {
    TrackPlan plan = busyPlan();
    plan.level = 1.0;
    plan.sections.clear();
    EXPECT_LT(peakOf(TrackSynth(plan).renderAll().left), 32767.0F);
}

TEST(TrackSynth, WidthZeroIsMonoAndWidthOneIsNot) {
    TrackPlan plan = busyPlan();
    plan.stereoWidth = 0.0;
    const StereoTrack mono = TrackSynth(plan).renderAll();
    EXPECT_EQ(mono.left, mono.right);
    plan.stereoWidth = 1.0;
    const StereoTrack wide = TrackSynth(plan).renderAll();
    EXPECT_NE(wide.left, wide.right);
}

TEST(TrackSynth, AnySplitOfTheTrackGivesTheSameSamples) {
    const TrackSynth synth(busyPlan());
    const StereoTrack whole = synth.renderAll();
    for (const std::int64_t block : {1, 7, 588, 640, 1024, 1025, 50000}) {
        StereoTrack pieces = {std::vector<float>(whole.left.size()),
                              std::vector<float>(whole.left.size())};
        // Backwards, to prove that no state is carried along; single frames over a part only, for
        // speed.
        const std::int64_t last = block == 1 ? 30000 : synth.plan().lengthFrames;
        for (std::int64_t from = ((last - 1) / block) * block; from >= 0; from -= block)
            synth.render(from, std::min(block, last - from), pieces.left.data() + from,
                         pieces.right.data() + from);
        EXPECT_TRUE(std::equal(whole.left.begin(), whole.left.begin() + last, pieces.left.begin()))
            << block;
        EXPECT_TRUE(
            std::equal(whole.right.begin(), whole.right.begin() + last, pieces.right.begin()))
            << block;
    }
}

TEST(TrackSynth, IsSilentAfterTheEndOfTheTrack) {
    TrackPlan plan = busyPlan();
    plan.lengthFrames = 100000;
    const StereoTrack shorter = TrackSynth(plan).renderAll();
    std::vector<float> left(5000, 1.0F);
    std::vector<float> right(5000, 1.0F);
    TrackSynth(plan).render(98000, 5000, left.data(), right.data());
    EXPECT_TRUE(std::equal(left.begin(), left.begin() + 2000, shorter.left.begin() + 98000));
    EXPECT_EQ(firstSound(left, 2000, 5000), 5000);
    EXPECT_EQ(firstSound(right, 2000, 5000), 5000);
}

// Ten hours at 120 BPM and 48,000: the last beat is number 71,999, at 71,999 × 24,000.
TEST(TrackSynth, TenHoursAreReachedWithoutRenderingThem) {
    const std::int64_t tenHours = std::int64_t{36000} * 48000;
    const TrackSynth synth(dryKickPlan(48000, tenHours, 120.0));
    ASSERT_EQ(synth.beats().size(), 72000U);
    const std::int64_t lastBeat = tenHours - 24000;
    EXPECT_EQ(synth.beats().back().frame, lastBeat);
    std::vector<float> left(200);
    std::vector<float> right(200);
    synth.render(lastBeat - 100, 200, left.data(), right.data());
    EXPECT_EQ(firstSound(left, 0, 200), 100);
}

TEST(TrackSynth, EmptyTrackHasNoBeats) {
    const TrackSynth synth(TrackPlan{});
    EXPECT_TRUE(synth.beats().empty());
    EXPECT_TRUE(synth.renderAll().left.empty());
}

// Two recorded results; they hold for every compiler, optimisation level and rounding mode.
TEST(TrackSynth, BitsAreThoseOnRecord) {
    TrackPlan plain;
    plain.lengthFrames = 5 * 44100;
    EXPECT_EQ(digestOf(TrackSynth(plain).renderAll()), 774677868191188965U);
    EXPECT_EQ(digestOf(TrackSynth(busyPlan()).renderAll()), 8689811565259384877U);
}

TEST(TrackSynth, BitsAreTheSameInEveryRoundingMode) {
    const std::uint64_t nearest = digestOf(TrackSynth(busyPlan()).renderAll());
    for (const int mode : {FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD}) {
        std::fesetround(mode);
        const std::uint64_t other = digestOf(TrackSynth(busyPlan()).renderAll());
        EXPECT_EQ(std::fegetround(), mode);
        std::fesetround(FE_TONEAREST);
        EXPECT_EQ(other, nearest) << "mode " << mode;
    }
}

// Four bars of tonic, fourth, fifth, tonic in every key: the tonic triad must hold more energy than
// any other triad of its kind, summed over two octaves from A3.
TEST(TrackSynth, ChordsSpellTheKey) {
    for (const KeyMode mode : {KeyMode::major, KeyMode::minor}) {
        for (int tonic = 0; tonic < 12; ++tonic) {
            TrackPlan plan;
            plan.lengthFrames = 8 * 44100;  // four bars at 120 BPM
            plan.tonic = tonic;
            plan.mode = mode;
            const std::vector<float> left = TrackSynth(plan).renderAll().left;
            std::array<double, 12> chroma{};
            for (int note = 0; note < 24; ++note)
                chroma[static_cast<std::size_t>(note % 12)] +=
                    energyAt(left, 220.0 * std::pow(2.0, note / 12.0), 44100);
            const int third = mode == KeyMode::major ? 4 : 3;
            std::array<double, 12> triads{};
            for (std::size_t root = 0; root < 12; ++root)
                triads[root] = chroma[root] +
                               chroma[(root + static_cast<std::size_t>(third)) % 12] +
                               chroma[(root + 7) % 12];
            const auto best = std::max_element(triads.begin(), triads.end());
            EXPECT_EQ(best - triads.begin(), tonic) << "mode " << static_cast<int>(mode);
        }
    }
}

TEST(TrackSynth, ConcertPitchMovesEveryNote) {
    TrackPlan plan = soloPlan({.kick = 0, .snare = 0, .hats = 0, .bass = 0, .chords = 1.0});
    plan.concertPitchHz = 434.0;
    const std::vector<float> left = TrackSynth(plan).renderAll().left;
    EXPECT_GT(energyAt(left, 217.0, 44100), 100.0 * energyAt(left, 220.0, 44100));
}

// Where each instrument's energy lies, on a comb of 20 Hz.
TEST(TrackSynth, InstrumentsKeepToTheirRegister) {
    const auto solo = [](InstrumentLevels levels) {
        return TrackSynth(soloPlan(levels)).renderAll().left;
    };
    const std::vector<float> kick =
        solo({.kick = 1.0, .snare = 0, .hats = 0, .bass = 0, .chords = 0});
    EXPECT_GT(energyWithin(kick, 40.0, 170.0, 20.0),
              20.0 * energyWithin(kick, 300.0, 8000.0, 20.0));
    const std::vector<float> hats =
        solo({.kick = 0, .snare = 0, .hats = 1.0, .bass = 0, .chords = 0});
    EXPECT_GT(energyWithin(hats, 8000.0, 20000.0, 100.0),
              20.0 * energyWithin(hats, 20.0, 6000.0, 100.0));
    const std::vector<float> bass =
        solo({.kick = 0, .snare = 0, .hats = 0, .bass = 1.0, .chords = 0});
    EXPECT_GT(energyWithin(bass, 40.0, 500.0, 5.0), 20.0 * energyWithin(bass, 800.0, 8000.0, 5.0));
    const std::vector<float> snare =
        solo({.kick = 0, .snare = 1.0, .hats = 0, .bass = 0, .chords = 0});
    EXPECT_GT(energyWithin(snare, 1000.0, 10000.0, 100.0), energyWithin(snare, 20.0, 120.0, 100.0));
}

}  // namespace
}  // namespace beatatlas::test
