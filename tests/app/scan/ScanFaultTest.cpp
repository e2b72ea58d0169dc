// SPDX-License-Identifier: MIT
// What can go wrong around a scan: workers, files, folders, disks and catalogues that fail, and a
// scan that is ended at any moment. Nothing that was committed is lost, and the next scan goes on.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "scan/ScanFixture.h"
#include "support/RunningTool.h"

namespace app {
namespace {

namespace fs = std::filesystem;
using test::RunningTool;
using test::runTool;
using test::ToolRun;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr double kLongSeconds = 170.0;  // of music: half a second's work

bool isRunning(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/stat");
    std::string number;
    std::string name;
    std::string state;
    return status >> number >> name >> state && state != "Z";
}

bool endsSoon(pid_t process) {
    for (int i = 0; i < 2000 && isRunning(process); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return !isRunning(process);
}

/** A long track, which is taken first, and two short ones. */
class ScanFaultTest : public test::ScanFixture {
protected:
    void SetUp() override {
        addTrack("b.wav", 1.0);
        addTrack("c.wav", 2.0);
    }

    std::vector<std::string> oneJob(std::vector<std::string> more = {}) const {
        std::vector<std::string> words = {"scan", "--catalogue", catalogue_, "--jobs", "1"};
        more.push_back(music_.path());
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }

    /** Never -1, by which a signal would go to every process there is. */
    pid_t workerOf(const RunningTool& tool) const {
        const auto readers = tool.awaitReaders(1, music_.path());
        if (readers.empty()) throw std::runtime_error("no worker has begun to read");
        return readers.front();
    }

    /** What an undisturbed scan of the same files finds. */
    std::vector<std::string> undisturbed() const {
        const std::string other = place_.file("undisturbed.sqlite");
        runTool({"scan", "--quiet", "--catalogue", other, music_.path()});
        return test::CatalogueFile(other).content();
    }

    std::string long_ = addTrack("a.wav", kLongSeconds);
};

TEST_F(ScanFaultTest, AWorkerThatIsKilledCostsItsFile) {
    RunningTool tool(oneJob());
    kill(workerOf(tool), SIGKILL);
    EXPECT_EQ(tool.wait(), 1);
    EXPECT_EQ(tool.err(),
              told(long_ + ": cannot be analysed: its worker was killed by signal 9 (Killed)") +
                  told("2 tracks analysed (0.0 hours of music), 1 failed"));
    EXPECT_EQ(stored_.value("SELECT kind FROM failures"), "crashed");
    EXPECT_EQ(runTool(oneJob()).err, told("0 tracks analysed, 3 known (1 of them failed before)"));
    EXPECT_EQ(runTool(oneJob({"--retry-failed"})).exitStatus, 0);
    EXPECT_EQ(stored_.content(), undisturbed());
}

TEST_F(ScanFaultTest, TheEndOfAWorkerIsSeenWhereTheCallerIgnoresChildren) {
    RunningTool::Limits limits;
    limits.ignoresChildren = true;
    RunningTool tool(oneJob(), "", limits);
    kill(workerOf(tool), SIGKILL);
    EXPECT_EQ(tool.wait(), 1);
    EXPECT_THAT(tool.err(), HasSubstr("its worker was killed by signal 9 (Killed)"));
}

TEST_F(ScanFaultTest, AWorkerThatStandsStillIsEndedAtTheTimeLimit) {
    RunningTool tool(oneJob({"--time-limit", "4"}));
    const pid_t worker = workerOf(tool);
    kill(worker, SIGSTOP);
    EXPECT_EQ(tool.wait(), 1);
    EXPECT_FALSE(isRunning(worker));
    EXPECT_THAT(tool.err(),
                StartsWith(told(long_ + ": takes longer than 0:04 to analyse (--time-limit)")));
    EXPECT_THAT(tool.err(), EndsWith(told("2 tracks analysed (0.0 hours of music), 1 failed")));
    EXPECT_EQ(stored_.value("SELECT kind FROM failures"), "time-limit");
}

TEST_F(ScanFaultTest, AFileThatTakesTooMuchMemoryIsAFailure) {
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
    GTEST_SKIP() << "the sanitizer ends a process that gets no memory";
#endif
#endif
    addTrack("a.wav", 900.0);
    const ToolRun run = runTool(oneJob({"--memory-limit", "16M"}));
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err,
                HasSubstr(told(long_ + ": takes more than 16 MiB of memory (--memory-limit)")));
    EXPECT_EQ(stored_.count("SELECT count(*) FROM failures WHERE kind <> 'memory-limit'"), 0);
    EXPECT_EQ(stored_.value("SELECT kind FROM failures WHERE CAST(path AS TEXT) LIKE '%a.wav'"),
              "memory-limit");
    EXPECT_THAT(runTool(oneJob({"--memory-limit", "16M"})).err, HasSubstr("of them failed before"));
    // With more memory it need not be asked for.
    EXPECT_EQ(runTool(oneJob()).exitStatus, 0);
    EXPECT_EQ(stored_.content(), undisturbed());
}

TEST_F(ScanFaultTest, AFileThatVanishesBeforeItsTurnIsTold) {
    RunningTool tool(oneJob());
    const pid_t worker = workerOf(tool);
    kill(worker, SIGSTOP);
    fs::remove(music_.file("b.wav"));
    kill(worker, SIGCONT);
    EXPECT_EQ(tool.wait(), 1);
    EXPECT_EQ(tool.err(),
              told(music_.file("b.wav") + ": cannot be opened: No such file or directory") +
                  told("2 tracks analysed (0.0 hours of music), 1 failed"));
    EXPECT_EQ(stored_.content(), undisturbed());
}

TEST_F(ScanFaultTest, AFileThatChangesWhileItIsReadIsScannedAgain) {
    RunningTool tool(oneJob());
    const pid_t worker = workerOf(tool);
    kill(worker, SIGSTOP);
    addTrack("a.wav", 3.0);
    kill(worker, SIGCONT);
    EXPECT_EQ(tool.wait(), 1);
    EXPECT_THAT(tool.err(), HasSubstr(long_ + ": "));
    EXPECT_EQ(runTool(oneJob()).err, told("1 track analysed (0.0 hours of music), 2 known"));
    EXPECT_EQ(stored_.content(), undisturbed());
}

TEST_F(ScanFaultTest, AnUnreadableFolderCostsWhatIsInItAndNothingOfTheCatalogue) {
    addTrack("sub/d.wav", 4.0);
    runTool(oneJob());
    const auto before = stored_.content();
    addTrack("e.wav", 5.0);
    chmod(music_.file("sub").c_str(), 0);
    const ToolRun run = runTool(oneJob({"--prune"}));
    chmod(music_.file("sub").c_str(), 0700);
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.err, told(music_.file("sub") + ": cannot be opened: Permission denied") +
                           told("1 track analysed (0.0 hours of music), 3 known"));
    EXPECT_EQ(stored_.content().size(), before.size() + 1);
    EXPECT_EQ(stored_.count("SELECT count(*) FROM tracks WHERE is_gone"), 0);
}

TEST_F(ScanFaultTest, ACircleOfLinksIsWalkedOnce) {
    fs::create_directory_symlink(music_.path(), music_.file("round"));
    const ToolRun run = runTool(oneJob({"--follow-links"}));
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.err, HasSubstr("3 tracks analysed"));
}

TEST_F(ScanFaultTest, AFullDiskLosesNothingThatWasCommitted) {
    for (int i = 0; i < 6; ++i) addTrack("d" + std::to_string(i) + ".wav", 40.0 + i);
    RunningTool::Limits limits;
    limits.fileSize = 300000;
    RunningTool tool(oneJob(), "", limits);
    EXPECT_EQ(tool.wait(), 1);
    EXPECT_THAT(tool.err(), HasSubstr(catalogue_ + ": "));
    const std::string told = tool.err();
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    EXPECT_EQ(stored_.integrity(), "ok");
    EXPECT_LT(stored_.count("SELECT count(*) FROM tracks"), 9);
    EXPECT_EQ(runTool(oneJob()).exitStatus, 0);
    EXPECT_EQ(stored_.content(), undisturbed());
}

TEST_F(ScanFaultTest, ACatalogueThatMayNotBeWrittenIsToldAndLeftAlone) {
    runTool(oneJob());
    addTrack("d.wav", 3.0);
    const std::string bytes = test::readFile(catalogue_);
    chmod(catalogue_.c_str(), 0444);
    chmod(place_.path().c_str(), 0555);
    const ToolRun run = runTool(oneJob());
    chmod(place_.path().c_str(), 0755);
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr(catalogue_));
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_EQ(test::readFile(catalogue_), bytes);
}

TEST_F(ScanFaultTest, ADamagedCatalogueIsToldAndLeftAlone) {
    runTool(oneJob());
    const std::string whole = test::readFile(catalogue_);
    std::string torn = whole;
    std::fill(torn.begin() + 4096, torn.end(), '\xA5');
    for (const std::string& bytes : {std::string("no catalogue at all"), torn}) {
        test::writeFile(catalogue_, bytes);
        const ToolRun run = runTool(oneJob());
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_THAT(run.err, StartsWith("beatatlas: " + catalogue_ + ": "));
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_EQ(test::readFile(catalogue_), bytes);
    }
}

TEST_F(ScanFaultTest, ACatalogueThatIsMovedDuringTheScanEndsIt) {
    RunningTool tool(oneJob());
    const pid_t worker = workerOf(tool);
    kill(worker, SIGSTOP);
    fs::rename(catalogue_, catalogue_ + ".old");
    kill(worker, SIGCONT);
    EXPECT_EQ(tool.wait(), 1);
    EXPECT_THAT(tool.err(), HasSubstr(told(catalogue_ + ": was moved or deleted while it was being "
                                                        "written")));
}

TEST_F(ScanFaultTest, ASecondScanOfACatalogueIsToldOrWaits) {
    RunningTool first(oneJob());
    workerOf(first);
    const ToolRun second = runTool(oneJob());
    EXPECT_EQ(second.exitStatus, 1);
    EXPECT_THAT(second.err, HasSubstr("another scan fills this catalogue"));
    RunningTool waiting(oneJob({"--wait"}));
    EXPECT_EQ(first.wait(), 0);
    EXPECT_EQ(waiting.wait(), 0);
    EXPECT_THAT(waiting.err(), EndsWith(told("0 tracks analysed, 3 known")));
    EXPECT_EQ(stored_.content(), undisturbed());
}

TEST_F(ScanFaultTest, CtrlCEndsAllWorkersAndKeepsWhatIsDone) {
    RunningTool tool(arguments({music_.path()}));
    const auto workers = tool.awaitReaders(1, long_);
    // The short ones are done by the second worker while the first is held at the long one.
    for (const pid_t worker : workers) kill(worker, SIGSTOP);
    while (stored_.count("SELECT count(*) FROM tracks") < 2)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    tool.signal(SIGINT);
    EXPECT_EQ(tool.wait(), 130);
    for (const pid_t worker : workers) EXPECT_TRUE(endsSoon(worker));
    EXPECT_THAT(tool.err(), HasSubstr("2 tracks analysed (0.0 hours of music), 1 left for the "
                                      "next scan"));
    EXPECT_EQ(scan().err, told("1 track analysed (0.0 hours of music), 2 known"));
    EXPECT_EQ(stored_.content(), undisturbed());
}

TEST_F(ScanFaultTest, WorkersEndWithTheScan) {
    RunningTool tool(oneJob());
    const pid_t worker = workerOf(tool);
    tool.signal(SIGKILL);
    EXPECT_EQ(tool.wait(), 1000 + SIGKILL);
    EXPECT_TRUE(endsSoon(worker));
}

/** Tracks, files without audio and a damaged one: half a second of work. */
class ScanKilledTest : public test::ScanFixture {
protected:
    void SetUp() override {
        for (int i = 0; i < 16; ++i) addTrack(std::to_string(i) + ".wav", 2.0 + 0.25 * i);
        test::copyShortened(music_.file("3.wav"), music_.file("cut.wav"), 30000);
        for (const char* name : {"a.txt", "b.jpg"}) test::writeFile(music_.file(name), "none");
    }

    double undisturbedSeconds() {
        const auto begin = std::chrono::steady_clock::now();
        runTool({"scan", "--quiet", "--catalogue", place_.file("whole.sqlite"), music_.path()});
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
        return time.count();
    }

    /** Ends a scan, or one of its workers, when it has run for some time. */
    void disturb(double seconds, bool endsWorker) {
        RunningTool tool(arguments({"--retry-failed", music_.path()}));
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
        const auto workers = tool.workers();
        if (!endsWorker)
            tool.signal(SIGKILL);
        else if (!workers.empty())
            kill(workers.back(), SIGKILL);
        tool.wait();
        for (const pid_t worker : workers) EXPECT_TRUE(endsSoon(worker));
    }

    std::size_t tracks() const {
        return static_cast<std::size_t>(stored_.count("SELECT count(*) FROM tracks"));
    }
};

int wantedKills() {
    constexpr int kUsual = 20;
    const char* wanted = std::getenv("BEATATLAS_SCAN_KILLS");
    return wanted == nullptr ? kUsual : std::atoi(wanted);
}

TEST_F(ScanKilledTest, AtAnyMomentLosesNothingThatWasCommitted) {
    const double whole = undisturbedSeconds();
    std::mt19937 random(1);
    std::size_t kept = 0;
    int survivors = 0;
    for (int i = 0; i < wantedKills(); ++i) {
        // A catalogue that has everything leaves nothing to disturb.
        if (kept == 16) fs::remove(catalogue_);
        if (kept == 16) kept = 0;
        disturb(std::uniform_real_distribution<double>(0.0, whole)(random), i % 4 == 3);
        if (!fs::exists(catalogue_) || fs::file_size(catalogue_) == 0) continue;
        ASSERT_EQ(stored_.integrity(), "ok") << i;
        if (stored_.value("SELECT name FROM sqlite_master WHERE name = 'tracks'").empty()) continue;
        ASSERT_GE(tracks(), kept) << i;
        kept = tracks();
        ++survivors;
    }
    EXPECT_GT(survivors, wantedKills() / 2);
    scan({"--retry-failed"});
    EXPECT_EQ(stored_.integrity(), "ok");
    EXPECT_EQ(stored_.content(), test::CatalogueFile(place_.file("whole.sqlite")).content());
}

}  // namespace
}  // namespace app
