// SPDX-License-Identifier: MIT
#pragma once

#include <cfloat>
#include <cstdint>

#include "peakss/sensing/RingStack.h"

namespace peakss {

class PeakSensor;

/** One level peak of a band. */
struct PeakInfo {
    /** Samples from the start of the track to the maximum. */
    std::int32_t pos = 0;
    /** The maximum, in the units of the band's level. */
    float level = 0.0F;
    /** Time since the band's previous peak in ms; 0 for its first. */
    float interval = 0.0F;
};

/** Keeps the last 32 level peaks of one band and says whether the newest closes a regular beat.
 *
 *  The newest interval is read in turn as each number of beats it may stand for; a reading holds
 *  when the older intervals, read with the same beat length, fill a whole bar (or two, or four)
 *  with it. Of the readings that hold, the one that more of the recent peaks agree with wins. Beats
 *  faster than 180 BPM are never reported.
 *
 *  Life: create() → put() per confirmed peak → getters while beatFound(); reset() empties it.
 *  Memory: the ring, allocated in create(). */
class PeakBuffer {
public:
    PeakBuffer() = default;
    PeakBuffer(const PeakBuffer&) = delete;
    PeakBuffer& operator=(const PeakBuffer&) = delete;

    void create(int band);
    void reset();

    /** Takes the peak that sensor has just confirmed; true when it closes a regular beat. */
    bool put(const PeakSensor* sensor);

    /** Looks for the beat that the newest interval and the stored peaks agree on, and keeps it if
     *  there is one. The peak that ends the newest interval is not among the stored ones. */
    bool calcBeat(float intervalMs);

    /** Reads intervalMs by the first row of the table, from row on, that the ring's intervals
     *  confirm.
     *  @param bar    beats of a bar, what the intervals have to fill: this, its double, or its
     *                fourfold
     *  @param avg    receives the beat interval in ms, averaged over the intervals that filled the
     *                bar
     *  @param dev    receives its distance from the beat interval the newest interval alone gives
     *  @param count  receives the number of peaks that agree with avg
     *  Returns the row to go on from for the next reading, or −1, with nothing written, when none
     *  is left. */
    static int calcBeat_s(float intervalMs, const RingStack<PeakInfo>& ring, float bar, int row,
                          float* avg, float* dev, int* count);

    /** Makes the beat found an old one; it stays readable. */
    void clearBeat() { beatFound_ = false; }

    std::int32_t band() const { return band_; }
    const RingStack<PeakInfo>& ring() const { return ring_; }
    bool beatFound() const { return beatFound_; }
    /** Beat interval of the beat found, in ms. */
    float interval() const { return interval_; }
    /** Deviation of the beat found, in ms: lower is better; FLT_MAX before the first. */
    float dev() const { return dev_; }
    /** Recent peaks that agree with the beat found. */
    std::int32_t count() const { return count_; }
    /** Level of the peak that closed the beat. */
    float beatLevel() const { return beatLevel_; }
    /** Position of the same peak, in samples. */
    std::int32_t beatPos() const { return beatPos_; }

private:
    std::int32_t band_ = -1;
    // Between the last two peaks, until a beat is found on the newer one: then of the beat.
    float interval_ = 0.0F;
    RingStack<PeakInfo> ring_;
    std::int32_t lastPos_ = 0;  // of the previous peak; 0: none yet
    bool beatFound_ = false;
    float dev_ = FLT_MAX;
    std::int32_t count_ = 0;
    float beatLevel_ = 0.0F;
    std::int32_t beatPos_ = 0;
};

}  // namespace peakss
