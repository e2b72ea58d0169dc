// SPDX-License-Identifier: MIT
#include "scan/WorkerProcess.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/wait.h>
#include <unistd.h>

#include "media/writeFully.h"

namespace app {

namespace {

constexpr const char* kThisProgram = "/proc/self/exe";
constexpr std::chrono::seconds kPatience{5};

// Where all processes of a job are killed at once, the scan is among them: it shall not live to
// blame the file.
constexpr std::chrono::milliseconds kGroupKill{50};

std::array<int, 2> makePipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "no pipe to a worker");
    return ends;
}

/** What the child does between fork and exec. Requests to stop often go to all processes of a
 *  terminal or a job: the scan alone decides what becomes of its workers. */
[[noreturn]] void becomeWorker(int orders, int answers, bool isVerbose) {
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) std::signal(signalNumber, SIG_IGN);
    dup2(orders, STDIN_FILENO);
    dup2(answers, STDOUT_FILENO);
    // What a dying decoder prints is no message of the scan.
    const int nowhere = isVerbose ? -1 : open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere != -1) dup2(nowhere, STDERR_FILENO);
    const char* const words[] = {"beatatlas", "scan-worker", nullptr};
    execv(kThisProgram, const_cast<char* const*>(words));
    _exit(127);
}

}  // namespace

WorkerProcess::WorkerProcess(const WorkerOrders& orders) {
    const auto toWorker = makePipe();
    const auto fromWorker = makePipe();
    orders_ = toWorker[1];
    answers_ = fromWorker[0];
    fcntl(answers_, F_SETFL, O_NONBLOCK);
    process_ = fork();
    if (process_ == 0) becomeWorker(toWorker[0], fromWorker[1], orders.isVerbose);
    const int failure = errno;
    close(toWorker[0]);
    close(fromWorker[1]);
    if (process_ == -1) {
        close(orders_);
        close(answers_);
        throw std::system_error(failure, std::generic_category(), "no process for a worker");
    }
    give(frameOf(orders));
}

WorkerProcess::~WorkerProcess() {
    if (process_ != -1) stop();
    close(orders_);
    close(answers_);
}

void WorkerProcess::give(const std::string& frame) const {
    media::writeFully(orders_, frame.data(), frame.size());
}

bool WorkerProcess::receive() {
    std::array<char, 65536> buffer;
    for (;;) {
        const ssize_t count = read(answers_, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno == EAGAIN;
        if (count == 0) return false;
        frames_.put({buffer.data(), static_cast<std::size_t>(count)});
    }
}

std::optional<WorkerAnswer> WorkerProcess::take() {
    const auto frame = frames_.take();
    return frame ? std::optional(answerOf(*frame)) : std::nullopt;
}

std::optional<int> WorkerProcess::stop() {
    // One that has ended by itself is past being killed, and keeps its own reason.
    kill(process_, SIGKILL);
    const auto status = wait();
    process_ = -1;
    return status;
}

std::string WorkerProcess::end() {
    const auto status = stop();
    if (!status) return "cannot be ended";
    if (!WIFSIGNALED(*status)) return fmt::format("ended with status {}", WEXITSTATUS(*status));
    const int number = WTERMSIG(*status);
    if (number == SIGKILL) std::this_thread::sleep_for(kGroupKill);
    return fmt::format("was killed by signal {} ({})", number, strsignal(number));
}

/** @return nothing when it does not end: it waits for a disk that does not answer */
std::optional<int> WorkerProcess::wait() const {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (std::chrono::steady_clock::now() < end) {
        int status = 0;
        const pid_t ended = waitpid(process_, &status, WNOHANG);
        if (ended == process_) return status;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return std::nullopt;
}

}  // namespace app
