// SPDX-License-Identifier: MIT
#include "catalogue/FileLock.h"

#include <cerrno>
#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "base/displayName.h"
#include "base/errors.h"
#include "catalogue/CatalogueError.h"

namespace catalogue {

namespace {

constexpr std::chrono::milliseconds kMoment{20};

/** @return 0, or why it failed */
int lockNow(int descriptor) {
    return flock(descriptor, LOCK_EX | LOCK_NB) == 0 ? 0 : errno;
}

/** Who looks whether a scan runs holds the lock for a moment. */
int lock(int descriptor) {
    const int failure = lockNow(descriptor);
    if (failure != EWOULDBLOCK) return failure;
    std::this_thread::sleep_for(kMoment);
    return lockNow(descriptor);
}

}  // namespace

FileLock::FileLock(const std::string& path)
    : descriptor_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
    if (descriptor_ < 0)
        throw CatalogueError(base::displayName(path) +
                             ": cannot be made: " + base::systemReason(errno));
    const int failure = lock(descriptor_);
    if (failure == 0) return;
    close(descriptor_);
    if (failure == EWOULDBLOCK)
        throw ScanRunning(base::displayName(path) + ": another scan fills this catalogue");
    throw CatalogueError(base::displayName(path) +
                         ": cannot be locked: " + base::systemReason(failure));
}

FileLock::~FileLock() {
    close(descriptor_);
}

}  // namespace catalogue
