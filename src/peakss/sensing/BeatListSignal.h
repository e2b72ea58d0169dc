// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "peakss/BeatInfo.h"
#include "peakss/sensing/BeatSensorSignal.h"

namespace peakss {

struct PeakInfo;

/** Writes the beats of the sensor into the raw beat list: every peak that agrees with a beat is a
 *  candidate, placed in order of position.
 *
 *  A peak is reported again and again while its band keeps finding beats, and other bands may have
 *  a peak on the same sample. Candidates of one position and one tempo, or of clashing tempi, are
 *  one: the report that more peaks agree with stays, the older one when they are equal. Candidates
 *  of nearly the same tempo stand side by side.
 *
 *  Life: create() with the list to write → changeStat() per beat. Memory: grows the list only. */
class BeatListSignal : public BeatSensorSignal {
public:
    /** Writes into list from now on, with the groups counted from 0. The list stays the
     *  caller's. */
    void create(BeatList* list);

    void changeStat(float interval, int pos, float level, PeakBuffer* buffer) override;

private:
    BeatInfo candidateOf(const PeakInfo& peak, float interval, std::int32_t band) const;
    void placeCandidate(const BeatInfo& candidate);

    BeatList* list_ = nullptr;
    std::int32_t group_ = 0;  // number of the report << 8 | its weight while it is written
};

}  // namespace peakss
