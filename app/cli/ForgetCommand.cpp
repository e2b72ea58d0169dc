// SPDX-License-Identifier: MIT
#include "cli/ForgetCommand.h"

#include <algorithm>

#include <CLI/CLI.hpp>

#include "base/errors.h"
#include "catalogue/forget.h"
#include "cli/storedTrack.h"

namespace app {

void ForgetCommand::declareOwn(CLI::App& arguments) {
    arguments.add_flag("--corrected", withCorrections_,
                       "what somebody corrected of these tracks too, which otherwise is kept for\n"
                       "the day on which their sound comes back");
}

void ForgetCommand::handle(const catalogue::Catalogue& catalogue, const std::string& file,
                           ResultStream& /*results*/) {
    const auto names = catalogueNames(file);
    const bool isDone = std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        return forget(catalogue, name, withCorrections_);
    });
    if (!isDone) throw base::TrackError("is not in the catalogue");
}

}  // namespace app
