// SPDX-License-Identifier: MIT
// Oracle: SecondOrderSection, one after the other and sample by sample.
#include "dsp/FilterBank.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/TestNoise.h"
#include "session/SessionCascades.h"
#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"

namespace {

using namespace beatatlas;
using beatatlas::test::FormScope;
using beatatlas::test::formsOfThisMachine;
using beatatlas::test::nameOf;
using beatatlas::test::whiteNoise;

using Output = Cascade::Output;

struct OneLongCascade {
    static constexpr int kMostSamples = 300;
    static constexpr std::size_t kSignals = 1;
    static constexpr std::array<Cascade, 1> kCascades = {{{0, 4, Output::magnitudes}}};
};

/** No section takes an output: nothing is behind the step. Half of the cascades end in a row. */
struct OnlySingleSections {
    static constexpr int kMostSamples = 300;
    static constexpr std::size_t kSignals = 2;
    static constexpr std::array<Cascade, 8> kCascades = {{{0, 1, Output::magnitudes},
                                                          {1, 1, Output::magnitudes},
                                                          {0, 1, Output::magnitudes},
                                                          {1, 1, Output::magnitudes},
                                                          {0, 1, Output::values},
                                                          {0, 1, Output::values},
                                                          {0, 1, Output::magnitudes},
                                                          {1, 1, Output::values}}};
};

/** Four signals in one register, and third sections that take outputs of several. */
struct Scattered {
    static constexpr int kMostSamples = 300;
    static constexpr std::size_t kSignals = 4;
    static constexpr std::array<Cascade, 7> kCascades = {{{3, 3, Output::values},
                                                          {1, 1, Output::magnitudes},
                                                          {2, 4, Output::magnitudes},
                                                          {0, 1, Output::values},
                                                          {1, 3, Output::values},
                                                          {2, 2, Output::magnitudes},
                                                          {0, 1, Output::values}}};
};

bool sameNumber(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) ||
           std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

using Signals = std::vector<std::vector<double>>;

Signals noise(std::size_t signals, std::size_t n) {
    Signals made;
    for (std::size_t s = 0; s < signals; ++s) {
        const std::vector<float> narrow = whiteNoise(n, static_cast<std::uint32_t>(7 + s));
        made.emplace_back(narrow.begin(), narrow.end());
    }
    return made;
}

template <class Plan>
class FilterBankTest : public beatatlas::test::RoundTowardZero {
protected:
    static constexpr std::size_t kCascades = Plan::kCascades.size();

    /** A different one in each lane, so that no two can be taken for each other; some have b2 =
     *  −b0. */
    static SecondOrderSection sectionOf(std::size_t cascade, std::size_t section) {
        SecondOrderSection made;
        const double angle =
            0.02 + 0.11 * static_cast<double>(cascade) + 0.017 * static_cast<double>(section);
        const double alpha = std::sin(angle) / 1.4;
        if (cascade % 3 == 0) made.designLowPass(std::cos(angle), alpha);
        if (cascade % 3 == 1) made.designHighPass(std::cos(angle), alpha);
        if (cascade % 3 == 2) {
            made.designFeedback(std::cos(angle), alpha);
            made.b0 = alpha / (1.0 + alpha);
            made.b1 = 0.0;
            made.b2 = -made.b0;
        }
        return made;
    }

    static void design(FilterBank<Plan>& bank) {
        for (std::size_t c = 0; c < kCascades; ++c)
            for (std::size_t s = 0; s < Plan::kCascades[c].sections; ++s)
                bank.design(c, s, sectionOf(c, s));
    }

    static Signals expectedOf(const Signals& in) {
        Signals outputs;
        for (std::size_t c = 0; c < kCascades; ++c) {
            std::vector<double> signal = in[Plan::kCascades[c].signal];
            for (std::size_t s = 0; s < Plan::kCascades[c].sections; ++s) {
                SecondOrderSection section = sectionOf(c, s);
                for (double& x : signal) x = section.step(x);
            }
            if (Plan::kCascades[c].output == Output::magnitudes)
                for (double& x : signal) x = static_cast<double>(std::fabs(static_cast<float>(x)));
            outputs.push_back(signal);
        }
        return outputs;
    }

    /** Feeds samples from..to-1 and appends what the bank gives. */
    static void feed(FilterBank<Plan>& bank, const Signals& in, std::size_t from, std::size_t to,
                     Signals& outputs) {
        const auto n = static_cast<std::ptrdiff_t>(to - from);
        for (std::size_t s = 0; s < Plan::kSignals; ++s)
            std::copy_n(in[s].begin() + static_cast<std::ptrdiff_t>(from), n, bank.signal(s));
        bank.operate(static_cast<int>(n));
        for (std::size_t c = 0; c < kCascades; ++c) {
            if (Plan::kCascades[c].output == Output::magnitudes)
                outputs[c].insert(outputs[c].end(), bank.magnitudes(c), bank.magnitudes(c) + n);
            else
                outputs[c].insert(outputs[c].end(), bank.values(c), bank.values(c) + n);
        }
    }

    /** Feeds the signals in blocks whose lengths follow `blocks` in turn. */
    static Signals outputsOf(const Signals& in, const std::vector<std::size_t>& blocks) {
        FilterBank<Plan> bank;
        design(bank);
        Signals outputs(kCascades);
        std::size_t turn = 0;
        for (std::size_t at = 0; at < in[0].size();) {
            const std::size_t end = std::min(at + blocks[turn++ % blocks.size()], in[0].size());
            feed(bank, in, at, end, outputs);
            at = end;
        }
        return outputs;
    }

    static void expectSame(const Signals& expected, const Signals& got) {
        for (std::size_t c = 0; c < kCascades; ++c) {
            ASSERT_EQ(expected[c].size(), got[c].size());
            for (std::size_t i = 0; i < expected[c].size(); ++i)
                ASSERT_TRUE(sameNumber(expected[c][i], got[c][i]))
                    << "cascade " << c << ", sample " << i << ": " << expected[c][i] << ", "
                    << got[c][i];
        }
    }

    static void expectPlainBits(const Signals& in, const std::vector<std::size_t>& blocks) {
        const Signals expected = expectedOf(in);
        for (const VectorForm form : formsOfThisMachine()) {
            SCOPED_TRACE(nameOf(form));
            const FormScope scope(form);
            expectSame(expected, outputsOf(in, blocks));
        }
    }
};

using Plans = ::testing::Types<SessionCascades, OneLongCascade, OnlySingleSections, Scattered>;
TYPED_TEST_SUITE(FilterBankTest, Plans);

TYPED_TEST(FilterBankTest, GivesTheBitsOfItsSectionsInEveryForm) {
    const Signals in = noise(TypeParam::kSignals, 2000);
    for (const std::size_t block : {1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 13U, 127U, 299U, 300U})
        this->expectPlainBits(in, {block});
    this->expectPlainBits(in, {1, 300, 2, 3, 100, 4, 5});
}

// After the burst every section comes to give the same tiny number for ever; nothing may be lost
// when the music goes on. A level that stays the same is no different.
TYPED_TEST(FilterBankTest, WakesFromSilenceAndFromALevelWithTheSameBits) {
    const Signals burst = noise(TypeParam::kSignals, 50);
    for (const double level : {0.0, 0.25}) {
        Signals in(TypeParam::kSignals, std::vector<double>(70000, level));
        for (std::size_t s = 0; s < in.size(); ++s)
            for (const std::ptrdiff_t at : {11, 65000})
                std::copy(burst[s].begin(), burst[s].end(), in[s].begin() + at);
        this->expectPlainBits(in, {300});
        this->expectPlainBits(in, {1, 2, 300});
    }
}

TYPED_TEST(FilterBankTest, OneSignalThatPausesLetsNoSectionRest) {
    for (std::size_t pausing = 0; pausing < TypeParam::kSignals; ++pausing) {
        Signals in = noise(TypeParam::kSignals, 30000);
        std::fill(in[pausing].begin() + 1000, in[pausing].end() - 1000, 0.0);
        this->expectPlainBits(in, {299});
    }
}

TYPED_TEST(FilterBankTest, AbsurdSamplesDoAsInThePlainSections) {
    constexpr double kInf = std::numeric_limits<double>::infinity();
    for (const double absurd : {1e300, -1e300, kInf, std::nan("")}) {
        Signals in = noise(TypeParam::kSignals, 400);
        for (std::vector<double>& signal : in) signal[201] = absurd;
        this->expectPlainBits(in, {64});
    }
}

TYPED_TEST(FilterBankTest, DesignStartsFromSilence) {
    const Signals in = noise(TypeParam::kSignals, 250);
    FilterBank<TypeParam> bank;
    Signals outputs(TypeParam::kCascades.size());
    this->design(bank);
    this->feed(bank, in, 0, 250, outputs);
    this->design(bank);
    for (std::vector<double>& output : outputs) output.clear();
    this->feed(bank, in, 0, 250, outputs);
    this->expectSame(this->expectedOf(in), outputs);
}

TYPED_TEST(FilterBankTest, CascadeThatIsNotDesignedIsSilent) {
    const Signals in = noise(TypeParam::kSignals, 250);
    FilterBank<TypeParam> bank;
    Signals outputs(TypeParam::kCascades.size());
    this->feed(bank, in, 0, 250, outputs);
    for (const std::vector<double>& output : outputs)
        for (const double value : output) ASSERT_EQ(value, 0.0);
}

// At a rate without numbers for a filter its coefficients are none; the other cascades go on.
TYPED_TEST(FilterBankTest, SectionWithoutNumbersSpoilsNoOtherCascade) {
    const Signals in = noise(TypeParam::kSignals, 250);
    const Signals expected = this->expectedOf(in);
    for (std::size_t spoilt = 0; spoilt < TypeParam::kCascades.size(); ++spoilt) {
        FilterBank<TypeParam> bank;
        this->design(bank);
        SecondOrderSection none;
        none.designLowPass(std::nan(""), std::nan(""));
        bank.design(spoilt, 0, none);
        Signals outputs(TypeParam::kCascades.size());
        this->feed(bank, in, 0, 250, outputs);
        for (const double value : outputs[spoilt]) ASSERT_TRUE(std::isnan(value));
        outputs[spoilt] = expected[spoilt];
        this->expectSame(expected, outputs);
    }
}

TYPED_TEST(FilterBankTest, BlockWithoutSamplesChangesNothing) {
    const Signals in = noise(TypeParam::kSignals, 250);
    FilterBank<TypeParam> bank;
    this->design(bank);
    Signals outputs(TypeParam::kCascades.size());
    this->feed(bank, in, 0, 100, outputs);
    bank.operate(0);
    bank.operate(-5);
    this->feed(bank, in, 100, 250, outputs);
    this->expectSame(this->expectedOf(in), outputs);
}

// Single sections leave upper lanes to third and fourth ones, the lowest first: that of cascade 0
// to the third section of cascade 3, which is two steps behind the second, and that of cascade 1 to
// the fourth.
TEST(CascadeLayoutTest, LaysLaterSectionsWhereNoSecondSectionIs) {
    constexpr CascadeLayout kLayout = CascadeLayout::of(SessionCascades::kCascades);
    EXPECT_EQ(kLayout.lanes[SessionCascades::kMid], (std::array<std::size_t, 4>{3, 11, 8, 9}));
    EXPECT_EQ(kLayout.delays[11], 1);
    EXPECT_EQ(kLayout.delays[8], 3);
    EXPECT_EQ(kLayout.delays[9], 5);
    EXPECT_EQ(kLayout.depth, 5);
    EXPECT_EQ(kLayout.isRowOfMagnitudes, (std::array{false, false, false, true}));
}

TEST(VectorFormTest, LimitedFormIsTheOneThatRuns) {
    for (const VectorForm form : formsOfThisMachine()) {
        const FormScope scope(form);
        EXPECT_EQ(vectorForm(), form);
    }
    EXPECT_EQ(vectorForm(), widestVectorForm());
}

}  // namespace
