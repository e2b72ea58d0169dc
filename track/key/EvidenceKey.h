// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include "track/Listener.h"
#include "track/TrackResult.h"
#include "track/key/PeakStream.h"

namespace beatatlas::track::inner {

/** The key of a track by evidence: which notes sound, which triads sound, and what it begins with.
 *  Also finds how the track is tuned and where its key changes.
 *
 *  The same bits for blocks of every size, in every rounding mode and vector form; with another
 *  mathematics library the last bits may differ (those of log, exp, cos). Life: construct → hear
 *  the whole track → addTo(). Memory: 2 MB, plus 50 to 200 kB for each minute of music or 400 kB
 *  for each minute of noise. */
class EvidenceKey : public Listener {
public:
    /** @param rate  44100 or 48000 Hz
     *  @throws std::bad_alloc, as the other calls do */
    explicit EvidenceKey(int rate);

    void hear(const Block& block) override;

    /** Call once, when the result has its length and its beats: the windows of the key are measured
     *  in bars. */
    void addTo(TrackResult& result);

private:
    std::vector<float> mono_;
    std::optional<PeakStream> stream_;
};

}  // namespace beatatlas::track::inner
