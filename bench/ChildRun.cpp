// SPDX-License-Identifier: MIT
#include "bench/ChildRun.h"

#include <chrono>
#include <cstdio>
#include <stdexcept>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace beatatlas::bench {

namespace {

[[noreturn]] void become(std::vector<char*>& arguments) {
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    execv(arguments.front(), arguments.data());
    _exit(127);
}

double secondsOf(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

ChildRun measureRun(const std::vector<std::string>& words) {
    std::vector<std::string> own = words;
    std::vector<char*> arguments;
    for (std::string& word : own) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const auto begin = std::chrono::steady_clock::now();
    const pid_t process = fork();
    if (process == 0) become(arguments);
    int status = 0;
    struct rusage usage = {};
    if (process < 0 || wait4(process, &status, 0, &usage) != process || status != 0)
        throw std::runtime_error(words.front() + " failed");
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - begin;
    return {secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime), wall.count(),
            1024.0 * static_cast<double>(usage.ru_maxrss)};
}

}  // namespace

void reportRun(const std::vector<std::string>& words) {
    const ChildRun run = measureRun(words);
    std::printf("%.9f %.9f %.0f\n", run.processorSeconds, run.wallSeconds, run.peakBytes);
}

ChildRun runChild(const char* program, const std::vector<std::string>& words) {
    std::string command;
    for (const std::string& word : words) command.append(" '").append(word).append("'");
    command.insert(0, std::string("'").append(program).append("' --run"));
    std::FILE* output = popen(command.c_str(), "r");
    ChildRun run;
    const int read = output == nullptr ? 0
                                       : std::fscanf(output, "%lf %lf %lf", &run.processorSeconds,
                                                     &run.wallSeconds, &run.peakBytes);
    if (output == nullptr || pclose(output) != 0 || read != 3)
        throw std::runtime_error(words.front() + " failed");
    return run;
}

}  // namespace beatatlas::bench
