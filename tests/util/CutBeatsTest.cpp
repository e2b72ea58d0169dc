// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cfenv>
#include <climits>
#include <cmath>
#include <cstring>
#include <vector>

#include <gmock/gmock.h>

#include "beatatlas/dsp.h"
#include "beatatlas/utilities.h"
#include "support/RoundTowardZero.h"
#include "support/TrackSynth.h"
#include "support/VectorForms.h"
#include "support/signals.h"

namespace beatatlas::test {
namespace {

using ::testing::Each;

constexpr float kUntouched = 12345.0F;

class CutBeatsTest : public RoundTowardZero {};

std::vector<float> cut(std::vector<float> in, float rate, int div, int mode) {
    std::vector<float> out(in.size(), kUntouched);
    CutBeats(out.data(), in.data(), static_cast<int>(in.size()), rate, div, mode);
    return out;
}

/** Samples written, from the first on. */
int writtenBy(int n, float rate, int div, int mode) {
    const std::vector<float> out =
        cut(std::vector<float>(static_cast<std::size_t>(n), 0.0F), rate, div, mode);
    int count = 0;
    while (count < n && out[static_cast<std::size_t>(count)] != kUntouched) ++count;
    EXPECT_THAT(std::vector<float>(out.begin() + count, out.end()), Each(kUntouched));
    return count;
}

/** Where the last frame ends, worked out anew for each case. */
int lastFrameEnd(int n, int frame, int hop) {
    return ((((n - frame) / hop) - 1) * hop) + frame;
}

double energyOf(const std::vector<float>& v, std::size_t from, std::size_t to) {
    double sum = 0.0;
    for (std::size_t i = from; i < to; ++i)
        sum += static_cast<double>(v[i]) * static_cast<double>(v[i]);
    return sum;
}

// Oracle: the method written out with whole matrices and plain loops.
struct PlainBeatCutter {
    int n = 0;
    int N = 0;
    int H = 0;
    int F = 0;
    float rate = 0.0F;
    std::vector<std::vector<float>> magnitudes;
    std::vector<std::vector<float>> phases;
    std::vector<float> window;

    void analyse(const std::vector<float>& in) {
        window.resize(static_cast<std::size_t>(N));
        hanning(N, window.data());
        for (int f = 0; f < F; ++f) {
            std::vector<float> re(window.size());
            std::vector<float> im(window.size(), 0.0F);
            for (std::size_t i = 0; i < re.size(); ++i)
                re[i] = in[static_cast<std::size_t>(f * H) + i] * window[i];
            fft_less_normalize(N, re.data(), im.data());
            std::vector<float> magnitude(re.size());
            std::vector<float> phase(re.size());
            calc_mag(N, magnitude.data(), re.data(), im.data());
            calc_phase(N, phase.data(), re.data(), im.data());
            magnitudes.push_back(gated(magnitude));
            phases.push_back(phase);
        }
    }

    std::vector<float> gated(const std::vector<float>& magnitude) const {
        const int half = N / 2;
        std::vector<float> out(magnitude.begin(), magnitude.begin() + half);
        for (int k = 4; k < half && N > 9; ++k) {
            const int lo = static_cast<int>(k * 0.70711356);
            const int hi = std::min(static_cast<int>(k * 1.4142), half - 1);
            float mean = 0.0F;
            for (int m = lo; m <= hi; ++m) mean += magnitude[static_cast<std::size_t>(m)];
            mean *= hi == lo ? 1.0F : 1.0F / static_cast<float>(hi - lo);
            const auto lg = static_cast<float>(std::log10(k + 1.0));
            if (magnitude[static_cast<std::size_t>(k)] < mean * lg)
                out[static_cast<std::size_t>(k)] = 0.0F;
        }
        return out;
    }

    void limitBass() {
        float a = 0.0F;
        float b = 0.0F;
        make_lpf0(&b, &a, 5.0F / (rate / static_cast<float>(N / H)));
        for (std::size_t k = 0; k < 20 && k < static_cast<std::size_t>(N / 2); ++k) {
            std::vector<float> smooth;
            for (const auto& row : magnitudes) smooth.push_back(row[k]);
            filter1(smooth.data(), smooth.data(), F, b, a);
            for (std::size_t f = 0; f < smooth.size(); ++f)
                magnitudes[f][k] = std::min(magnitudes[f][k], smooth[f]);
        }
    }

    std::vector<float> rebuild() const {
        std::vector<float> out(static_cast<std::size_t>(n), kUntouched);
        std::vector<float> sum(out.size(), 0.0F);
        const float weight = 2.6666667F / (static_cast<float>(N) / static_cast<float>(H));
        const auto length = static_cast<std::size_t>(N);
        for (std::size_t f = 0; f < magnitudes.size(); ++f) {
            std::vector<float> re(length + 1, 0.0F);
            std::vector<float> im(length + 1, 0.0F);
            for (std::size_t k = 0; k < length / 2; ++k) {
                re[k] = re[length - k] = magnitudes[f][k] * cosf(phases[f][k]);
                im[k] = magnitudes[f][k] * sinf(phases[f][k]);
                im[length - k] = -im[k];
            }
            fft_less_normalize(-N, re.data(), im.data());
            for (std::size_t i = 0; i < length; ++i) {
                const std::size_t at = (f * static_cast<std::size_t>(H)) + i;
                sum[at] += re[i] / static_cast<float>(N) * window[i] * weight;
                out[at] = sum[at];
            }
        }
        return out;
    }

    std::vector<float> cut(const std::vector<float>& in) {
        n = static_cast<int>(in.size());
        F = (n - N) / H;
        analyse(in);
        limitBass();
        return rebuild();
    }
};

std::vector<float> cutPlainly(const std::vector<float>& in, int frame, int hop, float rate) {
    PlainBeatCutter cutter;
    cutter.N = frame;
    cutter.H = hop;
    cutter.rate = rate;
    return cutter.cut(in);
}

TEST_F(CutBeatsTest, AgreesWithTheMethodWrittenOut) {
    TrackPlan plan;
    plan.lengthFrames = 30000;
    const std::vector<float> music = TrackSynth(plan).renderAll().left;
    EXPECT_EQ(cut(music, 44100.0F, 1, 0), cutPlainly(music, 4096, 512, 44100.0F));
    EXPECT_EQ(cut(music, 44100.0F, 4, 3), cutPlainly(music, 1024, 296, 44100.0F));
    // 30,000 samples at 1000 Hz are half a minute: long.
    EXPECT_EQ(cut(music, 1000.0F, 2, 4), cutPlainly(music, 2048, 1152, 1000.0F));
}

// 40 frames: batches of 16 and a rest. In a gated frame zeros of either sign remain.
TEST_F(CutBeatsTest, EveryFormGivesTheBitsOfTheMethodWrittenOut) {
    TrackPlan plan;
    plan.lengthFrames = 26000;
    std::vector<float> music = TrackSynth(plan).renderAll().left;
    std::fill(music.begin() + 9000, music.begin() + 15000, 0.0F);
    music[20000] = 1e-45F;
    const std::vector<float> expected = cutPlainly(music, 4096, 512, 44100.0F);
    for (const auto form : formsOfThisMachine()) {
        const FormScope scope(form);
        const std::vector<float> got = cut(music, 44100.0F, 1, 0);
        EXPECT_EQ(std::memcmp(got.data(), expected.data(), sizeof(float) * got.size()), 0)
            << nameOf(form);
    }
}

// Rounded down, the sum of a zero and a negative zero is negative: the one mode that shows the
// signs of silent bins.
TEST_F(CutBeatsTest, SilentBinsKeepTheSignsOfTheirZeros) {
    std::vector<float> in = whiteNoise(9000, 1000.0, 5);
    std::fill(in.begin(), in.begin() + 5000, 0.0F);
    for (const int mode : {FE_DOWNWARD, FE_UPWARD, FE_TONEAREST}) {
        std::fesetround(mode);
        const std::vector<float> got = cut(in, 44100.0F, 1, 0);
        const std::vector<float> expected = cutPlainly(in, 4096, 512, 44100.0F);
        EXPECT_EQ(std::memcmp(got.data(), expected.data(), sizeof(float) * got.size()), 0) << mode;
    }
}

// Frames of 32 and 16 have 16 and 8 bins in the half, fewer than the bass limit covers; 8 has no
// bin to gate.
TEST_F(CutBeatsTest, FramesWithFewerThanTwentyBinsStayInsideTheirSpectrum) {
    const std::vector<float> noise = whiteNoise(500, 1000.0, 4);
    EXPECT_EQ(cut(noise, 44100.0F, 128, 0), cutPlainly(noise, 32, 4, 44100.0F));
    EXPECT_EQ(cut(noise, 44100.0F, 256, 0), cutPlainly(noise, 16, 2, 44100.0F));
    EXPECT_EQ(cut(noise, 44100.0F, 512, 0), cutPlainly(noise, 8, 1, 44100.0F));
}

// The bass envelope of a negative rate is negative and lies below silence.
TEST_F(CutBeatsTest, ANegativeRateGivesSilentBassBinsTheirOwnPhase) {
    const std::vector<float> noise = whiteNoise(12000, 1000.0, 1);
    EXPECT_EQ(cut(noise, -44100.0F, 2, 0), cutPlainly(noise, 2048, 256, -44100.0F));
}

TEST_F(CutBeatsTest, WritesNothingAfterTheLastFrame) {
    EXPECT_EQ(writtenBy(20000, 44100.0F, 1, 0), lastFrameEnd(20000, 4096, 512));
    EXPECT_EQ(lastFrameEnd(20000, 4096, 512), 19456);
}

// The hop shows in where the writing ends.
TEST_F(CutBeatsTest, ModesSelectTheHopByLength) {
    const int n = 20000;
    const float rateOfShort = 44100.0F;
    const float rateOfLong = 600.0F;  // 33 s
    EXPECT_EQ(writtenBy(n, rateOfLong, 1, 1), lastFrameEnd(n, 4096, 1024));
    EXPECT_EQ(writtenBy(n, rateOfLong, 1, 2), lastFrameEnd(n, 4096, 1488));
    EXPECT_EQ(writtenBy(n, rateOfLong, 1, 3), lastFrameEnd(n, 4096, 1720));
    EXPECT_EQ(writtenBy(n, rateOfLong, 1, 4), lastFrameEnd(n, 4096, 2304));
    EXPECT_EQ(writtenBy(n, rateOfShort, 1, 2), lastFrameEnd(n, 4096, 1128));
    EXPECT_EQ(writtenBy(n, rateOfShort, 1, 3), lastFrameEnd(n, 4096, 1184));
    EXPECT_EQ(writtenBy(n, rateOfShort, 1, 4), lastFrameEnd(n, 4096, 1464));
    for (const int mode : {0, 5, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(writtenBy(n, rateOfLong, 1, mode), lastFrameEnd(n, 4096, 512)) << mode;
        EXPECT_EQ(writtenBy(n, rateOfShort, 1, mode), lastFrameEnd(n, 4096, 512)) << mode;
    }
}

TEST_F(CutBeatsTest, ModeOneTakesTheDefaultHopBelowThirtySeconds) {
    const std::vector<float> noise = whiteNoise(20000, 1000.0, 4);
    EXPECT_EQ(cut(noise, 44100.0F, 1, 1), cut(noise, 44100.0F, 1, 0));
    EXPECT_NE(cut(noise, 600.0F, 1, 1), cut(noise, 600.0F, 1, 0));
}

// Exactly 30 s is long: 18,000 samples at 600 Hz.
TEST_F(CutBeatsTest, ThirtySecondsSharpAreLong) {
    EXPECT_EQ(writtenBy(18000, 600.0F, 1, 4), lastFrameEnd(18000, 4096, 2304));
    EXPECT_EQ(writtenBy(17999, 600.0F, 1, 4), lastFrameEnd(17999, 4096, 1464));
}

TEST_F(CutBeatsTest, DivisionShortensFrameAndHop) {
    EXPECT_EQ(writtenBy(5000, 44100.0F, 4, 0), lastFrameEnd(5000, 1024, 128));
    EXPECT_EQ(writtenBy(5000, 44100.0F, 4, 2), lastFrameEnd(5000, 1024, 282));
    EXPECT_EQ(writtenBy(100, 44100.0F, 512, 0), lastFrameEnd(100, 8, 1));
    // 2304 / 2048 leaves a hop of 1 sample for frames of 2.
    EXPECT_EQ(writtenBy(100, 1.0F, 2048, 4), lastFrameEnd(100, 2, 1));
}

TEST_F(CutBeatsTest, WritesNothingWithoutAFrame) {
    const std::vector<float> noise = whiteNoise(4096 + 511, 1000.0, 4);
    EXPECT_THAT(cut(noise, 44100.0F, 1, 0), Each(kUntouched));
    EXPECT_THAT(cut({noise.begin(), noise.begin() + 4095}, 44100.0F, 1, 0), Each(kUntouched));
    std::vector<float> in = noise;
    std::vector<float> out(in.size(), kUntouched);
    for (const int n : {0, -1, INT_MIN}) CutBeats(out.data(), in.data(), n, 44100.0F, 1, 0);
    EXPECT_THAT(out, Each(kUntouched));
    EXPECT_EQ(writtenBy(4096 + 512, 44100.0F, 1, 0), 4096);
}

TEST_F(CutBeatsTest, WritesNothingForADivisionWithoutMeaning) {
    const std::vector<float> noise = whiteNoise(8192, 1000.0, 4);
    for (const int div : {0, -1, INT_MIN})
        EXPECT_THAT(cut(noise, 44100.0F, div, 0), Each(kUntouched)) << div;
    // Frames of 1365 and 585 samples cannot be transformed.
    for (const int div : {3, 7}) EXPECT_THAT(cut(noise, 44100.0F, div, 0), Each(kUntouched)) << div;
    // Frames of 4 would have a hop of half a sample; 5000 leaves no frame at all.
    for (const int div : {1024, 5000, INT_MAX})
        EXPECT_THAT(cut(noise, 44100.0F, div, 0), Each(kUntouched)) << div;
}

TEST_F(CutBeatsTest, WritesNothingForNullArrays) {
    std::vector<float> samples(8192, 1.0F);
    std::vector<float> out(8192, kUntouched);
    CutBeats(out.data(), nullptr, 8192, 44100.0F, 1, 0);
    CutBeats(nullptr, samples.data(), 8192, 44100.0F, 1, 0);
    EXPECT_THAT(out, Each(kUntouched));
}

TEST_F(CutBeatsTest, MayWriteOverItsInput) {
    std::vector<float> samples = whiteNoise(12000, 1000.0, 4);
    std::vector<float> apart = samples;
    const std::vector<float> expected = cut(apart, 44100.0F, 1, 0);
    const auto end = static_cast<std::ptrdiff_t>(lastFrameEnd(12000, 4096, 512));
    CutBeats(samples.data(), samples.data(), 12000, 44100.0F, 1, 0);
    EXPECT_EQ(std::vector<float>(samples.begin(), samples.begin() + end),
              std::vector<float>(expected.begin(), expected.begin() + end));
    EXPECT_EQ(samples.back(), apart.back());
}

// A tone in the middle of bin 93 fills three bins of each frame and stays: eight squared windows,
// weighted by 2.6666667 / 8 each, add up to 1. 44,100 × 93 / 4096 = 1001.29 Hz.
TEST_F(CutBeatsTest, SteadyToneComesBackAtItsOwnLevel) {
    const std::vector<float> tone = sine(30000, 44100.0 * 93.0 / 4096.0, 44100, 10000.0);
    const std::vector<float> out = cut(tone, 44100.0F, 1, 0);
    for (std::size_t i = 8000; i < 20000; ++i) ASSERT_NEAR(out[i], tone[i], 60.0F) << i;
}

TEST_F(CutBeatsTest, SilenceStaysSilent) {
    const std::vector<float> out = cut(std::vector<float>(20000, 0.0F), 44100.0F, 1, 0);
    EXPECT_THAT(std::vector<float>(out.begin(), out.begin() + 19456), Each(0.0F));
}

TEST_F(CutBeatsTest, AbsurdSamplesAndRatesDoNoHarm) {
    for (const float absurd : {std::nanf(""), HUGE_VALF, 1e38F}) {
        std::vector<float> in = whiteNoise(20000, 1000.0, 4);
        in[9000] = absurd;
        // Frames that end before the absurd sample, and the part of out that only they reach, are
        // as ever.
        const std::vector<float> clean = cut(whiteNoise(20000, 1000.0, 4), 44100.0F, 1, 0);
        const std::vector<float> out = cut(in, 44100.0F, 1, 0);
        EXPECT_TRUE(std::equal(out.begin(), out.begin() + 4900, clean.begin()));
    }
    const std::vector<float> noise = whiteNoise(20000, 1000.0, 4);
    for (const float rate : {0.0F, -44100.0F, std::nanf(""), HUGE_VALF, -HUGE_VALF})
        EXPECT_NE(cut(noise, rate, 1, 0)[0], kUntouched);
}

/** Six seconds in which only the given instruments play. */
std::vector<float> soloOf(InstrumentLevels levels) {
    TrackPlan plan;
    plan.lengthFrames = 6 * 44100;
    plan.levels = levels;
    plan.progression = {0};
    return TrackSynth(plan).renderAll().left;
}

double shareLeft(const std::vector<float>& before) {
    const std::vector<float> after = cut(before, 44100.0F, 1, 0);
    return energyOf(after, 44100, 5 * 44100) / energyOf(before, 44100, 5 * 44100);
}

TEST_F(CutBeatsTest, ASustainedChordStaysAndDrumHitsGo) {
    const double chord =
        shareLeft(soloOf({.kick = 0, .snare = 0, .hats = 0, .bass = 0, .chords = 1.0}));
    const double kick =
        shareLeft(soloOf({.kick = 1.0, .snare = 0, .hats = 0, .bass = 0, .chords = 0}));
    const double snare =
        shareLeft(soloOf({.kick = 0, .snare = 1.0, .hats = 0, .bass = 0, .chords = 0}));
    const double hats =
        shareLeft(soloOf({.kick = 0, .snare = 0, .hats = 1.0, .bass = 0, .chords = 0}));
    RecordProperty("chord", std::to_string(chord));
    RecordProperty("kick", std::to_string(kick));
    RecordProperty("snare", std::to_string(snare));
    RecordProperty("hats", std::to_string(hats));
    EXPECT_GT(chord, 0.8);
    EXPECT_LT(kick, 0.2);
    EXPECT_LT(snare, 0.2);
    EXPECT_LT(hats, 0.2);
}

}  // namespace
}  // namespace beatatlas::test
