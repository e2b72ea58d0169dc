// SPDX-License-Identifier: MIT
#pragma once

#include "track/Listener.h"
#include "track/evidence/EvidenceListener.h"
#include "track/tempo/SessionPair.h"
#include "track/tempo/decideTempo.h"

namespace beatatlas::track::inner {

/** Finds the tempo of a track of any kind: steady or varying.
 *
 *  Life: construct → hear the whole track → finish(). */
class AutoTempo : public Listener {
public:
    /** @param rate    44100 or 48000 Hz
     *  @param frames  length of the track, at least 1
     *  @throws std::bad_alloc, as the other calls do */
    AutoTempo(int rate, int frames, bool wantsWaves, const TempoWishes& wishes = {})
        : rate_(rate), wishes_(wishes), sessions_(rate, frames, wantsWaves), evidence_(rate) {}

    void hear(const Block& block) override {
        sessions_.hear(block);
        evidence_.hear(block);
    }

    /** The answer for the whole track. Call once. */
    TempoAnswer finish() {
        sessions_.close();
        return decideTempo(evidence_.finish(), sessions_.grids(), rate_, wishes_);
    }

    /** The sessions, for their waves. */
    SessionPair& sessions() { return sessions_; }

private:
    int rate_;
    TempoWishes wishes_;
    SessionPair sessions_;
    EvidenceListener evidence_;
};

}  // namespace beatatlas::track::inner
