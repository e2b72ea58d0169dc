// SPDX-License-Identifier: MIT
#include "cli/ExportPlaces.h"

#include <filesystem>
#include <system_error>

#include <CLI/CLI.hpp>

#include "base/errors.h"
#include "cli/bracketGuard.h"

namespace app {

namespace {

constexpr const char* kStandardOutput = "-";

bool isFolder(const std::string& path) {
    std::error_code failure;
    return path.ends_with('/') || std::filesystem::is_directory(path, failure);
}

}  // namespace

void ExportPlaces::declare(CLI::App& arguments) {
    auto* file = arguments.add_option(
        "-o,--output", file_,
        "a file; - for standard output (default); for a document of each track a folder, or a\n"
        "pattern such as labels/{name}.txt");
    file->option_text("OUT");
    auto* folder = arguments.add_option("-d,--directory", folder_,
                                        "a folder for a document of each track, made if need be");
    folder->option_text("DIR")->excludes(file);
    arguments.add_flag("--overwrite", overwrites_,
                       "with a folder or a pattern: replace files that are there");
}

void ExportPlaces::choose(const output::ExportFormat& format) {
    format_ = &format;
    place_ = unguarded(folder_ ? *folder_ : file_.value_or(kStandardOutput));
    isInFolder_ = folder_ || isFolder(place_);
    isByPattern_ = !isInFolder_ && place_.find(kNameInPattern) != std::string::npos;
    isForEach_ = isInFolder_ || isByPattern_ || !format.holdsManyTracks;
    isStandardOutput_ = !isInFolder_ && place_ == kStandardOutput;
}

void ExportPlaces::settle(const std::vector<std::string>& tracks) {
    const std::string& ending = format_->ending;
    if (isInFolder_) return places_.settleFolder(tracks, place_, ending, overwrites_);
    if (isByPattern_) return places_.settlePattern(tracks, place_, overwrites_);
    if (isForEach_ && tracks.size() > 1)
        throw base::UsageError(format_->name + " holds one track: several go to a folder (-d DIR)" +
                               ", or by a pattern (-o '{name}" + ending + "')");
    if (!isStandardOutput_) places_.settleFile(tracks, place_, "result");
}

}  // namespace app
