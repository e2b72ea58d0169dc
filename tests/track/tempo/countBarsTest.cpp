// SPDX-License-Identifier: MIT
#include "track/tempo/countBars.h"

#include <vector>

#include <gtest/gtest.h>

#include "track/tempo/tempoSignals.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

/** So many beats at 120 BPM and then so many at another tempo. */
std::vector<double> beatsOfTwoTempi(std::size_t first, std::size_t second, double interval) {
    std::vector<double> beats;
    for (std::size_t k = 0; k < first; ++k) beats.push_back(0.5 * static_cast<double>(k));
    const double change = 0.5 * static_cast<double>(first);
    for (std::size_t k = 0; k < second; ++k)
        beats.push_back(change + interval * static_cast<double>(k));
    return beats;
}

std::vector<TempoStretch> stretchesAt(const std::vector<double>& beats,
                                      const std::vector<std::size_t>& starts) {
    std::vector<TempoStretch> stretches;
    for (std::size_t i = 0; i < starts.size(); ++i)
        stretches.push_back(
            {beats[starts[i]], i + 1 < starts.size() ? beats[starts[i + 1]] : beats.back(), 120.0});
    return stretches;
}

TEST(BarCounting, NumbersTheBeatsFromTheDownbeats) {
    const std::vector<double> beats = evenTimes(0.5, 0.5, 48.0);
    const Evidence evidence =
        evidenceOfBars(beats, 48.0, [](std::size_t beat) { return beat % 3 == 2; });
    const BarCount count = countBars(evidence, beats, findStretches(beats), {}, 0);
    EXPECT_EQ(count.beatsPerBar, 3);
    EXPECT_GT(count.share, 0.5);
    ASSERT_EQ(count.numbers.size(), beats.size());
    for (std::size_t k = 0; k < beats.size(); ++k)
        EXPECT_EQ(count.numbers[k], static_cast<int>((k + 1) % 3) + 1);
}

TEST(BarCounting, KeepsToAKnownLengthOfBars) {
    const std::vector<double> beats = evenTimes(0.5, 0.5, 48.0);
    const Evidence evidence =
        evidenceOfBars(beats, 48.0, [](std::size_t beat) { return beat % 3 == 2; });
    EXPECT_EQ(countBars(evidence, beats, findStretches(beats), {}, 4).beatsPerBar, 4);
}

// The bar before the change has three beats.
TEST(BarCounting, BeginsAnewWithALongStretchOfAnotherTempo) {
    const std::vector<double> beats = beatsOfTwoTempi(63, 64, 0.4);
    const Evidence evidence = evidenceOfBars(
        beats, 60.0, [](std::size_t beat) { return (beat < 63 ? beat : beat + 1) % 4 == 0; });
    const BarCount count = countBars(evidence, beats, stretchesAt(beats, {0, 63}), {}, 0);
    EXPECT_EQ(count.beatsPerBar, 4);
    EXPECT_EQ(count.numbers[60], 1);
    EXPECT_EQ(count.numbers[63], 1);
    EXPECT_EQ(count.numbers[64], 2);
    EXPECT_EQ(count.numbers[67], 1);
}

TEST(BarCounting, GoesOnThroughAChangeThatIsNoNewBar) {
    const std::vector<double> beats = beatsOfTwoTempi(62, 64, 0.4);
    const Evidence evidence =
        evidenceOfBars(beats, 60.0, [](std::size_t beat) { return beat % 4 == 1; });
    const BarCount count = countBars(evidence, beats, stretchesAt(beats, {0, 62}), {}, 0);
    for (std::size_t k = 0; k < beats.size(); ++k)
        EXPECT_EQ(count.numbers[k], static_cast<int>((k + 3) % 4) + 1);
}

// The same change, but after it no stretch is long enough to be judged on its own.
TEST(BarCounting, GoesOnThroughShortStretches) {
    const std::vector<double> beats = beatsOfTwoTempi(63, 64, 0.4);
    const Evidence evidence = evidenceOfBars(
        beats, 60.0, [](std::size_t beat) { return (beat < 63 ? beat : beat + 1) % 4 == 0; });
    const BarCount count =
        countBars(evidence, beats, stretchesAt(beats, {0, 63, 80, 100, 120}), {}, 4);
    for (std::size_t k = 1; k < beats.size(); ++k)
        EXPECT_EQ(count.numbers[k], count.numbers[k - 1] % 4 + 1);
}

}  // namespace
