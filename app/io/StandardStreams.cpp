// SPDX-License-Identifier: MIT
#include "io/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace app {

namespace {

/** True when the descriptor was open already. */
bool fillWhenClosed(int descriptor) {
    if (fcntl(descriptor, F_GETFD) != -1) return true;
    const int nowhere = open("/dev/null", O_RDWR);
    if (nowhere != -1 && nowhere != descriptor) {
        dup2(nowhere, descriptor);
        close(nowhere);
    }
    return false;
}

void leadAway(int descriptor, const char* path) {
    const int target = open(path, O_WRONLY | O_CLOEXEC);
    if (target == -1) return;
    dup2(target, descriptor);
    close(target);
}

}  // namespace

StandardStreams::StandardStreams() {
    fillWhenClosed(STDIN_FILENO);
    const bool hasOutput = fillWhenClosed(STDOUT_FILENO);
    fillWhenClosed(STDERR_FILENO);
    if (hasOutput) resultDescriptor_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    leadAway(STDOUT_FILENO, "/dev/null");
}

StandardStreams::~StandardStreams() {
    if (resultDescriptor_ != -1) close(resultDescriptor_);
}

}  // namespace app
