// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas::bench {

/** The sleeps of zero length with which a session gives the processor away. The benchmark program has a nanosleep() of
 *  its own, which counts them, passes them on or leaves them out. For one thread. */
class Sleeps {
public:
    /** Left out while it lives. */
    class LeftOut {
    public:
        LeftOut();
        ~LeftOut();
        LeftOut(const LeftOut&) = delete;
        LeftOut& operator=(const LeftOut&) = delete;
    };

    /** Asked for since the program began, whether passed on or not. */
    static long count();
};

}  // namespace beatatlas::bench
