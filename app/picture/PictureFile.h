// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "analysis/TrackAnalyzer.h"
#include "picture/PictureOptions.h"

namespace app {

/** The format that a picture's name asks for. @throws UsageError when it ends in neither .png nor .svg */
PictureFormat pictureFormatOf(const std::string& path);

/** Draws the picture of a track into a file, which appears whole or not at all.
 *  @throws OutputError when it cannot be written */
void writePicture(const TrackReport& report, const PictureOptions& options, PictureFormat format,
                  const std::string& path);

}  // namespace app
