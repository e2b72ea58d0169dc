// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "catalogue/Catalogue.h"

namespace catalogue {

enum class Forgetting {
    done,
    unknown,    ///< the catalogue has no such file
    corrected,  ///< somebody has corrected it, and corrections were to be kept
};

/** Deletes a track with everything that belongs to it, or the note that a file failed.
 *  @param path           as in the catalogue
 *  @param alsoCorrected  corrections are deleted too
 *  @throws CatalogueError */
Forgetting forget(const Catalogue& catalogue, const std::string& path, bool alsoCorrected);

}  // namespace catalogue
