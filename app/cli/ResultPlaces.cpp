// SPDX-License-Identifier: MIT
#include "cli/ResultPlaces.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <set>
#include <string_view>
#include <system_error>

#include <sys/stat.h>

#include "base/displayName.h"
#include "base/errors.h"
#include "media/OutputFile.h"

namespace app {

namespace {

// File systems take names of 255 bytes; an ending, a number and the name of the draft need theirs.
constexpr std::size_t kLongestStemBytes = 220;

// What comes from standard input has no name.
constexpr const char* kStandardInput = "-";
constexpr const char* kStandardInputName = "stdin";

/** Names that differ in capitals alone are one file on some file systems. */
std::string withoutCapitals(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return name;
}

/** Shortened between UTF-8 characters. */
std::string cutToLength(std::string name) {
    if (name.size() <= kLongestStemBytes) return name;
    std::size_t end = kLongestStemBytes;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) --end;
    name.resize(end);
    return name;
}

std::string stemOf(const std::string& track) {
    if (track == kStandardInput) return kStandardInputName;
    return cutToLength(std::filesystem::path(track).stem().string());
}

std::string fullNameOf(const std::string& track) {
    if (track == kStandardInput) return kStandardInputName;
    return cutToLength(std::filesystem::path(track).filename().string());
}

/** @throws OutputError */
void makeFolder(const std::filesystem::path& folder) {
    if (folder.empty()) return;
    std::error_code failure;
    std::error_code unseen;
    std::filesystem::create_directories(folder, failure);
    if (failure && !std::filesystem::is_directory(folder, unseen))
        throw base::OutputError(base::displayName(folder.string()) +
                                " cannot be made: " + base::systemReason(failure.value()));
}

}  // namespace

std::vector<std::string> resultNames(const std::vector<std::string>& tracks,
                                     const std::string& ending) {
    std::map<std::string, int> sharers;
    for (const std::string& track : tracks) ++sharers[withoutCapitals(stemOf(track))];
    std::vector<std::string> names;
    std::set<std::string> taken;
    // What is alone with its stem keeps it, whatever the others come to.
    for (const auto& [stem, count] : sharers) {
        if (count == 1) taken.insert(stem);
    }
    for (const std::string& track : tracks) {
        std::string name = stemOf(track);
        if (sharers[withoutCapitals(name)] > 1) {
            const std::string fullName = fullNameOf(track);
            name = fullName;
            for (int i = 2; !taken.insert(withoutCapitals(name)).second; ++i)
                name = fullName + " (" + std::to_string(i) + ")";
        }
        names.push_back(name + ending);
    }
    return names;
}

void ResultPlaces::settleFile(const std::vector<std::string>& tracks, const std::string& path,
                              const std::string& result) {
    keepFromReplacing(tracks);
    media::OutputFile::requireWritable(path);
    if (isTrack(path))
        throw base::UsageError("the " + result + " would replace " +
                               (tracks.size() == 1 ? "the track itself" : "one of the tracks"));
    overwrites_ = true;
    paths_.assign(std::max<std::size_t>(tracks.size(), 1), path);
}

void ResultPlaces::settleFolder(const std::vector<std::string>& tracks, const std::string& folder,
                                const std::string& ending, bool overwrites) {
    keepFromReplacing(tracks);
    overwrites_ = overwrites;
    makeFolder(folder);
    for (const std::string& name : resultNames(tracks, ending))
        paths_.push_back((std::filesystem::path(folder) / name).string());
}

void ResultPlaces::settlePattern(const std::vector<std::string>& tracks, const std::string& pattern,
                                 bool overwrites) {
    keepFromReplacing(tracks);
    overwrites_ = overwrites;
    const std::size_t at = pattern.find(kNameInPattern);
    const std::size_t length = std::string_view(kNameInPattern).size();
    for (const std::string& name : resultNames(tracks, "")) {
        paths_.push_back(std::string(pattern).replace(at, length, name));
        makeFolder(std::filesystem::path(paths_.back()).parent_path());
    }
}

std::optional<ResultPlaces::Identity> ResultPlaces::identityOf(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) return std::nullopt;
    return Identity(status.st_dev, status.st_ino);
}

/** By their identities, since each result is compared with all of them. */
void ResultPlaces::keepFromReplacing(const std::vector<std::string>& tracks) {
    tracks_.clear();
    for (const std::string& track : tracks) {
        if (const auto identity = identityOf(track)) tracks_.insert(*identity);
    }
}

bool ResultPlaces::isTrack(const std::string& path) const {
    const auto identity = identityOf(path);
    return identity && tracks_.contains(*identity);
}

void ResultPlaces::requireFree(std::size_t track) const {
    const std::string& path = paths_[track];
    std::error_code failure;
    if (!overwrites_ && std::filesystem::exists(path, failure))
        throw base::TrackError(base::displayName(path) +
                               " is there already (--overwrite replaces it)");
    if (isTrack(path))
        throw base::TrackError(base::displayName(path) +
                               " cannot be written: it is one of the tracks");
    try {
        media::OutputFile::requireWritable(path);
    } catch (const base::OutputError& error) {
        throw base::TrackError(error.what());
    }
}

}  // namespace app
