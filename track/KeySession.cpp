// SPDX-License-Identifier: MIT
#include "track/KeySession.h"

#include <array>
#include <new>

#include "dsp/RoundingMode.h"
#include "session/frameKernels.h"

namespace beatatlas::track::inner {

namespace {

constexpr std::size_t kKeys = 24;
constexpr std::size_t kNotes = 12;

}  // namespace

void Levels::hear(const Block& block) {
    const TowardZeroScope mode;
    checker_.putSample(block.left, block.right, block.frames);
}

KeySession::KeySession(int rate, int frames) {
    const TowardZeroScope mode;
    maker_.create(rate, frames);
}

void KeySession::setLevels(const Levels& levels) {
    const TowardZeroScope mode;
    const PreChecker& values = levels.values();
    maker_.setPreCheckData(values.loudCount(), values.loudSum(), values.loudMax(),
                           values.quietCount(), values.quietSum(), values.quietMax());
}

void KeySession::hear(const Block& block) {
    const TowardZeroScope mode;
    const auto frames = static_cast<std::size_t>(block.frames);
    mono_.resize(frames);
    stereo_.resize(2 * frames);
    convertFrames(block.left, block.right, block.frames, mono_.data(), stereo_.data());
    maker_.putSample(stereo_.data(), block.frames);
    if (maker_.hasMissedFrames()) throw std::bad_alloc();
}

void KeySession::addTo(TrackResult& result) const {
    std::array<int, kKeys> keys{};
    std::array<double, kKeys> scores{};
    maker_.getKeyRank(keys.data());
    maker_.getKeyPoint(scores.data());
    // Silence, or a track too short for a single spectrum.
    if (!(scores[0] > 0.0)) return;
    std::array<int, kNotes> counts{};
    std::array<double, kNotes> shares{};
    maker_.getNoteEncount(counts.data());
    maker_.getNoteEncountVal(shares.data());
    for (std::size_t i = 0; i < kKeys; ++i) result.sessionKeys.push_back({keys[i], 0, scores[i]});
    for (std::size_t i = 0; i < kNotes; ++i) result.notes.push_back({counts[i], 0, shares[i]});
}

}  // namespace beatatlas::track::inner
