// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace catalogue {

/** A lock on a file that lasts until this object or the process ends, however it ends. The file
 *  stays behind, empty. */
class FileLock {
public:
    /** @throws ScanRunning when another process, or another part of this one, holds it;
     *          CatalogueError when the file cannot be made */
    explicit FileLock(const std::string& path);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    int descriptor_;
};

}  // namespace catalogue
