// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "io/ProgressLine.h"
#include "media/FileAnalysis.h"
#include "output/TrackReport.h"

namespace app {

/** Analyses a file as media::FileAnalysis does and shows the progress. The report holds the options
 *  beside the results.
 *  @param options  their `progress` is ignored
 *  @param share    how much of all the work on the track this is, 0 to 1 */
output::TrackReport analyzeFile(const std::string& path, media::FileAnalysis::Options options,
                                ProgressLine& progress, double share = 1.0);

}  // namespace app
