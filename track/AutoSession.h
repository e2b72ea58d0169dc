// SPDX-License-Identifier: MIT
#pragma once

#include "beatatlas/track.h"
#include "track/BeatFinder.h"
#include "track/tempo/AutoTempo.h"

namespace beatatlas::track::inner {

/** Tempo and beats by the auto tempo, and the waves of its sessions. */
class AutoSession : public BeatFinder {
public:
    /** @throws std::bad_alloc */
    AutoSession(const BA_TrackOptions& options, int rate, int frames);

    void hear(const Block& block) override;
    void close() override;
    void addTo(TrackResult& result) override;

private:
    void addBeatsTo(TrackResult& result) const;
    void addReadingsTo(TrackResult& result) const;
    void addWavesTo(TrackResult& result);

    AutoTempo tempo_;
    TempoAnswer answer_;
};

}  // namespace beatatlas::track::inner
