// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "peakss/BeatInfo.h"

namespace peakss {

/** Walks along one segment in quarter beats of fixed length and snaps to the raw beats it meets at
 *  the anchors.
 *
 *  Quarters are quarter beats counted from the phrase's origin; the walk remembers which band it
 *  snapped to at each of them so far. The list must outlive the walk. */
class AnchorWalk {
public:
    static constexpr int kNoBand = -1;

    /** @param spacing    quarter beats from one anchor to the next; below 1 counts as one beat
     *  @param tolerance  samples */
    AnchorWalk(const BeatList& raw, double beatSamples, int spacing, int tolerance);

    /** Quarter 0: a position in samples, or the raw beat near it. */
    void begin(double start);

    /** One beat, four quarters. */
    void walkBeat();

    /** Makes a later beat of the phrase its origin: quarters from the given one on take over the
     *  bands that stand so many quarters farther on; the ones before keep theirs, their beats are
     *  laid. */
    void slide(std::int64_t fromQuarter, std::int64_t quarters);

    /** Of the walk, in samples. */
    double position() const { return position_; }
    /** Quarters walked so far. */
    std::int64_t quarter() const { return static_cast<std::int64_t>(bands_.size()) - 1; }
    bool isAnchor(std::int64_t quarter) const { return quarter % spacing_ == 0; }
    /** The band snapped to at an anchor; −1 when none was, and for quarters not reached. */
    int bandAt(std::int64_t quarter) const;

private:
    int snap();

    const BeatList& raw_;
    double quarterSamples_;
    int spacing_;
    int tolerance_;
    double position_ = 0.0;
    std::vector<int> bands_;
};

}  // namespace peakss
