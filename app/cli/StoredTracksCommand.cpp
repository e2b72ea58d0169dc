// SPDX-License-Identifier: MIT
#include "cli/StoredTracksCommand.h"

#include <CLI/CLI.hpp>

#include "base/Interrupt.h"
#include "base/errors.h"
#include "catalogue/CatalogueError.h"
#include "cli/bracketGuard.h"
#include "cli/messages.h"

namespace app {

void StoredTracksCommand::declare(CLI::App& arguments) {
    arguments.add_option("FILE", files_, "tracks of the catalogue")->required()->option_text("...");
    declareOwn(arguments);
    catalogue_.declare(arguments);
}

ExitCode StoredTracksCommand::run(ResultStream& results) {
    settle();
    const catalogue::Catalogue catalogue(catalogue_.path(), access());
    begin(results);
    bool allDone = true;
    for (const std::string& file : files_) {
        base::Interrupt::check();
        if (!attempt(catalogue, unguarded(file), results)) allDone = false;
    }
    end();
    return allDone ? kExitDone : kExitFailed;
}

bool StoredTracksCommand::attempt(const catalogue::Catalogue& catalogue, const std::string& file,
                                  ResultStream& results) {
    const auto fail = [&](const char* reason) {
        printFileError(file, reason);
        addFailure(file, reason);
        return false;
    };
    if (file.empty()) return fail(base::kEmptyName);
    try {
        handle(catalogue, file, results);
        return true;
    } catch (const base::TrackError& error) {
        return fail(error.what());
    } catch (const catalogue::DamagedRecord& damage) {
        return fail(damage.what());
    }
}

}  // namespace app
