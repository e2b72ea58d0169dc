// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "io/ProgressLine.h"
#include "media/FileAnalysis.h"
#include "output/TrackReport.h"

namespace app {

/** Analyses a file as media::FileAnalysis does, with its progress shown, and tells what was asked
 *  for beside the answers.
 *  @param options  their progress is not read */
output::TrackReport analyzeFile(const std::string& path, media::FileAnalysis::Options options,
                                ProgressLine& progress);

}  // namespace app
