// SPDX-License-Identifier: MIT
#include "cli/ScanWorkerCommand.h"

#include <unistd.h>

#include "scan/FileWorker.h"

namespace app {

ExitCode ScanWorkerCommand::run(ResultStream& results) {
    FileWorker(STDIN_FILENO, results).run();
    return kExitDone;
}

}  // namespace app
