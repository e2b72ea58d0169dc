// SPDX-License-Identifier: MIT
// One track, one answer: however many threads work on it, whatever else runs beside it. The thread
// sanitizer watches this program as well.
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>

#include "track/TrackHost.h"

namespace beatatlas::test {
namespace {

constexpr int kSeconds = 8;

TEST(TrackThreadsTest, AnyNumberOfThreadsAndPassesFindsTheSameBits) {
    const Audio audio = shortMusic(44100, kSeconds, 126.3);
    const Found expected = analyseArrays(allWanted(), audio);
    ASSERT_EQ(expected.status, BA_TRACK_OK);
    for (int threads = 1; threads <= 4; ++threads) {
        BA_TrackOptions options = allWanted();
        options.threads = threads;
        EXPECT_TRUE(sameBits(analyseArrays(options, audio), expected)) << threads;
        for (const bool isFewestPasses : {false, true}) {
            WatchedSource source(audio);
            source.isFewestPasses = isFewestPasses;
            source.readSizes = {1000, 4097};
            EXPECT_TRUE(sameBits(source.analyse(options), expected)) << threads;
        }
    }
}

TEST(TrackThreadsTest, AnalysesAtOnceFindWhatTheyFindAlone) {
    std::vector<Audio> tracks;
    std::vector<BA_TrackOptions> options;
    std::vector<Found> alone;
    for (int i = 0; i < 4; ++i) {
        tracks.push_back(shortMusic(i % 2 == 0 ? 44100 : 48000, kSeconds, 100.0 + 9.3 * i));
        options.push_back(allWanted());
        options.back().tempo = i;
        options.back().threads = 1 + i % 3;
        alone.push_back(analyseArrays(options.back(), tracks.back()));
    }
    std::vector<Found> together(tracks.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        threads.emplace_back([&, i] {
            WatchedSource source(tracks[i]);
            source.isFewestPasses = i % 2 == 0;
            together[i] = source.analyse(options[i]);
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        EXPECT_EQ(alone[i].status, BA_TRACK_OK);
        EXPECT_TRUE(sameBits(together[i], alone[i])) << "track " << i;
    }
}

TEST(TrackThreadsTest, NoThreadIsLeftAndNoneIsStartedThatIsNotAllowed) {
    const Audio audio = shortMusic(44100, 2);
    for (int threads = 1; threads <= 3; ++threads) {
        std::mutex mutex;
        std::set<std::thread::id> seen;
        WatchedSource source(audio);
        source.atEveryCall = [&] {
            const std::lock_guard lock(mutex);
            seen.insert(std::this_thread::get_id());
        };
        BA_TrackOptions options = allWanted();
        options.threads = threads;
        source.analyse(options);
        EXPECT_EQ(seen.count(std::this_thread::get_id()), 1U);
        EXPECT_EQ(seen.size(), threads == 1 ? 1U : 2U);
        EXPECT_TRUE(source.areAllClosed());
    }
}

// A handler of the host may take any of its threads by surprise, but never one that it does not
// know.
TEST(TrackThreadsTest, SignalsOfTheHostAreKeptFromTheThreadsOfTheLibrary) {
    const Audio audio = shortMusic(44100, 2);
    const auto takes = [](int signal) {
        sigset_t blocked;
        sigemptyset(&blocked);
        pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
        return sigismember(&blocked, signal) == 0;
    };
    for (const bool isFewestPasses : {false, true}) {
        const std::thread::id own = std::this_thread::get_id();
        std::atomic<int> callsOfOthers = 0;
        WatchedSource source(audio);
        source.isFewestPasses = isFewestPasses;
        source.atEveryCall = [&] {
            const bool isOwn = std::this_thread::get_id() == own;
            if (!isOwn) ++callsOfOthers;
            for (const int signal : {SIGINT, SIGTERM, SIGALRM, SIGUSR1, SIGCHLD, SIGRTMIN})
                EXPECT_EQ(takes(signal), isOwn) << signal;
            for (const int fault : {SIGSEGV, SIGBUS, SIGFPE}) EXPECT_TRUE(takes(fault)) << fault;
        };
        BA_TrackOptions options = allWanted();
        options.threads = 2;
        EXPECT_EQ(source.analyse(options).status, BA_TRACK_OK);
        EXPECT_GT(callsOfOthers, 0);
        EXPECT_TRUE(takes(SIGTERM));
    }
}

// The unwinding of the host's thread passes through the library, which closes its passes and ends
// its own thread.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kStacksAreWatched = true;
#elif defined(__has_feature)
constexpr bool kStacksAreWatched = __has_feature(address_sanitizer);
#else
constexpr bool kStacksAreWatched = false;
#endif

TEST(TrackThreadsTest, ACancelledThreadOfTheHostIsLetGo) {
    if (kStacksAreWatched)
        GTEST_SKIP() << "the address sanitizer loses count of a stack that a cancellation unwinds";
    struct Host {
        Audio audio = shortMusic(44100, 2);
        WatchedSource source{audio};
        std::thread::id thread;
    };
    for (const bool isFewestPasses : {false, true}) {
        Host host;
        host.source.isFewestPasses = isFewestPasses;
        const auto analyse = [](void* argument) -> void* {
            auto& own = *static_cast<Host*>(argument);
            own.thread = std::this_thread::get_id();
            BA_TrackOptions options = allWanted();
            options.threads = 2;
            options.progress_host = argument;
            options.progress = [](void* hosts, double fraction) {
                if (static_cast<Host*>(hosts)->thread != std::this_thread::get_id()) return 0;
                if (fraction < 0.3) return 0;
                pthread_cancel(pthread_self());
                pthread_testcancel();
                return 0;
            };
            own.source.analyse(options);
            return nullptr;
        };
        pthread_t thread{};
        ASSERT_EQ(pthread_create(&thread, nullptr, analyse, &host), 0);
        void* result = nullptr;
        pthread_join(thread, &result);
        EXPECT_EQ(result, PTHREAD_CANCELED);
        EXPECT_TRUE(host.source.areAllClosed());
    }
}

TEST(TrackThreadsTest, AnyThreadsMayReadOneTrackAtOnce) {
    const Audio audio = shortMusic(44100, kSeconds);
    BA_Track* track = nullptr;
    ASSERT_EQ(BA_TrackAnalyzeArrays(nullptr, audio.rate, audio.left.data(), audio.right.data(),
                                    audio.frames(), &track),
              BA_TRACK_OK);
    std::vector<BA_TrackBeat> expected(BA_TrackBeats(track, nullptr, 0));
    BA_TrackBeats(track, expected.data(), expected.size());
    ASSERT_FALSE(expected.empty());
    std::vector<std::thread> threads;
    std::atomic<int> same = 0;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            std::vector<BA_TrackBeat> beats(BA_TrackBeats(track, nullptr, 0));
            BA_TrackBeats(track, beats.data(), beats.size());
            same += beats.size() == expected.size() && beats.back().frame == expected.back().frame;
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(same, 4);
    BA_TrackRelease(track);
}

}  // namespace
}  // namespace beatatlas::test
