// SPDX-License-Identifier: MIT
#include "key/BandSpectrogram.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

using beatatlas::BandSpectrogram;

std::vector<double> rowOf(const BandSpectrogram& spectrogram, int row) {
    return {spectrogram.row(row), spectrogram.row(row) + spectrogram.bands()};
}

const std::vector<double> kLoud{1.0, 2.0, 3.0};
const std::vector<double> kSilent{0.0, 0.0, 0.0};

TEST(BandSpectrogramTest, RowsNeverWrittenReadAsSilence) {
    BandSpectrogram spectrogram;
    spectrogram.create(4, 3);
    spectrogram.write(2, kLoud.data());
    EXPECT_EQ(rowOf(spectrogram, 1), kSilent);
    EXPECT_EQ(rowOf(spectrogram, 2), kLoud);
    EXPECT_EQ(rowOf(spectrogram, 3), kSilent);
}

TEST(BandSpectrogramTest, RowsBeyondTheAllocatedReadAsSilenceAndSwallowWrites) {
    BandSpectrogram spectrogram;
    spectrogram.create(4, 3);
    spectrogram.write(4, kLoud.data());
    spectrogram.write(2000000000, kLoud.data());
    EXPECT_EQ(rowOf(spectrogram, 4), kSilent);
    EXPECT_EQ(rowOf(spectrogram, 2000000000), kSilent);
}

TEST(BandSpectrogramTest, MayHaveNoRows) {
    for (int rows : {0, -3}) {
        BandSpectrogram spectrogram;
        spectrogram.create(rows, 3);
        spectrogram.write(0, kLoud.data());
        EXPECT_EQ(rowOf(spectrogram, 0), kSilent);
    }
}

TEST(BandSpectrogramTest, CreatingAgainStartsFromSilence) {
    BandSpectrogram spectrogram;
    spectrogram.create(4, 3);
    spectrogram.write(1, kLoud.data());
    spectrogram.create(4, 3);
    EXPECT_EQ(rowOf(spectrogram, 1), kSilent);
    spectrogram.release();
    spectrogram.release();
    EXPECT_EQ(spectrogram.bands(), 0);
}

}  // namespace
