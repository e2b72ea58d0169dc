// SPDX-License-Identifier: MIT
#include "media/StereoChain.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "base/errors.h"
#include "support/Sounds.h"

namespace media {
namespace {

/** A decoded frame of the given planes. */
FramePointer makeFloatFrame(int rate, const std::vector<std::vector<float>>& planes) {
    FramePointer frame = makeFrame();
    frame->nb_samples = static_cast<int>(planes.front().size());
    frame->format = AV_SAMPLE_FMT_FLTP;
    frame->sample_rate = rate;
    av_channel_layout_default(&frame->ch_layout, static_cast<int>(planes.size()));
    av_frame_get_buffer(frame.get(), 0);
    for (std::size_t i = 0; i < planes.size(); ++i) {
        std::copy(planes[i].begin(), planes[i].end(),
                  reinterpret_cast<float*>(frame->extended_data[i]));
    }
    return frame;
}

FramePointer makeInt16Frame(const std::vector<std::int16_t>& samples) {
    FramePointer frame = makeFrame();
    frame->nb_samples = static_cast<int>(samples.size());
    frame->format = AV_SAMPLE_FMT_S16;
    frame->sample_rate = 44100;
    av_channel_layout_default(&frame->ch_layout, 1);
    av_frame_get_buffer(frame.get(), 0);
    std::copy(samples.begin(), samples.end(), reinterpret_cast<std::int16_t*>(frame->data[0]));
    return frame;
}

FramePointer makeIntegerFrame(AVSampleFormat format, const std::vector<std::int16_t>& left,
                              const std::vector<std::int16_t>& right) {
    FramePointer frame = makeFrame();
    frame->nb_samples = static_cast<int>(left.size());
    frame->format = format;
    frame->sample_rate = 44100;
    av_channel_layout_default(&frame->ch_layout, 2);
    av_frame_get_buffer(frame.get(), 0);
    auto* first = reinterpret_cast<std::int16_t*>(frame->extended_data[0]);
    auto* second = format == AV_SAMPLE_FMT_S16P
                       ? reinterpret_cast<std::int16_t*>(frame->extended_data[1])
                       : first + 1;
    const std::size_t step = format == AV_SAMPLE_FMT_S16P ? 1 : 2;
    for (std::size_t i = 0; i < left.size(); ++i) {
        first[i * step] = left[i];
        second[i * step] = right[i];
    }
    return frame;
}

class StereoChainTest : public testing::Test {
protected:
    test::Recorder recorder_;
    StereoChain chain_{recorder_};
};

TEST_F(StereoChainTest, GivesSixteenBitSamplesAsExactFractionsOfFullScale) {
    chain_.put(*makeInt16Frame({0, 1, -1, 12345, 32767, -32768}));
    chain_.finish();
    const std::vector<float> expected = {
        0.0F, 1.0F / 32768.0F, -1.0F / 32768.0F, 12345.0F / 32768.0F, 32767.0F / 32768.0F, -1.0F};
    EXPECT_EQ(recorder_.left, expected);
    EXPECT_EQ(recorder_.right, expected);
}

// A sum that begins with 0 knows no negative zero.
TEST_F(StereoChainTest, TakesTheUsualFormsToTheBitsThatMixingGives) {
    std::vector<float> left;
    std::vector<float> right;
    for (int i = 0; i < 3000; ++i) {
        left.push_back(std::sin(static_cast<float>(i * i)) * 1.5F);
        right.push_back(static_cast<float>(i % 5 - 2) * -0.0F);
    }
    chain_.put(*makeFloatFrame(44100, {left, right}));
    chain_.finish();
    for (std::size_t i = 0; i < left.size(); ++i) {
        const float mixedLeft = 0.0F + 1.0F * left[i];
        EXPECT_EQ(std::bit_cast<std::uint32_t>(recorder_.left[i]),
                  std::bit_cast<std::uint32_t>(mixedLeft));
        EXPECT_EQ(std::bit_cast<std::uint32_t>(recorder_.right[i]), 0U);
    }
}

TEST_F(StereoChainTest, TakesInterleavedAndPlanarIntegersAlike) {
    const std::vector<std::int16_t> left = {0, 1, -32768, 32767, 99};
    const std::vector<std::int16_t> right = {-1, 7, 32767, -32768, -99};
    for (const AVSampleFormat format : {AV_SAMPLE_FMT_S16, AV_SAMPLE_FMT_S16P}) {
        test::Recorder recorder;
        StereoChain chain(recorder);
        chain.put(*makeIntegerFrame(format, left, right));
        chain.finish();
        ASSERT_EQ(recorder.left.size(), left.size());
        for (std::size_t i = 0; i < left.size(); ++i) {
            EXPECT_EQ(recorder.left[i] * 32768.0F, static_cast<float>(left[i]));
            EXPECT_EQ(recorder.right[i] * 32768.0F, static_cast<float>(right[i]));
        }
    }
}

TEST_F(StereoChainTest, HandsOnWhatIsLouderThanFullScaleAsItIs) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float none = std::numeric_limits<float>::quiet_NaN();
    chain_.put(*makeFloatFrame(44100, {{1.5F, -9.0F, infinity, none}, {0.0F, 0.0F, 0.0F, 0.0F}}));
    chain_.finish();
    EXPECT_EQ(recorder_.left[0], 1.5F);
    EXPECT_EQ(recorder_.left[1], -9.0F);
    EXPECT_EQ(recorder_.left[2], infinity);
    EXPECT_TRUE(std::isnan(recorder_.left[3]));
}

TEST_F(StereoChainTest, FoldsTheChannelsOfAFrame) {
    chain_.put(*makeFloatFrame(48000, {{0.5F}, {-0.5F}}));
    chain_.finish();
    EXPECT_EQ(recorder_.left.at(0), 0.5F);
    EXPECT_EQ(recorder_.right.at(0), -0.5F);
}

TEST_F(StereoChainTest, TakesItsRateFromTheFirstFrame) {
    EXPECT_EQ(chain_.outputRate(), 0);
    chain_.put(*makeFloatFrame(96000, {std::vector<float>(960, 0.1F)}));
    chain_.finish();
    EXPECT_EQ(chain_.trackRate(), 96000);
    EXPECT_EQ(chain_.outputRate(), 48000);
    EXPECT_EQ(recorder_.left.size(), 480U);
}

TEST_F(StereoChainTest, KeepsTheRateOfTheBeginningWhenTheTracksChanges) {
    chain_.put(*makeFloatFrame(44100, {std::vector<float>(44100, 0.1F)}));
    chain_.put(*makeFloatFrame(22050, {std::vector<float>(22050, 0.1F)}));
    chain_.put(*makeFloatFrame(44100, {std::vector<float>(44100, 0.1F)}));
    chain_.finish();
    EXPECT_EQ(chain_.outputRate(), 44100);
    EXPECT_NEAR(static_cast<double>(recorder_.left.size()), 3.0 * 44100, 2.0);
}

TEST_F(StereoChainTest, FollowsAChangeFromMonoToStereo) {
    chain_.put(*makeFloatFrame(44100, {{0.25F}}));
    chain_.put(*makeFloatFrame(44100, {{0.5F}, {-0.5F}}));
    chain_.finish();
    EXPECT_EQ(recorder_.left, (std::vector<float>{0.25F, 0.5F}));
    EXPECT_EQ(recorder_.right, (std::vector<float>{0.25F, -0.5F}));
}

TEST_F(StereoChainTest, DropsTheEncodersDelayAcrossFrames) {
    chain_.dropFrames(3);
    chain_.put(*makeFloatFrame(44100, {{0.1F, 0.1F}}));
    chain_.put(*makeFloatFrame(44100, {{0.1F, 0.5F}}));
    chain_.finish();
    EXPECT_EQ(recorder_.left, (std::vector<float>{0.5F}));
}

TEST_F(StereoChainTest, PutsSilenceForWhatWasDamaged) {
    chain_.put(*makeFloatFrame(44100, {{0.5F}}));
    chain_.putSilence(5000);
    chain_.finish();
    ASSERT_EQ(recorder_.left.size(), 5001U);
    EXPECT_EQ(recorder_.left[1], 0.0F);
    EXPECT_EQ(recorder_.left[5000], 0.0F);
}

TEST_F(StereoChainTest, HandsOnInLongStretchesAndLosesNothing) {
    std::vector<float> ramp(50000);
    for (std::size_t i = 0; i < ramp.size(); ++i) ramp[i] = static_cast<float>(i) / 65536.0F;
    for (std::size_t at = 0; at < ramp.size(); at += 1000) {
        const auto from = ramp.begin() + static_cast<std::ptrdiff_t>(at);
        chain_.put(*makeFloatFrame(44100, {std::vector<float>(from, from + 1000)}));
    }
    EXPECT_EQ(recorder_.left.size(), 3U * 16384U);
    chain_.finish();
    ASSERT_EQ(recorder_.left.size(), ramp.size());
    for (std::size_t i = 0; i < ramp.size(); ++i) {
        ASSERT_EQ(recorder_.left[i], static_cast<float>(i) / 65536.0F);
        ASSERT_EQ(recorder_.right[i], static_cast<float>(i) / 65536.0F);
    }
}

TEST_F(StereoChainTest, RefusesAFrameWithoutARate) {
    FramePointer frame = makeFloatFrame(44100, {{0.5F}});
    frame->sample_rate = 0;
    EXPECT_THROW(chain_.put(*frame), base::TrackError);
}

}  // namespace
}  // namespace media
