// SPDX-License-Identifier: MIT
#pragma once

namespace app {

/** The exit status. After a signal it is 128 plus the signal's number: 130 for Ctrl-C. */
enum ExitCode : int {
    kExitDone = 0,
    /** A track could not be analysed, or results could not be written. */
    kExitFailed = 1,
    /** The command line could not be understood. */
    kExitUsage = 2,
    kExitSignal = 128,
};

}  // namespace app
