// SPDX-License-Identifier: MIT
#include "io/ResultStream.h"

#include <csignal>

#include <array>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "base/errors.h"

namespace app {
namespace {

using testing::HasSubstr;

std::string failureOfWritingTo(int descriptor) {
    try {
        ResultStream(descriptor).write("text");
    } catch (const base::OutputError& error) {
        return error.what();
    }
    return "";
}

TEST(ResultStream, WritesMoreThanAPipeHoldsAtOnce) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const std::string text(300000, 'x');
    const pid_t writer = fork();
    if (writer == 0) {
        close(ends[0]);
        ResultStream(ends[1]).write(text);
        _exit(0);
    }
    close(ends[1]);
    std::size_t total = 0;
    std::array<char, 1000> buffer{};
    for (ssize_t count = 0; (count = read(ends[0], buffer.data(), buffer.size())) > 0;) {
        total += static_cast<std::size_t>(count);
    }
    close(ends[0]);
    EXPECT_EQ(total, text.size());
}

TEST(ResultStream, TellsAFullDisk) {
    const int full = open("/dev/full", O_WRONLY);
    EXPECT_THAT(failureOfWritingTo(full), HasSubstr("No space left on device"));
    close(full);
}

TEST(ResultStream, TellsAClosedPipe) {
    std::signal(SIGPIPE, SIG_IGN);
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    close(ends[0]);
    EXPECT_THAT(failureOfWritingTo(ends[1]), HasSubstr("Broken pipe"));
    close(ends[1]);
}

TEST(ResultStream, FailsWithoutADescriptor) {
    EXPECT_THAT(failureOfWritingTo(-1), HasSubstr("it is closed"));
}

}  // namespace
}  // namespace app
