// SPDX-License-Identifier: MIT
#include "envelope/WindowSum.h"

#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using WindowSumTest = RoundTowardZero;

/** Levels 0..32767 from a fixed generator. */
std::vector<std::int16_t> levels(std::size_t count) {
    std::vector<std::int16_t> values(count);
    std::uint32_t state = 99;
    for (std::int16_t& value : values) {
        state = state * 1664525U + 1013904223U;
        value = static_cast<std::int16_t>(state >> 17U);
    }
    return values;
}

/** The plain form: every level added to a double at once. */
class PlainWindowSum {
public:
    explicit PlainWindowSum(std::size_t width) : sums_(width) {}
    void add(const std::int16_t* window) {
        for (std::size_t k = 0; k < sums_.size(); ++k) sums_[k] += window[k];
    }
    WindowSum::Peak peak() const {
        WindowSum::Peak found;
        for (std::size_t k = 0; k < sums_.size(); ++k) {
            if (sums_[k] > found.value) found = {sums_[k], static_cast<int>(k)};
        }
        return found;
    }

private:
    std::vector<double> sums_;
};

TEST_F(WindowSumTest, AddsTheLevelsOfAllWindowsPlaceByPlace) {
    WindowSum sum;
    sum.create(3);
    const std::int16_t first[] = {1, 5, 2};
    const std::int16_t second[] = {9, 6, 3};
    sum.add(first);
    sum.add(second);
    const WindowSum::Peak peak = sum.findBeatPosition(3);
    EXPECT_EQ(peak.value, 11.0);
    EXPECT_EQ(peak.offset, 1);
}

TEST_F(WindowSumTest, GivesTheSumsOfThePlainForm) {
    const std::vector<std::int16_t> level = levels(50000);
    WindowSum sum;
    sum.create(1200);
    PlainWindowSum plain(1200);
    for (std::size_t at = 0; at + 1200 <= level.size(); at += 37) {
        sum.add(level.data() + at);
        plain.add(level.data() + at);
    }
    EXPECT_EQ(sum.findBeatPosition(1200).value, plain.peak().value);
    EXPECT_EQ(sum.findBeatPosition(1200).offset, plain.peak().offset);
}

// 200,000 full-scale windows: 6.55e9, three times what 32 bits hold.
TEST_F(WindowSumTest, SumsBeyond32BitsStayExact) {
    const std::vector<std::int16_t> loud(5, 32767);
    WindowSum sum;
    sum.create(5);
    for (int i = 0; i < 200000; ++i) sum.add(loud.data());
    EXPECT_EQ(sum.findBeatPosition(5).value, 200000.0 * 32767.0);
    EXPECT_EQ(sum.findBeatPosition(5).offset, 0);
}

TEST_F(WindowSumTest, OfEqualSumsTheFirstPlaceIsThePeak) {
    WindowSum sum;
    sum.create(4);
    const std::int16_t window[] = {1, 7, 7, 2};
    sum.add(window);
    EXPECT_EQ(sum.findBeatPosition(4).offset, 1);
}

TEST_F(WindowSumTest, SilencePeaksWithNothingAtTheFirstPlace) {
    WindowSum sum;
    sum.create(4);
    EXPECT_EQ(sum.findBeatPosition(4).value, 0.0);
    EXPECT_EQ(sum.findBeatPosition(4).offset, 0);
}

TEST_F(WindowSumTest, ClearForgetsEverything) {
    WindowSum sum;
    sum.create(2);
    const std::int16_t window[] = {1, 7};
    sum.add(window);
    sum.findBeatPosition(2);
    sum.add(window);
    sum.clear();
    EXPECT_EQ(sum.findBeatPosition(2).value, 0.0);
}

TEST_F(WindowSumTest, SearchesOnlyWithinItsWidth) {
    WindowSum sum;
    sum.create(3);
    const std::int16_t window[] = {1, 5, 9};
    sum.add(window);
    EXPECT_EQ(sum.findBeatPosition(2).value, 5.0);
    for (const int count : {0, -1, 4}) {
        EXPECT_EQ(sum.findBeatPosition(count).value, 0.0);
        EXPECT_EQ(sum.findBeatPosition(count).offset, 0);
    }
}

TEST_F(WindowSumTest, AnEmptyOneTakesNothing) {
    for (const int width : {0, -5}) {
        WindowSum sum;
        sum.create(width);
        sum.add(nullptr);
        EXPECT_EQ(sum.width(), 0);
        EXPECT_EQ(sum.findBeatPosition(1).value, 0.0);
    }
}

}  // namespace
}  // namespace beatatlas::test
