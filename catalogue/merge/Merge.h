// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace catalogue {

struct MergeCounts {
    std::int64_t tracks = 0;
    std::int64_t conflicts = 0;
};

/** Puts what several catalogues know of tracks into a new one.
 *
 *  Of a track that several have, the file as it was last analysed counts, and of each set of
 *  parameters the newest result. Corrections are kept, those of sounds that no track has any more
 *  too; joined() says how those of one sound come together, and where some are left behind that is
 *  reported. The order of the catalogues makes no difference, nor does merging one of them twice.
 *
 *  @param output    appears whole or not at all; must not exist
 *  @param conflict  takes the path of each track of which corrections were left behind
 *  @throws CatalogueError; Interrupted */
MergeCounts mergeCatalogues(const std::vector<std::string>& inputs, const std::string& output,
                            const std::function<void(const std::string& path)>& conflict);

}  // namespace catalogue
