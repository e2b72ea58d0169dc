// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "track/Listener.h"
#include "track/evidence/EvidenceListener.h"
#include "track/tempo/SessionPair.h"
#include "track/tempo/bars.h"
#include "track/tempo/metre.h"
#include "track/tempo/steadiness.h"

namespace beatatlas::track::inner {

/** What a host knows or wants of the tempo. */
struct TempoWishes {
    double lowestBpm = 0.0;  // a range to bring the tempo into; both 0: none
    double highestBpm = 0.0;
    int beatsPerBar = 0;  // 0: not known
};

/** How the beats of a track are counted into bars. */
struct BarCount {
    int beats = 4;
    int phase = 0;  // of the first downbeat

    /** From 1, the downbeat. */
    int numberOf(std::size_t beat) const {
        const auto perBar = static_cast<std::size_t>(beats);
        return static_cast<int>((beat + perBar - static_cast<std::size_t>(phase)) % perBar) + 1;
    }
};

/** The tempo of a track, whose kind nobody has to know beforehand. */
struct TempoAnswer {
    double bpm = 0.0;           // 0, without beats: no tempo
    double rawBpm = 0.0;        // before it was brought into the range wished for
    std::vector<double> beats;  // seconds
    BarCount bar;
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
    AutoTempo(int rate, int frames, const TempoWishes& wishes, bool wantsWaves);

    void hear(const Block& block) override;

    /** Call once. */
    TempoAnswer finish();

    SessionPair& sessions() { return sessions_; }

private:
    int rate_;
    TempoWishes wishes_;
    SessionPair sessions_;
    EvidenceListener evidence_;
};

}  // namespace beatatlas::track::inner
