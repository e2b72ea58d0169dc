// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** Notes regardless of octave, counted in semitones upward from A. */
constexpr int kPitchClasses = 12;

/** Key numbers: 0 to 11 major, 12 to 23 minor, each by the pitch class of its tonic. */
constexpr int kKeys = 2 * kPitchClasses;

}  // namespace beatatlas
