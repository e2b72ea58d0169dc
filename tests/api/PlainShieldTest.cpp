// SPDX-License-Identifier: MIT
// The plain interface from C++: a whole analysis, and create calls the host's memory cannot satisfy.
#include <cfenv>
#include <vector>

#include <gtest/gtest.h>

#include "beatatlas/beatatlas.h"

namespace {

TEST(PlainInterfaceTest, RunsAWholeAnalysis) {
    const int mode = std::fegetround();
    std::vector<float> left(48000, 1000.0F);
    std::vector<float> right(48000, -1000.0F);
    void* session = BA_CreateConst48k(48000, 32, true, true, true);
    BA_SetSamplePre(session, left.data(), right.data(), 48000);
    EXPECT_FALSE(BA_Analyzed(session));
    BA_SetSample(session, left.data(), right.data(), 48000);
    EXPECT_TRUE(BA_Analyzed(session));
    EXPECT_EQ(BA_GetZoomWave(session, nullptr), 150);
    BA_Release(session);
    std::fesetround(mode);
}

}  // namespace
