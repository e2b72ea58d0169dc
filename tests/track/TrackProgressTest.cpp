// SPDX-License-Identifier: MIT
// The progress that the host receives, and that it can end the analysis at any of these moments.
#include <atomic>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <time.h>

#include "track/TrackHost.h"

namespace beatatlas::test {
namespace {

/** Records the progress it receives; stops the analysis at a given call. */
class Watcher {
public:
    explicit Watcher(int stopsAt = 0, int answer = 1) : stopsAt_(stopsAt), answer_(answer) {}

    void watch(BA_TrackOptions& options) {
        options.progress = show;
        options.progress_host = this;
    }
    const std::vector<double>& fractions() const { return fractions_; }
    bool wasCalledByTwoAtOnce() const { return wasCalledByTwoAtOnce_; }

private:
    static int show(void* host, double fraction) {
        auto& own = *static_cast<Watcher*>(host);
        if (own.isCalled_.exchange(true)) own.wasCalledByTwoAtOnce_ = true;
        own.fractions_.push_back(fraction);
        const bool stops = static_cast<int>(own.fractions_.size()) == own.stopsAt_;
        own.isCalled_ = false;
        return stops ? own.answer_ : 0;
    }

    int stopsAt_;
    int answer_;
    std::atomic<bool> isCalled_ = false;
    bool wasCalledByTwoAtOnce_ = false;
    std::vector<double> fractions_;
};

BA_TrackOptions optionsOf(int way) {
    BA_TrackOptions options = allWanted();
    options.threads = 1 + way % 3;
    options.wants_key = options.wants_session_key = way < 6 ? 1 : 0;
    return options;
}

/** One to three threads, few passes or quick ones, with the key or without. */
class TrackProgressTest : public ::testing::TestWithParam<int> {
protected:
    static bool isFewestPasses() { return GetParam() / 3 % 2 == 1; }
};

const Audio& music() {
    static const Audio audio = shortMusic(48000, 2);
    return audio;
}

TEST_P(TrackProgressTest, NeverFallsAndEndsAtOne) {
    Watcher watcher;
    BA_TrackOptions options = optionsOf(GetParam());
    watcher.watch(options);
    WatchedSource source(music());
    source.isFewestPasses = isFewestPasses();
    EXPECT_EQ(source.analyse(options).status, BA_TRACK_OK);
    const std::vector<double>& fractions = watcher.fractions();
    ASSERT_GE(fractions.size(), 7U) << "six blocks of 16384 frames, and the end";
    EXPECT_GT(fractions.front(), 0.0);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_EQ(fractions.back(), 1.0);
    EXPECT_LT(fractions[fractions.size() - 2], 1.0);
    EXPECT_FALSE(watcher.wasCalledByTwoAtOnce());
}

TEST_P(TrackProgressTest, StopsAtAnyCallAndIsNotCalledAgain) {
    for (int call = 1;; ++call) {
        Watcher watcher(call, call % 2 == 0 ? 1 : -1);
        BA_TrackOptions options = optionsOf(GetParam());
        watcher.watch(options);
        WatchedSource source(music());
        source.isFewestPasses = isFewestPasses();
        const Found found = source.analyse(options);
        EXPECT_TRUE(source.areAllClosed());
        if (found.status == BA_TRACK_OK) {
            EXPECT_GT(call, static_cast<int>(watcher.fractions().size()));
            break;
        }
        EXPECT_EQ(found.status, BA_TRACK_STOPPED);
        EXPECT_FALSE(found.hasTrack);
        EXPECT_EQ(static_cast<int>(watcher.fractions().size()), call);
    }
}

double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/** The fraction when half of the processor time had gone. */
double fractionAtHalfTime(BA_TrackOptions options, const Audio& audio, bool isFewestPasses) {
    std::vector<std::pair<double, double>> received;  // when, and what
    const double begin = processorSeconds();
    options.progress_host = &received;
    options.progress = [](void* host, double fraction) {
        static_cast<decltype(received)*>(host)->emplace_back(processorSeconds(), fraction);
        return 0;
    };
    WatchedSource source(audio);
    source.isFewestPasses = isFewestPasses;
    EXPECT_EQ(source.analyse(options).status, BA_TRACK_OK);
    const double half = begin + (processorSeconds() - begin) / 2.0;
    double atHalf = 0.0;
    for (const auto& [when, fraction] : received)
        if (when <= half) atHalf = fraction;
    return atHalf;
}

// A quarter to either side: what the parts cost differs between processors, and builds.
TEST(TrackProgress, IsAboutEvenInTimeWhateverIsAskedFor) {
    const Audio audio = shortMusic(44100, 60);
    for (const int tempo : {BA_TRACK_TEMPO_CONSTANT, BA_TRACK_TEMPO_OFF, BA_TRACK_TEMPO_AUTO}) {
        for (const int way : {0, 1, 2, 3, 4, 5, 6, 7}) {
            BA_TrackOptions options = allWanted();
            options.tempo = tempo;
            options.wants_key = options.wants_session_key = way & 1;
            options.wants_waves = way >> 1 & 1;
            const double atHalf = fractionAtHalfTime(options, audio, (way >> 2 & 1) == 1);
            EXPECT_GT(atHalf, 0.25) << "tempo " << tempo << ", way " << way;
            EXPECT_LT(atHalf, 0.75) << "tempo " << tempo << ", way " << way;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Ways, TrackProgressTest, ::testing::Range(0, 9));

}  // namespace
}  // namespace beatatlas::test
