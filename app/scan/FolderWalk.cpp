// SPDX-License-Identifier: MIT
#include "scan/FolderWalk.h"

#include <cerrno>
#include <memory>
#include <string_view>

#include "base/Interrupt.h"
#include "base/errors.h"

namespace app {

namespace {

struct FolderClose {
    void operator()(DIR* folder) const { closedir(folder); }
};

std::string joined(const std::string& folder, const char* name) {
    return folder.ends_with('/') ? folder + name : folder + "/" + name;
}

}  // namespace

FolderWalk::FolderWalk(Options options, Found found, Refused refused, PassedOver passedOver)
    : options_(options), found_(std::move(found)), refused_(std::move(refused)),
      passedOver_(std::move(passedOver)) {}

void FolderWalk::walk(const std::string& folder) {
    struct stat status = {};
    if (stat(folder.c_str(), &status) != 0)
        return refused_(folder, "cannot be opened: " + base::systemReason(errno));
    enter(folder, status);
    while (!waiting_.empty()) {
        base::Interrupt::check();
        const std::string next = std::move(waiting_.back());
        waiting_.pop_back();
        list(next);
    }
}

void FolderWalk::list(const std::string& folder) {
    const std::unique_ptr<DIR, FolderClose> open(opendir(folder.c_str()));
    if (!open) return refused_(folder, "cannot be opened: " + base::systemReason(errno));
    for (;;) {
        errno = 0;
        const struct dirent* entry = readdir(open.get());
        if (entry != nullptr) {
            look(folder, *entry);
            continue;
        }
        if (errno != 0) refused_(folder, "cannot be read: " + base::systemReason(errno));
        return;
    }
}

void FolderWalk::look(const std::string& folder, const struct dirent& entry) {
    const std::string_view name = entry.d_name;
    if (name == "." || name == "..") return;
    if (!options_.takesHidden && name.front() == '.') return;
    const std::string path = joined(folder, entry.d_name);
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0) {
        // Gone since its name was read, or in a folder whose names alone may be read.
        if (errno != ENOENT) refused_(path, "cannot be opened: " + base::systemReason(errno));
        return;
    }
    const bool isLink = S_ISLNK(status.st_mode);
    // A link that leads nowhere, or to itself, stands for no file.
    if (isLink && stat(path.c_str(), &status) != 0) return;
    if (S_ISREG(status.st_mode)) return found_(path, status);
    if (!S_ISDIR(status.st_mode)) return passedOver_(path);
    if (!isLink || options_.followsLinks) enter(path, status);
}

void FolderWalk::enter(const std::string& folder, const struct stat& status) {
    const bool isNew =
        !options_.followsLinks || entered_.insert({status.st_dev, status.st_ino}).second;
    if (isNew) waiting_.push_back(folder);
}

}  // namespace app
