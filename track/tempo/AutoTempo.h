// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "track/Listener.h"
#include "track/evidence/EvidenceListener.h"
#include "track/tempo/SessionPair.h"
#include "track/tempo/bars.h"
#include "track/tempo/metre.h"
#include "track/tempo/steadiness.h"

namespace beatatlas::track::inner {

/** The tempo of a track, whose kind nobody has to know beforehand. */
struct TempoAnswer {
    double bpm = 0.0;               // 0, without beats: no tempo
    std::vector<double> beats;      // seconds
    std::vector<double> downbeats;  // seconds
    Steadiness steadiness;
    double clarity = 0.0;              // see clarityOf()
    double standing = 0.0;             // see LocalTempo
    std::vector<MetreReading> metres;  // the best first
    std::vector<BarReading> bars;      // the best first; none of a track of few beats
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

    /** Call once. */
    TempoAnswer finish();

    SessionPair& sessions() { return sessions_; }

private:
    int rate_;
    SessionPair sessions_;
    EvidenceListener evidence_;
};

}  // namespace beatatlas::track::inner
