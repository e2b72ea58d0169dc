// SPDX-License-Identifier: MIT
#include "track/evidence/EvidenceListener.h"

#include "track/NearestScope.h"

namespace beatatlas::track::inner {

namespace {

// The mean of both channels, with 16-bit full scale brought to ±1.0: a power of two, so the product
// is exact.
constexpr float kMonoScale = 1.0F / 65536.0F;

}  // namespace

EvidenceListener::EvidenceListener(int rate) : rate_(rate) {
    const NearestScope mode;
    levels_.emplace(rate);
    chroma_.emplace(rate);
}

void EvidenceListener::hear(const Block& block) {
    const NearestScope mode;
    mono_.resize(static_cast<std::size_t>(block.frames));
    for (std::size_t i = 0; i < mono_.size(); ++i)
        mono_[i] = (block.left[i] + block.right[i]) * kMonoScale;
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
