// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "envelope/SimpleEnvelopeMaker.h"
#include "envelope/UnitBeatAdjust.h"
#include "envelope/UnitEnvelopeMaker.h"
#include "peakss/BeatInfo.h"
#include "peakss/BeatListMaker.h"
#include "session/TrackFilters.h"
#include "track/Listener.h"
#include "view/LoudViewMaker.h"
#include "view/ZoomViewMaker.h"

namespace beatatlas::track::inner {

/** The answer of a session: tempo and grid as a host receives them. */
struct SessionGrid {
    /** Hundredths of a BPM; 0: none was found. */
    int bpm100 = 0;
    /** The final grid. */
    peakss::BeatList beats;
};

struct SessionGrids {
    SessionGrid varied;
    SessionGrid simple;
};

/** Two sessions of the core over one track: one of varied tempo with phrases of 32 beats, and a
 *  simple one that senses the whole track. Both sense the same beats, so the track is filtered and
 *  sensed once; only the closing analysis runs twice. Each grid is bit for bit that of a separate
 *  session.
 *
 *  Life: construct → hear the whole track → close() → getters. */
class SessionPair : public Listener {
public:
    /** @throws std::bad_alloc */
    SessionPair(int rate, int frames, bool wantsWaves);

    void hear(const Block& block) override;

    /** Runs both closing analyses. */
    void close();

    const SessionGrids& grids() const { return grids_; }

    /** The waves, as a session of the core returns them when they are first read. */
    const WavePoint* loudWave();
    const WavePoint* dotsWave();
    const ZoomPoint* zoomWave() { return zoomViewMaker_.points(); }
    int loudNum() const { return loudViewMaker_.loudNum(); }
    int dotsNum() const { return loudViewMaker_.dotsNum(); }
    int zoomNum() const { return zoomViewMaker_.count(); }

private:
    void createAnalysers();
    int fillBlock(const Block& block, int from);
    void dispatchBlock();
    float proposeGrid(bool isVaried, peakss::BeatList& beats) const;
    void closeVaried();
    void closeSimple();

    int rate_;
    int frames_;
    bool wantsWaves_;
    int blockFrames_;
    int blockFill_ = 0;
    std::int64_t fedFrames_ = 0;
    std::vector<float> mono_;           // a block in the core's two forms
    std::vector<std::int16_t> stereo_;  // both channels in turn

    TrackFilters trackFilters_;
    peakss::BeatListMaker beatListMaker_;
    SimpleEnvelopeMaker simpleEnvelopeMaker_;
    // Its analysis marks the pulses it has used, so each grid needs an envelope of its own.
    UnitEnvelopeMaker variedUnitEnvelope_;
    UnitEnvelopeMaker simpleUnitEnvelope_;
    UnitBeatAdjust unitBeatAdjust_;
    LoudViewMaker loudViewMaker_;
    ZoomViewMaker zoomViewMaker_;
    SessionGrids grids_;
};

}  // namespace beatatlas::track::inner
