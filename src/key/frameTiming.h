// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** The hop between two spectra: about the length of a note. */
constexpr double kSecondsPerFrame = 0.3;

/** Every fourth sample enters the spectrum. */
constexpr int kDecimation = 4;

}  // namespace beatatlas
