// SPDX-License-Identifier: MIT
// Every request for memory is refused in turn, in one thread and in two: the analysis says so,
// leaks nothing, and finds the same as ever once there is memory again. Where the system has no
// thread to give, the calling one does the work.
#include <cfenv>
#include <ostream>
#include <system_error>
#include <thread>

#include <gtest/gtest.h>
#include <pthread.h>

#include "support/refuseEach.h"
#include "track/TrackHost.h"

namespace beatatlas::test {
namespace {

const Audio& music() {
    static const Audio audio = shortMusic(44100, 3, 170.0);
    return audio;
}

/** A source that asks for no memory itself. */
struct PlainSource {
    struct Pass {
        bool isOpen = false;
        std::size_t at = 0;
    };
    Pass passes[3];
    bool isFewestPasses = false;

    BA_TrackSource asSource() {
        return {sizeof(BA_TrackSource), this, open, read, close, isFewestPasses ? 1 : 0, 0};
    }
    int countOpen() const {
        int count = 0;
        for (const Pass& pass : passes) count += pass.isOpen ? 1 : 0;
        return count;
    }

private:
    std::atomic<int> opens_ = 0;

    static void* open(void* host) {
        auto& source = *static_cast<PlainSource*>(host);
        Pass& pass = source.passes[source.opens_++];
        pass.isOpen = true;
        return &pass;
    }
    static std::int64_t read(void*, void* pass, float* left, float* right, std::int64_t frames) {
        auto& at = static_cast<Pass*>(pass)->at;
        const auto count = std::min(static_cast<std::size_t>(frames), music().left.size() - at);
        std::copy_n(music().left.data() + at, count, left);
        std::copy_n(music().right.data() + at, count, right);
        at += count;
        return static_cast<std::int64_t>(count);
    }
    static void close(void*, void* pass) { static_cast<Pass*>(pass)->isOpen = false; }
};

struct Way {
    int threads;
    bool isFewestPasses;
    Shortage shortage;
    std::int32_t tempo = BA_TRACK_TEMPO_CONSTANT;
};

void PrintTo(const Way& way, std::ostream* out) {
    *out << way.threads << (way.isFewestPasses ? " fewest" : " quick")
         << (way.tempo == BA_TRACK_TEMPO_AUTO ? ", auto" : "");
}

class TrackShortageTest : public ::testing::TestWithParam<Way> {};

TEST_P(TrackShortageTest, IsSaidAndLeaksNothing) {
    const auto [threads, isFewestPasses, shortage, tempo] = GetParam();
    BA_TrackOptions options = allWanted();
    options.threads = threads;
    options.tempo = tempo;
    const Found expected = analyseArrays(options, music());
    ASSERT_FALSE(expected.beats.empty());
    ASSERT_FALSE(expected.ranking.empty());
    ASSERT_FALSE(expected.keys.empty());
    PlainSource source;
    source.isFewestPasses = isFewestPasses;
    const BA_TrackSource asked = source.asSource();
    BA_Track* track = nullptr;
    int status = BA_TRACK_OK;
    long before = 0;
    const auto analyse = [&] {
        before = liveBlocks();
        status = BA_TrackAnalyze(&options, 44100, music().frames(), &asked, &track);
    };
    const long requests =
        refuseEach(Requests::both, shortage, analyse, [&](bool threw, long granted) {
            EXPECT_FALSE(threw);
            EXPECT_EQ(status, BA_TRACK_NO_MEMORY) << granted;
            EXPECT_EQ(track, nullptr);
            EXPECT_EQ(source.countOpen(), 0);
            EXPECT_EQ(liveBlocks(), before);
            EXPECT_EQ(std::fegetround(), FE_TONEAREST);
            // Asked of a few, since it takes longer than the shortage.
            if (granted % 32 == 0) {
                EXPECT_TRUE(sameBits(analyseArrays(options, music()), expected));
            }
        });
    EXPECT_GT(requests, 50);
}

INSTANTIATE_TEST_SUITE_P(Ways, TrackShortageTest,
                         ::testing::Values(Way{1, false, Shortage::lasting},
                                           Way{1, true, Shortage::once},
                                           Way{2, false, Shortage::lasting},
                                           Way{2, true, Shortage::once},
                                           Way{1, true, Shortage::once, BA_TRACK_TEMPO_AUTO}));

TEST(ArraysShortageTest, IsSaid) {
    const Audio audio{44100, std::vector<float>(100, 0.5F), std::vector<float>(100, 0.5F)};
    BA_Track* track = nullptr;
    int status = BA_TRACK_OK;
    long before = 0;
    const auto analyse = [&] {
        before = liveBlocks();
        status = BA_TrackAnalyzeArrays(nullptr, 44100, audio.left.data(), audio.right.data(),
                                       audio.frames(), &track);
    };
    const long requests = refuseEach(Requests::both, Shortage::lasting, analyse, [&](bool, long) {
        EXPECT_EQ(status, BA_TRACK_NO_MEMORY);
        EXPECT_EQ(track, nullptr);
        EXPECT_EQ(liveBlocks(), before);
    });
    EXPECT_GT(requests, 50);
}

/** Lets threads ask for more stack than there are addresses, so that none can be started. */
class NoThreads {
public:
    NoThreads() {
        pthread_getattr_default_np(&usual_);
        pthread_attr_t vast;
        pthread_attr_init(&vast);
        pthread_attr_setstacksize(&vast, std::size_t{1} << 60);
        pthread_setattr_default_np(&vast);
        pthread_attr_destroy(&vast);
    }
    ~NoThreads() {
        pthread_setattr_default_np(&usual_);
        pthread_attr_destroy(&usual_);
    }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;

private:
    pthread_attr_t usual_{};
};

TEST(ThreadShortageTest, TheCallingThreadDoesTheWork) {
    const Found expected = analyseArrays(allWanted(), music());
    const auto caller = std::this_thread::get_id();
    for (const bool isFewestPasses : {false, true}) {
        WatchedSource source(music());
        source.isFewestPasses = isFewestPasses;
        bool isForeign = false;
        source.atEveryCall = [&] { isForeign = isForeign || std::this_thread::get_id() != caller; };
        BA_TrackOptions options = allWanted();
        options.threads = 2;
        const NoThreads shortage;
        EXPECT_THROW(std::thread([] {}).join(), std::system_error);
        EXPECT_TRUE(sameBits(source.analyse(options), expected));
        EXPECT_FALSE(isForeign);
        EXPECT_EQ(source.mostOpen(), 1);
    }
}

}  // namespace
}  // namespace beatatlas::test
