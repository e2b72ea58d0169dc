// SPDX-License-Identifier: MIT
#include "catalogue/FileLock.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "base/displayName.h"
#include "base/errors.h"
#include "catalogue/CatalogueError.h"

namespace catalogue {

FileLock::FileLock(const std::string& path)
    : descriptor_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
    if (descriptor_ < 0)
        throw CatalogueError(base::displayName(path) +
                             ": cannot be made: " + base::systemReason(errno));
    if (flock(descriptor_, LOCK_EX | LOCK_NB) == 0) return;
    const int failure = errno;
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
