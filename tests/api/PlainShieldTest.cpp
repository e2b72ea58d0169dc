// SPDX-License-Identifier: MIT
// The plain interface from C++: a whole analysis, create calls that the host's memory cannot satisfy,
// and a thread that is cancelled within a call.
#include <cfenv>
#include <new>
#include <vector>

#include <pthread.h>

#include <gtest/gtest.h>

#include "beatatlas/beatatlas.h"
#include "support/Allocations.h"

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

// Through the shared library, as a host's own allocator sees it. MemoryShortageTest refuses
// everything else as well.
TEST(PlainInterfaceTest, ACreateCallThatRunsOutOfMemoryGivesAnInertSession) {
    using beatatlas::test::AllocationsFailAfter;
    const int mode = std::fegetround();
    std::vector<float> samples(1000, 1000.0F);
    const long before = beatatlas::test::liveBlocks();
    long granted = 1;  // the session object itself
    for (bool wasRefused = true; wasRefused; ++granted) {
        void* session = nullptr;
        {
            const AllocationsFailAfter shortage(granted);
            ASSERT_NO_THROW(session = BA_CreateConst48k(1000, 32, true, true, false));
            wasRefused = shortage.refusals() > 0;
        }
        BA_SetSample(session, samples.data(), samples.data(), 1000);
        EXPECT_EQ(BA_Analyzed(session), !wasRefused);
        EXPECT_EQ(BA_GetZoomWave(session, nullptr), wasRefused ? 0 : 4);
        BA_Release(session);
        EXPECT_EQ(beatatlas::test::liveBlocks(), before);
    }
    EXPECT_GT(granted, 20);
    std::fesetround(mode);
}

// Every fourth call sleeps, which is where a cancelled thread ends.
TEST(PlainInterfaceTest, ACancelledThreadEndsInsideItsCallAndLeavesTheSessionReleasable) {
    void* session = BA_CreateConst48k(48000, 32, true, true, false);
    const auto feed = [](void* fed) -> void* {
        std::vector<float> samples(1000, 1000.0F);
        pthread_cancel(pthread_self());
        for (int call = 0; call < 4; ++call)
            BA_SetSample(fed, samples.data(), samples.data(), 1000);
        return nullptr;
    };
    const int mode = std::fegetround();
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, nullptr, feed, session), 0);
    void* result = nullptr;
    ASSERT_EQ(pthread_join(thread, &result), 0);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    EXPECT_FALSE(BA_Analyzed(session));
    BA_Release(session);
    std::fesetround(mode);
}

// The one exception that crosses: there is no session yet that could be inert.
TEST(PlainInterfaceTest, WithoutMemoryForTheSessionItselfCreateThrows) {
    const beatatlas::test::AllocationsFailAfter shortage(0);
    EXPECT_THROW(BA_CreateConst48k(1000, 32, true, true, false), std::bad_alloc);
}

}  // namespace
