// SPDX-License-Identifier: MIT
#include "peakss/sensing/StepMeans.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/TestNoise.h"
#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"

namespace {

using peakss::StepMeans;

class StepMeansTest : public beatatlas::test::RoundTowardZero {};

// Oracle: one sum per step, from 0 and in order of time.
void expectStepsInOrderOfTime() {
    const std::vector<float> in = beatatlas::test::whiteNoise(3000, 8);
    for (const int length : {1, 3, 7, 8, 9, 16, 2999}) {
        std::vector<float> expected;
        float sum = 0.0F;
        for (std::size_t i = 0; i < in.size(); ++i) {
            sum += in[i];
            if ((i + 1) % static_cast<std::size_t>(length) != 0) continue;
            expected.push_back(sum / static_cast<float>(length));
            sum = 0.0F;
        }
        for (const int block : {1, 2, 7, 8, 63, 64, 65, 588, 640, 3000}) {
            StepMeans means{length, 0};
            std::vector<float> got(in.size() + 4, -1.0F);
            int steps = 0;
            for (int at = 0; at < 3000; at += block)
                steps += means.put(in.data() + at, std::min(block, 3000 - at),
                                   &got[static_cast<std::size_t>(steps)]);
            ASSERT_EQ(static_cast<std::size_t>(steps), expected.size());
            for (std::size_t i = 0; i < expected.size(); ++i)
                ASSERT_EQ(got[i], expected[i]) << length << ", " << block << ", " << i;
            EXPECT_EQ(means.sum, sum);
            EXPECT_EQ(means.open, 3000 % length);
            EXPECT_EQ(got[expected.size()], -1.0F);
        }
    }
}

TEST_F(StepMeansTest, EveryStepIsSummedInOrderOfTimeWhateverTheBlocks) {
    for (const auto form : beatatlas::test::formsOfThisMachine()) {
        SCOPED_TRACE(beatatlas::test::nameOf(form));
        const beatatlas::test::FormScope scope(form);
        expectStepsInOrderOfTime();
    }
}

TEST_F(StepMeansTest, AnOpenStepKeepsItsSumForTheNextCall) {
    StepMeans means{4, 3, 3.0F};
    const float samples[] = {5.0F, 1.0F};
    float mean = 0.0F;
    EXPECT_EQ(means.put(samples, 2, &mean), 1);
    EXPECT_EQ(mean, 2.0F);
    EXPECT_EQ(means.open, 1);
    EXPECT_EQ(means.sum, 1.0F);
}

}  // namespace
