// SPDX-License-Identifier: MIT
// The utilities as exports of both interfaces: with a session they are the plain functions, whose
// arguments they pass on in order.
#include <cfenv>
#include <vector>

#include <gtest/gtest.h>

#include "beatatlas/utilities.h"
#include "support/ExportSet.h"
#include "support/signals.h"

namespace beatatlas::test {
namespace {

class UtilityExportsTest : public ::testing::TestWithParam<const ExportSet& (*)()> {
protected:
    UtilityExportsTest() : session_(exports_.create[0](1000, 32, false, false, false)) {
        std::fesetround(mode_);
    }
    ~UtilityExportsTest() override { exports_.release(session_); }

    const ExportSet& exports_ = GetParam()();
    int mode_ = std::fegetround();
    void* session_;
    // Two seconds of A4 at a tenth of the session's rate, a little sharp.
    std::vector<float> tone_ = sine(8820, 443.0, 4410, 10000.0);
};

TEST_P(UtilityExportsTest, ResamplesAsThePlainFunctionDoes) {
    std::vector<float> expected(700, 7.0F);
    std::vector<float> out = expected;
    resample2(expected.data(), 650, tone_.data(), 8000, 0.1F, 12, 0);
    exports_.resample(session_, out.data(), 650, tone_.data(), 8000, 0.1F, 12, 0);
    EXPECT_EQ(out, expected);
    EXPECT_NE(out[0], 7.0F);
    EXPECT_EQ(out[650], 7.0F);
}

TEST_P(UtilityExportsTest, CutsBeatsAsThePlainFunctionDoes) {
    std::vector<float> expected(tone_.size(), 7.0F);
    std::vector<float> out = expected;
    CutBeats(expected.data(), tone_.data(), 8000, 4410.0F, 2, 1);
    exports_.cutBeats(session_, out.data(), tone_.data(), 8000, 4410.0F, 2, 1);
    EXPECT_EQ(out, expected);
    EXPECT_NE(out[4000], 7.0F);
    EXPECT_EQ(out[8000], 7.0F);
}

TEST_P(UtilityExportsTest, FindsTheConcertPitch) {
    EXPECT_EQ(exports_.pitchDetect(session_, tone_.data(), 8820, 4410.0F, 1, 0), 443.0F);
}

// A minor triad on A: 443 Hz, times 2^(3/12), times 2^(7/12).
TEST_P(UtilityExportsTest, FindsTheKeyThatThePlainFunctionFinds) {
    std::vector<float> chord = sine(22050, 443.0, 4410, 10000.0);
    mixInto(chord, sine(22050, 526.82, 4410, 10000.0));
    mixInto(chord, sine(22050, 663.75, 4410, 10000.0));
    S_KEY_SCALE_RESULT unused{};
    const int expected = KeyCodeScale(&unused, chord.data(), 22050, 4410.0F, 443.0F, 1, 1, nullptr);
    EXPECT_EQ(exports_.getKey(session_, chord.data(), 22050, 4410.0F, 443.0F, 1, 1), expected);
    EXPECT_NE(expected, exports_.getKey(nullptr, chord.data(), 22050, 4410.0F, 443.0F, 1, 1));
}

INSTANTIATE_TEST_SUITE_P(BothInterfaces, UtilityExportsTest,
                         ::testing::Values(plainExports, mangledExports));

}  // namespace
}  // namespace beatatlas::test
