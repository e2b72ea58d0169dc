// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

#include "catalogue/Catalogue.h"

namespace catalogue {

/** How far a scan is, as its row in the catalogue says. */
struct ScanProgress {
    /** Files to be looked at. */
    std::int64_t planned = 0;
    /** Of them done, whatever became of them. */
    std::int64_t done = 0;
    std::int64_t failed = 0;
    /** Of the tracks that were analysed. */
    double audioSeconds = 0.0;
    /** Seconds since 1970. */
    std::int64_t startedAt = 0;
    std::int64_t writtenAt = 0;
};

/** The scan that has not said that it ended: it runs, or it was killed. @throws CatalogueError */
std::optional<ScanProgress> unfinishedScan(const Catalogue& catalogue);

/** Whether a process fills the catalogue. */
bool isBeingScanned(const Catalogue& catalogue);

}  // namespace catalogue
