// SPDX-License-Identifier: MIT
#pragma once

namespace base {

/** Thrown where a request to stop is noticed; unwinding removes whatever is half written. */
class Interrupted {
public:
    explicit Interrupted(int signalNumber) : signalNumber_(signalNumber) {}
    int signalNumber() const { return signalNumber_; }

private:
    int signalNumber_;
};

/** Turns Ctrl-C, hang-up and termination into a flag that the long loops look at.
 *
 *  The first signal asks; a second one of the same kind ends the process at once, as it would
 *  without the tool. A signal that the caller had ignored (nohup) stays ignored. */
class Interrupt {
public:
    /** Catches the signals from here on, and makes writing to a closed pipe or beyond the caller's
     *  file size limit an error instead of a death. */
    static void install();

    static bool isRequested();

    /** @throws Interrupted once a signal has arrived */
    static void check();
};

}  // namespace base
