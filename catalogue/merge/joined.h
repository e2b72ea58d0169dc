// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "catalogue/merge/MergeSource.h"

namespace catalogue {

/** What several catalogues know of the same track, as one. The same in whatever order they come.
 *  @param tracks      at least one
 *  @param isConflict  receives whether corrections of one of them are left behind */
MergeTrack joined(std::vector<MergeTrack> tracks, bool& isConflict);

}  // namespace catalogue
