// SPDX-License-Identifier: MIT
#include "media/RateConverter.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "base/errors.h"
#include "support/Sounds.h"

namespace media {
namespace {

StereoBlock asBlock(const test::Sound& sound) {
    return {sound.channels[0], sound.channels[1]};
}

StereoBlock convertWhole(const test::Sound& sound, int toRate) {
    RateConverter converter(sound.rate, toRate);
    StereoBlock result = converter.convert(asBlock(sound));
    const StereoBlock& rest = converter.finish();
    result.left.insert(result.left.end(), rest.left.begin(), rest.left.end());
    result.right.insert(result.right.end(), rest.right.begin(), rest.right.end());
    return result;
}

TEST(RateConverter, ChoosesTheSessionsRateByTheFamilyOfTheTracks) {
    for (const int rate : {11025, 22050, 44100, 88200, 176400})
        EXPECT_EQ(sessionRateFor(rate), 44100) << rate;
    for (const int rate : {8000, 12000, 16000, 24000, 32000, 48000, 96000, 192000, 37800, 44056}) {
        EXPECT_EQ(sessionRateFor(rate), 48000) << rate;
    }
}

TEST(RateConverter, MakesExactlyAsManyFramesAsItIsSaidTo) {
    for (const int from : {1000, 8000, 11025, 22050, 32000, 37800, 88200, 96000, 192000}) {
        const int to = sessionRateFor(from);
        for (const std::size_t frames : {1U, 2U, 3U, 147U, 1151U, 1152U, 9999U, 30001U}) {
            const std::vector<float> channel(frames, 0.25F);
            const StereoBlock made = convertWhole({from, {channel, channel}}, to);
            EXPECT_EQ(std::ssize(made.left),
                      convertedFrames(static_cast<std::int64_t>(frames), from, to))
                << frames << " at " << from;
        }
    }
}

TEST(RateConverter, KeepsTheLengthAndThePlaceOfASound) {
    for (const int from : {11025, 22050, 88200, 176400, 8000, 32000, 96000, 192000}) {
        const int to = sessionRateFor(from);
        const StereoBlock result = convertWhole(test::clicks(from, 2, 2.0, {1.0}), to);
        EXPECT_NEAR(static_cast<double>(result.frames()), 2.0 * to, 1.0) << from;
        const auto loudest =
            std::max_element(result.left.begin(), result.left.end()) - result.left.begin();
        EXPECT_NEAR(static_cast<double>(loudest), 1.0 * to, 1.0) << from;
    }
}

TEST(RateConverter, KeepsTheLevelOfATone) {
    const StereoBlock result = convertWhole(test::tone(96000, 2, 1.0, 1000.0, 0.5), 48000);
    // Away from the ends, where the tone begins and stops suddenly.
    const auto loudest = std::max_element(result.left.begin() + 12000, result.left.begin() + 36000);
    EXPECT_NEAR(*loudest, 0.5F, 0.001F);
}

TEST(RateConverter, RemovesWhatTheLowerRateCannotHold) {
    const StereoBlock result = convertWhole(test::tone(96000, 2, 1.0, 30000.0, 0.5), 48000);
    const auto loudest = std::max_element(result.left.begin() + 12000, result.left.begin() + 36000);
    EXPECT_LT(*loudest, 0.0001F);
}

TEST(RateConverter, GivesTheSameSamplesForAnyBlocks) {
    const test::Sound sound = test::tone(22050, 2, 0.5, 440.0, 0.5);
    const StereoBlock whole = convertWhole(sound, 44100);
    RateConverter converter(22050, 44100);
    std::vector<float> pieces;
    for (std::size_t at = 0; at < sound.frames(); at += 100) {
        const auto end = std::min(at + 100, sound.frames());
        const std::vector<float> piece(sound.channels[0].begin() + static_cast<long>(at),
                                       sound.channels[0].begin() + static_cast<long>(end));
        const StereoBlock& result = converter.convert({piece, piece});
        pieces.insert(pieces.end(), result.left.begin(), result.left.end());
    }
    const StereoBlock& rest = converter.finish();
    pieces.insert(pieces.end(), rest.left.begin(), rest.left.end());
    EXPECT_EQ(pieces, whole.left);
}

TEST(RateConverter, RefusesRatesThatNoTrackHas) {
    EXPECT_THROW(RateConverter(1, 48000), base::TrackError);
    EXPECT_THROW(RateConverter(999, 48000), base::TrackError);
    EXPECT_THROW(RateConverter(2000000000, 48000), base::TrackError);
    EXPECT_NO_THROW(RateConverter(1000, 48000));
}

}  // namespace
}  // namespace media
