// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "analysis/MonoTrack.h"

namespace app {

constexpr int kLeastFinderMode = 0;
constexpr int kMostFinderMode = 4;
constexpr double kUsualPitchHz = 440.0;

/** The tuning of A4, 434 to 446 Hz; nothing for silence and for less than a quarter of a second.
 *  @param mode  precision, 0 (all candidates, shortest hop) to 4 */
std::optional<int> findPitch(MonoTrack& track, int mode);

/** The key of the whole decimated track, numbered 0 to 23; nothing for silence and for less than
 *  two seconds.
 *  @param referenceHz  the tuning of A4
 *  @param mode         weights, 0 to 4 */
std::optional<int> findKey(MonoTrack& track, double referenceHz, int mode);

}  // namespace app
