// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "catalogue/Catalogue.h"

namespace catalogue {

/** Deletes a track with its results, or the note that a file failed.
 *  @param path             as in the catalogue
 *  @param withCorrections  those of its sound are deleted too, unless another track has that sound;
 *                          otherwise they stay for the day on which it comes back
 *  @return whether the catalogue had such a file
 *  @throws CatalogueError */
bool forget(const Catalogue& catalogue, const std::string& path, bool withCorrections);

}  // namespace catalogue
