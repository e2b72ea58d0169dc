// SPDX-License-Identifier: MIT
#include "key/SemitoneBands.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace {

using beatatlas::SemitoneBands;

constexpr int kBins = 2048;

/** The frequency so many semitones above A2, in Hz. */
double semitones(double above) {
    return 110.0 * std::pow(2.0, above / 12.0);
}

class SemitoneBandsTest : public beatatlas::test::RoundTowardZero {
protected:
    void layFor(int rate) { bands.create(kBins, (rate / 4) / 4096.0); }

    /** The bands that see a spectrum of one bin, of length 5. */
    std::vector<int> bandsSeeing(int bin) const {
        std::vector<double> power(kBins, 0.0);
        power[static_cast<std::size_t>(bin)] = 25.0;
        std::vector<double> magnitudes(static_cast<std::size_t>(bands.count()), -1.0);
        bands.measure(power.data(), magnitudes.data());
        std::vector<int> seeing;
        for (int b = 0; b < bands.count(); ++b) {
            const double magnitude = magnitudes[static_cast<std::size_t>(b)];
            if (magnitude == 5.0)
                seeing.push_back(b);
            else
                EXPECT_EQ(magnitude, 0.0);
        }
        return seeing;
    }
    SemitoneBands bands;
};

// The last band's lower edge is 110 · 2^(89.5/12) = 19345 Hz; the next would be 20496.
TEST_F(SemitoneBandsTest, ThereAreNinetyOneUpToTwentyThousandHertz) {
    layFor(44100);
    EXPECT_EQ(bands.count(), 91);
}

// Bands are centred on the semitones from A2 and reach a quarter tone to both sides: from the lower
// edge of the first every bin is in exactly one.
TEST_F(SemitoneBandsTest, EveryBinIsSeenByTheBandAroundIt) {
    for (int rate : {44100, 48000, 4000}) {
        layFor(rate);
        for (int bin = 0; bin < kBins; ++bin) {
            const double hz = bin * ((rate / 4) / 4096.0);
            std::vector<int> expected;
            for (int b = 0; b < bands.count(); ++b)
                if (semitones(b - 0.5) <= hz && hz < semitones(b + 0.5)) expected.push_back(b);
            ASSERT_LE(expected.size(), 1U);
            ASSERT_EQ(bandsSeeing(bin), expected) << rate << " bin " << bin;
        }
    }
}

// At 44,100 bins are 2.69 Hz apart and the highest lies at 5509 Hz, in band 68.
TEST_F(SemitoneBandsTest, BandsAboveTheSpectrumAreZero) {
    layFor(44100);
    EXPECT_EQ(bandsSeeing(kBins - 1), std::vector<int>{68});
}

// 48000 / 4096 = 11.7 Hz: no bin falls into 106.9 … 113.2 Hz, the next band gets the bin at 117.2.
TEST_F(SemitoneBandsTest, ABandWithoutABinIsZeroAndDoesNotStopTheOthers) {
    layFor(192000);
    EXPECT_EQ(bandsSeeing(9), std::vector<int>{});
    EXPECT_EQ(bandsSeeing(10), std::vector<int>{1});
    EXPECT_EQ(bandsSeeing(100), std::vector<int>{41}) << "1171.9 Hz: 12 log2(1171.9 / 110) = 40.96";
}

TEST_F(SemitoneBandsTest, TheLargestOfSeveralBinsCounts) {
    layFor(44100);
    std::vector<double> power(kBins, 0.0);
    // Band 24 is centred on 440 Hz: 427.5 … 452.9, bins 159 … 168.
    power[159] = 4.0;
    power[163] = 49.0;
    power[168] = 36.0;
    power[158] = 2500.0;
    power[169] = 3600.0;
    std::vector<double> magnitudes(91);
    bands.measure(power.data(), magnitudes.data());
    EXPECT_EQ(magnitudes[23], 50.0);
    EXPECT_EQ(magnitudes[24], 7.0);
    EXPECT_EQ(magnitudes[25], 60.0);
}

TEST_F(SemitoneBandsTest, ARateWithoutASpectrumSeesNothing) {
    for (int rate : {3, 0, -44100}) {
        layFor(rate);
        EXPECT_EQ(bands.count(), 91);
        EXPECT_TRUE(bandsSeeing(100).empty());
    }
}

}  // namespace
