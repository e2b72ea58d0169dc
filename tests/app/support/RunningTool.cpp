// SPDX-License-Identifier: MIT
#include "support/RunningTool.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/ToolRun.h"

namespace test {

namespace {

constexpr std::chrono::seconds kPatience{20};

// The longest run of any test takes a tenth of it under a sanitizer on a busy machine.
constexpr std::chrono::seconds kLongestRun{300};

std::vector<pid_t> childrenOf(pid_t process) {
    const std::string number = std::to_string(process);
    std::ifstream list("/proc/" + number + "/task/" + number + "/children");
    std::vector<pid_t> children;
    for (pid_t child = 0; list >> child;) children.push_back(child);
    return children;
}

/** Only a worker has this command as its first word. A leak checker is a child of the tool, too,
 *  which would wait for it for ever if a test killed it. */
bool isWorker(pid_t process) {
    std::ifstream words("/proc/" + std::to_string(process) + "/cmdline");
    std::string word;
    std::getline(words, word, '\0');
    std::getline(words, word, '\0');
    return word == "scan-worker";
}

/** Whether the process has a file below the folder open. */
bool reads(pid_t process, const std::string& folder) {
    std::error_code failure;
    const std::string open = "/proc/" + std::to_string(process) + "/fd";
    for (const auto& entry : std::filesystem::directory_iterator(open, failure)) {
        const auto target = std::filesystem::read_symlink(entry.path(), failure);
        if (target.string().starts_with(folder)) return true;
    }
    return false;
}

}  // namespace

RunningTool::RunningTool(const std::vector<std::string>& arguments, const std::string& input,
                         const Limits& limits) {
    writeFile(folder_.file("in"), input);
    const int in = open(folder_.file("in").c_str(), O_RDONLY | O_CLOEXEC);
    const int out = open(folder_.file("out").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const int err = open(folder_.file("err").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    process_ = fork();
    if (process_ == -1) throw std::runtime_error("no process");
    if (process_ == 0) {
        dup2(in, STDIN_FILENO);
        if (limits.fileSize) {
            const auto most = static_cast<rlim_t>(*limits.fileSize);
            const struct rlimit limit = {most, most};
            setrlimit(RLIMIT_FSIZE, &limit);
        }
        if (limits.ignoresChildren) std::signal(SIGCHLD, SIG_IGN);
        setenv("XDG_CONFIG_HOME", "/nonexistent", 1);
        becomeTool(arguments, out, err);
    }
    for (const int descriptor : {in, out, err}) close(descriptor);
}

RunningTool::~RunningTool() {
    if (process_ == -1) return;
    signal(SIGKILL);
    waitpid(process_, nullptr, 0);
}

std::vector<pid_t> RunningTool::workers() const {
    std::vector<pid_t> processes = childrenOf(process_);
    processes.erase(std::remove_if(processes.begin(), processes.end(),
                                   [](pid_t child) { return !isWorker(child); }),
                    processes.end());
    return processes;
}

std::vector<pid_t> RunningTool::awaitReaders(std::size_t count, const std::string& folder) const {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    for (;;) {
        std::vector<pid_t> readers = workers();
        readers.erase(std::remove_if(readers.begin(), readers.end(),
                                     [&](pid_t child) { return !reads(child, folder); }),
                      readers.end());
        if (readers.size() >= count || std::chrono::steady_clock::now() > end) return readers;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

void RunningTool::signal(int number) const {
    // To -1 a signal would go to every process there is.
    if (process_ != -1) kill(process_, number);
}

int RunningTool::wait() {
    const auto end = std::chrono::steady_clock::now() + kLongestRun;
    int status = 0;
    while (waitpid(process_, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > end) throw std::runtime_error("the tool hangs");
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

}  // namespace test
