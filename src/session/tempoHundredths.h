// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "dsp/truncation.h"

namespace beatatlas {

/** A tempo as it crosses the interface: hundredths of a BPM, rounded half up, in single
 *  precision. */
constexpr std::int32_t tempoHundredths(float bpm) {
    return truncToInt32(bpm * 100.0F + 0.5F);
}

}  // namespace beatatlas
