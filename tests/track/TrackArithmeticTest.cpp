// SPDX-License-Identifier: MIT
// The host's rounding mode and its standard output are its own.
#include <atomic>
#include <cfenv>
#include <string>

#include <gtest/gtest.h>

#include "track/TrackHost.h"

namespace beatatlas::test {
namespace {

constexpr int kModes[] = {FE_TONEAREST, FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD};

/** Gives the test's thread its mode back. */
class TrackArithmeticTest : public ::testing::Test {
protected:
    void TearDown() override { std::fesetround(mode_); }

    /** Analyses under a mode, in which every callback has to find itself. */
    Found analyseUnder(int mode, BA_TrackOptions options, bool isFewestPasses) {
        WatchedSource source(audio_);
        source.isFewestPasses = isFewestPasses;
        source.readSizes = {5000};
        std::atomic<bool> isForeign = false;
        source.atEveryCall = [&] { isForeign = isForeign || std::fegetround() != mode; };
        std::pair<std::atomic<bool>*, int> seen{&isForeign, mode};
        options.progress = [](void* host, double fraction) {
            const auto& [foreign, expected] =
                *static_cast<std::pair<std::atomic<bool>*, int>*>(host);
            *foreign = *foreign || std::fegetround() != expected || fraction > 1.0;
            return 0;
        };
        options.progress_host = &seen;
        std::fesetround(mode);
        Found found = source.analyse(options);
        EXPECT_EQ(std::fegetround(), mode);
        EXPECT_FALSE(isForeign) << "a callback ran in another mode than " << mode;
        return found;
    }

    Audio audio_ = shortMusic(44100, 6, 126.3);

private:
    int mode_ = std::fegetround();
};

TEST_F(TrackArithmeticTest, IsTheHostsInEveryModeAndTheResultsAreTheSame) {
    for (const int tempo : {BA_TRACK_TEMPO_CONSTANT, BA_TRACK_TEMPO_SIMPLE}) {
        BA_TrackOptions options = allWanted();
        options.tempo = tempo;
        options.range_seconds = 4.0;
        const Found expected = analyseArrays(options, audio_);
        for (const int mode : kModes) {
            for (const int threads : {1, 2}) {
                options.threads = threads;
                EXPECT_TRUE(sameBits(analyseUnder(mode, options, false), expected));
                EXPECT_TRUE(sameBits(analyseUnder(mode, options, true), expected));
            }
        }
    }
}

TEST_F(TrackArithmeticTest, IsTheHostsAfterAnAnalysisThatFailed) {
    for (const int mode : kModes) {
        for (long read = 1; read < 8; ++read) {
            WatchedSource source(audio_);
            source.failsAtRead = read;
            BA_TrackOptions options = allWanted();
            options.threads = 1 + static_cast<int>(read % 2);
            std::fesetround(mode);
            source.analyse(options);
            EXPECT_EQ(std::fegetround(), mode);
        }
    }
}

TEST_F(TrackArithmeticTest, IsNotTouchedByGettersAndTheyDoNotDependOnIt) {
    BA_Track* track = nullptr;
    ASSERT_EQ(BA_TrackAnalyzeArrays(nullptr, audio_.rate, audio_.left.data(), audio_.right.data(),
                                    audio_.frames(), &track),
              BA_TRACK_OK);
    const double bpm = BA_TrackBpm(track);
    ASSERT_GT(bpm, 0.0);
    for (const int mode : kModes) {
        std::fesetround(mode);
        EXPECT_EQ(BA_TrackBpm(track), bpm);
        BA_TrackBeats(track, nullptr, 0);
        BA_TrackSessionKey(track);
        EXPECT_EQ(std::fegetround(), mode);
    }
    std::fesetround(FE_UPWARD);
    BA_TrackRelease(track);
    EXPECT_EQ(std::fegetround(), FE_UPWARD);
}

// The session behind it has its lines to print: the same track through one of the core does.
TEST_F(TrackArithmeticTest, NothingIsPrinted) {
    for (const int tempo : {BA_TRACK_TEMPO_CONSTANT, BA_TRACK_TEMPO_VARIED, BA_TRACK_TEMPO_SIMPLE,
                            BA_TRACK_TEMPO_OFF, BA_TRACK_TEMPO_AUTO}) {
        for (const int threads : {1, 2}) {
            BA_TrackOptions options = allWanted();
            options.tempo = tempo;
            options.threads = threads;
            ::testing::internal::CaptureStdout();
            ::testing::internal::CaptureStderr();
            const Found found = analyseArrays(options, audio_);
            EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
            EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
            EXPECT_EQ(found.status, BA_TRACK_OK);
            EXPECT_EQ(found.beats.empty(), tempo == BA_TRACK_TEMPO_OFF);
        }
    }
}

}  // namespace
}  // namespace beatatlas::test
