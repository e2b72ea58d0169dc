// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "catalogue/merge/MergeSource.h"

namespace catalogue {

/** @name What several catalogues know of the same, as one
 *  The same in whatever order they come, each of them once or several times. @{ */

/** @param tracks  at least one */
MergeTrack joined(std::vector<MergeTrack> tracks);

/** Corrections of the key and of the grid have nothing to do with each other: a sound has those of
 *  both. Of either kind two lists of which one continues the other are one list; of others the one
 *  with the newest edit is kept, since two people who doubled a tempo did not mean to quadruple it.
 *  @param lists       in the order in which the edits were made
 *  @param isConflict  receives whether edits of one of them are left behind */
std::vector<StoredEdit> joined(const std::vector<std::vector<StoredEdit>>& lists, bool& isConflict);
/** @} */

}  // namespace catalogue
