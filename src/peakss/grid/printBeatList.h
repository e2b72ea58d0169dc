// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>

#include "peakss/BeatInfo.h"

namespace peakss {

/** Writes one line per beat: group (or number in the bar), BPM, phase, position and band, separated by tabs.
 *
 *  Lines end in a bare line feed. The BPM is 60000 / interval in single precision, undivided by any check: an
 *  interval of 0 prints "inf". A null stream means standard output. */
void printBeatList(const BeatList& list, std::FILE* stream);

}  // namespace peakss
