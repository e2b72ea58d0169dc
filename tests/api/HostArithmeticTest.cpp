// SPDX-License-Identifier: MIT
// What a session does to the arithmetic of the thread that drives it, and that the guard shown in
// beatatlas.h cures it.
#include <array>
#include <cfenv>
#include <cstdio>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "beatatlas/beatatlas.h"

#include <fenv.h>

namespace {

// As beatatlas.h shows them; a check of the layout compares the two.
static int enterLibrary(void) {
    return fegetround();
}
static void leaveLibrary(int mode) {
    fesetround(mode);
}

constexpr int kFrames = 4410;

/** What a host computes for itself: a rounded quotient, a printed number. Volatile, so that it is
 *  computed here and now and not by the compiler. */
struct HostsOwn {
    double quotient = 0.0;
    std::string printed;

    bool operator==(const HostsOwn& other) const = default;
};

HostsOwn computedNow() {
    volatile double five = 5.0;
    volatile double three = 3.0;
    volatile double shown = 0.125;
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.2f %.1f", shown + 0.25, 9.96 + shown - 0.125);
    return {five / three, text.data()};
}

void feedWhole(void* session) {
    std::array<float, kFrames> silence{};
    BA_SetSample(session, silence.data(), silence.data(), kFrames);
}

void* createdSession() {
    return BA_CreateConst44k(kFrames, 32, true, true, false);
}

/** Runs on a thread of its own, whose rounding mode nobody else minds. */
void onFreshThread(void (*work)()) {
    std::thread(work).join();
}

TEST(HostArithmeticTest, ASessionLeavesTheHostsQuotientsAndPrintedNumbersCutOff) {
    onFreshThread([] {
        const HostsOwn before = computedNow();
        void* session = createdSession();
        feedWhole(session);
        const HostsOwn after = computedNow();
        BA_Release(session);
        EXPECT_EQ(before.quotient, 0x1.aaaaaaaaaaaabp+0);
        EXPECT_EQ(after.quotient, 0x1.aaaaaaaaaaaaap+0);
        EXPECT_EQ(before.printed, "0.38 10.0");
        EXPECT_EQ(after.printed, "0.37 9.9");
    });
}

TEST(HostArithmeticTest, TheGuardOfTheHeaderKeepsTheHostsArithmetic) {
    onFreshThread([] {
        const HostsOwn before = computedNow();
        int mode = enterLibrary();
        void* session = createdSession();
        leaveLibrary(mode);
        EXPECT_EQ(computedNow(), before);
        mode = enterLibrary();
        feedWhole(session);
        leaveLibrary(mode);
        EXPECT_EQ(computedNow(), before);
        EXPECT_TRUE(BA_Analyzed(session));
        BA_Release(session);
        EXPECT_EQ(computedNow(), before);
    });
}

TEST(HostArithmeticTest, GettersAndReleaseLeaveTheArithmeticAsTheyFindIt) {
    onFreshThread([] {
        void* session = createdSession();
        feedWhole(session);
        fesetround(FE_TONEAREST);
        const HostsOwn before = computedNow();
        std::array<BA_WaveInfo, 400> wave{};
        BA_GetLoudWave(session, wave.data(), 0);
        BA_GetBpm(session);
        BA_GetBeatNum(session);
        BA_GetZoomWave(session, nullptr);
        BA_Release(session);
        EXPECT_EQ(computedNow(), before);
    });
}

TEST(HostArithmeticTest, AThreadStartedByTheHostAfterwardsInheritsTheMode) {
    onFreshThread([] {
        void* session = createdSession();
        int inherited = FE_TONEAREST;
        std::thread([&] { inherited = fegetround(); }).join();
        BA_Release(session);
        EXPECT_EQ(inherited, FE_TOWARDZERO);
    });
}

TEST(HostArithmeticTest, OtherThreadsOfTheHostKeepTheirMode) {
    ASSERT_EQ(fegetround(), FE_TONEAREST);
    onFreshThread([] {
        void* session = createdSession();
        feedWhole(session);
        BA_Release(session);
    });
    EXPECT_EQ(fegetround(), FE_TONEAREST);
}

}  // namespace
