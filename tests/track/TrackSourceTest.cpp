// SPDX-License-Identifier: MIT
// What the host's source is promised, and every way in which it can end an analysis: one thread and
// two, few passes and quick ones.
#include <limits>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "track/TrackHost.h"

namespace beatatlas::test {
namespace {

constexpr std::int64_t kBlock = 16384;

/** Two blocks and a bit. */
const Audio& threeBlocks() {
    static const Audio audio = [] {
        Audio music = shortMusic(44100, 1);
        music.left.resize(2 * kBlock + 100);
        music.right.resize(2 * kBlock + 100);
        return music;
    }();
    return audio;
}

struct Way {
    int threads;
    bool isFewestPasses;
    bool wantsKey;
};

void PrintTo(const Way& way, std::ostream* out) {
    *out << way.threads << (way.isFewestPasses ? " fewest" : "") << (way.wantsKey ? " key" : "");
}

class TrackSourceTest : public ::testing::TestWithParam<Way> {
protected:
    static BA_TrackOptions options() {
        BA_TrackOptions options = allWanted();
        options.threads = GetParam().threads;
        options.wants_key = options.wants_session_key = GetParam().wantsKey ? 1 : 0;
        return options;
    }
    void expectOrderly(const WatchedSource& source) const {
        EXPECT_TRUE(source.areAllClosed());
        EXPECT_FALSE(source.wasMisused());
        EXPECT_LE(source.mostOpen(), GetParam().isFewestPasses ? 1 : GetParam().threads);
    }
    static int passes() {
        if (!GetParam().wantsKey) return 1;
        return GetParam().isFewestPasses || GetParam().threads == 1 ? 2 : 3;
    }
    WatchedSource source_{threeBlocks()};

    void SetUp() override { source_.isFewestPasses = GetParam().isFewestPasses; }
};

TEST_P(TrackSourceTest, IsReadInAsManyPassesAsPromised) {
    const Found found = source_.analyse(options());
    EXPECT_TRUE(sameBits(found, analyseArrays(options(), threeBlocks())));
    EXPECT_EQ(found.status, BA_TRACK_OK);
    EXPECT_EQ(source_.opens(), passes());
    expectOrderly(source_);
    // Three blocks and one read more, which gives nothing.
    EXPECT_EQ(source_.reads(), 4 * passes());
}

TEST_P(TrackSourceTest, MayHandOutItsFramesInAnySteps) {
    const Found expected = analyseArrays(options(), threeBlocks());
    using Steps = std::vector<std::int64_t>;
    for (const Steps& steps : {Steps{1}, Steps{576}, Steps{1, 2000, 3}, Steps{kBlock - 1}}) {
        WatchedSource source(threeBlocks());
        source.isFewestPasses = GetParam().isFewestPasses;
        source.readSizes = steps;
        EXPECT_TRUE(sameBits(source.analyse(options()), expected)) << steps[0];
        expectOrderly(source);
    }
}

TEST_P(TrackSourceTest, OfAnotherLengthIsRefused) {
    const std::int64_t frames = threeBlocks().frames();
    for (const std::int64_t length : {std::int64_t{0}, std::int64_t{1}, kBlock, frames / 2,
                                      frames - 1, frames + 1, 3 * kBlock, 2 * frames}) {
        WatchedSource source(threeBlocks());
        source.isFewestPasses = GetParam().isFewestPasses;
        source.lengths = {length};
        const Found found = source.analyse(options());
        EXPECT_EQ(found.status, BA_TRACK_WRONG_LENGTH) << length;
        EXPECT_FALSE(found.hasTrack);
        expectOrderly(source);
        EXPECT_EQ(source.opens(), 1) << "the first pass shows it";
    }
}

TEST_P(TrackSourceTest, OfAnotherLengthInALaterPassIsRefused) {
    const std::int64_t frames = threeBlocks().frames();
    for (int pass = 2; pass <= passes(); ++pass) {
        for (const std::int64_t length : {std::int64_t{0}, frames - 1, frames + 1}) {
            WatchedSource source(threeBlocks());
            source.isFewestPasses = GetParam().isFewestPasses;
            source.lengths.assign(static_cast<std::size_t>(pass - 1), frames);
            source.lengths.push_back(length);
            EXPECT_EQ(source.analyse(options()).status, BA_TRACK_WRONG_LENGTH);
            expectOrderly(source);
        }
    }
}

TEST_P(TrackSourceTest, MayStopAtAnyOpen) {
    for (int open = 1; open <= passes(); ++open) {
        WatchedSource source(threeBlocks());
        source.isFewestPasses = GetParam().isFewestPasses;
        source.failsAtOpen = open;
        const Found found = source.analyse(options());
        EXPECT_EQ(found.status, BA_TRACK_STOPPED) << open;
        EXPECT_FALSE(found.hasTrack);
        expectOrderly(source);
    }
}

TEST_P(TrackSourceTest, MayStopAtAnyRead) {
    for (long read = 1; read <= 4L * passes(); ++read) {
        WatchedSource source(threeBlocks());
        source.isFewestPasses = GetParam().isFewestPasses;
        source.failsAtRead = read;
        const Found found = source.analyse(options());
        EXPECT_EQ(found.status, BA_TRACK_STOPPED) << read;
        EXPECT_FALSE(found.hasTrack);
        expectOrderly(source);
    }
}

TEST_P(TrackSourceTest, ThatClaimsMoreThanItWasAskedForHasTheWrongLength) {
    for (long read = 1; read <= 4L * passes(); ++read) {
        for (const std::int64_t claim : {kBlock + 1, std::numeric_limits<std::int64_t>::max()}) {
            WatchedSource source(threeBlocks());
            source.isFewestPasses = GetParam().isFewestPasses;
            source.failsAtRead = read;
            source.failure = claim;
            EXPECT_EQ(source.analyse(options()).status, BA_TRACK_WRONG_LENGTH) << read;
            expectOrderly(source);
        }
    }
}

// C++ hosts at their own risk: it is no way to report anything, but nothing breaks.
TEST_P(TrackSourceTest, ThatThrowsStops) {
    for (long call = 1; call <= 6L * passes(); ++call) {
        WatchedSource source(threeBlocks());
        source.isFewestPasses = GetParam().isFewestPasses;
        BA_TrackOptions throwing = options();
        std::atomic<long> calls = 0;
        std::pair<std::atomic<long>*, long> host{&calls, call};
        throwing.progress_host = &host;
        throwing.progress = [](void* counter, double) -> int {
            const auto& [counted, last] =
                *static_cast<std::pair<std::atomic<long>*, long>*>(counter);
            if (++*counted == last) throw std::runtime_error("a host's own");
            return 0;
        };
        const Found found = source.analyse(throwing);
        EXPECT_EQ(found.status, calls >= call ? BA_TRACK_STOPPED : BA_TRACK_OK);
        expectOrderly(source);
    }
}

INSTANTIATE_TEST_SUITE_P(Ways, TrackSourceTest,
                         ::testing::Values(Way{1, false, false}, Way{1, false, true},
                                           Way{1, true, true}, Way{2, false, false},
                                           Way{2, false, true}, Way{2, true, true},
                                           Way{4, false, true}));

}  // namespace
}  // namespace beatatlas::test
