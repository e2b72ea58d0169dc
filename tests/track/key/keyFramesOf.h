// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "track/key/KeyFrames.h"

namespace beatatlas::test {

/** Triads, one after the other. */
struct HeldChord {
    int tonic;  // from A
    bool isMinor;
    int frames;
};

/** What the frames of such music are, two a second. */
inline track::inner::KeyFrames keyFramesOf(const std::vector<HeldChord>& chords) {
    track::inner::PeakStore store;
    for (const HeldChord& chord : chords) {
        const auto root = static_cast<float>(57 + chord.tonic);
        const float third = root + (chord.isMinor ? 3.0F : 4.0F);
        for (int i = 0; i < chord.frames; ++i)
            store.add(1.0F, {{root, 1.0F}, {third, 0.9F}, {root + 7.0F, 0.9F}});
    }
    return track::inner::foldFrames(store, 0.0, 0.5);
}

/** I, IV, V, I of a major key, or i, iv, v, i of a minor one, over and over. */
inline std::vector<HeldChord> cadences(int key, int frames) {
    const int tonic = key % 12;
    std::vector<HeldChord> chords;
    for (int i = 0; i < frames; i += 16)
        for (const int step : {0, 5, 7, 0}) chords.push_back({(tonic + step) % 12, key >= 12, 4});
    return chords;
}

}  // namespace beatatlas::test
