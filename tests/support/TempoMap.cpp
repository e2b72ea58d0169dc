// SPDX-License-Identifier: MIT
#include "support/TempoMap.h"

#include "support/NearestScope.h"

namespace beatatlas::test {

TempoMap::TempoMap(int sampleRate, std::int64_t firstBeatFrame, double bpm,
                   const std::vector<TempoChange>& changes) {
    const NearestScope nearest;
    const double framesPerMinute = 60.0 * sampleRate;
    stretches_.push_back({static_cast<double>(firstBeatFrame), 0.0, framesPerMinute / bpm});
    for (const TempoChange& change : changes)
        changeTempo(change.atSeconds * sampleRate, framesPerMinute / change.bpm);
}

void TempoMap::changeTempo(double frame, double framesPerBeat) {
    Stretch& last = stretches_.back();
    if (frame <= last.firstFrame) {
        last.framesPerBeat = framesPerBeat;
        return;
    }
    const double beat = last.firstBeat + ((frame - last.firstFrame) / last.framesPerBeat);
    stretches_.push_back({frame, beat, framesPerBeat});
}

std::int64_t TempoMap::frameOfBeat(double beat) const {
    const NearestScope nearest;
    const Stretch* stretch = &stretches_.front();
    for (const Stretch& later : stretches_)
        if (later.firstBeat <= beat) stretch = &later;
    const double frame =
        stretch->firstFrame + ((beat - stretch->firstBeat) * stretch->framesPerBeat);
    return static_cast<std::int64_t>(frame + 0.5);
}

}  // namespace beatatlas::test
