// SPDX-License-Identifier: MIT
// Linked with calloc wrapped, so that each of the transform's two tables can be refused in turn.
#include <cstddef>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "beatatlas/dsp.h"

namespace {

int callsUntilRefusal = -1;  // below 0: never refuse

}  // namespace

extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size) {
    if (callsUntilRefusal == 0) return nullptr;
    if (callsUntilRefusal > 0) --callsUntilRefusal;
    return __real_calloc(count, size);
}
}

namespace {

TEST(FftAllocationTest, ARefusedTableIsReportedAndTheArraysStay) {
    for (int refused : {0, 1}) {
        std::vector<float> re{1.0F, 2.0F, 3.0F, 4.0F};
        std::vector<float> im{5.0F, 6.0F, 7.0F, 8.0F};
        ::testing::internal::CaptureStderr();
        callsUntilRefusal = refused;
        const int result = fft_less_normalize(4, re.data(), im.data());
        callsUntilRefusal = -1;
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), "malloc error\n");
        EXPECT_EQ(result, 1);
        EXPECT_THAT(re, ::testing::ElementsAre(1.0F, 2.0F, 3.0F, 4.0F));
        EXPECT_THAT(im, ::testing::ElementsAre(5.0F, 6.0F, 7.0F, 8.0F));
    }
}

TEST(FftAllocationTest, TwoTablesAreAllItAllocates) {
    std::vector<float> re(8, 1.0F);
    std::vector<float> im(8, 0.0F);
    callsUntilRefusal = 2;
    const int result = fft_less_normalize(8, re.data(), im.data());
    callsUntilRefusal = -1;
    EXPECT_EQ(result, 0);
}

}  // namespace
