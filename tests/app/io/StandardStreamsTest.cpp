// SPDX-License-Identifier: MIT
#include "io/StandardStreams.h"

#include <array>
#include <cstdio>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace app {
namespace {

struct Printed {
    std::string out;
    std::string err;
};

std::string readAll(int descriptor) {
    std::string text;
    std::array<char, 256> buffer{};
    for (ssize_t count = 0; (count = read(descriptor, buffer.data(), buffer.size())) > 0;) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    close(descriptor);
    return text;
}

/** What a process prints that writes a result and, as a library may, a line by stdio. */
Printed printOfProcess() {
    std::array<int, 2> out{};
    std::array<int, 2> err{};
    if (pipe(out.data()) != 0 || pipe(err.data()) != 0) return {};
    const pid_t process = fork();
    if (process == 0) {
        dup2(out[1], STDOUT_FILENO);
        dup2(err[1], STDERR_FILENO);
        const StandardStreams streams;
        std::puts("progress");
        std::fflush(stdout);
        const bool written = write(streams.resultDescriptor(), "result", 6) == 6;
        _exit(written ? 0 : 1);
    }
    close(out[1]);
    close(err[1]);
    const Printed printed{readAll(out[0]), readAll(err[0])};
    waitpid(process, nullptr, 0);
    return printed;
}

TEST(StandardStreams, KeepLinesOfLibrariesAwayFromTheResults) {
    const Printed printed = printOfProcess();
    EXPECT_EQ(printed.out, "result");
    EXPECT_EQ(printed.err, "");
}

}  // namespace
}  // namespace app
