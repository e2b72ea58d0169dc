// SPDX-License-Identifier: MIT
#include "support/ToolRun.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <linux/capability.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

namespace {

struct Channel {
    int readEnd = -1;
    int writeEnd = -1;
};

Channel makePipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    return {ends[0], ends[1]};
}

Channel makeTerminal() {
    const int controller = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (controller == -1 || grantpt(controller) != 0 || unlockpt(controller) != 0) {
        throw std::runtime_error("no terminal");
    }
    return {controller, open(ptsname(controller), O_RDWR | O_NOCTTY | O_CLOEXEC)};
}

Channel makeOutput(OutputPlace place) {
    if (place == OutputPlace::fullDisk) return {-1, open("/dev/full", O_WRONLY | O_CLOEXEC)};
    if (place == OutputPlace::closed) return {};
    Channel output = makePipe();
    if (place == OutputPlace::closedPipe) close(std::exchange(output.readEnd, -1));
    return output;
}

// In a container the tests run as the superuser, for whom every file can be opened.
void obeyPermissions() {
    prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE);
    prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH);
}

/** Everything up to the end, which for a terminal is an error. */
void drain(int descriptor, std::string& text, const std::function<void()>& atFirst) {
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        if (text.empty() && atFirst) atFirst();
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

}  // namespace

void becomeTool(std::vector<std::string> arguments, int output, int error) {
    if (output == -1)
        close(STDOUT_FILENO);
    else
        dup2(output, STDOUT_FILENO);
    dup2(error, STDERR_FILENO);
    obeyPermissions();
    std::string tool = BEATATLAS_TOOL;
    std::vector<char*> argv = {tool.data()};
    for (std::string& word : arguments) argv.push_back(word.data());
    argv.push_back(nullptr);
    execv(tool.c_str(), argv.data());
    _exit(127);
}

ToolRun& ToolRun::run() {
    const Channel results = makeOutput(output);
    const Channel error = hasTerminal ? makeTerminal() : makePipe();
    const pid_t process = fork();
    if (process == 0) {
        if (!folder.empty() && chdir(folder.c_str()) != 0) _exit(126);
        if (input != -1) dup2(input, STDIN_FILENO);
        setenv("XDG_CONFIG_HOME", configFolder.c_str(), 1);
        for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
        becomeTool(arguments, results.writeEnd, error.writeEnd);
    }
    if (results.writeEnd != -1) close(results.writeEnd);
    close(error.writeEnd);
    const auto atFirstError = [&] {
        if (signalAtProgress) kill(process, *signalAtProgress);
        if (atProgress) atProgress();
    };
    std::thread errorReader([&] { drain(error.readEnd, err, atFirstError); });
    if (results.readEnd != -1) drain(results.readEnd, out, {});
    errorReader.join();
    int status = 0;
    waitpid(process, &status, 0);
    exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
    if (results.readEnd != -1) close(results.readEnd);
    close(error.readEnd);
    return *this;
}

ToolRun runTool(const std::vector<std::string>& arguments) {
    ToolRun run;
    run.arguments = arguments;
    return run.run();
}

}  // namespace test
