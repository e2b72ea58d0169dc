// SPDX-License-Identifier: MIT
#include "track/key/keyTemplates.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace {

using namespace beatatlas::track::inner;

TEST(KeyTemplates, HaveAMeanOfZeroAndALengthOfOne) {
    for (const KeyTemplates* templates : {&profileTemplates(), &triadTemplates()}) {
        for (const ChromaSum& entry : *templates) {
            double sum = 0.0;
            double squares = 0.0;
            for (const double tone : entry) {
                sum += tone;
                squares += tone * tone;
            }
            EXPECT_NEAR(sum, 0.0, 1e-12);
            EXPECT_NEAR(squares, 1.0, 1e-12);
        }
    }
}

// The profiles are symmetric under transposition: key 5 is key 0 five semitones up.
TEST(KeyTemplates, AreTheSameOnEveryTonic) {
    for (std::size_t key = 0; key < 24; ++key)
        for (std::size_t tone = 0; tone < 12; ++tone)
            EXPECT_NEAR(profileTemplates()[key][(tone + key) % 12],
                        profileTemplates()[key / 12 * 12][tone], 1e-12);
}

TEST(KeyTemplates, FitThemselvesBestAndWhollySo) {
    for (const KeyTemplates* templates : {&profileTemplates(), &triadTemplates()}) {
        for (std::size_t key = 0; key < kKeys; ++key) {
            ChromaSum chroma{};
            for (std::size_t i = 0; i < 12; ++i) chroma[i] = 0.5 + (*templates)[key][i];
            const KeyValues fits = fitsOf(*templates, chroma);
            EXPECT_EQ(std::max_element(fits.begin(), fits.end()) - fits.begin(),
                      static_cast<std::ptrdiff_t>(key));
            EXPECT_NEAR(fits[key], 1.0, 1e-12);
        }
    }
}

TEST(KeyTemplates, DoNotFitWhatHasNoNotes) {
    ChromaSum even{};
    even.fill(1.0 / 12.0);
    for (const double fit : fitsOf(profileTemplates(), even)) EXPECT_NEAR(fit, 0.0, 1e-12);
    // A hundredth of a profile over an even chroma, as in noise: a fifth of the fit.
    ChromaSum noise = even;
    for (std::size_t i = 0; i < 12; ++i) noise[i] += 0.01 * profileTemplates()[7][i];
    EXPECT_NEAR(fitsOf(profileTemplates(), noise)[7], 0.2, 1e-9);
}

}  // namespace
