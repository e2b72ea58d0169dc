// SPDX-License-Identifier: MIT
#include "media/tags/TagRewrite.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <iterator>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "base/Interrupt.h"
#include "base/displayName.h"
#include "base/errors.h"
#include "media/FileInput.h"
#include "media/OutputFile.h"
#include "media/tags/TagFile.h"
#include "media/tags/samePackets.h"

namespace media {

namespace {

constexpr std::size_t kBlockBytes = 256 * 1024;

// More than tags of tempo and key and the room that TagLib leaves behind them.
constexpr std::int64_t kGrowthBytes = 256 * 1024;

std::string pathOf(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

void copy(const FileInput& from, OutputFile& to) {
    std::vector<char> block(kBlockBytes);
    for (std::int64_t at = 0; at < from.size();) {
        base::Interrupt::check();
        const std::size_t count = from.readAt(at, block.data(), block.size());
        from.requireReadable();
        if (count == 0) throw base::TrackError("has changed while it was being read");
        to.write(block.data(), count);
        at += static_cast<std::int64_t>(count);
    }
}

/** TagLib does not notice a full disk: so there has to be room. */
void requireRoom(const OutputFile& draft, std::int64_t size) {
    const int failure = posix_fallocate(draft.descriptor(), size, kGrowthBytes);
    if (ftruncate(draft.descriptor(), size) != 0 || failure == ENOSPC || failure == EFBIG ||
        failure == EDQUOT)
        throw base::TrackError("cannot be written: " +
                               base::systemReason(failure != 0 ? failure : errno));
}

void requireWritten(const std::string& draft, const std::vector<base::TagChange>& changes,
                    const std::vector<std::string>& expected) {
    const TagFile tags(draft, TagFile::Access::read);
    const bool isThere =
        std::all_of(changes.begin(), changes.end(), [&](const base::TagChange& change) {
            const auto value = tags.fields().value(change.field);
            using Kind = base::TagChange::Kind;
            if (change.kind == Kind::removed) return !value;
            if (change.kind == Kind::kept) return value == change.before;
            return value == change.after;
        });
    if (!isThere || tags.fields().listing() != expected)
        throw base::TrackError(
            "has tags that would not all survive the change: it was left as it is");
}

void requireSameMusic(const std::string& path, const std::string& draft) {
    bool isSame = false;
    try {
        isSame = haveSamePackets(path, draft);
    } catch (const base::TrackError&) {
        // The draft cannot even be read.
    }
    if (!isSame)
        throw base::TrackError(
            "is built so that its tags cannot be changed without touching the music: it was left "
            "as it is");
}

void writeTags(const std::string& path, const OutputFile& draft,
               const std::vector<base::TagChange>& changes) {
    const std::string draftPath = pathOf(draft.descriptor());
    std::vector<std::string> expected;
    {
        TagFile tags(draftPath, TagFile::Access::write);
        tags.write(changes);
        expected = tags.fields().listing();
    }
    requireWritten(draftPath, changes, expected);
    requireSameMusic(path, draftPath);
}

/** Access lists and whatever people put there. Not every file system has them. */
void copyAttributes(const std::string& path, int to) {
    std::vector<char> names(
        static_cast<std::size_t>(std::max<ssize_t>(0, listxattr(path.c_str(), nullptr, 0))));
    const ssize_t length = listxattr(path.c_str(), names.data(), names.size());
    std::vector<char> value;
    for (ssize_t at = 0; at < length;) {
        const std::string name = names.data() + at;
        at += static_cast<ssize_t>(name.size()) + 1;
        const ssize_t size = getxattr(path.c_str(), name.c_str(), nullptr, 0);
        if (size < 0) continue;
        value.resize(static_cast<std::size_t>(size));
        if (getxattr(path.c_str(), name.c_str(), value.data(), value.size()) == size)
            fsetxattr(to, name.c_str(), value.data(), value.size(), 0);
    }
}

/** @return what the file no longer has, as reasons for people */
std::vector<std::string> keepOwner(const std::string& path, const struct stat& status, int to) {
    std::vector<std::string> lost;
    copyAttributes(path, to);
    struct stat own = {};
    const bool isOther =
        fstat(to, &own) != 0 || own.st_uid != status.st_uid || own.st_gid != status.st_gid;
    if (isOther && fchown(to, status.st_uid, status.st_gid) != 0)
        lost.push_back("its owner could not be kept: " + base::systemReason(errno));
    if (status.st_nlink > 1)
        lost.emplace_back("has other names (hard links), under which the old tags stay");
    return lost;
}

void setTime(int descriptor, const struct stat& status) {
    const std::array<struct timespec, 2> times = {status.st_atim, status.st_mtim};
    if (futimens(descriptor, times.data()) != 0)
        throw base::TrackError("cannot keep its time: " + base::systemReason(errno));
}

struct stat statusOf(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0)
        throw base::TrackError("cannot be examined: " + base::systemReason(errno));
    return status;
}

void writeBackup(const std::string& path, const FileInput& original, const struct stat& status) {
    OutputFile backup(TagRewrite::backupOf(path));
    copy(original, backup);
    setTime(backup.descriptor(), status);
    backup.commit();
}

}  // namespace

std::string TagRewrite::backupOf(const std::string& path) {
    std::error_code failure;
    const std::filesystem::path place = std::filesystem::canonical(path, failure);
    return (failure ? path : place.string()) + ".bak";
}

void TagRewrite::requirePossible(const std::string& path) const {
    OutputFile::requireWritable(path);
    if (!options_.keepsBackup) return;
    const std::string backup = backupOf(path);
    std::error_code failure;
    if (std::filesystem::exists(std::filesystem::symlink_status(backup, failure)))
        throw base::TrackError("has a backup already: " + base::displayName(backup));
    OutputFile::requireWritable(backup);
}

std::vector<std::string> TagRewrite::write(const std::string& path,
                                           const std::vector<base::TagChange>& changes) const {
    requirePossible(path);
    const struct stat status = statusOf(path);
    const FileInput original(path);
    OutputFile draft(path);
    copy(original, draft);
    requireRoom(draft, original.size());
    writeTags(path, draft, changes);
    std::vector<std::string> lost = keepOwner(path, status, draft.descriptor());
    if (options_.keepsTime) setTime(draft.descriptor(), status);
    if (options_.keepsBackup) writeBackup(path, original, status);
    if (original.hasChanged()) throw base::TrackError("has changed while it was being read");
    if (std::string unset = draft.commit(); !unset.empty()) lost.push_back(unset);
    return lost;
}

}  // namespace media
