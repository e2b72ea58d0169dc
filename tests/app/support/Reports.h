// SPDX-License-Identifier: MIT
#pragma once

#include "analysis/TrackAnalyzer.h"

namespace app::test {

/** Eight seconds at 120 BPM in A minor, at 48,000 Hz, from a stereo FLAC; waves of the lengths a session gives. */
TrackReport exampleReport();

/** The same track, with nothing found in it. */
TrackReport emptyReport();

}  // namespace app::test
