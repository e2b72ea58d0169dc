// SPDX-License-Identifier: MIT
#pragma once

namespace base {

/** Thrown where a request to stop is noticed; unwinding removes half-written files. */
class Interrupted {
public:
    explicit Interrupted(int signalNumber) : signalNumber_(signalNumber) {}
    int signalNumber() const { return signalNumber_; }

private:
    int signalNumber_;
};

/** Turns Ctrl-C, hang-up and termination into a flag that long loops check.
 *
 *  The first signal sets the flag; a second one of the same kind ends the process at once, as its
 *  default action does. A signal that was ignored when the program started (nohup) stays
 *  ignored. */
class Interrupt {
public:
    /** Catches the signals from now on. Writing to a closed pipe or beyond the file size limit then
     *  fails with an error instead of ending the process, and how a child ended can be asked. */
    static void install();

    /** Whether a signal has arrived. */
    static bool isRequested();

    /** @throws Interrupted once a signal has arrived */
    static void check();
};

}  // namespace base
