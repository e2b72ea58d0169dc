// SPDX-License-Identifier: MIT
// The search for a regular beat among the level peaks of one band.
//   1. suppose the newest interval to be so many beats: a beat length
//   2. walk back over the older intervals, reading each in beats of that length, until a bar is
//      filled exactly
//   3. average the beat over the bar, and count how far back the peaks go on agreeing with it
//   4. of all suppositions that fill a bar, keep the one with the most agreeing peaks
#include "peakss/sensing/PeakBuffer.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "dsp/truncation.h"
#include "peakss/beatInterval.h"
#include "peakss/sensing/PeakSensor.h"
#include "peakss/sensing/beatReadings.h"

namespace peakss {

using beatatlas::truncToInt32;
using beatatlas::wrappingSubtract;

namespace {

constexpr int kRingCapacity = 32;
constexpr float kBarBeats = 4.0F;
constexpr float kShortestBeatMs = 333.0F;  // 180 BPM
constexpr int kMaxWalked = 30;
constexpr int kMaxAgreeing = 31;

using PeakRing = RingStack<PeakInfo>;

int findReading(float intervalMs, int row) {
    for (std::size_t k = static_cast<std::size_t>(std::max(row, 0)); k < kFirstReadings.size(); ++k)
        if (kFirstReadings[k].holds(intervalMs)) return static_cast<int>(k);
    return -1;
}

/** The walk from the newest interval back to the beginning of the bar. */
struct BarWalk {
    BarWalk(float intervalMs, float beats, float bar)
        : beatMs(intervalMs / beats), tolerance(intervalTolerance(beatMs)), sumMs(intervalMs),
          sumBeats(beats), target(beats < bar ? bar : 2.0F * bar) {}

    float beatMs;     // as supposed from the newest interval alone
    float tolerance;  // of it, ms
    float sumMs;
    float sumBeats;
    float target;    // beats to fill
    int walked = 0;  // stored entries read, the current one included
};

/** The beats an older interval stands for; 0 when it does not fit the supposed beat. */
float olderBeats(float intervalMs, const BarWalk& walk) {
    for (const BeatReading& reading : kOlderReadings) {
        if (!reading.holds(intervalMs)) continue;
        if (std::fabs((intervalMs / reading.beats) - walk.beatMs) < walk.tolerance)
            return reading.beats;
    }
    return 0.0F;
}

/** Whether the bar may still be filled from older entries; an overfull double bar becomes a
 *  fourfold one. */
bool mayWalkOn(const PeakRing& ring, float bar, BarWalk& walk) {
    // Keeps off the oldest stored entry, whose interval reaches back to a peak that is not stored.
    if (walk.sumBeats < walk.target)
        return ring.count() > walk.walked + 1 && walk.walked < kMaxWalked;
    const float longest = 4.0F * bar;
    if (walk.target <= bar || walk.target >= longest || walk.sumBeats >= longest) return false;
    if (ring.count() <= walk.walked) return false;
    walk.target *= 2.0F;
    return true;
}

bool fillsBar(const PeakRing& ring, float bar, BarWalk& walk) {
    if (ring.count() == 0) return false;
    do {
        const float intervalMs = ring.back(walk.walked).interval;
        ++walk.walked;
        const float beats = olderBeats(intervalMs, walk);
        if (beats == 0.0F) return false;
        walk.sumMs += intervalMs;
        walk.sumBeats += beats;
        if (walk.sumBeats == walk.target) return true;
    } while (mayWalkOn(ring, bar, walk));
    return false;
}

/** Whether an interval is some quarter beats (up to 2.5), or whole beats (up to 4), of this beat
 *  length. */
bool agreesWithBeat(float intervalMs, float beatMs) {
    float beats = quarterBeats(intervalMs, beatMs);
    if (beats > 2.5F) beats = static_cast<float>(truncToInt32(beats + 0.5F));
    beats = std::min(beats, 4.0F);
    // A band's first peak has no interval, 0 / 0: not a number, which is never below the tolerance.
    return std::fabs((intervalMs / beats) - beatMs) < intervalTolerance(beatMs);
}

/** Peaks that agree with the beat: those of the filled bar, and what came regularly before it. */
int countAgreeing(const PeakRing& ring, int walked, float beatMs) {
    int peaks = walked + 2;
    while (peaks - 2 < ring.count() && agreesWithBeat(ring.back(peaks - 2).interval, beatMs)) {
        if (ring.count() <= peaks || peaks + 1 > kMaxAgreeing) return peaks - 1;
        ++peaks;
    }
    return peaks - 2;
}

}  // namespace

void PeakBuffer::create(int band) {
    ring_.create(kRingCapacity);
    band_ = band;
    reset();
}

void PeakBuffer::reset() {
    interval_ = 0.0F;
    ring_.clear();
    lastPos_ = 0;
    beatFound_ = false;
    dev_ = FLT_MAX;
    count_ = 0;
    beatLevel_ = 0.0F;
    beatPos_ = 0;
}

bool PeakBuffer::put(const PeakSensor* sensor) {
    const std::int32_t previous = lastPos_;
    lastPos_ = sensor->peakPos();
    float sincePrevious = 0.0F;
    beatFound_ = false;
    if (previous != 0) {
        const auto samples = static_cast<float>(wrappingSubtract(sensor->peakPos(), previous));
        sincePrevious = (samples * 1000.0F) / static_cast<float>(sensor->rate());
        interval_ = sincePrevious;
        beatFound_ = calcBeat(sincePrevious);
    }
    // Only now: the search has to see the older peaks alone.
    ring_.push({sensor->peakPos(), sensor->peakLevel(), sincePrevious});
    if (beatFound_) {
        beatLevel_ = sensor->peakLevel();
        beatPos_ = sensor->peakPos();
    }
    return beatFound_;
}

bool PeakBuffer::calcBeat(float intervalMs) {
    bool found = false;
    int most = 0;
    float avg = 0.0F;
    float dev = 0.0F;
    int count = 0;
    int row = calcBeat_s(intervalMs, ring_, kBarBeats, 0, &avg, &dev, &count);
    for (; row >= 0; row = calcBeat_s(intervalMs, ring_, kBarBeats, row, &avg, &dev, &count)) {
        if (avg < kShortestBeatMs || count <= most) continue;
        interval_ = avg;
        dev_ = dev;
        count_ = count;
        most = count;
        found = true;
    }
    return found;
}

int PeakBuffer::calcBeat_s(float intervalMs, const RingStack<PeakInfo>& ring, float bar, int row,
                           float* avg, float* dev, int* count) {
    for (int k = findReading(intervalMs, row); k >= 0; k = findReading(intervalMs, k + 1)) {
        BarWalk walk(intervalMs, kFirstReadings[static_cast<std::size_t>(k)].beats, bar);
        if (!fillsBar(ring, bar, walk)) continue;
        *avg = walk.sumMs / walk.target;
        *dev = std::fabs(*avg - walk.beatMs);
        *count = countAgreeing(ring, walk.walked, *avg);
        return k + 1;
    }
    return -1;
}

}  // namespace peakss
