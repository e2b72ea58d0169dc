// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "track/Listener.h"
#include "track/evidence/EvidenceListener.h"
#include "track/tempo/SessionPair.h"
#include "track/tempo/bars.h"
#include "track/tempo/metre.h"

namespace beatatlas::track::inner {

/** The tempo of a track, whose kind nobody has to know beforehand. */
struct TempoAnswer {
    double bpm = 0.0;  // 0, with all lists empty: no tempo
    bool isSteady = true;
    double coherence = 0.0;
    std::vector<double> beats;            // seconds
    std::vector<double> downbeats;        // seconds
    std::vector<MetreHypothesis> metres;  // the best first
    std::vector<BarHypothesis> bars;      // the best first
};

/** Finds it: listens to the track through two sessions of the core and through what begins and sounds in it, and weighs
 *  what they say.
 *
 *  Life: construct → hear the whole track → finish(). */
class AutoTempo : public Listener {
public:
    /** @throws std::bad_alloc, as the other calls do */
    AutoTempo(int rate, int frames, bool wantsWaves);

    void hear(const Block& block) override;
    TempoAnswer finish();

    SessionPair& sessions() { return sessions_; }

private:
    int rate_;
    SessionPair sessions_;
    EvidenceListener evidence_;
};

}  // namespace beatatlas::track::inner
