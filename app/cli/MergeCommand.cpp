// SPDX-License-Identifier: MIT
#include "cli/MergeCommand.h"

#include <algorithm>

#include <CLI/CLI.hpp>

#include "catalogue/merge/Merge.h"
#include "cli/bracketGuard.h"
#include "cli/messages.h"
#include "output/textFormat.h"

namespace app {

void MergeCommand::declare(CLI::App& arguments) {
    arguments.add_option("CATALOGUE", inputs_, "the catalogues")->required()->option_text("...");
    arguments.add_option("-o,--output", output_, "the new catalogue, which must not exist yet")
        ->required()
        ->option_text("CATALOGUE");
}

ExitCode MergeCommand::run(ResultStream& results) {
    std::transform(inputs_.begin(), inputs_.end(), inputs_.begin(), unguarded);
    const auto tell = [](const std::string& path) {
        printFileWarning(path, "was corrected in two ways; the newer one was kept");
    };
    const catalogue::MergeCounts counts =
        catalogue::mergeCatalogues(inputs_, unguarded(output_), tell);
    results.write(output::counted(counts.tracks, "track") + ", " +
                  output::counted(counts.conflicts, "conflict") + "\n");
    return kExitDone;
}

}  // namespace app
