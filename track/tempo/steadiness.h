// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace beatatlas::track::inner {

/** How well the onsets keep in step with a pulse of hz along the track, 0 … 1: the sum of what windows of eight seconds
 *  see of it, each with its phase, against the sum without phases. Tracks of constant tempo give .92 and more.
 *  @param sharp  the onset envelope, 150 values a second; at least one */
double coherence(const std::vector<float>& sharp, double hz);

}  // namespace beatatlas::track::inner
