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

/** What is heard of a track beside the sessions of the core: what begins when, and what sounds. */
struct Evidence {
    double seconds = 0.0;
    OnsetEnvelopes onsets;
    std::vector<Chroma> chroma;  // ten a second
    ChordChanges changes;
};

/** Gathers the evidence from a track. The same bits for blocks of every size, in every rounding
 *  mode and vector form. Where another maths library gives other last bits (of exp2, log1p, cos),
 *  those of the evidence may differ too.
 *
 *  Life: construct → hear the whole track → finish(). Memory: 11 kB per second of the track. */
class EvidenceListener : public Listener {
public:
    /** @param rate  44100 or 48000 Hz
     *  @throws std::bad_alloc, as the other calls do */
    explicit EvidenceListener(int rate);

    void hear(const Block& block) override;

    /** Call once. */
    Evidence finish();

private:
    int rate_;
    std::int64_t frames_ = 0;
    std::vector<float> mono_;
    std::optional<BandLevels> levels_;
    std::optional<ChromaStream> chroma_;
};

}  // namespace beatatlas::track::inner
