// SPDX-License-Identifier: MIT
// Every allocation of every utility is refused in turn: the refusal must reach the caller as
// std::bad_alloc. (That nothing is leaked on the way is for the address sanitizer to say.)
#include <algorithm>
#include <climits>
#include <functional>
#include <new>
#include <vector>

#include <gmock/gmock.h>

#include "beatatlas/utilities.h"
#include "support/Allocations.h"
#include "support/signals.h"

extern "C" {

/** An absurd request is to be refused under the address sanitizer too, not reported. */
const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
}

namespace beatatlas::test {
namespace {

using ::testing::Each;

constexpr float kUntouched = 12345.0F;

bool runsOutOfMemory(const std::function<void()>& call, long granted) {
    const AllocationsFailAfter limit(granted);
    try {
        call();
    } catch (const std::bad_alloc&) {
        return true;
    }
    return false;
}

/** How many allocations were refused before the call got through. */
long refusalsOf(const std::function<void()>& call) {
    long granted = 0;
    while (granted < 1000 && runsOutOfMemory(call, granted)) ++granted;
    return granted;
}

TEST(UtilityAllocationTest, ResamplerPassesARefusalOnAndWritesNothing) {
    std::vector<float> in = whiteNoise(200, 1000.0, 1);
    std::vector<float> out(10, kUntouched);
    const auto call = [&] { resample2(out.data(), 10, in.data(), 200, 1.0F, 10, 0); };
    EXPECT_TRUE(runsOutOfMemory(call, 0));
    EXPECT_THAT(out, Each(kUntouched));
    EXPECT_EQ(refusalsOf(call), 1);
    // A length no machine has memory for is refused as well, before a sample is read.
    EXPECT_THROW(resample2(out.data(), 10, in.data(), LONG_MAX, 1.0F, 10, 0), std::bad_alloc);
}

TEST(UtilityAllocationTest, BeatCutterPassesEveryRefusalOn) {
    std::vector<float> in = whiteNoise(9000, 1000.0, 1);
    std::vector<float> out(9000);
    const auto call = [&] { CutBeats(out.data(), in.data(), 9000, 44100.0F, 1, 0); };
    EXPECT_GT(refusalsOf(call), 8);
    // Nothing is written while the input is still being looked at: up to the spectrum's two halves,
    // the frames, the tables and the gate.
    std::fill(out.begin(), out.end(), kUntouched);
    EXPECT_TRUE(runsOutOfMemory(call, 8));
    EXPECT_THAT(out, Each(kUntouched));
}

TEST(UtilityAllocationTest, PitchDetectorPassesEveryRefusalOn) {
    std::vector<float> in = whiteNoise(9000, 1000.0, 1);
    const auto call = [&] { PitchDetect(in.data(), 9000, 4410.0F, 1, 3); };
    EXPECT_GT(refusalsOf(call), 8);
}

}  // namespace
}  // namespace beatatlas::test
