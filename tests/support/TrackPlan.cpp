// SPDX-License-Identifier: MIT
#include "support/TrackPlan.h"

namespace beatatlas::test {

TrackPlan dryKickPlan(int sampleRate, std::int64_t lengthFrames, double bpm) {
    TrackPlan plan;
    plan.sampleRate = sampleRate;
    plan.lengthFrames = lengthFrames;
    plan.bpm = bpm;
    plan.levels = {.kick = 1.0, .snare = 0.0, .hats = 0.0, .bass = 0.0, .chords = 0.0};
    return plan;
}

}  // namespace beatatlas::test
