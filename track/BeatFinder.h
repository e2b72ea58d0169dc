// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "track/Listener.h"
#include "track/TrackResult.h"

namespace beatatlas::track::inner {

/** Receives a track and finds its tempo, its beats and its waves.
 *
 *  Life: construct → hear the whole track → close() → addTo(). */
class BeatFinder : public Listener {
public:
    /** Runs the closing analysis. Call once, after the whole track. @throws std::bad_alloc */
    virtual void close() = 0;

    /** Adds tempo, beats and waves to a result whose rate and frames are set. */
    virtual void addTo(TrackResult& result) = 0;
};

/** The beat finder for the tempo option.
 *  @param rate    44100 or 48000 Hz
 *  @param frames  length of the track, at least 1
 *  @throws std::bad_alloc */
std::unique_ptr<BeatFinder> makeBeatFinder(const BA_TrackOptions& options, int rate, int frames);

/** Converts the points of a wave of the core to the records of the interface. */
template <class Point>
std::vector<BA_WaveInfo> toWave(const Point* points, int count) {
    std::vector<BA_WaveInfo> wave;
    wave.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        wave.push_back({static_cast<float>(points[i].level), points[i].color});
    return wave;
}

}  // namespace beatatlas::track::inner
