// SPDX-License-Identifier: MIT
#include <algorithm>
#include <climits>
#include <cmath>
#include <vector>

#include <gmock/gmock.h>

#include "beatatlas/dsp.h"
#include "beatatlas/utilities.h"
#include "support/RoundTowardZero.h"
#include "support/TrackSynth.h"
#include "support/signals.h"

namespace beatatlas::test {
namespace {

class PitchDetectTest : public RoundTowardZero {};

int detected(std::vector<float> samples, float rate, int hopDivisor, int mode) {
    return PitchDetect(samples.data(), static_cast<int>(samples.size()), rate, hopDivisor, mode);
}

// The detector looks at a thinned-out recording in practice; so do the tests, for speed.
constexpr int kRate = 4410;

/** A4 alone. */
std::vector<float> toneAt(double referenceHz, double seconds) {
    return sine(static_cast<std::size_t>(seconds * kRate), referenceHz, kRate, 10000.0);
}

/** A chord of sines on A4, C♯5 and E5. */
std::vector<float> chordAt(double referenceHz, double seconds) {
    std::vector<float> chord = toneAt(referenceHz, seconds);
    mixInto(chord, sine(chord.size(), referenceHz * 1.2599210498948732, kRate, 6000.0));
    mixInto(chord, sine(chord.size(), referenceHz * 1.4983070768766815, kRate, 6000.0));
    return chord;
}

// Oracle: the method written out, every sum for itself.
class PlainDetector {
public:
    PlainDetector(const std::vector<float>& samples, float rate, int hop)
        : samples_(samples), rate_(rate), hop_(hop) {}

    float scoreOf(int candidate) const {
        std::vector<float> f(25);
        for (std::size_t k = 0; k < f.size(); ++k) {
            const double ratio = std::pow(2.0, static_cast<double>(k) / 12.0);
            f[k] = static_cast<float>((433.0 + 1.0 + candidate) * ratio);
        }
        std::vector<int> lengths(24);
        for (std::size_t k = 0; k < 24; ++k)
            lengths[k] = static_cast<int>(2.0F * rate_ / (f[k + 1] - f[k]));
        const int frames = (static_cast<int>(samples_.size()) - lengths[0]) / hop_;
        float score = 0.0F;
        std::ptrdiff_t previous = -1;
        for (int j = 0; j < frames; ++j) {
            std::vector<float> bins(24);
            for (std::size_t k = 0; k < 24; ++k)
                bins[k] = magnitude(j * hop_, lengths[k], f[k]) *
                          (static_cast<float>(lengths[0]) / static_cast<float>(lengths[k]));
            const auto strongest = std::max_element(bins.begin(), bins.end());
            const std::ptrdiff_t at = strongest - bins.begin();
            if (previous < 0 || at == previous) score += *strongest;
            previous = at;
        }
        return score;
    }

    int best(const std::vector<int>& candidates) const {
        std::vector<float> scores(13, 0.0F);
        for (const int v : candidates) scores[static_cast<std::size_t>(v)] = scoreOf(v);
        return 434 +
               static_cast<int>(std::max_element(scores.begin(), scores.end()) - scores.begin());
    }

private:
    float magnitude(int start, int length, float hz) const {
        constexpr double kTwoPi = 6.283185307179586;
        std::vector<float> window(static_cast<std::size_t>(length));
        hanning(length, window.data());
        float re = 0.0F;
        float im = 0.0F;
        for (std::size_t i = 0; i < window.size(); ++i) {
            const float seconds = static_cast<float>(i + 1) / rate_;
            const double angle = kTwoPi * static_cast<double>(hz) * static_cast<double>(seconds);
            const float x = samples_[static_cast<std::size_t>(start) + i];
            re += x * (window[i] * static_cast<float>(std::cos(angle)));
            im += x * (window[i] * static_cast<float>(std::sin(angle)));
        }
        return std::sqrt(re * re + im * im);
    }

    const std::vector<float>& samples_;
    float rate_;
    int hop_;
};

const std::vector<int> kAll = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};

// In noise the strongest bin wavers, so which frames count decides the answer.
TEST_F(PitchDetectTest, AgreesWithTheMethodWrittenOut) {
    std::vector<int> answers;
    for (std::uint64_t seed = 1; seed <= 8; ++seed) {
        const std::vector<float> noise = whiteNoise(12000, 1000.0, seed);
        answers.push_back(detected(noise, kRate, 2, 0));
        EXPECT_EQ(answers.back(), PlainDetector(noise, kRate, 1024).best(kAll)) << seed;
        EXPECT_EQ(detected(noise, kRate, 3, 2), PlainDetector(noise, kRate, 1024).best(kAll))
            << seed;
    }
    std::sort(answers.begin(), answers.end());
    EXPECT_GT(std::unique(answers.begin(), answers.end()) - answers.begin(), 3);
}

// Two octaves above the lowest reference semitones lie 97.5 Hz apart: below 48.8 Hz no whole sample
// fits the highest window.
TEST_F(PitchDetectTest, AtTheLowestRatesOnlyBinsThatSeeASampleCount) {
    const std::vector<float> noise = whiteNoise(1200, 1000.0, 5);
    int others = 0;
    for (const float rate : {15.0F, 20.0F, 24.0F, 30.0F}) {
        const int hz = detected(noise, rate, 64, 0);
        EXPECT_EQ(hz, PlainDetector(noise, rate, 32).best(kAll)) << rate;
        if (hz != 434) ++others;
    }
    EXPECT_GT(others, 0);
}

TEST_F(PitchDetectTest, FindsTheTuningOfTonesAndChords) {
    for (int hz = 434; hz <= 446; ++hz) {
        EXPECT_EQ(detected(toneAt(hz, 10.0), kRate, 1, 0), hz);
        EXPECT_EQ(detected(chordAt(hz, 10.0), kRate, 1, 0), hz);
        EXPECT_EQ(detected(chordAt(hz, 31.0), kRate, 1, 1), hz);
        EXPECT_EQ(detected(chordAt(hz, 10.0), kRate, 1, 2), hz);
    }
}

// Every other candidate from 436 to 444 is tried at first; the others can only be found by looking
// beside the best.
TEST_F(PitchDetectTest, RefiningPlansFindWhatTheFirstPassLeftOut) {
    for (const int hz : {434, 435, 438, 439, 441, 443, 445, 446}) {
        EXPECT_EQ(detected(chordAt(hz, 10.0), kRate, 1, 1), hz);
        EXPECT_EQ(detected(chordAt(hz, 31.0), kRate, 1, 2), hz);
        EXPECT_EQ(detected(chordAt(hz, 10.0), kRate, 1, 3), hz);
        EXPECT_EQ(detected(chordAt(hz, 31.0), kRate, 1, 4), hz);
    }
}

// When 436 is the best of the first pass only the references below it are looked at: 437 is out of
// reach.
TEST_F(PitchDetectTest, RefiningBesideTheLowestLooksDownwardOnly) {
    const std::vector<float> tone = toneAt(437.0, 10.0);
    EXPECT_EQ(detected(tone, kRate, 1, 0), 437);
    EXPECT_EQ(detected(tone, kRate, 1, 3), 436);
    EXPECT_EQ(PlainDetector(tone, kRate, 3072).best({0, 1, 2, 4, 6, 8, 10}), 436);
}

// Mode 2 tries 437 for short tracks only; 30 s at 4410 Hz are 132,300 samples.
TEST_F(PitchDetectTest, ThirtySecondsSharpAreLong) {
    std::vector<float> tone = toneAt(437.0, 30.0);
    ASSERT_EQ(tone.size(), 132300U);
    EXPECT_EQ(detected(tone, kRate, 1, 2), 436);
    tone.pop_back();
    EXPECT_EQ(detected(tone, kRate, 1, 2), 437);
}

TEST_F(PitchDetectTest, FindsTheTuningOfMusicThroughTheResampler) {
    for (const int hz : {434, 438, 440, 442, 446}) {
        TrackPlan plan;
        plan.lengthFrames = 10 * 44100;
        plan.concertPitchHz = hz;
        std::vector<float> music = TrackSynth(plan).renderAll().left;
        std::vector<float> thinned((music.size() / 10) - 1);
        resample2(thinned.data(), static_cast<long>(thinned.size()), music.data(),
                  static_cast<long>(music.size()), 10.0F, 10, 0);
        EXPECT_EQ(detected(thinned, kRate, 1, 0), hz);
        EXPECT_EQ(detected(thinned, kRate, 1, 3), hz);
    }
}

TEST_F(PitchDetectTest, SilenceIs434InEveryMode) {
    for (int mode = -1; mode <= 5; ++mode)
        EXPECT_EQ(detected(silence(20000), kRate, 1, mode), 434) << mode;
}

// Frames at 4410 Hz: 2 × 4410 / (446 × 0.0594631) = 332.6, so 332 samples for 446 Hz, and 333 for
// 445 Hz.
TEST_F(PitchDetectTest, EachCandidateNeedsItsOwnFrameAndAHop) {
    const std::vector<float> tone = toneAt(440.0, 1.0);
    const auto first = [&](int count) {
        return std::vector<float>(tone.begin(), tone.begin() + count);
    };
    EXPECT_EQ(detected(first(332 + 2048), kRate, 1, 0), 446);
    EXPECT_EQ(detected(first(332 + 2047), kRate, 1, 0), 434);
    EXPECT_EQ(detected(first(332), kRate, 1, 0), 434);
    EXPECT_EQ(detected(first(1), kRate, 1, 0), 434);
}

TEST_F(PitchDetectTest, HopDivisorDividesTheHop) {
    std::vector<float> tone = toneAt(440.0, 1.0);
    tone.resize(332 + 512);
    EXPECT_EQ(detected(tone, kRate, 4, 0), 446);
    tone.pop_back();
    EXPECT_EQ(detected(tone, kRate, 4, 0), 434);
    tone.resize(332 + 768, 1.0F);
    EXPECT_EQ(detected(tone, kRate, 4, 2), 446);
}

TEST_F(PitchDetectTest, AHopBelowOneSampleMeansNoFrame) {
    const std::vector<float> tone = toneAt(440.0, 2.0);
    for (const int hopDivisor : {0, -1, INT_MIN, 2049, INT_MAX})
        EXPECT_EQ(detected(tone, kRate, hopDivisor, 0), 434) << hopDivisor;
    EXPECT_NE(detected({tone.begin(), tone.begin() + 500}, kRate, 2048, 0), 434);
}

TEST_F(PitchDetectTest, ArgumentsWithoutMeaningGive434) {
    std::vector<float> tone = toneAt(440.0, 2.0);
    for (const float rate : {0.0F, -4410.0F, 1e-3F, 1e30F, HUGE_VALF, -HUGE_VALF, std::nanf("")})
        for (int mode = 0; mode <= 4; ++mode) EXPECT_EQ(detected(tone, rate, 1, mode), 434) << rate;
    for (const int n : {0, -1, INT_MIN}) EXPECT_EQ(PitchDetect(tone.data(), n, kRate, 1, 0), 434);
    EXPECT_EQ(PitchDetect(nullptr, 8820, kRate, 1, 0), 434);
}

TEST_F(PitchDetectTest, AbsurdSamplesGiveSomeReference) {
    for (const float absurd : {1e38F, HUGE_VALF, std::nanf("")}) {
        for (int mode = 0; mode <= 4; ++mode) {
            std::vector<float> tone = toneAt(440.0, 2.0);
            for (std::size_t i = 0; i < tone.size(); i += 1000) tone[i] = absurd;
            const int hz = detected(tone, kRate, 1, mode);
            EXPECT_GE(hz, 434);
            EXPECT_LE(hz, 446);
        }
    }
}

}  // namespace
}  // namespace beatatlas::test
