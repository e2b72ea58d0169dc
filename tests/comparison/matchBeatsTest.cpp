// SPDX-License-Identifier: MIT
#include "comparison/matchBeats.h"

#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace comparison {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Times evenly(std::size_t count, double spacing, double from) {
    Times times;
    for (std::size_t i = 0; i < count; ++i)
        times.push_back(from + spacing * static_cast<double>(i));
    return times;
}

TEST(MatchBeats, PairsEachBeatOnce) {
    EXPECT_EQ(matchedBeats({1.0, 1.01, 1.02}, {1.0}, 0.07), 1U);
    EXPECT_EQ(matchedBeats({1.0, 1.1}, {1.05, 1.06}, 0.07), 2U);
    EXPECT_EQ(matchedBeats({1.0, 2.0}, {1.08, 1.92}, 0.07), 0U);
}

TEST(MatchBeats, CountsTheEdgeOfTheWindow) {
    EXPECT_EQ(matchedBeats({1.0}, {1.25}, 0.25), 1U);
    EXPECT_EQ(matchedBeats({1.25}, {1.0}, 0.25), 1U);
    EXPECT_EQ(matchedBeats({1.0}, {1.2500001}, 0.25), 0U);
}

/** Tries every choice of partners. */
std::size_t mostPairs(const Times& one, std::size_t at, Times other, double window) {
    if (at == one.size()) return 0;
    std::size_t most = mostPairs(one, at + 1, other, window);
    for (std::size_t i = 0; i < other.size(); ++i) {
        if (std::abs(other[i] - one[at]) > window) continue;
        Times rest = other;
        rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(i));
        most = std::max(most, 1 + mostPairs(one, at + 1, rest, window));
    }
    return most;
}

TEST(MatchBeats, FindsAsManyPairsAsThereCanBe) {
    std::mt19937 random(1);
    for (int trial = 0; trial < 300; ++trial) {
        const auto drawn = [&] {
            Times times;
            for (unsigned count = random() % 7; count > 0; --count)
                times.push_back(static_cast<double>(random() % 64) / 64.0);
            std::sort(times.begin(), times.end());
            return times;
        };
        const Times one = drawn();
        const Times other = drawn();
        EXPECT_EQ(matchedBeats(one, other, 0.125), mostPairs(one, 0, other, 0.125)) << trial;
    }
}

TEST(MatchBeats, MeasuresPairsAmongAllBeats) {
    EXPECT_DOUBLE_EQ(fMeasure(evenly(10, 0.5, 0.0), evenly(10, 0.5, 0.05), 0.07), 1.0);
    EXPECT_DOUBLE_EQ(fMeasure(evenly(10, 0.5, 0.0), evenly(10, 0.5, 0.05), 0.02), 0.0);
    // Ten pairs of 10 and 20 beats.
    EXPECT_DOUBLE_EQ(fMeasure(evenly(10, 0.5, 0.0), evenly(20, 0.25, 0.0), 0.07), 2.0 / 3.0);
    EXPECT_EQ(fMeasure({}, {1.0}, 0.07), 0.0);
    EXPECT_EQ(fMeasure({}, {}, 0.07), 0.0);
}

TEST(MatchBeats, ReadsBeatsTwiceAndHalfAsOftenAndBetween) {
    const Times beats = {1.0, 2.0, 4.0};
    EXPECT_THAT(doubled(beats), ElementsAre(1.0, 1.5, 2.0, 3.0, 4.0));
    EXPECT_THAT(shifted(beats), ElementsAre(1.5, 3.0));
    EXPECT_THAT(everyOther(beats, 0), ElementsAre(1.0, 4.0));
    EXPECT_THAT(everyOther(beats, 1), ElementsAre(2.0));
    EXPECT_THAT(doubled({}), IsEmpty());
    EXPECT_THAT(doubled({3.0}), ElementsAre(3.0));
    EXPECT_THAT(shifted({3.0}), IsEmpty());
}

TEST(MatchBeats, TellsByHowMuchBeatsAreLateInTheMiddle) {
    EXPECT_NEAR(*medianLateness(evenly(9, 0.5, 0.03), evenly(9, 0.5, 0.0), 0.07), 0.03, 1e-12);
    EXPECT_NEAR(*medianLateness(evenly(9, 0.5, 0.0), evenly(9, 0.5, 0.03), 0.07), -0.03, 1e-12);
    EXPECT_NEAR(*medianLateness({1.00, 2.01, 3.04, 4.06}, {1.0, 2.0, 3.0, 4.0}, 0.07), 0.025,
                1e-12);
    EXPECT_EQ(medianLateness({1.0}, {2.0}, 0.07), std::nullopt);
    EXPECT_EQ(medianLateness({}, {2.0}, 0.07), std::nullopt);
    EXPECT_EQ(medianLateness({2.0}, {}, 0.07), std::nullopt);
}

}  // namespace
}  // namespace comparison
