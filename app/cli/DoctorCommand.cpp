// SPDX-License-Identifier: MIT
#include "cli/DoctorCommand.h"

#include <CLI/CLI.hpp>

#include "doctor/Report.h"

namespace app {

void DoctorCommand::declare(CLI::App& arguments) {
    arguments.add_flag("--json", asJson_, "print one JSON document for programs");
}

ExitCode DoctorCommand::run(ResultStream& results) {
    const Report report = Report::made();
    results.write(asJson_ ? report.json() : report.text());
    return report.isWell() ? kExitDone : kExitFailed;
}

}  // namespace app
