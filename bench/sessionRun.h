// SPDX-License-Identifier: MIT
#pragma once

#include "support/StereoTrack.h"

namespace beatatlas::bench {

/** Discards standard output while it lives, since a session prints its progress there. */
class QuietOutput {
public:
    QuietOutput();
    ~QuietOutput();
    QuietOutput(const QuietOutput&) = delete;
    QuietOutput& operator=(const QuietOutput&) = delete;

private:
    int kept_;
};

/** Processor time of the parts of a session, in seconds. */
struct SessionTimes {
    double creating = 0.0;
    double preCheck = 0.0;
    /** All calls but the last. */
    double feeding = 0.0;

    /** The last call, which runs the closing analysis, and the call that reads the tempo. */
    double closing = 0.0;

    double whole() const { return creating + preCheck + feeding + closing; }
};

/** Creates a session for a number of frames through the public interface; null if that fails. */
using CreateSession = void* (*)(int frames);

/** The whole session: constant tempo with phrases of 32 beats, key, loudness and dots, zoom. */
void* createWholeSession(int frames);

/** Drives a session as a host does, from its creation to reading the tempo, in calls of 4096
 *  frames. `track` (at least 4096 frames) is repeated until the session has all its frames. Leaves
 *  the caller's rounding mode as it was. */
SessionTimes runSession(CreateSession create, test::StereoTrack& track, int frames,
                        bool withPreCheck = true);

}  // namespace beatatlas::bench
