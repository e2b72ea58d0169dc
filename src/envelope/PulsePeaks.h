// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace beatatlas {

/** Finds the strong pulses of a detrended level envelope: maxima after which the level falls to
 *  less than two thirds, at least as high as the average of them all.
 *
 *  @param envelope    signed level, one value per 128 frames
 *  @param peakLevels  as long as the envelope; receives each maximum's level at its index and loses
 *                     the levels below the average. Levels found there already stay in the game.
 *  @return            envelope indices of the retained pulses, ascending, from 1 on. An envelope
 *                     without any maximum above 0 retains every index: its average is 0. */
std::vector<int> retainPulsePeaks(const std::vector<std::int16_t>& envelope,
                                  std::vector<std::int16_t>& peakLevels);

}  // namespace beatatlas
