// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

namespace peakss {

/** The tempo vote of all bands over the whole track: one count per whole BPM, 0 to 255.
 *
 *  Each beat found adds to its tempo, the more the steadier it was. Nothing fades; only keepOnly()
 *  takes votes away, when a steady new tempo overrides the old majority. A tempo outside the range
 *  has no vote. */
class TempoVote {
public:
    TempoVote() { reset(); }

    void reset();

    /** Adds 1 to 4 votes: 4 / (dev + 1), dev in ms, for a beat interval in ms. */
    void add(float intervalMs, float dev);

    /** The BPM of the most votes, the lowest of equals; −1 without any. */
    int winner() const;

    /** The votes for the whole BPM next to an interval in ms; 0 outside the range. */
    int votesFor(float intervalMs) const { return votes(bpmOf(intervalMs)); }
    int votes(int bpm) const { return isInside(bpm) ? bpmHist_[static_cast<std::size_t>(bpm)] : 0; }

    /** Drops the votes for every tempo but that of intervalMs, its double and its half. */
    void keepOnly(float intervalMs);

private:
    static constexpr int kSlots = 256;

    static int bpmOf(float intervalMs);
    static bool isInside(int bpm) { return bpm >= 0 && bpm < kSlots; }
    void resetRange();
    void widenRange(int bpm);

    std::array<std::int32_t, kSlots> bpmHist_{};
    // Lowest and highest voted BPM; the lowest is above the highest while there is none.
    std::int32_t histMin_ = 0;
    std::int32_t histMax_ = 0;
};

}  // namespace peakss
