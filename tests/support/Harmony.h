// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <vector>

namespace beatatlas::test {

enum class KeyMode { major, minor };

/** A triad as the frequencies to sound. */
struct Chord {
    /** The root two octaves below the chord: A1 … G♯2. */
    double bassHz = 0.0;
    /** Root (A3 … G♯4), third and fifth above it. */
    std::array<double, 3> notesHz{};
};

/** The chords of a key, one per bar, repeated. */
class Harmony {
public:
    /** @param tonic 0–11 from A upward
     *  @param progression degrees of the scale, 0 = tonic … 6, one per bar; not empty */
    Harmony(int tonic, KeyMode mode, std::vector<int> progression, double concertPitchHz);

    /** The chord of a bar ≥ 0. */
    const Chord& chordOfBar(int bar) const;

private:
    std::vector<Chord> chords_;
};

}  // namespace beatatlas::test
