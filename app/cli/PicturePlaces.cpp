// SPDX-License-Identifier: MIT
#include "cli/PicturePlaces.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <set>

#include <CLI/CLI.hpp>

#include "base/displayName.h"
#include "base/errors.h"
#include "cli/bracketGuard.h"
#include "cli/oneOf.h"
#include "io/fileEnding.h"
#include "media/OutputFile.h"

namespace app {

namespace {

// File systems allow names of 255 bytes; the extension, a number and the name of the draft need
// some of them.
constexpr std::size_t kLongestStemBytes = 220;

std::map<std::string, output::PictureFormat> formats() {
    return {{"png", output::PictureFormat::png}, {"svg", output::PictureFormat::svg}};
}

/** @throws UsageError unless the name ends in .png or .svg */
output::PictureFormat formatOf(const std::string& path) {
    for (const auto& [name, format] : formats()) {
        if (hasEnding(path, "." + name)) return format;
    }
    throw base::UsageError("the picture's name must end in .png or .svg (--output)");
}

/** Names that differ only in case are the same file on some file systems. */
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
    return cutToLength(std::filesystem::path(track).stem().string());
}

std::string fullNameOf(const std::string& track) {
    return cutToLength(std::filesystem::path(track).filename().string());
}

}  // namespace

std::vector<std::string> pictureNames(const std::vector<std::string>& tracks,
                                      const std::string& ending) {
    std::map<std::string, int> sharers;
    for (const std::string& track : tracks) ++sharers[withoutCapitals(stemOf(track))];
    std::vector<std::string> names;
    std::set<std::string> taken;
    // A stem that occurs only once is kept, whatever the other names become.
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

void PicturePlaces::declare(CLI::App& arguments) {
    auto* file =
        arguments.add_option("-o,--output", file_, "the picture: a name that ends in .png or .svg");
    file->option_text("OUT");
    auto* folder = arguments.add_option("-d,--directory", folder_,
                                        "a folder for one picture of each track, named after it");
    folder->option_text("DIR")->excludes(file);
    arguments.add_option("--format", format_, "with -d: png (default) or svg")
        ->transform(oneOf(formats()))
        ->option_text("KIND")
        ->needs(folder);
    arguments.add_flag("--overwrite", overwrites_, "with -d: replace pictures that are there")
        ->needs(folder);
}

void PicturePlaces::settle(const std::vector<std::string>& tracks) {
    tracks_ = tracks;
    if (folder_)
        settleFolder();
    else
        settleFile();
}

void PicturePlaces::settleFile() {
    if (!file_) throw base::UsageError("say where the picture goes: -o OUT.png, or -d DIR");
    if (tracks_.size() > 1)
        throw base::UsageError("the pictures of several tracks go to a folder: -d DIR");
    const std::string path = unguarded(*file_);
    format_ = formatOf(path);
    media::OutputFile::requireWritable(path);
    if (isTrack(path)) throw base::UsageError("the picture would replace the track itself");
    overwrites_ = true;
    paths_ = {path};
}

void PicturePlaces::settleFolder() {
    const std::filesystem::path folder = unguarded(*folder_);
    std::error_code failure;
    std::error_code unseen;
    std::filesystem::create_directories(folder, failure);
    if (failure && !std::filesystem::is_directory(folder, unseen))
        throw base::OutputError(base::displayName(folder.string()) +
                                " cannot be made: " + base::systemReason(failure.value()));
    const char* ending = format() == output::PictureFormat::svg ? ".svg" : ".png";
    for (const std::string& name : pictureNames(tracks_, ending))
        paths_.push_back((folder / name).string());
}

bool PicturePlaces::isTrack(const std::string& path) const {
    return std::any_of(tracks_.begin(), tracks_.end(), [&](const std::string& track) {
        return media::OutputFile::isSameFile(track, path);
    });
}

void PicturePlaces::requireFree(std::size_t track) const {
    const std::string& path = paths_[track];
    std::error_code failure;
    if (!overwrites_ && std::filesystem::exists(path, failure))
        throw base::OutputError(base::displayName(path) +
                                " is there already (--overwrite replaces it)");
    if (isTrack(path))
        throw base::OutputError(base::displayName(path) +
                                " cannot be written: it is one of the tracks");
    media::OutputFile::requireWritable(path);
}

}  // namespace app
