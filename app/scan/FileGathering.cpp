// SPDX-License-Identifier: MIT
#include "scan/FileGathering.h"

#include <array>
#include <cerrno>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

#include "base/Interrupt.h"
#include "base/errors.h"
#include "io/absolutePath.h"
#include "scan/NameList.h"
#include "scan/fileState.h"
#include "scan/playlist.h"
#include "scan/usualLength.h"

namespace app {

FileGathering::FileGathering(Options options, Found found, Told refused, Told noted)
    : options_(std::move(options)), found_(std::move(found)), refused_(std::move(refused)),
      noted_(std::move(noted)) {}

void FileGathering::add(const std::string& name) {
    if (name == "-") return addNames();
    // It would stand for the working folder.
    if (name.empty()) return refused_(name, base::kEmptyName);
    const std::string path = absolutePath(name);
    struct stat status = {};
    const bool isList =
        isPlaylist(path) && stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    if (isList) return addList(path);
    addPath(path);
}

void FileGathering::addPath(const std::string& path) {
    // The system would take what stands before the NUL for the whole name.
    if (path.find('\0') != std::string::npos)
        return refused_(path, "cannot be opened: no file has a NUL in its name");
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) return refuseUnread(path);
    if (S_ISDIR(status.st_mode)) return addFolder(path);
    if (!S_ISREG(status.st_mode))
        return refused_(path, "is a pipe or a device, which cannot be read twice");
    take(path, status);
}

/** What the catalogue has of it, or below it, is gone. */
void FileGathering::refuseUnread(const std::string& path) {
    const int failure = errno;
    if (failure == ENOENT || failure == ENOTDIR) roots_.push_back({path, false});
    refused_(path, "cannot be opened: " + base::systemReason(failure));
}

void FileGathering::addFolder(const std::string& path) {
    hasSeenFile_ = false;
    FolderWalk walk(
        options_.walk,
        [this](const std::string& file, const struct stat& status) { take(file, status); },
        refused_, [this](const std::string& other) { passOver(other); });
    walk.walk(path);
    roots_.push_back({path, hasSeenFile_});
}

void FileGathering::passOver(const std::string& path) {
    hasSeenFile_ = true;
    ++noFiles_;
    if (options_.notesAll) noted_(path, "is a pipe or a device, and left out");
}

/** A list in a list is a file without music: lists may name each other. */
void FileGathering::addList(const std::string& path) {
    try {
        const Playlist list = readPlaylist(path);
        for (const std::string& address : list.addresses)
            noted_(path, "names the address " + address + ", which is left out");
        for (const std::string& file : list.files) addPath(absolutePath(file));
    } catch (const base::TrackError& error) {
        refused_(path, error.what());
    }
}

void FileGathering::addNames() {
    NameList names(options_.readsNulNames);
    std::array<char, 65536> buffer{};
    const auto addEach = [this](const std::vector<std::string>& complete) {
        for (const std::string& name : complete) addPath(absolutePath(name));
    };
    for (;;) {
        base::Interrupt::check();
        const ssize_t count = read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0)
            return refused_("standard input", "cannot be read: " + base::systemReason(errno));
        if (count == 0) break;
        addEach(names.put({buffer.data(), static_cast<std::size_t>(count)}));
    }
    addEach(names.finish());
}

void FileGathering::take(const std::string& path, const struct stat& status) {
    hasSeenFile_ = true;
    if (catalogue::isFileOf(options_.catalogue, path) || !options_.shard.has(path)) return;
    const catalogue::FileState state = fileStateOf(status);
    found_(path, state, usualSeconds(path, state.size));
}

}  // namespace app
