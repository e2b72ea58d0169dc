// SPDX-License-Identifier: MIT
#include "support/Harmony.h"

#include <cstddef>

#include "support/NearestScope.h"

namespace beatatlas::test {

namespace {

using Scale = std::array<int, 7>;

// Semitones above the tonic; minor is the natural minor scale.
constexpr Scale kMajorScale = {0, 2, 4, 5, 7, 9, 11};
constexpr Scale kMinorScale = {0, 2, 3, 5, 7, 8, 10};

// 2^(k/12).
constexpr std::array<double, 12> kSemitoneRatios = {
    1.0,
    1.0594630943592953,
    1.122462048309373,
    1.189207115002721,
    1.2599210498948732,
    1.3348398541700344,
    1.4142135623730951,
    1.4983070768766815,
    1.5874010519681994,
    1.681792830507429,
    1.7817974362806785,
    1.8877486253633868,
};

/** The note `semitones` (0–23) above a reference. */
double noteAbove(double referenceHz, int semitones) {
    const double ratio = kSemitoneRatios[static_cast<std::size_t>(semitones % 12)];
    return (referenceHz * ratio) * (semitones >= 12 ? 2.0 : 1.0);
}

int semitonesOf(const Scale& scale, int degree) {
    return scale[static_cast<std::size_t>(degree % 7)] + (12 * (degree / 7));
}

Chord triadOn(const Scale& scale, int tonic, int degree, double concertPitchHz) {
    const double a3 = concertPitchHz / 2.0;
    const int root = (tonic + semitonesOf(scale, degree)) % 12;
    const int third = semitonesOf(scale, degree + 2) - semitonesOf(scale, degree);
    const int fifth = semitonesOf(scale, degree + 4) - semitonesOf(scale, degree);
    return {noteAbove(a3, root) / 4.0,
            {noteAbove(a3, root), noteAbove(a3, root + third), noteAbove(a3, root + fifth)}};
}

}  // namespace

Harmony::Harmony(int tonic, KeyMode mode, std::vector<int> progression, double concertPitchHz) {
    const NearestScope nearest;
    const Scale& scale = mode == KeyMode::major ? kMajorScale : kMinorScale;
    for (const int degree : progression)
        chords_.push_back(triadOn(scale, tonic, degree, concertPitchHz));
}

const Chord& Harmony::chordOfBar(int bar) const {
    return chords_[static_cast<std::size_t>(bar) % chords_.size()];
}

}  // namespace beatatlas::test
