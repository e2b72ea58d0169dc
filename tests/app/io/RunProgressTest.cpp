// SPDX-License-Identifier: MIT
#include "io/RunProgress.h"

#include <limits>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace app {
namespace {

/** Three tracks of 100, 300 and 600 bytes. */
class RunProgressTest : public testing::Test {
protected:
    std::string fileOf(std::size_t bytes) {
        const std::string path = folder_.file(std::to_string(bytes));
        test::writeFile(path, std::string(bytes, 'x'));
        return path;
    }

    void work(double fraction, bool isDone) {
        run_.begin();
        run_.show(fraction, 200.0);
        run_.end(isDone);
    }

    test::TemporaryFolder folder_;
    RunProgress run_{{fileOf(100), fileOf(300), fileOf(600)}};
};

// 100 + 300 / 2 of 1000 bytes.
TEST_F(RunProgressTest, CountsBytesOfFiles) {
    EXPECT_EQ(run_.fraction(), 0.0);
    work(0.7, true);
    EXPECT_EQ(run_.count(), "1 of 3");
    run_.begin();
    run_.show(0.5, 200.0);
    EXPECT_DOUBLE_EQ(run_.fraction(), 0.25);
    EXPECT_EQ(run_.count(), "2 of 3");
    EXPECT_DOUBLE_EQ(run_.secondsLeft(10.0).value(), 30.0);
}

TEST_F(RunProgressTest, TellsNoTimeThatCannotBeTold) {
    run_.begin();
    run_.show(1e-30, 200.0);
    EXPECT_FALSE(run_.secondsLeft(10.0)) << "an age";
    run_.show(0.5, 200.0);
    EXPECT_FALSE(run_.secondsLeft(0.1)) << "too early";
}

// A folder full of what cannot be read must not shorten what is left: of 700 bytes 100 are done.
TEST_F(RunProgressTest, LeavesOutWhatFailed) {
    work(1.0, true);
    work(0.0, false);
    EXPECT_DOUBLE_EQ(run_.fraction(), 100.0 / 700.0);
    work(1.0, true);
    EXPECT_DOUBLE_EQ(run_.fraction(), 1.0);
    EXPECT_EQ(run_.outcome(), "2 tracks done, 1 failed");
}

// 200 s and half of 200 s in 10 s.
TEST_F(RunProgressTest, TellsTheSpeedOverAllTracks) {
    EXPECT_FALSE(run_.speed(10.0));
    work(1.0, true);
    run_.begin();
    run_.show(0.5, 200.0);
    EXPECT_DOUBLE_EQ(run_.speed(10.0).value(), 30.0);
    EXPECT_FALSE(run_.speed(0.1)) << "too early";
}

TEST_F(RunProgressTest, TellsWhatWasLeftOut) {
    work(1.0, true);
    EXPECT_EQ(run_.outcome(), "1 track done, 2 left out");
}

TEST_F(RunProgressTest, TakesFractionsOutsideToTheNearerEnd) {
    run_.begin();
    run_.show(7.5, 200.0);
    EXPECT_DOUBLE_EQ(run_.fraction(), 0.1);
    for (const double none : {-1.0, std::numeric_limits<double>::quiet_NaN()}) {
        run_.show(none, 200.0);
        EXPECT_EQ(run_.fraction(), 0.0);
    }
}

TEST(RunProgress, CountsNoSingleTrack) {
    RunProgress run({"missing"});
    run.begin();
    EXPECT_EQ(run.count(), "");
}

}  // namespace
}  // namespace app
