// SPDX-License-Identifier: MIT
#pragma once

#include "catalogue/Analysed.h"

namespace catalogue {

/** Whether two analyses are plainly of one recording, of which another encoding, level or tag makes
 *  another file: their lengths agree to 0.1 s, and their zoomed waveforms rise and fall together
 *  (correlation of the levels of at least 0.9, point by point from the beginning). Of ten tracks
 *  encoded anew, down to 64 kbit/s or 6 dB softer, it was 0.969 at least, of 28 different ones 0.32
 *  at most, of loops against themselves a few bars on 0.85. A recording that begins elsewhere does
 *  not pass, 50 ms are enough: times in one would be wrong in the other. Nor does one without a
 *  waveform.
 *  @throws DamagedRecord when a waveform is damaged */
bool isSameSound(const Analysed& one, const Analysed& other);

}  // namespace catalogue
