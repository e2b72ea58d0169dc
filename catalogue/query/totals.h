// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "catalogue/Catalogue.h"

namespace catalogue {

/** How many there are of what lists show. */
struct Totals {
    /** That are where they were. */
    std::int64_t tracks = 0;
    std::int64_t gone = 0;
    std::int64_t corrected = 0;
    /** Files of music that could not be analysed. */
    std::int64_t failures = 0;
};

/** @throws CatalogueError */
Totals totalsOf(const Catalogue& catalogue);

/** A number that changes when another program, or another part of this one, has written into the
 *  catalogue. It means nothing to any other Catalogue of the same file. @throws CatalogueError */
std::int64_t changeNumber(const Catalogue& catalogue);

}  // namespace catalogue
