// SPDX-License-Identifier: MIT
#pragma once

#include "output/TrackReport.h"

namespace test {

/** Eight seconds at 120 BPM in A minor, at 48,000 Hz, from a stereo FLAC; waves of the lengths a
 *  session gives. */
output::TrackReport exampleReport();

/** The same track, with nothing found in it. */
output::TrackReport emptyReport();

}  // namespace test
