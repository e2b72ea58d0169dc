// SPDX-License-Identifier: MIT
#include "cli/PicturePlaces.h"

#include <map>

#include <CLI/CLI.hpp>

#include "base/errors.h"
#include "cli/bracketGuard.h"
#include "cli/oneOf.h"
#include "io/fileEnding.h"

namespace app {

namespace {

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

}  // namespace

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
    if (folder_) {
        const char* ending = format() == output::PictureFormat::svg ? ".svg" : ".png";
        places_.settleFolder(tracks, unguarded(*folder_), ending, overwrites_);
        return;
    }
    if (!file_) throw base::UsageError("say where the picture goes: -o OUT.png, or -d DIR");
    if (tracks.size() > 1)
        throw base::UsageError("the pictures of several tracks go to a folder: -d DIR");
    const std::string path = unguarded(*file_);
    format_ = formatOf(path);
    places_.settleFile(tracks, path, "picture");
}

}  // namespace app
