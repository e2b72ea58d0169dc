// SPDX-License-Identifier: MIT
#include "io/StandardStreams.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <functional>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/TemporaryFolder.h"

namespace app {
namespace {

struct Printed {
    std::string out;
    std::string err;
    int status = 0;
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

/** A place without files, as a bare container is. */
bool leaveAllFiles(const std::string& emptyFolder) {
    // The superuser may; everybody else may in a user namespace of their own.
    if (chroot(emptyFolder.c_str()) == 0) return chdir("/") == 0;
    return unshare(CLONE_NEWUSER) == 0 && chroot(emptyFolder.c_str()) == 0 && chdir("/") == 0;
}

constexpr int kCannotLeave = 77;

/** What a process prints that writes a result and, as a library may, a line by stdio. */
Printed printOfProcess(const std::function<bool()>& prepare = [] { return true; }) {
    std::array<int, 2> out{};
    std::array<int, 2> err{};
    if (pipe(out.data()) != 0 || pipe(err.data()) != 0) return {};
    const pid_t process = fork();
    if (process == 0) {
        dup2(out[1], STDOUT_FILENO);
        dup2(err[1], STDERR_FILENO);
        std::signal(SIGPIPE, SIG_IGN);
        if (!prepare()) _exit(kCannotLeave);
        const StandardStreams streams;
        std::puts("progress");
        std::fflush(stdout);
        const bool isFilled =
            fcntl(STDIN_FILENO, F_GETFD) != -1 && fcntl(STDERR_FILENO, F_GETFD) != -1;
        const bool written = isFilled && write(streams.resultDescriptor(), "result", 6) == 6;
        _exit(written ? 0 : 1);
    }
    close(out[1]);
    close(err[1]);
    Printed printed{readAll(out[0]), readAll(err[0])};
    waitpid(process, &printed.status, 0);
    return printed;
}

TEST(StandardStreams, KeepLinesOfLibrariesAwayFromTheResults) {
    const Printed printed = printOfProcess();
    EXPECT_EQ(printed.out, "result");
    EXPECT_EQ(printed.err, "");
}

TEST(StandardStreams, KeepThemAwayWhereThereIsNoNullDeviceToo) {
    const test::TemporaryFolder folder;
    const Printed printed = printOfProcess([&] { return leaveAllFiles(folder.path()); });
    if (WEXITSTATUS(printed.status) == kCannotLeave) GTEST_SKIP() << "no right to change the root";
    EXPECT_EQ(printed.out, "result");
    EXPECT_EQ(printed.err, "");
}

// Else a file of the tool would take the place, and its messages would go there.
TEST(StandardStreams, FillMissingOnesWhereThereIsNoNullDeviceToo) {
    const test::TemporaryFolder folder;
    const auto closeError = [&] {
        return leaveAllFiles(folder.path()) && close(STDIN_FILENO) == 0 &&
               close(STDERR_FILENO) == 0;
    };
    const Printed printed = printOfProcess(closeError);
    if (WEXITSTATUS(printed.status) == kCannotLeave) GTEST_SKIP() << "no right to change the root";
    EXPECT_EQ(printed.out, "result");
}

}  // namespace
}  // namespace app
