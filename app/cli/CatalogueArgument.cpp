// SPDX-License-Identifier: MIT
#include "cli/CatalogueArgument.h"

#include <filesystem>
#include <system_error>

#include <CLI/CLI.hpp>

#include "base/displayName.h"
#include "base/errors.h"
#include "cli/bracketGuard.h"
#include "io/userFolder.h"

namespace app {

namespace {

namespace fs = std::filesystem;

fs::path usersOwn() {
    const fs::path data = userFolder("XDG_DATA_HOME", ".local/share");
    if (data.empty())
        throw base::UsageError("there is no home folder for a catalogue: name one with "
                               "--catalogue");
    return data / "beatatlas" / "catalogue.sqlite";
}

}  // namespace

void CatalogueArgument::declare(CLI::App& arguments) {
    arguments
        .add_option("--catalogue", path_,
                    "the catalogue (default: beatatlas/catalogue.sqlite in $XDG_DATA_HOME, which\n"
                    "is ~/.local/share unless it is set)")
        ->option_text("FILE");
}

std::string CatalogueArgument::path() const {
    return path_ ? unguarded(*path_) : usersOwn().string();
}

std::string CatalogueArgument::pathToCreate() const {
    if (path_) return unguarded(*path_);
    const fs::path own = usersOwn();
    std::error_code failure;
    fs::create_directories(own.parent_path(), failure);
    if (failure)
        throw base::OutputError(base::displayName(own.parent_path().string()) +
                                ": cannot be made: " + failure.message());
    return own.string();
}

}  // namespace app
