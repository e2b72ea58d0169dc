// SPDX-License-Identifier: MIT
#include "media/OutputFile.h"

#include <cerrno>
#include <filesystem>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/displayName.h"
#include "base/errors.h"
#include "media/writeFully.h"

namespace media {

namespace {

// A separate name: with a suffix added, the longest allowed file names would become too long.
constexpr const char* kDraftName = "/.beatatlas-XXXXXX";
constexpr int kMostLinks = 40;  // the system follows as many

std::optional<struct stat> statusOf(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) return std::nullopt;
    return status;
}

std::string folderOf(const std::string& path) {
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw base::OutputError(base::displayName(path) + " cannot be written: " + reason);
}

/** Where a shell's '>' would write: at the end of all links, even if that file does not exist
 *  yet. */
std::string followLinks(const std::string& path) {
    std::filesystem::path place = path;
    for (int links = 0; links < kMostLinks; ++links) {
        std::error_code noLink;
        const std::filesystem::path target = std::filesystem::read_symlink(place, noLink);
        if (noLink) return place.string();
        place = place.parent_path() / target;
    }
    refuse(path, base::systemReason(ELOOP));
}

bool mayWrite(const std::string& path) {
    return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

bool mayChangeFolder(const std::string& path) {
    return faccessat(AT_FDCWD, path.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

mode_t permissionsOfNewFiles() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

}  // namespace

OutputFile::OutputFile(const std::string& path)
    : shownPath_(path), finalPath_(followLinks(path)),
      draftPath_(folderOf(finalPath_) + kDraftName) {
    requireWritable(path);
    descriptor_ = mkostemp(draftPath_.data(), O_CLOEXEC);
    if (descriptor_ == -1) fail(errno);
}

OutputFile::~OutputFile() {
    if (descriptor_ == -1) return;
    close(descriptor_);
    unlink(draftPath_.c_str());
}

void OutputFile::write(const void* bytes, std::size_t count) {
    const int failure = writeFully(descriptor_, bytes, count);
    if (failure != 0) fail(failure);
}

void OutputFile::seek(std::int64_t offset) {
    if (lseek(descriptor_, offset, SEEK_SET) == -1) fail(errno);
}

std::string OutputFile::commit() {
    std::string warning = setPermissions();
    // Some file systems report a full disk only here; others do not support it.
    if (fsync(descriptor_) != 0 && errno != EINVAL && errno != ENOTSUP) fail(errno);
    if (rename(draftPath_.c_str(), finalPath_.c_str()) != 0) fail(errno);
    close(std::exchange(descriptor_, -1));
    return warning;
}

/** Some file systems have no permissions: the result must not be lost for that. */
std::string OutputFile::setPermissions() const {
    const auto replaced = statusOf(finalPath_);
    const mode_t permissions = replaced ? (replaced->st_mode & 0777) : permissionsOfNewFiles();
    if (fchmod(descriptor_, permissions) == 0) return {};
    return "its permissions could not be set: " + base::systemReason(errno);
}

void OutputFile::fail(int errorNumber) const {
    refuse(shownPath_, base::systemReason(errorNumber));
}

void OutputFile::requireWritable(const std::string& path) {
    const std::string target = followLinks(path);
    const auto existing = statusOf(target);
    if (!existing && errno != ENOENT) refuse(path, base::systemReason(errno));
    if (existing && S_ISDIR(existing->st_mode)) refuse(path, "it is a folder");
    if (existing && !S_ISREG(existing->st_mode)) refuse(path, "it is not a regular file");
    if (existing && !mayWrite(target)) refuse(path, base::systemReason(errno));
    if (mayChangeFolder(folderOf(target))) return;
    const std::string reason = base::systemReason(errno);
    refuse(path, existing ? "it is replaced as a whole, and its folder: " + reason : reason);
}

bool OutputFile::isSameFile(const std::string& one, const std::string& other) {
    const auto first = statusOf(one);
    const auto second = statusOf(other);
    return first && second && first->st_dev == second->st_dev && first->st_ino == second->st_ino;
}

}  // namespace media
