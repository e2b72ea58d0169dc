// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace app {

/** What became of the files of a scan. */
struct ScanTally {
    static constexpr double kSecondsPerHour = 3600.0;

    std::int64_t analysed = 0;
    std::int64_t known = 0;
    std::int64_t knownFailures = 0;  ///< of them those that failed before
    std::int64_t retagged = 0;       ///< changed, but for their sound
    std::int64_t moved = 0;          ///< known by their sound under another name
    std::int64_t gone = 0;           ///< in the catalogue, and not there any more
    std::int64_t pruned = 0;         ///< of them deleted from the catalogue
    std::int64_t failed = 0;
    std::int64_t notAudio = 0;
    std::int64_t noFiles = 0;   ///< pipes, devices and the like in folders
    double audioSeconds = 0.0;  ///< of what was analysed

    std::int64_t done() const { return analysed + retagged + moved + failed + notAudio; }
};

/** "290 tracks analysed (21.4 hours of music), 12 known, 5 failed": what there is none of is left
 *  out, but for what was analysed. */
std::string summaryOf(const ScanTally& tally);

}  // namespace app
