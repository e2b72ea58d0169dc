// SPDX-License-Identifier: MIT
#include "dsp/SecondOrderSection.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/TestNoise.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::SecondOrderSection;

class SecondOrderSectionTest : public beatatlas::test::RoundTowardZero {
protected:
    void SetUp() override {
        RoundTowardZero::SetUp();
        // A tenth and a fiftieth of a radian per sample.
        first.designHighPass(std::cos(0.1), std::sin(0.1));
        second.designLowPass(std::cos(0.02), std::sin(0.02));
        for (float sample : beatatlas::test::whiteNoise(700, 9))
            signal.push_back(static_cast<double>(sample) * 32768.0);
    }
    SecondOrderSection first;
    SecondOrderSection second;
    std::vector<double> signal;
};

std::vector<std::uint64_t> bitsOf(const std::vector<double>& values) {
    std::vector<std::uint64_t> bits;
    for (double v : values) bits.push_back(std::bit_cast<std::uint64_t>(v));
    return bits;
}

TEST_F(SecondOrderSectionTest, AStepIsABlockOfOne) {
    SecondOrderSection stepped = first;
    for (double x : signal) {
        double expected = 0.0;
        first.operate(&x, &expected, 1);
        ASSERT_EQ(stepped.step(x), expected);
    }
}

// The oracle: one section over the whole signal, the magnitudes, the other section over them.
TEST_F(SecondOrderSectionTest, TwoInTurnGiveWhatOneAfterTheOtherGives) {
    SecondOrderSection a = first;
    SecondOrderSection b = second;
    const int length = static_cast<int>(signal.size());
    std::vector<double> between(signal.size());
    std::vector<double> expected(signal.size());
    a.operate(signal.data(), between.data(), length);
    for (double& v : between) v = std::fabs(v);
    b.operate(between.data(), expected.data(), length);

    for (int block : {1, 2, 3, 64, 699, 700}) {
        SecondOrderSection inTurnA = first;
        SecondOrderSection inTurnB = second;
        std::vector<double> got(signal.size());
        for (int at = 0; at < length; at += block)
            operateInTurn(
                inTurnA, [](double x) { return std::fabs(x); }, inTurnB,
                [from = signal.data() + at](int n) { return from[n]; },
                [to = got.data() + at](int n, double y) { to[n] = y; },
                std::min(block, length - at));
        EXPECT_EQ(bitsOf(got), bitsOf(expected)) << block;
        EXPECT_EQ(inTurnA.y2, a.y2);
        EXPECT_EQ(inTurnB.x2, b.x2);
    }
}

// A section that rests may be left out of the computation; the next burst must find it as if it had
// not been.
TEST_F(SecondOrderSectionTest, SectionsComeToRestInSilenceAndWakeUnchanged) {
    const auto magnitude = [](double x) { return std::fabs(x); };
    const auto isNegligible = [](double x) { return std::fabs(x) < 1e-300; };
    std::vector<double> in(120000, 0.0);
    std::copy(signal.begin(), signal.end(), in.begin());
    std::copy(signal.begin(), signal.end(), in.end() - 700);
    SecondOrderSection a = first;
    SecondOrderSection b = second;
    SecondOrderSection alone = first;
    std::vector<double> expectedAlone;
    for (double x : in) expectedAlone.push_back(alone.step(x));
    std::vector<double> expected;
    for (double x : in) expected.push_back(b.step(std::fabs(a.step(x))));

    for (int block : {64, 640}) {
        SecondOrderSection inTurnA = first;
        SecondOrderSection inTurnB = second;
        SecondOrderSection blocks = first;
        std::vector<double> got(in.size());
        std::vector<double> gotAlone(in.size());
        int blocksAtRest = 0;
        for (int at = 0; at < static_cast<int>(in.size()); at += block) {
            if (inTurnA.restsAt(0.0) && inTurnB.restsAt(magnitude(inTurnA.y1))) ++blocksAtRest;
            const int count = std::min(block, static_cast<int>(in.size()) - at);
            operateInTurn(
                inTurnA, magnitude, inTurnB, [from = in.data() + at](int n) { return from[n]; },
                [to = got.data() + at](int n, double y) { to[n] = y; }, count);
            blocks.operate(in.data() + at, gotAlone.data() + at, count);
        }
        EXPECT_EQ(bitsOf(got), bitsOf(expected)) << block;
        EXPECT_EQ(bitsOf(gotAlone), bitsOf(expectedAlone)) << block;
        EXPECT_GT(blocksAtRest * block, 20000);
        EXPECT_PRED1(isNegligible, got[in.size() - 701]);
    }
}

TEST_F(SecondOrderSectionTest, AnEmptyBlockInTurnDoesNothing) {
    for (int n : {0, -1})
        operateInTurn(
            first, [](double x) { return x; }, second, [](int) { return 1.0; },
            [](int, double) { FAIL(); }, n);
    EXPECT_EQ(first.x1, 0.0);
    EXPECT_EQ(second.y1, 0.0);
}

}  // namespace
