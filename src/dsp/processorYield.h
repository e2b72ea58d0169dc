// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** Gives the processor away once: a sleep of zero length. Lets a host's other threads breathe in
 *  long stages. Does nothing while the calling thread is at UnbrokenWork. */
void yieldProcessor();

/** While it lives, the calling thread keeps the processor. For work that its host waits for or has
 *  given a thread of its own: a sleep costs some 4 µs of kernel time, in a closing analysis about a
 *  tenth of a whole session. Scopes nest. */
class UnbrokenWork {
public:
    UnbrokenWork();
    ~UnbrokenWork();
    UnbrokenWork(const UnbrokenWork&) = delete;
    UnbrokenWork& operator=(const UnbrokenWork&) = delete;
};

}  // namespace beatatlas
