// SPDX-License-Identifier: MIT
#pragma once

#include "beatatlas/track.h"
#include "session/Analyzer.h"
#include "track/BeatFinder.h"

namespace beatatlas::track::inner {

/** The tempo, the beats and the waves of a track: one session of the core. */
class BeatSession : public BeatFinder {
public:
    /** @throws std::bad_alloc */
    BeatSession(const BA_TrackOptions& options, int rate, int frames);

    /** Holds back the last frame of the track, which would start the closing analysis. */
    void hear(const Block& block) override;

    /** Runs the closing analysis, a few percent of the total time. */
    void close() override;

    void addTo(TrackResult& result) override;

private:
    void addBeatsTo(TrackResult& result) const;
    void addWavesTo(TrackResult& result);

    Analyzer analyzer_;
    int framesLeft_;
    float lastLeft_ = 0.0F;
    float lastRight_ = 0.0F;
};

}  // namespace beatatlas::track::inner
