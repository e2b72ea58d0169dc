// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

#include "dsp/filterBankLanes.h"

namespace beatatlas {

/** Sets the inputs of a tile's steps.
 *  @param mono    the block's n samples
 *  @param stereo  the same n frames in 16 bits, left and right in turn; null for silence */
void fillTile(FilterBankTile& tile, const FilterBankStretch& stretch, const float* mono,
              const std::int16_t* stereo);

/** Writes the rectified values of S0 to S3 that the tile's steps gave, each into the block's array of n. */
void readBands(const FilterBankTile& tile, const FilterBankStretch& stretch,
               const std::array<float*, 4>& bands);

/** Likewise, of L. */
void readLongBand(const FilterBankTile& tile, const FilterBankStretch& stretch, float* band);

/** Copies one of the tile's other outputs into the block's array of n.
 *  @param delay  of the lane that gave it */
void readLevels(const FilterBankTile::Steps<double>& values, const FilterBankStretch& stretch,
                int delay, double* levels);

}  // namespace beatatlas
