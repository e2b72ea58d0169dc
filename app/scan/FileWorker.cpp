// SPDX-License-Identifier: MIT
#include "scan/FileWorker.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <fstream>
#include <new>

#include <fmt/format.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/Interrupt.h"
#include "base/errors.h"
#include "cli/messages.h"
#include "cli/toolVersion.h"
#include "media/FileAnalysis.h"
#include "media/StereoChain.h"
#include "media/TrackDecoder.h"
#include "media/ffmpeg.h"
#include "output/fileWarnings.h"
#include "scan/AudioHasher.h"
#include "scan/fileState.h"
#include "scan/usualLength.h"

namespace app {

namespace {

using Kind = base::TrackError::Kind;

constexpr double kNanoseconds = 1.0e9;
constexpr std::chrono::milliseconds kReportEvery{100};
constexpr std::int64_t kMebibyte = std::int64_t{1} << 20;

double processorSeconds() {
    struct timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / kNanoseconds;
}

/** What this process may write to of its own, in bytes. */
rlim_t dataBytes() {
    std::ifstream sizes("/proc/self/statm");
    rlim_t pages = 0;
    // Total, resident, shared, code, an empty one, data.
    for (int i = 0; i < 6; ++i) sizes >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

void setLimit(int resource, rlim_t most) {
    struct rlimit limit = {};
    getrlimit(static_cast<__rlimit_resource>(resource), &limit);
    limit.rlim_cur = std::min(most, limit.rlim_max);
    setrlimit(static_cast<__rlimit_resource>(resource), &limit);
}

catalogue::FileState stateOf(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) {
        const bool isMissing = errno == ENOENT || errno == ENOTDIR;
        throw base::TrackError("cannot be opened: " + base::systemReason(errno),
                               isMissing ? Kind::missing : Kind::unreadable);
    }
    return fileStateOf(status);
}

catalogue::FailureKind kindOf(const base::TrackError& error, const std::string& path) {
    switch (error.kind()) {
    // By chance a text or a program begins like one or the other format.
    case Kind::undecodable:
    case Kind::notAudio:
        return hasMusicEnding(path) ? catalogue::FailureKind::damaged
                                    : catalogue::FailureKind::notAudio;
    case Kind::unreadable:
        return catalogue::FailureKind::unreadable;
    case Kind::missing:
        return catalogue::FailureKind::vanished;
    case Kind::damaged:
        break;
    }
    return catalogue::FailureKind::damaged;
}

/** Reports to the scan how far a file is, now and then. */
class SparseProgress {
public:
    explicit SparseProgress(ResultStream& answers) : answers_(answers) {}

    void show(double fraction, double seconds) {
        const auto now = std::chrono::steady_clock::now();
        if (now < next_) return;
        next_ = now + kReportEvery;
        answers_.write(frameOf(WorkerAnswer(WorkerProgress{fraction, seconds})));
    }

private:
    ResultStream& answers_;
    std::chrono::steady_clock::time_point next_;
};

}  // namespace

void FileWorker::run() {
    const auto orders = awaitFrame();
    if (!orders) return;
    orders_ = ordersOf(*orders);
    prepare();
    for (;;) {
        answer(WorkerReady{});
        const auto task = awaitFrame();
        if (!task) return;
        work(taskOf(*task));
    }
}

std::optional<std::string> FileWorker::awaitFrame() {
    std::array<char, 4096> buffer{};
    for (;;) {
        if (auto frame = frames_.take()) return frame;
        const ssize_t count = read(descriptor_, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) base::Interrupt::check();
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return std::nullopt;
        frames_.put({buffer.data(), static_cast<std::size_t>(count)});
    }
}

void FileWorker::prepare() const {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    media::showFfmpegMessages(orders_.isVerbose);
    setLimit(RLIMIT_CORE, 0);
    // Beside what the program takes by itself.
    setLimit(RLIMIT_DATA, dataBytes() + static_cast<rlim_t>(orders_.memoryLimit));
}

void FileWorker::work(const WorkerTask& task) {
    try {
        analyse(task);
    } catch (const base::TrackError& error) {
        answer(catalogue::Failure{kindOf(error, task.path), error.what()});
    } catch (const std::bad_alloc&) {
        answer(catalogue::Failure{catalogue::FailureKind::memoryLimit,
                                  fmt::format("takes more than {} MiB of memory (--memory-limit)",
                                              orders_.memoryLimit / kMebibyte)});
    }
}

void FileWorker::analyse(const WorkerTask& task) {
    const double begun = processorSeconds();
    const catalogue::FileState state = stateOf(task.path);
    if (task.mayBeKnown && !isToBeAnalysed(task, state)) return;
    AudioHasher hasher;
    SparseProgress progress(answers_);
    media::FileAnalysis::Options options;
    options.track = catalogue::optionsOf(orders_.parameters);
    options.effort.memoryBytes = std::min(options.effort.memoryBytes, orders_.memoryLimit / 2);
    options.acceptsCutOff = orders_.acceptsCutOff;
    options.progress = [&](double fraction, double seconds) { progress.show(fraction, seconds); };
    options.alongside = [&](const media::StereoBlock& block) { hasher.put(block); };
    if (orders_.isVerbose)
        options.note = [&](const std::string& text) { printFileNote(task.path, text); };
    const beatatlas::track::Options wanted = options.track;
    const media::AnalysedFile analysed = media::FileAnalysis(std::move(options)).analyze(task.path);
    answer(catalogue::makeAnalysed(analysed.file, state, hasher.hash(), wanted, analysed.result,
                                   processorSeconds() - begun, output::fileWarnings(analysed.file),
                                   toolVersion()));
}

/** Decoding alone takes a small part of an analysis: worth it where the sound may be known. */
bool FileWorker::isToBeAnalysed(const WorkerTask& task, const catalogue::FileState& state) {
    AudioHasher hasher;
    media::TrackDecoder decoder(task.path);
    decoder.run(hasher);
    answer(WorkerHash{state, hasher.hash(), decoder.format()});
    const auto verdict = awaitFrame();
    return verdict && verdictOf(*verdict).goesOn;
}

}  // namespace app
