// SPDX-License-Identifier: MIT
#include "key/ChromaFolder.h"

#include <algorithm>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace {

using beatatlas::BandSpectrogram;
using beatatlas::Chroma;
using beatatlas::foldChroma;

constexpr int kBands = 91;
constexpr int kFrames = 20;

class ChromaFolderTest : public beatatlas::test::RoundTowardZero {
protected:
    void SetUp() override {
        RoundTowardZero::SetUp();
        spectrogram.create(kFrames, kBands);
    }
    void sound(int frame, int band, double magnitude) {
        std::vector<double> row(kBands, 0.0);
        row[static_cast<std::size_t>(band)] = magnitude;
        spectrogram.write(frame, row.data());
    }
    BandSpectrogram spectrogram;
};

// A sound at frame 10 is met at frame 10 itself (1), ahead from frames 9 … 5 (10, 8, 6, 4 and 2
// twelfths) and back from frames 11 … 14 (10, 8, 6, 4): 1 + 30/12 + 28/12 = 70/12. In twelfths of
// 12: 70.
TEST_F(ChromaFolderTest, LooksFiveRowsAheadAndFourBack) {
    sound(10, 3, 12.0);
    EXPECT_NEAR(foldChroma(spectrogram, kFrames)[3], 70.0, 1e-12);
}

// Rows behind the first read as the first. At frame 0 all of 10, 8, 6, 4 fall on it, at frame 1
// likewise, then 8 + 6 + 4, 6 + 4 and 4: 12 + 28 + 28 + 18 + 10 + 4 = 100.
TEST_F(ChromaFolderTest, TheFirstRowStandsForThoseBeforeIt) {
    sound(0, 3, 12.0);
    EXPECT_NEAR(foldChroma(spectrogram, kFrames)[3], 100.0, 1e-12);
}

// Rows after the last read as the last: 12 + 30 + 30 + 20 + 12 + 6 + 2 = 112, one tap more than at
// the other end.
TEST_F(ChromaFolderTest, TheLastRowStandsForThoseAfterItWithOneTapMoreThanTheFirst) {
    sound(kFrames - 1, 3, 12.0);
    EXPECT_NEAR(foldChroma(spectrogram, kFrames)[3], 112.0, 1e-12);
}

// One row: itself, 30/12 ahead, 28/12 back.
TEST_F(ChromaFolderTest, ASingleRowIsItsOwnNeighbour) {
    sound(0, 5, 12.0);
    EXPECT_NEAR(foldChroma(spectrogram, 1)[5], 70.0, 1e-12);
}

TEST_F(ChromaFolderTest, FoldsFiveOctavesAndLeavesOutWhatIsAbove) {
    for (int octave = 0; octave < 5; ++octave) {
        spectrogram.create(kFrames, kBands);
        sound(10, 12 * octave + 11, 12.0);
        const Chroma chroma = foldChroma(spectrogram, kFrames);
        EXPECT_NEAR(chroma[11], 70.0, 1e-12);
        EXPECT_EQ(chroma[10], 0.0);
    }
    spectrogram.create(kFrames, kBands);
    sound(10, 60, 12.0);
    EXPECT_THAT(foldChroma(spectrogram, kFrames), ::testing::Each(0.0));
}

// The span is the counted one, not the rows there are: rows after it are not met, rows missing are
// silence. With 25 frames the last row is one of those missing, so nothing is repeated at the end.
TEST_F(ChromaFolderTest, RowsNeverAnalysedCountAsSilence) {
    sound(kFrames - 1, 3, 12.0);
    EXPECT_NEAR(foldChroma(spectrogram, 25)[3], 70.0, 1e-12);
    EXPECT_EQ(foldChroma(spectrogram, kFrames - 1)[3], 0.0);
}

TEST_F(ChromaFolderTest, NoFramesGiveSilence) {
    sound(0, 3, 12.0);
    for (int frames : {0, -1, -100})
        EXPECT_THAT(foldChroma(spectrogram, frames), ::testing::Each(0.0));
}

// A seven-row sum by hand in the stated order, with the weights made at run time: bits.
TEST_F(ChromaFolderTest, AddsThePairFirstThenWeighsItThenAddsIt) {
    for (int frame = 0; frame < kFrames; ++frame) sound(frame, 0, 0.1 * (frame + 1));
    double chroma = 0.0;
    for (int f = 0; f < kFrames; ++f) {
        const auto at = [this](int frame) { return *spectrogram.row(frame); };
        double sum = at(f);
        for (int t = 2; t <= 10; t += 2) {
            const volatile double tap = t;
            const double weight = 1.0 - tap / 12.0;
            const double ahead = at(std::min(f + t / 2, kFrames - 1));
            sum += weight * (t == 10 ? ahead : ahead + at(std::max(f - t / 2, 0)));
        }
        chroma += sum;
    }
    EXPECT_EQ(foldChroma(spectrogram, kFrames)[0], chroma);
}

}  // namespace
