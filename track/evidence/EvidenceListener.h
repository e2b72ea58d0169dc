// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "track/Listener.h"
#include "track/evidence/BandLevels.h"
#include "track/evidence/ChordChanges.h"
#include "track/evidence/ChromaStream.h"
#include "track/evidence/OnsetEnvelopes.h"

namespace beatatlas::track::inner {

/** What is found in a track besides the sessions of the core: onsets, chroma and chord changes. */
struct Evidence {
    double seconds = 0.0;
    OnsetEnvelopes onsets;
    std::vector<Chroma> chroma;  // ten a second
    ChordChanges changes;
};

/** Gathers the evidence from a track. The same bits for blocks of every size, in every rounding
 *  mode and vector form. With another mathematics library, exp2, log1p and cos may differ in their
 *  last bits, and so may the evidence.
 *
 *  Life: construct → hear the whole track → finish(). Memory: 11 kB per second of the track. */
class EvidenceListener : public Listener {
public:
    /** @param rate  44100 or 48000 Hz
     *  @throws std::bad_alloc, as the other calls do */
    explicit EvidenceListener(int rate);

    void hear(const Block& block) override;

    /** The evidence of the whole track. Call once. */
    Evidence finish();

private:
    int rate_;
    std::int64_t frames_ = 0;
    std::vector<float> mono_;
    std::optional<BandLevels> levels_;
    std::optional<ChromaStream> chroma_;
};

}  // namespace beatatlas::track::inner
