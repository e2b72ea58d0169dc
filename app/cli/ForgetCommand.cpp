// SPDX-License-Identifier: MIT
#include "cli/ForgetCommand.h"

#include <CLI/CLI.hpp>

#include "base/errors.h"
#include "catalogue/forget.h"
#include "cli/storedTrack.h"

namespace app {

void ForgetCommand::declareOwn(CLI::App& arguments) {
    arguments.add_flag("--corrected", alsoCorrected_,
                       "also tracks that somebody has corrected, with their corrections");
}

void ForgetCommand::handle(const catalogue::Catalogue& catalogue, const std::string& file,
                           ResultStream& /*results*/) {
    for (const std::string& name : catalogueNames(file)) {
        switch (forget(catalogue, name, alsoCorrected_)) {
        case catalogue::Forgetting::done:
            return;
        case catalogue::Forgetting::corrected:
            throw base::TrackError("has corrections; --corrected forgets these too");
        case catalogue::Forgetting::unknown:
            break;
        }
    }
    throw base::TrackError("is not in the catalogue");
}

}  // namespace app
