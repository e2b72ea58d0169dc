// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "track/Listener.h"
#include "track/TrackResult.h"

namespace beatatlas::track::inner {

/** Hears a track and says what it found of its tempo, its beats and its waves.
 *
 *  Life: construct → hear the whole track → close() → addTo(). */
class BeatFinder : public Listener {
public:
    /** Closes the analysis, once. @throws std::bad_alloc */
    virtual void close() = 0;

    virtual void addTo(TrackResult& result) = 0;
};

/** The one for the tempo option. @throws std::bad_alloc */
std::unique_ptr<BeatFinder> makeBeatFinder(const BA_TrackOptions& options, int rate, int frames);

/** The points of a wave of the core in the records of the interface. */
template <class Point>
std::vector<BA_WaveInfo> toWave(const Point* points, int count) {
    std::vector<BA_WaveInfo> wave;
    wave.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        wave.push_back({static_cast<float>(points[i].level), points[i].color});
    return wave;
}

}  // namespace beatatlas::track::inner
