// SPDX-License-Identifier: MIT
#include "track/tempo/bars.h"

#include <vector>

#include <gtest/gtest.h>

#include "track/tempo/tempoSignals.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

constexpr double kSeconds = 48.0;
const std::vector<double> kBeats = evenTimes(0.5, 0.5, kSeconds);

Evidence barsOf(std::size_t perBar, std::size_t phase) {
    return evidenceOfBars(kBeats, kSeconds,
                          [=](std::size_t beat) { return beat % perBar == phase; });
}

TEST(Bars, BeginWhereChordsChangeAndTheBassIsStrong) {
    for (const std::size_t perBar : {3U, 4U, 5U}) {
        for (std::size_t phase = 0; phase < perBar; ++phase) {
            const BarReading best = judgeBars(barsOf(perBar, phase), kBeats, {}, {}).front();
            EXPECT_EQ(best.beats, static_cast<int>(perBar));
            EXPECT_EQ(best.phase, static_cast<int>(phase));
        }
    }
}

TEST(Bars, HaveTwelveReadingsWhoseSharesAddUp) {
    const std::vector<BarReading> readings = judgeBars(barsOf(4, 1), kBeats, {}, {});
    ASSERT_EQ(readings.size(), 12U);
    double shares = 0.0;
    for (const BarReading& reading : readings) shares += reading.share;
    EXPECT_NEAR(shares, 1.0, 1e-12);
}

// Three of four downbeats near beats 2, 6 and 10; the fourth lies between two beats and counts only
// in the divisor.
TEST(Bars, CountTheSessionsDownbeats) {
    const std::vector<double> votes = {kBeats[2] + 0.1, kBeats[6], kBeats[10] - 0.1,
                                       kBeats[14] + 0.2};
    for (const BarReading& reading : judgeBars(barsOf(4, 0), kBeats, votes, {})) {
        const double share = reading.features[static_cast<std::size_t>(BarFeature::simpleVotes)];
        if (reading.beats != 4) continue;
        EXPECT_NEAR(share, reading.phase == 2 ? 0.75 : 0.0, 1e-12);
    }
}

TEST(Bars, AreReadEvenWhereNothingSounds) {
    Evidence evidence = barsOf(4, 0);
    evidence.chroma.clear();
    evidence.onsets.strength.assign(evidence.onsets.strength.size(), {});
    for (const BarReading& reading : judgeBars(evidence, kBeats, {}, {}))
        EXPECT_TRUE(std::isfinite(reading.score));
}

}  // namespace
