// SPDX-License-Identifier: MIT
#pragma once

#include "beatatlas/track.h"
#include "track/tempo/AutoTempo.h"

namespace beatatlas::track::inner {

/** How sure an answer with beats is. */
BA_TrackConfidence confidenceOf(const TempoAnswer& answer);

}  // namespace beatatlas::track::inner
