// SPDX-License-Identifier: MIT
#include "io/StandardStreams.h"

#include <array>

#include <fcntl.h>
#include <unistd.h>

namespace app {

namespace {

/** If there is no /dev/null, a pipe that nobody reads: what is written to it is lost as well.
 *  @return -1 when there is neither */
int openNowhere() {
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    if (null != -1) return null;
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return -1;
    close(ends[0]);
    return ends[1];
}

/** @return true when the descriptor was open already */
bool fillWhenClosed(int descriptor) {
    if (fcntl(descriptor, F_GETFD) != -1) return true;
    const int nowhere = openNowhere();
    if (nowhere != -1 && nowhere != descriptor) {
        dup2(nowhere, descriptor);
        close(nowhere);
    }
    return false;
}

/** A library's output is tolerable on standard error, but not among the results. */
void leadOutputAway() {
    const int nowhere = openNowhere();
    dup2(nowhere == -1 ? STDERR_FILENO : nowhere, STDOUT_FILENO);
    if (nowhere != -1) close(nowhere);
}

}  // namespace

StandardStreams::StandardStreams() {
    fillWhenClosed(STDIN_FILENO);
    const bool hasOutput = fillWhenClosed(STDOUT_FILENO);
    fillWhenClosed(STDERR_FILENO);
    if (hasOutput) resultDescriptor_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    leadOutputAway();
}

StandardStreams::~StandardStreams() {
    if (resultDescriptor_ != -1) close(resultDescriptor_);
}

}  // namespace app
