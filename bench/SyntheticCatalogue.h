// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "catalogue/Catalogue.h"

namespace bench {

/** Fills an empty catalogue with invented tracks, the same ones every time: artists of a few to a
 *  hundred albums, tempos about the usual ones, all keys, some without a tempo or a key, some
 *  corrected, some gone, some failures. Grids are short and there are no waves, since lists do not
 *  read them. */
void fillCatalogue(catalogue::Catalogue& catalogue, std::int64_t tracks);

}  // namespace bench
