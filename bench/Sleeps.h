// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas::bench {

/** The sleeps of zero length with which a session yields the processor. The benchmark program has
 *  its own nanosleep(), which counts them and passes them on or omits them. For one thread. */
class Sleeps {
public:
    /** While it lives, sleeps are omitted. */
    class LeftOut {
    public:
        LeftOut();
        ~LeftOut();
        LeftOut(const LeftOut&) = delete;
        LeftOut& operator=(const LeftOut&) = delete;
    };

    /** Sleeps requested since the program started, whether passed on or not. */
    static long count();
};

}  // namespace beatatlas::bench
