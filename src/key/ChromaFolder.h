// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "key/BandSpectrogram.h"
#include "key/pitchClasses.h"

namespace beatatlas {

/** How much of each pitch class a track holds. */
using Chroma = std::array<double, kPitchClasses>;

/** Folds five octaves of the first frames rows into one, each row smoothed with its neighbours:
 *  1.5 s ahead and 1.2 s back. Rows that were not analysed count as silence. */
Chroma foldChroma(const BandSpectrogram& spectrogram, int frames);

}  // namespace beatatlas
