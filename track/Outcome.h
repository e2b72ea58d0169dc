// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>

#include "beatatlas/track.h"

namespace beatatlas::track::inner {

/** Ends an analysis with a status of the interface. */
struct Failure {
    int status;
};

/** How an analysis ends, whichever of its threads fails: the first failure decides, and the other
 *  threads see it and stop. */
class Outcome {
public:
    int status() const { return status_; }

    /** @throws Failure with the reason when a thread has failed */
    void throwIfFailed() const {
        const int status = status_;
        if (status != BA_TRACK_OK) throw Failure{status};
    }

    /** Runs the work of a thread and turns what it throws into the status. */
    template <class Work>
    void guard(const Work& work) {
        try {
            work();
        } catch (...) {
            failWithCaught();
        }
    }

private:
    void failWithCaught();
    void fail(int status);

    std::atomic<int> status_{BA_TRACK_OK};
};

}  // namespace beatatlas::track::inner
