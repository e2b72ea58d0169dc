// SPDX-License-Identifier: MIT
#pragma once

namespace app {

/** How the process ends. A signal ends it with 128 and the signal's number: 130 for Ctrl-C. */
enum ExitCode : int {
    kExitDone = 0,
    kExitFailed = 1,  ///< a track could not be analysed, or results could not be written
    kExitUsage = 2,   ///< the command line could not be understood
    kExitSignal = 128,
};

}  // namespace app
