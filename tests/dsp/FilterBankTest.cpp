// SPDX-License-Identifier: MIT
// Oracle: IirPassFilter, one per cascade, fed sample by sample and rectified.
#include "dsp/FilterBank.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/IirPassFilter.h"
#include "dsp/LowPathFilter2D.h"
#include "dsp/TestNoise.h"
#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"

namespace {

using namespace beatatlas;
using beatatlas::test::FormScope;
using beatatlas::test::formsOfThisMachine;
using beatatlas::test::nameOf;
using beatatlas::test::whiteNoise;

constexpr int kCascades = FilterBank::kCascades;
using Signals = std::array<std::vector<float>, kCascades>;

/** A different filter in each cascade, so that no two lanes can be taken for each other. */
void design(int cascade, IirPassFilter& filter) {
    constexpr float kRate = 44100.0F;
    constexpr float kQ = 0.70710677F;
    switch (cascade) {
    case 0:
        filter.createLowPathFilter(283.0F, kRate, kQ);
        break;
    case 1:
        filter.createBandPathFilterW(150.0F, kRate, 1.5F);
        break;
    case 2:
        filter.createHiPathFilter(6000.0F, kRate, kQ);
        break;
    case 3:
        filter.createBandPathFilterQ(150.0F, kRate, 0.9F);
        break;
    default:
        filter.createMidPathFilterB(283.0F, 6000.0F, kRate, kQ);
        break;
    }
}

void designAll(FilterBank& bank) {
    for (int c = 0; c < kCascades; ++c) {
        IirPassFilter plain;
        design(c, plain);
        bank.design(c, plain);
    }
}

Signals plainOutputs(const std::vector<float>& in) {
    Signals outputs;
    for (int c = 0; c < kCascades; ++c) {
        IirPassFilter filter;
        design(c, filter);
        std::vector<float>& out = outputs[static_cast<std::size_t>(c)];
        out.resize(in.size());
        for (std::size_t i = 0; i < in.size(); ++i) {
            filter.operate(&in[i], &out[i], 1);
            out[i] = std::fabs(out[i]);
        }
    }
    return outputs;
}

/** Feeds the signal in blocks whose lengths follow `blocks` in turn. */
Signals bankOutputs(const std::vector<float>& in, const std::vector<std::size_t>& blocks) {
    FilterBank bank;
    designAll(bank);
    Signals outputs;
    for (std::vector<float>& out : outputs) out.resize(in.size());
    std::size_t turn = 0;
    for (std::size_t at = 0; at < in.size();) {
        const std::size_t count = std::min(blocks[turn++ % blocks.size()], in.size() - at);
        FilterBank::Outputs sinks{};
        for (std::size_t c = 0; c < kCascades; ++c) sinks[c] = outputs[c].data() + at;
        bank.operate(in.data() + at, sinks, static_cast<int>(count));
        at += count;
    }
    return outputs;
}

bool sameNumber(float a, float b) {
    return (std::isnan(a) && std::isnan(b)) ||
           std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

void expectSame(const Signals& expected, const Signals& got) {
    for (std::size_t c = 0; c < kCascades; ++c)
        for (std::size_t i = 0; i < expected[c].size(); ++i)
            ASSERT_TRUE(sameNumber(expected[c][i], got[c][i]))
                << "cascade " << c << ", sample " << i << ": " << expected[c][i] << ", "
                << got[c][i];
}

class FilterBankTest : public beatatlas::test::RoundTowardZero {};

TEST_F(FilterBankTest, GivesTheBitsOfThePlainFiltersInEveryForm) {
    const std::vector<float> in = whiteNoise(5000, 7);
    const Signals expected = plainOutputs(in);
    for (const VectorForm form : formsOfThisMachine()) {
        SCOPED_TRACE(nameOf(form));
        const FormScope scope(form);
        for (const std::size_t block :
             {1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 587U, 588U, 589U, 640U, 5000U})
            expectSame(expected, bankOutputs(in, {block}));
        expectSame(expected, bankOutputs(in, {1, 640, 2, 3, 100, 4, 5}));
    }
}

TEST_F(FilterBankTest, DecaysIntoSilenceAsThePlainFilters) {
    std::vector<float> in(20000, 0.0F);
    const std::vector<float> burst = whiteNoise(50, 3);
    std::copy(burst.begin(), burst.end(), in.begin() + 11);
    const Signals expected = plainOutputs(in);
    for (const VectorForm form : formsOfThisMachine()) {
        SCOPED_TRACE(nameOf(form));
        const FormScope scope(form);
        expectSame(expected, bankOutputs(in, {640}));
    }
}

// Two seconds after the burst every section gives the same tiny number for ever; nothing may be lost when the music goes
// on. A level that stays the same is no different.
TEST_F(FilterBankTest, WakesFromSilenceAndFromALevelAsThePlainFilters) {
    const std::vector<float> burst = whiteNoise(50, 3);
    for (const float level : {0.0F, 0.25F}) {
        std::vector<float> in(120000, level);
        for (const std::ptrdiff_t at : {11, 110000})
            std::copy(burst.begin(), burst.end(), in.begin() + at);
        const Signals expected = plainOutputs(in);
        for (const VectorForm form : formsOfThisMachine()) {
            SCOPED_TRACE(nameOf(form));
            const FormScope scope(form);
            expectSame(expected, bankOutputs(in, {640}));
            expectSame(expected, bankOutputs(in, {1, 2, 5000}));
        }
    }
}

TEST_F(FilterBankTest, AbsurdSamplesDoAsInThePlainFilters) {
    for (const float absurd : {1e38F, -1e38F, std::numeric_limits<float>::infinity(),
                               std::numeric_limits<float>::quiet_NaN()}) {
        std::vector<float> in = whiteNoise(400, 9);
        in[201] = absurd;
        const Signals expected = plainOutputs(in);
        for (const VectorForm form : formsOfThisMachine()) {
            SCOPED_TRACE(nameOf(form));
            const FormScope scope(form);
            expectSame(expected, bankOutputs(in, {64}));
        }
    }
}

// A cascade without an output goes on, afterwards, as if the block had never been.
TEST_F(FilterBankTest, CascadeWithoutOutputDoesNotHearTheBlock) {
    const std::vector<float> in = whiteNoise(900, 21);
    for (const VectorForm form : formsOfThisMachine()) {
        const FormScope scope(form);
        for (std::size_t deaf = 0; deaf < kCascades; ++deaf) {
            FilterBank bank;
            FilterBank skipped;
            designAll(bank);
            designAll(skipped);
            Signals whole;
            Signals partly;
            for (int third = 0; third < 3; ++third) {
                FilterBank::Outputs all{};
                FilterBank::Outputs some{};
                for (std::size_t c = 0; c < kCascades; ++c) {
                    whole[c].assign(300, -1.0F);
                    partly[c].assign(300, -1.0F);
                    all[c] = whole[c].data();
                    some[c] = third == 1 && c == deaf ? nullptr : partly[c].data();
                }
                // The other bank's deaf cascade is to be compared over what it hears: thirds 0 and 2.
                bank.operate(in.data() + 300 * third, some, 300);
                if (third != 1) skipped.operate(in.data() + 300 * third, all, 300);
                if (third == 1) {
                    EXPECT_EQ(partly[deaf], std::vector<float>(300, -1.0F));
                } else {
                    EXPECT_EQ(partly[deaf], whole[deaf]) << nameOf(form) << ", " << deaf;
                }
            }
        }
    }
}

using Levels = std::array<std::vector<double>, FilterBank::kLevels>;

/** Sections over the 16-bit signal, a different one for each cascade. */
struct LevelSections {
    LevelSections() {
        constexpr double kCorners[] = {150.0, 250.0, 90.0};
        for (int level = 0; level < FilterBank::kLevels; ++level)
            filters[level].create(kCorners[level], 44100.0);
    }

    /** What each cascade gives for the signal, section by section and sample by sample. */
    Levels outputs(const std::vector<std::int16_t>& stereo) const {
        SecondOrderSection twice[2] = {filters[0].section(), filters[0].section()};
        SecondOrderSection once = filters[1].section();
        SecondOrderSection whole = filters[2].section();
        Levels levels;
        for (std::size_t i = 0; i < stereo.size(); i += 2) {
            const double mean = (stereo[i] + stereo[i + 1]) / 2.0;
            levels[FilterBank::kTwice].push_back(twice[1].step(twice[0].step(mean)));
            levels[FilterBank::kOnce].push_back(once.step(mean));
            levels[FilterBank::kWhole].push_back(whole.step(std::trunc(mean)));
        }
        return levels;
    }

    void design(FilterBank& bank) const {
        for (int level = 0; level < FilterBank::kLevels; ++level)
            bank.designLevel(static_cast<FilterBank::Level>(level), filters[level].section());
    }

    LowPathFilter2D filters[FilterBank::kLevels];
};

std::vector<std::int16_t> stereoNoise(std::size_t frames) {
    const std::vector<float> noise = whiteNoise(2 * frames, 12);
    std::vector<std::int16_t> stereo;
    for (const float sample : noise) stereo.push_back(static_cast<std::int16_t>(sample * 32767.0F));
    stereo[0] = stereo[1] = stereo[2] = -32768;
    stereo[3] = 32767;
    stereo[4] = stereo[5] = 32767;
    return stereo;
}

/** What a bank with all cascades and levels gives of both signals, fed in blocks. */
struct BothOutputs {
    Levels levels;
    Signals bands;
};

BothOutputs outputsInBlocks(const LevelSections& sections, const std::vector<float>& mono,
                            const std::vector<std::int16_t>& stereo, std::size_t block) {
    FilterBank bank;
    designAll(bank);
    sections.design(bank);
    BothOutputs got;
    for (std::vector<double>& level : got.levels) level.resize(mono.size());
    for (std::vector<float>& band : got.bands) band.resize(mono.size());
    for (std::size_t at = 0; at < mono.size(); at += block) {
        FilterBank::Outputs bands{};
        for (std::size_t c = 0; c < kCascades; ++c) bands[c] = got.bands[c].data() + at;
        FilterBank::LevelOutputs levels{};
        for (std::size_t l = 0; l < levels.size(); ++l) levels[l] = got.levels[l].data() + at;
        bank.operate(mono.data() + at, stereo.data() + 2 * at, bands, levels,
                     static_cast<int>(std::min(block, mono.size() - at)));
    }
    return got;
}

TEST_F(FilterBankTest, SectionsOverThe16BitSignalGiveTheirOwnBitsBesideTheBands) {
    constexpr std::size_t kFrames = 1500;
    const std::vector<float> mono = whiteNoise(kFrames, 8);
    const std::vector<std::int16_t> stereo = stereoNoise(kFrames);
    const LevelSections sections;
    const Levels expected = sections.outputs(stereo);
    const Signals bands = plainOutputs(mono);
    for (const VectorForm form : formsOfThisMachine()) {
        SCOPED_TRACE(nameOf(form));
        const FormScope scope(form);
        for (const std::size_t block :
             {1U, 4U, 5U, 6U, 7U, 13U, 127U, 128U, 129U, 133U, 588U, 640U}) {
            const BothOutputs got = outputsInBlocks(sections, mono, stereo, block);
            EXPECT_EQ(got.levels, expected) << block;
            expectSame(bands, got.bands);
        }
    }
}

// Both signals pause together; and each alone, in which case nothing may rest.
TEST_F(FilterBankTest, BothSignalsWakeFromSilenceWithTheirOwnBits) {
    constexpr std::size_t kFrames = 120000;
    constexpr std::size_t kBlock = 588;
    const LevelSections sections;
    for (const int pausing : {0, 1, 2}) {
        std::vector<float> mono = whiteNoise(kFrames, 8);
        std::vector<std::int16_t> stereo = stereoNoise(kFrames);
        if (pausing != 1) std::fill(mono.begin() + 1000, mono.end() - 1000, 0.0F);
        if (pausing != 2) std::fill(stereo.begin() + 2000, stereo.end() - 2000, std::int16_t{0});
        const BothOutputs got = outputsInBlocks(sections, mono, stereo, kBlock);
        EXPECT_TRUE(got.levels == sections.outputs(stereo)) << pausing;
        expectSame(plainOutputs(mono), got.bands);
    }
}

TEST_F(FilterBankTest, SectionWithoutOutputDoesNotHearTheBlock) {
    const std::vector<float> mono(600, 0.25F);
    const std::vector<std::int16_t> stereo = stereoNoise(600);
    const LevelSections sections;
    FilterBank bank;
    designAll(bank);
    sections.design(bank);
    std::vector<double> got(600);
    for (int third = 0; third < 3; ++third) {
        double* out = third == 1 ? nullptr : got.data() + 200 * third;
        bank.operate(mono.data(), stereo.data() + 400 * third, {}, {out, nullptr, nullptr}, 200);
    }
    std::vector<std::int16_t> heard(stereo.begin(), stereo.begin() + 400);
    heard.insert(heard.end(), stereo.begin() + 800, stereo.end());
    const std::vector<double> expected = sections.outputs(heard)[FilterBank::kTwice];
    for (std::size_t i = 0; i < 200; ++i) {
        EXPECT_EQ(got[i], expected[i]) << i;
        EXPECT_EQ(got[400 + i], expected[200 + i]) << i;
    }
}

TEST_F(FilterBankTest, DesignStartsACascadeFromSilence) {
    const std::vector<float> in = whiteNoise(300, 5);
    FilterBank bank;
    designAll(bank);
    Signals out;
    FilterBank::Outputs sinks{};
    for (std::size_t c = 0; c < kCascades; ++c) {
        out[c].resize(in.size());
        sinks[c] = out[c].data();
    }
    bank.operate(in.data(), sinks, 300);
    designAll(bank);
    bank.operate(in.data(), sinks, 300);
    expectSame(plainOutputs(in), out);
}

TEST_F(FilterBankTest, BlockWithoutSamplesChangesNothing) {
    FilterBank bank;
    designAll(bank);
    float untouched = -3.0F;
    bank.operate(&untouched, {&untouched, &untouched, &untouched, &untouched, &untouched}, 0);
    bank.operate(&untouched, {&untouched, &untouched, &untouched, &untouched, &untouched}, -5);
    EXPECT_EQ(untouched, -3.0F);
}

TEST_F(FilterBankTest, LimitedFormIsTheOneThatRuns) {
    for (const VectorForm form : formsOfThisMachine()) {
        const FormScope scope(form);
        EXPECT_EQ(vectorForm(), form);
    }
    EXPECT_EQ(vectorForm(), widestVectorForm());
}

}  // namespace
