// SPDX-License-Identifier: MIT
#pragma once

namespace peakss {

class PeakBuffer;

/** What the beat sensor knows of the receiver of its beats. */
class BeatSensorSignal {
public:
    BeatSensorSignal() = default;
    virtual ~BeatSensorSignal() = default;
    BeatSensorSignal(const BeatSensorSignal&) = delete;
    BeatSensorSignal& operator=(const BeatSensorSignal&) = delete;

    /** Takes a beat that one band found and the tempo vote agreed with.
     *  @param interval  beat interval in ms
     *  @param pos       samples from the start of the track to the peak that closed the beat
     *  @param level     of that peak
     *  @param buffer    the band's peaks, that one the newest */
    virtual void changeStat(float interval, int pos, float level, PeakBuffer* buffer) = 0;
};

}  // namespace peakss
