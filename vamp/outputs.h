// SPDX-License-Identifier: MIT
#pragma once

#include <vamp-sdk/Plugin.h>

#include "beatatlas/track.hpp"

namespace beatatlas::vamp {

/** What the plugin shows, in the order in which hosts number it. */
enum Output { kBeats, kBars, kTempo, kKey, kKeyRanking, kLoudWave, kDotsWave, kZoomWave };

Vamp::Plugin::OutputList describeOutputs();

/** A result as features of all outputs.
 *  @param start  the time of the first frame, from which positions count */
Vamp::Plugin::FeatureSet featuresOf(const track::TrackResult& result, Vamp::RealTime start);

}  // namespace beatatlas::vamp
