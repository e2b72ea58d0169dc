// SPDX-License-Identifier: MIT
#pragma once

#include "support/StereoTrack.h"

namespace beatatlas::bench {

/** Sends standard output nowhere while it lives: a session prints its progress among the results otherwise. */
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
    double feeding = 0.0;  ///< all calls but the last

    /** The last call, which runs the closing analysis, and asking for the tempo. */
    double closing = 0.0;

    double whole() const { return creating + preCheck + feeding + closing; }
};

/** Through the public interface: a session for so many frames, or null. */
using CreateSession = void* (*)(int frames);

/** The whole session: constant tempo with phrases of 32 beats, key, loudness and dots, zoom. */
void* createWholeSession(int frames);

/** Drives a session as a host does, from its creation to the tempo, in calls of 4096 frames; `track` (4096 frames and
 *  more) is played over and over until the session has its frames. Leaves the caller's rounding mode as it was. */
SessionTimes runSession(CreateSession create, test::StereoTrack& track, int frames,
                        bool withPreCheck = true);

}  // namespace beatatlas::bench
