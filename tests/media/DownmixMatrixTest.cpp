// SPDX-License-Identifier: MIT
#include "media/DownmixMatrix.h"

#include <gtest/gtest.h>

extern "C" {
#include <libavutil/channel_layout.h>
}

namespace media {
namespace {

constexpr float kMinus3dB = 0.70710677F;

std::vector<DownmixGain> gainsOf(const char* layoutName) {
    AVChannelLayout layout = {};
    av_channel_layout_from_string(&layout, layoutName);
    auto gains = downmixGains(layout);
    av_channel_layout_uninit(&layout);
    return gains;
}

std::vector<DownmixGain> gainsOfUnplaced(int channels) {
    AVChannelLayout layout = {};
    layout.order = AV_CHANNEL_ORDER_UNSPEC;
    layout.nb_channels = channels;
    return downmixGains(layout);
}

void expectGain(const DownmixGain& gain, float left, float right) {
    EXPECT_FLOAT_EQ(gain.left, left);
    EXPECT_FLOAT_EQ(gain.right, right);
}

TEST(DownmixMatrix, PutsMonoOnBothSidesWhole) {
    const auto gains = gainsOf("mono");
    ASSERT_EQ(gains.size(), 1U);
    expectGain(gains[0], 1.0F, 1.0F);
}

TEST(DownmixMatrix, LeavesStereoAlone) {
    const auto gains = gainsOf("stereo");
    ASSERT_EQ(gains.size(), 2U);
    expectGain(gains[0], 1.0F, 0.0F);
    expectGain(gains[1], 0.0F, 1.0F);
}

TEST(DownmixMatrix, FoldsFivePointOneByTheUsualRule) {
    // Each side gets front 1, centre and surround 0.7071: 2.4142 together, so that all are lowered
    // by that.
    const float sum = 1.0F + kMinus3dB + kMinus3dB;
    const auto gains =
        gainsOf("5.1");  // left, right, centre, effects, surround left, surround right
    ASSERT_EQ(gains.size(), 6U);
    expectGain(gains[0], 1.0F / sum, 0.0F);
    expectGain(gains[1], 0.0F, 1.0F / sum);
    expectGain(gains[2], kMinus3dB / sum, kMinus3dB / sum);
    expectGain(gains[3], 0.0F, 0.0F);
    expectGain(gains[4], kMinus3dB / sum, 0.0F);
    expectGain(gains[5], 0.0F, kMinus3dB / sum);
}

TEST(DownmixMatrix, NeverLetsASideExceedFullScale) {
    for (const char* name : {"2.1", "3.0", "4.0", "quad", "5.0", "6.1", "7.1", "7.1(wide)",
                             "octagonal", "hexadecagonal", "22.2", "downmix"}) {
        float left = 0.0F;
        float right = 0.0F;
        for (const auto& gain : gainsOf(name)) {
            left += gain.left;
            right += gain.right;
        }
        EXPECT_LE(left, 1.00001F) << name;
        EXPECT_LE(right, 1.00001F) << name;
        EXPECT_GT(left, 0.5F) << name;
        EXPECT_FLOAT_EQ(left, right) << name;
    }
}

TEST(DownmixMatrix, TakesTheUsualPlacesOfChannelsThatAreOnlyCounted) {
    const auto counted = gainsOfUnplaced(6);
    const auto placed = gainsOf("5.1");
    ASSERT_EQ(counted.size(), placed.size());
    for (std::size_t i = 0; i < placed.size(); ++i)
        expectGain(counted[i], placed[i].left, placed[i].right);
}

TEST(DownmixMatrix, AlternatesChannelsOfNoUsualPlace) {
    const auto gains = gainsOfUnplaced(9);  // five to the left, four to the right
    ASSERT_EQ(gains.size(), 9U);
    expectGain(gains[0], 0.2F, 0.0F);
    expectGain(gains[1], 0.0F, 0.2F);
    expectGain(gains[8], 0.2F, 0.0F);
}

TEST(DownmixMatrix, StaysAudibleWhenEveryChannelIsForEffects) {
    const auto gains = gainsOf("LFE+LFE2");
    ASSERT_EQ(gains.size(), 2U);
    expectGain(gains[0], 1.0F, 0.0F);
    expectGain(gains[1], 0.0F, 1.0F);
}

}  // namespace
}  // namespace media
