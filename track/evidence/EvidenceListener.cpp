// SPDX-License-Identifier: MIT
#include "track/evidence/EvidenceListener.h"

#include "track/NearestScope.h"
#include "track/evidence/mixToMono.h"

namespace beatatlas::track::inner {

EvidenceListener::EvidenceListener(int rate) : rate_(rate) {
    const NearestScope mode;
    levels_.emplace(rate);
    chroma_.emplace(rate);
}

void EvidenceListener::hear(const Block& block) {
    const NearestScope mode;
    mixToMono(block, mono_);
    frames_ += block.frames;
    levels_->put(mono_.data(), block.frames);
    chroma_->put(mono_.data(), block.frames);
}

Evidence EvidenceListener::finish() {
    const NearestScope mode;
    Evidence evidence;
    evidence.seconds = static_cast<double>(frames_) / static_cast<double>(rate_);
    levels_->finish();
    evidence.onsets = makeOnsetEnvelopes(*levels_);
    evidence.chroma = chroma_->finish();
    evidence.changes = findChordChanges(evidence.chroma);
    return evidence;
}

}  // namespace beatatlas::track::inner
