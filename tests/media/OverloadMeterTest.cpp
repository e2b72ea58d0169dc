// SPDX-License-Identifier: MIT
#include "media/OverloadMeter.h"

#include <limits>

#include <gtest/gtest.h>

namespace media {
namespace {

TEST(OverloadMeter, CountsWhatIsBeyondFullScaleAndWhatIsNoNumber) {
    const float none = std::numeric_limits<float>::quiet_NaN();
    OverloadMeter meter;
    meter.put(StereoBlock{{0.5F, 1.0F, -1.5F}, {-1.0F, 1e30F, none}});
    EXPECT_EQ(meter.overload().heard, 6);
    EXPECT_EQ(meter.overload().clipped, 2);
    EXPECT_EQ(meter.overload().peak, 1e30F);
    EXPECT_EQ(meter.overload().notNumbers, 1);
}

TEST(OverloadMeter, CountsAMonoTrackOnce) {
    const std::vector<float> mono = {3.0F, std::numeric_limits<float>::quiet_NaN(), 0.0F};
    OverloadMeter meter;
    meter.put(StereoBlock{mono, mono});
    meter.put(StereoBlock{});
    EXPECT_EQ(meter.overload().clipped, 1);
    EXPECT_EQ(meter.overload().notNumbers, 1);
}

TEST(OverloadMeter, CountsBothSidesWhereOneBlockOfAStereoTrackHasEqualOnes) {
    const std::vector<float> silence(4, 0.0F);
    OverloadMeter meter;
    meter.put(StereoBlock{{3.0F, 3.0F}, {3.0F, 3.0F}});
    meter.put(StereoBlock{{0.5F}, {0.25F}});
    meter.put(StereoBlock{silence, silence});
    EXPECT_EQ(meter.overload().heard, 14);
    EXPECT_EQ(meter.overload().clipped, 4);
}

// 6 dB over full scale are twofold.
TEST(OverloadMeter, LetsPassWhatLossyDecodersMake) {
    std::vector<float> samples(1000, 0.5F);
    std::fill_n(samples.begin(), 10, 1.9F);
    OverloadMeter few;
    few.put(samples);
    EXPECT_FALSE(few.overload().isTooLoud());
    samples[10] = 1.01F;
    OverloadMeter many;
    many.put(samples);
    EXPECT_TRUE(many.overload().isTooLoud()) << "more than one in a hundred";
    OverloadMeter loud;
    loud.put(std::vector<float>{2.0F});
    loud.put(samples);
    EXPECT_TRUE(loud.overload().isTooLoud());
    EXPECT_FALSE(OverloadMeter().overload().isTooLoud());
}

}  // namespace
}  // namespace media
