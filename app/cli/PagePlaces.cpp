// SPDX-License-Identifier: MIT
#include "cli/PagePlaces.h"

#include <CLI/CLI.hpp>

#include "base/errors.h"
#include "cli/bracketGuard.h"
#include "io/fileEnding.h"

namespace app {

namespace {

constexpr const char* kEnding = ".html";
constexpr const char* kStandardOutput = "-";

}  // namespace

void PagePlaces::declare(CLI::App& arguments) {
    auto* file = arguments.add_option("-o,--output", file_,
                                      "the page: a name that ends in .html; - for standard output");
    file->option_text("OUT");
    auto* folder = arguments.add_option("-d,--directory", folder_,
                                        "a folder for the page of each track, named after it");
    folder->option_text("DIR")->excludes(file);
    arguments.add_flag("--overwrite", overwrites_, "with -d: replace pages that are there")
        ->needs(folder);
}

void PagePlaces::settle(const std::vector<std::string>& tracks) {
    if (folder_) return places_.settleFolder(tracks, unguarded(*folder_), kEnding, overwrites_);
    if (!file_) throw base::UsageError("say where the page goes: -o OUT.html, or -d DIR");
    if (tracks.size() > 1)
        throw base::UsageError("the pages of several tracks go to a folder: -d DIR");
    const std::string path = unguarded(*file_);
    isStandardOutput_ = path == kStandardOutput;
    if (isStandardOutput_) return;
    if (!hasEnding(path, kEnding))
        throw base::UsageError("the page's name must end in .html (--output)");
    places_.settleFile(tracks, path, "page");
}

}  // namespace app
