// SPDX-License-Identifier: MIT
// Work on a file that ends before its end, in every phase: whatever ends it is reported once, and
// no thread is left behind.
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

#include "base/Interrupt.h"
#include "base/errors.h"
#include "media/FileAnalysis.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"

namespace media {
namespace {

constexpr int kFrames = 44100 * 16;
constexpr int kStretches = (kFrames + 16383) / 16384;

/** How the work is done: what may be kept, by how many threads, and whether the file declares its
 *  length. */
struct Way {
    std::int64_t memory;
    int threads;
    bool isDeclared;
};

std::vector<Way> everyWay() {
    std::vector<Way> ways;
    for (const std::int64_t memory : {std::int64_t{1}, std::int64_t{1} << 30})
        for (const int threads : {1, 2, 3})
            for (const bool isDeclared : {false, true})
                ways.push_back({memory, threads, isDeclared});
    return ways;
}

std::ptrdiff_t countThreads() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

/** A sanitizer may have a thread of its own, from the first that is started on. */
std::ptrdiff_t threadsBefore() {
    std::thread([] {}).join();
    return countThreads();
}

/** A thread that was waited for may be on the system's list for a moment longer. */
bool areThreadsLeft(std::ptrdiff_t before) {
    for (int i = 0; i < 1000 && countThreads() > before; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return countThreads() > before;
}

class InterruptedWork : public testing::Test {
protected:
    void SetUp() override {
        const test::Sound sound = test::tone(44100, 2, 16.0, 220.0, 0.4);
        test::writeAudioFile(folder_.file("1"), {"wav", "pcm_f32le"}, sound);
        test::writeAudioFile(folder_.file("0"), {"w64", "pcm_f32le"}, sound);
    }

    FileAnalysis::Options optionsFor(const Way& way) const {
        FileAnalysis::Options options;
        options.track.wantsSessionKey = true;
        options.effort = {way.memory, way.threads};
        return options;
    }

    void analyze(const Way& way, const FileAnalysis::Options& options) const {
        static_cast<void>(FileAnalysis(options).analyze(folder_.file(way.isDeclared ? "1" : "0")));
    }

    test::TemporaryFolder folder_;
};

// The first stretch, one in the middle, the last one.
TEST_F(InterruptedWork, TellsOnceWhatTheDecodingThrows) {
    const std::ptrdiff_t before = threadsBefore();
    for (const Way& way : everyWay()) {
        for (const int failing : {1, kStretches / 2, kStretches}) {
            int stretches = 0;
            FileAnalysis::Options options = optionsFor(way);
            options.alongside = [&](const StereoBlock&) {
                if (++stretches == failing) throw base::TrackError("is torn");
            };
            EXPECT_THROW(analyze(way, options), base::TrackError);
            EXPECT_EQ(stretches, failing);
            EXPECT_FALSE(areThreadsLeft(before));
        }
    }
}

// While it is decoded, while beats are heard, and when all but the last remark is done.
TEST_F(InterruptedWork, TellsWhatTheHostThrowsWhereverTheWorkIs) {
    const std::ptrdiff_t before = threadsBefore();
    for (const Way& way : everyWay()) {
        for (const double failing : {0.0, 0.01, 0.5, 0.8, 1.0}) {
            int thrown = 0;
            FileAnalysis::Options options = optionsFor(way);
            options.progress = [&](double fraction, double) {
                if (fraction < failing) return;
                ++thrown;
                throw std::out_of_range("enough");
            };
            EXPECT_THROW(analyze(way, options), std::out_of_range);
            EXPECT_EQ(thrown, 1);
            EXPECT_FALSE(areThreadsLeft(before));
        }
    }
}

/** Analyses in this process and ends it: with 0 when the analysis was interrupted and nothing is
 *  left running. */
[[noreturn]] void exitAsInterrupted(const std::function<void()>& work) {
    const std::ptrdiff_t before = threadsBefore();
    base::Interrupt::install();
    try {
        work();
    } catch (const base::Interrupted& interrupted) {
        const bool isClean = interrupted.signalNumber() == SIGINT && !areThreadsLeft(before);
        std::_Exit(isClean ? 0 : 2);
    }
    std::_Exit(1);
}

// A signal asks once for the whole process: each of these runs in one of its own.
TEST_F(InterruptedWork, StopsOnCtrlCWhileItDecodes) {
    for (const Way& way : everyWay()) {
        for (const int asking : {1, kStretches / 2, kStretches}) {
            int stretches = 0;
            FileAnalysis::Options options = optionsFor(way);
            options.alongside = [&](const StereoBlock&) {
                if (++stretches == asking) std::raise(SIGINT);
            };
            EXPECT_EXIT(exitAsInterrupted([&] { analyze(way, options); }),
                        testing::ExitedWithCode(0), "");
        }
    }
}

/** As a terminal does: asks the process, whose threads do not all take signals. */
void askToStop() {
    kill(getpid(), SIGINT);
    while (!base::Interrupt::isRequested()) std::this_thread::yield();
}

TEST_F(InterruptedWork, StopsOnCtrlCWhileItAnalyses) {
    for (const Way& way : everyWay()) {
        for (const double asking : {0.0, 0.3, 0.8, 0.95}) {
            FileAnalysis::Options options = optionsFor(way);
            options.progress = [&](double fraction, double) {
                if (fraction >= asking && !base::Interrupt::isRequested()) askToStop();
            };
            EXPECT_EXIT(exitAsInterrupted([&] { analyze(way, options); }),
                        testing::ExitedWithCode(0), "");
        }
    }
}

}  // namespace
}  // namespace media
