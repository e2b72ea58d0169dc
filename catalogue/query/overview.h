// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "beatatlas/track.hpp"
#include "catalogue/Catalogue.h"

namespace catalogue {

/** The loudness wave of a track, of the result that lists show; empty when there is none. Reads
 *  nothing else, so that a list with pictures is quick.
 *  @throws CatalogueError, DamagedRecord */
std::vector<beatatlas::track::WavePoint> overviewOf(const Catalogue& catalogue, std::int64_t track);

}  // namespace catalogue
