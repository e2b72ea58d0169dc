// SPDX-License-Identifier: MIT
// Oracle: the rule written down frame by frame, PlainPreChecker.
#include "session/PreChecker.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/TestNoise.h"
#include "dsp/truncation.h"
#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"

namespace {

using namespace beatatlas;
using beatatlas::test::whiteNoise;

struct Figures {
    int count = 0;
    double sum = 0.0;
    double max = 0.0;
    bool operator==(const Figures&) const = default;
};

/** A sounding frame takes the quiet ones before it with it. */
struct PlainPreChecker {
    Figures loud;
    Figures quiet;

    void put(float left, float right) {
        const int a = std::abs(static_cast<int>(truncToInt16(left)));
        const int b = std::abs(static_cast<int>(truncToInt16(right)));
        const bool sounds = a >= 10 || b >= 10;
        if (sounds) {
            add(loud, quiet);
            quiet = {};
        }
        add(sounds ? loud : quiet, {1, static_cast<double>(a + b), std::max(a, b) * 1.0});
    }

private:
    static void add(Figures& to, const Figures& from) {
        to.count += from.count;
        to.sum += from.sum;
        to.max = std::max(to.max, from.max);
    }
};

Figures loudOf(const PreChecker& c) {
    return {c.loudCount(), c.loudSum(), c.loudMax()};
}

Figures quietOf(const PreChecker& c) {
    return {c.quietCount(), c.quietSum(), c.quietMax()};
}

class PreCheckerTest : public beatatlas::test::RoundTowardZero {};

/** Music, near-silence within it, single sounding frames, absurd samples and a quiet tail. */
std::vector<float> trackOfChannel(std::uint32_t seed) {
    std::vector<float> track = whiteNoise(12000, seed);
    for (std::size_t i = 0; i < track.size(); ++i) {
        const bool near = i < 500 || (i >= 2000 && i < 5500) || i >= 11111;
        track[i] *= near ? 9.99F : 32768.0F;
    }
    track[3000] = 10.0F;
    track[700] = std::numeric_limits<float>::quiet_NaN();
    track[701] = 1e38F;
    track[702] = -32768.0F;
    return track;
}

TEST_F(PreCheckerTest, GivesTheFiguresOfThePlainRuleInEveryFormAndBlockLength) {
    const std::vector<float> left = trackOfChannel(3);
    const std::vector<float> right = trackOfChannel(5);
    for (const VectorForm form : beatatlas::test::formsOfThisMachine()) {
        const beatatlas::test::FormScope scope(form);
        for (const std::size_t block : {1U, 2U, 3U, 587U, 588U, 589U, 640U, 1025U, 4096U, 12000U}) {
            PlainPreChecker plain;
            PreChecker checker;
            for (std::size_t at = 0; at < left.size(); at += block) {
                const std::size_t count = std::min(block, left.size() - at);
                for (std::size_t i = at; i < at + count; ++i) plain.put(left[i], right[i]);
                checker.putSample(left.data() + at, right.data() + at, static_cast<int>(count));
                ASSERT_EQ(loudOf(checker), plain.loud) << "blocks of " << block << " at " << at;
                ASSERT_EQ(quietOf(checker), plain.quiet) << "blocks of " << block << " at " << at;
            }
            ASSERT_GT(plain.quiet.count, 0);
        }
    }
}

// 10 in one channel sounds, 9 in both does not.
TEST_F(PreCheckerTest, OneChannelOfTenIsEnoughToSound) {
    PreChecker checker;
    const std::vector<float> left = {9.9F, -9.9F, 9.0F, 9.0F};
    const std::vector<float> right = {9.0F, 9.0F, -10.0F, 9.9F};
    checker.putSample(left.data(), right.data(), 4);
    EXPECT_EQ(loudOf(checker), (Figures{3, 18.0 + 18.0 + 19.0, 10.0}));
    EXPECT_EQ(quietOf(checker), (Figures{1, 18.0, 9.0}));
}

}  // namespace
