// SPDX-License-Identifier: MIT
#include "dsp/IirPassFilter.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <vector>

#include <gmock/gmock.h>

#include "dsp/TestNoise.h"
#include "support/Allocations.h"
#include "support/RoundTowardZero.h"

namespace beatatlas {
namespace {

using ::testing::Each;
using ::testing::ElementsAreArray;

using IirPassFilterTest = test::RoundTowardZero;

constexpr float kButterworthQ = 0.70710677F;

void feed(IirPassFilter& filter, const std::vector<float>& in, std::vector<float>& out, int block) {
    out.resize(in.size());
    for (std::size_t at = 0; at < in.size(); at += static_cast<std::size_t>(block)) {
        const auto left = static_cast<int>(in.size() - at);
        filter.operate(&in[at], &out[at], std::min(left, block));
    }
}

std::vector<float> filtered(IirPassFilter& filter, const std::vector<float>& in) {
    std::vector<float> out;
    feed(filter, in, out, static_cast<int>(in.size()));
    return out;
}

/** One section after the other over the whole signal, in double, narrowed once at the end: the
 *  oracle. */
std::vector<float> cascade(const std::vector<std::function<void(IirFilter&)>>& designs,
                           const std::vector<float>& in) {
    std::vector<double> signal(in.begin(), in.end());
    for (const auto& design : designs) {
        IirFilter section;
        design(section);
        std::vector<double> next(signal.size());
        section.operate(signal.data(), next.data(), static_cast<int>(signal.size()));
        signal = next;
    }
    std::vector<float> out;
    for (const double value : signal) out.push_back(static_cast<float>(value));
    return out;
}

std::vector<float> tone(double hz, double rate, std::size_t count) {
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = static_cast<float>(
            std::sin(2.0 * 3.14159265358979323846 * hz * static_cast<double>(i) / rate));
    return samples;
}

/** Gain on a tone once the filter has settled, by the power of the second of two seconds. */
double settledGain(IirPassFilter& filter, double hz) {
    const std::vector<float> out = filtered(filter, tone(hz, 48000.0, 96000));
    double power = 0.0;
    for (std::size_t i = 48000; i < out.size(); ++i)
        power += static_cast<double>(out[i]) * static_cast<double>(out[i]);
    return std::sqrt(2.0 * power / 48000.0);
}

double midGain(bool gentle, double hz) {
    IirPassFilter filter;
    if (gentle) {
        filter.createMidPathFilterM(283.0F, 6000.0F, 48000.0F, kButterworthQ);
    } else {
        filter.createMidPathFilterB(283.0F, 6000.0F, 48000.0F, kButterworthQ);
    }
    return settledGain(filter, hz);
}

double decibels(double ratio) {
    return 20.0 * std::log10(ratio);
}

TEST_F(IirPassFilterTest, PassesItsInputThroughWhenFresh) {
    IirPassFilter filter;
    const std::vector<float> in = test::whiteNoise(1000, 1);
    EXPECT_THAT(filtered(filter, in), ElementsAreArray(in));
}

TEST_F(IirPassFilterTest, ThroughDesignPassesItsInputUnchanged) {
    IirPassFilter filter;
    filter.createThroughFilter();
    const std::vector<float> in = test::whiteNoise(1000, 2);
    EXPECT_THAT(filtered(filter, in), ElementsAreArray(in));
}

TEST_F(IirPassFilterTest, HighPassIsTwoEqualSections) {
    const auto section = [](IirFilter& f) { f.createHiPathFilter(6000.0F, 44100.0F, 0.8F); };
    IirPassFilter filter;
    filter.createHiPathFilter(6000.0F, 44100.0F, 0.8F);
    const std::vector<float> in = test::whiteNoise(3000, 3);
    EXPECT_THAT(filtered(filter, in), ElementsAreArray(cascade({section, section}, in)));
}

TEST_F(IirPassFilterTest, LowPassIsTwoEqualSections) {
    const auto section = [](IirFilter& f) { f.createLowPathFilter(150.0F, 44100.0F, 0.8F); };
    IirPassFilter filter;
    filter.createLowPathFilter(150.0F, 44100.0F, 0.8F);
    const std::vector<float> in = test::whiteNoise(3000, 4);
    EXPECT_THAT(filtered(filter, in), ElementsAreArray(cascade({section, section}, in)));
}

TEST_F(IirPassFilterTest, BandPassOfABandwidthIsTwoEqualSections) {
    const auto section = [](IirFilter& f) { f.createBandPathFilterW(566.0F, 44100.0F, 1.5F); };
    IirPassFilter filter;
    filter.createBandPathFilterW(566.0F, 44100.0F, 1.5F);
    const std::vector<float> in = test::whiteNoise(3000, 5);
    EXPECT_THAT(filtered(filter, in), ElementsAreArray(cascade({section, section}, in)));
}

TEST_F(IirPassFilterTest, BandPassOfQIsTwoEqualSections) {
    const auto section = [](IirFilter& f) { f.createBandPathFilterQ(150.0F, 44100.0F, 0.9F); };
    IirPassFilter filter;
    filter.createBandPathFilterQ(150.0F, 44100.0F, 0.9F);
    const std::vector<float> in = test::whiteNoise(3000, 6);
    EXPECT_THAT(filtered(filter, in), ElementsAreArray(cascade({section, section}, in)));
}

TEST_F(IirPassFilterTest, SteepMidBandTakesHighAndLowPassInTurnTwice) {
    const auto high = [](IirFilter& f) { f.createHiPathFilter(283.0F, 48000.0F, 0.6F); };
    const auto low = [](IirFilter& f) { f.createLowPathFilter(6000.0F, 48000.0F, 0.6F); };
    IirPassFilter filter;
    filter.createMidPathFilterB(283.0F, 6000.0F, 48000.0F, 0.6F);
    const std::vector<float> in = test::whiteNoise(3000, 7);
    EXPECT_THAT(filtered(filter, in), ElementsAreArray(cascade({high, low, high, low}, in)));
}

TEST_F(IirPassFilterTest, GentleMidBandIsOneHighPassThenOneLowPass) {
    const auto high = [](IirFilter& f) { f.createHiPathFilter(283.0F, 48000.0F, 0.6F); };
    const auto low = [](IirFilter& f) { f.createLowPathFilter(6000.0F, 48000.0F, 0.6F); };
    IirPassFilter filter;
    filter.createMidPathFilterM(283.0F, 6000.0F, 48000.0F, 0.6F);
    const std::vector<float> in = test::whiteNoise(3000, 8);
    EXPECT_THAT(filtered(filter, in), ElementsAreArray(cascade({high, low}, in)));
}

TEST_F(IirPassFilterTest, GivesTheSameBitsForAnyBlockLength) {
    const std::vector<float> in = test::whiteNoise(9000, 9);
    IirPassFilter whole;
    whole.createMidPathFilterB(283.0F, 6000.0F, 48000.0F, kButterworthQ);
    const std::vector<float> expected = filtered(whole, in);
    for (const int block : {1, 2, 3, 587, 588, 589, 640, 4096}) {
        IirPassFilter filter;
        filter.createMidPathFilterB(283.0F, 6000.0F, 48000.0F, kButterworthQ);
        std::vector<float> out;
        feed(filter, in, out, block);
        EXPECT_THAT(out, ElementsAreArray(expected)) << "blocks of " << block;
    }
}

TEST_F(IirPassFilterTest, HighPassSilencesDcAndPassesHalfTheRate) {
    IirPassFilter dc;
    dc.createHiPathFilter(6000.0F, 48000.0F, kButterworthQ);
    EXPECT_NEAR(filtered(dc, std::vector<float>(2000, 1.0F)).back(), 0.0F, 1e-12F);

    std::vector<float> alternating(2000, 1.0F);
    for (std::size_t i = 1; i < alternating.size(); i += 2) alternating[i] = -1.0F;
    IirPassFilter half;
    half.createHiPathFilter(6000.0F, 48000.0F, kButterworthQ);
    EXPECT_NEAR(filtered(half, alternating).back(), -1.0F, 1e-6F);
}

TEST_F(IirPassFilterTest, LowPassPassesDcAndSilencesHalfTheRate) {
    IirPassFilter dc;
    dc.createLowPathFilter(6000.0F, 48000.0F, kButterworthQ);
    EXPECT_NEAR(filtered(dc, std::vector<float>(2000, 1.0F)).back(), 1.0F, 1e-6F);

    std::vector<float> alternating(2000, 1.0F);
    for (std::size_t i = 1; i < alternating.size(); i += 2) alternating[i] = -1.0F;
    IirPassFilter half;
    half.createLowPathFilter(6000.0F, 48000.0F, kButterworthQ);
    EXPECT_NEAR(filtered(half, alternating).back(), 0.0F, 1e-12F);
}

TEST_F(IirPassFilterTest, BandPassesPassTheirCentreAtGainOneAndRejectDc) {
    IirPassFilter q;
    q.createBandPathFilterQ(1000.0F, 48000.0F, 0.9F);
    EXPECT_NEAR(settledGain(q, 1000.0), 1.0, 1e-5);
    IirPassFilter w;
    w.createBandPathFilterW(1000.0F, 48000.0F, 1.5F);
    EXPECT_NEAR(settledGain(w, 1000.0), 1.0, 1e-5);

    IirPassFilter dcQ;
    dcQ.createBandPathFilterQ(1000.0F, 48000.0F, 0.9F);
    EXPECT_NEAR(filtered(dcQ, std::vector<float>(9600, 1.0F)).back(), 0.0F, 1e-12F);
    IirPassFilter dcW;
    dcW.createBandPathFilterW(1000.0F, 48000.0F, 1.5F);
    EXPECT_NEAR(filtered(dcW, std::vector<float>(9600, 1.0F)).back(), 0.0F, 1e-12F);
}

// Both reach gain 1 in the middle of the band; at a corner each Butterworth section costs 3.01 dB,
// so the steep form has lost twice as much there.
TEST_F(IirPassFilterTest, BothMidBandsPassTheSameBand) {
    EXPECT_NEAR(midGain(false, 1200.0), 1.0, 0.01);
    EXPECT_NEAR(midGain(true, 1200.0), 1.0, 0.01);
    EXPECT_NEAR(decibels(midGain(true, 283.0)), -3.01, 0.05);
    EXPECT_NEAR(decibels(midGain(false, 283.0)), -6.02, 0.05);
    EXPECT_NEAR(decibels(midGain(true, 6000.0)), -3.01, 0.05);
    EXPECT_NEAR(decibels(midGain(false, 6000.0)), -6.02, 0.05);
}

// Far below the lower corner a second-order side falls 12.04 dB per octave, a fourth-order one
// 24.08. On the upper side the bilinear transform steepens both alike, so there the two are
// compared with each other.
TEST_F(IirPassFilterTest, SteepMidBandFallsOffTwiceAsSteeplyOnBothSides) {
    EXPECT_NEAR(decibels(midGain(true, 40.0) / midGain(true, 20.0)), 12.04, 0.1);
    EXPECT_NEAR(decibels(midGain(false, 40.0) / midGain(false, 20.0)), 24.08, 0.1);
    const double gentle = decibels(midGain(true, 12000.0) / midGain(true, 16000.0));
    const double steep = decibels(midGain(false, 12000.0) / midGain(false, 16000.0));
    EXPECT_GT(gentle, 5.0);
    EXPECT_NEAR(steep, 2.0 * gentle, 0.1);
}

TEST_F(IirPassFilterTest, KeepsItsHistoryWhenALongerBlockGrowsTheBuffers) {
    const std::vector<float> in = test::whiteNoise(10 + 100 + 1000, 10);
    IirPassFilter whole;
    whole.createBandPathFilterQ(150.0F, 48000.0F, 0.9F);
    const std::vector<float> expected = filtered(whole, in);
    IirPassFilter growing;
    growing.createBandPathFilterQ(150.0F, 48000.0F, 0.9F);
    std::vector<float> out(in.size());
    growing.operate(&in[0], &out[0], 10);
    growing.operate(&in[10], &out[10], 100);
    growing.operate(&in[110], &out[110], 1000);
    EXPECT_THAT(out, ElementsAreArray(expected));
}

TEST_F(IirPassFilterTest, AllocatesNothingUnlessABlockIsLongerThanEveryEarlierOne) {
    IirPassFilter filter;
    filter.createMidPathFilterB(283.0F, 6000.0F, 48000.0F, kButterworthQ);
    const std::vector<float> in = test::whiteNoise(640, 11);
    std::vector<float> out(640);
    filter.operate(in.data(), out.data(), 639);
    const std::size_t warm = test::allocationCount();
    for (const int block : {639, 1, 588, 639}) filter.operate(in.data(), out.data(), block);
    EXPECT_EQ(test::allocationCount(), warm);
    filter.operate(in.data(), out.data(), 640);
    EXPECT_GT(test::allocationCount(), warm);
}

TEST_F(IirPassFilterTest, StaysAsItWasWhenALongerBlockFindsNoMemory) {
    const std::vector<float> in = test::whiteNoise(1000, 15);
    IirPassFilter whole;
    whole.createBandPathFilterQ(150.0F, 48000.0F, 0.9F);
    const std::vector<float> expected = filtered(whole, in);
    IirPassFilter starved;
    starved.createBandPathFilterQ(150.0F, 48000.0F, 0.9F);
    std::vector<float> out(in.size());
    starved.operate(&in[0], &out[0], 400);
    for (int granted = 0; granted < 2; ++granted) {
        test::AllocationsFailAfter shortage(granted);
        EXPECT_THROW(starved.operate(&in[400], &out[400], 600), std::bad_alloc);
    }
    starved.operate(&in[400], &out[400], 600);
    EXPECT_THAT(out, ElementsAreArray(expected));
}

TEST_F(IirPassFilterTest, ASecondCreateDropsTheEarlierSectionsAndStartsFromSilence) {
    const std::vector<float> in = test::whiteNoise(500, 12);
    IirPassFilter reused;
    reused.createMidPathFilterB(283.0F, 6000.0F, 48000.0F, kButterworthQ);
    filtered(reused, in);
    reused.createLowPathFilter(150.0F, 48000.0F, 0.9F);
    IirPassFilter fresh;
    fresh.createLowPathFilter(150.0F, 48000.0F, 0.9F);
    EXPECT_THAT(filtered(reused, in), ElementsAreArray(filtered(fresh, in)));
}

TEST_F(IirPassFilterTest, IgnoresEmptyAndNegativeBlocks) {
    IirPassFilter filter;
    filter.createLowPathFilter(150.0F, 48000.0F, 0.9F);
    std::vector<float> out(4, 9.0F);
    filter.operate(nullptr, out.data(), 0);
    filter.operate(nullptr, out.data(), -1);
    filter.operate(nullptr, out.data(), std::numeric_limits<int>::min());
    EXPECT_THAT(out, Each(9.0F));
    const std::vector<float> in = test::whiteNoise(100, 13);
    IirPassFilter twin;
    twin.createLowPathFilter(150.0F, 48000.0F, 0.9F);
    EXPECT_THAT(filtered(filter, in), ElementsAreArray(filtered(twin, in)));
}

TEST_F(IirPassFilterTest, FiltersInPlaceAsItDoesApart) {
    const std::vector<float> in = test::whiteNoise(300, 14);
    IirPassFilter apart;
    apart.createHiPathFilter(6000.0F, 48000.0F, kButterworthQ);
    IirPassFilter inPlace;
    inPlace.createHiPathFilter(6000.0F, 48000.0F, kButterworthQ);
    std::vector<float> both = in;
    inPlace.operate(both.data(), both.data(), static_cast<int>(both.size()));
    EXPECT_THAT(both, ElementsAreArray(filtered(apart, in)));
}

// Under round-toward-zero a value too large for a float becomes the largest float, never an
// infinity.
TEST_F(IirPassFilterTest, SurvivesInputThatIsNoSignal) {
    IirPassFilter filter;
    filter.createHiPathFilter(6000.0F, 48000.0F, 30.0F);
    std::vector<float> loud(200);
    for (std::size_t i = 0; i < loud.size(); ++i) loud[i] = i % 8 < 4 ? 3e38F : -3e38F;
    const std::vector<float> ringing = filtered(filter, loud);
    EXPECT_EQ(*std::max_element(ringing.begin(), ringing.end()), std::numeric_limits<float>::max());

    const std::vector<float> broken(3, std::numeric_limits<float>::quiet_NaN());
    filtered(filter, broken);
    EXPECT_TRUE(std::isnan(filtered(filter, {0.0F, 0.0F}).back()));
    filtered(filter, {std::numeric_limits<float>::infinity()});
}

}  // namespace
}  // namespace beatatlas
