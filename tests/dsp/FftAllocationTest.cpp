// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "beatatlas/dsp.h"
#include "support/Allocations.h"

namespace {

using beatatlas::test::CallocFailsAfter;

TEST(FftAllocationTest, ARefusedTableIsReportedAndTheArraysStay) {
    for (int refused : {0, 1}) {
        std::vector<float> re{1.0F, 2.0F, 3.0F, 4.0F};
        std::vector<float> im{5.0F, 6.0F, 7.0F, 8.0F};
        ::testing::internal::CaptureStderr();
        int result = 0;
        {
            const CallocFailsAfter shortage(refused);
            result = fft_less_normalize(4, re.data(), im.data());
        }
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), "malloc error\n");
        EXPECT_EQ(result, 1);
        EXPECT_THAT(re, ::testing::ElementsAre(1.0F, 2.0F, 3.0F, 4.0F));
        EXPECT_THAT(im, ::testing::ElementsAre(5.0F, 6.0F, 7.0F, 8.0F));
    }
}

TEST(FftAllocationTest, TwoTablesAreAllItAllocates) {
    std::vector<float> re(8, 1.0F);
    std::vector<float> im(8, 0.0F);
    const CallocFailsAfter shortage(2);
    EXPECT_EQ(fft_less_normalize(8, re.data(), im.data()), 0);
}

}  // namespace
